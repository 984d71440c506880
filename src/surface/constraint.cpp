#include "surface/constraint.h"

#include "surface/stl.h"

int LinePlaneIntersect(SIMULATION &sim, int i, XYZ *p, XYZ p1, XYZ p2) {
  return SegmentCutsFacet(sim.stltri[i], p, p1, p2);
}

int SegmentCutsFacet(const FACET &f, XYZ *p, XYZ p1, XYZ p2) {
  XYZ n = f.n;
  double d = f.plane.d;
  XYZ dp = {p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
  double denom = DotProduct(n, dp);
  if (fabs(denom) < 1e-5) return 0;

  double mu = -(DotProduct(n, p1) + d) / denom;
  p->x = p1.x + mu * dp.x;
  p->y = p1.y + mu * dp.y;
  p->z = p1.z + mu * dp.z;
  if (mu < 0 || mu > 1) return 0;

  // Inside when the angles subtended by the three edges sum to 360 degrees.
  XYZ w[3];
  for (int k = 0; k < 3; k++) {
    w[k].x = f.p[k].x - p->x;
    w[k].y = f.p[k].y - p->y;
    w[k].z = f.p[k].z - p->z;
    Normalise(&w[k]);
  }
  double a1 = acos(DotProduct(w[0], w[1]));
  double a2 = acos(DotProduct(w[1], w[2]));
  double a3 = acos(DotProduct(w[2], w[0]));
  double total = (a1 + a2 + a3) * RTOD - 360.0;
  // Written so that a not-a-number total counts as inside.
  if (total < -1e-5 || total > 1e-5) return 0;
  return 1;
}

int FacetGapVeto(const FACET &t, XYZ particle, double branchlength) {
  for (int k = 0; k < 3; k++) {
    XYZ closest;
    double mu;
    double dist = PointLine3D(&closest, &mu, particle, t.p[k], t.p[(k + 1) % 3]);
    if (mu >= 0 && mu <= 1 && dist < branchlength) {
      XYZ v = {particle.x - t.mid.x, particle.y - t.mid.y, particle.z - t.mid.z};
      return DotProduct(v, t.n) > 0;  // the first close edge decides for this facet
    }
  }
  return 0;
}

int ScanCutsSurface(const FACET *facets, int n, XYZ p1, XYZ p2) {
  XYZ p;
  for (int f = 0; f < n; f++)
    if (SegmentCutsFacet(facets[f], &p, p1, p2)) return 1;
  return 0;
}

int ScanPokesThroughGap(const FACET *facets, int n, XYZ particle, double branchlength) {
  for (int f = 0; f < n; f++)
    if (FacetGapVeto(facets[f], particle, branchlength)) return 1;
  return 0;
}

double PointPlaneDist(SIMULATION &sim, int i, XYZ p) {
  const PLANE &pl = sim.stltri[i].plane;
  return pl.a * p.x + pl.b * p.y + pl.c * p.z + pl.d;
}

static int InBox(XYZ bmin, XYZ bmax, XYZ p) {
  return p.x >= bmin.x && p.x <= bmax.x && p.y >= bmin.y && p.y <= bmax.y && p.z >= bmin.z &&
         p.z <= bmax.z;
}

int LineInBox(XYZ c1, XYZ c2, XYZ p1, XYZ p2) {
  XYZ bmin, bmax;
  // Ties take the second corner's value.
  bmax.x = (c1.x > c2.x) ? c1.x : c2.x;
  bmin.x = (c1.x < c2.x) ? c1.x : c2.x;
  bmax.y = (c1.y > c2.y) ? c1.y : c2.y;
  bmin.y = (c1.y < c2.y) ? c1.y : c2.y;
  bmax.z = (c1.z > c2.z) ? c1.z : c2.z;
  bmin.z = (c1.z < c2.z) ? c1.z : c2.z;

  if (p1.x > bmax.x && p2.x > bmax.x) return 0;
  if (p1.x < bmin.x && p2.x < bmin.x) return 0;
  if (p1.y > bmax.y && p2.y > bmax.y) return 0;
  if (p1.y < bmin.y && p2.y < bmin.y) return 0;
  if (p1.z > bmax.z && p2.z > bmax.z) return 0;
  if (p1.z < bmin.z && p2.z < bmin.z) return 0;

  if (InBox(bmin, bmax, p1)) return 1;
  if (InBox(bmin, bmax, p2)) return 1;
  for (int k = 1; k <= 9; k++) {
    double t = k / 10.0;
    XYZ q = {p1.x + t * (p2.x - p1.x), p1.y + t * (p2.y - p1.y), p1.z + t * (p2.z - p1.z)};
    if (InBox(bmin, bmax, q)) return 1;
  }
  return 0;
}
