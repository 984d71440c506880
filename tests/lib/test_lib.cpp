// The support library: vector helpers and readers, colour maps, primitive
// meshes and the TGA writer.
#include <unistd.h>

#include <vector>

#include "lib/bitmap.h"
#include "lib/colour.h"
#include "lib/primitives.h"
#include "lib/vector.h"
#include "test_util.h"

namespace {

TEST(Vector, NormalsRotationsAndTolerances) {
  XYZ p = V(3, 0, 4), z = V(0, 0, 0), n = V(NAN, 1, 1);
  Normalise(&p);
  Normalise(&z);
  Normalise(&n);
  EXPECT_XYZ(p, 0.6, 0, 0.8, 1e-16);
  EXPECT_XYZ(z, 0, 0, 0, 0);
  EXPECT_XYZ(n, 0, 0, 0, 0);                             // never a non-finite result
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(1e-6, 0, 0)), 1);  // inclusive
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(0, -1.5e-6, 0)), 0);
  EXPECT_EQ(VectorEqual(V(0, 0, 0), V(0, 0, 2e-6)), 0);
  EXPECT_XYZ(CalcNormal(V(0, 0, 0), V(0, 1, 0), V(1, 0, 0)), 0, 0, -1, 0);  // right-handed
  EXPECT_XYZ(CalcNormal(V(0, 0, 0), V(1, 1, 1), V(2, 2, 2)), 0, 0, 0, 0);
  // The axis turns are clockwise seen from the axis; ArbitraryRotate the other way.
  EXPECT_XYZ(RotateZ(V(1, 0, 0), M_PI / 2), 0, -1, 0, 1e-15);
  EXPECT_XYZ(RotateX(V(0, 1, 0), M_PI / 2), 0, 0, -1, 1e-15);
  EXPECT_XYZ(RotateY(V(0, 0, 1), M_PI / 2), -1, 0, 0, 1e-15);
  EXPECT_XYZ(ArbitraryRotate(V(1, 0, 0), M_PI / 2, V(0, 0, 7)), 0, 1, 0, 1e-15);
  EXPECT_XYZ(ArbitraryRotate(V(2, 4, 6), M_PI / 3, V(0, 0, 0)), 1, 2, 3, 1e-12);  // p cos(theta)
  EXPECT_GT(GetRunTime(), 1.5e9);                                                 // seconds since the epoch
}

TEST(Vector, ClosestPointsAndCrossings) {
  XYZ c, pa, pb, p = V(9, 9, 9);
  double mu = -1, mua, mub;
  // Length 0.003: squared 9e-6 < 1e-5, a point. 0.0032 is a line.
  EXPECT_DOUBLE_EQ(PointLine3D(&c, &mu, V(0, 1, 0), V(0, 0, 0), V(0.003, 0, 0)), 1);
  EXPECT_EQ(mu, 0);
  EXPECT_NEAR(PointLine3D(&c, &mu, V(1, 1, 0), V(0, 0, 0), V(0.0032, 0, 0)), 1, 1e-12);
  EXPECT_NEAR(mu, 1 / 0.0032, 1e-9);  // not clamped
  EXPECT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(0, 1, 0), V(1, 1, 0)), 0);
  EXPECT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(0, 1, 0), V(5e-6, 1, 0)), 0);
  ASSERT_EQ(LineLineIntersect(&pa, &pb, &mua, &mub, V(0, 0, 0), V(1, 0, 0), V(3, 0, 1), V(3, 1, 1)), 1);
  EXPECT_XYZ(pa, 3, 0, 0, 1e-12);
  EXPECT_XYZ(pb, 3, 0, 1, 1e-12);
  PLANE z0 = {0, 0, 1, 0};
  EXPECT_EQ(LineSegmentPlane(&p, V(0, 0, 0), V(1, 0, 0), z0), 0);  // in the plane
  EXPECT_EQ(LineSegmentPlane(&p, V(0, 0, 2), V(0, 0, 1), z0), 0);  // short of it: p not written
  EXPECT_EQ(p.x, 9);
  EXPECT_EQ(LineSegmentPlane(&p, V(1, 2, 5), V(1, 2, 0), z0), 1);  // ends on it
  EXPECT_XYZ(p, 1, 2, 0, 0);
}

