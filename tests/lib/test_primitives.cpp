#include <gtest/gtest.h>
#include <math.h>

#include <set>
#include <tuple>
#include <vector>

#include "lib/primitives.h"

// A sink that records the calls; a vertex is stored with the normal and
// texture coordinate current at the time, as GL would use them.
struct VERT {
  float x, y, z;
  float nx, ny, nz;
  float s, t;
};
struct BATCH {
  unsigned int mode;
  std::vector<VERT> v;
  int nnormals;  // normal calls inside the batch
  bool ended;
};

static std::vector<BATCH> batches;
static float curn[3], curt[2];
static int outside;  // calls outside a begin/end pair, or nested begins

static void RecBegin(unsigned int mode) {
  if (!batches.empty() && !batches.back().ended) outside++;
  batches.push_back({mode, {}, 0, false});
}
static void RecEnd(void) {
  if (batches.empty() || batches.back().ended) outside++;
  else batches.back().ended = true;
}
static void RecNormal(float x, float y, float z) {
  curn[0] = x, curn[1] = y, curn[2] = z;
  if (batches.empty() || batches.back().ended) outside++;
  else batches.back().nnormals++;
}
static void RecTexcoord(float s, float t) {
  curt[0] = s, curt[1] = t;
  if (batches.empty() || batches.back().ended) outside++;
}
static void RecVertex(float x, float y, float z) {
  if (batches.empty() || batches.back().ended) {
    outside++;
    return;
  }
  batches.back().v.push_back({x, y, z, curn[0], curn[1], curn[2], curt[0], curt[1]});
}

static const PRIMSINK recorder = {RecBegin, RecEnd, RecNormal, RecTexcoord, RecVertex};

static void Reset() {
  batches.clear();
  outside = 0;
  curn[0] = curn[1] = curn[2] = 99;
  curt[0] = curt[1] = 99;
}

static XYZ P(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

#define EXPECT_V(vt, ex, ey, ez, tol) \
  do {                                \
    EXPECT_NEAR((vt).x, ex, tol);     \
    EXPECT_NEAR((vt).y, ey, tol);     \
    EXPECT_NEAR((vt).z, ez, tol);     \
  } while (0)
#define EXPECT_N(vt, ex, ey, ez, tol) \
  do {                                \
    EXPECT_NEAR((vt).nx, ex, tol);    \
    EXPECT_NEAR((vt).ny, ey, tol);    \
    EXPECT_NEAR((vt).nz, ez, tol);    \
  } while (0)

// ---- cone ----

TEST(Primitives, ConeAlongYUsesTheXHelperAndMakesARing) {
  Reset();
  // Axis (0,1,0): the helper is (1,1,0), giving a = (0,0,1), b = (1,0,0), so
  // the ring runs (cos, 0, sin).
  EmitCone(&recorder, P(0, 2, 0), P(0, 0, 0), 1, 1, 4, 0, TWOPI);
  ASSERT_EQ(batches.size(), 1u);
  EXPECT_EQ(outside, 0);
  EXPECT_EQ(batches[0].mode, (unsigned)PRIM_QUAD_STRIP);
  EXPECT_TRUE(batches[0].ended);
  const std::vector<VERT> &v = batches[0].v;
  ASSERT_EQ(v.size(), 10u);
  const double ring[5][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}};
  for (int i = 0; i < 5; i++) {
    EXPECT_V(v[2 * i], ring[i][0], 2, ring[i][1], 1e-6);
    EXPECT_V(v[2 * i + 1], ring[i][0], 0, ring[i][1], 1e-6);
    EXPECT_N(v[2 * i], ring[i][0], 0, ring[i][1], 1e-6);
    EXPECT_N(v[2 * i + 1], ring[i][0], 0, ring[i][1], 1e-6);
    EXPECT_FLOAT_EQ(v[2 * i].s, i / 4.0f);
    EXPECT_FLOAT_EQ(v[2 * i].t, 0);
    EXPECT_FLOAT_EQ(v[2 * i + 1].s, i / 4.0f);
    EXPECT_FLOAT_EQ(v[2 * i + 1].t, 1);
  }
}

