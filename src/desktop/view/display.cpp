#include "desktop/view/display.h"
#include "desktop/app/desktop.h"

#include <GL/gl.h>
#include <GL/glut.h>

#include "app/simulation.h"
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
  DrawExtras(sim);
  DrawInfo();
  CalcBoxCount(BOXCOUNT_GOON, BOXCOUNT_DRAW);
  DrawStatistics(0);
}

static void DrawMono(void) {
  ClearBuffer(GL_BACK);
  EYEVIEW view = EyeView(sim, EYE_MONO);
  LookThrough(sim, &view);
  DrawSTL(sim, sim.options.stldrawmode, STL_DRAW);
  DrawDLA(sim, sim.options.dladrawmode);
}

// Both eyes: side by side in one back buffer, or each in its own. The
// aggregate goes before the surface here, unlike mono, and the right eye
// gets its overlays at once; the left eye's come after, with the mono ones.
static void DrawStereo(void) {
  int dual = sim.camera.stereo == STEREO_DUAL;
  ClearBuffer(dual ? GL_BACK : GL_BACK_RIGHT);
  EYEVIEW view = EyeView(sim, EYE_RIGHT);
  LookThrough(sim, &view);
  DrawDLA(sim, sim.options.dladrawmode);
  DrawSTL(sim, sim.options.stldrawmode, STL_DRAW);
  DrawOverlays();

  if (!dual) ClearBuffer(GL_BACK_LEFT);
  view = EyeView(sim, EYE_LEFT);
  LookThrough(sim, &view);
  DrawDLA(sim, sim.options.dladrawmode);
  DrawSTL(sim, sim.options.stldrawmode, STL_DRAW);
}

void HandleDisplay(void) {
  FrameCamera(sim);
  if (sim.camera.stereo == STEREO_MONO)
    DrawMono();
  else
    DrawStereo();
  DrawOverlays();

  if (sim.options.record || sim.options.windowdump) {
    WindowDump("", sim.camera.screenwidth, sim.camera.screenheight, sim.camera.stereo == STEREO_ACTIVE,
               BITMAP_TGARLE24);
    sim.options.windowdump = 0;  // record stays on until r is pressed again
  }
  glutSwapBuffers();
}
