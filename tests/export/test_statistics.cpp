#include <gtest/gtest.h>

#include "export/statistics.h"
#include "export_helpers.h"

static int donecalls = 0;
static void CountDone(void) { donecalls++; }

class StatisticsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ResetExportState();
    donecalls = 0;
    boxcountdone = CountDone;
  }
  void TearDown() override { boxcountdone = NULL; }
};

// A single segment in the far corner of the scanned cube: only boxes that
// start at -radius - 4.5 or -radius - 3 reach it.
static void MakeCornerSegment(double radius, double branchlength) {
  AppendCell(P(-13, -13, -13), 1, -1);
  AppendCell(P(-12.8, -13, -13), 0, 0);
  growthstate.radius = radius;
  growthstate.branchlength = branchlength;
}

TEST_F(StatisticsTest, BranchDistributionAddsUpOnEveryRequest) {
  MakeHandAggregate();
  // Children: 0:{2} 1:{4} 2:{3,6} 3:{5}; 4, 5, 6 none.
  Statistics();
  EXPECT_EQ(stats.timestep, 7);
  EXPECT_EQ(stats.branchcount[0], 3);
  EXPECT_EQ(stats.branchcount[1], 3);
  EXPECT_EQ(stats.branchcount[2], 1);
  for (int k = 3; k < 10; k++) EXPECT_EQ(stats.branchcount[k], 0) << k;

  // F5 again on the same aggregate doubles every entry (and restarts the count).
  Statistics();
  EXPECT_EQ(stats.branchcount[0], 6);
  EXPECT_EQ(stats.branchcount[1], 6);
  EXPECT_EQ(stats.branchcount[2], 2);
  EXPECT_EQ(options.calcstats, 1);
  EXPECT_EQ(boxcountstate.depth, 0);
}

TEST_F(StatisticsTest, TenOrMoreChildrenCountAsNine) {
  AppendCell(P(0, 0, 0), 0, -1);
  for (int i = 0; i < 11; i++) AppendCell(P(1 + i, 0, 0), 0, 0);
  growthstate.radius = 12;
  Statistics();
  EXPECT_EQ(stats.branchcount[9], 1);
  EXPECT_EQ(stats.branchcount[0], 11);
}

TEST_F(StatisticsTest, LevelsSizesAndTheOldEdgeOffsets) {
  MakeCornerSegment(9, 0.5);
  options.stldrawmode = STLDRAW_SOLID;
  options.dladrawmode = DLADRAW_POINTS;
  Statistics();  // start and the first box, [-13.5,-9]^3, which holds the segment
  EXPECT_EQ(options.stldrawmode, 0);
  EXPECT_EQ(options.dladrawmode, DLADRAW_LINES);
  EXPECT_EQ(stats.boxsize[0], 4.5);
  EXPECT_EQ(stats.boxcount[0], 1);
  for (int k = 1; k < 10; k++) EXPECT_EQ(stats.boxcount[k], -1) << k;
  ASSERT_EQ(boxcountstate.nboxes, 1);
  EXPECT_EQ(boxcountstate.boxes[0].low.x, -13.5);
  EXPECT_EQ(boxcountstate.boxes[0].high.z, -9);

  // Steps per level: edge 4.5 from -13.5 gives 6 positions per axis; edge 3
  // from -13.5 (then -12 after each reset) 8; edge 2 from -12 (then -11) 11.
  int steps[10] = {0};
  steps[0] = 1;
  int finished = 0;
  while (!finished && boxcountstate.depth < 3) {
    int before = boxcountstate.depth;
    finished = BoxCountStep();
    steps[before]++;
    if (boxcountstate.depth == 1 && before == 0) {
      // The new level starts at -radius minus the edge just finished.
      EXPECT_EQ(boxcountstate.scale, 3);
      EXPECT_EQ(boxcountstate.p0.x, -13.5);
      EXPECT_EQ(boxcountstate.p0.y, -13.5);
      EXPECT_EQ(boxcountstate.p0.z, -13.5);
      EXPECT_EQ(boxcountstate.nboxes, 0);
      EXPECT_EQ(stats.boxcount[1], 0);
    }
    if (boxcountstate.depth == 2 && before == 1) {
      EXPECT_EQ(boxcountstate.p0.x, -12);
      EXPECT_EQ(boxcountstate.p0.z, -12);
    }
  }
  EXPECT_EQ(finished, 0);
  EXPECT_EQ(steps[0], 216);
  EXPECT_EQ(steps[1], 512);
  EXPECT_EQ(steps[2], 1331);
  // Only the offset first row of level 1 reaches x = -13; level 2 starts at -12.
  EXPECT_EQ(stats.boxcount[1], 1);
  EXPECT_EQ(stats.boxcount[2], 0);
  EXPECT_EQ(donecalls, 0);

  // Edges 2 / 1.5 = 4/3 then 8/9: below 2 * branchlength = 1, so the count
  // ends when level 3 is done and level 4 keeps its size and a count of 0.
  while (!finished) finished = BoxCountStep();
  EXPECT_EQ(boxcountstate.depth, 4);
  EXPECT_DOUBLE_EQ(stats.boxsize[3], 4.0 / 3.0);
  EXPECT_DOUBLE_EQ(stats.boxsize[4], 8.0 / 9.0);
  EXPECT_EQ(stats.boxcount[3], 0);
  EXPECT_EQ(stats.boxcount[4], 0);
  for (int k = 5; k < 10; k++) EXPECT_EQ(stats.boxcount[k], -1) << k;
  EXPECT_EQ(options.calcstats, 0);
  EXPECT_EQ(donecalls, 1);
  EXPECT_EQ(options.stldrawmode, STLDRAW_SOLID);
  EXPECT_EQ(options.dladrawmode, DLADRAW_POINTS);
  // Idle from now on: a further step does nothing.
  EXPECT_EQ(BoxCountStep(), 0);
  EXPECT_EQ(boxcountstate.depth, 4);
}

