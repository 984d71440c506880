// The support library: vector helpers and readers, colour maps, primitive
// meshes and the TGA writer.
#include <math.h>
#include <unistd.h>

#include <set>
#include <vector>

#include "lib/bitmap.h"
#include "lib/colour.h"
#include "lib/primitives.h"
#include "lib/vector.h"
#include "test_util.h"

namespace {

#define EXPECT_XYZ_NEAR(p, ex, ey, ez, tol) \
  do {                                      \
    EXPECT_NEAR((p).x, ex, tol);            \
    EXPECT_NEAR((p).y, ey, tol);            \
    EXPECT_NEAR((p).z, ez, tol);            \
  } while (0)

TEST(Vector, NormaliseEqualityNormalsAndBounds) {
  XYZ p = V(3, 0, 4), z = V(0, 0, 0), n = V(NAN, 1, 1);
  Normalise(&p), Normalise(&z), Normalise(&n);
  EXPECT_XYZ_NEAR(p, 0.6, 0, 0.8, 1e-16);
  EXPECT_XYZ_NEAR(z, 0, 0, 0, 0);
  EXPECT_XYZ_NEAR(n, 0, 0, 0, 0);  // never a non-finite result
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(1e-6, 0, 0)), 1);  // inclusive
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(1.5e-6, 0, 0)), 0);
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(0, -1.5e-6, 0)), 0);
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(0, 0, 2e-6)), 0);
  EXPECT_XYZ_NEAR(CalcNormal(V(0, 0, 0), V(1, 0, 0), V(0, 1, 0)), 0, 0, 1, 0);
  EXPECT_XYZ_NEAR(CalcNormal(V(0, 0, 0), V(0, 1, 0), V(1, 0, 0)), 0, 0, -1, 0);
  EXPECT_XYZ_NEAR(CalcNormal(V(0, 0, 0), V(1, 1, 1), V(2, 2, 2)), 0, 0, 0, 0);
  EXPECT_XYZ_NEAR(CrossProduct(V(1, 2, 3), V(4, 5, 6)), -3, 6, -3, 0);
  EXPECT_EQ(DotProduct(V(1, 2, 3), V(4, -5, 6)), 12);
  EXPECT_EQ(VectorLength(V(1, 1, 1), V(3, 4, 7)), 7);
  XYZ lo = V(1e32, 1e32, 1e32), hi = V(-1e32, -1e32, -1e32);
  MinMaxXYZ(&lo, &hi, V(1, -2, 3));
  MinMaxXYZ(&lo, &hi, V(-4, 5, 0));
  EXPECT_XYZ_NEAR(lo, -4, -2, 0, 0);
  EXPECT_XYZ_NEAR(hi, 1, 5, 3, 0);
  EXPECT_GT(GetRunTime(), 1.5e9);  // seconds since the epoch
}

TEST(Vector, AxisRotationsClockwiseArbitraryRotateCounterClockwise) {
  const double q = M_PI / 2;
  EXPECT_XYZ_NEAR(RotateZ(V(1, 0, 0), q), 0, -1, 0, 1e-15);
  EXPECT_XYZ_NEAR(RotateX(V(0, 1, 0), q), 0, 0, -1, 1e-15);
  EXPECT_XYZ_NEAR(RotateY(V(0, 0, 1), q), -1, 0, 0, 1e-15);
  EXPECT_XYZ_NEAR(ArbitraryRotate(V(1, 0, 0), q, V(0, 0, 7)), 0, 1, 0, 1e-15);  // the axis is normalised
  EXPECT_XYZ_NEAR(ArbitraryRotate(V(0, 1, 0), q, V(1, 0, 0)), 0, 0, 1, 1e-15);
  EXPECT_XYZ_NEAR(ArbitraryRotate(V(2, 4, 6), M_PI / 3, V(0, 0, 0)), 1, 2, 3, 1e-12);  // p cos(theta)
}

