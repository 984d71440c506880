// The plain-text report of a simulation: settings, source, surface, size and,
// once computed, the statistics.
#ifndef DLA_EXPORT_REPORT_H
#define DLA_EXPORT_REPORT_H

#include <stdio.h>
#include "app/simulation.h"

// Writes the whole report to fp.
void WriteInformation(SIMULATION &sim, FILE *fp);

// Opens path for writing and writes the report. Returns 1 when written, 0 for
// an empty path, a file that cannot be opened or a failed write (nothing is
// reported).
int SaveInformationFile(SIMULATION &sim, const char *path);

#endif
