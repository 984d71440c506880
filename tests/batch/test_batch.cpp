#include <gtest/gtest.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "app/records.h"
#include "batch/batch.h"
#include "growth/growth.h"
#include "surface/stl.h"

namespace {

struct Args {
  std::vector<std::string> words;
  std::vector<char *> argv;
  explicit Args(std::vector<std::string> w) : words(w) {
    words.insert(words.begin(), "dla3d-batch");
    for (std::string &s : words) argv.push_back(&s[0]);
    argv.push_back(NULL);
  }
  int argc() { return (int)words.size(); }
};

int Parse(std::vector<std::string> w, BATCHRUN *run, std::string *err) {
  Args a(w);
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  int status = ParseBatchOptions(a.argc(), a.argv.data(), run, fp);
  fclose(fp);
  *err = std::string(buf, len);
  free(buf);
  return status;
}

std::string Tmp(const char *name) {
  return std::string("/tmp/dla_batch_test_") + std::to_string(getpid()) + "_" + name;
}

void FreshProgram(void) {
  SetOptionDefaults();
  InitialiseGrowth();
  SetGrowthDefaults();
  nstltri = 0;
  UpdateSTL();
  InitialiseGrowth();
  ResetSeeds();
}

TEST(BatchOptions, ValuesReachTheRunRecord) {
  static BATCHRUN run;
  std::string err;
  ASSERT_EQ(Parse({"--seed", "7", "--bias", "0.5", "--branch-length", "0.01", "--stickiness", "1", "--rotation",
                   "-5", "--thickness", "0.8", "0", "--roots", "0", "--root-range", "-3.5", "--root-distribution",
                   "-2", "--associate", "--intersect-range", "90", "--source", "17", "--cells", "5", "--steps",
                   "123456789012", "--csv", "o.csv", "--no-progress", "-d"},
                  &run, &err),
            BATCH_OK)
      << err;
  EXPECT_EQ(err, "");
  EXPECT_EQ(run.growth.seed, 7);
  EXPECT_EQ(run.growth.bias, 0.5);
  EXPECT_EQ(run.growth.branchlength, 0.01);
  EXPECT_EQ(run.growth.stickiness, 1);
  EXPECT_EQ(run.growth.rotation, -5);
  EXPECT_EQ(run.growth.thickstart, 0.8);
  EXPECT_EQ(run.growth.thickend, 0);
  EXPECT_EQ(run.growth.nroots, 0);
  EXPECT_EQ(run.growth.rootrange, -3.5);
  EXPECT_EQ(run.growth.rootdistribution, -2);
  EXPECT_EQ(run.growth.associate, 1);
  EXPECT_EQ(run.growth.intersectrange, 90);
  EXPECT_EQ(run.growth.sourcetype, 17);
  EXPECT_EQ(run.cells, 5);
  EXPECT_EQ(run.steps, 123456789012LL);
  EXPECT_STREQ(run.csvfile, "o.csv");
  EXPECT_EQ(run.progress, 0);
  EXPECT_EQ(run.debug, 1);

  ASSERT_EQ(Parse({}, &run, &err), BATCH_OK);
  EXPECT_EQ(run.cells, 10000);
  EXPECT_EQ(run.steps, -1);
  EXPECT_EQ(run.progress, -1);
  ASSERT_EQ(Parse({"-h"}, &run, &err), BATCH_OK);
  EXPECT_EQ(run.help, 1);
}

TEST(BatchOptions, RefusedValuesNameTheOptionAndRange) {
  struct Case {
    std::vector<std::string> args;
    const char *option;
    const char *range;
  } cases[] = {
      {{"--bias", "1.01"}, "--bias", "0 to 1"},
      {{"--bias", "-0.1"}, "--bias", "0 to 1"},
      {{"--bias", "abc"}, "--bias", "0 to 1"},
      {{"--bias", ""}, "--bias", "0 to 1"},
      {{"--bias", "nan"}, "--bias", "0 to 1"},
      {{"--rotation", "5.5"}, "--rotation", "-5 to 5"},
      {{"--seed", "-1"}, "--seed", "from 0"},
      {{"--seed", "1.5"}, "--seed", "from 0"},
      {{"--seed", "2147483648"}, "--seed", "from 0"},
      {{"--branch-length", "0.0099"}, "--branch-length", "0.01 or more"},
      {{"--stickiness", "0.5"}, "--stickiness", "1 to 100"},
      {{"--stickiness", "100.1"}, "--stickiness", "1 to 100"},
      {{"--thickness", "1", "-1"}, "--thickness", "0 or more"},
      {{"--thickness", "1"}, "--thickness", "0 or more"},
      {{"--intersect-range", "91"}, "--intersect-range", "0 to 90"},
      {{"--roots", "-1"}, "--roots", "from 0"},
      {{"--root-range", "inf"}, "--root-range", "any number"},
      {{"--root-distribution", "2.5"}, "--root-distribution", "any integer"},
      {{"--source", "0"}, "--source", "1 to 17"},
      {{"--source", "18"}, "--source", "1 to 17"},
      {{"--cells", "0"}, "--cells", "from 1"},
      {{"--steps", "-1"}, "--steps", "from 0"},
      {{"--csv"}, "--csv", "a path"},
      {{"--frobnicate"}, "--frobnicate", "--help"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.args[0] + " " + (c.args.size() > 1 ? c.args[1] : ""));
    static BATCHRUN run;
    std::string err;
    EXPECT_EQ(Parse(c.args, &run, &err), BATCH_USAGE);
    EXPECT_NE(err.find(c.option), std::string::npos) << err;
    EXPECT_NE(err.find(c.range), std::string::npos) << err;
  }
}

std::string ReadAll(const std::string &path) {
  std::string s;
  FILE *fp = fopen(path.c_str(), "rb");
  if (!fp) return s;
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof(buf), fp)) > 0) s.append(buf, n);
  fclose(fp);
  return s;
}

