#include "export/statistics.h"

#include <math.h>  // isfinite(), floor()

#include <algorithm>  // std::nth_element

#include "app/simulation.h"
#include "surface/constraint.h"

static void FreeSegmentGrid(SIMULATION &sim) {
  SEGMENTGRID &s = sim.segmentgrid;
  s.built = 0;
  std::vector<int>().swap(s.first);
  std::vector<int>().swap(s.segs);
  std::vector<int>().swap(s.others);
}

static int GridCell(double v, const SEGMENTGRID &s, double origin) {
  double k = floor((v - origin) / s.edge);  // clamped before the conversion
  if (!(k > 0)) return 0;  // NaN too
  return k < s.n - 1 ? (int)k : s.n - 1;
}

static void BuildSegmentGrid(SIMULATION &sim) {
  SEGMENTGRID &s = sim.segmentgrid;
  FreeSegmentGrid(sim);
  s.built = 1;
  s.revision = sim.cellsrevision;
  s.ncells = sim.ncells;
  s.n = 0;

  std::vector<int> list;
  std::vector<double> extent;
  XYZ lo = {HUGE_VAL, HUGE_VAL, HUGE_VAL}, hi = {-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
  for (int i = 0; i < sim.ncells; i++) {
    if (sim.cells[i].parent < 0) continue;
    XYZ a = sim.cells[i].p, b = sim.cells[sim.cells[i].parent].p;
    // fmin and fmax pass over a NaN, so such ends are kept out of the bounds.
    if (!isfinite(a.x + a.y + a.z + b.x + b.y + b.z)) {
      s.others.push_back(i);
      continue;
    }
    list.push_back(i);
    extent.push_back(fmax(fabs(a.x - b.x), fmax(fabs(a.y - b.y), fabs(a.z - b.z))));
    lo = {fmin(lo.x, fmin(a.x, b.x)), fmin(lo.y, fmin(a.y, b.y)), fmin(lo.z, fmin(a.z, b.z))};
    hi = {fmax(hi.x, fmax(a.x, b.x)), fmax(hi.y, fmax(a.y, b.y)), fmax(hi.z, fmax(a.z, b.z))};
  }
  double span = fmax(hi.x - lo.x, fmax(hi.y - lo.y, hi.z - lo.z));
  if (!isfinite(span)) s.others.insert(s.others.end(), list.begin(), list.end());
  if (list.empty() || !isfinite(span)) return;

  // Twice the median extent: a few long segments (a branch length changed
  // during the run) go to the others instead of coarsening the grid.
  std::vector<double> sorted(extent);
  std::nth_element(sorted.begin(), sorted.begin() + sorted.size() / 2, sorted.end());
  s.reach = 2 * sorted[sorted.size() / 2];
  double most = fmax(fmax(fmax(-lo.x, -lo.y), -lo.z), fmax(fmax(hi.x, hi.y), hi.z));
  s.pad = 1e-9 * (1 + fabs(most));
  s.edge = fmax(fmax(s.reach, span / 128), s.pad);
  s.origin = lo;
  s.n = (int)(span / s.edge) + 2;

  std::vector<int> where(list.size(), -1);
  s.first.assign((size_t)s.n * s.n * s.n + 1, 0);
  for (size_t k = 0; k < list.size(); k++) {
    if (extent[k] > s.reach) {
      s.others.push_back(list[k]);
      continue;
    }
    XYZ a = sim.cells[list[k]].p, b = sim.cells[sim.cells[list[k]].parent].p;
    where[k] = (GridCell(fmin(a.x, b.x), s, lo.x) * s.n + GridCell(fmin(a.y, b.y), s, lo.y)) * s.n +
               GridCell(fmin(a.z, b.z), s, lo.z);
    s.first[where[k] + 1]++;
  }
  for (size_t g = 1; g < s.first.size(); g++) s.first[g] += s.first[g - 1];
  s.segs.resize(s.first.back());
  std::vector<int> next(s.first.begin(), s.first.end() - 1);
  for (size_t k = 0; k < list.size(); k++)
    if (where[k] >= 0) s.segs[next[where[k]]++] = list[k];
}

static int SegmentMeets(SIMULATION &sim, int i, XYZ p0, XYZ p1) {
  return LineInBox(p0, p1, sim.cells[i].p, sim.cells[sim.cells[i].parent].p);
}

// 1 when some segment meets the box p0-p1, as LineInBox judges it.
static int BoxOccupied(SIMULATION &sim, XYZ p0, XYZ p1) {
  SEGMENTGRID &s = sim.segmentgrid;
  if (!s.built || s.revision != sim.cellsrevision || s.ncells != sim.ncells) BuildSegmentGrid(sim);
  XYZ bmin = {fmin(p0.x, p1.x), fmin(p0.y, p1.y), fmin(p0.z, p1.z)};
  XYZ bmax = {fmax(p0.x, p1.x), fmax(p0.y, p1.y), fmax(p0.z, p1.z)};
  if (!isfinite(bmin.x + bmin.y + bmin.z + bmax.x + bmax.y + bmax.z)) {
    for (int i = 0; i < sim.ncells; i++)
      if (sim.cells[i].parent >= 0 && SegmentMeets(sim, i, p0, p1)) return 1;
    return 0;
  }
  for (int i : s.others)
    if (SegmentMeets(sim, i, p0, p1)) return 1;
  if (s.n == 0) return 0;
  // A segment's low corner lies at most reach (plus the samples' rounding)
  // below the box, and at most the rounding above it.
  double below = s.reach + s.pad;
  int x0 = GridCell(bmin.x - below, s, s.origin.x), x1 = GridCell(bmax.x + s.pad, s, s.origin.x);
  int y0 = GridCell(bmin.y - below, s, s.origin.y), y1 = GridCell(bmax.y + s.pad, s, s.origin.y);
  int z0 = GridCell(bmin.z - below, s, s.origin.z), z1 = GridCell(bmax.z + s.pad, s, s.origin.z);
  for (int x = x0; x <= x1; x++)
    for (int y = y0; y <= y1; y++) {
      int row = (x * s.n + y) * s.n;
      for (int k = s.first[row + z0]; k < s.first[row + z1 + 1]; k++)
        if (SegmentMeets(sim, s.segs[k], p0, p1)) return 1;
    }
  return 0;
}

void Statistics(SIMULATION &sim) {
  // Counting by parent gives the same numbers as comparing every cell with
  // every index, in linear time.
  std::vector<int> children(sim.ncells > 0 ? sim.ncells : 0, 0);
  for (int i = 0; i < sim.ncells; i++) {
    int q = sim.cells[i].parent;
    if (q >= 0 && q < sim.ncells) children[q]++;
  }
  for (int i = 0; i < sim.ncells; i++) {
    int n = children[i] > 9 ? 9 : children[i];
    sim.stats.branchcount[n]++;
  }

  sim.options.calcstats = 1;
  sim.stats.timestep = sim.ncells;
  BoxCountStart(sim);
  BoxCountStep(sim);
}

void BoxCountStart(SIMULATION &sim) {
  if (!sim.options.calcstats) return;
  BOXCOUNT &b = sim.boxcountstate;
  double radius = sim.growthstate.radius;
  b.scale = radius / 2;
  b.depth = 0;
  for (int i = 1; i < 10; i++) sim.stats.boxcount[i] = -1;
  sim.stats.boxcount[0] = 0;
  sim.stats.boxsize[0] = b.scale;
  b.p0.x = b.p0.y = b.p0.z = -radius - b.scale;
  b.nboxes = 0;
  b.save1 = sim.options.stldrawmode;
  b.save2 = sim.options.dladrawmode;
  sim.options.stldrawmode = 0;  // not a menu mode: nothing drawn
  sim.options.dladrawmode = DLADRAW_LINES;
}

static void BoxCountEnd(SIMULATION &sim) {
  if (sim.boxcountdone != NULL) sim.boxcountdone();
  sim.options.calcstats = 0;
  FreeSegmentGrid(sim);
  sim.options.stldrawmode = sim.boxcountstate.save1;
  sim.options.dladrawmode = sim.boxcountstate.save2;
}

int BoxCountStep(SIMULATION &sim) {
  if (!sim.options.calcstats) return 0;
  BOXCOUNT &b = sim.boxcountstate;
  double radius = sim.growthstate.radius;

  b.p1.x = b.p0.x + b.scale;
  b.p1.y = b.p0.y + b.scale;
  b.p1.z = b.p0.z + b.scale;

  if (BoxOccupied(sim, b.p0, b.p1)) {
    sim.stats.boxcount[b.depth]++;
    BOX box = {b.p0, b.p1};
    if (b.nboxes < (int)b.boxes.size())
      b.boxes[b.nboxes] = box;
    else
      b.boxes.push_back(box);
    b.nboxes++;
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
        sim.stats.boxsize[b.depth] = b.scale;
        sim.stats.boxcount[b.depth] = 0;
        b.nboxes = 0;
      }
    }
  }

  // An edge that is not a positive number (a radius of 0, infinite or not a
  // number) never carries a box past the radius: the count would never end.
  if (2 * sim.growthstate.branchlength > b.scale || b.depth >= 9 || !(b.scale > 0) || !isfinite(b.scale)) {
    BoxCountEnd(sim);
    return 1;
  }
  return 0;
}

void RunStatisticsToCompletion(SIMULATION &sim) {
  Statistics(sim);
  while (sim.options.calcstats) BoxCountStep(sim);
}
