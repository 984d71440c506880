#include "surface/stl.h"

#include <stdio.h>

void ReserveFacets(SIMULATION &sim, int n) {
  if ((int)sim.stltri.size() < n) sim.stltri.resize(n);
}

void AppendFacet(SIMULATION &sim, XYZ p0, XYZ p1, XYZ p2) {
  ReserveFacets(sim, sim.nstltri + 1);
  FACET &f = sim.stltri[sim.nstltri];
  f.p[0] = p0;
  f.p[1] = p1;
  f.p[2] = p2;
  sim.nstltri++;
}

static int BadFacet(const FACET &f) {
  return VectorEqual(f.p[0], f.p[1]) || VectorEqual(f.p[1], f.p[2]) || VectorEqual(f.p[2], f.p[0]);
}

void UpdateSTL(SIMULATION &sim) {
  sim.surfaceindex.valid = 0;
  int removed = 0;
  int i = 0;
  while (i < sim.nstltri) {
    if (BadFacet(sim.stltri[i])) {
      for (int k = 0; k < 3; k++) sim.stltri[i].p[k] = sim.stltri[sim.nstltri - 1].p[k];
      sim.nstltri--;
      removed++;
    } else {
      i++;
    }
  }
  if (sim.options.debug && removed > 0) fprintf(stderr, "Removed %d bad faces\n", removed);

  for (i = 0; i < sim.nstltri; i++) {
    FACET &f = sim.stltri[i];
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

  sim.stlmin.x = sim.stlmin.y = sim.stlmin.z = 1e32;
  sim.stlmax.x = sim.stlmax.y = sim.stlmax.z = -1e32;
  for (i = 0; i < sim.nstltri; i++)
    for (int k = 0; k < 3; k++) MinMaxXYZ(&sim.stlmin, &sim.stlmax, sim.stltri[i].p[k]);
  sim.stlmid.x = (sim.stlmin.x + sim.stlmax.x) * 0.5;
  sim.stlmid.y = (sim.stlmin.y + sim.stlmax.y) * 0.5;
  sim.stlmid.z = (sim.stlmin.z + sim.stlmax.z) * 0.5;

  if (sim.options.debug) {
    fprintf(stderr, "Bounds: %g <= x <= %g\n", sim.stlmin.x, sim.stlmax.x);
    fprintf(stderr, "        %g <= y <= %g\n", sim.stlmin.y, sim.stlmax.y);
    fprintf(stderr, "        %g <= z <= %g\n", sim.stlmin.z, sim.stlmax.z);
    fprintf(stderr, "Midpoint: %g %g %g\n", sim.stlmid.x, sim.stlmid.y, sim.stlmid.z);
  }
}
