#include "growth/walk.h"

#include <math.h>  // exp(), log(), sqrt()

#include "app/simulation.h"
#include "growth/growth.h"
#include "growth/index.h"
#include "growth/random.h"

// Inside a free sphere a step is one branch length in a direction of the
// cube normalised: its coordinates have variance bl^2 / 3 each and no
// covariance, so many steps make Brownian motion with that variance per
// step, and a particle started at the centre leaves a sphere of radius d
// after about (d / bl)^2 steps. With a constant drift m per step the exit
// point and the exit time are independent: the point has the von Mises-
// Fisher density exp(kappa cos theta) about the drift, kappa = |m| d /
// variance, and the time has the driftless density tilted by
// exp(-kappa^2 tau / 2) in the time unit d^2 / variance.

#define QUANTILES 4096
// Branch lengths kept between a jump's sphere and the cells' reach: the
// particle lands off the zone where it could touch, so that its arrival
// there is the discrete walk's (over 30 seeds the branch shares came
// nearer the exact walk's with it).
#define NEARMARGIN 0.5
#define SPINBOUND 4.0   // a swirled jump is planned for up to 4 times the mean steps
#define FOLDSHARE 0.25  // a jump's sphere stays small next to the release sphere's radius

// P(tau > t) for the unit ball, unit variance per coordinate and unit time.
static double ExitSurvival(double t) {
  if (t < 1e-4) return 1;
  double s = 0;
  for (int n = 1; n < 400; n++) {
    double term = exp(-n * n * M_PI * M_PI * t / 2);
    s += (n & 1 ? 2 : -2) * term;
    if (term < 1e-18) break;
  }
  return s;
}

// quantile[k]: the exit time exceeded with probability 1 - k / QUANTILES.
static const double *ExitQuantiles(void) {
  static double *quantile = [] {
    double *q = new double[QUANTILES + 1];
    q[0] = 0;
    for (int k = 1; k <= QUANTILES; k++) {
      double want = 1 - (double)k / QUANTILES, lo = 0, hi = 40;
      for (int it = 0; it < 80; it++) {
        double mid = 0.5 * (lo + hi);
        if (ExitSurvival(mid) > want) lo = mid; else hi = mid;
      }
      q[k] = 0.5 * (lo + hi);
    }
    return q;
  }();
  return quantile;
}

// An exit time (unit ball, unit variance) with drift kappa.
static double ExitTime(SIMULATION &sim, double kappa) {
  const double *q = ExitQuantiles();
  for (;;) {
    double u = WalkUniform(sim.random) * QUANTILES;
    int k = (int)u;
    double tau;
    if (k >= QUANTILES - 1) {  // the tail: P(tau > t) = 2 exp(-pi^2 t / 2) there
      double survival = (QUANTILES - u) / QUANTILES;
      tau = survival > 0 ? -2 * log(survival / 2) / (M_PI * M_PI) : q[QUANTILES];
    } else {
      tau = q[k] + (u - k) * (q[k + 1] - q[k]);
    }
    if (kappa == 0) return tau;
    // exp(-x) >= 1 - x: most draws are accepted without the exponential.
    double x = kappa * kappa * tau / 2, u2 = WalkUniform(sim.random);
    if (u2 < 1 - x || u2 < exp(-x)) return tau;
  }
}

// A unit vector with density exp(kappa cos theta) about the unit axis a;
// uniform on the sphere for kappa up to 1e-8, whatever a is (with no drift
// it is zero).
static XYZ VonMisesFisher(SIMULATION &sim, XYZ a, double kappa) {
  int drifting = kappa > 1e-8;
  if (!drifting) a = XYZ{0, 0, 1};
  double u = WalkUniform(sim.random);
  double w = drifting ? 1 + log(u + (1 - u) * exp(-2 * kappa)) / kappa : 2 * u - 1;
  if (w < -1) w = -1;
  if (w > 1) w = 1;
  XYZ other = {0, 0, 0};
  if (fabs(a.x) < 0.9) other.x = 1; else other.y = 1;
  XYZ e1 = CrossProduct(a, other);
  Normalise(&e1);
  XYZ e2 = CrossProduct(a, e1);
  double phi = TWOPI * WalkUniform(sim.random), side = sqrt(1 - w * w);
  double c = side * cos(phi), s = side * sin(phi);
  XYZ d = {w * a.x + c * e1.x + s * e2.x, w * a.y + c * e1.y + s * e2.y, w * a.z + c * e1.z + s * e2.z};
  return d;
}

