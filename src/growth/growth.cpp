#include "growth/growth.h"

#include <stdio.h>   // fopen(), fscanf()

#include "growth/random.h"

static void SeedGenerators(SIMULATION &sim) {
  SeedGrowthRandom(sim.random, sim.growthstate.seed);  // srand then srand48
  SeedWalkRandom(sim.random, sim.growthstate.seed);    // the fast walk's own numbers
}

// InitialiseGrowth reads the first nroots entries of roots and keeps the
// first nroots cells: make sure both exist. New entries sit at the origin;
// only a seed file writes places into roots, so a file's places still count
// towards a restart's radius after generated roots replaced its cells.
static void ReserveRoots(SIMULATION &sim, int n) {
  if (n > (int)sim.roots.size()) {
    XYZ origin = {0, 0, 0};
    sim.roots.resize(n, origin);
  }
}

void SetGrowthDefaults(SIMULATION &sim) {
  GROWTHSTATE &g = sim.growthstate;
  g.particle.x = g.particle.y = g.particle.z = 0;
  g.sourcetype = SOURCE_SPHERE;
  g.bias = 0.1;
  g.stickiness = 100;
  g.branchlength = 1.0;
  g.thickend = 0.01;
  g.thickstart = 0.4;
  g.seed = 12345;
  g.rotation = 0;
  g.nroots = 1;
  g.rootrange = 10;
  g.rootdistribution = ROOT_ORIGIN;
  CopyName(g.rootname, "Origin", sizeof(g.rootname));
  g.associate = 0;
  g.intersectrange = 0;
  CopyName(g.stlname, "None", sizeof(g.stlname));
}

void InitialiseGrowth(SIMULATION &sim) {
  GROWTHSTATE &g = sim.growthstate;

  if (!sim.growthinitialised) {
    sim.growthinitialised = 1;
    SetGrowthDefaults(sim);
    ResetSeeds(sim);
  }
  g.growing = 1;
  g.radius = 10 * g.branchlength;
  if (g.nroots >= 2) {
    ReserveRoots(sim, g.nroots);
    if (g.rootrange + 10 > g.radius) g.radius = g.rootrange + 10;
    for (int i = 0; i < g.nroots; i++) {
      double r = Modulus(sim.roots[i]);
      if (r > g.radius) g.radius = r;
    }
  }
  g.lifespan = 0;
  g.maxweight = 0;
  SeedGenerators(sim);
  sim.stats.timestep = 0;
  sim.nseeds = 0;

  // Cells beyond the aggregate stay as they are, so a restart with more
  // roots than were placed brings earlier cells back (by design).
  int n = g.nroots > 0 ? g.nroots : 0;
  ReserveCells(sim, n);
  sim.ncells = n;
}

static double Spread(SIMULATION &sim) { return (GrowthDrand48(sim.random) - 0.5) * sim.growthstate.rootrange; }

void ResetSeeds(SIMULATION &sim) {
  GROWTHSTATE &g = sim.growthstate;
  int code = g.rootdistribution;

  sim.ncells = 0;
  if (code == ROOT_ORIGIN) {
    XYZ origin = {0, 0, 0};
    ReserveRoots(sim, 1);
    AppendCell(sim, origin, 0, -1);
    CopyName(g.rootname, "Origin", sizeof(g.rootname));
  } else if (code <= 9 && g.nroots >= 1) {
    const char *name = "Spherical";
    ReserveRoots(sim, g.nroots);
    for (int i = 0; i < g.nroots; i++) {
      XYZ p = {0, 0, 0};
      double a = i * TWOPI / g.nroots;
      switch (code) {
        case ROOT_RANDOMX:
          p.y = Spread(sim);
          p.z = Spread(sim);
          name = "Random: x axis plane";
          break;
        case ROOT_RANDOMY:
          p.x = Spread(sim);
          p.z = Spread(sim);
          name = "Random: y axis plane";
          break;
        case ROOT_RANDOMZ:
          p.x = Spread(sim);
          p.y = Spread(sim);
          name = "Random: z axis plane";
          break;
        case ROOT_RINGX:
          p.y = g.rootrange * cos(a);
          p.z = g.rootrange * sin(a);
          name = "Ring: x axis plane";
          break;
        case ROOT_RINGY:
          p.x = g.rootrange * cos(a);
          p.z = g.rootrange * sin(a);
          name = "Ring: y axis plane";
          break;
        case ROOT_RINGZ:
          p.x = g.rootrange * cos(a);
          p.y = g.rootrange * sin(a);
          name = "Ring: z axis plane";
          break;
        default:  // 2, 9, 0 and negative codes
          p.x = Spread(sim);
          p.y = Spread(sim);
          p.z = Spread(sim);
          break;
      }
      AppendCell(sim, p, 0, -1);
    }
    CopyName(g.rootname, name, sizeof(g.rootname));
  }
  SeedGenerators(sim);
  sim.nseeds = 0;
}

int ReadRootsFile(SIMULATION &sim, const char *path, FILEMESSAGE *msg) {
  FILE *fp = fopen(path, "r");
  if (fp == NULL) {
    SetFileMessage(msg, 0, "File Error", "Failed to read seed file", path);
    return 0;
  }
  int ok = ReadRootsStream(sim, fp, path, msg);
  fclose(fp);
  return ok;
}

int ReadRootsStream(SIMULATION &sim, FILE *fp, const char *name, FILEMESSAGE *msg) {
  GROWTHSTATE &g = sim.growthstate;
  CopyName(g.rootname, name, sizeof(g.rootname));
  g.nroots = 0;
  InitialiseGrowth(sim);
  ResetSeeds(sim);  // with distribution 1 this renames the roots "Origin"
  sim.ncells = 0;

  XYZ p;
  while (fscanf(fp, "%lf %lf %lf\n", &p.x, &p.y, &p.z) == 3) {
    ReserveRoots(sim, g.nroots + 1);
    sim.roots[g.nroots] = p;
    g.nroots++;
    AppendCell(sim, p, 0, -1);
    double r = Modulus(p);
    if (r > g.radius) g.radius = r;
  }

  if (g.nroots > 0) {
    if (sim.options.debug) fprintf(stderr, "Read %d root seed positions\n", g.nroots);
    return 1;
  }

  SetFileMessage(msg, 0, "File Error", "Failed to read any root positions", "Resetting");
  g.nroots = 1;
  g.rootdistribution = ROOT_ORIGIN;
  CopyName(g.rootname, "Origin", sizeof(g.rootname));
  InitialiseGrowth(sim);
  ResetSeeds(sim);
  return 0;
}
