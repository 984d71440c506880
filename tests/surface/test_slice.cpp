// Cutting hand-built aggregates into slab files.
#include <gtest/gtest.h>
#include <dirent.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "app/records.h"
#include "surface/slice.h"

static XYZ V(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

static std::string ReadFile(const std::string &path) {
  std::string s;
  FILE *fp = fopen(path.c_str(), "r");
  if (fp == NULL) return "(missing)";
  int c;
  while ((c = fgetc(fp)) != EOF) s += (char)c;
  fclose(fp);
  return s;
}

static int Exists(const std::string &path) {
  struct stat st;
  return stat(path.c_str(), &st) == 0;
}

static void RemoveTree(const std::string &dir) {
  DIR *d = opendir(dir.c_str());
  if (d == NULL) return;
  struct dirent *e;
  while ((e = readdir(d)) != NULL) {
    if (strcmp(e->d_name, ".") == 0 || strcmp(e->d_name, "..") == 0) continue;
    std::string p = dir + "/" + e->d_name;
    struct stat st;
    if (lstat(p.c_str(), &st) == 0 && S_ISDIR(st.st_mode))
      RemoveTree(p);
    else
      unlink(p.c_str());
  }
  closedir(d);
  rmdir(dir.c_str());
}

static int CountEntries(const std::string &dir) {
  DIR *d = opendir(dir.c_str());
  int n = 0;
  struct dirent *e;
  while ((e = readdir(d)) != NULL)
    if (e->d_name[0] != '.') n++;
  closedir(d);
  return n;
}

// Each test runs in a fresh temporary directory, with an empty aggregate of
// the given radius; cells are added by hand with AppendCell.
class Slicing : public ::testing::Test {
 protected:
  std::string dir;
  char olddir[4096];

  void SetUp() override {
    SetOptionDefaults();
    char tmpl[] = "/tmp/dla_slice_XXXXXX";
    ASSERT_NE(mkdtemp(tmpl), nullptr);
    dir = tmpl;
    ASSERT_NE(getcwd(olddir, sizeof(olddir)), nullptr);
    ASSERT_EQ(chdir(dir.c_str()), 0);
    ncells = 0;
    sliceindexed = 1;
  }
  void TearDown() override {
    ASSERT_EQ(chdir(olddir), 0);
    RemoveTree(dir);
    ncells = 0;
    sliceindexed = 1;
  }
  static void Radius(double r) { growthstate.radius = r; }
  // DoSlice in the current directory, returning its standard error.
  static std::string Slice(int nslices, XYZ n, int *result = nullptr) {
    testing::internal::CaptureStderr();
    int r = DoSlice(nslices, n);
    if (result) *result = r;
    return testing::internal::GetCapturedStderr();
  }
};

TEST_F(Slicing, TwoSlabsShareTheirBoundary) {
  Radius(10);
  AppendCell(V(1, -1, 0), 0, -1);  // on the boundary n.p = 0
  AppendCell(V(2, 3, 4), 0, 0);    // inside slab 0
  AppendCell(V(-3, 2, -5), 0, 0);  // inside slab 1
  int result = 0;
  std::string err = Slice(2, V(0, 0, 1), &result);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(err,
            "Slice 0, distance: 10 to 0\n"
            "   Processing seed node 0\n"
            "      Tracing branch node from 0 -> 1\n"
            "      Tracing branch node from 0 -> 2\n"
            "Slice 1, distance: 0 to -10\n");
  // The root is inside both slabs: in slab 0 the second segment leaves
  // through the lower bound at the root (inside end first), in slab 1 the
  // first leaves through the upper bound at the root (crossing first).
  EXPECT_EQ(ReadFile("slice_000.txt"), "1 -1 0 2 3 4\n1 -1 0 1 -1 0\n");
  EXPECT_EQ(ReadFile("slice_001.txt"), "1 -1 0 1 -1 0\n1 -1 0 -3 2 -5\n");
  EXPECT_EQ(CountEntries("."), 2);
}

TEST_F(Slicing, SlabZeroIsNearestPlusRadiusAlongTheNormal) {
  Radius(10);
  AppendCell(V(0, 0, -1), 0, -1);
  AppendCell(V(0, 0, -2), 0, 0);
  Slice(2, V(0, 0, -1));
  EXPECT_EQ(ReadFile("slice_000.txt"), "0 0 -1 0 0 -2\n");
  EXPECT_EQ(ReadFile("slice_001.txt"), "");
}

// Two trees across three slabs (R = 30: bounds 30, 10, -10, -30 along z).
//   tree 0: 0 (-2,0,-20) -> 1 (2,4,20) -> 4 (0,0,25)
//   tree 2: 2 (12,4,20) -> 3 (8,0,-20) -> 5 (8,0,-25)
// The long segments cross z = 10 at (1,3,10) and (11,3,10), z = -10 at
// (-1,1,-10) and (9,1,-10).
static void TwoTrees(void) {
  growthstate.radius = 30;
  AppendCell(V(-2, 0, -20), 0, -1);
  AppendCell(V(2, 4, 20), 0, 0);
  AppendCell(V(12, 4, 20), 0, -1);
  AppendCell(V(8, 0, -20), 0, 2);
  AppendCell(V(0, 0, 25), 0, 1);
  AppendCell(V(8, 0, -25), 0, 3);
}

TEST_F(Slicing, CaseTableAcrossThreeSlabs) {
  TwoTrees();
  std::string err = Slice(3, V(0, 0, 1));
  EXPECT_EQ(err,
            "Slice 0, distance: 30 to 10\n"
            "   Processing seed node 0\n"
            "      Tracing branch node from 0 -> 1\n"
            "   Processing seed node 2\n"
            "      Tracing branch node from 2 -> 3\n"
            "Slice 1, distance: 10 to -10\n"
            "Slice 2, distance: -10 to -30\n");
  // Slab 0: A below, B inside -> B, crossing; both inside; A inside, B
  // below -> A, crossing; both below -> nothing.
  EXPECT_EQ(ReadFile("slice_000.txt"),
            "2 4 20 1 3 10\n"
            "2 4 20 0 0 25\n"
            "12 4 20 11 3 10\n");
  // Slab 1: spanning segments as their two crossings, upper first whichever
  // end is above; both above and both below -> nothing.
  EXPECT_EQ(ReadFile("slice_001.txt"),
            "1 3 10 -1 1 -10\n"
            "11 3 10 9 1 -10\n");
  // Slab 2: B above, A inside -> crossing, A; A above, B inside ->
  // crossing, B; both inside.
  EXPECT_EQ(ReadFile("slice_002.txt"),
            "-1 1 -10 -2 0 -20\n"
            "9 1 -10 8 0 -20\n"
            "8 0 -20 8 0 -25\n");

  // In debug mode the descendants are announced too, in slab 0 only.
  options.debug = 1;
  err = Slice(3, V(0, 0, 1));
  EXPECT_EQ(err,
            "Slice 0, distance: 30 to 10\n"
            "   Processing seed node 0\n"
            "      Tracing branch node from 0 -> 1\n"
            "      Tracing branch node from 1 -> 4\n"
            "   Processing seed node 2\n"
            "      Tracing branch node from 2 -> 3\n"
            "      Tracing branch node from 3 -> 5\n"
            "Slice 1, distance: 10 to -10\n"
            "Slice 2, distance: -10 to -30\n");
  EXPECT_EQ(ReadFile("slice_001.txt"), "1 3 10 -1 1 -10\n11 3 10 9 1 -10\n");
}

TEST_F(Slicing, TraceBranchWalksSiblingsBeforeDescendants) {
  // 0 -> 1, 0 -> 2, 1 -> 3, 1 -> 4, 2 -> 5; everything inside one slab.
  growthstate.radius = 100;
  AppendCell(V(0, 0, 0), 0, -1);
  AppendCell(V(1, 0, 0), 0, 0);
  AppendCell(V(2, 0, 0), 0, 0);
  AppendCell(V(3, 0, 0), 0, 1);
  AppendCell(V(4, 0, 0), 0, 1);
  AppendCell(V(5, 0, 0), 0, 2);
  PLANE upper = {0, 0, -1, 100}, lower = {0, 0, 1, 100};

  EXPECT_EQ(TerminalCell(0), 1);
  EXPECT_EQ(TerminalCell(1), 1);
  EXPECT_EQ(TerminalCell(3), 0);
  EXPECT_EQ(TerminalCell(5), 0);
  int child = -7;
  EXPECT_EQ(FindBranch(1, &child), 1);
  EXPECT_EQ(child, 3);
  cells[3].traced = 1;
  EXPECT_EQ(FindBranch(1, &child), 1);
  EXPECT_EQ(child, 4);
  cells[4].traced = 1;
  child = -7;
  EXPECT_EQ(FindBranch(1, &child), 0);
  EXPECT_EQ(child, -7);
  EXPECT_EQ(FindBranch(5, &child), 0);
  for (int j = 0; j < ncells; j++) cells[j].traced = 0;

  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  cells[0].traced = 1;
  options.debug = 1;
  testing::internal::CaptureStderr();
  TraceBranch(0, 1, fp, 0, upper, lower);
  std::string err = testing::internal::GetCapturedStderr();
  fclose(fp);
  // After 0->1 its sibling 0->2 (with 2->5 below it) is walked first, then
  // 1's children 1->3 and its sibling 1->4.
  EXPECT_EQ(std::string(buf, len),
            "0 0 0 1 0 0\n"
            "0 0 0 2 0 0\n"
            "2 0 0 5 0 0\n"
            "1 0 0 3 0 0\n"
            "1 0 0 4 0 0\n");
  EXPECT_EQ(err,
            "      Tracing branch node from 0 -> 2\n"
            "      Tracing branch node from 2 -> 5\n"
            "      Tracing branch node from 1 -> 3\n"
            "      Tracing branch node from 1 -> 4\n");
  free(buf);
  for (int j = 0; j < ncells; j++) EXPECT_EQ(cells[j].traced, 1);

  // Outside slab 0 nothing is announced, not even in debug mode.
  for (int j = 0; j < ncells; j++) cells[j].traced = 0;
  fp = open_memstream(&buf, &len);
  testing::internal::CaptureStderr();
  TraceBranch(0, 1, fp, 3, upper, lower);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  fclose(fp);
  free(buf);
}

TEST_F(Slicing, SeedsOnlyGiveEmptyFiles) {
  Radius(10);
  AppendCell(V(1, 0, 0), 0, -1);
  AppendCell(V(0, 5, 9), 0, -1);
  AppendCell(V(0, 0, -9), 0, -1);
  std::string err = Slice(4, V(0, 0, 1));
  EXPECT_EQ(err,
            "Slice 0, distance: 10 to 5\n"
            "   Processing seed node 0\n"
            "   Processing seed node 1\n"
            "   Processing seed node 2\n"
            "Slice 1, distance: 5 to 0\n"
            "Slice 2, distance: 0 to -5\n"
            "Slice 3, distance: -5 to -10\n");
  for (int i = 0; i < 4; i++) {
    char name[32];
    snprintf(name, sizeof(name), "slice_%03d.txt", i);
    EXPECT_EQ(ReadFile(name), "");
  }
}

TEST_F(Slicing, ExactlyNFiles) {
  const double radii[] = {10, 0.1, 7.3, 1000.0 / 3, 1e-3};
  const int counts[] = {2, 3, 7, 10, 49, 50};
  AppendCell(V(0, 0, 0), 0, -1);
  for (double r : radii) {
    for (int n : counts) {
      SCOPED_TRACE(testing::Message() << "R " << r << " N " << n);
      Radius(r);
      int result = 0;
      std::string err = Slice(n, V(0.6, 0, 0.8), &result);
      EXPECT_EQ(result, 1);
      EXPECT_EQ(CountEntries("."), n);
      char name[32];
      snprintf(name, sizeof(name), "slice_%03d.txt", n - 1);
      EXPECT_TRUE(Exists(name));
      int lines = 0;
      for (char c : err) lines += (c == '\n');
      EXPECT_EQ(lines, n + 1);  // the slabs and the one seed
      RemoveTree(dir);
      ASSERT_EQ(mkdir(dir.c_str(), 0700), 0);
      ASSERT_EQ(chdir(dir.c_str()), 0);
    }
  }
}

TEST_F(Slicing, EmptyAggregateStillWritesEveryFile) {
  Radius(10);
  std::string err = Slice(2, V(0, 0, 1));
  EXPECT_EQ(err, "Slice 0, distance: 10 to 0\nSlice 1, distance: 0 to -10\n");
  EXPECT_EQ(ReadFile("slice_000.txt"), "");
  EXPECT_EQ(ReadFile("slice_001.txt"), "");
}

TEST_F(Slicing, UnopenableFileStopsWithZero) {
  Radius(30);
  AppendCell(V(0, 0, 20), 0, -1);
  AppendCell(V(0, 0, 25), 0, 0);
  ASSERT_EQ(mkdir("slice_001.txt", 0700), 0);  // a directory cannot be opened for writing
  int result = 1;
  std::string err = Slice(3, V(0, 0, 1), &result);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(err,
            "Slice 0, distance: 30 to 10\n"
            "   Processing seed node 0\n"
            "      Tracing branch node from 0 -> 1\n"
            "Slice 1, distance: 10 to -10\n"
            "Failed to open output slice file \"slice_001.txt\"\n");
  EXPECT_EQ(ReadFile("slice_000.txt"), "0 0 20 0 0 25\n");  // earlier slabs stay
  EXPECT_FALSE(Exists("slice_002.txt"));
}

TEST_F(Slicing, DoSliceInWritesIntoTheGivenDirectory) {
  Radius(10);
  AppendCell(V(0, 0, 1), 0, -1);
  AppendCell(V(0, 0, 2), 0, 0);
  ASSERT_EQ(mkdir("out", 0700), 0);
  testing::internal::CaptureStderr();
  EXPECT_EQ(DoSliceIn("out", 2, V(0, 0, 1)), 1);
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(ReadFile("out/slice_000.txt"), "0 0 1 0 0 2\n");
  EXPECT_EQ(ReadFile("out/slice_001.txt"), "");
  EXPECT_EQ(CountEntries("."), 1);

  testing::internal::CaptureStderr();
  EXPECT_EQ(DoSliceIn("missing/", 2, V(0, 0, 1)), 0);
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_NE(err.find("Failed to open output slice file \"missing/slice_000.txt\"\n"), std::string::npos);
}

// A small generator of its own, so the test leaves drand48 and rand alone.
static unsigned int testrandom = 1;
static double Uniform(void) {
  testrandom = testrandom * 1103515245u + 12345u;
  return ((testrandom >> 8) & 0xffff) / 65536.0;
}

TEST_F(Slicing, ChildListsMatchTheFullScan) {
  // A forest in the shape growth makes: parents earlier than children, some
  // parents with many children, a few roots; slabs along an oblique normal.
  growthstate.radius = 20;
  for (int c = 0; c < 400; c++) {
    int parent = (c < 3 || Uniform() < 0.01) ? -1 : (int)(Uniform() * c * Uniform());
    AppendCell(V(40 * Uniform() - 20, 40 * Uniform() - 20, 40 * Uniform() - 20), 0, parent);
  }
  XYZ n = V(1, 2, -2);
  Normalise(&n);
  options.debug = 1;
  std::string files[2][6], errs[2];
  for (int indexed = 0; indexed < 2; indexed++) {
    sliceindexed = indexed;
    errs[indexed] = Slice(6, n);
    for (int i = 0; i < 6; i++) {
      char name[32];
      snprintf(name, sizeof(name), "slice_%03d.txt", i);
      files[indexed][i] = ReadFile(name);
    }
  }
  EXPECT_EQ(errs[0], errs[1]);
  int lines = 0;
  for (int i = 0; i < 6; i++) {
    EXPECT_EQ(files[0][i], files[1][i]);
    for (char c : files[1][i]) lines += (c == '\n');
  }
  EXPECT_GE(lines, 397);  // every segment lies in at least one slab
}

TEST_F(Slicing, DeepTreesDoNotExhaustTheStack) {
  // A chain whose every node also has an earlier leaf child: the walk goes
  // down the leaf first and reaches the chain's next node as a sibling, one
  // level deeper each time.
  const int depth = 60000;
  growthstate.radius = 10;
  AppendCell(V(0, 0, 0.5), 0, -1);
  int node = 0;
  for (int d = 0; d < depth; d++) {
    AppendCell(V(0, 1e-4 * (d + 1), 1), 0, node);  // leaf
    AppendCell(V(1e-4 * (d + 1), 0, 2), 0, node);  // next chain node
    node = ncells - 1;
  }
  std::string err = Slice(2, V(0, 0, 1));
  std::string out = ReadFile("slice_000.txt");
  int lines = 0;
  for (char c : out) lines += (c == '\n');
  EXPECT_EQ(lines, 2 * depth);
  EXPECT_EQ(out.substr(0, 38), "0 0 0.5 0 0.0001 1\n0 0 0.5 0.0001 0 2\n");
  EXPECT_EQ(ReadFile("slice_001.txt"), "");
}