int RunArgs(std::vector<std::string> w, std::string *err) {
  static BATCHRUN run;
  std::string perr;
  EXPECT_EQ(Parse(w, &run, &perr), BATCH_OK) << perr;
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  int status = RunBatch(&run, fp);
  fclose(fp);
  *err = std::string(buf, len);
  free(buf);
  return status;
}

TEST(BatchRun, CsvHoldsEveryCellExactly) {
  FreshProgram();
  std::string csv = Tmp("cells.csv");
  std::string err;
  ASSERT_EQ(RunArgs({"--cells", "30", "--roots", "3", "--root-distribution", "8", "--csv", csv, "--no-progress"}, &err),
            BATCH_OK);
  EXPECT_EQ(err, "");
  ASSERT_EQ(ncells, 30);
  std::string text = ReadAll(csv);
  ASSERT_EQ(text.compare(0, 26, "index,parent,x,y,z,weight\n"), 0);
  // Parse every line back: %.17g round-trips doubles exactly.
  const char *s = text.c_str() + 26;
  int lines = 0;
  for (int i = 0; i < 30; i++) {
    int index, parent, used = 0;
    double x, y, z, w;
    ASSERT_EQ(sscanf(s, "%d,%d,%lf,%lf,%lf,%lf\n%n", &index, &parent, &x, &y, &z, &w, &used), 6);
    EXPECT_EQ(index, i);
    EXPECT_EQ(parent, cells[i].parent);
    EXPECT_EQ(x, cells[i].p.x);
    EXPECT_EQ(y, cells[i].p.y);
    EXPECT_EQ(z, cells[i].p.z);
    EXPECT_EQ(w, cells[i].weight);
    s += used;
    lines++;
  }
  EXPECT_EQ(*s, '\0');
  // The ring roots come first, parent -1.
  EXPECT_EQ(text.substr(26, 8), "0,-1,10,");
  EXPECT_EQ(cells[2].parent, -1);
  EXPECT_EQ(cells[3].parent >= 0, true);
  remove(csv.c_str());
}

