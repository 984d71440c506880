#include <gtest/gtest.h>
#include <unistd.h>

#include "export/report.h"
#include "view/overlay.h"
#include "export_helpers.h"

static const char *kSettingsOneRoot =
    "Version: 1.02\n"
    "Seed: 12345\n"
    "Bias towards origin: 0.1% of step length\n"
    "Branch length: 1\n"
    "Stickiness: 100%\n"
    "Rotation: 0 degrees about z axis\n"
    "Branch thickness: 0.4 to 0.01\n"
    "Intersection range: 0% of branch length\n"
    "Seed association: Off\n"
    "Number of roots: 1\n"
    "Source type: Sphere\n"
    "Constraint surface: None\n";

TEST(Report, OneRootNoSurfaceNoStatistics) {
  ResetExportState();
  AppendCell(P(0, 0, 0), 0, -1);
  AppendCell(P(0, 0, 1), 0, 0);
  growthstate.radius = 12.5;
  std::string s = Capture([](FILE *fp) { WriteInformation(fp); });
  EXPECT_EQ(s, std::string(kSettingsOneRoot) +
                   "Number of particles: 2\n"
                   "Current radius: 12.5\n");
}

TEST(Report, SeveralRootsSurfaceAndStatistics) {
  ResetExportState();
  MakeHandAggregate();
  MakeTwoFacets();
  growthstate.nroots = 3;
  growthstate.associate = 1;
  growthstate.rootrange = 7.5;
  CopyName(growthstate.rootname, "Ring: z axis plane", sizeof(growthstate.rootname));
  CopyName(growthstate.stlname, "cup.stl", sizeof(growthstate.stlname));
  growthstate.sourcetype = SOURCE_MINUSZ;
  growthstate.bias = 2.5;
  growthstate.stickiness = 50;
  growthstate.rotation = -1.5;
  growthstate.intersectrange = 20;
  growthstate.seed = 7;
  growthstate.branchlength = 0.75;
  stats.timestep = 7;
  const int bc[10] = {3, 3, 1, 0, 2, 5, 8, 0, 0, 9};
  for (int k = 0; k < 10; k++) stats.branchcount[k] = bc[k];
  // Listed only where count > 0 and size > 0: levels 0 and 1.
  const double size[10] = {4.5, 3, 2, 0, 1, 0.5, 0, 0, 0, 0};
  const int count[10] = {5, 12, 0, 4, -1, -1, -1, -1, -1, -1};
  for (int k = 0; k < 10; k++) {
    stats.boxsize[k] = size[k];
    stats.boxcount[k] = count[k];
  }
  std::string s = Capture([](FILE *fp) { WriteInformation(fp); });
  // ln(1/4.5) = -1.5040774, ln 5 = 1.6094379, ln(1/3) = -1.0986123, ln 12 = 2.4849066.
  EXPECT_EQ(s,
            "Version: 1.02\n"
            "Seed: 7\n"
            "Bias towards origin: 2.5% of step length\n"
            "Branch length: 0.75\n"
            "Stickiness: 50%\n"
            "Rotation: -1.5 degrees about z axis\n"
            "Branch thickness: 0.5 to 0.1\n"
            "Intersection range: 20% of branch length\n"
            "Seed association: On\n"
            "Number of roots: 3\n"
            "Root distribution range: 7.5\n"
            "Root distribution: Ring: z axis plane\n"
            "Source type: Single axis (-x)\n"
            "Constraint surface: cup.stl\n"
            "Faces in constraint surface: 2\n"
            "Surface bounds\n"
            "   0 <= x <= 1\n"
            "   0 <= y <= 1\n"
            "   -2 <= z <= -1\n"
            "Number of particles: 7\n"
            "Current radius: 10\n"
            "\n"
            "Statistics at time step: 7\n"
            "   Branch distribution\n"
            "   0:3 1:3 2:1 3:0 4:2 5:5\n"
            "   Box counting [ size, N, log(1/size), log(N) ]\n"
            "   4.500000 5 -1.504077 1.609438\n"
            "   3.000000 12 -1.098612 2.484907\n");
}

TEST(Report, SourceTypeTexts) {
  EXPECT_STREQ(SourceTypeText(9, 1), "Source type: Single axis (-x)");
  EXPECT_STREQ(SourceTypeText(9, 0), "Source type: Single axis (-z)");
  EXPECT_STREQ(SourceTypeText(3, 1), "Source type: Single axis (-x)");
  EXPECT_STREQ(SourceTypeText(1, 0), "Source type: Sphere");
  EXPECT_STREQ(SourceTypeText(10, 1), "Source type: Double axis (z)");
  EXPECT_STREQ(SourceTypeText(14, 0), "Source type: Hemisphere (x)");
  EXPECT_STREQ(SourceTypeText(17, 1), "Source type: STL surface");
  EXPECT_STREQ(SourceTypeText(0, 0), "Source type: Unknown");
  EXPECT_STREQ(SourceTypeText(18, 1), "Source type: Unknown");
  EXPECT_STREQ(SourceTypeText(-1, 1), "Source type: Unknown");
}

TEST(Report, SaveToFile) {
  ResetExportState();
  EXPECT_EQ(SaveInformationFile(""), 0);
  EXPECT_EQ(SaveInformationFile("/nonexistent-dir/info.txt"), 0);
  char path[] = "/tmp/dla_reportXXXXXX";
  int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  close(fd);
  EXPECT_EQ(SaveInformationFile(path), 1);
  FILE *fp = fopen(path, "r");
  ASSERT_NE(fp, nullptr);
  char buf[2048];
  size_t n = fread(buf, 1, sizeof(buf), fp);
  fclose(fp);
  unlink(path);
  EXPECT_EQ(std::string(buf, n), std::string(kSettingsOneRoot) +
                                     "Number of particles: 0\n"
                                     "Current radius: 0\n");
}
