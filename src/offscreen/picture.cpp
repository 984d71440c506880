#include "offscreen/picture.h"

#include <GL/osmesa.h>
#include <errno.h>
#include <png.h>     // libpng: the deflate-compressed file
#include <setjmp.h>  // libpng's errors return through longjmp
#include <string.h>  // strerror()

#include <vector>

#include "app/simulation.h"
#include "gl/view/scene.h"
#include "view/camera.h"

int DrawPicture(SIMULATION &sim, unsigned char *pixels, FILE *err) {
  int width = sim.camera.screenwidth;
  int height = sim.camera.screenheight;
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
  CreateEnvironment(sim, DLADRAW_LINES);
  DrawSTL(sim, sim.options.stldrawmode, STL_REBUILD);

  // The mono frame, as the window's display draws it, less the overlays.
  FrameCamera(sim);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  EYEVIEW view = EyeView(sim, EYE_MONO);
  LookThrough(sim, &view);
  DrawSTL(sim, sim.options.stldrawmode, STL_DRAW);
  DrawDLA(sim, sim.options.dladrawmode);
  DrawExtras(sim);
  glFinish();
  int ok = glGetError() == GL_NO_ERROR;
  if (!ok) fprintf(err, "dla3d-batch: --png: OpenGL reported an error\n");
  OSMesaDestroyContext(context);
  return ok;
}

// libpng's messages go to the batch program's error stream.
static void PNGError(png_structp png, png_const_charp message) {
  fprintf((FILE *)png_get_error_ptr(png), "dla3d-batch: --png: libpng: %s\n", message);
  png_longjmp(png, 1);
}

static void PNGWarning(png_structp png, png_const_charp message) {
  fprintf((FILE *)png_get_error_ptr(png), "dla3d-batch: --png: libpng warning: %s\n", message);
}

// 8-bit RGB at libpng's default compression, the alpha byte of each pixel
// left out. Only plain data lives here, as an error jumps back past it.
static int WriteRows(FILE *fp, png_bytepp rows, int width, int height, FILE *err) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, err, PNGError, PNGWarning);
  if (png == NULL) return 0;
  png_infop info = png_create_info_struct(png);
  if (info == NULL || setjmp(png_jmpbuf(png))) {
    png_destroy_write_struct(&png, &info);
    return 0;
  }
  png_init_io(png, fp);
  png_set_IHDR(png, info, width, height, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
               PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  png_set_filler(png, 0, PNG_FILLER_AFTER);
  png_write_image(png, rows);
  png_write_end(png, NULL);
  png_destroy_write_struct(&png, &info);
  return 1;
}

int WritePicturePNG(SIMULATION &sim, const char *path, int width, int height, FILE *err) {
  sim.camera.screenwidth = width;
  sim.camera.screenheight = height;
  std::vector<unsigned char> rgba(4 * (size_t)width * height);
  if (!DrawPicture(sim, rgba.data(), err)) return 0;

  // PNG rows run from the top, glReadPixels' from the bottom.
  std::vector<png_bytep> rows(height);
  for (int y = 0; y < height; y++) rows[y] = &rgba[4 * (size_t)width * (height - 1 - y)];
  FILE *fp = fopen(path, "wb");
  if (fp == NULL) {
    fprintf(err, "dla3d-batch: --png: cannot create \"%s\": %s\n", path, strerror(errno));
    return 0;
  }
  int ok = WriteRows(fp, rows.data(), width, height, err);
  if (fclose(fp) != 0) ok = 0;
  if (!ok) fprintf(err, "dla3d-batch: --png: cannot write \"%s\"\n", path);
  return ok;
}