TEST(BatchRun, SameCellsAsTheWindowsSequence) {
  FreshProgram();
  std::string err;
  ASSERT_EQ(RunArgs({"--cells", "60", "--seed", "99", "--bias", "0.7", "--rotation", "1.5", "--roots", "2",
                 "--root-distribution", "2", "--associate"},
                &err),
            BATCH_OK);
  std::vector<CELL> batch(cells.begin(), cells.begin() + ncells);

  FreshProgram();  // the settings typed into the form, then its restart
  growthstate.seed = 99;
  growthstate.bias = 0.7;
  growthstate.rotation = 1.5;
  growthstate.nroots = 2;
  growthstate.rootdistribution = 2;
  growthstate.associate = 1;
  InitialiseGrowth();
  ResetSeeds();
  while (ncells < 60) IterateSystem();
  ASSERT_EQ((int)batch.size(), 60);
  for (int i = 0; i < 60; i++) {
    EXPECT_EQ(batch[i].p.x, cells[i].p.x) << i;
    EXPECT_EQ(batch[i].parent, cells[i].parent) << i;
  }
}

TEST(BatchRun, StepLimitComesFirst) {
  FreshProgram();
  std::string err;
  ASSERT_EQ(RunArgs({"--steps", "0", "--cells", "100"}, &err), BATCH_OK);
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(growthstate.lifespan, 0);
  ASSERT_EQ(RunArgs({"--steps", "7"}, &err), BATCH_OK);
  EXPECT_EQ(growthstate.lifespan, 7);  // nothing reaches the root in 7 steps
}

TEST(BatchRun, FileErrorsEndTheRunWithTheirMessage) {
  FreshProgram();
  std::string csv = Tmp("never.csv");
  std::string missing = Tmp("missing.txt");
  std::string err;
  EXPECT_EQ(RunArgs({"--seed-file", missing, "--csv", csv}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "File Error\nFailed to read seed file\n" + missing + "\n");
  EXPECT_EQ(access(csv.c_str(), F_OK), -1);

  std::string empty = Tmp("empty.txt");
  FILE *fp = fopen(empty.c_str(), "w");
  fputs("no numbers\n", fp);
  fclose(fp);
  EXPECT_EQ(RunArgs({"--seed-file", empty, "--csv", csv}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "File Error\nFailed to read any root positions\nResetting\n");

  EXPECT_EQ(RunArgs({"--stl", missing, "--csv", csv}, &err), BATCH_FILEERROR);
  EXPECT_EQ(err, "File Error\nFailed to read STL file\n" + missing + "\n");

  std::string shortstl = Tmp("short.stl");
  fp = fopen(shortstl.c_str(), "w");
  fputs("binary but short", fp);
  fclose(fp);
  EXPECT_EQ(RunArgs({"--stl", shortstl, "--csv", csv}, &err), BATCH_FATAL);
  EXPECT_EQ(err, "File Error\nFailed to read an expected STL header\n\n");
  EXPECT_EQ(access(csv.c_str(), F_OK), -1);
  remove(empty.c_str());
  remove(shortstl.c_str());
  nstltri = 0;
  UpdateSTL();
}

TEST(BatchRun, SeedFileRootsAreGrownOn) {
  FreshProgram();
  std::string seeds = Tmp("seeds.txt");
  FILE *fp = fopen(seeds.c_str(), "w");
  fputs("0 0 0\n5 0 0\n", fp);
  fclose(fp);
  std::string err;
  ASSERT_EQ(RunArgs({"--seed-file", seeds, "--cells", "12"}, &err), BATCH_OK);
  EXPECT_EQ(growthstate.nroots, 2);
  EXPECT_EQ(ncells, 12);
  EXPECT_EQ(cells[1].p.x, 5);
  remove(seeds.c_str());
}

}  // namespace
