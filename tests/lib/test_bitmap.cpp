#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "lib/bitmap.h"

typedef std::vector<unsigned char> BYTES;

struct PIX {
  unsigned char r, g, b, a;
};

static BYTES Row(const std::vector<PIX> &pixels) {
  BYTES row;
  for (const PIX &p : pixels) row.insert(row.end(), {p.r, p.g, p.b, p.a});
  return row;
}

// Pixel i of a row in which no two pixels are alike.
static PIX Distinct(int i) { return {(unsigned char)(i & 255), (unsigned char)(i >> 8), 7, 255}; }

// A pixel as the file holds it: blue, green, red [, alpha].
static void Put(BYTES *out, PIX p, int bpp) {
  out->insert(out->end(), {p.b, p.g, p.r});
  if (bpp == 4) out->push_back(p.a);
}

static BYTES EncodeRow(const std::vector<PIX> &pixels, int bpp) {
  BYTES row = Row(pixels);
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  WriteTGACompressedRow(fp, row.data(), (int)pixels.size(), bpp);
  fclose(fp);
  BYTES out(buf, buf + len);
  free(buf);
  return out;
}

static BYTES WriteImage(BYTES pixels, int width, int height, int format) {
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  Write_Bitmap(fp, pixels.data(), width, height, format);
  fclose(fp);
  BYTES out(buf, buf + len);
  free(buf);
  return out;
}

static const PIX A = {10, 20, 30, 255}, B = {40, 50, 60, 255}, C = {70, 80, 90, 255},
                 D = {1, 2, 3, 4};

TEST(Bitmap, UniformRowIsRunsOf128) {
  std::vector<PIX> row(300, A);
  BYTES expect = {0xff, 30, 20, 10, 0xff, 30, 20, 10, 0x80 + 43, 30, 20, 10};
  EXPECT_EQ(EncodeRow(row, 3), expect);
}

TEST(Bitmap, AllDifferentRowIsRawPacketsOf128) {
  std::vector<PIX> row;
  for (int i = 0; i < 300; i++) row.push_back(Distinct(i));
  BYTES expect;
  expect.push_back(127);
  for (int i = 0; i < 128; i++) Put(&expect, Distinct(i), 3);
  expect.push_back(127);
  for (int i = 128; i < 256; i++) Put(&expect, Distinct(i), 3);
  expect.push_back(43);
  for (int i = 256; i < 300; i++) Put(&expect, Distinct(i), 3);
  EXPECT_EQ(EncodeRow(row, 3), expect);
}

TEST(Bitmap, ReferenceIsCarriedOverAfterA128PixelPacket) {
  // 129 different pixels: the last one is written with pixel 127's value.
  std::vector<PIX> row;
  for (int i = 0; i < 129; i++) row.push_back(Distinct(i));
  BYTES expect;
  expect.push_back(127);
  for (int i = 0; i < 128; i++) Put(&expect, Distinct(i), 3);
  expect.push_back(0x80);
  Put(&expect, Distinct(127), 3);
  EXPECT_EQ(EncodeRow(row, 3), expect);

  // 128 different, then B, pixel 127 again, C: B is swallowed by a run of two
  // of pixel 127's value.
  row.resize(128);
  row.push_back(B);
  row.push_back(Distinct(127));
  row.push_back(C);
  expect.resize(1 + 128 * 3);
  expect.push_back(0x81);
  Put(&expect, Distinct(127), 3);
  expect.push_back(0x80);
  Put(&expect, C, 3);
  EXPECT_EQ(EncodeRow(row, 3), expect);

  // After a run of 128 A: B, A, A comes out as a run of three A.
  row.assign(128, A);
  row.insert(row.end(), {B, A, A});
  expect = {0xff, 30, 20, 10, 0x82, 30, 20, 10};
  EXPECT_EQ(EncodeRow(row, 3), expect);

  // When the second pixel after the packet differs from its last pixel, the
  // first is written from the row: nothing is lost.
  row.assign(128, A);
  row.insert(row.end(), {A, B});
  expect = {0xff, 30, 20, 10, 0x01, 30, 20, 10, 60, 50, 40};
  EXPECT_EQ(EncodeRow(row, 3), expect);
}

TEST(Bitmap, ShortRowsByHand) {
  EXPECT_EQ(EncodeRow({A, A, B}, 3), BYTES({0x81, 30, 20, 10, 0x80, 60, 50, 40}));
  EXPECT_EQ(EncodeRow({A, B, B}, 3), BYTES({0x00, 30, 20, 10, 0x81, 60, 50, 40}));
  EXPECT_EQ(EncodeRow({A, B}, 3), BYTES({0x01, 30, 20, 10, 60, 50, 40}));
  EXPECT_EQ(EncodeRow({A, B, C}, 3), BYTES({0x02, 30, 20, 10, 60, 50, 40, 90, 80, 70}));
  EXPECT_EQ(EncodeRow({A}, 3), BYTES({0x80, 30, 20, 10}));
  // A B C C D: raw A B, run of two C, run of one D.
  EXPECT_EQ(EncodeRow({A, B, C, C, D}, 3),
            BYTES({0x01, 30, 20, 10, 60, 50, 40, 0x81, 90, 80, 70, 0x80, 3, 2, 1}));
  // A B A A A B: a raw packet ends before the two equal pixels.
  EXPECT_EQ(EncodeRow({A, B, A, A, A, B}, 3),
            BYTES({0x01, 30, 20, 10, 60, 50, 40, 0x82, 30, 20, 10, 0x80, 60, 50, 40}));
  EXPECT_TRUE(EncodeRow({}, 3).empty());
}