TEST(Vector, ClosestPointsAndCrossings) {
  XYZ c, pa, pb, p = V(9, 9, 9);
  double mu = -1, mua, mub;
  // Length 0.003: squared 9e-6 < 1e-5, a point. 0.0032 is a line.
  EXPECT_DOUBLE_EQ(PointLine3D(&c, &mu, V(0, 1, 0), V(0, 0, 0), V(0.003, 0, 0)), 1);
  EXPECT_EQ(mu, 0);
  EXPECT_NEAR(PointLine3D(&c, &mu, V(1, 1, 0), V(0, 0, 0), V(0.0032, 0, 0)), 1, 1e-12);
  EXPECT_NEAR(mu, 1 / 0.0032, 1e-9);
  EXPECT_DOUBLE_EQ(PointLine3D(&c, &mu, V(3, 4, 0), V(0, 0, 0), V(0, 0, 0)), 5);
  EXPECT_DOUBLE_EQ(PointLine3D(&c, &mu, V(5, 2, 0), V(0, 0, 0), V(1, 0, 0)), 2);
  EXPECT_DOUBLE_EQ(mu, 5);  // not clamped
  EXPECT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(0, 1, 0), V(1, 1, 0)), 0);
  EXPECT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(0, 1, 0), V(5e-6, 1, 0)), 0);
  ASSERT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(3, 0, 1), V(3, 1, 1)), 1);
  EXPECT_XYZ_NEAR(pa, 3, 0, 0, 1e-12);
  EXPECT_XYZ_NEAR(pb, 3, 0, 1, 1e-12);
  EXPECT_NEAR(mua, 3, 1e-12);
  PLANE z0 = {0, 0, 1, 0};
  EXPECT_EQ(LineSegmentPlane(&p, V(0, 0, 0), V(1, 0, 0), z0), 0);  // in the plane
  EXPECT_EQ(LineSegmentPlane(&p, V(0, 0, 2), V(0, 0, 1), z0), 0);  // short of it
  EXPECT_EQ(p.x, 9);
  EXPECT_EQ(LineSegmentPlane(&p, V(1, 2, 5), V(1, 2, 0), z0), 1);  // ends on it
  EXPECT_XYZ_NEAR(p, 1, 2, 0, 0);
  EXPECT_EQ(LineSegmentPlane(&p, V(0, 0, -1), V(2, 0, 3), z0), 1);
  EXPECT_XYZ_NEAR(p, 0.5, 0, 0, 1e-15);
}

TEST(Vector, ReadersOfLinesAndNumbers) {
  char text[] = "ab\r\ncd", buf[8];
  FILE *fp = fmemopen(text, 6, "r");
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);
  EXPECT_STREQ(buf, "ab");
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);  // CR LF: one line, then an empty one
  EXPECT_STREQ(buf, "");
  EXPECT_EQ(ReadLine(fp, buf, 6), 0);  // end of file, the partial line kept
  EXPECT_STREQ(buf, "cd");
  fclose(fp);
  char longer[] = "abcdefgh\n";
  fp = fmemopen(longer, 9, "r");
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);
  EXPECT_STREQ(buf, "abcdef");
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);
  EXPECT_STREQ(buf, "gh");
  fclose(fp);
  // lmax below 1: a buffer of lmax + 1 bytes is never written past.
  for (int lmax = -2; lmax <= 0; lmax++) {
    char t[] = "abc\ndef\r\nx", b[2] = {'P', 'Q'};
    fp = fmemopen(t, 10, "r");
    EXPECT_EQ(ReadLine(fp, b, lmax), 1);
    EXPECT_EQ(b[0], '\0');
    EXPECT_EQ(b[1], 'Q');
    EXPECT_EQ(ftell(fp), 4);
    fclose(fp);
  }
  char nul[] = "a\0c\n";
  fp = fmemopen(nul, 4, "r");
  EXPECT_EQ(ReadLine(fp, buf, 1), 1);
  EXPECT_EQ(ReadLine(fp, buf, 1), 1);
  EXPECT_EQ(buf[0], '\0');  // a NUL byte is stored like any other
  EXPECT_EQ(ftell(fp), 2);
  fclose(fp);
  unsigned char b[] = {1, 2, 3, 4, 0, 0, 0x80, 0x3f, 0x3f, 0x80, 0, 0, 9};
  fp = fmemopen(b, sizeof(b), "r");
  int n = 0;
  float f = 0;
  EXPECT_EQ(ReadInt(fp, &n, 0), 1);
  EXPECT_EQ(n, 0x04030201);
  EXPECT_EQ(ReadFloat(fp, &f, 0), 1);
  EXPECT_EQ(f, 1.0f);
  EXPECT_EQ(ReadFloat(fp, &f, 1), 1);
  EXPECT_EQ(f, 1.0f);
  EXPECT_EQ(ReadInt(fp, &n, 0), 0);
  fclose(fp);
}

