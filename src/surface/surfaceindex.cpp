#include "surface/surfaceindex.h"

#include <float.h>  // FLT_MAX
#include <math.h>   // fabs(), nextafterf(), INFINITY

#include <algorithm>  // std::nth_element

#include "surface/constraint.h"
#include "surface/stl.h"

// Why the index gives exactly the scans' answers.
//
// Both vetoes are "some facet says so", so the order of the facets asked
// does not matter, a facet may be asked twice, and a facet that cannot say
// so may be left out. Every facet asked gets the scans' own per-facet
// function. Numbers beyond BIG, or not finite, could overflow the bounds
// below: such facets are asked by every query (always), such query points
// go to the full scan. Below BIG every product and sum stays finite, so an
// operation rounds by at most u = 2^-53 relative (plus 2^-1074 absolute); the
// allowances (1e-11, 1e-12 relative, 1e-300 and 1e-150 absolute) are
// thousands of times what the few operations in a row can lose.
//
// Gap (FacetGapVeto): a facet decides only through an edge whose nearest
// point has mu in [0, 1] and lies closer than the branch length L. With mu
// in [0, 1] the point p1 + mu (p2 - p1) lies on the edge, so in the facet's
// box; the computed point is off it by a few u of the coordinates, and the
// computed distance is a few u of itself off, or 1e-154 where squares
// underflow. So the particle lies within L + allowance of the facet's box
// along every axis; boxes farther than that are skipped.
//
// Cut (SegmentCutsFacet): "inside" first needs |n.dp| >= 1e-5 (dp = p2 -
// p1) and mu = -(n.p1 + d) / (n.dp) in [0, 1], that is s = n.p1 + d and
// t = n.p2 + d = s + n.dp not of one strict sign: the plane does not leave
// both ends on one side. All of it holds up to a rounding E (a few u of
// |n| (|p1| + |p2|) + |d|). Every tree keeps the intervals of n.x, n.y, n.z
// and d' = n.centre + d of its facets (planes about the surface's centre,
// so that the intervals stay narrow wherever the surface lies) and skips a
// node whose interval bounds break those conditions for all its facets.
// The crossing point p (as computed) then lies within a few u of the
// segment's box, and the angle sum says inside in two ways only.
// (1) No not-a-number: the three computed angles are within 9e-8 of the
// true angles at p (a dot product of normalised vectors is off by at most
// 13 u, and acos moves by at most 1.6 sqrt(that)), so their true sum is
// within 1e-6 of 2 pi. If p lay g outside the facet's box along an axis,
// the three directions to the vertices would all have a component of at
// least c = g / D along it (D: the farthest vertex), so they would lie in a
// cap whose boundary circle has the length 2 pi sqrt(1 - c^2), which bounds
// the perimeter of their spherical triangle, the sum: pi c^2 <= 1e-6, so
// g <= 5.7e-4 times the box's size. Boxes grown by LOCAL times their size
// hold every such p (the box tree, asked with the segment's box).
// (2) A not-a-number angle: a rounded dot product of two normalised vectors
// beyond +-1, which needs the true angle between them below 5.5e-8 or above
// pi - 5.5e-8 (NANANGLE = 1e-6 is safe). Near pi, p lies on the edge between
// the two vertices, inside the grown box. Near 0, p lies on the edge's line
// beyond an end v, at t = |p - v| from it, and the sine law in the triangle
// p, v, other end gives the angle phi between p - v and the edge's
// direction: sin phi <= NANANGLE (t + |e|) / |e|. So p lies in a thin cone
// along the edge's line from each end; the edge tree keeps the box of the
// ends, the box of the directions and the largest 1 / |e|, and a node is
// skipped when, for t up to the largest distance T from its ends' box to
// the segment's box, the fan ends + [0, T] (directions +- the largest phi)
// misses the segment's box for both signs of the direction. A facet with
// an edge so short that its cone is wide goes to the plane tree instead,
// which has the plane test alone.
//
// The nodes keep their bounds as floats rounded outward, and every test
// skips a node only on a comparison that holds: an infinite or
// not-a-number bound visits it.

