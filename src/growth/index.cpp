#include "growth/index.h"

#include <math.h>  // floor(), isfinite(), HUGE_VAL

#include "app/simulation.h"

// Which cells can change the scan's outcome. The scan updates (best, D)
// only for a cell with d2 < D, and reports a touch once branchlength^2 > D.
// Let R = max(1, branchlength) and call a cell near when d2 < R^2.
// - A far cell never makes the touch: its d2 >= R^2 >= branchlength^2.
// - A far cell can lower D, but only to a value >= R^2 >= 1. While D >= 1
//   the early rejection (dx > D) drops only cells with d >= dx > D >= 1, so
//   d2 > D: cells the update would have ignored anyway. And a near cell has
//   d2 < R^2 <= any far D, so it updates exactly when it would without the
//   far cells.
// So the scan over any superset of the near cells, in the same descending
// order, ends with the same touch and the same best; without a touch the
// step ignores best. The index hands out the cells of a 2x2x2 block of
// buckets of size h > 2R around the particle, which holds every near cell,
// merged newest first. Coarser levels record which buckets hold any cell,
// to prove a ball around the particle empty of near points.
//
// Most steps never get that far. Two distance fields, lowered as cells come,
// hold for every voxel a lower bound on the distance to the nearest cell:
// one byte read proves a ball empty, and the particle walks inside it with
// no search at all until it leaves.

#define EMPTYKEY (~(uint64_t)0)
#define KEYBITS 19
#define KEYRANGE (1 << (KEYBITS - 1))  // bucket numbers in -KEYRANGE .. KEYRANGE - 1
#define MARGIN 1e-12                   // relative slack for rounding in the bounds

static uint64_t Key(int level, int ix, int iy, int iz) {
  const uint64_t m = (1u << KEYBITS) - 1;
  return ((uint64_t)level << (3 * KEYBITS)) | (((uint64_t)(ix + KEYRANGE) & m) << (2 * KEYBITS)) |
         (((uint64_t)(iy + KEYRANGE) & m) << KEYBITS) | ((uint64_t)(iz + KEYRANGE) & m);
}

// The coordinates Key packed (its level aside).
static void KeyCoords(uint64_t key, int *ix, int *iy, int *iz) {
  const uint64_t m = (1u << KEYBITS) - 1;
  *ix = (int)((key >> (2 * KEYBITS)) & m) - KEYRANGE;
  *iy = (int)((key >> KEYBITS) & m) - KEYRANGE;
  *iz = (int)(key & m) - KEYRANGE;
}

static size_t Slot(const HASHTABLE *t, uint64_t key) {
  size_t mask = t->slots.size() - 1;
  // The top bits of the product depend on every bit of the key.
  size_t i = (size_t)((key * 0x9E3779B97F4A7C15ULL) >> t->shift);
  while (t->slots[i].key != key && t->slots[i].key != EMPTYKEY) i = (i + 1) & mask;
  return i;
}

static int Lookup(const HASHTABLE *t, uint64_t key) {
  const HASHSLOT &slot = t->slots[Slot(t, key)];
  return slot.key == key ? slot.value : -1;
}

static void Grow(HASHTABLE *t) {
  std::vector<HASHSLOT> old;
  old.swap(t->slots);
  size_t size = old.empty() ? 4096 : 2 * old.size();
  HASHSLOT empty = {EMPTYKEY, -1};
  t->slots.assign(size, empty);
  t->shift = 64 - __builtin_ctzll(size);
  for (const HASHSLOT &slot : old)
    if (slot.key != EMPTYKEY) t->slots[Slot(t, slot.key)] = slot;
}

static void Clear(HASHTABLE *t) {
  t->slots.clear();
  t->used = 0;
  Grow(t);
}

// Stores value under key; returns the value held before, or -1.
static int Store(HASHTABLE *t, uint64_t key, int value) {
  if (2 * (t->used + 1) > (int)t->slots.size()) Grow(t);
  HASHSLOT &slot = t->slots[Slot(t, key)];
  int old = -1;
  if (slot.key == key)
    old = slot.value;
  else
    t->used++;
  slot.key = key;
  slot.value = value;
  return old;
}

// Bucket numbers of a point at level 0; 0 when out of the key range.
static int Bucket(SIMULATION &sim, XYZ p, int *ix, int *iy, int *iz) {
  double fx = floor(p.x * sim.searchindex.invh), fy = floor(p.y * sim.searchindex.invh),
         fz = floor(p.z * sim.searchindex.invh);
  double big = (double)KEYRANGE - 4;
  if (!(fabs(fx) < big && fabs(fy) < big && fabs(fz) < big)) return 0;
  *ix = (int)fx;
  *iy = (int)fy;
  *iz = (int)fz;
  return 1;
}

#define FIELD_VOXELS 512  // per brick
#define FIELD_CAP 96      // 6 voxels: farther cells are not recorded
#define OCCUPANCY_LOW 3     // the level of the occupied table; 1 and 2 read the head pages
#define OCCUPANCY_HIGH 4    // the first level of the occupancy cubes
#define HEADS_CHUNK 1024    // head pages a chunk (256 KB)
#define CUBE_FIRST 4        // blocks each way from the origin in a new cube
#define CUBE_MOST 128       // and at most (2 MB a level)
#define DIRECTORY_FIRST 8   // bricks each way from the origin in a new field's directory
#define DIRECTORY_MOST 128  // and at most (128 KB of tiles, for 131,072 bricks or more)
#define DIRECTORY_TILE 8    // the directory's tiles: 8x8x8 bricks, made where bricks are
#define DIRECTORY_TILEENTRIES 512
#define FIELD_PAGE 1024    // bricks a page of a field's storage (512 KB)
#define STANDIN_REACHES 4   // how far a cell left out of the coarse field may lie from the cell it holds

