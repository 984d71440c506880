// Growth speed: steps per second on aggregates of several sizes, and cells
// per second for a whole run from one root; a statistics run by size.
#include <benchmark/benchmark.h>
#include <math.h>

#include <random>

#include "app/simulation.h"
#include "export/statistics.h"
#include "growth/growth.h"
#include "surface/stl.h"

static void FreshRun(SIMULATION &sim) {
  SetOptionDefaults(sim);
  InitialiseGrowth(sim);
  SetGrowthDefaults(sim);
  sim.nstltri = 0;
  UpdateSTL(sim);
  InitialiseGrowth(sim);
  ResetSeeds(sim);
}

// A branching tree grown outward by random unit steps from random cells:
// growing a real aggregate of 100,000 cells with the plain scan takes hours.
// Its own generator, so the growth generators are left alone.
static void SyntheticAggregate(SIMULATION &sim, int n) {
  FreshRun(sim);
  std::mt19937 gen(7);
  std::uniform_real_distribution<double> uni(-1, 1);
  while (sim.ncells < n) {
    int from = std::uniform_int_distribution<int>(0, sim.ncells - 1)(gen);
    XYZ p = sim.cells[from].p;
    for (int k = 0; k < 10 && sim.ncells < n; k++) {  // a short branch
      XYZ out = p;
      Normalise(&out);
      XYZ d = {0.8 * out.x + uni(gen), 0.8 * out.y + uni(gen), 0.8 * out.z + uni(gen)};
      Normalise(&d);
      XYZ q = {p.x + d.x, p.y + d.y, p.z + d.z};
      AppendCell(sim, q, 0, k == 0 ? from : sim.ncells - 1);
      p = q;
    }
  }
  double radius = sim.growthstate.radius;
  for (int i = 0; i < sim.ncells; i++)
    if (Modulus(sim.cells[i].p) > radius) radius = Modulus(sim.cells[i].p);
  sim.growthstate.radius = radius;
}

static void BM_Steps(benchmark::State &state) {
  SIMULATION sim;
  SyntheticAggregate(sim, (int)state.range(0));
  for (auto _ : state) IterateSystem(sim);
  state.SetItemsProcessed(state.iterations());
  state.counters["radius"] = sim.growthstate.radius;
  state.counters["cells"] = sim.ncells;
}
BENCHMARK(BM_Steps)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMicrosecond);

static void BM_GrowTo10000(benchmark::State &state) {
  SIMULATION sim;
  long long steps = 0;
  for (auto _ : state) {
    FreshRun(sim);
    while (sim.ncells < 10000) {
      IterateSystem(sim);
      steps++;
    }
  }
  state.SetItemsProcessed(state.iterations() * 9999);  // cells added
  state.counters["steps"] = (double)steps;
}
BENCHMARK(BM_GrowTo10000)->Iterations(1)->Unit(benchmark::kSecond);

// A whole statistics run (branch distribution and every box level) on a
// synthetic aggregate.
static void BM_Statistics(benchmark::State &state) {
  SIMULATION sim;
  SyntheticAggregate(sim, (int)state.range(0));
  for (auto _ : state) RunStatisticsToCompletion(sim);
  state.counters["levels"] = sim.boxcountstate.depth;
  state.counters["radius"] = sim.growthstate.radius;
}
BENCHMARK(BM_Statistics)->Arg(10000)->Arg(100000)->Arg(1000000)->Iterations(1)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
