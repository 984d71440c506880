// The walk: owed rand draws taken at once, jumps across space the index
// proves empty, and the batch program's choice between the two walks.
#include <functional>

#include "batch/batch.h"
#include "growth/growth.h"
#include "growth/index.h"
#include "growth/random.h"
#include "growth/walk.h"
#include "surface/samples.h"
#include "test_util.h"

namespace {

using Walks = Fresh;

// Below and above the one-by-one limit, and far beyond it.
TEST_F(Walks, OwedRandDrawsJumpAheadExactly) {
  for (unsigned long n : {1ul, 30ul, 1999ul, 2000ul, 2001ul, 123457ul, 40000003ul}) {
    srand(4711);
    for (unsigned long k = 0; k < n; k++) rand();
    GrowthSrand(4711);
    SkipGrowthRand(n);
    for (int k = 0; k < 40; k++) ASSERT_EQ(GrowthRand(), rand()) << n << " owed, draw " << k;
  }
  // Seeding drops what is owed.
  GrowthSrand(99);
  SkipGrowthRand(5000);
  GrowthSrand(99);
  srand(99);
  EXPECT_EQ(GrowthRand(), rand());
}

// Grows to n cells one step at a time (every rand drawn), or in runs (rand draws owed).
void GrowTo(int n, int runs) {
  for (long k = 0; k < 3000000 && ncells < n;) k += Steps(runs ? k % 700 + 1 : 0);
}

// Owed draws come due for roots added without a restart (drift picks random roots) and
// for a surface source (random facets); a reseed drops them.
TEST_F(Walks, OwedRandDrawsGiveThePlainScansAggregate) {
  auto grow = [](int runs) {
    growthsearch = runs ? SEARCH_INDEX : SEARCH_SCAN;
    ResetProgram();
    growthstate.seed = 77;
    InitialiseGrowth();
    GrowTo(300, runs);
    growthstate.nroots = 3;  // cells 1 and 2 become roots' places
    GrowTo(450, runs);
    growthstate.nroots = 1;
    growthstate.sourcetype = SOURCE_STL;
    MakeSampleSurface(SAMPLE_SPHERE);
    GrowTo(600, runs);
    InitialiseGrowth();  // reseeds mid-aggregate
    growthstate.sourcetype = SOURCE_SPHERE;
    GrowTo(700, runs);
    growthstate.nroots = 2;
    growthstate.bias = 0.7;
    GrowTo(800, runs);
    growthsearch = SEARCH_INDEX;
    EXPECT_EQ(ncells, 800);
    return AggregateHash();
  };
  EXPECT_EQ(grow(1), grow(0));
}

double Nearest(XYZ p) {
  double best = 1e300;
  for (int i = 0; i < ncells; i++) {
    double d = VectorLength(p, cells[i].p);
    if (d < best) best = d;
  }
  return best;
}

void FourRoots(int distribution, double range, int associate) {
  growthstate.nroots = 4;
  growthstate.rootdistribution = distribution;
  growthstate.rootrange = range;
  growthstate.associate = associate;
  InitialiseGrowth();
  ResetSeeds();
}

TEST_F(Walks, JumpsKeepInsideTheReleaseSphereAndOutOfReach) {
  struct {
    const char *what;
    std::function<void()> setup;
  } cases[] = {
      {"defaults", [] {}},
      {"drift and swirl", [] { growthstate.bias = 1; growthstate.rotation = 3; }},
      {"branch length 2.5, swirl against", [] { growthstate.branchlength = 2.5; growthstate.rotation = -4; }},
      {"four roots, association", [] { FourRoots(ROOT_RINGZ, 10, 1); }},
      {"four random roots", [] { FourRoots(ROOT_SPHERICAL, 30, 0); }},
  };
  int died = 0;  // life spans that ended inside a jump
  for (auto &c : cases) {
    ResetProgram();
    growthstate.seed = 5;
    c.setup();
    InitialiseGrowth();
    int jumps = 0;
    for (long calls = 0; calls < 2000000 && ncells < 600; calls++) {
      JUMP jump;
      if (growthstate.lifespan % GROWTH_LIFESPAN == 0) {
        IterateSystem();
      } else if (Jump(1 << 20, &jump)) {
        if (jump.died) {
          died++;
          ASSERT_EQ(growthstate.lifespan % GROWTH_LIFESPAN, 0) << c.what;
          continue;
        }
        jumps++;
        double limit = growthstate.radius + 2 * growthstate.branchlength;
        ASSERT_LE(Modulus(jump.to), limit) << c.what << ", jump " << jumps;
        double away = VectorLength(jump.to, jump.from);
        double span = away > jump.radius ? away : jump.radius;
        ASSERT_GE(jump.radius, WALK_MINJUMP * growthstate.branchlength) << c.what;
        ASSERT_GE(Nearest(jump.from), span + growthstate.branchlength) << c.what << ", jump " << jumps;
      } else {
        IterateExactSteps(4);
      }
    }
    EXPECT_GE(ncells, 600) << c.what;
    EXPECT_GT(jumps, 1000) << c.what;
  }
  EXPECT_GT(died, 0);
}

TEST_F(Walks, BatchRefusesWhatTheFastWalkCannotDo) {
  std::string err;
  EXPECT_EQ(Batch("--walk quick", &err), BATCH_USAGE);
  EXPECT_EQ(err, "dla3d-batch: --walk: \"quick\" is not allowed (allowed: exact or fast)\n");
  EXPECT_EQ(Batch("--walk fast --search scan", &err), BATCH_USAGE);
  EXPECT_EQ(err, "dla3d-batch: --walk fast jumps where the index proves space free: it needs --search index\n");
  EXPECT_EQ(Batch("--walk", &err), BATCH_USAGE);
}

// The jumps draw from their own numbers, seeded from --seed.
TEST_F(Walks, FastRunsRepeatForASeed) {
  std::string err;
  auto grow = [&](const std::string &walk, const std::string &seed) {
    ResetProgram();  // the batch expects a fresh program
    EXPECT_EQ(Batch("--walk " + walk + " --seed " + seed + " --cells 700 --rotation 1", &err), BATCH_OK) << err;
    EXPECT_EQ(ncells, 700);
    return AggregateHash();
  };
  uint64_t exact = grow("exact", "3"), fast = grow("fast", "3");
  EXPECT_EQ(grow("fast", "3"), fast);  // same seed
  EXPECT_EQ(grow("exact", "3"), exact);  // the exact walk after a fast one
  EXPECT_NE(grow("fast", "4"), fast);
  EXPECT_NE(fast, exact);
}

// A particle that never sticks counts its steps on past INT_MAX: the
// replacements must still come every 10000 steps in both walks.
TEST_F(Walks, LivesLastTenThousandStepsPastIntMax) {
  for (int walk : {WALK_EXACT, WALK_FAST}) {
    ResetProgram();
    growthwalk = walk;
    growthstate.stickiness = 0;
    IterateSystemSteps(1);
    growthstate.lifespan = 2147479997;  // 3 steps before the last release below INT_MAX
    std::vector<long> releases;
    for (long steps = 0; releases.size() < 3;) {
      int before = nseeds;
      long k = IterateSystemSteps(1000);
      if (nseeds != before) releases.push_back(steps);
      steps += k;
    }
    EXPECT_EQ(releases, (std::vector<long>{3, 10003, 20003})) << "walk " << walk;
    EXPECT_GE(growthstate.lifespan, 0);
  }
}

// A cell beyond the distance fields' first directory is kept in a hash
// table; once enough cells are in, the directory widens over it and must
// take its bricks along, or jumps would cross the cell.
TEST_F(Walks, ClearanceKeepsCellsTheDirectoryWidensOver) {
  AppendCell(V(100, 0, 0), 0, 0);
  for (int x = -56; x <= 56; x += 8)
    for (int y = -56; y <= 56; y += 8)
      for (int z = -56; z <= 56; z += 8) AppendCell(V(x, y, z), 0, 0);
  AppendCell(V(-100, 0, 0), 0, 0);
  SyncSearchIndex();
  for (int i = 0; i < ncells; i++) ASSERT_EQ(IndexClearance(cells[i].p), 0) << "cell " << i;
  srand48(9);
  for (int k = 0; k < 2000; k++) {
    XYZ p = V(100 + 20 * drand48() - 10, 20 * drand48() - 10, 20 * drand48() - 10);
    double room = IndexClearance(p);
    if (room > 0) ASSERT_LE(room + growthstate.branchlength, Nearest(p)) << "point " << k;
  }
}

}  // namespace
