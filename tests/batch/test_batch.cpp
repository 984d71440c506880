// dla3d-batch: its options, what its runs write, its camera for --png, its
// file errors and its progress line.
#include <sstream>
#include <vector>

#include "batch/batch.h"
#include "export/model.h"
#include "growth/growth.h"
#include "surface/stl.h"
#include "test_util.h"

namespace {

using BatchOptions = Fresh;
using BatchRun = Fresh;

TEST_F(BatchOptions, ValuesReachTheRunRecordAndRefusalsNameTheirRange) {
  std::string err;
  BATCHRUN run;
  ASSERT_EQ(Batch(sim,
                  "--seed 7 --bias 0.5 --branch-length 0.01 --stickiness 1 --rotation -5 --thickness 0.8 0 --roots 0 "
                  "--root-range -3.5 --root-distribution -2 --associate --intersect-range 90 --source 17 --cells 5 "
                  "--steps 123456789012 --transform 1,2,3 -4,5e-1,0 90,0,-30 --slices 2 --slice-normal 0,-1,0.5",
                  &err, true, &run),
            BATCH_OK)
      << err;
  const GROWTHSTATE &g = run.growth;
  std::ostringstream got;
  got << g.seed << " " << g.bias << " " << g.branchlength << " " << g.stickiness << " " << g.rotation << " "
      << g.thickstart << " " << g.thickend << " " << g.nroots << " " << g.rootrange << " " << g.rootdistribution << " "
      << g.associate << " " << g.intersectrange << " " << g.sourcetype << " " << run.cells << " " << run.steps;
  EXPECT_EQ(got.str(), "7 0.5 0.01 1 -5 0.8 0 0 -3.5 -2 1 90 17 5 123456789012");
  EXPECT_XYZ(run.transforms[0].shift, -4, 0.5, 0, 0);
  EXPECT_XYZ(run.slicenormal, 0, -1, 0.5, 0);
  const char *samples = "1, 2, 3, 11, 12, 13, 21, 22, 23, 31 or 100";
  struct {
    std::string args;
    const char *option, *range;
  } cases[] = {{"--bias 1.01", "--bias", "0 to 1"},
               {"--bias nan", "--bias", "0 to 1"},
               {"--seed 1.5", "--seed", "from 0"},
               {"--seed 2147483648", "--seed", "from 0"},
               {"--branch-length 0.0099", "--branch-length", "0.01 or more"},
               {"--thickness 1", "--thickness", "0 or more"},
               {"--root-distribution 2.5", "--root-distribution", "any integer"},
               {"--source 18", "--source", "1 to 17"},
               {"--steps -1", "--steps", "from 0"},
               {"--csv", "--csv", "a path"},
               {"--frobnicate", "--frobnicate", "--help"},
               {"--sample 21.0", "--sample", samples},
               {"--transform 1,1,1 0,0,0 0,,0", "--transform", "three triples"},
               {"--slices 1", "--slices", "from 2"},
               {"--slices 4 --slice-normal nan,0,1", "--slice-normal", "three numbers"},
               {"--slice-dir /tmp", "--slice-dir", "--slices N"},
               {"--sample 21 --stl x.stl", "--sample", "--stl"},
               {"--info " + std::string(256, 'x'), "--info", "1 to 255"},
               {"--png a.png --size 800", "--size", "WIDTHxHEIGHT"},
               {"--png a.png --size 8193x600", "--size", "1 to 8192"},
               {"--png a.png --size 0x600", "--size", "1 to 8192"},
               {"--png a.png --size 800x600x1", "--size", "WIDTHxHEIGHT"},
               {"--size 800x600", "--size", "needs --png"},
               {"--fit", "--fit", "needs --png"},
               {"--walk quick", "--walk", "exact or fast"},
               {"--walk fast --search scan", "--walk fast", "--search index"}};
  for (auto &c : cases) {
    EXPECT_EQ(Batch(sim, c.args, &err, true), BATCH_USAGE) << c.args;
    EXPECT_NE(err.find(c.option), std::string::npos) << err;
    EXPECT_NE(err.find(c.range), std::string::npos) << err;
  }
}

// The CSV holds every cell exactly (%.17g), the ring's roots first; the
// plane sample at z = -20, turned a quarter about x and shifted along y,
// lies at y = -17; the step limit comes first.
TEST_F(BatchRun, CsvHoldsEveryCellExactlyTransformsApplyAndTheStepLimitComesFirst) {
  Scratch s;
  std::string err;
  ASSERT_EQ(Batch(sim, "--cells 150 --seed 4 --roots 3 --root-distribution 8 --associate --sample 31 "
                  "--transform 1,1,1 0,3,0 90,0,0 --no-progress --csv " + s / "c.csv", &err),
            BATCH_OK)
      << err;
  EXPECT_XYZ(V(sim.stlmin.y, sim.stlmax.y, sim.stlmin.x), -17, -17, -200, 1e-6);
  std::string text = ReadFile(s / "c.csv");
  ASSERT_EQ(text.substr(0, 34), "index,parent,x,y,z,weight\n0,-1,10,");
  const char *p = text.c_str() + 26;
  for (int i = 0, used = 0; i < sim.ncells; i++, p += used) {
    int index, parent;
    double v[4];
    ASSERT_EQ(sscanf(p, "%d,%d,%lf,%lf,%lf,%lf\n%n", &index, &parent, &v[0], &v[1], &v[2], &v[3], &used), 6);
    EXPECT_EQ(index, i);
    EXPECT_EQ(parent, sim.cells[i].parent);
    EXPECT_EQ(memcmp(v, &sim.cells[i].p, sizeof(XYZ)), 0) << i;
    EXPECT_EQ(memcmp(&v[3], &sim.cells[i].weight, sizeof(double)), 0) << i;
  }
  EXPECT_EQ(*p, '\0');
  ASSERT_EQ(Batch(sim, "--steps 7", &err), BATCH_OK);
  EXPECT_EQ(sim.ncells, 1);
  EXPECT_EQ(sim.growthstate.lifespan, 7);
}

// The camera the picture was drawn with.
XYZ picturevp, picturevu;
int SeeCamera(SIMULATION &sim, const char *path, int width, int height, FILE *err) {
  picturevp = sim.camera.vp;
  picturevu = sim.camera.vu;
  return 1;
}

// --camera-rotate DX,DY,DZ turns as the keys do, worked out by hand from
// home (eye at (60, 0, 0), up z, right +y): DX about the up vector as Right
// (the eye towards +y), DY about the right vector as Up (the eye down), DZ
// rolls the up vector as ']'. The models written in the same run keep the
// window's camera: the picture is drawn after them.
TEST_F(BatchRun, CameraRotateTurnsThePictureAloneAsTheKeysDo) {
  Scratch s;
  const double c = 60 * cos(M_PI / 6), h = 30;  // 60 cos 30, 60 sin 30
  struct {
    const char *angles;
    XYZ vp, vu;
  } cases[] = {{"30,0,0", {c, h, 0}, {0, 0, 1}}, {"0,30,0", {c, 0, -h}, {0.5, 0, c / 60}},
               {"0,0,30", {60, 0, 0}, {0, 0.5, c / 60}}};
  for (auto &t : cases) {
    SCOPED_TRACE(t.angles);
    std::string err, run = "--cells 20 --png " + s / "a.png" + " --pov " + s / "a.pov" + " --camera-rotate ";
    ASSERT_EQ(Batch(sim, run + t.angles, &err, false, NULL, SeeCamera), BATCH_OK) << err;
    EXPECT_XYZ(picturevp, t.vp.x, t.vp.y, t.vp.z, 1e-6);
    EXPECT_XYZ(picturevu, t.vu.x, t.vu.y, t.vu.z, 1e-6);
    EXPECT_NE(ReadFile(s / "a.pov").find("#declare VP = <60,0,0>;\n#declare VU = <0,0,1>;\n"), std::string::npos)
        << "the picture's camera leaked into --pov";
  }
}

TEST_F(BatchRun, FileErrorsEndTheRunWithTheirMessage) {
  Scratch s;
  std::string err, missing = s / "missing.txt";
  EXPECT_EQ(Batch(sim, "--seed-file " + missing + " --csv " + s / "c.csv", &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "dla3d-batch: --seed-file: cannot read \"" + missing +
                     "\": Failed to read seed file (No such file or directory)\n");
  std::string shortstl = WriteFile(s / "short.stl", "binary but short");
  EXPECT_EQ(Batch(sim, "--stl " + shortstl + " --csv " + s / "c.csv", &err), BATCH_FATAL);
  EXPECT_EQ(err, "dla3d-batch: --stl: cannot read \"" + shortstl + "\": Failed to read an expected STL header\n");
  EXPECT_EQ(ReadFile(s / "c.csv"), "(missing)");
  // Any output that cannot be created ends the run before growth, and nothing is written.
  std::string ok = s / "ok.geom";
  for (std::string bad : {"--pov " + s / "no/a.pov", "--summary " + s / "no/s.json", "--csv " + s / "no/c.csv",
                          "--png " + s / "no/a.png", "--gltf " + s.dir})
    EXPECT_EQ(Batch(sim, "--cells 30 --stats --geom " + ok + " " + bad, &err, false, NULL, SeeCamera), BATCH_FILEERROR)
        << bad;
  EXPECT_EQ(err, "dla3d-batch: --gltf: cannot create \"" + s.dir + "\": Is a directory\n");
  EXPECT_EQ(sim.ncells, 1);
  EXPECT_EQ(sim.stats.timestep, 0);
  EXPECT_EQ(ReadFile(ok), "(missing)");
  // A full disk: each file is reported, the run goes on and ends with the error.
  EXPECT_EQ(Batch(sim, "--cells 30 --csv /dev/full --vrml /dev/full --summary /dev/full --geom " + ok, &err),
            BATCH_FILEERROR);
  EXPECT_EQ(err, "dla3d-batch: --csv: cannot write \"/dev/full\": No space left on device\n"
                 "dla3d-batch: --vrml: cannot create \"/dev/full\": No space left on device\n"
                 "dla3d-batch: --summary: cannot create \"/dev/full\": No space left on device\n")
      << "a full disk not reported";
  EXPECT_NE(ReadFile(ok), "(missing)");
}

// The bar, the share, the rate and the time left, at the ends of their ranges.
TEST(BatchProgress, LineAtTheEndsOfItsRanges) {
  struct {
    double fraction, rate, left;
    int cells;
    const char *line;
  } rows[] = {
      {0, 0, -1, 1, "[                                        ]   0% 1 cells, 0 cells/s, -- left"},
      {0.5, 1234.4, 59.5, 500, "[####################                    ]  50% 500 cells, 1234 cells/s, 1:00 left"},
      {0.999, 10, 3725, 999, "[####################################### ]  99% 999 cells, 10 cells/s, 1:02:05 left"},
      {1.7, 10, 0, 1000, "[########################################] 100% 1000 cells, 10 cells/s, 0:00 left"},
  };
  for (const auto &r : rows) {
    char line[160];
    FormatProgress(line, sizeof(line), r.fraction, r.cells, r.rate, r.left);
    EXPECT_STREQ(line, r.line);
  }
}

}  // namespace
