#include "view/render.h"

#include <GL/glut.h>

// Until the scene is drawn: an empty frame.
void HandleDisplay(void) {
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glutSwapBuffers();
}