static const double BIG = 1e75;       // squares and products of such numbers stay finite
static const double LOCAL = 2e-3;     // a facet's box grows by this times its size
static const double NANANGLE = 1e-6;  // bounds the angle at p of a not-a-number
static const double SHORT = 1e-5;     // edges shorter than this times the surface's size: plane tree
static const int LEAF = 4;            // items in a leaf of the facet trees
static const int EDGELEAF = 8;        // and of the edge tree, which has three times as many
static const int MAXDEPTH = 64;       // halving counts below 2^31 takes fewer levels

static int Small(double v) { return fabs(v) <= BIG; }  // 0 for not-a-number
static int SmallXYZ(XYZ p) { return Small(p.x) && Small(p.y) && Small(p.z); }

static int Tame(const FACET &f) {
  return SmallXYZ(f.p[0]) && SmallXYZ(f.p[1]) && SmallXYZ(f.p[2]) && SmallXYZ(f.n) && Small(f.plane.d);
}

static double Norm1(XYZ p) { return fabs(p.x) + fabs(p.y) + fabs(p.z); }

// A double as a float, infinite beyond the float range (where a plain
// conversion is undefined).
static float Float(double v) {
  if (v > FLT_MAX) return INFINITY;
  if (v < -FLT_MAX) return -INFINITY;
  return (float)v;
}

// Floats on the safe side of a double.
static float Down(double v) {
  float f = Float(v);
  return f > v ? nextafterf(f, -INFINITY) : f;
}
static float Up(double v) {
  float f = Float(v);
  return f < v ? nextafterf(f, INFINITY) : f;
}

// [SECTION] Keys and building

// The key of an item: its bounds (SURFACENODE's layout) and its figure for
// SURFACENODE.most. Keys 0 to 5 steer the splits.
typedef void (*ITEMKEY)(const FACET *facets, XYZ centre, int item, double lo[KEYS], double hi[KEYS], double *most);

// Keys 6 to 10: the facet's plane about centre, and its normal's
// component of the centroid about centre.
static void PlaneKeys(const FACET &t, XYZ centre, double lo[KEYS], double hi[KEYS]) {
  lo[6] = hi[6] = t.n.x;
  lo[7] = hi[7] = t.n.y;
  lo[8] = hi[8] = t.n.z;
  lo[9] = hi[9] = DotProduct(t.n, centre) + t.plane.d;
  XYZ m = {t.mid.x - centre.x, t.mid.y - centre.y, t.mid.z - centre.z};
  lo[10] = hi[10] = DotProduct(t.n, m);
}

static void BoxKey(const FACET *facets, XYZ centre, int f, double lo[KEYS], double hi[KEYS], double *most) {
  const FACET &t = facets[f];
  XYZ min = t.p[0], max = t.p[0];
  MinMaxXYZ(&min, &max, t.p[1]);
  MinMaxXYZ(&min, &max, t.p[2]);
  lo[0] = min.x, lo[1] = min.y, lo[2] = min.z, hi[0] = max.x, hi[1] = max.y, hi[2] = max.z;
  lo[3] = lo[4] = lo[5] = hi[3] = hi[4] = hi[5] = 0;
  PlaneKeys(t, centre, lo, hi);
  *most = LOCAL * (max.x - min.x + max.y - min.y + max.z - min.z) + 1e-150;
}

// The direction of edge k of facet t, its largest component positive, and
// 1 / its length (infinite for a zero length).
static void EdgeDirection(const FACET &t, int k, XYZ *u, double *inverse) {
  XYZ a = t.p[k], b = t.p[(k + 1) % 3];
  XYZ d = {b.x - a.x, b.y - a.y, b.z - a.z};
  double l = sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
  *inverse = 1 / l;
  double big = fabs(d.x) >= fabs(d.y) && fabs(d.x) >= fabs(d.z) ? d.x : fabs(d.y) >= fabs(d.z) ? d.y : d.z;
  if (big < 0) l = -l;
  *u = XYZ{d.x / l, d.y / l, d.z / l};
}