TEST(Primitives, ConeNormalsAreRadialWhateverTheRadii) {
  Reset();
  // Axis (0,0,1): helper (0,1,1), a = (1,0,0), b = (0,1,0); q = (sin, cos, 0).
  // Half a turn in 6 facets, radius 2 at p1 and 0.5 at p2.
  EmitCone(&recorder, P(1, 2, 3), P(1, 2, -1), 2, 0.5, 6, 0, M_PI);
  ASSERT_EQ(batches.size(), 1u);
  const std::vector<VERT> &v = batches[0].v;
  ASSERT_EQ(v.size(), 14u);
  for (int i = 0; i <= 6; i++) {
    double a = i * M_PI / 6;
    EXPECT_V(v[2 * i], 1 + 2 * sin(a), 2 + 2 * cos(a), 3, 1e-6);
    EXPECT_V(v[2 * i + 1], 1 + 0.5 * sin(a), 2 + 0.5 * cos(a), -1, 1e-6);
    EXPECT_N(v[2 * i], sin(a), cos(a), 0, 1e-6);
    EXPECT_N(v[2 * i + 1], sin(a), cos(a), 0, 1e-6);
  }
}

TEST(Primitives, ConeOnAnObliqueAxisHasUnitPerpendicularNormalsEvenlySpaced) {
  Reset();
  XYZ p1 = P(0.5, -1, 2), p2 = P(1.5, 1, 5);
  EmitCone(&recorder, p1, p2, 0.3, 0.3, 10, 0, TWOPI);
  ASSERT_EQ(batches.size(), 1u);
  const std::vector<VERT> &v = batches[0].v;
  ASSERT_EQ(v.size(), 22u);
  XYZ axis = P(-1, -2, -3);
  Normalise(&axis);
  for (size_t k = 0; k < v.size(); k++) {
    XYZ n = P(v[k].nx, v[k].ny, v[k].nz);
    EXPECT_NEAR(Modulus(n), 1, 1e-6);
    EXPECT_NEAR(DotProduct(n, axis), 0, 1e-6);
    XYZ end = k % 2 ? p2 : p1;
    EXPECT_V(v[k], end.x + 0.3 * n.x, end.y + 0.3 * n.y, end.z + 0.3 * n.z, 1e-6);
  }
  for (int i = 0; i < 10; i++) {
    XYZ n0 = P(v[2 * i].nx, v[2 * i].ny, v[2 * i].nz);
    XYZ n1 = P(v[2 * i + 2].nx, v[2 * i + 2].ny, v[2 * i + 2].nz);
    EXPECT_NEAR(DotProduct(n0, n1), cos(TWOPI / 10), 1e-6);
  }
  // A full turn closes: the last pair repeats the first.
  EXPECT_V(v[20], v[0].x, v[0].y, v[0].z, 1e-6);
}

TEST(Primitives, ConeWithCoincidentEndsHasZeroNormals) {
  Reset();
  EmitCone(&recorder, P(1, 1, 1), P(1, 1, 1), 1, 2, 3, 0, TWOPI);
  ASSERT_EQ(batches.size(), 1u);
  ASSERT_EQ(batches[0].v.size(), 8u);
  for (const VERT &v : batches[0].v) {
    EXPECT_N(v, 0, 0, 0, 0);
    EXPECT_V(v, 1, 1, 1, 0);
  }
}

TEST(Primitives, ConeWithNegativeFacetsIsAnEmptyBatch) {
  Reset();
  EmitCone(&recorder, P(0, 0, 0), P(1, 0, 0), 1, 1, -1, 0, TWOPI);
  ASSERT_EQ(batches.size(), 1u);
  EXPECT_EQ(batches[0].mode, (unsigned)PRIM_QUAD_STRIP);
  EXPECT_TRUE(batches[0].ended);
  EXPECT_EQ(batches[0].v.size(), 0u);
  EXPECT_EQ(batches[0].nnormals, 0);
  EXPECT_EQ(outside, 0);
}

// ---- sphere ----

static std::vector<BATCH> Sphere(XYZ c, double r, int n, int method) {
  Reset();
  EmitSimpleSphere(&recorder, c, r, n, method);
  EXPECT_EQ(outside, 0);
  return batches;
}

