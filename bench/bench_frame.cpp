// One frame's drawing of the aggregate (DrawDLA, then glFinish so that the
// rasteriser's work is counted) on a synthetic aggregate: points and lines
// at 100,000 and 1,000,000 cells from the vertex arrays and, in the same run,
// vertex by vertex (immediate 1, the reference); lines at 10,000 and tubes.
// Also the CPU side of the arrays alone: the colours worked out each frame,
// and a rebuild from scratch. Needs an X display; under Xvfb:
//   xvfb-run -a -s '-screen 0 1024x768x24' build/bench/bench_frame
#include <GL/glu.h>
#include <GL/glut.h>
#include <benchmark/benchmark.h>
#include <stdlib.h>  // drand48()

#include <vector>

#include "app/records.h"
#include "gl/view/scene.h"
#include "growth/growth.h"
#include "lib/vector.h"

// A random tree of n cells with unit branches: each new cell hangs off a
// random earlier one, and weights count descendants, as growth would have
// them rise towards the root. Returns the radius.
static double BuildAggregate(int n) {
  SetOptionDefaults();
  InitialiseGrowth();  // the growth defaults and one root at the origin
  srand48(1);
  double radius = 0;
  for (int i = 1; i < n; i++) {
    int parent = (int)(drand48() * i);
    XYZ d = {drand48() - 0.5, drand48() - 0.5, drand48() - 0.5};
    Normalise(&d);
    XYZ p = cells[parent].p;
    p.x += d.x;
    p.y += d.y;
    p.z += d.z;
    AppendCell(p, 0, parent);
    if (Modulus(p) > radius) radius = Modulus(p);
  }
  double maxweight = 0;
  for (int i = ncells - 1; i > 0; i--) {
    int j = cells[i].parent;
    cells[j].weight += cells[i].weight + 1;
    if (cells[j].weight > maxweight) maxweight = cells[j].weight;
  }
  growthstate.maxweight = maxweight;
  growthstate.radius = radius;
  return radius;
}

static void BM_DrawDLA(benchmark::State &state) {
  int mode = (int)state.range(0);
  int n = (int)state.range(1);
  double radius = BuildAggregate(n);
  drawimmediate = (int)state.range(2);

  glViewport(0, 0, 800, 600);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  gluPerspective(60, 800.0 / 600.0, radius * 0.1, radius * 10);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  gluLookAt(2.5 * radius, 0, 0, 0, 0, 0, 0, 0, 1);

  // The arrays are converted once, as the cells arrive; a frame then only
  // works out the colours and draws.
  DrawDLA(mode);
  glFinish();
  for (auto _ : state) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    DrawDLA(mode);
    glFinish();
  }
  drawimmediate = 0;
  state.counters["cells"] = n;
}
BENCHMARK(BM_DrawDLA)
    ->ArgNames({"mode", "cells", "immediate"})
    ->Args({DLADRAW_LINES, 10000, 0})
    ->Args({DLADRAW_LINES, 10000, 1})
    ->Args({DLADRAW_LINES, 100000, 0})
    ->Args({DLADRAW_LINES, 100000, 1})
    ->Args({DLADRAW_LINES, 1000000, 0})
    ->Args({DLADRAW_LINES, 1000000, 1})
    ->Args({DLADRAW_POINTS, 100000, 0})
    ->Args({DLADRAW_POINTS, 100000, 1})
    ->Args({DLADRAW_POINTS, 1000000, 0})
    ->Args({DLADRAW_POINTS, 1000000, 1})
    ->Args({DLADRAW_TUBES, 10000, 0})
    ->Args({DLADRAW_TUBES, 100000, 0})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The per-frame CPU work of the arrays without GL: the colours of every cell
// (the arrays are already up to date).
static void BM_DLAColours(benchmark::State &state) {
  int mode = (int)state.range(0);
  int n = (int)state.range(1);
  BuildAggregate(n);
  UpdateDLAArrays(mode);
  for (auto _ : state) UpdateDLAArrays(mode);
  state.counters["cells"] = n;
}
BENCHMARK(BM_DLAColours)
    ->ArgNames({"mode", "cells"})
    ->Args({DLADRAW_LINES, 100000})
    ->Args({DLADRAW_LINES, 1000000})
    ->Args({DLADRAW_POINTS, 1000000})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The arrays converted from scratch and coloured, as after a restart: a
// change of the storage other than an append forces the rebuild.
static void BM_DLARebuild(benchmark::State &state) {
  int n = (int)state.range(0);
  BuildAggregate(n);
  UpdateDLAArrays(DLADRAW_LINES);
  for (auto _ : state) {
    cellsrevision++;
    UpdateDLAArrays(DLADRAW_LINES);
  }
  state.counters["cells"] = n;
}
BENCHMARK(BM_DLARebuild)
    ->ArgNames({"cells"})
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

int main(int argc, char **argv) {
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB);
  glutInitWindowSize(800, 600);
  glutCreateWindow("bench_frame");
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
