// The scene drawn offscreen through OSMesa, no X server: dla3d-batch --png.
#ifndef DLA_OFFSCREEN_PICTURE_H
#define DLA_OFFSCREEN_PICTURE_H

#include <stdio.h>
#include "app/simulation.h"

// Draws the window's mono frame without the overlays (surface, aggregate,
// extras) from the records, camera.screenwidth x camera.screenheight
// pixels, into pixels (4 bytes red, green, blue, alpha; rows from the
// bottom, as glReadPixels gives them). Returns 1, or 0 after a message to err.
// Once per process: the scene keeps its buffer objects and surface list
// from frame to frame, and each call makes a new context.
int DrawPicture(SIMULATION &sim, unsigned char *pixels, FILE *err);

// DrawPicture at width x height, written to path as an 8-bit RGB PNG by
// libpng at its default compression. Returns 1, or 0 after a message to err.
// The hook batchpicture of dla3d-batch.
int WritePicturePNG(SIMULATION &sim, const char *path, int width, int height, FILE *err);

#endif
