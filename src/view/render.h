// Drawing of the scene.
#ifndef DLA_VIEW_RENDER_H
#define DLA_VIEW_RENDER_H

// GLUT display callback.
void HandleDisplay(void);

#endif
