// The primitive meshes sent straight to OpenGL.
#include "gl/lib/primitives_gl.h"

#include <GL/gl.h>

#include "lib/primitives.h"

static_assert(PRIM_POINTS == GL_POINTS && PRIM_LINES == GL_LINES &&
                  PRIM_LINE_STRIP == GL_LINE_STRIP && PRIM_TRIANGLES == GL_TRIANGLES &&
                  PRIM_TRIANGLE_STRIP == GL_TRIANGLE_STRIP && PRIM_QUADS == GL_QUADS &&
                  PRIM_QUAD_STRIP == GL_QUAD_STRIP,
              "PRIM_* must equal the GL batch modes");

static void GlBegin(void *, unsigned int mode) { glBegin(mode); }
static void GlEnd(void *) { glEnd(); }
static void GlNormal(void *, float x, float y, float z) { glNormal3f(x, y, z); }
static void GlTexCoord(void *, float s, float t) { glTexCoord2f(s, t); }
static void GlVertex(void *, float x, float y, float z) { glVertex3f(x, y, z); }

static const PRIMSINK glsink = {GlBegin, GlEnd, GlNormal, GlTexCoord, GlVertex, NULL};

void CreateCone(XYZ p1, XYZ p2, double r1, double r2, int m, double theta1, double theta2) {
  EmitCone(&glsink, p1, p2, r1, r2, m, theta1, theta2);
}

void CreateSimpleSphere(XYZ c, double r, int n, int method) {
  EmitSimpleSphere(&glsink, c, r, n, method);
}

void CreateBox(int method, XYZ pmin, XYZ pmax) { EmitBox(&glsink, method, pmin, pmax); }
