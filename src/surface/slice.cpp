#include "surface/slice.h"

#include <string>
#include <vector>

#include "app/simulation.h"

// Child lists of the aggregate, in index order, for the walk of one slab.
// next[p] moves past children that are traced; since marks are only ever
// set during a slab, the first untraced child is never before it, and the
// walk finds the same child FindBranch's full scan would.

static void BuildChildIndex(SIMULATION &sim) {
  sim.childindex.start.assign(sim.ncells + 1, 0);
  for (int c = 0; c < sim.ncells; c++) {
    int p = sim.cells[c].parent;
    if (p >= 0 && p < sim.ncells) sim.childindex.start[p + 1]++;
  }
  for (int p = 0; p < sim.ncells; p++) sim.childindex.start[p + 1] += sim.childindex.start[p];
  sim.childindex.list.resize(sim.childindex.start[sim.ncells]);
  sim.childindex.next.assign(sim.childindex.start.begin(), sim.childindex.start.end() - 1);
  for (int c = 0; c < sim.ncells; c++) {
    int p = sim.cells[c].parent;
    if (p >= 0 && p < sim.ncells) sim.childindex.list[sim.childindex.next[p]++] = c;
  }
  sim.childindex.next.assign(sim.childindex.start.begin(), sim.childindex.start.end() - 1);
}

static int NextChild(SIMULATION &sim, int parent, int *child) {
  if (!sim.childindex.active || parent < 0 || parent >= sim.ncells) return FindBranch(sim, parent, child);
  int end = sim.childindex.start[parent + 1];
  int &k = sim.childindex.next[parent];
  while (k < end && sim.cells[sim.childindex.list[k]].traced) k++;
  if (k >= end) return 0;
  *child = sim.childindex.list[k];
  return 1;
}

int FindBranch(SIMULATION &sim, int parent, int *child) {
  for (int j = 0; j < sim.ncells; j++) {
    if (sim.cells[j].traced == 0 && sim.cells[j].parent == parent) {
      *child = j;
      return 1;
    }
  }
  return 0;
}

int TerminalCell(SIMULATION &sim, int i) {
  for (int j = 0; j < sim.ncells; j++)
    if (sim.cells[j].parent == i) return 1;
  return 0;
}

void WriteVector(FILE *fp, XYZ p1, XYZ p2) {
  fprintf(fp, "%g %g %g %g %g %g\n", p1.x, p1.y, p1.z, p2.x, p2.y, p2.z);
}

static double PlaneValue(PLANE pl, XYZ p) { return pl.a * p.x + pl.b * p.y + pl.c * p.z + pl.d; }

// Writes the part of segment from->to that lies inside the slab and marks
// both cells traced.
static void WritePiece(SIMULATION &sim, int from, int to, FILE *fp, PLANE upper, PLANE lower) {
  XYZ a = sim.cells[from].p;
  XYZ b = sim.cells[to].p;
  sim.cells[from].traced = 1;
  sim.cells[to].traced = 1;

  int aabove = PlaneValue(upper, a) < 0, abelow = PlaneValue(lower, a) < 0;
  int babove = PlaneValue(upper, b) < 0, bbelow = PlaneValue(lower, b) < 0;
  // The classification guarantees a crossing; should rounding deny it, both
  // ends lie within 1e-5 of the bound and a stands in for the crossing.
  XYZ p1 = a, p2 = a;

  if ((aabove && babove) || (abelow && bbelow)) return;
  if ((aabove && bbelow) || (abelow && babove)) {
    LineSegmentPlane(&p1, a, b, upper);
    LineSegmentPlane(&p2, a, b, lower);
    WriteVector(fp, p1, p2);
  } else if (!aabove && !abelow && !babove && !bbelow) {
    WriteVector(fp, a, b);
  } else if (aabove) {
    LineSegmentPlane(&p1, a, b, upper);
    WriteVector(fp, p1, b);
  } else if (babove) {
    LineSegmentPlane(&p1, a, b, upper);
    WriteVector(fp, p1, a);
  } else if (abelow) {
    // Below the lower bound the inside end comes first, unlike above.
    LineSegmentPlane(&p1, a, b, lower);
    WriteVector(fp, b, p1);
  } else {
    LineSegmentPlane(&p1, a, b, lower);
    WriteVector(fp, a, p1);
  }
}

