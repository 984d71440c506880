#include <gtest/gtest.h>

#include "lib/colour.h"

// Expected colours at stops and half way between stops, worked out by hand
// from the map table. t is the position in the range; s is the unit the
// colour is written in (1, or 255 for the maps given in 0..255).
struct SAMPLE {
  int type;
  double t;
  double r, g, b;
  double s;
};

static const double T6 = 1.0 / 6, T3 = 1.0 / 3, T12 = 1.0 / 12, T24 = 1.0 / 24;

static const SAMPLE samples[] = {
    // 1: blue, cyan, green, yellow, red
    {1, 0, 0, 0, 1, 1}, {1, 0.125, 0, 0.5, 1, 1}, {1, 0.25, 0, 1, 1, 1}, {1, 0.375, 0, 1, 0.5, 1},
    {1, 0.5, 0, 1, 0, 1}, {1, 0.625, 0.5, 1, 0, 1}, {1, 0.75, 1, 1, 0, 1}, {1, 0.875, 1, 0.5, 0, 1},
    {1, 1, 1, 0, 0, 1},
    {2, 0, 0, 0, 1, 1}, {2, 0.5, 0.5, 0, 0.5, 1}, {2, 1, 1, 0, 0, 1},
    {3, 0, 0, 0, 0, 1}, {3, 0.5, 0.5, 0.5, 0.5, 1}, {3, 1, 1, 1, 1, 1},
    // 4: six sixths round the hue circle
    {4, 0, 1, 0, 0, 1}, {4, T12, 1, 0.5, 0, 1}, {4, T6, 1, 1, 0, 1}, {4, 3 * T12, 0.5, 1, 0, 1},
    {4, 2 * T6, 0, 1, 0, 1}, {4, 5 * T12, 0, 1, 0.5, 1}, {4, 3 * T6, 0, 1, 1, 1},
    {4, 7 * T12, 0, 0.5, 1, 1}, {4, 4 * T6, 0, 0, 1, 1}, {4, 9 * T12, 0.5, 0, 1, 1},
    {4, 5 * T6, 1, 0, 1, 1}, {4, 11 * T12, 1, 0, 0.5, 1}, {4, 1, 1, 0, 0, 1},
    {5, 0, 0, 1, 0, 1}, {5, 0.5, 0.5, 1, 0, 1}, {5, 1, 1, 1, 0, 1},
    {6, 0, 0, 1, 0, 1}, {6, 0.5, 0.5, 0.5, 0.5, 1}, {6, 1, 1, 0, 1, 1},
    {7, 0, 0, 0, 1, 1}, {7, 0.125, 0, 0.5, 0.5, 1}, {7, 0.25, 0, 1, 0, 1}, {7, 0.375, 0.5, 0.5, 0, 1},
    {7, 0.5, 1, 0, 0, 1}, {7, 0.625, 0.5, 0.5, 0, 1}, {7, 0.75, 0, 1, 0, 1}, {7, 0.875, 0, 0.5, 0.5, 1},
    {7, 1, 0, 0, 1, 1},
    {8, 0, 0, 0, 0, 1}, {8, 0.25, 0.5, 0.5, 0.5, 1}, {8, 0.5, 1, 1, 1, 1}, {8, 0.75, 0.5, 0.5, 0.5, 1},
    {8, 1, 0, 0, 0, 1},
    {9, 0, 1, 0, 0, 1}, {9, T6, 0.5, 0, 0.5, 1}, {9, T3, 0, 0, 1, 1}, {9, 0.5, 0, 0.5, 1, 1},
    {9, 2 * T3, 0, 1, 1, 1}, {9, 5 * T6, 0.5, 0.5, 1, 1}, {9, 1, 1, 0, 1, 1},
    {10, 0, 0, 0, 1, 1}, {10, 0.1, 0, 0.5, 1, 1}, {10, 0.2, 0, 1, 1, 1}, {10, 0.3, 0, 1, 0.5, 1},
    {10, 0.4, 0, 1, 0, 1}, {10, 0.5, 0.5, 1, 0, 1}, {10, 0.6, 1, 1, 0, 1}, {10, 0.7, 1, 0.5, 0, 1},
    {10, 0.8, 1, 0, 0, 1}, {10, 0.9, 1, 0.5, 0.5, 1}, {10, 1, 1, 1, 1, 1},
    {11, 0, 200, 60, 0, 255}, {11, 0.5, 225, 110, 55, 255}, {11, 1, 250, 160, 110, 255},
    // 12, 13, 20: two pieces of unequal width
    {12, 0, 55, 55, 45, 255}, {12, 0.2, 145, 72.5, 37.5, 255}, {12, 0.4, 235, 90, 30, 255},
    {12, 0.7, 242.5, 125, 70, 255}, {12, 1, 250, 160, 110, 255},
    {13, 0, 0, 255, 0, 255}, {13, 0.15, 127.5, 202.5, 0, 255}, {13, 0.3, 255, 150, 0, 255},
    {13, 0.65, 255, 200, 120, 255}, {13, 1, 255, 250, 240, 255},
    {14, 0, 1, 1, 0, 1}, {14, 0.5, 1, 0.5, 0, 1}, {14, 1, 1, 0, 0, 1},
    {15, 0, 0, 0, 1, 1}, {15, 0.125, 0, 0.5, 1, 1}, {15, 0.25, 0, 1, 1, 1}, {15, 0.375, 0, 1, 0.5, 1},
    {15, 0.5, 0, 1, 0, 1}, {15, 0.625, 0.5, 1, 0, 1}, {15, 0.75, 1, 1, 0, 1}, {15, 0.875, 1, 1, 0.5, 1},
    {15, 1, 1, 1, 1, 1},
    {16, 0, 0, 0, 1, 1}, {16, 0.25, 0, 0.5, 0.5, 1}, {16, 0.5, 0, 1, 0, 1}, {16, 0.75, 0.5, 0.5, 0, 1},
    {16, 1, 1, 0, 0, 1},
    {17, 0, 1, 1, 0, 1}, {17, 0.25, 1, 0.5, 0.5, 1}, {17, 0.5, 1, 0, 1, 1}, {17, 0.75, 0.5, 0.5, 1, 1},
    {17, 1, 0, 1, 1, 1},
    {18, 0, 0, 0, 1, 1}, {18, 0.5, 0, 0.5, 1, 1}, {18, 1, 0, 1, 1, 1},
    {19, 0, 0, 0, 1, 1}, {19, 0.5, 0.5, 0.5, 1, 1}, {19, 1, 1, 1, 1, 1},
    {20, 0, 0, 160, 0, 255}, {20, 0.15, 90, 190, 0, 255}, {20, 0.3, 180, 220, 0, 255},
    {20, 0.65, 215, 220, 85, 255}, {20, 1, 250, 220, 170, 255},
    {21, 0, 255, 255, 200, 255}, {21, 0.5, 202.5, 202.5, 227.5, 255}, {21, 1, 150, 150, 255, 255},
    {22, 0, 1, 1, 0, 1}, {22, 0.5, 0.5, 0.5, 0.5, 1}, {22, 1, 0, 0, 1, 1},
    {23, 0, 1, 0, 0, 1}, {23, 0.25, 1, 0.5, 0.5, 1}, {23, 0.5, 1, 1, 1, 1}, {23, 0.75, 0.5, 0.5, 1, 1},
    {23, 1, 0, 0, 1, 1},
    {24, 0, 0, 0, 1, 1}, {24, 0.25, 0.5, 0.5, 0.5, 1}, {24, 0.5, 1, 1, 0, 1}, {24, 0.75, 1, 0.5, 0, 1},
    {24, 1, 1, 0, 0, 1},
    {25, 0, 0, 0, 1, 1}, {25, T6, 0, 0.5, 1, 1}, {25, T3, 0, 1, 1, 1}, {25, 0.5, 0.5, 0.5, 1, 1},
    {25, 2 * T3, 1, 0, 1, 1}, {25, 5 * T6, 1, 0, 0.5, 1}, {25, 1, 1, 0, 0, 1},
    {26, 0, 0, 1, 0, 1}, {26, 0.25, 0.5, 1, 0, 1}, {26, 0.5, 1, 1, 0, 1}, {26, 0.75, 0.5, 1, 0, 1},
    {26, 1, 0, 1, 0, 1},
    {27, 0, 0, 0, 0, 1}, {27, 0.25, 0.5, 0, 0, 1}, {27, 0.5, 1, 0, 0, 1}, {27, 0.75, 1, 0.5, 0.5, 1},
    {27, 1, 1, 1, 1, 1},
    {28, 0, 0, 0, 0, 1}, {28, 0.25, 0, 0.5, 0, 1}, {28, 0.5, 0, 1, 0, 1}, {28, 0.75, 0.5, 1, 0.5, 1},
    {28, 1, 1, 1, 1, 1},
    {29, 0, 0, 0, 0, 1}, {29, 0.25, 0, 0, 0.5, 1}, {29, 0.5, 0, 0, 1, 1}, {29, 0.75, 0.5, 0.5, 1, 1},
    {29, 1, 1, 1, 1, 1},
    // 30: hue wheel; half way between its sixths the rising channel is 1.5
    // before the clamp
    {30, 0, 1, 0, 0, 1}, {30, T12, 1, 0.5, 0, 1}, {30, T6, 1, 1, 0, 1}, {30, 3 * T12, 0.5, 1, 0, 1},
    {30, 2 * T6, 0, 1, 0, 1}, {30, 5 * T12, 0, 1, 0.5, 1}, {30, 3 * T6, 0, 1, 1, 1},
    {30, 7 * T12, 0, 0.5, 1, 1}, {30, 4 * T6, 0, 0, 1, 1}, {30, 9 * T12, 0.5, 0, 1, 1},
    {30, 5 * T6, 1, 0, 1, 1}, {30, 11 * T12, 1, 0, 0.5, 1}, {30, 1, 1, 0, 0, 1},
    // 31: twelve steps, each sixth split 0.8 then 0.2; samples half way
    // through every step
    {31, 0, 1, 0, 0, 1}, {31, T24, 1, 0.4, 0, 1}, {31, 3 * T24, 1, 0.9, 0, 1},
    {31, 5 * T24, 0.9, 1, 0, 1}, {31, 7 * T24, 0.4, 1, 0, 1}, {31, 9 * T24, 0, 1, 0.4, 1},
    {31, 11 * T24, 0, 1, 0.9, 1}, {31, 13 * T24, 0, 0.9, 1, 1}, {31, 15 * T24, 0, 0.4, 1, 1},
    {31, 17 * T24, 0.4, 0, 1, 1}, {31, 19 * T24, 0.9, 0, 1, 1}, {31, 21 * T24, 1, 0, 0.9, 1},
    {31, 23 * T24, 1, 0, 0.4, 1}, {31, 0.5, 0, 1, 1, 1}, {31, 1, 1, 0, 0, 1},
};