// The stops of every linear map: "type[/255] t:r,g,b ...", t may be a/b.
const char *kMaps[] = {
    "1 0:0,0,1 .25:0,1,1 .5:0,1,0 .75:1,1,0 1:1,0,0", "2 0:0,0,1 1:1,0,0", "3 0:0,0,0 1:1,1,1",
    "4 0:1,0,0 1/6:1,1,0 2/6:0,1,0 3/6:0,1,1 4/6:0,0,1 5/6:1,0,1 1:1,0,0", "5 0:0,1,0 1:1,1,0",
    "6 0:0,1,0 1:1,0,1", "7 0:0,0,1 .25:0,1,0 .5:1,0,0 .75:0,1,0 1:0,0,1", "8 0:0,0,0 .5:1,1,1 1:0,0,0",
    "9 0:1,0,0 1/3:0,0,1 2/3:0,1,1 1:1,0,1", "10 0:0,0,1 .2:0,1,1 .4:0,1,0 .6:1,1,0 .8:1,0,0 1:1,1,1",
    "11/255 0:200,60,0 1:250,160,110", "12/255 0:55,55,45 .4:235,90,30 1:250,160,110",
    "13/255 0:0,255,0 .3:255,150,0 1:255,250,240", "14 0:1,1,0 1:1,0,0",
    "15 0:0,0,1 .25:0,1,1 .5:0,1,0 .75:1,1,0 1:1,1,1", "16 0:0,0,1 .5:0,1,0 1:1,0,0",
    "17 0:1,1,0 .5:1,0,1 1:0,1,1", "18 0:0,0,1 1:0,1,1", "19 0:0,0,1 1:1,1,1",
    "20/255 0:0,160,0 .3:180,220,0 1:250,220,170", "21/255 0:255,255,200 1:150,150,255", "22 0:1,1,0 1:0,0,1",
    "23 0:1,0,0 .5:1,1,1 1:0,0,1", "24 0:0,0,1 .5:1,1,0 1:1,0,0", "25 0:0,0,1 1/3:0,1,1 2/3:1,0,1 1:1,0,0",
    "26 0:0,1,0 .5:1,1,0 1:0,1,0", "27 0:0,0,0 .5:1,0,0 1:1,1,1", "28 0:0,0,0 .5:0,1,0 1:1,1,1",
    "29 0:0,0,0 .5:0,0,1 1:1,1,1", "30 0:1,0,0 1/6:1,1,0 2/6:0,1,0 3/6:0,1,1 4/6:0,0,1 5/6:1,0,1 1:1,0,0"};

void ExpectColour(COLOUR c, double r, double g, double b, double tol) {
  EXPECT_NEAR(c.r, r, tol);
  EXPECT_NEAR(c.g, g, tol);
  EXPECT_NEAR(c.b, b, tol);
}

TEST(Colour, EveryMapAtItsStopsAndHalfWayBetweenThem) {
  for (const char *map : kMaps) {
    SCOPED_TRACE(map);
    int type, used;
    double unit = 1, t[8], c[8][3], num, den;
    sscanf(map, "%d%n", &type, &used);
    if (map[used] == '/') unit = 255, used += 4;
    int n = 0;
    for (const char *s = map + used; sscanf(s, " %lf%n", &num, &used) == 1; n++) {
      s += used, den = 1;
      if (*s == '/') sscanf(s, "/%lf%n", &den, &used), s += used;
      sscanf(s, ":%lf,%lf,%lf%n", &c[n][0], &c[n][1], &c[n][2], &used), s += used;
      t[n] = num / den;
    }
    for (int k = 0; k < 2 * n - 1; k++) {
      double tt = k % 2 ? (t[k / 2] + t[k / 2 + 1]) / 2 : t[k / 2];
      const double *a = c[k / 2], *b = c[(k + 1) / 2];  // a stop, or the average of two
      // On the unit range, and on a shifted, wider range given upside down.
      ExpectColour(GetColour(tt, 0, 1, type), (a[0] + b[0]) / 2 / unit, (a[1] + b[1]) / 2 / unit, (a[2] + b[2]) / 2 / unit, 1e-9);
      ExpectColour(GetColour(-2 + 8 * tt, 6, -2, type), (a[0] + b[0]) / 2 / unit, (a[1] + b[1]) / 2 / unit, (a[2] + b[2]) / 2 / unit, 1e-9);
    }
  }
}