static void EdgeKey(const FACET *facets, XYZ centre, int item, double lo[KEYS], double hi[KEYS], double *most) {
  const FACET &t = facets[item / 3];
  int k = item % 3;
  XYZ min = t.p[k], max = t.p[k], u;
  MinMaxXYZ(&min, &max, t.p[(k + 1) % 3]);
  EdgeDirection(t, k, &u, most);
  lo[0] = min.x, lo[1] = min.y, lo[2] = min.z, hi[0] = max.x, hi[1] = max.y, hi[2] = max.z;
  lo[3] = hi[3] = u.x, lo[4] = hi[4] = u.y, lo[5] = hi[5] = u.z;
  PlaneKeys(t, centre, lo, hi);
}

// The plane twice: keys 0 to 3 steer the splits.
static void PlaneKey(const FACET *facets, XYZ centre, int f, double lo[KEYS], double hi[KEYS], double *most) {
  PlaneKeys(facets[f], centre, lo, hi);
  for (int d = 0; d < 4; d++) lo[d] = lo[6 + d], hi[d] = hi[6 + d];
  lo[4] = lo[5] = hi[4] = hi[5] = 0;
  *most = 0;
}

// What BuildNodes reads: the items' keys, and the centres of keys 0 to 5
// (as floats: they only choose the splits) at 6 * item.
struct TREEBUILD {
  const FACET *facets;
  XYZ centre;
  ITEMKEY key;
  std::vector<float> centres;
  double weight[6];
  std::vector<SURFACENODE> *nodes;
  int *order;
  int leaf;
};

// The nodes over order[first .. first + count - 1], split at the median
// along the axis where the item centres spread most (weighted). Returns
// the node's index.
static int BuildNodes(TREEBUILD *b, int first, int count) {
  int self = (int)b->nodes->size();
  b->nodes->push_back(SURFACENODE());
  float cmin[6], cmax[6];
  for (int d = 0; d < 6; d++) cmin[d] = INFINITY, cmax[d] = -INFINITY;
  for (int i = first; i < first + count; i++) {
    const float *c = &b->centres[6 * (size_t)b->order[i]];
    for (int d = 0; d < 6; d++) {
      if (c[d] < cmin[d]) cmin[d] = c[d];
      if (c[d] > cmax[d]) cmax[d] = c[d];
    }
  }
  int axis = 0;
  double spread = 0;
  for (int d = 0; d < 6; d++) {
    double w = b->weight[d] * ((double)cmax[d] - cmin[d]);
    if (w > spread) spread = w, axis = d;
  }
  SURFACENODE node;
  node.first = first;
  node.count = count;
  node.right = -1;
  node.most = 0;
  // Items with one key (coplanar facets in the plane tree) stay together.
  if (count <= b->leaf || !(spread > 0)) {
    double lo[KEYS], hi[KEYS], most, nlo[KEYS], nhi[KEYS], nmost = 0;
    for (int d = 0; d < KEYS; d++) nlo[d] = INFINITY, nhi[d] = -INFINITY;
    for (int i = first; i < first + count; i++) {
      b->key(b->facets, b->centre, b->order[i], lo, hi, &most);
      for (int d = 0; d < KEYS; d++) {
        if (lo[d] < nlo[d]) nlo[d] = lo[d];
        if (hi[d] > nhi[d]) nhi[d] = hi[d];
      }
      if (most > nmost) nmost = most;
    }
    for (int d = 0; d < KEYS; d++) node.lo[d] = Down(nlo[d]), node.hi[d] = Up(nhi[d]);
    node.most = Up(nmost);
    (*b->nodes)[self] = node;
    return self;
  }
  int half = count / 2;
  const float *c = b->centres.data();
  std::nth_element(b->order + first, b->order + first + half, b->order + first + count,
                   [&](int f, int g) { return c[6 * (size_t)f + axis] < c[6 * (size_t)g + axis]; });
  BuildNodes(b, first, half);
  node.right = BuildNodes(b, first + half, count - half);
  node.count = 0;
  const SURFACENODE &l = (*b->nodes)[self + 1], &r = (*b->nodes)[node.right];
  for (int d = 0; d < KEYS; d++) {
    node.lo[d] = l.lo[d] < r.lo[d] ? l.lo[d] : r.lo[d];
    node.hi[d] = l.hi[d] > r.hi[d] ? l.hi[d] : r.hi[d];
  }
  node.most = l.most > r.most ? l.most : r.most;
  (*b->nodes)[self] = node;
  return self;
}

