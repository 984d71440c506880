// A spatial index of the constraint surface for the growth step's two
// vetoes: it visits only the facets that could veto and asks each the same
// per-facet question as the full scans, so the answers are theirs.
#ifndef DLA_SURFACE_SURFACEINDEX_H
#define DLA_SURFACE_SURFACEINDEX_H

#include "app/simulation.h"
#include "lib/vector.h"

// Builds the index of facets[0 .. n - 1] as UpdateSTL leaves them.
void BuildSurfaceIndex(SURFACEINDEX *s, const FACET *facets, int n);

// 1 when s was built for this storage and count (UpdateSTL clears valid).
int SurfaceIndexCurrent(const SURFACEINDEX *s, const FACET *facets, int n);

// ScanCutsSurface and ScanPokesThroughGap through the index, which must be
// current: the same answers. *asked (when not NULL) receives the number of
// times a facet was asked individually.
int SurfaceIndexCuts(const SURFACEINDEX *s, const FACET *facets, int n, XYZ p1, XYZ p2, int *asked);
int SurfaceIndexGap(const SURFACEINDEX *s, const FACET *facets, int n, XYZ particle, double branchlength,
                    int *asked);

#endif
