// The desktop side of the box count: one step per idle call, the occupied
// boxes of the current level drawn over the scene.
#ifndef DLA_VIEW_BOXCOUNT_GL_H
#define DLA_VIEW_BOXCOUNT_GL_H

// Nothing unless options.calcstats is set. start != 0 starts a count first;
// then draw != 0 draws the stored boxes in (0.5, 1, 0.5), draw == 0 tests
// one box.
void CalcBoxCount(int start, int draw);

// For boxcountdone: arms the statistics overlay for 500 frames.
void BoxCountDone(void);

#endif
