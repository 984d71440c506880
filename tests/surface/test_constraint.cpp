// Segment against facet, point against plane, segment against box.
#include <gtest/gtest.h>

#include "app/records.h"
#include "surface/constraint.h"
#include "surface/samples.h"
#include "surface/stl.h"

static XYZ V(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

// One facet as the whole surface, prepared as the program prepares it.
static void OneFacet(XYZ p0, XYZ p1, XYZ p2) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_NONE);
  AppendFacet(p0, p1, p2);
  UpdateSTL();
}

TEST(LinePlaneIntersect, CrossingsEndsAndMisses) {
  OneFacet(V(0, 0, 0), V(4, 0, 0), V(0, 4, 0));  // plane z = 0, normal +z
  XYZ p = V(99, 99, 99);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 1), V(1, 2, -1)), 1);
  EXPECT_EQ(p.x, 1);
  EXPECT_EQ(p.y, 1.5);
  EXPECT_EQ(p.z, 0);

  // mu = 1 and mu = 0: both ends count.
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 2), V(1, 1, 0)), 1);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 0), V(1, 1, 5)), 1);

  // Short of the plane (mu = 2): 0, but the crossing of the line is written.
  p = V(99, 99, 99);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 3, 2), V(1, 3, 1)), 0);
  EXPECT_EQ(p.x, 1);
  EXPECT_EQ(p.y, 3);
  EXPECT_EQ(p.z, 0);
  // Beyond the start (mu < 0).
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, -1), V(1, 1, -3)), 0);

  // Through the plane outside the triangle (x + y = 6 > 4).
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(3, 3, 1), V(3, 3, -1)), 0);
  EXPECT_EQ(p.x, 3);
  // On an edge: inside within rounding.
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(2, 0, 1), V(2, 0, -1)), 1);

  // Parallel, even lying in the plane: never cut, *p untouched.
  p = V(99, 99, 99);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 0), V(2, 1, 0)), 0);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 0), V(3, 1, 9e-6)), 0);  // |denom| < 1e-5
  EXPECT_EQ(p.x, 99);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 0), V(3, 1, 2e-5)), 1);  // steep enough
}

TEST(LinePlaneIntersect, ZeroNormalFacetIsNeverCut) {
  OneFacet(V(0, 0, 0), V(1, 1, 0), V(2, 2, 0));  // collinear, kept with n = 0
  ASSERT_EQ(nstltri, 1);
  XYZ p = V(0, 0, 0);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 1), V(1, 1, -1)), 0);
}

TEST(LinePlaneIntersect, NotANumberAngleSumCountsAsInside) {
  // The point (2,10,0) lies on the extension of the edge (0,0,0)-(1,5,0),
  // outside the triangle. Its directions to the first two vertices are the
  // same unit vector, whose dot product with itself rounds above 1, so acos
  // gives not-a-number.
  XYZ u = V(-1, -5, 0);
  Normalise(&u);
  ASSERT_GT(DotProduct(u, u), 1.0);
  OneFacet(V(0, 0, 0), V(1, 5, 0), V(-5, 1, 0));
  XYZ p;
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(2, 10, 1), V(2, 10, -1)), 1);

  // The same geometry with a dot product of exactly 1 is outside.
  OneFacet(V(0, 0, 0), V(1, 0, 0), V(0, 1, 0));
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(2, 0, 1), V(2, 0, -1)), 0);
}

TEST(PointPlaneDist, SignedByTheNormal) {
  OneFacet(V(0, 0, 1), V(4, 0, 1), V(0, 4, 1));  // z = 1, normal +z
  EXPECT_EQ(PointPlaneDist(0, V(5, -7, 3)), 2);
  EXPECT_EQ(PointPlaneDist(0, V(0, 0, -1)), -2);
  OneFacet(V(0, 0, 1), V(0, 4, 1), V(4, 0, 1));  // reversed order, normal -z
  EXPECT_EQ(PointPlaneDist(0, V(5, -7, 3)), -2);
  OneFacet(V(3, 0, 0), V(3, 1, 0), V(3, 0, 1));  // x = 3, normal +x
  EXPECT_EQ(PointPlaneDist(0, V(10, 4, 4)), 7);
}

TEST(LineInBox, EndsSamplesAndQuickRejection) {
  XYZ c1 = V(0, 0, 0), c2 = V(10, 10, 10);
  // p1 inside: 1 whatever p2 is, even with the corners given the other way round.
  EXPECT_EQ(LineInBox(c1, c2, V(5, 5, 5), V(1000, -1000, 50)), 1);
  EXPECT_EQ(LineInBox(c2, c1, V(5, 5, 5), V(1000, -1000, 50)), 1);
  EXPECT_EQ(LineInBox(c1, c2, V(-50, 3, 3), V(10, 10, 10)), 1);  // p2 on the corner
  EXPECT_EQ(LineInBox(c1, c2, V(0, 0, 0), V(-1, -1, -1)), 1);    // inclusive

  // Crosses the corner region x in [0, 0.01] near (0,10,5); the samples fall
  // at x = -0.05 and x = 0.15, both outside.
  EXPECT_EQ(LineInBox(c1, c2, V(-1.05, 8.94, 5), V(0.95, 10.94, 5)), 0);
  // Shifted so that the middle sample (0, 9.995, 5) lands inside.
  EXPECT_EQ(LineInBox(c1, c2, V(-1, 8.995, 5), V(1, 10.995, 5)), 1);
  // Straight through the middle with both ends outside.
  EXPECT_EQ(LineInBox(c1, c2, V(-20, 5, 5), V(30, 5, 5)), 1);

  // Both ends beyond one side.
  EXPECT_EQ(LineInBox(c1, c2, V(11, -50, 5), V(12, 50, 5)), 0);
  EXPECT_EQ(LineInBox(c1, c2, V(5, 5, -1), V(5, 5, -0.5)), 0);
}
