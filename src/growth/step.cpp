#include <math.h>    // fabs()
#include <stdio.h>   // fwrite()
#include <string.h>  // strlen()

#include "growth/growth.h"
#include "growth/index.h"
#include "growth/random.h"
#include "growth/walk.h"
#include "surface/constraint.h"
#include "surface/stl.h"
#include "surface/surfaceindex.h"

static void Veto(SIMULATION &sim, const char *why) {
  if (sim.options.debug) fwrite(why, strlen(why), 1, stderr);
}

// The plain search: every cell, newest first, until one is within a branch
// length. Returns 1 on a touch, the cell in *best.
static int ScanCells(SIMULATION &sim, XYZ p, int associate, int nroots, int rootclass, int *best) {
  double dmin = 1e32;
  double reach = sim.growthstate.branchlength * sim.growthstate.branchlength;
  for (int i = sim.ncells - 1; i >= 0; i--) {
    if (associate && i % nroots != rootclass) continue;
    // Signed differences against the squared distance: a coarse early
    // rejection, kept as it always was.
    double dx = sim.cells[i].p.x - p.x;
    if (dx > dmin) continue;
    double dy = sim.cells[i].p.y - p.y;
    if (dy > dmin) continue;
    double dz = sim.cells[i].p.z - p.z;
    if (dz > dmin) continue;
    double d2 = dx * dx + dy * dy + dz * dz;
    if (d2 < dmin) *best = i;
    if (d2 < dmin) dmin = d2;
    if (reach > dmin) return 1;
  }
  return 0;
}

// 1 when the branch from the particle to cell best would pass within the
// intersection range of another branch. Roots have no branch and are
// skipped.
static int CrossesBranch(SIMULATION &sim, int best) {
  GROWTHSTATE &g = sim.growthstate;
  double range = g.intersectrange * 0.01 * g.branchlength;
  XYZ pa, pb;
  double mua, mub;
  for (int i = 0; i < sim.ncells; i++) {
    if (i == best || sim.cells[i].parent < 0) continue;
    // Closest points of the infinite lines: the parameters are not checked.
    if (LineLineIntersect(&pa, &pb, &mua, &mub, g.particle, sim.cells[best].p, sim.cells[i].p,
                          sim.cells[sim.cells[i].parent].p) &&
        VectorLength(pa, pb) < range)
      return 1;
  }
  return 0;
}

