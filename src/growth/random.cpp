#include "growth/random.h"

GROWTHRANDOM FreshGrowthRandom(void) {
  GROWTHRANDOM r = {};  // drand48's state before any srand48 is 0
  GrowthSrand(r, 1);    // rand before any srand is seeded with 1
  return r;
}

void GrowthSrand48(GROWTHRANDOM &r, long seed) { r.drand48state = ((uint64_t)(uint32_t)seed << 16) | 0x330E; }

void GrowthSrand(GROWTHRANDOM &r, unsigned int seed) {
  r.randpending = 0;
  if (seed == 0) seed = 1;
  r.randstate[0] = (int32_t)seed;
  // state[i] = 16807 state[i - 1] mod (2^31 - 1), in 31 bits (Schrage)
  int32_t word = (int32_t)seed;
  for (int i = 1; i < RANDOM_DEGREE; i++) {
    long hi = word / 127773;
    long lo = word % 127773;
    word = (int32_t)(16807 * lo - 2836 * hi);
    if (word < 0) word += 2147483647;
    r.randstate[i] = word;
  }
  r.randfront = RANDOM_SEP;
  r.randrear = 0;
  for (int k = 0; k < 10 * RANDOM_DEGREE; k++) GrowthRand(r);
}

// The additive generator writes o(t) = o(t - 31) + o(t - 3) mod 2^32 into
// the slot at randfront; the 31 slots hold the last 31 values, the oldest at
// randfront. Jumping n draws ahead: x^n mod (x^31 - x^28 - 1) gives the
// weights c(j) with o(t + n) = sum over j of c(j) o(t + j).
#define RAND_POLY 31

// a = a * b mod the characteristic polynomial, coefficients mod 2^32.
static void PolyMulMod(uint32_t a[RAND_POLY], const uint32_t b[RAND_POLY]) {
  uint32_t product[2 * RAND_POLY - 1] = {0};
  for (int i = 0; i < RAND_POLY; i++)
    for (int j = 0; j < RAND_POLY; j++) product[i + j] += a[i] * b[j];
  for (int k = 2 * RAND_POLY - 2; k >= RAND_POLY; k--) {  // x^31 = x^28 + 1
    product[k - 3] += product[k];
    product[k - RAND_POLY] += product[k];
  }
  for (int i = 0; i < RAND_POLY; i++) a[i] = product[i];
}

// a = a * x mod the characteristic polynomial.
static void PolyTimesX(uint32_t a[RAND_POLY]) {
  uint32_t top = a[RAND_POLY - 1];
  for (int i = RAND_POLY - 1; i > 0; i--) a[i] = a[i - 1];
  a[0] = top;
  a[RAND_POLY - 3] += top;
}

static void JumpRand(GROWTHRANDOM &r, uint64_t n) {
  uint32_t c[RAND_POLY] = {1};
  for (int bit = 63 - __builtin_clzll(n); bit >= 0; bit--) {
    uint32_t square[RAND_POLY];
    for (int i = 0; i < RAND_POLY; i++) square[i] = c[i];
    PolyMulMod(c, square);
    if ((n >> bit) & 1) PolyTimesX(c);
  }
  // The window of the last 31 values, oldest first, and the 30 after it.
  uint32_t w[2 * RAND_POLY - 1];
  for (int k = 0; k < RAND_POLY; k++) w[k] = (uint32_t)r.randstate[(r.randfront + k) % RANDOM_DEGREE];
  for (int k = RAND_POLY; k < 2 * RAND_POLY - 1; k++) w[k] = w[k - RAND_POLY] + w[k - 3];
  int front = (int)((r.randfront + n) % RANDOM_DEGREE);
  for (int m = 0; m < RAND_POLY; m++) {
    uint32_t v = 0;
    for (int j = 0; j < RAND_POLY; j++) v += c[j] * w[m + j];
    r.randstate[(front + m) % RANDOM_DEGREE] = (int32_t)v;
  }
  r.randfront = front;
  r.randrear = (front + RANDOM_DEGREE - RANDOM_SEP) % RANDOM_DEGREE;
}

void FlushGrowthRand(GROWTHRANDOM &r) {
  uint64_t n = r.randpending;
  r.randpending = 0;
  if (n < 2000) {  // cheaper one by one
    while (n-- > 0) GrowthRand(r);
    return;
  }
  JumpRand(r, n);
}

void SeedGrowthRandom(GROWTHRANDOM &r, int seed) {
  GrowthSrand(r, (unsigned int)seed);
  GrowthSrand48(r, seed);
}

void SeedWalkRandom(GROWTHRANDOM &r, int seed) {
  // splitmix64 spreads the seed over the four words
  uint64_t z = (uint64_t)(uint32_t)seed ^ 0x5745414C4B464153ULL;
  for (int k = 0; k < 4; k++) {
    z += 0x9E3779B97F4A7C15ULL;
    uint64_t x = z;
    x = (x ^ (x >> 30)) * 0xBF58476D1CE4E5B9ULL;
    x = (x ^ (x >> 27)) * 0x94D049BB133111EBULL;
    r.walkrandom[k] = x ^ (x >> 31);
  }
}
