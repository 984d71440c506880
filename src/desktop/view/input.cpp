#include "desktop/view/input.h"
#include "desktop/app/desktop.h"

#include <GL/glut.h>
#include <stdlib.h>  // exit()

#include "app/simulation.h"
#include "desktop/view/menus.h"
#include "view/camera.h"
#include "view/menutables.h"

static int ShiftHeld(void) { return glutGetModifiers() == GLUT_ACTIVE_SHIFT; }

void HandleKeyboard(unsigned char key, int x, int y) {
  sim.interfacestate.shift = ShiftHeld();
  switch (key) {
    case 27:  // Esc
    case 'q':
    case 'Q':
      exit(0);
    case 'h':
    case 'H':
      CameraHome(sim);
      break;
    case '+':
    case '=':
      ZoomCamera(sim, ZOOM_IN);
      break;
    case '-':
    case '_':
      ZoomCamera(sim, ZOOM_OUT);
      break;
    case '.':
    case '>':
      DollyCamera(sim, DOLLY_CLOSER);
      break;
    case ',':
    case '<':
      DollyCamera(sim, DOLLY_AWAY);
      break;
    case '[':
      RotateCamera(sim, 0, 0, -0.02);
      break;
    case ']':
      RotateCamera(sim, 0, 0, 0.02);
      break;
    case 'a':
      sim.options.autospin++;
      break;
    case 'A':
      sim.options.autospin--;
      break;
    case 'r':
    case 'R':
      sim.options.record = !sim.options.record;
      break;
    case 'w':
    case 'W':
      sim.options.windowdump = !sim.options.windowdump;
      break;
  }
}

void HandleSpecialKeyboard(int key, int x, int y) {
  sim.interfacestate.shift = ShiftHeld();
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
      if (!sim.interfacestate.shift) RotateCamera(sim, -0.02, 0, 0);
      break;
    case GLUT_KEY_RIGHT:
      if (!sim.interfacestate.shift) RotateCamera(sim, 0.02, 0, 0);
      break;
    case GLUT_KEY_UP:
      if (!sim.interfacestate.shift) RotateCamera(sim, 0, 0.02, 0);
      break;
    case GLUT_KEY_DOWN:
      if (!sim.interfacestate.shift) RotateCamera(sim, 0, -0.02, 0);
      break;
  }
}

void HandleMouse(int button, int state, int x, int y) {
  sim.interfacestate.shift = ShiftHeld();
  if (state == GLUT_DOWN) {
    if (button == GLUT_MIDDLE_BUTTON) sim.interfacestate.button = DRAG_MIDDLE;
    if (button == GLUT_LEFT_BUTTON) sim.interfacestate.button = DRAG_LEFT;
  }
  sim.interfacestate.mousex = x;
  sim.interfacestate.mousey = y;
}

void HandleMouseMotion(int x, int y) {
  double dx = x - sim.interfacestate.mousex;
  double dy = y - sim.interfacestate.mousey;
  if (sim.interfacestate.button == DRAG_MIDDLE && !sim.interfacestate.shift) {
    RotateCamera(sim, 0, 0, dx / 200);  // roll follows horizontal motion only
  } else if (sim.interfacestate.button == DRAG_LEFT && !sim.interfacestate.shift) {
    RotateCamera(sim, dx / -100, dy / -100, 0);
  }
  sim.interfacestate.mousex = x;
  sim.interfacestate.mousey = y;
}

void HandlePassiveMotion(int x, int y) {
  sim.interfacestate.mousex = x;
  sim.interfacestate.mousey = y;
}

// The display sets viewport and projection afresh every frame.
void HandleReshape(int w, int h) {
  sim.camera.screenwidth = w;
  sim.camera.screenheight = h;
}
