// dla3d-batch: its options, and runs that must equal what the window does
// with the same settings.
#include <math.h>

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
  words.insert(words.begin(), "dla3d-batch");
  std::vector<char *> argv;
  for (std::string &w : words) argv.push_back(&w[0]);
  argv.push_back(NULL);
  int status = 0;
  *err = Capture([&](FILE *fp) { status = ParseBatchOptions((int)words.size(), argv.data(), &run, fp); });
  return status;
}

int Batch(const std::vector<std::string> &words, std::string *err) {
  EXPECT_EQ(Parse(words, err), BATCH_OK) << *err;
  int status = 0;
  *err = Capture([&](FILE *fp) { status = RunBatch(&run, fp); });
  return status;
}

TEST_F(BatchOptions, ValuesReachTheRunRecord) {
  std::string err;
  ASSERT_EQ(Parse({"--seed", "7", "--bias", "0.5", "--branch-length", "0.01", "--stickiness", "1", "--rotation", "-5",
                   "--thickness", "0.8", "0", "--roots", "0", "--root-range", "-3.5", "--root-distribution", "-2",
                   "--associate", "--intersect-range", "90", "--source", "17", "--cells", "5", "--steps", "123456789012",
                   "--csv", "o.csv", "--no-progress", "-d", "--sample", "23", "--transform", "1,2,3", "-4,5e-1,0",
                   "90,0,-30", "--slices", "2", "--slice-normal", "0,-1,0.5", "--stats", "--pov-sweep", "b"},
                  &err), BATCH_OK) << err;
  const GROWTHSTATE &g = run.growth;
  EXPECT_EQ(g.seed, 7);
  EXPECT_EQ(g.bias, 0.5);
  EXPECT_EQ(g.branchlength, 0.01);
  EXPECT_EQ(g.stickiness, 1);
  EXPECT_EQ(g.rotation, -5);
  EXPECT_EQ(g.thickstart, 0.8);
  EXPECT_EQ(g.thickend, 0);
  EXPECT_EQ(g.nroots, 0);
  EXPECT_EQ(g.rootrange, -3.5);
  EXPECT_EQ(g.rootdistribution, -2);
  EXPECT_EQ(g.associate, 1);
  EXPECT_EQ(g.intersectrange, 90);
  EXPECT_EQ(g.sourcetype, 17);
  EXPECT_EQ(run.cells, 5);
  EXPECT_EQ(run.steps, 123456789012LL);
  EXPECT_STREQ(run.csvfile, "o.csv");
  EXPECT_EQ(run.progress, 0);
  EXPECT_EQ(run.debug, 1);
  EXPECT_EQ(run.sample, 23);
  ASSERT_EQ(run.ntransforms, 1);
  EXPECT_EQ(run.transforms[0].shift.y, 0.5);
  EXPECT_EQ(run.transforms[0].rotate.z, -30);
  EXPECT_EQ(run.slicenormal.z, 0.5);
  EXPECT_EQ(run.stats, 1);
  EXPECT_STREQ(run.povsweepfile, "b");
  ASSERT_EQ(Parse({}, &err), BATCH_OK);
  EXPECT_EQ(run.cells, 10000);
  EXPECT_EQ(run.steps, -1);
  EXPECT_EQ(run.slicenormal.z, 1);
  std::string help = Capture([](FILE *fp) { WriteBatchUsage(fp, "dla3d-batch"); });
  for (const char *o : {"--seed-file PATH", "--transform SX,SY,SZ DX,DY,DZ RX,RY,RZ", "--slice-normal X,Y,Z", "--stats",
                        "--vrml-caps PATH", "--geom-points PATH", "--stl-out PATH", "--info PATH", " 21 Sphere,"})
    EXPECT_NE(help.find(o), std::string::npos) << o;
}