struct BRANCHSTEP {
  int from, to;
  int written;
};

// Depth first: after a segment, its untraced siblings (each a walk of its
// own), then its first untraced child as a continuation of this walk. An
// explicit stack keeps long chains and deep branching off the call stack.
void TraceBranch(SIMULATION &sim, int from, int to, FILE *fp, int i, PLANE upper, PLANE lower) {
  std::vector<BRANCHSTEP> stack;
  BRANCHSTEP first = {from, to, 0};
  stack.push_back(first);
  while (!stack.empty()) {
    BRANCHSTEP s = stack.back();
    if (!s.written) {
      WritePiece(sim, s.from, s.to, fp, upper, lower);
      stack.back().written = 1;
    }
    int m;
    if (NextChild(sim, s.from, &m)) {
      if (i == 0) fprintf(stderr, "      Tracing branch node from %d -> %d\n", s.from, m);
      BRANCHSTEP sibling = {s.from, m, 0};
      stack.push_back(sibling);
      continue;
    }
    if (NextChild(sim, s.to, &m)) {
      if (i == 0 && sim.options.debug) fprintf(stderr, "      Tracing branch node from %d -> %d\n", s.to, m);
      BRANCHSTEP next = {s.to, m, 0};
      stack.back() = next;
      continue;
    }
    stack.pop_back();
  }
}

static std::string SlicePath(const char *dir, int i) {
  char name[32];
  snprintf(name, sizeof(name), "slice_%03d.txt", i);
  if (dir == NULL || dir[0] == '\0') return name;
  std::string path = dir;
  if (path[path.size() - 1] != '/') path += '/';
  return path + name;
}

int ProcessSliceIn(SIMULATION &sim, const char *dir, int i, PLANE upper, PLANE lower) {
  std::string path = SlicePath(dir, i);
  FILE *fp = fopen(path.c_str(), "w");
  if (fp == NULL) {
    fprintf(stderr, "Failed to open output slice file \"%s\"\n", path.c_str());
    return 0;
  }
  for (int j = 0; j < sim.ncells; j++) sim.cells[j].traced = 0;

  if (sim.sliceindexed) BuildChildIndex(sim);
  sim.childindex.active = sim.sliceindexed;
  // Seeds in index order. After a seed's trees are walked, every earlier
  // seed is traced, so going on from j finds the same next seed as a rescan
  // from 0 would.
  for (int j = 0; j < sim.ncells; j++) {
    if (sim.cells[j].parent >= 0 || sim.cells[j].traced) continue;
    sim.cells[j].traced = 1;
    if (i == 0) fprintf(stderr, "   Processing seed node %d\n", j);
    int k;
    while (NextChild(sim, j, &k)) {
      if (i == 0) fprintf(stderr, "      Tracing branch node from %d -> %d\n", j, k);
      TraceBranch(sim, j, k, fp, i, upper, lower);
    }
  }
  sim.childindex.active = 0;
  fclose(fp);
  return 1;
}

int ProcessSlice(SIMULATION &sim, int i, PLANE upper, PLANE lower) {
  return ProcessSliceIn(sim, NULL, i, upper, lower);
}

int DoSliceIn(SIMULATION &sim, const char *dir, int nslices, XYZ n) {
  double nn = DotProduct(n, n);
  // The stop rule alone gives nslices slabs; the count guards it against
  // rounding in the last boundary.
  for (int i = 0; i < nslices; i++) {
    double r = sim.growthstate.radius;
    double d1 = r - 2 * i * r / nslices;
    if (d1 <= -r) break;
    double d2 = r - (2 * i + 2) * r / nslices;
    fprintf(stderr, "Slice %d, distance: %g to %g\n", i, d1, d2);
    PLANE upper = {-n.x, -n.y, -n.z, d1 * nn};
    PLANE lower = {n.x, n.y, n.z, -d2 * nn};
    if (!ProcessSliceIn(sim, dir, i, upper, lower)) return 0;
  }
  return 1;
}

int DoSlice(SIMULATION &sim, int nslices, XYZ n) { return DoSliceIn(sim, NULL, nslices, n); }
