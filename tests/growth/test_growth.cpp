// Roots, particle sources, the growth step and its vetoes, and the random
// numbers a seed reproduces a run with.
#include <limits.h>
#include <math.h>

#include <vector>

#include "growth/growth.h"
#include "growth/random.h"
#include "surface/samples.h"
#include "surface/stl.h"
#include "surface/transform.h"
#include "test_util.h"

namespace {

using Roots = Fresh;
using SeedFile = Fresh;
using Source = Fresh;
using Step = Fresh;
using Veto = Fresh;
using Growth = Fresh;

void PlaceRoots(int code, int n, double range) {
  growthstate.rootdistribution = code;
  growthstate.nroots = n;
  growthstate.rootrange = range;
  InitialiseGrowth();
  ResetSeeds();
}

int ReadRootsText(const std::string &text, FILEMESSAGE *msg, std::string *path = NULL) {
  Scratch s;
  std::string p = WriteFile(s / "seeds.txt", text);
  if (path) *path = p;
  *msg = FILEMESSAGE();
  return ReadRootsFile(p.c_str(), msg);
}

TEST_F(Roots, RandomDistributionsDrawInTheOrderXYZ) {
  struct { int code, x, y, z; const char *name; } cases[] = {
      {2, 1, 1, 1, "Spherical"}, {9, 1, 1, 1, "Spherical"}, {0, 1, 1, 1, "Spherical"},
      {-4, 1, 1, 1, "Spherical"}, {3, 0, 1, 1, "Random: x axis plane"},
      {4, 1, 0, 1, "Random: y axis plane"}, {5, 1, 1, 0, "Random: z axis plane"}};
  for (auto &c : cases) {
    SCOPED_TRACE(c.code);
    PlaceRoots(c.code, 3, 8);
    ASSERT_EQ(ncells, 3);
    double after = GrowthDrand48();  // reseeded after the roots
    GrowthSrand48(12345);
    EXPECT_EQ(after, GrowthDrand48());
    GrowthSrand48(12345);  // the roots come from the state InitialiseGrowth seeded
    for (int i = 0; i < 3; i++) {
      double x = c.x ? (GrowthDrand48() - 0.5) * 8 : 0, y = c.y ? (GrowthDrand48() - 0.5) * 8 : 0;
      double z = c.z ? (GrowthDrand48() - 0.5) * 8 : 0;
      EXPECT_EQ(cells[i].p.x, x);
      EXPECT_EQ(cells[i].p.y, y);
      EXPECT_EQ(cells[i].p.z, z);
      EXPECT_EQ(cells[i].parent, -1);
    }
    EXPECT_STREQ(growthstate.rootname, c.name);
  }
}

TEST_F(Roots, RingsOfFourInEachPlaneWithRadiusRangePlusTen) {
  const double want[4][2] = {{10, 0}, {0, 10}, {-10, 0}, {0, -10}};
  for (int code = ROOT_RINGX; code <= ROOT_RINGZ; code++) {
    SCOPED_TRACE(code);
    PlaceRoots(code, 4, 10);
    ASSERT_EQ(ncells, 4);
    for (int i = 0; i < 4; i++) {
      XYZ p = cells[i].p;
      EXPECT_NEAR(code == ROOT_RINGX ? p.y : p.x, want[i][0], 1e-12);
      EXPECT_NEAR(code == ROOT_RINGZ ? p.y : p.z, want[i][1], 1e-12);
      EXPECT_EQ(code == ROOT_RINGX ? p.x : code == ROOT_RINGY ? p.y : p.z, 0);
    }
    EXPECT_EQ(growthstate.radius, 20);
  }
  EXPECT_STREQ(growthstate.rootname, "Ring: z axis plane");
}

TEST_F(Roots, NoneAboveNineOrWithoutCountButOriginAlwaysOne) {
  PlaceRoots(10, 3, 10);
  EXPECT_EQ(ncells, 0);
  PlaceRoots(ROOT_SPHERICAL, 0, 10);
  EXPECT_EQ(ncells, 0);
  PlaceRoots(ROOT_ORIGIN, 0, 10);
  EXPECT_EQ(ncells, 1);
  // Raising the count as the settings form does, before any ResetSeeds:
  // the restart reads nroots entries of roots.
  growthstate.nroots = 50;
  InitialiseGrowth();
  EXPECT_GE((int)roots.size(), 50);
  EXPECT_EQ(ncells, 50);
  EXPECT_EQ(growthstate.radius, 20);
}

TEST_F(Roots, RestartKeepsRootsTheirWeightsAndOriginsLeftovers) {
  growthstate.bias = 0;
  while (ncells < 6) IterateSystem();
  std::vector<CELL> before(cells.begin(), cells.begin() + 6);
  ASSERT_GT(cells[0].weight, 0);
  InitialiseGrowth();
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(cells[0].weight, before[0].weight);  // kept, while maxweight starts again
  EXPECT_EQ(growthstate.maxweight, 0);
  EXPECT_EQ(growthstate.lifespan, 0);
  // "Origin" with 5 roots places one, and a restart alone then takes cells
  // 1 to 4 of the earlier aggregate as they stand.
  growthstate.nroots = 5;
  InitialiseGrowth();
  ResetSeeds();
  EXPECT_EQ(ncells, 1);
  InitialiseGrowth();
  ASSERT_EQ(ncells, 5);
  for (int i = 1; i < 5; i++) {
    EXPECT_EQ(memcmp(&cells[i].p, &before[i].p, sizeof(XYZ)), 0) << i;
    EXPECT_EQ(cells[i].parent, before[i].parent);
    EXPECT_EQ(cells[i].weight, before[i].weight);
  }
}

TEST_F(SeedFile, ThirdLineWithTwoNumbersGivesTwoRoots) {
  growthstate.rootdistribution = ROOT_SPHERICAL;  // keeps the file's name
  FILEMESSAGE msg;
  std::string path;
  std::string err = DebugOutput([&] { EXPECT_EQ(ReadRootsText("1 2 3\n  30\t40   0  \n7 8\n", &msg, &path), 1); });
  EXPECT_EQ(err, "Read 2 root seed positions\n");
  EXPECT_EQ(msg.set, 0);
  EXPECT_EQ(growthstate.nroots, 2);
  ASSERT_EQ(ncells, 2);
  EXPECT_EQ(cells[1].p.y, 40);
  EXPECT_EQ(cells[1].parent, -1);
  EXPECT_EQ(roots[1].x, 30);
  EXPECT_EQ(growthstate.radius, 50);  // the length of (30, 40, 0)
  EXPECT_STREQ(growthstate.rootname, path.c_str());
  EXPECT_EQ(growthstate.growing, 1);
  InitialiseGrowth();
  EXPECT_EQ(ncells, 2);
  EXPECT_EQ(growthstate.radius, 50);
}

TEST_F(SeedFile, OriginRenamesLongPathsAreCutAndHostileNumbersAreRead) {
  FILEMESSAGE msg;
  ASSERT_EQ(ReadRootsText("1 1 1\n", &msg), 1);
  EXPECT_STREQ(growthstate.rootname, "Origin");  // ResetSeeds names code 1 after the path was set
  growthstate.rootdistribution = ROOT_SPHERICAL;
  Scratch s;
  std::string path = WriteFile(s / std::string(150, 'a'), "0 0 1\n");
  ASSERT_EQ(ReadRootsFile(path.c_str(), &msg), 1);
  EXPECT_EQ(std::string(growthstate.rootname), path.substr(0, 127));
  // The scanner's numbers: NaN, infinity, overflow, underflow, hexadecimal;
  // a fourth number on a line starts the next root.
  ASSERT_EQ(ReadRootsText("nan nan nan\ninf 0 0\n0 1e999 -1e-999\n0x1p3 -0x.8p1 0X10 4\n5 6 x\n", &msg), 1);
  ASSERT_EQ(ncells, 5);
  EXPECT_TRUE(isnan(cells[0].p.x));
  EXPECT_EQ(cells[1].p.x, HUGE_VAL);
  EXPECT_EQ(cells[2].p.y, HUGE_VAL);
  EXPECT_EQ(cells[2].p.z, 0.0);
  EXPECT_EQ(cells[3].p.y, -1.0);
  EXPECT_EQ(cells[4].p.x, 4.0);
  EXPECT_EQ(growthstate.radius, HUGE_VAL);
  // Growth from them: bounded, never more than one cell a step, roots untouched.
  for (int i = 0; i < 2000; i++) IterateSystem();
  EXPECT_LE(ncells, 5 + 2000);
  EXPECT_EQ(cells[4].p.z, 6.0);
  // A NaN root alone keeps the starting radius and nothing can stick to it.
  ASSERT_EQ(ReadRootsText("nan 0 0\n", &msg), 1);
  EXPECT_EQ(growthstate.radius, 10.0);
  for (int i = 0; i < 2000; i++) IterateSystem();
  EXPECT_EQ(ncells, 1);
}

TEST_F(SeedFile, FailuresFillTheMessageLines) {
  PlaceRoots(ROOT_RINGZ, 4, 10);
  Scratch s;
  FILEMESSAGE msg = {};
  EXPECT_EQ(ReadRootsFile((s / "none.txt").c_str(), &msg), 0);
  EXPECT_STREQ(msg.line1, "File Error");
  EXPECT_STREQ(msg.line2, "Failed to read seed file");
  EXPECT_EQ(msg.line3, s / "none.txt");
  EXPECT_EQ(msg.fatal, 0);
  EXPECT_EQ(ncells, 4);  // nothing changed
  EXPECT_STREQ(growthstate.rootname, "Ring: z axis plane");
  EXPECT_EQ(ReadRootsText("x 1 2\n1 2 3\n", &msg), 0);
  EXPECT_STREQ(msg.line2, "Failed to read any root positions");
  EXPECT_STREQ(msg.line3, "Resetting");
  EXPECT_EQ(growthstate.nroots, 1);
  EXPECT_EQ(growthstate.rootdistribution, ROOT_ORIGIN);
  EXPECT_STREQ(growthstate.rootname, "Origin");
  ASSERT_EQ(ncells, 1);
  EXPECT_EQ(cells[0].p.x, 0);
}

// The direction each source code builds from the draws r[0..2], in the
// order dx, dy, dz, with s = 0.1 * branch length.
XYZ SourceDirection(int code, const double *r, double s) {
  double pm0 = r[0] < 0.5 ? -1 : 1, pm1 = r[1] < 0.5 ? -1 : 1, pm2 = r[2] < 0.5 ? -1 : 1;
  double a = (r[0] - 0.5) * s, b = (r[1] - 0.5) * s, c = (r[2] - 0.5) * s;
  switch (code) {
    case 2: return {1, a, b};
    case 3: return {-1, a, b};
    case 4: return {pm0, b, c};
    case 5: return {a, 1, b};
    case 6: return {a, -1, b};
    case 7: return {a, pm1, c};
    case 8: return {a, b, 1};
    case 9: return {a, b, -1};
    case 10: return {a, b, pm2};
    case 11: return {1, 2 * (r[0] - 0.5), 2 * (r[1] - 0.5)};
    case 12: return {2 * (r[0] - 0.5), 1, 2 * (r[1] - 0.5)};
    case 13: return {2 * (r[0] - 0.5), 2 * (r[1] - 0.5), 1};
    case 14: return {0.5 * r[0], r[1] - 0.5, r[2] - 0.5};
    case 15: return {r[0] - 0.5, 0.5 * r[1], r[2] - 0.5};
    case 16: return {r[0] - 0.5, r[1] - 0.5, 0.5 * r[2]};
    default: return {r[0] - 0.5, r[1] - 0.5, r[2] - 0.5};
  }
}

TEST_F(Source, EveryCodeFollowsItsRuleWithExactlyItsDraws) {
  growthstate.branchlength = 2;
  for (int code = -1; code <= 18; code++) {
    int draws = code >= 2 && code <= 13 && code != 4 && code != 7 && code != 10 ? 2 : 3;
    for (unsigned seed = 1; seed <= 40; seed++) {
      SCOPED_TRACE(testing::Message() << "code " << code << " seed " << seed);
      GrowthSrand48(seed);
      double r[4];
      for (double &v : r) v = GrowthDrand48();
      XYZ d = SourceDirection(code, r, 0.2);
      Normalise(&d);
      GrowthSrand48(seed);
      XYZ got = GetNewParticle(code, 7.5);
      EXPECT_DOUBLE_EQ(got.x, 7.5 * d.x);
      EXPECT_DOUBLE_EQ(got.y, 7.5 * d.y);
      EXPECT_DOUBLE_EQ(got.z, 7.5 * d.z);
      EXPECT_EQ(GrowthDrand48(), r[draws]);
    }
  }
  // Code 2 with branch length 1: x > 0, sideways at most 0.05 of the radius.
  growthstate.branchlength = 1;
  for (int i = 0; i < 2000; i++) {
    XYZ p = GetNewParticle(SOURCE_PLUSX, 12);
    ASSERT_GT(p.x, 0);
    ASSERT_LE(fabs(p.y), 0.6);
    ASSERT_LE(fabs(p.z), 0.6);
  }
}

TEST_F(Source, SurfaceSourceAimsAtAFacetCentroidWithOneRand) {
  GrowthSrand48(5);
  XYZ sphere = GetNewParticle(SOURCE_SPHERE, 9);
  GrowthSrand48(5);
  XYZ nofacets = GetNewParticle(SOURCE_STL, 9);
  EXPECT_EQ(memcmp(&sphere, &nofacets, sizeof(XYZ)), 0);
  AppendFacet(V(3, 0, 0), V(3, 3, 0), V(3, 0, 3));    // centroid (3, 1, 1)
  AppendFacet(V(0, -6, 0), V(0, -6, 3), V(3, -6, 0));  // centroid (1, -6, 1)
  UpdateSTL();
  const XYZ mids[2] = {{3, 1, 1}, {1, -6, 1}};
  for (unsigned seed = 1; seed <= 20; seed++) {
    GrowthSrand(seed);
    XYZ m = mids[GrowthRand() % 2];
    int next = GrowthRand();
    GrowthSrand(seed);
    GrowthSrand48(seed);
    double first = GrowthDrand48();
    GrowthSrand48(seed);
    XYZ got = GetNewParticle(SOURCE_STL, 9);
    double l = Modulus(m);
    EXPECT_DOUBLE_EQ(got.x, m.x / l * 9);
    EXPECT_DOUBLE_EQ(got.y, m.y / l * 9);
    EXPECT_EQ(GrowthRand(), next);
    EXPECT_EQ(GrowthDrand48(), first);  // no uniform number
  }
}

// The unit random step the generator seeded with seed gives.
XYZ ReplayStep(unsigned seed) {
  GrowthSrand48(seed);
  XYZ u = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
  Normalise(&u);
  return u;
}

// One step of a particle placed so that its random step ends at target;
// both generators seeded with seed just before.
void LandAt(XYZ target, unsigned seed = 1) {
  double bl = growthstate.branchlength;
  XYZ u = ReplayStep(seed);
  growthstate.particle = V(target.x - bl * u.x, target.y - bl * u.y, target.z - bl * u.z);
  growthstate.lifespan = 1;  // no release
  GrowthSrand48(seed);
  GrowthSrand(seed);
  IterateSystem();
}

// Roots from a seed file, with no drift and the file's own name.
void Quiet(const char *roots) {
  growthstate.bias = 0;
  growthstate.rootdistribution = ROOT_SPHERICAL;
  FILEMESSAGE msg;
  if (roots) {
    ASSERT_EQ(ReadRootsText(roots, &msg), 1);
  }
}

TEST_F(Step, WithoutBiasOrRotationJustOneStepAndFourUniformNumbers) {
  Quiet(NULL);
  GrowthSrand(99);
  int firstrand = GrowthRand();
  XYZ u = ReplayStep(7);
  GrowthSrand48(7);
  for (int k = 0; k < 4; k++) GrowthDrand48();
  double fifth = GrowthDrand48();
  growthstate.particle = V(5, 1, -2);
  growthstate.lifespan = 3;
  GrowthSrand48(7);
  GrowthSrand(99);
  IterateSystem();
  EXPECT_EQ(GrowthRand(), firstrand);  // bias 0 chooses no root
  EXPECT_DOUBLE_EQ(growthstate.particle.x, 5 + u.x);
  EXPECT_DOUBLE_EQ(growthstate.particle.y, 1 + u.y);
  EXPECT_DOUBLE_EQ(growthstate.particle.z, -2 + u.z);
  EXPECT_EQ(growthstate.lifespan, 4);
  EXPECT_EQ(nseeds, 0);
  EXPECT_EQ(GrowthDrand48(), fifth);  // three for the step, one for stickiness
}

TEST_F(Step, DriftPicksEachCoordinateFromItsOwnRootAndPushesAway) {
  Quiet("0 0 0\n2 -1 0\n0 3 1\n");
  growthstate.bias = 1;  // b = 0.01
  const XYZ r[3] = {{0, 0, 0}, {2, -1, 0}, {0, 3, 1}};
  XYZ u = ReplayStep(4);
  GrowthSrand(31);
  int kx = GrowthRand() % 3, ky = GrowthRand() % 3, kz = GrowthRand() % 3, fourth = GrowthRand();
  XYZ p = V(5 + u.x, 1 + u.y, -2 + u.z);
  XYZ v = V(r[kx].x - p.x, r[ky].y - p.y, r[kz].z - p.z);
  double l = Modulus(v);
  growthstate.particle = V(5, 1, -2);
  growthstate.lifespan = 1;
  GrowthSrand48(4);
  GrowthSrand(31);
  IterateSystem();
  EXPECT_EQ(GrowthRand(), fourth);
  EXPECT_DOUBLE_EQ(growthstate.particle.x, p.x - 0.01 * v.x / l);
  EXPECT_DOUBLE_EQ(growthstate.particle.y, p.y - 0.01 * v.y / l);
  EXPECT_DOUBLE_EQ(growthstate.particle.z, p.z - 0.01 * v.z / l);
  // Swirl: a turn by rotation degrees about z, counter-clockwise from +z.
  growthstate.bias = 0;
  growthstate.rotation = 3;
  u = ReplayStep(8);
  p = V(5 + u.x, 1 + u.y, -2 + u.z);
  double a = 3 * 0.0174532925;
  growthstate.particle = V(5, 1, -2);
  GrowthSrand48(8);
  IterateSystem();
  EXPECT_NEAR(growthstate.particle.x, p.x * cos(a) - p.y * sin(a), 1e-12);
  EXPECT_NEAR(growthstate.particle.y, p.x * sin(a) + p.y * cos(a), 1e-12);
  EXPECT_NEAR(growthstate.particle.z, p.z, 1e-12);
}

TEST_F(Step, StickinessHundredAlwaysSticksOneOnlyBelowAHundredth) {
  Quiet(NULL);
  for (unsigned seed = 1; seed <= 30; seed++) {
    LandAt(V(0.5, 0, 0), seed);
    ASSERT_EQ(ncells, (int)seed + 1);
    EXPECT_EQ(cells[seed].parent, (int)seed - 1);  // the newest cell at the same spot
    EXPECT_EQ(growthstate.lifespan, 0);
  }
  growthstate.stickiness = 1;
  int stuck = 0, refused = 0;
  for (unsigned seed = 1; seed <= 3000 && (stuck == 0 || refused == 0); seed++) {
    GrowthSrand48(seed);
    for (int k = 0; k < 3; k++) GrowthDrand48();
    double r = GrowthDrand48();
    int before = ncells;
    LandAt(V(0.5, 0, 0), seed);
    EXPECT_EQ(ncells, before + (r <= 0.01));
    if (r > 0.01) {
      EXPECT_NEAR(growthstate.particle.x, 0.5, 1e-12);  // not put back
    }
    (r > 0.01 ? refused : stuck)++;
  }
  EXPECT_GT(stuck, 0);
  EXPECT_GT(refused, 0);
}

TEST_F(Step, SearchIsNewestFirstWithTheCoarseEarlyRejection) {
  Quiet("0 0 0\n0.8 0 0\n");
  LandAt(V(0.1, 0, 0));
  ASSERT_EQ(ncells, 3);
  EXPECT_EQ(cells[2].parent, 1);  // cell 0 is closer but older
  // Branch length 0.5: cell 1 sets D = 0.36; cell 0, at 0.24 within reach
  // (0.25), is skipped because its x difference 0.4 exceeds D.
  ResetProgram();
  Quiet("0.4 0.2 0.2\n0.6 0 0\n");
  growthstate.branchlength = 0.5;
  LandAt(V(0, 0, 0));
  EXPECT_EQ(ncells, 2);
  // A negative difference passes the same test: cell 0 is found.
  ResetProgram();
  Quiet("-0.4 0.2 0.2\n0.6 0 0\n");
  growthstate.branchlength = 0.5;
  LandAt(V(0, 0, 0));
  ASSERT_EQ(ncells, 3);
  EXPECT_EQ(cells[2].parent, 0);
}

TEST_F(Step, WeightsCountOneStepLessInTheTreeOfRootZero) {
  Quiet("0 0 0\n0 8 0\n0 -8 0\n8 0 0\n");
  LandAt(V(0.5, 0, 0));  // cell 4 on root 0: d = 2
  LandAt(V(8.5, 0, 0));  // cell 5 on root 3: d = 2
  LandAt(V(1.2, 0, 0));  // cell 6 on cell 4: d = 2 (the count stops at index 0)
  LandAt(V(9.2, 0, 0));  // cell 7 on cell 5: d = 3
  ASSERT_EQ(ncells, 8);
  EXPECT_EQ(cells[6].parent, 4);
  EXPECT_EQ(cells[7].parent, 5);
  EXPECT_EQ(cells[4].weight, 0.5);
  EXPECT_EQ(cells[0].weight, 1.0);
  EXPECT_DOUBLE_EQ(cells[5].weight, 1.0 / 3);
  EXPECT_DOUBLE_EQ(cells[3].weight, 0.5 + 1.0 / 3);
  EXPECT_EQ(cells[6].weight, 0);
  EXPECT_EQ(growthstate.maxweight, 1.0);
}

TEST_F(Step, AssociationSearchesOneIndexClassAndDriftsToItsRootWithoutRand) {
  Quiet("0 0 0\n6 0 0\n0 6 0\n");
  for (double z : {0.5, 1.2, 1.9, 2.6}) LandAt(V(0, 0, z));
  ASSERT_EQ(ncells, 7);
  growthstate.associate = 1;
  // ncells 7: class 1 holds cells 1 and 4 only.
  LandAt(V(0, 0, 0.05));  // next to cell 3 and root 0
  LandAt(V(0, 6.5, 0));   // root 2
  EXPECT_EQ(ncells, 7);
  LandAt(V(0, 0, 0.6));  // cell 3 is nearer, cell 4 is in the class
  ASSERT_EQ(ncells, 8);
  EXPECT_EQ(cells[7].parent, 4);
  LandAt(V(0, 6.5, 0));  // ncells 8: class 2 now
  ASSERT_EQ(ncells, 9);
  EXPECT_EQ(cells[8].parent, 2);
  // ncells 9: the drift aims at root 0, with no rand() drawn.
  growthstate.bias = 1;
  XYZ u = ReplayStep(12);
  XYZ p = V(3 + u.x, -4 + u.y, 1 + u.z);
  double l = Modulus(p);
  GrowthSrand(5);
  int firstrand = GrowthRand();
  growthstate.particle = V(3, -4, 1);
  growthstate.lifespan = 1;
  GrowthSrand48(12);
  GrowthSrand(5);
  IterateSystem();
  EXPECT_EQ(GrowthRand(), firstrand);
  EXPECT_DOUBLE_EQ(growthstate.particle.x, p.x + 0.01 * p.x / l);
  EXPECT_DOUBLE_EQ(growthstate.particle.y, p.y + 0.01 * p.y / l);
  // No roots at all with bias and association: no division by zero.
  growthstate.nroots = 0;
  InitialiseGrowth();
  ResetSeeds();
  for (int i = 0; i < 500; i++) IterateSystem();
  EXPECT_EQ(ncells, 0);
}

TEST_F(Step, ReleasesLifeSpanEscapeAndRadius) {
  // No cells: a fresh particle every 10000 steps at radius + 2 = 12.
  PlaceRoots(10, 1, 10);
  growthstate.bias = 0;
  for (int i = 0; i < 10000; i++) IterateSystem();
  EXPECT_EQ(nseeds, 1);
  EXPECT_EQ(growthstate.lifespan, 10000);
  IterateSystem();
  EXPECT_EQ(nseeds, 2);
  EXPECT_NEAR(Modulus(seeds[1]), 12, 1e-12);
  // A first step outward is refused: the particle stays at its release point.
  int outward = 0, inward = 0;
  for (unsigned seed = 1; seed <= 40; seed++) {
    GrowthSrand48(seed);
    XYZ d = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
    XYZ u = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
    growthstate.lifespan = 0;
    GrowthSrand48(seed);
    IterateSystem();
    XYZ r = seeds[(nseeds - 1) % NSEEDS];
    bool stayed = growthstate.particle.x == r.x && growthstate.particle.y == r.y;
    EXPECT_EQ(stayed, DotProduct(d, u) > 0) << seed;
    (stayed ? outward : inward)++;
  }
  EXPECT_GT(outward * inward, 0);
  // A cell at 12 from the origin raises the radius and the release sphere.
  ResetProgram();
  Quiet("0 0 0\n11.2 0 0\n");
  LandAt(V(12, 0, 0));
  ASSERT_EQ(ncells, 3);
  EXPECT_NEAR(growthstate.radius, 12, 1e-12);
  growthstate.lifespan = 0;
  IterateSystem();
  EXPECT_NEAR(Modulus(seeds[(nseeds - 1) % NSEEDS]), 14, 1e-12);
}

// One landing with debug on: its message, and whether it stuck. A veto
// puts the particle back where it was before the step.
std::string LandVetoed(XYZ target, int *stuck) {
  int before = ncells;
  XYZ u = ReplayStep(1);
  XYZ q = V(target.x - u.x, target.y - u.y, target.z - u.z);
  std::string err = DebugOutput([&] { LandAt(target); });
  *stuck = ncells == before + 1;
  if (!*stuck) {
    EXPECT_EQ(memcmp(&growthstate.particle, &q, sizeof(XYZ)), 0);
  }
  return err;
}

TEST_F(Veto, SelfIntersectionUsesTheInfiniteLines) {
  Quiet("0 0 0\n2 0 0\n");
  LandAt(V(2, 0, 0.9));  // cell 2 on root 1: a segment along z at x = 2
  LandAt(V(0, 0, 0.9));  // cell 3 on root 0
  ASSERT_EQ(ncells, 4);
  int stuck;
  growthstate.intersectrange = 10;
  // The line through the new branch meets cell 2's line beyond its end.
  EXPECT_EQ(LandVetoed(V(-0.5, 0, 0.9), &stuck), "*** Self intersection\n");
  EXPECT_EQ(stuck, 0);
  EXPECT_EQ(LandVetoed(V(-0.5, 0.5, 0.9), &stuck), "");
  EXPECT_EQ(stuck, 1);
  growthstate.intersectrange = 0;
  EXPECT_EQ(LandVetoed(V(-0.5, 0, 0.85), &stuck), "");
  EXPECT_EQ(stuck, 1);
}

TEST_F(Veto, CuttingTheSurfaceAndPokingThroughAGapOnTheNormalsSide) {
  Quiet(NULL);
  AppendFacet(V(0.3, -1, -1), V(0.3, 1, -1), V(0.3, 0, 1));
  UpdateSTL();
  int stuck;
  EXPECT_EQ(LandVetoed(V(0.6, 0, 0), &stuck), "*** Cuts constraint surface\n");
  EXPECT_EQ(stuck, 0);
  EXPECT_EQ(LandVetoed(V(-0.6, 0, 0), &stuck), "");
  EXPECT_EQ(stuck, 1);
  // A facet parallel to the branch with an edge 0.2 above the particle,
  // facing -z (the particle's side): refused; facing +z: let through.
  ResetProgram();
  Quiet(NULL);
  AppendFacet(V(0.5, -1, 0.2), V(0.5, 1, 0.2), V(2, 0, 0.2));
  UpdateSTL();
  EXPECT_EQ(LandVetoed(V(0.5, 0, 0), &stuck), "*** Gap poke through\n");
  EXPECT_EQ(stuck, 0);
  nstltri = 0;
  AppendFacet(V(0.5, -1, 0.2), V(2, 0, 0.2), V(0.5, 1, 0.2));
  UpdateSTL();
  EXPECT_EQ(LandVetoed(V(0.5, 0, 0), &stuck), "");
  EXPECT_EQ(stuck, 1);
}

TEST_F(Growth, PlaneBelowTheRootHoldsTheAggregateAndAFarOneChangesNothing) {
  uint64_t free = 0;
  for (double lift : {0.0, 17.0, -480.0}) {  // none; the plane sample (z = -20) at -3 and at -500
    SCOPED_TRACE(lift);
    ResetProgram();
    if (lift != 0) {
      MakeSampleSurface(SAMPLE_PLANE);
      TransformSTL(V(1, 1, 1), V(0, 0, lift), V(0, 0, 0));
      InitialiseGrowth();
      ResetSeeds();
    }
    std::string err = DebugOutput([] { while (ncells < 300) IterateSystem(); });
    double minz = 0;
    for (int i = 0; i < ncells; i++) minz = fmin(minz, cells[i].p.z);
    if (lift == 0) {
      free = AggregateHash();
      EXPECT_LT(minz, -3.5) << "the free aggregate must reach below the plane";
    } else if (lift == 17) {
      EXPECT_GE(minz, -3);
      EXPECT_NE(err.find("*** Cuts constraint surface\n"), std::string::npos);
    } else {
      EXPECT_EQ(AggregateHash(), free);  // the surface tests draw nothing
    }
  }
}

// The default run (one root at the origin, bias 0.1, stickiness 100, no
// rotation, no surface) replayed from the rules, not from the engine.
std::vector<CELL> ReplayDefaultRun(int n) {
  std::vector<CELL> m = {{{0, 0, 0}, 0, -1, 0}};
  GrowthSrand48(12345);
  GrowthSrand(12345);
  double radius = 10;
  XYZ p = {0, 0, 0};
  for (int life = 0; (int)m.size() < n;) {
    if (life % 10000 == 0) {
      XYZ d = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
      double l = Modulus(d);
      p = V(d.x / l * (radius + 2), d.y / l * (radius + 2), d.z / l * (radius + 2));
    }
    XYZ q = p;
    life++;
    XYZ u = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
    double l = Modulus(u);
    p = V(p.x + u.x / l, p.y + u.y / l, p.z + u.z / l);
    if (Modulus(p) > radius + 2) {
      p = q;
      continue;
    }
    GrowthRand(), GrowthRand(), GrowthRand();  // one root: every index is 0
    XYZ v = {-p.x, -p.y, -p.z};  // away from the root at the origin
    Normalise(&v);
    const double b = 0.1 * 0.01 * 1.0;
    p = V(p.x - b * v.x, p.y - b * v.y, p.z - b * v.z);
    int best = -1;
    for (int i = (int)m.size() - 1; i >= 0 && best < 0; i--) {
      double dx = m[i].p.x - p.x, dy = m[i].p.y - p.y, dz = m[i].p.z - p.z;
      if (dx * dx + dy * dy + dz * dz < 1) best = i;
    }
    GrowthDrand48();  // stickiness
    if (best < 0) continue;
    m.push_back({p, 0, best, 0});
    radius = fmax(radius, Modulus(p));
    life = 0;
  }
  return m;
}

TEST_F(Growth, FixedSeedMatchesAnIndependentReplayAndReproduces) {
  std::vector<CELL> m = ReplayDefaultRun(40);
  ResetProgram();  // the replay drew from the generators
  while (ncells < 40) IterateSystem();
  for (int i = 0; i < 40; i++) {
    SCOPED_TRACE(i);
    EXPECT_DOUBLE_EQ(cells[i].p.x, m[i].p.x);
    EXPECT_DOUBLE_EQ(cells[i].p.y, m[i].p.y);
    EXPECT_DOUBLE_EQ(cells[i].p.z, m[i].p.z);
    EXPECT_EQ(cells[i].parent, m[i].parent);
  }
  growthstate.rotation = 2;
  growthstate.bias = 0.5;
  uint64_t h[3];
  double radius[3];
  for (int run = 0; run < 3; run++) {
    if (run == 2) growthstate.seed = 54321;
    InitialiseGrowth();
    ResetSeeds();
    while (ncells < 300) IterateSystem();
    h[run] = AggregateHash();
    radius[run] = growthstate.radius;
  }
  EXPECT_EQ(h[0], h[1]);
  EXPECT_EQ(radius[0], radius[1]);
  EXPECT_NE(h[0], h[2]);
}

TEST(Random, SameNumbersAsTheLibraryAndTheDefinitions) {
  for (long seed : {0L, 1L, -1L, -12345L, (long)INT_MAX, (long)INT_MIN, 12345L, 0x100000001L, 7919L * 77}) {
    srand48(seed);
    srand((unsigned)seed);
    GrowthSrand48(seed);
    GrowthSrand((unsigned)seed);
    int bad = 0;
    for (int k = 0; k < 200000; k++) bad += (drand48() != GrowthDrand48()) + (rand() != GrowthRand());
    EXPECT_EQ(bad, 0) << "seed " << seed;
  }
  // drand48: x1 = (0x5DEECE66D x0 + 11) mod 2^48 with x0 = seed << 16 | 0x330E.
  GrowthSrand48(0);
  EXPECT_EQ(GrowthDrand48(), (double)((0x5DEECE66DULL * 0x330EULL + 11) & 0xFFFFFFFFFFFFULL) / 281474976710656.0);
  GrowthSrand(0);  // as srand(1): glibc's well-known first numbers
  EXPECT_EQ(GrowthRand(), 1804289383);
  EXPECT_EQ(GrowthRand(), 846930886);
  SeedGrowthRandom(4242);
  srand48(4242);
  srand(4242);
  EXPECT_EQ(GrowthDrand48(), drand48());
  EXPECT_EQ(GrowthRand(), rand());
}

}  // namespace
