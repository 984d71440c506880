// The records of the growth's search index (growth/index.h has its
// functions: a hash grid of the cells, coarser occupancy levels and two
// distance fields) and of the constraint surface's index. Plain data, held
// in the simulation.
#ifndef DLA_APP_INDEXRECORDS_H
#define DLA_APP_INDEXRECORDS_H

#include <stdint.h>

#include <vector>

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
  int tag;  // key level of its bricks
  double v, invv, unit;
  // Brick numbers (-1: none) of the bricks -half .. half - 1 along each
  // axis, in tiles of 8x8x8 bricks made only where bricks are: directory
  // holds the tiles' numbers (-1: none), x slowest, tiles their entries.
  // Two reads, small enough to stay in cache. Bricks beyond go to the hash
  // table.
  std::vector<int> directory;
  std::vector<int> tiles;
  int half;
  HASHTABLE bricks;  // brick coordinates to brick numbers, outside the directory
  // The bricks' voxels, FIELD_PAGE bricks a page: pages are allocated as
  // bricks come, so no doubling leaves half of the storage unused.
  std::vector<std::vector<uint8_t> > pages;
  int nbricks;
  uint64_t lastkey;  // the brick used last
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
  // Per cell arrays, as long as the cells' storage (cells.capacity()).
  std::vector<int> next;    // per cell: the next older cell of its bucket
  // Per cell, one bit: 1 when the coarse field holds the cell itself; else
  // it lies within standinreach of the nearest such ancestor, its stand-in.
  std::vector<uint64_t> held;
  // Per cell: parent steps down to index 0 or a root. Made by the first
  // stick that asks (IndexHops, the exact walk); the fast walk does without.
  std::vector<int> hops;
  int hopsknown;  // 1 while hops is kept
  // Per cell: its parent, packed for the exact walk's walk to the root.
  // Made by the first stick that walks there (IndexParents); the fast walk
  // does without.
  std::vector<int> parent;
  int parents;  // 1 while parent is kept
  // The fast walk's shares not yet added along the way to the root: every
  // cell from owedfrom on stuck in the fast walk and owes its parent its
  // 1/d, which follows from hops (SettleWeights).
  int owing;
  int owedfrom;
  // Level 0: the newest cell of each bucket, in pages of the 4x4x4
  // buckets a fine field brick spans (a cell's brick is always made), with
  // a mask of the buckets holding a cell: levels 1 and 2 read the masks.
  // Per fine brick its page (-1: none); the pages HEADS_CHUNK a chunk.
  std::vector<int> headpage;
  std::vector<std::vector<int> > heads;
  std::vector<uint64_t> headmask;
  int npages;
  HASHTABLE occupied;  // level 3: 1 for a bucket holding a cell
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

// The constraint surface's index for the growth step's vetoes
// (surface/surfaceindex.h has its functions).
struct FACET;

#define KEYS 11

// A node of a bounding volume hierarchy over items with keys of up to eleven
// numbers. An inner node's first child follows it; right is the second.
struct SURFACENODE {
  float lo[KEYS], hi[KEYS];  // bounds of the keys below, rounded outward
  float most;                // the largest per-item figure below (see SURFACEINDEX)
  int first, count;          // a leaf (count > 0): the items order[first .. first + count - 1]
  int right;
};

struct SURFACEINDEX {
  int valid;
  const FACET *facets;  // the storage and count it was built for
  int n;
  // Every tree keeps the planes of its facets, about centre, as keys 6 to 9
  // (n.x, n.y, n.z, n.centre + d), and n.(mid - centre) as key 10.
  // Facet boxes (the vertices' bounds, keys 0 to 2); most: how far outside
  // its box a facet can still be cut without a not-a-number angle.
  std::vector<SURFACENODE> boxes;
  std::vector<int> boxorder;
  // Edges (item 3 f + k: from vertex k to k + 1 of facet f): the box of
  // their ends (keys 0 to 2) and their direction (3 to 5, its largest
  // component positive); most: 1 / length. Not-a-number angles happen
  // only near an edge's line, beyond its ends.
  std::vector<SURFACENODE> edges;
  std::vector<int> edgeorder;
  // Facets with an edge too short for that to bound anything: their planes
  // alone (also as keys 0 to 3).
  std::vector<SURFACENODE> planes;
  std::vector<int> planeorder;
  XYZ centre;
  // Largest |coordinate| sum, |normal component|, |normal| and |d| or
  // |n.centre + d| of the facets in the trees: they scale the rounding
  // allowances and bound the planes.
  double reach, nmax, nnorm, dmax;
  // Facets with a number too large or not finite: every query asks them.
  std::vector<int> always;
};

#endif
