// Roots, particle sources, the growth step and its vetoes, and the random
// numbers a seed reproduces a run with.
#include <limits.h>

#include "growth/idle.h"
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

TEST_F(Roots, RingsAndPlanesPlaceTheirRootsUnderTheirNames) {
  struct {
    int code;
    XYZ second;  // the second of four roots on a ring of radius 10; 0 marks the flat axis of a random plane
    const char *name;
  } cases[] = {{ROOT_RINGX, {0, 0, 10}, "Ring: x axis plane"},
               {ROOT_RINGY, {0, 0, 10}, "Ring: y axis plane"},
               {ROOT_RINGZ, {0, 10, 0}, "Ring: z axis plane"},
               {ROOT_RANDOMX, {0, 1, 1}, "Random: x axis plane"},
               {ROOT_RANDOMZ, {1, 1, 0}, "Random: z axis plane"},
               {ROOT_SPHERICAL, {1, 1, 1}, "Spherical"},
               {-4, {1, 1, 1}, "Spherical"}};
  for (auto &c : cases) {
    StartGrowth(sim, "--roots 4 --root-distribution " + std::to_string(c.code));
    ASSERT_EQ(sim.ncells, 4) << c.name;
    EXPECT_STREQ(sim.growthstate.rootname, c.name);
    EXPECT_EQ(sim.growthstate.radius, 20);  // root range + 10
    SCOPED_TRACE(c.name);
    if (c.name[0] == 'R' && c.name[1] == 'i') {
      EXPECT_XYZ(sim.cells[1].p, c.second.x, c.second.y, c.second.z, 1e-6);
      EXPECT_XYZ(sim.cells[0].p, c.code == ROOT_RINGX ? 0 : 10, c.code == ROOT_RINGX ? 10 : 0, 0, 1e-6);
      continue;
    }
    for (int i = 0; i < 4; i++) {  // within half the root range, the flat axis at 0
      const XYZ &q = sim.cells[i].p;
      EXPECT_TRUE(c.second.x ? fabs(q.x) <= 5 && q.x != 0 : q.x == 0) << i;
      EXPECT_TRUE(c.second.y ? fabs(q.y) <= 5 && q.y != 0 : q.y == 0) << i;
      EXPECT_TRUE(c.second.z ? fabs(q.z) <= 5 && q.z != 0 : q.z == 0) << i;
    }
  }
  // No roots above code 9 or below one root; "Origin" places one whatever the count.
  for (auto c : {std::make_pair("--roots 3 --root-distribution 10", 0),
                 {"--roots 0 --root-distribution 2", 0},
                 {"--roots 0", 1}}) {
    StartGrowth(sim, c.first);
    EXPECT_EQ(sim.ncells, c.second) << c.first;
  }
}

// Random roots draw from the generators, which are seeded again after them:
// a seed gives the same particles whatever the roots.
TEST_F(Roots, GeneratorsSeededAgainAfterTheRoots) {
  StartGrowth(sim, "--roots 5 --root-distribution 2 --seed 99");
  double first = GrowthDrand48(sim.random);
  StartGrowth(sim, "--seed 99");
  EXPECT_EQ(GrowthDrand48(sim.random), first);
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
  for (int i = 1; i < 5; i++) EXPECT_EQ(memcmp(&sim.cells[i].p, &before[i].p, sizeof(XYZ)), 0) << i;
}

TEST_F(Roots, SeedFilesGoodAndBad) {
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
  ASSERT_EQ(ReadRootsText(sim, "nan 0 0\n", &msg), 1);  // NaN alone: nothing can ever stick, nothing breaks
  for (int i = 0; i < 2000; i++) IterateSystem(sim);
  EXPECT_EQ(sim.ncells, 1);
  StartGrowth(sim, "--roots 4 --root-distribution 8");
  Scratch s;
  EXPECT_EQ(ReadRootsFile(sim, (s / "none").c_str(), &msg), 0);
  EXPECT_EQ(Lines(msg), "File Error|Failed to read seed file|" + s / "none");
  EXPECT_EQ(sim.ncells, 4);  // nothing changed
  EXPECT_EQ(ReadRootsText(sim, "x 1 2\n1 2 3\n", &msg), 0);
  EXPECT_EQ(Lines(msg), "File Error|Failed to read any root positions|Resetting");
  EXPECT_STREQ(sim.growthstate.rootname, "Origin");
  EXPECT_EQ(sim.ncells * 10 + sim.growthstate.nroots, 11);
}

