#include <gtest/gtest.h>

#include <algorithm>

#include "export_helpers.h"
#include "lib/wrl.h"

static const COLOUR kRed = {1, 0, 0};
static const COLOUR kMixed = {0.25, 0.5, 1};

TEST(Wrl, HeaderNamesTitleAndViewDistance) {
  std::string s = Capture([](FILE *fp) { WRLHeader(fp, "3D DLA by Orvantide", 20); });
  EXPECT_EQ(s,
            "#VRML V2.0 utf8\n"
            "WorldInfo {\n"
            " title \"3D DLA by Orvantide\"\n"
            " info [ \"By Orvantide\" ]\n"
            "}\n"
            "NavigationInfo {\n"
            " type [\"EXAMINE\",\"ANY\"]\n"
            " headlight TRUE\n"
            " visibilityLimit 0.0\n"
            " speed 1.0\n"
            "}\n"
            "DEF DefaultView Viewpoint {\n"
            " position 0 0 20\n"
            " description \"Default view\"\n"
            " fieldOfView 0.785398\n"
            "}\n");
}

TEST(Wrl, SphereAndFace) {
  std::string s = Capture([](FILE *fp) { WRLSphere(fp, P(1, -2, 3.5), kMixed, 0.3); });
  EXPECT_EQ(s,
            "Transform {\n"
            " translation 1,-2,3.5\n"
            " children [\n"
            "  Shape {\n"
            "   appearance Appearance {\n"
            "    material Material {\n"
            "     diffuseColor 0.25 0.5 1\n"
            "    }\n"
            "   }\n"
            "   geometry Sphere {\n"
            "    radius 0.3\n"
            "   }\n"
            "  }\n"
            " ]\n"
            "}\n");

  XYZ tri[3] = {P(0, 0, -2), P(1, 0, -2), P(0, 1.5, -2)};
  s = Capture([&](FILE *fp) { WRLFace(fp, tri, 3, kMixed); });
  EXPECT_EQ(s,
            "Shape {\n"
            " appearance Appearance {\n"
            "  material Material {\n"
            "   diffuseColor 0.25 0.5 1\n"
            "  }\n"
            " }\n"
            " geometry IndexedFaceSet {\n"
            "  coord  Coordinate {\n"
            "   point [\n"
            "    0 0 -2,\n"
            "    1 0 -2,\n"
            "    0 1.5 -2 \n"
            "   ]\n"
            "  }\n"
            "  coordIndex [\n"
            "    0,    1,    2,  -1\n"
            "  ]\n"
            "  solid FALSE\n"
            " }\n"
            "}\n");
}

static const char *kShapeStart =
    "Shape {\n"
    " appearance Appearance {\n"
    "  material Material {\n"
    "   diffuseColor 1 0 0\n"
    "  }\n"
    " }\n"
    " geometry IndexedFaceSet {\n"
    "  coord  Coordinate {\n"
    "   point [\n";
static const char *kShapeEnd =
    "  ]\n"
    "  solid FALSE\n"
    " }\n"
    "}\n";

TEST(Wrl, ConeOneSideAxisAlongZ) {
  // Axis d = p1 - p2 = (0,0,1): e = d + (0,1,0), B = e x d = (1,0,0),
  // A = d x B = (0,1,0); the one side sits at angle 0, u = A.
  std::string s = Capture([](FILE *fp) { WRLCone2(fp, 1, 0, P(0, 0, 1), P(0, 0, 0), kRed, 2, 0.5); });
  EXPECT_EQ(s, std::string(kShapeStart) +
                   "    0 2 1,\n"
                   "    0 0.5 0,\n"
                   "    0 0 1,\n"
                   "    0 0 0\n"
                   "   ]\n"
                   "  }\n"
                   "  coordIndex [\n"
                   "    0,1,1,0,-1 \n" +
                   kShapeEnd);

  // With caps: fans on both centres (2n+1 = 3 and 2n = 2 are not reduced).
  s = Capture([](FILE *fp) { WRLCone2(fp, 1, 1, P(0, 0, 1), P(0, 0, 0), kRed, 2, 0.5); });
  EXPECT_NE(s.find("  coordIndex [\n    1,3,1,-1,    0,2,0,-1,    0,1,1,0,-1 \n  ]\n"), std::string::npos) << s;
}

