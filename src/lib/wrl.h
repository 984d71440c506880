// VRML 2.0 writers of the support library. Each call writes one complete
// node, so a file is a header followed by any number of shapes.
#ifndef DLA_LIB_WRL_H
#define DLA_LIB_WRL_H

#include <stdio.h>

#include "lib/colour.h"
#include "lib/vector.h"

// World info, navigation and a default viewpoint on the z axis at distance.
void WRLHeader(FILE *fp, const char *title, double distance);

// A sphere of radius r centred on c.
void WRLSphere(FILE *fp, XYZ c, COLOUR colour, double r);

// A truncated cone from p1 (radius r1) to p2 (radius r2) with n sides, as an
// indexed face set; caps nonzero closes both ends with triangle fans. Points
// 2i lie on the p1 ring, 2i+1 on the p2 ring, 2n and 2n+1 are the centres.
// n below 1 writes the two centres and no faces.
void WRLCone2(FILE *fp, int n, int caps, XYZ p1, XYZ p2, COLOUR colour, double r1, double r2);

// One polygon through the n points p, double sided.
void WRLFace(FILE *fp, XYZ *p, int n, COLOUR colour);

#endif