TEST(Vector, ReadersOfLinesAndNumbers) {
  char text[] = "ab\r\ncd", longer[] = "abcdefgh\n", buf[8];
  FILE *fp = fmemopen(text, 6, "r");
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);
  EXPECT_STREQ(buf, "ab");
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);  // CR LF: one line, then an empty one
  EXPECT_STREQ(buf, "");
  EXPECT_EQ(ReadLine(fp, buf, 6), 0);  // end of file, the partial line kept
  EXPECT_STREQ(buf, "cd");
  fclose(fp);
  fp = fmemopen(longer, 9, "r");
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);
  EXPECT_EQ(ReadLine(fp, buf, 6), 1);
  EXPECT_STREQ(buf, "gh");  // the rest of the line after lmax
  fclose(fp);
  for (int lmax = -2; lmax <= 0; lmax++) {  // a buffer of lmax + 1 bytes is never overrun
    char t[] = "abc\ndef", b[2] = {'P', 'Q'};
    fp = fmemopen(t, 7, "r");
    EXPECT_EQ(ReadLine(fp, b, lmax), 1);
    EXPECT_EQ(b[0], '\0');
    EXPECT_EQ(b[1], 'Q');
    EXPECT_EQ(ftell(fp), 4);
    fclose(fp);
  }
  unsigned char bytes[] = {1, 2, 3, 4, 0, 0, 0x80, 0x3f, 0x3f, 0x80, 0, 0, 9};
  fp = fmemopen(bytes, sizeof(bytes), "r");
  int n = 0;
  float f = 0, g = 0;
  EXPECT_EQ(ReadInt(fp, &n, 0) + ReadFloat(fp, &f, 0) + ReadFloat(fp, &g, 1), 3);
  EXPECT_EQ(n, 0x04030201);
  EXPECT_EQ(f, 1.0f);
  EXPECT_EQ(g, 1.0f);                // swapped
  EXPECT_EQ(ReadInt(fp, &n, 0), 0);  // a short read
  fclose(fp);
}

// The stops of every map: "type[/255] t:r,g,b ...", t may be a/b. Map 30
// coincides with 4; map 31 goes linearly between its twelve steps.
const char *kMaps[] = {
    "1 0:0,0,1 .25:0,1,1 .5:0,1,0 .75:1,1,0 1:1,0,0",
    "2 0:0,0,1 1:1,0,0",
    "3 0:0,0,0 1:1,1,1",
    "4 0:1,0,0 1/6:1,1,0 2/6:0,1,0 3/6:0,1,1 4/6:0,0,1 5/6:1,0,1 1:1,0,0",
    "5 0:0,1,0 1:1,1,0",
    "6 0:0,1,0 1:1,0,1",
    "7 0:0,0,1 .25:0,1,0 .5:1,0,0 .75:0,1,0 1:0,0,1",
    "8 0:0,0,0 .5:1,1,1 1:0,0,0",
    "9 0:1,0,0 1/3:0,0,1 2/3:0,1,1 1:1,0,1",
    "10 0:0,0,1 .2:0,1,1 .4:0,1,0 .6:1,1,0 .8:1,0,0 1:1,1,1",
    "11/255 0:200,60,0 1:250,160,110",
    "12/255 0:55,55,45 .4:235,90,30 1:250,160,110",
    "13/255 0:0,255,0 .3:255,150,0 1:255,250,240",
    "14 0:1,1,0 1:1,0,0",
    "15 0:0,0,1 .25:0,1,1 .5:0,1,0 .75:1,1,0 1:1,1,1",
    "16 0:0,0,1 .5:0,1,0 1:1,0,0",
    "17 0:1,1,0 .5:1,0,1 1:0,1,1",
    "18 0:0,0,1 1:0,1,1",
    "19 0:0,0,1 1:1,1,1",
    "20/255 0:0,160,0 .3:180,220,0 1:250,220,170",
    "21/255 0:255,255,200 1:150,150,255",
    "22 0:1,1,0 1:0,0,1",
    "23 0:1,0,0 .5:1,1,1 1:0,0,1",
    "24 0:0,0,1 .5:1,1,0 1:1,0,0",
    "25 0:0,0,1 1/3:0,1,1 2/3:1,0,1 1:1,0,0",
    "26 0:0,1,0 .5:1,1,0 1:0,1,0",
    "27 0:0,0,0 .5:1,0,0 1:1,1,1",
    "28 0:0,0,0 .5:0,1,0 1:1,1,1",
    "29 0:0,0,0 .5:0,0,1 1:1,1,1",
    "30 0:1,0,0 1/6:1,1,0 2/6:0,1,0 3/6:0,1,1 4/6:0,0,1 5/6:1,0,1 1:1,0,0",
    "31 0:1,0,0 1/12:1,.8,0 2/12:1,1,0 3/12:.8,1,0 4/12:0,1,0 5/12:0,1,.8 6/12:0,1,1 7/12:0,.8,1 8/12:0,0,1 "
    "9/12:.8,0,1 10/12:1,0,1 11/12:1,0,.8 1:1,0,0"};

