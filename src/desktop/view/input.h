// The GLUT input callbacks of the drawing window. They only change records
// or start actions; the idle driver redraws.
#ifndef DLA_DESKTOP_VIEW_INPUT_H
#define DLA_DESKTOP_VIEW_INPUT_H

void HandleKeyboard(unsigned char key, int x, int y);
void HandleSpecialKeyboard(int key, int x, int y);
void HandleMouse(int button, int state, int x, int y);
void HandleMouseMotion(int x, int y);
void HandlePassiveMotion(int x, int y);
void HandleReshape(int w, int h);

#endif
