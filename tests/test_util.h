// Shared by the unit tests: a freshly started program before every test,
// scratch files, captured output and a hash of the aggregate.
#ifndef DLA_TESTS_TEST_UTIL_H
#define DLA_TESTS_TEST_UTIL_H

#include <gtest/gtest.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "app/simulation.h"
#include "app/startup.h"
#include "batch/batch.h"
#include "growth/growth.h"

// The program as start-up leaves it: `using Suite = Fresh;`, TEST_F(Suite, ...).
class Fresh : public testing::Test {
 protected:
  void SetUp() override { ResetProgram(sim); }
  SIMULATION sim;
};

inline XYZ V(double x, double y, double z) { return XYZ{x, y, z}; }

#define EXPECT_XYZ(p, ex, ey, ez, tol) \
  do {                                 \
    EXPECT_NEAR((p).x, ex, tol);       \
    EXPECT_NEAR((p).y, ey, tol);       \
    EXPECT_NEAR((p).z, ez, tol);       \
  } while (0)

// A directory of its own under TMPDIR (or /tmp), removed with its files.
struct Scratch {
  std::string dir;
  Scratch() {
    const char *t = getenv("TMPDIR");
    std::string tmpl = std::string(t ? t : "/tmp") + "/dla_test_XXXXXX";
    dir = mkdtemp(&tmpl[0]) ? tmpl : "/nonexistent";
  }
  ~Scratch() { (void)!system(("rm -rf '" + dir + "'").c_str()); }
  std::string operator/(const std::string &name) const { return dir + "/" + name; }
};

inline std::string ReadFile(const std::string &path) {
  FILE *fp = fopen(path.c_str(), "rb");
  if (fp == NULL) return "(missing)";
  std::string s;
  for (int c; (c = fgetc(fp)) != EOF;) s += (char)c;
  fclose(fp);
  return s;
}

// Writes content to path; returns path.
inline std::string WriteFile(const std::string &path, const std::string &content) {
  std::ofstream(path, std::ios::binary) << content;
  return path;
}

// Everything f writes to the stream it is given.
inline std::string Capture(const std::function<void(FILE *)> &f) {
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  f(fp);
  fclose(fp);
  std::string s(buf, len);
  free(buf);
  return s;
}

// Standard error of f, run with options.debug set.
inline std::string DebugOutput(SIMULATION &sim, const std::function<void()> &f) {
  sim.options.debug = 1;
  testing::internal::CaptureStderr();
  f();
  sim.options.debug = 0;
  return testing::internal::GetCapturedStderr();
}

// dla3d-batch with the words of line (split at spaces) as its arguments:
// parsed into *parsed (when given), then run unless parse_only or refused,
// drawing --png with picture. Its status; what it writes in *err.
inline int Batch(SIMULATION &sim, const std::string &line, std::string *err, bool parse_only = false,
                 BATCHRUN *parsed = NULL, BATCHPICTURE picture = NULL) {
  std::vector<std::string> words = {"dla3d-batch"};
  for (size_t at = 0, end; at < line.size(); at = end + 1) {
    end = std::min(line.find(' ', at), line.size());
    words.push_back(line.substr(at, end - at));
  }
  std::vector<char *> argv;
  for (std::string &w : words) argv.push_back(&w[0]);
  argv.push_back(NULL);
  int status = BATCH_USAGE;
  BATCHRUN own;
  BATCHRUN &run = parsed ? *parsed : own;
  run.picture = picture;
  *err = Capture([&](FILE *fp) {
    status = ParseBatchOptions((int)words.size(), argv.data(), &run, fp);
    if (status == BATCH_OK && !parse_only) status = RunBatch(sim, &run, fp);
  });
  return status;
}

// A fresh program set up by dla3d-batch's options (its growth settings,
// surface and roots), no step taken yet.
inline void StartGrowth(SIMULATION &sim, const std::string &settings) {
  std::string err;
  EXPECT_EQ(Batch(sim, settings + " --steps 0 --no-progress", &err), BATCH_OK) << settings << ": " << err;
}

// FNV-1a over the positions, weights and parents of the aggregate: two runs
// with the same hash grew the same cells bit for bit.
inline uint64_t AggregateHash(SIMULATION &sim) {
  uint64_t h = 1469598103934665603ULL;
  for (int i = 0; i < sim.ncells; i++) {
    double d[5] = {sim.cells[i].p.x, sim.cells[i].p.y, sim.cells[i].p.z, sim.cells[i].weight,
                   (double)sim.cells[i].parent};
    const unsigned char *b = (const unsigned char *)d;
    for (size_t k = 0; k < sizeof(d); k++) h = (h ^ b[k]) * 1099511628211ULL;
  }
  return h;
}

#endif
