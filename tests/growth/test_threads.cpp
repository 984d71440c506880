// Two aggregates at once: each simulation grown in a thread of its own,
// beside another, gives the cells and files it gives grown alone. A core
// function that keeps state of its own (a static, a shared random state)
// between calls mixes the two runs and fails this.
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "app/simulation.h"
#include "batch/batch.h"

namespace {

// The exact walk with most of the core in it: a constraint surface
// (sample, transformed), a ring of roots with association, drift and swirl,
// the statistics and the writers that walk the tree. Then the fast walk,
// which has its own generator and search. DIR/ is the run's own directory.
const char *const kExact =
    "--seed 4 --bias 0.7 --rotation 1.5 --roots 3 --root-distribution 8 --associate --intersect-range 2 "
    "--sample 22 --transform 2,1,0.5 0,0,5 90,0,0 --cells 200 --stats --stall-steps 50000000 "
    "--csv DIR/c.csv --summary DIR/s.json --ply DIR/p.ply --gltf DIR/g.gltf --info DIR/i.txt --stl-out DIR/o.stl";
const char *const kFast =
    "--walk fast --seed 9 --bias 0.5 --cells 5000 --stats --stall-steps 50000000 "
    "--csv DIR/c.csv --summary DIR/s.json --ply DIR/p.ply --vtp DIR/v.vtp";

// What a run leaves: its status and messages, its cells, its files.
struct Grown {
  int status = -1;
  std::string err;
  std::vector<CELL> cells;
  long long steps = 0;
  std::map<std::string, std::string> files;
};

std::string Slurp(const std::string &path) {
  std::string s;
  FILE *fp = fopen(path.c_str(), "rb");
  if (fp == NULL) return "(missing)";
  char buf[65536];
  for (size_t n; (n = fread(buf, 1, sizeof(buf), fp)) > 0;) s.append(buf, n);
  fclose(fp);
  return s;
}

// dla3d-batch with args, every file name put in dir. Touches nothing
// shared: no current directory, no standard streams, no gtest assertion
// (those are made on the main thread afterwards).
Grown Grow(const std::string &args, const std::string &dir) {
  std::vector<std::string> words = {"dla3d-batch", "--no-progress"}, names;
  for (size_t at = 0, end; at < args.size(); at = end + 1) {
    end = std::min(args.find(' ', at), args.size());
    std::string w = args.substr(at, end - at);
    if (w.compare(0, 4, "DIR/") == 0) {
      names.push_back(w.substr(4));
      w = dir + "/" + names.back();
    }
    words.push_back(w);
  }
  std::vector<char *> argv;
  for (std::string &w : words) argv.push_back(&w[0]);
  argv.push_back(NULL);
  Grown r;
  char *text = NULL;
  size_t len = 0;
  FILE *err = open_memstream(&text, &len);
  SIMULATION *sim = new SIMULATION;  // large: off the thread's stack
  BATCHRUN *run = new BATCHRUN;
  run->picture = NULL;
  r.status = ParseBatchOptions((int)words.size(), argv.data(), run, err);
  if (r.status == BATCH_OK) r.status = RunBatch(*sim, run, err);
  fclose(err);
  r.err.assign(text, len);
  free(text);
  r.cells.assign(sim->cells.begin(), sim->cells.begin() + sim->ncells);
  r.steps = sim->growthlog.steps;
  delete run;
  delete sim;
  for (const std::string &n : names) r.files[n] = Slurp(dir + "/" + n);
  // glTF's buffer is named by the writer, next to its .gltf.
  if (r.files.count("g.gltf")) r.files["g.bin"] = Slurp(dir + "/g.bin");
  // The summary's times differ from run to run: the line goes.
  if (r.files.count("s.json")) {
    std::string &s = r.files["s.json"];
    size_t at = s.find("  \"wall_seconds\": {");
    if (at != std::string::npos) s.erase(at, s.find('\n', at) + 1 - at);
  }
  return r;
}

struct Dir {
  std::string path;
  Dir() {
    const char *t = getenv("TMPDIR");
    std::string tmpl = std::string(t ? t : "/tmp") + "/dla_threads_XXXXXX";
    path = mkdtemp(&tmpl[0]) ? tmpl : "/nonexistent";
  }
  ~Dir() { (void)!system(("rm -rf '" + path + "'").c_str()); }
};

void ExpectSameGrowth(const Grown &alone, const Grown &beside, const char *what) {
  ASSERT_EQ(alone.status, BATCH_OK) << what << ": " << alone.err;
  EXPECT_EQ(beside.status, BATCH_OK) << what << ": " << beside.err;
  EXPECT_EQ(beside.err, alone.err) << what;
  EXPECT_EQ(beside.steps, alone.steps) << what;
  ASSERT_EQ(beside.cells.size(), alone.cells.size()) << what;
  int differ = 0, first = -1;
  for (size_t i = 0; i < alone.cells.size(); i++) {
    const CELL &a = alone.cells[i], &b = beside.cells[i];
    if (a.p.x != b.p.x || a.p.y != b.p.y || a.p.z != b.p.z || a.weight != b.weight || a.parent != b.parent) {
      if (first < 0) first = (int)i;
      differ++;
    }
  }
  EXPECT_EQ(differ, 0) << what << ": the first different cell is " << first;
  ASSERT_EQ(beside.files.size(), alone.files.size()) << what;
  for (const auto &f : alone.files) {
    EXPECT_GT(f.second.size(), 100u) << what << " " << f.first;
    EXPECT_TRUE(beside.files.at(f.first) == f.second) << what << ": " << f.first << " differs";
  }
}

TEST(Threads, TwoSimulationsAtOnceGrowAsEachAlone) {
  Dir d;
  for (const char *sub : {"exact", "fast", "exact2", "fast2"})
    ASSERT_EQ(mkdir((d.path + "/" + sub).c_str(), 0700), 0) << d.path;
  Grown exact = Grow(kExact, d.path + "/exact");
  Grown fast = Grow(kFast, d.path + "/fast");
  // Each grew what it was asked for: a refused or stalled run compares nothing.
  ASSERT_EQ(exact.cells.size(), 200u);
  ASSERT_EQ(fast.cells.size(), 5000u);

  // Both threads wait at the gate, so that their growth overlaps.
  std::atomic<int> ready(0);
  Grown exact2, fast2;
  auto gate = [&ready] {
    ready++;
    while (ready.load() < 2) std::this_thread::yield();
  };
  std::thread a([&] {
    gate();
    exact2 = Grow(kExact, d.path + "/exact2");
  });
  std::thread b([&] {
    gate();
    fast2 = Grow(kFast, d.path + "/fast2");
  });
  a.join();
  b.join();
  ExpectSameGrowth(exact, exact2, "exact walk");
  ExpectSameGrowth(fast, fast2, "fast walk");
}

}  // namespace
