// Rotating, scaling and shifting the constraint surface.
#ifndef DLA_SURFACE_TRANSFORM_H
#define DLA_SURFACE_TRANSFORM_H

#include "app/simulation.h"
#include "lib/vector.h"

// Turns every vertex about the origin by rotate.x, then rotate.y, then
// rotate.z degrees (RotateX/Y/Z sense), then scales it in world axes and
// shifts it; runs UpdateSTL. Applies to the current vertices, so repeated
// calls accumulate.
void TransformSTL(SIMULATION &sim, XYZ scale, XYZ shift, XYZ rotate);

#endif