TEST(Bitmap, AlphaTakesPartInEqualityAtBothDepths) {
  PIX p = {1, 2, 3, 10}, q = {1, 2, 3, 20};
  // 32 bit: alpha written after blue, green, red.
  EXPECT_EQ(EncodeRow({p, q, q}, 4), BYTES({0x00, 3, 2, 1, 10, 0x81, 3, 2, 1, 20}));
  EXPECT_EQ(EncodeRow({q, q, q}, 4), BYTES({0x82, 3, 2, 1, 20}));
  // 24 bit: alpha is not written but still splits the packets.
  EXPECT_EQ(EncodeRow({p, q, q}, 3), BYTES({0x00, 3, 2, 1, 0x81, 3, 2, 1}));
  EXPECT_EQ(EncodeRow({p, q, p, q}, 3), BYTES({0x03, 3, 2, 1, 3, 2, 1, 3, 2, 1, 3, 2, 1}));
}

TEST(Bitmap, HeaderFields) {
  // 300 x 2 = 0x012c x 0x0002, little-endian.
  BYTES pixels(300 * 2 * 4, 0);
  struct {
    int code, type, bits, descriptor;
  } cases[] = {{1, 2, 24, 0}, {11, 2, 32, 8}, {12, 10, 24, 0}, {13, 10, 32, 8}};
  for (auto c : cases) {
    BYTES out = WriteImage(pixels, 300, 2, c.code);
    ASSERT_GE(out.size(), 18u);
    BYTES header(out.begin(), out.begin() + 18);
    BYTES expect = {0, 0, (unsigned char)c.type, 0, 0, 0, 0, 0, 0, 0, 0, 0,
                    0x2c, 0x01, 0x02, 0x00, (unsigned char)c.bits, (unsigned char)c.descriptor};
    EXPECT_EQ(header, expect) << "code " << c.code;
    BYTES flipped = WriteImage(pixels, 300, 2, -c.code);
    EXPECT_EQ(BYTES(flipped.begin(), flipped.begin() + 18), expect) << "code " << -c.code;
  }
  // Uncompressed sizes: header plus every pixel; nothing after it.
  EXPECT_EQ(WriteImage(pixels, 300, 2, 1).size(), 18u + 600 * 3);
  EXPECT_EQ(WriteImage(pixels, 300, 2, 11).size(), 18u + 600 * 4);
  // Compressed: each of the two black rows is runs of 128, 128, 44.
  EXPECT_EQ(WriteImage(pixels, 300, 2, 12).size(), 18u + 2 * 3 * 4);
  EXPECT_EQ(WriteImage(pixels, 300, 2, 13).size(), 18u + 2 * 3 * 5);
}

TEST(Bitmap, OnePixelImage) {
  BYTES out = WriteImage(Row({A}), 1, 1, 12);
  BYTES expect = {0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 0, 24, 0, 0x80, 30, 20, 10};
  EXPECT_EQ(out, expect);
}

TEST(Bitmap, NegativeCodesFlipTheRows) {
  // Two rows of two pixels: row 0 = A B, row 1 = C D.
  BYTES pixels = Row({A, B, C, D});
  BYTES out = WriteImage(pixels, 2, 2, 1);
  EXPECT_EQ(BYTES(out.begin() + 18, out.end()),
            BYTES({30, 20, 10, 60, 50, 40, 90, 80, 70, 3, 2, 1}));
  out = WriteImage(pixels, 2, 2, -1);
  EXPECT_EQ(BYTES(out.begin() + 18, out.end()),
            BYTES({90, 80, 70, 3, 2, 1, 30, 20, 10, 60, 50, 40}));
  out = WriteImage(pixels, 2, 2, 11);
  EXPECT_EQ(BYTES(out.begin() + 18, out.end()),
            BYTES({30, 20, 10, 255, 60, 50, 40, 255, 90, 80, 70, 255, 3, 2, 1, 4}));
  out = WriteImage(pixels, 2, 2, -12);
  EXPECT_EQ(BYTES(out.begin() + 18, out.end()),
            BYTES({0x01, 90, 80, 70, 3, 2, 1, 0x01, 30, 20, 10, 60, 50, 40}));
  out = WriteImage(pixels, 2, 2, 13);
  EXPECT_EQ(BYTES(out.begin() + 18, out.end()),
            BYTES({0x01, 30, 20, 10, 255, 60, 50, 40, 255, 0x01, 90, 80, 70, 255, 3, 2, 1, 4}));
}