// The floor of the square root of 0 .. FIELD_CAP^2, capped at FIELD_CAP:
// made once, read only.
struct ROOTTABLE {
  uint8_t q[FIELD_CAP * FIELD_CAP + 1];
};
static const uint8_t *FieldRoots(void) {
  static const ROOTTABLE table = [] {
    ROOTTABLE t;
    for (int m = 0; m <= FIELD_CAP * FIELD_CAP; m++) {
      int q = (int)sqrt((double)m);
      while (q * q > m) q--;
      while ((q + 1) * (q + 1) <= m) q++;
      t.q[m] = (uint8_t)(q < FIELD_CAP ? q : FIELD_CAP);
    }
    return t;
  }();
  return table.q;
}

// Tiles of a directory of bricks -half .. half - 1 along each axis.
static size_t DirectoryTiles(int half) {
  size_t n = 2 * half / DIRECTORY_TILE;
  return n * n * n;
}

static void FieldReset(FIELD *f, int tag, double v) {
  f->tag = tag;
  f->v = v;
  f->invv = 1 / v;
  f->unit = v / 16;
  Clear(&f->bricks);
  f->half = DIRECTORY_FIRST;
  f->directory.assign(DirectoryTiles(f->half), -1);
  f->tiles.clear();
  f->pages.clear();
  f->nbricks = 0;
  f->lastkey = EMPTYKEY;
  f->lastbrick = -1;
}

// The place of block (bx, by, bz) in a cube of blocks -half .. half - 1
// along each axis, x slowest; -1 outside it. The fields' directories and
// the occupancy cubes are laid out so.
static long SpanIndex(int half, int bx, int by, int bz) {
  unsigned n = 2 * half, ux = bx + half, uy = by + half, uz = bz + half;
  if (ux >= n || uy >= n || uz >= n) return -1;
  return ((long)ux * n + uy) * n + uz;
}

// The directory's entry of brick (bx, by, bz), its tile made when make is
// set; NULL outside the directory's span or in a tile not made.
static int *DirectoryEntry(FIELD *f, int bx, int by, int bz, int make) {
  long t = SpanIndex(f->half / DIRECTORY_TILE, bx >> 3, by >> 3, bz >> 3);
  if (t < 0) return NULL;
  int tile = f->directory[t];
  if (tile < 0) {
    if (!make) return NULL;
    tile = f->directory[t] = (int)(f->tiles.size() / DIRECTORY_TILEENTRIES);
    f->tiles.resize(f->tiles.size() + DIRECTORY_TILEENTRIES, -1);
  }
  return &f->tiles[(size_t)tile * DIRECTORY_TILEENTRIES + (((bx & 7) << 6) | ((by & 7) << 3) | (bz & 7))];
}

// 1 when brick (bx, by, bz) lies within the directory's span.
static int InDirectory(FIELD *f, int bx, int by, int bz) { return SpanIndex(f->half, bx, by, bz) >= 0; }

// Doubles the directory's span towards brick (bx, by, bz), up to
// DIRECTORY_MOST, while the bricks made are dense enough for it: an entry
// costs 4 bytes against a brick's 512, so at most 128 entries a brick keep
// the directory within the bricks' own memory, and a root far from the rest
// costs its bricks, not 64 MB. The bricks it held keep their numbers;
// those the hash table held that now fall inside are entered too.
static void WidenDirectory(FIELD *f, int bx, int by, int bz) {
  size_t nbricks = f->nbricks;
  int half = f->half;
  while (half < DIRECTORY_MOST && SpanIndex(half, bx, by, bz) < 0 && (size_t)64 * half * half * half <= 128 * nbricks)
    half *= 2;
  if (half == f->half) return;
  std::vector<int> old, oldtiles;
  old.swap(f->directory);
  oldtiles.swap(f->tiles);
  int oldhalf = f->half, n = 2 * oldhalf / DIRECTORY_TILE;
  f->half = half;
  f->directory.assign(DirectoryTiles(half), -1);
  for (int i = 0; i < n; i++)
    for (int j = 0; j < n; j++)
      for (int k = 0; k < n; k++) {
        int tile = old[((size_t)i * n + j) * n + k];
        if (tile < 0) continue;
        for (int e = 0; e < DIRECTORY_TILEENTRIES; e++) {
          int b = oldtiles[(size_t)tile * DIRECTORY_TILEENTRIES + e];
          if (b < 0) continue;
          int x = (i - n / 2) * DIRECTORY_TILE + (e >> 6), y = (j - n / 2) * DIRECTORY_TILE + ((e >> 3) & 7),
              z = (k - n / 2) * DIRECTORY_TILE + (e & 7);
          *DirectoryEntry(f, x, y, z, 1) = b;
        }
      }
  for (const HASHSLOT &slot : f->bricks.slots) {
    if (slot.key == EMPTYKEY) continue;
    int x, y, z;
    KeyCoords(slot.key, &x, &y, &z);
    if (InDirectory(f, x, y, z)) *DirectoryEntry(f, x, y, z, 1) = slot.value;
  }
}

// The voxels of brick b.
static inline uint8_t *BrickData(FIELD *f, int b) {
  return &f->pages[(unsigned)b / FIELD_PAGE][(size_t)((unsigned)b % FIELD_PAGE) * FIELD_VOXELS];
}

