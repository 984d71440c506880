// The text of the two overlays: the information block (left column) and the
// statistics block (right column), each line with its window position, y
// counted upward from the bottom. GL-free, so the layout can be tested
// without a window; overlay_gl draws the lines.
#ifndef DLA_VIEW_OVERLAY_H
#define DLA_VIEW_OVERLAY_H

#include "app/simulation.h"

// Information lines are cut to 63 characters (a 64-byte buffer), statistics
// lines to 127.
#define INFOLINESIZE 64
#define STATSLINESIZE 128

struct OVERLAYLINE {
  int x, y;
  char text[STATSLINESIZE];
};

// Most lines either block can have.
#define MAXINFOLINES 22
#define MAXSTATSLINES 14

// The information block for a window screenheight pixels high, from the
// growth settings, the aggregate and the surface. Fills at most max lines
// and returns how many were filled.
int InfoLines(SIMULATION &sim, OVERLAYLINE *lines, int max, int screenheight);

// The statistics block (branch distribution, then one line per box size
// with a non-zero count, closing up) at x = screenwidth / 2. Returns the
// number of lines filled, at most max.
int StatisticsLines(SIMULATION &sim, OVERLAYLINE *lines, int max, int screenwidth, int screenheight);

// The source type line ("Source type: ...") for a source code. The report
// (report nonzero) names code 9 "Single axis (-x)"; the on-screen overlay
// (report 0) says "Single axis (-z)". Unknown codes give "Source type: Unknown".
const char *SourceTypeText(int code, int report);

#endif
