#include "app/startup.h"

#include <string.h>  // memset()

#include "app/records.h"
#include "export/statistics.h"
#include "growth/growth.h"
#include "growth/index.h"
#include "growth/walk.h"
#include "surface/stl.h"
#include "view/camera.h"

// What a new process holds before start-up: zeroed records, empty arrays.
static void ClearState(void) {
  memset(&camera, 0, sizeof(camera));
  memset(&options, 0, sizeof(options));
  memset(&growthstate, 0, sizeof(growthstate));
  memset(&interfacestate, 0, sizeof(interfacestate));
  memset(&stats, 0, sizeof(stats));
  cells.clear();
  ncells = 0;
  cellsrevision++;  // the search index rebuilds
  // The fast walk's unsettled shares belong to the cells just cleared; the
  // rebuild would add them to the next aggregate's.
  searchindex.owed.clear();
  searchindex.owing = 0;
  roots.clear();
  memset(seeds, 0, sizeof(seeds));
  nseeds = 0;
  nstltri = 0;
  UpdateSTL();
  boxcountstate.nboxes = 0;
  growthsearch = SEARCH_INDEX;
  growthwalk = WALK_EXACT;
}

void ResetProgram(void) {
  ClearState();
  // 1. Growth initialisation as its first call makes it: the defaults, the
  // roots, then the run.
  SetGrowthDefaults();
  ResetSeeds();
  InitialiseGrowth();
  // 2. The camera's first home.
  ForgetCameraHome();
  CameraHome();
  // 3, 4. Option and interface defaults.
  SetOptionDefaults();
  SetInterfaceDefaults();
}
