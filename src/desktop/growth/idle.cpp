#include "desktop/growth/idle.h"
#include "desktop/app/desktop.h"

#include <GL/glut.h>

#include "app/simulation.h"
#include "desktop/forms/forms.h"
#include "desktop/view/boxcount_gl.h"
#include "growth/idle.h"
#include "view/camera.h"

void HandleIdle(void) {
  // The time of the last redisplay request; below 0 until the first call.
  static double tstart = -1;

  IdleGrowth(sim);
  if (sim.options.calcstats) {
    CalcBoxCount(BOXCOUNT_GOON, BOXCOUNT_STEP);  // one box per call; no growth meanwhile
  }

  int due = IdleDue(sim.options.framerate, GetRunTime(), &tstart);
  if (due & IDLE_POLLFORMS) {
    FL_OBJECT *obj = NULL;
    // Polling only when a form is shown keeps idle calls cheap.
    if (sliceformvisible || stlformvisible || settingformvisible || messageformvisible)
      obj = fl_check_forms();
    CheckSliceForm(obj);
    CheckMessageForm(obj);
    CheckSettingForm(obj);
    CheckSTLForm(obj);
  }
  if (due & IDLE_REDISPLAY) {
    glutPostRedisplay();
    RotateCamera(sim, sim.options.autospin / 200.0, 0, 0);
  }
}

void HandleVisibility(int state) {
  if (state == GLUT_VISIBLE)
    glutIdleFunc(HandleIdle);
  else
    glutIdleFunc(NULL);
}
