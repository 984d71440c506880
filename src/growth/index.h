// A spatial index of the aggregate for the growth step's search. It finds
// exactly the cell the newest-first scan finds, and proves when the particle
// is too far from every cell for the scan to find any.
#ifndef DLA_GROWTH_INDEX_H
#define DLA_GROWTH_INDEX_H

#include <stdint.h>

#include <vector>

#include "app/records.h"
#include "lib/vector.h"

#define INDEX_LEVELS 12  // occupancy levels, bucket sizes h, 2h, ... 2^11 h

// Open addressing from 64-bit keys to ints, key and value side by side so
// that a lookup touches one cache line.
struct HASHSLOT {
  uint64_t key;  // EMPTYKEY marks a free slot
  int value;
};
struct HASHTABLE {
  std::vector<HASHSLOT> slots;
  int used;
  int shift;  // 64 - log2(table size)
};

// A distance field: bricks of 8x8x8 voxels of size v, one byte per voxel
// holding a lower bound, in steps of v / 16, on the distance from any point
// of the voxel to the nearest cell, up to 96 steps (6 voxels). A
// voxel with no brick has no cell within the cap.
struct FIELD {
  int tag;                   // key level of its bricks
  double v, invv, unit;
  // Brick numbers (-1: none) of the bricks -half .. half - 1 along each
  // axis, x slowest: one read, and small enough to stay in cache. Bricks
  // beyond go to the hash table.
  std::vector<int> directory;
  int half;
  HASHTABLE bricks;          // brick coordinates to brick numbers, outside the directory
  std::vector<uint8_t> data;
  uint64_t lastkey;          // the brick used last
  int lastbrick;
};

// Occupied blocks -half .. half - 1 along each axis, x slowest, one bit
// each; spilled once a block beyond them went to the hash table.
struct OCCUPANCYCUBE {
  int half;
  std::vector<uint64_t> bits;
  int spilled;
};

struct SEARCHINDEX {
  int valid;
  unsigned revision;        // cellsrevision the index matches
  int n;                    // cells indexed: 0 .. n - 1
  double branchlength;      // the branch length it was built for
  double reach;             // max(1, branchlength)
  double h, invh;           // level-0 bucket size, a little over 2 reach
  int overflow;             // a cell outside the key range: scan instead
  std::vector<int> next;    // per cell: the next older cell of its bucket
  std::vector<int> hops;    // per cell: parent steps down to index 0 or a root
  std::vector<int> parent;  // per cell: its parent, packed for the walk to the root
  // per cell: the cell within standin of it that the coarse field holds
  // for it (itself when it is in the field)
  std::vector<int> standin;
  // The fast walk's shares not yet added along the way to the root: per
  // cell, the sum of 1/d of the cells that stuck to it (empty for the
  // exact walk).
  std::vector<double> owed;
  int owing;
  HASHTABLE buckets;  // level 0: newest cell of the bucket
  HASHTABLE occupied;  // levels 1 to 3: 1 for a bucket holding a cell
  // Levels 4 and up, which the fast walk climbs far from the cells: one bit
  // a block in a cube around the origin, which stays in cache; the blocks
  // beyond the largest cube go to occupiedhigh.
  OCCUPANCYCUBE cube[INDEX_LEVELS];
  HASHTABLE occupiedhigh;
  // A ball around centre that holds no point within reach of a cell.
  int ball;
  XYZ centre;
  double safe2;
  // Largest distance from the origin and largest weight over all cells.
  double maxdist;
  double maxweight;
  int maxweightknown;
  FIELD fine, coarse;
  double standinreach;  // how far a cell may lie from its stand-in
};

extern SEARCHINDEX searchindex;

// Search strategies of the growth step (growthsearch).
enum { SEARCH_INDEX = 0, SEARCH_SCAN = 1 };
extern int growthsearch;

// 1 while p stays inside the last ball the index proved empty: no cell can
// be within reach, and the search can be skipped.
inline int InsideEmptyBall(XYZ p) {
  const SEARCHINDEX &s = searchindex;
  if (!s.ball) return 0;
  double dx = p.x - s.centre.x, dy = p.y - s.centre.y, dz = p.z - s.centre.z;
  return dx * dx + dy * dy + dz * dz < s.safe2;
}

// 1 when the index matches the aggregate and the branch length.
inline int SearchIndexCurrent(void) {
  const SEARCHINDEX &s = searchindex;
  return s.valid && s.revision == cellsrevision && s.n == ncells &&
         s.branchlength == growthstate.branchlength;
}

// Brings the index up to date with cells/ncells and the branch length,
// rebuilding it when the aggregate changed outside the step.
void SyncSearchIndex(void);

// After the step appended cell ncells - 1 (revision: cellsrevision before
// the append): indexes it, or marks the index stale.
void IndexAppendedCell(unsigned revision);

// The newest-first search over the cells that can matter. Returns 1 when a
// touching cell was found (its index in *best). *ok is 0 when the index
// cannot answer (overflow, not-a-number particle): use the plain scan.
int IndexSearch(XYZ p, int associate, int nroots, int rootclass, int *best, int *ok);

// Adds the shares the fast walk owes to the weights of the cells and their
// ancestors, and brings maxweight up to date (cells in growth order).
void SettleWeights(void);

// The radius of a ball around p that holds no point within reach of any
// cell (association aside), from the fields, the coarse levels and the
// aggregate's extent; 0 when none is proven. The index must be current.
double IndexClearance(XYZ p);

#endif
