// dla3d: start-up, command line and callback wiring.
#include <GL/glut.h>
#include <locale.h>
#include <stdlib.h>

#include "app/cmdline.h"
#include "app/records.h"
#include "view/camera.h"

static void GiveUsage(const char *programname) {
  WriteUsage(stderr, programname);
  exit(-1);
}

static void HandleDisplay(void) {
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glutSwapBuffers();
}

static void HandleKeyboard(unsigned char key, int x, int y) {
  if (key == 27 || key == 'q' || key == 'Q') exit(0);
}

int main(int argc, char **argv) {
  CameraHome();
  SetOptionDefaults();
  SetInterfaceDefaults();
  if (ParseCommandLine(argc, argv)) GiveUsage(argv[0]);
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB | (camera.stereo == 1 ? GLUT_STEREO : 0));
  glutCreateWindow("Diffusion Limited Aggregation");
  glutReshapeWindow(camera.screenwidth, camera.screenheight);
  glutDisplayFunc(HandleDisplay);
  glutKeyboardFunc(HandleKeyboard);
  setlocale(LC_ALL, "C");
  glutMainLoop();
  return 0;
}
