// The command line of the desktop program.
#ifndef DLA_APP_CMDLINE_H
#define DLA_APP_CMDLINE_H

#include <stdio.h>
#include "app/simulation.h"

// Applies "-f", "-s", "-ss" and "-d" to options and camera in the order met;
// unknown arguments are ignored. Returns 1 as soon as "-h" is met (the
// caller then gives the usage), else 0.
int ParseCommandLine(SIMULATION &sim, int argc, char **argv);

// The usage text, every line as the user sees it.
void WriteUsage(FILE *fp, const char *programname);

#endif