// A new brick, every voxel at the cap; its number.
static int NewBrick(FIELD *f) {
  int b = f->nbricks++;
  if (b % FIELD_PAGE == 0) {
    f->pages.emplace_back();
    f->pages.back().reserve((size_t)FIELD_PAGE * FIELD_VOXELS);
  }
  f->pages.back().resize(f->pages.back().size() + FIELD_VOXELS, FIELD_CAP);
  return b;
}

// The brick holding voxel (ix, iy, iz), made when make is set; -1 if none.
static int Brick(FIELD *f, int ix, int iy, int iz, int make) {
  int bx = ix >> 3, by = iy >> 3, bz = iz >> 3;
  if (make && !InDirectory(f, bx, by, bz)) WidenDirectory(f, bx, by, bz);
  if (InDirectory(f, bx, by, bz)) {
    int *entry = DirectoryEntry(f, bx, by, bz, make);
    if (!entry) return -1;  // no brick of its tile made
    if (*entry < 0 && make) *entry = NewBrick(f);
    return *entry;
  }
  uint64_t key = Key(f->tag, bx, by, bz);
  if (key == f->lastkey) return f->lastbrick;
  int b = Lookup(&f->bricks, key);
  if (b < 0 && make) {
    b = NewBrick(f);
    Store(&f->bricks, key, b);
  }
  if (b >= 0) {
    f->lastkey = key;
    f->lastbrick = b;
  }
  return b;
}

static int Voxel(int ix, int iy, int iz) { return ((ix & 7) << 6) | ((iy & 7) << 3) | (iz & 7); }

// The voxels FieldAdd visits around c along one axis: lo to lo + n - 1, and
// the squared gaps from c to each.
static void FieldRange(const FIELD *f, double c, int *lo, int *n, double g2[20]) {
  double cap = FIELD_CAP * f->unit;
  *lo = (int)floor((c - cap) * f->invv);
  int hi = (int)floor((c + cap) * f->invv);
  *n = hi - *lo + 1;
  if (*n > 20) *n = 20;
  for (int i = 0; i < *n; i++) {
    double a0 = (*lo + i) * f->v, a1 = (*lo + i + 1) * f->v;
    double g = c < a0 ? a0 - c : c > a1 ? c - a1 : 0;
    g2[i] = g * g;
  }
}

// The voxels of a brick that FieldAdd visits: i0 .. i1 - 1 along x (and
// likewise j, k) as offsets into the ranges that start at lo.
struct BRICKRANGE {
  int i0, i1, j0, j1, k0, k1;
};

static BRICKRANGE BrickRange(int bx, int by, int bz, const int lo[3], const int n[3]) {
  BRICKRANGE r = {bx * 8 - lo[0], 0, by * 8 - lo[1], 0, bz * 8 - lo[2], 0};
  r.i1 = r.i0 + 8;
  r.j1 = r.j0 + 8;
  r.k1 = r.k0 + 8;
  if (r.i0 < 0) r.i0 = 0;
  if (r.j0 < 0) r.j0 = 0;
  if (r.k0 < 0) r.k0 = 0;
  if (r.i1 > n[0]) r.i1 = n[0];
  if (r.j1 > n[1]) r.j1 = n[1];
  if (r.k1 > n[2]) r.k1 = n[2];
  return r;
}

static double SmallestOf(const double *g2, int from, int to) {
  double m = g2[from];
  for (int i = from; i < to; i++)
    if (g2[i] < m) m = g2[i];
  return m;
}

// 1 when even the brick's voxel nearest to the cell is beyond the cap.
static int BrickOutOfReach(const BRICKRANGE &r, double g2[3][20], double cap2) {
  return SmallestOf(g2[0], r.i0, r.i1) + SmallestOf(g2[1], r.j0, r.j1) + SmallestOf(g2[2], r.k0, r.k1) >= cap2;
}

// Lowers the brick's voxels to the distance to the cell. Values come from
// squared distances without a square root or a branch: the squared distance
// in squared units, rounded down, indexes the floor of its root (never
// above the true value).
static void LowerBrick(FIELD *f, const BRICKRANGE &r, const int lo[3], double g2[3][20], double cap2) {
  double scale = (1 - 1e-9) / (f->unit * f->unit);
  int b = Brick(f, lo[0] + r.i0, lo[1] + r.j0, lo[2] + r.k0, 1);
  uint8_t *data = BrickData(f, b);
  const uint8_t *fieldroot = FieldRoots();
  for (int i = r.i0; i < r.i1; i++) {
    if (g2[0][i] >= cap2) continue;
    for (int j = r.j0; j < r.j1; j++) {
      double dxy = g2[0][i] + g2[1][j];
      if (dxy >= cap2) continue;
      uint8_t *row = data + Voxel(lo[0] + i, lo[1] + j, 0);
      // Only the row's voxels within the cap can change.
      int k0 = r.k0, k1 = r.k1;
      while (k0 < k1 && dxy + g2[2][k0] >= cap2) k0++;
      while (k1 > k0 && dxy + g2[2][k1 - 1] >= cap2) k1--;
      // Inside the cap m stays below top: no clamp needed.
      for (int k = k0; k < k1; k++) {
        double m = (dxy + g2[2][k]) * scale;
        uint8_t q = fieldroot[(int)m];
        uint8_t &v = row[(lo[2] + k) & 7];
        v = q < v ? q : v;
      }
    }
  }
}

