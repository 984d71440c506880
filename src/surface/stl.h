// The constraint surface: a triangle mesh that new branches may not cross.
#ifndef DLA_SURFACE_STL_H
#define DLA_SURFACE_STL_H

#include <stdio.h>  // FILE

#include <vector>

#include "app/simulation.h"
#include "lib/vector.h"

// Makes room for n facets (stltri.size() >= n).
void ReserveFacets(SIMULATION &sim, int n);

// Appends a facet with the given vertices (derived fields are left for
// UpdateSTL).
void AppendFacet(SIMULATION &sim, XYZ p0, XYZ p1, XYZ p2);

// Removes facets with coincident vertices (the last facet moves into the
// gap), fills n, mid and plane, recomputes the bounds and the midpoint, and
// marks the surface index stale. Whatever changes the facets calls it.
void UpdateSTL(SIMULATION &sim);

// Reads an ASCII or binary STL file as the new surface. Returns 1 on success,
// 0 when the file cannot be opened (old surface kept, *msg set) or the binary
// facet count is implausible (surface empty, *msg set). Malformed files that
// must end the program set msg->fatal and return 0.
int ReadSTLFile(SIMULATION &sim, const char *path, FILEMESSAGE *msg);

// ReadSTLFile on a stream open for reading (left open); name is the path
// shown in debug output. A binary file that ends early keeps the facets read
// completely and stops at the first short read.
int ReadSTLStream(SIMULATION &sim, FILE *fp, const char *name, FILEMESSAGE *msg);

#endif
