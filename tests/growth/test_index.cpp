// The growth's spatial index must give exactly the cells of the plain
// newest-first scan, step by step and in runs of steps.
#include <math.h>

#include <vector>

#include "growth/growth.h"
#include "growth/index.h"
#include "test_util.h"

namespace {

using SearchIndex = Fresh;

// The hash of n cells grown with the batch program's options step by step or
// in runs, with maxweight and radius at every stick.
uint64_t Grow(SIMULATION &sim, const char *options, int n, int search, int runs) {
  StartGrowth(sim, options);
  sim.growthsearch = search;
  GROWTHSTATE &g = sim.growthstate;
  uint64_t h = 0;
  for (long k = 0, run = 1, seen = sim.ncells; k < 3000000 && sim.ncells < n; run = run * 7 % 5001 + 1) {
    long took = Steps(sim, runs ? run : 0);
    EXPECT_TRUE(took >= 1 && took <= (runs ? run : 1));
    k += took;
    if (sim.ncells != seen) {
      h = h * 31 + (uint64_t)(g.maxweight * 1e6) * 17 + (uint64_t)(g.radius * 1e9);
      seen = sim.ncells;
    }
  }
  EXPECT_GT(sim.ncells, g.nroots) << options << ": nothing grew";
  return h ^ AggregateHash(sim);
}

TEST_F(SearchIndex, GivesTheScansAggregateForManySettings) {
  struct {
    int n;
    const char *options;
  } cases[] = {{700, "--seed 3"},
               {500, "--seed 4 --branch-length 0.3"},
               {500, "--seed 5 --branch-length 0.7 --bias 1"},
               {400, "--seed 6 --branch-length 2.5"},
               {500, "--seed 7 --roots 5 --root-distribution 8 --root-range 20 --associate"},
               {500, "--seed 8 --roots 4 --root-distribution 2 --root-range 20 --associate --branch-length 0.7"},
               {500, "--seed 9 --bias 0.8 --rotation 3"},
               {350, "--seed 10 --stickiness 20 --branch-length 0.3"},
               {350, "--seed 11 --intersect-range 5"},
               {300, "--seed 12 --sample 21"},
               {350, "--seed 13 --sample 31 --source 8"}};
  for (auto &c : cases) {
    uint64_t scan = Grow(sim, c.options, c.n, SEARCH_SCAN, 0);
    EXPECT_EQ(Grow(sim, c.options, c.n, SEARCH_INDEX, 0), scan) << c.options;
    EXPECT_EQ(Grow(sim, c.options, c.n, SEARCH_INDEX, 1), scan) << c.options << ", in runs";
  }
}

// Roots at p + each offset, and the index rebuilt for them.
void RootsAround(SIMULATION &sim, XYZ p, std::initializer_list<XYZ> offsets) {
  sim.ncells = 0;
  for (const XYZ &o : offsets) AppendCell(sim, V(p.x + o.x, p.y + o.y, p.z + o.z), 0, -1);
  SyncSearchIndex(sim);
}

TEST_F(SearchIndex, KeepsTheEarlyRejectionAndSeesNewCells) {
  sim.growthstate.branchlength = 0.3;  // touching: squared distance below 0.09
  XYZ p = {1, 2, 3}, far = {50, 50, 50};
  XYZ a = {0.2, 0.1, 0.1};    // older: squared distance 0.06, touching, dx 0.2
  XYZ b = {0.1, -0.2, -0.3};  // newer: 0.14, not touching, and 0.14 < a's dx
  int best = -7, ok = 0;
  RootsAround(sim, p, {far, a, b});
  EXPECT_EQ(IndexSearch(sim, p, 0, 3, 0, &best, &ok), 0);  // the scan passes a by
  EXPECT_EQ(ok, 1);
  EXPECT_EQ(IndexSearch(sim, p, 1, 3, 1, &best, &ok), 1);  // association: class 1 holds a alone
  EXPECT_EQ(best, 1);
  EXPECT_EQ(IndexSearch(sim, p, 1, 3, 2, &best, &ok), 0);
  RootsAround(sim, p, {far, a, V(0, 0, -0.9)});  // 0.81: a's dx passes
  EXPECT_EQ(IndexSearch(sim, p, 0, 3, 0, &best, &ok), 1);
  EXPECT_EQ(best, 1);
  // Far away: an empty ball clear of the root; a cell appended next to the particle is found at once.
  ResetProgram(sim);
  SyncSearchIndex(sim);
  EXPECT_EQ(IndexSearch(sim, V(30, 0, 0), 0, 1, 0, &best, &ok), 0);
  ASSERT_EQ(sim.searchindex.ball, 1);
  EXPECT_LE(sqrt(sim.searchindex.safe2), 29);
  unsigned revision = sim.cellsrevision;
  AppendCell(sim, V(29.5, 0.2, 0), 0, 0);
  IndexAppendedCell(sim, revision);
  EXPECT_EQ(IndexSearch(sim, V(30, 0, 0), 0, 1, 0, &best, &ok), 1);
  EXPECT_EQ(best, 1);
  // A cell beyond the index's range hands the search to the scan; a child
  // of it must not look for the stand-in the far cell never got.
  AppendCell(sim, V(1e300, 0, 0), 0, 1);
  SyncSearchIndex(sim);
  revision = sim.cellsrevision;
  AppendCell(sim, V(29, 0, 0), 0, 2);
  IndexAppendedCell(sim, revision);
  IndexSearch(sim, V(30, 0, 0), 0, 1, 0, &best, &ok);
  EXPECT_EQ(ok, 0);
}

// Random branches; queries from touching to beyond every field.
TEST_F(SearchIndex, EmptyBallsKeepOutOfReachOfEveryCell) {
  for (double branchlength : {0.3, 1.0, 2.5}) {
    ResetProgram(sim);
    sim.growthstate.branchlength = branchlength;
    srand48(31);
    XYZ p = {0, 0, 0};
    for (int i = 0; i < 3000; i++) {
      if (i % 300 == 0) p = V(drand48() * 40 - 20, drand48() * 40 - 20, drand48() * 40 - 20);
      p = V(p.x + drand48() - 0.5, p.y + drand48() - 0.5, p.z + drand48() - 0.5);
      AppendCell(sim, p, 0, sim.ncells - 1);
    }
    SyncSearchIndex(sim);
    double reach = fmax(branchlength, 1);
    int balls = 0, wide = 0;
    for (int k = 0; k < 4000; k++) {
      XYZ c = sim.cells[lrand48() % sim.ncells].p, d = {drand48() - 0.5, drand48() - 0.5, drand48() - 0.5};
      Normalise(&d);
      double away = 0.2 + (k % 8) * (k % 8) * 2.0;  // up to 98
      XYZ q = V(c.x + away * d.x, c.y + away * d.y, c.z + away * d.z);
      sim.searchindex.ball = 0;
      int best = -1, ok = 0;
      if (IndexSearch(sim, q, 0, 1, 0, &best, &ok) || !ok || !sim.searchindex.ball) continue;
      balls++;
      double safe = sqrt(sim.searchindex.safe2), nearest = 1e300;
      wide += safe > 10;
      for (int i = 0; i < sim.ncells; i++) nearest = fmin(nearest, VectorLength(q, sim.cells[i].p));
      ASSERT_GE(nearest, reach + safe) << "branch length " << branchlength << ", query " << k;
    }
    EXPECT_GT(balls, 2000) << branchlength;
    EXPECT_GT(wide, 200) << branchlength;
  }
}

}  // namespace
