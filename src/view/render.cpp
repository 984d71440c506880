#include "view/render.h"

#include <GL/glut.h>

// The scene is not drawn yet: an empty frame.
void HandleDisplay(void) {
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glutSwapBuffers();
}

void CreateEnvironment(int drawmode) {}
void DrawDLA(int drawmode) {}
void DrawSTL(int drawmode, int rebuild) {}
void DrawExtras(void) {}
