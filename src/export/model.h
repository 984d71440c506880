// The model writers: the aggregate (and the constraint surface where the
// format can hold it) as POV-Ray, VRML 2.0, GEOM, DXF points, GEOM points,
// or the surface alone as ASCII STL.
#ifndef DLA_EXPORT_MODEL_H
#define DLA_EXPORT_MODEL_H

#include <stdio.h>

#include "app/simulation.h"  // MODEL_*

// The fixed head and tail of a POV-Ray scene.
void POVHeader(SIMULATION &sim, FILE *fp);
void POVFooter(SIMULATION &sim, FILE *fp);

// The slope k of the segment radius thickend + k ln(weight + 1). 0 while
// maxweight is 0 (a restart that kept grown cells), where the formula would
// divide by ln 1 and give infinite radii that readers refuse.
double RadiusSlope(SIMULATION &sim);

// Writes header, body, footer and surface to fp. Formats above 5 write
// nothing. Variant 0 leaves every cell's traced mark changed.
void WriteModel(SIMULATION &sim, FILE *fp, int format, int variant);

// Opens path for writing and calls WriteModel. Returns 1 when written, 0 when
// the format is above 5, the path is empty, the file cannot be opened or a
// write failed (errno tells; nothing is reported).
int SaveModelFile(SIMULATION &sim, const char *path, int format, int variant);

#endif
