// Geometric tests against the constraint surface and boxes.
#ifndef DLA_SURFACE_CONSTRAINT_H
#define DLA_SURFACE_CONSTRAINT_H

#include "app/simulation.h"
#include "lib/vector.h"



// 1 when the segment p1-p2 passes through facet i (ends inclusive; a
// not-a-number angle sum counts as inside). *p receives the crossing of the
// segment's line with the facet's plane whenever they are not parallel.
int LinePlaneIntersect(SIMULATION &sim, int i, XYZ *p, XYZ p1, XYZ p2);

// LinePlaneIntersect for a facet given by itself.
int SegmentCutsFacet(const FACET &f, XYZ *p, XYZ p1, XYZ p2);

// 1 when the particle would poke through the gap at facet t: the first of
// its edges (in vertex order) whose nearest point to the particle lies on the
// edge and closer than the branch length decides, by the particle lying on
// the normal's side of the centroid.
int FacetGapVeto(const FACET &t, XYZ particle, double branchlength);

// The growth step's vetoes over every facet of facets[0 .. n - 1]: the
// segment p1-p2 (particle to cell) passes through a facet; the particle
// pokes through a gap. SurfaceIndexCuts and SurfaceIndexGap give the same
// answers sooner.
int ScanCutsSurface(const FACET *facets, int n, XYZ p1, XYZ p2);
int ScanPokesThroughGap(const FACET *facets, int n, XYZ particle, double branchlength);

// Signed distance of p from the plane of facet i (positive on the normal's side).
double PointPlaneDist(SIMULATION &sim, int i, XYZ p);

// 1 when the segment p1-p2 is judged to touch the box with corners c1, c2:
// an end inside, or one of the nine tenth-samples inside. Approximate by design.
int LineInBox(XYZ c1, XYZ c2, XYZ p1, XYZ p2);

#endif
