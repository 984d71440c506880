#include "desktop/view/overlay_gl.h"
#include "desktop/app/desktop.h"

#include <GL/glut.h>

#include "app/simulation.h"
#include "view/overlay.h"

// DrawGLText for a window of width x height pixels.
static void DrawText(int x, int y, const char *s, int width, int height) {
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glOrtho(0, width, 0, height, -1, 1);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();

  glRasterPos2i(x, y);
  int k = 0;
  for (const char *c = s; *c != '\0'; c++) {
    if (*c == '\n' || *c == '\r') {
      k++;
      glRasterPos2i(x, y - 13 * k);
    } else {
      glutBitmapCharacter(GLUT_BITMAP_8_BY_13, *c);
    }
  }

  // Nothing was pushed: these two pops underflow and change nothing. The
  // error they raise is cleared here, so that no later glGetError (a dump,
  // a debugging check) blames its own work for it.
  glPopMatrix();
  glPopMatrix();
  while (glGetError() != GL_NO_ERROR) {
  }
}

void DrawGLText(int x, int y, const char *s) {
  DrawText(x, y, s, glutGet(GLUT_WINDOW_WIDTH), glutGet(GLUT_WINDOW_HEIGHT));
}

// Each glutGet of the window size is a round trip to the X server; the size
// cannot change within one frame, so a block asks once.
static void DrawLines(const OVERLAYLINE *lines, int n) {
  int width = glutGet(GLUT_WINDOW_WIDTH);
  int height = glutGet(GLUT_WINDOW_HEIGHT);
  for (int i = 0; i < n; i++) DrawText(lines[i].x, lines[i].y, lines[i].text, width, height);
}

void DrawInfo(void) {
  if (!sim.options.showinfo) return;
  glDisable(GL_LIGHTING);
  glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
  glColor3f(1, 1, 1);
  OVERLAYLINE lines[MAXINFOLINES];
  int n = InfoLines(sim, lines, MAXINFOLINES, sim.camera.screenheight);
  DrawLines(lines, n);
}

void DrawStatistics(int duration) {
  static int maxduration = 0;
  static int decay = 0;

  if (duration >= 1) {
    maxduration = duration;
    decay = duration;
    return;
  }
  if (decay < 0) return;

  glDisable(GL_LIGHTING);
  glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
  // The very first frame divides 0 by 0: a not-a-number grey, passed on as
  // it is.
  double grey = decay / (double)maxduration;
  glColor3f((float)grey, (float)grey, (float)grey);
  OVERLAYLINE lines[MAXSTATSLINES];
  int n = StatisticsLines(sim, lines, MAXSTATSLINES, sim.camera.screenwidth, sim.camera.screenheight);
  DrawLines(lines, n);
  decay--;
}
