// The seed-file reader on arbitrary bytes, then a short growth from the
// roots it read: hostile roots (NaN, inf, 1e308) go straight into growth.
#include <string.h>

#include "app/simulation.h"
#include "app/startup.h"
#include "fuzz_common.h"
#include "growth/growth.h"
#include "surface/stl.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  // Every input starts from a fresh program.
  SIMULATION sim;
  ResetProgram(sim);

  std::vector<char> copy;
  FILE *fp = OpenInput(data, size, &copy);
  FILEMESSAGE msg;
  memset(&msg, 0, sizeof(msg));
  int ok = ReadRootsStream(sim, fp, "fuzz.seeds", &msg);
  fclose(fp);

  if (ok) {
    // With the default distribution (origin) ResetSeeds renames the roots.
    FUZZ_CHECK(!msg.set && strcmp(sim.growthstate.rootname, "Origin") == 0);
    // Three numbers take at least three bytes and a separator each.
    FUZZ_CHECK(sim.growthstate.nroots >= 1 && (size_t)sim.growthstate.nroots * 3 <= size);
    FUZZ_CHECK(sim.ncells == sim.growthstate.nroots && (int)sim.roots.size() >= sim.growthstate.nroots);
    for (int i = 0; i < sim.ncells; i++) FUZZ_CHECK(sim.cells[i].parent == -1 && sim.cells[i].weight == 0);
  } else {
    FUZZ_CHECK(msg.set && !msg.fatal && strcmp(msg.line2, "Failed to read any root positions") == 0);
    FUZZ_CHECK(sim.growthstate.nroots == 1 && sim.ncells == 1 && strcmp(sim.growthstate.rootname, "Origin") == 0);
  }
  FUZZ_CHECK(sim.growthstate.growing == 1);

  // A few steps of growth from these roots: bounded work, no crash.
  for (int i = 0; i < 64; i++) IterateSystem(sim);
  FUZZ_CHECK(sim.ncells >= sim.growthstate.nroots && sim.ncells <= sim.growthstate.nroots + 64);
  return 0;
}
