// Two aggregates at once: each simulation grown in a thread of its own,
// beside another, gives the cells and files it gives grown alone. A core
// function that keeps state of its own (a static, a shared random state)
// between calls mixes the two runs and fails this.
#include <sys/stat.h>

#include <atomic>
#include <thread>

#include "test_util.h"

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

// What a run leaves: its status and messages, its steps and cells, its files.
struct Grown {
  int status = -1, ncells = 0;
  long long steps = 0;
  uint64_t hash = 0;
  std::string err, files;
};

// dla3d-batch with args, every file put in dir. No gtest assertion here
// (those are made on the main thread afterwards).
Grown Grow(std::string args, const std::string &dir) {
  for (size_t at; (at = args.find("DIR")) != std::string::npos;) args.replace(at, 3, dir);
  SIMULATION *sim = new SIMULATION;  // large: off the thread's stack
  Grown r;
  r.status = Batch(*sim, "--no-progress " + args, &r.err);
  r.ncells = sim->ncells;
  r.steps = sim->growthlog.steps;
  r.hash = AggregateHash(*sim);
  delete sim;
  for (const char *name : {"c.csv", "s.json", "p.ply", "g.gltf", "g.bin", "i.txt", "o.stl", "v.vtp"}) {
    std::string s = ReadFile(dir + "/" + name);
    size_t at = s.find("  \"wall_seconds\": {");  // the summary's times differ from run to run
    if (at != std::string::npos) s.erase(at, s.find('\n', at) + 1 - at);
    r.files += s + "|";
  }
  return r;
}

void ExpectSameGrowth(const Grown &alone, const Grown &beside, const char *what) {
  EXPECT_EQ(alone.status, BATCH_OK) << what << ": " << alone.err;
  EXPECT_EQ(beside.err, alone.err) << what;
  EXPECT_EQ(beside.steps, alone.steps) << what;
  EXPECT_EQ(beside.hash, alone.hash) << what << ": other cells";
  EXPECT_TRUE(beside.files == alone.files) << what << ": other files";
}

TEST(Threads, TwoSimulationsAtOnceGrowAsEachAlone) {
  Scratch d;
  for (const char *sub : {"exact", "fast", "exact2", "fast2"}) ASSERT_EQ(mkdir((d / sub).c_str(), 0700), 0);
  Grown exact = Grow(kExact, d / "exact"), fast = Grow(kFast, d / "fast");
  // Each grew what it was asked for: a refused or stalled run compares nothing.
  ASSERT_EQ(exact.ncells * 10000 + fast.ncells, 2005000);
  // Both threads wait at the gate, so that their growth overlaps.
  std::atomic<int> ready(0);
  Grown exact2, fast2;
  auto gate = [&ready] {
    ready++;
    while (ready.load() < 2) std::this_thread::yield();
  };
  std::thread a([&] {
    gate();
    exact2 = Grow(kExact, d / "exact2");
  });
  std::thread b([&] {
    gate();
    fast2 = Grow(kFast, d / "fast2");
  });
  a.join();
  b.join();
  ExpectSameGrowth(exact, exact2, "exact walk");
  ExpectSameGrowth(fast, fast2, "fast walk");
}

}  // namespace
