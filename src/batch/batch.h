// dla3d-batch: the growth engine without a display. Options are parsed into
// a BATCHRUN first and applied in the order the window would apply them.
#ifndef DLA_BATCH_BATCH_H
#define DLA_BATCH_BATCH_H

#include <stdio.h>

#include "app/simulation.h"
#include "lib/vector.h"

#define BATCH_MAXOPTIONS 64
#define BATCH_MAXTRANSFORMS 64  // a plain array keeps BATCHRUN a plain record for the option table

// One --transform: the transform form's nine inputs.
struct BATCHTRANSFORM {
  XYZ scale, shift, rotate;
};

// Draws the scene offscreen as the window's mono frame shows it without the
// overlays (camera, draw modes and extras from the records) and writes it as
// a PNG of width x height pixels. Returns 1, or 0 after a message to err.
// A program built with offscreen drawing has one; NULL refuses --png.
typedef int (*BATCHPICTURE)(SIMULATION &sim, const char *path, int width, int height, FILE *err);

struct BATCHRUN {
  BATCHPICTURE picture;            // set before parsing; kept by ParseBatchOptions
  GROWTHSTATE growth;              // the settings given on the command line
  int given[BATCH_MAXOPTIONS];     // per row of the option table: was it given
  int cells;                       // grow until ncells reaches this
  long long steps;                 // stop after this many steps; -1: no limit
  long long stallsteps;            // end the run after this many steps without a new cell
  int progress;                    // -1: only when standard error is a terminal
  int debug;
  int help;
  int search;                      // SEARCH_INDEX or SEARCH_SCAN
  int walk;                        // WALK_EXACT or WALK_FAST
  char seedfile[256];              // empty: roots from the root distribution
  char stlfile[256];               // empty: no constraint surface
  char csvfile[256];               // empty: nothing written
  int sample;                      // sample surface code, when given
  BATCHTRANSFORM transforms[BATCH_MAXTRANSFORMS];  // applied in order to the surface
  int ntransforms;
  int nslices;                     // 0: no slicing
  XYZ slicenormal;                 // as typed; SliceNormalForCut makes it usable
  char slicedir[256];              // empty: the current directory
  int stats;                       // run the statistics to completion
  // The writers, each empty when not asked for.
  char povfile[256], povsweepfile[256], geomfile[256], vrmlfile[256], vrmlcapsfile[256];
  char dxfpointsfile[256], geompointsfile[256], stloutfile[256], infofile[256];
  char gltffile[256], plyfile[256], vtpfile[256], summaryfile[256];
  // The picture, last of all, and the drawing state it and the colours of
  // the writers depend on (applied only when given).
  char pngfile[256];
  int pngwidth, pngheight;         // 800 x 600
  int dladrawmode, stldrawmode;    // DLADRAW_*, STLDRAW_*
  int noextras;
  XYZ camerarotate;                // degrees, as RotateCamera turns
  double aperture;                 // degrees
  int fit;                         // the camera backs off to see the whole model
};

// Exit statuses of the batch program.
enum { BATCH_OK = 0, BATCH_FILEERROR = 1, BATCH_USAGE = 2, BATCH_STALLED = 3, BATCH_FATAL = 255 };

// --stall-steps's default. The longest wait for one cell measured over
// settings that grow (a ring of 8 roots 200 apart at 1% stickiness) was
// 1.5e8 steps; this is about 70 times that, some 4 minutes of the exact
// walk far from the cells.
#define BATCH_STALLSTEPS 10000000000LL

// Fills *run from the arguments. Returns BATCH_OK, or BATCH_USAGE after
// writing a message naming the option and its allowed range to err.
int ParseBatchOptions(int argc, char **argv, BATCHRUN *run, FILE *err);

// The option list, as "-h" shows it.
void WriteBatchUsage(FILE *fp, const char *programname);

// Start-up, the settings, the surface (STL file or sample, then the
// transforms), the roots, then growth until the cell count or the step
// limit, or until stallsteps steps pass without a new cell. After growth:
// the CSV, the slice files, the statistics, then the writers. Returns the
// exit status; every message goes to err. An output that cannot be created
// ends the run before growth (BATCH_FILEERROR); a write that fails after
// growth is reported and the others are still written (BATCH_FILEERROR); a
// slice file that cannot be created ends the run with BATCH_FATAL; a stall
// writes every file and returns BATCH_STALLED.
int RunBatch(SIMULATION &sim, BATCHRUN *run, FILE *err);

// The whole program: options, usage or the run. Returns the exit status.
int BatchMain(int argc, char **argv, BATCHPICTURE picture);

// One line of the progress bar (no line end): a bar of 40, the percentage,
// the cells, cells per second and the time left as m:ss or h:mm:ss
// ("--" while unknown). fraction is held to 0..1.
void FormatProgress(char *line, int size, double fraction, int cells, double rate, double secondsleft);

// The aggregate as "index,parent,x,y,z,weight" lines, numbers with "%.17g".
void WriteCellsCSV(SIMULATION &sim, FILE *fp);

#endif
