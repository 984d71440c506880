// Generated sample surfaces: counts, names, orientation.
#include <gtest/gtest.h>
#include <math.h>
#include <stdio.h>
#include <string.h>

#include <string>

#include "app/records.h"
#include "surface/samples.h"
#include "surface/stl.h"

// Builds a sample in debug mode; returns how many facets were generated
// (those kept plus the "Removed %d bad faces" count).
static int Generate(int code) {
  SetOptionDefaults();
  options.debug = 1;
  testing::internal::CaptureStderr();
  MakeSampleSurface(code);
  std::string err = testing::internal::GetCapturedStderr();
  options.debug = 0;
  int removed = 0;
  sscanf(err.c_str(), "Removed %d bad faces", &removed);
  return nstltri + removed;
}

TEST(SampleSurface, GeneratedAndKeptCounts) {
  struct {
    int code, generated, kept;
  } want[] = {
      {SAMPLE_CYLINDER, 288, 288},       {SAMPLE_OPENCYLINDER, 216, 216},
      {SAMPLE_DOUBLEOPENCYLINDER, 144, 144}, {SAMPLE_BOX, 16, 16},
      {SAMPLE_OPENBOX, 12, 12},          {SAMPLE_DOUBLEOPENBOX, 8, 8},
      {SAMPLE_SPHERE, 5184, 5040},       {SAMPLE_HEMISPHERE, 2592, 2520},
      {SAMPLE_CLOSEDHEMISPHERE, 5184, 5040}, {SAMPLE_PLANE, 800, 800},
      {SAMPLE_NONE, 0, 0},
  };
  for (auto &w : want) {
    SCOPED_TRACE(w.code);
    EXPECT_EQ(Generate(w.code), w.generated);
    EXPECT_EQ(nstltri, w.kept);
  }
}

TEST(SampleSurface, NamesAndTable) {
  const char *labels[] = {"None", "Cylinder", "Open (single) cylinder", "Open (double) cylinder",
                          "Box", "Open (single) Box", "Open (double) Box", "Sphere",
                          "Hemisphere", "Closed hemisphere", "Plane"};
  const int codes[] = {100, 1, 2, 3, 11, 12, 13, 21, 22, 23, 31};
  ASSERT_EQ(nsamplesurfaces, 11);
  for (int i = 0; i < 11; i++) {
    EXPECT_EQ(samplesurfaces[i].code, codes[i]);
    EXPECT_STREQ(samplesurfaces[i].name, labels[i]);
    SetOptionDefaults();
    EXPECT_EQ(MakeSampleSurface(codes[i]), 1);
    EXPECT_STREQ(growthstate.stlname, labels[i]);
  }
  EXPECT_STREQ(SampleSurfaceName(7), "None");
}

TEST(SampleSurface, ReplacesThePreviousSurface) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_SPHERE);
  MakeSampleSurface(SAMPLE_BOX);
  EXPECT_EQ(nstltri, 16);
  EXPECT_STREQ(growthstate.stlname, "Box");
  // An unknown code acts as "None" and says so.
  EXPECT_EQ(MakeSampleSurface(42), 0);
  EXPECT_EQ(nstltri, 0);
  EXPECT_STREQ(growthstate.stlname, "None");
  EXPECT_EQ(stlmid.x, 0);
  EXPECT_EQ(stlmid.y, 0);
  EXPECT_EQ(stlmid.z, 0);
  EXPECT_EQ(stlmin.x, 1e32);
  EXPECT_EQ(stlmax.x, -1e32);
}

TEST(SampleSurface, CylinderTubeOutwardBothCapsFacePlusZ) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_CYLINDER);
  int tube = 0, bottom = 0, top = 0;
  for (int i = 0; i < nstltri; i++) {
    const FACET &f = stltri[i];
    if (fabs(f.mid.z + 20) < 1e-9) {
      bottom++;
      EXPECT_NEAR(f.n.z, 1, 1e-12);  // into the solid
      EXPECT_EQ(f.p[0].x, 0);         // the centre comes first
      EXPECT_EQ(f.p[0].z, -20);
    } else if (fabs(f.mid.z - 20) < 1e-9) {
      top++;
      EXPECT_NEAR(f.n.z, 1, 1e-12);
    } else {
      tube++;
      EXPECT_NEAR(f.n.z, 0, 1e-12);
      EXPECT_GT(f.n.x * f.mid.x + f.n.y * f.mid.y, 0.99 * sqrt(f.mid.x * f.mid.x + f.mid.y * f.mid.y));
      for (int k = 0; k < 3; k++) EXPECT_NEAR(hypot(f.p[k].x, f.p[k].y), 20, 1e-12);
    }
  }
  EXPECT_EQ(tube, 144);
  EXPECT_EQ(bottom, 72);
  EXPECT_EQ(top, 72);
  // The first facet starts the tube at angle 0: Q(0,+20), Q(0,-20), Q(5,-20).
  EXPECT_EQ(stltri[0].p[0].x, 20);
  EXPECT_EQ(stltri[0].p[0].z, 20);
  EXPECT_EQ(stltri[0].p[1].z, -20);
  EXPECT_NEAR(stltri[0].p[2].y, 20 * sin(5 * M_PI / 180), 1e-7);
  EXPECT_GT(stltri[0].p[2].y, 0);

  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_OPENCYLINDER);
  EXPECT_LT(stlmax.z, 20.0 + 1e-12);
  for (int i = 0; i < nstltri; i++) EXPECT_LT(stltri[i].mid.z, 19);  // no top cap
  MakeSampleSurface(SAMPLE_DOUBLEOPENCYLINDER);
  for (int i = 0; i < nstltri; i++) EXPECT_NEAR(stltri[i].n.z, 0, 1e-12);
}

