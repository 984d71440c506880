// The commands that ask for a file name with the toolkit's file selector and
// show read errors in its message box. Desktop only (XForms).
#ifndef DLA_DESKTOP_FORMS_FILEDIALOGS_H
#define DLA_DESKTOP_FORMS_FILEDIALOGS_H
#include "app/simulation.h"

// "Read seeds": makes the points of a seed file the roots. Returns 1 when a
// file was read or the selector was cancelled, 0 after a "File Error"
// message (a file without a point falls back to one root at the origin).
int ReadRoots(SIMULATION &sim);

// "Read constraint surface from STL file". Returns 1 when read or
// cancelled, 0 after a message (open failure, implausible facet count).
// Ends the process with status -1 after the message for a malformed file.
// The caller rebuilds the surface drawing.
int ReadSTL(SIMULATION &sim);

// The save entries: asks for a name titled by format and writes the model.
// A cancelled selector, an empty name or a file that cannot be opened end
// the command silently.
void SaveModel(SIMULATION &sim, int format, int variant);

// "Save simulation information": 1 when the report was written, 0 when
// cancelled or the file could not be opened (nothing is shown).
int SaveInformation(SIMULATION &sim);

#endif