void ExpectColour(COLOUR c, double r, double g, double b, double tol) {
  EXPECT_NEAR(c.r, r, tol);
  EXPECT_NEAR(c.g, g, tol);
  EXPECT_NEAR(c.b, b, tol);
}

TEST(Colour, EveryMapAtItsStopsAndHalfWayBetweenThem) {
  for (const char *map : kMaps) {
    SCOPED_TRACE(map);
    int type, used, n = 0;
    double t[13], c[13][3], num, den;
    sscanf(map, "%d%n", &type, &used);
    double unit = map[used] == '/' ? 255 : 1;
    for (const char *s = map + used + (unit == 255 ? 4 : 0); sscanf(s, " %lf%n", &num, &used) == 1; n++) {
      s += used;
      den = 1;
      if (*s == '/' && sscanf(s, "/%lf%n", &den, &used) == 1) s += used;
      sscanf(s, ":%lf,%lf,%lf%n", &c[n][0], &c[n][1], &c[n][2], &used);
      s += used;
      t[n] = num / den;
    }
    for (int k = 0; k < 2 * n - 1; k++) {  // a stop, or half way: the average of two
      const double *a = c[k / 2], *b = c[(k + 1) / 2], tt = (t[k / 2] + t[(k + 1) / 2]) / 2;
      double r = (a[0] + b[0]) / 2 / unit, g = (a[1] + b[1]) / 2 / unit, bl = (a[2] + b[2]) / 2 / unit;
      ExpectColour(GetColour(tt, 0, 1, type), r, g, bl, 1e-9);
      ExpectColour(GetColour(-2 + 8 * tt, 6, -2, type), r, g, bl, 1e-9);
    }
  }
  ExpectColour(GetColour(3, 3, 3, 3), 0.5, 0.5, 0.5, 1e-15);     // [3, 3] widened to [2, 4]
  ExpectColour(GetColour(9e-7, 0, 9e-7, 2), 0.5, 0, 0.5, 1e-6);  // below 1e-6: widened
  ExpectColour(GetColour(1e-6, 0, 1e-6, 2), 1, 0, 0, 0);         // exactly 1e-6: not
  for (int type : {0, 32, -1}) ExpectColour(GetColour(0.5, 0, 1, type), 1, 1, 1, 0);
  ExpectColour(GetColour(-5, 0, 1, 1), 0, 0, 1, 0);  // clamped
  for (int type : {1, 30, 31}) ExpectColour(GetColour(7, 0, 1, type), 1, 0, 0, 0);
  // The top stop exactly where its segment's start rounds: no -2e-16 in an exported colour.
  ExpectColour(GetColour(0.7, 0.1, 0.7, 1), 1, 0, 0, 0);
  ExpectColour(GetColour(0.3, 0, 0.3, 4), 1, 0, 0, 0);
  for (int type : {30, 31}) ExpectColour(GetColour(-7, 0, 1, type), 1, 0, 0, 0);
}

// A sink that records batches; a vertex keeps the current normal and texture coordinate.
struct VERT {
  float x, y, z, nx, ny, nz, s, t;
};
struct BATCH {
  unsigned mode;
  std::vector<VERT> v;
};
std::vector<BATCH> batches;
VERT cur;       // its normal and texture coordinate
int misplaced;  // calls outside a begin/end pair
bool inside;
const PRIMSINK recorder = {[](void *, unsigned m) {
                             misplaced += inside;
                             inside = true;
                             batches.push_back({m, {}});
                           },
                           [](void *) {
                             misplaced += !inside;
                             inside = false;
                           },
                           [](void *, float x, float y, float z) {
                             misplaced += !inside;
                             cur = {0, 0, 0, x, y, z, cur.s, cur.t};
                           },
                           [](void *, float s, float t) {
                             misplaced += !inside;
                             cur = {0, 0, 0, cur.nx, cur.ny, cur.nz, s, t};
                           },
                           [](void *, float x, float y, float z) {
                             misplaced += !inside;
                             batches.back().v.push_back({x, y, z, cur.nx, cur.ny, cur.nz, cur.s, cur.t});
                           },
                           NULL};

