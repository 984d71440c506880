// A binary STL of a million facets, and STL paths longer than the name
// buffers.
#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include "app/records.h"
#include "growth/growth.h"
#include "limits_util.h"
#include "surface/stl.h"

namespace {

void FreshSurface(void) {
  SetOptionDefaults();
  InitialiseGrowth();
  SetGrowthDefaults();
  nstltri = 0;
  UpdateSTL();
}

}  // namespace

TEST(StlLimits, AMillionBinaryFacets) {
  FreshSurface();
  std::string dir = MakeScratchDir("stl");
  std::string path = dir + "/million.stl";
  FILE *fp = fopen(path.c_str(), "wb");
  ASSERT_NE(fp, nullptr);
  const uint32_t n = 1000000;
  char header[80];
  memset(header, ' ', sizeof(header));
  memcpy(header, "binary million", 14);
  fwrite(header, 80, 1, fp);
  fwrite(&n, 4, 1, fp);
  // Facet i: a right triangle at x = i % 1000, z = i / 1000, counter-
  // clockwise seen from +z: normal (0, 0, 1).
  for (uint32_t i = 0; i < n; i++) {
    float x = (float)(i % 1000), z = (float)(i / 1000);
    float v[12] = {0, 0, 0, x, 0, z, x + 1, 0, z, x, 1, z};
    uint16_t attribute = 0;
    fwrite(v, 4, 12, fp);
    fwrite(&attribute, 2, 1, fp);
  }
  fclose(fp);

  FILEMESSAGE msg;
  memset(&msg, 0, sizeof(msg));
  long before = ResidentKb();
  ASSERT_EQ(ReadSTLFile(path.c_str(), &msg), 1);
  long after = ResidentKb();
  EXPECT_EQ(msg.set, 0);
  ASSERT_EQ(nstltri, (int)n);
  EXPECT_EQ(stlmin.x, 0.0);
  EXPECT_EQ(stlmax.x, 1000.0);
  EXPECT_EQ(stlmax.y, 1.0);
  EXPECT_EQ(stlmax.z, 999.0);
  EXPECT_EQ(stlmid.z, 499.5);
  EXPECT_EQ(stltri[n - 1].p[0].x, 999.0);
  EXPECT_EQ(stltri[n - 1].n.z, 1.0);
  EXPECT_EQ(stltri[n - 1].plane.d, -999.0);
  // A FACET is 19 doubles; amortised growth at most doubles that. The file
  // is 50 MB; the surface may take up to about 2 x 152 MB, never more.
  EXPECT_LE(stltri.capacity(), 2u * n + 16);
  if (before > 0 && after > 0) {
    EXPECT_LT(after - before, 2 * 160 * 1024L);
  }

  // Preparing it again (as every transform does) keeps every facet.
  UpdateSTL();
  EXPECT_EQ(nstltri, (int)n);
  RemoveTree(dir);
}

TEST(StlLimits, PathsLongerThanTheNameBuffers) {
  FreshSurface();
  std::string dir = MakeScratchDir("stlpath");
  std::string path = MakeLongPath(dir, 400, "surface.stl");
  ASSERT_GT(path.size(), 256u);

  FILEMESSAGE msg;
  memset(&msg, 0, sizeof(msg));
  EXPECT_EQ(ReadSTLFile(path.c_str(), &msg), 0);
  EXPECT_STREQ(msg.line1, "File Error");
  EXPECT_STREQ(msg.line2, "Failed to read STL file");
  EXPECT_EQ(strlen(msg.line3), 255u);
  EXPECT_EQ(std::string(msg.line3), path.substr(0, 255));

  FILE *fp = fopen(path.c_str(), "w");
  ASSERT_NE(fp, nullptr);
  fprintf(fp, "solid t\nouter loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n");
  fclose(fp);
  memset(&msg, 0, sizeof(msg));
  options.debug = 1;  // the path is printed whole in the debug lines
  testing::internal::CaptureStderr();
  EXPECT_EQ(ReadSTLFile(path.c_str(), &msg), 1);
  std::string err = testing::internal::GetCapturedStderr();
  options.debug = 0;
  EXPECT_EQ(nstltri, 1);
  EXPECT_STREQ(growthstate.stlname, "None");
  EXPECT_NE(err.find(path + "\n"), std::string::npos);
  RemoveTree(dir);
}
