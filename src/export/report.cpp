#include "export/report.h"

#include <math.h>  // log()

#include "app/records.h"
#include "surface/stl.h"
#include "view/overlay.h"

void WriteInformation(FILE *fp) {
  const GROWTHSTATE &g = growthstate;
  fprintf(fp, "Version: %g\n", versionid / 100.0);
  fprintf(fp, "Seed: %d\n", g.seed);
  fprintf(fp, "Bias towards origin: %g%% of step length\n", g.bias);
  fprintf(fp, "Branch length: %g\n", g.branchlength);
  fprintf(fp, "Stickiness: %g%%\n", g.stickiness);
  fprintf(fp, "Rotation: %g degrees about z axis\n", g.rotation);
  fprintf(fp, "Branch thickness: %g to %g\n", g.thickstart, g.thickend);
  fprintf(fp, "Intersection range: %g%% of branch length\n", g.intersectrange);
  fprintf(fp, "Seed association: %s\n", g.associate ? "On" : "Off");
  fprintf(fp, "Number of roots: %d\n", g.nroots);
  if (g.nroots >= 2) {
    fprintf(fp, "Root distribution range: %g\n", g.rootrange);
    fprintf(fp, "Root distribution: %s\n", g.rootname);
  }
  fprintf(fp, "%s\n", SourceTypeText(g.sourcetype, 1));
  fprintf(fp, "Constraint surface: %s\n", g.stlname);
  if (nstltri > 0) {
    fprintf(fp, "Faces in constraint surface: %d\n", nstltri);
    fprintf(fp, "Surface bounds\n");
    fprintf(fp, "   %g <= x <= %g\n", stlmin.x, stlmax.x);
    fprintf(fp, "   %g <= y <= %g\n", stlmin.y, stlmax.y);
    fprintf(fp, "   %g <= z <= %g\n", stlmin.z, stlmax.z);
  }
  fprintf(fp, "Number of particles: %d\n", ncells);
  fprintf(fp, "Current radius: %g\n", g.radius);
  if (stats.timestep < 1) return;

  fprintf(fp, "\n");
  fprintf(fp, "Statistics at time step: %d\n", stats.timestep);
  fprintf(fp, "   Branch distribution\n");
  fprintf(fp, "   0:%d 1:%d 2:%d 3:%d 4:%d 5:%d\n", stats.branchcount[0], stats.branchcount[1],
          stats.branchcount[2], stats.branchcount[3], stats.branchcount[4], stats.branchcount[5]);
  fprintf(fp, "   Box counting [ size, N, log(1/size), log(N) ]\n");
  for (int i = 0; i < 10; i++) {
    if (stats.boxcount[i] > 0 && stats.boxsize[i] > 0)
      fprintf(fp, "   %lf %d %lf %lf\n", stats.boxsize[i], stats.boxcount[i], log(1 / stats.boxsize[i]),
              log((double)stats.boxcount[i]));
  }
}

int SaveInformationFile(const char *path) {
  if (path == NULL || path[0] == '\0') return 0;
  FILE *fp = fopen(path, "w");
  if (fp == NULL) return 0;
  WriteInformation(fp);
  return CloseWritten(fp);
}