TEST_F(BatchOptions, RefusedValuesNameTheOptionAndTheRange) {
  const char *samples = "1, 2, 3, 11, 12, 13, 21, 22, 23, 31 or 100";
  struct { std::vector<std::string> args; const char *option, *range; } cases[] = {
      {{"--bias", "1.01"}, "--bias", "0 to 1"}, {{"--bias", "abc"}, "--bias", "0 to 1"}, {{"--bias", "nan"}, "--bias", "0 to 1"},
      {{"--rotation", "5.5"}, "--rotation", "-5 to 5"}, {{"--seed", "-1"}, "--seed", "from 0"},
      {{"--seed", "1.5"}, "--seed", "from 0"}, {{"--seed", "2147483648"}, "--seed", "from 0"},
      {{"--branch-length", "0.0099"}, "--branch-length", "0.01 or more"}, {{"--stickiness", "100.1"}, "--stickiness", "1 to 100"},
      {{"--thickness", "1", "-1"}, "--thickness", "0 or more"}, {{"--thickness", "1"}, "--thickness", "0 or more"},
      {{"--intersect-range", "91"}, "--intersect-range", "0 to 90"}, {{"--roots", "-1"}, "--roots", "from 0"},
      {{"--root-range", "inf"}, "--root-range", "any number"}, {{"--root-distribution", "2.5"}, "--root-distribution", "any integer"},
      {{"--source", "0"}, "--source", "1 to 17"}, {{"--source", "18"}, "--source", "1 to 17"}, {{"--cells", "0"}, "--cells", "from 1"},
      {{"--steps", "-1"}, "--steps", "from 0"}, {{"--csv"}, "--csv", "a path"}, {{"--frobnicate"}, "--frobnicate", "--help"},
      {{"--sample", "4"}, "--sample", samples}, {{"--sample", "21.0"}, "--sample", samples},
      {{"--transform", "1,1", "0,0,0", "0,0,0"}, "--transform", "three triples"},
      {{"--transform", "1,1,1", "0,0,0", "0,,0"}, "--transform", "three triples"},
      {{"--transform", "1,inf,1", "0,0,0", "0,0,0"}, "--transform", "three triples"},
      {{"--slices", "1"}, "--slices", "from 2"}, {{"--slices", "2.5"}, "--slices", "from 2"},
      {{"--slices", "4", "--slice-normal", "nan,0,1"}, "--slice-normal", "three numbers"},
      {{"--slice-normal", "0,0,1"}, "--slice-normal", "--slices N"}, {{"--slice-dir", "/tmp"}, "--slice-dir", "--slices N"},
      {{"--sample", "21", "--stl", "x.stl"}, "--sample", "--stl"}, {{"--stats", "1"}, "\"1\"", "--help"},
      {{"--pov-sweep", ""}, "--pov-sweep", "1 to 255"}, {{"--info", std::string(256, 'x')}, "--info", "1 to 255"}};
  for (auto &c : cases) {
    SCOPED_TRACE(c.args[0] + " " + (c.args.size() > 1 ? c.args[1] : ""));
    std::string err;
    EXPECT_EQ(Parse(c.args, &err), BATCH_USAGE);
    EXPECT_NE(err.find(c.option), std::string::npos) << err;
    EXPECT_NE(err.find(c.range), std::string::npos) << err;
  }
}

TEST_F(BatchRun, CsvAndCellsAsTheWindowGrowsThem) {
  Scratch s;
  std::string err;
  ASSERT_EQ(Batch({"--cells", "60", "--seed", "99", "--bias", "0.7", "--rotation", "1.5", "--roots", "3", "--root-distribution",
                 "8", "--associate", "--csv", s / "c.csv", "--no-progress"}, &err), BATCH_OK);
  EXPECT_EQ(err, "");
  ASSERT_EQ(ncells, 60);
  std::string text = ReadFile(s / "c.csv");
  ASSERT_EQ(text.substr(0, 34), "index,parent,x,y,z,weight\n0,-1,10,");  // the ring's roots first
  const char *p = text.c_str() + 26;
  for (int i = 0, used = 0; i < 60; i++, p += used) {  // %.17g gives every double back exactly
    int index, parent;
    double x, y, z, w;
    ASSERT_EQ(sscanf(p, "%d,%d,%lf,%lf,%lf,%lf\n%n", &index, &parent, &x, &y, &z, &w, &used), 6);
    EXPECT_EQ(index, i);
    EXPECT_EQ(parent, cells[i].parent);
    EXPECT_EQ(memcmp(&x, &cells[i].p.x, 8) | memcmp(&z, &cells[i].p.z, 8) | memcmp(&w, &cells[i].weight, 8), 0);
  }
  EXPECT_EQ(*p, '\0');
  uint64_t batch = AggregateHash();
  // The window: the settings typed into the form, the ring from the menu,
  // then the form's restart.
  ResetProgram();
  GROWTHSTATE &g = growthstate;
  g.seed = 99, g.bias = 0.7, g.rotation = 1.5, g.nroots = 3, g.rootdistribution = 8, g.associate = 1;
  InitialiseGrowth();
  ResetSeeds();
  while (ncells < 60) IterateSystem();
  EXPECT_EQ(AggregateHash(), batch);
  // The step limit comes first.
  ASSERT_EQ(Batch({"--steps", "7"}, &err), BATCH_OK);
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(growthstate.lifespan, 7);
}

