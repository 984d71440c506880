// The camera and each eye's projection, cell colours and the overlay text.
#include "surface/stl.h"
#include "test_util.h"
#include "view/camera.h"
#include "view/choosecolour.h"
#include "view/overlay.h"

namespace {

using Camera = Fresh;
using Colours = Fresh;
using Overlay = Fresh;

XYZ Rgb(COLOUR c) { return V(c.r, c.g, c.b); }

TEST_F(Camera, HomeKeepsWindowAndStereoAndBothOrbitsShareTheFirstRightVector) {
  sim.camera.screenwidth = 1600;
  sim.camera.screenheight = 700;
  sim.camera.stereo = STEREO_DUAL;
  sim.camera.aperture = 12;
  sim.camera.vp = V(5, 7, 0);
  sim.camera.vd = V(0, 1, 0);
  sim.camera.vu = V(1, 0, 0);
  sim.camera.pr.z = 3;
  CameraHome(sim);  // the eye, up and aperture at home: tests/gui/camera.sh
  EXPECT_EQ(sim.camera.screenwidth * 10000 + sim.camera.screenheight * 10 + sim.camera.stereo, 16007002);
  EXPECT_XYZ(sim.camera.vd, -1, 0, 0, 0);
  EXPECT_XYZ(sim.camera.pr, 0, 0, 0, 0);
  ForgetCameraHome(sim);  // a first home sets mono and 800 x 600
  CameraHome(sim);
  EXPECT_EQ(sim.camera.screenwidth * 10 + sim.camera.stereo, 8000);
  // Both orbits at once: the second turn is about the right vector taken
  // before the first, (0, 1, 0); the eye stays on its axis.
  RotateCamera(sim, 0.3, 0.2, 0);
  EXPECT_XYZ(sim.camera.vd, -cos(0.3) * cos(0.2), -sin(0.3), cos(0.3) * sin(0.2), 1e-12);
  EXPECT_XYZ(sim.camera.vu, sin(0.2), 0, cos(0.2), 1e-12);
  EXPECT_XYZ(sim.camera.vp, -60 * sim.camera.vd.x, -60 * sim.camera.vd.y, -60 * sim.camera.vd.z, 1e-9);
  for (int i = 0; i < 500; i++) RotateCamera(sim, 0.01, -0.013, 0.007);
  EXPECT_NEAR(Modulus(sim.camera.vp), 60, 1e-8);
  EXPECT_NEAR(Modulus(sim.camera.vu), 1, 1e-12);
  DollyCamera(sim, DOLLY_CLOSER);  // along its own direction, vd left alone
  XYZ vd = sim.camera.vd;
  EXPECT_XYZ(sim.camera.vp, -57 * vd.x, -57 * vd.y, -57 * vd.z, 1e-8);
}

// Side by side stereo gives each eye half the window (1601: 800), the right eye the right half; each eye sits
// half the separation (focal length / 30) along vd x vu = +y, its frustum shifted against it by
// 0.5 eyesep near / focal length. Clip planes and separation follow the eye's distance.
TEST_F(Camera, EachEyeItsHalfItsOffsetAndItsShiftedFrustum) {
  struct {
    int stereo, screenwidth;
    double distance;
    int eye, x;
    double side;
  } cases[] = {{STEREO_MONO, 800, 60, EYE_MONO, 0, 0},
               {STEREO_DUAL, 1601, 60, EYE_RIGHT, 800, 0.5},
               {STEREO_DUAL, 1601, 60, EYE_LEFT, 0, -0.5},
               {STEREO_ACTIVE, 800, 30, EYE_LEFT, 0, -0.5}};
  for (auto &c : cases) {
    SCOPED_TRACE(c.eye);
    sim.camera.stereo = c.stereo;
    sim.camera.screenwidth = c.screenwidth;
    sim.camera.vp = V(c.distance, 0, 0);
    FrameCamera(sim);
    EYEVIEW v = EyeView(sim, c.eye);
    double near = c.distance / 10, top = near * tan(M_PI / 6), shift = c.side * c.distance / 300;
    double right = (c.stereo == STEREO_DUAL ? c.screenwidth / 1200.0 : c.screenwidth / 600.0) * top;
    EXPECT_EQ(v.x * 10000 + v.width * 10 + (v.height == 600), c.x * 10000 + 8001);
    EXPECT_XYZ(v.eye, c.distance, c.side * c.distance / 30, 0, 1e-12);
    EXPECT_XYZ(V(v.near, v.far, v.top), near, 10 * c.distance, top, 1e-6);
    EXPECT_XYZ(V(v.bottom, v.left, v.right), -top, -right - shift, right - shift, 1e-6);
  }
}

// --fit: a sphere of radius 1 widened to 1.05 touches the frame's tighter side, worked out by hand from the
// half-angles (60 degrees high: sin 30 = 1/2; 3 wide by 4 high: tan = 0.75 tan 30, sin = sqrt(3/19)); off the
// axis the centre's offset adds to the depth a plane needs; beyond the clip planes (a tenth and ten times the
// distance) the eye stays farther. Home camera: looks along -x, up z, right +y.
TEST_F(Camera, FitDistanceTouchesTheTighterSideOffAxisToo) {
  struct {
    double aperture;
    int width, height, stereo;
    XYZ centre;
    double distance;
  } cases[] = {{60, 800, 600, STEREO_MONO, V(0, 0, 0), 2.1},
               {60, 600, 800, STEREO_MONO, V(0, 0, 0), 1.05 * sqrt(19.0 / 3)},
               {60, 1200, 800, STEREO_DUAL, V(0, 0, 0), 1.05 * sqrt(19.0 / 3)},  // each eye 600 x 800
               {90, 1200, 600, STEREO_MONO, V(0, 0, 3), 3 + 1.05 * sqrt(2.0)},       // 3 above the axis
               {90, 1200, 600, STEREO_MONO, V(0, 3, 0), (3 + 1.05 * sqrt(5.0)) / 2},  // 3 to the right
               {60, 800, 600, STEREO_MONO, V(-7, 0, 0), 8.05 / 9},  // 7 beyond the origin: the far plane
               {170, 800, 600, STEREO_MONO, V(0, 0, 0), 1.05 * 10 / 9}};           // the near plane
  for (auto &c : cases) {
    SCOPED_TRACE(c.distance);
    sim.camera.aperture = c.aperture;
    sim.camera.screenwidth = c.width;
    sim.camera.screenheight = c.height;
    sim.camera.stereo = c.stereo;
    EXPECT_NEAR(FitCameraDistance(&sim.camera, c.centre, 1), c.distance, 1e-6);
  }
}

// The box centre of the cells and the drawn surface, the farthest of them from it, widened for tubes.
TEST_F(Camera, DrawnBoundsCellsSurfaceWhenDrawnTubes) {
  XYZ c;
  double r;
  sim.ncells = 0;
  EXPECT_EQ(DrawnBounds(sim, &c, &r), 0);  // no cell, no surface
  AppendCell(sim, V(0, 0, 0), 0, -1);
  AppendCell(sim, V(4, 0, 0), 0, 0);
  AppendFacet(sim, V(0, 0, -6), V(4, 0, -6), V(2, 1, -6));
  sim.options.stldrawmode = STLDRAW_OFF;
  ASSERT_EQ(DrawnBounds(sim, &c, &r), 1);
  EXPECT_XYZ(V(c.x, c.z, r), 2, 0, 2, 1e-12);
  sim.options.stldrawmode = STLDRAW_SOLID;
  DrawnBounds(sim, &c, &r);
  EXPECT_XYZ(c, 2, 0.5, -3, 1e-12);
  EXPECT_NEAR(r, sqrt(13.25), 1e-12);
  sim.options.dladrawmode = DLADRAW_TUBES;
  sim.growthstate.thickstart = 0.25;
  sim.growthstate.thickend = 0.5;
  DrawnBounds(sim, &c, &r);
  EXPECT_NEAR(r, sqrt(13.25) + 0.5, 1e-12);
}

TEST_F(Colours, ByRootForPointsAndLinesWithAssociationElseByWeight) {
  sim.ncells = 0;
  sim.growthstate.nroots = 25;
  sim.growthstate.associate = 1;
  sim.growthstate.maxweight = 6;
  for (int i = 0; i < 50; i++) AppendCell(sim, V(0, 0, 0), 6, i - 1);  // by weight all would be red
  // Entry (i mod nroots) mod 21: red, green, blue first, pink 6th, light grey last.
  const struct {
    int cell;
    XYZ rgb;
  } byroot[] = {{0, {1, 0, 0}}, {1, {0, 1, 0}}, {2, {0, 0, 1}}, {6, {1, 0.5, 0.5}}, {20, {0.75, 0.75, 0.75}},
                {21, {1, 0, 0}}, {25, {1, 0, 0}}, {45, {0.75, 0.75, 0.75}}};
  for (auto &c : byroot) {
    for (int mode : {DLADRAW_OFF, DLADRAW_POINTS, DLADRAW_LINES})
      EXPECT_XYZ(Rgb(ChooseColour(sim, c.cell, mode)), c.rgb.x, c.rgb.y, c.rgb.z, 0);
    EXPECT_XYZ(Rgb(ChooseColour(sim, c.cell, DLADRAW_TUBES)), 1, 0, 0, 1e-12);  // tubes by weight
  }
  // By weight: ln(w + 1) from 0 to ln(maxweight / 3 + 1) = ln 3 on the blue to red map.
  sim.cells[0].weight = 0;
  sim.cells[1].weight = 2;
  sim.cells[2].weight = sqrt(3.0) - 1;
  sim.cells[3].weight = pow(3.0, 0.25) - 1;
  const double w[4][3] = {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}, {0, 1, 1}};
  for (int roots : {1, 3, 0})  // one root, association off, no roots
    for (int i = 0; i < 4; i++) {
      sim.growthstate.nroots = roots;
      sim.growthstate.associate = roots != 3;
      EXPECT_XYZ(Rgb(ChooseColour(sim, i, DLADRAW_LINES)), w[i][0], w[i][1], w[i][2], 1e-6);
    }
}

