// Writes a small aggregate with a constraint surface in every model format,
// for the real readers of the test suite. Usage: write_sample_models DIR
// Prints "cells N segments M facets F".
#include <math.h>
#include <stdio.h>
#include <string>

#include "app/records.h"
#include "export/model.h"
#include "surface/stl.h"
#include "view/camera.h"

static XYZ P(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

static void BuildAggregate(void) {
  SetOptionDefaults();
  CameraHome();
  growthstate.nroots = 2;
  growthstate.thickend = 0.01;
  growthstate.thickstart = 0.4;
  AppendCell(P(0, 0, 0), 0, -1);
  AppendCell(P(6, 0, 0), 0, -1);
  // A binary-ish tree: every cell one unit from its parent, turning by the
  // golden angle so that no segment has zero length.
  const int n = 42;
  for (int i = 2; i < n; i++) {
    int parent = (i - 2) / 2;
    double theta = i * 2.39996;
    double phi = 0.3 + 0.25 * ((i * 37) % 10) / 10.0;
    XYZ q = cells[parent].p;
    AppendCell(P(q.x + cos(theta) * sin(phi), q.y + sin(theta) * sin(phi), q.z + cos(phi)), 0, parent);
  }
  growthstate.maxweight = 0;
  growthstate.radius = 0;
  for (int i = ncells - 1; i >= 0; i--) {
    if (cells[i].parent >= 0) cells[cells[i].parent].weight += cells[i].weight + 1;
  }
  for (int i = 0; i < ncells; i++) {
    if (cells[i].weight > growthstate.maxweight) growthstate.maxweight = cells[i].weight;
    if (Modulus(cells[i].p) > growthstate.radius) growthstate.radius = Modulus(cells[i].p);
  }

  // A closed tetrahedron under the aggregate.
  XYZ a = P(-3, -3, -1), b = P(3, -3, -1), c = P(0, 3, -1), d = P(0, 0, -4);
  AppendFacet(a, b, c);  // outward normals, each edge used once in each direction
  AppendFacet(a, d, b);
  AppendFacet(b, d, c);
  AppendFacet(c, d, a);
  UpdateSTL();
}

int main(int argc, char **argv) {
  if (argc < 2) {
    fprintf(stderr, "usage: %s DIR\n", argv[0]);
    return 2;
  }
  std::string dir = argv[1];
  BuildAggregate();

  int ok = 1;
  growthstate.associate = 1;  // one texture per root
  ok &= SaveModelFile((dir + "/sweep.pov").c_str(), MODEL_POVRAY, MODEL_SWEEP);
  ok &= SaveModelFile((dir + "/cyl-roots.pov").c_str(), MODEL_POVRAY, MODEL_SEGMENTS);
  ok &= SaveModelFile((dir + "/cyl.wrl").c_str(), MODEL_VRML, MODEL_SEGMENTS);
  growthstate.associate = 0;  // one texture for all; colours by weight
  ok &= SaveModelFile((dir + "/cyl.pov").c_str(), MODEL_POVRAY, MODEL_SEGMENTS);
  ok &= SaveModelFile((dir + "/sweep-plain.pov").c_str(), MODEL_POVRAY, MODEL_SWEEP);
  ok &= SaveModelFile((dir + "/caps.wrl").c_str(), MODEL_VRML, MODEL_CAPPED);
  ok &= SaveModelFile((dir + "/model.geom").c_str(), MODEL_GEOM, MODEL_SEGMENTS);
  ok &= SaveModelFile((dir + "/points.dxf").c_str(), MODEL_DXFPOINTS, MODEL_SEGMENTS);
  ok &= SaveModelFile((dir + "/points.geom").c_str(), MODEL_GEOMPOINTS, MODEL_SEGMENTS);
  ok &= SaveModelFile((dir + "/surface.stl").c_str(), MODEL_STL, MODEL_SWEEP);
  if (!ok) {
    fprintf(stderr, "could not write into %s\n", dir.c_str());
    return 1;
  }

  int segments = 0;
  for (int i = 0; i < ncells; i++)
    if (cells[i].parent >= 0) segments++;
  printf("cells %d segments %d facets %d\n", ncells, segments, nstltri);
  return 0;
}
