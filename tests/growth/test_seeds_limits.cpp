// A seed file of a million roots, and seed paths longer than the name buffers.
#include <gtest/gtest.h>
#include <math.h>
#include <string.h>

#include "growth_test_util.h"
#include "limits_util.h"

TEST(SeedsLimits, AMillionRoots) {
  ResetGrowthForTest();
  std::string dir = MakeScratchDir("seeds");
  std::string path = dir + "/million.txt";
  FILE *fp = fopen(path.c_str(), "w");
  ASSERT_NE(fp, nullptr);
  const int n = 1000000;
  // Root i at (i % 1000, -(i / 1000), 0.5): the farthest is (999, -999, 0.5).
  for (int i = 0; i < n; i++) fprintf(fp, "%d %d 0.5\n", i % 1000, -(i / 1000));
  fclose(fp);

  FILEMESSAGE msg;
  memset(&msg, 0, sizeof(msg));
  ASSERT_EQ(ReadRootsFile(path.c_str(), &msg), 1);
  EXPECT_EQ(msg.set, 0);
  ASSERT_EQ(growthstate.nroots, n);
  ASSERT_EQ(ncells, n);
  ASSERT_GE((int)roots.size(), n);
  EXPECT_EQ(cells[n - 1].p.x, 999.0);
  EXPECT_EQ(cells[n - 1].p.y, -999.0);
  EXPECT_EQ(roots[123456].x, 456.0);
  EXPECT_EQ(roots[123456].y, -123.0);
  EXPECT_EQ(cells[123456].parent, -1);
  EXPECT_DOUBLE_EQ(growthstate.radius, sqrt(999.0 * 999.0 * 2 + 0.25));
  // Storage in proportion to the roots (amortised growth, at most double).
  EXPECT_LE(cells.capacity(), 2u * n + 16);
  EXPECT_LE(roots.capacity(), 2u * n + 16);

  // A restart keeps all of them as roots.
  InitialiseGrowth();
  EXPECT_EQ(ncells, n);
  EXPECT_EQ(growthstate.radius, sqrt(999.0 * 999.0 * 2 + 0.25));
  RemoveTree(dir);
}

TEST(SeedsLimits, PathsLongerThanTheNameBuffers) {
  ResetGrowthForTest();
  std::string dir = MakeScratchDir("seedpath");
  std::string path = MakeLongPath(dir, 300, "seeds.txt");
  ASSERT_GT(path.size(), 256u);

  // Cannot open: the third message line is the path cut to 255 characters.
  FILEMESSAGE msg;
  memset(&msg, 0, sizeof(msg));
  EXPECT_EQ(ReadRootsFile(path.c_str(), &msg), 0);
  EXPECT_STREQ(msg.line2, "Failed to read seed file");
  EXPECT_EQ(strlen(msg.line3), 255u);
  EXPECT_EQ(std::string(msg.line3), path.substr(0, 255));

  // Read: the roots are named by the path cut to 127 characters (with a
  // distribution other than the origin, which renames them).
  FILE *fp = fopen(path.c_str(), "w");
  ASSERT_NE(fp, nullptr);
  fprintf(fp, "1 2 3\n");
  fclose(fp);
  growthstate.rootdistribution = ROOT_SPHERICAL;
  memset(&msg, 0, sizeof(msg));
  EXPECT_EQ(ReadRootsFile(path.c_str(), &msg), 1);
  EXPECT_EQ(strlen(growthstate.rootname), 127u);
  EXPECT_EQ(std::string(growthstate.rootname), path.substr(0, 127));
  EXPECT_EQ(growthstate.nroots, 1);
  RemoveTree(dir);
}
