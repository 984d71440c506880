#include "forms/readback.h"

#include <limits.h>  // INT_MAX
#include <math.h>    // isfinite()
#include <stdlib.h>  // atof(), atoi()

#include "app/simulation.h"
#include "growth/growth.h"
#include "surface/stl.h"
#include "surface/transform.h"

// atof, but a value that is not finite ("nan", "inf", 1e999) reads as 0, as
// other text that is not a number does: no clamp holds not-a-number back,
// and an infinite length, thickness or range makes no aggregate.
static double Number(const char *text) {
  double v = atof(text);
  return isfinite(v) ? v : 0;
}

static double Clamp(double v, double lo, double hi) {
  if (v < lo) v = lo;
  if (v > hi) v = hi;
  return v;
}

static double Positive(double v) { return v < 0 ? -v : v; }

int TruncateText(const char *text) {
  double v = atof(text);
  // Held within the range the conversion is defined for (and that can be
  // negated); NaN reads as 0.
  if (!(v == v)) return 0;
  if (v > INT_MAX) return INT_MAX;
  if (v < -INT_MAX) return -INT_MAX;
  return (int)v;
}

void ReadBiasText(SIMULATION &sim, const char *text) { sim.growthstate.bias = Clamp(Number(text), 0, 1); }

void ReadRotationText(SIMULATION &sim, const char *text) { sim.growthstate.rotation = Clamp(Number(text), -5, 5); }

void ReadSeedText(SIMULATION &sim, const char *text) {
  int seed = TruncateText(text);
  sim.growthstate.seed = seed < 0 ? -seed : seed;
}

void ReadBranchLengthText(SIMULATION &sim, const char *text) {
  double v = Number(text);
  sim.growthstate.branchlength = v < 0.01 ? 0.01 : v;
}

void ReadStickinessText(SIMULATION &sim, const char *text) { sim.growthstate.stickiness = Clamp(Number(text), 1, 100); }

void ReadThickEndText(SIMULATION &sim, const char *text) { sim.growthstate.thickend = Positive(Number(text)); }

void ReadThickStartText(SIMULATION &sim, const char *text) { sim.growthstate.thickstart = Positive(Number(text)); }

void ReadIntersectRangeText(SIMULATION &sim, const char *text) {
  sim.growthstate.intersectrange = Clamp(Number(text), 0, 90);
}

static void RestartWithNewRoots(SIMULATION &sim) {
  InitialiseGrowth(sim);
  ResetSeeds(sim);
}

void ReadNumberOfRootsText(SIMULATION &sim, const char *text) {
  int n = TruncateText(text);
  n = n < 0 ? -n : n;
  sim.growthstate.nroots = n > MAXROOTS ? MAXROOTS : n;
  RestartWithNewRoots(sim);
}

void ReadRootRangeText(SIMULATION &sim, const char *text) {
  sim.growthstate.rootrange = Number(text);
  RestartWithNewRoots(sim);
}

void SetAssociate(SIMULATION &sim, int on) {
  sim.growthstate.associate = on;
  RestartWithNewRoots(sim);
}

void ReadSliceNormalText(SIMULATION &sim, int axis, const char *text) {
  double v = Number(text);
  if (axis == 0) sim.options.slicenormal.x = v;
  if (axis == 1) sim.options.slicenormal.y = v;
  if (axis == 2) sim.options.slicenormal.z = v;
}

void ReadSliceCountText(SIMULATION &sim, const char *text) {
  int n = atoi(text);
  sim.options.nslices = n < 2 ? 2 : n;
}

XYZ SliceNormalForCut(SIMULATION &sim) {
  if (Modulus(sim.options.slicenormal) < 1e-5) sim.options.slicenormal.z = 1.0;
  XYZ n = sim.options.slicenormal;
  Normalise(&n);
  return n;
}

void ApplyTransformText(SIMULATION &sim, const char *const text[9]) {
  XYZ scale = {Number(text[0]), Number(text[1]), Number(text[2])};
  XYZ shift = {Number(text[3]), Number(text[4]), Number(text[5])};
  XYZ rotate = {Number(text[6]), Number(text[7]), Number(text[8])};
  TransformSTL(sim, scale, shift, rotate);
  UpdateSTL(sim);
}
