#include <gtest/gtest.h>
#include <math.h>

#include <string>
#include <vector>

#include "growth/random.h"
#include "growth_test_util.h"
#include "surface/stl.h"

namespace {

// The unit random step the generator seeded with seed will give.
XYZ ReplayStep(unsigned seed) {
  GrowthSrand48(seed);
  XYZ u = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
  double l = sqrt(u.x * u.x + u.y * u.y + u.z * u.z);
  u.x /= l;
  u.y /= l;
  u.z /= l;
  return u;
}

// One step of a particle placed so that its random step ends at target.
void LandAt(XYZ target, unsigned seed = 1) {
  double bl = growthstate.branchlength;
  XYZ u = ReplayStep(seed);
  growthstate.particle.x = target.x - bl * u.x;
  growthstate.particle.y = target.y - bl * u.y;
  growthstate.particle.z = target.z - bl * u.z;
  growthstate.lifespan = 1;  // no release
  GrowthSrand48(seed);
  GrowthSrand(seed);
  IterateSystem();
}

void UseRoots(const char *points) {
  std::string path = WriteTempFile("steproots.txt", points);
  FILEMESSAGE msg = {};
  ASSERT_EQ(ReadRootsFile(path.c_str(), &msg), 1);
  remove(path.c_str());
}

void Quiet(void) {
  ResetGrowthForTest();
  growthstate.bias = 0;
  growthstate.rootdistribution = 2;  // the seed file keeps its own name
}

TEST(Step, BiasZeroDrawsNoRandAndRotationZeroTurnsNothing) {
  Quiet();
  GrowthSrand(99);
  int firstrand = GrowthRand();
  XYZ start = {5, 1, -2};
  XYZ u = ReplayStep(7);
  growthstate.particle = start;
  growthstate.lifespan = 3;
  GrowthSrand48(7);
  GrowthSrand(99);
  IterateSystem();
  EXPECT_EQ(GrowthRand(), firstrand);
  // Moved by exactly one step, no turn, and not released again.
  EXPECT_DOUBLE_EQ(growthstate.particle.x, 5 + u.x);
  EXPECT_DOUBLE_EQ(growthstate.particle.y, 1 + u.y);
  EXPECT_DOUBLE_EQ(growthstate.particle.z, -2 + u.z);
  EXPECT_EQ(growthstate.lifespan, 4);
  EXPECT_EQ(nseeds, 0);
  // Four uniform numbers per step: three for the step, one for stickiness.
  GrowthSrand48(7);
  for (int k = 0; k < 4; k++) GrowthDrand48();
  double fifth = GrowthDrand48();
  GrowthSrand48(7);
  growthstate.particle = start;
  IterateSystem();
  EXPECT_EQ(GrowthDrand48(), fifth);
}

TEST(Step, DriftDrawsThreeRootsAndPushesAway) {
  Quiet();
  UseRoots("0 0 0\n2 -1 0\n0 3 1\n");
  growthstate.bias = 1;  // b = 0.01
  XYZ start = {5, 1, -2};
  XYZ u = ReplayStep(4);
  GrowthSrand(31);
  int kx = GrowthRand() % 3, ky = GrowthRand() % 3, kz = GrowthRand() % 3;
  int fourth = GrowthRand();
  const XYZ r[3] = {{0, 0, 0}, {2, -1, 0}, {0, 3, 1}};
  XYZ p = {start.x + u.x, start.y + u.y, start.z + u.z};
  XYZ v = {r[kx].x - p.x, r[ky].y - p.y, r[kz].z - p.z};
  double l = sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  growthstate.particle = start;
  growthstate.lifespan = 1;
  GrowthSrand48(4);
  GrowthSrand(31);
  IterateSystem();
  EXPECT_EQ(GrowthRand(), fourth);
  EXPECT_DOUBLE_EQ(growthstate.particle.x, p.x - 0.01 * v.x / l);
  EXPECT_DOUBLE_EQ(growthstate.particle.y, p.y - 0.01 * v.y / l);
  EXPECT_DOUBLE_EQ(growthstate.particle.z, p.z - 0.01 * v.z / l);
}

TEST(Step, SwirlTurnsAboutZ) {
  Quiet();
  growthstate.rotation = 3;
  XYZ start = {5, 1, -2};
  XYZ u = ReplayStep(8);
  XYZ p = {start.x + u.x, start.y + u.y, start.z + u.z};
  double a = 3 * 0.0174532925;
  growthstate.particle = start;
  growthstate.lifespan = 1;
  GrowthSrand48(8);
  IterateSystem();
  EXPECT_NEAR(growthstate.particle.x, p.x * cos(a) - p.y * sin(a), 1e-12);
  EXPECT_NEAR(growthstate.particle.y, p.x * sin(a) + p.y * cos(a), 1e-12);
  EXPECT_NEAR(growthstate.particle.z, p.z, 1e-12);
}

TEST(Step, StickinessHundredAlwaysSticksOneRarely) {
  Quiet();
  for (unsigned seed = 1; seed <= 30; seed++) {
    LandAt({0.5, 0, 0}, seed);
    ASSERT_EQ(ncells, (int)seed + 1);
    EXPECT_EQ(cells[seed].parent, (int)seed - 1);  // the newest cell at the same spot
    EXPECT_EQ(growthstate.lifespan, 0);
  }
  // Stickiness 1: sticks only when the fourth draw is at most 0.01.
  Quiet();
  growthstate.stickiness = 1;
  int stuck = 0, refused = 0;
  for (unsigned seed = 1; seed <= 3000 && (stuck == 0 || refused == 0); seed++) {
    GrowthSrand48(seed);
    for (int k = 0; k < 3; k++) GrowthDrand48();
    double r = GrowthDrand48();
    int before = ncells;
    LandAt({0.5, 0, 0}, seed);
    if (r > 0.01) {
      EXPECT_EQ(ncells, before);
      // Not put back: the particle stays where the step took it.
      EXPECT_NEAR(growthstate.particle.x, 0.5, 1e-12);
      refused++;
    } else {
      EXPECT_EQ(ncells, before + 1);
      stuck++;
    }
  }
  EXPECT_GT(stuck, 0);
  EXPECT_GT(refused, 0);
}

TEST(Step, SearchIsNewestFirstAndStopsWithinReach) {
  Quiet();
  UseRoots("0 0 0\n0.8 0 0\n");
  LandAt({0.1, 0, 0});
  ASSERT_EQ(ncells, 3);
  EXPECT_EQ(cells[2].parent, 1);  // cell 0 is closer but older
}

TEST(Step, EarlyRejectionComparesDifferencesWithSquaredDistance) {
  // Branch length 0.5: cell 1 at squared distance 0.36 sets D; cell 0 at
  // squared distance 0.24 is within reach (0.25) but its x difference 0.4
  // exceeds D, so it is skipped and nothing sticks.
  Quiet();
  growthstate.branchlength = 0.5;
  UseRoots("0.4 0.2 0.2\n0.6 0 0\n");
  LandAt({0, 0, 0});
  EXPECT_EQ(ncells, 2);
  // With the difference negative the same distance is reached.
  Quiet();
  growthstate.branchlength = 0.5;
  UseRoots("-0.4 0.2 0.2\n0.6 0 0\n");
  LandAt({0, 0, 0});
  ASSERT_EQ(ncells, 3);
  EXPECT_EQ(cells[2].parent, 0);
}

TEST(Step, WeightsFavourTheTreeOfRootZero) {
  Quiet();
  UseRoots("0 0 0\n0 8 0\n0 -8 0\n8 0 0\n");
  LandAt({0.5, 0, 0});  // cell 4 on root 0: d = 2
  LandAt({8.5, 0, 0});  // cell 5 on root 3: d = 2
  ASSERT_EQ(ncells, 6);
  EXPECT_EQ(cells[4].parent, 0);
  EXPECT_EQ(cells[5].parent, 3);
  EXPECT_EQ(cells[0].weight, 0.5);
  EXPECT_EQ(cells[3].weight, 0.5);
  LandAt({1.2, 0, 0});  // cell 6 on a child of root 0: d = 2
  LandAt({9.2, 0, 0});  // cell 7 on a child of root 3: d = 3
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

TEST(Step, AssociationSearchesOneIndexClass) {
  Quiet();
  UseRoots("0 0 0\n6 0 0\n0 6 0\n");
  LandAt({0, 0, 0.5});
  LandAt({0, 0, 1.2});
  LandAt({0, 0, 1.9});
  LandAt({0, 0, 2.6});
  ASSERT_EQ(ncells, 7);
  EXPECT_EQ(cells[6].parent, 5);
  growthstate.associate = 1;
  // Class 7 mod 3 = 1: cells 1 and 4 only. Next to cell 3, nothing sticks.
  LandAt({0, 0, 0.05});
  EXPECT_EQ(ncells, 7);
  LandAt({0, 6.5, 0});  // root 2: wrong class
  EXPECT_EQ(ncells, 7);
  LandAt({0, 0, 0.6});  // cell 3 is nearer, cell 4 is in the class
  ASSERT_EQ(ncells, 8);
  EXPECT_EQ(cells[7].parent, 4);
  // ncells 8: class 2, so root 2 now takes it.
  LandAt({0, 6.5, 0});
  ASSERT_EQ(ncells, 9);
  EXPECT_EQ(cells[8].parent, 2);
}

TEST(Step, AssociatedDriftAimsAtTheRootOfTheClassWithoutRand) {
  Quiet();
  UseRoots("0 0 0\n6 0 0\n0 6 0\n");
  LandAt({0, 0, 0.5});
  LandAt({0, 0, 1.2});
  LandAt({0, 0, 1.9});
  LandAt({0, 0, 2.6});
  ASSERT_EQ(ncells, 7);
  growthstate.associate = 1;
  growthstate.bias = 1;
  XYZ start = {3, -4, 1};
  XYZ u = ReplayStep(12);
  XYZ p = {start.x + u.x, start.y + u.y, start.z + u.z};
  XYZ v = {6 - p.x, -p.y, -p.z};  // towards root 1
  double l = sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
  GrowthSrand(5);
  int firstrand = GrowthRand();
  growthstate.particle = start;
  growthstate.lifespan = 1;
  GrowthSrand48(12);
  GrowthSrand(5);
  IterateSystem();
  EXPECT_EQ(GrowthRand(), firstrand);
  EXPECT_DOUBLE_EQ(growthstate.particle.x, p.x - 0.01 * v.x / l);
  EXPECT_DOUBLE_EQ(growthstate.particle.y, p.y - 0.01 * v.y / l);
  EXPECT_DOUBLE_EQ(growthstate.particle.z, p.z - 0.01 * v.z / l);
}

TEST(Step, NoRootsWithBiasAndAssociationDoesNotDivideByZero) {
  Quiet();
  growthstate.nroots = 0;
  growthstate.bias = 1;
  growthstate.associate = 1;
  InitialiseGrowth();
  ResetSeeds();  // code 2 with no roots: an empty aggregate
  ASSERT_EQ(ncells, 0);
  for (int i = 0; i < 500; i++) IterateSystem();
  EXPECT_EQ(ncells, 0);
}

// Debug output of one landing, and whether it stuck.
std::string LandDebug(XYZ target, int *stuck) {
  int before = ncells;
  XYZ u = ReplayStep(1);
  XYZ q = {target.x - growthstate.branchlength * u.x, target.y - growthstate.branchlength * u.y,
           target.z - growthstate.branchlength * u.z};
  options.debug = 1;
  testing::internal::CaptureStderr();
  LandAt(target);
  std::string err = testing::internal::GetCapturedStderr();
  options.debug = 0;
  *stuck = ncells == before + 1;
  if (!*stuck) {
    // A veto puts the particle back where it was before the step.
    EXPECT_EQ(growthstate.particle.x, q.x);
    EXPECT_EQ(growthstate.particle.y, q.y);
    EXPECT_EQ(growthstate.particle.z, q.z);
  }
  return err;
}

TEST(Veto, SelfIntersectionUsesTheInfiniteLines) {
  Quiet();
  UseRoots("0 0 0\n2 0 0\n");
  LandAt({2, 0, 0.9});  // cell 2 on root 1: a segment along z at x = 2
  LandAt({0, 0, 0.9});  // cell 3 on root 0
  ASSERT_EQ(ncells, 4);
  int stuck;
  growthstate.intersectrange = 10;
  // The line from (-0.5, 0, 0.9) through cell 3 meets cell 2's line at
  // (2, 0, 0.9), beyond the end of the new branch.
  EXPECT_EQ(LandDebug({-0.5, 0, 0.9}, &stuck), "*** Self intersection\n");
  EXPECT_EQ(stuck, 0);
  // Aimed away, the lines stay 2 apart.
  EXPECT_EQ(LandDebug({-0.5, 0.5, 0.9}, &stuck), "");
  EXPECT_EQ(stuck, 1);
  // Range 0: the test is off.
  growthstate.intersectrange = 0;
  EXPECT_EQ(LandDebug({-0.5, 0, 0.85}, &stuck), "");
  EXPECT_EQ(stuck, 1);
}

TEST(Veto, CuttingTheSurface) {
  Quiet();
  AppendFacet({0.3, -1, -1}, {0.3, 1, -1}, {0.3, 0, 1});
  UpdateSTL();
  int stuck;
  EXPECT_EQ(LandDebug({0.6, 0, 0}, &stuck), "*** Cuts constraint surface\n");
  EXPECT_EQ(stuck, 0);
  // On the root's side of the sheet.
  EXPECT_EQ(LandDebug({-0.6, 0, 0}, &stuck), "");
  EXPECT_EQ(stuck, 1);
}

TEST(Veto, GapPokeThroughDependsOnTheFacetsSide) {
  Quiet();
  // Parallel to the branch (never cut), an edge 0.2 above the particle; the
  // normal points to -z, so the particle is on its side.
  AppendFacet({0.5, -1, 0.2}, {0.5, 1, 0.2}, {2, 0, 0.2});
  UpdateSTL();
  int stuck;
  EXPECT_EQ(LandDebug({0.5, 0, 0}, &stuck), "*** Gap poke through\n");
  EXPECT_EQ(stuck, 0);
  // The same facet facing +z lets it through.
  nstltri = 0;
  AppendFacet({0.5, -1, 0.2}, {2, 0, 0.2}, {0.5, 1, 0.2});
  UpdateSTL();
  EXPECT_EQ(LandDebug({0.5, 0, 0}, &stuck), "");
  EXPECT_EQ(stuck, 1);
  nstltri = 0;
  UpdateSTL();
}

TEST(Step, LifeSpanIsTenThousandSteps) {
  Quiet();
  growthstate.rootdistribution = 10;  // no cells: nothing ever sticks
  InitialiseGrowth();
  ResetSeeds();
  ASSERT_EQ(ncells, 0);
  for (int i = 0; i < 10000; i++) IterateSystem();
  EXPECT_EQ(nseeds, 1);
  EXPECT_EQ(growthstate.lifespan, 10000);
  IterateSystem();
  EXPECT_EQ(nseeds, 2);
  EXPECT_EQ(growthstate.lifespan, 10001);
  for (int i = 0; i < 10000; i++) IterateSystem();
  EXPECT_EQ(nseeds, 3);
  EXPECT_NEAR(Modulus(seeds[2]), 12, 1e-12);
}

TEST(Step, OutwardFirstStepStaysAtTheReleasePoint) {
  Quiet();
  int outward = 0, inward = 0;
  for (unsigned seed = 1; seed <= 40; seed++) {
    GrowthSrand48(seed);
    XYZ d = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
    XYZ u = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
    double l = sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
    XYZ release = {d.x / l * 12, d.y / l * 12, d.z / l * 12};
    growthstate.lifespan = 0;
    GrowthSrand48(seed);
    IterateSystem();
    EXPECT_EQ(growthstate.lifespan, 1);
    EXPECT_DOUBLE_EQ(seeds[(nseeds - 1) % NSEEDS].x, release.x);
    if (DotProduct(d, u) > 0) {
      // Beyond radius + 2 branch lengths: refused.
      EXPECT_EQ(growthstate.particle.x, seeds[(nseeds - 1) % NSEEDS].x);
      EXPECT_EQ(growthstate.particle.y, seeds[(nseeds - 1) % NSEEDS].y);
      outward++;
    } else {
      EXPECT_NE(growthstate.particle.x, seeds[(nseeds - 1) % NSEEDS].x);
      inward++;
    }
  }
  EXPECT_GT(outward, 0);
  EXPECT_GT(inward, 0);
}

TEST(Step, RadiusFollowsTheFarthestCell) {
  Quiet();
  UseRoots("0 0 0\n11.2 0 0\n");
  EXPECT_DOUBLE_EQ(growthstate.radius, 11.2);
  LandAt({12, 0, 0});
  ASSERT_EQ(ncells, 3);
  EXPECT_NEAR(growthstate.radius, 12, 1e-12);
  growthstate.lifespan = 0;
  IterateSystem();
  EXPECT_NEAR(Modulus(seeds[(nseeds - 1) % NSEEDS]), growthstate.radius + 2, 1e-12);
}

// A plain model of the default run (one root at the origin, bias 0.1, no
// rotation, stickiness 100, no surface), written from the rules rather
// than from the engine: it replays every draw to the first few sticks.
struct Model {
  std::vector<XYZ> p;
  std::vector<int> parent;
};

Model ReplayDefaultRun(int cellsWanted) {
  Model m;
  m.p.push_back({0, 0, 0});
  m.parent.push_back(-1);
  GrowthSrand48(12345);
  GrowthSrand(12345);
  double radius = 10;
  XYZ particle = {0, 0, 0};
  int life = 0;
  while ((int)m.p.size() < cellsWanted) {
    if (life % 10000 == 0) {
      XYZ d = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
      double l = sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
      particle = {d.x / l * (radius + 2), d.y / l * (radius + 2), d.z / l * (radius + 2)};
    }
    XYZ q = particle;
    life++;
    XYZ u = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
    double l = sqrt(u.x * u.x + u.y * u.y + u.z * u.z);
    particle = {particle.x + u.x / l, particle.y + u.y / l, particle.z + u.z / l};
    if (sqrt(particle.x * particle.x + particle.y * particle.y + particle.z * particle.z) > radius + 2) {
      particle = q;
      continue;
    }
    GrowthRand(), GrowthRand(), GrowthRand();  // one root: every index is 0
    XYZ v = {-particle.x, -particle.y, -particle.z};
    double lv = sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    double b = 0.1 * 0.01 * 1.0;  // bias percent of the branch length
    v = {v.x / lv, v.y / lv, v.z / lv};
    particle = {particle.x - b * v.x, particle.y - b * v.y, particle.z - b * v.z};
    int best = -1;
      for (int i = (int)m.p.size() - 1; i >= 0; i--) {
      double dx = m.p[i].x - particle.x, dy = m.p[i].y - particle.y, dz = m.p[i].z - particle.z;
      double d2 = dx * dx + dy * dy + dz * dz;
      if (d2 < 1) {
        best = i;  // bl = 1: the first cell within reach (squared test > D never fires)
        break;
      }
    }
    GrowthDrand48();  // stickiness 100: always sticks
    if (best < 0) continue;
    m.p.push_back(particle);
    m.parent.push_back(best);
    double r = sqrt(particle.x * particle.x + particle.y * particle.y + particle.z * particle.z);
    if (r > radius) radius = r;
    life = 0;
  }
  return m;
}

TEST(Growth, FixedSeedMatchesAnIndependentReplay) {
  Model m = ReplayDefaultRun(40);
  ResetGrowthForTest();  // after the replay: it seeds the generators
  while (ncells < 40) IterateSystem();
  for (int i = 0; i < 40; i++) {
    SCOPED_TRACE(i);
    EXPECT_DOUBLE_EQ(cells[i].p.x, m.p[i].x);
    EXPECT_DOUBLE_EQ(cells[i].p.y, m.p[i].y);
    EXPECT_DOUBLE_EQ(cells[i].p.z, m.p[i].z);
    EXPECT_EQ(cells[i].parent, m.parent[i]);
  }
}

TEST(Growth, SameSeedSameCellsOtherSeedOtherCells) {
  ResetGrowthForTest();
  growthstate.rotation = 2;
  growthstate.bias = 0.5;
  while (ncells < 300) IterateSystem();
  std::vector<CELL> first(cells.begin(), cells.begin() + 300);
  double maxweight = growthstate.maxweight, radius = growthstate.radius;

  InitialiseGrowth();
  ResetSeeds();
  while (ncells < 300) IterateSystem();
  for (int i = 0; i < 300; i++) {
    ASSERT_EQ(cells[i].p.x, first[i].p.x) << i;
    ASSERT_EQ(cells[i].p.y, first[i].p.y) << i;
    ASSERT_EQ(cells[i].p.z, first[i].p.z) << i;
    ASSERT_EQ(cells[i].parent, first[i].parent) << i;
    ASSERT_EQ(cells[i].weight, first[i].weight) << i;
  }
  EXPECT_EQ(growthstate.maxweight, maxweight);
  EXPECT_EQ(growthstate.radius, radius);

  growthstate.seed = 54321;
  InitialiseGrowth();
  ResetSeeds();
  while (ncells < 300) IterateSystem();
  EXPECT_NE(cells[299].p.x, first[299].p.x);
}

}  // namespace