// A tree over the items in *order (numbers below nitems) with the given key.
static void BuildTree(const FACET *facets, XYZ centre, ITEMKEY key, const double weight[6], int nitems, int leaf,
                      std::vector<int> *order, std::vector<SURFACENODE> *nodes) {
  nodes->clear();
  if (order->empty()) return;
  TREEBUILD b;
  b.facets = facets;
  b.centre = centre;
  b.key = key;
  b.centres.assign(6 * (size_t)nitems, 0);
  for (int item : *order) {
    double lo[KEYS], hi[KEYS], most;
    key(facets, centre, item, lo, hi, &most);
    for (int d = 0; d < 6; d++) b.centres[6 * (size_t)item + d] = Float(0.5 * lo[d] + 0.5 * hi[d]);
  }
  for (int d = 0; d < 6; d++) b.weight[d] = weight[d];
  b.nodes = nodes;
  b.order = order->data();
  b.leaf = leaf;
  nodes->reserve(4 * order->size() / leaf + 1);
  BuildNodes(&b, 0, (int)order->size());
}

void BuildSurfaceIndex(SURFACEINDEX *s, const FACET *facets, int n) {
  s->facets = facets;
  s->n = n;
  s->always.clear();
  s->boxorder.clear();
  s->edgeorder.clear();
  s->planeorder.clear();
  XYZ min = {INFINITY, INFINITY, INFINITY}, max = {-INFINITY, -INFINITY, -INFINITY};
  s->reach = s->nmax = s->nnorm = s->dmax = 0;
  for (int f = 0; f < n; f++) {
    const FACET &t = facets[f];
    if (!Tame(t)) {
      s->always.push_back(f);
      continue;
    }
    s->boxorder.push_back(f);
    for (int k = 0; k < 3; k++) {
      MinMaxXYZ(&min, &max, t.p[k]);
      if (Norm1(t.p[k]) > s->reach) s->reach = Norm1(t.p[k]);
    }
    double m = fabs(t.n.x) > fabs(t.n.y) ? fabs(t.n.x) : fabs(t.n.y);
    if (fabs(t.n.z) > m) m = fabs(t.n.z);
    if (m > s->nmax) s->nmax = m;
    if (Modulus(t.n) > s->nnorm) s->nnorm = Modulus(t.n);
    if (fabs(t.plane.d) > s->dmax) s->dmax = fabs(t.plane.d);
  }
  XYZ c = {0, 0, 0};
  double size = 0;
  if (!s->boxorder.empty()) {
    c = XYZ{0.5 * (min.x + max.x), 0.5 * (min.y + max.y), 0.5 * (min.z + max.z)};
    size = Norm1(XYZ{max.x - min.x, max.y - min.y, max.z - min.z});
  }
  s->centre = c;
  for (int f : s->boxorder) {
    double d = fabs(DotProduct(facets[f].n, c) + facets[f].plane.d);
    if (d > s->dmax) s->dmax = d;
    int sliver = 0;
    for (int k = 0; k < 3; k++) {
      XYZ u;
      double inverse;
      EdgeDirection(facets[f], k, &u, &inverse);
      if (!(inverse * SHORT * size < 1)) sliver = 1;
    }
    if (sliver)
      s->planeorder.push_back(f);
    else
      for (int k = 0; k < 3; k++) s->edgeorder.push_back(3 * f + k);
  }
  const double even[6] = {1, 1, 1, 0, 0, 0};
  BuildTree(facets, c, BoxKey, even, n, LEAF, &s->boxorder, &s->boxes);
  // A direction's spread moves an edge's line by up to a tenth of the
  // surface's size times as much as its ends' spread.
  const double lines[6] = {1, 1, 1, 0.1 * size, 0.1 * size, 0.1 * size};
  BuildTree(facets, c, EdgeKey, lines, 3 * n, EDGELEAF, &s->edgeorder, &s->edges);
  const double planar[6] = {size, size, size, 1, 0, 0};
  BuildTree(facets, c, PlaneKey, planar, n, LEAF, &s->planeorder, &s->planes);
  s->valid = 1;
}