// Lowers the field around a new cell at p: every voxel whose box comes
// within the cap of p, brick by brick so that each brick is looked up once.
// Rounded down, so each value stays a lower bound.
static void FieldAdd(FIELD *f, XYZ p) {
  double cap = FIELD_CAP * f->unit, cap2 = cap * cap;
  double c[3] = {p.x, p.y, p.z};
  int lo[3], n[3];
  double g2[3][20];
  for (int a = 0; a < 3; a++) FieldRange(f, c[a], &lo[a], &n[a], g2[a]);
  for (int bx = lo[0] >> 3; bx <= (lo[0] + n[0] - 1) >> 3; bx++)
    for (int by = lo[1] >> 3; by <= (lo[1] + n[1] - 1) >> 3; by++)
      for (int bz = lo[2] >> 3; bz <= (lo[2] + n[2] - 1) >> 3; bz++) {
        BRICKRANGE r = BrickRange(bx, by, bz, lo, n);
        if (!BrickOutOfReach(r, g2, cap2)) LowerBrick(f, r, lo, g2, cap2);
      }
}

// The field's bound at p, less the slack for rounding; *saturated when no
// cell is within the cap.
static double FieldFree(FIELD *f, XYZ p, double slack, int *saturated) {
  int vx = (int)floor(p.x * f->invv), vy = (int)floor(p.y * f->invv), vz = (int)floor(p.z * f->invv);
  // The directory's path of Brick inline: most reads end there.
  int b;
  long t = SpanIndex(f->half / DIRECTORY_TILE, vx >> 6, vy >> 6, vz >> 6);
  if (t >= 0) {
    int tile = f->directory[t];
    b = tile < 0 ? -1 : f->tiles[(size_t)tile * DIRECTORY_TILEENTRIES + Voxel(vx >> 3, vy >> 3, vz >> 3)];
  } else {
    b = Brick(f, vx, vy, vz, 0);
  }
  int q = b < 0 ? FIELD_CAP : BrickData(f, b)[Voxel(vx, vy, vz)];
  *saturated = q == FIELD_CAP;
  return q * f->unit - slack;
}

// 64-bit words for (2 half)^3 bits.
static size_t CubeWords(int half) { return ((size_t)8 * half * half * half + 63) / 64; }

static void CubeReset(OCCUPANCYCUBE *c) {
  c->half = CUBE_FIRST;
  c->bits.assign(CubeWords(CUBE_FIRST), 0);
  c->spilled = 0;
}

// Doubles cube c's span until block (bx, by, bz) is inside or the span is
// CUBE_MOST; the blocks it held keep their bits.
static void WidenCube(OCCUPANCYCUBE *c, int bx, int by, int bz) {
  int half = c->half;
  while (half < CUBE_MOST && SpanIndex(half, bx, by, bz) < 0) half *= 2;
  if (half == c->half) return;
  OCCUPANCYCUBE wide = {half, std::vector<uint64_t>(CubeWords(half), 0), c->spilled};
  int n = 2 * c->half;
  for (int i = 0; i < n; i++)
    for (int j = 0; j < n; j++)
      for (int k = 0; k < n; k++) {
        long from = ((long)i * n + j) * n + k;
        if (!(c->bits[from >> 6] >> (from & 63) & 1)) continue;
        long to = SpanIndex(half, i - c->half, j - c->half, k - c->half);
        wide.bits[to >> 6] |= 1ULL << (to & 63);
      }
  *c = wide;
}

// The page of bucket heads holding level-0 bucket (ix, iy, iz), made when
// make is set; -1 if none. Pages follow the fine field's bricks (voxels of
// half a bucket, so a brick spans 4x4x4 buckets).
static int HeadPage(SEARCHINDEX &s, int ix, int iy, int iz, int make) {
  int b = Brick(&s.fine, 2 * ix, 2 * iy, 2 * iz, 0);
  if (b < 0 && make) b = Brick(&s.fine, 2 * ix, 2 * iy, 2 * iz, 1);  // FieldAdd made it already
  if (b < 0) return -1;
  if (b >= (int)s.headpage.size()) {
    if (!make) return -1;
    s.headpage.resize(s.fine.nbricks > 2 * b + 2 ? s.fine.nbricks : 2 * b + 2, -1);
  }
  int page = s.headpage[b];
  if (page >= 0 || !make) return page;
  page = s.npages++;
  if (page % HEADS_CHUNK == 0) {
    s.heads.emplace_back();
    s.heads.back().reserve((size_t)HEADS_CHUNK * 64);
  }
  s.heads.back().resize(s.heads.back().size() + 64, -1);
  if ((int)s.headmask.size() <= page) s.headmask.resize(2 * (size_t)page + 64, 0);
  s.headmask[page] = 0;
  s.headpage[b] = page;
  return page;
}

// The bucket's place in its page.
static inline int HeadSlot(int ix, int iy, int iz) { return ((ix & 3) << 4) | ((iy & 3) << 2) | (iz & 3); }

static inline int *HeadOf(SEARCHINDEX &s, int page, int slot) {
  return &s.heads[page / HEADS_CHUNK][(size_t)(page % HEADS_CHUNK) * 64 + slot];
}

// The newest cell of level-0 bucket (ix, iy, iz), -1 when empty.
static int BucketHead(SEARCHINDEX &s, int ix, int iy, int iz) {
  int page = HeadPage(s, ix, iy, iz, 0);
  return page < 0 ? -1 : *HeadOf(s, page, HeadSlot(ix, iy, iz));
}

