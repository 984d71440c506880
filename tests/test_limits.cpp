// The limits of real use: a million roots, paths longer than the 256-byte
// name buffers, and files aimed at directories that do not exist or cannot
// be written. (Ten million facets: the STL reader's count in tests/surface.)
#include <sys/stat.h>

#include "export/model.h"
#include "export/report.h"
#include "surface/stl.h"
#include "test_util.h"

namespace {

using Limits = Fresh;

TEST_F(Limits, AMillionRoots) {
  Scratch s;
  FILE *fp = fopen((s / "roots.txt").c_str(), "w");
  for (int i = 0; i < 1000000; i++) fprintf(fp, "%d %d 0.5\n", i % 1000, -(i / 1000));
  fclose(fp);
  FILEMESSAGE msg = {};
  ASSERT_EQ(ReadRootsFile(sim, (s / "roots.txt").c_str(), &msg), 1);
  InitialiseGrowth(sim);  // a restart keeps them all as roots
  ASSERT_EQ(sim.ncells, 1000000);
  EXPECT_XYZ(sim.roots[123456], 456, -123, 0.5, 0);
  EXPECT_DOUBLE_EQ(sim.growthstate.radius, sqrt(999.0 * 999.0 * 2 + 0.25));
}

TEST_F(Limits, LongPathsAndUnwritableDirectories) {
  Scratch s;
  std::string path = s.dir;
  while (path.size() < 300) mkdir((path += "/" + std::string(100, 'd')).c_str(), 0755);
  path += "/in.txt";
  FILEMESSAGE msg = {};
  EXPECT_EQ(ReadRootsFile(sim, path.c_str(), &msg) + ReadSTLFile(sim, path.c_str(), &msg), 0);
  EXPECT_EQ(std::string(msg.line3), path.substr(0, 255));
  WriteFile(path, "solid t\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n");
  EXPECT_NE(DebugOutput(sim, [&] { EXPECT_EQ(ReadSTLFile(sim, path.c_str(), &msg), 1); }).find(path + "\n"),
            std::string::npos);
  WriteFile(path, "1 2 3\n");
  sim.growthstate.rootdistribution = ROOT_SPHERICAL;
  EXPECT_EQ(ReadRootsFile(sim, path.c_str(), &msg), 1);
  EXPECT_EQ(std::string(sim.growthstate.rootname), path.substr(0, 127));
  WriteFile(s / "plain", "");
  for (std::string d : {s / "missing/deeper", s / "plain", std::string("/proc")}) {
    std::string out = d + "/out.txt";
    testing::internal::CaptureStderr();
    for (int format = MODEL_VRML; format <= MODEL_GEOMPOINTS; format++)
      EXPECT_EQ(SaveModelFile(sim, out.c_str(), format, 1), 0);
    EXPECT_EQ(SaveInformationFile(sim, out.c_str()), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // saving never reports
    EXPECT_EQ(ReadFile(out), "(missing)");
  }
}

}  // namespace
