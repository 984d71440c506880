#include "surface/transform.h"

#include <stdio.h>  // fprintf()

#include "app/simulation.h"
#include "surface/stl.h"

void TransformSTL(SIMULATION &sim, XYZ scale, XYZ shift, XYZ rotate) {
  if (sim.options.debug) {
    fprintf(stderr, "Scale  : %g,%g,%g\n", scale.x, scale.y, scale.z);
    fprintf(stderr, "Shift  : %g,%g,%g\n", shift.x, shift.y, shift.z);
    fprintf(stderr, "Rotate : %g,%g,%g\n", rotate.x, rotate.y, rotate.z);
  }
  double rx = rotate.x * DTOR;
  double ry = rotate.y * DTOR;
  double rz = rotate.z * DTOR;

  for (int i = 0; i < sim.nstltri; i++) {
    for (int k = 0; k < 3; k++) {
      XYZ p = sim.stltri[i].p[k];
      p = RotateX(p, rx);
      p = RotateY(p, ry);
      p = RotateZ(p, rz);
      p.x *= scale.x;
      p.y *= scale.y;
      p.z *= scale.z;
      p.x += shift.x;
      p.y += shift.y;
      p.z += shift.z;
      sim.stltri[i].p[k] = p;
    }
  }
  UpdateSTL(sim);
}