TEST_F(StatisticsTest, LongBranchesStopAfterTheFirstBox) {
  MakeCornerSegment(9, 3);  // 2 * 3 > 9 / 2
  options.stldrawmode = STLDRAW_MIDPOINTS;
  options.dladrawmode = DLADRAW_TUBES;
  Statistics();
  EXPECT_EQ(options.calcstats, 0);
  EXPECT_EQ(stats.boxcount[0], 1);
  EXPECT_EQ(stats.boxcount[1], -1);
  EXPECT_EQ(donecalls, 1);
  EXPECT_EQ(options.stldrawmode, STLDRAW_MIDPOINTS);
  EXPECT_EQ(options.dladrawmode, DLADRAW_TUBES);

  // Same, with the segment moved away from the first box: count 0.
  ResetExportState();
  AppendCell(P(0, 0, 0), 1, -1);
  AppendCell(P(1, 0, 0), 0, 0);
  growthstate.radius = 9;
  growthstate.branchlength = 3;
  Statistics();
  EXPECT_EQ(options.calcstats, 0);
  EXPECT_EQ(stats.boxcount[0], 0);
}

TEST_F(StatisticsTest, NoCells) {
  stats.branchcount[0] = 4;
  stats.timestep = 9;
  options.dladrawmode = DLADRAW_OFF;
  Statistics();
  EXPECT_EQ(stats.timestep, 0);
  EXPECT_EQ(stats.branchcount[0], 4);
  for (int k = 1; k < 10; k++) EXPECT_EQ(stats.branchcount[k], 0) << k;
  EXPECT_EQ(stats.boxsize[0], 0);
  EXPECT_EQ(stats.boxcount[0], 0);
  EXPECT_EQ(options.calcstats, 0);  // radius 0: the edge is below 2 * branchlength at once
  EXPECT_EQ(options.dladrawmode, DLADRAW_OFF);
}

TEST_F(StatisticsTest, StepsDoNothingWhileIdleAndBatchRunEnds) {
  MakeCornerSegment(9, 0.5);
  EXPECT_EQ(BoxCountStep(), 0);
  BoxCountStart();
  EXPECT_EQ(options.stldrawmode, STLDRAW_WIREFRAME);  // not started: calcstats is 0

  RunStatisticsToCompletion();
  EXPECT_EQ(options.calcstats, 0);
  EXPECT_EQ(boxcountstate.depth, 4);
  EXPECT_EQ(stats.boxcount[0], 1);
  EXPECT_EQ(donecalls, 1);

  // An edge of 0 with branch length 0 could never advance: ended, not looped.
  ResetExportState();
  growthstate.branchlength = 0;
  RunStatisticsToCompletion();
  EXPECT_EQ(options.calcstats, 0);
  EXPECT_EQ(options.dladrawmode, DLADRAW_LINES);
  EXPECT_EQ(options.stldrawmode, STLDRAW_WIREFRAME);
}
