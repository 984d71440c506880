// dla3d-batch after growth: sample surfaces and transforms, slices,
// statistics and the model writers, each compared with the same sequence of
// direct calls the window would make.
#include <gtest/gtest.h>
#include <dirent.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/records.h"
#include "batch/batch.h"
#include "export/model.h"
#include "export/report.h"
#include "export/statistics.h"
#include "growth/growth.h"
#include "surface/samples.h"
#include "surface/slice.h"
#include "surface/stl.h"
#include "surface/transform.h"

namespace {

// Closes a memory stream and returns what was written to it.
std::string Capture(FILE *fp, char **buf, size_t *len) {
  fclose(fp);
  std::string s(*buf, *len);
  free(*buf);
  return s;
}

int ParseWords(std::vector<std::string> words, BATCHRUN *run, std::string *err) {
  words.insert(words.begin(), "dla3d-batch");
  std::vector<char *> argv;
  for (std::string &s : words) argv.push_back(&s[0]);
  argv.push_back(NULL);
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  int status = ParseBatchOptions((int)words.size(), argv.data(), run, fp);
  *err = Capture(fp, &buf, &len);
  return status;
}

int Batch(std::vector<std::string> words, std::string *err) {
  static BATCHRUN run;
  std::string perr;
  EXPECT_EQ(ParseWords(words, &run, &perr), BATCH_OK) << perr;
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  int status = RunBatch(&run, fp);
  *err = Capture(fp, &buf, &len);
  return status;
}

// A fresh process: no statistics yet, default records, no surface.
void FreshProcess(void) {
  stats = STATS();
  SetOptionDefaults();
  InitialiseGrowth();
  SetGrowthDefaults();
  nstltri = 0;
  UpdateSTL();
  InitialiseGrowth();
  ResetSeeds();
}

std::string ReadFile(const std::string &path) {
  std::string s;
  FILE *fp = fopen(path.c_str(), "rb");
  if (!fp) return "<missing " + path + ">";
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof(buf), fp)) > 0) s.append(buf, n);
  fclose(fp);
  return s;
}

// A private scratch directory, removed with its files.
struct Scratch {
  std::string dir;
  Scratch() {
    char tmpl[] = "/tmp/dla_batchx_XXXXXX";
    dir = mkdtemp(tmpl);
  }
  ~Scratch() { std::string cmd = "rm -rf '" + dir + "'"; (void)!system(cmd.c_str()); }
  std::string operator/(const char *name) const { return dir + "/" + name; }
};

std::vector<std::string> Names(const std::string &dir) {
  std::vector<std::string> names;
  DIR *d = opendir(dir.c_str());
  if (!d) return names;
  while (struct dirent *e = readdir(d))
    if (e->d_name[0] != '.') names.push_back(e->d_name);
  closedir(d);
  std::sort(names.begin(), names.end());
  return names;
}

TEST(BatchExportOptions, ValuesReachTheRunRecord) {
  static BATCHRUN run;
  std::string err;
  ASSERT_EQ(ParseWords({"--sample", "23", "--transform", "1,2,3", "-4,5e-1,0", "90,0,-30", "--transform", "1,1,1",
                        "0,0,0", "0,0,0", "--slices", "2", "--slice-normal", "0,-1,0.5", "--slice-dir", "d",
                        "--stats", "--pov", "a", "--pov-sweep", "b", "--geom", "c", "--vrml", "d", "--vrml-caps",
                        "e", "--dxf-points", "f", "--geom-points", "g", "--stl-out", "h", "--info", "i"},
                       &run, &err),
            BATCH_OK)
      << err;
  EXPECT_EQ(err, "");
  EXPECT_EQ(run.sample, 23);
  ASSERT_EQ(run.ntransforms, 2);
  EXPECT_EQ(run.transforms[0].scale.y, 2);
  EXPECT_EQ(run.transforms[0].shift.x, -4);
  EXPECT_EQ(run.transforms[0].shift.y, 0.5);
  EXPECT_EQ(run.transforms[0].rotate.x, 90);
  EXPECT_EQ(run.transforms[0].rotate.z, -30);
  EXPECT_EQ(run.transforms[1].scale.z, 1);
  EXPECT_EQ(run.nslices, 2);
  EXPECT_EQ(run.slicenormal.y, -1);
  EXPECT_EQ(run.slicenormal.z, 0.5);
  EXPECT_STREQ(run.slicedir, "d");
  EXPECT_EQ(run.stats, 1);
  EXPECT_STREQ(run.povfile, "a");
  EXPECT_STREQ(run.povsweepfile, "b");
  EXPECT_STREQ(run.geomfile, "c");
  EXPECT_STREQ(run.vrmlfile, "d");
  EXPECT_STREQ(run.vrmlcapsfile, "e");
  EXPECT_STREQ(run.dxfpointsfile, "f");
  EXPECT_STREQ(run.geompointsfile, "g");
  EXPECT_STREQ(run.stloutfile, "h");
  EXPECT_STREQ(run.infofile, "i");

  // Defaults: no slicing, the form's normal (0,0,1), nothing written.
  ASSERT_EQ(ParseWords({}, &run, &err), BATCH_OK);
  EXPECT_EQ(run.nslices, 0);
  EXPECT_EQ(run.slicenormal.x, 0);
  EXPECT_EQ(run.slicenormal.y, 0);
  EXPECT_EQ(run.slicenormal.z, 1);
  EXPECT_EQ(run.ntransforms, 0);
  EXPECT_EQ(run.stats, 0);
  EXPECT_STREQ(run.infofile, "");

  // Every sample code of the menu is taken, 100 ("None") too.
  for (int code : {1, 2, 3, 11, 12, 13, 21, 22, 23, 31, 100}) {
    ASSERT_EQ(ParseWords({"--sample", std::to_string(code)}, &run, &err), BATCH_OK) << code;
    EXPECT_EQ(run.sample, code);
  }
}

