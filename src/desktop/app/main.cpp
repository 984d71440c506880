// dla3d: start-up, command line and callback wiring.
#include <GL/glut.h>
#include <forms.h>
#include <locale.h>  // setlocale()
#include <stdio.h>
#include <stdlib.h>  // exit()

#include "app/cmdline.h"
#include "app/simulation.h"
#include "app/startup.h"
#include "desktop/app/desktop.h"
#include "desktop/forms/forms.h"
#include "desktop/growth/idle.h"
#include "desktop/view/boxcount_gl.h"
#include "desktop/view/display.h"
#include "desktop/view/input.h"
#include "desktop/view/menus.h"
#include "export/statistics.h"
#include "growth/growth.h"
#include "view/camera.h"

SIMULATION sim;

// Writes the usage text to standard error and ends the process with -1.
static void GiveUsage(const char *programname) {
  WriteUsage(stderr, programname);
  exit(-1);
}

int main(int argc, char **argv) {
  // Growth first, so the aggregate holds its roots before the first frame;
  // then the camera, option and interface defaults.
  ResetProgram(sim);
  // However a box count ends, the statistics overlay is armed.
  sim.boxcountdone = BoxCountDone;
  if (ParseCommandLine(sim, argc, argv)) GiveUsage(argv[0]);

  // The toolkit sees only the program name: the command line is ours.
  int flargc = 1;
  fl_initialize(&flargc, argv, "DLA 3D", NULL, 0);
  settingform = create_form_settingform();
  stlform = create_form_stlform();
  messageform = create_form_messageform();
  sliceform = create_form_sliceform();
  fl_deactivate_object(messageform->line1);
  fl_deactivate_object(messageform->line2);
  fl_deactivate_object(messageform->line3);
  UpdateForms();

  glutInit(&argc, argv);
  if (sim.camera.stereo == 1)
    glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB | GLUT_STEREO);
  else
    glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB);
  glutCreateWindow("Diffusion Limited Aggregation");
  glutReshapeWindow(sim.camera.screenwidth, sim.camera.screenheight);
  if (sim.options.fullscreen) glutFullScreen();

  glutDisplayFunc(HandleDisplay);
  glutReshapeFunc(HandleReshape);
  CreateMenus();
  glutKeyboardFunc(HandleKeyboard);
  glutSpecialFunc(HandleSpecialKeyboard);
  glutMouseFunc(HandleMouse);
  glutMotionFunc(HandleMouseMotion);
  glutPassiveMotionFunc(HandlePassiveMotion);
  glutVisibilityFunc(HandleVisibility);
  if (sim.camera.stereo == 2) glutSetCursor(GLUT_CURSOR_NONE);
  glutIdleFunc(HandleIdle);

  // Numbers are read and written with a decimal point.
  setlocale(LC_ALL, "C");
  glutMainLoop();
  return 0;
}