int SurfaceIndexCurrent(const SURFACEINDEX *s, const FACET *facets, int n) {
  return s->valid && s->facets == facets && s->n == n;
}

// [SECTION] Queries

// [lo, hi] * a added to [*sumlo, *sumhi].
static inline void AddProduct(double lo, double hi, double a, double *sumlo, double *sumhi) {
  if (a >= 0) {
    *sumlo += lo * a;
    *sumhi += hi * a;
  } else {
    *sumlo += hi * a;
    *sumhi += lo * a;
  }
}

// What the cutting veto's node tests read: the segment, about the centre
// too, and the allowances.
struct SEGMENT {
  XYZ p1, p2;
  XYZ a, b, dp;     // p1 and p2 about the centre, p2 - p1
  double la, lb;    // |a| and |b|, times the longest normal, rounded up
  XYZ lo, hi;       // where the crossing point can be
  double e;         // rounding of the plane tests
  double parallel;  // the smallest |n.dp| of a crossing, less e
  double pad;       // rounding of the fans
};

// 1 when no facet of the node can be crossed by the segment (keys 6 to 9:
// its planes): both ends strictly on one side of every plane, or every
// plane within 1e-5 of parallel to it. Besides the intervals' products,
// |n.a| <= |n| |a| bounds s and t: no plane is crossed between points
// nearer the centre than all the planes.
static int PlanesMissed(const SURFACENODE &node, const SEGMENT &g) {
  const float *lo = node.lo + 6, *hi = node.hi + 6;
  double slo = lo[3], shi = hi[3], tlo = lo[3], thi = hi[3], qlo = 0, qhi = 0;
  if (lo[3] - g.la > g.e && lo[3] - g.lb > g.e) return 1;
  if (hi[3] + g.la < -g.e && hi[3] + g.lb < -g.e) return 1;
  AddProduct(lo[0], hi[0], g.a.x, &slo, &shi);
  AddProduct(lo[1], hi[1], g.a.y, &slo, &shi);
  AddProduct(lo[2], hi[2], g.a.z, &slo, &shi);
  AddProduct(lo[0], hi[0], g.b.x, &tlo, &thi);
  AddProduct(lo[1], hi[1], g.b.y, &tlo, &thi);
  AddProduct(lo[2], hi[2], g.b.z, &tlo, &thi);
  AddProduct(lo[0], hi[0], g.dp.x, &qlo, &qhi);
  AddProduct(lo[1], hi[1], g.dp.y, &qlo, &qhi);
  AddProduct(lo[2], hi[2], g.dp.z, &qlo, &qhi);
  return (slo > g.e && tlo > g.e) || (shi < -g.e && thi < -g.e) || (qhi < g.parallel && qlo > -g.parallel);
}