TEST(Bitmap, PortablePixmapAndUnwrittenFormats) {
  BYTES pixels = Row({A, B, C, D});
  std::string head = "P6\n2 2\n255\n";
  BYTES expect(head.begin(), head.end());
  BYTES body = {10, 20, 30, 40, 50, 60, 70, 80, 90, 1, 2, 3};
  expect.insert(expect.end(), body.begin(), body.end());
  EXPECT_EQ(WriteImage(pixels, 2, 2, 2), expect);
  // -2 puts the last buffer row first: upright for a bottom-up GL buffer.
  expect.resize(head.size());
  BYTES flipped = {70, 80, 90, 1, 2, 3, 10, 20, 30, 40, 50, 60};
  expect.insert(expect.end(), flipped.begin(), flipped.end());
  EXPECT_EQ(WriteImage(pixels, 2, 2, -2), expect);
  for (int code : {0, 3, 4, 5, 6, 7, 8, 9, 10, 14, -99})
    EXPECT_TRUE(WriteImage(pixels, 2, 2, code).empty()) << "code " << code;
}

TEST(Bitmap, CreateAndDestroy) {
  unsigned char *p = Create_Bitmap(5, 3);
  ASSERT_NE(p, nullptr);
  memset(p, 0xab, 5 * 3 * 4);  // the whole buffer is usable
  Destroy_Bitmap(p);
  EXPECT_EQ(Create_Bitmap(0, 3), nullptr);
  EXPECT_EQ(Create_Bitmap(4, -1), nullptr);
}

TEST(Bitmap, DumpExtensionsAndNames) {
  for (int code : {1, 11, 12, 13, -12}) EXPECT_STREQ(DumpExtension(code), "tga");
  EXPECT_STREQ(DumpExtension(2), "ppm");
  EXPECT_STREQ(DumpExtension(3), "rgb");
  EXPECT_STREQ(DumpExtension(4), "raw");
  EXPECT_STREQ(DumpExtension(8), "raw");
  EXPECT_STREQ(DumpExtension(5), "tif");
  EXPECT_STREQ(DumpExtension(6), "eps");
  EXPECT_STREQ(DumpExtension(-7), "eps");
  EXPECT_STREQ(DumpExtension(9), "bmp");
  for (int code : {0, 10, 14, 100}) EXPECT_EQ(DumpExtension(code), nullptr);

  char name[DUMPNAMESIZE];
  EXPECT_EQ(DumpFileName(name, sizeof(name), "", "", 7, "tga"), 1);
  EXPECT_STREQ(name, "0007.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "", "L_", 12, "tga"), 1);
  EXPECT_STREQ(name, "L_0012.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "", "R_", 12345, "tga"), 1);
  EXPECT_STREQ(name, "R_12345.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "shot", "", 3, "ppm"), 1);
  EXPECT_STREQ(name, "shot.ppm");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "shot", "R_", 3, "tga"), 1);
  EXPECT_STREQ(name, "R_shot.tga");
  EXPECT_EQ(DumpFileName(name, sizeof(name), "", "", 0, NULL), 0);
  // 27 + ".tga" fits 31 characters and the terminator; one more does not.
  EXPECT_EQ(DumpFileName(name, sizeof(name), "abcdefghijklmnopqrstuvwxyz0", "", 0, "tga"), 1);
  EXPECT_EQ(DumpFileName(name, sizeof(name), "abcdefghijklmnopqrstuvwxyz01", "", 0, "tga"), 0);
}

static void Touch(const char *name) {
  FILE *fp = fopen(name, "w");
  ASSERT_NE(fp, nullptr);
  fclose(fp);
}

TEST(Bitmap, NumberedDumpsSkipExistingFiles) {
  char dir[] = "/tmp/dla_dumpXXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  char cwd[4096];
  ASSERT_NE(getcwd(cwd, sizeof(cwd)), nullptr);
  ASSERT_EQ(chdir(dir), 0);

  Touch("0000.tga");
  Touch("0001.tga");
  Touch("0003.tga");
  Touch("L_0002.tga");
  Touch("shot.tga");
  char name[DUMPNAMESIZE];
  int counter = 0;
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "", &counter, "tga"), 1);
  EXPECT_STREQ(name, "0002.tga");  // the first gap, not after the highest
  EXPECT_EQ(counter, 2);
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "L_", &counter, "tga"), 1);
  EXPECT_STREQ(name, "L_0003.tga");
  EXPECT_EQ(counter, 3);
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "R_", &counter, "tga"), 1);
  EXPECT_STREQ(name, "R_0003.tga");
  EXPECT_EQ(counter, 3);
  counter = 0;
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "", &counter, "ppm"), 1);
  EXPECT_STREQ(name, "0000.ppm");
  // A given name is overwritten and leaves the counter alone.
  counter = 5;
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "shot", "", &counter, "tga"), 1);
  EXPECT_STREQ(name, "shot.tga");
  EXPECT_EQ(counter, 5);
  EXPECT_EQ(NextDumpFileName(name, sizeof(name), "", "", &counter, NULL), 0);

  for (const char *f : {"0000.tga", "0001.tga", "0003.tga", "L_0002.tga", "shot.tga"})
    unlink(f);
  EXPECT_EQ(chdir(cwd), 0);
  rmdir(dir);
}