static void ExpectColour(COLOUR c, double r, double g, double b, double tol, const char *what) {
  EXPECT_NEAR(c.r, r, tol) << what;
  EXPECT_NEAR(c.g, g, tol) << what;
  EXPECT_NEAR(c.b, b, tol) << what;
}

TEST(Colour, EveryMapAtItsStopsAndBetweenThem) {
  bool seen[32] = {false};
  for (const SAMPLE &s : samples) {
    char what[64];
    seen[s.type] = true;
    // Over the unit range, and over a shifted, wider range given upside down.
    snprintf(what, sizeof(what), "map %d at t=%g on [0,1]", s.type, s.t);
    ExpectColour(GetColour(s.t, 0, 1, s.type), s.r / s.s, s.g / s.s, s.b / s.s, 1e-9, what);
    snprintf(what, sizeof(what), "map %d at t=%g on [6,-2]", s.type, s.t);
    ExpectColour(GetColour(-2 + 8 * s.t, 6, -2, s.type), s.r / s.s, s.g / s.s, s.b / s.s, 1e-9,
                 what);
  }
  for (int type = 1; type <= 31; type++)
    EXPECT_TRUE(seen[type]) << "map " << type << " has no samples";
}

TEST(Colour, StopsAreExactWhereTheRangeIsExact) {
  // [0, 8]: every quarter and half is exact, so the stop colours must be too.
  COLOUR c = GetColour(2, 0, 8, 1);
  EXPECT_EQ(c.r, 0.0);
  EXPECT_EQ(c.g, 1.0);
  EXPECT_EQ(c.b, 1.0);
  c = GetColour(4, 8, 0, 1);
  EXPECT_EQ(c.r, 0.0);
  EXPECT_EQ(c.g, 1.0);
  EXPECT_EQ(c.b, 0.0);
  c = GetColour(6, 0, 8, 1);
  EXPECT_EQ(c.r, 1.0);
  EXPECT_EQ(c.g, 1.0);
  EXPECT_EQ(c.b, 0.0);
  c = GetColour(4, 0, 8, 8);
  EXPECT_EQ(c.r, 1.0);
  EXPECT_EQ(c.g, 1.0);
  EXPECT_EQ(c.b, 1.0);
}

