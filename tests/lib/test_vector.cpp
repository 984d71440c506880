#include <gtest/gtest.h>
#include <math.h>
#include <stdio.h>
#include <string.h>

#include "lib/vector.h"

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

TEST(Vector, NormaliseZeroAndNonZero) {
  XYZ p = V(3, 0, 4);
  Normalise(&p);
  EXPECT_DOUBLE_EQ(p.x, 0.6);
  EXPECT_DOUBLE_EQ(p.z, 0.8);
  XYZ z = V(0, 0, 0);
  Normalise(&z);
  EXPECT_EQ(z.x, 0);
  EXPECT_EQ(z.y, 0);
  EXPECT_EQ(z.z, 0);
  XYZ n = V(NAN, 1, 1);
  Normalise(&n);  // a not-a-number length must not leave a non-finite result
  EXPECT_EQ(n.x, 0);
  EXPECT_EQ(n.y, 0);
}

TEST(Vector, VectorEqualIsInclusiveAtOneMillionth) {
  // 0.5e-6 steps are exact in binary at this magnitude, so the bound is tested exactly.
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(1e-6, 0, 0)), 1);
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(1.5e-6, 0, 0)), 0);
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(0, -1.5e-6, 0)), 0);
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(0, 0, 2e-6)), 0);
  EXPECT_EQ(VectorEqual(V(5, 5, 5), V(5, 5, 5)), 1);
}

TEST(Vector, CalcNormalRightHandedAndDegenerate) {
  XYZ n = CalcNormal(V(0, 0, 0), V(1, 0, 0), V(0, 1, 0));
  EXPECT_XYZ_NEAR(n, 0, 0, 1, 1e-15);
  n = CalcNormal(V(0, 0, 0), V(0, 1, 0), V(1, 0, 0));
  EXPECT_XYZ_NEAR(n, 0, 0, -1, 1e-15);
  n = CalcNormal(V(0, 0, 0), V(1, 1, 1), V(2, 2, 2));  // collinear
  EXPECT_EQ(n.x, 0);
  EXPECT_EQ(n.y, 0);
  EXPECT_EQ(n.z, 0);
}

TEST(Vector, CrossDotModulusLength) {
  XYZ c = CrossProduct(V(1, 0, 0), V(0, 1, 0));
  EXPECT_XYZ_NEAR(c, 0, 0, 1, 0);
  EXPECT_EQ(DotProduct(V(1, 2, 3), V(4, -5, 6)), 12);
  EXPECT_EQ(Modulus(V(2, 3, 6)), 7);
  EXPECT_EQ(VectorLength(V(1, 1, 1), V(3, 4, 7)), 7);
}

TEST(Vector, MinMaxWidensBounds) {
  XYZ lo = V(1e32, 1e32, 1e32), hi = V(-1e32, -1e32, -1e32);
  MinMaxXYZ(&lo, &hi, V(1, -2, 3));
  MinMaxXYZ(&lo, &hi, V(-4, 5, 0));
  EXPECT_XYZ_NEAR(lo, -4, -2, 0, 0);
  EXPECT_XYZ_NEAR(hi, 1, 5, 3, 0);
}

TEST(Vector, AxisRotationsTurnClockwiseArbitraryRotateCounterClockwise) {
  const double q = M_PI / 2;
  EXPECT_XYZ_NEAR(RotateZ(V(1, 0, 0), q), 0, -1, 0, 1e-15);
  EXPECT_XYZ_NEAR(RotateX(V(0, 1, 0), q), 0, 0, -1, 1e-15);
  EXPECT_XYZ_NEAR(RotateY(V(0, 0, 1), q), -1, 0, 0, 1e-15);
  EXPECT_XYZ_NEAR(ArbitraryRotate(V(1, 0, 0), q, V(0, 0, 1)), 0, 1, 0, 1e-15);
  EXPECT_XYZ_NEAR(ArbitraryRotate(V(0, 1, 0), q, V(1, 0, 0)), 0, 0, 1, 1e-15);
  // The axis is normalised; a long axis turns the same way.
  EXPECT_XYZ_NEAR(ArbitraryRotate(V(1, 0, 0), q, V(0, 0, 7)), 0, 1, 0, 1e-15);
  // A zero axis collapses the result to p cos(theta).
  EXPECT_XYZ_NEAR(ArbitraryRotate(V(2, 4, 6), M_PI / 3, V(0, 0, 0)), 1, 2, 3, 1e-12);
  // The plane sample's vertex (x, y, -20) rotated 90 degrees about x lands on y = -20.
  XYZ p = RotateX(V(7, 3, -20), 90 * DTOR);
  EXPECT_NEAR(p.x, 7, 1e-12);
  EXPECT_NEAR(p.y, -20, 1e-6);
  EXPECT_NEAR(p.z, -3, 1e-6);
}

