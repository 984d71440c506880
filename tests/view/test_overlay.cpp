// The overlay text and layout: every line's text and window position.
#include <gtest/gtest.h>

#include <string.h>

#include <string>

#include "app/records.h"
#include "growth/growth_test_util.h"
#include "surface/stl.h"
#include "view/overlay.h"

namespace {

struct Expected {
  int y;
  const char *text;
};

void ExpectLines(const OVERLAYLINE *lines, int n, int x, const Expected *want, int nwant) {
  ASSERT_EQ(n, nwant);
  for (int i = 0; i < n; i++) {
    SCOPED_TRACE(i);
    EXPECT_EQ(lines[i].x, x);
    EXPECT_EQ(lines[i].y, want[i].y);
    EXPECT_STREQ(lines[i].text, want[i].text);
  }
}

// Settings a user could have typed in, chosen so that every %g shows.
void SetInfoInputs(void) {
  ResetGrowthForTest();
  GROWTHSTATE &g = growthstate;
  g.seed = 7;
  g.bias = 2.5;
  g.branchlength = 1.5;
  g.stickiness = 80;
  g.rotation = -3;
  g.thickstart = 0.4;
  g.thickend = 0.01;
  g.intersectrange = 10;
  g.radius = 16.0175;
  g.lifespan = 310;
}

}  // namespace

TEST(Overlay, InfoBlockOneRootNoSurface) {
  SetInfoInputs();
  growthstate.associate = 0;
  growthstate.sourcetype = 0;
  ASSERT_EQ(growthstate.nroots, 1);
  ASSERT_EQ(nstltri, 0);
  ASSERT_EQ(ncells, 1);

  OVERLAYLINE lines[MAXINFOLINES];
  int n = InfoLines(lines, MAXINFOLINES, 600);
  // One root: no distribution lines, the source follows 13 lower. No
  // surface: the particle count is 26 below the surface name.
  const Expected want[] = {
      {574, "Version: 1.02"},
      {561, "Seed: 7"},
      {548, "Bias towards origin: 2.5% of step length"},
      {535, "Branch length: 1.5"},
      {522, "Stickiness: 80%"},
      {509, "Rotation: -3 degrees about z axis"},
      {496, "Branch thickness: 0.4 to 0.01"},
      {483, "Intersection range: 10% of branch length"},
      {470, "Seed association: Off"},
      {457, "Number of roots: 1"},
      {444, "Source type: Unknown"},
      {431, "Constraint surface: None"},
      {405, "Number of particles: 1"},
      {392, "Current radius: 16.0175"},
      {379, "Particle life span: 310"},
  };
  ExpectLines(lines, n, 10, want, sizeof(want) / sizeof(want[0]));

  // A short array gets the first lines only.
  EXPECT_EQ(InfoLines(lines, 3, 600), 3);
  EXPECT_STREQ(lines[2].text, "Bias towards origin: 2.5% of step length");
}

