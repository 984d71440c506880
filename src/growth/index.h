// A spatial index of the aggregate for the growth step's search. It finds
// exactly the cell the newest-first scan finds, and proves when the particle
// is too far from every cell for the scan to find any.
#ifndef DLA_GROWTH_INDEX_H
#define DLA_GROWTH_INDEX_H

#include <stdint.h>

#include <vector>

#include "app/simulation.h"
#include "lib/vector.h"

// Search strategies of the growth step (growthsearch).
enum { SEARCH_INDEX = 0, SEARCH_SCAN = 1 };

// 1 while p stays inside the last ball the index proved empty: no cell can
// be within reach, and the search can be skipped.
inline int InsideEmptyBall(SIMULATION &sim, XYZ p) {
  const SEARCHINDEX &s = sim.searchindex;
  if (!s.ball) return 0;
  double dx = p.x - s.centre.x, dy = p.y - s.centre.y, dz = p.z - s.centre.z;
  return dx * dx + dy * dy + dz * dz < s.safe2;
}

// 1 when the index matches the aggregate and the branch length.
inline int SearchIndexCurrent(SIMULATION &sim) {
  const SEARCHINDEX &s = sim.searchindex;
  return s.valid && s.revision == sim.cellsrevision && s.n == sim.ncells &&
         s.branchlength == sim.growthstate.branchlength;
}

// Brings the index up to date with cells/ncells and the branch length,
// rebuilding it when the aggregate changed outside the step.
void SyncSearchIndex(SIMULATION &sim);

// After the step appended cell ncells - 1 (revision: cellsrevision before
// the append): indexes it, or marks the index stale.
void IndexAppendedCell(SIMULATION &sim, unsigned revision);

// The newest-first search over the cells that can matter. Returns 1 when a
// touching cell was found (its index in *best). *ok is 0 when the index
// cannot answer (overflow, not-a-number particle): use the plain scan.
int IndexSearch(SIMULATION &sim, XYZ p, int associate, int nroots, int rootclass, int *best, int *ok);

// Adds the shares the fast walk owes to the weights of the cells and their
// ancestors, and brings maxweight up to date (cells in growth order).
void SettleWeights(SIMULATION &sim);

// Parent steps from cell j down to index 0 or a root. The index must be
// current.
int IndexHops(SIMULATION &sim, int j);

// Each cell's parent, packed for the walk to the root (kept from the first
// call on). The index must be current.
const int *IndexParents(SIMULATION &sim);

// The radius of a ball around p that holds no point within reach of any
// cell (association aside), from the fields, the coarse levels and the
// aggregate's extent; 0 when none is proven. The index must be current.
double IndexClearance(SIMULATION &sim, XYZ p);

#endif
