// The desktop program's one simulation. Its GLUT and XForms callbacks carry
// no user data, so the window's aggregate lives here, in the desktop layer.
#ifndef DLA_DESKTOP_APP_DESKTOP_H
#define DLA_DESKTOP_APP_DESKTOP_H

#include "app/simulation.h"

extern SIMULATION sim;

#endif