TEST(Overlay, InfoBlockRootsAndSurface) {
  SetInfoInputs();
  growthstate.associate = 1;
  growthstate.nroots = 3;
  growthstate.rootrange = 20;
  CopyName(growthstate.rootname, "Ring (z)", sizeof(growthstate.rootname));
  growthstate.sourcetype = SOURCE_STL;
  CopyName(growthstate.stlname, "cup.stl", sizeof(growthstate.stlname));
  XYZ a = {-1, 0, 2}, b = {3, 0.5, 2}, c = {0, -2.25, 7};
  XYZ d = {0, 0, 0}, e = {1, 1, 1}, f = {2, -4, 3};
  AppendFacet(a, b, c);
  AppendFacet(d, e, f);
  UpdateSTL();
  ASSERT_EQ(nstltri, 2);
  XYZ q = {1, 0, 0};
  AppendCell(q, 0, 0);
  AppendCell(q, 0, 1);

  OVERLAYLINE lines[MAXINFOLINES];
  int n = InfoLines(lines, MAXINFOLINES, 300);
  // Lines below the window bottom are listed all the same.
  const Expected want[] = {
      {274, "Version: 1.02"},
      {261, "Seed: 7"},
      {248, "Bias towards origin: 2.5% of step length"},
      {235, "Branch length: 1.5"},
      {222, "Stickiness: 80%"},
      {209, "Rotation: -3 degrees about z axis"},
      {196, "Branch thickness: 0.4 to 0.01"},
      {183, "Intersection range: 10% of branch length"},
      {170, "Seed association: On"},
      {157, "Number of roots: 3"},
      {144, "Root distribution range: 20"},
      {131, "Root distribution: Ring (z)"},
      {118, "Source type: STL surface"},
      {105, "Constraint surface: cup.stl"},
      {92, "Faces in constraint surface: 2"},
      {79, "Surface bounds"},
      {66, "   -1 <= x <= 3"},
      {53, "   -4 <= y <= 1"},
      {40, "   0 <= z <= 7"},
      {14, "Number of particles: 3"},
      {1, "Current radius: 16.0175"},
      {-12, "Particle life span: 310"},
  };
  ExpectLines(lines, n, 10, want, sizeof(want) / sizeof(want[0]));

  nstltri = 0;
  UpdateSTL();
}

TEST(Overlay, InfoLinesCutTo63Characters) {
  SetInfoInputs();
  growthstate.nroots = 2;
  // Longest names the records hold: 255 and 127 characters.
  std::string longname(255, 'a');
  CopyName(growthstate.stlname, longname.c_str(), sizeof(growthstate.stlname));
  std::string longroot(127, 'b');
  CopyName(growthstate.rootname, longroot.c_str(), sizeof(growthstate.rootname));
  // The overlay names source 9 after the z axis (the report does not).
  growthstate.sourcetype = 9;

  OVERLAYLINE lines[MAXINFOLINES];
  int n = InfoLines(lines, MAXINFOLINES, 600);
  ASSERT_EQ(n, 17);
  EXPECT_STREQ(lines[11].text, ("Root distribution: " + std::string(63 - 19, 'b')).c_str());
  EXPECT_STREQ(lines[12].text, "Source type: Single axis (-z)");
  EXPECT_STREQ(lines[13].text, ("Constraint surface: " + std::string(63 - 20, 'a')).c_str());
  EXPECT_EQ(strlen(lines[13].text), 63u);
}

TEST(Overlay, StatisticsBlockListsNonZeroCountsClosingUp) {
  const int branches[10] = {5, 3, 2, 1, 0, 7, 9, 9, 9, 9};
  const int counts[10] = {1, 0, 8, 27, -1, 0, 3, -1, -1, -1};
  const double sizes[10] = {12.5, 8.3, 5.555556, 3.7037037, 2.5, 1.6, 1234.5678, 0, 0, 0};
  for (int k = 0; k < 10; k++) {
    stats.branchcount[k] = branches[k];
    stats.boxcount[k] = counts[k];
    stats.boxsize[k] = sizes[k];
  }

  OVERLAYLINE lines[MAXSTATSLINES];
  int n = StatisticsLines(lines, MAXSTATSLINES, 801, 600);
  // x is half the width, rounded down; counts above 5 children are not shown.
  const Expected want[] = {
      {574, "Statistics"},
      {561, "Branch distribution"},
      {548, "   0:5 1:3 2:2 3:1 4:0 5:7"},
      {535, "Box counting"},
      {522, "     12.500 : 1\n"},
      {509, "      5.556 : 8\n"},
      {496, "      3.704 : 27\n"},
      {483, "   1234.568 : 3\n"},
  };
  ExpectLines(lines, n, 400, want, sizeof(want) / sizeof(want[0]));

  // No count above zero: the four heading lines only.
  for (int k = 0; k < 10; k++) stats.boxcount[k] = k == 0 ? 0 : -1;
  EXPECT_EQ(StatisticsLines(lines, MAXSTATSLINES, 800, 600), 4);
  for (int k = 0; k < 10; k++) {
    stats.branchcount[k] = 0;
    stats.boxsize[k] = 0;
    stats.boxcount[k] = 0;
  }
}