// The mean drift of one step at p: b away from the target (with several
// roots and no association the target's coordinates come from random
// roots, so the mean is taken over a few of them).
static XYZ DriftPerStep(SIMULATION &sim, XYZ p) {
  const GROWTHSTATE &g = sim.growthstate;
  XYZ m = {0, 0, 0};
  int nroots = g.nroots;
  if (!(g.bias > 0) || nroots <= 0) return m;
  double b = g.bias * 0.01 * g.branchlength;
  int samples = g.associate || nroots == 1 ? 1 : 8;
  for (int k = 0; k < samples; k++) {
    XYZ t;
    if (g.associate) {
      t = sim.cells[sim.ncells % nroots].p;
    } else {
      int kx = nroots == 1 ? 0 : (int)(WalkUniform(sim.random) * nroots);
      int ky = nroots == 1 ? 0 : (int)(WalkUniform(sim.random) * nroots);
      int kz = nroots == 1 ? 0 : (int)(WalkUniform(sim.random) * nroots);
      t.x = sim.cells[kx].p.x;
      t.y = sim.cells[ky].p.y;
      t.z = sim.cells[kz].p.z;
    }
    XYZ v = {p.x - t.x, p.y - t.y, p.z - t.z};
    Normalise(&v);
    m.x += v.x * b / samples;
    m.y += v.y * b / samples;
    m.z += v.z * b / samples;
  }
  return m;
}

// The release sphere's radius less a margin for rounding: a jump ends
// inside it.
static double Wall(SIMULATION &sim) {
  double limit = sim.growthstate.radius + 2 * sim.growthstate.branchlength;
  return limit * (1 - 1e-9) - 1e-9;
}

// The largest sphere around p the jump may use: free of cells' reach, small
// next to the release sphere (which reflects what crosses it, as a flat
// wall would), and with room for the swirl, which carries a point at
// distance rho from the z axis about rho * angle a step.
// *clearance: the index's clearance at p (0 when not asked).
static double JumpRadius(SIMULATION &sim, XYZ p, double spin, double *clearance) {
  double wall = Wall(sim);
  *clearance = 0;
  if (!(Modulus(p) < wall)) return 0;
  *clearance = IndexClearance(sim, p);
  double clear = *clearance - NEARMARGIN * sim.growthstate.branchlength;
  double d = clear < FOLDSHARE * wall ? clear : FOLDSHARE * wall;
  if (spin > 0) {
    // d + spin * SPINBOUND * d^2 / bl^2 <= clear
    double a = SPINBOUND * spin / (sim.growthstate.branchlength * sim.growthstate.branchlength);
    double most = (-1 + sqrt(1 + 4 * a * clear)) / (2 * a);
    if (most < d) d = most;
  }
  return d;
}

// Room for a jump around p from the last ball the index proved empty (the
// search of an exact step leaves one centred at the particle).
static double BallRoom(SIMULATION &sim, XYZ p) {
  const SEARCHINDEX &s = sim.searchindex;
  if (!s.ball) return 0;
  double dx = p.x - s.centre.x, dy = p.y - s.centre.y, dz = p.z - s.centre.z;
  return sqrt(s.safe2) - sqrt(dx * dx + dy * dy + dz * dz);
}