// 1 when the node's boxes, grown by most, miss where the crossing point can be.
static int BoxesMissed(const SURFACENODE &node, const SEGMENT &g) {
  double m = node.most;
  return g.lo.x > node.hi[0] + m || g.hi.x < node.lo[0] - m || g.lo.y > node.hi[1] + m || g.hi.y < node.lo[1] - m ||
         g.lo.z > node.hi[2] + m || g.hi.z < node.lo[2] - m;
}

// 1 when no cone along the node's edges can hold the crossing point: the
// fan of the ends' box along the directions (either sign) for up to the
// farthest distance T, the directions widened by the cone's largest angle
// there, misses where the point can be.
static int LinesMissed(const SURFACENODE &node, const SEGMENT &g) {
  double m[3], q[3] = {g.lo.x, g.lo.y, g.lo.z}, r[3] = {g.hi.x, g.hi.y, g.hi.z};
  for (int k = 0; k < 3; k++) {
    double u = fabs(r[k] - node.lo[k]), v = fabs(node.hi[k] - q[k]);
    m[k] = u > v ? u : v;
  }
  double far = sqrt(m[0] * m[0] + m[1] * m[1] + m[2] * m[2]) * (1 + 1e-12);
  double sine = NANANGLE * (far * node.most + 1) * (1 + 1e-9);
  if (!(sine < 1)) return 0;
  // asin(x) <= x pi / 2, and a chord is shorter than its arc.
  double spread = sine * 1.5707963267948966 * (1 + 1e-9) + 1e-12;
  double pad = g.pad + 1e-11 * far;
  for (int sign = 1; sign >= -1; sign -= 2) {
    int k = 0;
    for (; k < 3; k++) {
      double dlo = sign > 0 ? node.lo[3 + k] : -node.hi[3 + k];
      double dhi = sign > 0 ? node.hi[3 + k] : -node.lo[3 + k];
      double flo = far * (dlo - spread), fhi = far * (dhi + spread);
      double fanlo = node.lo[k] + (flo < 0 ? flo : 0) - pad, fanhi = node.hi[k] + (fhi > 0 ? fhi : 0) + pad;
      if (fanlo > r[k] || fanhi < q[k]) break;
    }
    if (k == 3) return 0;
  }
  return 1;
}

// Asks the facets of one tree whose nodes the test does not rule out;
// items are facets, or edges (3 f + k) when edges is set. 1 on a cut.
static int TreeCuts(const std::vector<SURFACENODE> &nodes, const std::vector<int> &order, int edges,
                    int (*missed)(const SURFACENODE &, const SEGMENT &), const FACET *facets, const SEGMENT &g,
                    int *count) {
  XYZ p;
  int stack[MAXDEPTH];
  int top = 0;
  if (!nodes.empty()) stack[top++] = 0;
  while (top > 0) {
    int k = stack[--top];
    const SURFACENODE &node = nodes[k];
    if (missed(node, g) || PlanesMissed(node, g)) continue;
    if (node.count == 0) {
      stack[top++] = node.right;
      stack[top++] = k + 1;
      continue;
    }
    for (int i = node.first; i < node.first + node.count; i++, (*count)++)
      if (SegmentCutsFacet(facets[edges ? order[i] / 3 : order[i]], &p, g.p1, g.p2)) return 1;
  }
  return 0;
}

static int NothingMissed(const SURFACENODE &, const SEGMENT &) { return 0; }

