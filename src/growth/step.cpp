#include <limits.h>  // INT_MAX
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

long long growthvetoes[NVETOES];

static void Veto(const char *why) {
  if (options.debug) fwrite(why, strlen(why), 1, stderr);
}

// The plain search: every cell, newest first, until one is within a branch
// length. Returns 1 on a touch, the cell in *best.
static int ScanCells(XYZ p, int associate, int nroots, int rootclass, int *best) {
  double dmin = 1e32;
  double reach = growthstate.branchlength * growthstate.branchlength;
  for (int i = ncells - 1; i >= 0; i--) {
    if (associate && i % nroots != rootclass) continue;
    // Signed differences against the squared distance: a coarse early
    // rejection, kept as it always was.
    double dx = cells[i].p.x - p.x;
    if (dx > dmin) continue;
    double dy = cells[i].p.y - p.y;
    if (dy > dmin) continue;
    double dz = cells[i].p.z - p.z;
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
static int CrossesBranch(int best) {
  GROWTHSTATE &g = growthstate;
  double range = g.intersectrange * 0.01 * g.branchlength;
  XYZ pa, pb;
  double mua, mub;
  for (int i = 0; i < ncells; i++) {
    if (i == best || cells[i].parent < 0) continue;
    // Closest points of the infinite lines: the parameters are not checked.
    if (LineLineIntersect(&pa, &pb, &mua, &mub, g.particle, cells[best].p, cells[i].p,
                          cells[cells[i].parent].p) &&
        VectorLength(pa, pb) < range)
      return 1;
  }
  return 0;
}

// CrossesBranch with the work that does not depend on cell i taken out of
// the loop: the same operations in the same order as LineLineIntersect, so
// the same answers. A particle on top of cell best makes every test fail.
static int CrossesBranchHoisted(int best) {
  const double EPS = 1e-5;
  GROWTHSTATE &g = growthstate;
  double range = g.intersectrange * 0.01 * g.branchlength;
  XYZ p1 = g.particle, p2 = cells[best].p;
  XYZ p21 = {p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
  if (fabs(p21.x) < EPS && fabs(p21.y) < EPS && fabs(p21.z) < EPS) return 0;
  double d2121 = DotProduct(p21, p21);
  const CELL *c = cells.data();
  for (int i = 0; i < ncells; i++) {
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

// The cutting and gap vetoes: through the surface's index, or over every
// facet for the plain search (the reference the index must match).
static int CutsSurface(int best, int indexed) {
  if (!indexed) return ScanCutsSurface(stltri.data(), nstltri, growthstate.particle, cells[best].p);
  if (!SurfaceIndexCurrent(&surfaceindex, stltri.data(), nstltri))
    BuildSurfaceIndex(&surfaceindex, stltri.data(), nstltri);
  return SurfaceIndexCuts(&surfaceindex, stltri.data(), nstltri, growthstate.particle, cells[best].p, NULL);
}

// 1 when the particle sits on the normal's side of a facet, near one of its
// edges: it would slip through the gap between two facets.
static int PokesThroughGap(int indexed) {
  GROWTHSTATE &g = growthstate;
  if (!indexed) return ScanPokesThroughGap(stltri.data(), nstltri, g.particle, g.branchlength);
  if (!SurfaceIndexCurrent(&surfaceindex, stltri.data(), nstltri))
    BuildSurfaceIndex(&surfaceindex, stltri.data(), nstltri);
  return SurfaceIndexGap(&surfaceindex, stltri.data(), nstltri, g.particle, g.branchlength, NULL);
}

// Steps 9 to 11: 1 when a veto puts the particle back at q, where it was
// before this step.
static int Vetoed(int best, XYZ q, int indexed) {
  GROWTHSTATE &g = growthstate;
  const char *why = NULL;
  int veto = 0;
  if (g.intersectrange > 0 && (indexed ? CrossesBranchHoisted(best) : CrossesBranch(best)))
    why = "*** Self intersection\n", veto = VETO_BRANCH;
  else if (CutsSurface(best, indexed))
    why = "*** Cuts constraint surface\n", veto = VETO_SURFACE;
  else if (PokesThroughGap(indexed))
    why = "*** Gap poke through\n", veto = VETO_GAP;
  if (why == NULL) return 0;
  growthvetoes[veto]++;
  Veto(why);
  g.particle = q;
  return 1;
}

// Step 13's count of parent steps from cell best. It stops at index 0 as
// well as at -1, so cells under root 0 get a larger share than the same
// shape under another root (kept). The index keeps each cell's count.
static int HopsFrom(int best, int fast) {
  if (fast) return 1 + searchindex.hops[best];
  int d = 1;
  int j = best;
  do {
    j = cells[j].parent;
    d++;
  } while (j > 0);
  return d;
}

// Step 13's weights along the path from best to its root, with the
// largest weight over all cells kept up to date where the index knows it
// (weights only grow and cells only come). The packed parents keep the
// walk out of the cells' cache misses, which then overlap.
static void AddShare(int best, int d, int fast) {
  SEARCHINDEX &s = searchindex;
  if (fast && s.maxweightknown) {
    double share = 1.0 / d, maxweight = s.maxweight;
    CELL *c = cells.data();
    const int *parent = s.parent.data();
    for (int j = best; j >= 0; j = parent[j]) {
      double w = c[j].weight + share;
      c[j].weight = w;
      if (w > maxweight) maxweight = w;
    }
    s.maxweight = maxweight;
    return;
  }
  for (int j = best; j >= 0; j = cells[j].parent) cells[j].weight += 1.0 / d;
  if (fast) {
    s.maxweight = 0;
    for (int i = 0; i < ncells; i++)
      if (cells[i].weight > s.maxweight) s.maxweight = cells[i].weight;
    s.maxweightknown = 1;
  }
}

// Step 14 from the index's maxima over all cells (retained ones included).
static void KeepIndexedTotals(void) {
  GROWTHSTATE &g = growthstate;
  const SEARCHINDEX &s = searchindex;
  g.maxweight = s.maxweight;
  if (s.maxdist > g.radius) g.radius = s.maxdist;
}

// Step 14 over every cell: a restart may have kept cells that lie beyond
// the starting radius.
static void ScanTotals(void) {
  GROWTHSTATE &g = growthstate;
  double maxweight = 0;
  double radius = g.radius;
  for (int i = 0; i < ncells; i++) {
    if (cells[i].weight > maxweight) maxweight = cells[i].weight;
    double dist = Modulus(cells[i].p);
    if (dist > radius) radius = dist;
  }
  g.maxweight = maxweight;
  g.radius = radius;
}

// Steps 9 to 14, once a particle touched and stuck: rare next to the walk,
// and kept out of line so that the walk's own code stays small.
__attribute__((noinline)) static void Stick(int best, XYZ q, int indexed) {
  GROWTHSTATE &g = growthstate;
  if (Vetoed(best, q, indexed)) return;

  // 12. Stick.
  unsigned revision = cellsrevision;
  AppendCell(g.particle, 0, best);
  if (indexed) IndexAppendedCell(revision);

  int fast = indexed && searchindex.valid;
  if (fast && growthwalk == WALK_FAST) {
    // The fast walk owes the shares and adds them up once (SettleWeights):
    // the walk to the root for every cell would cost more than the jumps.
    std::vector<double> &owed = searchindex.owed;
    if ((int)owed.size() < ncells) owed.resize(2 * (size_t)ncells, 0);
    owed[best] += 1.0 / HopsFrom(best, fast);
    searchindex.owing = 1;
    KeepIndexedTotals();
    g.lifespan = 0;
    return;
  }
  AddShare(best, HopsFrom(best, fast), fast);
  if (fast)
    KeepIndexedTotals();
  else
    ScanTotals();
  g.lifespan = 0;
}

// Steps 3 to 6: the move of the particle at *p. 0 when the step out of the
// release sphere was refused (the particle is then back at q). The settings
// come as arguments so that a run of steps can read them once.
// With owe set, one root's rand draws are owed rather than made (their
// values are not needed); the plain scan makes them, as the reference.
// With atorigin set (one root at the origin, no association, draws owed)
// the drift takes a shorter road to the same numbers.
static inline int MoveParticle(XYZ *p, XYZ q, double branchlength, double limit, double bias,
                               int nroots, int associate, double rotation, int owe, int atorigin) {
  // 3. One random step of one branch length.
  XYZ u;
  u.x = GrowthDrand48() - 0.5;
  u.y = GrowthDrand48() - 0.5;
  u.z = GrowthDrand48() - 0.5;
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
    SkipGrowthRand(3);
    if (m2 > 0) {
      double l = sqrt(m2);
      p->x += b * (p->x / l);
      p->y += b * (p->y / l);
      p->z += b * (p->z / l);
    }
  } else if (bias > 0 && nroots > 0) {
    double b = bias * 0.01 * branchlength;
    // Roots may have been asked for but not placed.
    if ((int)cells.size() < nroots) ReserveCells(nroots);
    XYZ target;
    if (associate) {
      target = cells[ncells % nroots].p;
    } else {
      // x % 1 is 0: one root needs the draws but not the divisions.
      if (nroots == 1 && owe) SkipGrowthRand(3);
      int one = nroots == 1;
      int kx = one ? (owe ? 0 : (GrowthRand(), 0)) : GrowthRand() % nroots;
      int ky = one ? (owe ? 0 : (GrowthRand(), 0)) : GrowthRand() % nroots;
      int kz = one ? (owe ? 0 : (GrowthRand(), 0)) : GrowthRand() % nroots;
      target.x = cells[kx].p.x;
      target.y = cells[ky].p.y;
      target.z = cells[kz].p.z;
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
static void FinishStep(XYZ q) {
  GROWTHSTATE &g = growthstate;
  int nroots = g.nroots;

  // 7. Newest cell first; stop at the first one within a branch length.
  int associate = g.associate && nroots > 0;
  int rootclass = associate ? ncells % nroots : 0;
  int best = -1;
  int touching = 0;
  int indexed = growthsearch == SEARCH_INDEX;
  if (indexed) {
    // The aggregate or the branch length may have changed outside the step.
    if (!SearchIndexCurrent()) SyncSearchIndex();
    if (!InsideEmptyBall(g.particle)) {
      int ok;
      touching = IndexSearch(g.particle, associate, nroots, rootclass, &best, &ok);
      if (!ok) touching = ScanCells(g.particle, associate, nroots, rootclass, &best);
    }
  } else {
    touching = ScanCells(g.particle, associate, nroots, rootclass, &best);
  }

  // 8. Stickiness: the number is drawn whether or not a cell was touched.
  double r = GrowthDrand48();
  // A branch length above 1e16 is within reach of the search's starting
  // bound, so a "touch" can come with no cell found: nothing to stick to.
  if (r > g.stickiness * 0.01 || !touching || best < 0) return;
  Stick(best, q, indexed);
}

void IterateSystem(void) {
  GROWTHSTATE &g = growthstate;

  // 1. Release a new particle at the start of every life span.
  if (g.lifespan % GROWTH_LIFESPAN == 0) {
    // A particle that never sticks would carry the count past INT_MAX; it
    // starts again from 0 at a release, so lives still last 10000 steps.
    if (g.lifespan > INT_MAX - GROWTH_LIFESPAN) g.lifespan = 0;
    g.particle = GetNewParticle(g.sourcetype, g.radius + 2 * g.branchlength);
    seeds[nseeds % NSEEDS] = g.particle;
    nseeds++;
  }
  XYZ q = g.particle;
  g.lifespan++;

  if (!MoveParticle(&g.particle, q, g.branchlength, g.radius + 2 * g.branchlength, g.bias, g.nroots,
                    g.associate, g.rotation, growthsearch == SEARCH_INDEX, 0))
    return;
  FinishStep(q);
}

long IterateSystemSteps(long n) {
  if (growthwalk == WALK_FAST) return FastWalkSteps(n);
  return IterateExactSteps(n);
}

long IterateExactSteps(long n) {
  GROWTHSTATE &g = growthstate;
  const SEARCHINDEX &s = searchindex;
  if (n <= 0) return 0;
  // The run needs a proven empty ball, and every cell the move may read.
  if (growthsearch != SEARCH_INDEX || !SearchIndexCurrent() || !s.ball ||
      (int)cells.size() < g.nroots) {
    IterateSystem();
    return 1;
  }
  double branchlength = g.branchlength, limit = g.radius + 2 * g.branchlength, bias = g.bias;
  double rotation = g.rotation;
  int nroots = g.nroots, associate = g.associate;
  int atorigin = nroots == 1 && !associate && cells[0].p.x == 0 && cells[0].p.y == 0 && cells[0].p.z == 0;
  XYZ centre = s.centre;
  double safe2 = s.safe2;
  XYZ p = g.particle;
  int lifespan = g.lifespan;
  long k = 0;
  while (k < n && lifespan % GROWTH_LIFESPAN != 0) {
    XYZ q = p;
    lifespan++;
    k++;
    if (!MoveParticle(&p, q, branchlength, limit, bias, nroots, associate, rotation, 1, atorigin))
      continue;
    double dx = p.x - centre.x, dy = p.y - centre.y, dz = p.z - centre.z;
    if (dx * dx + dy * dy + dz * dz < safe2) {
      GrowthDrand48();  // 8: the stickiness number, with nothing touched
      continue;
    }
    // Out of the ball: the rest of this step as IterateSystem takes it.
    g.particle = p;
    g.lifespan = lifespan;
    FinishStep(q);
    return k;
  }
  g.particle = p;
  g.lifespan = lifespan;
  if (k == 0) {  // a new particle is due
    IterateSystem();
    return 1;
  }
  return k;
}
