// The surface's index must give the full scans' answers for the cutting and
// the gap veto on any surface, also where a not-a-number angle sum makes a
// facet cut far from itself, and the growth must stay the same cells.
#include <math.h>
#include <stdlib.h>

#include <random>
#include <string>
#include <vector>

#include "growth/index.h"
#include "surface/constraint.h"
#include "surface/samples.h"
#include "surface/stl.h"
#include "surface/surfaceindex.h"
#include "surface/transform.h"
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

struct Tally {
  int queries = 0, cuts = 0, farcuts = 0, gaps = 0, wrong = 0;
};

// 1 when the segment cuts, and no facet that cuts it does so within 0.5 of
// its own vertices' box: a cut only the not-a-number sum can give.
bool FarCut(SIMULATION &sim, XYZ a, XYZ b) {
  bool any = false;
  for (int f = 0; f < sim.nstltri; f++) {
    XYZ p;
    if (!SegmentCutsFacet(sim.stltri[f], &p, a, b)) continue;
    any = true;
    XYZ lo = sim.stltri[f].p[0], hi = lo;
    for (int k = 1; k < 3; k++) MinMaxXYZ(&lo, &hi, sim.stltri[f].p[k]);
    if (p.x > lo.x - 0.5 && p.x < hi.x + 0.5 && p.y > lo.y - 0.5 && p.y < hi.y + 0.5 && p.z > lo.z - 0.5 &&
        p.z < hi.z + 0.5)
      return false;
  }
  return any;
}

void Compare(SIMULATION &sim, XYZ a, XYZ b, double branchlength, bool online, Tally *t, const std::string &name) {
  int asked;
  int cut = ScanCutsSurface(sim.stltri.data(), sim.nstltri, a, b);
  int gap = ScanPokesThroughGap(sim.stltri.data(), sim.nstltri, a, branchlength);
  int icut = SurfaceIndexCuts(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, a, b, &asked);
  int igap = SurfaceIndexGap(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, a, branchlength, &asked);
  t->queries++;
  t->cuts += cut;
  t->gaps += gap;
  if (cut && online && FarCut(sim, a, b)) t->farcuts++;
  if (cut != icut || gap != igap) {
    if (t->wrong++ < 5)
      ADD_FAILURE() << name << ": segment (" << a.x << " " << a.y << " " << a.z << ") (" << b.x << " " << b.y << " "
                    << b.z << ") branch length " << branchlength << ": scans " << cut << gap << ", index " << icut
                    << igap;
  }
}

// Random segments and particles: anywhere in and around the surface; near
// vertices; on the lines of edges, inside and beyond the edge, crossing the
// facet's plane there; from a facet's plane; beside edges at about a branch
// length.
Tally Table(SIMULATION &sim, const std::string &name, int queries) {
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
  Tally t;
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
    Compare(sim, a, b, bl, q % 5 == 2, &t, name);
  }
  EXPECT_EQ(t.wrong, 0) << name << " of " << t.queries;
  return t;
}

TEST_F(SurfaceIndex, AnswersAsTheFullScansOnEverySurface) {
  struct {
    int sample;  // 0: slivers, -1: openscad
    int queries;
  } surfaces[] = {{1, 3000}, {11, 3000}, {21, 1000}, {22, 1000}, {23, 1000}, {31, 3000}, {-1, 1000}, {0, 20000}};
  int farcuts = 0;
  for (auto &s : surfaces) {
    std::string name = "sample " + std::to_string(s.sample);
    if (s.sample == 0) {
      Slivers(sim);
      name = "slivers";
    } else if (s.sample < 0) {
      OpenscadSphere(sim, 7, 60);
      name = "openscad sphere";
      ASSERT_GT(sim.nstltri, 3000);
    } else {
      MakeSampleSurface(sim, s.sample);
    }
    Tally t = Table(sim, name, s.queries);
    // Every kind of answer comes up, or the comparison proves little.
    EXPECT_GT(t.cuts, t.queries / 50) << name;
    EXPECT_GT(t.gaps, t.queries / 50) << name;
    EXPECT_GT(t.queries - t.cuts, t.queries / 50) << name;
    farcuts += t.farcuts;
  }
  EXPECT_GE(farcuts, 20);  // cuts that no box around the facet would have found
}

