#include "desktop/view/display.h"

#include <GL/gl.h>
#include <GL/glut.h>

#include "app/records.h"
#include "desktop/view/boxcount_gl.h"
#include "desktop/view/overlay_gl.h"
#include "gl/view/scene.h"
#include "gl/view/windowdump.h"
#include "lib/bitmap.h"
#include "view/camera.h"

static void ClearBuffer(GLenum buffer) {
  glDrawBuffer(buffer);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

// Extras, information, the boxes of a running count and the statistics.
static void DrawOverlays(void) {
  DrawExtras();
  DrawInfo();
  CalcBoxCount(BOXCOUNT_GOON, BOXCOUNT_DRAW);
  DrawStatistics(0);
}

static void DrawMono(void) {
  ClearBuffer(GL_BACK);
  EYEVIEW view = EyeView(EYE_MONO);
  LookThrough(&view);
  DrawSTL(options.stldrawmode, STL_DRAW);
  DrawDLA(options.dladrawmode);
}

// Both eyes: side by side in one back buffer, or each in its own. The
// aggregate goes before the surface here, unlike mono, and the right eye
// gets its overlays at once; the left eye's come after, with the mono ones.
static void DrawStereo(void) {
  int dual = camera.stereo == STEREO_DUAL;
  ClearBuffer(dual ? GL_BACK : GL_BACK_RIGHT);
  EYEVIEW view = EyeView(EYE_RIGHT);
  LookThrough(&view);
  DrawDLA(options.dladrawmode);
  DrawSTL(options.stldrawmode, STL_DRAW);
  DrawOverlays();

  if (!dual) ClearBuffer(GL_BACK_LEFT);
  view = EyeView(EYE_LEFT);
  LookThrough(&view);
  DrawDLA(options.dladrawmode);
  DrawSTL(options.stldrawmode, STL_DRAW);
}

void HandleDisplay(void) {
  FrameCamera();
  if (camera.stereo == STEREO_MONO)
    DrawMono();
  else
    DrawStereo();
  DrawOverlays();

  if (options.record || options.windowdump) {
    WindowDump("", camera.screenwidth, camera.screenheight, camera.stereo == STEREO_ACTIVE, BITMAP_TGARLE24);
    options.windowdump = 0;  // record stays on until r is pressed again
  }
  glutSwapBuffers();
}