TEST(Wrl, ConeAxisAlongYUsesTheXHelper) {
  // d = (0,1,0) has no x or z: e = d + (1,0,0), B = (0,0,1), A = (1,0,0).
  std::string s = Capture([](FILE *fp) { WRLCone2(fp, 1, 0, P(0, 1, 0), P(0, 0, 0), kRed, 2, 1); });
  EXPECT_NE(s.find("   point [\n    2 1 0,\n    1 0 0,\n    0 1 0,\n    0 0 0\n   ]\n"), std::string::npos) << s;
}

TEST(Wrl, ConeWithNoSidesWritesOnlyCentres) {
  std::string s = Capture([](FILE *fp) { WRLCone2(fp, 0, 1, P(1, 2, 3), P(4, 5, 6), kRed, 1, 1); });
  EXPECT_EQ(s, std::string(kShapeStart) +
                   "    1 2 3,\n"
                   "    4 5 6\n"
                   "   ]\n"
                   "  }\n"
                   "  coordIndex [\n" +
                   kShapeEnd);
}

static std::string IndexList(const std::string &s) {
  size_t a = s.find("  coordIndex [\n");
  size_t b = s.find("  ]\n", a);
  if (a == std::string::npos || b == std::string::npos) return "";
  a += strlen("  coordIndex [\n");
  return s.substr(a, b - a);
}

TEST(Wrl, ConeTenSidesIndexListsWrapAround) {
  std::string open = Capture([](FILE *fp) { WRLCone2(fp, 10, 0, P(0, 0, 0), P(3, 4, 0), kRed, 0.5, 0.25); });
  EXPECT_EQ(IndexList(open),
            "    0,1,3,2,-1,\n"
            "    2,3,5,4,-1,\n"
            "    4,5,7,6,-1,\n"
            "    6,7,9,8,-1,\n"
            "    8,9,11,10,-1,\n"
            "    10,11,13,12,-1,\n"
            "    12,13,15,14,-1,\n"
            "    14,15,17,16,-1,\n"
            "    16,17,19,18,-1,\n"
            "    18,19,1,0,-1 \n");

  std::string capped = Capture([](FILE *fp) { WRLCone2(fp, 10, 1, P(0, 0, 0), P(3, 4, 0), kRed, 0.5, 0.25); });
  std::string idx = IndexList(capped);
  EXPECT_EQ(idx.substr(0, idx.find('\n') + 1), "    1,21,3,-1,    0,20,2,-1,    0,1,3,2,-1,\n");
  EXPECT_EQ(idx.substr(idx.rfind('\n', idx.size() - 2) + 1),
            "    19,21,1,-1,    18,20,0,-1,    18,19,1,0,-1 \n");
  EXPECT_EQ(std::count(idx.begin(), idx.end(), '\n'), 10);

  // 22 points: ring point 2i at distance r1 from p1 and 2i+1 at r2 from p2,
  // both square to the axis; then the two centres.
  size_t a = capped.find("   point [\n") + strlen("   point [\n");
  const char *q = capped.c_str() + a;
  XYZ p1 = P(0, 0, 0), p2 = P(3, 4, 0);
  for (int i = 0; i < 22; i++) {
    double x, y, z;
    int used = 0;
    ASSERT_EQ(sscanf(q, " %lf %lf %lf%n", &x, &y, &z, &used), 3) << i;
    q += used;
    if (*q == ',') q++;
    XYZ c = (i == 20 || i % 2 == 0) ? p1 : p2;
    double r = (i >= 20) ? 0 : (i % 2 == 0 ? 0.5 : 0.25);
    XYZ v = P(x - c.x, y - c.y, z - c.z);
    EXPECT_NEAR(Modulus(v), r, 1e-5) << i;
    EXPECT_NEAR(v.x * 3 + v.y * 4, 0, 1e-4) << i;
  }
}
