// Rotating, scaling and shifting the constraint surface.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "app/records.h"
#include "surface/samples.h"
#include "surface/stl.h"
#include "surface/transform.h"

static XYZ V(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

#define EXPECT_XYZ_NEAR(p, ex, ey, ez, tol) \
  do {                                      \
    EXPECT_NEAR((p).x, ex, tol);            \
    EXPECT_NEAR((p).y, ey, tol);            \
    EXPECT_NEAR((p).z, ez, tol);            \
  } while (0)

TEST(TransformSTL, IdentityLeavesEveryVertex) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_SPHERE);
  std::vector<FACET> before(stltri.begin(), stltri.begin() + nstltri);
  TransformSTL(V(1, 1, 1), V(0, 0, 0), V(0, 0, 0));
  ASSERT_EQ(nstltri, (int)before.size());
  for (int i = 0; i < nstltri; i++) {
    for (int k = 0; k < 3; k++) {
      EXPECT_EQ(stltri[i].p[k].x, before[i].p[k].x);
      EXPECT_EQ(stltri[i].p[k].y, before[i].p[k].y);
      EXPECT_EQ(stltri[i].p[k].z, before[i].p[k].z);
    }
  }
}

TEST(TransformSTL, PlaneTurnedAboutXBecomesTheSheetYMinus20) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_PLANE);
  std::vector<FACET> before(stltri.begin(), stltri.begin() + nstltri);
  TransformSTL(V(1, 1, 1), V(0, 0, 0), V(90, 0, 0));
  ASSERT_EQ(nstltri, 800);
  for (int i = 0; i < nstltri; i++) {
    for (int k = 0; k < 3; k++) {
      XYZ b = before[i].p[k];
      EXPECT_XYZ_NEAR(stltri[i].p[k], b.x, -20, -b.y, 1e-6);
    }
    EXPECT_XYZ_NEAR(stltri[i].n, 0, -1, 0, 1e-8);  // -z turned into -y
  }
  EXPECT_NEAR(stlmin.y, -20, 1e-6);
  EXPECT_NEAR(stlmax.y, -20, 1e-6);
  EXPECT_NEAR(stlmin.z, -200, 1e-6);
  EXPECT_NEAR(stlmax.z, 200, 1e-6);
  // The truncated degree factor leaves cos(90) = 1.7949e-9: the vertex
  // (-200, -200, -20) gets y = -200 * 1.7949e-9 - 20.
  EXPECT_EQ(before[0].p[0].y, -200);
  EXPECT_NEAR(stltri[0].p[0].y, -200 * 1.79489661923e-9 - 20, 1e-12);
}

TEST(TransformSTL, RotationsInTheOrderXYZThenScaleThenShift) {
  // With a quarter turn RotateX maps (x,y,z) to (x,z,-y), RotateY to (-z,y,x)
  // and RotateZ to (y,-x,z). The point (10,20,30):
  struct {
    XYZ rotate, want;
  } cases[] = {
      {{90, 90, 0}, {20, 30, 10}},   // X: (10,30,-20), then Y
      {{0, 90, 90}, {20, 30, 10}},   // Y: (-30,20,10), then Z
      {{90, 0, 90}, {30, -10, -20}}, // X: (10,30,-20), then Z
  };
  for (auto &c : cases) {
    SetOptionDefaults();
    MakeSampleSurface(SAMPLE_NONE);
    AppendFacet(V(10, 20, 30), V(0, 0, 0), V(30, 0, 0));
    TransformSTL(V(1, 1, 1), V(0, 0, 0), c.rotate);
    EXPECT_XYZ_NEAR(stltri[0].p[0], c.want.x, c.want.y, c.want.z, 1e-6);
  }

  // Scaling is in world axes after the rotation, the shift comes last:
  // (10,20,30) turned about z is (20,-10,30), scaled by x2 (40,-10,30),
  // shifted by (5,0,0) (45,-10,30).
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_NONE);
  AppendFacet(V(10, 20, 30), V(0, 0, 0), V(30, 0, 0));
  TransformSTL(V(2, 1, 1), V(5, 0, 0), V(0, 0, 90));
  EXPECT_XYZ_NEAR(stltri[0].p[0], 45, -10, 30, 1e-6);
  EXPECT_XYZ_NEAR(stltri[0].p[1], 5, 0, 0, 1e-6);  // rotation about the origin
  EXPECT_NEAR(stlmid.x, (5 + 45) * 0.5, 1e-6);     // bounds updated
}

TEST(TransformSTL, ApplyingTwiceAppliesTwice) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_PLANE);
  std::vector<FACET> before(stltri.begin(), stltri.begin() + nstltri);
  // p -> 2p + (1,-2,3), twice: 4p + (3,-6,9), exact on the plane's integers.
  for (int n = 0; n < 2; n++) TransformSTL(V(2, 2, 2), V(1, -2, 3), V(0, 0, 0));
  for (int i = 0; i < nstltri; i++) {
    for (int k = 0; k < 3; k++) {
      EXPECT_EQ(stltri[i].p[k].x, 4 * before[i].p[k].x + 3);
      EXPECT_EQ(stltri[i].p[k].y, 4 * before[i].p[k].y - 6);
      EXPECT_EQ(stltri[i].p[k].z, 4 * -20 + 9);
    }
  }
  // Two quarter turns about z: (x,y,z) -> (-x,-y,z).
  MakeSampleSurface(SAMPLE_PLANE);
  for (int n = 0; n < 2; n++) TransformSTL(V(1, 1, 1), V(0, 0, 0), V(0, 0, 90));
  for (int i = 0; i < nstltri; i++)
    for (int k = 0; k < 3; k++)
      EXPECT_XYZ_NEAR(stltri[i].p[k], -before[i].p[k].x, -before[i].p[k].y, -20, 1e-5);
}

TEST(TransformSTL, DebugLines) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_PLANE);
  options.debug = 1;
  testing::internal::CaptureStderr();
  TransformSTL(V(2, 1, 0.5), V(0, -3, 1.5), V(0, 0, 0));
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(err,
            "Scale  : 2,1,0.5\n"
            "Shift  : 0,-3,1.5\n"
            "Rotate : 0,0,0\n"
            "Bounds: -400 <= x <= 400\n"
            "        -203 <= y <= 197\n"
            "        -8.5 <= z <= -8.5\n"
            "Midpoint: 0 -3 -8.5\n");
  options.debug = 0;
  MakeSampleSurface(SAMPLE_NONE);
  options.debug = 1;
  testing::internal::CaptureStderr();
  TransformSTL(V(1, 1, 1), V(0, 0, 0), V(12.5, -45, 1e-7));
  err = testing::internal::GetCapturedStderr();
  options.debug = 0;
  EXPECT_EQ(err.substr(0, err.find("Bounds")),
            "Scale  : 1,1,1\n"
            "Shift  : 0,0,0\n"
            "Rotate : 12.5,-45,1e-07\n");

  testing::internal::CaptureStderr();
  TransformSTL(V(1, 1, 1), V(0, 0, 0), V(0, 0, 0));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