std::vector<BATCH> Record(const std::function<void()> &f) {
  batches.clear();
  misplaced = 0;
  f();
  EXPECT_EQ(misplaced + inside, 0);
  return batches;
}

void ExpectVert(const VERT &v, XYZ p, XYZ n) {
  EXPECT_XYZ(v, p.x, p.y, p.z, 1e-6);
  EXPECT_NEAR(v.nx, n.x, 1e-6);
  EXPECT_NEAR(v.ny, n.y, 1e-6);
  EXPECT_NEAR(v.nz, n.z, 1e-6);
}

TEST(Primitives, ConeRingsWithRadialNormals) {
  // Axis along y takes the x helper: the ring runs (cos, 0, sin).
  auto b = Record([] { EmitCone(&recorder, V(0, 2, 0), V(0, 0, 0), 1, 1, 4, 0, TWOPI); });
  ASSERT_EQ(b.size(), 1u);
  EXPECT_EQ(b[0].mode, (unsigned)PRIM_QUAD_STRIP);
  ASSERT_EQ(b[0].v.size(), 10u);
  const double ring[5][2] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}, {1, 0}};
  for (int i = 0; i < 5; i++) {
    ExpectVert(b[0].v[2 * i], V(ring[i][0], 2, ring[i][1]), V(ring[i][0], 0, ring[i][1]));
    ExpectVert(b[0].v[2 * i + 1], V(ring[i][0], 0, ring[i][1]), V(ring[i][0], 0, ring[i][1]));
    EXPECT_FLOAT_EQ(b[0].v[2 * i].s, i / 4.0f);
    EXPECT_EQ(b[0].v[2 * i].t + 1, b[0].v[2 * i + 1].t);
  }
  // Axis along z: q = (sin, cos, 0); half a turn, radii 2 and 0.5, normals radial all the same.
  b = Record([] { EmitCone(&recorder, V(1, 2, 3), V(1, 2, -1), 2, 0.5, 6, 0, M_PI); });
  ASSERT_EQ(b[0].v.size(), 14u);
  for (int i = 0; i <= 6; i++) {
    double s = sin(i * M_PI / 6), c = cos(i * M_PI / 6);
    ExpectVert(b[0].v[2 * i], V(1 + 2 * s, 2 + 2 * c, 3), V(s, c, 0));
    ExpectVert(b[0].v[2 * i + 1], V(1 + 0.5 * s, 2 + 0.5 * c, -1), V(s, c, 0));
  }
  b = Record([] { EmitCone(&recorder, V(1, 1, 1), V(1, 1, 1), 1, 2, 3, 0, TWOPI); });
  for (const VERT &v : b[0].v) ExpectVert(v, V(1, 1, 1), V(0, 0, 0));  // p1 = p2: zero normals
  EXPECT_EQ(Record([] { EmitCone(&recorder, V(0, 0, 0), V(1, 0, 0), 1, 1, -1, 0, TWOPI); })[0].v.size(), 0u);
}

typedef std::vector<unsigned char> BYTES;
struct PIX {
  unsigned char r, g, b, a;
};
const PIX A = {10, 20, 30, 255}, B = {40, 50, 60, 255}, C = {70, 80, 90, 255}, D = {1, 2, 3, 4};
PIX Distinct(int i) { return {(unsigned char)(i & 255), (unsigned char)(i >> 8), 7, 255}; }
BYTES Pixels(const std::vector<PIX> &p) {
  BYTES out;
  for (const PIX &x : p) out.insert(out.end(), {x.r, x.g, x.b, x.a});
  return out;
}
BYTES Row(const std::vector<PIX> &p, int bpp = 3) {
  BYTES row = Pixels(p);
  std::string s = Capture([&](FILE *fp) { WriteTGACompressedRow(fp, row.data(), (int)p.size(), bpp); });
  return BYTES(s.begin(), s.end());
}
BYTES Image(const std::vector<PIX> &p, int w, int h, int format) {
  BYTES px = Pixels(p);
  std::string s = Capture([&](FILE *fp) { Write_Bitmap(fp, px.data(), w, h, format); });
  return BYTES(s.begin(), s.end());
}
// Packets: each a header byte then its pixels, blue green red.
BYTES Packets(std::initializer_list<std::pair<int, std::vector<PIX>>> packets) {
  BYTES out;
  for (auto &p : packets) {
    out.push_back((unsigned char)p.first);
    for (const PIX &x : p.second) out.insert(out.end(), {x.b, x.g, x.r});
  }
  return out;
}