// Each source's release points over many draws: the unit direction's
// component along the source's axis at least least[kind] in size, of the
// sign given (0: both signs seen). The sphere, unknown codes and, with no
// surface, the surface source: any direction.
TEST_F(Source, EachCodeReleasesFromItsSide) {
  const int codes[4][5] = {{SOURCE_PLUSX, SOURCE_MINUSX, SOURCE_DOUBLEX, SOURCE_PLANEX, SOURCE_HEMIX},
                           {SOURCE_PLUSY, SOURCE_MINUSY, SOURCE_DOUBLEY, SOURCE_PLANEY, SOURCE_HEMIY},
                           {SOURCE_PLUSZ, SOURCE_MINUSZ, SOURCE_DOUBLEZ, SOURCE_PLANEZ, SOURCE_HEMIZ},
                           {SOURCE_SPHERE, 0, 18, SOURCE_STL, -3}};
  const double least[5] = {0.99, 0.99, 0.99, 0.577, 0};
  const int signs[5] = {1, -1, 0, 1, 1};
  for (int axis = 0; axis < 4; axis++)
    for (int kind = 0; kind < 5; kind++) {
      int code = codes[axis][kind], sign = axis < 3 ? signs[kind] : 0;
      double lo = 2, hi = -2;
      for (int k = 0; k < 400; k++) {
        XYZ p = GetNewParticle(sim, code, 7.5);
        ASSERT_NEAR(Modulus(p), 7.5, 1e-12) << code;
        double v = (axis == 0 ? p.x : axis == 1 ? p.y : p.z) / 7.5;
        lo = fmin(lo, v);
        hi = fmax(hi, v);
        ASSERT_GE(fabs(v), axis < 3 ? least[kind] : 0) << code;
      }
      bool side = sign ? sign * lo >= 0 && sign * hi >= 0 : lo < -0.5 && hi > 0.5;
      EXPECT_TRUE(side) << code << ": " << lo << " to " << hi;
    }
  // The surface source: towards the centroid of a facet, each facet in turn by chance.
  AppendFacet(sim, V(3, 0, 0), V(3, 3, 0), V(3, 0, 3));     // centroid (3, 1, 1)
  AppendFacet(sim, V(0, -6, 0), V(0, -6, 3), V(3, -6, 0));  // centroid (1, -6, 1)
  UpdateSTL(sim);
  int seen[2] = {0, 0};
  for (int k = 0; k < 100; k++) {
    XYZ p = GetNewParticle(sim, SOURCE_STL, sqrt(11.0));
    XYZ want = p.x > 2.9 ? V(3, 1, 1) : V(sqrt(11.0 / 38), -6 * sqrt(11.0 / 38), sqrt(11.0 / 38));
    EXPECT_XYZ(p, want.x, want.y, want.z, 1e-12);
    seen[p.x > 2.9]++;
  }
  EXPECT_GT(seen[0] * seen[1], 0);
}

