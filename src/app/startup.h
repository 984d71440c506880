// The state of a freshly started program, for the desktop program's
// start-up, the batch program and the tests alike.
#ifndef DLA_APP_STARTUP_H
#define DLA_APP_STARTUP_H

#include "app/simulation.h"

// Start-up's first four steps, from any earlier state: no aggregate, surface
// or statistics; the growth defaults with their roots placed and both
// generators seeded; the camera at its first home (mono, 800 x 600); the
// option and interface defaults. The command line comes after.
void ResetProgram(SIMULATION &sim);

#endif
