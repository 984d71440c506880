// One frame's drawing of the aggregate (DrawDLA, then glFinish so that the
// rasteriser's work is counted): points and lines at 100,000 and 1,000,000
// cells from the buffer objects and, in the same run, vertex by vertex
// (immediate 1, the reference); lines at 10,000 and tubes. A frame of a
// paused aggregate (nothing to upload), and a frame of a growing one (cells
// appended and weights raised between frames, as growth does). Also the CPU
// side alone: the colours, and a rebuild from scratch. Needs an X display:
//   xvfb-run -a -s '-screen 0 1024x768x24' build/bench/bench_frame
// The aggregate is a synthetic random tree seen from outside, or with
// BENCH_CSV=FILE the first cells of a real one (dla3d-batch --csv) seen from
// the window's home camera, 800 x 600:
//   build/dla3d-batch --cells 1000000 --csv big.csv
//   BENCH_CSV=big.csv xvfb-run -a -s '-screen 0 1024x768x24' build/bench/bench_frame
#include <GL/glu.h>
#include <GL/glut.h>
#include <benchmark/benchmark.h>
#include <stdio.h>
#include <stdlib.h>  // drand48(), getenv()

#include <vector>

#include "app/simulation.h"
#include "gl/view/scene.h"
#include "growth/growth.h"
#include "lib/vector.h"
#include "view/camera.h"

// The first n cells of a CSV written by dla3d-batch --csv, weights as they
// are there. Returns the radius; exits when the file holds fewer cells.
static double ReadAggregate(SIMULATION &sim, const char *path, int n) {
  FILE *fp = fopen(path, "r");
  if (fp == NULL || fscanf(fp, "%*[^\n]\n") != 0) {
    fprintf(stderr, "cannot read %s\n", path);
    exit(1);
  }
  sim.ncells = 0;
  double radius = 0, maxweight = 0;
  int index, parent;
  XYZ p;
  double w;
  while (sim.ncells < n && fscanf(fp, "%d,%d,%lf,%lf,%lf,%lf\n", &index, &parent, &p.x, &p.y, &p.z, &w) == 6) {
    AppendCell(sim, p, w, parent);
    if (Modulus(p) > radius) radius = Modulus(p);
    if (w > maxweight) maxweight = w;
  }
  fclose(fp);
  if (sim.ncells < n) {
    fprintf(stderr, "%s holds %d cells, not %d\n", path, sim.ncells, n);
    exit(1);
  }
  sim.growthstate.maxweight = maxweight;
  sim.growthstate.radius = radius;
  return radius;
}

// The view of the frames: the window's home camera for a real aggregate,
// else from outside the synthetic one.
static void View(SIMULATION &sim, double radius) {
  if (getenv("BENCH_CSV")) {
    ForgetCameraHome(sim);
    CameraHome(sim);
    FrameCamera(sim);
    EYEVIEW view = EyeView(sim, EYE_MONO);
    LookThrough(sim, &view);
    return;
  }
  glViewport(0, 0, 800, 600);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  gluPerspective(60, 800.0 / 600.0, radius * 0.1, radius * 10);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  gluLookAt(2.5 * radius, 0, 0, 0, 0, 0, 0, 0, 1);
}

// A random tree of n cells with unit branches: each new cell hangs off a
// random earlier one, and weights count descendants, as growth would have
// them rise towards the root. Returns the radius.
static double BuildAggregate(SIMULATION &sim, int n) {
  SetOptionDefaults(sim);
  InitialiseGrowth(sim);  // the growth defaults and one root at the origin
  if (getenv("BENCH_CSV")) return ReadAggregate(sim, getenv("BENCH_CSV"), n);
  srand48(1);
  double radius = 0;
  for (int i = 1; i < n; i++) {
    int parent = (int)(drand48() * i);
    XYZ d = {drand48() - 0.5, drand48() - 0.5, drand48() - 0.5};
    Normalise(&d);
    XYZ p = sim.cells[parent].p;
    p.x += d.x;
    p.y += d.y;
    p.z += d.z;
    AppendCell(sim, p, 0, parent);
    if (Modulus(p) > radius) radius = Modulus(p);
  }
  double maxweight = 0;
  for (int i = sim.ncells - 1; i > 0; i--) {
    int j = sim.cells[i].parent;
    sim.cells[j].weight += sim.cells[i].weight + 1;
    if (sim.cells[j].weight > maxweight) maxweight = sim.cells[j].weight;
  }
  sim.growthstate.maxweight = maxweight;
  sim.growthstate.radius = radius;
  return radius;
}

