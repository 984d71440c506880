#include <gtest/gtest.h>
#include <math.h>

#include "app/records.h"
#include "view/camera.h"

#define EXPECT_XYZ_NEAR(p, ex, ey, ez, tol) \
  do {                                      \
    EXPECT_NEAR((p).x, ex, tol);            \
    EXPECT_NEAR((p).y, ey, tol);            \
    EXPECT_NEAR((p).z, ez, tol);            \
  } while (0)

// The eye always sits on the line through the origin along vd.
static void ExpectEyeOnAxis(void) {
  double r = Modulus(camera.vp);
  EXPECT_NEAR(camera.vp.x, -r * camera.vd.x, 1e-9);
  EXPECT_NEAR(camera.vp.y, -r * camera.vd.y, 1e-9);
  EXPECT_NEAR(camera.vp.z, -r * camera.vd.z, 1e-9);
}

TEST(Camera, HomeResetsViewButKeepsWindowAfterFirstCall) {
  CameraHome();  // makes sure the first home has happened
  camera.screenwidth = 1600;  // as a reshape or "-ss" leaves it
  camera.screenheight = 700;
  camera.stereo = 2;
  camera.aperture = 12;
  camera.vp.x = 5;
  camera.vp.y = 7;
  camera.vd.y = 1;
  camera.vu.x = 1;
  camera.pr.z = 3;
  CameraHome();
  EXPECT_EQ(camera.screenwidth, 1600);
  EXPECT_EQ(camera.screenheight, 700);
  EXPECT_EQ(camera.stereo, 2);
  EXPECT_EQ(camera.aperture, 60);
  EXPECT_XYZ_NEAR(camera.vp, 60, 0, 0, 0);
  EXPECT_XYZ_NEAR(camera.vd, -1, 0, 0, 0);
  EXPECT_XYZ_NEAR(camera.vu, 0, 0, 1, 0);
  EXPECT_XYZ_NEAR(camera.pr, 0, 0, 0, 0);
  EXPECT_EQ(camera.focallength, 60);
  EXPECT_EQ(camera.eyesep, 2);
  EXPECT_EQ(camera.near, 6);
  EXPECT_EQ(camera.far, 600);
}

TEST(Camera, RotateSingleAxes) {
  const double a = 0.3, c = cos(a), s = sin(a);

  // Left/right orbit about the up vector (z): the eye swings round in the xy plane.
  CameraHome();
  RotateCamera(a, 0, 0);
  EXPECT_XYZ_NEAR(camera.vd, -c, -s, 0, 1e-12);
  EXPECT_XYZ_NEAR(camera.vp, 60 * c, 60 * s, 0, 1e-10);
  EXPECT_XYZ_NEAR(camera.vu, 0, 0, 1, 1e-12);
  ExpectEyeOnAxis();

  // Up/down orbit about the right vector, which is +y at home.
  CameraHome();
  RotateCamera(0, a, 0);
  EXPECT_XYZ_NEAR(camera.vd, -c, 0, s, 1e-12);
  EXPECT_XYZ_NEAR(camera.vp, 60 * c, 0, -60 * s, 1e-10);
  EXPECT_XYZ_NEAR(camera.vu, s, 0, c, 1e-12);
  ExpectEyeOnAxis();

  // Roll about the view direction (-x) turns only the up vector.
  CameraHome();
  RotateCamera(0, 0, a);
  EXPECT_XYZ_NEAR(camera.vu, 0, s, c, 1e-12);
  EXPECT_XYZ_NEAR(camera.vd, -1, 0, 0, 0);
  EXPECT_XYZ_NEAR(camera.vp, 60, 0, 0, 0);

  // A negative roll, as the [ key gives.
  CameraHome();
  RotateCamera(0, 0, -0.02);
  EXPECT_XYZ_NEAR(camera.vu, 0, sin(-0.02), cos(-0.02), 1e-12);
}