static void ExpectSameBatches(const std::vector<BATCH> &a, const std::vector<BATCH> &b) {
  ASSERT_EQ(a.size(), b.size());
  for (size_t i = 0; i < a.size(); i++) {
    EXPECT_EQ(a[i].mode, b[i].mode);
    ASSERT_EQ(a[i].v.size(), b[i].v.size());
    for (size_t k = 0; k < a[i].v.size(); k++) {
      EXPECT_EQ(a[i].v[k].x, b[i].v[k].x);
      EXPECT_EQ(a[i].v[k].y, b[i].v[k].y);
      EXPECT_EQ(a[i].v[k].z, b[i].v[k].z);
      EXPECT_EQ(a[i].v[k].nx, b[i].v[k].nx);
      EXPECT_EQ(a[i].v[k].ny, b[i].v[k].ny);
      EXPECT_EQ(a[i].v[k].nz, b[i].v[k].nz);
      EXPECT_EQ(a[i].v[k].s, b[i].v[k].s);
      EXPECT_EQ(a[i].v[k].t, b[i].v[k].t);
    }
  }
}

TEST(Primitives, SphereTooCoarseOrTooSmallIsOnePoint) {
  XYZ c = P(1, -2, 3);
  for (auto nr : {std::make_pair(3, 1.0), std::make_pair(16, 0.0), std::make_pair(-3, 1.0),
                  std::make_pair(0, 5.0), std::make_pair(2, 1.0)}) {
    std::vector<BATCH> b = Sphere(c, nr.second, nr.first, 0);
    ASSERT_EQ(b.size(), 1u);
    EXPECT_EQ(b[0].mode, (unsigned)PRIM_POINTS);
    ASSERT_EQ(b[0].v.size(), 1u);
    EXPECT_V(b[0].v[0], 1, -2, 3, 0);
    EXPECT_TRUE(b[0].ended);
  }
  // Four divisions is already a sphere.
  std::vector<BATCH> b = Sphere(c, 1, 4, 0);
  EXPECT_EQ(b.size(), 2u);
}

TEST(Primitives, SphereOddNegativeAndMirroredArgumentsGiveTheSameSphere) {
  XYZ c = P(0.25, 0.5, -1);
  std::vector<BATCH> ref = Sphere(c, 2, 16, 0);
  ASSERT_EQ(ref.size(), 8u);
  ExpectSameBatches(Sphere(c, 2, 17, 0), ref);
  ExpectSameBatches(Sphere(c, -2, 16, 0), ref);
  ExpectSameBatches(Sphere(c, 2, -16, 0), ref);
  ExpectSameBatches(Sphere(c, -2, -17, 0), ref);
}

TEST(Primitives, SphereFourDivisionsByHand) {
  // n = 4, method 0: two bands of 90 degrees. Band 0 from the south pole to
  // the equator, band 1 from the equator to the north pole.
  std::vector<BATCH> b = Sphere(P(1, 2, 3), 2, 4, 0);
  ASSERT_EQ(b.size(), 2u);
  for (const BATCH &band : b) {
    EXPECT_EQ(band.mode, (unsigned)PRIM_QUAD_STRIP);
    ASSERT_EQ(band.v.size(), 10u);
  }
  // Longitudes 0, 90, 180, 270, 360 degrees: (cos, sin) in the x-z plane.
  const double ring[5][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}};
  for (int i = 0; i < 5; i++) {
    const VERT &eq0 = b[0].v[2 * i], &south = b[0].v[2 * i + 1];
    const VERT &north = b[1].v[2 * i], &eq1 = b[1].v[2 * i + 1];
    EXPECT_V(eq0, 1 + 2 * ring[i][0], 2, 3 + 2 * ring[i][1], 1e-6);
    EXPECT_N(eq0, ring[i][0], 0, ring[i][1], 1e-6);
    EXPECT_V(south, 1, 0, 3, 1e-6);
    EXPECT_N(south, 0, -1, 0, 1e-6);
    EXPECT_V(north, 1, 4, 3, 1e-6);
    EXPECT_N(north, 0, 1, 0, 1e-6);
    EXPECT_V(eq1, 1 + 2 * ring[i][0], 2, 3 + 2 * ring[i][1], 1e-6);
    // Texture: s = i/4; t = 2(j+1)/4 above, 2j/4 below.
    EXPECT_FLOAT_EQ(eq0.s, i / 4.0f);
    EXPECT_FLOAT_EQ(eq0.t, 0.5f);
    EXPECT_FLOAT_EQ(south.t, 0);
    EXPECT_FLOAT_EQ(north.s, i / 4.0f);
    EXPECT_FLOAT_EQ(north.t, 1);
    EXPECT_FLOAT_EQ(eq1.t, 0.5f);
  }
}