// Marks the block of level k (1 and up) at (bx, by, bz) as holding a cell.
static void MarkOccupied(SIMULATION &sim, int k, int bx, int by, int bz) {
  SEARCHINDEX &s = sim.searchindex;
  if (k < OCCUPANCY_LOW) return;  // the head pages' masks
  if (k < OCCUPANCY_HIGH) {
    Store(&s.occupied, Key(k, bx, by, bz), 1);
    return;
  }
  OCCUPANCYCUBE *c = &s.cube[k];
  long bit = SpanIndex(c->half, bx, by, bz);
  if (bit < 0) {
    WidenCube(c, bx, by, bz);
    bit = SpanIndex(c->half, bx, by, bz);
  }
  if (bit >= 0) {
    c->bits[bit >> 6] |= 1ULL << (bit & 63);
  } else {
    Store(&s.occupiedhigh, Key(k, bx, by, bz), 1);
    c->spilled = 1;
  }
}

// 1 when the block of level k at (bx, by, bz) holds a cell.
static int Occupied(SIMULATION &sim, int k, int bx, int by, int bz) {
  SEARCHINDEX &s = sim.searchindex;
  if (k == 1) {
    // A 2x2x2 block of buckets inside one page: its eight bits.
    int page = HeadPage(s, 2 * bx, 2 * by, 2 * bz, 0);
    int shift = ((bx & 1) << 5) | ((by & 1) << 3) | ((bz & 1) << 1);
    return page >= 0 && (s.headmask[page] >> shift & 0x330033) != 0;
  }
  if (k == 2) return HeadPage(s, 4 * bx, 4 * by, 4 * bz, 0) >= 0;  // the page's buckets
  if (k < OCCUPANCY_HIGH) return Lookup(&s.occupied, Key(k, bx, by, bz)) >= 0;
  const OCCUPANCYCUBE *c = &s.cube[k];
  long bit = SpanIndex(c->half, bx, by, bz);
  if (bit >= 0) return c->bits[bit >> 6] >> (bit & 63) & 1;
  return c->spilled && Lookup(&s.occupiedhigh, Key(k, bx, by, bz)) >= 0;
}

// Per cell arrays as long as the cells' storage, or at least n: no more
// than the cells take, and no doubling of their own.
static void SizePerCell(SIMULATION &sim, int n) {
  SEARCHINDEX &s = sim.searchindex;
  size_t size = sim.cells.capacity() > (size_t)n ? sim.cells.capacity() : (size_t)n;
  if (size < 1024) size = 1024;
  std::vector<int> *arrays[] = {&s.next, &s.hops, &s.parent};
  for (std::vector<int> *a : arrays) {
    if (a == &s.parent && !s.parents) continue;
    if (a == &s.hops && !s.hopsknown) continue;
    if (a->size() >= (size_t)n) continue;
    a->reserve(size);
    a->resize(size, -1);
  }
  size_t words = (s.next.size() + 63) / 64;  // as long as next
  if (s.held.size() < words) {
    s.held.reserve(words);
    s.held.resize(words, 0);
  }
}

// Parent steps from c down to index 0 or a root, from its parent's count.
static int HopsOf(SIMULATION &sim, const int *hops, int c) {
  int parent = sim.cells[c].parent;
  if (parent < c) return 1 + (parent > 0 ? hops[parent] : 0);
  int h = 0, j = c;  // not in growth order: walk
  do {
    j = sim.cells[j].parent;
    h++;
  } while (j > 0);
  return h;
}

// The cell within standinreach of j that the coarse field holds for it:
// the nearest ancestor (j itself included) that the field holds. A cell
// left out lies near its parent's stand-in, so the walk is short.
static int StandIn(SIMULATION &sim, int j) {
  const uint64_t *held = sim.searchindex.held.data();
  while (!(held[j >> 6] >> (j & 63) & 1)) j = sim.cells[j].parent;
  return j;
}

static void Insert(SIMULATION &sim, int c) {
  SEARCHINDEX &s = sim.searchindex;
  if ((int)s.next.size() <= c || (s.parents && (int)s.parent.size() <= c) || (s.hopsknown && (int)s.hops.size() <= c))
    SizePerCell(sim, c + 1);
  int parent = sim.cells[c].parent;
  if (s.parents) s.parent[c] = parent;
  if (s.hopsknown) s.hops[c] = HopsOf(sim, s.hops.data(), c);
  uint64_t &held = s.held[c >> 6];
  uint64_t bit = 1ULL << (c & 63);
  held |= bit;  // its own stand-in until found near its parent's
  int ix, iy, iz;
  if (!Bucket(sim, sim.cells[c].p, &ix, &iy, &iz)) {
    s.overflow = 1;
    return;
  }
  FieldAdd(&s.fine, sim.cells[c].p);
  int page = HeadPage(s, ix, iy, iz, 1), slot = HeadSlot(ix, iy, iz);
  int *head = HeadOf(s, page, slot);
  s.next[c] = *head;
  *head = c;
  s.headmask[page] |= 1ULL << slot;
  for (int k = 1; k < INDEX_LEVELS; k++) MarkOccupied(sim, k, ix >> k, iy >> k, iz >> k);
  // The coarse field holds one cell of each little cluster: a cell near
  // its parent's stand-in is left out, and the field's bounds are taken
  // that much lower. Most cells are left out, and their update was the
  // larger part of a stick's cost.
  if (parent >= 0 && parent < c) {
    int r = StandIn(sim, parent);
    double dx = sim.cells[c].p.x - sim.cells[r].p.x, dy = sim.cells[c].p.y - sim.cells[r].p.y,
           dz = sim.cells[c].p.z - sim.cells[r].p.z;
    if (dx * dx + dy * dy + dz * dz <= s.standinreach * s.standinreach) {
      held &= ~bit;
      return;
    }
  }
  FieldAdd(&s.coarse, sim.cells[c].p);
}

