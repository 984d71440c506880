// Cutting the aggregate into parallel slabs, one text file per slab.
#ifndef DLA_SURFACE_SLICE_H
#define DLA_SURFACE_SLICE_H

#include <stdio.h>  // FILE

#include "app/simulation.h"
#include "lib/vector.h"

// Writes nslices files "slice_%03d.txt" in the current directory, slab 0
// nearest +radius along the unit normal n. Returns 1, or 0 after writing
// "Failed to open output slice file ..." to stderr when a file cannot be
// created (the files of earlier slabs stay written); the caller ends the
// program then.
int DoSlice(SIMULATION &sim, int nslices, XYZ n);

// DoSlice writing into the directory dir (NULL or "" for the current one).
int DoSliceIn(SIMULATION &sim, const char *dir, int nslices, XYZ n);

// Writes slab i, bounded by the upper and lower planes (a point is beyond a
// bound when the plane's value is negative). Returns 1, or 0 when the file
// cannot be created.
int ProcessSlice(SIMULATION &sim, int i, PLANE upper, PLANE lower);
int ProcessSliceIn(SIMULATION &sim, const char *dir, int i, PLANE upper, PLANE lower);

// Writes the part of segment from->to inside the slab, then walks on to the
// untraced siblings (children of from) and descendants (of to), depth first.
void TraceBranch(SIMULATION &sim, int from, int to, FILE *fp, int i, PLANE upper, PLANE lower);

// 1 and *child = the first cell in index order with traced 0 and the given
// parent; 0 when there is none.
int FindBranch(SIMULATION &sim, int parent, int *child);

// 1 when some cell has parent i.
int TerminalCell(SIMULATION &sim, int i);

// One slice line: "x1 y1 z1 x2 y2 z2".
void WriteVector(FILE *fp, XYZ p1, XYZ p2);

// 1 (default): ProcessSlice finds children through per-slab child lists;
// 0: through FindBranch's scan of all cells. Both give the same files.

#endif
