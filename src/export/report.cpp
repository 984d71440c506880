#include "export/report.h"

#include <math.h>  // log()

#include "app/simulation.h"
#include "surface/stl.h"
#include "view/overlay.h"

void WriteInformation(SIMULATION &sim, FILE *fp) {
  const GROWTHSTATE &g = sim.growthstate;
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
  if (sim.nstltri > 0) {
    fprintf(fp, "Faces in constraint surface: %d\n", sim.nstltri);
    fprintf(fp, "Surface bounds\n");
    fprintf(fp, "   %g <= x <= %g\n", sim.stlmin.x, sim.stlmax.x);
    fprintf(fp, "   %g <= y <= %g\n", sim.stlmin.y, sim.stlmax.y);
    fprintf(fp, "   %g <= z <= %g\n", sim.stlmin.z, sim.stlmax.z);
  }
  fprintf(fp, "Number of particles: %d\n", sim.ncells);
  fprintf(fp, "Current radius: %g\n", g.radius);
  if (sim.stats.timestep < 1) return;

  fprintf(fp, "\n");
  fprintf(fp, "Statistics at time step: %d\n", sim.stats.timestep);
  fprintf(fp, "   Branch distribution\n");
  fprintf(fp, "   0:%d 1:%d 2:%d 3:%d 4:%d 5:%d\n", sim.stats.branchcount[0], sim.stats.branchcount[1],
          sim.stats.branchcount[2], sim.stats.branchcount[3], sim.stats.branchcount[4], sim.stats.branchcount[5]);
  fprintf(fp, "   Box counting [ size, N, log(1/size), log(N) ]\n");
  for (int i = 0; i < 10; i++) {
    if (sim.stats.boxcount[i] > 0 && sim.stats.boxsize[i] > 0)
      fprintf(fp, "   %lf %d %lf %lf\n", sim.stats.boxsize[i], sim.stats.boxcount[i], log(1 / sim.stats.boxsize[i]),
              log((double)sim.stats.boxcount[i]));
  }
}

int SaveInformationFile(SIMULATION &sim, const char *path) {
  if (path == NULL || path[0] == '\0') return 0;
  FILE *fp = fopen(path, "w");
  if (fp == NULL) return 0;
  WriteInformation(sim, fp);
  return CloseWritten(fp);
}
