// Statistics of the aggregate: the branch distribution, computed at once, and
// a box count spread over many calls (one box per call) so that the window
// stays live and can show the occupied boxes of the current level.
//
// The desktop CalcBoxCount(start, draw) is built on these: it returns at once
// when options.calcstats is 0; start calls BoxCountStart(); draw draws
// boxcountstate.boxes[0..nboxes-1] in (0.5, 1, 0.5), and draw 0 calls
// BoxCountStep(). It sets boxcountdone to a routine that calls
// DrawStatistics(500), so the overlay is armed however the count ends.
#ifndef DLA_EXPORT_STATISTICS_H
#define DLA_EXPORT_STATISTICS_H

#include <vector>

#include "app/simulation.h"
#include "lib/vector.h"

// Adds the child counts of all cells to stats.branchcount (never cleared),
// sets calcstats = 1 and timestep = ncells, then starts the box count and
// performs its first step (which may already end it).
void Statistics(SIMULATION &sim);

// Starts a count at level 0 with an edge of radius/2 and switches the views
// to lines without the surface. Nothing when calcstats is 0.
void BoxCountStart(SIMULATION &sim);

// Tests one box and advances to the next. Returns 1 when this step ended the
// count (calcstats is then 0, the drawing modes are restored, boxcountdone
// was called), else 0. Nothing (0) when calcstats is 0.
int BoxCountStep(SIMULATION &sim);

// Statistics followed by steps until the count ends; for the batch program.
// A count that can never advance (zero or non-finite box edge) is ended at
// once instead of looping.
void RunStatisticsToCompletion(SIMULATION &sim);

#endif
