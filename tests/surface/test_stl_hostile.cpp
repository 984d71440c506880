// Regression tests for what the fuzzer found in the STL reader, and the rule
// for binary files that end early.
#include <gtest/gtest.h>
#include <math.h>    // HUGE_VAL
#include <stdint.h>
#include <unistd.h>  // getpid()
#include <string.h>

#include <string>

#include "app/records.h"
#include "growth/growth.h"
#include "surface/stl.h"

namespace {

void FreshSurface(void) {
  SetOptionDefaults();
  InitialiseGrowth();
  SetGrowthDefaults();
  nstltri = 0;
  UpdateSTL();
}

std::string Le32(uint32_t v) {
  std::string s(4, '\0');
  for (int k = 0; k < 4; k++) s[k] = (char)((v >> (8 * k)) & 0xff);
  return s;
}

std::string Facet(float x0, float y0, float x1, float y1, float x2, float y2) {
  float v[12] = {9, 9, 9, x0, y0, 0, x1, y1, 0, x2, y2, 0};  // normal first, ignored
  return std::string((const char *)v, 48) + std::string(2, '\0');
}

int ReadBytes(const std::string &bytes, FILEMESSAGE *msg) {
  memset(msg, 0, sizeof(*msg));
  std::string copy = bytes + '\0';
  FILE *fp = fmemopen(&copy[0], bytes.size(), "r");
  int ok = ReadSTLStream(fp, "hostile.stl", msg);
  fclose(fp);
  return ok;
}

TEST(StlHostile, PartialCountReadsAsNoFacets) {
  // 81 to 83 bytes: the count is cut short. Its leftover bytes (here
  // 0xffffff, which would be a count of 16777215) must not decide anything.
  for (int extra = 0; extra <= 3; extra++) {
    FreshSurface();
    std::string bytes = std::string(80, 'h') + std::string(extra, '\xff');
    FILEMESSAGE msg;
    EXPECT_EQ(ReadBytes(bytes, &msg), 1) << extra;
    EXPECT_EQ(msg.set, 0) << extra;
    EXPECT_EQ(nstltri, 0) << extra;
    EXPECT_EQ(stlmid.x, 0);
    EXPECT_EQ(stlmin.x, 1e32);
  }
}

TEST(StlHostile, TruncatedBinaryKeepsTheCompleteFacets) {
  // The header promises the limit of ten million facets; the file holds two
  // whole facets and 30 bytes of a third.
  FreshSurface();
  std::string third = Facet(5, 5, 6, 5, 5, 6);
  std::string bytes = std::string(80, 'b') + Le32(10000000) + Facet(0, 0, 1, 0, 0, 1) +
                      Facet(0, 0, 2, 0, 0, 0.5f) + third.substr(0, 30);
  FILEMESSAGE msg;
  EXPECT_EQ(ReadBytes(bytes, &msg), 1);
  EXPECT_EQ(msg.set, 0);
  ASSERT_EQ(nstltri, 2);
  EXPECT_EQ(stltri[1].p[1].x, 2.0);
  EXPECT_EQ(stltri[1].p[2].y, 0.5);
  // Bounds from the two complete facets only: nothing of the partial third.
  EXPECT_EQ(stlmax.x, 2.0);
  EXPECT_EQ(stlmax.y, 1.0);
  EXPECT_EQ(stlmin.x, 0.0);
  // Storage follows the file, not the header.
  EXPECT_LT(stltri.size(), 1000u);

  // A record short by its attribute word alone is not a complete facet.
  FreshSurface();
  bytes = std::string(80, 'b') + Le32(3) + Facet(0, 0, 1, 0, 0, 1) + Facet(0, 0, 3, 0, 0, 3).substr(0, 49);
  EXPECT_EQ(ReadBytes(bytes, &msg), 1);
  EXPECT_EQ(nstltri, 1);
  EXPECT_EQ(stlmax.x, 1.0);
}

TEST(StlHostile, AsciiNanAndInfinityAreReadNotFatal) {
  // NaN makes every component comparison false, so VectorEqual calls such a
  // facet degenerate and it is removed; an infinite vertex next to finite
  // ones stays, with the zero normal.
  FreshSurface();
  FILEMESSAGE msg;
  std::string text =
      "solid x\n outer loop\n vertex nan nan nan\n vertex nan 1 0\n vertex 0 nan 1\n"
      " outer loop\n vertex inf 0 0\n vertex 0 1 0\n vertex 0 0 1\n";
  EXPECT_EQ(ReadBytes(text, &msg), 1);
  EXPECT_EQ(msg.set, 0);
  ASSERT_EQ(nstltri, 1);
  EXPECT_EQ(stltri[0].n.x, 0);
  EXPECT_EQ(stltri[0].n.y, 0);
  EXPECT_EQ(stltri[0].n.z, 0);
  EXPECT_EQ(stlmax.x, HUGE_VAL);
}

TEST(StlHostile, StreamAndFileGiveTheSameSurface) {
  FreshSurface();
  std::string bytes = std::string(80, 'b') + Le32(2) + Facet(0, 0, 4, 0, 0, 3) + Facet(1, 1, 2, 1, 1, 2);
  FILEMESSAGE msg;
  ASSERT_EQ(ReadBytes(bytes, &msg), 1);
  ASSERT_EQ(nstltri, 2);
  XYZ lo = stlmin, hi = stlmax;
  EXPECT_EQ(hi.x, 4.0);
  EXPECT_EQ(hi.y, 3.0);

  std::string path = std::string(getenv("TMPDIR") ? getenv("TMPDIR") : "/tmp") + "/dla_hostile_" +
                     std::to_string(getpid()) + ".stl";
  FILE *fp = fopen(path.c_str(), "wb");
  fwrite(bytes.data(), 1, bytes.size(), fp);
  fclose(fp);
  FreshSurface();
  memset(&msg, 0, sizeof(msg));
  EXPECT_EQ(ReadSTLFile(path.c_str(), &msg), 1);
  EXPECT_EQ(nstltri, 2);
  EXPECT_EQ(stlmin.x, lo.x);
  EXPECT_EQ(stlmax.y, hi.y);
  remove(path.c_str());
}

}  // namespace
