// The constraint surface: reading STL, preparing the facets, the geometric
// tests, the sample surfaces and the transform.
#include <math.h>

#include <vector>

#include "surface/constraint.h"
#include "surface/samples.h"
#include "surface/stl.h"
#include "surface/transform.h"
#include "test_util.h"

namespace {

using StlRead = Fresh;
using UpdateSurface = Fresh;
using Constraint = Fresh;
using SampleSurface = Fresh;
using Transform = Fresh;

std::string Le32(uint32_t v) { return std::string((const char *)&v, 4); }

// A binary facet record: the file's normal (ignored), nine floats, the
// attribute word.
std::string Facet(std::vector<float> v) {
  v.insert(v.begin(), {9, 9, 9});
  return std::string((const char *)v.data(), 48) + std::string(2, '\0');
}

std::string Header(const char *text) { return (text + std::string(80, ' ')).substr(0, 80); }

int ReadBytes(const std::string &bytes, FILEMESSAGE *msg) {
  Scratch s;
  *msg = FILEMESSAGE();
  return ReadSTLFile(WriteFile(s / "s.stl", bytes).c_str(), msg);
}

TEST_F(StlRead, AsciiWithBothLoopSpellingsAndItsDebugLines) {
  CopyName(growthstate.stlname, "Sample", sizeof(growthstate.stlname));
  Scratch s;
  std::string path = WriteFile(s / "a.stl",
                               "solid test\nfacet normal 0 0 0\n  outer loop\n    vertex 0 0 0\n    vertex 2 0 0\n"
                               "    vertex 0 4 0\n  endloop\nendfacet\nfacet normal 9 9 9\r\nouterloop\r\n"
                               "vertex -1 0 1.5\r\nvertex -1 3 1.5\r\nvertex -1 0 -6\r\nendloop\r\nendsolid test\n");
  FILEMESSAGE msg = {};
  std::string err = DebugOutput([&] { EXPECT_EQ(ReadSTLFile(path.c_str(), &msg), 1); });
  EXPECT_EQ(msg.set, 0);
  EXPECT_STREQ(growthstate.stlname, "None");  // a surface read from a file is called "None"
  ASSERT_EQ(nstltri, 2);
  EXPECT_EQ(stltri[0].n.z, 1);  // counter-clockwise seen from +z; the file's normal is not used
  EXPECT_EQ(stltri[1].n.x, -1);
  EXPECT_EQ(stltri[1].p[2].z, -6);
  EXPECT_EQ(err,
            "ASCII stl file\nParsing ascii stl file\nRead 2 triangle faces\nBounds: -1 <= x <= 2\n"
            "        0 <= y <= 4\n        -6 <= z <= 1.5\nMidpoint: 0.5 2 -2.25\n" + path + "\n");
}

TEST_F(StlRead, SolidInTheFirstSixCharactersDecidesAscii) {
  FILEMESSAGE msg;
  EXPECT_EQ(ReadBytes(" solid x\nendsolid x\n", &msg), 1);  // ASCII without loops
  EXPECT_EQ(nstltri, 0);
  EXPECT_EQ(stlmin.x, 1e32);
  EXPECT_EQ(stlmax.z, -1e32);
  EXPECT_EQ(stlmid.x, 0);
  // Two blanks: binary, and the text where the count should be is implausible.
  std::string err = DebugOutput([&] { EXPECT_EQ(ReadBytes("  solid x\n" + std::string(100, 'f'), &msg), 0); });
  EXPECT_EQ(err.substr(0, 40), "Binary stl file\nParsing binary stl file\n");
  EXPECT_STREQ(msg.line2, "Read an unexpected number of faces in STL header");
  // A binary header beginning with "solid" is taken for ASCII.
  EXPECT_EQ(ReadBytes(Header("solid binary") + Le32(1) + Facet({0, 0, 0, 1, 0, 0, 0, 1, 0}), &msg), 1);
  EXPECT_EQ(nstltri, 0);
}

TEST_F(StlRead, BinaryFloatsWidenedExactly) {
  FILEMESSAGE msg;
  std::string bytes = Header("b") + Le32(2) + Facet({0.1f, 0.2f, 0.3f, 1.7f, 0.2f, 0.3f, 0.1f, 2.9f, 0.3f}) +
                      Facet({-5, 0, 0, 5, 0, 0, 0, 0, 7.25f});
  std::string err = DebugOutput([&] { EXPECT_EQ(ReadBytes(bytes, &msg), 1); });
  ASSERT_EQ(nstltri, 2);
  EXPECT_EQ(stltri[0].p[0].x, (double)0.1f);
  EXPECT_EQ(stltri[0].p[2].y, (double)2.9f);
  EXPECT_EQ(stlmax.z, 7.25);
  const std::string head = "Binary stl file\nParsing binary stl file\nExpecting 2 facets\nRead 2 triangle faces\n";
  EXPECT_EQ(err.substr(0, head.size()), head);
}

TEST_F(StlRead, FailuresAndFilesThatEndEarly) {
  FILEMESSAGE msg;
  const std::string one = Header("b") + Le32(1) + Facet({0, 0, 0, 1, 0, 0, 0, 1, 0});
  ASSERT_EQ(ReadBytes(one, &msg), 1);
  CopyName(growthstate.stlname, "Kept", sizeof(growthstate.stlname));
  Scratch s;
  EXPECT_EQ(ReadSTLFile((s / "none.stl").c_str(), &msg), 0);  // the old surface stays
  EXPECT_STREQ(msg.line1, "File Error");
  EXPECT_STREQ(msg.line2, "Failed to read STL file");
  EXPECT_EQ(msg.line3, s / "none.stl");
  EXPECT_EQ(msg.fatal, 0);
  EXPECT_EQ(nstltri, 1);
  EXPECT_STREQ(growthstate.stlname, "Kept");
  EXPECT_EQ(ReadBytes(std::string(79, 'x'), &msg), 0);
  EXPECT_EQ(msg.fatal, 1);
  EXPECT_STREQ(msg.line2, "Failed to read an expected STL header");
  EXPECT_STREQ(msg.line3, "");
  for (uint32_t count : {10000001u, 0xffffffffu}) {  // one above the limit; negative seen unsigned
    ASSERT_EQ(ReadBytes(one, &msg), 1);
    EXPECT_EQ(ReadBytes(Header("b") + Le32(count), &msg), 0);
    EXPECT_EQ(msg.fatal, 0);
    EXPECT_STREQ(msg.line2, "Read an unexpected number of faces in STL header");
    EXPECT_EQ(nstltri, 0);
  }
  EXPECT_EQ(ReadBytes("solid s\nouter loop\nvertex 1 2 3\nvertex 1 x 3\n", &msg), 0);
  EXPECT_EQ(msg.fatal, 1);
  EXPECT_STREQ(msg.line2, "Error reading vertices in ascii STL file");
  // A count of 0, the limit with no data, and a count cut short: empty.
  for (std::string bytes : {Header("b") + Le32(0), Header("b") + Le32(10000000), Header("b") + "\xff\xff\xff"}) {
    EXPECT_EQ(ReadBytes(bytes, &msg), 1);
    EXPECT_EQ(msg.set, 0);
    EXPECT_EQ(nstltri, 0);
    EXPECT_EQ(stlmid.x, 0);
  }
  // The header promises ten million facets; two complete ones and part of
  // a third are read: the complete ones, and storage follows the file.
  size_t storage = stltri.size();
  std::string third = Facet({5, 5, 0, 6, 5, 0, 5, 6, 0});
  EXPECT_EQ(ReadBytes(Header("b") + Le32(10000000) + Facet({0, 0, 0, 1, 0, 0, 0, 1, 0}) +
                          Facet({0, 0, 0, 2, 0, 0, 0, 0.5f, 0}) + third.substr(0, 49), &msg), 1);
  ASSERT_EQ(nstltri, 2);
  EXPECT_EQ(stlmax.x, 2.0);
  EXPECT_EQ(stlmax.y, 1.0);
  EXPECT_LE(stltri.size(), storage > 1000 ? storage : 1000);
  // ASCII NaN vertices make a facet degenerate; an infinite one stays.
  EXPECT_EQ(ReadBytes("solid x\n outer loop\n vertex nan nan nan\n vertex nan 1 0\n vertex 0 nan 1\n"
                      " outer loop\n vertex inf 0 0\n vertex 0 1 0\n vertex 0 0 1\n", &msg), 1);
  ASSERT_EQ(nstltri, 1);
  EXPECT_EQ(stltri[0].n.x, 0);
  EXPECT_EQ(stlmax.x, HUGE_VAL);
}

TEST_F(UpdateSurface, BadFacesTakeTheLastFacetDerivedFieldsAndBounds) {
  AppendFacet(V(0, 0, 1), V(2, 0, 1), V(0, 2, 1));     // 0 good
  AppendFacet(V(5, 5, 5), V(5, 5, 5), V(6, 5, 5));     // 1 p0 == p1
  AppendFacet(V(0, 0, 0), V(1, 1, 1), V(2, 2, 2));     // 2 collinear: kept, zero normal
  AppendFacet(V(0, 0, 7), V(1, 0, 7), V(5e-7, 0, 7));  // 3 p2 == p0 within 1e-6
  AppendFacet(V(0, 0, 0), V(0, 3, 0), V(0, 0, 4));     // 4 good, moves into 1
  std::string err = DebugOutput(UpdateSTL);
  ASSERT_EQ(nstltri, 3);  // at 3 the last facet is 3 itself, still bad
  EXPECT_EQ(stltri[1].p[2].z, 4);
  EXPECT_EQ(stltri[2].p[1].x, 1);
  EXPECT_EQ(err, "Removed 2 bad faces\nBounds: 0 <= x <= 2\n        0 <= y <= 3\n        0 <= z <= 4\nMidpoint: 1 1.5 2\n");
  const FACET &f = stltri[0];
  EXPECT_EQ(f.n.z, 1);
  EXPECT_EQ(f.plane.c, 1);
  EXPECT_EQ(f.plane.d, -1);
  EXPECT_DOUBLE_EQ(f.mid.x, 2.0 / 3);
  EXPECT_EQ(stltri[1].n.x, 1);  // (0,3,0) x (0,0,4)
  EXPECT_DOUBLE_EQ(stltri[1].mid.z, 4.0 / 3);
  EXPECT_EQ(stltri[2].n.z, 0);
  // None left: bounds at +-1e32 and the midpoint at the origin.
  nstltri = 0;
  AppendFacet(V(1, 1, 1), V(1, 1, 1), V(1, 1, 1));
  err = DebugOutput(UpdateSTL);
  EXPECT_EQ(nstltri, 0);
  EXPECT_EQ(stlmid.z, 0);
  EXPECT_EQ(err, "Removed 1 bad faces\nBounds: 1e+32 <= x <= -1e+32\n        1e+32 <= y <= -1e+32\n"
                 "        1e+32 <= z <= -1e+32\nMidpoint: 0 0 0\n");
}

void OneFacet(XYZ p0, XYZ p1, XYZ p2) {
  nstltri = 0;
  AppendFacet(p0, p1, p2);
  UpdateSTL();
}

TEST_F(Constraint, SegmentAgainstFacet) {
  OneFacet(V(0, 0, 0), V(4, 0, 0), V(0, 4, 0));
  XYZ p = V(9, 9, 9);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 1), V(1, 2, -1)), 1);
  EXPECT_EQ(p.y, 1.5);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 2), V(1, 1, 0)), 1);  // mu = 1 counts
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 0), V(1, 1, 5)), 1);  // mu = 0
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 3, 2), V(1, 3, 1)), 0);  // short of the plane...
  EXPECT_EQ(p.y, 3);                                                // ...the crossing still written
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, -1), V(1, 1, -3)), 0);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(3, 3, 1), V(3, 3, -1)), 0);  // outside the triangle
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(2, 0, 1), V(2, 0, -1)), 1);  // on an edge
  p = V(9, 9, 9);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 0), V(2, 1, 0)), 0);     // in the plane
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 0), V(3, 1, 9e-6)), 0);  // |denom| < 1e-5
  EXPECT_EQ(p.x, 9);
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 0), V(3, 1, 2e-5)), 1);
  EXPECT_EQ(PointPlaneDist(0, V(5, -7, 3)), 3);
  OneFacet(V(0, 0, 1), V(0, 4, 1), V(4, 0, 1));  // normal -z
  EXPECT_EQ(PointPlaneDist(0, V(5, -7, 3)), -2);
  OneFacet(V(0, 0, 0), V(1, 1, 0), V(2, 2, 0));  // zero normal: never cut
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(1, 1, 1), V(1, 1, -1)), 0);
  // (2,10,0) lies on the extension of the edge (0,0,0)-(1,5,0): the dot
  // product of the equal directions rounds above 1, acos gives not-a-number,
  // and that counts as inside.
  XYZ u = V(-1, -5, 0);
  Normalise(&u);
  ASSERT_GT(DotProduct(u, u), 1.0);
  OneFacet(V(0, 0, 0), V(1, 5, 0), V(-5, 1, 0));
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(2, 10, 1), V(2, 10, -1)), 1);
  OneFacet(V(0, 0, 0), V(1, 0, 0), V(0, 1, 0));  // the same with a dot product of exactly 1
  EXPECT_EQ(LinePlaneIntersect(0, &p, V(2, 0, 1), V(2, 0, -1)), 0);
}