TEST(Colour, TwoPieceMapsUseEachPiecesOwnWidth) {
  // Map 12 at a quarter of its first piece (t = 0.1) and a third of its
  // second (t = 0.6): 55 + 180/4 = 100, 235 + 15/3 = 240 for red.
  COLOUR c = GetColour(0.1, 0, 1, 12);
  ExpectColour(c, 100 / 255.0, (55 + 35 / 4.0) / 255, (45 - 15 / 4.0) / 255, 1e-9, "12 @0.1");
  c = GetColour(0.6, 0, 1, 12);
  ExpectColour(c, 240 / 255.0, (90 + 70 / 3.0) / 255, (30 + 80 / 3.0) / 255, 1e-9, "12 @0.6");
  // Map 13 at t = 0.1 (a third of 0.3) and t = 0.44 (a fifth of 0.7).
  c = GetColour(0.1, 0, 1, 13);
  ExpectColour(c, 85 / 255.0, 220 / 255.0, 0, 1e-9, "13 @0.1");
  c = GetColour(0.44, 0, 1, 13);
  ExpectColour(c, 1, 170 / 255.0, 48 / 255.0, 1e-9, "13 @0.44");
  // Map 20 at t = 0.2 (two thirds of 0.3) and t = 0.86 (four fifths of 0.7).
  c = GetColour(0.2, 0, 1, 20);
  ExpectColour(c, 120 / 255.0, 200 / 255.0, 0, 1e-9, "20 @0.2");
  c = GetColour(0.86, 0, 1, 20);
  ExpectColour(c, 236 / 255.0, 220 / 255.0, 136 / 255.0, 1e-9, "20 @0.86");
}

