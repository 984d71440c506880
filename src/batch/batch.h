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

// [SECTION] The command line

// Fills *run from the arguments. Returns BATCH_OK, or BATCH_USAGE after
// writing a message naming the option and its allowed range to err.
int ParseBatchOptions(int argc, char **argv, BATCHRUN *run, FILE *err);

// The option list, as "-h" shows it.
void WriteBatchUsage(FILE *fp, const char *programname);

// What an option is to a program that embeds the growth: a setting of the
// simulation, a limit of one growth, an output made after growth, or a
// matter of dla3d-batch's own command line (help, progress bar, -d).
enum { BR_SETTING, BR_LIMIT, BR_OUTPUT, BR_PROGRAM };

// The role of the option spelled name ("--bias", "-h"), with in *nvalues
// the arguments its value takes (0 for a switch, 2 for --thickness, 3 for
// --transform). -1 for a name that is no option.
int BatchOptionRole(const char *name, int *nvalues);

// [SECTION] The run, in phases

// Start-up, the settings, the surface (STL file or sample, then the
// transforms) and the roots, as the window makes them; then a run that can
// never reach run->cells is refused unless run->steps limits it. Returns
// BATCH_OK, or after a message to err BATCH_USAGE (never grows),
// BATCH_FILEERROR (a seed or STL file that cannot be read) or BATCH_FATAL
// (a malformed STL file). A setting that does less than it asks is named
// on err too, and the run goes on.
int StartBatchRun(SIMULATION &sim, const BATCHRUN *run, FILE *err);

// Every output can be created (checked before growth, so that a mistyped
// path does not cost a long run; nothing is made). Returns BATCH_OK or
// BATCH_FILEERROR after the message.
int CheckBatchOutputs(const BATCHRUN *run, FILE *err);

// Called by GrowAggregate between its runs of steps, at most every
// BATCH_PROGRESSPERIOD seconds, with the steps this growth has taken.
// Returns 0 to stop the growth. A run of steps ends at each new cell and
// after at most 2^20 steps (some 0.03 s of the exact walk when no cell grows).
typedef int (*BATCHPROGRESS)(SIMULATION &sim, long long steps, void *context);
#define BATCH_PROGRESSPERIOD 0.05

// One growth: its limits and its progress hook, then what it saw.
struct BATCHGROWTH {
  int cells;               // grow until ncells reaches this; 0: no cell limit
  long long steps;         // stop after this many steps; -1: no step limit
  long long stallsteps;    // stall after this many steps without a new cell
  BATCHPROGRESS progress;  // NULL: none
  void *context;           // handed to progress
  long long taken;             // steps taken
  long long idle;              // steps since the last new cell (or the start)
  long long refused[NVETOES];  // sticks each veto refused in those steps
};

// How a growth ended: the cell count or the step limit reached, stopped by
// its progress hook, or stalled.
enum { GROWN_DONE = 0, GROWN_STOPPED = 1, GROWN_STALLED = 3 };

// The growth loop of dla3d-batch. The summary's log (steps, checkpoints,
// growth time) starts with a simulation's first growth and goes on over
// the next ones. The fast walk's weights are left owing (SettleWeights).
int GrowAggregate(SIMULATION &sim, BATCHGROWTH *growth);

// What most likely holds a stalled growth back, as dla3d-batch says it:
// the veto that refused the most sticks, or none came within reach.
void WriteStallMessage(SIMULATION &sim, const BATCHGROWTH *growth, FILE *err);

// The writers in the order a run writes them: the CSV first (batchwriters[0],
// before the slice files and the statistics), then --pov ... --summary, each
// with the menu entry's format and variant, or a writer of its own (save)
// for the files the window does not write.
struct BATCHWRITER {
  const char *option;
  size_t offset;  // the path in BATCHRUN
  int format, variant;
  int (*save)(SIMULATION &sim, const char *path);
  const char *extensions;  // the path endings that choose it, space-separated, or NULL
};
extern const BATCHWRITER batchwriters[];
extern const int nbatchwriters;

// The writer of option ("--ply"), or with option NULL the one whose ending
// path has (in any case). NULL when there is none.
const BATCHWRITER *FindBatchWriter(const char *option, const char *path);

// The path a run gives the writer ("" when not asked for).
const char *BatchOutputPath(const BATCHRUN *run, const BATCHWRITER *w);

// Writes path with w. Returns BATCH_OK, or BATCH_FILEERROR after the
// message ("cannot create", for the CSV "cannot write" when the data did
// not fit).
int WriteBatchFile(SIMULATION &sim, const BATCHWRITER *w, const char *path, FILE *err);

// The slice files of --slices. BATCH_OK, or BATCH_FATAL when one cannot be
// created (DoSlice has said so on standard error; the window exits too).
int WriteBatchSlices(SIMULATION &sim, const BATCHRUN *run);

// The --png picture, the camera from home turned and fitted as asked.
// BATCH_OK (also when none is asked for) or BATCH_FILEERROR after a message.
int WriteBatchPicture(SIMULATION &sim, const BATCHRUN *run, FILE *err);

// With no output asked for, says on standard output what grew.
void SayWhatGrew(SIMULATION &sim, const BATCHRUN *run, long long steps);

// StartBatchRun, CheckBatchOutputs, growth until the cell count or the
// step limit, or until stallsteps steps pass without a new cell; then the
// CSV, the slice files, the statistics, the writers and the picture.
// Returns the exit status; every message goes to err. An output that
// cannot be created ends the run before growth (BATCH_FILEERROR); a write
// that fails after growth is reported and the others are still written
// (BATCH_FILEERROR); a slice file that cannot be created ends the run with
// BATCH_FATAL; a stall writes every file and returns BATCH_STALLED.
int RunBatch(SIMULATION &sim, BATCHRUN *run, FILE *err);


// [SECTION] The progress bar

// One line of the progress bar (no line end): a bar of 40, the percentage,
// the cells, cells per second and the time left as m:ss or h:mm:ss
// ("--" while unknown). fraction is held to 0..1.
void FormatProgress(char *line, int size, double fraction, int cells, double rate, double secondsleft);

// --progress, --no-progress, or whether standard error is a terminal.
int BatchShowsProgress(const BATCHRUN *run);

// The bar of one growth on err: the share of run->cells (or of run->steps
// when that comes first), the rate since the start, the time left.
struct BATCHBAR {
  const BATCHRUN *run;
  FILE *err;
  int startcells;
  double start, shown;  // GetRunTime() at the start and when last drawn
};
void StartBatchBar(BATCHBAR *bar, const BATCHRUN *run, int cells, FILE *err);

// Redraws the bar, at most ten times a second unless last; done ends it at
// 100% with a line end.
void ShowBatchBar(BATCHBAR *bar, int cells, long long steps, int last, int done);

// The aggregate as "index,parent,x,y,z,weight" lines, numbers with "%.17g".
void WriteCellsCSV(SIMULATION &sim, FILE *fp);

#endif
