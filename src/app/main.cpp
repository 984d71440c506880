// dla3d: start-up, command line and callback wiring.
#include <GL/glut.h>
#include <forms.h>
#include <locale.h>  // setlocale()
#include <stdio.h>
#include <stdlib.h>  // exit()

#include "app/cmdline.h"
#include "app/records.h"
#include "export/statistics.h"
#include "forms/forms.h"
#include "growth/growth.h"
#include "growth/idle.h"
#include "view/boxcount_gl.h"
#include "view/camera.h"
#include "view/input.h"
#include "view/menus.h"
#include "view/render.h"

// Writes the usage text to standard error and ends the process with -1.
static void GiveUsage(const char *programname) {
  WriteUsage(stderr, programname);
  exit(-1);
}

int main(int argc, char **argv) {
  // Growth initialisation comes first, so the aggregate holds its roots
  // before the first frame.
  InitialiseGrowth();
  // However a box count ends, the statistics overlay is armed.
  boxcountdone = BoxCountDone;

  CameraHome();
  SetOptionDefaults();
  SetInterfaceDefaults();
  if (ParseCommandLine(argc, argv)) GiveUsage(argv[0]);

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
  if (camera.stereo == 1)
    glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB | GLUT_STEREO);
  else
    glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB);
  glutCreateWindow("Diffusion Limited Aggregation");
  glutReshapeWindow(camera.screenwidth, camera.screenheight);
  if (options.fullscreen) glutFullScreen();

  glutDisplayFunc(HandleDisplay);
  glutReshapeFunc(HandleReshape);
  CreateMenus();
  glutKeyboardFunc(HandleKeyboard);
  glutSpecialFunc(HandleSpecialKeyboard);
  glutMouseFunc(HandleMouse);
  glutMotionFunc(HandleMouseMotion);
  glutPassiveMotionFunc(HandlePassiveMotion);
  glutVisibilityFunc(HandleVisibility);
  if (camera.stereo == 2) glutSetCursor(GLUT_CURSOR_NONE);
  glutIdleFunc(HandleIdle);

  // Numbers are read and written with a decimal point.
  setlocale(LC_ALL, "C");
  glutMainLoop();
  return 0;
}
