// Image writer of the support library, and the file naming of window dumps.
//
// A pixel buffer holds width * height pixels of 4 bytes (red, green, blue,
// alpha), rows from the bottom up, as glReadPixels returns them with
// GL_RGBA / GL_UNSIGNED_BYTE and a pack alignment of 1.
#ifndef DLA_LIB_BITMAP_H
#define DLA_LIB_BITMAP_H

#include <stdio.h>  // FILE

// Size of the buffer a window dump formats its file name into.
#define DUMPNAMESIZE 32

// Image formats of Write_Bitmap (the support library's codes; the others of
// its table, 3 to 9, only have a file extension here).
enum {
  BITMAP_TGA24 = 1,
  BITMAP_PPM = 2,
  BITMAP_TGA32 = 11,
  BITMAP_TGARLE24 = 12,
  BITMAP_TGARLE32 = 13
};

// width * height * 4 bytes, uninitialised; null on failure.
unsigned char *Create_Bitmap(int width, int height);
void Destroy_Bitmap(unsigned char *pixels);

// Writes the whole image to fp. |format| selects the format: 1 TGA 24 bit,
// 11 TGA 32 bit, 12 TGA run-length 24 bit, 13 TGA run-length 32 bit,
// 2 binary PPM. A positive code writes buffer row 0 first, a negative code
// the last row first (TGA keeps a bottom-left origin in its header either
// way, so -12 gives an upside-down TGA; PPM counts from the top, so -2 gives
// an upright PPM of a GL buffer). Other codes write nothing. Write errors are
// not checked.
void Write_Bitmap(FILE *fp, unsigned char *pixels, int width, int height, int format);

// One row of 4-byte pixels as TGA run-length packets of bytesperpixel (3 or
// 4) bytes per pixel, blue green red [alpha]. Pixels compare equal only when
// all four bytes match, alpha included.
void WriteTGACompressedRow(FILE *fp, unsigned char *row, int width, int bytesperpixel);

// File extension of a format code (by its absolute value); NULL for a code
// outside the table.
const char *DumpExtension(int format);

// Formats a dump file name into name (size bytes): prefix, then counter as
// "%04d" when basename is empty or basename otherwise, then "." extension.
// The prefix is "" for a mono dump, "L_" and "R_" for the eyes of a stereo
// pair. Returns 0 when extension is NULL or the name does not fit.
int DumpFileName(char *name, int size, const char *basename, const char *prefix, int counter,
                 const char *extension);

// DumpFileName that never overwrites a numbered dump: with an empty basename,
// *counter is advanced while a file of the formatted name can be opened for
// reading. A given basename is used as it is. Returns 0 as DumpFileName.
int NextDumpFileName(char *name, int size, const char *basename, const char *prefix,
                     int *counter, const char *extension);

#endif
