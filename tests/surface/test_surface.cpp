// The constraint surface: reading STL, preparing the facets, the geometric
// tests, the sample surfaces and the transform.

#include "surface/constraint.h"
#include "surface/samples.h"
#include "surface/stl.h"
#include "surface/transform.h"
#include "test_util.h"

namespace {

using StlRead = Fresh;
using Surface = Fresh;

std::string Le32(uint32_t v) { return std::string((const char *)&v, 4); }
std::string Header(const char *text) { return (text + std::string(80, ' ')).substr(0, 80); }
// A binary facet record: the file's normal (ignored), nine floats, the attribute word.
std::string Facet(std::vector<float> v) {
  v.insert(v.begin(), {9, 9, 9});
  return std::string((const char *)v.data(), 48) + std::string(2, '\0');
}

int ReadBytes(SIMULATION &sim, const std::string &bytes, FILEMESSAGE *msg, std::string *err = NULL) {
  Scratch s;
  *msg = FILEMESSAGE();
  std::string path = WriteFile(s / "s.stl", bytes);
  int ok = 0;
  std::string out = DebugOutput(sim, [&] { ok = ReadSTLFile(sim, path.c_str(), msg); });
  if (err) *err = out.substr(0, out.find(s.dir));
  return ok;
}

std::string Lines(const FILEMESSAGE &m) { return std::string(m.line1) + "|" + m.line2 + "|" + m.line3; }

TEST_F(StlRead, AsciiBinaryAndTheSixCharacterRule) {
  CopyName(sim.growthstate.stlname, "Sample", sizeof(sim.growthstate.stlname));
  FILEMESSAGE msg;
  std::string err;
  std::string text =
      "solid t\nfacet normal 0 0 0\n outer loop\n  vertex 0 0 0\n  vertex 2 0 0\n  vertex 0 4 0\n"
      " endloop\nouterloop\rvertex -1 0 1.5\rvertex -1 3 1.5\rvertex -1 0 -6\rendloop\r";
  EXPECT_EQ(ReadBytes(sim, text, &msg, &err), 1);
  EXPECT_STREQ(sim.growthstate.stlname, "None");  // a surface read from a file is called "None"
  ASSERT_EQ(sim.nstltri, 2);
  EXPECT_XYZ(sim.stltri[0].n, 0, 0, 1, 0);  // counter-clockwise seen from +z; the file's normal unused
  EXPECT_XYZ(sim.stltri[1].n, -1, 0, 0, 0);
  EXPECT_EQ(err,
            "ASCII stl file\nParsing ascii stl file\nRead 2 triangle faces\nBounds: -1 <= x <= 2\n"
            "        0 <= y <= 4\n        -6 <= z <= 1.5\nMidpoint: 0.5 2 -2.25\n");
  std::string bytes = Header("b") + Le32(2) + Facet({0.1f, 0.2f, 0.3f, 1.7f, 0, 0, 0, 2.9f, 0});
  EXPECT_EQ(ReadBytes(sim, bytes + Facet({-5, 0, 0, 5, 0, 0, 0, 0, 7.25f}), &msg, &err), 1);
  EXPECT_EQ(sim.stltri[0].p[0].x, (double)0.1f);  // floats widened exactly
  EXPECT_EQ(sim.stlmax.z, 7.25);
  EXPECT_EQ(err.substr(0, 87),
            "Binary stl file\nParsing binary stl file\nExpecting 2 facets\nRead 2 triangle faces\n"
            "Bounds");
}

// From one facet read, each file: its result, message (and " fatal") and the
// facets then held (-1: the program ends).
TEST_F(StlRead, FailuresAndFilesThatEndEarly) {
  const std::string one = Header("b") + Le32(1) + Facet({0, 0, 0, 1, 0, 0, 0, 1, 0});
  const std::string two = Facet({0, 0, 0, 1, 0, 0, 0, 1, 0}) + Facet({0, 0, 0, 2, 0, 0, 0, 0.5f, 0});
  const char *count = "File Error|Read an unexpected number of faces in STL header|";
  const struct {
    std::string bytes;
    int ok;
    std::string message;
    int facets;
  } cases[] = {{" solid x\nendsolid x\n", 1, "||", 0},                 // "solid" within six characters: ASCII, no loops
               {"  solid x\n" + std::string(100, 'f'), 0, count, 0},   // binary, an implausible count
               {Header("solid binary") + one.substr(80), 1, "||", 0},  // a binary header beginning with "solid": ASCII
               {std::string(79, 'x'), 0, "File Error|Failed to read an expected STL header| fatal", -1},
               {"solid s\nouter loop\nvertex 1 2 3\nvertex 1 x 3\n", 0,
                "File Error|Error reading vertices in ascii STL file| fatal", -1},
               {Header("b") + Le32(10000001), 0, count, 0},     // one above the limit
               {Header("b") + Le32(0xffffffffu), 0, count, 0},  // negative seen unsigned
               {Header("b") + Le32(0), 1, "||", 0},
               {Header("b") + "\xff\xff\xff", 1, "||", 0},
               // NaN vertices make a facet degenerate; an infinite one stays.
               {"solid x\n outer loop\n vertex nan nan nan\n vertex nan 1 0\n vertex 0 nan 1\n"
                " outer loop\n vertex inf 0 0\n vertex 0 1 0\n vertex 0 0 1\n",
                1, "||", 1},
               // A last line without its line end is not read: cut off in its "outer loop", what came before.
               {"solid c\n outer loop\n vertex 0 0 0\n vertex 1 0 0\n vertex 0 1 0\n outer loop", 1, "||", 1},
               // Ten million promised, two complete facets and most of a third: the two.
               {Header("b") + Le32(10000000) + two + Facet({5, 5, 0, 6, 5, 0, 5, 6, 0}).substr(0, 49), 1, "||", 2}};
  FILEMESSAGE msg;
  for (auto &c : cases) {
    ASSERT_EQ(ReadBytes(sim, one, &msg), 1);
    EXPECT_EQ(ReadBytes(sim, c.bytes, &msg), c.ok) << c.message;
    EXPECT_EQ(Lines(msg) + (msg.fatal ? " fatal" : ""), c.message);
    EXPECT_TRUE(c.facets < 0 || sim.nstltri == c.facets) << c.message << ": " << sim.nstltri;
  }
  EXPECT_XYZ(sim.stlmax, 2, 1, 0, 0);
  EXPECT_LE(sim.stltri.size(), 1000u);  // storage follows the file, not the count promised
  Scratch s;
  EXPECT_EQ(ReadSTLFile(sim, (s / "none.stl").c_str(), &msg), 0);
  EXPECT_EQ(Lines(msg), "File Error|Failed to read STL file|" + s / "none.stl");
  EXPECT_EQ(sim.nstltri + msg.fatal, 2);  // the old surface stays
}

TEST_F(Surface, BadFacesTakeTheLastFacetAndTheDerivedFields) {
  AppendFacet(sim, V(0, 0, 1), V(2, 0, 1), V(0, 2, 1));     // 0 good
  AppendFacet(sim, V(5, 5, 5), V(5, 5, 5), V(6, 5, 5));     // 1 p0 == p1
  AppendFacet(sim, V(0, 0, 0), V(1, 1, 1), V(2, 2, 2));     // 2 collinear: kept, zero normal
  AppendFacet(sim, V(0, 0, 7), V(1, 0, 7), V(5e-7, 0, 7));  // 3 p2 == p0 within 1e-6
  AppendFacet(sim, V(0, 0, 0), V(0, 3, 0), V(0, 0, 4));     // 4 good, moves into 1
  std::string err = DebugOutput(sim, [&] { UpdateSTL(sim); });
  ASSERT_EQ(sim.nstltri, 3);  // at 3 the last facet is 3 itself, still bad
  EXPECT_EQ(err,
            "Removed 2 bad faces\nBounds: 0 <= x <= 2\n        0 <= y <= 3\n        0 <= z <= 4\nMidpoint: 1 1.5 2\n");
  EXPECT_XYZ(sim.stltri[0].n, 0, 0, 1, 0);
  EXPECT_EQ(sim.stltri[0].plane.d, -1);
  EXPECT_XYZ(sim.stltri[0].mid, 2.0 / 3, 2.0 / 3, 1, 1e-15);
  EXPECT_XYZ(sim.stltri[1].n, 1, 0, 0, 0);
  EXPECT_XYZ(sim.stltri[2].n, 0, 0, 0, 0);
  sim.nstltri = 1;
  sim.stltri[0].p[1] = sim.stltri[0].p[0];
  err = DebugOutput(sim, [&] { UpdateSTL(sim); });  // none left: bounds at +-1e32, the midpoint at the origin
  EXPECT_EQ(err,
            "Removed 1 bad faces\nBounds: 1e+32 <= x <= -1e+32\n        1e+32 <= y <= -1e+32\n"
            "        1e+32 <= z <= -1e+32\nMidpoint: 0 0 0\n");
}

void OneFacet(SIMULATION &sim, XYZ p0, XYZ p1, XYZ p2) {
  sim.nstltri = 0;
  AppendFacet(sim, p0, p1, p2);
  UpdateSTL(sim);
}

// Segments against the facet (0,0,0) (4,0,0) (0,4,0), cut or not: crossing; ending on the plane from
// either side; short of it; outside the triangle; on an edge; |denom| below 1e-5 (even in the plane), above.
TEST_F(Surface, SegmentAgainstFacetAndBox) {
  OneFacet(sim, V(0, 0, 0), V(4, 0, 0), V(0, 4, 0));
  const double segments[][7] = {{1, 1, 1, 1, 2, -1, 1},   {1, 1, 2, 1, 1, 0, 1},   {1, 1, 0, 1, 1, 5, 1},
                                {1, 3, 2, 1, 3, 1, 0},    {3, 3, 1, 3, 3, -1, 0},  {2, 0, 1, 2, 0, -1, 1},
                                {1, 1, 0, 3, 1, 9e-6, 0}, {1, 1, 0, 3, 1, 2e-5, 1}};
  XYZ p;
  for (auto &g : segments)
    EXPECT_EQ(LinePlaneIntersect(sim, 0, &p, V(g[0], g[1], g[2]), V(g[3], g[4], g[5])), g[6]) << g[0] << g[1] << g[2];
  LinePlaneIntersect(sim, 0, &p, V(1, 1, 1), V(1, 2, -1));
  EXPECT_XYZ(p, 1, 1.5, 0, 0);
  LinePlaneIntersect(sim, 0, &p, V(1, 3, 2), V(1, 3, 1));
  EXPECT_XYZ(p, 1, 3, 0, 0);  // short of the plane, the crossing still written
  EXPECT_EQ(PointPlaneDist(sim, 0, V(5, -7, 3)), 3);
  OneFacet(sim, V(0, 0, 0), V(1, 1, 0), V(2, 2, 0));  // zero normal: never cut
  EXPECT_EQ(LinePlaneIntersect(sim, 0, &p, V(1, 1, 1), V(1, 1, -1)), 0);
  // (2,10,0) on the extension of the edge (0,0,0)-(1,5,0): the equal unit
  // directions' dot product rounds above 1, acos gives not-a-number: inside.
  XYZ u = V(-1, -5, 0);
  Normalise(&u);
  ASSERT_GT(DotProduct(u, u), 1.0);
  OneFacet(sim, V(0, 0, 0), V(1, 5, 0), V(-5, 1, 0));
  EXPECT_EQ(LinePlaneIntersect(sim, 0, &p, V(2, 10, 1), V(2, 10, -1)), 1);
  OneFacet(sim, V(0, 0, 0), V(1, 0, 0), V(0, 1, 0));  // a dot product of exactly 1: outside
  EXPECT_EQ(LinePlaneIntersect(sim, 0, &p, V(2, 0, 1), V(2, 0, -1)), 0);
  XYZ c1 = V(0, 0, 0), c2 = V(10, 10, 10);
  EXPECT_EQ(LineInBox(c2, c1, V(5, 5, 5), V(1000, -1000, 50)), 1);        // p1 inside, corners either way
  EXPECT_EQ(LineInBox(c1, c2, V(-50, 3, 3), V(10, 10, 10)), 1);           // p2 on the corner
  EXPECT_EQ(LineInBox(c1, c2, V(-1.05, 8.94, 5), V(0.95, 10.94, 5)), 0);  // clips the corner between samples
  EXPECT_EQ(LineInBox(c1, c2, V(-1, 8.995, 5), V(1, 10.995, 5)), 1);      // the middle sample inside
  EXPECT_EQ(LineInBox(c1, c2, V(11, -50, 5), V(12, 50, 5)), 0);
}

TEST_F(Surface, SampleCountsNamesAndOrientation) {
  struct {
    int code, generated, kept;
    const char *name;
  } want[] = {{1, 288, 288, "Cylinder"},
              {2, 216, 216, "Open (single) cylinder"},
              {3, 144, 144, "Open (double) cylinder"},
              {11, 16, 16, "Box"},
              {12, 12, 12, "Open (single) Box"},
              {13, 8, 8, "Open (double) Box"},
              {21, 5184, 5040, "Sphere"},
              {22, 2592, 2520, "Hemisphere"},
              {23, 5184, 5040, "Closed hemisphere"},
              {31, 800, 800, "Plane"},
              {100, 0, 0, "None"},
              {42, 0, 0, "None"}};
  for (auto &w : want) {
    SCOPED_TRACE(w.code);
    int removed = 0;
    sscanf(DebugOutput(sim, [&] { EXPECT_EQ(MakeSampleSurface(sim, w.code), w.code != 42); }).c_str(), "Removed %d",
           &removed);
    EXPECT_EQ(sim.nstltri + removed, w.generated);
    EXPECT_EQ(sim.nstltri, w.kept);
    EXPECT_STREQ(sim.growthstate.stlname, w.name);
    for (int i = 0; i < sim.nstltri; i++) {
      const FACET &f = sim.stltri[i];
      bool flat = fabs(fabs(f.mid.z) - 20) < 1e-9 || (f.p[0].z == 0 && f.p[1].z == 0 && f.p[2].z == 0);
      // The plane faces -z; caps and the disc +z (the bottom cap inward); the rest outward.
      double out = f.n.x * f.mid.x + f.n.y * f.mid.y + (w.code > 20 ? f.n.z * f.mid.z : 0);
      EXPECT_TRUE(w.code == 31 ? f.n.z == -1 : flat ? fabs(f.n.z - 1) < 1e-12 : out > 0) << i;
    }
  }
  MakeSampleSurface(sim, SAMPLE_CYLINDER);  // the tube starts at angle 0: Q(0,+20), Q(0,-20), Q(5,-20)
  EXPECT_XYZ(sim.stltri[0].p[0], 20, 0, 20, 0);
  EXPECT_XYZ(sim.stltri[0].p[2], 20 * cos(5 * M_PI / 180), 20 * sin(5 * M_PI / 180), -20, 1e-7);
  MakeSampleSurface(sim, SAMPLE_BOX);  // corners on the axes at 20 sqrt 2; cos 90 with the truncated factor
  EXPECT_XYZ(sim.stltri[0].p[2], 28.284271247461902 * 1.79489661923e-9, 28.284271247461902, -20, 1e-12);
  MakeSampleSurface(sim, SAMPLE_PLANE);  // x outer, y inner
  EXPECT_XYZ(sim.stltri[0].p[1], -200, -180, -20, 0);
  EXPECT_XYZ(sim.stltri[1].p[1], -180, -200, -20, 0);
  EXPECT_XYZ(sim.stltri[2].p[0], -200, -180, -20, 0);
  EXPECT_XYZ(sim.stltri[799].p[0], 200, 200, -20, 0);
}

TEST_F(Surface, TransformRotatesClockwiseInTheOrderXYZThenScalesThenShifts) {
  // A quarter turn: RotateX maps (x,y,z) to (x,z,-y), RotateY to (-z,y,x), RotateZ to (y,-x,z).
  struct {
    XYZ rotate, want;
  } cases[] = {{{90, 90, 0}, {20, 30, 10}}, {{0, 90, 90}, {20, 30, 10}}, {{90, 0, 90}, {30, -10, -20}}};
  for (auto &c : cases) {
    OneFacet(sim, V(10, 20, 30), V(0, 0, 0), V(30, 0, 0));
    TransformSTL(sim, V(1, 1, 1), V(0, 0, 0), c.rotate);
    EXPECT_XYZ(sim.stltri[0].p[0], c.want.x, c.want.y, c.want.z, 1e-6);
  }
  OneFacet(sim, V(10, 20, 30), V(0, 0, 0), V(30, 0, 0));  // to (20,-10,30), scaled in world axes, shifted
  std::string err = DebugOutput(sim, [&] { TransformSTL(sim, V(2, 1, 0.5), V(5, 0, 1.5), V(0, 0, 90)); });
  EXPECT_XYZ(sim.stltri[0].p[0], 45, -10, 16.5, 1e-6);
  EXPECT_XYZ(sim.stltri[0].p[1], 5, 0, 1.5, 1e-6);  // about the origin
  EXPECT_EQ(err.substr(0, err.find("Bounds")), "Scale  : 2,1,0.5\nShift  : 5,0,1.5\nRotate : 0,0,90\n");
  MakeSampleSurface(sim, SAMPLE_PLANE);  // the sheet at z = -20, turned a quarter about x: y = -20
  TransformSTL(sim, V(1, 1, 1), V(0, 0, 0), V(90, 0, 0));
  EXPECT_NEAR(sim.stlmin.y, -20, 1e-6);
  EXPECT_NEAR(sim.stlmax.y, -20, 1e-6);
}

}  // namespace
