// Primitive meshes of the support library: an open cone (tube), a
// latitude-longitude sphere and an axis-aligned box.
//
// The geometry is emitted through a PRIMSINK so that it can be recorded
// without a GL context; the desktop passes glBegin, glEnd, glNormal3f,
// glTexCoord2f and glVertex3f on (see primitives_gl.h). Every value
// reaches the sink in single precision. Nothing here allocates.
#ifndef DLA_LIB_PRIMITIVES_H
#define DLA_LIB_PRIMITIVES_H

#include "lib/vector.h"

// Batch modes, equal to the GL enumerants of the same names.
#define PRIM_POINTS 0
#define PRIM_LINES 1
#define PRIM_LINE_STRIP 3
#define PRIM_TRIANGLES 4
#define PRIM_TRIANGLE_STRIP 5
#define PRIM_QUADS 7
#define PRIM_QUAD_STRIP 8

// Every call receives the sink's context (a recorder's storage, or NULL).
struct PRIMSINK {
  void (*begin)(void *context, unsigned int mode);
  void (*end)(void *context);
  void (*normal)(void *context, float x, float y, float z);
  void (*texcoord)(void *context, float s, float t);
  void (*vertex)(void *context, float x, float y, float z);
  void *context;
};

// Open tube from p1 (radius r1) to p2 (radius r2), m facets covering the
// angles theta1..theta2 (radians), as one quad strip of m + 1 vertex pairs
// with radial normals. A negative m gives an empty begin/end pair.
void EmitCone(const PRIMSINK *s, XYZ p1, XYZ p2, double r1, double r2, int m, double theta1,
              double theta2);

// Sphere of centre c and radius |r| with |n| (rounded down to even)
// divisions around; poles on the y axis through c. Method 1 uses triangle
// strips, others quad strips; method 2 has n bands instead of n / 2.
// With |n| <= 3 or r = 0 a single point at c.
void EmitSimpleSphere(const PRIMSINK *s, XYZ c, double r, int n, int method);

// Box with opposite corners pmin and pmax: method 0 its 12 edges, method 1
// six textured faces with outward normals, method 2 the edges of a box
// enlarged by a twentieth each way with a frame of the box's extent on each
// of its faces. Other methods emit nothing.
void EmitBox(const PRIMSINK *s, int method, XYZ pmin, XYZ pmax);

#endif
