// The growth's random numbers: glibc's drand48 and rand computed in process,
// the same numbers for the same seeds, without the library's call and lock
// overhead. Every draw of the growth comes from here; nothing else may draw
// from these streams, or a seed would no longer reproduce a run.
#ifndef DLA_GROWTH_RANDOM_H
#define DLA_GROWTH_RANDOM_H

#include <stdint.h>

#define RANDOM_DEGREE 31  // words of the additive feedback generator
#define RANDOM_SEP 3

extern uint64_t drand48state;               // 48-bit linear congruential state
extern int32_t randstate[RANDOM_DEGREE];
extern int randfront, randrear;             // glibc's fptr and rptr, as indices
extern uint64_t randpending;                // rand draws owed: taken before the next real one

// As srand48(seed): only the low 32 bits of the seed count.
void GrowthSrand48(long seed);

// As srand(seed); 0 is taken as 1.
void GrowthSrand(unsigned int seed);

// Both generators with one seed, as the growth initialisation does.
void SeedGrowthRandom(int seed);

// As drand48(): uniform in [0, 1), the new 48-bit state over 2^48.
inline double GrowthDrand48(void) {
  drand48state = (drand48state * 0x5DEECE66DULL + 0xB) & 0xFFFFFFFFFFFFULL;
  return (double)drand48state * (1.0 / 281474976710656.0);
}

// Takes the rand draws owed by SkipGrowthRand, jumping ahead when there
// are many; the state is then as if each had been drawn.
void FlushGrowthRand(void);

// n rand draws whose values nobody needs (rand() % 1 is always 0): owed,
// taken by the next GrowthRand, FlushGrowthRand or seeding drops them.
inline void SkipGrowthRand(uint64_t n) { randpending += n; }

// As rand(): 0 to 2147483647.
inline int GrowthRand(void) {
  if (randpending) FlushGrowthRand();
  uint32_t val = (uint32_t)randstate[randfront] + (uint32_t)randstate[randrear];
  randstate[randfront] = (int32_t)val;
  if (++randfront >= RANDOM_DEGREE) randfront = 0;
  if (++randrear >= RANDOM_DEGREE) randrear = 0;
  return (int)(val >> 1);
}

// The fast walk's own generator (xoshiro256**), apart from drand48 and
// rand so that the exact walk's numbers stay untouched.
extern uint64_t walkrandom[4];

// Seeds the fast walk's generator (the growth seeds it with the growth seed).
void SeedWalkRandom(int seed);

// Uniform in [0, 1), 53 bits.
inline double WalkUniform(void) {
  uint64_t *s = walkrandom;
  uint64_t x = s[1] * 5;
  uint64_t result = ((x << 7) | (x >> 57)) * 9;
  uint64_t t = s[1] << 17;
  s[2] ^= s[0];
  s[3] ^= s[1];
  s[1] ^= s[2];
  s[0] ^= s[3];
  s[2] ^= t;
  s[3] = (s[3] << 45) | (s[3] >> 19);
  return (double)(result >> 11) * (1.0 / 9007199254740992.0);
}

#endif