static void Rebuild(SIMULATION &sim) {
  SEARCHINDEX &s = sim.searchindex;
  SettleWeights(sim);
  s.valid = 1;
  s.revision = sim.cellsrevision;
  s.n = sim.ncells;
  s.branchlength = sim.growthstate.branchlength;
  s.reach = s.branchlength > 1 ? s.branchlength : 1;
  s.h = 2 * s.reach * (1 + 1e-6);
  s.invh = 1 / s.h;
  // Voxels of a reach near the cells (bounds up to 6 reaches away), of
  // eight reaches farther out (up to 48): the fastest of the sizes tried on
  // aggregates of 150,000 to 1,000,000 cells.
  FieldReset(&s.fine, 15, s.h / 2);
  FieldReset(&s.coarse, 14, s.h * 4);
  // Within the coarse field's cap (24 h) less this, the blocks of levels 1
  // to 3 (all their points within 1.5 sqrt(3) 8 h of the particle) still lie.
  s.standinreach = STANDIN_REACHES * s.reach;
  s.overflow = 0;
  s.headpage.clear();
  s.heads.clear();
  s.headmask.clear();
  s.npages = 0;
  Clear(&s.occupied);
  Clear(&s.occupiedhigh);
  for (int k = OCCUPANCY_HIGH; k < INDEX_LEVELS; k++) CubeReset(&s.cube[k]);
  s.next.clear();
  s.hops.clear();
  s.parent.clear();
  s.held.clear();
  SizePerCell(sim, sim.ncells);
  s.owing = 0;
  s.ball = 0;
  s.maxdist = -HUGE_VAL;  // so that not-a-number distances never count
  s.maxweight = 0;
  s.maxweightknown = 0;
  for (int i = 0; i < sim.ncells; i++) {
    Insert(sim, i);
    double d = Modulus(sim.cells[i].p);
    if (d > s.maxdist) s.maxdist = d;
  }
  // Not-a-number bounds would turn the bucket arithmetic meaningless.
  if (!isfinite(s.reach) || !isfinite(s.h)) s.overflow = 1;
}

void SyncSearchIndex(SIMULATION &sim) {
  SEARCHINDEX &s = sim.searchindex;
  if (!s.valid || s.revision != sim.cellsrevision || s.n != sim.ncells ||
      s.branchlength != sim.growthstate.branchlength)
    Rebuild(sim);
}

void IndexAppendedCell(SIMULATION &sim, unsigned revision) {
  SEARCHINDEX &s = sim.searchindex;
  if (!s.valid || s.revision != revision || s.n != sim.ncells - 1 || s.branchlength != sim.growthstate.branchlength) {
    s.valid = 0;
    return;
  }
  s.revision = sim.cellsrevision;
  s.n = sim.ncells;
  s.ball = 0;
  Insert(sim, sim.ncells - 1);
  double d = Modulus(sim.cells[sim.ncells - 1].p);
  if (d > s.maxdist) s.maxdist = d;
}

// The 2-bucket range along one axis at bucket size hk that keeps p at least
// hk / 2 from its ends; *room = distance from p to the nearer end.
static int Span(double x, int i, double hk, double *room) {
  double lo = (x - i * hk < 0.5 * hk) ? i - 1 : i;
  double a = x - lo * hk, b = (lo + 2) * hk - x;
  *room = a < b ? a : b;
  return (int)lo;
}

// Distance along one axis from x to bucket b of size hk (0 inside it).
static double Gap(double x, int b, double hk) {
  double lo = b * hk, hi = (b + 1) * hk;
  return x < lo ? lo - x : x > hi ? x - hi : 0;
}

// No cell is closer to p than free: the ball around p where no point is
// within reach of a cell.
static void SetEmptyBall(SIMULATION &sim, XYZ p, double free) {
  SEARCHINDEX &s = sim.searchindex;
  double safe = (free - s.reach) * (1 - MARGIN);
  if (safe > 0) {
    s.ball = 1;
    s.centre = p;
    s.safe2 = safe * safe;
  }
}

// 1 while p stays in the last proven empty ball; forgets the ball when p
// has left it.
static int StillInEmptyBall(SIMULATION &sim, XYZ p) {
  SEARCHINDEX &s = sim.searchindex;
  if (!s.ball) return 0;
  double dx = p.x - s.centre.x, dy = p.y - s.centre.y, dz = p.z - s.centre.z;
  if (dx * dx + dy * dy + dz * dz < s.safe2) return 1;
  s.ball = 0;
  return 0;
}

// Rounding slack of the bounds around p.
static double Slack(SIMULATION &sim, XYZ p) {
  return MARGIN * (1 + fabs(p.x) + fabs(p.y) + fabs(p.z) + sim.searchindex.h * (1 << INDEX_LEVELS));
}

// The fine field's bound at p, or where the fine field has no cell within
// its cap the better of its cap and the coarse field's bound; *saturated
// when neither has a cell within its cap.
static double FieldsFree(SIMULATION &sim, XYZ p, double slack, int *saturated) {
  SEARCHINDEX &s = sim.searchindex;
  double free = FieldFree(&s.fine, p, slack, saturated);
  if (*saturated) {
    double coarse = FieldFree(&s.coarse, p, slack, saturated) - s.standinreach;
    if (coarse > free) free = coarse;
  }
  return free;
}