TEST(BatchExportOptions, RefusedValuesNameTheOptionAndRange) {
  const char *samples = "1, 2, 3, 11, 12, 13, 21, 22, 23, 31 or 100";
  struct Case {
    std::vector<std::string> args;
    const char *option;
    const char *range;
  } cases[] = {
      {{"--sample", "0"}, "--sample", samples},
      {{"--sample", "4"}, "--sample", samples},
      {{"--sample", "32"}, "--sample", samples},
      {{"--sample", "99"}, "--sample", samples},
      {{"--sample", "101"}, "--sample", samples},
      {{"--sample", "21.0"}, "--sample", samples},
      {{"--sample"}, "--sample", samples},
      {{"--transform", "1,1,1", "0,0,0"}, "--transform", "three triples"},
      {{"--transform", "1,1", "0,0,0", "0,0,0"}, "--transform", "three triples"},
      {{"--transform", "1,1,1", "0,0,0,0", "0,0,0"}, "--transform", "three triples"},
      {{"--transform", "1,1,1", "0,0,0", "0,,0"}, "--transform", "three triples"},
      {{"--transform", "1,1,1", "0,0,0", "0,0,"}, "--transform", "three triples"},
      {{"--transform", "1,1,1", "0,0,0", "a,b,c"}, "--transform", "three triples"},
      {{"--transform", "1,inf,1", "0,0,0", "0,0,0"}, "--transform", "three triples"},
      {{"--slices", "1", "--csv", "x"}, "--slices", "from 2"},
      {{"--slices", "0"}, "--slices", "from 2"},
      {{"--slices", "-3"}, "--slices", "from 2"},
      {{"--slices", "2.5"}, "--slices", "from 2"},
      {{"--slices", "2147483648"}, "--slices", "from 2"},
      {{"--slices", "4", "--slice-normal", "0,1"}, "--slice-normal", "three numbers"},
      {{"--slices", "4", "--slice-normal", "0 0 1"}, "--slice-normal", "three numbers"},
      {{"--slices", "4", "--slice-normal", "nan,0,1"}, "--slice-normal", "three numbers"},
      {{"--slices", "4", "--slice-normal"}, "--slice-normal", "three numbers"},
      {{"--slice-normal", "0,0,1"}, "--slice-normal", "--slices N"},
      {{"--slice-dir", "/tmp"}, "--slice-dir", "--slices N"},
      {{"--slices", "4", "--slice-dir"}, "--slice-dir", "a path"},
      {{"--sample", "21", "--stl", "x.stl"}, "--sample", "--stl"},
      {{"--stats", "1"}, "\"1\"", "--help"},
      {{"--pov"}, "--pov", "a path"},
      {{"--pov-sweep", ""}, "--pov-sweep", "1 to 255"},
      {{"--geom"}, "--geom", "a path"},
      {{"--vrml"}, "--vrml", "a path"},
      {{"--vrml-caps"}, "--vrml-caps", "a path"},
      {{"--dxf-points"}, "--dxf-points", "a path"},
      {{"--geom-points"}, "--geom-points", "a path"},
      {{"--stl-out"}, "--stl-out", "a path"},
      {{"--info", std::string(256, 'x')}, "--info", "1 to 255"},
  };
  for (const Case &c : cases) {
    std::string all;
    for (const std::string &w : c.args) all += w + " ";
    SCOPED_TRACE(all);
    static BATCHRUN run;
    std::string err;
    EXPECT_EQ(ParseWords(c.args, &run, &err), BATCH_USAGE);
    EXPECT_NE(err.find(c.option), std::string::npos) << err;
    EXPECT_NE(err.find(c.range), std::string::npos) << err;
  }
}

