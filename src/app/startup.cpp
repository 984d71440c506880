#include "app/startup.h"

#include "app/simulation.h"
#include "export/statistics.h"
#include "growth/growth.h"
#include "growth/index.h"
#include "growth/walk.h"
#include "surface/stl.h"
#include "view/camera.h"

void ResetProgram(SIMULATION &sim) {
  sim = SIMULATION();  // what a new process holds: zeroed records, empty arrays
  UpdateSTL(sim);
  // 1. Growth initialisation: its first call applies the defaults and places
  // the roots.
  InitialiseGrowth(sim);
  // 2. The camera's first home.
  CameraHome(sim);
  // 3, 4. Option and interface defaults.
  SetOptionDefaults(sim);
  SetInterfaceDefaults(sim);
}