// The 2x2x2 block of level-0 buckets around bucket (ix, iy, iz) that keeps
// p at least half a bucket from its faces: its first bucket in lo, and the
// distance from p to its nearest face, less the slack.
static double BlockAround(SIMULATION &sim, XYZ p, int ix, int iy, int iz, double slack, int lo[3]) {
  const SEARCHINDEX &s = sim.searchindex;
  double rx, ry, rz;
  lo[0] = Span(p.x, ix, s.h, &rx);
  lo[1] = Span(p.y, iy, s.h, &ry);
  lo[2] = Span(p.z, iz, s.h, &rz);
  double room = rx < ry ? rx : ry;
  if (rz < room) room = rz;
  return room - slack;
}

// The newest cell of each of the block's buckets (-1: empty); 1 when any.
static int BlockHeads(SIMULATION &sim, const int lo[3], int head[8]) {
  int any = 0;
  for (int k = 0; k < 8; k++) {
    head[k] = BucketHead(sim.searchindex, lo[0] + (k & 1), lo[1] + ((k >> 1) & 1), lo[2] + (k >> 2));
    any |= head[k] >= 0;
  }
  return any;
}

// The scan's loop over the block's cells, newest first, merging the
// buckets' lists. All three differences are taken before the rejections,
// which then run in the scan's order: the same outcome, and the true
// nearest squared distance (*nearest2) too. Returns 1 on a touch, the cell
// in *best.
static int ScanBlock(SIMULATION &sim, XYZ p, int head[8], int associate, int nroots, int rootclass, int *best,
                     double *nearest2) {
  const SEARCHINDEX &s = sim.searchindex;
  double nearest = 1e300;
  double dmin = 1e32;
  double reach2 = sim.growthstate.branchlength * sim.growthstate.branchlength;
  int found = -1;
  for (;;) {
    int j = 0;
    for (int k = 1; k < 8; k++)
      if (head[k] > head[j]) j = k;
    int i = head[j];
    if (i < 0) break;
    head[j] = s.next[i];
    double dx = sim.cells[i].p.x - p.x;
    double dy = sim.cells[i].p.y - p.y;
    double dz = sim.cells[i].p.z - p.z;
    double d2 = dx * dx + dy * dy + dz * dz;
    if (d2 < nearest) nearest = d2;
    if (associate && i % nroots != rootclass) continue;
    if (dx > dmin || dy > dmin || dz > dmin) continue;
    if (d2 < dmin) found = i;
    if (d2 < dmin) dmin = d2;
    if (reach2 > dmin) {
      *best = found;
      return 1;
    }
  }
  *nearest2 = nearest;
  return 0;
}

// Coarser blocks: cells outside a block are at least its room away, and
// those inside at least as far as their occupied buckets' boxes. Climbs
// from level first while the blocks are empty; the first occupied one ends
// the climb. Returns the best of the levels' bounds.
static double CoarseFree(SIMULATION &sim, XYZ p, int ix, int iy, int iz, double slack, int first) {
  const SEARCHINDEX &s = sim.searchindex;
  double free = -HUGE_VAL;
  for (int k = first; k < INDEX_LEVELS; k++) {
    double hk = s.h * (double)(1 << k);
    double rx, ry, rz;
    int kx = Span(p.x, ix >> k, hk, &rx), ky = Span(p.y, iy >> k, hk, &ry), kz = Span(p.z, iz >> k, hk, &rz);
    double bound = rx < ry ? rx : ry;
    if (rz < bound) bound = rz;
    int occupied = 0;
    for (int m = 0; m < 8; m++) {
      int bx = kx + (m & 1), by = ky + ((m >> 1) & 1), bz = kz + (m >> 2);
      if (!Occupied(sim, k, bx, by, bz)) continue;
      occupied = 1;
      double gx = Gap(p.x, bx, hk), gy = Gap(p.y, by, hk), gz = Gap(p.z, bz, hk);
      double d = sqrt(gx * gx + gy * gy + gz * gz);
      if (d < bound) bound = d;
    }
    bound -= slack;
    if (bound > free) free = bound;
    if (occupied) break;
  }
  return free;
}

// Bucket numbers of a finite p; 0 when p is not finite or out of range.
static int FiniteBucket(SIMULATION &sim, XYZ p, int *ix, int *iy, int *iz) {
  return isfinite(p.x) && isfinite(p.y) && isfinite(p.z) && Bucket(sim, p, ix, iy, iz);
}

int IndexSearch(SIMULATION &sim, XYZ p, int associate, int nroots, int rootclass, int *best, int *ok) {
  SEARCHINDEX &s = sim.searchindex;
  *ok = 0;
  if (s.overflow) return 0;
  if (StillInEmptyBall(sim, p)) {
    *ok = 1;
    return 0;
  }
  int ix, iy, iz;
  if (!FiniteBucket(sim, p, &ix, &iy, &iz)) return 0;
  double slack = Slack(sim, p);

  // The fields first: a byte tells most particles how far they may go
  // before a cell could be within reach.
  int saturated;
  double fieldfree = FieldsFree(sim, p, slack, &saturated);
  if (!saturated && fieldfree >= s.reach) {
    *ok = 1;
    SetEmptyBall(sim, p, fieldfree);
    return 0;
  }

  int lo[3];
  double room = BlockAround(sim, p, ix, iy, iz, slack, lo);
  if (!(room >= s.reach)) return 0;  // rounding left a near cell outside the block
  int head[8];
  int any = BlockHeads(sim, lo, head);
  *ok = 1;
  double free = room > fieldfree ? room : fieldfree;  // no cell is closer than this
  if (any) {
    double nearest2;
    if (ScanBlock(sim, p, head, associate, nroots, rootclass, best, &nearest2)) return 1;
    double nearest = sqrt(nearest2) - slack;
    if (nearest < free) free = nearest;
    if (fieldfree > free) free = fieldfree;
  } else {
    double bound = CoarseFree(sim, p, ix, iy, iz, slack, 1);
    if (bound > free) free = bound;
  }
  SetEmptyBall(sim, p, free);
  return 0;
}

