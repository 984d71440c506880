// Drawing of the text overlays with GLUT's 8 x 13 bitmap font.
#ifndef DLA_DESKTOP_VIEW_OVERLAY_GL_H
#define DLA_DESKTOP_VIEW_OVERLAY_GL_H

// Draws s with its first baseline at window pixel (x, y), y upward from the
// bottom; a newline or carriage return starts the next line 13 pixels lower.
// Leaves an orthographic window projection and an identity model-view.
void DrawGLText(int x, int y, const char *s);

// The information block, when options.showinfo is set.
void DrawInfo(void);

// duration >= 1 arms the statistics block for that many calls and draws
// nothing; duration < 1 draws it while armed, fading from white to black,
// and counts one call off.
void DrawStatistics(int duration);

#endif
