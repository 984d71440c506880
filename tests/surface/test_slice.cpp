// Cutting hand-built aggregates into slab files.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>

#include "surface/slice.h"
#include "test_util.h"

namespace {

using Slicing = Fresh;

// Cells (x y z parent each), radius R.
void Aggregate(SIMULATION &sim, double radius, std::initializer_list<double> c) {
  sim.growthstate.radius = radius;
  sim.ncells = 0;
  for (auto p = c.begin(); p != c.end(); p += 4) AppendCell(sim, V(p[0], p[1], p[2]), 0, (int)p[3]);
}

// The slab files in dir, concatenated with a "|" after each; standard error in *err.
std::string Slice(SIMULATION &sim, const std::string &dir, int n, XYZ normal, std::string *err = NULL) {
  testing::internal::CaptureStderr();
  int result = DoSliceIn(sim, dir.c_str(), n, normal);
  std::string e = testing::internal::GetCapturedStderr(), files;
  if (err) *err = e;
  for (int i = 0; i < n; i++) {
    char name[32];
    snprintf(name, sizeof(name), "/slice_%03d.txt", i);
    files += ReadFile(dir + name) + "|";
  }
  return result ? files : "failed: " + files;
}

// Slab 0 is the one nearest +radius along the normal. The root lies on the
// boundary n.p = 0: the segment leaving through the lower bound is written
// inside end first, the one entering crossing first.
TEST_F(Slicing, TwoSlabsShareTheirBoundaryAndFollowTheNormal) {
  Aggregate(sim, 10, {1, -1, 0, -1, 2, 3, 4, 0, -3, 2, -5, 0});
  Scratch s;
  EXPECT_EQ(Slice(sim, s.dir, 2, V(0, 0, 1)), "1 -1 0 2 3 4\n1 -1 0 1 -1 0\n|1 -1 0 1 -1 0\n1 -1 0 -3 2 -5\n|");
  EXPECT_EQ(Slice(sim, s.dir, 2, V(0, 0, -1)), "1 -1 0 1 -1 0\n1 -1 0 -3 2 -5\n|1 -1 0 2 3 4\n1 -1 0 1 -1 0\n|");
}

TEST_F(Slicing, EveryCaseOfTheTableAcrossThreeSlabs) {
  // R = 30: bounds 30, 10, -10, -30. Tree 0: (-2,0,-20) -> (2,4,20) -> (0,0,25);
  // tree 2: (12,4,20) -> (8,0,-20) -> (8,0,-25). The long segments cross
  // z = 10 at (1,3,10) and (11,3,10), z = -10 at (-1,1,-10) and (9,1,-10).
  Aggregate(sim, 30, {-2, 0, -20, -1, 2, 4, 20, 0, 12, 4, 20, -1, 8, 0, -20, 2, 0, 0, 25, 1, 8, 0, -25, 3});
  Scratch s;
  std::string err;
  // Each slab's segments: inside end first, then the crossing.
  EXPECT_EQ(Slice(sim, s.dir, 3, V(0, 0, 1), &err),
            "2 4 20 1 3 10\n2 4 20 0 0 25\n12 4 20 11 3 10\n|1 3 10 -1 1 -10\n11 3 10 9 1 -10\n|"
            "-1 1 -10 -2 0 -20\n9 1 -10 8 0 -20\n8 0 -20 8 0 -25\n|");
  EXPECT_EQ(err, "Slice 0, distance: 30 to 10\n   Processing seed node 0\n      Tracing branch node from 0 -> 1\n"
                 "   Processing seed node 2\n      Tracing branch node from 2 -> 3\nSlice 1, distance: 10 to -10\n"
                 "Slice 2, distance: -10 to -30\n");
}

TEST_F(Slicing, SeedsOnlyNoCellsExactlyNFilesAndAFileThatCannotBeMade) {
  Aggregate(sim, 10, {1, 0, 0, -1, 0, 5, 9, -1, 0, 0, -9, -1});
  Scratch s;
  std::string err;
  EXPECT_EQ(Slice(sim, s.dir, 4, V(0, 0, 1)), "||||");
  sim.ncells = 0;
  EXPECT_EQ(Slice(sim, s.dir, 2, V(0, 0, 1), &err), "||");
  sim.ncells = 1;
  for (double r : {0.1, 7.3, 1000.0 / 3, 1e-3})
    for (int n : {2, 3, 7, 50}) {
      Scratch t;
      sim.growthstate.radius = r;
      Slice(sim, t.dir, n, V(0.6, 0, 0.8));
      int entries = 0;
      DIR *d = opendir(t.dir.c_str());
      while (struct dirent *e = readdir(d)) entries += e->d_name[0] != '.';
      closedir(d);
      EXPECT_EQ(entries, n) << "R " << r;
    }
  Aggregate(sim, 30, {0, 0, 20, -1, 0, 0, 25, 0});
  Scratch t;
  ASSERT_EQ(mkdir((t / "slice_001.txt").c_str(), 0700), 0);  // a directory cannot be written
  EXPECT_EQ(Slice(sim, t.dir, 3, V(0, 0, 1), &err), "failed: 0 0 20 0 0 25\n||(missing)|");
  EXPECT_EQ(err.substr(err.find("Slice 1")),
            "Slice 1, distance: 10 to -10\nFailed to open output slice file \"" + t.dir + "/slice_001.txt\"\n");
}

TEST_F(Slicing, ChildListsMatchTheFullScanAndDeepTreesKeepTheStack) {
  sim.growthstate.radius = 20;
  sim.ncells = 0;
  srand48(5);
  for (int c = 0; c < 400; c++) {  // a forest as growth makes it
    int parent = (c < 3 || drand48() < 0.01) ? -1 : (int)(drand48() * c * drand48());
    AppendCell(sim, V(40 * drand48() - 20, 40 * drand48() - 20, 40 * drand48() - 20), 0, parent);
  }
  XYZ n = V(1, 2, -2);
  Normalise(&n);
  std::string files[2], errs[2];
  sim.options.debug = 1;
  for (int indexed = 0; indexed < 2; indexed++) {
    Scratch s;
    sim.sliceindexed = indexed;
    files[indexed] = Slice(sim, s.dir, 6, n, &errs[indexed]);
  }
  sim.sliceindexed = 1;
  sim.options.debug = 0;
  EXPECT_EQ(errs[0], errs[1]);
  EXPECT_EQ(files[0], files[1]);
  EXPECT_GE(std::count(files[1].begin(), files[1].end(), '\n'), 397);  // every segment somewhere
  // A chain whose every node also has an earlier leaf: each step of the
  // chain is reached as a sibling, one level deeper each time.
  Aggregate(sim, 10, {0, 0, 0.5, -1});
  for (int d = 0, node = 0; d < 60000; d++, node = sim.ncells - 1) {
    AppendCell(sim, V(0, 1e-4 * (d + 1), 1), 0, node);
    AppendCell(sim, V(1e-4 * (d + 1), 0, 2), 0, node);
  }
  Scratch s;
  std::string out = Slice(sim, s.dir, 2, V(0, 0, 1));
  EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 120000);
  EXPECT_EQ(out.substr(0, 38), "0 0 0.5 0 0.0001 1\n0 0 0.5 0.0001 0 2\n");
}

}  // namespace
