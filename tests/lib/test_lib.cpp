// The TGA writer of the window dumps: run-length packets, headers, row
// order and the dump names. (The rest of the library is tested through its
// users: colours in tests/view, geometry through growth and the surface.)
#include <unistd.h>

#include <vector>

#include "lib/bitmap.h"
#include "test_util.h"

namespace {

typedef std::vector<unsigned char> BYTES;
struct PIX {
  unsigned char r, g, b, a;
};
const PIX A = {10, 20, 30, 255}, B = {40, 50, 60, 255}, C = {70, 80, 90, 255}, D = {1, 2, 3, 4};
PIX Distinct(int i) { return {(unsigned char)(i & 255), (unsigned char)(i >> 8), 7, 255}; }
BYTES Pixels(const std::vector<PIX> &p) {
  BYTES out;
  for (const PIX &x : p) out.insert(out.end(), {x.r, x.g, x.b, x.a});
  return out;
}
BYTES Row(const std::vector<PIX> &p, int bpp = 3) {
  BYTES row = Pixels(p);
  std::string s = Capture([&](FILE *fp) { WriteTGACompressedRow(fp, row.data(), (int)p.size(), bpp); });
  return BYTES(s.begin(), s.end());
}
BYTES Image(const std::vector<PIX> &p, int w, int h, int format) {
  BYTES px = Pixels(p);
  std::string s = Capture([&](FILE *fp) { Write_Bitmap(fp, px.data(), w, h, format); });
  return BYTES(s.begin(), s.end());
}
// Packets: each a header byte then its pixels, blue green red.
BYTES Packets(std::initializer_list<std::pair<int, std::vector<PIX>>> packets) {
  BYTES out;
  for (auto &p : packets) {
    out.push_back((unsigned char)p.first);
    for (const PIX &x : p.second) out.insert(out.end(), {x.b, x.g, x.r});
  }
  return out;
}

TEST(Bitmap, RunLengthPacketsOfRows) {
  EXPECT_EQ(Row(std::vector<PIX>(300, A)), Packets({{0xff, {A}}, {0xff, {A}}, {0x80 + 43, {A}}}));
  std::vector<PIX> all;
  for (int i = 0; i < 300; i++) all.push_back(Distinct(i));
  EXPECT_EQ(Row(all), Packets({{127, {all.begin(), all.begin() + 128}},
                               {127, {all.begin() + 128, all.begin() + 256}},
                               {43, {all.begin() + 256, all.end()}}}));
  // 129 different: the last written with pixel 127's value, carried over from the full packet.
  all.resize(129);
  EXPECT_EQ(Row(all), Packets({{127, {all.begin(), all.begin() + 128}}, {0x80, {all[127]}}}));
  std::vector<PIX> runs(128, A);
  runs.insert(runs.end(), {B, A, A});
  EXPECT_EQ(Row(runs), Packets({{0xff, {A}}, {0x82, {A}}}));
  EXPECT_EQ(Row({A, A, B}), Packets({{0x81, {A}}, {0x80, {B}}}));
  EXPECT_EQ(Row({A, B, B}), Packets({{0x00, {A}}, {0x81, {B}}}));
  EXPECT_EQ(Row({A, B, C, C, D}), Packets({{0x01, {A, B}}, {0x81, {C}}, {0x80, {D}}}));
  EXPECT_EQ(Row({A, B, A, A, A, B}), Packets({{0x01, {A, B}}, {0x82, {A}}, {0x80, {B}}}));
  PIX p = {1, 2, 3, 10}, q = {1, 2, 3, 20};  // alpha splits packets; written at 32 bit only
  EXPECT_EQ(Row({p, q, q}, 4), BYTES({0x00, 3, 2, 1, 10, 0x81, 3, 2, 1, 20}));
  EXPECT_EQ(Row({p, q, q}), Packets({{0x00, {p}}, {0x81, {q}}}));
}

TEST(Bitmap, HeadersRowOrderAndDumpNames) {
  struct {
    int code, type, bits, descriptor;
    size_t size;
  } cases[] = {{1, 2, 24, 0, 18 + 600 * 3}, {12, 10, 24, 0, 18 + 2 * 3 * 4}, {13, 10, 32, 8, 18 + 2 * 3 * 5}};
  for (auto c : cases)
    for (int sign : {1, -1}) {
      BYTES out = Image(std::vector<PIX>(600, PIX{0, 0, 0, 0}), 300, 2, sign * c.code);
      EXPECT_EQ(BYTES(out.begin(), out.begin() + 18),
                BYTES({0, 0, (unsigned char)c.type, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x2c, 1, 2, 0, (unsigned char)c.bits,
                       (unsigned char)c.descriptor}));
      EXPECT_EQ(out.size(), c.size);
    }
  EXPECT_EQ(Image({A}, 1, 1, 12), BYTES({0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24, 0, 0x80, 30, 20, 10}));
  // Rows A B over C D: a positive code writes buffer row 0 first, a negative the last.
  BYTES body = Image({A, B, C, D}, 2, 2, 11);
  EXPECT_EQ(BYTES(body.begin() + 18, body.end()),
            BYTES({30, 20, 10, 255, 60, 50, 40, 255, 90, 80, 70, 255, 3, 2, 1, 4}));
  body = Image({A, B, C, D}, 2, 2, -12);
  EXPECT_EQ(BYTES(body.begin() + 18, body.end()), Packets({{0x01, {C, D}}, {0x01, {A, B}}}));
  EXPECT_STREQ(DumpExtension(-12), "tga");
  char name[DUMPNAMESIZE];
  EXPECT_EQ(DumpFileName(name, sizeof(name), "", "L_", 12, "tga"), 1);
  EXPECT_STREQ(name, "L_0012.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "shot", "R_", 3, "tga"), 1);
  EXPECT_STREQ(name, "R_shot.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "abcdefghijklmnopqrstuvwxyz01", "", 0, "tga"), 0);  // 32 do not fit
  // Numbered dumps take the first free number; a given name is overwritten.
  Scratch s;
  char old[4096];
  ASSERT_NE(getcwd(old, sizeof(old)), nullptr);
  ASSERT_EQ(chdir(s.dir.c_str()), 0);
  for (const char *f : {"0000.tga", "0001.tga", "0003.tga", "L_0002.tga"}) WriteFile(f, "");
  int counter = 0;
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "", &counter, "tga"), 1);
  EXPECT_STREQ(name, "0002.tga");
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "L_", &counter, "tga"), 1);
  EXPECT_STREQ(name, "L_0003.tga");
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "shot", "", &counter, "tga") * 10 + counter, 13);
  ASSERT_EQ(chdir(old), 0);
}

}  // namespace
