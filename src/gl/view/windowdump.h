// Saving the drawing window to image files.
#ifndef DLA_GL_VIEW_WINDOWDUMP_H
#define DLA_GL_VIEW_WINDOWDUMP_H

// Reads the back buffer (width x height) and writes it with Write_Bitmap in
// format. An empty basename names the file "%04d" from a run-wide counter,
// skipping names that exist; a given basename is overwritten. stereo != 0
// writes the left and right buffers as "L_" and "R_" files. Returns 1 on
// success, 0 (with a message on standard error) on failure.
int WindowDump(const char *basename, int width, int height, int stereo, int format);

#endif
