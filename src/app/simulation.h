// One simulation as one value: the records of one aggregate and everything
// the growth, the statistics and the writers keep between calls. Every core
// function takes the simulation (or the part of it) it reads or writes, so
// that two simulations can grow side by side, in two threads if need be.
#ifndef DLA_APP_SIMULATION_H
#define DLA_APP_SIMULATION_H

#include <stdint.h>

#include <vector>

#include "app/indexrecords.h"
#include "app/records.h"
#include "lib/vector.h"

#define RANDOM_DEGREE 31  // words of rand's additive feedback generator
#define RANDOM_SEP 3

// The growth's random numbers: in-process copies of glibc's drand48 and
// rand, and the fast walk's own generator (growth/random.h).
struct GROWTHRANDOM {
  uint64_t drand48state;             // 48-bit linear congruential state
  int32_t randstate[RANDOM_DEGREE];  // rand's table
  int randfront, randrear;           // glibc's fptr and rptr, as indices
  uint64_t randpending;              // rand draws owed: taken before the next real one
  uint64_t walkrandom[4];            // xoshiro256** of the fast walk
};

// As the library is before any srand48 and srand: seeded with 1.
GROWTHRANDOM FreshGrowthRandom(void);

struct BOX {
  XYZ low, high;
};

// The box count between calls. The desktop draws boxes[0..nboxes-1].
struct BOXCOUNT {
  double scale;            // current box edge
  int depth;               // current level, 0 to 9
  XYZ p0, p1;              // low and high corner of the box being tested
  std::vector<BOX> boxes;  // occupied boxes of this level; storage reused per level
  int nboxes;
  int save1, save2;  // stldrawmode and dladrawmode before the count
};

// Which segments may meet a box. LineInBox accepts a segment only for a point
// of it (an end or a tenth-sample) inside the box, and those points lie within
// the segment's bounds (padded for rounding). So a box need only test the
// segments whose low corner lies within one segment extent below it: the
// answer is the one the scan over every cell gives, at a cost that does not
// grow with the aggregate.
struct SEGMENTGRID {
  int built;
  unsigned revision;  // cellsrevision and ncells it was built from
  int ncells;
  XYZ origin;
  double reach;             // no listed segment extends further than this on any axis
  double pad;               // rounding allowance of the samples
  double edge;              // of a grid cell
  int n;                    // grid cells per axis
  std::vector<int> first;   // per grid cell (z fastest), its first entry in segs; n^3 + 1 entries
  std::vector<int> segs;    // cell indices, by the grid cell of their segment's low corner
  std::vector<int> others;  // longer than reach, or not finite: tested for every box
};

// The growth as the summary sees it, kept by the caller of the growth loop.
struct GROWTHLOG {
  double start;            // GetRunTime() at StartGrowthLog
  double growthseconds;    // wall time from the start to the last LogGrowth
  long long steps;         // growth steps taken, as last logged
  int next;                // cell count of the next checkpoint
  std::vector<int> n;      // checkpoints: cell counts ...
  std::vector<double> rg;  // ... and the radius of gyration there
};

// Child lists of the aggregate for the slicing walk of one slab
// (surface/slice.cpp).
struct CHILDINDEX {
  int active;
  std::vector<int> start, list, next;
};

// Sticks refused by each of the three vetoes since the simulation began: a
// run that stops growing can say which one holds it back.
enum { VETO_BRANCH, VETO_SURFACE, VETO_GAP, NVETOES };

struct SIMULATION {
  CAMERA camera = {};
  OPTIONS options = {};
  GROWTHSTATE growthstate = {};
  INTERFACESTATE interfacestate = {};
  STATS stats = {};

  // The aggregate. `cells` is storage that is never shrunk; `ncells` is the
  // number of cells in the aggregate. Entries past ncells may hold an earlier
  // aggregate's cells, which a restart with more roots brings back by design.
  std::vector<CELL> cells;
  int ncells = 0;
  // Counts changes of the aggregate's storage (AppendCell, ReserveCells that
  // grows): the growth's search index rebuilds when it moves unexpectedly.
  unsigned cellsrevision = 0;

  // The last NSEEDS release points; nseeds counts every release.
  XYZ seeds[NSEEDS] = {};
  int nseeds = 0;

  // Root positions, at least nroots long once growth was initialised.
  std::vector<XYZ> roots;

  // The constraint surface: storage never shrinks; nstltri is the number of
  // facets in it.
  std::vector<FACET> stltri;
  int nstltri = 0;
  XYZ stlmin = {1e32, 1e32, 1e32}, stlmax = {-1e32, -1e32, -1e32}, stlmid = {0, 0, 0};
  // The surface's index for the vetoes, built on first use after UpdateSTL.
  SURFACEINDEX surfaceindex = {};

  GROWTHRANDOM random = FreshGrowthRandom();
  int growthsearch = 0;  // SEARCH_INDEX (growth/index.h)
  int growthwalk = 0;    // WALK_EXACT (growth/walk.h)
  SEARCHINDEX searchindex = {};
  long long growthvetoes[NVETOES] = {};
  int growthinitialised = 0;  // the first InitialiseGrowth applies the defaults
  int camerahomed = 0;        // the first camera home also sets mono and the window size

  BOXCOUNT boxcountstate = {};
  // Called when a box count ends (before the drawing modes are restored); the
  // desktop sets it to arm the statistics overlay. NULL: nothing is called.
  void (*boxcountdone)(void) = NULL;
  SEGMENTGRID segmentgrid = {};
  GROWTHLOG growthlog = {};
  CHILDINDEX childindex = {};
  int sliceindexed = 1;  // 0: the slicing walk scans for children, as the reference
};

#endif