// The settings' text is the report's (tests/export); the overlay adds the
// places, 13 pixels a line from the top, a gap where the surface lines would
// be, the life span, lines cut to 63 characters and the statistics block.
TEST_F(Overlay, InformationAndStatisticsBlocks) {
  GROWTHSTATE &g = sim.growthstate;
  g.radius = 16.0175;
  g.lifespan = 310;
  g.sourcetype = 0;  // no such source
  OVERLAYLINE lines[MAXINFOLINES];
  std::string got;
  int n = InfoLines(sim, lines, MAXINFOLINES, 600);
  for (int i : {0, 10, 11, 12, n - 1}) got += std::to_string(lines[i].x) + "," + std::to_string(lines[i].y) + " " +
                                            lines[i].text + "\n";
  EXPECT_EQ(got, "10,574 Version: 1.02\n10,444 Source type: Unknown\n10,431 Constraint surface: None\n"
                 "10,405 Number of particles: 1\n10,379 Particle life span: 310\n");
  g.nroots = 3;
  CopyName(g.stlname, std::string(255, 'a').c_str(), sizeof(g.stlname));
  AppendFacet(sim, V(-1, 0, 2), V(3, 0.5, 2), V(0, -2.25, 7));
  UpdateSTL(sim);
  ASSERT_EQ(InfoLines(sim, lines, MAXINFOLINES, 300), 22);
  EXPECT_EQ(std::to_string(lines[13].y) + " " + lines[13].text,
            "105 Constraint surface: " + std::string(63 - 20, 'a'));  // cut to 63 characters
  EXPECT_EQ(std::to_string(lines[21].y) + " " + lines[21].text, "-12 Particle life span: 310");
  const int branches[10] = {5, 3, 2, 1, 0, 7, 9, 9, 9, 9}, counts[10] = {1, 0, 8, 27, -1, 0, 3, -1, -1, -1};
  const double sizes[10] = {12.5, 8.3, 5.555556, 3.7037037, 2.5, 1.6, 1234.5678, 0, 0, 0};
  memcpy(sim.stats.branchcount, branches, sizeof(branches));
  memcpy(sim.stats.boxcount, counts, sizeof(counts));
  memcpy(sim.stats.boxsize, sizes, sizeof(sizes));
  got = "";
  for (int i = 0, m = StatisticsLines(sim, lines, MAXINFOLINES, 801, 600); i < m; i++)
    got += std::to_string(lines[i].x) + "," + std::to_string(lines[i].y) + " " + lines[i].text + "|";
  EXPECT_EQ(
      got,
      "400,574 Statistics|400,561 Branch distribution|400,548    0:5 1:3 2:2 3:1 4:0 5:7|400,535 Box counting|"
      "400,522      12.500 : 1\n|400,509       5.556 : 8\n|400,496       3.704 : 27\n|400,483    1234.568 : 3\n|");
}

}  // namespace
