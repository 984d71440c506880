// A spatial index of the constraint surface for the growth step's two
// vetoes: it visits only the facets that could veto and asks each the same
// per-facet question as the full scans, so the answers are theirs.
#ifndef DLA_SURFACE_SURFACEINDEX_H
#define DLA_SURFACE_SURFACEINDEX_H

#include <vector>

#include "lib/vector.h"

struct FACET;

#define KEYS 11

// A node of a bounding volume hierarchy over items with keys of up to eleven
// numbers. An inner node's first child follows it; right is the second.
struct SURFACENODE {
  float lo[KEYS], hi[KEYS];  // bounds of the keys below, rounded outward
  float most;                // the largest per-item figure below (see SURFACEINDEX)
  int first, count;          // a leaf (count > 0): the items order[first .. first + count - 1]
  int right;
};

struct SURFACEINDEX {
  int valid;
  const FACET *facets;  // the storage and count it was built for
  int n;
  // Every tree keeps the planes of its facets, about centre, as keys 6 to 9
  // (n.x, n.y, n.z, n.centre + d), and n.(mid - centre) as key 10.
  // Facet boxes (the vertices' bounds, keys 0 to 2); most: how far outside
  // its box a facet can still be cut without a not-a-number angle.
  std::vector<SURFACENODE> boxes;
  std::vector<int> boxorder;
  // Edges (item 3 f + k: from vertex k to k + 1 of facet f): the box of
  // their ends (keys 0 to 2) and their direction (3 to 5, its largest
  // component positive); most: 1 / length. Not-a-number angles happen
  // only near an edge's line, beyond its ends.
  std::vector<SURFACENODE> edges;
  std::vector<int> edgeorder;
  // Facets with an edge too short for that to bound anything: their planes
  // alone (also as keys 0 to 3).
  std::vector<SURFACENODE> planes;
  std::vector<int> planeorder;
  XYZ centre;
  // Largest |coordinate| sum, |normal component|, |normal| and |d| or
  // |n.centre + d| of the facets in the trees: they scale the rounding
  // allowances and bound the planes.
  double reach, nmax, nnorm, dmax;
  // Facets with a number too large or not finite: every query asks them.
  std::vector<int> always;
};

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