TEST(Primitives, SphereMethodsChooseStripsAndBands) {
  XYZ c = P(0, 0, 0);
  // Method 0 (and any other but 1 and 2): 8 quad strips of 22.5 degrees.
  for (int method : {0, 3}) {
    std::vector<BATCH> b = Sphere(c, 1, 16, method);
    ASSERT_EQ(b.size(), 8u);
    for (size_t j = 0; j < b.size(); j++) {
      EXPECT_EQ(b[j].mode, (unsigned)PRIM_QUAD_STRIP);
      ASSERT_EQ(b[j].v.size(), 34u);
      double t1 = (j * 22.5 - 90) * M_PI / 180, t2 = t1 + 22.5 * M_PI / 180;
      EXPECT_NEAR(b[j].v[0].y, sin(t2), 1e-6);
      EXPECT_NEAR(b[j].v[1].y, sin(t1), 1e-6);
      EXPECT_FLOAT_EQ(b[j].v[0].t, (j + 1) / 8.0f);
      EXPECT_FLOAT_EQ(b[j].v[1].t, j / 8.0f);
    }
  }
  std::vector<BATCH> b = Sphere(c, 1, 16, 1);
  ASSERT_EQ(b.size(), 8u);
  for (const BATCH &band : b) EXPECT_EQ(band.mode, (unsigned)PRIM_TRIANGLE_STRIP);
  // Method 2: 16 quad strips of 11.25 degrees; t runs up to 2 at the top.
  b = Sphere(c, 1, 16, 2);
  ASSERT_EQ(b.size(), 16u);
  for (size_t j = 0; j < b.size(); j++) {
    EXPECT_EQ(b[j].mode, (unsigned)PRIM_QUAD_STRIP);
    double t1 = (j * 11.25 - 90) * M_PI / 180, t2 = t1 + 11.25 * M_PI / 180;
    EXPECT_NEAR(b[j].v[0].y, sin(t2), 1e-6);
    EXPECT_NEAR(b[j].v[1].y, sin(t1), 1e-6);
    EXPECT_FLOAT_EQ(b[j].v[0].t, (j + 1) / 8.0f);
  }
  EXPECT_FLOAT_EQ(b[15].v[0].t, 2);
  EXPECT_NEAR(b[15].v[0].y, 1, 1e-6);
  // Every vertex lies on the sphere with its normal pointing out.
  for (const BATCH &band : b)
    for (const VERT &v : band.v) {
      EXPECT_NEAR(v.x * v.x + v.y * v.y + v.z * v.z, 1, 1e-6);
      EXPECT_N(v, v.x, v.y, v.z, 1e-6);
    }
}

// ---- box ----

typedef std::tuple<float, float, float> PT;

static float Coord(const VERT &v, int k) { return k == 0 ? v.x : k == 1 ? v.y : v.z; }

static std::vector<BATCH> Box(int method, XYZ pmin, XYZ pmax) {
  Reset();
  EmitBox(&recorder, method, pmin, pmax);
  EXPECT_EQ(outside, 0);
  return batches;
}

// The segments drawn by a line strip followed by a lines batch.
static std::vector<std::pair<PT, PT>> Segments(const std::vector<BATCH> &b) {
  std::vector<std::pair<PT, PT>> seg;
  for (const BATCH &batch : b) {
    const std::vector<VERT> &v = batch.v;
    if (batch.mode == PRIM_LINE_STRIP)
      for (size_t k = 0; k + 1 < v.size(); k++)
        seg.push_back({PT(v[k].x, v[k].y, v[k].z), PT(v[k + 1].x, v[k + 1].y, v[k + 1].z)});
    else if (batch.mode == PRIM_LINES)
      for (size_t k = 0; k + 1 < v.size(); k += 2)
        seg.push_back({PT(v[k].x, v[k].y, v[k].z), PT(v[k + 1].x, v[k + 1].y, v[k + 1].z)});
  }
  return seg;
}

