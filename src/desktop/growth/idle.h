// The idle driver: growth, statistics, form polling and redisplay pacing all
// run in the GLUT idle callback.
#ifndef DLA_DESKTOP_GROWTH_IDLE_H
#define DLA_DESKTOP_GROWTH_IDLE_H

// GLUT idle callback.
void HandleIdle(void);

// GLUT visibility callback: idle work runs only while the window is visible.
void HandleVisibility(int state);

#endif
