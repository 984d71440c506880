// The limits of real use: a million roots, a million facets, paths longer
// than the 256-byte name buffers, and files aimed at directories that do
// not exist or cannot be written.
#include <sys/stat.h>

#include "export/model.h"
#include "export/report.h"
#include "growth/growth.h"
#include "surface/stl.h"
#include "test_util.h"

namespace {

using Limits = Fresh;

long ResidentKb(void) {
  long kb = 0;
  char line[256];
  FILE *fp = fopen("/proc/self/status", "r");
  while (fp && fgets(line, sizeof(line), fp) && sscanf(line, "VmRSS: %ld", &kb) != 1) {}
  if (fp) fclose(fp);
  return kb;
}

TEST_F(Limits, AMillionRootsAndAMillionFacets) {
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
  EXPECT_LE(sim.cells.capacity(), 2000016u);  // amortised: at most double
  fp = fopen((s / "big.stl").c_str(), "wb");  // facet i at x = i % 1000, z = i / 1000, facing +z
  uint32_t n = 1000000;
  fwrite(std::string(80, ' ').data(), 80, 1, fp);
  fwrite(&n, 4, 1, fp);
  for (uint32_t i = 0; i < n; i++) {
    float x = (float)(i % 1000), z = (float)(i / 1000), v[12] = {0, 0, 0, x, 0, z, x + 1, 0, z, x, 1, z};
    fwrite(v, 4, 12, fp);
    fwrite("\0", 2, 1, fp);
  }
  fclose(fp);
  long before = ResidentKb();
  ASSERT_EQ(ReadSTLFile(sim, (s / "big.stl").c_str(), &msg), 1);
  ASSERT_EQ(sim.nstltri, 1000000);
  EXPECT_EQ(sim.stltri[n - 1].plane.d + sim.stlmax.z, 0);
  EXPECT_LE(sim.stltri.capacity(), 2000016u);
  EXPECT_LT(ResidentKb() - before, 2 * 160 * 1024L);  // a FACET is 152 bytes
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
