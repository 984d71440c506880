// Primitive meshes drawn with OpenGL immediate mode in the current colour.
// They change no other GL state. Geometry: see lib/primitives.h.
#ifndef DLA_GL_LIB_PRIMITIVES_GL_H
#define DLA_GL_LIB_PRIMITIVES_GL_H

#include "lib/vector.h"

void CreateCone(XYZ p1, XYZ p2, double r1, double r2, int m, double theta1, double theta2);
void CreateSimpleSphere(XYZ c, double r, int n, int method);
void CreateBox(int method, XYZ pmin, XYZ pmax);

#endif
