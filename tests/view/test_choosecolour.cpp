#include <gtest/gtest.h>
#include <math.h>

#include "app/records.h"
#include "view/choosecolour.h"

static void ResetColourState(int nroots, int associate, double maxweight) {
  SetOptionDefaults();
  ncells = 0;
  growthstate = GROWTHSTATE();
  growthstate.nroots = nroots;
  growthstate.associate = associate;
  growthstate.maxweight = maxweight;
}

static void AddCells(int n, double weight) {
  XYZ o = {0, 0, 0};
  for (int i = 0; i < n; i++) AppendCell(o, weight, i == 0 ? -1 : i - 1);
}

#define EXPECT_COLOUR(c, er, eg, eb)  \
  do {                                \
    COLOUR cc = (c);                  \
    EXPECT_NEAR(cc.r, er, 1e-9);      \
    EXPECT_NEAR(cc.g, eg, 1e-9);      \
    EXPECT_NEAR(cc.b, eb, 1e-9);      \
  } while (0)

TEST(ChooseColour, ByRootForPointsAndLinesWithAssociation) {
  ResetColourState(3, 1, 6);
  AddCells(50, 6);  // full weight: by weight these would all be red
  EXPECT_COLOUR(ChooseColour(0, DLADRAW_POINTS), 1, 0, 0);
  EXPECT_COLOUR(ChooseColour(1, DLADRAW_POINTS), 0, 1, 0);
  EXPECT_COLOUR(ChooseColour(2, DLADRAW_LINES), 0, 0, 1);
  EXPECT_COLOUR(ChooseColour(4, DLADRAW_OFF), 0, 1, 0);
  // Tubes (and the unused mode 4) always go by weight.
  EXPECT_COLOUR(ChooseColour(1, DLADRAW_TUBES), 1, 0, 0);
  EXPECT_COLOUR(ChooseColour(1, DLADRAW_FOUR), 1, 0, 0);

  // More roots than table entries: (i mod nroots) mod 21.
  growthstate.nroots = 25;
  EXPECT_COLOUR(ChooseColour(20, DLADRAW_LINES), 0.75, 0.75, 0.75);
  EXPECT_COLOUR(ChooseColour(22, DLADRAW_LINES), 0, 1, 0);   // 22 mod 21 = 1
  EXPECT_COLOUR(ChooseColour(45, DLADRAW_LINES), 0.75, 0.75, 0.75);  // 45 mod 25 = 20
  EXPECT_COLOUR(ChooseColour(46, DLADRAW_LINES), 1, 0, 0);   // 21 mod 21 = 0
  EXPECT_COLOUR(ChooseColour(31, DLADRAW_LINES), 1, 0.5, 0.5);  // 31 mod 25 = 6
}

TEST(ChooseColour, ByWeightOtherwise) {
  // maxweight 6: the ramp runs over ln(w + 1) from 0 to ln 3, so weight 2
  // (a third of maxweight) and above is full red.
  ResetColourState(1, 1, 6);
  AppendCell({0, 0, 0}, 0, -1);
  AppendCell({0, 0, 1}, 2, 0);
  AppendCell({0, 0, 2}, 5, 1);
  AppendCell({0, 0, 3}, sqrt(3.0) - 1, 2);      // ln(w+1) = ln 3 / 2: green
  AppendCell({0, 0, 4}, pow(3.0, 0.25) - 1, 3);  // a quarter: cyan
  EXPECT_COLOUR(ChooseColour(0, DLADRAW_LINES), 0, 0, 1);
  EXPECT_COLOUR(ChooseColour(1, DLADRAW_LINES), 1, 0, 0);
  EXPECT_COLOUR(ChooseColour(2, DLADRAW_POINTS), 1, 0, 0);
  COLOUR g = ChooseColour(3, DLADRAW_LINES);
  EXPECT_NEAR(g.r, 0, 1e-6);
  EXPECT_NEAR(g.g, 1, 1e-6);
  EXPECT_NEAR(g.b, 0, 1e-6);
  COLOUR c = ChooseColour(4, DLADRAW_TUBES);
  EXPECT_NEAR(c.r, 0, 1e-6);
  EXPECT_NEAR(c.g, 1, 1e-6);
  EXPECT_NEAR(c.b, 1, 1e-6);

  // Association off, or a single root: by weight even when drawing lines.
  growthstate.nroots = 3;
  growthstate.associate = 0;
  EXPECT_COLOUR(ChooseColour(1, DLADRAW_LINES), 1, 0, 0);
  EXPECT_COLOUR(ChooseColour(0, DLADRAW_LINES), 0, 0, 1);
  // No roots with association on must not divide by zero: by weight.
  growthstate.nroots = 0;
  growthstate.associate = 1;
  EXPECT_COLOUR(ChooseColour(1, DLADRAW_LINES), 1, 0, 0);
}

TEST(ChooseColour, RootTable) {
  const double expect[21][3] = {{1, 0, 0},       {0, 1, 0},      {0, 0, 1},      {1, 1, 0},     {0, 1, 1},
                                {1, 0, 1},       {1, 0.5, 0.5},  {0.5, 1, 0.5},  {0.5, 0.5, 1}, {1, 1, 0.5},
                                {0.5, 1, 1},     {1, 0.5, 1},    {0.5, 0, 0},    {0, 0.5, 0},   {0, 0, 0.5},
                                {0.5, 0.5, 0},   {0, 0.5, 0.5},  {0.5, 0, 0.5},  {0.25, 0.25, 0.25},
                                {0.5, 0.5, 0.5}, {0.75, 0.75, 0.75}};
  for (int i = 0; i < 21; i++)
    for (int k = 0; k < 3; k++) EXPECT_EQ(rootcolours[i][k], expect[i][k]) << i << " " << k;
}
