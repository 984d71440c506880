// Growth: the roots, the particle sources and one step of the aggregation.
#ifndef DLA_GROWTH_GROWTH_H
#define DLA_GROWTH_GROWTH_H

#include <limits.h>  // INT_MAX
#include <stdio.h>   // FILE

#include "app/simulation.h"
#include "lib/vector.h"

// The growth settings of a fresh program (source, bias, stickiness, branch
// length, thicknesses, seed, rotation, roots, association, intersection
// range, surface name). The first InitialiseGrowth applies them; tests reset
// through it too.
void SetGrowthDefaults(SIMULATION &sim);

// Restarts the run on the roots already in cells: ncells = nroots, radius
// from the branch length and the roots, both generators seeded with
// growthstate.seed. The first call also applies the defaults and places the
// roots.
void InitialiseGrowth(SIMULATION &sim);

// Discards the aggregate and places nroots roots by rootdistribution (one at
// the origin for code 1; none above 9), then reseeds both generators.
void ResetSeeds(SIMULATION &sim);

// Makes the points of a seed file ("%lf %lf %lf" per line, up to the first
// line that is not three numbers) the roots. Returns 1 when at least one
// root was read. Returns 0 with the message lines in *msg when the file
// cannot be opened (nothing changed) or holds no point (one root at the
// origin again).
int ReadRootsFile(SIMULATION &sim, const char *path, FILEMESSAGE *msg);

// ReadRootsFile on a stream open for reading (left open); name becomes the
// rootname (cut to 127 characters).
int ReadRootsStream(SIMULATION &sim, FILE *fp, const char *name, FILEMESSAGE *msg);

// A release point at distance r from the origin, in the direction the
// source type gives; unknown codes behave like the sphere (1).
XYZ GetNewParticle(SIMULATION &sim, int sourcetype, double r);

#define GROWTH_LIFESPAN 10000  // steps a particle wanders before it is replaced

// lifespan with its place in the life kept (the same remainder modulo
// GROWTH_LIFESPAN) but at most INT_MAX - GROWTH_LIFESPAN and not negative,
// so that the rest of a life can be counted on it without overflow: a
// particle that never sticks counts past INT_MAX.
inline int FoldLifespan(int lifespan) {
  if (lifespan >= 0 && lifespan <= INT_MAX - GROWTH_LIFESPAN) return lifespan;
  int r = lifespan % GROWTH_LIFESPAN;
  return r < 0 ? r + GROWTH_LIFESPAN : r;
}

// One step of the wandering particle: release, random step, drift, swirl,
// search, stickiness, the three vetoes, and on success a new cell.
void IterateSystem(SIMULATION &sim);

// n growth steps or fewer (at least one when n > 0), exactly as that many
// calls of IterateSystem would take them; quicker while the particle walks
// inside a ball the search index proved empty. Returns the steps taken.
long IterateExactSteps(SIMULATION &sim, long n);

// IterateExactSteps, or with growthwalk WALK_FAST the fast walk's steps
// (walk.h), where a jump counts the steps it replaces.
long IterateSystemSteps(SIMULATION &sim, long n);

#endif
