// dla3d-batch: its options, and runs that must equal what the window does
// with the same settings.
#include <algorithm>
#include <vector>

#include "batch/batch.h"
#include "export/model.h"
#include "growth/growth.h"
#include "surface/samples.h"
#include "surface/slice.h"
#include "surface/stl.h"
#include "surface/transform.h"
#include "test_util.h"

namespace {

using BatchOptions = Fresh;
using BatchRun = Fresh;

BATCHRUN run;  // large: not on the stack

int Parse(std::vector<std::string> words, std::string *err) {
  words.insert(words.begin(), "dla3d-batch"); std::vector<char *> argv;
  for (std::string &w : words) argv.push_back(&w[0]);
  argv.push_back(NULL); int status = 0;
  *err = Capture([&](FILE *fp) { status = ParseBatchOptions((int)words.size(), argv.data(), &run, fp); });
  return status;
}

int Batch(const std::vector<std::string> &words, std::string *err) {
  EXPECT_EQ(Parse(words, err), BATCH_OK) << *err; int status = 0;
  *err = Capture([&](FILE *fp) { status = RunBatch(&run, fp); });
  return status;
}

TEST_F(BatchOptions, ValuesReachTheRunRecordAndRefusalsNameTheirRange) {
  std::string err;
  ASSERT_EQ(Parse({"--seed", "7", "--bias", "0.5", "--branch-length", "0.01", "--stickiness", "1", "--rotation", "-5",
                   "--thickness", "0.8", "0", "--roots", "0", "--root-range", "-3.5", "--root-distribution", "-2", "--associate",
                   "--intersect-range", "90", "--source", "17", "--cells", "5", "--steps", "123456789012", "--transform", "1,2,3",
                   "-4,5e-1,0", "90,0,-30", "--slices", "2", "--slice-normal", "0,-1,0.5"}, &err), BATCH_OK) << err;
  const GROWTHSTATE &g = run.growth;
  EXPECT_EQ(std::to_string(g.seed) + " " + std::to_string(g.bias) + " " + std::to_string(g.branchlength) + " " +
                std::to_string(g.stickiness) + " " + std::to_string(g.rotation) + " " + std::to_string(g.thickstart) + " " +
                std::to_string(g.thickend) + " " + std::to_string(g.nroots) + " " + std::to_string(g.rootrange) + " " +
                std::to_string(g.rootdistribution) + " " + std::to_string(g.associate) + " " + std::to_string(g.intersectrange) + " " +
                std::to_string(g.sourcetype) + " " + std::to_string(run.cells) + " " + std::to_string(run.steps),
            "7 0.500000 0.010000 1.000000 -5.000000 0.800000 0.000000 0 -3.500000 -2 1 90.000000 17 5 123456789012");
  EXPECT_XYZ(run.transforms[0].shift, -4, 0.5, 0, 0); EXPECT_XYZ(run.slicenormal, 0, -1, 0.5, 0);
  const char *samples = "1, 2, 3, 11, 12, 13, 21, 22, 23, 31 or 100";
  struct { std::vector<std::string> args; const char *option, *range; } cases[] = {
      {{"--bias", "1.01"}, "--bias", "0 to 1"}, {{"--bias", "nan"}, "--bias", "0 to 1"}, {{"--seed", "1.5"}, "--seed", "from 0"},
      {{"--seed", "2147483648"}, "--seed", "from 0"}, {{"--branch-length", "0.0099"}, "--branch-length", "0.01 or more"},
      {{"--thickness", "1"}, "--thickness", "0 or more"}, {{"--root-distribution", "2.5"}, "--root-distribution", "any integer"},
      {{"--source", "18"}, "--source", "1 to 17"}, {{"--steps", "-1"}, "--steps", "from 0"}, {{"--csv"}, "--csv", "a path"},
      {{"--frobnicate"}, "--frobnicate", "--help"}, {{"--sample", "21.0"}, "--sample", samples},
      {{"--transform", "1,1,1", "0,0,0", "0,,0"}, "--transform", "three triples"}, {{"--slices", "1"}, "--slices", "from 2"},
      {{"--slices", "4", "--slice-normal", "nan,0,1"}, "--slice-normal", "three numbers"},
      {{"--slice-dir", "/tmp"}, "--slice-dir", "--slices N"}, {{"--sample", "21", "--stl", "x.stl"}, "--sample", "--stl"},
      {{"--info", std::string(256, 'x')}, "--info", "1 to 255"}};
  for (auto &c : cases) {
    EXPECT_EQ(Parse(c.args, &err), BATCH_USAGE) << c.args[0]; EXPECT_NE(err.find(c.option), std::string::npos) << err;
    EXPECT_NE(err.find(c.range), std::string::npos) << err;
  }
}

TEST_F(BatchRun, CsvCellsSurfaceAndSlicesAsTheWindowMakesThem) {
  Scratch s; std::string err;
  ASSERT_EQ(Batch({"--cells", "150", "--seed", "4", "--bias", "0.7", "--rotation", "1.5", "--roots", "3", "--root-distribution", "8",
                   "--associate", "--sample", "22", "--transform", "2,1,0.5", "0,0,5", "90,0,0", "--transform", "1,1,1", "1,2,3",
                   "0,30,-45", "--csv", s / "c.csv", "--stl-out", s / "b.stl", "--slices", "5", "--slice-normal", "5e-6,0,0",
                   "--slice-dir", s.dir, "--no-progress"}, &err), BATCH_OK) << err;
  std::string text = ReadFile(s / "c.csv"), slices;
  ASSERT_EQ(text.substr(0, 34), "index,parent,x,y,z,weight\n0,-1,10,");  // the ring's roots first
  const char *p = text.c_str() + 26;
  for (int i = 0, used = 0; i < ncells; i++, p += used) {  // %.17g gives every double back exactly
    int index, parent; double x, y, z, w;
    ASSERT_EQ(sscanf(p, "%d,%d,%lf,%lf,%lf,%lf\n%n", &index, &parent, &x, &y, &z, &w, &used), 6);
    EXPECT_EQ(memcmp(&x, &cells[i].p.x, 8) | memcmp(&z, &cells[i].p.z, 8) | memcmp(&w, &cells[i].weight, 8) | (index != i) | (parent != cells[i].parent), 0);
  }
  EXPECT_EQ(*p, '\0'); uint64_t batch = AggregateHash();
  for (int i = 0; i < 5; i++) slices += ReadFile(s / ("slice_00" + std::to_string(i) + ".txt"));
  EXPECT_GT(std::count(slices.begin(), slices.end(), '\n'), 100);
  // The window: the settings typed, the ring from the menu, the sample and
  // Apply twice, the form's restart; the slice form's normal shorter than
  // 1e-5 gets z = 1 and is normalised.
  ResetProgram(); GROWTHSTATE &g = growthstate;
  g.seed = 4, g.bias = 0.7, g.rotation = 1.5, g.nroots = 3, g.rootdistribution = 8, g.associate = 1;
  MakeSampleSurface(SAMPLE_HEMISPHERE); TransformSTL(V(2, 1, 0.5), V(0, 0, 5), V(90, 0, 0)); UpdateSTL();
  TransformSTL(V(1, 1, 1), V(1, 2, 3), V(0, 30, -45)); UpdateSTL(); InitialiseGrowth(); ResetSeeds();
  while (ncells < 150) IterateSystem();
  EXPECT_EQ(AggregateHash(), batch); ASSERT_EQ(SaveModelFile((s / "d.stl").c_str(), MODEL_STL, MODEL_SWEEP), 1);
  EXPECT_EQ(ReadFile(s / "b.stl"), ReadFile(s / "d.stl")); Scratch d; testing::internal::CaptureStderr();
  ASSERT_EQ(DoSliceIn(d.dir.c_str(), 5, V(5e-6 / sqrt(1 + 25e-12), 0, 1 / sqrt(1 + 25e-12))), 1);
  testing::internal::GetCapturedStderr(); std::string direct;
  for (int i = 0; i < 5; i++) direct += ReadFile(d / ("slice_00" + std::to_string(i) + ".txt"));
  EXPECT_EQ(slices, direct); ASSERT_EQ(Batch({"--steps", "7"}, &err), BATCH_OK);  // the step limit comes first
  EXPECT_EQ(ncells * 100 + growthstate.lifespan, 107);
}

TEST_F(BatchRun, FileErrorsEndTheRunWithTheirMessage) {
  Scratch s; std::string err, missing = s / "missing.txt";
  EXPECT_EQ(Batch({"--seed-file", missing, "--csv", s / "c.csv"}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "File Error\nFailed to read seed file\n" + missing + "\n");
  EXPECT_EQ(Batch({"--stl", missing}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "File Error\nFailed to read STL file\n" + missing + "\n");
  EXPECT_EQ(Batch({"--stl", WriteFile(s / "short.stl", "binary but short"), "--csv", s / "c.csv"}, &err), BATCH_FATAL);
  EXPECT_EQ(err, "File Error\nFailed to read an expected STL header\n\n");
  EXPECT_EQ(ReadFile(s / "c.csv"), "(missing)");
  // A writer that cannot be created is reported; the others are written.
  EXPECT_EQ(Batch({"--cells", "30", "--pov", s / "no/a.pov", "--geom", s / "ok.geom", "--info", s / "no/i.txt"}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "dla3d-batch: --pov: cannot create \"" + s / "no/a.pov" + "\": No such file or directory\n"
                 "dla3d-batch: --info: cannot create \"" + s / "no/i.txt" + "\": No such file or directory\n");
  EXPECT_EQ(ReadFile(s / "ok.geom").rfind("# 3D DLA by Orvantide# From: 0 to 1", 0), 0u);
  // A CSV that cannot be created ends the run before growth.
  EXPECT_EQ(Batch({"--cells", "30", "--csv", s / "no/c.csv", "--stats", "--pov", s / "late.pov"}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "dla3d-batch: --csv: cannot create \"" + s / "no/c.csv" + "\": No such file or directory\n");
  EXPECT_EQ(ncells * 10 + stats.timestep, 10); EXPECT_EQ(ReadFile(s / "late.pov"), "(missing)");
}

}  // namespace