TEST(BatchExportOptions, HelpNamesEveryOptionWithItsRange) {
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  WriteBatchUsage(fp, "dla3d-batch");
  std::string help = Capture(fp, &buf, &len);
  for (const char *line :
       {"--sample CODE", "allowed: 1, 2, 3, 11, 12, 13, 21, 22, 23, 31 or 100", "--transform SX,SY,SZ DX,DY,DZ RX,RY,RZ",
        "--slices N", "allowed: an integer from 2 to 2147483647", "--slice-normal X,Y,Z", "--slice-dir DIR",
        "--stats", "--pov PATH", "--pov-sweep PATH", "--geom PATH", "--vrml PATH", "--vrml-caps PATH",
        "--dxf-points PATH", "--geom-points PATH", "--stl-out PATH", "--info PATH",
        "the CSV, the slice files, the statistics, then the writers", " 21 Sphere,", " 100 None,"})
    EXPECT_NE(help.find(line), std::string::npos) << line;
}

// The vertices of an ASCII STL text, in file order.
std::vector<XYZ> StlVertices(const std::string &text) {
  std::vector<XYZ> v;
  for (size_t at = text.find("vertex"); at != std::string::npos; at = text.find("vertex", at + 6)) {
    XYZ p;
    EXPECT_EQ(sscanf(text.c_str() + at, "vertex %lf %lf %lf", &p.x, &p.y, &p.z), 3);
    v.push_back(p);
  }
  return v;
}

TEST(BatchSurface, SampleAndTransformsAsTheMenuAndTheForm) {
  Scratch s;
  std::string err;
  FreshProcess();
  ASSERT_EQ(Batch({"--cells", "1", "--sample", "22", "--transform", "2,1,0.5", "0,0,5", "90,0,0", "--transform",
                   "1,1,1", "1,2,3", "0,30,-45", "--stl-out", s / "batch.stl"},
                  &err),
            BATCH_OK)
      << err;

  FreshProcess();
  MakeSampleSurface(SAMPLE_HEMISPHERE);
  XYZ s1 = {2, 1, 0.5}, d1 = {0, 0, 5}, r1 = {90, 0, 0};
  XYZ s2 = {1, 1, 1}, d2 = {1, 2, 3}, r2 = {0, 30, -45};
  TransformSTL(s1, d1, r1);
  UpdateSTL();
  TransformSTL(s2, d2, r2);
  UpdateSTL();
  ASSERT_EQ(SaveModelFile((s / "direct.stl").c_str(), MODEL_STL, MODEL_SWEEP), 1);
  EXPECT_EQ(ReadFile(s / "batch.stl"), ReadFile(s / "direct.stl"));
  EXPECT_EQ(StlVertices(ReadFile(s / "batch.stl")).size(), 3u * 2520);

  // Worked out by hand: the plane z = -20 turned 90 degrees about x is the
  // sheet y = -20 (x, y, -20 goes to x, -20, -y), then shifted by 3 in y.
  ASSERT_EQ(Batch({"--cells", "1", "--sample", "31", "--transform", "1,1,1", "0,3,0", "90,0,0", "--stl-out",
                   s / "plane.stl"},
                  &err),
            BATCH_OK);
  std::vector<XYZ> v = StlVertices(ReadFile(s / "plane.stl"));
  ASSERT_EQ(v.size(), 3u * 800);
  for (const XYZ &p : v) {
    ASSERT_NEAR(p.y, -17, 1e-4);
    ASSERT_LE(fabs(p.x), 200 + 1e-9);
    ASSERT_LE(fabs(p.z), 200 + 1e-3);
  }
  // Sample 100 clears the surface: the STL holds no facet.
  ASSERT_EQ(Batch({"--cells", "1", "--sample", "100", "--stl-out", s / "none.stl"}, &err), BATCH_OK);
  EXPECT_EQ(StlVertices(ReadFile(s / "none.stl")).size(), 0u);
  EXPECT_STREQ(growthstate.stlname, "None");
}

