#include "growth/idle.h"

#include <GL/glut.h>

#include "app/records.h"
#include "forms/forms.h"
#include "view/camera.h"

void HandleIdle(void) {
  // The time of the last redisplay request; below 0 until the first call.
  static double tstart = -1;

  if (growthstate.growing && !options.calcstats) {
    // The growth step goes here: IterateSystem() 100 times per call.
  }
  if (options.calcstats) {
    // One portion of the box count goes here: CalcBoxCount(0, 0).
  }

  if (tstart < 0) tstart = GetRunTime();
  double now = GetRunTime();

  if (now - tstart > 0.02) {
    FL_OBJECT *obj = NULL;
    // Polling only when a form is shown keeps idle calls cheap.
    if (sliceformvisible || stlformvisible || settingformvisible || messageformvisible)
      obj = fl_check_forms();
    CheckSliceForm(obj);
    CheckMessageForm(obj);
    CheckSettingForm(obj);
    CheckSTLForm(obj);
  }

  if (now - tstart > 1 / options.framerate) {
    glutPostRedisplay();
    tstart = now;
    RotateCamera(options.autospin / 200.0, 0, 0);
  }
}

void HandleVisibility(int state) {
  if (state == GLUT_VISIBLE)
    glutIdleFunc(HandleIdle);
  else
    glutIdleFunc(NULL);
}
