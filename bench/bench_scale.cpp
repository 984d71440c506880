// Growth speed: steps per second at several aggregate sizes against the
// step's floor (its random draws and square roots alone), the fast walk's
// steps, and whole batch runs from one root with the index, once with the
// plain scan, and with the fast walk.
#include <benchmark/benchmark.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "app/simulation.h"
#include "batch/batch.h"
#include "growth/growth.h"
#include "growth/index.h"
#include "growth/random.h"
#include "growth/walk.h"

namespace {

// One aggregate grown with the default settings, kept between benchmarks so
// that 10,000, 100,000 and 1,000,000 cells are grown only once.
// The program's defaults, as the window starts a growth.
void StartDefaults(SIMULATION &sim) {
  SetOptionDefaults(sim);
  InitialiseGrowth(sim);
  InitialiseGrowth(sim);
  ResetSeeds(sim);
}

SIMULATION &GrowTo(int n) {
  static SIMULATION sim;
  static int started = 0;
  if (!started) {
    started = 1;
    StartDefaults(sim);
  }
  sim.growthsearch = SEARCH_INDEX;
  while (sim.ncells < n) IterateSystemSteps(sim, 1 << 20);
  return sim;
}

void BM_Step(benchmark::State &state) {
  SIMULATION &sim = GrowTo((int)state.range(0));
  for (auto _ : state) IterateSystem(sim);
  state.SetItemsProcessed(state.iterations());
  state.counters["cells"] = sim.ncells;
}

// The same steps taken in runs, as the batch program and the idle loop
// take them: per step.
void BM_StepRuns(benchmark::State &state) {
  SIMULATION &sim = GrowTo((int)state.range(0));
  long steps = 0;
  for (auto _ : state) steps += IterateSystemSteps(sim, 1000);
  state.SetItemsProcessed(steps);
  state.counters["ns_per_step"] =
      benchmark::Counter((double)steps, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["cells"] = sim.ncells;
}

// Size by size, both ways, before the aggregate grows on.
BENCHMARK(BM_Step)->Arg(10000)->Iterations(1000000);
BENCHMARK(BM_StepRuns)->Arg(10000)->Iterations(20000);
BENCHMARK(BM_Step)->Arg(100000)->Iterations(1000000);
BENCHMARK(BM_StepRuns)->Arg(100000)->Iterations(20000);
BENCHMARK(BM_Step)->Arg(1000000)->Iterations(1000000);
BENCHMARK(BM_StepRuns)->Arg(1000000)->Iterations(20000);

// The fast walk's steps in runs on an aggregate of its own (default
// settings, seed 1), a jump counting the steps it stands for: per step.
void BM_FastStepRuns(benchmark::State &state) {
  static SIMULATION sim;
  static int started = 0;
  if (!started) {
    started = 1;
    StartDefaults(sim);
  }
  sim.growthsearch = SEARCH_INDEX;
  sim.growthwalk = WALK_FAST;
  while (sim.ncells < state.range(0)) IterateSystemSteps(sim, 1 << 20);
  long steps = 0;
  for (auto _ : state) steps += IterateSystemSteps(sim, 1000);
  state.SetItemsProcessed(steps);
  state.counters["ns_per_step"] =
      benchmark::Counter((double)steps, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["cells"] = sim.ncells;
}
BENCHMARK(BM_FastStepRuns)->Arg(100000)->Arg(1000000)->Iterations(20000);

// What a default step cannot do without: its draws and square roots, in the
// step's own order and with its own dependences. The drift's direction is
// worked out from the position the random step reached, and the next step
// starts where the drift left the particle, so each step waits for the
// previous one's square root and divisions; a floor that let steps overlap
// would not be this step's floor. No search, no bookkeeping.
static void StepFloor(benchmark::State &state, double (*Uniform)(GROWTHRANDOM &), int (*Integer)(GROWTHRANDOM &),
                      GROWTHRANDOM &r) {
  XYZ p = {1, 2, 3}, root = {0, 0, 0};
  double bl = 1, radius = 100, b = 0.1 * 0.01 * bl;
  for (auto _ : state) {
    XYZ q = p;
    XYZ u = {Uniform(r) - 0.5, Uniform(r) - 0.5, Uniform(r) - 0.5};
    Normalise(&u);
    p.x += bl * u.x;
    p.y += bl * u.y;
    p.z += bl * u.z;
    if (Modulus(p) > radius + 2 * bl) {
      p = q;
      continue;
    }
    int k = Integer(r) % 1 + Integer(r) % 1 + Integer(r) % 1;
    XYZ v = {root.x + k - p.x, root.y - p.y, root.z - p.z};
    Normalise(&v);
    p.x -= b * v.x;
    p.y -= b * v.y;
    p.z -= b * v.z;
    double u2 = Uniform(r);
    benchmark::DoNotOptimize(u2);
  }
  benchmark::DoNotOptimize(p);
  state.SetItemsProcessed(state.iterations());
}

double Drand48(GROWTHRANDOM &) { return drand48(); }
int Rand(GROWTHRANDOM &) { return rand(); }

void BM_StepFloor(benchmark::State &state) {
  SIMULATION sim;
  SeedGrowthRandom(sim.random, 12345);
  StepFloor(state, GrowthDrand48, GrowthRand, sim.random);
}
BENCHMARK(BM_StepFloor);

// The same floor drawn from the library, for comparison.
void BM_StepFloorLibc(benchmark::State &state) {
  SIMULATION sim;
  srand48(12345);
  srand(12345);
  StepFloor(state, Drand48, Rand, sim.random);
}
BENCHMARK(BM_StepFloorLibc);

// The part of the floor no second thread can take over: the unit steps
// made ahead (as a thread drawing the numbers would make them), only the
// position's own chain left: step, squared length, square root, division,
// drift. 8.4 billion steps of it are the least a million cells can cost.
void BM_StepChain(benchmark::State &state) {
  SIMULATION sim;
  const int n = 1 << 16;
  static XYZ u[n];
  SeedGrowthRandom(sim.random, 12345);
  for (int i = 0; i < n; i++) {
    u[i] = {GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5, GrowthDrand48(sim.random) - 0.5};
    Normalise(&u[i]);
  }
  XYZ p = {1, 2, 3};
  double bl = 1, limit = 100 + 2 * bl, b = 0.1 * 0.01 * bl;
  long i = 0;
  for (auto _ : state) {
    XYZ q = p;
    const XYZ &s = u[i++ & (n - 1)];
    p.x += bl * s.x;
    p.y += bl * s.y;
    p.z += bl * s.z;
    double m2 = p.x * p.x + p.y * p.y + p.z * p.z;
    if (m2 > limit * limit * (1 - 1e-12) && sqrt(m2) > limit) {
      p = q;
      continue;
    }
    double l = sqrt(m2);
    p.x += b * (p.x / l);
    p.y += b * (p.y / l);
    p.z += b * (p.z / l);
  }
  benchmark::DoNotOptimize(p);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StepChain);

// dla3d-batch --cells N [--search scan] [--walk fast], default settings,
// one root.
void BM_Batch(benchmark::State &state) {
  SIMULATION sim;
  for (auto _ : state) {
    static BATCHRUN run;
    char cells[32];
    snprintf(cells, sizeof(cells), "%d", (int)state.range(0));
    char *argv[] = {(char *)"dla3d-batch", (char *)"--no-progress",
                    (char *)"--cells",     cells,
                    (char *)"--search",    (char *)(state.range(1) ? "scan" : "index"),
                    (char *)"--walk",      (char *)(state.range(2) ? "fast" : "exact")};
    if (ParseBatchOptions(8, argv, &run, stderr) != BATCH_OK || RunBatch(sim, &run, stderr) != BATCH_OK)
      state.SkipWithError("batch run failed");
  }
  state.counters["cells"] = sim.ncells;
  sim.growthsearch = SEARCH_INDEX;
  sim.growthwalk = WALK_EXACT;
}
BENCHMARK(BM_Batch)
    ->ArgNames({"cells", "scan", "fast"})
    ->Args({20000, 0, 0})
    ->Args({20000, 1, 0})
    ->Args({100000, 0, 0})
    ->Args({1000000, 0, 0})
    ->Args({100000, 0, 1})
    ->Args({1000000, 0, 1})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
