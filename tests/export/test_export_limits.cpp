// Reports, exports and slices aimed at directories that do not exist or
// cannot be written: nothing is written, the routines say so, nothing ends.
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>

#include "app/records.h"
#include "export/model.h"
#include "export/report.h"
#include "growth/growth.h"
#include "limits_util.h"
#include "surface/slice.h"
#include "surface/stl.h"

namespace {

// A small aggregate: the root and a chain of three cells along x.
void SmallAggregate(void) {
  SetOptionDefaults();
  InitialiseGrowth();
  SetGrowthDefaults();
  nstltri = 0;
  UpdateSTL();
  InitialiseGrowth();
  ResetSeeds();
  for (int i = 1; i <= 3; i++) {
    XYZ p = {(double)i, 0, 0};
    AppendCell(p, 0, i - 1);
  }
}

// Directories that cannot take a new file: one that does not exist, one
// below a regular file, and /proc, which refuses new files even to root.
std::vector<std::string> Unwritable(const std::string &scratch) {
  std::string plain = scratch + "/plain";
  FILE *fp = fopen(plain.c_str(), "w");
  if (fp) fclose(fp);
  return {scratch + "/missing/deeper", plain, "/proc"};
}

}  // namespace

TEST(ExportLimits, ModelAndReportFailSilently) {
  SmallAggregate();
  std::string scratch = MakeScratchDir("export");
  for (const std::string &dir : Unwritable(scratch)) {
    std::string out = dir + "/out.txt";
    for (int format = MODEL_VRML; format <= MODEL_GEOMPOINTS; format++) {
      testing::internal::CaptureStderr();
      EXPECT_EQ(SaveModelFile(out.c_str(), format, MODEL_SEGMENTS), 0) << out << " format " << format;
      EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // saving never reports
    }
    testing::internal::CaptureStderr();
    EXPECT_EQ(SaveInformationFile(out.c_str()), 0) << out;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    struct stat st;
    EXPECT_NE(stat(out.c_str(), &st), 0) << out;
  }
  // The aggregate is unchanged by the attempts.
  EXPECT_EQ(ncells, 4);
  RemoveTree(scratch);
}

TEST(ExportLimits, SlicesIntoAnUnwritableDirectory) {
  SmallAggregate();
  std::string scratch = MakeScratchDir("slices");
  XYZ n = {1, 0, 0};
  for (const std::string &dir : Unwritable(scratch)) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(DoSliceIn(dir.c_str(), 3, n), 0) << dir;
    std::string err = testing::internal::GetCapturedStderr();
    // The first slab already fails: its message, and no later slab tried.
    EXPECT_NE(err.find("Failed to open output slice file \"" + dir + "/slice_000.txt\"\n"), std::string::npos) << err;
    EXPECT_EQ(err.find("slice_001"), std::string::npos) << err;
  }
  // A writable long directory works, past the 256-byte name buffers.
  std::string longdir = MakeLongPath(scratch, 300, "x");
  longdir = longdir.substr(0, longdir.size() - 2);
  testing::internal::CaptureStderr();
  EXPECT_EQ(DoSliceIn(longdir.c_str(), 2, n), 1);
  testing::internal::GetCapturedStderr();
  struct stat st;
  EXPECT_EQ(stat((longdir + "/slice_001.txt").c_str(), &st), 0);
  RemoveTree(scratch);
}
