#include "growth/growth.h"
#include "growth/random.h"
#include "surface/stl.h"

// Every call below is its own statement so the draws come in the order
// dx, dy, dz whatever the compiler does with an expression.
static double Centred(SIMULATION &sim) { return GrowthDrand48(sim.random) - 0.5; }
static double Sideways(SIMULATION &sim, double s) { return (GrowthDrand48(sim.random) - 0.5) * s; }
static double Wide(SIMULATION &sim) { return 2 * (GrowthDrand48(sim.random) - 0.5); }
static double PlusMinus(SIMULATION &sim) { return GrowthDrand48(sim.random) < 0.5 ? -1 : 1; }

XYZ GetNewParticle(SIMULATION &sim, int sourcetype, double r) {
  double s = 0.1 * sim.growthstate.branchlength;  // absolute spread of the axis sources
  XYZ d;
  switch (sourcetype) {
    case SOURCE_PLUSX:
    case SOURCE_MINUSX:
    case SOURCE_DOUBLEX:
      d.x = sourcetype == SOURCE_PLUSX ? 1 : sourcetype == SOURCE_MINUSX ? -1 : PlusMinus(sim);
      d.y = Sideways(sim, s);
      d.z = Sideways(sim, s);
      break;
    case SOURCE_PLUSY:
    case SOURCE_MINUSY:
    case SOURCE_DOUBLEY:
      d.x = Sideways(sim, s);
      d.y = sourcetype == SOURCE_PLUSY ? 1 : sourcetype == SOURCE_MINUSY ? -1 : PlusMinus(sim);
      d.z = Sideways(sim, s);
      break;
    case SOURCE_PLUSZ:
    case SOURCE_MINUSZ:
    case SOURCE_DOUBLEZ:
      d.x = Sideways(sim, s);
      d.y = Sideways(sim, s);
      d.z = sourcetype == SOURCE_PLUSZ ? 1 : sourcetype == SOURCE_MINUSZ ? -1 : PlusMinus(sim);
      break;
    case SOURCE_PLANEX:
      d.x = 1;
      d.y = Wide(sim);
      d.z = Wide(sim);
      break;
    case SOURCE_PLANEY:
      d.x = Wide(sim);
      d.y = 1;
      d.z = Wide(sim);
      break;
    case SOURCE_PLANEZ:
      d.x = Wide(sim);
      d.y = Wide(sim);
      d.z = 1;
      break;
    case SOURCE_HEMIX:
      d.x = 0.5 * GrowthDrand48(sim.random);
      d.y = Centred(sim);
      d.z = Centred(sim);
      break;
    case SOURCE_HEMIY:
      d.x = Centred(sim);
      d.y = 0.5 * GrowthDrand48(sim.random);
      d.z = Centred(sim);
      break;
    case SOURCE_HEMIZ:
      d.x = Centred(sim);
      d.y = Centred(sim);
      d.z = 0.5 * GrowthDrand48(sim.random);
      break;
    case SOURCE_STL:
      if (sim.nstltri > 0) {
        // Aim at a random facet's centroid, each facet equally likely.
        d = sim.stltri[GrowthRand(sim.random) % sim.nstltri].mid;
        break;
      }
      // no surface: behave like the sphere
      [[fallthrough]];
    default:
      // A point of the unit cube, not a uniform direction: the corners are
      // favoured slightly, as they always were.
      d.x = Centred(sim);
      d.y = Centred(sim);
      d.z = Centred(sim);
      break;
  }
  Normalise(&d);
  d.x *= r;
  d.y *= r;
  d.z *= r;
  return d;
}