// CrossesBranch with the work that does not depend on cell i taken out of
// the loop: the same operations in the same order as LineLineIntersect, so
// the same answers. A particle on top of cell best makes every test fail.
static int CrossesBranchHoisted(SIMULATION &sim, int best) {
  const double EPS = 1e-5;
  GROWTHSTATE &g = sim.growthstate;
  double range = g.intersectrange * 0.01 * g.branchlength;
  XYZ p1 = g.particle, p2 = sim.cells[best].p;
  XYZ p21 = {p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
  if (fabs(p21.x) < EPS && fabs(p21.y) < EPS && fabs(p21.z) < EPS) return 0;
  double d2121 = DotProduct(p21, p21);
  const CELL *c = sim.cells.data();
  for (int i = 0; i < sim.ncells; i++) {
    if (i == best || c[i].parent < 0) continue;
    XYZ p3 = c[i].p, p4 = c[c[i].parent].p;
    XYZ p43 = {p4.x - p3.x, p4.y - p3.y, p4.z - p3.z};
    if (fabs(p43.x) < EPS && fabs(p43.y) < EPS && fabs(p43.z) < EPS) continue;
    XYZ p13 = {p1.x - p3.x, p1.y - p3.y, p1.z - p3.z};
    double d1343 = DotProduct(p13, p43);
    double d4321 = DotProduct(p43, p21);
    double d1321 = DotProduct(p13, p21);
    double d4343 = DotProduct(p43, p43);
    double denom = d2121 * d4343 - d4321 * d4321;
    if (fabs(denom) < EPS) continue;
    double mua = (d1343 * d4321 - d1321 * d4343) / denom;
    double mub = (d1343 + d4321 * mua) / d4343;
    XYZ pa = {p1.x + mua * p21.x, p1.y + mua * p21.y, p1.z + mua * p21.z};
    XYZ pb = {p3.x + mub * p43.x, p3.y + mub * p43.y, p3.z + mub * p43.z};
    if (VectorLength(pa, pb) < range) return 1;
  }
  return 0;
}

// The surface's index, made again when the facets changed.
static void KeepSurfaceIndex(SIMULATION &sim) {
  if (!SurfaceIndexCurrent(&sim.surfaceindex, sim.stltri.data(), sim.nstltri))
    BuildSurfaceIndex(&sim.surfaceindex, sim.stltri.data(), sim.nstltri);
}

// The cutting and gap vetoes: through the surface's index, or over every
// facet for the plain search (the reference the index must match).
static int CutsSurface(SIMULATION &sim, int best, int indexed) {
  if (!indexed) return ScanCutsSurface(sim.stltri.data(), sim.nstltri, sim.growthstate.particle, sim.cells[best].p);
  KeepSurfaceIndex(sim);
  return SurfaceIndexCuts(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, sim.growthstate.particle,
                          sim.cells[best].p, NULL);
}

// 1 when the particle sits on the normal's side of a facet, near one of its
// edges: it would slip through the gap between two facets.
static int PokesThroughGap(SIMULATION &sim, int indexed) {
  GROWTHSTATE &g = sim.growthstate;
  if (!indexed) return ScanPokesThroughGap(sim.stltri.data(), sim.nstltri, g.particle, g.branchlength);
  KeepSurfaceIndex(sim);
  return SurfaceIndexGap(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, g.particle, g.branchlength, NULL);
}

// Steps 9 to 11: 1 when a veto puts the particle back at q, where it was
// before this step.
static int Vetoed(SIMULATION &sim, int best, XYZ q, int indexed) {
  GROWTHSTATE &g = sim.growthstate;
  const char *why = NULL;
  int veto = 0;
  if (g.intersectrange > 0 && (indexed ? CrossesBranchHoisted(sim, best) : CrossesBranch(sim, best)))
    why = "*** Self intersection\n", veto = VETO_BRANCH;
  else if (CutsSurface(sim, best, indexed))
    why = "*** Cuts constraint surface\n", veto = VETO_SURFACE;
  else if (PokesThroughGap(sim, indexed))
    why = "*** Gap poke through\n", veto = VETO_GAP;
  if (why == NULL) return 0;
  sim.growthvetoes[veto]++;
  Veto(sim, why);
  g.particle = q;
  return 1;
}

// Step 13's count of parent steps from cell best. It stops at index 0 as
// well as at -1, so cells under root 0 get a larger share than the same
// shape under another root (kept). The index keeps each cell's count.
static int HopsFrom(SIMULATION &sim, int best, int fast) {
  if (fast) return 1 + IndexHops(sim, best);
  int d = 1;
  int j = best;
  do {
    j = sim.cells[j].parent;
    d++;
  } while (j > 0);
  return d;
}

// Step 13's weights along the path from best to its root, with the
// largest weight over all cells kept up to date where the index knows it
// (weights only grow and cells only come). The packed parents keep the
// walk out of the cells' cache misses, which then overlap.
static void AddShare(SIMULATION &sim, int best, int d, int fast) {
  SEARCHINDEX &s = sim.searchindex;
  if (fast && s.maxweightknown) {
    double share = 1.0 / d, maxweight = s.maxweight;
    CELL *c = sim.cells.data();
    const int *parent = IndexParents(sim);
    for (int j = best; j >= 0; j = parent[j]) {
      double w = c[j].weight + share;
      c[j].weight = w;
      if (w > maxweight) maxweight = w;
    }
    s.maxweight = maxweight;
    return;
  }
  for (int j = best; j >= 0; j = sim.cells[j].parent) sim.cells[j].weight += 1.0 / d;
  if (fast) {
    s.maxweight = 0;
    for (int i = 0; i < sim.ncells; i++)
      if (sim.cells[i].weight > s.maxweight) s.maxweight = sim.cells[i].weight;
    s.maxweightknown = 1;
  }
}

// Step 14 from the index's maxima over all cells (retained ones included).
static void KeepIndexedTotals(SIMULATION &sim) {
  GROWTHSTATE &g = sim.growthstate;
  const SEARCHINDEX &s = sim.searchindex;
  g.maxweight = s.maxweight;
  if (s.maxdist > g.radius) g.radius = s.maxdist;
}

// Step 14 over every cell: a restart may have kept cells that lie beyond
// the starting radius.
static void ScanTotals(SIMULATION &sim) {
  GROWTHSTATE &g = sim.growthstate;
  double maxweight = 0;
  double radius = g.radius;
  for (int i = 0; i < sim.ncells; i++) {
    if (sim.cells[i].weight > maxweight) maxweight = sim.cells[i].weight;
    double dist = Modulus(sim.cells[i].p);
    if (dist > radius) radius = dist;
  }
  g.maxweight = maxweight;
  g.radius = radius;
}

// Steps 9 to 14, once a particle touched and stuck: rare next to the walk,
// and kept out of line so that the walk's own code stays small.
__attribute__((noinline)) static void Stick(SIMULATION &sim, int best, XYZ q, int indexed) {
  GROWTHSTATE &g = sim.growthstate;
  if (Vetoed(sim, best, q, indexed)) return;

  // 12. Stick. The fast walk owes the new cell's shares; any other stick
  // first adds up what is owed (the cells owing are the newest ones).
  int owe = indexed && sim.growthwalk == WALK_FAST;
  if (!owe) SettleWeights(sim);
  unsigned revision = sim.cellsrevision;
  AppendCell(sim, g.particle, 0, best);
  if (indexed) IndexAppendedCell(sim, revision);

  int fast = indexed && sim.searchindex.valid;
  if (fast && owe) {
    // The fast walk owes the shares and adds them up once (SettleWeights):
    // the walk to the root for every cell would cost more than the jumps.
    if (!sim.searchindex.owing) {
      sim.searchindex.owing = 1;
      sim.searchindex.owedfrom = sim.ncells - 1;
    }
    KeepIndexedTotals(sim);
    g.lifespan = 0;
    return;
  }
  // Shares owed still would be counted twice by a walk to the root now.
  if (owe) SettleWeights(sim);
  AddShare(sim, best, HopsFrom(sim, best, fast), fast);
  if (fast)
    KeepIndexedTotals(sim);
  else
    ScanTotals(sim);
  g.lifespan = 0;
}

// Steps 3 to 6: the move of the particle at *p. 0 when the step out of the
// release sphere was refused (the particle is then back at q). The settings
// come as arguments so that a run of steps can read them once.
// With owe set, one root's rand draws are owed rather than made (their
// values are not needed); the plain scan makes them, as the reference.
// With atorigin set (one root at the origin, no association, draws owed)
// the drift takes a shorter road to the same numbers.
// Always in line: as a call it took twelve arguments, the simulation among
// them, and the particle through memory, every step; in line the settings
// and the generator's state stay in registers (the same operations in the
// same order, so the same cells).
__attribute__((always_inline)) static inline int MoveParticle(SIMULATION &sim, XYZ *p, XYZ q, double branchlength,
                                                              double limit, double bias, int nroots, int associate,
                                                              double rotation, int owe, int atorigin) {
  // 3. One random step of one branch length.
  XYZ u;
  u.x = GrowthDrand48(sim.random) - 0.5;
  u.y = GrowthDrand48(sim.random) - 0.5;
  u.z = GrowthDrand48(sim.random) - 0.5;
  Normalise(&u);
  p->x += branchlength * u.x;
  p->y += branchlength * u.y;
  p->z += branchlength * u.z;

  // 4. A step out of the release sphere is refused. Well inside it the
  // squared distance decides without the square root; near the sphere (or
  // with a limit that is not positive) the root is taken as always.
  double m2 = p->x * p->x + p->y * p->y + p->z * p->z;
  if ((!(limit > 0) || m2 > limit * limit * (1 - 1e-12)) && sqrt(m2) > limit) {
    *p = q;
    return 0;
  }

  // 5. Drift, away from the target by design. No roots: no drift (the
  // index arithmetic would divide by zero).
  if (bias > 0 && atorigin) {
    // 0 - p is -p exactly, whose squared length is m2, and taking p - b (-p / l)
    // as p + b (p / l) changes no bit; one subtraction less in the chain of
    // dependent arithmetic that bounds the walk.
    double b = bias * 0.01 * branchlength;
    SkipGrowthRand(sim.random, 3);
    if (m2 > 0) {
      double l = sqrt(m2);
      p->x += b * (p->x / l);
      p->y += b * (p->y / l);
      p->z += b * (p->z / l);
    }
  } else if (bias > 0 && nroots > 0) {
    double b = bias * 0.01 * branchlength;
    // Roots may have been asked for but not placed.
    if ((int)sim.cells.size() < nroots) ReserveCells(sim, nroots);
    XYZ target;
    if (associate) {
      target = sim.cells[sim.ncells % nroots].p;
    } else {
      // x % 1 is 0: one root needs the draws but not the divisions.
      if (nroots == 1 && owe) SkipGrowthRand(sim.random, 3);
      int one = nroots == 1;
      int kx = one ? (owe ? 0 : (GrowthRand(sim.random), 0)) : GrowthRand(sim.random) % nroots;
      int ky = one ? (owe ? 0 : (GrowthRand(sim.random), 0)) : GrowthRand(sim.random) % nroots;
      int kz = one ? (owe ? 0 : (GrowthRand(sim.random), 0)) : GrowthRand(sim.random) % nroots;
      target.x = sim.cells[kx].p.x;
      target.y = sim.cells[ky].p.y;
      target.z = sim.cells[kz].p.z;
    }
    XYZ v = {target.x - p->x, target.y - p->y, target.z - p->z};
    Normalise(&v);
    p->x -= b * v.x;
    p->y -= b * v.y;
    p->z -= b * v.z;
  }

  // 6. Swirl about the z axis.
  if (rotation != 0) {
    XYZ zaxis = {0, 0, 1};
    *p = ArbitraryRotate(*p, rotation * DTOR, zaxis);
  }
  return 1;
}

// Steps 7 to 14 for the particle where the move left it (q: where it was).
static void FinishStep(SIMULATION &sim, XYZ q) {
  GROWTHSTATE &g = sim.growthstate;
  int nroots = g.nroots;

  // 7. Newest cell first; stop at the first one within a branch length.
  int associate = g.associate && nroots > 0;
  int rootclass = associate ? sim.ncells % nroots : 0;
  int best = -1;
  int touching = 0;
  int indexed = sim.growthsearch == SEARCH_INDEX;
  if (indexed) {
    // The aggregate or the branch length may have changed outside the step.
    if (!SearchIndexCurrent(sim)) SyncSearchIndex(sim);
    if (!InsideEmptyBall(sim, g.particle)) {
      int ok;
      touching = IndexSearch(sim, g.particle, associate, nroots, rootclass, &best, &ok);
      if (!ok) touching = ScanCells(sim, g.particle, associate, nroots, rootclass, &best);
    }
  } else {
    touching = ScanCells(sim, g.particle, associate, nroots, rootclass, &best);
  }

  // 8. Stickiness: the number is drawn whether or not a cell was touched.
  double r = GrowthDrand48(sim.random);
  // A branch length above 1e16 is within reach of the search's starting
  // bound, so a "touch" can come with no cell found: nothing to stick to.
  if (r > g.stickiness * 0.01 || !touching || best < 0) return;
  Stick(sim, best, q, indexed);
}

void IterateSystem(SIMULATION &sim) {
  GROWTHSTATE &g = sim.growthstate;

  // 1. Release a new particle at the start of every life span.
  g.lifespan = FoldLifespan(g.lifespan);
  if (g.lifespan % GROWTH_LIFESPAN == 0) {
    g.particle = GetNewParticle(sim, g.sourcetype, g.radius + 2 * g.branchlength);
    sim.seeds[sim.nseeds % NSEEDS] = g.particle;
    sim.nseeds++;
  }
  XYZ q = g.particle;
  g.lifespan++;

  if (!MoveParticle(sim, &g.particle, q, g.branchlength, g.radius + 2 * g.branchlength, g.bias, g.nroots, g.associate,
                    g.rotation, sim.growthsearch == SEARCH_INDEX, 0))
    return;
  FinishStep(sim, q);
}

long IterateSystemSteps(SIMULATION &sim, long n) {
  if (sim.growthwalk == WALK_FAST) return FastWalkSteps(sim, n);
  return IterateExactSteps(sim, n);
}

long IterateExactSteps(SIMULATION &sim, long n) {
  GROWTHSTATE &g = sim.growthstate;
  const SEARCHINDEX &s = sim.searchindex;
  if (n <= 0) return 0;
  // The run needs a proven empty ball, and every cell the move may read.
  if (sim.growthsearch != SEARCH_INDEX || !SearchIndexCurrent(sim) || !s.ball || (int)sim.cells.size() < g.nroots) {
    IterateSystem(sim);
    return 1;
  }
  double branchlength = g.branchlength, limit = g.radius + 2 * g.branchlength, bias = g.bias;
  double rotation = g.rotation;
  int nroots = g.nroots, associate = g.associate;
  int atorigin = nroots == 1 && !associate && sim.cells[0].p.x == 0 && sim.cells[0].p.y == 0 && sim.cells[0].p.z == 0;
  XYZ centre = s.centre;
  double safe2 = s.safe2;
  XYZ p = g.particle;
  int lifespan = FoldLifespan(g.lifespan);  // the loop ends at the next multiple
  long k = 0;
  while (k < n && lifespan % GROWTH_LIFESPAN != 0) {
    XYZ q = p;
    lifespan++;
    k++;
    if (!MoveParticle(sim, &p, q, branchlength, limit, bias, nroots, associate, rotation, 1, atorigin)) continue;
    double dx = p.x - centre.x, dy = p.y - centre.y, dz = p.z - centre.z;
    if (dx * dx + dy * dy + dz * dz < safe2) {
      GrowthDrand48(sim.random);  // 8: the stickiness number, with nothing touched
      continue;
    }
    // Out of the ball: the rest of this step as IterateSystem takes it.
    g.particle = p;
    g.lifespan = lifespan;
    FinishStep(sim, q);
    return k;
  }
  g.particle = p;
  g.lifespan = lifespan;
  if (k == 0) {  // a new particle is due
    IterateSystem(sim);
    return 1;
  }
  return k;
}
