#include "lib/png.h"

#include <string.h>  // memcpy()

#include <vector>

static unsigned long Crc32(unsigned long crc, const unsigned char *p, size_t n) {
  static unsigned long table[256];
  if (table[1] == 0)
    for (unsigned long k = 0; k < 256; k++) {
      unsigned long c = k;
      for (int b = 0; b < 8; b++) c = c & 1 ? 0xedb88320UL ^ (c >> 1) : c >> 1;
      table[k] = c;
    }
  crc ^= 0xffffffffUL;
  for (size_t i = 0; i < n; i++) crc = table[(crc ^ p[i]) & 0xff] ^ (crc >> 8);
  return crc ^ 0xffffffffUL;
}

static void Put32(unsigned char *p, unsigned long v) {
  p[0] = (unsigned char)(v >> 24);
  p[1] = (unsigned char)(v >> 16);
  p[2] = (unsigned char)(v >> 8);
  p[3] = (unsigned char)v;
}

// One chunk: length, type, data, CRC of type and data.
static int WriteChunk(FILE *fp, const char *type, const unsigned char *data, size_t n) {
  std::vector<unsigned char> body(4 + n);
  memcpy(body.data(), type, 4);
  if (n > 0) memcpy(body.data() + 4, data, n);
  unsigned char len[4], crc[4];
  Put32(len, (unsigned long)n);
  Put32(crc, Crc32(0, body.data(), body.size()));
  return fwrite(len, 1, 4, fp) == 4 && fwrite(body.data(), 1, body.size(), fp) == body.size() &&
         fwrite(crc, 1, 4, fp) == 4;
}

int WritePNG(FILE *fp, const unsigned char *rgb, int width, int height) {
  if (width < 1 || height < 1 || width > 65535 || height > 65535) return 0;
  static const unsigned char signature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
  unsigned char header[13] = {0};
  Put32(header, (unsigned long)width);
  Put32(header + 4, (unsigned long)height);
  header[8] = 8;  // bits per sample
  header[9] = 2;  // RGB; compression, filter and interlace methods 0

  // Each row behind filter type 0 (none).
  size_t rowbytes = 3 * (size_t)width;
  std::vector<unsigned char> raw((rowbytes + 1) * height);
  for (int y = 0; y < height; y++) {
    raw[y * (rowbytes + 1)] = 0;
    memcpy(&raw[y * (rowbytes + 1) + 1], rgb + y * rowbytes, rowbytes);
  }

  // zlib stream: header (deflate, 32K window, no preset dictionary), stored
  // blocks of at most 65535 bytes, Adler-32 of the raw data.
  std::vector<unsigned char> z;
  z.reserve(raw.size() + raw.size() / 65535 * 5 + 16);
  z.push_back(0x78);
  z.push_back(0x01);
  size_t pos = 0;
  do {
    size_t n = raw.size() - pos < 65535 ? raw.size() - pos : 65535;
    z.push_back(pos + n == raw.size() ? 1 : 0);  // BFINAL on the last block, BTYPE 00
    z.push_back((unsigned char)(n & 0xff));
    z.push_back((unsigned char)(n >> 8));
    z.push_back((unsigned char)(~n & 0xff));
    z.push_back((unsigned char)((~n >> 8) & 0xff));
    z.insert(z.end(), raw.begin() + pos, raw.begin() + pos + n);
    pos += n;
  } while (pos < raw.size());
  unsigned long a = 1, b = 0;
  for (unsigned char c : raw) {
    a = (a + c) % 65521;
    b = (b + a) % 65521;
  }
  unsigned char adler[4];
  Put32(adler, b << 16 | a);
  z.insert(z.end(), adler, adler + 4);

  return fwrite(signature, 1, 8, fp) == 8 && WriteChunk(fp, "IHDR", header, 13) &&
         WriteChunk(fp, "IDAT", z.data(), z.size()) && WriteChunk(fp, "IEND", NULL, 0);
}
