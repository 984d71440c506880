// The surface's index must give the full scans' answers for the cutting and
// the gap veto on any surface, also where a not-a-number angle sum makes a
// facet cut far from itself (growth with each: tests/growth/test_index.cpp).

#include <random>

#include "surface/constraint.h"
#include "surface/samples.h"
#include "surface/stl.h"
#include "surface/surfaceindex.h"
#include "test_util.h"

namespace {

using SurfaceIndex = Fresh;

// A sphere of radius r from openscad ($fn sides), read as the surface.
void OpenscadSphere(SIMULATION &sim, double r, int fn) {
  Scratch s;
  WriteFile(s / "s.scad", "sphere(r=" + std::to_string(r) + ", $fn=" + std::to_string(fn) + ");\n");
  std::string cmd = "openscad -q -o '" + s / "s.stl" + "' --export-format binstl '" + s / "s.scad" + "' 2>&1";
  ASSERT_EQ(system(cmd.c_str()), 0) << "openscad (scripts/install-deps.sh --test) is needed";
  FILEMESSAGE msg;
  ASSERT_EQ(ReadSTLFile(sim, (s / "s.stl").c_str(), &msg), 1);
}

// Slivers (two vertices 2e-6 apart, just kept by UpdateSTL; needles of
// nearly collinear vertices; exactly collinear ones, with no normal), a
// sheet of coplanar facets facing both ways, and a facet too large for the
// index's trees.
void Slivers(SIMULATION &sim) {
  sim.nstltri = 0;
  for (int i = 0; i < 6; i++) {
    double x = i * 1.3, y = 0.4 * i;
    AppendFacet(sim, V(x, y, 1), V(x + 2e-6, y + 1e-7, 1 + 1.5e-6), V(x + 1, y + 0.3, 0.2 - 0.1 * i));
    AppendFacet(sim, V(x, -2, y), V(x + 1, -2 + 1e-9 * (i + 1), y + 0.5), V(x + 2, -2 + 3e-9, y + 1));
    AppendFacet(sim, V(x, 3, 0), V(x + 0.5, 3.5, 0.25), V(x + 1, 4, 0.5));
  }
  for (int i = 0; i < 4; i++)
    for (int j = 0; j < 4; j++) {
      double x = i - 2, y = j - 2;
      AppendFacet(sim, V(x, y, -1), V(x + 1, y, -1), V(x + 1, y + 1, -1));
      AppendFacet(sim, V(x + 1, y + 1, -1), V(x, y + 1, -1), V(x, y, -1));
      if ((i + j) % 2) AppendFacet(sim, V(x, y, -1), V(x + 1, y + 1, -1), V(x + 1, y, -1));
    }
  AppendFacet(sim, V(-1e80, 0.5, 0.2), V(1e80, 0.5, 0.2), V(0, 1e80, 0.3));
  UpdateSTL(sim);
}

XYZ Add(XYZ a, XYZ b, double s) { return V(a.x + s * b.x, a.y + s * b.y, a.z + s * b.z); }

// Random segments and particles: anywhere in and around the surface; near
// vertices; on the lines of edges, inside and beyond the edge, crossing the
// facet's plane there; from a facet's plane; beside edges at about a branch
// length. Every kind of answer must come up, or the comparison proves little.
void CompareWithTheScans(SIMULATION &sim, const std::string &name, int queries) {
  BuildSurfaceIndex(&sim.surfaceindex, sim.stltri.data(), sim.nstltri);
  std::mt19937_64 rng(2024);
  std::uniform_real_distribution<double> u(0, 1);
  auto unit = [&]() {
    XYZ d = V(u(rng) - 0.5, u(rng) - 0.5, u(rng) - 0.5);
    Normalise(&d);
    return d;
  };
  const double lengths[] = {0.3, 1, 2.5};
  XYZ lo = sim.stlmin, hi = sim.stlmax;
  if (hi.x - lo.x > 100) lo = V(-5, -5, -5), hi = V(8, 5, 5);  // the slivers' giant
  int cuts = 0, gaps = 0, wrong = 0, asked;
  for (int q = 0; q < queries; q++) {
    double bl = lengths[q % 3];
    const FACET &f = sim.stltri[rng() % sim.nstltri];
    int k = rng() % 3;
    XYZ v0 = f.p[k], v1 = f.p[(k + 1) % 3];
    XYZ a, b;
    switch (q % 5) {
      case 0:  // anywhere
        a = V(lo.x - 3 + u(rng) * (hi.x - lo.x + 6), lo.y - 3 + u(rng) * (hi.y - lo.y + 6),
              lo.z - 3 + u(rng) * (hi.z - lo.z + 6));
        b = Add(a, unit(), bl * (0.2 + u(rng)));
        break;
      case 1:  // near a vertex, at every scale
        a = Add(v0, unit(), pow(10, -12 * u(rng)));
        b = Add(a, unit(), bl * (0.2 + u(rng)));
        break;
      case 2: {  // on an edge's line or 1e-9 off it, crossing the plane there, tilted or along an axis
        XYZ on = Add(v0, V(v1.x - v0.x, v1.y - v0.y, v1.z - v0.z), -8 + 17 * u(rng));
        int sub = q / 5 % 4;
        if (sub & 1) on = Add(on, unit(), 1e-9 * u(rng));
        XYZ n = f.n, tilt = Add(n, unit(), u(rng));
        if (sub & 2)  // along the axis nearest the normal: a segment's box as thin as a line
          tilt = fabs(n.x) > fabs(n.y) && fabs(n.x) > fabs(n.z) ? V(1, 0, 0)
                 : fabs(n.y) > fabs(n.z)                        ? V(0, 1, 0)
                                                                : V(0, 0, 1);
        a = Add(on, tilt, bl * u(rng));
        b = Add(on, tilt, -bl * u(rng));
        break;
      }
      case 3: {  // from a point of the facet, on its plane but for rounding, to either side
        double w0 = u(rng), w1 = u(rng) * (1 - w0);
        a = Add(Add(Add(V(0, 0, 0), v0, w0), v1, w1), f.p[(k + 2) % 3], 1 - w0 - w1);
        b = Add(a, Add(f.n, unit(), 0.3 * u(rng)), (q % 10 < 5 ? 1 : -1) * bl * u(rng));
        if (q % 15 == 3) std::swap(a, b);
        break;
      }
      default:  // beside an edge, about a branch length away
        a = Add(Add(v0, V(v1.x - v0.x, v1.y - v0.y, v1.z - v0.z), -0.2 + 1.4 * u(rng)), unit(),
                bl * (1 + 1e-6 * (u(rng) - 0.5)));
        b = Add(a, unit(), bl * (0.2 + u(rng)));
        break;
    }
    int cut = ScanCutsSurface(sim.stltri.data(), sim.nstltri, a, b);
    int gap = ScanPokesThroughGap(sim.stltri.data(), sim.nstltri, a, bl);
    int icut = SurfaceIndexCuts(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, a, b, &asked);
    int igap = SurfaceIndexGap(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, a, bl, &asked);
    cuts += cut;
    gaps += gap;
    if ((cut != icut || gap != igap) && wrong++ < 5)
      ADD_FAILURE() << name << ": segment (" << a.x << " " << a.y << " " << a.z << ") (" << b.x << " " << b.y << " "
                    << b.z << ") branch length " << bl << ": scans " << cut << gap << ", index " << icut << igap;
  }
  EXPECT_EQ(wrong, 0) << name << " of " << queries;
  EXPECT_GT(cuts, queries / 50) << name;
  EXPECT_GT(gaps, queries / 50) << name;
  EXPECT_GT(queries - cuts, queries / 50) << name;
}

TEST_F(SurfaceIndex, AnswersAsTheFullScansOnEverySurface) {
  struct {
    int sample;  // 0: slivers, -1: a sphere from openscad
    int queries;
  } surfaces[] = {{1, 3000}, {11, 3000}, {21, 1000}, {22, 1000}, {23, 1000}, {31, 3000}, {0, 20000}, {-1, 1000}};
  for (auto &s : surfaces) {
    if (s.sample == 0) Slivers(sim);
    if (s.sample < 0) OpenscadSphere(sim, 7, 60);
    if (s.sample > 0) MakeSampleSurface(sim, s.sample);
    CompareWithTheScans(sim, s.sample ? "sample " + std::to_string(s.sample) : "slivers", s.queries);
  }
  EXPECT_GT(sim.nstltri, 3000) << "the openscad sphere, last";
}

}  // namespace
