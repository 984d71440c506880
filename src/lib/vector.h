// Vector and geometry helpers of the support library.
//
// Conventions: angles are radians; booleans are ints (1 true, 0 false);
// XYZ is passed by value. Callers holding degrees multiply by DTOR.
#ifndef DLA_LIB_VECTOR_H
#define DLA_LIB_VECTOR_H

#include <stdio.h>  // FILE for the readers
#include <math.h>   // sqrt()

struct XYZ {
  double x, y, z;
};

// The plane a*x + b*y + c*z + d = 0.
struct PLANE {
  double a, b, c, d;
};

// Truncated degree/radian factors; kept as written so results match old runs.
#define DTOR 0.0174532925
#define RTOD 57.2957795
#define TWOPI 6.283185307179586

inline double DotProduct(XYZ p1, XYZ p2) { return p1.x * p2.x + p1.y * p2.y + p1.z * p2.z; }

inline XYZ CrossProduct(XYZ p1, XYZ p2) {
  XYZ c = {p1.y * p2.z - p1.z * p2.y, p1.z * p2.x - p1.x * p2.z, p1.x * p2.y - p1.y * p2.x};
  return c;
}

inline double Modulus(XYZ p) { return sqrt(p.x * p.x + p.y * p.y + p.z * p.z); }

inline double VectorLength(XYZ p1, XYZ p2) {
  double dx = p1.x - p2.x, dy = p1.y - p2.y, dz = p1.z - p2.z;
  return sqrt(dx * dx + dy * dy + dz * dz);
}

// 1 when every component differs by at most 1e-6 (inclusive).
int VectorEqual(XYZ p1, XYZ p2);

// Unit length in place; a zero (or not-a-number) vector becomes (0,0,0).
inline void Normalise(XYZ *p) {
  double s = p->x * p->x + p->y * p->y + p->z * p->z;
  if (s > 0) {
    double l = sqrt(s);
    p->x /= l;
    p->y /= l;
    p->z /= l;
  } else {
    p->x = p->y = p->z = 0;
  }
}

// Unit normal of p1, p2, p3 (counter-clockwise seen from the normal's side);
// (0,0,0) for coincident or collinear vertices.
XYZ CalcNormal(XYZ p1, XYZ p2, XYZ p3);

// Widens *min and *max to include p. Start them at +1e32 / -1e32.
void MinMaxXYZ(XYZ *min, XYZ *max, XYZ p);

// Rotations about the coordinate axes. A positive angle turns clockwise seen
// from the positive end of the axis: the opposite sense of ArbitraryRotate.
XYZ RotateX(XYZ p, double angle);
XYZ RotateY(XYZ p, double angle);
XYZ RotateZ(XYZ p, double angle);

// p turned by theta about the axis r through the origin, right-hand rule.
XYZ ArbitraryRotate(XYZ p, double theta, XYZ r);

// Distance from p to the infinite line p1-p2; *mu (unclamped) and *closest
// receive the closest point. A line shorter than sqrt(1e-5) counts as p1.
double PointLine3D(XYZ *closest, double *mu, XYZ p, XYZ p1, XYZ p2);

// Shortest segment pa-pb between the lines p1-p2 and p3-p4. Returns 0 for a
// degenerate line or parallel lines (tolerance 1e-5).
int LineLineIntersect(XYZ *pa, XYZ *pb, double *mua, double *mub, XYZ p1, XYZ p2, XYZ p3, XYZ p4);

// 1 and *p = the crossing when the segment p1-p2 meets the plane (ends
// inclusive); *p is written only then.
int LineSegmentPlane(XYZ *p, XYZ p1, XYZ p2, PLANE plane);

// Wall-clock seconds (only differences mean anything).
double GetRunTime(void);

// One line into s (which holds lmax + 1 bytes), without its CR or LF.
// Returns 1 when a line ended (or lmax characters were read), 0 at end of file.
// With lmax < 1 the line is consumed and nothing but the terminator stored.
int ReadLine(FILE *fptr, char *s, int lmax);

// Four bytes in host order, reversed when swap is set. 0 on a short read.
int ReadInt(FILE *fptr, int *n, int swap);
int ReadFloat(FILE *fptr, float *n, int swap);

// Closes a file written with stdio. 1 when every write and the close
// succeeded; 0 otherwise (a full disk), errno telling why.
int CloseWritten(FILE *fptr);

#endif
