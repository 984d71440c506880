// What the forms store when an input comes back: clamps, negation,
// truncation, empty text, and the restarts of the root settings.
#include <gtest/gtest.h>

#include "app/records.h"
#include "forms/readback.h"
#include "growth/growth.h"
#include "surface/stl.h"

namespace {

// A fresh program: option and growth defaults, one root at the origin.
void Fresh(void) {
  SetOptionDefaults();
  InitialiseGrowth();  // the first call in the process applies the defaults
  SetGrowthDefaults();
  InitialiseGrowth();
  ResetSeeds();
}

XYZ V(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

TEST(FormReadBack, PercentAndRangeSettingsAreClamped) {
  Fresh();
  ReadStickinessText("250");
  EXPECT_EQ(growthstate.stickiness, 100);
  ReadStickinessText("0.5");
  EXPECT_EQ(growthstate.stickiness, 1);
  ReadStickinessText("37.5");
  EXPECT_EQ(growthstate.stickiness, 37.5);
  ReadStickinessText("");
  EXPECT_EQ(growthstate.stickiness, 1);

  ReadBiasText("1.5");
  EXPECT_EQ(growthstate.bias, 1);
  ReadBiasText("-0.2");
  EXPECT_EQ(growthstate.bias, 0);
  ReadBiasText("0.25");
  EXPECT_EQ(growthstate.bias, 0.25);

  ReadRotationText("12");
  EXPECT_EQ(growthstate.rotation, 5);
  ReadRotationText("-12");
  EXPECT_EQ(growthstate.rotation, -5);
  ReadRotationText("-2.5");
  EXPECT_EQ(growthstate.rotation, -2.5);

  ReadIntersectRangeText("95");
  EXPECT_EQ(growthstate.intersectrange, 90);
  ReadIntersectRangeText("-1");
  EXPECT_EQ(growthstate.intersectrange, 0);
  ReadIntersectRangeText("45");
  EXPECT_EQ(growthstate.intersectrange, 45);
}

TEST(FormReadBack, BranchLengthHasOnlyALowerBound) {
  Fresh();
  ReadBranchLengthText("");
  EXPECT_EQ(growthstate.branchlength, 0.01);
  ReadBranchLengthText("0.005");
  EXPECT_EQ(growthstate.branchlength, 0.01);
  ReadBranchLengthText("-3");
  EXPECT_EQ(growthstate.branchlength, 0.01);
  ReadBranchLengthText("0.01");
  EXPECT_EQ(growthstate.branchlength, 0.01);
  ReadBranchLengthText("2500");
  EXPECT_EQ(growthstate.branchlength, 2500);
}

TEST(FormReadBack, ThicknessesAndSeedAreNegatedNotClamped) {
  Fresh();
  ReadThickEndText("-0.3");
  EXPECT_EQ(growthstate.thickend, 0.3);
  ReadThickStartText("-2");
  EXPECT_EQ(growthstate.thickstart, 2);
  // Not compared with each other: the first may exceed the second.
  ReadThickEndText("7");
  EXPECT_EQ(growthstate.thickend, 7);
  EXPECT_EQ(growthstate.thickstart, 2);
  ReadThickStartText("abc");
  EXPECT_EQ(growthstate.thickstart, 0);

  // Read as a decimal number and truncated toward zero, unlike atoi.
  ReadSeedText("-42.9");
  EXPECT_EQ(growthstate.seed, 42);
  ReadSeedText("77.99");
  EXPECT_EQ(growthstate.seed, 77);
  ReadSeedText("1e3");
  EXPECT_EQ(growthstate.seed, 1000);
  ReadSeedText("");
  EXPECT_EQ(growthstate.seed, 0);
}

TEST(FormReadBack, TruncationStaysWithinTheIntRange) {
  EXPECT_EQ(TruncateText("-0.99"), 0);
  EXPECT_EQ(TruncateText("2.999"), 2);
  EXPECT_EQ(TruncateText("1e30"), 2147483647);
  EXPECT_EQ(TruncateText("-1e30"), -2147483647);
  EXPECT_EQ(TruncateText("nan"), 0);
}

TEST(FormReadBack, NumberOfRootsIsMadePositiveAndRestarts) {
  Fresh();
  growthstate.rootdistribution = ROOT_SPHERICAL;
  AppendCell(V(1, 0, 0), 0, 0);  // a grown cell the restart must drop
  growthstate.growing = 0;
  ReadNumberOfRootsText("-7");
  EXPECT_EQ(growthstate.nroots, 7);
  EXPECT_EQ(ncells, 7);
  for (int i = 0; i < ncells; i++) EXPECT_EQ(cells[i].parent, -1);
  EXPECT_EQ(growthstate.growing, 1);
  EXPECT_STREQ(growthstate.rootname, "Spherical");

  ReadNumberOfRootsText("3.9");
  EXPECT_EQ(growthstate.nroots, 3);
  EXPECT_EQ(ncells, 3);
}

TEST(FormReadBack, RootRangeIsUnclampedAndRestarts) {
  Fresh();
  growthstate.rootdistribution = ROOT_RINGZ;
  growthstate.nroots = 4;
  ReadRootRangeText("5");
  EXPECT_EQ(growthstate.rootrange, 5);
  ASSERT_EQ(ncells, 4);
  // Ring of radius 5 in the z plane: the first root on +x, the second on +y.
  EXPECT_NEAR(cells[0].p.x, 5, 1e-12);
  EXPECT_NEAR(cells[0].p.y, 0, 1e-12);
  EXPECT_NEAR(cells[1].p.x, 0, 1e-12);
  EXPECT_NEAR(cells[1].p.y, 5, 1e-12);
  // Radius: the larger of 10 * branch length and range + 10.
  EXPECT_EQ(growthstate.radius, 15);

  ReadRootRangeText("-20");
  EXPECT_EQ(growthstate.rootrange, -20);
  EXPECT_NEAR(cells[0].p.x, -20, 1e-12);
}

TEST(FormReadBack, AssociateRestarts) {
  Fresh();
  AppendCell(V(1, 0, 0), 0, 0);
  ASSERT_EQ(ncells, 2);
  SetAssociate(1);
  EXPECT_EQ(growthstate.associate, 1);
  EXPECT_EQ(ncells, 1);
  SetAssociate(0);
  EXPECT_EQ(growthstate.associate, 0);
}

TEST(FormReadBack, SliceCountIsAnIntegerOfAtLeastTwo) {
  Fresh();
  ReadSliceCountText("1");
  EXPECT_EQ(options.nslices, 2);
  ReadSliceCountText("");
  EXPECT_EQ(options.nslices, 2);
  ReadSliceCountText("-9");
  EXPECT_EQ(options.nslices, 2);
  ReadSliceCountText("7.8");
  EXPECT_EQ(options.nslices, 7);
  // atoi stops at the exponent: "1e3" is 1, so 2.
  ReadSliceCountText("1e3");
  EXPECT_EQ(options.nslices, 2);
  ReadSliceCountText("2");
  EXPECT_EQ(options.nslices, 2);
}

TEST(FormReadBack, SliceNormalIsStoredAsTypedAndCutAlongAUnitCopy) {
  Fresh();
  ReadSliceNormalText(0, "3");
  ReadSliceNormalText(1, "-4");
  ReadSliceNormalText(2, "");
  EXPECT_EQ(options.slicenormal.x, 3);
  EXPECT_EQ(options.slicenormal.y, -4);
  EXPECT_EQ(options.slicenormal.z, 0);
  XYZ n = SliceNormalForCut();
  EXPECT_NEAR(n.x, 0.6, 1e-15);
  EXPECT_NEAR(n.y, -0.8, 1e-15);
  EXPECT_EQ(n.z, 0);
  // The stored field is not normalised.
  EXPECT_EQ(options.slicenormal.x, 3);
  EXPECT_EQ(options.slicenormal.y, -4);

  // A zero normal becomes (0, 0, 1) and stays so.
  ReadSliceNormalText(0, "0");
  ReadSliceNormalText(1, "0");
  ReadSliceNormalText(2, "0");
  n = SliceNormalForCut();
  EXPECT_EQ(n.x, 0);
  EXPECT_EQ(n.y, 0);
  EXPECT_EQ(n.z, 1);
  EXPECT_EQ(options.slicenormal.z, 1);

  // Below 1e-5 in length: only z is set, x and y stay.
  ReadSliceNormalText(0, "6e-6");
  ReadSliceNormalText(1, "-6e-6");
  ReadSliceNormalText(2, "0");
  n = SliceNormalForCut();
  EXPECT_EQ(options.slicenormal.x, 6e-6);
  EXPECT_EQ(options.slicenormal.y, -6e-6);
  EXPECT_EQ(options.slicenormal.z, 1);
  EXPECT_NEAR(n.z, 1, 1e-9);
  EXPECT_GT(n.x, 0);

  // Just above 1e-5 it is kept (and normalised in the copy only).
  ReadSliceNormalText(0, "0");
  ReadSliceNormalText(1, "0");
  ReadSliceNormalText(2, "-2e-5");
  n = SliceNormalForCut();
  EXPECT_EQ(options.slicenormal.z, -2e-5);
  EXPECT_NEAR(n.z, -1, 1e-12);
}

TEST(FormReadBack, ApplyRotatesThenScalesThenShifts) {
  Fresh();
  nstltri = 0;
  AppendFacet(V(0, 0, 0), V(1, 0, 0), V(0, 1, 0));
  UpdateSTL();
  const char *text[9] = {"2", "3", "4", "1", "0", "-1", "0", "0", "180"};
  ApplyTransformText(text);
  ASSERT_EQ(nstltri, 1);
  // Half a turn about z: (1,0,0) -> (-1,0,0), (0,1,0) -> (0,-1,0); then
  // scaled by (2,3,4) and shifted by (1,0,-1).
  const double tol = 1e-6;  // the degree factor is truncated
  EXPECT_NEAR(stltri[0].p[0].x, 1, tol);
  EXPECT_NEAR(stltri[0].p[0].z, -1, tol);
  EXPECT_NEAR(stltri[0].p[1].x, -1, tol);
  EXPECT_NEAR(stltri[0].p[1].y, 0, tol);
  EXPECT_NEAR(stltri[0].p[2].x, 1, tol);
  EXPECT_NEAR(stltri[0].p[2].y, -3, tol);
  EXPECT_NEAR(stlmin.x, -1, tol);
  EXPECT_NEAR(stlmax.x, 1, tol);
  EXPECT_NEAR(stlmin.y, -3, tol);
  EXPECT_NEAR(stlmax.y, 0, tol);
  EXPECT_NEAR(stlmin.z, -1, tol);
  EXPECT_NEAR(stlmax.z, -1, tol);
  EXPECT_NEAR(stlmid.y, -1.5, tol);

  // The identity the form offers changes nothing.
  const char *identity[9] = {"1.0", "1.0", "1.0", "0.0", "0.0", "0.0", "0.0", "0.0", "0.0"};
  ApplyTransformText(identity);
  EXPECT_NEAR(stlmin.y, -3, tol);
  EXPECT_NEAR(stlmax.x, 1, tol);
  nstltri = 0;
  UpdateSTL();
}

}  // namespace