TEST(Bitmap, RunLengthPacketsOfRows) {
  EXPECT_EQ(Row(std::vector<PIX>(300, A)), Packets({{0xff, {A}}, {0xff, {A}}, {0x80 + 43, {A}}}));
  std::vector<PIX> all;
  for (int i = 0; i < 300; i++) all.push_back(Distinct(i));
  EXPECT_EQ(Row(all), Packets({{127, {all.begin(), all.begin() + 128}},
                               {127, {all.begin() + 128, all.begin() + 256}},
                               {43, {all.begin() + 256, all.end()}}}));
  // 129 different: the last written with pixel 127's value, carried over from the full packet.
  all.resize(129);
  EXPECT_EQ(Row(all), Packets({{127, {all.begin(), all.begin() + 128}}, {0x80, {all[127]}}}));
  std::vector<PIX> runs(128, A);
  runs.insert(runs.end(), {B, A, A});
  EXPECT_EQ(Row(runs), Packets({{0xff, {A}}, {0x82, {A}}}));
  EXPECT_EQ(Row({A, A, B}), Packets({{0x81, {A}}, {0x80, {B}}}));
  EXPECT_EQ(Row({A, B, B}), Packets({{0x00, {A}}, {0x81, {B}}}));
  EXPECT_EQ(Row({A, B, C, C, D}), Packets({{0x01, {A, B}}, {0x81, {C}}, {0x80, {D}}}));
  EXPECT_EQ(Row({A, B, A, A, A, B}), Packets({{0x01, {A, B}}, {0x82, {A}}, {0x80, {B}}}));
  PIX p = {1, 2, 3, 10}, q = {1, 2, 3, 20};  // alpha splits packets; written at 32 bit only
  EXPECT_EQ(Row({p, q, q}, 4), BYTES({0x00, 3, 2, 1, 10, 0x81, 3, 2, 1, 20}));
  EXPECT_EQ(Row({p, q, q}), Packets({{0x00, {p}}, {0x81, {q}}}));
}

TEST(Bitmap, HeadersRowOrderAndDumpNames) {
  struct {
    int code, type, bits, descriptor;
    size_t size;
  } cases[] = {{1, 2, 24, 0, 18 + 600 * 3}, {12, 10, 24, 0, 18 + 2 * 3 * 4}, {13, 10, 32, 8, 18 + 2 * 3 * 5}};
  for (auto c : cases)
    for (int sign : {1, -1}) {
      BYTES out = Image(std::vector<PIX>(600, PIX{0, 0, 0, 0}), 300, 2, sign * c.code);
      EXPECT_EQ(BYTES(out.begin(), out.begin() + 18),
                BYTES({0, 0, (unsigned char)c.type, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x2c, 1, 2, 0, (unsigned char)c.bits,
                       (unsigned char)c.descriptor}));
      EXPECT_EQ(out.size(), c.size);
    }
  EXPECT_EQ(Image({A}, 1, 1, 12), BYTES({0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24, 0, 0x80, 30, 20, 10}));
  // Rows A B over C D: a positive code writes buffer row 0 first, a negative the last.
  BYTES body = Image({A, B, C, D}, 2, 2, 11);
  EXPECT_EQ(BYTES(body.begin() + 18, body.end()),
            BYTES({30, 20, 10, 255, 60, 50, 40, 255, 90, 80, 70, 255, 3, 2, 1, 4}));
  body = Image({A, B, C, D}, 2, 2, -12);
  EXPECT_EQ(BYTES(body.begin() + 18, body.end()), Packets({{0x01, {C, D}}, {0x01, {A, B}}}));
  EXPECT_STREQ(DumpExtension(-12), "tga");
  char name[DUMPNAMESIZE];
  EXPECT_EQ(DumpFileName(name, sizeof(name), "", "L_", 12, "tga"), 1);
  EXPECT_STREQ(name, "L_0012.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "shot", "R_", 3, "tga"), 1);
  EXPECT_STREQ(name, "R_shot.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "abcdefghijklmnopqrstuvwxyz01", "", 0, "tga"), 0);  // 32 do not fit
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
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "shot", "", &counter, "tga") * 10 + counter, 13);
  ASSERT_EQ(chdir(old), 0);
}

}  // namespace
