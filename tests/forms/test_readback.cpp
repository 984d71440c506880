// What the forms store when an input comes back: clamps, negation,
// truncation, empty text, and the restarts of the root settings.
#include "forms/readback.h"
#include "growth/growth.h"
#include "test_util.h"

namespace {

using FormReadBack = Fresh;

TEST_F(FormReadBack, EachSettingWithItsRule) {
  GROWTHSTATE &g = sim.growthstate;
  // Not a finite number ("nan", "inf", 1e999) reads as text that is not a number: 0, then the rule.
  // The seed: a decimal number truncated toward zero, then made positive; the slice count: atoi ("1e3" is 1),
  // at least 2; the thick end is not compared with the start.
  struct {
    void (*read)(SIMULATION &, const char *);
    double *field;
    int *count;                                           // for the whole-number settings
    std::vector<std::pair<const char *, double>> stored;  // each text and what it stores
  } cases[] = {
      {ReadStickinessText, &g.stickiness, NULL, {{"250", 100}, {"0.5", 1}, {"37.5", 37.5}, {"", 1}, {"nan", 1}}},
      {ReadBiasText, &g.bias, NULL, {{"1.5", 1}, {"-0.2", 0}, {"0.25", 0.25}, {"inf", 0}}},
      {ReadRotationText, &g.rotation, NULL, {{"12", 5}, {"-12", -5}, {"-2.5", -2.5}, {"-nan", 0}}},
      {ReadIntersectRangeText, &g.intersectrange, NULL, {{"95", 90}, {"-1", 0}, {"45", 45}, {"NAN", 0}}},
      {ReadBranchLengthText, &g.branchlength, NULL, {{"", 0.01}, {"-3", 0.01}, {"2500", 2500}, {"1e999", 0.01}}},
      {ReadThickEndText, &g.thickend, NULL, {{"-0.3", 0.3}, {"7", 7}, {"-inf", 0}}},
      {ReadThickStartText, &g.thickstart, NULL, {{"-2", 2}, {"abc", 0}}},
      {ReadSeedText, NULL, &g.seed, {{"-42.9", 42}, {"1e3", 1000}, {"", 0}}},
      {ReadSliceCountText, NULL, &sim.options.nslices, {{"1", 2}, {"-9", 2}, {"7.8", 7}, {"1e3", 2}}}};
  for (auto &c : cases)
    for (auto &t : c.stored) {
      c.read(sim, t.first);
      EXPECT_EQ(c.field ? *c.field : *c.count, t.second) << t.first;
    }
  EXPECT_EQ(TruncateText("1e30") + TruncateText("-1e30") + TruncateText("nan"), 0);  // held in the int range
  EXPECT_EQ(TruncateText("1e30"), 2147483647);
}

TEST_F(FormReadBack, RootSettingsRestartOnNewRoots) {
  sim.growthstate.rootdistribution = ROOT_SPHERICAL;
  AppendCell(sim, V(1, 0, 0), 0, 0);  // a grown cell the restart drops
  sim.growthstate.growing = 0;
  ReadNumberOfRootsText(sim, "-7");
  EXPECT_EQ(sim.growthstate.nroots * 100 + sim.ncells * 10 + sim.growthstate.growing, 771);
  for (int i = 0; i < sim.ncells; i++) EXPECT_EQ(sim.cells[i].parent, -1);
  sim.growthstate.rootdistribution = ROOT_RINGZ;
  ReadNumberOfRootsText(sim, "2147483647");  // as many cells as roots: held to a million
  EXPECT_EQ(sim.growthstate.nroots * 10 + (sim.ncells == MAXROOTS), 10000001);
  ReadNumberOfRootsText(sim, "4.9");
  ReadRootRangeText(sim, "inf");
  EXPECT_EQ(sim.growthstate.rootrange, 0);
  ReadRootRangeText(sim, "-20");  // unclamped: a ring of radius -20
  ASSERT_EQ(sim.ncells, 4);
  EXPECT_XYZ(sim.cells[1].p, 0, -20, 0, 1e-12);
  AppendCell(sim, V(1, 0, 0), 0, 0);
  SetAssociate(sim, 1);
  EXPECT_EQ(sim.growthstate.associate * 10 + sim.ncells, 14);
}

TEST_F(FormReadBack, SliceNormalStoredAsTyped) {
  ReadSliceNormalText(sim, 0, "3");
  ReadSliceNormalText(sim, 1, "-4");
  ReadSliceNormalText(sim, 2, "");
  EXPECT_XYZ(SliceNormalForCut(sim), 0.6, -0.8, 0, 1e-15);
  EXPECT_XYZ(sim.options.slicenormal, 3, -4, 0, 0);  // the stored field is not normalised
  for (const char *x : {"6e-6", "0"}) {          // below 1e-5 in length: z becomes 1 and stays, x stays
    ReadSliceNormalText(sim, 0, x);
    ReadSliceNormalText(sim, 1, "0");
    ReadSliceNormalText(sim, 2, "0");
    EXPECT_XYZ(SliceNormalForCut(sim), atof(x), 0, 1, 1e-9);
    EXPECT_XYZ(sim.options.slicenormal, atof(x), 0, 1, 0);
  }
  ReadSliceNormalText(sim, 2, "-2e-5");  // just above: kept
  EXPECT_XYZ(SliceNormalForCut(sim), 0, 0, -1, 1e-12);
}

}  // namespace
