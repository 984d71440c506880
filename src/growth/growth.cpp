#include "growth/growth.h"

#include <stdio.h>   // fopen(), fscanf()

#include "growth/random.h"

static void SeedGenerators(void) {
  SeedGrowthRandom(growthstate.seed);  // srand then srand48
  SeedWalkRandom(growthstate.seed);    // the fast walk's own numbers
}

// InitialiseGrowth reads the first nroots entries of roots and keeps the
// first nroots cells: make sure both exist. New entries sit at the origin;
// only a seed file writes places into roots, so a file's places still count
// towards a restart's radius after generated roots replaced its cells.
static void ReserveRoots(int n) {
  if (n > (int)roots.size()) {
    XYZ origin = {0, 0, 0};
    roots.resize(n, origin);
  }
}

void SetGrowthDefaults(void) {
  GROWTHSTATE &g = growthstate;
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

void InitialiseGrowth(void) {
  static int first = 1;
  GROWTHSTATE &g = growthstate;

  if (first) {
    first = 0;
    SetGrowthDefaults();
    ResetSeeds();
  }
  g.growing = 1;
  g.radius = 10 * g.branchlength;
  if (g.nroots >= 2) {
    ReserveRoots(g.nroots);
    if (g.rootrange + 10 > g.radius) g.radius = g.rootrange + 10;
    for (int i = 0; i < g.nroots; i++) {
      double r = Modulus(roots[i]);
      if (r > g.radius) g.radius = r;
    }
  }
  g.lifespan = 0;
  g.maxweight = 0;
  SeedGenerators();
  stats.timestep = 0;
  nseeds = 0;

  // Cells beyond the aggregate stay as they are, so a restart with more
  // roots than were placed brings earlier cells back (by design).
  int n = g.nroots > 0 ? g.nroots : 0;
  ReserveCells(n);
  ncells = n;
}

static double Spread(void) { return (GrowthDrand48() - 0.5) * growthstate.rootrange; }

void ResetSeeds(void) {
  GROWTHSTATE &g = growthstate;
  int code = g.rootdistribution;

  ncells = 0;
  if (code == ROOT_ORIGIN) {
    XYZ origin = {0, 0, 0};
    ReserveRoots(1);
    AppendCell(origin, 0, -1);
    CopyName(g.rootname, "Origin", sizeof(g.rootname));
  } else if (code <= 9 && g.nroots >= 1) {
    const char *name = "Spherical";
    ReserveRoots(g.nroots);
    for (int i = 0; i < g.nroots; i++) {
      XYZ p = {0, 0, 0};
      double a = i * TWOPI / g.nroots;
      switch (code) {
        case ROOT_RANDOMX:
          p.y = Spread();
          p.z = Spread();
          name = "Random: x axis plane";
          break;
        case ROOT_RANDOMY:
          p.x = Spread();
          p.z = Spread();
          name = "Random: y axis plane";
          break;
        case ROOT_RANDOMZ:
          p.x = Spread();
          p.y = Spread();
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
          p.x = Spread();
          p.y = Spread();
          p.z = Spread();
          break;
      }
      AppendCell(p, 0, -1);
    }
    CopyName(g.rootname, name, sizeof(g.rootname));
  }
  SeedGenerators();
  nseeds = 0;
}

int ReadRootsFile(const char *path, FILEMESSAGE *msg) {
  FILE *fp = fopen(path, "r");
  if (fp == NULL) {
    SetFileMessage(msg, 0, "File Error", "Failed to read seed file", path);
    return 0;
  }
  int ok = ReadRootsStream(fp, path, msg);
  fclose(fp);
  return ok;
}

int ReadRootsStream(FILE *fp, const char *name, FILEMESSAGE *msg) {
  GROWTHSTATE &g = growthstate;
  CopyName(g.rootname, name, sizeof(g.rootname));
  g.nroots = 0;
  InitialiseGrowth();
  ResetSeeds();  // with distribution 1 this renames the roots "Origin"
  ncells = 0;

  XYZ p;
  while (fscanf(fp, "%lf %lf %lf\n", &p.x, &p.y, &p.z) == 3) {
    ReserveRoots(g.nroots + 1);
    roots[g.nroots] = p;
    g.nroots++;
    AppendCell(p, 0, -1);
    double r = Modulus(p);
    if (r > g.radius) g.radius = r;
  }

  if (g.nroots > 0) {
    if (options.debug) fprintf(stderr, "Read %d root seed positions\n", g.nroots);
    return 1;
  }

  SetFileMessage(msg, 0, "File Error", "Failed to read any root positions", "Resetting");
  g.nroots = 1;
  g.rootdistribution = ROOT_ORIGIN;
  CopyName(g.rootname, "Origin", sizeof(g.rootname));
  InitialiseGrowth();
  ResetSeeds();
  return 0;
}