TEST_F(BatchRun, FileErrorsEndTheRunWithTheirMessage) {
  Scratch s;
  std::string err, missing = s / "missing.txt";
  EXPECT_EQ(Batch({"--seed-file", missing, "--csv", s / "c.csv"}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "File Error\nFailed to read seed file\n" + missing + "\n");
  EXPECT_EQ(Batch({"--seed-file", WriteFile(s / "x.txt", "no numbers\n"), "--csv", s / "c.csv"}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "File Error\nFailed to read any root positions\nResetting\n");
  EXPECT_EQ(Batch({"--stl", missing}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "File Error\nFailed to read STL file\n" + missing + "\n");
  EXPECT_EQ(Batch({"--stl", WriteFile(s / "short.stl", "binary but short"), "--csv", s / "c.csv"}, &err), BATCH_FATAL);
  EXPECT_EQ(err, "File Error\nFailed to read an expected STL header\n\n");
  EXPECT_EQ(ReadFile(s / "c.csv"), "(missing " + s / "c.csv" + ")");
  // A writer that cannot be created is reported; the others are written.
  EXPECT_EQ(Batch({"--cells", "30", "--pov", s / "no/a.pov", "--geom", s / "ok.geom", "--info", s / "no/i.txt"}, &err),
            BATCH_FILEERROR);
  EXPECT_EQ(err, "dla3d-batch: --pov: cannot create \"" + s / "no/a.pov" + "\": No such file or directory\n"
                 "dla3d-batch: --info: cannot create \"" + s / "no/i.txt" + "\": No such file or directory\n");
  EXPECT_NE(ReadFile(s / "ok.geom").find("# 3D DLA by Orvantide# From: 0 to 1"), std::string::npos);
  // A CSV that cannot be created ends the run before growth.
  EXPECT_EQ(Batch({"--cells", "30", "--csv", s / "no/c.csv", "--stats", "--pov", s / "late.pov"}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "dla3d-batch: --csv: cannot create \"" + s / "no/c.csv" + "\": No such file or directory\n");
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(stats.timestep, 0);
  EXPECT_EQ(ReadFile(s / "late.pov").substr(0, 8), "(missing");
}

TEST_F(BatchRun, SurfaceAndSlicesAsTheMenuAndTheForms) {
  Scratch s;
  std::string err;
  ASSERT_EQ(Batch({"--cells", "200", "--seed", "4", "--sample", "22", "--transform", "2,1,0.5", "0,0,5", "90,0,0", "--transform",
                 "1,1,1", "1,2,3", "0,30,-45", "--stl-out", s / "batch.stl", "--slices", "5", "--slice-normal", "5e-6,0,0",
                 "--slice-dir", s.dir}, &err), BATCH_OK) << err;
  std::string slices;
  for (int i = 0; i < 5; i++) slices += ReadFile(s / ("slice_00" + std::to_string(i) + ".txt"));
  EXPECT_EQ(ReadFile(s / "slice_005.txt").substr(0, 8), "(missing");
  // The window: the sample menu, Apply twice, the restart, growth; the slice
  // form's normal shorter than 1e-5 gets z = 1 and is normalised.
  ResetProgram();
  growthstate.seed = 4;
  MakeSampleSurface(SAMPLE_HEMISPHERE);
  TransformSTL(V(2, 1, 0.5), V(0, 0, 5), V(90, 0, 0));
  UpdateSTL();
  TransformSTL(V(1, 1, 1), V(1, 2, 3), V(0, 30, -45));
  UpdateSTL();
  InitialiseGrowth();
  ResetSeeds();
  while (ncells < 200) IterateSystem();
  ASSERT_EQ(SaveModelFile((s / "direct.stl").c_str(), MODEL_STL, MODEL_SWEEP), 1);
  EXPECT_EQ(ReadFile(s / "batch.stl"), ReadFile(s / "direct.stl"));
  Scratch d;
  testing::internal::CaptureStderr();
  ASSERT_EQ(DoSliceIn(d.dir.c_str(), 5, V(5e-6 / sqrt(1 + 25e-12), 0, 1 / sqrt(1 + 25e-12))), 1);
  testing::internal::GetCapturedStderr();
  std::string direct;
  for (int i = 0; i < 5; i++) direct += ReadFile(d / ("slice_00" + std::to_string(i) + ".txt"));
  EXPECT_EQ(slices, direct);
  EXPECT_GT(std::count(slices.begin(), slices.end(), '\n'), 150);
  // The plane turned 90 degrees about x is the sheet y = -20, then shifted by 3.
  ASSERT_EQ(Batch({"--cells", "1", "--sample", "31", "--transform", "1,1,1", "0,3,0", "90,0,0", "--stl-out", s / "p.stl"}, &err), BATCH_OK);
  std::string text = ReadFile(s / "p.stl");
  int vertices = 0;
  for (size_t at = text.find("vertex"); at != std::string::npos; at = text.find("vertex", at + 6), vertices++) {
    double x, y, z;
    ASSERT_EQ(sscanf(text.c_str() + at, "vertex %lf %lf %lf", &x, &y, &z), 3);
    ASSERT_NEAR(y, -17, 1e-4);
  }
  EXPECT_EQ(vertices, 3 * 800);
}

}  // namespace
