// The menu entries and the record changes of the root and save menus.
#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "app/records.h"
#include "growth/growth.h"
#include "view/menutables.h"

namespace {

TEST(MenuTables, MainMenuEntriesTopToBottom) {
  const char *labels[] = {"Settings",
                          "Save DLA as",
                          "Save constraint surface to STL file",
                          "Compute/save slices",
                          "Save simulation information",
                          "Read constraint surface from STL file",
                          "Read seeds",
                          "-",
                          "DLA drawing mode",
                          "Constraint surface drawing mode",
                          "-",
                          "New particle distribution",
                          "Sample constraint surfaces",
                          "Transform constraint surface",
                          "Initial root distribution",
                          "-",
                          "Toggle extras (f1)",
                          "Toggle info (f2)",
                          "Pause / Continue (f3)",
                          "Restart simulation (f4)",
                          "Calculate statistics (f5)",
                          "-",
                          "Quit (q)"};
  // Value of each entry, or the sub-menu as a negative code -1 - SUBMENU_*.
  const int values[] = {2, -1 - SUBMENU_SAVE, 4, 7, 6, 1, 5, 50, -1 - SUBMENU_DLA, -1 - SUBMENU_STL, 50,
                        -1 - SUBMENU_SOURCE, -1 - SUBMENU_SAMPLE, 3, -1 - SUBMENU_ROOT, 60, 10, 11, 12, 13, 14,
                        50, 100};
  ASSERT_EQ(nmainmenu, 23);
  for (int i = 0; i < nmainmenu; i++) {
    EXPECT_STREQ(mainmenu[i].label, labels[i]) << i;
    int got = mainmenu[i].submenu >= 0 ? -1 - mainmenu[i].submenu : mainmenu[i].value;
    EXPECT_EQ(got, values[i]) << labels[i];
  }
}

TEST(MenuTables, SubMenuEntries) {
  ASSERT_EQ(ndlamenu, 4);
  EXPECT_STREQ(dlamenu[3].label, "Tubes (Slow)");
  EXPECT_EQ(dlamenu[2].value, 3);
  EXPECT_EQ(dlamenu[3].value, 5);  // 4 is not offered

  ASSERT_EQ(nstlmenu, 5);
  const char *stl[] = {"Off", "Faces, wireframe", "Mid points of faces", "Face vertices", "Faces, solid"};
  for (int i = 0; i < 5; i++) {
    EXPECT_STREQ(stlmenu[i].label, stl[i]);
    EXPECT_EQ(stlmenu[i].value, i + 1);
  }

  ASSERT_EQ(nsourcemenu, 17);
  for (int i = 0; i < nsourcemenu; i++) EXPECT_EQ(sourcemenu[i].value, i + 1);
  EXPECT_STREQ(sourcemenu[2].label, "Single axis (-x)");
  EXPECT_STREQ(sourcemenu[8].label, "Single axis (-z)");
  EXPECT_STREQ(sourcemenu[13].label, "Hemisphere (x)");
  EXPECT_STREQ(sourcemenu[16].label, "STL surface");

  ASSERT_EQ(nsavemenu, 7);
  EXPECT_STREQ(savemenu[0].label, "PovRay (Sphere sweep)");
  EXPECT_STREQ(savemenu[4].label, "VRML (Cylinders + Endcaps + Spheres)");
  EXPECT_STREQ(savemenu[6].label, "Point cloud as GEOM");
  for (int i = 0; i < nsavemenu; i++) EXPECT_EQ(savemenu[i].value, i + 1);
}

TEST(MenuTables, SaveEntriesGiveFormatAndVariant) {
  // (format, variant) by value 1..7: POV-Ray sweep and segments, GEOM,
  // VRML plain and capped, DXF points, GEOM points.
  const int expect[7][2] = {{3, 0}, {3, 1}, {1, 1}, {0, 1}, {0, 2}, {4, 1}, {5, 1}};
  for (int v = 1; v <= 7; v++) {
    int format = -9, variant = -9;
    ASSERT_EQ(SaveMenuFormat(v, &format, &variant), 1);
    EXPECT_EQ(format, expect[v - 1][0]) << v;
    EXPECT_EQ(variant, expect[v - 1][1]) << v;
  }
  for (int v : {0, 8, -1, 100}) {
    int format = -9, variant = -9;
    EXPECT_EQ(SaveMenuFormat(v, &format, &variant), 0);
    EXPECT_EQ(format, -9);
    EXPECT_EQ(variant, -9);
  }
}

TEST(MenuTables, RootNamesRunOneRowBehindTheLabels) {
  ASSERT_EQ(nrootmenu, 7);
  EXPECT_STREQ(rootmenu[0].label, "Spherical");
  EXPECT_EQ(rootmenu[0].value, 1);
  EXPECT_STREQ(RootMenuName(1), "Origin");
  // Each entry stores the name of the entry above it.
  for (int i = 1; i < nrootmenu; i++) {
    EXPECT_EQ(rootmenu[i].value, i + 1);
    EXPECT_STREQ(RootMenuName(rootmenu[i].value), rootmenu[i - 1].label);
  }
  EXPECT_STREQ(RootMenuName(8), "Ring: z axis plane");
  EXPECT_EQ(RootMenuName(0), nullptr);
  EXPECT_EQ(RootMenuName(9), nullptr);
  EXPECT_EQ(RootMenuName(-3), nullptr);
}

TEST(MenuTables, RootMenuStoresValueAndNameAndRestartUsesIt) {
  SetOptionDefaults();
  InitialiseGrowth();
  SetGrowthDefaults();
  InitialiseGrowth();
  ResetSeeds();

  SetRootDistribution(7);
  EXPECT_EQ(growthstate.rootdistribution, 7);
  EXPECT_STREQ(growthstate.rootname, "Ring: y axis plane");
  // Outside 1 to 8 only the number changes.
  SetRootDistribution(12);
  EXPECT_EQ(growthstate.rootdistribution, 12);
  EXPECT_STREQ(growthstate.rootname, "Ring: y axis plane");

  // "Spherical" (1) with five roots asked for: a single root at the origin.
  growthstate.nroots = 5;
  SetRootDistribution(rootmenu[0].value);
  InitialiseGrowth();
  ResetSeeds();
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(cells[0].p.x, 0);
  EXPECT_EQ(cells[0].p.y, 0);
  EXPECT_EQ(cells[0].p.z, 0);
  EXPECT_STREQ(growthstate.rootname, "Origin");
  growthstate.nroots = 1;
}

}  // namespace