// Deep inside a convex surface no plane separates the ends of a segment:
// the index asks no facet at all, where the scans ask all of them.
TEST_F(SurfaceIndex, AsksNoFacetFarFromTheSurface) {
  MakeSampleSurface(sim, SAMPLE_SPHERE);
  BuildSurfaceIndex(&sim.surfaceindex, sim.stltri.data(), sim.nstltri);
  int asked = 0, cutasked = 0, gapasked = 0;
  for (int i = 0; i < 200; i++) {
    XYZ a = V(0.01 * i, 3 - 0.02 * i, 1), b = V(a.x + 0.6, a.y, a.z - 0.7);
    EXPECT_EQ(SurfaceIndexCuts(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, a, b, &asked), 0);
    cutasked += asked;
    EXPECT_EQ(SurfaceIndexGap(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, a, 1, &asked), 0);
    gapasked += asked;
  }
  EXPECT_EQ(cutasked, 0);
  EXPECT_EQ(gapasked, 0);
  // Through the wall: found among a few facets.
  EXPECT_EQ(SurfaceIndexCuts(&sim.surfaceindex, sim.stltri.data(), sim.nstltri, V(19.5, 0.3, 0.2), V(20.5, 0.3, 0.2), &asked), 1);
  EXPECT_LT(asked, sim.nstltri / 20);
}

// Growth against a surface with the index and with the full scans: the same
// cells and the same veto messages, also after the surface is transformed in
// place (same storage, same count) half-way.
TEST_F(SurfaceIndex, GrowsTheScansCellsAndVetoes) {
  Scratch s;
  WriteFile(s / "s.scad", "sphere(r=6, $fn=40);\n");
  std::string cmd = "openscad -q -o '" + s / "s.stl" + "' --export-format binstl '" + s / "s.scad" + "' 2>&1";
  ASSERT_EQ(system(cmd.c_str()), 0) << "openscad (scripts/install-deps.sh --test) is needed";
  std::string out[2];
  uint64_t hash[2];
  long long vetoes[2][NVETOES];
  for (int search : {SEARCH_SCAN, SEARCH_INDEX}) {
    StartGrowth(sim, "--seed 31 --stickiness 70 --stl " + s / "s.stl");
    sim.growthsearch = search;
    for (int i = 0; i < NVETOES; i++) sim.growthvetoes[i] = 0;
    bool moved = false;
    out[search] = DebugOutput(sim, [&] {
      for (long k = 0; k < 20000000 && sim.ncells < 700; k++) {
        IterateSystemSteps(sim, 1000);
        if (sim.ncells >= 350 && !moved) TransformSTL(sim, V(1.2, 1.2, 0.9), V(0.3, 0, 0), V(0, 0, 10)), moved = true;
      }
    });
    hash[search] = AggregateHash(sim);
    for (int i = 0; i < NVETOES; i++) vetoes[search][i] = sim.growthvetoes[i];
    EXPECT_EQ(sim.ncells, 700);
  }
  EXPECT_EQ(hash[SEARCH_INDEX], hash[SEARCH_SCAN]);
  EXPECT_TRUE(out[SEARCH_INDEX] == out[SEARCH_SCAN]);
  for (int i : {VETO_SURFACE, VETO_GAP}) {
    EXPECT_EQ(vetoes[SEARCH_INDEX][i], vetoes[SEARCH_SCAN][i]) << i;
    EXPECT_GT(vetoes[SEARCH_SCAN][i], 20) << i;
  }
}

}  // namespace
