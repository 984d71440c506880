// A PNG writer with no library: 8-bit RGB, the image data in stored
// (uncompressed) deflate blocks. Larger files than a compressor gives, but
// the core stays on libc and the format is read by every PNG reader.
#ifndef DLA_LIB_PNG_H
#define DLA_LIB_PNG_H

#include <stdio.h>

// Writes width x height pixels of 3 bytes (red, green, blue), rows from the
// top, to an open stream. Returns 1, or 0 when a write failed or the size is
// not 1 to 65535 by 1 to 65535.
int WritePNG(FILE *fp, const unsigned char *rgb, int width, int height);

#endif
