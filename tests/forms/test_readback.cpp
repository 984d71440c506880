// What the forms store when an input comes back: clamps, negation,
// truncation, empty text, and the restarts of the root settings.
#include "forms/readback.h"
#include "growth/growth.h"
#include "surface/stl.h"
#include "test_util.h"

namespace {

using FormReadBack = Fresh;

TEST_F(FormReadBack, EachSettingWithItsRule) {
  struct { void (*read)(const char *); double *field; const char *text; double stored; } cases[] = {
      {ReadStickinessText, &growthstate.stickiness, "250", 100}, {ReadStickinessText, &growthstate.stickiness, "0.5", 1},
      {ReadStickinessText, &growthstate.stickiness, "37.5", 37.5}, {ReadStickinessText, &growthstate.stickiness, "", 1},
      {ReadBiasText, &growthstate.bias, "1.5", 1}, {ReadBiasText, &growthstate.bias, "-0.2", 0},
      {ReadBiasText, &growthstate.bias, "0.25", 0.25}, {ReadRotationText, &growthstate.rotation, "12", 5},
      {ReadRotationText, &growthstate.rotation, "-12", -5}, {ReadRotationText, &growthstate.rotation, "-2.5", -2.5},
      {ReadIntersectRangeText, &growthstate.intersectrange, "95", 90},
      {ReadIntersectRangeText, &growthstate.intersectrange, "-1", 0},
      {ReadIntersectRangeText, &growthstate.intersectrange, "45", 45},
      {ReadBranchLengthText, &growthstate.branchlength, "", 0.01},
      {ReadBranchLengthText, &growthstate.branchlength, "-3", 0.01},
      {ReadBranchLengthText, &growthstate.branchlength, "0.01", 0.01},
      {ReadBranchLengthText, &growthstate.branchlength, "2500", 2500},
      {ReadThickEndText, &growthstate.thickend, "-0.3", 0.3}, {ReadThickEndText, &growthstate.thickend, "7", 7},
      {ReadThickStartText, &growthstate.thickstart, "-2", 2}, {ReadThickStartText, &growthstate.thickstart, "abc", 0}};
  for (auto &c : cases) {
    SCOPED_TRACE(c.text);
    c.read(c.text);
    EXPECT_EQ(*c.field, c.stored);
  }
  EXPECT_EQ(growthstate.thickend, 7);  // the thicknesses are not compared with each other
  // The seed: a decimal number truncated toward zero, then made positive.
  for (auto s : {std::make_pair("-42.9", 42), std::make_pair("77.99", 77), std::make_pair("1e3", 1000), std::make_pair("", 0)}) {
    ReadSeedText(s.first);
    EXPECT_EQ(growthstate.seed, s.second) << s.first;
  }
  EXPECT_EQ(TruncateText("1e30"), 2147483647);
  EXPECT_EQ(TruncateText("-1e30"), -2147483647);
  EXPECT_EQ(TruncateText("nan"), 0);
  // The slice count: atoi, at least 2 ("1e3" is 1).
  for (auto s : {std::make_pair("1", 2), std::make_pair("", 2), std::make_pair("-9", 2), std::make_pair("7.8", 7),
                 std::make_pair("1e3", 2)}) {
    ReadSliceCountText(s.first);
    EXPECT_EQ(options.nslices, s.second) << s.first;
  }
}

TEST_F(FormReadBack, RootSettingsRestartOnNewRoots) {
  growthstate.rootdistribution = ROOT_SPHERICAL;
  AppendCell(V(1, 0, 0), 0, 0);  // a grown cell the restart drops
  growthstate.growing = 0;
  ReadNumberOfRootsText("-7");
  EXPECT_EQ(growthstate.nroots, 7);
  EXPECT_EQ(ncells, 7);
  for (int i = 0; i < ncells; i++) EXPECT_EQ(cells[i].parent, -1);
  EXPECT_EQ(growthstate.growing, 1);
  ReadNumberOfRootsText("3.9");
  EXPECT_EQ(ncells, 3);
  growthstate.rootdistribution = ROOT_RINGZ, growthstate.nroots = 4;
  ReadRootRangeText("5");  // a ring of radius 5: the first root on +x, the second on +y
  EXPECT_NEAR(cells[0].p.x, 5, 1e-12);
  EXPECT_NEAR(cells[1].p.y, 5, 1e-12);
  EXPECT_EQ(growthstate.radius, 15);
  ReadRootRangeText("-20");  // unclamped
  EXPECT_NEAR(cells[0].p.x, -20, 1e-12);
  AppendCell(V(1, 0, 0), 0, 0);
  SetAssociate(1);
  EXPECT_EQ(growthstate.associate, 1);
  EXPECT_EQ(ncells, 4);  // the grown cell dropped
}

TEST_F(FormReadBack, SliceNormalIsStoredAsTypedAndCutAlongAUnitCopy) {
  ReadSliceNormalText(0, "3");
  ReadSliceNormalText(1, "-4");
  ReadSliceNormalText(2, "");
  XYZ n = SliceNormalForCut();
  EXPECT_NEAR(n.x, 0.6, 1e-15);
  EXPECT_NEAR(n.y, -0.8, 1e-15);
  EXPECT_EQ(options.slicenormal.x, 3);  // the stored field is not normalised
  // Below 1e-5 in length: z becomes 1 and stays; x and y stay as they are.
  ReadSliceNormalText(0, "6e-6");
  ReadSliceNormalText(1, "-6e-6");
  ReadSliceNormalText(2, "0");
  n = SliceNormalForCut();
  EXPECT_EQ(options.slicenormal.x, 6e-6);
  EXPECT_EQ(options.slicenormal.z, 1);
  EXPECT_NEAR(n.z, 1, 1e-9);
  EXPECT_GT(n.x, 0);
  ReadSliceNormalText(0, "0");
  ReadSliceNormalText(1, "0");
  ReadSliceNormalText(2, "-2e-5");  // just above: kept
  EXPECT_NEAR(SliceNormalForCut().z, -1, 1e-12);
  EXPECT_EQ(options.slicenormal.z, -2e-5);
}

TEST_F(FormReadBack, ApplyRotatesThenScalesThenShifts) {
  AppendFacet(V(0, 0, 0), V(1, 0, 0), V(0, 1, 0));
  UpdateSTL();
  const char *text[9] = {"2", "3", "4", "1", "0", "-1", "0", "0", "180"};
  ApplyTransformText(text);
  // Half a turn about z, then scaled by (2,3,4), then shifted by (1,0,-1).
  EXPECT_NEAR(stltri[0].p[1].x, -1, 1e-6);
  EXPECT_NEAR(stltri[0].p[2].y, -3, 1e-6);
  EXPECT_NEAR(stltri[0].p[2].z, -1, 1e-6);
  EXPECT_NEAR(stlmid.y, -1.5, 1e-6);
  const char *identity[9] = {"1.0", "1.0", "1.0", "0.0", "0.0", "0.0", "0.0", "0.0", "0.0"};
  ApplyTransformText(identity);
  EXPECT_NEAR(stltri[0].p[2].y, -3, 1e-6);
}

}  // namespace
