#include <gtest/gtest.h>
#include <limits.h>
#include <stdlib.h>

#include "growth/random.h"

namespace {

// Draws n numbers from both the library and the in-process generators after
// seeding both with seed; returns the number of mismatches.
long Mismatches(long seed, int n) {
  srand48(seed);
  srand((unsigned int)seed);
  GrowthSrand48(seed);
  GrowthSrand((unsigned int)seed);
  long bad = 0;
  for (int k = 0; k < n; k++) {
    if (drand48() != GrowthDrand48()) bad++;
    if (rand() != GrowthRand()) bad++;
  }
  return bad;
}

TEST(Random, ReproducesTheLibraryForManySeedsAndLongSequences) {
  // 0 (rand takes it as 1), 1, negatives, the int limits, the default seed,
  // and a long whose high bits srand48 must ignore.
  const long special[] = {0, 1, -1, -12345, INT_MAX, INT_MIN, 12345, 0x100000001L, 0x7FFFFFFFFFFFL};
  for (long seed : special) EXPECT_EQ(Mismatches(seed, 1000000), 0) << "seed " << seed;
  for (long seed = 2; seed < 102; seed++) EXPECT_EQ(Mismatches(seed * 7919, 100000), 0) << "seed " << seed * 7919;
}

TEST(Random, FirstNumbersFollowTheDefinitions) {
  // drand48: x1 = (0x5DEECE66D x0 + 11) mod 2^48 with x0 = seed << 16 | 0x330E.
  GrowthSrand48(0);
  unsigned long long x = (0x5DEECE66DULL * 0x330EULL + 11) & 0xFFFFFFFFFFFFULL;
  EXPECT_EQ(GrowthDrand48(), (double)x / 281474976710656.0);
  // rand with seed 1: glibc's well-known first number.
  GrowthSrand(1);
  EXPECT_EQ(GrowthRand(), 1804289383);
  EXPECT_EQ(GrowthRand(), 846930886);
  // srand(0) is srand(1).
  GrowthSrand(0);
  EXPECT_EQ(GrowthRand(), 1804289383);
}

TEST(Random, SeedGrowthRandomSeedsBoth) {
  SeedGrowthRandom(4242);
  srand48(4242);
  srand(4242);
  EXPECT_EQ(GrowthDrand48(), drand48());
  EXPECT_EQ(GrowthRand(), rand());
}

}  // namespace
