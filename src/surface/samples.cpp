#include "surface/samples.h"

#include <math.h>  // sin(), cos()

#include "app/simulation.h"
#include "surface/stl.h"

const SAMPLESURFACE samplesurfaces[] = {
    {SAMPLE_NONE, "None"},
    {SAMPLE_CYLINDER, "Cylinder"},
    {SAMPLE_OPENCYLINDER, "Open (single) cylinder"},
    {SAMPLE_DOUBLEOPENCYLINDER, "Open (double) cylinder"},
    {SAMPLE_BOX, "Box"},
    {SAMPLE_OPENBOX, "Open (single) Box"},
    {SAMPLE_DOUBLEOPENBOX, "Open (double) Box"},
    {SAMPLE_SPHERE, "Sphere"},
    {SAMPLE_HEMISPHERE, "Hemisphere"},
    {SAMPLE_CLOSEDHEMISPHERE, "Closed hemisphere"},
    {SAMPLE_PLANE, "Plane"},
};
const int nsamplesurfaces = sizeof(samplesurfaces) / sizeof(samplesurfaces[0]);

static int KnownSample(int code) {
  for (int i = 0; i < nsamplesurfaces; i++)
    if (samplesurfaces[i].code == code) return 1;
  return 0;
}

const char *SampleSurfaceName(int code) {
  for (int i = 0; i < nsamplesurfaces; i++)
    if (samplesurfaces[i].code == code) return samplesurfaces[i].name;
  return "None";
}

static XYZ P(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

// A point on the circle of radius r at angle a (degrees) and height z.
static XYZ Q(double r, int a, double z) { return P(r * cos(a * DTOR), r * sin(a * DTOR), z); }

// Tube of facets facing outward, with optional caps. Both caps share one
// vertex order, so both face +z: the bottom cap faces into the solid.
static void MakeTube(SIMULATION &sim, double r, int step, int bottom, int top) {
  for (int a = 0; a < 360; a += step) {
    int a2 = (a + step) % 360;
    AppendFacet(sim, Q(r, a, 20), Q(r, a, -20), Q(r, a2, -20));
    AppendFacet(sim, Q(r, a, 20), Q(r, a2, -20), Q(r, a2, 20));
    if (bottom) AppendFacet(sim, P(0, 0, -20), Q(r, a, -20), Q(r, a2, -20));
    if (top) AppendFacet(sim, P(0, 0, 20), Q(r, a, 20), Q(r, a2, 20));
  }
}

// Sphere, lower hemisphere, or lower hemisphere with its upper bands flattened
// into the disc z = 0. The pole facets come out degenerate and UpdateSTL
// removes them.
static void MakeSphere(SIMULATION &sim, int code) {
  const double r = 20;
  for (int theta = 0; theta < 360; theta += 5) {
    double t1 = theta * DTOR;
    double t2 = (theta + 5) * DTOR;
    for (int phi = -90; phi < 90; phi += 5) {
      if (code == SAMPLE_HEMISPHERE && phi >= 0) continue;
      double zscale = (code == SAMPLE_CLOSEDHEMISPHERE && phi >= 0) ? 0 : r;
      double r1 = r * cos(phi * DTOR);
      double r2 = r * cos((phi + 5) * DTOR);
      double z1 = zscale * sin(phi * DTOR);
      double z2 = zscale * sin((phi + 5) * DTOR);
      AppendFacet(sim, P(r1 * cos(t1), r1 * sin(t1), z1), P(r1 * cos(t2), r1 * sin(t2), z1),
                  P(r2 * cos(t2), r2 * sin(t2), z2));
      AppendFacet(sim, P(r2 * cos(t2), r2 * sin(t2), z2), P(r2 * cos(t1), r2 * sin(t1), z2),
                  P(r1 * cos(t1), r1 * sin(t1), z1));
    }
  }
}

// 400 x 400 sheet at z = -20, facing -z.
static void MakePlane(SIMULATION &sim) {
  for (int i = -10; i < 10; i++) {
    for (int j = -10; j < 10; j++) {
      AppendFacet(sim, P(20 * i, 20 * j, -20), P(20 * i, 20 * j + 20, -20), P(20 * i + 20, 20 * j + 20, -20));
      AppendFacet(sim, P(20 * i + 20, 20 * j + 20, -20), P(20 * i + 20, 20 * j, -20), P(20 * i, 20 * j, -20));
    }
  }
}

int MakeSampleSurface(SIMULATION &sim, int code) {
  // 20 * sqrt(2): the box's corners lie on the axes, a cube turned by 45 degrees.
  const double boxradius = 28.284271247461902;

  sim.nstltri = 0;
  CopyName(sim.growthstate.stlname, SampleSurfaceName(code), sizeof(sim.growthstate.stlname));
  switch (code) {
    case SAMPLE_CYLINDER:
      MakeTube(sim, 20, 5, 1, 1);
      break;
    case SAMPLE_OPENCYLINDER:
      MakeTube(sim, 20, 5, 1, 0);
      break;
    case SAMPLE_DOUBLEOPENCYLINDER:
      MakeTube(sim, 20, 5, 0, 0);
      break;
    case SAMPLE_BOX:
      MakeTube(sim, boxradius, 90, 1, 1);
      break;
    case SAMPLE_OPENBOX:
      MakeTube(sim, boxradius, 90, 1, 0);
      break;
    case SAMPLE_DOUBLEOPENBOX:
      MakeTube(sim, boxradius, 90, 0, 0);
      break;
    case SAMPLE_SPHERE:
    case SAMPLE_HEMISPHERE:
    case SAMPLE_CLOSEDHEMISPHERE:
      MakeSphere(sim, code);
      break;
    case SAMPLE_PLANE:
      MakePlane(sim);
      break;
    default: break;
  }
  UpdateSTL(sim);
  return KnownSample(code);
}
