// Cutting hand-built aggregates into slab files.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "surface/slice.h"
#include "test_util.h"

namespace {

using Slicing = Fresh;

// DoSliceIn into the scratch directory; returns its standard error.
std::string Slice(const Scratch &s, int n, XYZ normal, int *result = NULL) {
  testing::internal::CaptureStderr();
  int r = DoSliceIn(s.dir.c_str(), n, normal);
  if (result) *result = r;
  return testing::internal::GetCapturedStderr();
}

int Entries(const std::string &dir) {
  int n = 0;
  DIR *d = opendir(dir.c_str());
  while (struct dirent *e = d ? readdir(d) : NULL) n += e->d_name[0] != '.';
  if (d) closedir(d);
  return n;
}

TEST_F(Slicing, TwoSlabsShareTheirBoundaryInTheCurrentDirectory) {
  growthstate.radius = 10;
  ncells = 0;
  AppendCell(V(1, -1, 0), 0, -1);  // on the boundary n.p = 0
  AppendCell(V(2, 3, 4), 0, 0);
  AppendCell(V(-3, 2, -5), 0, 0);
  Scratch s;
  char old[4096];
  ASSERT_NE(getcwd(old, sizeof(old)), nullptr);
  ASSERT_EQ(chdir(s.dir.c_str()), 0);
  testing::internal::CaptureStderr();
  int result = DoSlice(2, V(0, 0, 1));
  std::string err = testing::internal::GetCapturedStderr();
  ASSERT_EQ(chdir(old), 0);
  EXPECT_EQ(result, 1);
  EXPECT_EQ(err, "Slice 0, distance: 10 to 0\n   Processing seed node 0\n      Tracing branch node from 0 -> 1\n"
                 "      Tracing branch node from 0 -> 2\nSlice 1, distance: 0 to -10\n");
  // The root is inside both: in slab 0 the second segment leaves through the
  // lower bound (inside end first), in slab 1 the first through the upper
  // bound (crossing first).
  EXPECT_EQ(ReadFile(s / "slice_000.txt"), "1 -1 0 2 3 4\n1 -1 0 1 -1 0\n");
  EXPECT_EQ(ReadFile(s / "slice_001.txt"), "1 -1 0 1 -1 0\n1 -1 0 -3 2 -5\n");
  EXPECT_EQ(Entries(s.dir), 2);
  // Slab 0 is the one nearest +radius along the normal.
  Scratch t;
  Slice(t, 2, V(0, 0, -1));
  EXPECT_EQ(ReadFile(t / "slice_000.txt"), ReadFile(s / "slice_001.txt"));
  EXPECT_EQ(ReadFile(t / "slice_001.txt"), ReadFile(s / "slice_000.txt"));
}

// Two trees across three slabs (R = 30: bounds 30, 10, -10, -30 along z).
//   tree 0: 0 (-2,0,-20) -> 1 (2,4,20) -> 4 (0,0,25)
//   tree 2: 2 (12,4,20) -> 3 (8,0,-20) -> 5 (8,0,-25)
// The long segments cross z = 10 at (1,3,10) and (11,3,10), z = -10 at
// (-1,1,-10) and (9,1,-10).
TEST_F(Slicing, EveryCaseOfTheTableAcrossThreeSlabs) {
  growthstate.radius = 30;
  ncells = 0;
  AppendCell(V(-2, 0, -20), 0, -1);
  AppendCell(V(2, 4, 20), 0, 0);
  AppendCell(V(12, 4, 20), 0, -1);
  AppendCell(V(8, 0, -20), 0, 2);
  AppendCell(V(0, 0, 25), 0, 1);
  AppendCell(V(8, 0, -25), 0, 3);
  Scratch s;
  EXPECT_EQ(Slice(s, 3, V(0, 0, 1)),
            "Slice 0, distance: 30 to 10\n   Processing seed node 0\n      Tracing branch node from 0 -> 1\n"
            "   Processing seed node 2\n      Tracing branch node from 2 -> 3\n"
            "Slice 1, distance: 10 to -10\nSlice 2, distance: -10 to -30\n");
  // A below, B inside: B, crossing. Both inside. A inside, B below: A, crossing.
  EXPECT_EQ(ReadFile(s / "slice_000.txt"), "2 4 20 1 3 10\n2 4 20 0 0 25\n12 4 20 11 3 10\n");
  // Spanning: the two crossings, upper first whichever end is above.
  EXPECT_EQ(ReadFile(s / "slice_001.txt"), "1 3 10 -1 1 -10\n11 3 10 9 1 -10\n");
  // B above, A inside: crossing, A. A above, B inside: crossing, B.
  EXPECT_EQ(ReadFile(s / "slice_002.txt"), "-1 1 -10 -2 0 -20\n9 1 -10 8 0 -20\n8 0 -20 8 0 -25\n");
  // In debug mode the descendants are announced too, in slab 0 only.
  std::string err = DebugOutput([&] { DoSliceIn(s.dir.c_str(), 3, V(0, 0, 1)); });
  EXPECT_NE(err.find("0 -> 1\n      Tracing branch node from 1 -> 4\n   Processing seed node 2\n"), std::string::npos) << err;
  EXPECT_NE(err.find("2 -> 3\n      Tracing branch node from 3 -> 5\nSlice 1"), std::string::npos) << err;
}

TEST_F(Slicing, TraceBranchWalksSiblingsBeforeDescendants) {
  // 0 -> 1, 0 -> 2, 1 -> 3, 1 -> 4, 2 -> 5; everything inside one slab.
  ncells = 0;
  const int parents[6] = {-1, 0, 0, 1, 1, 2};
  for (int i = 0; i < 6; i++) AppendCell(V(i, 0, 0), 0, parents[i]);
  EXPECT_EQ(TerminalCell(1), 1);
  EXPECT_EQ(TerminalCell(3), 0);
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
  for (int j = 0; j < ncells; j++) cells[j].traced = j == 0;
  PLANE upper = {0, 0, -1, 100}, lower = {0, 0, 1, 100};
  std::string err;
  std::string out = Capture([&](FILE *fp) { err = DebugOutput([&] { TraceBranch(0, 1, fp, 0, upper, lower); }); });
  EXPECT_EQ(out, "0 0 0 1 0 0\n0 0 0 2 0 0\n2 0 0 5 0 0\n1 0 0 3 0 0\n1 0 0 4 0 0\n");
  EXPECT_EQ(err, "      Tracing branch node from 0 -> 2\n      Tracing branch node from 2 -> 5\n"
                 "      Tracing branch node from 1 -> 3\n      Tracing branch node from 1 -> 4\n");
  for (int j = 0; j < ncells; j++) EXPECT_EQ(cells[j].traced, 1);
  for (int j = 0; j < ncells; j++) cells[j].traced = 0;
  Capture([&](FILE *fp) { err = DebugOutput([&] { TraceBranch(0, 1, fp, 3, upper, lower); }); });
  EXPECT_EQ(err, "");  // outside slab 0 nothing is announced
}

TEST_F(Slicing, ExactlyNFilesSeedsOnlyAndNoCells) {
  growthstate.radius = 10;
  ncells = 0;
  for (XYZ p : {V(1, 0, 0), V(0, 5, 9), V(0, 0, -9)}) AppendCell(p, 0, -1);
  Scratch s;
  EXPECT_EQ(Slice(s, 4, V(0, 0, 1)),
            "Slice 0, distance: 10 to 5\n   Processing seed node 0\n   Processing seed node 1\n   Processing seed node 2\n"
            "Slice 1, distance: 5 to 0\nSlice 2, distance: 0 to -5\nSlice 3, distance: -5 to -10\n");
  for (const char *f : {"slice_000.txt", "slice_003.txt"}) EXPECT_EQ(ReadFile(s / f), "");
  ncells = 0;
  EXPECT_EQ(Slice(s, 2, V(0, 0, 1)), "Slice 0, distance: 10 to 0\nSlice 1, distance: 0 to -10\n");
  ncells = 1;
  for (double r : {0.1, 7.3, 1000.0 / 3, 1e-3}) {
    for (int n : {2, 3, 7, 49, 50}) {
      SCOPED_TRACE(testing::Message() << "R " << r << " N " << n);
      Scratch t;
      growthstate.radius = r;
      int result = 0;
      Slice(t, n, V(0.6, 0, 0.8), &result);
      EXPECT_EQ(result, 1);
      EXPECT_EQ(Entries(t.dir), n);
    }
  }
}

TEST_F(Slicing, UnopenableFileStopsTheSlabsThere) {
  growthstate.radius = 30;
  ncells = 0;
  AppendCell(V(0, 0, 20), 0, -1);
  AppendCell(V(0, 0, 25), 0, 0);
  Scratch s;
  ASSERT_EQ(mkdir((s / "slice_001.txt").c_str(), 0700), 0);  // a directory cannot be written
  int result = 1;
  std::string err = Slice(s, 3, V(0, 0, 1), &result);
  EXPECT_EQ(result, 0);
  EXPECT_EQ(err, "Slice 0, distance: 30 to 10\n   Processing seed node 0\n      Tracing branch node from 0 -> 1\n"
                 "Slice 1, distance: 10 to -10\nFailed to open output slice file \"" + s.dir + "/slice_001.txt\"\n");
  EXPECT_EQ(ReadFile(s / "slice_000.txt"), "0 0 20 0 0 25\n");
  EXPECT_EQ(Entries(s.dir), 2);
}

TEST_F(Slicing, ChildListsMatchTheFullScanAndDeepTreesKeepTheStack) {
  // A forest as growth makes it, slabs along an oblique normal.
  growthstate.radius = 20;
  ncells = 0;
  srand48(5);
  for (int c = 0; c < 400; c++) {
    int parent = (c < 3 || drand48() < 0.01) ? -1 : (int)(drand48() * c * drand48());
    AppendCell(V(40 * drand48() - 20, 40 * drand48() - 20, 40 * drand48() - 20), 0, parent);
  }
  XYZ n = V(1, 2, -2);
  Normalise(&n);
  std::string files[2], errs[2];
  for (int indexed = 0; indexed < 2; indexed++) {
    Scratch s;
    sliceindexed = indexed;
    errs[indexed] = DebugOutput([&] { DoSliceIn(s.dir.c_str(), 6, n); });
    for (int i = 0; i < 6; i++) files[indexed] += ReadFile(s / ("slice_00" + std::to_string(i) + ".txt"));
  }
  sliceindexed = 1;
  EXPECT_EQ(errs[0], errs[1]);
  EXPECT_EQ(files[0], files[1]);
  EXPECT_GE(std::count(files[1].begin(), files[1].end(), '\n'), 397);  // every segment somewhere
  // A chain whose every node also has an earlier leaf: each step of the
  // chain is reached as a sibling, one level deeper each time.
  const int depth = 60000;
  growthstate.radius = 10;
  ncells = 0;
  AppendCell(V(0, 0, 0.5), 0, -1);
  for (int d = 0, node = 0; d < depth; d++, node = ncells - 1) {
    AppendCell(V(0, 1e-4 * (d + 1), 1), 0, node);
    AppendCell(V(1e-4 * (d + 1), 0, 2), 0, node);
  }
  Scratch s;
  Slice(s, 2, V(0, 0, 1));
  std::string out = ReadFile(s / "slice_000.txt");
  EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 2 * depth);
  EXPECT_EQ(out.substr(0, 38), "0 0 0.5 0 0.0001 1\n0 0 0.5 0.0001 0 2\n");
}

}  // namespace
