// The growth's random numbers: glibc's drand48 and rand computed in process,
// the same numbers for the same seeds, without the library's call and lock
// overhead. Every draw of the growth comes from here; nothing else may draw
// from these streams, or a seed would no longer reproduce a run.
#ifndef DLA_GROWTH_RANDOM_H
#define DLA_GROWTH_RANDOM_H

#include <stdint.h>

#include "app/simulation.h"

// As srand48(seed): only the low 32 bits of the seed count.
void GrowthSrand48(GROWTHRANDOM &r, long seed);

// As srand(seed); 0 is taken as 1.
void GrowthSrand(GROWTHRANDOM &r, unsigned int seed);

// Both generators with one seed, as the growth initialisation does.
void SeedGrowthRandom(GROWTHRANDOM &r, int seed);

// As drand48(): uniform in [0, 1), the new 48-bit state over 2^48.
inline double GrowthDrand48(GROWTHRANDOM &r) {
  r.drand48state = (r.drand48state * 0x5DEECE66DULL + 0xB) & 0xFFFFFFFFFFFFULL;
  return (double)r.drand48state * (1.0 / 281474976710656.0);
}

// Takes the rand draws owed by SkipGrowthRand, jumping ahead when there
// are many; the state is then as if each had been drawn.
void FlushGrowthRand(GROWTHRANDOM &r);

// n rand draws whose values nobody needs (rand() % 1 is always 0): owed,
// taken by the next GrowthRand, FlushGrowthRand or seeding drops them.
inline void SkipGrowthRand(GROWTHRANDOM &r, uint64_t n) { r.randpending += n; }

// As rand(): 0 to 2147483647.
inline int GrowthRand(GROWTHRANDOM &r) {
  if (r.randpending) FlushGrowthRand(r);
  uint32_t val = (uint32_t)r.randstate[r.randfront] + (uint32_t)r.randstate[r.randrear];
  r.randstate[r.randfront] = (int32_t)val;
  if (++r.randfront >= RANDOM_DEGREE) r.randfront = 0;
  if (++r.randrear >= RANDOM_DEGREE) r.randrear = 0;
  return (int)(val >> 1);
}

// The fast walk's own generator (xoshiro256**), apart from drand48 and
// rand so that the exact walk's numbers stay untouched.

// Seeds the fast walk's generator (the growth seeds it with the growth seed).
void SeedWalkRandom(GROWTHRANDOM &r, int seed);

// Uniform in [0, 1), 53 bits.
inline double WalkUniform(GROWTHRANDOM &r) {
  uint64_t *s = r.walkrandom;
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
