// The fast walk: where the search index proves a particle at least d from
// every cell, the particle jumps to a random point of the sphere of radius
// d around it instead of walking there step by step; near cells it takes
// the exact steps. The jumps draw from their own generator, so the exact
// walk's numbers are untouched; the aggregates are statistically, not bit
// for bit, those of the exact walk.
#ifndef DLA_GROWTH_WALK_H
#define DLA_GROWTH_WALK_H

#include "app/simulation.h"
#include "lib/vector.h"

// Walks of the growth (growthwalk). The desktop program always takes the
// exact walk.
enum { WALK_EXACT = 0, WALK_FAST = 1 };

#define WALK_MINJUMP 2.0  // branch lengths: smaller spheres are walked step by step

// What one jump did: its sphere's radius, the steps it stands for, whether
// the particle's life span ended inside it, and where it went.
struct JUMP {
  double radius;
  long steps;
  int died;
  XYZ from, to;
};

// One jump of the particle in growthstate when the index proves a sphere of
// at least WALK_MINJUMP branch lengths free of cells and inside the release
// sphere, standing for at most most steps. Returns 1 and fills *jump (the
// particle moved, lifespan counted the steps) or 0 when no jump was made
// (also when a new particle is due: lifespan a multiple of GROWTH_LIFESPAN).
int Jump(SIMULATION &sim, long most, JUMP *jump);

// At most n growth steps (at least one when n > 0) of the fast walk, a jump
// counting the steps it replaces. Returns the steps taken.
long FastWalkSteps(SIMULATION &sim, long n);

#endif
