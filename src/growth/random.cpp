#include "growth/random.h"

uint64_t drand48state = 0;  // the library's state before any srand48
int32_t randstate[RANDOM_DEGREE];
int randfront = RANDOM_SEP, randrear = 0;

void GrowthSrand48(long seed) {
  drand48state = ((uint64_t)(uint32_t)seed << 16) | 0x330E;
}

void GrowthSrand(unsigned int seed) {
  if (seed == 0) seed = 1;
  randstate[0] = (int32_t)seed;
  // state[i] = 16807 state[i - 1] mod (2^31 - 1), in 31 bits (Schrage)
  int32_t word = (int32_t)seed;
  for (int i = 1; i < RANDOM_DEGREE; i++) {
    long hi = word / 127773;
    long lo = word % 127773;
    word = (int32_t)(16807 * lo - 2836 * hi);
    if (word < 0) word += 2147483647;
    randstate[i] = word;
  }
  randfront = RANDOM_SEP;
  randrear = 0;
  for (int k = 0; k < 10 * RANDOM_DEGREE; k++) GrowthRand();
}

void SeedGrowthRandom(int seed) {
  GrowthSrand((unsigned int)seed);
  GrowthSrand48(seed);
}

// Before any srand the library behaves as if seeded with 1.
static int randready = (GrowthSrand(1), 1);
