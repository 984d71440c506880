// The growth's spatial index must give exactly the cells of the plain
// newest-first scan, step by step and in runs of steps.
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
