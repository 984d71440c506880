#include "gl/view/windowdump.h"

#include <GL/gl.h>
#include <stdio.h>

#include "lib/bitmap.h"

// Names the file (the next free number for an empty basename), reads one
// buffer of the window into pixels and writes it. A name that cannot be
// formatted (no extension for the format, or too long) counts as a file that
// cannot be opened.
static int DumpBuffer(const char *basename, const char *prefix, int *counter, GLenum buffer,
                      unsigned char *pixels, int width, int height, int format) {
  char name[DUMPNAMESIZE];
  FILE *fp = NULL;
  if (NextDumpFileName(name, DUMPNAMESIZE, basename, prefix, counter, DumpExtension(format)))
    fp = fopen(name, "wb");
  if (fp == NULL) {
    fprintf(stderr, "WindowDump - Failed to open file for window dump\n");
    return 0;
  }
  glReadBuffer(buffer);
  glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
  Write_Bitmap(fp, pixels, width, height, format);
  fclose(fp);
  return 1;
}

int WindowDump(const char *basename, int width, int height, int stereo, int format) {
  // The next automatic number; it only moves forward during a run.
  static int counter = 0;

  unsigned char *pixels = Create_Bitmap(width, height);
  if (pixels == NULL) {
    fprintf(stderr, "WindowDump - Failed to allocate memory for image\n");
    return 0;
  }
  glFinish();
  glPixelStorei(GL_PACK_ALIGNMENT, 1);

  int ok = DumpBuffer(basename, stereo ? "L_" : "", &counter, GL_BACK_LEFT, pixels, width,
                      height, format);
  if (ok && stereo)
    ok = DumpBuffer(basename, "R_", &counter, GL_BACK_RIGHT, pixels, width, height, format);
  Destroy_Bitmap(pixels);
  if (!ok) return 0;
  counter++;
  return 1;
}