TEST(Colour, RangesClampsUnknownTypesAndTheTwelveSteps) {
  ExpectColour(GetColour(5, 10, 0, 1), 0, 1, 0, 0);
  ExpectColour(GetColour(3, 3, 3, 3), 0.5, 0.5, 0.5, 1e-15);  // [3, 3] widened to [2, 4]
  ExpectColour(GetColour(2.5, 3, 3, 1), 0, 1, 1, 1e-15);
  ExpectColour(GetColour(9e-7, 0, 9e-7, 2), 0.5, 0, 0.5, 1e-6);  // below 1e-6: widened
  ExpectColour(GetColour(1e-6, 0, 1e-6, 2), 1, 0, 0, 0);          // exactly 1e-6: not
  for (int type : {0, 32, -1}) ExpectColour(GetColour(0.5, 0, 1, type), 1, 1, 1, 0);
  ExpectColour(GetColour(-5, 0, 1, 1), 0, 0, 1, 0);
  ExpectColour(GetColour(7, 0, 1, 1), 1, 0, 0, 0);
  for (int type : {30, 31})
    for (double v : {-2.0, 2.0}) ExpectColour(GetColour(v, 0, 1, type), 1, 0, 0, 0);
  // Map 31 over [0, 12]: each unit one step, each sixth split 0.8 then 0.2.
  const double steps[13][3] = {{1, .8, 0}, {1, 1, 0}, {.8, 1, 0}, {0, 1, 0}, {0, 1, .8}, {0, 1, 1}, {0, .8, 1},
                               {0, 0, 1}, {.8, 0, 1}, {1, 0, 1}, {1, 0, .8}, {1, 0, 0}, {1, 0, 0}};
  const double start[12][3] = {{1, 0, 0}, {1, .8, 0}, {1, 1, 0}, {.8, 1, 0}, {0, 1, 0}, {0, 1, .8},
                               {0, 1, 1}, {0, .8, 1}, {0, 0, 1}, {.8, 0, 1}, {1, 0, 1}, {1, 0, .8}};
  for (int k = 0; k < 12; k++) {
    SCOPED_TRACE(k);
    ExpectColour(GetColour(k, 0, 12, 31), start[k][0], start[k][1], start[k][2], 1e-12);
    ExpectColour(GetColour(k + 0.5, 0, 12, 31), (start[k][0] + steps[k][0]) / 2, (start[k][1] + steps[k][1]) / 2,
                 (start[k][2] + steps[k][2]) / 2, 1e-12);
  }
  ExpectColour(GetColour(12, 0, 12, 31), 1, 0, 0, 0);
  ExpectColour(GetColour(1, 0, 2, 31), 0, 1, 1, 0);
}

// A sink that records batches; a vertex keeps the normal and texture
// coordinate current when it was given, as GL would use them.
struct VERT { float x, y, z, nx, ny, nz, s, t; };
struct BATCH { unsigned mode; std::vector<VERT> v; int normals; };
std::vector<BATCH> batches;
float cur[5];
int misplaced;  // calls outside a begin/end pair
bool open_;
const PRIMSINK recorder = {
    [](unsigned m) { misplaced += open_, open_ = true, batches.push_back({m, {}, 0}); },
    [] { misplaced += !open_, open_ = false; },
    [](float x, float y, float z) { cur[0] = x, cur[1] = y, cur[2] = z, misplaced += !open_, batches.back().normals++; },
    [](float s, float t) { cur[3] = s, cur[4] = t, misplaced += !open_; },
    [](float x, float y, float z) { misplaced += !open_, batches.back().v.push_back({x, y, z, cur[0], cur[1], cur[2], cur[3], cur[4]}); }};

std::vector<BATCH> Record(const std::function<void()> &f) {
  batches.clear();
  misplaced = 0;
  f();
  EXPECT_EQ(misplaced + open_, 0);
  return batches;
}

#define EXPECT_VERT(v, x_, y_, z_, nx_, ny_, nz_)                                             \
  do {                                                                                        \
    EXPECT_NEAR((v).x, x_, 1e-6);                                                             \
    EXPECT_NEAR((v).y, y_, 1e-6);                                                             \
    EXPECT_NEAR((v).z, z_, 1e-6);                                                             \
    EXPECT_NEAR((v).nx, nx_, 1e-6);                                                           \
    EXPECT_NEAR((v).ny, ny_, 1e-6);                                                           \
    EXPECT_NEAR((v).nz, nz_, 1e-6);                                                           \
  } while (0)

