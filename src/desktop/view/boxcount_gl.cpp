#include "desktop/view/boxcount_gl.h"
#include "desktop/app/desktop.h"

#include <GL/gl.h>

#include "app/simulation.h"
#include "desktop/view/overlay_gl.h"
#include "export/statistics.h"
#include "gl/lib/primitives_gl.h"

void CalcBoxCount(int start, int draw) {
  if (!sim.options.calcstats) return;
  if (start) BoxCountStart(sim);
  if (draw) {
    glColor3f(0.5, 1.0, 0.5);
    for (int i = 0; i < sim.boxcountstate.nboxes; i++)
      CreateBox(0, sim.boxcountstate.boxes[i].low, sim.boxcountstate.boxes[i].high);
  } else {
    BoxCountStep(sim);
  }
}

// Frames the statistics block fades over after a count.
#define STATISTICSFRAMES 500

void BoxCountDone(void) { DrawStatistics(STATISTICSFRAMES); }