TEST(SampleSurface, BoxIsACubeTurnedByFortyFiveDegrees) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_BOX);
  ASSERT_EQ(nstltri, 16);
  // Corners on the axes at 20 * sqrt(2); degrees converted with the truncated
  // factor 0.0174532925, so cos(90 deg) leaves 28.28 * 1.7949e-9 instead of ~1e-15.
  const FACET &f = stltri[0];
  EXPECT_EQ(f.p[0].x, 28.284271247461902);
  EXPECT_NEAR(f.p[2].x, 28.284271247461902 * 1.79489661923e-9, 1e-13);
  EXPECT_NEAR(f.p[2].y, 28.284271247461902, 1e-12);
  // The side between the corners on +x and +y faces (1,1,0)/sqrt(2).
  EXPECT_NEAR(f.n.x, sqrt(0.5), 1e-8);
  EXPECT_NEAR(f.n.y, sqrt(0.5), 1e-8);
  EXPECT_NEAR(stlmin.x, -28.284271247461902, 1e-12);
  EXPECT_NEAR(stlmax.y, 28.284271247461902, 1e-12);
  int caps = 0;
  for (int i = 0; i < nstltri; i++) {
    if (fabs(fabs(stltri[i].mid.z) - 20) < 1e-9) {
      caps++;
      EXPECT_NEAR(stltri[i].n.z, 1, 1e-12);
    } else {
      EXPECT_GT(DotProduct(stltri[i].n, stltri[i].mid), 0);
    }
  }
  EXPECT_EQ(caps, 8);
}

// No two vertices of a kept facet closer than 1e-6 on every axis.
static int HasCoincidentVertices(const FACET &f) {
  return VectorEqual(f.p[0], f.p[1]) || VectorEqual(f.p[1], f.p[2]) || VectorEqual(f.p[2], f.p[0]);
}

TEST(SampleSurface, SphereOutwardWithPoleFacetsRemoved) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_SPHERE);
  int south = 0, north = 0;
  for (int i = 0; i < nstltri; i++) {
    const FACET &f = stltri[i];
    EXPECT_FALSE(HasCoincidentVertices(f));
    EXPECT_GT(DotProduct(f.n, f.mid), 0);
    for (int k = 0; k < 3; k++) {
      EXPECT_NEAR(Modulus(f.p[k]), 20, 1e-9);
      if (f.p[k].z < -19.9999) south++;
      if (f.p[k].z > 19.9999) north++;
    }
  }
  // One facet per column is left at each pole, touching it with one vertex.
  EXPECT_EQ(south, 72);
  EXPECT_EQ(north, 72);
  EXPECT_NEAR(stlmin.z, -20, 1e-12);
  EXPECT_NEAR(stlmax.z, 20, 1e-12);
}

TEST(SampleSurface, HemispheresLowerHalfAndFlatDisc) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_HEMISPHERE);
  EXPECT_EQ(stlmax.z, 0);
  for (int i = 0; i < nstltri; i++) {
    EXPECT_FALSE(HasCoincidentVertices(stltri[i]));
    EXPECT_GT(DotProduct(stltri[i].n, stltri[i].mid), 0);
  }

  MakeSampleSurface(SAMPLE_CLOSEDHEMISPHERE);
  int disc = 0;
  for (int i = 0; i < nstltri; i++) {
    const FACET &f = stltri[i];
    EXPECT_FALSE(HasCoincidentVertices(f));
    if (f.p[0].z == 0 && f.p[1].z == 0 && f.p[2].z == 0) {
      disc++;
      EXPECT_NEAR(f.n.z, 1, 1e-12);
    } else {
      EXPECT_GT(DotProduct(f.n, f.mid), 0);
    }
  }
  EXPECT_EQ(disc, 2520);  // 18 flattened bands of 144, less 72 at the centre
  EXPECT_EQ(stlmax.z, 0);
  EXPECT_STREQ(growthstate.stlname, "Closed hemisphere");
}

TEST(SampleSurface, PlaneFacesMinusZInVertexOrder) {
  SetOptionDefaults();
  MakeSampleSurface(SAMPLE_PLANE);
  ASSERT_EQ(nstltri, 800);
  for (int i = 0; i < nstltri; i++) {
    EXPECT_EQ(stltri[i].n.z, -1);
    EXPECT_EQ(stltri[i].plane.d, -20);
  }
  const double first[2][3][2] = {{{-200, -200}, {-200, -180}, {-180, -180}},
                                 {{-180, -180}, {-180, -200}, {-200, -200}}};
  for (int f = 0; f < 2; f++) {
    for (int k = 0; k < 3; k++) {
      EXPECT_EQ(stltri[f].p[k].x, first[f][k][0]);
      EXPECT_EQ(stltri[f].p[k].y, first[f][k][1]);
      EXPECT_EQ(stltri[f].p[k].z, -20);
    }
  }
  // x outer, y inner: the second pair starts one step along y.
  EXPECT_EQ(stltri[2].p[0].x, -200);
  EXPECT_EQ(stltri[2].p[0].y, -180);
  EXPECT_EQ(stltri[799].p[0].x, 200);
  EXPECT_EQ(stltri[799].p[0].y, 200);
  EXPECT_EQ(stltri[799].p[2].x, 180);
  EXPECT_EQ(stlmin.x, -200);
  EXPECT_EQ(stlmax.y, 200);
  EXPECT_EQ(stlmid.x, 0);
  EXPECT_EQ(stlmid.z, -20);
}
