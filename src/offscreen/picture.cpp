#include "offscreen/picture.h"

#include <GL/osmesa.h>
#include <errno.h>
#include <string.h>  // strerror()

#include <vector>

#include "app/records.h"
#include "gl/view/scene.h"
#include "lib/png.h"
#include "view/camera.h"

int DrawPicture(unsigned char *pixels, FILE *err) {
  int width = camera.screenwidth;
  int height = camera.screenheight;
  // The depth buffer of the window's visual under Xvfb: 32 bits, no stencil.
  // Depth ties decide which of two lines shows, so the precision matters.
  OSMesaContext context = OSMesaCreateContextExt(OSMESA_RGBA, 32, 0, 0, NULL);
  if (context == NULL) {
    fprintf(err, "dla3d-batch: --png: cannot create an OSMesa context\n");
    return 0;
  }
  if (!OSMesaMakeCurrent(context, pixels, GL_UNSIGNED_BYTE, width, height)) {
    fprintf(err, "dla3d-batch: --png: cannot draw %d x %d pixels offscreen\n", width, height);
    OSMesaDestroyContext(context);
    return 0;
  }

  // A window has drawn frames before: its first one in Lines, the default
  // mode, so a frame starts from a drawing mode's GL state, and the surface
  // list was compiled by the frame or the menu entry before.
  CreateEnvironment(DLADRAW_LINES);
  DrawSTL(options.stldrawmode, STL_REBUILD);

  // The mono frame, as the window's display draws it, less the overlays.
  FrameCamera();
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  EYEVIEW view = EyeView(EYE_MONO);
  LookThrough(&view);
  DrawSTL(options.stldrawmode, STL_DRAW);
  DrawDLA(options.dladrawmode);
  DrawExtras();
  glFinish();
  int ok = glGetError() == GL_NO_ERROR;
  if (!ok) fprintf(err, "dla3d-batch: --png: OpenGL reported an error\n");
  OSMesaDestroyContext(context);
  return ok;
}

int WritePicturePNG(const char *path, int width, int height, FILE *err) {
  camera.screenwidth = width;
  camera.screenheight = height;
  std::vector<unsigned char> rgba(4 * (size_t)width * height);
  if (!DrawPicture(rgba.data(), err)) return 0;

  // PNG rows run from the top.
  std::vector<unsigned char> rgb(3 * (size_t)width * height);
  for (int y = 0; y < height; y++) {
    const unsigned char *from = &rgba[4 * (size_t)width * (height - 1 - y)];
    unsigned char *to = &rgb[3 * (size_t)width * y];
    for (int x = 0; x < width; x++) memcpy(to + 3 * x, from + 4 * x, 3);
  }
  FILE *fp = fopen(path, "wb");
  if (fp == NULL) {
    fprintf(err, "dla3d-batch: --png: cannot create \"%s\": %s\n", path, strerror(errno));
    return 0;
  }
  int ok = WritePNG(fp, rgb.data(), width, height);
  if (fclose(fp) != 0) ok = 0;
  if (!ok) fprintf(err, "dla3d-batch: --png: cannot write \"%s\"\n", path);
  return ok;
}