TEST(Primitives, ConeRingsWithRadialNormals) {
  // Axis along y: the x helper, a = (0,0,1), b = (1,0,0): the ring runs (cos, 0, sin).
  auto b = Record([] { EmitCone(&recorder, V(0, 2, 0), V(0, 0, 0), 1, 1, 4, 0, TWOPI); });
  ASSERT_EQ(b.size(), 1u);
  EXPECT_EQ(b[0].mode, (unsigned)PRIM_QUAD_STRIP);
  ASSERT_EQ(b[0].v.size(), 10u);
  const double ring[5][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}};
  for (int i = 0; i < 5; i++) {
    EXPECT_VERT(b[0].v[2 * i], ring[i][0], 2, ring[i][1], ring[i][0], 0, ring[i][1]);
    EXPECT_VERT(b[0].v[2 * i + 1], ring[i][0], 0, ring[i][1], ring[i][0], 0, ring[i][1]);
    EXPECT_FLOAT_EQ(b[0].v[2 * i].s, i / 4.0f);
    EXPECT_EQ(b[0].v[2 * i].t + 1, b[0].v[2 * i + 1].t);
  }
  // Axis along z: helper (0,1,1), a = (1,0,0), b = (0,1,0); half a turn,
  // radius 2 at p1 and 0.5 at p2, normals radial all the same.
  b = Record([] { EmitCone(&recorder, V(1, 2, 3), V(1, 2, -1), 2, 0.5, 6, 0, M_PI); });
  ASSERT_EQ(b[0].v.size(), 14u);
  for (int i = 0; i <= 6; i++) {
    double a = i * M_PI / 6;
    EXPECT_VERT(b[0].v[2 * i], 1 + 2 * sin(a), 2 + 2 * cos(a), 3, sin(a), cos(a), 0);
    EXPECT_VERT(b[0].v[2 * i + 1], 1 + 0.5 * sin(a), 2 + 0.5 * cos(a), -1, sin(a), cos(a), 0);
  }
  b = Record([] { EmitCone(&recorder, V(1, 1, 1), V(1, 1, 1), 1, 2, 3, 0, TWOPI); });  // p1 = p2
  for (const VERT &v : b[0].v) EXPECT_VERT(v, 1, 1, 1, 0, 0, 0);
  b = Record([] { EmitCone(&recorder, V(0, 0, 0), V(1, 0, 0), 1, 1, -1, 0, TWOPI); });
  ASSERT_EQ(b.size(), 1u);
  EXPECT_EQ(b[0].v.size(), 0u);
}

TEST(Primitives, SphereBandsStripsAndDegenerateCases) {
  // n = 4: two quad strips of 90 degrees, the poles on the y axis through c.
  auto b = Record([] { EmitSimpleSphere(&recorder, V(1, 2, 3), 2, 4, 0); });
  ASSERT_EQ(b.size(), 2u);
  const double ring[5][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}};
  for (int i = 0; i < 5; i++) {
    EXPECT_EQ(b[0].mode, (unsigned)PRIM_QUAD_STRIP);
    EXPECT_VERT(b[0].v[2 * i], 1 + 2 * ring[i][0], 2, 3 + 2 * ring[i][1], ring[i][0], 0, ring[i][1]);
    EXPECT_VERT(b[0].v[2 * i + 1], 1, 0, 3, 0, -1, 0);
    EXPECT_VERT(b[1].v[2 * i], 1, 4, 3, 0, 1, 0);
    EXPECT_FLOAT_EQ(b[0].v[2 * i].s, i / 4.0f);
    EXPECT_FLOAT_EQ(b[0].v[2 * i].t, 0.5f);
    EXPECT_FLOAT_EQ(b[0].v[2 * i + 1].t, 0);
    EXPECT_FLOAT_EQ(b[1].v[2 * i].t, 1);
  }
  auto sixteen = Record([] { EmitSimpleSphere(&recorder, V(0, 0, 0), 1, 16, 0); });
  ASSERT_EQ(sixteen.size(), 8u);
  for (int method : {1, 2}) {
    b = Record([=] { EmitSimpleSphere(&recorder, V(0, 0, 0), 1, 16, method); });
    ASSERT_EQ(b.size(), method == 1 ? 8u : 16u);
    EXPECT_EQ(b[0].mode, (unsigned)(method == 1 ? PRIM_TRIANGLE_STRIP : PRIM_QUAD_STRIP));
    EXPECT_NEAR(b[0].v[0].y, sin(-M_PI / 2 + M_PI / b.size()), 1e-6);
    EXPECT_FLOAT_EQ(b.back().v[0].t, method == 1 ? 1 : 2);
  }
  // Odd, negative and mirrored arguments give the same sphere.
  for (auto nr : {std::make_pair(17, 1.0), std::make_pair(-16, -1.0), std::make_pair(-17, 1.0)}) {
    b = Record([=] { EmitSimpleSphere(&recorder, V(0, 0, 0), nr.second, nr.first, 0); });
    ASSERT_EQ(b.size(), 8u);
    for (int j = 0; j < 8; j++) EXPECT_EQ(memcmp(b[j].v.data(), sixteen[j].v.data(), 34 * sizeof(VERT)), 0);
  }
  for (auto nr : {std::make_pair(3, 1.0), std::make_pair(16, 0.0), std::make_pair(-3, 1.0)}) {
    b = Record([=] { EmitSimpleSphere(&recorder, V(1, -2, 3), nr.second, nr.first, 0); });
    ASSERT_EQ(b.size(), 1u);
    EXPECT_EQ(b[0].mode, (unsigned)PRIM_POINTS);
    ASSERT_EQ(b[0].v.size(), 1u);
    EXPECT_VERT(b[0].v[0], 1, -2, 3, b[0].v[0].nx, b[0].v[0].ny, b[0].v[0].nz);
  }
}

