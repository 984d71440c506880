#include "export/statistics.h"

#include <math.h>  // isfinite()

#include "app/records.h"
#include "surface/constraint.h"

BOXCOUNT boxcountstate = {0, 0, {0, 0, 0}, {0, 0, 0}, std::vector<BOX>(), 0, 0, 0};
void (*boxcountdone)(void) = NULL;

void Statistics(void) {
  // Counting by parent gives the same numbers as comparing every cell with
  // every index, in linear time.
  std::vector<int> children(ncells > 0 ? ncells : 0, 0);
  for (int i = 0; i < ncells; i++) {
    int q = cells[i].parent;
    if (q >= 0 && q < ncells) children[q]++;
  }
  for (int i = 0; i < ncells; i++) {
    int n = children[i] > 9 ? 9 : children[i];
    stats.branchcount[n]++;
  }

  options.calcstats = 1;
  stats.timestep = ncells;
  BoxCountStart();
  BoxCountStep();
}

void BoxCountStart(void) {
  if (!options.calcstats) return;
  BOXCOUNT &b = boxcountstate;
  double radius = growthstate.radius;
  b.scale = radius / 2;
  b.depth = 0;
  for (int i = 1; i < 10; i++) stats.boxcount[i] = -1;
  stats.boxcount[0] = 0;
  stats.boxsize[0] = b.scale;
  b.p0.x = b.p0.y = b.p0.z = -radius - b.scale;
  b.nboxes = 0;
  b.save1 = options.stldrawmode;
  b.save2 = options.dladrawmode;
  options.stldrawmode = 0;  // not a menu mode: nothing drawn
  options.dladrawmode = DLADRAW_LINES;
}

static void BoxCountEnd(void) {
  if (boxcountdone != NULL) boxcountdone();
  options.calcstats = 0;
  options.stldrawmode = boxcountstate.save1;
  options.dladrawmode = boxcountstate.save2;
}

int BoxCountStep(void) {
  if (!options.calcstats) return 0;
  BOXCOUNT &b = boxcountstate;
  double radius = growthstate.radius;

  b.p1.x = b.p0.x + b.scale;
  b.p1.y = b.p0.y + b.scale;
  b.p1.z = b.p0.z + b.scale;

  for (int i = 0; i < ncells; i++) {
    if (cells[i].parent < 0) continue;
    if (LineInBox(b.p0, b.p1, cells[i].p, cells[cells[i].parent].p)) {
      stats.boxcount[b.depth]++;
      BOX box = {b.p0, b.p1};
      if (b.nboxes < (int)b.boxes.size())
        b.boxes[b.nboxes] = box;
      else
        b.boxes.push_back(box);
      b.nboxes++;
      break;
    }
  }

  // z fastest. The resets use the edge of the level just finished, so the
  // next level starts a little further out; kept that way on purpose.
  b.p0.z += b.scale;
  if (b.p0.z > radius) {
    b.p0.z = -radius - b.scale;
    b.p0.y += b.scale;
    if (b.p0.y > radius) {
      b.p0.y = -radius - b.scale;
      b.p0.x += b.scale;
      if (b.p0.x > radius) {
        b.p0.x = -radius - b.scale;
        b.scale /= 1.5;
        b.depth++;
        stats.boxsize[b.depth] = b.scale;
        stats.boxcount[b.depth] = 0;
        b.nboxes = 0;
      }
    }
  }

  if (2 * growthstate.branchlength > b.scale || b.depth >= 9) {
    BoxCountEnd();
    return 1;
  }
  return 0;
}

void RunStatisticsToCompletion(void) {
  Statistics();
  while (options.calcstats) {
    if (!(boxcountstate.scale > 0) || !isfinite(boxcountstate.scale)) {
      BoxCountEnd();
      break;
    }
    BoxCountStep();
  }
}
