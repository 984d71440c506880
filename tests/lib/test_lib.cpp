// The window dumps' TGA writer (run-length coded, 24 bits): its packets, its
// header and its row order; the dumps' names and numbers are tests/gui/dumps.sh's.
// (The rest of the library is tested through its users.)
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
BYTES Row(const std::vector<PIX> &p) {
  BYTES row = Pixels(p);
  std::string s = Capture([&](FILE *fp) { WriteTGACompressedRow(fp, row.data(), (int)p.size(), 3); });
  return BYTES(s.begin(), s.end());
}
BYTES Image(const std::vector<PIX> &p, int w, int h) {
  BYTES px = Pixels(p);
  std::string s = Capture([&](FILE *fp) { Write_Bitmap(fp, px.data(), w, h, BITMAP_TGARLE24); });
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
}

TEST(Bitmap, HeaderAndRowsFromTheBottom) {
  EXPECT_EQ(Image({A}, 1, 1),
            BYTES({0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24, 0, 0x80, 30, 20, 10}));
  BYTES out = Image(std::vector<PIX>(600, A), 300, 2);
  EXPECT_EQ(BYTES(out.begin() + 12, out.begin() + 18), BYTES({0x2c, 1, 2, 0, 24, 0}));  // 300 x 2
  // Rows A B over C D, as glReadPixels gives them (bottom row first): written in that order, for an origin at the bottom.
  BYTES body = Image({A, B, C, D}, 2, 2);
  EXPECT_EQ(BYTES(body.begin() + 18, body.end()), Packets({{0x01, {A, B}}, {0x01, {C, D}}}));
}

}  // namespace
