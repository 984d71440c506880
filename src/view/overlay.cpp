#include "view/overlay.h"

#include <stdarg.h>
#include <stdio.h>

#include "app/simulation.h"
#include "surface/stl.h"

static const char *const sourcetypes[18] = {
    "Source type: Unknown",
    "Source type: Sphere",
    "Source type: Single axis (+x)",
    "Source type: Single axis (-x)",
    "Source type: Double axis (x)",
    "Source type: Single axis (+y)",
    "Source type: Single axis (-y)",
    "Source type: Double axis (y)",
    "Source type: Single axis (+z)",
    "Source type: Single axis (-z)",
    "Source type: Double axis (z)",
    "Source type: Plane (x)",
    "Source type: Plane (y)",
    "Source type: Plane (z)",
    "Source type: Hemisphere (x)",
    "Source type: Hemisphere (y)",
    "Source type: Hemisphere (z)",
    "Source type: STL surface",
};

const char *SourceTypeText(int code, int report) {
  if (code < 1 || code > 17) return sourcetypes[0];
  // The written report names this one "-x", unlike the overlay; kept as it is.
  if (report && code == SOURCE_MINUSZ) return "Source type: Single axis (-x)";
  return sourcetypes[code];
}

// Appends one formatted line cut to size - 1 characters; lines beyond max
// are dropped.
static void AddLine(OVERLAYLINE *lines, int max, int *n, int size, int x, int y,
                    const char *format, ...) {
  if (*n >= max) return;
  OVERLAYLINE *line = &lines[*n];
  line->x = x;
  line->y = y;
  va_list args;
  va_start(args, format);
  vsnprintf(line->text, size, format, args);
  va_end(args);
  (*n)++;
}

int InfoLines(SIMULATION &sim, OVERLAYLINE *lines, int max, int screenheight) {
  const GROWTHSTATE &g = sim.growthstate;
  const int s = INFOLINESIZE;
  int h = screenheight;
  int n = 0;

  AddLine(lines, max, &n, s, 10, h - 26, "Version: %g", versionid / 100.0);
  AddLine(lines, max, &n, s, 10, h - 39, "Seed: %d", g.seed);
  AddLine(lines, max, &n, s, 10, h - 52, "Bias towards origin: %g%% of step length", g.bias);
  AddLine(lines, max, &n, s, 10, h - 65, "Branch length: %g", g.branchlength);
  AddLine(lines, max, &n, s, 10, h - 78, "Stickiness: %g%%", g.stickiness);
  AddLine(lines, max, &n, s, 10, h - 91, "Rotation: %g degrees about z axis", g.rotation);
  AddLine(lines, max, &n, s, 10, h - 104, "Branch thickness: %g to %g", g.thickstart, g.thickend);
  AddLine(lines, max, &n, s, 10, h - 117, "Intersection range: %g%% of branch length",
          g.intersectrange);
  AddLine(lines, max, &n, s, 10, h - 130, g.associate ? "Seed association: On"
                                                      : "Seed association: Off");
  int y = h - 143;
  AddLine(lines, max, &n, s, 10, y, "Number of roots: %d", g.nroots);
  if (g.nroots > 1) {
    AddLine(lines, max, &n, s, 10, h - 156, "Root distribution range: %g", g.rootrange);
    y = h - 169;
    AddLine(lines, max, &n, s, 10, y, "Root distribution: %s", g.rootname);
  }
  AddLine(lines, max, &n, s, 10, y - 13, "%s", SourceTypeText(g.sourcetype, 0));
  int z = y - 26;
  AddLine(lines, max, &n, s, 10, z, "Constraint surface: %s", g.stlname);
  if (sim.nstltri > 0) {
    AddLine(lines, max, &n, s, 10, y - 39, "Faces in constraint surface: %d", sim.nstltri);
    AddLine(lines, max, &n, s, 10, y - 52, "Surface bounds");
    AddLine(lines, max, &n, s, 10, y - 65, "   %g <= x <= %g", sim.stlmin.x, sim.stlmax.x);
    AddLine(lines, max, &n, s, 10, y - 78, "   %g <= y <= %g", sim.stlmin.y, sim.stlmax.y);
    z = y - 91;
    AddLine(lines, max, &n, s, 10, z, "   %g <= z <= %g", sim.stlmin.z, sim.stlmax.z);
  }
  AddLine(lines, max, &n, s, 10, z - 26, "Number of particles: %d", sim.ncells);
  AddLine(lines, max, &n, s, 10, z - 39, "Current radius: %g", g.radius);
  AddLine(lines, max, &n, s, 10, z - 52, "Particle life span: %d", g.lifespan);
  return n;
}

int StatisticsLines(SIMULATION &sim, OVERLAYLINE *lines, int max, int screenwidth, int screenheight) {
  const int s = STATSLINESIZE;
  int x = screenwidth / 2;
  int h = screenheight;
  int n = 0;

  AddLine(lines, max, &n, s, x, h - 26, "Statistics");
  AddLine(lines, max, &n, s, x, h - 39, "Branch distribution");
  AddLine(lines, max, &n, s, x, h - 52, "   0:%d 1:%d 2:%d 3:%d 4:%d 5:%d", sim.stats.branchcount[0],
          sim.stats.branchcount[1], sim.stats.branchcount[2], sim.stats.branchcount[3], sim.stats.branchcount[4],
          sim.stats.branchcount[5]);
  int y = h - 65;
  AddLine(lines, max, &n, s, x, y, "Box counting");
  for (int k = 0; k < 10; k++) {
    if (sim.stats.boxcount[k] <= 0) continue;
    y -= 13;
    // The trailing newline only moves the raster position; kept as drawn.
    AddLine(lines, max, &n, s, x, y, "   %8.3lf : %d\n", sim.stats.boxsize[k], sim.stats.boxcount[k]);
  }
  return n;
}
