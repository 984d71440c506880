// Growth against a sample constraint surface: a particle whose branch would
// cross the surface is refused, so the aggregate stays on the roots' side.
#include <gtest/gtest.h>
#include <math.h>

#include <string>
#include <vector>

#include "growth_test_util.h"
#include "surface/samples.h"
#include "surface/transform.h"

namespace {

struct SURFACERUN {
  int cuts;     // "*** Cuts constraint surface" lines
  int gaps;     // "*** Gap poke through" lines
  double minz;  // lowest cell
  double maxr;  // farthest cell from the origin
};

int CountLines(const std::string &text, const std::string &line) {
  int n = 0;
  for (size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + line.size())) n++;
  return n;
}

// A fresh program with one root at the origin, the sample (code 100 for no
// surface) scaled and shifted as the transform form would, then growth with
// diagnostics on until ncells cells.
SURFACERUN GrowAgainst(int sample, XYZ scale, XYZ shift, int ncellswanted) {
  ResetGrowthForTest();
  MakeSampleSurface(sample);
  XYZ norotation = {0, 0, 0};
  TransformSTL(scale, shift, norotation);
  UpdateSTL();
  InitialiseGrowth();
  ResetSeeds();
  options.debug = 1;
  testing::internal::CaptureStderr();
  for (long step = 0; ncells < ncellswanted && step < 50000000L; step++) IterateSystem();
  std::string err = testing::internal::GetCapturedStderr();
  options.debug = 0;

  SURFACERUN r = {CountLines(err, "*** Cuts constraint surface\n"), CountLines(err, "*** Gap poke through\n"), 0, 0};
  for (int i = 0; i < ncells; i++) {
    XYZ p = cells[i].p;
    if (p.z < r.minz) r.minz = p.z;
    double d = sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
    if (d > r.maxr) r.maxr = d;
  }
  return r;
}

TEST(SurfaceGrowth, PlaneBelowTheRootRefusesEveryBranchBelowIt) {
  // The plane sample lifted from z = -20 to z = -3: cells would reach
  // below it within a few hundred cells.
  XYZ one = {1, 1, 1};
  XYZ lift = {0, 0, 17};
  XYZ still = {0, 0, 0};

  SURFACERUN free = GrowAgainst(SAMPLE_NONE, one, still, 300);
  ASSERT_EQ(ncells, 300);
  EXPECT_EQ(free.cuts, 0);
  EXPECT_EQ(free.gaps, 0);
  EXPECT_LT(free.minz, -3.5) << "without the plane the aggregate must reach below it, or the test shows nothing";

  SURFACERUN held = GrowAgainst(SAMPLE_PLANE, one, lift, 300);
  ASSERT_EQ(ncells, 300);
  EXPECT_EQ(nstltri, 800);
  EXPECT_EQ(stlmin.z, -3);
  EXPECT_GT(held.cuts, 0);
  // No cell lies below the plane, and so no particle below it can touch a
  // cell without cutting it first: the gap test never decides.
  EXPECT_GE(held.minz, -3);
  EXPECT_EQ(held.gaps, 0);
}

TEST(SurfaceGrowth, ClosedSphereHoldsTheAggregate) {
  // The sphere sample shrunk to radius 7 so that a short run presses on it.
  XYZ shrink = {0.35, 0.35, 0.35};
  XYZ still = {0, 0, 0};
  XYZ one = {1, 1, 1};

  SURFACERUN free = GrowAgainst(SAMPLE_NONE, one, still, 400);
  ASSERT_EQ(ncells, 400);
  EXPECT_GT(free.maxr, 7.5) << "without the sphere the aggregate must grow past it, or the test shows nothing";

  SURFACERUN held = GrowAgainst(SAMPLE_SPHERE, shrink, still, 400);
  ASSERT_EQ(ncells, 400);
  EXPECT_EQ(nstltri, 5040);
  EXPECT_GT(held.cuts, 0);
  // The facets are chords of the sphere, so inside the mesh is inside the
  // radius.
  EXPECT_LT(held.maxr, 7);
}

TEST(SurfaceGrowth, FarSurfaceChangesNothing) {
  // A surface far away from everything refuses nothing: the cells are those
  // of a run without a surface, bit for bit (the surface tests draw no
  // random numbers).
  XYZ one = {1, 1, 1};
  XYZ far = {0, 0, -500};
  XYZ still = {0, 0, 0};
  GrowAgainst(SAMPLE_NONE, one, still, 150);
  std::vector<CELL> free(cells.begin(), cells.begin() + ncells);
  SURFACERUN held = GrowAgainst(SAMPLE_PLANE, one, far, 150);
  EXPECT_EQ(held.cuts, 0);
  ASSERT_EQ(ncells, 150);
  for (int i = 0; i < 150; i++) {
    EXPECT_EQ(cells[i].p.x, free[i].p.x) << i;
    EXPECT_EQ(cells[i].p.z, free[i].p.z) << i;
    EXPECT_EQ(cells[i].parent, free[i].parent) << i;
  }
}

}  // namespace
