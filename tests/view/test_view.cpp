// The camera and each eye's projection, cell colours, the overlay text and
// the record changes of the menus.
#include <math.h>

#include "growth/growth.h"
#include "surface/stl.h"
#include "test_util.h"
#include "view/camera.h"
#include "view/choosecolour.h"
#include "view/menutables.h"
#include "view/overlay.h"

namespace {

using Camera = Fresh;
using Colours = Fresh;
using Overlay = Fresh;
using Menus = Fresh;

#define EXPECT_XYZ_NEAR(p, ex, ey, ez, tol) \
  do {                                      \
    EXPECT_NEAR((p).x, ex, tol);            \
    EXPECT_NEAR((p).y, ey, tol);            \
    EXPECT_NEAR((p).z, ez, tol);            \
  } while (0)

// The eye always sits on the line through the origin along vd.
void ExpectEyeOnAxis(void) {
  double r = Modulus(camera.vp);
  EXPECT_XYZ_NEAR(camera.vp, -r * camera.vd.x, -r * camera.vd.y, -r * camera.vd.z, 1e-9);
}

TEST_F(Camera, HomeResetsTheViewButKeepsWindowAndStereo) {
  camera.screenwidth = 1600, camera.screenheight = 700, camera.stereo = STEREO_DUAL;
  camera.aperture = 12, camera.vp = V(5, 7, 0), camera.vd = V(0, 1, 0), camera.vu = V(1, 0, 0), camera.pr.z = 3;
  CameraHome();
  EXPECT_EQ(camera.screenwidth, 1600);
  EXPECT_EQ(camera.screenheight, 700);
  EXPECT_EQ(camera.stereo, STEREO_DUAL);
  EXPECT_EQ(camera.aperture, 60);
  EXPECT_XYZ_NEAR(camera.vp, 60, 0, 0, 0);
  EXPECT_XYZ_NEAR(camera.vd, -1, 0, 0, 0);
  EXPECT_XYZ_NEAR(camera.vu, 0, 0, 1, 0);
  EXPECT_XYZ_NEAR(camera.pr, 0, 0, 0, 0);
  EXPECT_EQ(camera.focallength, 60);
  EXPECT_EQ(camera.eyesep, 2);
  EXPECT_EQ(camera.near, 6);
  EXPECT_EQ(camera.far, 600);
  ForgetCameraHome();  // a first home sets mono and 800 x 600
  CameraHome();
  EXPECT_EQ(camera.screenwidth, 800);
  EXPECT_EQ(camera.stereo, STEREO_MONO);
}

TEST_F(Camera, TurnsAboutUpRightAndViewDirection) {
  const double a = 0.3, c = cos(a), s = sin(a);
  RotateCamera(a, 0, 0);  // about the up vector (z): the eye swings round in xy
  EXPECT_XYZ_NEAR(camera.vd, -c, -s, 0, 1e-12);
  EXPECT_XYZ_NEAR(camera.vp, 60 * c, 60 * s, 0, 1e-10);
  EXPECT_XYZ_NEAR(camera.vu, 0, 0, 1, 1e-12);
  CameraHome();
  RotateCamera(0, a, 0);  // about the right vector, +y at home
  EXPECT_XYZ_NEAR(camera.vp, 60 * c, 0, -60 * s, 1e-10);
  EXPECT_XYZ_NEAR(camera.vu, s, 0, c, 1e-12);
  ExpectEyeOnAxis();
  CameraHome();
  RotateCamera(0, 0, a);  // roll about the view direction turns only the up vector
  EXPECT_XYZ_NEAR(camera.vu, 0, s, c, 1e-12);
  EXPECT_XYZ_NEAR(camera.vp, 60, 0, 0, 0);
  // Both orbits at once: the second turn is about the right vector taken
  // before the first, (0, 1, 0).
  const double b = 0.2;
  CameraHome();
  RotateCamera(a, b, 0);
  EXPECT_XYZ_NEAR(camera.vd, -c * cos(b), -s, c * sin(b), 1e-12);
  EXPECT_XYZ_NEAR(camera.vu, sin(b), 0, cos(b), 1e-12);
  ExpectEyeOnAxis();
  CameraHome();
  for (int i = 0; i < 500; i++) RotateCamera(0.01, -0.013, 0.007);
  EXPECT_NEAR(Modulus(camera.vp), 60, 1e-8);
  EXPECT_NEAR(Modulus(camera.vu), 1, 1e-12);
  ExpectEyeOnAxis();
}

TEST_F(Camera, ZoomLimitsAreTestedBeforeTheStepAndDollyNeverCrossesTheOrigin) {
  for (int i = 0; i < 200; i++) ZoomCamera(ZOOM_IN);
  EXPECT_NEAR(camera.aperture, 60 * pow(0.95, 80), 1e-9);  // 80 steps: just below 1
  CameraHome();
  for (int i = 0; i < 50; i++) ZoomCamera(ZOOM_OUT);
  EXPECT_NEAR(camera.aperture, 60 / pow(0.95, 8), 1e-9);  // 8 steps: just above 90
  ZoomCamera(ZOOM_IN);
  EXPECT_NEAR(camera.aperture, 60 / pow(0.95, 7), 1e-9);
  CameraHome();
  DollyCamera(DOLLY_CLOSER);
  EXPECT_XYZ_NEAR(camera.vp, 57, 0, 0, 1e-12);
  DollyCamera(DOLLY_AWAY);
  DollyCamera(DOLLY_AWAY);
  EXPECT_XYZ_NEAR(camera.vp, 60 / 0.95, 0, 0, 1e-12);
  RotateCamera(0.4, 0.1, 0);
  XYZ vd = camera.vd;
  for (int i = 0; i < 1000; i++) DollyCamera(DOLLY_CLOSER);
  EXPECT_NEAR(Modulus(camera.vp) / (60 / 0.95 * pow(0.95, 1000)), 1, 1e-9);
  ExpectEyeOnAxis();
  EXPECT_EQ(memcmp(&camera.vd, &vd, sizeof(XYZ)), 0);  // vd left alone
}

TEST_F(Camera, EachEyeItsHalfItsOffsetAndItsShiftedFrustum) {
  const double top = 6 * tan(M_PI / 6);  // near 6, aperture 60
  EYEVIEW m = EyeView(EYE_MONO);
  EXPECT_NEAR(m.top, top, 1e-6);
  EXPECT_EQ(m.bottom, -m.top);
  EXPECT_NEAR(m.right, 4.0 / 3 * top, 1e-6);
  EXPECT_EQ(m.left, -m.right);
  EXPECT_EQ(m.near, 6);
  EXPECT_EQ(m.far, 600);
  EXPECT_EQ(m.width, 800);
  EXPECT_XYZ_NEAR(m.eye, 60, 0, 0, 0);
  // Side by side, 1601 wide: halves of 800, the right eye in the right half
  // and one unit (half of eyesep 2) along vd x vu = +y; the frustum shifted
  // by 0.5 eyesep near / focallength = 0.1 against the eye.
  camera.stereo = STEREO_DUAL;
  camera.screenwidth = 1601;
  for (int eye : {EYE_RIGHT, EYE_LEFT}) {
    double side = eye == EYE_RIGHT ? 1 : -1;
    EYEVIEW v = EyeView(eye);
    EXPECT_EQ(v.x, eye == EYE_RIGHT ? 800 : 0);
    EXPECT_EQ(v.width, 800);
    EXPECT_EQ(v.height, 600);
    EXPECT_XYZ_NEAR(v.eye, 60, side, 0, 1e-12);
    EXPECT_NEAR(v.right, 1601 / 1200.0 * top - side * 0.1, 1e-6);
    EXPECT_NEAR(v.left, -1601 / 1200.0 * top - side * 0.1, 1e-6);
  }
  // Active stereo: both eyes over the whole window. Closer, the clip planes
  // and the separation follow the eye.
  camera.stereo = STEREO_ACTIVE;
  camera.screenwidth = 800;
  camera.vp = V(30, 0, 0);
  FrameCamera();
  EYEVIEW v = EyeView(EYE_LEFT);
  EXPECT_EQ(v.x, 0);
  EXPECT_EQ(v.width, 800);
  EXPECT_EQ(v.near, 3);
  EXPECT_EQ(v.far, 300);
  EXPECT_XYZ_NEAR(v.eye, 30, -0.5, 0, 1e-12);
  EXPECT_NEAR(v.left, -4.0 / 3 * v.top + 0.05, 1e-9);
}

TEST_F(Colours, ByRootForPointsAndLinesWithAssociationElseByWeight) {
  ncells = 0;
  growthstate.nroots = 3, growthstate.associate = 1, growthstate.maxweight = 6;
  for (int i = 0; i < 50; i++) AppendCell(V(0, 0, 0), 6, i - 1);  // by weight all would be red
  const double want[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
  for (int i = 0; i < 3; i++)
    for (int mode : {DLADRAW_OFF, DLADRAW_POINTS, DLADRAW_LINES}) {
      COLOUR c = ChooseColour(i + 3, mode);
      EXPECT_EQ(c.r, want[i][0]); EXPECT_EQ(c.g, want[i][1]); EXPECT_EQ(c.b, want[i][2]);
    }
  COLOUR c = ChooseColour(1, DLADRAW_TUBES);  // tubes go by weight: red
  EXPECT_EQ(c.r, 1);
  EXPECT_NEAR(c.g, 0, 1e-12);
  EXPECT_NEAR(ChooseColour(1, DLADRAW_FOUR).g, 0, 1e-12);
  // (i mod nroots) mod 21, the table of 21.
  growthstate.nroots = 25;
  const double table[21][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {0, 1, 1}, {1, 0, 1}, {1, .5, .5},
                               {.5, 1, .5}, {.5, .5, 1}, {1, 1, .5}, {.5, 1, 1}, {1, .5, 1}, {.5, 0, 0}, {0, .5, 0},
                               {0, 0, .5}, {.5, .5, 0}, {0, .5, .5}, {.5, 0, .5}, {.25, .25, .25}, {.5, .5, .5}, {.75, .75, .75}};
  for (int i = 0; i < 50; i++) {
    c = ChooseColour(i, DLADRAW_LINES);
    const double *t = table[(i % 25) % 21];
    EXPECT_EQ(c.r, t[0]) << i;
    EXPECT_EQ(c.g, t[1]);
    EXPECT_EQ(c.b, t[2]);
  }
  // By weight: ln(w + 1) from 0 to ln(maxweight / 3 + 1) = ln 3 on the blue to red map.
  for (int roots : {1, 3, 0}) {
    growthstate.nroots = roots, growthstate.associate = roots != 3;
    cells[0].weight = 0, cells[1].weight = 2, cells[2].weight = sqrt(3.0) - 1, cells[3].weight = pow(3.0, 0.25) - 1;
    const double w[4][3] = {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}, {0, 1, 1}};
    for (int i = 0; i < 4; i++) {
      c = ChooseColour(i, DLADRAW_LINES);
      EXPECT_NEAR(c.r, w[i][0], 1e-6); EXPECT_NEAR(c.g, w[i][1], 1e-6); EXPECT_NEAR(c.b, w[i][2], 1e-6);
    }
  }
}

struct LINE { int y; const char *text; };

void ExpectLines(const OVERLAYLINE *lines, int n, int x, std::initializer_list<LINE> want) {
  ASSERT_EQ(n, (int)want.size());
  int i = 0;
  for (const LINE &w : want) {
    SCOPED_TRACE(i);
    EXPECT_EQ(lines[i].x, x);
    EXPECT_EQ(lines[i].y, w.y);
    EXPECT_STREQ(lines[i++].text, w.text);
  }
}

TEST_F(Overlay, InformationBlockLinesAndPlaces) {
  GROWTHSTATE &g = growthstate;
  g.seed = 7, g.bias = 2.5, g.branchlength = 1.5, g.stickiness = 80, g.rotation = -3, g.thickstart = 0.4;
  g.thickend = 0.01, g.intersectrange = 10, g.radius = 16.0175, g.lifespan = 310, g.sourcetype = 0;
  OVERLAYLINE lines[MAXINFOLINES];
  // One root: no distribution lines. No surface: the particles 26 below its name.
  ExpectLines(lines, InfoLines(lines, MAXINFOLINES, 600), 10,
              {{574, "Version: 1.02"}, {561, "Seed: 7"}, {548, "Bias towards origin: 2.5% of step length"},
               {535, "Branch length: 1.5"}, {522, "Stickiness: 80%"}, {509, "Rotation: -3 degrees about z axis"},
               {496, "Branch thickness: 0.4 to 0.01"}, {483, "Intersection range: 10% of branch length"},
               {470, "Seed association: Off"}, {457, "Number of roots: 1"}, {444, "Source type: Unknown"},
               {431, "Constraint surface: None"}, {405, "Number of particles: 1"}, {392, "Current radius: 16.0175"},
               {379, "Particle life span: 310"}});
  EXPECT_EQ(InfoLines(lines, 3, 600), 3);
  g.associate = 1, g.nroots = 3, g.rootrange = 20, g.sourcetype = 9;
  CopyName(g.rootname, std::string(127, 'b').c_str(), sizeof(g.rootname));
  CopyName(g.stlname, "cup.stl", sizeof(g.stlname));
  AppendFacet(V(-1, 0, 2), V(3, 0.5, 2), V(0, -2.25, 7));
  AppendFacet(V(0, 0, 0), V(1, 1, 1), V(2, -4, 3));
  UpdateSTL();
  int n = InfoLines(lines, MAXINFOLINES, 300);
  ASSERT_EQ(n, 22);
  const LINE tail[] = {{170, "Seed association: On"}, {157, "Number of roots: 3"}, {144, "Root distribution range: 20"},
                       {131, nullptr}, {118, "Source type: Single axis (-z)"}, {105, "Constraint surface: cup.stl"},
                       {92, "Faces in constraint surface: 2"}, {79, "Surface bounds"}, {66, "   -1 <= x <= 3"},
                       {53, "   -4 <= y <= 1"}, {40, "   0 <= z <= 7"}, {14, "Number of particles: 1"},
                       {1, "Current radius: 16.0175"}, {-12, "Particle life span: 310"}};
  for (int i = 0; i < 14; i++) {
    EXPECT_EQ(lines[8 + i].y, tail[i].y) << i;
    if (tail[i].text) {
      EXPECT_STREQ(lines[8 + i].text, tail[i].text);
    }
  }
  EXPECT_EQ(lines[11].text, "Root distribution: " + std::string(63 - 19, 'b'));  // cut to 63 characters
  CopyName(g.stlname, std::string(255, 'a').c_str(), sizeof(g.stlname));
  InfoLines(lines, MAXINFOLINES, 300);
  EXPECT_EQ(strlen(lines[13].text), 63u);
}

TEST_F(Overlay, StatisticsBlockListsNonZeroCountsClosingUp) {
  const int branches[10] = {5, 3, 2, 1, 0, 7, 9, 9, 9, 9}, counts[10] = {1, 0, 8, 27, -1, 0, 3, -1, -1, -1};
  const double sizes[10] = {12.5, 8.3, 5.555556, 3.7037037, 2.5, 1.6, 1234.5678, 0, 0, 0};
  for (int k = 0; k < 10; k++) stats.branchcount[k] = branches[k], stats.boxcount[k] = counts[k], stats.boxsize[k] = sizes[k];
  OVERLAYLINE lines[MAXSTATSLINES];
  ExpectLines(lines, StatisticsLines(lines, MAXSTATSLINES, 801, 600), 400,
              {{574, "Statistics"}, {561, "Branch distribution"}, {548, "   0:5 1:3 2:2 3:1 4:0 5:7"},
               {535, "Box counting"}, {522, "     12.500 : 1\n"}, {509, "      5.556 : 8\n"},
               {496, "      3.704 : 27\n"}, {483, "   1234.568 : 3\n"}});
  EXPECT_STREQ(SourceTypeText(9, 1), "Source type: Single axis (-x)");  // the report's name for 9
  EXPECT_STREQ(SourceTypeText(18, 1), "Source type: Unknown");
}

TEST_F(Menus, SaveEntriesRootNamesAndTheirRestart) {
  const int expect[7][2] = {{3, 0}, {3, 1}, {1, 1}, {0, 1}, {0, 2}, {4, 1}, {5, 1}};
  for (int v = 0; v <= 8; v++) {
    int format = -9, variant = -9;
    EXPECT_EQ(SaveMenuFormat(v, &format, &variant), v >= 1 && v <= 7);
    EXPECT_EQ(format, v >= 1 && v <= 7 ? expect[v - 1][0] : -9) << v;
    EXPECT_EQ(variant, v >= 1 && v <= 7 ? expect[v - 1][1] : -9) << v;
  }
  // Each value names the distribution of the label one row above it.
  const char *names[9] = {NULL, "Origin", "Spherical", "Random: x axis plane", "Random: y axis plane",
                          "Random: z axis plane", "Ring: x axis plane", "Ring: y axis plane", "Ring: z axis plane"};
  for (int v = 1; v <= 8; v++) EXPECT_STREQ(RootMenuName(v), names[v]);
  EXPECT_EQ(RootMenuName(0), nullptr);
  EXPECT_EQ(RootMenuName(9), nullptr);
  SetRootDistribution(7);
  SetRootDistribution(12);  // outside 1 to 8 only the number changes
  EXPECT_EQ(growthstate.rootdistribution, 12);
  EXPECT_STREQ(growthstate.rootname, "Ring: y axis plane");
  // "Spherical" (1) with five roots asked for: one root at the origin.
  growthstate.nroots = 5;
  SetRootDistribution(1);
  InitialiseGrowth();
  ResetSeeds();
  EXPECT_EQ(ncells, 1);
  EXPECT_EQ(Modulus(cells[0].p), 0);
  EXPECT_STREQ(growthstate.rootname, "Origin");
}

}  // namespace
