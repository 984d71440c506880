// Generated constraint surfaces of the "Sample constraint surfaces" menu.
#ifndef DLA_SURFACE_SAMPLES_H
#define DLA_SURFACE_SAMPLES_H

#include "app/simulation.h"

// Menu codes; any other code gives the empty surface, like SAMPLE_NONE.
enum {
  SAMPLE_CYLINDER = 1,
  SAMPLE_OPENCYLINDER = 2,        // no top cap
  SAMPLE_DOUBLEOPENCYLINDER = 3,  // tube only
  SAMPLE_BOX = 11,
  SAMPLE_OPENBOX = 12,
  SAMPLE_DOUBLEOPENBOX = 13,
  SAMPLE_SPHERE = 21,
  SAMPLE_HEMISPHERE = 22,
  SAMPLE_CLOSEDHEMISPHERE = 23,
  SAMPLE_PLANE = 31,
  SAMPLE_NONE = 100
};

// The menu entries, top to bottom.
struct SAMPLESURFACE {
  int code;
  const char *name;
};
extern const SAMPLESURFACE samplesurfaces[];
extern const int nsamplesurfaces;

// Label of a code ("None" for an unknown code).
const char *SampleSurfaceName(int code);

// Replaces the surface with the sample of the given code, names it in
// growthstate.stlname and runs UpdateSTL. The display list is the caller's.
// Returns 1 for a known code, 0 for an unknown one (which leaves the empty
// surface "None", as the menu's own code 100 does).
int MakeSampleSurface(SIMULATION &sim, int code);

#endif
