#include "surface/stl.h"

#include <stdio.h>

std::vector<FACET> stltri;
int nstltri = 0;
XYZ stlmin = {1e32, 1e32, 1e32};
XYZ stlmax = {-1e32, -1e32, -1e32};
XYZ stlmid = {0, 0, 0};
SURFACEINDEX surfaceindex;  // global until the simulation record holds it

void ReserveFacets(int n) {
  if ((int)stltri.size() < n) stltri.resize(n);
}

void AppendFacet(XYZ p0, XYZ p1, XYZ p2) {
  ReserveFacets(nstltri + 1);
  FACET &f = stltri[nstltri];
  f.p[0] = p0;
  f.p[1] = p1;
  f.p[2] = p2;
  nstltri++;
}

static int BadFacet(const FACET &f) {
  return VectorEqual(f.p[0], f.p[1]) || VectorEqual(f.p[1], f.p[2]) || VectorEqual(f.p[2], f.p[0]);
}

void UpdateSTL(void) {
  surfaceindex.valid = 0;
  int removed = 0;
  int i = 0;
  while (i < nstltri) {
    if (BadFacet(stltri[i])) {
      for (int k = 0; k < 3; k++) stltri[i].p[k] = stltri[nstltri - 1].p[k];
      nstltri--;
      removed++;
    } else {
      i++;
    }
  }
  if (options.debug && removed > 0) fprintf(stderr, "Removed %d bad faces\n", removed);

  for (i = 0; i < nstltri; i++) {
    FACET &f = stltri[i];
    f.n = CalcNormal(f.p[0], f.p[1], f.p[2]);
    Normalise(&f.n);
    f.plane.a = f.n.x;
    f.plane.b = f.n.y;
    f.plane.c = f.n.z;
    f.plane.d = -(f.n.x * f.p[0].x + f.n.y * f.p[0].y + f.n.z * f.p[0].z);
    f.mid.x = (f.p[0].x + f.p[1].x + f.p[2].x) / 3.0;
    f.mid.y = (f.p[0].y + f.p[1].y + f.p[2].y) / 3.0;
    f.mid.z = (f.p[0].z + f.p[1].z + f.p[2].z) / 3.0;
  }

  stlmin.x = stlmin.y = stlmin.z = 1e32;
  stlmax.x = stlmax.y = stlmax.z = -1e32;
  for (i = 0; i < nstltri; i++)
    for (int k = 0; k < 3; k++) MinMaxXYZ(&stlmin, &stlmax, stltri[i].p[k]);
  stlmid.x = (stlmin.x + stlmax.x) * 0.5;
  stlmid.y = (stlmin.y + stlmax.y) * 0.5;
  stlmid.z = (stlmin.z + stlmax.z) * 0.5;

  if (options.debug) {
    fprintf(stderr, "Bounds: %g <= x <= %g\n", stlmin.x, stlmax.x);
    fprintf(stderr, "        %g <= y <= %g\n", stlmin.y, stlmax.y);
    fprintf(stderr, "        %g <= z <= %g\n", stlmin.z, stlmax.z);
    fprintf(stderr, "Midpoint: %g %g %g\n", stlmid.x, stlmid.y, stlmid.z);
  }
}
