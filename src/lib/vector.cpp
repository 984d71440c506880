#include "lib/vector.h"

#include <sys/time.h>  // gettimeofday()

int VectorEqual(XYZ p1, XYZ p2) {
  double d = p1.x - p2.x;
  if (d > 1e-6 || d < -1e-6) return 0;
  d = p1.y - p2.y;
  if (d > 1e-6 || d < -1e-6) return 0;
  d = p1.z - p2.z;
  if (d > 1e-6 || d < -1e-6) return 0;
  return 1;
}

XYZ CalcNormal(XYZ p1, XYZ p2, XYZ p3) {
  XYZ a = {p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
  XYZ b = {p3.x - p1.x, p3.y - p1.y, p3.z - p1.z};
  XYZ c = CrossProduct(a, b);
  double l2 = c.x * c.x + c.y * c.y + c.z * c.z;
  if (l2 > 0) {
    double l = sqrt(l2);
    c.x /= l;
    c.y /= l;
    c.z /= l;
    return c;
  }
  XYZ zero = {0, 0, 0};
  return zero;
}

void MinMaxXYZ(XYZ *min, XYZ *max, XYZ p) {
  min->x = (p.x > min->x) ? min->x : p.x;
  min->y = (p.y > min->y) ? min->y : p.y;
  min->z = (p.z > min->z) ? min->z : p.z;
  max->x = (max->x > p.x) ? max->x : p.x;
  max->y = (max->y > p.y) ? max->y : p.y;
  max->z = (max->z > p.z) ? max->z : p.z;
}

XYZ RotateX(XYZ p, double angle) {
  double s = sin(angle), c = cos(angle);
  XYZ q = {p.x, p.y * c + p.z * s, p.z * c - p.y * s};
  return q;
}

XYZ RotateY(XYZ p, double angle) {
  double s = sin(angle), c = cos(angle);
  XYZ q = {p.x * c - p.z * s, p.y, p.z * c + p.x * s};
  return q;
}

XYZ RotateZ(XYZ p, double angle) {
  double s = sin(angle), c = cos(angle);
  XYZ q = {p.x * c + p.y * s, p.y * c - p.x * s, p.z};
  return q;
}

XYZ ArbitraryRotate(XYZ p, double theta, XYZ r) {
  Normalise(&r);
  double c = cos(theta), s = sin(theta), t = 1 - c;
  XYZ q;
  q.x = (t * r.x * r.x + c) * p.x + (t * r.x * r.y - s * r.z) * p.y + (t * r.x * r.z + s * r.y) * p.z;
  q.y = (t * r.x * r.y + s * r.z) * p.x + (t * r.y * r.y + c) * p.y + (t * r.y * r.z - s * r.x) * p.z;
  q.z = (t * r.x * r.z - s * r.y) * p.x + (t * r.y * r.z + s * r.x) * p.y + (t * r.z * r.z + c) * p.z;
  return q;
}

double PointLine3D(XYZ *closest, double *mu, XYZ p, XYZ p1, XYZ p2) {
  XYZ d = {p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
  double l = d.x * d.x + d.y * d.y + d.z * d.z;
  if (l < 1e-5) {
    *mu = 0;
    *closest = p1;
  } else {
    XYZ pp1 = {p.x - p1.x, p.y - p1.y, p.z - p1.z};
    *mu = DotProduct(pp1, d) / l;
    closest->x = p1.x + *mu * d.x;
    closest->y = p1.y + *mu * d.y;
    closest->z = p1.z + *mu * d.z;
  }
  return VectorLength(p, *closest);
}

int LineLineIntersect(XYZ *pa, XYZ *pb, double *mua, double *mub, XYZ p1, XYZ p2, XYZ p3, XYZ p4) {
  const double EPS = 1e-5;
  XYZ p43 = {p4.x - p3.x, p4.y - p3.y, p4.z - p3.z};
  if (fabs(p43.x) < EPS && fabs(p43.y) < EPS && fabs(p43.z) < EPS) return 0;
  XYZ p21 = {p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
  if (fabs(p21.x) < EPS && fabs(p21.y) < EPS && fabs(p21.z) < EPS) return 0;
  XYZ p13 = {p1.x - p3.x, p1.y - p3.y, p1.z - p3.z};

  double d1343 = DotProduct(p13, p43);
  double d4321 = DotProduct(p43, p21);
  double d1321 = DotProduct(p13, p21);
  double d4343 = DotProduct(p43, p43);
  double d2121 = DotProduct(p21, p21);

  double denom = d2121 * d4343 - d4321 * d4321;
  if (fabs(denom) < EPS) return 0;

  *mua = (d1343 * d4321 - d1321 * d4343) / denom;
  *mub = (d1343 + d4321 * (*mua)) / d4343;
  pa->x = p1.x + *mua * p21.x;
  pa->y = p1.y + *mua * p21.y;
  pa->z = p1.z + *mua * p21.z;
  pb->x = p3.x + *mub * p43.x;
  pb->y = p3.y + *mub * p43.y;
  pb->z = p3.z + *mub * p43.z;
  return 1;
}

int LineSegmentPlane(XYZ *p, XYZ p1, XYZ p2, PLANE plane) {
  double denom = plane.a * (p1.x - p2.x) + plane.b * (p1.y - p2.y) + plane.c * (p1.z - p2.z);
  if (fabs(denom) < 1e-5) return 0;
  double mu = (plane.a * p1.x + plane.b * p1.y + plane.c * p1.z + plane.d) / denom;
  if (mu < 0 || mu > 1) return 0;
  p->x = p1.x + mu * (p2.x - p1.x);
  p->y = p1.y + mu * (p2.y - p1.y);
  p->z = p1.z + mu * (p2.z - p1.z);
  return 1;
}

double GetRunTime(void) {
  struct timeval tp;
  gettimeofday(&tp, NULL);
  return tp.tv_sec + tp.tv_usec / 1000000.0;
}

int ReadLine(FILE *fptr, char *s, int lmax) {
  int i = 0, c;
  s[0] = '\0';
  while ((c = fgetc(fptr)) != EOF) {
    if (c == '\n' || c == '\r') return 1;
    // A buffer of lmax + 1 bytes with lmax < 1 holds only the terminator:
    // the line is read and dropped rather than written past the end.
    if (lmax < 1) continue;
    s[i++] = (char)c;
    s[i] = '\0';
    if (i >= lmax) return 1;
  }
  return 0;
}

static void SwapBytes4(unsigned char *b) {
  unsigned char t = b[0];
  b[0] = b[3];
  b[3] = t;
  t = b[1];
  b[1] = b[2];
  b[2] = t;
}

int CloseWritten(FILE *fptr) {
  int ok = !ferror(fptr);
  return fclose(fptr) == 0 && ok;
}

int ReadInt(FILE *fptr, int *n, int swap) {
  if (fread(n, 4, 1, fptr) != 1) return 0;
  if (swap) SwapBytes4((unsigned char *)n);
  return 1;
}

int ReadFloat(FILE *fptr, float *n, int swap) {
  if (fread(n, 4, 1, fptr) != 1) return 0;
  if (swap) SwapBytes4((unsigned char *)n);
  return 1;
}
