#include "desktop/view/input.h"

#include <GL/glut.h>
#include <stdlib.h>  // exit()

#include "app/records.h"
#include "desktop/view/menus.h"
#include "view/camera.h"
#include "view/menutables.h"

static int ShiftHeld(void) { return glutGetModifiers() == GLUT_ACTIVE_SHIFT; }

void HandleKeyboard(unsigned char key, int x, int y) {
  interfacestate.shift = ShiftHeld();
  switch (key) {
    case 27:  // Esc
    case 'q':
    case 'Q':
      exit(0);
    case 'h':
    case 'H':
      CameraHome();
      break;
    case '+':
    case '=':
      ZoomCamera(ZOOM_IN);
      break;
    case '-':
    case '_':
      ZoomCamera(ZOOM_OUT);
      break;
    case '.':
    case '>':
      DollyCamera(DOLLY_CLOSER);
      break;
    case ',':
    case '<':
      DollyCamera(DOLLY_AWAY);
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
      HandleMainMenu(MAINMENU_EXTRAS);
      break;
    case GLUT_KEY_F2:
      HandleMainMenu(MAINMENU_INFO);
      break;
    case GLUT_KEY_F3:
      HandleMainMenu(MAINMENU_PAUSE);
      break;
    case GLUT_KEY_F4:
      HandleMainMenu(MAINMENU_RESTART);
      break;
    case GLUT_KEY_F5:
      HandleMainMenu(MAINMENU_STATISTICS);
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
    if (button == GLUT_MIDDLE_BUTTON) interfacestate.button = DRAG_MIDDLE;
    if (button == GLUT_LEFT_BUTTON) interfacestate.button = DRAG_LEFT;
  }
  interfacestate.mousex = x;
  interfacestate.mousey = y;
}

void HandleMouseMotion(int x, int y) {
  double dx = x - interfacestate.mousex;
  double dy = y - interfacestate.mousey;
  if (interfacestate.button == DRAG_MIDDLE && !interfacestate.shift) {
    RotateCamera(0, 0, dx / 200);  // roll follows horizontal motion only
  } else if (interfacestate.button == DRAG_LEFT && !interfacestate.shift) {
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
