// A JSON summary of a run for scripts that compare runs: size, radius of
// gyration and the fractal dimensions, the statistics, the time taken and
// every growth setting.
#ifndef DLA_EXPORT_SUMMARY_H
#define DLA_EXPORT_SUMMARY_H

#include <stdio.h>

#include <vector>

#include "app/simulation.h"

// Checkpoints are log-spaced, ten per decade from this cell count on.
#define GROWTHLOG_FIRST 100

// Clears the log and starts its clock; call before growth.
void StartGrowthLog(SIMULATION &sim);

// Call after each run of steps (steps: the total so far). Takes the radius
// of gyration once ncells reaches the next checkpoint.
void LogGrowth(SIMULATION &sim, long long steps);

// Radius of gyration of cells 0..n-1 about their centroid: the root mean
// square distance. 0 for n below 1.
double RadiusOfGyration(SIMULATION &sim, int n);

// Least-squares slope of y against x over n points; 0 when the x do not vary.
double FitSlope(const double *x, const double *y, int n);

// The fractal dimension from the log's checkpoints: 1 / the least-squares
// slope of ln Rg against ln N. 0 when fewer than two checkpoints fit.
double GyrationDimension(SIMULATION &sim);

// Writes the summary as one JSON object to fp. Returns 1 when written, 0 on
// a write error.
int WriteSummary(SIMULATION &sim, FILE *fp);

// Opens path for writing and calls WriteSummary. Returns 0 (errno set) when
// it cannot be created or written.
int SaveSummaryFile(SIMULATION &sim, const char *path);

#endif
