// The window's idle driver without the window: the growth of one idle call
// and the clock that paces form polling and redisplays.
#ifndef DLA_GROWTH_IDLE_H
#define DLA_GROWTH_IDLE_H

#include "app/simulation.h"

#define IDLE_STEPS 100  // growth steps per idle call

enum { IDLE_POLLFORMS = 1, IDLE_REDISPLAY = 2 };

// IDLE_STEPS growth steps while growth runs and no statistics count is
// under way (the count's portion takes the call instead). Returns the steps
// taken.
long IdleGrowth(SIMULATION &sim);

// What is due at time now (seconds) since *last, the time of the last
// redisplay request (below 0 before the first call, which sets it to now):
// IDLE_POLLFORMS after more than 0.02 s, IDLE_REDISPLAY after more than
// 1 / framerate s, which also moves *last to now.
int IdleDue(double framerate, double now, double *last);

#endif
