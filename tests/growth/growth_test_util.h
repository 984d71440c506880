// Shared set-up of the growth tests: reset the records through the
// program's own routines, and write small input files.
#ifndef DLA_TESTS_GROWTH_UTIL_H
#define DLA_TESTS_GROWTH_UTIL_H

#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>  // getpid()

#include <string>

#include "app/records.h"
#include "growth/growth.h"
#include "surface/stl.h"

// A fresh program: options and growth defaults, no surface, roots placed.
inline void ResetGrowthForTest(void) {
  SetOptionDefaults();
  InitialiseGrowth();  // the first call in the process applies the defaults
  SetGrowthDefaults();
  nstltri = 0;  // the "None" sample surface
  UpdateSTL();
  InitialiseGrowth();
  ResetSeeds();
}

inline std::string TempPath(const char *name) {
  const char *dir = getenv("TMPDIR");
  std::string base = dir ? dir : "/tmp";
  return base + "/dla_growth_test_" + std::to_string(getpid()) + "_" + name;
}

inline std::string WriteTempFile(const char *name, const std::string &content) {
  std::string path = TempPath(name);
  FILE *fp = fopen(path.c_str(), "wb");
  fwrite(content.data(), 1, content.size(), fp);
  fclose(fp);
  return path;
}

#endif