int IndexHops(SIMULATION &sim, int j) {
  SEARCHINDEX &s = sim.searchindex;
  if (!s.hopsknown) {
    s.hopsknown = 1;
    s.hops.clear();
    SizePerCell(sim, s.n);
    for (int i = 0; i < s.n; i++) s.hops[i] = HopsOf(sim, s.hops.data(), i);
  }
  return s.hops[j];
}

// The level-0 lists again, after next held something else: every cell
// linked to its bucket's head in the order Insert took them.
static void RelinkBuckets(SIMULATION &sim) {
  SEARCHINDEX &s = sim.searchindex;
  for (std::vector<int> &chunk : s.heads) std::fill(chunk.begin(), chunk.end(), -1);
  for (int c = 0; c < s.n; c++) {
    int ix, iy, iz;
    s.next[c] = -1;
    if (!Bucket(sim, sim.cells[c].p, &ix, &iy, &iz)) continue;
    int page = HeadPage(s, ix, iy, iz, 0);
    if (page < 0) continue;  // never: Insert made it
    int *head = HeadOf(s, page, HeadSlot(ix, iy, iz));
    s.next[c] = *head;
    *head = c;
  }
}

const int *IndexParents(SIMULATION &sim) {
  SEARCHINDEX &s = sim.searchindex;
  if (!s.parents) {
    s.parents = 1;
    s.parent.clear();
    SizePerCell(sim, s.n);
    for (int i = 0; i < s.n; i++) s.parent[i] = sim.cells[i].parent;
  }
  return s.parent.data();
}

void SettleWeights(SIMULATION &sim) {
  SEARCHINDEX &s = sim.searchindex;
  if (!s.owing) return;
  // The cells from owedfrom on came with weight 0 and stuck to older cells:
  // their weights hold what they are owed until their turn, the older cells'
  // shares wait in a table of their own. First each owed cell's 1/d goes to
  // its parent in the order the cells stuck, then a cell's total reaches its
  // parent after its own children's (children come after their parents):
  // the additions the walk to the root would have made, in this order.
  // The hop counts the shares need: the exact walk's when it keeps them,
  // else made in the bucket lists' array for the while (the fast walk
  // keeps no array of its own for them).
  CELL *c = sim.cells.data();
  int n = s.n < sim.ncells ? s.n : sim.ncells, from = s.owedfrom;
  int relink = !s.hopsknown && s.valid && s.revision == sim.cellsrevision && s.n == sim.ncells;
  int *hops = s.hopsknown ? s.hops.data() : s.next.data();
  if (!s.hopsknown)
    for (int i = 0; i < n; i++) hops[i] = HopsOf(sim, hops, i);
  std::vector<double> older(from > 0 ? from : 0, 0.0);
  for (int j = from; j < n; j++) {
    int q = c[j].parent;
    if (q < 0 || q >= j) continue;
    double share = 1.0 / (1 + hops[q]);
    if (q >= from)
      c[q].weight += share;
    else
      older[q] += share;
  }
  for (int j = n - 1; j >= from; j--) {
    int q = c[j].parent;
    double share = c[j].weight;
    if (share == 0 || q < 0 || q >= j) continue;
    if (q >= from)
      c[q].weight += share;
    else
      older[q] += share;
  }
  for (int j = from - 1; j >= 0; j--) {
    double share = older[j];
    if (share == 0) continue;
    c[j].weight += share;
    int q = c[j].parent;
    if (q >= 0 && q < j) older[q] += share;
  }
  if (relink) RelinkBuckets(sim);
  s.owing = 0;
  s.maxweight = 0;
  for (int i = 0; i < sim.ncells; i++)
    if (sim.cells[i].weight > s.maxweight) s.maxweight = sim.cells[i].weight;
  s.maxweightknown = 1;
  sim.growthstate.maxweight = s.maxweight;
}

double IndexClearance(SIMULATION &sim, XYZ p) {
  SEARCHINDEX &s = sim.searchindex;
  int ix, iy, iz;
  if (!s.valid || s.overflow || !FiniteBucket(sim, p, &ix, &iy, &iz)) return 0;
  double slack = Slack(sim, p);
  int saturated;
  // The coarse field first: it is small and stays in cache, and where it
  // bounds beyond the fine field's cap the fine field cannot do better.
  double free = FieldFree(&s.coarse, p, slack, &saturated) - s.standinreach;
  if (!saturated && free < FIELD_CAP * s.fine.unit - slack) {
    int finesaturated;
    double fine = FieldFree(&s.fine, p, slack, &finesaturated);
    if (fine > free) free = fine;
  }
  if (saturated) {
    // No cell within the coarse field's cap: the blocks of levels 1 to 3
    // (all their points within 42 reaches) hold none, and bound no more.
    // Level 4's room is at most 16 h, under the cap's 22 h, and an occupied
    // block there would end the climb: it starts at level 5.
    double bound = CoarseFree(sim, p, ix, iy, iz, slack, 5);
    if (bound > free) free = bound;
  }
  // Every cell lies within maxdist of the origin.
  double outside = Modulus(p) - s.maxdist - slack;
  if (outside > free) free = outside;
  double safe = (free - s.reach) * (1 - MARGIN);
  return safe > 0 ? safe : 0;
}