TEST_F(Constraint, SegmentInBoxByEndsAndTenthSamples) {
  XYZ c1 = V(0, 0, 0), c2 = V(10, 10, 10);
  EXPECT_EQ(LineInBox(c2, c1, V(5, 5, 5), V(1000, -1000, 50)), 1);  // p1 inside, corners either way
  EXPECT_EQ(LineInBox(c1, c2, V(-50, 3, 3), V(10, 10, 10)), 1);     // p2 on the corner
  EXPECT_EQ(LineInBox(c1, c2, V(-1.05, 8.94, 5), V(0.95, 10.94, 5)), 0);  // clips the corner between samples
  EXPECT_EQ(LineInBox(c1, c2, V(-1, 8.995, 5), V(1, 10.995, 5)), 1);      // the middle sample inside
  EXPECT_EQ(LineInBox(c1, c2, V(-20, 5, 5), V(30, 5, 5)), 1);
  EXPECT_EQ(LineInBox(c1, c2, V(11, -50, 5), V(12, 50, 5)), 0);
  EXPECT_EQ(LineInBox(c1, c2, V(5, 5, -1), V(5, 5, -0.5)), 0);
}

// Built in debug mode: the facets generated (kept plus removed).
int Generate(int code) {
  int removed = 0;
  std::string err = DebugOutput([=] { EXPECT_EQ(MakeSampleSurface(code), code != 42); });
  sscanf(err.c_str(), "Removed %d bad faces", &removed);
  return nstltri + removed;
}

