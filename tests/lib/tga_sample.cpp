// Writes a letter F in red on blue, with a strip of all-different pixels
// along the bottom, in every format the writer knows, for real readers to
// check: tga_sample DIR.
#include <stdio.h>
#include <string>

#include "lib/bitmap.h"

static const int W = 200, H = 120;

// The picture by its row from the top, as a reader shows it.
static void Pixel(int x, int ytop, unsigned char *p) {
  int stem = x >= 20 && x < 40 && ytop >= 10 && ytop < 110;
  int top = x >= 20 && x < 120 && ytop >= 10 && ytop < 30;
  int middle = x >= 20 && x < 90 && ytop >= 50 && ytop < 65;
  if (ytop >= 112) {
    p[0] = (unsigned char)x;
    p[1] = (unsigned char)(4 * (ytop - 112));
    p[2] = 50;
    p[3] = 200;
  } else if (stem || top || middle) {
    p[0] = 255, p[1] = 0, p[2] = 0, p[3] = 255;
  } else {
    p[0] = 0, p[1] = 0, p[2] = 255, p[3] = 128;
  }
}

int main(int argc, char **argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: tga_sample DIR\n");
    return 2;
  }
  unsigned char *pixels = Create_Bitmap(W, H);
  if (pixels == NULL)
    return 1;
  // Bottom row first, as glReadPixels fills it.
  for (int r = 0; r < H; r++)
    for (int x = 0; x < W; x++)
      Pixel(x, H - 1 - r, pixels + 4 * (r * W + x));
  const struct {
    const char *name;
    int format;
  } files[] = {{"f1.tga", 1}, {"f11.tga", 11}, {"f12.tga", 12}, {"f13.tga", 13},
               {"flipped12.tga", -12}, {"f.ppm", -2}};
  for (const auto &f : files) {
    std::string path = std::string(argv[1]) + "/" + f.name;
    FILE *fp = fopen(path.c_str(), "wb");
    if (fp == NULL) {
      perror(path.c_str());
      return 1;
    }
    Write_Bitmap(fp, pixels, W, H, f.format);
    fclose(fp);
  }
  Destroy_Bitmap(pixels);
  return 0;
}