// Expects the segments to be the 12 edges of the box lo-hi, each once.
static void ExpectTwelveEdges(const std::vector<std::pair<PT, PT>> &seg, XYZ lo, XYZ hi) {
  ASSERT_EQ(seg.size(), 12u);
  std::set<std::pair<PT, PT>> seen;
  for (const auto &s : seg) {
    float a[3] = {std::get<0>(s.first), std::get<1>(s.first), std::get<2>(s.first)};
    float b[3] = {std::get<0>(s.second), std::get<1>(s.second), std::get<2>(s.second)};
    float l[3] = {(float)lo.x, (float)lo.y, (float)lo.z};
    float h[3] = {(float)hi.x, (float)hi.y, (float)hi.z};
    int differ = 0;
    for (int k = 0; k < 3; k++) {
      EXPECT_TRUE(a[k] == l[k] || a[k] == h[k]);
      EXPECT_TRUE(b[k] == l[k] || b[k] == h[k]);
      differ += a[k] != b[k];
    }
    EXPECT_EQ(differ, 1);  // an edge, not a diagonal
    auto key = s.first < s.second ? s : std::make_pair(s.second, s.first);
    EXPECT_TRUE(seen.insert(key).second) << "edge drawn twice";
  }
  EXPECT_EQ(seen.size(), 12u);
}

TEST(Primitives, BoxWireframeDrawsEachEdgeOnce) {
  std::vector<BATCH> b = Box(0, P(0, 0, 0), P(1, 2, 3));
  ASSERT_EQ(b.size(), 2u);
  EXPECT_EQ(b[0].mode, (unsigned)PRIM_LINE_STRIP);
  EXPECT_EQ(b[0].v.size(), 10u);
  EXPECT_EQ(b[1].mode, (unsigned)PRIM_LINES);
  EXPECT_EQ(b[1].v.size(), 6u);
  ExpectTwelveEdges(Segments(b), P(0, 0, 0), P(1, 2, 3));
  EXPECT_V(b[0].v[0], 0, 0, 0, 0);
  EXPECT_V(b[0].v[9], 0, 2, 0, 0);
}

