// Shared by the export tests: a clean state, a small hand-made aggregate and
// a way to capture what a writer prints.
#ifndef DLA_TESTS_EXPORT_HELPERS_H
#define DLA_TESTS_EXPORT_HELPERS_H

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <functional>
#include <string>

#include "app/records.h"
#include "surface/stl.h"

inline XYZ P(double x, double y, double z) {
  XYZ p = {x, y, z};
  return p;
}

// Start-up defaults, no cells, no surface, no statistics. The growth
// settings are those a first growth initialisation applies.
inline void ResetExportState(void) {
  SetOptionDefaults();
  ncells = 0;
  nstltri = 0;
  UpdateSTL();
  stats = STATS();
  growthstate = GROWTHSTATE();
  growthstate.sourcetype = 1;
  growthstate.bias = 0.1;
  growthstate.stickiness = 100;
  growthstate.branchlength = 1.0;
  growthstate.thickend = 0.01;
  growthstate.thickstart = 0.4;
  growthstate.seed = 12345;
  growthstate.nroots = 1;
  growthstate.rootrange = 10;
  growthstate.rootdistribution = 1;
  CopyName(growthstate.rootname, "Origin", sizeof(growthstate.rootname));
  CopyName(growthstate.stlname, "None", sizeof(growthstate.stlname));
}

// Two roots and five cells, weights chosen so that with maxweight 3,
// thickend 0.1 and thickstart 0.5 the radii are 0.1 (weight 0), 0.3
// (weight 1, ln 2 / ln 4 = 1/2) and 0.5 (weight 3).
//   0 root (0,0,0) w3      1 root (10,0,0) w3
//   2 <- 0 (0,0,1) w3      3 <- 2 (0,1,2) w1      4 <- 1 (10,0,-1) w1
//   5 <- 3 (0,2,3) w0      6 <- 2 (1,0,2) w0
inline void MakeHandAggregate(void) {
  AppendCell(P(0, 0, 0), 3, -1);
  AppendCell(P(10, 0, 0), 3, -1);
  AppendCell(P(0, 0, 1), 3, 0);
  AppendCell(P(0, 1, 2), 1, 2);
  AppendCell(P(10, 0, -1), 1, 1);
  AppendCell(P(0, 2, 3), 0, 3);
  AppendCell(P(1, 0, 2), 0, 2);
  growthstate.nroots = 2;
  growthstate.maxweight = 3;
  growthstate.thickend = 0.1;
  growthstate.thickstart = 0.5;
  growthstate.radius = 10;
}

// Two facets at z = -2 / x = 0 with normals (0,0,1) and (1,0,0).
inline void MakeTwoFacets(void) {
  AppendFacet(P(0, 0, -2), P(1, 0, -2), P(0, 1, -2));
  AppendFacet(P(0, 0, -2), P(0, 1, -2), P(0, 0, -1));
  UpdateSTL();
}

// Runs f with a memory stream and returns everything it wrote.
inline std::string Capture(std::function<void(FILE *)> f) {
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  f(fp);
  fclose(fp);
  std::string s(buf, len);
  free(buf);
  return s;
}

#endif