TEST_F(SampleSurface, CountsNamesAndReplacement) {
  struct { int code, generated, kept; const char *name; } want[] = {
      {1, 288, 288, "Cylinder"}, {2, 216, 216, "Open (single) cylinder"}, {3, 144, 144, "Open (double) cylinder"},
      {11, 16, 16, "Box"}, {12, 12, 12, "Open (single) Box"}, {13, 8, 8, "Open (double) Box"},
      {21, 5184, 5040, "Sphere"}, {22, 2592, 2520, "Hemisphere"}, {23, 5184, 5040, "Closed hemisphere"},
      {31, 800, 800, "Plane"}, {100, 0, 0, "None"}, {42, 0, 0, "None"}};
  for (auto &w : want) {
    SCOPED_TRACE(w.code);
    EXPECT_EQ(Generate(w.code), w.generated);
    EXPECT_EQ(nstltri, w.kept);
    EXPECT_STREQ(growthstate.stlname, w.name);
    EXPECT_STREQ(SampleSurfaceName(w.code), w.name);
  }
  EXPECT_EQ(stlmin.x, 1e32);
  EXPECT_EQ(stlmid.y, 0);
}

TEST_F(SampleSurface, OrientationOfEveryShape) {
  MakeSampleSurface(SAMPLE_CYLINDER);
  int caps = 0;
  for (int i = 0; i < nstltri; i++) {
    const FACET &f = stltri[i];
    if (fabs(fabs(f.mid.z) - 20) < 1e-9) {
      caps++;
      EXPECT_NEAR(f.n.z, 1, 1e-12);  // both caps face +z: the bottom one into the solid
    } else {
      EXPECT_GT(f.n.x * f.mid.x + f.n.y * f.mid.y, 0.99 * hypot(f.mid.x, f.mid.y));
    }
  }
  EXPECT_EQ(caps, 144);
  // The first facet starts the tube at angle 0: Q(0,+20), Q(0,-20), Q(5,-20).
  EXPECT_EQ(stltri[0].p[0].x, 20);
  EXPECT_EQ(stltri[0].p[0].z, 20);
  EXPECT_EQ(stltri[0].p[1].z, -20);
  EXPECT_NEAR(stltri[0].p[2].y, 20 * sin(5 * M_PI / 180), 1e-7);
  // The box's corners on the axes at 20 sqrt 2 (cos 90 with the truncated factor).
  MakeSampleSurface(SAMPLE_BOX);
  EXPECT_EQ(stltri[0].p[0].x, 28.284271247461902);
  EXPECT_NEAR(stltri[0].p[2].x, 28.284271247461902 * 1.79489661923e-9, 1e-13);
  EXPECT_NEAR(stltri[0].n.x, sqrt(0.5), 1e-8);
  EXPECT_NEAR(stltri[0].n.y, sqrt(0.5), 1e-8);
  for (int code : {SAMPLE_SPHERE, SAMPLE_HEMISPHERE, SAMPLE_CLOSEDHEMISPHERE}) {
    MakeSampleSurface(code);
    int disc = 0, poles = 0;
    for (int i = 0; i < nstltri; i++) {
      const FACET &f = stltri[i];
      EXPECT_FALSE(VectorEqual(f.p[0], f.p[1]) || VectorEqual(f.p[1], f.p[2]) || VectorEqual(f.p[2], f.p[0]));
      if (f.p[0].z == 0 && f.p[1].z == 0 && f.p[2].z == 0) {
        disc++;
        EXPECT_NEAR(f.n.z, 1, 1e-12);
      } else {
        EXPECT_GT(DotProduct(f.n, f.mid), 0) << code;  // outward
      }
      for (int k = 0; k < 3; k++) poles += fabs(f.p[k].z) > 19.9999;
    }
    EXPECT_EQ(disc, code == SAMPLE_CLOSEDHEMISPHERE ? 2520 : 0);
    EXPECT_EQ(poles, code == SAMPLE_SPHERE ? 144 : 72);  // one facet per column left at a pole
    EXPECT_NEAR(stlmax.z, code == SAMPLE_SPHERE ? 20 : 0, 1e-12);
  }
  // The plane: x outer, y inner, facing -z.
  MakeSampleSurface(SAMPLE_PLANE);
  for (int i = 0; i < nstltri; i++) EXPECT_EQ(stltri[i].plane.d, -20);
  const double first[6][2] = {{-200, -200}, {-200, -180}, {-180, -180}, {-180, -180}, {-180, -200}, {-200, -200}};
  for (int k = 0; k < 6; k++) {
    EXPECT_EQ(stltri[k / 3].p[k % 3].x, first[k][0]);
    EXPECT_EQ(stltri[k / 3].p[k % 3].y, first[k][1]);
  }
  EXPECT_EQ(stltri[2].p[0].y, -180);
  EXPECT_EQ(stltri[799].p[0].x, 200);
  EXPECT_EQ(stltri[0].n.z, -1);
}

