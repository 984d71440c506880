// Primitive meshes emitted through a PRIMSINK.
#include "lib/primitives.h"

#include <math.h>  // sin(), cos(), M_PI
#include <stdlib.h>  // abs()

namespace {

void Normal(const PRIMSINK *s, XYZ n) { s->normal(s->context, (float)n.x, (float)n.y, (float)n.z); }

void Vertex(const PRIMSINK *s, double x, double y, double z) { s->vertex(s->context, (float)x, (float)y, (float)z); }

// The 12 edges of the box (x0,y0,z0)-(x1,y1,z1): bottom and top rings in one
// strip joined by one upright, then the other three uprights.
void BoxEdges(const PRIMSINK *s, double x0, double y0, double z0, double x1, double y1,
              double z1) {
  s->begin(s->context, PRIM_LINE_STRIP);
  Vertex(s, x0, y0, z0);
  Vertex(s, x1, y0, z0);
  Vertex(s, x1, y0, z1);
  Vertex(s, x0, y0, z1);
  Vertex(s, x0, y0, z0);
  Vertex(s, x0, y1, z0);
  Vertex(s, x1, y1, z0);
  Vertex(s, x1, y1, z1);
  Vertex(s, x0, y1, z1);
  Vertex(s, x0, y1, z0);
  s->end(s->context);
  s->begin(s->context, PRIM_LINES);
  Vertex(s, x1, y0, z0);
  Vertex(s, x1, y1, z0);
  Vertex(s, x1, y0, z1);
  Vertex(s, x1, y1, z1);
  Vertex(s, x0, y0, z1);
  Vertex(s, x0, y1, z1);
  s->end(s->context);
}

// A closed rectangle through four corners.
void Frame(const PRIMSINK *s, const XYZ *p) {
  s->begin(s->context, PRIM_LINE_STRIP);
  for (int i = 0; i <= 4; i++)
    Vertex(s, p[i % 4].x, p[i % 4].y, p[i % 4].z);
  s->end(s->context);
}

}  // namespace

void EmitCone(const PRIMSINK *s, XYZ p1, XYZ p2, double r1, double r2, int m, double theta1,
              double theta2) {
  XYZ axis = {p1.x - p2.x, p1.y - p2.y, p1.z - p2.z};
  Normalise(&axis);

  // Any vector off the axis gives the two perpendiculars; along y use x.
  XYZ h = axis;
  if (axis.x == 0 && axis.z == 0)
    h.x += 1;
  else
    h.y += 1;
  XYZ a = CrossProduct(h, axis);
  XYZ b = CrossProduct(axis, a);
  Normalise(&b);
  Normalise(&a);

  s->begin(s->context, PRIM_QUAD_STRIP);
  for (int i = 0; i <= m; i++) {
    double angle = theta1 + i * (theta2 - theta1) / m;
    XYZ q = {b.x * cos(angle) + a.x * sin(angle), b.y * cos(angle) + a.y * sin(angle),
             b.z * cos(angle) + a.z * sin(angle)};
    Normalise(&q);
    double u = i / (double)m;
    // Radial normals even when r1 != r2: the tubes are shaded as cylinders.
    Normal(s, q);
    s->texcoord(s->context, (float)u, 0.0f);
    Vertex(s, p1.x + r1 * q.x, p1.y + r1 * q.y, p1.z + r1 * q.z);
    Normal(s, q);
    s->texcoord(s->context, (float)u, 1.0f);
    Vertex(s, p2.x + r2 * q.x, p2.y + r2 * q.y, p2.z + r2 * q.z);
  }
  s->end(s->context);
}

