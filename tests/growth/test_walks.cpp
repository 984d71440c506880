// The fast walk: jumps across space the index proves empty, its agreement
// with the exact walk, its life spans and its shares.
#include <limits.h>  // INT_MAX

#include "export/summary.h"
#include "growth/index.h"
#include "growth/walk.h"
#include "test_util.h"

namespace {

using Walks = Fresh;

double Nearest(SIMULATION &sim, XYZ p) {
  double best = 1e300;
  for (int i = 0; i < sim.ncells; i++) best = fmin(best, VectorLength(p, sim.cells[i].p));
  return best;
}

TEST_F(Walks, JumpsKeepInsideTheReleaseSphereAndOutOfReach) {
  const std::string cases[] = {"--bias 1 --rotation 3", "--branch-length 2.5 --rotation -4",
                               "--roots 4 --root-distribution 8 --associate",
                               "--roots 4 --root-distribution 2 --root-range 30"};
  int died = 0;  // life spans that ended inside a jump
  for (auto &c : cases) {
    StartGrowth(sim, c + " --seed 5");
    GROWTHSTATE &g = sim.growthstate;
    int jumps = 0;
    for (long calls = 0; calls < 2000000 && sim.ncells < 600; calls++) {
      JUMP jump;
      if (g.lifespan % GROWTH_LIFESPAN == 0) {
        IterateSystem(sim);
      } else if (Jump(sim, 1 << 20, &jump)) {
        if (jump.died) {
          died++;
          ASSERT_EQ(g.lifespan % GROWTH_LIFESPAN, 0) << c;
          continue;
        }
        jumps++;
        ASSERT_LE(Modulus(jump.to), g.radius + 2 * g.branchlength) << c << ", jump " << jumps;
        ASSERT_GE(jump.radius, WALK_MINJUMP * g.branchlength) << c;
        double span = fmax(VectorLength(jump.to, jump.from), jump.radius);
        ASSERT_GE(Nearest(sim, jump.from), span + g.branchlength) << c << ", jump " << jumps;
      } else {
        IterateExactSteps(sim, 4);
      }
    }
    EXPECT_GE(sim.ncells, 600) << c;
    EXPECT_GT(jumps, 1000) << c;
  }
  EXPECT_GT(died, 0);
}

// The fast walk grows statistically the exact walk's aggregates: over eight
// seeds of 4000 cells the means of the radius, the radius of gyration and
// its dimension agree within four standard errors of their difference,
// taken from the seeds' spread. The drift is ten times the default, so
// that a jump drifting the wrong way shows.
TEST_F(Walks, FastWalkAgreesStatisticallyWithTheExactWalk) {
  double sum[2][3] = {}, square[2][3] = {};
  const int n = 8;
  for (int walk = 0; walk < 2; walk++)
    for (int seed = 1; seed <= n; seed++) {
      std::string err;
      ResetProgram(sim);
      std::string options = "--cells 4000 --bias 1 --no-progress --walk " + std::string(walk ? "fast" : "exact");
      ASSERT_EQ(Batch(sim, options + " --seed " + std::to_string(seed), &err), BATCH_OK) << err;
      const double v[3] = {sim.growthstate.radius, RadiusOfGyration(sim, sim.ncells), GyrationDimension(sim)};
      for (int k = 0; k < 3; k++) {
        sum[walk][k] += v[k];
        square[walk][k] += v[k] * v[k];
      }
    }
  const char *names[3] = {"radius", "radius of gyration", "dimension"};
  for (int k = 0; k < 3; k++) {
    double mean[2], variance[2];
    for (int w = 0; w < 2; w++) {
      mean[w] = sum[w][k] / n;
      variance[w] = (square[w][k] - n * mean[w] * mean[w]) / (n - 1);
    }
    double se = sqrt((variance[0] + variance[1]) / n);
    EXPECT_NEAR(mean[1], mean[0], 4 * se) << names[k] << ": fast against exact";
  }
}

// A fast walk with a constraint surface must still refuse every stick that
// would cross it: one large facet at z = -2 (far from its edges, where no
// gap is) keeps the aggregate above it, in both walks.
TEST_F(Walks, ConstraintSurfaceHoldsTheAggregateInBothWalks) {
  Scratch s;
  std::string stl = WriteFile(s / "floor.stl",
                              "solid f\nouter loop\nvertex -100 -100 -2\nvertex 100 -100 -2\n"
                              "vertex 0 100 -2\nendloop\n");
  for (const char *walk : {"exact", "fast"}) {
    std::string err;
    ResetProgram(sim);
    ASSERT_EQ(Batch(sim, "--stl " + stl + " --cells 400 --no-progress --walk " + walk, &err), BATCH_OK) << err;
    ASSERT_EQ(sim.ncells, 400);
    double low = 0;
    for (int i = 0; i < sim.ncells; i++) low = fmin(low, sim.cells[i].p.z);
    EXPECT_GT(low, -2) << walk << ": a cell stuck through the surface";
  }
}

// Fast runs with no drift must reach their count: pure DLA, no roots.
TEST_F(Walks, FastRunsWithoutDriftGrow) {
  const struct {
    const char *options;
    int cells;
  } runs[] = {{"--bias 0", 20000}, {"--roots 0", 2000}};
  for (auto &r : runs) {
    StartGrowth(sim, std::string(r.options) + " --walk fast --seed 7");
    // The exact walk takes about 1e7 steps for 20000 cells at bias 0.
    for (long steps = 0; steps < 100000000 && sim.ncells < r.cells;) steps += IterateSystemSteps(sim, 1 << 20);
    EXPECT_EQ(sim.ncells, r.cells) << r.options;
  }
}

// The fast walk owes its shares until they are settled; a reset must drop
// them, or the next aggregate's root starts with the old one's weight.
TEST_F(Walks, AResetDropsTheFastWalksUnsettledShares) {
  StartGrowth(sim, "--walk fast --seed 7");
  for (long steps = 0; steps < 10000000 && sim.ncells < 300;) steps += IterateSystemSteps(sim, 1 << 20);
  ASSERT_EQ(sim.ncells, 300);
  ResetProgram(sim);
  SyncSearchIndex(sim);
  EXPECT_EQ(sim.cells[0].weight, 0);
}

// Settling the fast walk's shares mid-growth (as each library Grow does)
// borrows the index's per-cell storage: the index must still find, at every
// cell, a cell within reach.
TEST_F(Walks, TheIndexFindsEveryCellAfterTheFastWalksSharesAreSettled) {
  StartGrowth(sim, "--walk fast --seed 7");
  for (long steps = 0; steps < 10000000 && sim.ncells < 3000;) steps += IterateSystemSteps(sim, 1 << 20);
  ASSERT_EQ(sim.ncells, 3000);
  SettleWeights(sim);
  ASSERT_TRUE(SearchIndexCurrent(sim));
  int missed = 0;
  for (int i = 0; i < sim.ncells; i++) {
    int best = -1, ok = 0;
    int touch = IndexSearch(sim, sim.cells[i].p, 0, 1, 0, &best, &ok);
    if (!touch || best < 0 || VectorLength(sim.cells[best].p, sim.cells[i].p) >= sim.growthstate.branchlength) missed++;
  }
  EXPECT_EQ(missed, 0);
}

// A seed repeats either walk in a program used again, the exact one after a
// fast one too: the jumps draw from numbers of their own, seeded from --seed.
TEST_F(Walks, BatchWalksRepeatForASeed) {
  auto grow = [&](const std::string &walk) {
    std::string err;
    ResetProgram(sim);  // the batch expects a fresh program
    EXPECT_EQ(Batch(sim, "--seed 3 --cells 700 --rotation 1 --walk " + walk, &err), BATCH_OK) << err;
    return AggregateHash(sim);
  };
  uint64_t exact = grow("exact"), fast = grow("fast");
  EXPECT_EQ(grow("fast"), fast);
  EXPECT_EQ(grow("exact"), exact);
  EXPECT_NE(fast, exact) << "--walk fast not taken";
}

// A particle that never sticks counts its steps on past INT_MAX: the count
// must not overflow (UBSan reports it in the sanitizer build) and the
// replacements must still come every 10000 steps in both walks.
TEST_F(Walks, LivesLastTenThousandStepsPastIntMax) {
  const struct {
    int lifespan;
    long first;  // steps to the next multiple of 10000
  } starts[] = {{2147479997, 3}, {2147480000, 0}, {INT_MAX, 6353}, {INT_MAX - 1, 6354}};
  for (int walk : {WALK_EXACT, WALK_FAST})
    for (auto &s : starts) {
      ResetProgram(sim);
      sim.growthwalk = walk;
      sim.growthstate.stickiness = 0;
      IterateSystemSteps(sim, 1);
      sim.growthstate.lifespan = s.lifespan;
      std::vector<long> releases;
      for (long steps = 0; releases.size() < 3;) {
        int before = sim.nseeds;
        long k = IterateSystemSteps(sim, 1000);
        if (sim.nseeds != before) releases.push_back(steps);
        steps += k;
        ASSERT_GE(sim.growthstate.lifespan, 0) << "walk " << walk << ", from " << s.lifespan;
      }
      EXPECT_EQ(releases, (std::vector<long>{s.first, s.first + 10000, s.first + 20000}))
          << "walk " << walk << ", from " << s.lifespan;
    }
}

// A cell beyond the distance fields' first directory is kept in a hash
// table; once enough cells are in, the directory widens over it and must
// take its bricks along, or jumps would cross the cell.
TEST_F(Walks, ClearanceKeepsCellsTheDirectoryWidensOver) {
  AppendCell(sim, V(100, 0, 0), 0, 0);
  for (int x = -56; x <= 56; x += 8)
    for (int y = -56; y <= 56; y += 8)
      for (int z = -56; z <= 56; z += 8) AppendCell(sim, V(x, y, z), 0, 0);
  AppendCell(sim, V(-100, 0, 0), 0, 0);
  SyncSearchIndex(sim);
  for (int i = 0; i < sim.ncells; i++) ASSERT_EQ(IndexClearance(sim, sim.cells[i].p), 0) << "cell " << i;
  srand48(9);
  for (int k = 0; k < 2000; k++) {
    XYZ p = V(100 + 20 * drand48() - 10, 20 * drand48() - 10, 20 * drand48() - 10);
    double room = IndexClearance(sim, p);
    if (room > 0) {
      ASSERT_LE(room + sim.growthstate.branchlength, Nearest(sim, p)) << "point " << k;
    }
  }
  // Far from every cell the coarse levels bound the room; a cell far out
  // widens their tables, which must keep the blocks they held.
  ResetProgram(sim);
  AppendCell(sim, V(300, 0, 0), 0, 0);
  AppendCell(sim, V(-3000, 0, 0), 0, 0);
  AppendCell(sim, V(-9000, 0, 0), 0, 0);  // beyond the largest table: kept apart
  SyncSearchIndex(sim);
  for (int k = 0; k < 4000; k++) {
    // Just beyond the coarse field's cap, where the levels decide.
    XYZ p = V(drand48() - 0.5, drand48() - 0.5, drand48() - 0.5);
    Normalise(&p);
    double r = 49 + 30 * drand48();
    p = V((k % 2 ? 300 : -9000) + r * p.x, r * p.y, r * p.z);
    double room = IndexClearance(sim, p);
    if (room > 0) {
      ASSERT_LE(room + sim.growthstate.branchlength, Nearest(sim, p)) << "far point " << k;
    }
  }
}

}  // namespace
