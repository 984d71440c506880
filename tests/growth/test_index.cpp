// The growth's spatial index must give exactly the cells of the plain
// newest-first scan, step by step and in runs of steps, whatever changes
// between them.
#include "growth/growth.h"
#include "growth/index.h"
#include "surface/samples.h"
#include "test_util.h"

namespace {

using SearchIndex = Fresh;

// Grows on to n cells with the search given, step by step or in runs: the
// hash of the cells, with maxweight and radius at every stick.
uint64_t Grow(SIMULATION &sim, int n, int search, int runs) {
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
  EXPECT_GT(sim.ncells, g.nroots) << "nothing grew";
  return h ^ AggregateHash(sim);
}

// Changes made between steps, as the settings form and the menus make them:
// the index must follow a new branch length, restarts and new roots; owed
// draws come due for roots added without a restart (drift picks random
// roots) and for a surface source (random facets), and a reseed drops them.
uint64_t GrowWithChanges(SIMULATION &sim, int search, int runs) {
  StartGrowth(sim, "--seed 77");
  GROWTHSTATE &g = sim.growthstate;
  uint64_t h = Grow(sim, 250, search, runs);
  g.branchlength = 0.6;  // mid-run, no restart
  h = h * 31 + Grow(sim, 350, search, runs);
  g.branchlength = 1.7;
  h = h * 31 + Grow(sim, 420, search, runs);
  g.nroots = 5;  // a restart on cells 1 to 4 as roots, weights kept
  InitialiseGrowth(sim);
  h = h * 31 + Grow(sim, 520, search, runs);
  g.nroots = 3;  // without a restart
  h = h * 31 + Grow(sim, 600, search, runs);
  g.nroots = 1;
  g.sourcetype = SOURCE_STL;
  MakeSampleSurface(sim, SAMPLE_SPHERE);
  h = h * 31 + Grow(sim, 700, search, runs);
  InitialiseGrowth(sim);  // reseeds mid-aggregate
  g.sourcetype = SOURCE_SPHERE;
  return h * 31 + Grow(sim, 800, search, runs);
}

TEST_F(SearchIndex, GivesTheScansAggregateForManySettingsAndChangesBetweenSteps) {
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
    uint64_t scan[3];
    for (int k = 0; k < 3; k++) {  // the scan step by step, the index step by step, the index in runs
      StartGrowth(sim, c.options);
      scan[k] = Grow(sim, c.n, k ? SEARCH_INDEX : SEARCH_SCAN, k == 2);
    }
    EXPECT_EQ(scan[1], scan[0]) << c.options;
    EXPECT_EQ(scan[2], scan[0]) << c.options << ", in runs";
  }
  uint64_t scan = GrowWithChanges(sim, SEARCH_SCAN, 0);
  EXPECT_EQ(GrowWithChanges(sim, SEARCH_INDEX, 0), scan);
  EXPECT_EQ(GrowWithChanges(sim, SEARCH_INDEX, 1), scan) << "in runs";
}

// A ball proven empty around a particle far from the root must be forgotten
// when a cell is appended inside it; a cell beyond the index's range hands
// the search to the scan, and a child of it must not look for the stand-in
// the far cell never got (the sanitizer build sees that read).
TEST_F(SearchIndex, ForgetsItsEmptyBallForAnAppendedCellAndHandsFarCellsToTheScan) {
  int best = -7, ok = 0;
  SyncSearchIndex(sim);
  EXPECT_EQ(IndexSearch(sim, V(30, 0, 0), 0, 1, 0, &best, &ok), 0);
  ASSERT_EQ(sim.searchindex.ball, 1);
  unsigned revision = sim.cellsrevision;
  AppendCell(sim, V(29.5, 0.2, 0), 0, 0);
  IndexAppendedCell(sim, revision);
  EXPECT_EQ(IndexSearch(sim, V(30, 0, 0), 0, 1, 0, &best, &ok), 1);
  EXPECT_EQ(best, 1);
  AppendCell(sim, V(1e300, 0, 0), 0, 1);
  SyncSearchIndex(sim);
  revision = sim.cellsrevision;
  AppendCell(sim, V(29, 0, 0), 0, 2);
  IndexAppendedCell(sim, revision);
  IndexSearch(sim, V(30, 0, 0), 0, 1, 0, &best, &ok);
  EXPECT_EQ(ok, 0);
}

}  // namespace
