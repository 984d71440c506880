#include <gtest/gtest.h>
#include <string.h>

#include <functional>
#include <string>
#include <vector>

#include "growth/index.h"
#include "growth_test_util.h"
#include "surface/samples.h"

namespace {

struct GROWN {
  std::vector<CELL> cells;
  std::vector<double> maxweight;  // after every stick
  std::vector<double> radius;
};

// Grows with the given search until the aggregate holds n cells (or the
// step limit), recording maxweight and radius after every stick.
// With runs, the steps are taken by IterateSystemSteps in runs of 1 to 5000.
GROWN Grow(int search, const std::function<void()> &setup, int n, int runs = 0,
           long maxsteps = 3000000) {
  growthsearch = search;
  ResetGrowthForTest();
  setup();
  GROWN out;
  int seen = ncells;
  long run = 1;
  for (long k = 0; k < maxsteps && ncells < n;) {
    if (runs) {
      long want = maxsteps - k < run ? maxsteps - k : run;
      long took = IterateSystemSteps(want);
      if (took < 1 || took > want) {
        ADD_FAILURE() << took << " steps taken of " << want;
        break;
      }
      k += took;
      run = run * 7 % 5001 + 1;
    } else {
      IterateSystem();
      k++;
    }
    if (ncells != seen) {
      seen = ncells;
      out.maxweight.push_back(growthstate.maxweight);
      out.radius.push_back(growthstate.radius);
    }
  }
  out.cells.assign(cells.begin(), cells.begin() + ncells);
  growthsearch = SEARCH_INDEX;
  return out;
}

// Same cells bit for bit: positions, weights and parents.
void ExpectSameAggregate(const GROWN &a, const GROWN &b, const char *what) {
  ASSERT_EQ(a.cells.size(), b.cells.size()) << what;
  for (size_t i = 0; i < a.cells.size(); i++) {
    ASSERT_EQ(memcmp(&a.cells[i].p, &b.cells[i].p, sizeof(XYZ)), 0) << what << ": cell " << i;
    ASSERT_EQ(memcmp(&a.cells[i].weight, &b.cells[i].weight, sizeof(double)), 0) << what << ": cell " << i;
    ASSERT_EQ(a.cells[i].parent, b.cells[i].parent) << what << ": cell " << i;
  }
  ASSERT_EQ(a.maxweight, b.maxweight) << what;
  ASSERT_EQ(a.radius, b.radius) << what;
}

void Compare(const char *what, const std::function<void()> &setup, int n) {
  GROWN scan = Grow(SEARCH_SCAN, setup, n);
  GROWN index = Grow(SEARCH_INDEX, setup, n);
  GROWN runs = Grow(SEARCH_INDEX, setup, n, 1);
  EXPECT_GT((int)scan.cells.size(), growthstate.nroots) << what << ": nothing grew";
  ExpectSameAggregate(scan, index, what);
  ExpectSameAggregate(scan, runs, what);
}

TEST(SearchIndex, GivesTheScansAggregateForManySettings) {
  struct { const char *what; std::function<void()> setup; int n; } cases[] = {
      {"defaults", [] {}, 900},
      {"branch length 0.3", [] { growthstate.branchlength = 0.3; growthstate.seed = 3; InitialiseGrowth(); }, 700},
      {"branch length 0.7, bias 1", [] {
         growthstate.branchlength = 0.7;
         growthstate.bias = 1;
         growthstate.seed = 4;
         InitialiseGrowth();
       }, 700},
      {"branch length 2.5", [] { growthstate.branchlength = 2.5; growthstate.seed = 5; InitialiseGrowth(); }, 600},
      {"ring of 5, association", [] {
         growthstate.nroots = 5;
         growthstate.rootdistribution = ROOT_RINGZ;
         growthstate.associate = 1;
         growthstate.seed = 6;
         InitialiseGrowth();
         ResetSeeds();
       }, 700},
      {"random roots, association, branch length 0.7", [] {
         growthstate.nroots = 4;
         growthstate.rootdistribution = ROOT_SPHERICAL;
         growthstate.rootrange = 20;
         growthstate.associate = 1;
         growthstate.branchlength = 0.7;
         growthstate.seed = 7;
         InitialiseGrowth();
         ResetSeeds();
       }, 700},
      {"rotation and bias", [] {
         growthstate.rotation = 3;
         growthstate.bias = 0.8;
         growthstate.seed = 8;
         InitialiseGrowth();
       }, 700},
      {"stickiness 20, branch length 0.3", [] {
         growthstate.stickiness = 20;
         growthstate.branchlength = 0.3;
         growthstate.seed = 9;
         InitialiseGrowth();
       }, 500},
      {"intersection range", [] { growthstate.intersectrange = 5; growthstate.seed = 10; InitialiseGrowth(); }, 500},
      {"sample sphere", [] {
         MakeSampleSurface(SAMPLE_SPHERE);
         growthstate.seed = 11;
         InitialiseGrowth();
       }, 400},
      {"sample plane, source on z", [] {
         MakeSampleSurface(SAMPLE_PLANE);
         growthstate.sourcetype = SOURCE_PLUSZ;
         growthstate.seed = 12;
         InitialiseGrowth();
       }, 500},
  };
  for (auto &c : cases) Compare(c.what, c.setup, c.n);
}

// Changes made between steps, as the settings form and the menus make them.
TEST(SearchIndex, FollowsChangesOutsideTheStep) {
  auto run = [](int search, int runs) {
    growthsearch = search;
    ResetGrowthForTest();
    growthstate.seed = 21;
    InitialiseGrowth();
    GROWN out;
    auto growto = [&](int n) {
      for (long k = 0; k < 2000000 && ncells < n;) {
        if (runs)
          k += IterateSystemSteps(n % 900 + 1);
        else
          k += (IterateSystem(), 1);
      }
      out.maxweight.push_back(growthstate.maxweight);
      out.radius.push_back(growthstate.radius);
    };
    growto(300);
    growthstate.branchlength = 0.6;  // mid-run, no restart
    growto(450);
    growthstate.branchlength = 1.7;
    growto(550);
    // Restart with five roots: cells 1 to 4 of this aggregate come back as
    // roots' places, with their weights; maxweight starts from 0 again.
    growthstate.nroots = 5;
    InitialiseGrowth();
    growto(700);
    growthstate.nroots = 1;
    InitialiseGrowth();
    ResetSeeds();
    growto(800);
    out.cells.assign(cells.begin(), cells.begin() + ncells);
    growthsearch = SEARCH_INDEX;
    return out;
  };
  GROWN scan = run(SEARCH_SCAN, 0);
  GROWN index = run(SEARCH_INDEX, 0);
  GROWN runs = run(SEARCH_INDEX, 1);
  ExpectSameAggregate(scan, index, "changes between steps");
  ExpectSameAggregate(scan, runs, "changes between runs of steps");
}

// Roots at chosen places (relative to p) read from a seed file.
void Roots(XYZ p, const std::vector<XYZ> &offsets) {
  std::string text;
  char line[128];
  for (const XYZ &o : offsets) {
    snprintf(line, sizeof(line), "%.17g %.17g %.17g\n", p.x + o.x, p.y + o.y, p.z + o.z);
    text += line;
  }
  std::string path = WriteTempFile("indexroots.txt", text);
  FILEMESSAGE msg = {};
  ASSERT_EQ(ReadRootsFile(path.c_str(), &msg), 1);
  remove(path.c_str());
  SyncSearchIndex();
}

TEST(SearchIndex, KeepsTheEarlyRejectionBelowBranchLengthOne) {
  ResetGrowthForTest();
  growthstate.branchlength = 0.3;  // touching: squared distance below 0.09
  XYZ p = {1, 2, 3};
  XYZ far = {50, 50, 50};
  XYZ a = {0.2, 0.1, 0.1};  // older: squared distance 0.06, touching, dx 0.2
  XYZ b = {0.1, -0.2, -0.3};  // newer: squared distance 0.14, not touching
  int best = -7, ok = 0;

  // b sets the running squared distance to 0.14 and a's dx of 0.2 exceeds
  // it: the scan passes the touching cell a by, and so must the index.
  Roots(p, {far, a, b});
  ASSERT_EQ(ncells, 3);
  EXPECT_EQ(IndexSearch(p, 0, 3, 0, &best, &ok), 0);
  EXPECT_EQ(ok, 1);

  // Without b, a touches.
  Roots(p, {far, a});
  EXPECT_EQ(IndexSearch(p, 0, 2, 0, &best, &ok), 1);
  EXPECT_EQ(ok, 1);
  EXPECT_EQ(best, 1);

  // b at squared distance 0.81 (0.9 away): a's dx 0.2 passes, a touches.
  XYZ b2 = {0, 0, -0.9};
  Roots(p, {far, a, b2});
  EXPECT_EQ(IndexSearch(p, 0, 3, 0, &best, &ok), 1);
  EXPECT_EQ(best, 1);

  // With association the search sees one index class of three: class 1
  // holds a alone, which touches; class 2 holds b alone, which does not.
  Roots(p, {far, a, b});
  EXPECT_EQ(IndexSearch(p, 1, 3, 1, &best, &ok), 1);
  EXPECT_EQ(best, 1);
  EXPECT_EQ(IndexSearch(p, 1, 3, 2, &best, &ok), 0);
}

TEST(SearchIndex, ProvesFarParticlesAwayAndStillSeesNewCells) {
  ResetGrowthForTest();  // one root at the origin, branch length 1
  SyncSearchIndex();
  int best = -1, ok = 0;
  XYZ p = {30, 0, 0};
  EXPECT_EQ(IndexSearch(p, 0, 1, 0, &best, &ok), 0);
  EXPECT_EQ(ok, 1);
  ASSERT_EQ(searchindex.ball, 1);
  // The empty ball must keep at least one branch length to the root.
  EXPECT_LE(sqrt(searchindex.safe2), 30 - 1);
  // A cell appended next to the particle is found at once.
  XYZ q = {29.5, 0.2, 0};
  unsigned revision = cellsrevision;
  AppendCell(q, 0, 0);
  IndexAppendedCell(revision);
  EXPECT_EQ(IndexSearch(p, 0, 1, 0, &best, &ok), 1);
  EXPECT_EQ(best, 1);
}

// The empty balls are what lets most steps skip the search: a ball that
// held a point within reach of a cell would let a particle pass through the
// aggregate. Cells on random branches; particles from touching distance out
// to far beyond every field's reach.
TEST(SearchIndex, EmptyBallsKeepOutOfReachOfEveryCell) {
  for (double branchlength : {0.3, 1.0, 2.5}) {
    ResetGrowthForTest();
    growthstate.branchlength = branchlength;
    srand48(31);
    XYZ p = {0, 0, 0};
    for (int i = 0; i < 3000; i++) {
      if (i % 300 == 0) p = XYZ{drand48() * 40 - 20, drand48() * 40 - 20, drand48() * 40 - 20};
      p.x += drand48() - 0.5;
      p.y += drand48() - 0.5;
      p.z += drand48() - 0.5;
      AppendCell(p, 0, ncells - 1);
    }
    SyncSearchIndex();
    double reach = branchlength > 1 ? branchlength : 1;
    int balls = 0, wide = 0;
    for (int k = 0; k < 4000; k++) {
      const CELL &c = cells[lrand48() % ncells];
      double away = 0.2 + (k % 8) * (k % 8) * 2.0;  // up to 98
      XYZ d = {drand48() - 0.5, drand48() - 0.5, drand48() - 0.5};
      Normalise(&d);
      XYZ q = {c.p.x + away * d.x, c.p.y + away * d.y, c.p.z + away * d.z};
      searchindex.ball = 0;
      int best = -1, ok = 0;
      if (IndexSearch(q, 0, 1, 0, &best, &ok) || !ok || !searchindex.ball) continue;
      balls++;
      double safe = sqrt(searchindex.safe2);
      if (safe > 10) wide++;
      double nearest = 1e300;
      for (int i = 0; i < ncells; i++) {
        double dist = VectorLength(q, cells[i].p);
        if (dist < nearest) nearest = dist;
      }
      ASSERT_GE(nearest, reach + safe) << "branch length " << branchlength << ", query " << k;
    }
    EXPECT_GT(balls, 2000) << branchlength;
    EXPECT_GT(wide, 200) << branchlength;
  }
}

}  // namespace