TEST(BatchSlices, ExactlyNFilesAlongTheFormsNormal) {
  struct Case {
    const char *given;  // --slice-normal, or NULL for the default
    XYZ cut;            // the unit normal worked out by hand
  } cases[] = {
      {NULL, {0, 0, 1}},
      {"0,0,0", {0, 0, 1}},
      {"3,0,4", {0.6, 0, 0.8}},
      {"0,-2,0", {0, -1, 0}},
      // Shorter than 1e-5: z becomes 1 and x stays, then it is normalised.
      {"5e-6,0,0", {5e-6 / sqrt(1 + 25e-12), 0, 1 / sqrt(1 + 25e-12)}},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.given ? c.given : "default");
    Scratch s;
    std::string batchdir = s / "batch", directdir = s / "direct";
    mkdir(batchdir.c_str(), 0755);
    mkdir(directdir.c_str(), 0755);
    std::vector<std::string> args = {"--cells", "200", "--seed", "4", "--slices", "5", "--slice-dir", batchdir};
    if (c.given) {
      args.push_back("--slice-normal");
      args.push_back(c.given);
    }
    FreshProcess();
    std::string err;
    ASSERT_EQ(Batch(args, &err), BATCH_OK) << err;
    EXPECT_EQ(Names(batchdir),
              (std::vector<std::string>{"slice_000.txt", "slice_001.txt", "slice_002.txt", "slice_003.txt",
                                        "slice_004.txt"}));
    // The same aggregate cut directly along the hand-made normal.
    ASSERT_EQ(DoSliceIn(directdir.c_str(), 5, c.cut), 1);
    for (const std::string &name : Names(batchdir))
      EXPECT_EQ(ReadFile(batchdir + "/" + name), ReadFile(directdir + "/" + name)) << name;

    // Every written point lies in its slab (within the %g rounding).
    double r = growthstate.radius;
    for (int i = 0; i < 5; i++) {
      char name[32];
      snprintf(name, sizeof(name), "/slice_%03d.txt", i);
      std::string text = ReadFile(batchdir + name);
      double hi = r - 2 * i * r / 5, lo = r - (2 * i + 2) * r / 5;
      const char *p = text.c_str();
      double a[6];
      int used;
      while (sscanf(p, "%lf %lf %lf %lf %lf %lf\n%n", &a[0], &a[1], &a[2], &a[3], &a[4], &a[5], &used) == 6) {
        for (int k = 0; k < 6; k += 3) {
          double d = a[k] * c.cut.x + a[k + 1] * c.cut.y + a[k + 2] * c.cut.z;
          EXPECT_LE(d, hi + 1e-3);
          EXPECT_GE(d, lo - 1e-3);
        }
        p += used;
      }
      EXPECT_EQ(*p, '\0');
    }
  }
}

TEST(BatchSlices, MissingSliceDirectoryEndsTheRun) {
  Scratch s;
  FreshProcess();
  std::string err;
  EXPECT_EQ(Batch({"--cells", "20", "--slices", "3", "--slice-dir", s / "none", "--info", s / "info.txt"}, &err),
            BATCH_FATAL);
  EXPECT_EQ(Names(s.dir).size(), 0u);  // the run ends before the writers
}

// The branch distribution worked out from the parents: cells with 0, 1, ...
// children.
std::string BranchLine(void) {
  std::vector<int> children(ncells, 0), hist(10, 0);
  for (int i = 0; i < ncells; i++)
    if (cells[i].parent >= 0) children[cells[i].parent]++;
  for (int i = 0; i < ncells; i++) hist[children[i] > 9 ? 9 : children[i]]++;
  char line[128];
  snprintf(line, sizeof(line), "   0:%d 1:%d 2:%d 3:%d 4:%d 5:%d\n", hist[0], hist[1], hist[2], hist[3], hist[4],
           hist[5]);
  return line;
}