#define EXPECT_XYZ_NEAR(p, ex, ey, ez, tol) \
  do {                                      \
    EXPECT_NEAR((p).x, ex, tol);            \
    EXPECT_NEAR((p).y, ey, tol);            \
    EXPECT_NEAR((p).z, ez, tol);            \
  } while (0)

TEST_F(Transform, RotationsClockwiseInTheOrderXYZThenScaleThenShift) {
  // A quarter turn: RotateX maps (x,y,z) to (x,z,-y), RotateY to (-z,y,x),
  // RotateZ to (y,-x,z). The point (10,20,30):
  struct { XYZ rotate, want; } cases[] = {
      {{90, 90, 0}, {20, 30, 10}}, {{0, 90, 90}, {20, 30, 10}}, {{90, 0, 90}, {30, -10, -20}}};
  for (auto &c : cases) {
    OneFacet(V(10, 20, 30), V(0, 0, 0), V(30, 0, 0));
    TransformSTL(V(1, 1, 1), V(0, 0, 0), c.rotate);
    EXPECT_XYZ_NEAR(stltri[0].p[0], c.want.x, c.want.y, c.want.z, 1e-6);
  }
  // About z to (20,-10,30), scaled by x2 in world axes, then shifted.
  OneFacet(V(10, 20, 30), V(0, 0, 0), V(30, 0, 0));
  std::string err = DebugOutput([] { TransformSTL(V(2, 1, 0.5), V(5, 0, 1.5), V(0, 0, 90)); });
  EXPECT_XYZ_NEAR(stltri[0].p[0], 45, -10, 16.5, 1e-6);
  EXPECT_XYZ_NEAR(stltri[0].p[1], 5, 0, 1.5, 1e-6);  // about the origin
  EXPECT_EQ(err.substr(0, err.find("Bounds")), "Scale  : 2,1,0.5\nShift  : 5,0,1.5\nRotate : 0,0,90\n");
}

