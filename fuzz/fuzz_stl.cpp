// The STL reader on arbitrary bytes. The data decides ASCII or binary the
// way the reader does (the first line), so the corpus carries both kinds.
// Beyond the sanitizers it checks that the outcome is one the reader may
// give and that the surface is never larger than the file can hold.
#include <string.h>

#include "app/simulation.h"
#include "fuzz_common.h"
#include "growth/growth.h"
#include "surface/stl.h"

static int LooksAscii(const uint8_t *data, size_t size) {
  // The first line, at most 80 characters, cut after six; ReadLine keeps
  // NUL bytes but strstr stops at the first one.
  char first[7] = {0};
  size_t n = 0;
  while (n < size && n < 6 && data[n] != '\n' && data[n] != '\r') {
    first[n] = (char)data[n];
    n++;
  }
  return strstr(first, "solid") != NULL;
}

static uint32_t Le32(const uint8_t *b) { return b[0] | (b[1] << 8) | (b[2] << 16) | ((uint32_t)b[3] << 24); }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  SIMULATION sim;
  SetOptionDefaults(sim);
  InitialiseGrowth(sim);
  sim.options.debug = 0;
  sim.options.stlswap = 0;

  std::vector<char> copy;
  FILE *fp = OpenInput(data, size, &copy);
  FILEMESSAGE msg;
  memset(&msg, 0, sizeof(msg));
  int ok = ReadSTLStream(sim, fp, "fuzz.stl", &msg);
  fclose(fp);

  FUZZ_CHECK(sim.nstltri >= 0 && (size_t)sim.nstltri <= sim.stltri.size());
  FUZZ_CHECK(strcmp(sim.growthstate.stlname, "None") == 0);
  if (ok) {
    FUZZ_CHECK(!msg.set);
  } else {
    FUZZ_CHECK(msg.set && strcmp(msg.line1, "File Error") == 0 && msg.line3[0] == '\0');
    if (msg.fatal)
      FUZZ_CHECK(strcmp(msg.line2, "Error reading vertices in ascii STL file") == 0 ||
                 strcmp(msg.line2, "Failed to read an expected STL header") == 0);
    else
      FUZZ_CHECK(strcmp(msg.line2, "Read an unexpected number of faces in STL header") == 0 && sim.nstltri == 0);
  }

  if (LooksAscii(data, size)) {
    // A facet takes an "outerloop" line and three "w 1-1-1" vertices.
    FUZZ_CHECK((size_t)sim.nstltri * 30 <= size);
    FUZZ_CHECK(!ok ? strcmp(msg.line2, "Error reading vertices in ascii STL file") == 0 : 1);
  } else if (size < 80) {
    FUZZ_CHECK(!ok && msg.fatal && strcmp(msg.line2, "Failed to read an expected STL header") == 0);
  } else {
    // Only complete 50-byte records count, never more than the header says.
    uint32_t count = size >= 84 ? Le32(data + 80) : 0;
    size_t complete = size >= 84 ? (size - 84) / 50 : 0;
    if (count > 10000000u) {
      FUZZ_CHECK(!ok && sim.nstltri == 0);
    } else {
      FUZZ_CHECK(ok);
      FUZZ_CHECK((size_t)sim.nstltri <= complete && (uint32_t)sim.nstltri <= count);
    }
  }

  if (ok) {
    // Prepared facets: unit or zero normals, bounds around every vertex.
    for (int i = 0; i < sim.nstltri; i++) {
      const FACET &f = sim.stltri[i];
      double m = DotProduct(f.n, f.n);
      FUZZ_CHECK(m == 0 || (m > 0.999999 && m < 1.000001));
    }
  }
  return 0;
}