int Jump(SIMULATION &sim, long most, JUMP *jump) {
  GROWTHSTATE &g = sim.growthstate;
  if (sim.growthsearch != SEARCH_INDEX || (int)sim.cells.size() < g.nroots) return 0;
  if (g.lifespan % GROWTH_LIFESPAN == 0) return 0;  // a new particle is due first
  if (!SearchIndexCurrent(sim)) SyncSearchIndex(sim);
  if (!sim.searchindex.valid) return 0;
  double bl = g.branchlength, variance = bl * bl / 3;
  XYZ p = g.particle;
  double angle = g.rotation * DTOR;
  double spin = sqrt(p.x * p.x + p.y * p.y) * fabs(angle);
  double clearance;
  double d = JumpRadius(sim, p, spin, &clearance);
  if (!(d >= WALK_MINJUMP * bl)) {
    // Too near a cell: the exact steps walk in the larger ball proven empty.
    if (clearance > BallRoom(sim, p)) {
      sim.searchindex.ball = 1;
      sim.searchindex.centre = p;
      sim.searchindex.safe2 = clearance * clearance;
    }
    return 0;
  }

  XYZ m = DriftPerStep(sim, p);
  double drift = Modulus(m), kappa = drift * d / variance;
  double tau = ExitTime(sim, kappa);
  double exact = tau * d * d / variance;
  long steps = exact < 1 ? 1 : exact > 1e12 ? (long)1e12 : (long)(exact + 0.5);
  // The steps counted below never pass the end of the life, life at most
  // GROWTH_LIFESPAN: on a folded count they fit an int.
  int lifespan = FoldLifespan(g.lifespan);
  long life = GROWTH_LIFESPAN - lifespan % GROWTH_LIFESPAN;
  jump->radius = d;
  jump->from = p;
  jump->died = 0;
  if (steps >= life && life <= most) {
    // The life span ends inside the sphere, where nothing can happen.
    g.lifespan = lifespan + (int)life;
    jump->steps = life;
    jump->died = 1;
    jump->to = p;
    return 1;
  }
  if (steps > most) return 0;
  if (spin > 0 && d + spin * steps > IndexClearance(sim, p)) return 0;  // a rare long one

  XYZ axis = m;  // zero with no drift (bias 0, no roots)
  if (drift > 0) {
    axis.x /= drift;
    axis.y /= drift;
    axis.z /= drift;
  }
  XYZ dir = VonMisesFisher(sim, axis, kappa);
  XYZ q = {p.x + d * dir.x, p.y + d * dir.y, p.z + d * dir.z};
  // The release sphere turns the steps that would leave it back: a point
  // beyond it is reflected inwards, which brings it no farther from p.
  double r = Modulus(q), wall = Wall(sim);
  if (r > wall) {
    double inside = (2 * wall - r) / r;
    q.x *= inside;
    q.y *= inside;
    q.z *= inside;
  }
  if (spin > 0) {
    XYZ zaxis = {0, 0, 1};
    q = ArbitraryRotate(q, steps * angle, zaxis);
  }
  g.particle = q;
  g.lifespan = lifespan + (int)steps;  // steps < life here
  jump->steps = steps;
  jump->to = q;
  return 1;
}

long FastWalkSteps(SIMULATION &sim, long n) {
  GROWTHSTATE &g = sim.growthstate;
  if (n <= 0) return 0;
  if (g.lifespan % GROWTH_LIFESPAN == 0) {  // a new particle is due
    IterateSystem(sim);
    return 1;
  }
  // Jumps and exact steps until n steps are taken or the particle's life
  // ends (it stuck or died). Near cells the exact steps' own searches tell
  // when there is room for a jump again, so the clearance is asked only
  // where a jump is likely.
  long k = 0;
  int tryjump = 1;
  while (k < n) {
    JUMP jump;
    if (tryjump && Jump(sim, n - k, &jump)) {
      k += jump.steps;
    } else {
      k += IterateExactSteps(sim, n - k);
      tryjump = BallRoom(sim, g.particle) >= (WALK_MINJUMP + NEARMARGIN) * g.branchlength;
    }
    if (g.lifespan % GROWTH_LIFESPAN == 0) break;
  }
  return k;
}
