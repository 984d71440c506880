#include "growth/idle.h"

#include "growth/growth.h"

long IdleGrowth(SIMULATION &sim) {
  if (!sim.growthstate.growing || sim.options.calcstats) return 0;
  long i = 0;
  while (i < IDLE_STEPS) i += IterateSystemSteps(sim, IDLE_STEPS - i);
  return i;
}

int IdleDue(double framerate, double now, double *last) {
  if (*last < 0) *last = now;
  int due = 0;
  // The forms are polled only in the part of a frame beyond 0.02 s.
  if (now - *last > 0.02) due |= IDLE_POLLFORMS;
  if (now - *last > 1 / framerate) {
    due |= IDLE_REDISPLAY;
    *last = now;
  }
  return due;
}
