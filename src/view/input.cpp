#include "view/input.h"

#include <GL/glut.h>
#include <stdlib.h>  // exit()

#include "app/records.h"
#include "view/camera.h"
#include "view/menus.h"

static int ShiftHeld(void) { return glutGetModifiers() == GLUT_ACTIVE_SHIFT; }

void HandleKeyboard(unsigned char key, int x, int y) {
  interfacestate.shift = ShiftHeld();
  switch (key) {
    case 27:
    case 'q':
    case 'Q':
      exit(0);
    case 'h':
    case 'H':
      CameraHome();
      break;
    case '+':
    case '=':
      ZoomCamera(1);
      break;
    case '-':
    case '_':
      ZoomCamera(0);
      break;
    case '.':
    case '>':
      DollyCamera(1);
      break;
    case ',':
    case '<':
      DollyCamera(0);
      break;
    case '[':
      RotateCamera(0, 0, -0.02);
      break;
    case ']':
      RotateCamera(0, 0, 0.02);
      break;
    case 'a':
      options.autospin++;
      break;
    case 'A':
      options.autospin--;
      break;
    case 'r':
    case 'R':
      options.record = !options.record;
      break;
    case 'w':
    case 'W':
      options.windowdump = !options.windowdump;
      break;
  }
}

void HandleSpecialKeyboard(int key, int x, int y) {
  interfacestate.shift = ShiftHeld();
  switch (key) {
    case GLUT_KEY_F1:
      HandleMainMenu(10);
      break;
    case GLUT_KEY_F2:
      HandleMainMenu(11);
      break;
    case GLUT_KEY_F3:
      HandleMainMenu(12);
      break;
    case GLUT_KEY_F4:
      HandleMainMenu(13);
      break;
    case GLUT_KEY_F5:
      HandleMainMenu(14);
      break;
    // With shift held the arrows do nothing at all.
    case GLUT_KEY_LEFT:
      if (!interfacestate.shift) RotateCamera(-0.02, 0, 0);
      break;
    case GLUT_KEY_RIGHT:
      if (!interfacestate.shift) RotateCamera(0.02, 0, 0);
      break;
    case GLUT_KEY_UP:
      if (!interfacestate.shift) RotateCamera(0, 0.02, 0);
      break;
    case GLUT_KEY_DOWN:
      if (!interfacestate.shift) RotateCamera(0, -0.02, 0);
      break;
  }
}

void HandleMouse(int button, int state, int x, int y) {
  interfacestate.shift = ShiftHeld();
  if (state == GLUT_DOWN) {
    if (button == GLUT_MIDDLE_BUTTON) interfacestate.button = 1;
    if (button == GLUT_LEFT_BUTTON) interfacestate.button = 0;
  }
  interfacestate.mousex = x;
  interfacestate.mousey = y;
}

void HandleMouseMotion(int x, int y) {
  double dx = x - interfacestate.mousex;
  double dy = y - interfacestate.mousey;
  if (interfacestate.button == 1 && !interfacestate.shift) {
    RotateCamera(0, 0, dx / 200);  // roll follows horizontal motion only
  } else if (interfacestate.button == 0 && !interfacestate.shift) {
    RotateCamera(dx / -100, dy / -100, 0);
  }
  interfacestate.mousex = x;
  interfacestate.mousey = y;
}

void HandlePassiveMotion(int x, int y) {
  interfacestate.mousex = x;
  interfacestate.mousey = y;
}

// The display sets viewport and projection afresh every frame.
void HandleReshape(int w, int h) {
  camera.screenwidth = w;
  camera.screenheight = h;
}
