// Surface preparation: bad faces, derived fields, bounds.
#include <gtest/gtest.h>

#include <string>

#include "app/records.h"
#include "surface/samples.h"
#include "surface/stl.h"

static XYZ V(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

TEST(UpdateSTL, BadFacesAreReplacedByTheLastFacet) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_NONE);
  AppendFacet(V(0, 0, 0), V(1, 0, 0), V(0, 1, 0));         // 0 good
  AppendFacet(V(5, 5, 5), V(5, 5, 5), V(6, 5, 5));         // 1 p0 == p1
  AppendFacet(V(0, 0, 2), V(1, 0, 2), V(0, 1, 2));         // 2 good
  AppendFacet(V(0, 0, 7), V(1, 0, 7), V(5e-7, 0, 7));      // 3 p2 == p0 within 1e-6
  AppendFacet(V(0, 0, 4), V(0, 1, 4), V(1, 0, 4));         // 4 good, moves into 1
  options.debug = 1;
  testing::internal::CaptureStderr();
  UpdateSTL();
  std::string err = testing::internal::GetCapturedStderr();
  options.debug = 0;

  // Facet 1 takes the last facet (4); at 3 the last facet is 3 itself, still
  // bad, and the count drops past it.
  ASSERT_EQ(nstltri, 3);
  EXPECT_EQ(stltri[0].p[0].z, 0);
  EXPECT_EQ(stltri[1].p[0].z, 4);
  EXPECT_EQ(stltri[1].p[1].y, 1);
  EXPECT_EQ(stltri[2].p[0].z, 2);
  EXPECT_EQ(err,
            "Removed 2 bad faces\n"
            "Bounds: 0 <= x <= 1\n"
            "        0 <= y <= 1\n"
            "        0 <= z <= 4\n"
            "Midpoint: 0.5 0.5 2\n");
  // Facet 4 was written clockwise seen from +z.
  EXPECT_EQ(stltri[1].n.z, -1);
}

TEST(UpdateSTL, DerivedFieldsAndCollinearFacetKept) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_NONE);
  AppendFacet(V(0, 0, 1), V(2, 0, 1), V(0, 2, 1));
  AppendFacet(V(0, 0, 0), V(1, 1, 1), V(2, 2, 2));  // distinct but collinear
  AppendFacet(V(0, 0, 0), V(0, 3, 0), V(0, 0, 4));  // in the plane x = 0
  testing::internal::CaptureStderr();
  UpdateSTL();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // silent without debug

  ASSERT_EQ(nstltri, 3);
  const FACET &f = stltri[0];
  EXPECT_EQ(f.n.x, 0);
  EXPECT_EQ(f.n.y, 0);
  EXPECT_EQ(f.n.z, 1);
  EXPECT_EQ(f.plane.a, 0);
  EXPECT_EQ(f.plane.c, 1);
  EXPECT_EQ(f.plane.d, -1);
  EXPECT_DOUBLE_EQ(f.mid.x, 2.0 / 3.0);
  EXPECT_DOUBLE_EQ(f.mid.y, 2.0 / 3.0);
  EXPECT_EQ(f.mid.z, 1);

  EXPECT_EQ(stltri[1].n.x, 0);
  EXPECT_EQ(stltri[1].n.y, 0);
  EXPECT_EQ(stltri[1].n.z, 0);
  EXPECT_EQ(stltri[1].plane.d, 0);

  // (0,3,0) x (0,0,4) = (12,0,0): the normal is +x and d = 0.
  EXPECT_EQ(stltri[2].n.x, 1);
  EXPECT_EQ(stltri[2].plane.d, 0);
  EXPECT_DOUBLE_EQ(stltri[2].mid.y, 1);
  EXPECT_DOUBLE_EQ(stltri[2].mid.z, 4.0 / 3.0);

  EXPECT_EQ(stlmin.x, 0);
  EXPECT_EQ(stlmax.x, 2);
  EXPECT_EQ(stlmax.y, 3);
  EXPECT_EQ(stlmax.z, 4);
  EXPECT_EQ(stlmid.x, 1);
  EXPECT_EQ(stlmid.y, 1.5);
  EXPECT_EQ(stlmid.z, 2);
}

TEST(UpdateSTL, EmptySurfaceKeepsHugeBoundsAndZeroMidpoint) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_PLANE);  // bounds from an earlier surface must go
  MakeSampleSurface(SAMPLE_NONE);
  AppendFacet(V(1, 1, 1), V(1, 1, 1), V(1, 1, 1));  // removed, leaving none
  options.debug = 1;
  testing::internal::CaptureStderr();
  UpdateSTL();
  std::string err = testing::internal::GetCapturedStderr();
  options.debug = 0;
  EXPECT_EQ(nstltri, 0);
  EXPECT_EQ(stlmin.x, 1e32);
  EXPECT_EQ(stlmin.z, 1e32);
  EXPECT_EQ(stlmax.y, -1e32);
  EXPECT_EQ(stlmid.x, 0);
  EXPECT_EQ(stlmid.y, 0);
  EXPECT_EQ(stlmid.z, 0);
  EXPECT_EQ(err,
            "Removed 1 bad faces\n"
            "Bounds: 1e+32 <= x <= -1e+32\n"
            "        1e+32 <= y <= -1e+32\n"
            "        1e+32 <= z <= -1e+32\n"
            "Midpoint: 0 0 0\n");
}