// The segments of line strips and line batches, each as a sorted pair.
std::set<std::vector<float>> Edges(const std::vector<BATCH> &b, size_t *count) {
  std::set<std::vector<float>> out;
  *count = 0;
  for (const BATCH &batch : b) {
    size_t step = batch.mode == PRIM_LINES ? 2 : 1;
    for (size_t k = 0; k + 1 < batch.v.size() && batch.mode != PRIM_QUADS; k += step, ++*count) {
      std::vector<float> a = {batch.v[k].x, batch.v[k].y, batch.v[k].z}, c = {batch.v[k + 1].x, batch.v[k + 1].y, batch.v[k + 1].z};
      if (c < a) std::swap(a, c);
      a.insert(a.end(), c.begin(), c.end());
      out.insert(a);
    }
  }
  return out;
}

TEST(Primitives, BoxEdgesFacesAndFrames) {
  size_t count;
  auto b = Record([] { EmitBox(&recorder, 0, V(0, 0, 0), V(1, 2, 3)); });
  ASSERT_EQ(b.size(), 2u);
  EXPECT_EQ(b[0].mode, (unsigned)PRIM_LINE_STRIP);
  EXPECT_EQ(b[1].mode, (unsigned)PRIM_LINES);
  auto edges = Edges(b, &count);
  EXPECT_EQ(count, 12u);
  EXPECT_EQ(edges.size(), 12u);  // each once
  for (const auto &e : edges) EXPECT_EQ((e[0] != e[3]) + (e[1] != e[4]) + (e[2] != e[5]), 1);
  // Solid: six faces, a normal each, vertices and texture as the table.
  b = Record([] { EmitBox(&recorder, 1, V(-1, -2, -3), V(4, 5, 6)); });
  ASSERT_EQ(b.size(), 1u);
  EXPECT_EQ(b[0].mode, (unsigned)PRIM_QUADS);
  EXPECT_EQ(b[0].normals, 6);
  ASSERT_EQ(b[0].v.size(), 24u);
  const int normal[6][3] = {{0, 0, -1}, {0, 0, 1}, {-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}};
  const char *corners[6] = {"000 010 110 100", "001 101 111 011", "001 011 010 000",
                            "101 100 110 111", "001 000 100 101", "011 111 110 010"};  // x y z: 0 low, 1 high
  const float lo[3] = {-1, -2, -3}, hi[3] = {4, 5, 6}, tex[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  for (int f = 0; f < 6; f++)
    for (int k = 0; k < 4; k++) {
      const VERT &v = b[0].v[4 * f + k];
      const char *c = corners[f] + 4 * k;
      EXPECT_VERT(v, c[0] == '1' ? hi[0] : lo[0], c[1] == '1' ? hi[1] : lo[1], c[2] == '1' ? hi[2] : lo[2],
                  normal[f][0], normal[f][1], normal[f][2]);
      EXPECT_EQ(v.s, tex[k][0]);
      EXPECT_EQ(v.t, tex[k][1]);
    }
  // Framed: the edges of a box a twentieth larger each way, and on each of
  // its faces a closed rectangle of the box's own extent.
  b = Record([] { EmitBox(&recorder, 2, V(0, 0, 0), V(20, 40, 60)); });
  ASSERT_EQ(b.size(), 8u);
  edges = Edges({b[0], b[1]}, &count);
  EXPECT_EQ(edges.size(), 12u);
  EXPECT_EQ(*edges.begin(), (std::vector<float>{-1, -2, -3, -1, -2, 63}));
  for (int i = 2; i < 8; i++) {
    ASSERT_EQ(b[i].v.size(), 5u);
    EXPECT_EQ(memcmp(&b[i].v[0], &b[i].v[4], 3 * sizeof(float)), 0);
  }
  const float xface[5][3] = {{-1, 0, 0}, {-1, 0, 60}, {-1, 40, 60}, {-1, 40, 0}, {-1, 0, 0}};
  int found = 0;
  for (int i = 2; i < 8; i++)
    if (b[i].v[0].x == -1)
      for (int k = 0; k < 5; k++, found++) EXPECT_VERT(b[i].v[k], xface[k][0], xface[k][1], xface[k][2], b[i].v[k].nx, b[i].v[k].ny, b[i].v[k].nz);
  EXPECT_EQ(found, 5);
  for (int method : {-1, 3}) EXPECT_TRUE(Record([=] { EmitBox(&recorder, method, V(0, 0, 0), V(1, 1, 1)); }).empty());
  b = Record([] { EmitBox(&recorder, 0, V(2, 3, 4), V(2, 3, 4)); });
  EXPECT_EQ(b[0].v.size() + b[1].v.size(), 16u);  // zero-length lines, drawn all the same
}

typedef std::vector<unsigned char> BYTES;
struct PIX { unsigned char r, g, b, a; };
const PIX A = {10, 20, 30, 255}, B = {40, 50, 60, 255}, C = {70, 80, 90, 255}, D = {1, 2, 3, 4};
PIX Distinct(int i) { return {(unsigned char)(i & 255), (unsigned char)(i >> 8), 7, 255}; }

BYTES Pixels(const std::vector<PIX> &p) {
  BYTES out;
  for (const PIX &x : p) out.insert(out.end(), {x.r, x.g, x.b, x.a});
  return out;
}

BYTES Bytes(const std::string &s) { return BYTES(s.begin(), s.end()); }

BYTES Row(const std::vector<PIX> &p, int bpp = 3) {
  BYTES row = Pixels(p);
  return Bytes(Capture([&](FILE *fp) { WriteTGACompressedRow(fp, row.data(), (int)p.size(), bpp); }));
}

BYTES Image(const std::vector<PIX> &p, int w, int h, int format) {
  BYTES px = Pixels(p);
  return Bytes(Capture([&](FILE *fp) { Write_Bitmap(fp, px.data(), w, h, format); }));
}

// A packet: the header byte then the pixels, blue green red.
BYTES Packet(int header, const std::vector<PIX> &p) {
  BYTES out = {(unsigned char)header};
  for (const PIX &x : p) out.insert(out.end(), {x.b, x.g, x.r});
  return out;
}

BYTES Cat(std::initializer_list<BYTES> parts) {
  BYTES out;
  for (const BYTES &p : parts) out.insert(out.end(), p.begin(), p.end());
  return out;
}

TEST(Bitmap, RunLengthPacketsOfRows) {
  EXPECT_EQ(Row(std::vector<PIX>(300, A)), Cat({Packet(0xff, {A}), Packet(0xff, {A}), Packet(0x80 + 43, {A})}));
  std::vector<PIX> all;
  for (int i = 0; i < 300; i++) all.push_back(Distinct(i));
  EXPECT_EQ(Row(all), Cat({Packet(127, std::vector<PIX>(all.begin(), all.begin() + 128)),
                           Packet(127, std::vector<PIX>(all.begin() + 128, all.begin() + 256)),
                           Packet(43, std::vector<PIX>(all.begin() + 256, all.end()))}));
  // 129 different pixels: the last is written with pixel 127's value, the
  // reference carried over from the full packet.
  all.resize(129);
  EXPECT_EQ(Row(all), Cat({Packet(127, std::vector<PIX>(all.begin(), all.begin() + 128)), Packet(0x80, {all[127]})}));
  std::vector<PIX> runs(128, A);
  runs.insert(runs.end(), {B, A, A});
  EXPECT_EQ(Row(runs), Cat({Packet(0xff, {A}), Packet(0x82, {A})}));
  runs.resize(128);
  runs.insert(runs.end(), {A, B});
  EXPECT_EQ(Row(runs), Cat({Packet(0xff, {A}), Packet(0x01, {A, B})}));
  EXPECT_EQ(Row({A, A, B}), Cat({Packet(0x81, {A}), Packet(0x80, {B})}));
  EXPECT_EQ(Row({A, B, B}), Cat({Packet(0x00, {A}), Packet(0x81, {B})}));
  EXPECT_EQ(Row({A, B, C, C, D}), Cat({Packet(0x01, {A, B}), Packet(0x81, {C}), Packet(0x80, {D})}));
  EXPECT_EQ(Row({A, B, A, A, A, B}), Cat({Packet(0x01, {A, B}), Packet(0x82, {A}), Packet(0x80, {B})}));
  EXPECT_TRUE(Row({}).empty());
  // Alpha takes part in equality; it is written at 32 bit only.
  PIX p = {1, 2, 3, 10}, q = {1, 2, 3, 20};
  EXPECT_EQ(Row({p, q, q}, 4), BYTES({0x00, 3, 2, 1, 10, 0x81, 3, 2, 1, 20}));
  EXPECT_EQ(Row({p, q, q}, 3), Cat({Packet(0x00, {p}), Packet(0x81, {q})}));
}

TEST(Bitmap, HeadersRowOrderAndDumpNames) {
  struct { int code, type, bits, descriptor; size_t size; } cases[] = {
      {1, 2, 24, 0, 18 + 600 * 3}, {11, 2, 32, 8, 18 + 600 * 4}, {12, 10, 24, 0, 18 + 2 * 3 * 4}, {13, 10, 32, 8, 18 + 2 * 3 * 5}};
  for (auto c : cases) {
    for (int sign : {1, -1}) {
      BYTES out = Image(std::vector<PIX>(600, PIX{0, 0, 0, 0}), 300, 2, sign * c.code);
      EXPECT_EQ(BYTES(out.begin(), out.begin() + 18),
                BYTES({0, 0, (unsigned char)c.type, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x2c, 1, 2, 0, (unsigned char)c.bits, (unsigned char)c.descriptor}));
      EXPECT_EQ(out.size(), c.size);
    }
  }
  EXPECT_EQ(Image({A}, 1, 1, 12), BYTES({0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24, 0, 0x80, 30, 20, 10}));
  // Rows A B over C D: positive codes write buffer row 0 first, negative the last.
  BYTES body = Image({A, B, C, D}, 2, 2, 1);
  EXPECT_EQ(BYTES(body.begin() + 18, body.end()), BYTES({30, 20, 10, 60, 50, 40, 90, 80, 70, 3, 2, 1}));
  body = Image({A, B, C, D}, 2, 2, -12);
  EXPECT_EQ(BYTES(body.begin() + 18, body.end()), Cat({Packet(0x01, {C, D}), Packet(0x01, {A, B})}));
  body = Image({A, B, C, D}, 2, 2, 11);
  EXPECT_EQ(BYTES(body.begin() + 18, body.end()), BYTES({30, 20, 10, 255, 60, 50, 40, 255, 90, 80, 70, 255, 3, 2, 1, 4}));
  EXPECT_EQ(Image({A, B, C, D}, 2, 2, -2), Cat({Bytes("P6\n2 2\n255\n"), BYTES({70, 80, 90, 1, 2, 3, 10, 20, 30, 40, 50, 60})}));
  for (int code : {0, 3, 9, 14}) EXPECT_TRUE(Image({A, B, C, D}, 2, 2, code).empty()) << code;
  EXPECT_EQ(Create_Bitmap(0, 3), nullptr);
  for (int code : {1, 11, 12, 13, -12}) EXPECT_STREQ(DumpExtension(code), "tga");
  EXPECT_STREQ(DumpExtension(2), "ppm");
  EXPECT_STREQ(DumpExtension(9), "bmp");
  EXPECT_EQ(DumpExtension(10), nullptr);
  char name[DUMPNAMESIZE];
  EXPECT_EQ(DumpFileName(name, sizeof(name), "", "L_", 12, "tga"), 1);
  EXPECT_STREQ(name, "L_0012.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "shot", "R_", 3, "tga"), 1);
  EXPECT_STREQ(name, "R_shot.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "abcdefghijklmnopqrstuvwxyz0", "", 0, "tga"), 1);  // 31 characters fit
  EXPECT_EQ(DumpFileName(name, sizeof(name), "abcdefghijklmnopqrstuvwxyz01", "", 0, "tga"), 0);
  // Numbered dumps take the first free number; a given name is overwritten.
  Scratch s;
  char old[4096];
  ASSERT_NE(getcwd(old, sizeof(old)), nullptr);
  ASSERT_EQ(chdir(s.dir.c_str()), 0);
  for (const char *f : {"0000.tga", "0001.tga", "0003.tga", "L_0002.tga"}) WriteFile(f, "");
  int counter = 0;
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "", &counter, "tga"), 1);
  EXPECT_STREQ(name, "0002.tga");
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "L_", &counter, "tga"), 1);
  EXPECT_STREQ(name, "L_0003.tga");
  EXPECT_EQ(counter, 3);
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "shot", "", &counter, "tga"), 1);
  EXPECT_STREQ(name, "shot.tga");
  EXPECT_EQ(counter, 3);
  ASSERT_EQ(chdir(old), 0);
}

}  // namespace
