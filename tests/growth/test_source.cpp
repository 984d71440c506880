#include <gtest/gtest.h>
#include <math.h>

#include "growth/random.h"
#include "growth_test_util.h"
#include "surface/stl.h"

namespace {

XYZ Scaled(XYZ d, double r) {
  double l = sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
  XYZ out = {d.x / l * r, d.y / l * r, d.z / l * r};
  return out;
}

void ExpectSame(XYZ a, XYZ b) {
  EXPECT_DOUBLE_EQ(a.x, b.x);
  EXPECT_DOUBLE_EQ(a.y, b.y);
  EXPECT_DOUBLE_EQ(a.z, b.z);
}

// The direction each code builds from the draws r[0], r[1], r[2] (in the
// order dx, dy, dz), with s = 0.1 * branch length.
XYZ Expected(int code, const double *r, double s) {
  double pm = r[0] < 0.5 ? -1 : 1;  // the sign, when it is the first draw
  switch (code) {
    case 2: return {1, (r[0] - 0.5) * s, (r[1] - 0.5) * s};
    case 3: return {-1, (r[0] - 0.5) * s, (r[1] - 0.5) * s};
    case 4: return {pm, (r[1] - 0.5) * s, (r[2] - 0.5) * s};
    case 5: return {(r[0] - 0.5) * s, 1, (r[1] - 0.5) * s};
    case 6: return {(r[0] - 0.5) * s, -1, (r[1] - 0.5) * s};
    case 7: return {(r[0] - 0.5) * s, r[1] < 0.5 ? -1.0 : 1.0, (r[2] - 0.5) * s};
    case 8: return {(r[0] - 0.5) * s, (r[1] - 0.5) * s, 1};
    case 9: return {(r[0] - 0.5) * s, (r[1] - 0.5) * s, -1};
    case 10: return {(r[0] - 0.5) * s, (r[1] - 0.5) * s, r[2] < 0.5 ? -1.0 : 1.0};
    case 11: return {1, 2 * (r[0] - 0.5), 2 * (r[1] - 0.5)};
    case 12: return {2 * (r[0] - 0.5), 1, 2 * (r[1] - 0.5)};
    case 13: return {2 * (r[0] - 0.5), 2 * (r[1] - 0.5), 1};
    case 14: return {0.5 * r[0], r[1] - 0.5, r[2] - 0.5};
    case 15: return {r[0] - 0.5, 0.5 * r[1], r[2] - 0.5};
    case 16: return {r[0] - 0.5, r[1] - 0.5, 0.5 * r[2]};
    default: return {r[0] - 0.5, r[1] - 0.5, r[2] - 0.5};
  }
}

int DrawsOf(int code) {
  if (code >= 2 && code <= 13) return (code == 4 || code == 7 || code == 10) ? 3 : 2;
  return 3;
}

TEST(Source, EveryCodeFollowsItsDirectionRule) {
  ResetGrowthForTest();
  growthstate.branchlength = 2;  // s = 0.2
  for (int code = -1; code <= 18; code++) {
    for (unsigned seed = 1; seed <= 40; seed++) {
      SCOPED_TRACE(testing::Message() << "code " << code << " seed " << seed);
      GrowthSrand48(seed);
      double r[4];
      for (int k = 0; k < 4; k++) r[k] = GrowthDrand48();
      GrowthSrand48(seed);
      XYZ got = GetNewParticle(code, 7.5);
      ExpectSame(got, Scaled(Expected(code, r, 0.2), 7.5));
      EXPECT_NEAR(sqrt(got.x * got.x + got.y * got.y + got.z * got.z), 7.5, 1e-12);
      // Exactly the draws the rule needs were taken.
      EXPECT_EQ(GrowthDrand48(), r[DrawsOf(code)]);
    }
  }
}

TEST(Source, AxisSourcesStayInTheirCone) {
  ResetGrowthForTest();
  GrowthSrand48(3);
  for (int i = 0; i < 2000; i++) {
    double r = 12;
    XYZ p = GetNewParticle(2, r);
    EXPECT_GT(p.x, 0);
    EXPECT_LE(fabs(p.y), 0.05 * r);
    EXPECT_LE(fabs(p.z), 0.05 * r);
    XYZ h = GetNewParticle(16, r);  // hemisphere: positive side only
    EXPECT_GE(h.z, 0);
    XYZ q = GetNewParticle(13, r);  // plane: within 45 degrees of +z
    EXPECT_GT(q.z, 0);
    EXPECT_LE(fabs(q.x), q.z + 1e-12);
    EXPECT_LE(fabs(q.y), q.z + 1e-12);
  }
}

TEST(Source, DoubleAxisUsesBothEnds) {
  ResetGrowthForTest();
  GrowthSrand48(11);
  int plus = 0, minus = 0;
  for (int i = 0; i < 400; i++) {
    XYZ p = GetNewParticle(10, 5);
    if (p.z > 0) plus++;
    if (p.z < 0) minus++;
  }
  EXPECT_GT(plus, 150);
  EXPECT_GT(minus, 150);
}

TEST(Source, SurfaceSourceAimsAtAFacetCentroid) {
  ResetGrowthForTest();
  // No facets: the sphere rule.
  GrowthSrand48(5);
  XYZ sphere = GetNewParticle(1, 9);
  GrowthSrand48(5);
  ExpectSame(GetNewParticle(17, 9), sphere);

  XYZ a = {3, 0, 0}, b = {3, 3, 0}, c = {3, 0, 3};
  XYZ d = {0, -6, 0}, e = {0, -6, 3}, f = {3, -6, 0};
  AppendFacet(a, b, c);  // centroid (3, 1, 1)
  AppendFacet(d, e, f);  // centroid (1, -6, 1)
  UpdateSTL();
  const XYZ mids[2] = {{3, 1, 1}, {1, -6, 1}};
  for (unsigned seed = 1; seed <= 20; seed++) {
    GrowthSrand(seed);
    int k = GrowthRand() % 2;
    int next = GrowthRand();
    GrowthSrand(seed);
    GrowthSrand48(seed);
    double firstdraw = GrowthDrand48();
    GrowthSrand48(seed);
    XYZ got = GetNewParticle(17, 9);
    ExpectSame(got, Scaled(mids[k], 9));
    EXPECT_EQ(GrowthRand(), next);          // one GrowthRand() per release
    EXPECT_EQ(GrowthDrand48(), firstdraw);  // and no uniform number
  }
  nstltri = 0;
  UpdateSTL();
}

}  // namespace
