// Seed files with numbers the growth was never meant to see: they are read
// as the scanner reads them, and growth from them ends no process.
#include <gtest/gtest.h>
#include <math.h>
#include <stdio.h>
#include <string.h>

#include <string>

#include "growth_test_util.h"

namespace {

int ReadSeedText(std::string text, FILEMESSAGE *msg) {
  memset(msg, 0, sizeof(*msg));
  text += '\0';
  FILE *fp = fmemopen(&text[0], text.size() - 1, "r");
  int ok = ReadRootsStream(fp, "hostile seeds", msg);
  fclose(fp);
  return ok;
}

TEST(SeedsHostile, NanInfinityAndOverflowBecomeRoots) {
  ResetGrowthForTest();
  growthstate.rootdistribution = ROOT_SPHERICAL;  // keeps the file's name
  FILEMESSAGE msg;
  ASSERT_EQ(ReadSeedText("nan nan nan\ninf 0 0\n0 1e999 -1e-999\n0x1p3 -0x.8p1 0X10\n", &msg), 1);
  EXPECT_EQ(msg.set, 0);
  ASSERT_EQ(growthstate.nroots, 4);
  ASSERT_EQ(ncells, 4);
  EXPECT_STREQ(growthstate.rootname, "hostile seeds");
  EXPECT_TRUE(isnan(cells[0].p.x) && isnan(cells[0].p.z));
  EXPECT_EQ(cells[1].p.x, HUGE_VAL);
  EXPECT_EQ(cells[2].p.y, HUGE_VAL);  // overflow reads as infinity
  EXPECT_EQ(cells[2].p.z, 0.0);       // underflow as zero (or a denormal's zero)
  EXPECT_EQ(cells[3].p.x, 8.0);       // C99 hexadecimal numbers are numbers
  EXPECT_EQ(cells[3].p.y, -1.0);
  EXPECT_EQ(cells[3].p.z, 16.0);
  // A NaN root leaves the radius alone (the comparison is false); an
  // infinite one makes it infinite.
  EXPECT_EQ(growthstate.radius, HUGE_VAL);

  // Growth from such roots: bounded steps, never more than one cell each,
  // the roots themselves untouched.
  for (int i = 0; i < 2000; i++) IterateSystem();
  EXPECT_GE(ncells, 4);
  EXPECT_LE(ncells, 4 + 2000);
  EXPECT_EQ(cells[1].parent, -1);
  EXPECT_EQ(cells[3].p.z, 16.0);
}

TEST(SeedsHostile, NanRootAloneKeepsTheStartingRadius) {
  ResetGrowthForTest();
  FILEMESSAGE msg;
  ASSERT_EQ(ReadSeedText("nan 0 0\n", &msg), 1);
  EXPECT_EQ(growthstate.nroots, 1);
  EXPECT_EQ(growthstate.radius, 10.0);  // 10 x branch length, from the restart
  // Every distance to the root is NaN, so nothing can stick to it.
  for (int i = 0; i < 2000; i++) IterateSystem();
  EXPECT_EQ(ncells, 1);
}

TEST(SeedsHostile, TextAfterTheNumbersEndsTheList) {
  ResetGrowthForTest();
  FILEMESSAGE msg;
  // A fourth number on a line starts the next root; "x" then stops reading.
  ASSERT_EQ(ReadSeedText("1 2 3 4\n5 6 x\n7 8 9\n", &msg), 1);
  ASSERT_EQ(growthstate.nroots, 2);
  EXPECT_EQ(cells[1].p.x, 4.0);
  EXPECT_EQ(cells[1].p.y, 5.0);
  EXPECT_EQ(cells[1].p.z, 6.0);
}

}  // namespace