static void BM_DrawDLA(benchmark::State &state) {
  SIMULATION sim;
  int mode = (int)state.range(0);
  int n = (int)state.range(1);
  double radius = BuildAggregate(sim, n);
  drawimmediate = (int)state.range(2);
  View(sim, radius);

  // The arrays are converted once, as the cells arrive; a frame then only
  // works out the colours and draws.
  DrawDLA(sim, mode);
  glFinish();
  for (auto _ : state) {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    DrawDLA(sim, mode);
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

// Growth between frames as the window sees it at a million cells: about 100
// cells a frame, each hung off a random cell with the weights of its
// ancestors raised by 1/depth and maxweight with them. Each frame then
// appends, works out every colour again (maxweight moved) and uploads them.
static void GrowBetweenFrames(SIMULATION &sim, int k) {
  for (int c = 0; c < k; c++) {
    int parent = 1 + (int)(drand48() * (sim.ncells - 1));
    XYZ p = sim.cells[parent].p;
    p.x += 0.5;
    AppendCell(sim, p, 0, parent);
    int d = 1;
    for (int j = parent; j > 0; j = sim.cells[j].parent) d++;
    for (int j = parent; j >= 0; j = sim.cells[j].parent) {
      sim.cells[j].weight += 1.0 / d;
      if (sim.cells[j].weight > sim.growthstate.maxweight) sim.growthstate.maxweight = sim.cells[j].weight;
    }
  }
}

static void BM_GrowingFrame(benchmark::State &state) {
  SIMULATION sim;
  int mode = (int)state.range(0);
  int n = (int)state.range(1);
  double radius = BuildAggregate(sim, n);
  View(sim, radius);
  DrawDLA(sim, mode);
  glFinish();
  srand48(2);
  for (auto _ : state) {
    state.PauseTiming();
    GrowBetweenFrames(sim, 100);
    state.ResumeTiming();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    DrawDLA(sim, mode);
    glFinish();
  }
  state.counters["cells"] = n;
}
BENCHMARK(BM_GrowingFrame)
    ->ArgNames({"mode", "cells"})
    ->Args({DLADRAW_LINES, 100000})
    ->Args({DLADRAW_LINES, 1000000})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The per-frame CPU work of the arrays without GL while growing: the colours
// of every line kept after maxweight moved (the vertices are already up to
// date).
static void BM_DLAColours(benchmark::State &state) {
  SIMULATION sim;
  int mode = (int)state.range(0);
  int n = (int)state.range(1);
  View(sim, BuildAggregate(sim, n));  // the lines kept depend on the view
  UpdateDLAArrays(sim, mode);
  for (auto _ : state) {
    sim.growthstate.maxweight += 1e-9;  // every colour again, as while growing
    UpdateDLAArrays(sim, mode);
  }
  state.counters["cells"] = n;
}
BENCHMARK(BM_DLAColours)
    ->ArgNames({"mode", "cells"})
    ->Args({DLADRAW_LINES, 100000})
    ->Args({DLADRAW_LINES, 1000000})
    ->Args({DLADRAW_POINTS, 1000000})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The arrays converted from scratch, the lines kept picked and coloured, as
// after a restart: a change of the storage other than an append forces the
// rebuild.
static void BM_DLARebuild(benchmark::State &state) {
  SIMULATION sim;
  int n = (int)state.range(0);
  View(sim, BuildAggregate(sim, n));
  UpdateDLAArrays(sim, DLADRAW_LINES);
  for (auto _ : state) {
    sim.cellsrevision++;
    UpdateDLAArrays(sim, DLADRAW_LINES);
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