// One step of a particle placed so that its random step, seeded with seed, ends at target.
void LandAt(SIMULATION &sim, XYZ target, unsigned seed = 1) {
  GrowthSrand48(sim.random, seed);
  XYZ u = {GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5};
  Normalise(&u);
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

// Worked out by hand from a step that ends at (3, 4, 0), 5 from the root at
// the origin: the drift moves it bias percent of a branch length further
// away (b = bias 0.01 branch length); the swirl turns it counter-clockwise
// seen from +z.
TEST_F(Step, DriftPushesAwayFromTheRootAndTheSwirlTurnsCounterClockwise) {
  Quiet(sim, NULL);
  const double c5 = cos(5 * M_PI / 180), s5 = sin(5 * M_PI / 180);
  struct {
    double bias, rotation, branchlength;
    XYZ want;
  } cases[] = {{0, 0, 1, {3, 4, 0}},
               {1, 0, 1, {3.006, 4.008, 0}},
               {0.5, 0, 2, {3.006, 4.008, 0}},
               {0, 90, 1, {-4, 3, 0}},
               {0, -5, 1, {3 * c5 + 4 * s5, 4 * c5 - 3 * s5, 0}}};
  for (auto &c : cases) {
    sim.growthstate.bias = c.bias;
    sim.growthstate.rotation = c.rotation;
    sim.growthstate.branchlength = c.branchlength;
    SCOPED_TRACE(testing::Message() << "bias " << c.bias << ", rotation " << c.rotation);
    LandAt(sim, V(3, 4, 0));
    EXPECT_XYZ(sim.growthstate.particle, c.want.x, c.want.y, c.want.z, 1e-6);
    EXPECT_EQ(sim.ncells, 1);
  }
}

TEST_F(Step, StickinessSearchAndWeights) {
  Quiet(sim, NULL);
  for (unsigned seed = 1; seed <= 30; seed++) {  // stickiness 100: always, to the newest cell
    LandAt(sim, V(0.5, 0, 0), seed);
    ASSERT_EQ(sim.ncells, (int)seed + 1);
    EXPECT_EQ(sim.cells[seed].parent, (int)seed - 1);
  }
  sim.growthstate.stickiness = 1;  // about one touch in a hundred (sd 5.4 in 3000)
  int before = sim.ncells;
  for (unsigned seed = 1; seed <= 3000; seed++) LandAt(sim, V(0.5, 0, 0), seed);
  EXPECT_NEAR(sim.ncells - before, 30, 18);
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

TEST_F(Step, AssociationSearchesOneIndexClassAndDriftsFromItsRoot) {
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
  sim.growthstate.bias = 1;  // ncells 9: away from root 0
  LandAt(sim, V(3, -4, 0));
  EXPECT_XYZ(sim.growthstate.particle, 3.006, -4.008, 0, 1e-6);
  sim.growthstate.nroots = 0;  // no roots with bias and association: no division by zero
  InitialiseGrowth(sim);
  ResetSeeds(sim);
  for (int i = 0; i < 500; i++) IterateSystem(sim);
  EXPECT_EQ(sim.ncells, 0);
}

TEST_F(Step, ReleasesLifeSpanEscapeAndRadius) {
  // No cells: released at radius + 2 = 12 (every 10000 steps: test_walks.cpp).
  StartGrowth(sim, "--root-distribution 10 --bias 0");
  int stayed = 0;
  for (int k = 0; k < 40; k++) {  // a first step outward is refused: the particle stays where it was released
    sim.growthstate.lifespan = 0;
    IterateSystem(sim);
    XYZ p = sim.growthstate.particle;
    stayed += !memcmp(&p, &sim.seeds[(sim.nseeds - 1) % NSEEDS], sizeof(XYZ));
    ASSERT_LE(Modulus(p), 12 + 1e-12);
  }
  EXPECT_GT(stayed * (40 - stayed), 0);
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
               {0, {{0.5, 1, 0.2}, {0.5, -1, 0.2}, {2, 0, 0.2}}, {0.5, 0, 0}, ""}};
  for (auto &c : cases) {
    ResetProgram(sim);
    Quiet(sim, "0 0 0\n2 0 0\n");
    AppendCell(sim, V(2, 0, 0.9), 0, 1);
    AppendCell(sim, V(0, 0, 0.9), 0, 0);
    sim.growthstate.intersectrange = c.intersectrange;
    if (!c.facet.empty()) AppendFacet(sim, c.facet[0], c.facet[1], c.facet[2]);
    UpdateSTL(sim);
    EXPECT_EQ(DebugOutput(sim, [&] { LandAt(sim, c.target); }), c.message);
    EXPECT_EQ(sim.ncells, *c.message ? 4 : 5) << c.message;
    EXPECT_TRUE(!*c.message || VectorLength(sim.growthstate.particle, c.target) > 0.999) << "not put back";
  }
}

// The idle driver: 100 steps a call while growth runs, none while paused or
// while the statistics count; no cells, so the life span counts the steps.
TEST_F(Step, IdleCallsGrowOneHundredStepsUnlessPausedOrCounting) {
  StartGrowth(sim, "--root-distribution 10 --bias 0");
  struct {
    int growing, calcstats;
    long steps;
  } cases[] = {{1, 0, 100}, {0, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  for (auto &c : cases) {
    sim.growthstate.growing = c.growing;
    sim.options.calcstats = c.calcstats;
    int before = sim.growthstate.lifespan;
    EXPECT_EQ(IdleGrowth(sim), c.steps) << c.growing << c.calcstats;
    EXPECT_EQ(sim.growthstate.lifespan - before, c.steps) << "growing " << c.growing << ", statistics " << c.calcstats;
  }
}

// The clock from the first call at 5 s, framerate 30 (a frame 0.0333 s):
// forms polled beyond 0.02 s after the last redisplay, a redisplay beyond a
// frame, and the next frame counted from it.
TEST(Idle, RedisplaysAtTheFramerateAndPollsFormsAfterTwentyMilliseconds) {
  double last = -1;
  const int P = IDLE_POLLFORMS, R = IDLE_POLLFORMS | IDLE_REDISPLAY;
  const double now[] = {5, 5.01, 5.021, 5.034, 5.044, 5.06, 5.068};
  const int due[] = {0, 0, P, R, 0, P, R};
  for (int i = 0; i < 7; i++) EXPECT_EQ(IdleDue(30, now[i], &last), due[i]) << "at " << now[i];
  EXPECT_EQ(last, 5.068);
  EXPECT_EQ(IdleDue(2, 5.5, &last), IDLE_POLLFORMS);  // framerate 2: half a second
  EXPECT_EQ(IdleDue(2, 5.569, &last), IDLE_POLLFORMS | IDLE_REDISPLAY);
}

// The growth's copies of drand48 and rand give the library's numbers for any
// seed (the owed rand draws are checked by the index against the scan).
TEST(Random, SameNumbersAsTheLibraryForEverySeed) {
  SIMULATION sim;
  ResetProgram(sim);
  for (long seed : {0L, 1L, -1L, (long)INT_MAX, (long)INT_MIN, 12345L, 0x100000001L}) {
    srand48(seed);
    srand((unsigned)seed);
    GrowthSrand48(sim.random, seed);
    GrowthSrand(sim.random, (unsigned)seed);
    int bad = 0;
    for (int k = 0; k < 100000; k++)
      bad += (drand48() != GrowthDrand48(sim.random)) + (rand() != GrowthRand(sim.random));
    EXPECT_EQ(bad, 0) << "seed " << seed;
  }
}

}  // namespace
