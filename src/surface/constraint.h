// Geometric tests against the constraint surface and boxes.
#ifndef DLA_SURFACE_CONSTRAINT_H
#define DLA_SURFACE_CONSTRAINT_H

#include "app/simulation.h"
#include "lib/vector.h"

// 1 when the segment p1-p2 passes through facet i (ends inclusive; a
// not-a-number angle sum counts as inside). *p receives the crossing of the
// segment's line with the facet's plane whenever they are not parallel.
int LinePlaneIntersect(SIMULATION &sim, int i, XYZ *p, XYZ p1, XYZ p2);

// Signed distance of p from the plane of facet i (positive on the normal's side).
double PointPlaneDist(SIMULATION &sim, int i, XYZ p);

// 1 when the segment p1-p2 is judged to touch the box with corners c1, c2:
// an end inside, or one of the nine tenth-samples inside. Approximate by design.
int LineInBox(XYZ c1, XYZ c2, XYZ p1, XYZ p2);

#endif