TEST(Camera, RotateBothAnglesReusesFirstRightVector) {
  // Both orbits at once: the second turn is about the right vector taken
  // before the first, (0, 1, 0), not the one after it.
  const double a1 = 0.3, a2 = 0.2;
  const double c1 = cos(a1), s1 = sin(a1), c2 = cos(a2), s2 = sin(a2);
  CameraHome();
  RotateCamera(a1, a2, 0);
  EXPECT_XYZ_NEAR(camera.vd, -c1 * c2, -s1, c1 * s2, 1e-12);
  EXPECT_XYZ_NEAR(camera.vp, 60 * c1 * c2, 60 * s1, -60 * c1 * s2, 1e-10);
  EXPECT_XYZ_NEAR(camera.vu, s2, 0, c2, 1e-12);
  ExpectEyeOnAxis();
  EXPECT_NEAR(Modulus(camera.vp), 60, 1e-10);
  EXPECT_NEAR(Modulus(camera.vu), 1, 1e-12);

  // Many small mixed turns keep the eye at its distance, on the axis.
  CameraHome();
  for (int i = 0; i < 500; i++) RotateCamera(0.01, -0.013, 0.007);
  EXPECT_NEAR(Modulus(camera.vp), 60, 1e-8);
  EXPECT_NEAR(Modulus(camera.vd), 1, 1e-12);
  EXPECT_NEAR(Modulus(camera.vu), 1, 1e-12);
  ExpectEyeOnAxis();
}

TEST(Camera, ZoomLimitsAreTestedBeforeTheStep) {
  // Zoom in from 60: 60 * 0.95^n first drops to 1 or below at n = 80
  // (ln 60 / ln(1/0.95) = 79.8), about 0.9908, and stays there.
  CameraHome();
  int steps = 0;
  for (int i = 0; i < 200; i++) {
    double before = camera.aperture;
    ZoomCamera(1);
    if (camera.aperture != before) steps++;
  }
  EXPECT_EQ(steps, 80);
  EXPECT_NEAR(camera.aperture, 60 * pow(0.95, 80), 1e-9);
  EXPECT_LT(camera.aperture, 1);
  EXPECT_GT(camera.aperture, 0.99);

  // Zoom out from 60: 60 / 0.95^n first reaches 90 at n = 8 (ln 1.5 /
  // ln(1/0.95) = 7.9), about 90.44.
  CameraHome();
  steps = 0;
  for (int i = 0; i < 50; i++) {
    double before = camera.aperture;
    ZoomCamera(0);
    if (camera.aperture != before) steps++;
  }
  EXPECT_EQ(steps, 8);
  EXPECT_NEAR(camera.aperture, 60 / pow(0.95, 8), 1e-9);
  EXPECT_GE(camera.aperture, 90);
  EXPECT_LT(camera.aperture, 90.5);

  // From the wide end zoom in works again at once.
  ZoomCamera(1);
  EXPECT_NEAR(camera.aperture, 60 / pow(0.95, 7), 1e-9);
}

TEST(Camera, DollyNeverCrossesTheOrigin) {
  CameraHome();
  RotateCamera(0.4, 0.1, 0);
  XYZ vd = camera.vd;
  XYZ dir = camera.vp;
  Normalise(&dir);

  for (int i = 0; i < 1000; i++) DollyCamera(1);
  double d = Modulus(camera.vp);
  EXPECT_GT(d, 0);
  EXPECT_NEAR(d / (60 * pow(0.95, 1000)), 1, 1e-9);
  XYZ now = camera.vp;
  Normalise(&now);
  EXPECT_XYZ_NEAR(now, dir.x, dir.y, dir.z, 1e-9);
  // The view direction is left alone.
  EXPECT_XYZ_NEAR(camera.vd, vd.x, vd.y, vd.z, 0);

  CameraHome();
  DollyCamera(1);
  EXPECT_XYZ_NEAR(camera.vp, 57, 0, 0, 1e-12);
  DollyCamera(0);
  DollyCamera(0);
  EXPECT_XYZ_NEAR(camera.vp, 60 / 0.95, 0, 0, 1e-12);
  for (int i = 0; i < 100; i++) DollyCamera(0);
  EXPECT_NEAR(camera.vp.x, 60 / pow(0.95, 101), 1e-6);
  EXPECT_XYZ_NEAR(camera.vd, -1, 0, 0, 0);
}
