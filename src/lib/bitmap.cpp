// Image writer: TGA (plain and run-length, 24 and 32 bit) and binary PPM.
#include "lib/bitmap.h"

#include <stdlib.h>  // malloc(), free(), abs()
#include <string.h>  // memcmp()

namespace {

int SamePixel(const unsigned char *a, const unsigned char *b) { return memcmp(a, b, 4) == 0; }

// TGA order: blue, green, red, then alpha for 32 bit.
void PutPixel(FILE *fp, const unsigned char *p, int bytesperpixel) {
  putc(p[2], fp);
  putc(p[1], fp);
  putc(p[0], fp);
  if (bytesperpixel == 4)
    putc(p[3], fp);
}

void PutShort(FILE *fp, int n) {
  putc(n & 0xff, fp);
  putc((n >> 8) & 0xff, fp);
}

void WriteTGAHeader(FILE *fp, int width, int height, int compressed, int alpha) {
  putc(0, fp);                     // no identification field
  putc(0, fp);                     // no colour map
  putc(compressed ? 10 : 2, fp);   // true colour, run-length or plain
  for (int i = 0; i < 5; i++)      // colour map specification
    putc(0, fp);
  PutShort(fp, 0);                 // origin
  PutShort(fp, 0);
  PutShort(fp, width);
  PutShort(fp, height);
  putc(alpha ? 32 : 24, fp);
  putc(alpha ? 8 : 0, fp);         // alpha bits; origin bottom left
}

}  // namespace

unsigned char *Create_Bitmap(int width, int height) {
  if (width <= 0 || height <= 0)
    return NULL;
  return (unsigned char *)malloc((size_t)width * (size_t)height * 4);
}

void Destroy_Bitmap(unsigned char *pixels) { free(pixels); }

void WriteTGACompressedRow(FILE *fp, unsigned char *row, int width, int bytesperpixel) {
  // The reference is the pixel a run repeats, or the last pixel taken into a
  // raw packet. After a 128-pixel packet it is carried over to the next one
  // unchanged (the last pixel of the packet), which the output depends on.
  const unsigned char *ref = row;
  const unsigned char *after = NULL;  // the pixel that ended a run, if one did
  int s = 0;
  while (s < width) {
    int count = 1;
    int run = 1;
    int emit = 0;  // 0 still collecting
    after = NULL;
    while (!emit) {
      if (run) {
        if (s + count < width && SamePixel(row + 4 * (s + count), ref)) {
          count++;
          if (count == 128 || s + count >= width)
            emit = 1;
        } else if (s + count < width) {
          if (count >= 2) {
            after = row + 4 * (s + count);
            emit = 1;
          } else {
            run = 0;
            count = 2;
            ref = row + 4 * (s + 1);
            if (s + 2 >= width)
              emit = 1;
          }
        } else {
          emit = 1;  // a single pixel at the end of the row
        }
      } else {
        if (SamePixel(row + 4 * (s + count), ref)) {
          count--;  // leave the two equal pixels to start the next packet
          emit = 1;
        } else {
          count++;
          ref = row + 4 * (s + count - 1);
          if (count == 128 || s + count >= width)
            emit = 1;
        }
      }
    }
    int n = count < width - s ? count : width - s;
    if (run) {
      putc((n - 1) + 128, fp);
      PutPixel(fp, ref, bytesperpixel);
      if (after != NULL)
        ref = after;  // the last pixel read becomes the reference
    } else {
      putc(n - 1, fp);
      for (int i = 0; i < n; i++)
        PutPixel(fp, row + 4 * (s + i), bytesperpixel);
    }
    s += n;
  }
}

void Write_Bitmap(FILE *fp, unsigned char *pixels, int width, int height, int format) {
  int code = abs(format);
  if (code != BITMAP_TGA24 && code != BITMAP_PPM && code != BITMAP_TGA32 && code != BITMAP_TGARLE24 &&
      code != BITMAP_TGARLE32)
    return;  // the other formats of the table are not written by this library
  int rle = code == BITMAP_TGARLE24 || code == BITMAP_TGARLE32;
  int alpha = code == BITMAP_TGA32 || code == BITMAP_TGARLE32;
  if (code == BITMAP_PPM)
    fprintf(fp, "P6\n%d %d\n255\n", width, height);
  else
    WriteTGAHeader(fp, width, height, rle, alpha);
  for (int i = 0; i < height; i++) {
    unsigned char *row = pixels + (size_t)4 * width * (format > 0 ? i : height - 1 - i);
    if (code == BITMAP_PPM) {
      for (int j = 0; j < width; j++) fwrite(row + 4 * j, 1, 3, fp);
    } else if (rle) {
      WriteTGACompressedRow(fp, row, width, alpha ? 4 : 3);
    } else {
      for (int j = 0; j < width; j++) PutPixel(fp, row + 4 * j, alpha ? 4 : 3);
    }
  }
}

const char *DumpExtension(int format) {
  switch (abs(format)) {
    case BITMAP_TGA24:
    case BITMAP_TGA32:
    case BITMAP_TGARLE24:
    case BITMAP_TGARLE32:
      return "tga";
    case BITMAP_PPM:
      return "ppm";
    case 3:
      return "rgb";
    case 4:
    case 8:
      return "raw";
    case 5:
      return "tif";
    case 6:
    case 7:
      return "eps";
    case 9:
      return "bmp";
  }
  return NULL;
}

int DumpFileName(char *name, int size, const char *basename, const char *prefix, int counter,
                 const char *extension) {
  if (extension == NULL || size <= 0)
    return 0;
  int n;
  if (basename[0] == '\0')
    n = snprintf(name, size, "%s%04d.%s", prefix, counter, extension);
  else
    n = snprintf(name, size, "%s%s.%s", prefix, basename, extension);
  return n >= 0 && n < size;
}

int NextDumpFileName(char *name, int size, const char *basename, const char *prefix,
                     int *counter, const char *extension) {
  if (!DumpFileName(name, size, basename, prefix, *counter, extension))
    return 0;
  if (basename[0] != '\0')
    return 1;  // a given name is overwritten without a check
  FILE *fp;
  while ((fp = fopen(name, "r")) != NULL) {
    fclose(fp);
    (*counter)++;
    if (!DumpFileName(name, size, basename, prefix, *counter, extension))
      return 0;
  }
  return 1;
}
