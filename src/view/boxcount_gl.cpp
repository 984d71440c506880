#include "view/boxcount_gl.h"

#include <GL/gl.h>

#include "app/records.h"
#include "export/statistics.h"
#include "lib/primitives_gl.h"
#include "view/overlay_gl.h"

void CalcBoxCount(int start, int draw) {
  if (!options.calcstats) return;
  if (start) BoxCountStart();
  if (draw) {
    glColor3f(0.5, 1.0, 0.5);
    for (int i = 0; i < boxcountstate.nboxes; i++)
      CreateBox(0, boxcountstate.boxes[i].low, boxcountstate.boxes[i].high);
  } else {
    BoxCountStep();
  }
}

void BoxCountDone(void) { DrawStatistics(500); }
