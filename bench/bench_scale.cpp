// Growth speed: steps per second at several aggregate sizes against the
// step's floor (its random draws and square roots alone), and whole batch
// runs from one root with the index and, once, with the plain scan.
#include <benchmark/benchmark.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#include "app/records.h"
#include "batch/batch.h"
#include "growth/growth.h"
#include "growth/index.h"
#include "growth/random.h"

namespace {

// One aggregate grown with the default settings, kept between benchmarks so
// that 10,000, 100,000 and 1,000,000 cells are grown only once.
void GrowTo(int n) {
  static int started = 0;
  if (!started) {
    started = 1;
    SetOptionDefaults();
    InitialiseGrowth();
    InitialiseGrowth();
    ResetSeeds();
  }
  growthsearch = SEARCH_INDEX;
  while (ncells < n) IterateSystem();
}

void BM_Step(benchmark::State &state) {
  GrowTo((int)state.range(0));
  for (auto _ : state) IterateSystem();
  state.SetItemsProcessed(state.iterations());
  state.counters["cells"] = ncells;
}
BENCHMARK(BM_Step)->Arg(10000)->Arg(100000)->Arg(1000000)->Iterations(1000000);

// What a default step cannot do without: three uniform numbers and the
// normalisation of the random step, the escape distance, three root
// choices and the drift's normalisation, the stickiness number.
void BM_StepFloor(benchmark::State &state) {
  SeedGrowthRandom(12345);
  XYZ p = {1, 2, 3};
  for (auto _ : state) {
    XYZ u = {GrowthDrand48() - 0.5, GrowthDrand48() - 0.5, GrowthDrand48() - 0.5};
    double l = sqrt(u.x * u.x + u.y * u.y + u.z * u.z);
    p.x += u.x / l;
    p.y += u.y / l;
    p.z += u.z / l;
    double m = sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
    int k = GrowthRand() % 1 + GrowthRand() % 1 + GrowthRand() % 1;
    XYZ v = {k - p.x, k - p.y, k - p.z};
    double lv = sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    double r = GrowthDrand48();
    benchmark::DoNotOptimize(m);
    benchmark::DoNotOptimize(lv);
    benchmark::DoNotOptimize(r);
    if (m > 100) p.x = p.y = p.z = 0;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StepFloor);

// The same floor drawn from the library, for comparison.
void BM_StepFloorLibc(benchmark::State &state) {
  srand48(12345);
  srand(12345);
  XYZ p = {1, 2, 3};
  for (auto _ : state) {
    XYZ u = {drand48() - 0.5, drand48() - 0.5, drand48() - 0.5};
    double l = sqrt(u.x * u.x + u.y * u.y + u.z * u.z);
    p.x += u.x / l;
    p.y += u.y / l;
    p.z += u.z / l;
    double m = sqrt(p.x * p.x + p.y * p.y + p.z * p.z);
    int k = rand() % 1 + rand() % 1 + rand() % 1;
    XYZ v = {k - p.x, k - p.y, k - p.z};
    double lv = sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    double r = drand48();
    benchmark::DoNotOptimize(m);
    benchmark::DoNotOptimize(lv);
    benchmark::DoNotOptimize(r);
    if (m > 100) p.x = p.y = p.z = 0;
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_StepFloorLibc);

// dla3d-batch --cells N [--search scan], default settings, one root.
void BM_Batch(benchmark::State &state) {
  for (auto _ : state) {
    BATCHRUN run;
    char cells[32];
    snprintf(cells, sizeof(cells), "%d", (int)state.range(0));
    char *argv[] = {(char *)"dla3d-batch", (char *)"--no-progress", (char *)"--cells", cells,
                    (char *)"--search", (char *)(state.range(1) ? "scan" : "index")};
    if (ParseBatchOptions(6, argv, &run, stderr) != BATCH_OK || RunBatch(&run, stderr) != BATCH_OK)
      state.SkipWithError("batch run failed");
  }
  state.counters["cells"] = ncells;
  growthsearch = SEARCH_INDEX;
}
BENCHMARK(BM_Batch)
    ->ArgNames({"cells", "scan"})
    ->Args({20000, 0})
    ->Args({20000, 1})
    ->Args({100000, 0})
    ->Args({1000000, 0})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

}  // namespace

BENCHMARK_MAIN();
