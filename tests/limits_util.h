// Scratch directories and long paths for the resource-limit tests.
#ifndef DLA_TESTS_LIMITS_UTIL_H
#define DLA_TESTS_LIMITS_UTIL_H

#include <stdio.h>
#include <stdlib.h>
#include <string.h>    // strlen()
#include <sys/stat.h>  // mkdir()
#include <unistd.h>    // getpid()

#include <string>

// A fresh directory under TMPDIR (or /tmp), removed by the caller with
// RemoveTree.
inline std::string MakeScratchDir(const char *tag) {
  const char *base = getenv("TMPDIR");
  std::string dir = std::string(base ? base : "/tmp") + "/dla_limits_" + tag + "_" + std::to_string(getpid());
  mkdir(dir.c_str(), 0755);
  return dir;
}

// dir/aaa.../aaa.../file with directory names of 100 characters, so that the
// whole path is longer than n bytes. The directories are created.
inline std::string MakeLongPath(const std::string &dir, size_t n, const char *file) {
  std::string path = dir;
  while (path.size() + 1 + strlen(file) <= n) {
    path += "/" + std::string(100, 'd');
    mkdir(path.c_str(), 0755);
  }
  return path + "/" + file;
}

inline void RemoveTree(const std::string &dir) {
  std::string cmd = "rm -rf '" + dir + "'";
  if (system(cmd.c_str()) != 0) fprintf(stderr, "could not remove %s\n", dir.c_str());
}

// Resident memory of this process in kB (VmRSS), 0 when unknown.
inline long ResidentKb(void) {
  FILE *fp = fopen("/proc/self/status", "r");
  if (fp == NULL) return 0;
  char line[256];
  long kb = 0;
  while (fgets(line, sizeof(line), fp))
    if (sscanf(line, "VmRSS: %ld", &kb) == 1) break;
  fclose(fp);
  return kb;
}

#endif
