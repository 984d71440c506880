// The GLUT display callback.
#ifndef DLA_DESKTOP_VIEW_DISPLAY_H
#define DLA_DESKTOP_VIEW_DISPLAY_H

// Draws the frame for each eye of the stereo mode, the overlays, a pending
// window dump, and swaps the buffers.
void HandleDisplay(void);

#endif
