#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "growth_test_util.h"
#include "surface/stl.h"

namespace {

std::string Le32(uint32_t v) {
  std::string s(4, '\0');
  for (int k = 0; k < 4; k++) s[k] = (char)((v >> (8 * k)) & 0xff);
  return s;
}

std::string Float(float f) {
  uint32_t v;
  memcpy(&v, &f, 4);
  return Le32(v);
}

std::string BinaryFacet(const float v[9]) {
  std::string s = Float(0) + Float(0) + Float(1);  // the file's normal, ignored
  for (int k = 0; k < 9; k++) s += Float(v[k]);
  return s + std::string(2, '\0');
}

std::string Header(const char *text) {
  std::string h(text);
  h.resize(80, ' ');
  return h;
}

void ResetSurface(void) {
  ResetGrowthForTest();
  CopyName(growthstate.stlname, "Sample", sizeof(growthstate.stlname));
}

int Read(const std::string &path, FILEMESSAGE *msg, std::string *err = NULL) {
  memset(msg, 0, sizeof(*msg));
  if (err) testing::internal::CaptureStderr();
  int ok = ReadSTLFile(path.c_str(), msg);
  if (err) *err = testing::internal::GetCapturedStderr();
  return ok;
}

TEST(StlRead, AsciiWithBothLoopSpellings) {
  ResetSurface();
  std::string path = WriteTempFile("a.stl",
                                   "solid test\n"
                                   "facet normal 0 0 0\n"
                                   "  outer loop\n"
                                   "    vertex 0 0 0\n"
                                   "    vertex 2 0 0\n"
                                   "    vertex 0 4 0\n"
                                   "  endloop\n"
                                   "endfacet\n"
                                   "facet normal 9 9 9\r\n"
                                   "outerloop\r\n"
                                   "vertex -1 0 1.5\r\n"
                                   "vertex -1 3 1.5\r\n"
                                   "vertex -1 0 -6\r\n"
                                   "endloop\r\n"
                                   "endfacet\n"
                                   "endsolid test\n");
  FILEMESSAGE msg;
  options.debug = 1;
  std::string err;
  EXPECT_EQ(Read(path, &msg, &err), 1);
  options.debug = 0;
  EXPECT_EQ(msg.set, 0);
  EXPECT_STREQ(growthstate.stlname, "None");
  ASSERT_EQ(nstltri, 2);
  EXPECT_EQ(stltri[0].p[2].y, 4);
  EXPECT_EQ(stltri[1].p[2].z, -6);
  // Counter-clockwise in the xy plane: +z. The second faces -x.
  EXPECT_EQ(stltri[0].n.z, 1);
  EXPECT_EQ(stltri[1].n.x, -1);
  EXPECT_DOUBLE_EQ(stltri[0].mid.x, 2.0 / 3);
  EXPECT_EQ(err,
            "ASCII stl file\n"
            "Parsing ascii stl file\n"
            "Read 2 triangle faces\n"
            "Bounds: -1 <= x <= 2\n"
            "        0 <= y <= 4\n"
            "        -6 <= z <= 1.5\n"
            "Midpoint: 0.5 2 -2.25\n" +
                path + "\n");
  remove(path.c_str());
}

TEST(StlRead, SolidDetectionLooksAtSixCharacters) {
  ResetSurface();
  FILEMESSAGE msg;
  // One blank: "solid" ends at the sixth character, ASCII with no loops.
  std::string one = WriteTempFile("one.stl", " solid x\nendsolid x\n");
  EXPECT_EQ(Read(one, &msg), 1);
  EXPECT_EQ(nstltri, 0);
  EXPECT_EQ(stlmin.x, 1e32);
  EXPECT_EQ(stlmax.z, -1e32);
  EXPECT_EQ(stlmid.x, 0);
  EXPECT_EQ(stlmid.y, 0);
  EXPECT_EQ(stlmid.z, 0);
  // Two blanks: read as binary; the text where the count should be makes
  // an implausible count.
  std::string two = WriteTempFile("two.stl", "  solid x\n" + std::string(100, 'f') + "\nendsolid\n");
  std::string err;
  options.debug = 1;
  EXPECT_EQ(Read(two, &msg, &err), 0);
  options.debug = 0;
  EXPECT_EQ(err.compare(0, 40, "Binary stl file\nParsing binary stl file\n"), 0);
  EXPECT_STREQ(msg.line2, "Read an unexpected number of faces in STL header");
  EXPECT_EQ(msg.fatal, 0);
  // A binary header that begins with "solid" is taken for ASCII.
  float v[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
  std::string bin = WriteTempFile("solidbin.stl", Header("solid binary") + Le32(1) + BinaryFacet(v));
  EXPECT_EQ(Read(bin, &msg), 1);
  EXPECT_EQ(nstltri, 0);
  remove(one.c_str());
  remove(two.c_str());
  remove(bin.c_str());
}

TEST(StlRead, BinaryFloatsWidenedExactly) {
  ResetSurface();
  float a[9] = {0.1f, 0.2f, 0.3f, 1.7f, 0.2f, 0.3f, 0.1f, 2.9f, 0.3f};
  float b[9] = {-5, 0, 0, 5, 0, 0, 0, 0, 7.25f};
  std::string path =
      WriteTempFile("bin.stl", Header("binary test") + Le32(2) + BinaryFacet(a) + BinaryFacet(b));
  FILEMESSAGE msg;
  std::string err;
  options.debug = 1;
  EXPECT_EQ(Read(path, &msg, &err), 1);
  options.debug = 0;
  ASSERT_EQ(nstltri, 2);
  EXPECT_EQ(stltri[0].p[0].x, (double)0.1f);
  EXPECT_NE(stltri[0].p[0].x, 0.1);
  EXPECT_EQ(stltri[0].p[2].y, (double)2.9f);
  EXPECT_EQ(stltri[1].p[2].z, 7.25);
  EXPECT_EQ(stlmax.z, 7.25);
  const std::string head = "Binary stl file\nParsing binary stl file\nExpecting 2 facets\nRead 2 triangle faces\n";
  EXPECT_EQ(err.substr(0, head.size()), head);
  remove(path.c_str());
}

TEST(StlRead, DegenerateFacetReplacedByTheLast) {
  ResetSurface();
  std::string text = "solid d\n";
  const char *facets[3] = {"0 0 0\nvertex 0 0 0\nvertex 1 1 1\n",  // two equal vertices
                           "0 0 0\nvertex 1 0 0\nvertex 0 1 0\n",
                           "5 5 5\nvertex 6 5 5\nvertex 5 6 5\n"};
  for (const char *f : facets) text += std::string("outer loop\nvertex ") + f + "endloop\n";
  std::string path = WriteTempFile("deg.stl", text);
  FILEMESSAGE msg;
  std::string err;
  options.debug = 1;
  EXPECT_EQ(Read(path, &msg, &err), 1);
  options.debug = 0;
  ASSERT_EQ(nstltri, 2);
  EXPECT_EQ(stltri[0].p[0].x, 5);  // the last facet moved into the gap
  EXPECT_EQ(stltri[1].p[1].x, 1);
  EXPECT_NE(err.find("Read 3 triangle faces\nRemoved 1 bad faces\n"), std::string::npos);
  remove(path.c_str());
}

TEST(StlRead, FailureRows) {
  ResetSurface();
  FILEMESSAGE msg;
  float v[9] = {0, 0, 0, 1, 0, 0, 0, 1, 0};
  std::string good = WriteTempFile("good.stl", Header("b") + Le32(1) + BinaryFacet(v));
  ASSERT_EQ(Read(good, &msg), 1);
  ASSERT_EQ(nstltri, 1);

  // Cannot open: the old surface stays.
  std::string missing = TempPath("missing.stl");
  CopyName(growthstate.stlname, "Kept", sizeof(growthstate.stlname));
  EXPECT_EQ(Read(missing, &msg), 0);
  EXPECT_STREQ(msg.line1, "File Error");
  EXPECT_STREQ(msg.line2, "Failed to read STL file");
  EXPECT_STREQ(msg.line3, missing.c_str());
  EXPECT_EQ(msg.fatal, 0);
  EXPECT_EQ(nstltri, 1);
  EXPECT_STREQ(growthstate.stlname, "Kept");

  // Header shorter than 80 bytes: fatal.
  std::string shortfile = WriteTempFile("short.stl", std::string(79, 'x'));
  EXPECT_EQ(Read(shortfile, &msg), 0);
  EXPECT_EQ(msg.fatal, 1);
  EXPECT_STREQ(msg.line1, "File Error");
  EXPECT_STREQ(msg.line2, "Failed to read an expected STL header");
  EXPECT_STREQ(msg.line3, "");

  // Count one above the limit, and a negative count seen as unsigned.
  const uint32_t counts[2] = {10000001u, 0xffffffffu};
  for (uint32_t c : counts) {
    ASSERT_EQ(Read(good, &msg), 1);
    std::string big = WriteTempFile("big.stl", Header("b") + Le32(c));
    EXPECT_EQ(Read(big, &msg), 0);
    EXPECT_EQ(msg.fatal, 0);
    EXPECT_STREQ(msg.line2, "Read an unexpected number of faces in STL header");
    EXPECT_STREQ(msg.line3, "");
    EXPECT_EQ(nstltri, 0);
    remove(big.c_str());
  }

  // Exactly the limit with no data, and a count of 0: empty surfaces.
  std::string limit = WriteTempFile("limit.stl", Header("b") + Le32(10000000u));
  EXPECT_EQ(Read(limit, &msg), 1);
  EXPECT_EQ(nstltri, 0);
  std::string zero = WriteTempFile("zero.stl", Header("b") + Le32(0));
  EXPECT_EQ(Read(zero, &msg), 1);
  EXPECT_EQ(msg.set, 0);
  EXPECT_EQ(nstltri, 0);
  EXPECT_EQ(stlmid.x, 0);

  // Truncated: the facets read completely are kept.
  float w[9] = {0, 0, 0, 3, 0, 0, 0, 3, 0};
  std::string cut = WriteTempFile("cut.stl", Header("b") + Le32(3) + BinaryFacet(v) + BinaryFacet(w).substr(0, 30));
  EXPECT_EQ(Read(cut, &msg), 1);
  ASSERT_EQ(nstltri, 1);
  EXPECT_EQ(stltri[0].p[1].x, 1);

  // A vertex line that does not scan: fatal.
  std::string bad = WriteTempFile("bad.stl", "solid s\nouter loop\nvertex 1 2 3\nvertex 1 x 3\n");
  EXPECT_EQ(Read(bad, &msg), 0);
  EXPECT_EQ(msg.fatal, 1);
  EXPECT_STREQ(msg.line1, "File Error");
  EXPECT_STREQ(msg.line2, "Error reading vertices in ascii STL file");
  EXPECT_STREQ(msg.line3, "");

  for (const std::string &p : {good, shortfile, limit, zero, cut, bad}) remove(p.c_str());
  nstltri = 0;
  UpdateSTL();
}

}  // namespace
