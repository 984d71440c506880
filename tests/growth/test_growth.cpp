// Roots, particle sources, the growth step and its vetoes, and the random
// numbers a seed reproduces a run with.
#include <limits.h>
#include <stddef.h>

#include <vector>

#include "growth/growth.h"
#include "growth/index.h"
#include "growth/random.h"
#include "surface/stl.h"
#include "test_util.h"

namespace {

using Roots = Fresh;
using Source = Fresh;
using Step = Fresh;

int ReadRootsText(SIMULATION &sim, const std::string &text, FILEMESSAGE *msg, std::string *path = NULL) {
  Scratch s;
  std::string p = WriteFile(s / "seeds.txt", text);
  if (path) *path = p;
  *msg = FILEMESSAGE();
  return ReadRootsFile(sim, p.c_str(), msg);
}

std::string Lines(const FILEMESSAGE &msg) { return std::string(msg.line1) + "|" + msg.line2 + "|" + msg.line3; }

TEST_F(Roots, EachDistributionItsPlacesDrawsAndName) {
  struct {
    int code, flat;  // the axis left at 0, or -1
    const char *name;
  } cases[] = {{ROOT_SPHERICAL, -1, "Spherical"},
               {ROOT_SPHERICAL9, -1, "Spherical"},
               {-4, -1, "Spherical"},
               {ROOT_RANDOMX, 0, "Random: x axis plane"},
               {ROOT_RANDOMY, 1, "Random: y axis plane"},
               {ROOT_RANDOMZ, 2, "Random: z axis plane"},
               {ROOT_RINGX, 0, "Ring: x axis plane"},
               {ROOT_RINGY, 1, "Ring: y axis plane"},
               {ROOT_RINGZ, 2, "Ring: z axis plane"}};
  const double ring[4][2] = {{10, 0}, {0, 10}, {-10, 0}, {0, -10}};  // "Ring: ..." places, the others draw
  for (auto &c : cases) {
    SCOPED_TRACE(c.code);
    StartGrowth(sim, "--roots 4 --root-distribution " + std::to_string(c.code));
    ASSERT_EQ(sim.ncells, 4);
    double after = GrowthDrand48(sim.random);  // reseeded after the roots
    GrowthSrand48(sim.random, 12345);
    EXPECT_EQ(after, GrowthDrand48(sim.random));
    GrowthSrand48(sim.random, 12345);  // random roots come from the state InitialiseGrowth seeded, x y z in order
    for (int i = 0; i < 4; i++) {
      double p[3];
      for (int k = 0, j = 0; k < 3; k++)
        p[k] = k == c.flat ? 0 : c.name[1] == 'i' ? ring[i][j++] : (GrowthDrand48(sim.random) - 0.5) * 10;
      EXPECT_XYZ(sim.cells[i].p, p[0], p[1], p[2], 1e-12);
      EXPECT_EQ(sim.cells[i].parent, -1);
    }
    EXPECT_STREQ(sim.growthstate.rootname, c.name);
    EXPECT_EQ(sim.growthstate.radius, 20);  // rootrange + 10
  }
  // No roots above code 9 or below one root; "Origin" places one whatever the count.
  for (auto c : {std::make_pair("--roots 3 --root-distribution 10", 0),
                 {"--roots 0 --root-distribution 2", 0},
                 {"--roots 0", 1}}) {
    StartGrowth(sim, c.first);
    EXPECT_EQ(sim.ncells, c.second) << c.first;
  }
}

TEST_F(Roots, RestartKeepsRootsTheirWeightsAndOriginsLeftovers) {
  sim.growthstate.bias = 0;
  while (sim.ncells < 6) IterateSystem(sim);
  std::vector<CELL> before(sim.cells.begin(), sim.cells.begin() + 6);
  ASSERT_GT(sim.cells[0].weight, 0);
  InitialiseGrowth(sim);
  EXPECT_EQ(sim.ncells, 1);
  EXPECT_EQ(sim.cells[0].weight, before[0].weight);  // kept, while maxweight starts again
  EXPECT_EQ(sim.growthstate.maxweight, 0);
  // "Origin" with 5 roots places one; a restart then takes cells 1 to 4 as they stand.
  sim.growthstate.nroots = 5;
  InitialiseGrowth(sim);
  ResetSeeds(sim);
  EXPECT_EQ(sim.ncells, 1);
  InitialiseGrowth(sim);
  ASSERT_EQ(sim.ncells, 5);
  for (int i = 1; i < 5; i++) EXPECT_EQ(memcmp(&sim.cells[i], &before[i], offsetof(CELL, traced)), 0) << i;
  sim.growthstate.nroots = 50;  // raised as the settings form does: roots must be long enough
  InitialiseGrowth(sim);
  EXPECT_GE((int)sim.roots.size(), 50);
  EXPECT_EQ(sim.growthstate.radius, 20);
}

TEST_F(Roots, SeedFilesGoodHostileAndBad) {
  sim.growthstate.rootdistribution = ROOT_SPHERICAL;  // keeps the file's name
  FILEMESSAGE msg;
  std::string path;
  std::string err =
      DebugOutput(sim, [&] { EXPECT_EQ(ReadRootsText(sim, "1 2 3\n  30\t40   0  \n7 8\n", &msg, &path), 1); });
  EXPECT_EQ(err, "Read 2 root seed positions\n");  // a third line of two numbers ends the list
  ASSERT_EQ(sim.ncells, 2);
  EXPECT_XYZ(sim.roots[1], 30, 40, 0, 0);
  EXPECT_EQ(sim.growthstate.radius, 50);
  EXPECT_STREQ(sim.growthstate.rootname, path.c_str());
  InitialiseGrowth(sim);  // a restart keeps the file's roots
  EXPECT_EQ(sim.ncells, 2);
  ResetSeeds(sim);  // generated roots leave the file's places to the restarts' radius
  InitialiseGrowth(sim);
  EXPECT_EQ(sim.growthstate.radius, 50);
  // The scanner's numbers: NaN, infinity, overflow; a fourth number starts the next root.
  ASSERT_EQ(ReadRootsText(sim, "nan 0 0\ninf 0 0\n0 1e999 0x1p3 4\n5 6 x\n", &msg), 1);
  ASSERT_EQ(sim.ncells, 4);
  EXPECT_XYZ(sim.cells[3].p, 4, 5, 6, 0);
  EXPECT_EQ(sim.cells[2].p.y, HUGE_VAL);
  EXPECT_EQ(sim.cells[2].p.z, 8.0);
  for (int i = 0; i < 2000; i++) IterateSystem(sim);  // bounded, whatever the roots
  EXPECT_LE(sim.ncells, 2004);
  ASSERT_EQ(ReadRootsText(sim, "nan 0 0\n", &msg), 1);  // NaN alone: nothing can ever stick
  EXPECT_EQ(sim.growthstate.radius, 10.0);
  for (int i = 0; i < 2000; i++) IterateSystem(sim);
  EXPECT_EQ(sim.ncells, 1);
  sim.growthstate.rootdistribution = ROOT_ORIGIN;
  ASSERT_EQ(ReadRootsText(sim, "1 1 1\n", &msg), 1);
  EXPECT_STREQ(sim.growthstate.rootname, "Origin");  // ResetSeeds names code 1 after the path was set
  StartGrowth(sim, "--roots 4 --root-distribution 8");
  Scratch s;
  EXPECT_EQ(ReadRootsFile(sim, (s / "none").c_str(), &msg), 0);
  EXPECT_EQ(Lines(msg), "File Error|Failed to read seed file|" + s / "none");
  EXPECT_EQ(sim.ncells, 4);  // nothing changed
  EXPECT_EQ(ReadRootsText(sim, "x 1 2\n1 2 3\n", &msg), 0);
  EXPECT_EQ(Lines(msg), "File Error|Failed to read any root positions|Resetting");
  EXPECT_EQ(sim.growthstate.rootdistribution, ROOT_ORIGIN);
  EXPECT_STREQ(sim.growthstate.rootname, "Origin");
  ASSERT_EQ(sim.ncells, 1);
  EXPECT_EQ(sim.growthstate.nroots, 1);
}

// Each source code's direction, a letter a component: 1 or - (-1) draw nothing; the others take the next
// uniform number r: p is -1 below 0.5 else 1, s (r - 0.5) 0.1 branch length, w 2 (r - 0.5), h 0.5 r, c r - 0.5.
const char *kSourceRules[] = {"1ss", "-ss", "pss", "s1s", "s-s", "sps", "ss1", "ss-",
                              "ssp", "1ww", "w1w", "ww1", "hcc", "chc", "cch"};
const char kLetters[] = "1-pswhc";

TEST_F(Source, EveryCodeFollowsItsRuleWithExactlyItsDraws) {
  sim.growthstate.branchlength = 2;
  for (int code = -1; code <= 18; code++) {
    const char *rule = code >= SOURCE_PLUSX && code <= SOURCE_HEMIZ ? kSourceRules[code - SOURCE_PLUSX] : "ccc";
    for (unsigned seed = 1; seed <= 40; seed++) {
      SCOPED_TRACE(testing::Message() << "code " << code << " seed " << seed);
      GrowthSrand48(sim.random, seed);
      double d[3];
      for (int k = 0; k < 3; k++) {
        char c = rule[k];
        double r = c == '1' || c == '-' ? 0 : GrowthDrand48(sim.random);
        const double value[] = {1, -1, r < 0.5 ? -1.0 : 1, (r - 0.5) * 0.2, 2 * (r - 0.5), 0.5 * r, r - 0.5};
        d[k] = value[strchr(kLetters, c) - kLetters];
      }
      double next = GrowthDrand48(sim.random), l = sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
      GrowthSrand48(sim.random, seed);
      XYZ got = GetNewParticle(sim, code, 7.5);
      EXPECT_XYZ(got, 7.5 * d[0] / l, 7.5 * d[1] / l, 7.5 * d[2] / l, 1e-14);
      EXPECT_EQ(GrowthDrand48(sim.random), next);
    }
  }
  // The surface source: the centroid of facet rand() mod nstltri, no uniform number.
  AppendFacet(sim, V(3, 0, 0), V(3, 3, 0), V(3, 0, 3));     // centroid (3, 1, 1)
  AppendFacet(sim, V(0, -6, 0), V(0, -6, 3), V(3, -6, 0));  // centroid (1, -6, 1)
  UpdateSTL(sim);
  for (unsigned seed = 1; seed <= 20; seed++) {
    GrowthSrand(sim.random, seed);
    XYZ m = GrowthRand(sim.random) % 2 ? V(1, -6, 1) : V(3, 1, 1);
    int next = GrowthRand(sim.random);
    GrowthSrand(sim.random, seed);
    GrowthSrand48(sim.random, seed);
    double first = GrowthDrand48(sim.random);
    GrowthSrand48(sim.random, seed);
    XYZ got = GetNewParticle(sim, SOURCE_STL, 9);
    EXPECT_XYZ(got, m.x / Modulus(m) * 9, m.y / Modulus(m) * 9, m.z / Modulus(m) * 9, 1e-14);
    EXPECT_EQ(GrowthRand(sim.random), next);
    EXPECT_EQ(GrowthDrand48(sim.random), first);
  }
}

// The unit random step the generator seeded with seed gives.
XYZ ReplayStep(SIMULATION &sim, unsigned seed) {
  GrowthSrand48(sim.random, seed);
  XYZ u = {GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5};
  Normalise(&u);
  return u;
}

// One step of a particle placed so that its random step, seeded with seed, ends at target.
void LandAt(SIMULATION &sim, XYZ target, unsigned seed = 1) {
  XYZ u = ReplayStep(sim, seed);
  double bl = sim.growthstate.branchlength;
  sim.growthstate.particle = V(target.x - bl * u.x, target.y - bl * u.y, target.z - bl * u.z);
  sim.growthstate.lifespan = 1;  // no release
  GrowthSrand48(sim.random, seed);
  GrowthSrand(sim.random, seed);
  IterateSystem(sim);
}

// Roots from a seed file, no drift.
void Quiet(SIMULATION &sim, const char *roots) {
  sim.growthstate.bias = 0;
  sim.growthstate.rootdistribution = ROOT_SPHERICAL;
  FILEMESSAGE msg;
  EXPECT_EQ(roots ? ReadRootsText(sim, roots, &msg) : 1, 1);
}

TEST_F(Step, OneStepFourUniformNumbersDriftAwayAndSwirl) {
  Quiet(sim, "0 0 0\n2 -1 0\n0 3 1\n");
  GrowthSrand(sim.random, 31);
  int first = GrowthRand(sim.random), ky = GrowthRand(sim.random) % 3, kz = GrowthRand(sim.random) % 3,
      fourth = GrowthRand(sim.random), kx = first % 3;
  GrowthSrand48(sim.random, 4);
  for (int k = 0; k < 4; k++) GrowthDrand48(sim.random);
  double fifth = GrowthDrand48(sim.random);
  XYZ u = ReplayStep(sim, 4), p = V(5 + u.x, 1 + u.y, -2 + u.z);
  for (double bias : {0.0, 1.0}) {  // b = bias * 0.01 * branch length
    sim.growthstate.bias = bias;
    sim.growthstate.particle = V(5, 1, -2);
    sim.growthstate.lifespan = 3;
    GrowthSrand48(sim.random, 4);
    GrowthSrand(sim.random, 31);
    IterateSystem(sim);
    EXPECT_EQ(GrowthDrand48(sim.random), fifth);               // three for the step, one for stickiness
    EXPECT_EQ(GrowthRand(sim.random), bias ? fourth : first);  // bias 0 chooses no root
    // Each coordinate of the target from its own root; moved away from it.
    const XYZ r[3] = {{0, 0, 0}, {2, -1, 0}, {0, 3, 1}};
    XYZ v = V(r[kx].x - p.x, r[ky].y - p.y, r[kz].z - p.z);
    double b = bias * 0.01 / Modulus(v);
    EXPECT_XYZ(sim.growthstate.particle, p.x - b * v.x, p.y - b * v.y, p.z - b * v.z, 1e-14);
    EXPECT_EQ(sim.growthstate.lifespan, 4);
    EXPECT_EQ(sim.nseeds, 0);
  }
  sim.growthstate.bias = 0;
  sim.growthstate.rotation = 3;  // counter-clockwise from +z by 3 degrees
  sim.growthstate.particle = V(5, 1, -2);
  GrowthSrand48(sim.random, 4);
  IterateSystem(sim);
  double a = 3 * 0.0174532925;
  EXPECT_XYZ(sim.growthstate.particle, p.x * cos(a) - p.y * sin(a), p.x * sin(a) + p.y * cos(a), p.z, 1e-12);
}

TEST_F(Step, StickinessSearchAndWeights) {
  Quiet(sim, NULL);
  for (unsigned seed = 1; seed <= 30; seed++) {  // stickiness 100: always, to the newest cell
    LandAt(sim, V(0.5, 0, 0), seed);
    ASSERT_EQ(sim.ncells, (int)seed + 1);
    EXPECT_EQ(sim.cells[seed].parent, (int)seed - 1);
  }
  sim.growthstate.stickiness = 1;  // only when the fourth draw is at most 0.01
  int stuck = 0, refused = 0;
  for (unsigned seed = 1; seed <= 3000 && !(stuck && refused); seed++) {
    GrowthSrand48(sim.random, seed);
    for (int k = 0; k < 3; k++) GrowthDrand48(sim.random);
    double r = GrowthDrand48(sim.random);
    int before = sim.ncells;
    LandAt(sim, V(0.5, 0, 0), seed);
    EXPECT_EQ(sim.ncells, before + (r <= 0.01));
    (r > 0.01 ? refused : stuck)++;
  }
  EXPECT_NEAR(sim.growthstate.particle.x, 0.5, 1e-12);  // a refused particle is not put back
  // Newest first: cell 0 is closer but older. Branch length 0.5: the newer
  // cell sets D = 0.36, and cell 0 (0.24 away, within reach) is skipped for
  // its x difference 0.4 > D; with the difference negative it is found.
  struct {
    const char *roots;
    double branchlength, x;
    int parent;
  } search[] = {
      {"0 0 0\n0.8 0 0\n", 1, 0.1, 1}, {"0.4 0.2 0.2\n0.6 0 0\n", 0.5, 0, -1}, {"-0.4 0.2 0.2\n0.6 0 0\n", 0.5, 0, 0}};
  for (auto &c : search) {
    ResetProgram(sim);
    Quiet(sim, c.roots);
    sim.growthstate.branchlength = c.branchlength;
    LandAt(sim, V(c.x, 0, 0));
    EXPECT_EQ(sim.ncells == 3 ? sim.cells[2].parent : -1, c.parent) << c.roots;
  }
  // Weights: 1/d to every ancestor; the count stops at index 0 too.
  ResetProgram(sim);
  Quiet(sim, "0 0 0\n0 8 0\n0 -8 0\n8 0 0\n");
  for (double x : {0.5, 8.5, 1.2, 9.2}) LandAt(sim, V(x, 0, 0));
  ASSERT_EQ(sim.ncells, 8);
  EXPECT_EQ(sim.cells[6].parent, 4);  // on a child of root 0: d = 2
  EXPECT_EQ(sim.cells[7].parent, 5);  // on a child of root 3: d = 3
  EXPECT_EQ(sim.cells[4].weight, 0.5);
  EXPECT_EQ(sim.cells[0].weight, 1.0);
  EXPECT_DOUBLE_EQ(sim.cells[5].weight, 1.0 / 3);
  EXPECT_DOUBLE_EQ(sim.cells[3].weight, 0.5 + 1.0 / 3);
  EXPECT_EQ(sim.growthstate.maxweight, 1.0);
}

TEST_F(Step, AssociationSearchesOneIndexClassAndDriftsToItsRootWithoutRand) {
  Quiet(sim, "0 0 0\n6 0 0\n0 6 0\n");
  for (double z : {0.5, 1.2, 1.9, 2.6}) LandAt(sim, V(0, 0, z));
  ASSERT_EQ(sim.ncells, 7);
  sim.growthstate.associate = 1;  // ncells 7: class 1, cells 1 and 4 only
  LandAt(sim, V(0, 0, 0.05));
  LandAt(sim, V(0, 6.5, 0));
  EXPECT_EQ(sim.ncells, 7);
  LandAt(sim, V(0, 0, 0.6));  // cell 3 is nearer, cell 4 is in the class
  ASSERT_EQ(sim.ncells, 8);
  EXPECT_EQ(sim.cells[7].parent, 4);
  LandAt(sim, V(0, 6.5, 0));  // ncells 8: class 2
  ASSERT_EQ(sim.ncells, 9);
  EXPECT_EQ(sim.cells[8].parent, 2);
  sim.growthstate.bias = 1;  // ncells 9: away from root 0, no rand()
  XYZ u = ReplayStep(sim, 12), p = V(3 + u.x, -4 + u.y, 1 + u.z);
  GrowthSrand(sim.random, 5);
  int firstrand = GrowthRand(sim.random);
  sim.growthstate.particle = V(3, -4, 1);
  sim.growthstate.lifespan = 1;
  GrowthSrand48(sim.random, 12);
  GrowthSrand(sim.random, 5);
  IterateSystem(sim);
  EXPECT_EQ(GrowthRand(sim.random), firstrand);
  double l = Modulus(p);
  EXPECT_XYZ(sim.growthstate.particle, p.x + 0.01 * p.x / l, p.y + 0.01 * p.y / l, p.z + 0.01 * p.z / l, 1e-14);
  sim.growthstate.nroots = 0;  // no roots with bias and association: no division by zero
  InitialiseGrowth(sim);
  ResetSeeds(sim);
  for (int i = 0; i < 500; i++) IterateSystem(sim);
  EXPECT_EQ(sim.ncells, 0);
}

TEST_F(Step, ReleasesLifeSpanEscapeAndRadius) {
  StartGrowth(sim, "--root-distribution 10");  // no cells: a fresh particle every 10000 steps at radius + 2
  sim.growthstate.bias = 0;
  for (int i = 0; i < 10001; i++) IterateSystem(sim);
  EXPECT_EQ(sim.nseeds, 2);
  EXPECT_EQ(sim.growthstate.lifespan, 10001);
  EXPECT_NEAR(Modulus(sim.seeds[1]), 12, 1e-12);
  int outward = 0;
  for (unsigned seed = 1; seed <= 40; seed++) {  // a first step outward is refused
    GrowthSrand48(sim.random, seed);
    XYZ d = {GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5};
    XYZ u = {GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5};
    sim.growthstate.lifespan = 0;
    GrowthSrand48(sim.random, seed);
    IterateSystem(sim);
    bool stayed = !memcmp(&sim.growthstate.particle, &sim.seeds[(sim.nseeds - 1) % NSEEDS], sizeof(XYZ));
    EXPECT_EQ(stayed, DotProduct(d, u) > 0) << seed;
    outward += stayed;
  }
  EXPECT_GT(outward * (40 - outward), 0);
  ResetProgram(sim);  // a cell at 12 raises the radius and the release sphere
  Quiet(sim, "0 0 0\n11.2 0 0\n");
  LandAt(sim, V(12, 0, 0));
  ASSERT_EQ(sim.ncells, 3);
  EXPECT_NEAR(sim.growthstate.radius, 12, 1e-12);
  sim.growthstate.lifespan = 0;
  IterateSystem(sim);
  EXPECT_NEAR(Modulus(sim.seeds[(sim.nseeds - 1) % NSEEDS]), 14, 1e-12);
  // A branch length past the search's first bound (1e32 squared) "touches" before any cell is found: no stick.
  for (int search : {SEARCH_SCAN, SEARCH_INDEX}) {
    StartGrowth(sim, "--branch-length 2e16");
    sim.growthsearch = search;
    for (int i = 0; i < 100; i++) IterateSystem(sim);
    EXPECT_EQ(sim.ncells, 1) << search;
  }
}

// A branch along z at x = 2 (cell 2 on root 1) and cell 3 on root 0 at (0, 0, 0.9). The new branch's line
// meeting cell 2's beyond its end; a facet across the branch; an edge 0.2 above the branch, refused when its
// facet faces the particle (-z), not when it faces away.
TEST_F(Step, VetoesSelfIntersectionCuttingAndGapsPutTheParticleBack) {
  struct {
    double intersectrange;
    std::vector<XYZ> facet;
    XYZ target;
    const char *message;
  } cases[] = {{10, {}, {-0.5, 0, 0.9}, "*** Self intersection\n"},
               {10, {}, {-0.5, 0.5, 0.9}, ""},
               {0, {{0.3, -1, -1}, {0.3, 1, -1}, {0.3, 0, 1}}, {0.6, 0, 0}, "*** Cuts constraint surface\n"},
               {0, {{0.3, -1, -1}, {0.3, 1, -1}, {0.3, 0, 1}}, {-0.6, 0, 0}, ""},
               {0, {{0.5, -1, 0.2}, {0.5, 1, 0.2}, {2, 0, 0.2}}, {0.5, 0, 0}, "*** Gap poke through\n"},
               {0, {{0.5, 1, 0.2}, {0.5, -1, 0.2}, {2, 0, 0.2}}, {0.5, 0, 0}, ""},
               {0, {{0.5, -1, 0.25}, {0.5, 1, 0.25}, {2, 0, 0.25}}, {0.4, 0, 0.25}, ""}};  // in the plane: no side
  for (auto &c : cases) {
    ResetProgram(sim);
    Quiet(sim, "0 0 0\n2 0 0\n");
    AppendCell(sim, V(2, 0, 0.9), 0, 1);
    AppendCell(sim, V(0, 0, 0.9), 0, 0);
    sim.growthstate.intersectrange = c.intersectrange;
    if (!c.facet.empty()) AppendFacet(sim, c.facet[0], c.facet[1], c.facet[2]);
    UpdateSTL(sim);
    XYZ u = ReplayStep(sim, 1), q = V(c.target.x - u.x, c.target.y - u.y, c.target.z - u.z);
    EXPECT_EQ(DebugOutput(sim, [&] { LandAt(sim, c.target); }), c.message);
    bool stuck = sim.ncells == 5;
    EXPECT_EQ(stuck, !*c.message) << c.message;
    EXPECT_TRUE(stuck || !memcmp(&sim.growthstate.particle, &q, sizeof(XYZ))) << c.message;
  }
}

// Any seed, and rand draws owed below and above the one-by-one limit and far beyond it.
TEST(Random, SameNumbersAsTheLibraryForEverySeedAndAfterOwedDraws) {
  SIMULATION sim;
  ResetProgram(sim);
  for (long seed : {0L, 1L, -1L, (long)INT_MAX, (long)INT_MIN, 12345L, 0x100000001L, 7919L * 77}) {
    srand48(seed);
    srand((unsigned)seed);
    GrowthSrand48(sim.random, seed);
    GrowthSrand(sim.random, (unsigned)seed);
    int bad = 0;
    for (int k = 0; k < 200000; k++)
      bad += (drand48() != GrowthDrand48(sim.random)) + (rand() != GrowthRand(sim.random));
    EXPECT_EQ(bad, 0) << "seed " << seed;
  }
  GrowthSrand(sim.random, 0);  // as srand(1): glibc's well-known first numbers
  EXPECT_EQ(GrowthRand(sim.random), 1804289383);
  EXPECT_EQ(GrowthRand(sim.random), 846930886);
  for (unsigned long n : {1ul, 30ul, 1999ul, 2000ul, 2001ul, 123457ul, 40000003ul}) {
    srand(4711);
    for (unsigned long k = 0; k < n; k++) rand();
    GrowthSrand(sim.random, 4711);
    SkipGrowthRand(sim.random, n);
    for (int k = 0; k < 40; k++) ASSERT_EQ(GrowthRand(sim.random), rand()) << n << " owed, draw " << k;
  }
  SkipGrowthRand(sim.random, 5000);  // seeding drops what is owed
  SeedGrowthRandom(sim.random, 4242);
  srand48(4242);
  srand(4242);
  EXPECT_EQ(GrowthDrand48(sim.random), drand48());
  EXPECT_EQ(GrowthRand(sim.random), rand());
}

}  // namespace
