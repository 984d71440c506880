// The desktop side of the box count: one step per idle call, the occupied
// boxes of the current level drawn over the scene.
#ifndef DLA_DESKTOP_VIEW_BOXCOUNT_GL_H
#define DLA_DESKTOP_VIEW_BOXCOUNT_GL_H

// Nothing unless options.calcstats is set. BOXCOUNT_START starts a count
// first; then BOXCOUNT_DRAW draws the stored boxes in (0.5, 1, 0.5),
// BOXCOUNT_STEP tests one box.
enum { BOXCOUNT_GOON = 0, BOXCOUNT_START = 1 };
enum { BOXCOUNT_STEP = 0, BOXCOUNT_DRAW = 1 };
void CalcBoxCount(int start, int draw);

// For boxcountdone: arms the statistics overlay for 500 frames.
void BoxCountDone(void);

#endif
