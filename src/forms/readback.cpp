#include "forms/readback.h"

#include <limits.h>  // INT_MAX
#include <stdlib.h>  // atof(), atoi()

#include "app/records.h"
#include "growth/growth.h"
#include "surface/stl.h"
#include "surface/transform.h"

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

void ReadBiasText(const char *text) { growthstate.bias = Clamp(atof(text), 0, 1); }

void ReadRotationText(const char *text) { growthstate.rotation = Clamp(atof(text), -5, 5); }

void ReadSeedText(const char *text) {
  int seed = TruncateText(text);
  growthstate.seed = seed < 0 ? -seed : seed;
}

void ReadBranchLengthText(const char *text) {
  double v = atof(text);
  growthstate.branchlength = v < 0.01 ? 0.01 : v;
}

void ReadStickinessText(const char *text) { growthstate.stickiness = Clamp(atof(text), 1, 100); }

void ReadThickEndText(const char *text) { growthstate.thickend = Positive(atof(text)); }

void ReadThickStartText(const char *text) { growthstate.thickstart = Positive(atof(text)); }

void ReadIntersectRangeText(const char *text) { growthstate.intersectrange = Clamp(atof(text), 0, 90); }

static void RestartWithNewRoots(void) {
  InitialiseGrowth();
  ResetSeeds();
}

void ReadNumberOfRootsText(const char *text) {
  int n = TruncateText(text);
  growthstate.nroots = n < 0 ? -n : n;
  RestartWithNewRoots();
}

void ReadRootRangeText(const char *text) {
  growthstate.rootrange = atof(text);
  RestartWithNewRoots();
}

void SetAssociate(int on) {
  growthstate.associate = on;
  RestartWithNewRoots();
}

void ReadSliceNormalText(int axis, const char *text) {
  double v = atof(text);
  if (axis == 0) options.slicenormal.x = v;
  if (axis == 1) options.slicenormal.y = v;
  if (axis == 2) options.slicenormal.z = v;
}

void ReadSliceCountText(const char *text) {
  int n = atoi(text);
  options.nslices = n < 2 ? 2 : n;
}

XYZ SliceNormalForCut(void) {
  if (Modulus(options.slicenormal) < 1e-5) options.slicenormal.z = 1.0;
  XYZ n = options.slicenormal;
  Normalise(&n);
  return n;
}

void ApplyTransformText(const char *const text[9]) {
  XYZ scale = {atof(text[0]), atof(text[1]), atof(text[2])};
  XYZ shift = {atof(text[3]), atof(text[4]), atof(text[5])};
  XYZ rotate = {atof(text[6]), atof(text[7]), atof(text[8])};
  TransformSTL(scale, shift, rotate);
  UpdateSTL();
}
