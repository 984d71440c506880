// What dla3d-batch needs of the library beyond include/dla3d/dla3d.h: a
// simulation made from its parsed command line (with the exit status of a
// refusal), the core record for the slice files and the picture, and the
// last growth for the stall message.
#ifndef DLA_LIBRARY_INTERNAL_H
#define DLA_LIBRARY_INTERNAL_H

#include <stdio.h>

#include "app/simulation.h"
#include "batch/batch.h"
#include "dla3d/dla3d.h"

namespace dla3d {

struct Simulation {
  SIMULATION core;
  BATCHRUN run;      // the settings as parsed (the stall limit among them)
  BATCHGROWTH last;  // the last Grow's limits and what it saw
};

// StartBatchRun on a new simulation: the run's settings, surface and roots.
// NULL after a message to err, with the exit status in *status.
Simulation *CreateFromRun(const BATCHRUN *run, FILE *err, int *status);

// dla3d-batch on the library: options, usage, or the run with its progress
// bar and files. Returns the exit status. picture: NULL refuses --png.
int BatchProgram(int argc, char **argv, BATCHPICTURE picture);

}  // namespace dla3d

#endif
