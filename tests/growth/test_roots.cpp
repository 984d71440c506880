#include <gtest/gtest.h>
#include <math.h>

#include <vector>

#include "growth/random.h"
#include "growth_test_util.h"

namespace {

// The three coordinates of the roots of one distribution, replayed from the
// generator as the layout rules describe: (r - 0.5) * range per random axis.
std::vector<XYZ> ReplayRandomRoots(int n, double range, int xaxis, int yaxis, int zaxis) {
  std::vector<XYZ> out;
  GrowthSrand48(growthstate.seed);
  for (int i = 0; i < n; i++) {
    XYZ p = {0, 0, 0};
    if (xaxis) p.x = (GrowthDrand48() - 0.5) * range;
    if (yaxis) p.y = (GrowthDrand48() - 0.5) * range;
    if (zaxis) p.z = (GrowthDrand48() - 0.5) * range;
    out.push_back(p);
  }
  return out;
}

void PlaceRoots(int code, int n, double range) {
  growthstate.rootdistribution = code;
  growthstate.nroots = n;
  growthstate.rootrange = range;
  InitialiseGrowth();
  ResetSeeds();
}

TEST(Roots, StartUpHasOneRootAtTheOrigin) {
  ResetGrowthForTest();
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(cells[0].p.x, 0);
  EXPECT_EQ(cells[0].p.y, 0);
  EXPECT_EQ(cells[0].p.z, 0);
  EXPECT_EQ(cells[0].parent, -1);
  EXPECT_EQ(cells[0].weight, 0);
  EXPECT_STREQ(growthstate.rootname, "Origin");
  EXPECT_STREQ(growthstate.stlname, "None");
  EXPECT_EQ(growthstate.radius, 10);
  EXPECT_EQ(growthstate.maxweight, 0);
  EXPECT_EQ(growthstate.growing, 1);
  EXPECT_EQ(growthstate.seed, 12345);
  EXPECT_EQ(nseeds, 0);
  EXPECT_EQ(stats.timestep, 0);
}

TEST(Roots, RandomDistributionsDrawInOrder) {
  struct Case {
    int code;
    int x, y, z;
    const char *name;
  } cases[] = {
      {2, 1, 1, 1, "Spherical"},
      {9, 1, 1, 1, "Spherical"},
      {0, 1, 1, 1, "Spherical"},
      {-4, 1, 1, 1, "Spherical"},
      {3, 0, 1, 1, "Random: x axis plane"},
      {4, 1, 0, 1, "Random: y axis plane"},
      {5, 1, 1, 0, "Random: z axis plane"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.code);
    ResetGrowthForTest();
    PlaceRoots(c.code, 3, 8);
    std::vector<XYZ> want = ReplayRandomRoots(3, 8, c.x, c.y, c.z);
    ASSERT_EQ(ncells, 3);
    for (int i = 0; i < 3; i++) {
      EXPECT_EQ(cells[i].p.x, want[i].x);
      EXPECT_EQ(cells[i].p.y, want[i].y);
      EXPECT_EQ(cells[i].p.z, want[i].z);
      EXPECT_EQ(cells[i].parent, -1);
      EXPECT_EQ(cells[i].weight, 0);
      EXPECT_LE(fabs(cells[i].p.x), 4);  // a cube of side rootrange
    }
    EXPECT_STREQ(growthstate.rootname, c.name);
    // Reseeded after the roots: the next number is the seed's first.
    GrowthSrand48(growthstate.seed);
    double first = GrowthDrand48();
    ResetSeeds();
    EXPECT_EQ(GrowthDrand48(), first);
  }
}

TEST(Roots, RingsOfFourInEachPlane) {
  const double want[4][2] = {{10, 0}, {0, 10}, {-10, 0}, {0, -10}};
  for (int code = 6; code <= 8; code++) {
    SCOPED_TRACE(code);
    ResetGrowthForTest();
    PlaceRoots(code, 4, 10);
    ASSERT_EQ(ncells, 4);
    for (int i = 0; i < 4; i++) {
      XYZ p = cells[i].p;
      double a = code == 6 ? p.y : p.x;
      double b = code == 8 ? p.y : p.z;
      double zero = code == 6 ? p.x : code == 7 ? p.y : p.z;
      EXPECT_NEAR(a, want[i][0], 1e-12);
      EXPECT_NEAR(b, want[i][1], 1e-12);
      EXPECT_EQ(zero, 0);
      EXPECT_EQ(roots[i].x, p.x);  // the generated positions are the roots
      EXPECT_EQ(roots[i].y, p.y);
    }
    // rootrange + 10 with a branch length of 1
    EXPECT_EQ(growthstate.radius, 20);
  }
  EXPECT_STREQ(growthstate.rootname, "Ring: z axis plane");
}

TEST(Roots, NoRootsAboveNineOrWithoutCount) {
  ResetGrowthForTest();
  PlaceRoots(10, 3, 10);
  EXPECT_EQ(ncells, 0);
  PlaceRoots(2, 0, 10);
  EXPECT_EQ(ncells, 0);
  // Code 1 places its root whatever nroots says.
  PlaceRoots(1, 0, 10);
  EXPECT_EQ(ncells, 1);
}

TEST(Roots, OriginWithFiveRootsThenRestartKeepsCellsOneToFour) {
  ResetGrowthForTest();
  growthstate.bias = 0;
  // Grow a few cells on one root first.
  while (ncells < 6) IterateSystem();
  std::vector<CELL> before(cells.begin(), cells.begin() + 6);
  double rootweight = cells[0].weight;
  ASSERT_GT(rootweight, 0);

  growthstate.nroots = 5;
  InitialiseGrowth();
  ResetSeeds();
  EXPECT_EQ(ncells, 1);  // one root, whatever nroots says

  InitialiseGrowth();  // "Restart simulation" alone
  ASSERT_EQ(ncells, 5);
  for (int i = 1; i < 5; i++) {
    EXPECT_EQ(cells[i].p.x, before[i].p.x);
    EXPECT_EQ(cells[i].p.y, before[i].p.y);
    EXPECT_EQ(cells[i].p.z, before[i].p.z);
    EXPECT_EQ(cells[i].parent, before[i].parent);
    EXPECT_EQ(cells[i].weight, before[i].weight);
  }
}

TEST(Roots, RestartKeepsRootWeightsButNotMaxweight) {
  ResetGrowthForTest();
  while (ncells < 4) IterateSystem();
  double w = cells[0].weight;
  ASSERT_GT(growthstate.maxweight, 0);
  InitialiseGrowth();
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(cells[0].weight, w);
  EXPECT_EQ(growthstate.maxweight, 0);
  EXPECT_EQ(growthstate.lifespan, 0);
}

TEST(Roots, RaisingTheRootCountKeepsRootsLongEnough) {
  ResetGrowthForTest();
  growthstate.nroots = 50;  // as the settings form does, before ResetSeeds
  InitialiseGrowth();
  EXPECT_GE((int)roots.size(), 50);
  EXPECT_EQ(ncells, 50);
  EXPECT_EQ(growthstate.radius, 20);
}

TEST(SeedFile, ShortThirdLineGivesTwoRoots) {
  ResetGrowthForTest();
  growthstate.rootdistribution = 2;
  std::string path = WriteTempFile("seeds.txt", "1 2 3\n  30\t40   0  \n7 8\n");
  FILEMESSAGE msg = {};
  options.debug = 1;
  testing::internal::CaptureStderr();
  int ok = ReadRootsFile(path.c_str(), &msg);
  std::string err = testing::internal::GetCapturedStderr();
  options.debug = 0;
  EXPECT_EQ(ok, 1);
  EXPECT_EQ(msg.set, 0);
  EXPECT_EQ(err, "Read 2 root seed positions\n");
  EXPECT_EQ(growthstate.nroots, 2);
  ASSERT_EQ(ncells, 2);
  EXPECT_EQ(cells[0].p.x, 1);
  EXPECT_EQ(cells[0].p.z, 3);
  EXPECT_EQ(cells[1].p.x, 30);
  EXPECT_EQ(cells[1].p.y, 40);
  EXPECT_EQ(cells[1].parent, -1);
  EXPECT_EQ(roots[1].y, 40);
  EXPECT_EQ(growthstate.radius, 50);  // the length of (30, 40, 0)
  EXPECT_EQ(growthstate.rootdistribution, 2);
  EXPECT_STREQ(growthstate.rootname, path.c_str());
  EXPECT_EQ(growthstate.growing, 1);
  // A restart keeps the two roots; radius from the roots again.
  InitialiseGrowth();
  EXPECT_EQ(ncells, 2);
  EXPECT_EQ(growthstate.radius, 50);
  remove(path.c_str());
}

TEST(SeedFile, OriginDistributionRenamesTheRoots) {
  // ResetSeeds inside the read names code 1 "Origin" after the path was set.
  ResetGrowthForTest();
  std::string path = WriteTempFile("seeds1.txt", "1 1 1\n");
  FILEMESSAGE msg = {};
  EXPECT_EQ(ReadRootsFile(path.c_str(), &msg), 1);
  EXPECT_STREQ(growthstate.rootname, "Origin");
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(cells[0].p.x, 1);
  remove(path.c_str());
}

TEST(SeedFile, NoPointFallsBackToTheOrigin) {
  ResetGrowthForTest();
  growthstate.rootdistribution = 5;
  growthstate.nroots = 3;
  std::string path = WriteTempFile("noseeds.txt", "x 1 2\n1 2 3\n");
  FILEMESSAGE msg = {};
  EXPECT_EQ(ReadRootsFile(path.c_str(), &msg), 0);
  EXPECT_EQ(msg.set, 1);
  EXPECT_EQ(msg.fatal, 0);
  EXPECT_STREQ(msg.line1, "File Error");
  EXPECT_STREQ(msg.line2, "Failed to read any root positions");
  EXPECT_STREQ(msg.line3, "Resetting");
  EXPECT_EQ(growthstate.nroots, 1);
  EXPECT_EQ(growthstate.rootdistribution, 1);
  EXPECT_STREQ(growthstate.rootname, "Origin");
  ASSERT_EQ(ncells, 1);
  EXPECT_EQ(cells[0].p.x, 0);
  remove(path.c_str());
}

TEST(SeedFile, UnreadableFileChangesNothing) {
  ResetGrowthForTest();
  PlaceRoots(8, 4, 10);
  std::string path = TempPath("does-not-exist.txt");
  FILEMESSAGE msg = {};
  EXPECT_EQ(ReadRootsFile(path.c_str(), &msg), 0);
  EXPECT_STREQ(msg.line1, "File Error");
  EXPECT_STREQ(msg.line2, "Failed to read seed file");
  EXPECT_STREQ(msg.line3, path.c_str());
  EXPECT_EQ(msg.fatal, 0);
  EXPECT_EQ(growthstate.nroots, 4);
  EXPECT_EQ(ncells, 4);
  EXPECT_STREQ(growthstate.rootname, "Ring: z axis plane");
}

TEST(SeedFile, LongPathIsCutTo127Characters) {
  ResetGrowthForTest();
  growthstate.rootdistribution = 2;
  std::string name(150, 'a');
  std::string path = WriteTempFile(name.c_str(), "0 0 1\n");
  FILEMESSAGE msg = {};
  ASSERT_EQ(ReadRootsFile(path.c_str(), &msg), 1);
  EXPECT_EQ(strlen(growthstate.rootname), 127u);
  EXPECT_EQ(std::string(growthstate.rootname), path.substr(0, 127));
  remove(path.c_str());
}

}  // namespace