TEST(Primitives, BoxSolidFacesInOrder) {
  std::vector<BATCH> b = Box(1, P(-1, -2, -3), P(4, 5, 6));
  ASSERT_EQ(b.size(), 1u);
  EXPECT_EQ(b[0].mode, (unsigned)PRIM_QUADS);
  EXPECT_EQ(b[0].nnormals, 6);  // once per face
  ASSERT_EQ(b[0].v.size(), 24u);
  const float X0 = -1, Y0 = -2, Z0 = -3, X1 = 4, Y1 = 5, Z1 = 6;
  const float expect[6][3 + 12] = {
      {0, 0, -1, X0, Y0, Z0, X0, Y1, Z0, X1, Y1, Z0, X1, Y0, Z0},
      {0, 0, 1, X0, Y0, Z1, X1, Y0, Z1, X1, Y1, Z1, X0, Y1, Z1},
      {-1, 0, 0, X0, Y0, Z1, X0, Y1, Z1, X0, Y1, Z0, X0, Y0, Z0},
      {1, 0, 0, X1, Y0, Z1, X1, Y0, Z0, X1, Y1, Z0, X1, Y1, Z1},
      {0, -1, 0, X0, Y0, Z1, X0, Y0, Z0, X1, Y0, Z0, X1, Y0, Z1},
      {0, 1, 0, X0, Y1, Z1, X1, Y1, Z1, X1, Y1, Z0, X0, Y1, Z0},
  };
  const float tex[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  for (int f = 0; f < 6; f++)
    for (int k = 0; k < 4; k++) {
      const VERT &v = b[0].v[4 * f + k];
      EXPECT_N(v, expect[f][0], expect[f][1], expect[f][2], 0);
      EXPECT_V(v, expect[f][3 + 3 * k], expect[f][4 + 3 * k], expect[f][5 + 3 * k], 0);
      EXPECT_EQ(v.s, tex[k][0]);
      EXPECT_EQ(v.t, tex[k][1]);
    }
}

TEST(Primitives, BoxFramedWireframe) {
  // A twentieth of (20, 40, 60) is (1, 2, 3).
  std::vector<BATCH> b = Box(2, P(0, 0, 0), P(20, 40, 60));
  ASSERT_EQ(b.size(), 8u);
  std::vector<BATCH> edges(b.begin(), b.begin() + 2);
  ExpectTwelveEdges(Segments(edges), P(-1, -2, -3), P(21, 42, 63));
  const float enlarged[2][3] = {{-1, -2, -3}, {21, 42, 63}};
  const float box[2][3] = {{0, 0, 0}, {20, 40, 60}};
  std::set<std::pair<int, int>> faces;
  for (int i = 2; i < 8; i++) {
    EXPECT_EQ(b[i].mode, (unsigned)PRIM_LINE_STRIP);
    ASSERT_EQ(b[i].v.size(), 5u);
    const std::vector<VERT> &v = b[i].v;
    EXPECT_V(v[4], v[0].x, v[0].y, v[0].z, 0);  // closed
    // Which face: the coordinate all five share at an enlarged-box value.
    int axis = -1, side = -1;
    for (int k = 0; k < 3; k++)
      for (int sd = 0; sd < 2; sd++) {
        bool all = true;
        for (const VERT &p : v) all = all && Coord(p, k) == enlarged[sd][k];
        if (all) axis = k, side = sd;
      }
    ASSERT_GE(axis, 0) << "frame " << i << " is not on a face";
    faces.insert({axis, side});
    // The other two coordinates take the box's own extent, all four corners.
    std::set<std::pair<float, float>> corners;
    int u = (axis + 1) % 3, w = (axis + 2) % 3;
    for (int k = 0; k < 4; k++) {
      float a = Coord(v[k], u), c = Coord(v[k], w);
      EXPECT_TRUE(a == box[0][u] || a == box[1][u]);
      EXPECT_TRUE(c == box[0][w] || c == box[1][w]);
      corners.insert({a, c});
    }
    EXPECT_EQ(corners.size(), 4u);
    // Consecutive corners share an edge of the rectangle.
    for (int k = 0; k < 4; k++) {
      int same = (Coord(v[k], u) == Coord(v[k + 1], u)) + (Coord(v[k], w) == Coord(v[k + 1], w));
      EXPECT_EQ(same, 1);
    }
  }
  EXPECT_EQ(faces.size(), 6u);
  // The face x = x0 - dx runs (y0,z0), (y0,z1), (y1,z1), (y1,z0), (y0,z0).
  bool found = false;
  for (int i = 2; i < 8; i++)
    if (b[i].v[0].x == -1) {
      found = true;
      EXPECT_V(b[i].v[0], -1, 0, 0, 0);
      EXPECT_V(b[i].v[1], -1, 0, 60, 0);
      EXPECT_V(b[i].v[2], -1, 40, 60, 0);
      EXPECT_V(b[i].v[3], -1, 40, 0, 0);
      EXPECT_V(b[i].v[4], -1, 0, 0, 0);
    }
  EXPECT_TRUE(found);
}

TEST(Primitives, BoxOtherMethodsDrawNothing) {
  for (int method : {-1, 3, 7}) {
    std::vector<BATCH> b = Box(method, P(0, 0, 0), P(1, 1, 1));
    EXPECT_TRUE(b.empty()) << "method " << method;
  }
}

TEST(Primitives, BoxWithCoincidentCornersIsDegenerateButFinite) {
  for (int method : {0, 1, 2}) {
    std::vector<BATCH> b = Box(method, P(2, 3, 4), P(2, 3, 4));
    ASSERT_FALSE(b.empty());
    for (const BATCH &batch : b) {
      EXPECT_TRUE(batch.ended);
      for (const VERT &v : batch.v) EXPECT_V(v, 2, 3, 4, 0);
    }
  }
  std::vector<BATCH> b = Box(0, P(2, 3, 4), P(2, 3, 4));
  EXPECT_EQ(b[0].v.size() + b[1].v.size(), 16u);
}