int SurfaceIndexCuts(const SURFACEINDEX *s, const FACET *facets, int n, XYZ p1, XYZ p2, int *asked) {
  XYZ p;
  int count = 0, cut = 0;
  if (!SmallXYZ(p1) || !SmallXYZ(p2)) {
    if (asked) *asked = n;
    return ScanCutsSurface(facets, n, p1, p2);
  }
  for (size_t i = 0; i < s->always.size() && !cut; i++, count++)
    cut = SegmentCutsFacet(facets[s->always[i]], &p, p1, p2);
  SEGMENT g;
  XYZ c = s->centre;
  g.p1 = p1;
  g.p2 = p2;
  g.a = XYZ{p1.x - c.x, p1.y - c.y, p1.z - c.z};
  g.b = XYZ{p2.x - c.x, p2.y - c.y, p2.z - c.z};
  g.dp = XYZ{p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
  g.la = Modulus(g.a) * s->nnorm * (1 + 1e-12);
  g.lb = Modulus(g.b) * s->nnorm * (1 + 1e-12);
  double slack = 1e-11 * (Norm1(p1) + Norm1(p2)) + 1e-300;
  g.lo = g.hi = p1;
  MinMaxXYZ(&g.lo, &g.hi, p2);
  g.lo = XYZ{g.lo.x - slack, g.lo.y - slack, g.lo.z - slack};
  g.hi = XYZ{g.hi.x + slack, g.hi.y + slack, g.hi.z + slack};
  g.e = 1e-11 * (s->nmax * (Norm1(p1) + Norm1(p2) + 2 * Norm1(c)) + s->dmax) + 1e-300;
  g.parallel = 1e-5 - g.e;
  g.pad = 1e-11 * s->reach + 1e-300;
  // Near a facet first, where a cut through the surface is found; then the
  // facets with a short edge, by their planes alone; then far from a facet,
  // near the lines of its edges.
  if (!cut) cut = TreeCuts(s->boxes, s->boxorder, 0, BoxesMissed, facets, g, &count);
  if (!cut) cut = TreeCuts(s->planes, s->planeorder, 0, NothingMissed, facets, g, &count);
  if (!cut) cut = TreeCuts(s->edges, s->edgeorder, 1, LinesMissed, facets, g, &count);
  if (asked) *asked = count;
  return cut;
}

int SurfaceIndexGap(const SURFACEINDEX *s, const FACET *facets, int n, XYZ particle, double branchlength,
                    int *asked) {
  int count = 0, gap = 0;
  if (!SmallXYZ(particle) || !Small(branchlength)) {
    if (asked) *asked = n;
    return ScanPokesThroughGap(facets, n, particle, branchlength);
  }
  for (size_t i = 0; i < s->always.size() && !gap; i++, count++)
    gap = FacetGapVeto(facets[s->always[i]], particle, branchlength);
  double r = branchlength + 1e-11 * (fabs(branchlength) + s->reach) + 1e-150;
  double x = particle.x, y = particle.y, z = particle.z;
  // A facet vetoes only with the particle on its normal's side of its
  // centroid: n.(particle - centre) - n.(mid - centre) > 0 but for rounding.
  XYZ c = s->centre, a = {x - c.x, y - c.y, z - c.z};
  double la = Modulus(a) * s->nnorm * (1 + 1e-12);
  double e = 1e-11 * (s->nmax * (Norm1(particle) + 2 * Norm1(c) + s->reach)) + 1e-300;
  int stack[MAXDEPTH];
  int top = 0;
  if (!gap && !s->boxes.empty()) stack[top++] = 0;
  while (top > 0 && !gap) {
    int k = stack[--top];
    const SURFACENODE &node = s->boxes[k];
    if (x < node.lo[0] - r || x > node.hi[0] + r || y < node.lo[1] - r || y > node.hi[1] + r ||
        z < node.lo[2] - r || z > node.hi[2] + r)
      continue;
    double lo = 0, hi = 0;
    AddProduct(node.lo[6], node.hi[6], a.x, &lo, &hi);
    AddProduct(node.lo[7], node.hi[7], a.y, &lo, &hi);
    AddProduct(node.lo[8], node.hi[8], a.z, &lo, &hi);
    if ((hi < la ? hi : la) - node.lo[10] < -e) continue;
    if (node.count == 0) {
      stack[top++] = node.right;
      stack[top++] = k + 1;
      continue;
    }
    for (int i = node.first; i < node.first + node.count && !gap; i++, count++)
      gap = FacetGapVeto(facets[s->boxorder[i]], particle, branchlength);
  }
  if (asked) *asked = count;
  return gap;
}