TEST(Colour, OrderOfLimitsDoesNotMatter) {
  COLOUR a = GetColour(5, 10, 0, 1);
  COLOUR b = GetColour(5, 0, 10, 1);
  EXPECT_EQ(a.r, b.r);
  EXPECT_EQ(a.g, b.g);
  EXPECT_EQ(a.b, b.b);
  ExpectColour(a, 0, 1, 0, 0, "green");
  a = GetColour(3, 10, 0, 1);
  b = GetColour(3, 0, 10, 1);
  EXPECT_EQ(a.r, b.r);
  EXPECT_EQ(a.g, b.g);
  EXPECT_EQ(a.b, b.b);
}

TEST(Colour, DegenerateRangeIsWidenedByOneEachSide) {
  ExpectColour(GetColour(3, 3, 3, 3), 0.5, 0.5, 0.5, 1e-15, "grey");
  // [3, 3] becomes [2, 4]: 2.5 is a quarter of the way up map 1 (cyan).
  ExpectColour(GetColour(2.5, 3, 3, 1), 0, 1, 1, 1e-15, "cyan");
  // A range of 9e-7 is widened, so its top is near the middle of [-1, 1.0000009].
  ExpectColour(GetColour(9e-7, 0, 9e-7, 2), 0.5, 0, 0.5, 1e-6, "widened");
  // A range of exactly 1e-6 is not widened: its top is the top of the map.
  ExpectColour(GetColour(1e-6, 0, 1e-6, 2), 1, 0, 0, 0, "not widened");
}

TEST(Colour, UnknownTypesAreWhite) {
  for (int type : {0, 32, -1, 1000}) {
    ExpectColour(GetColour(0.5, 0, 1, type), 1, 1, 1, 0, "white");
    ExpectColour(GetColour(3, 3, 3, type), 1, 1, 1, 0, "white");
  }
}

TEST(Colour, ValuesOutsideTheRangeAreClamped) {
  ExpectColour(GetColour(-5, 0, 1, 1), 0, 0, 1, 0, "below: blue");
  ExpectColour(GetColour(7, 0, 1, 1), 1, 0, 0, 0, "above: red");
  ExpectColour(GetColour(7, 1, 0, 11), 250 / 255.0, 160 / 255.0, 110 / 255.0, 1e-12, "11 above");
  ExpectColour(GetColour(-7, 0, 1, 12), 55 / 255.0, 55 / 255.0, 45 / 255.0, 1e-12, "12 below");
  // The wheels: past either end they give their end colours, never white.
  ExpectColour(GetColour(2, 0, 1, 30), 1, 0, 0, 0, "30 above");
  ExpectColour(GetColour(-2, 0, 1, 30), 1, 0, 0, 0, "30 below");
  ExpectColour(GetColour(2, 0, 1, 31), 1, 0, 0, 0, "31 above");
  ExpectColour(GetColour(-2, 0, 1, 31), 1, 0, 0, 0, "31 below");
  ExpectColour(GetColour(1, 0, 2, 31), 0, 1, 1, 0, "31 middle");
}

TEST(Colour, TwelveStepsSplitEachSixthUnevenly) {
  // Over [0, 12] each unit is one step. Within step 0 green rises 0.8 over
  // the step; within step 1 only the remaining 0.2.
  ExpectColour(GetColour(0.25, 0, 12, 31), 1, 0.2, 0, 1e-12, "k0 f.25");
  ExpectColour(GetColour(1.25, 0, 12, 31), 1, 0.85, 0, 1e-12, "k1 f.25");
  ExpectColour(GetColour(3.75, 0, 12, 31), 0.2, 1, 0, 1e-12, "k3 f.75");
  ExpectColour(GetColour(8.5, 0, 12, 31), 0.4, 0, 1, 1e-12, "k8 f.5");
  ExpectColour(GetColour(11, 0, 12, 31), 1, 0, 0.8, 1e-12, "k11 f0");
  ExpectColour(GetColour(12, 0, 12, 31), 1, 0, 0, 0, "k12");
}
