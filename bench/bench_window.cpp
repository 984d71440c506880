// Growth in the window against growth without drawing: the desktop's own
// idle driver (HandleIdle, 100 steps a call) and display callback
// (HandleDisplay) in a GLUT window of 800 x 600, on an aggregate read from a
// CSV of dla3d-batch. Three phases of SECONDS each, on one aggregate that
// goes on growing: the batch program's loop of runs of steps; the idle
// driver with a display callback that draws nothing; the idle driver with
// the real display at the default 30 redisplays a second. Prints steps and
// cells per second of each, frames per second, and the ratio of the last
// to the first. Under Xvfb:
//   build/dla3d-batch --cells 1000000 --csv big.csv
//   xvfb-run -a -s '-screen 0 1024x768x24' build/bench/bench_window big.csv 1000000 20
// BENCH_DLADRAW=1 (aggregate off), BENCH_INFO=0 (F2), BENCH_EXTRAS=0 (F1)
// take parts out of the frame; BENCH_FRAMERATE=F asks for F redisplays a
// second instead of 30.
#include <GL/freeglut.h>
#include <stdio.h>
#include <stdlib.h>

#include "app/simulation.h"
#include "app/startup.h"
#include "desktop/app/desktop.h"
#include "desktop/growth/idle.h"
#include "desktop/view/display.h"
#include "growth/growth.h"
#include "lib/vector.h"

SIMULATION sim;  // the window's simulation, as the desktop program holds it

static double seconds;
static int phase;           // 1 idle, no drawing; 2 idle and display
static double phasestart;
static long idlecalls, frames;
static double displaytime;  // seconds spent in the display callback this phase
static int cellsatstart;
static double rates[3][3];  // steps/s, cells/s, frames/s per phase

// The first n cells of a CSV, weights as written; growth carries on from
// them (a new particle, the index rebuilt from the cells).
static void ReadAggregate(const char *path, int n) {
  FILE *fp = fopen(path, "r");
  if (fp == NULL || fscanf(fp, "%*[^\n]\n") != 0) exit(1);
  sim.ncells = 0;
  int index, parent;
  XYZ p;
  double w, radius = 0, maxweight = 0;
  while (sim.ncells < n && fscanf(fp, "%d,%d,%lf,%lf,%lf,%lf\n", &index, &parent, &p.x, &p.y, &p.z, &w) == 6) {
    AppendCell(sim, p, w, parent);
    if (Modulus(p) > radius) radius = Modulus(p);
    if (w > maxweight) maxweight = w;
  }
  fclose(fp);
  sim.growthstate.radius = radius;
  sim.growthstate.maxweight = maxweight;
}

static void Report(int k, const char *what, double steps, double elapsed, int cells) {
  rates[k][0] = steps / elapsed;
  rates[k][1] = cells / elapsed;
  rates[k][2] = frames / elapsed;
  printf("%-34s %10.0f steps/s %8.1f cells/s %6.1f frames/s %6.1f ms a display (%d cells at the end)\n", what,
         rates[k][0], rates[k][1], rates[k][2], frames ? 1000 * displaytime / frames : 0.0, sim.ncells);
  fflush(stdout);
}

static void NoDrawing(void) { frames++; }

static void CountedDisplay(void) {
  double start = GetRunTime();
  HandleDisplay();
  displaytime += GetRunTime() - start;
  frames++;
}

static void CountedIdle(void) {
  HandleIdle();
  idlecalls++;
  double now = GetRunTime();
  if (now - phasestart < seconds) return;
  if (phase == 1) {
    Report(1, "idle driver, display draws nothing", 100.0 * idlecalls, now - phasestart, sim.ncells - cellsatstart);
    glutDisplayFunc(CountedDisplay);
  } else {
    Report(2, "idle driver and display", 100.0 * idlecalls, now - phasestart, sim.ncells - cellsatstart);
    printf("window / batch: steps %.3f, cells %.3f\n", rates[2][0] / rates[0][0], rates[2][1] / rates[0][1]);
    printf("window / idle without drawing: steps %.3f\n", rates[2][0] / rates[1][0]);
    exit(0);
  }
  phase++;
  idlecalls = 0;
  frames = 0;
  displaytime = 0;
  cellsatstart = sim.ncells;
  phasestart = GetRunTime();
}

int main(int argc, char **argv) {
  glutInit(&argc, argv);
  if (argc != 4) {
    fprintf(stderr, "usage: %s CSV CELLS SECONDS\n", argv[0]);
    return 2;
  }
  seconds = atof(argv[3]);
  ResetProgram(sim);
  ReadAggregate(argv[1], atoi(argv[2]));

  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB);
  glutInitWindowSize(sim.camera.screenwidth, sim.camera.screenheight);
  glutCreateWindow("Diffusion Limited Aggregation");
  glutDisplayFunc(NoDrawing);
  for (int i = 0; i < 10; i++) glutMainLoopEvent();

  // The first steps build the search index for the cells read: not timed.
  int before = sim.ncells;
  while (sim.ncells < before + 10) IterateSystemSteps(sim, 1 << 20);
  // BENCH_DLADRAW=CODE draws the aggregate in another mode (1: off, to
  // time a frame of the extras and the information alone).
  if (getenv("BENCH_DLADRAW")) sim.options.dladrawmode = atoi(getenv("BENCH_DLADRAW"));
  if (getenv("BENCH_INFO")) sim.options.showinfo = atoi(getenv("BENCH_INFO"));
  if (getenv("BENCH_EXTRAS")) sim.options.showextras = atoi(getenv("BENCH_EXTRAS"));
  if (getenv("BENCH_FRAMERATE")) sim.options.framerate = atof(getenv("BENCH_FRAMERATE"));

  // Phase 0: the batch program's loop (runs of steps; the cell count seen
  // after each stuck particle).
  double start = GetRunTime();
  cellsatstart = sim.ncells;
  long long steps = 0;
  while (GetRunTime() - start < seconds) steps += IterateSystemSteps(sim, 1 << 20);
  Report(0, "batch loop", (double)steps, GetRunTime() - start, sim.ncells - cellsatstart);

  phase = 1;
  cellsatstart = sim.ncells;
  phasestart = GetRunTime();
  glutIdleFunc(CountedIdle);
  glutMainLoop();
  return 0;
}