TEST(Vector, PointLine3DThresholdIsOnTheSquaredLength) {
  XYZ closest;
  double mu = -1;
  // Length 0.003: squared 9e-6 < 1e-5, so the line counts as the point p1.
  double d = PointLine3D(&closest, &mu, V(0, 1, 0), V(0, 0, 0), V(0.003, 0, 0));
  EXPECT_EQ(mu, 0);
  EXPECT_DOUBLE_EQ(d, 1);
  // Length 0.0032: squared 1.024e-5 is a real line; p projects beyond p2.
  d = PointLine3D(&closest, &mu, V(1, 1, 0), V(0, 0, 0), V(0.0032, 0, 0));
  EXPECT_NEAR(mu, 1 / 0.0032, 1e-9);
  EXPECT_NEAR(d, 1, 1e-12);
  EXPECT_NEAR(closest.x, 1, 1e-12);
  // p1 = p2.
  d = PointLine3D(&closest, &mu, V(3, 4, 0), V(0, 0, 0), V(0, 0, 0));
  EXPECT_EQ(mu, 0);
  EXPECT_DOUBLE_EQ(d, 5);
  // Beyond p2: mu > 1 and the distance to the infinite line.
  d = PointLine3D(&closest, &mu, V(5, 2, 0), V(0, 0, 0), V(1, 0, 0));
  EXPECT_DOUBLE_EQ(mu, 5);
  EXPECT_DOUBLE_EQ(d, 2);
}

TEST(Vector, LineLineIntersect) {
  XYZ pa, pb;
  double mua, mub;
  EXPECT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(0, 1, 0), V(1, 1, 0)), 0);
  ASSERT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(3, 0, 1), V(3, 1, 1)), 1);
  EXPECT_XYZ_NEAR(pa, 3, 0, 0, 1e-12);
  EXPECT_XYZ_NEAR(pb, 3, 0, 1, 1e-12);
  EXPECT_NEAR(mua, 3, 1e-12);  // beyond the segment: not restricted
  EXPECT_NEAR(mub, 0, 1e-12);
  // A degenerate second line (shorter than 1e-5 on every axis).
  EXPECT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(0, 1, 0), V(5e-6, 1, 0)), 0);
}

TEST(Vector, LineSegmentPlane) {
  PLANE z0 = {0, 0, 1, 0};
  XYZ p = V(9, 9, 9);
  EXPECT_EQ(LineSegmentPlane(&p, V(0, 0, 0), V(1, 0, 0), z0), 0);  // lies in the plane
  EXPECT_EQ(p.x, 9);                                               // not written on failure
  EXPECT_EQ(LineSegmentPlane(&p, V(1, 2, 5), V(1, 2, 0), z0), 1);  // p2 on the plane
  EXPECT_XYZ_NEAR(p, 1, 2, 0, 0);
  EXPECT_EQ(LineSegmentPlane(&p, V(0, 0, 2), V(0, 0, 1), z0), 0);  // does not reach
  EXPECT_EQ(LineSegmentPlane(&p, V(0, 0, -1), V(2, 0, 3), z0), 1);
  EXPECT_XYZ_NEAR(p, 0.5, 0, 0, 1e-15);
}

static FILE *FileOf(const char *bytes, size_t n) {
  FILE *fp = tmpfile();
  fwrite(bytes, 1, n, fp);
  rewind(fp);
  return fp;
}

TEST(Vector, ReadLineCrLfAndMissingFinalLineEnd) {
  FILE *fp = FileOf("ab\r\ncd", 6);
  char buf[16];
  EXPECT_EQ(ReadLine(fp, buf, 10), 1);
  EXPECT_STREQ(buf, "ab");
  EXPECT_EQ(ReadLine(fp, buf, 10), 1);
  EXPECT_STREQ(buf, "");
  EXPECT_EQ(ReadLine(fp, buf, 10), 0);
  EXPECT_STREQ(buf, "cd");
  EXPECT_EQ(ReadLine(fp, buf, 10), 0);
  EXPECT_STREQ(buf, "");
  fclose(fp);
}

TEST(Vector, ReadLineStopsAtLmaxLeavingTheRest) {
  FILE *fp = FileOf("abcdefgh\n", 9);
  char buf[8];
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);
  EXPECT_STREQ(buf, "abcdef");
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);
  EXPECT_STREQ(buf, "gh");
  fclose(fp);
}

TEST(Vector, ReadIntAndFloatWithAndWithoutSwap) {
  const unsigned char b[] = {0x01, 0x02, 0x03, 0x04, 0x00, 0x00, 0x80, 0x3f, 0x3f, 0x80, 0x00, 0x00, 0x09};
  FILE *fp = FileOf((const char *)b, sizeof(b));
  int n = 0;
  float f = 0;
  EXPECT_EQ(ReadInt(fp, &n, 0), 1);
  EXPECT_EQ(n, 0x04030201);
  EXPECT_EQ(ReadFloat(fp, &f, 0), 1);
  EXPECT_EQ(f, 1.0f);
  EXPECT_EQ(ReadFloat(fp, &f, 1), 1);
  EXPECT_EQ(f, 1.0f);
  EXPECT_EQ(ReadInt(fp, &n, 0), 0);  // one byte left: short read
  fclose(fp);
}

TEST(Vector, GetRunTimeAdvances) {
  double t0 = GetRunTime();
  EXPECT_GT(t0, 1.5e9);  // seconds since the epoch
  double t1 = GetRunTime();
  EXPECT_GE(t1, t0);
}