TEST(BatchWriters, EveryFileAsTheMenuWritesIt) {
  struct Writer {
    const char *option;
    int format, variant;  // -1: the report
  } writers[] = {
      {"--pov", 3, 1},        {"--pov-sweep", 3, 0},  {"--geom", 1, 1},        {"--vrml", 0, 1},
      {"--vrml-caps", 0, 2},  {"--dxf-points", 4, 1}, {"--geom-points", 5, 1}, {"--stl-out", 2, 0},
      {"--info", -1, 0},
  };
  Scratch s;
  std::vector<std::string> args = {"--cells", "250", "--seed", "77", "--roots", "2", "--root-distribution", "6",
                                   "--sample", "23", "--transform", "1.5,1.5,1.5", "0,0,4", "0,0,0", "--stats"};
  for (const Writer &w : writers) {
    args.push_back(w.option);
    args.push_back(s / (std::string("batch") + w.option).c_str());
  }
  FreshProcess();
  std::string err;
  ASSERT_EQ(Batch(args, &err), BATCH_OK) << err;
  EXPECT_EQ(err, "");
  std::string branches = BranchLine();

  // The window: settings typed in, the sample menu, Apply, the restart,
  // growth, F5 until the count ends, then the save menu's entries.
  FreshProcess();
  growthstate.seed = 77;
  growthstate.nroots = 2;
  growthstate.rootdistribution = 6;
  MakeSampleSurface(SAMPLE_CLOSEDHEMISPHERE);
  XYZ scale = {1.5, 1.5, 1.5}, shift = {0, 0, 4}, rotate = {0, 0, 0};
  TransformSTL(scale, shift, rotate);
  UpdateSTL();
  InitialiseGrowth();
  ResetSeeds();
  while (ncells < 250) IterateSystem();
  RunStatisticsToCompletion();
  for (const Writer &w : writers) {
    std::string path = s / (std::string("direct") + w.option).c_str();
    ASSERT_EQ(w.format < 0 ? SaveInformationFile(path.c_str()) : SaveModelFile(path.c_str(), w.format, w.variant), 1);
  }
  for (const Writer &w : writers) {
    std::string batch = ReadFile(s / (std::string("batch") + w.option).c_str());
    EXPECT_GT(batch.size(), 50u) << w.option;
    EXPECT_EQ(batch, ReadFile(s / (std::string("direct") + w.option).c_str())) << w.option;
  }
  // The report carries the statistics of this aggregate.
  std::string info = ReadFile(s / "batch--info");
  EXPECT_NE(info.find("\nStatistics at time step: 250\n   Branch distribution\n" + branches), std::string::npos)
      << info << branches;
  EXPECT_NE(info.find("Constraint surface: Closed hemisphere\n"), std::string::npos);
  EXPECT_NE(info.find("   Box counting [ size, N, log(1/size), log(N) ]\n"), std::string::npos);
}

TEST(BatchWriters, WithoutStatsTheReportHasNoStatistics) {
  Scratch s;
  FreshProcess();
  std::string err;
  ASSERT_EQ(Batch({"--cells", "40", "--info", s / "info.txt"}, &err), BATCH_OK);
  std::string info = ReadFile(s / "info.txt");
  EXPECT_NE(info.find("Number of particles: 40\n"), std::string::npos) << info;
  EXPECT_EQ(info.find("Statistics"), std::string::npos) << info;
}

TEST(BatchWriters, UnwritableFilesAreReported) {
  Scratch s;
  FreshProcess();
  std::string err;
  std::string bad = s / "no/such/dir.pov";
  EXPECT_EQ(Batch({"--cells", "30", "--pov", bad, "--geom", s / "ok.geom", "--info", s / "no/info.txt"}, &err),
            BATCH_FILEERROR);
  EXPECT_EQ(err, "dla3d-batch: --pov: cannot create \"" + bad +
                     "\": No such file or directory\n"
                     "dla3d-batch: --info: cannot create \"" +
                     s / "no/info.txt" + "\": No such file or directory\n");
  EXPECT_EQ(Names(s.dir), std::vector<std::string>{"ok.geom"});  // the others were still written

  // A CSV that cannot be created ends the run before growth: nothing else
  // is written.
  FreshProcess();
  std::string csv = s / "no/cells.csv";
  EXPECT_EQ(Batch({"--cells", "30", "--csv", csv, "--slices", "2", "--slice-dir", s.dir, "--stats", "--pov",
                   s / "late.pov"},
                  &err),
            BATCH_FILEERROR);
  EXPECT_EQ(err, "dla3d-batch: --csv: cannot create \"" + csv + "\": No such file or directory\n");
  EXPECT_EQ(Names(s.dir), std::vector<std::string>{"ok.geom"});
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(stats.timestep, 0);
}

}  // namespace