void EmitSimpleSphere(const PRIMSINK *s, XYZ c, double r, int n, int method) {
  if (r < 0)
    r = -r;
  n = abs(n);
  if (n <= 3 || r <= 0) {
    s->begin(s->context, PRIM_POINTS);
    Vertex(s, c.x, c.y, c.z);
    s->end(s->context);
    return;
  }
  n &= ~1;

  // Method 2 has twice as many bands, each half as tall.
  int nbands = method == 2 ? n : n / 2;
  double step = method == 2 ? M_PI / n : TWOPI / n;
  for (int j = 0; j < nbands; j++) {
    double t1 = j * step - M_PI / 2;
    double t2 = (j + 1) * step - M_PI / 2;
    s->begin(s->context, method == 1 ? PRIM_TRIANGLE_STRIP : PRIM_QUAD_STRIP);
    for (int i = 0; i <= n; i++) {
      double t3 = i * TWOPI / n;
      double u = i / (double)n;
      XYZ e = {cos(t2) * cos(t3), sin(t2), cos(t2) * sin(t3)};
      Normal(s, e);
      s->texcoord(s->context, (float)u, (float)(2 * (j + 1) / (double)n));
      Vertex(s, c.x + r * e.x, c.y + r * e.y, c.z + r * e.z);
      e = {cos(t1) * cos(t3), sin(t1), cos(t1) * sin(t3)};
      Normal(s, e);
      s->texcoord(s->context, (float)u, (float)(2 * j / (double)n));
      Vertex(s, c.x + r * e.x, c.y + r * e.y, c.z + r * e.z);
    }
    s->end(s->context);
  }
}

void EmitBox(const PRIMSINK *s, int method, XYZ pmin, XYZ pmax) {
  double x0 = pmin.x, y0 = pmin.y, z0 = pmin.z;
  double x1 = pmax.x, y1 = pmax.y, z1 = pmax.z;

  if (method == 0) {
    BoxEdges(s, x0, y0, z0, x1, y1, z1);
  } else if (method == 1) {
    struct FACE {
      XYZ normal;
      XYZ p[4];
    };
    const FACE faces[6] = {
        {{0, 0, -1}, {{x0, y0, z0}, {x0, y1, z0}, {x1, y1, z0}, {x1, y0, z0}}},
        {{0, 0, 1}, {{x0, y0, z1}, {x1, y0, z1}, {x1, y1, z1}, {x0, y1, z1}}},
        {{-1, 0, 0}, {{x0, y0, z1}, {x0, y1, z1}, {x0, y1, z0}, {x0, y0, z0}}},
        {{1, 0, 0}, {{x1, y0, z1}, {x1, y0, z0}, {x1, y1, z0}, {x1, y1, z1}}},
        {{0, -1, 0}, {{x0, y0, z1}, {x0, y0, z0}, {x1, y0, z0}, {x1, y0, z1}}},
        {{0, 1, 0}, {{x0, y1, z1}, {x1, y1, z1}, {x1, y1, z0}, {x0, y1, z0}}},
    };
    const float tex[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    s->begin(s->context, PRIM_QUADS);
    for (const FACE &f : faces) {
      Normal(s, f.normal);
      for (int k = 0; k < 4; k++) {
        s->texcoord(s->context, tex[k][0], tex[k][1]);
        Vertex(s, f.p[k].x, f.p[k].y, f.p[k].z);
      }
    }
    s->end(s->context);
  } else if (method == 2) {
    double dx = (x1 - x0) / 20, dy = (y1 - y0) / 20, dz = (z1 - z0) / 20;
    double ex0 = x0 - dx, ey0 = y0 - dy, ez0 = z0 - dz;
    double ex1 = x1 + dx, ey1 = y1 + dy, ez1 = z1 + dz;
    BoxEdges(s, ex0, ey0, ez0, ex1, ey1, ez1);
    // On each face of the enlarged box, a frame the size of the box itself.
    const XYZ frames[6][4] = {
        {{ex0, y0, z0}, {ex0, y0, z1}, {ex0, y1, z1}, {ex0, y1, z0}},
        {{ex1, y0, z0}, {ex1, y0, z1}, {ex1, y1, z1}, {ex1, y1, z0}},
        {{x0, ey0, z0}, {x0, ey0, z1}, {x1, ey0, z1}, {x1, ey0, z0}},
        {{x0, ey1, z0}, {x0, ey1, z1}, {x1, ey1, z1}, {x1, ey1, z0}},
        {{x0, y0, ez0}, {x0, y1, ez0}, {x1, y1, ez0}, {x1, y0, ez0}},
        {{x0, y0, ez1}, {x0, y1, ez1}, {x1, y1, ez1}, {x1, y0, ez1}},
    };
    for (const auto &f : frames)
      Frame(s, f);
  }
}