TEST_F(Transform, PlaneTurnedAboutXIsTheSheetYMinus20AndRepeatsAccumulate) {
  MakeSampleSurface(SAMPLE_PLANE);
  std::vector<FACET> before(stltri.begin(), stltri.begin() + nstltri);
  TransformSTL(V(1, 1, 1), V(0, 0, 0), V(0, 0, 0));
  for (int i = 0; i < nstltri; i++) EXPECT_EQ(memcmp(stltri[i].p, before[i].p, sizeof(before[i].p)), 0);
  TransformSTL(V(1, 1, 1), V(0, 0, 0), V(90, 0, 0));
  for (int i = 0; i < nstltri; i++) {
    for (int k = 0; k < 3; k++) EXPECT_XYZ_NEAR(stltri[i].p[k], before[i].p[k].x, -20, -before[i].p[k].y, 1e-6);
    EXPECT_XYZ_NEAR(stltri[i].n, 0, -1, 0, 1e-8);
  }
  // The truncated degree factor leaves cos 90 = 1.7949e-9.
  EXPECT_NEAR(stltri[0].p[0].y, -200 * 1.79489661923e-9 - 20, 1e-12);
  // p -> 2p + (1,-2,3), twice: 4p + (3,-6,9).
  MakeSampleSurface(SAMPLE_PLANE);
  for (int n = 0; n < 2; n++) TransformSTL(V(2, 2, 2), V(1, -2, 3), V(0, 0, 0));
  for (int i = 0; i < nstltri; i++)
    for (int k = 0; k < 3; k++) EXPECT_XYZ_NEAR(stltri[i].p[k], 4 * before[i].p[k].x + 3, 4 * before[i].p[k].y - 6, -71, 0);
}

}  // namespace
