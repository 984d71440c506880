// Statistics and box counting, the model writers and the report.
#include <math.h>

#include "export/model.h"
#include "export/report.h"
#include "export/statistics.h"
#include "lib/wrl.h"  // WRLCone2
#include "surface/constraint.h"
#include "surface/stl.h"
#include "test_util.h"

namespace {

using BoxCount = Fresh;
using Model = Fresh;
using Wrl = Fresh;
using Report = Fresh;

int donecalls;

// Two roots and five cells; with maxweight 3, thickend 0.1 and thickstart
// 0.5 the radii are 0.1 (weight 0), 0.3 (weight 1: ln 2 / ln 4 = 1/2) and
// 0.5 (weight 3). Two facets at z = -2 and x = 0.
//   0 root (0,0,0) w3      1 root (10,0,0) w3
//   2 <- 0 (0,0,1) w3      3 <- 2 (0,1,2) w1      4 <- 1 (10,0,-1) w1
//   5 <- 3 (0,2,3) w0      6 <- 2 (1,0,2) w0
void HandScene(SIMULATION &sim) {
  sim.ncells = 0;
  const double p[7][5] = {{0, 0, 0, 3, -1},  {10, 0, 0, 3, -1}, {0, 0, 1, 3, 0}, {0, 1, 2, 1, 2},
                          {10, 0, -1, 1, 1}, {0, 2, 3, 0, 3},   {1, 0, 2, 0, 2}};
  for (auto &c : p) AppendCell(sim, V(c[0], c[1], c[2]), c[3], (int)c[4]);
  GROWTHSTATE &g = sim.growthstate;
  g.nroots = 2;
  g.maxweight = 3;
  g.thickend = 0.1;
  g.thickstart = 0.5;
  g.radius = 10;
  g.associate = 1;
  AppendFacet(sim, V(0, 0, -2), V(1, 0, -2), V(0, 1, -2));
  AppendFacet(sim, V(0, 0, -2), V(0, 1, -2), V(0, 0, -1));
  UpdateSTL(sim);
  sim.camera.vp = V(1, 2, 30);
  sim.camera.vu = V(0, 1, 0);
  sim.camera.aperture = 50;
}

std::string Written(SIMULATION &sim, int format, int variant) {
  return Capture([&](FILE *fp) { WriteModel(sim, fp, format, variant); });
}

TEST_F(BoxCount, BranchDistributionAddsUpOnEveryRequestNineForMore) {
  HandScene(sim);
  Statistics(sim);  // children: 0:{2} 1:{4} 2:{3,6} 3:{5}
  Statistics(sim);  // the same aggregate again: every entry doubled, the count restarted
  EXPECT_EQ(sim.stats.timestep, 7);
  for (int k = 0; k < 10; k++) EXPECT_EQ(sim.stats.branchcount[k], 2 * (k == 0 ? 3 : k == 1 ? 3 : k == 2 ? 1 : 0)) << k;
  EXPECT_EQ(sim.options.calcstats * 10 + sim.boxcountstate.depth, 10);
  ResetProgram(sim);
  for (int i = 0; i < 11; i++) AppendCell(sim, V(1 + i, 0, 0), 0, 0);
  Statistics(sim);
  EXPECT_EQ(sim.stats.branchcount[9] * 100 + sim.stats.branchcount[0], 111);  // ten or more children count as nine
}

// One segment in the far corner of the scanned cube, radius 9: edges 4.5,
// 3, 2, 4/3, then 8/9, below 2 * branchlength, ends the count. Boxes a side:
// 6 from -13.5; 8 from -13.5, then from -12 after each reset (the old
// edge's offset); 11 from -12, then -11. Only the offset first row of level
// 1 reaches the segment.
TEST_F(BoxCount, LevelsWalkFromTheOldEdgesOffsetAndEndBelowTwoBranchLengths) {
  sim.ncells = 0;
  AppendCell(sim, V(-13, -13, -13), 1, -1);
  AppendCell(sim, V(-12.8, -13, -13), 0, 0);
  sim.growthstate.radius = 9;
  sim.growthstate.branchlength = 0.5;
  sim.options.stldrawmode = STLDRAW_SOLID;
  sim.options.dladrawmode = DLADRAW_POINTS;
  donecalls = 0;
  sim.boxcountdone = [] { donecalls++; };
  Statistics(sim);  // the first box
  EXPECT_EQ(sim.options.stldrawmode * 10 + sim.options.dladrawmode, DLADRAW_LINES);  // the surface off, lines
  int steps[10] = {1};
  while (sim.options.calcstats) {
    steps[sim.boxcountstate.depth]++;
    BoxCountStep(sim);
  }
  EXPECT_EQ(std::vector<int>(steps, steps + 3), (std::vector<int>{216, 512, 1331}));
  EXPECT_EQ(std::vector<int>(sim.stats.boxcount, sim.stats.boxcount + 6), (std::vector<int>{1, 1, 0, 0, 0, -1}));
  EXPECT_EQ(sim.stats.boxsize[0], 4.5);
  EXPECT_DOUBLE_EQ(sim.stats.boxsize[4], 8.0 / 9.0);
  EXPECT_EQ(donecalls, 1);
  EXPECT_EQ(sim.options.stldrawmode * 10 + sim.options.dladrawmode, STLDRAW_SOLID * 10 + DLADRAW_POINTS);
  EXPECT_EQ(BoxCountStep(sim), 0);  // idle from now on
  // 2 * branchlength above radius / 2: the count ends after its first box.
  sim.growthstate.branchlength = 3;
  Statistics(sim);
  EXPECT_EQ(sim.options.calcstats * 100 + sim.stats.boxcount[0] * 10 + donecalls, 12);
  EXPECT_EQ(sim.stats.boxcount[1], -1);
  sim.boxcountdone = NULL;
}

TEST_F(BoxCount, EveryBoxAsTheScanOverAllSegmentsJudgesIt) {
  std::string err;
  ASSERT_EQ(Batch(sim, "--cells 2000 --no-progress", &err), BATCH_OK) << err;
  int last = sim.ncells - 1;
  AppendCell(sim, V(0, 0, 20), 0, 0);      // ten times longer than the rest
  AppendCell(sim, V(NAN, 0, 0), 0, last);  // meets the boxes its parent is in
  sim.growthstate.radius *= 1.1;
  Statistics(sim);
  int boxes = 0, mismatches = 0, appended = 0;
  while (sim.options.calcstats) {
    XYZ p0 = sim.boxcountstate.p0,
        p1 = {p0.x + sim.boxcountstate.scale, p0.y + sim.boxcountstate.scale, p0.z + sim.boxcountstate.scale};
    int depth = sim.boxcountstate.depth, before = sim.stats.boxcount[depth];
    BoxCountStep(sim);
    int scan = 0;
    for (int i = 0; i < sim.ncells && !scan; i++)
      scan = sim.cells[i].parent >= 0 && LineInBox(p0, p1, sim.cells[i].p, sim.cells[sim.cells[i].parent].p);
    mismatches += (sim.stats.boxcount[depth] - before) != scan;
    if (++boxes == 3000) {  // cells added during a count are seen
      AppendCell(sim, V(-sim.growthstate.radius, sim.growthstate.radius, sim.growthstate.radius), 0, 0);
      appended = 1;
    }
  }
  EXPECT_EQ(appended, 1);
  EXPECT_EQ(mismatches, 0) << "of " << boxes << " boxes";
}

TEST_F(BoxCount, NoCellsAndTheBatchRunToTheEnd) {
  sim.ncells = 0;
  sim.stats.branchcount[0] = 4;
  sim.stats.timestep = 9;
  sim.growthstate.radius = 0;
  Statistics(sim);
  EXPECT_EQ(sim.stats.timestep * 100 + sim.stats.branchcount[0] * 10 + sim.stats.boxcount[0] + sim.options.calcstats,
            40);  // never cleared
  sim.options.dladrawmode = DLADRAW_OFF;
  BoxCountStart(sim);
  EXPECT_EQ(sim.options.dladrawmode, DLADRAW_OFF);  // not started: calcstats is 0
  sim.growthstate.branchlength = 0;                 // an edge of 0 could never advance: ended, not looped
  RunStatisticsToCompletion(sim);
  EXPECT_EQ(sim.options.calcstats * 100 + sim.options.stldrawmode * 10 + sim.options.dladrawmode,
            STLDRAW_WIREFRAME * 10 + DLADRAW_OFF);
  for (double r : {HUGE_VAL, (double)NAN}) {  // boxes that never advance: the window's count ends after one
    sim.growthstate.radius = r;
    Statistics(sim);
    EXPECT_EQ(sim.options.calcstats, 0) << r;
  }
}

TEST_F(Model, PovRayRadiiCameraTexturesByRootAndSurface) {
  HandScene(sim);
  std::string s = Written(sim, MODEL_POVRAY, MODEL_SEGMENTS);
  for (const char *part : {" Number of particles: 7\n Maximum radius: 10\n", "#local MINR = 0.1;\n#local MAXR = 0.5;\n",
                           "#declare VP = <1,2,30>;\n#declare VU = <0,1,0>;\n", "\n angle 50 // Aperture in degrees\n",
                           "DLATEXTURE0 = texture {\n pigment { rgb 0.5*<185/256,190/256,50/256> }\n",
                           "\n triangle {\n  <0,0,-2>, <1,0,-2>, <0,1,-2>\n  }\n triangle {\n  <0,0,-2>, <0,1,-2>, <0,0,-1>\n"})
    EXPECT_NE(s.find(part), std::string::npos) << part;
  // A cone from the parent and a sphere at the cell, in the texture of the cell's root.
  std::string body;
  const char *seg[5][3] = {{"0,0,0>,   CalcRadius(3,3)", "0,0,1>,   CalcRadius(3,3)", "0"},
                           {"0,0,1>,   CalcRadius(3,3)", "0,1,2>,   CalcRadius(1,3)", "1"},
                           {"10,0,0>,   CalcRadius(3,3)", "10,0,-1>,   CalcRadius(1,3)", "0"},
                           {"0,1,2>,   CalcRadius(1,3)", "0,2,3>,   CalcRadius(0,3)", "1"},
                           {"0,0,1>,   CalcRadius(3,3)", "1,0,2>,   CalcRadius(0,3)", "0"}};
  for (auto &c : seg)
    body += std::string(" cone {\n  <") + c[0] + "\n  <" + c[1] + "\n  texture { DLATEXTURE" + c[2] +
            " }\n }\n sphere {\n  <" + c[1] + "\n  texture { DLATEXTURE" + c[2] + " }\n }\n";
  EXPECT_EQ(s.substr(s.find("union {\n") + 8, body.size() + 2), body + "}\n");
  // Association off: one texture for the instance, none per segment; no surface, no SHOWSTL.
  sim.growthstate.associate = 0;
  sim.nstltri = 0;
  s = Written(sim, MODEL_POVRAY, MODEL_SEGMENTS);
  EXPECT_EQ(s.find("  texture { DLATEXTURE"), std::string::npos);
  EXPECT_NE(s.find("object {\n DLA3D\n texture { DLATEXTURE0 }\n"), std::string::npos);
  EXPECT_EQ(s.find("SHOWSTL"), std::string::npos);
}

TEST_F(Model, PovRaySphereSweepTracesBranchesFromTheTips) {
  HandScene(sim);
  sim.nstltri = 0;
  // From the top: 6-2-0, 5-3-2 (stops on 2, already written), 4-1 (two
  // points: a cone). A control point beyond each end: 2 P0 - P1, 2 Pm-1 - Pm-2.
  std::string s = Written(sim, MODEL_POVRAY, MODEL_SWEEP);
  size_t from = s.find("union {\n") + 8;
  EXPECT_EQ(s.substr(from, s.find("}\n// An instance") - from),
            " // Length: 3\n sphere_sweep {\n  cubic_spline\n  5\n  <2,0,3>,  CalcRadius(0,3)\n"
            "  <1,0,2>,  CalcRadius(0,3)\n  <0,0,1>,  CalcRadius(3,3)\n  <0,0,0>,  CalcRadius(3,3)\n"
            "  <0,0,-1>,  CalcRadius(3,3)\n texture { DLATEXTURE0 }\n }\n\n"
            " // Length: 3\n sphere_sweep {\n  cubic_spline\n  5\n  <0,3,4>,  CalcRadius(0,3)\n"
            "  <0,2,3>,  CalcRadius(0,3)\n  <0,1,2>,  CalcRadius(1,3)\n  <0,0,1>,  CalcRadius(3,3)\n"
            "  <0,-1,0>,  CalcRadius(3,3)\n texture { DLATEXTURE1 }\n }\n\n"
            " // Length: 2\n cone {\n  <10,0,-1>,   CalcRadius(1,3)\n"
            "  <10,0,0>,   CalcRadius(1,min(2*3,3))\n  texture { DLATEXTURE0 }\n }\n\n");
}

TEST_F(Model, GeomStlAndPointClouds) {
  HandScene(sim);
  EXPECT_EQ(
      Written(sim, MODEL_GEOM, MODEL_SEGMENTS),
      "# 3D DLA by Orvantide# From: 0 to 2, thickness: 0.5 to 0.5\nc 0 0 0 0 0 1 0.5 0.5 1 0 0\ns 0 0 1 0.5\n1 0 0\n"
      "# From: 2 to 3, thickness: 0.5 to 0.3\nc 0 0 1 0 1 2 0.5 0.3 0 1 0\ns 0 1 2 0.3\n0 1 0\n"
      "# From: 1 to 4, thickness: 0.5 to 0.3\nc 10 0 0 10 0 -1 0.5 0.3 1 0 0\ns 10 0 -1 0.3\n1 0 0\n"
      "# From: 3 to 5, thickness: 0.3 to 0.1\nc 0 1 2 0 2 3 0.3 0.1 0 1 0\ns 0 2 3 0.1\n0 1 0\n"
      "# From: 2 to 6, thickness: 0.5 to 0.1\nc 0 0 1 1 0 2 0.5 0.1 1 0 0\ns 1 0 2 0.1\n1 0 0\n"
      "f3 0 0 -2 1 0 -2 0 1 -2 0.5 0.5 0.5\nf3 0 0 -2 0 1 -2 0 0 -1 0.5 0.5 0.5\n");
  EXPECT_EQ(Written(sim, MODEL_STL, MODEL_SWEEP),
            "solid 2tlobject\nfacet normal 0 0 1\n outer loop\n  vertex 0 0 -2\n  vertex 1 0 -2\n  vertex 0 1 -2\n"
            " endloop\nendfacet\nfacet normal 1 0 0\n outer loop\n  vertex 0 0 -2\n  vertex 0 1 -2\n  vertex 0 0 -1\n"
            " endloop\nendfacet\nendsolid");
  // Ten points a segment from the parent, the cell itself not written; no surface.
  sim.ncells = 0;
  AppendCell(sim, V(0, 0, 0), 1, -1);
  AppendCell(sim, V(1, 2, -3), 0, 0);
  std::string dxf = Written(sim, MODEL_DXFPOINTS, MODEL_SEGMENTS), geom = Written(sim, MODEL_GEOMPOINTS, MODEL_SEGMENTS);
  EXPECT_EQ(dxf.substr(0, 61), "0\nSECTION\n2\nENTITIES\n0\nPOINT\n8\nLAYER1\n10\n0\n20\n0\n30\n0\n0\nPOINT\n");
  EXPECT_EQ(dxf.substr(dxf.size() - 39), "10\n0.9\n20\n1.8\n30\n-2.7\n 0\nENDSEC\n 0\nEOF\n");
  EXPECT_EQ(std::count(dxf.begin(), dxf.end(), '\n'), 4 + 10 * 10 + 4);
  EXPECT_EQ(geom.substr(0, 35), "p 0 0 0 1 1 1\np 0.1 0.2 -0.3 1 1 1\n");
  EXPECT_EQ(std::count(geom.begin(), geom.end(), '\n'), 10);
  sim.nstltri = 0;
  EXPECT_EQ(Written(sim, MODEL_STL, MODEL_SWEEP) + Written(sim, 6, MODEL_SEGMENTS), "");
  sim.growthstate.maxweight = 0;  // as a restart leaves it: thickend throughout, not ln 1's infinite radii
  EXPECT_EQ(Written(sim, MODEL_GEOM, MODEL_SEGMENTS).substr(21, 38), "# From: 0 to 1, thickness: 0.1 to 0.1\n");
}

// Every text after key in s, to the end of its line, each followed by "|".
std::string After(const std::string &s, const std::string &key) {
  std::string out;
  for (size_t at = s.find(key); at != std::string::npos; at = s.find(key, at + 1))
    out += s.substr(at + key.size(), s.find('\n', at) - at - key.size()) + "|";
  return out;
}

// A cone and a sphere a segment, coloured by root (red, green: association
// with two roots), the sphere as thick as the cell; the surface's faces grey.
TEST_F(Model, VrmlColoursByRootAndSpheresByWeight) {
  HandScene(sim);
  for (int variant : {MODEL_SEGMENTS, MODEL_CAPPED}) {
    std::string s = Written(sim, MODEL_VRML, variant);
    EXPECT_EQ(s.substr(0, 57), "#VRML V2.0 utf8\nWorldInfo {\n title \"3D DLA by Orvantide\"\n");
    EXPECT_EQ(After(s, "diffuseColor "), "1 0 0|1 0 0|0 1 0|0 1 0|1 0 0|1 0 0|0 1 0|0 1 0|1 0 0|1 0 0|"
                                         "0.5 0.5 0.5|0.5 0.5 0.5|");
    EXPECT_EQ(After(s, "    radius "), "0.5|0.3|0.3|0.1|0.1|");
    EXPECT_EQ(After(s, "translation "), "0,0,1|0,1,2|10,0,-1|0,2,3|1,0,2|");
    EXPECT_EQ(s.find("    1,21,3,-1,    0,20,2,-1,") != std::string::npos, variant == MODEL_CAPPED) << "end caps";
  }
}

TEST_F(Wrl, ConePointsAndIndexLists) {
  const COLOUR red = {1, 0, 0};
  // Axis (0,0,1): B = (1,0,0), A = (0,1,0); one side at angle 0, u = A.
  std::string s = Capture([&](FILE *fp) { WRLCone2(fp, 1, 1, V(0, 0, 1), V(0, 0, 0), red, 2, 0.5); });
  std::string want = "   point [\n    0 2 1,\n    0 0.5 0,\n    0 0 1,\n    0 0 0\n   ]\n  }\n  coordIndex [\n"
                     "    1,3,1,-1,    0,2,0,-1,    0,1,1,0,-1 \n  ]\n  solid FALSE\n";
  EXPECT_NE(s.find(want), std::string::npos) << s;
  // Axis (0,1,0) has no x or z: the x helper, B = (0,0,1), A = (1,0,0).
  s = Capture([&](FILE *fp) { WRLCone2(fp, 1, 0, V(0, 1, 0), V(0, 0, 0), red, 2, 1); });
  EXPECT_NE(s.find("   point [\n    2 1 0,\n    1 0 0,\n    0 1 0,\n    0 0 0\n   ]\n"), std::string::npos) << s;
  s = Capture([&](FILE *fp) { WRLCone2(fp, 10, 1, V(0, 0, 0), V(3, 4, 0), red, 0.5, 0.25); });
  std::string idx = s.substr(s.find("coordIndex [\n") + 13);
  EXPECT_EQ(idx.substr(0, idx.find('\n') + 1), "    1,21,3,-1,    0,20,2,-1,    0,1,3,2,-1,\n");
  EXPECT_NE(idx.find("\n    19,21,1,-1,    18,20,0,-1,    18,19,1,0,-1 \n  ]\n"), std::string::npos) << idx;
}

// The start-up settings are the forms' texts at start-up (tests/gui/startup.sh).
TEST_F(Report, WithRootsSurfaceAndStatistics) {
  HandScene(sim);
  GROWTHSTATE &g = sim.growthstate;
  g.nroots = 3;
  g.rootrange = 7.5;
  g.sourcetype = SOURCE_MINUSZ;
  g.bias = 2.5;
  g.stickiness = 50;
  g.rotation = -1.5;
  g.intersectrange = 20;
  g.seed = 7;
  g.branchlength = 0.75;
  CopyName(g.rootname, "Ring: z axis plane", sizeof(g.rootname));
  CopyName(g.stlname, "cup.stl", sizeof(g.stlname));
  sim.stats.timestep = 7;
  const int bc[10] = {3, 3, 1, 0, 2, 5, 8, 0, 0, 9}, count[10] = {5, 12, 0, 4, -1, -1, -1, -1, -1, -1};
  const double size[10] = {4.5, 3, 2, 0, 1, 0.5, 0, 0, 0, 0};  // listed: count > 0 and size > 0
  memcpy(sim.stats.branchcount, bc, sizeof(bc));
  memcpy(sim.stats.boxsize, size, sizeof(size));
  memcpy(sim.stats.boxcount, count, sizeof(count));
  // ln(1/4.5) = -1.5040774, ln 5 = 1.6094379, ln(1/3) = -1.0986123, ln 12 = 2.4849066.
  EXPECT_EQ(
      Capture([&](FILE *fp) { WriteInformation(sim, fp); }),
      "Version: 1.02\nSeed: 7\nBias towards origin: 2.5% of step length\nBranch length: 0.75\nStickiness: 50%\n"
      "Rotation: -1.5 degrees about z axis\nBranch thickness: 0.5 to 0.1\nIntersection range: 20% of branch length\n"
      "Seed association: On\nNumber of roots: 3\nRoot distribution range: 7.5\nRoot distribution: Ring: z axis plane\n"
      "Source type: Single axis (-x)\nConstraint surface: cup.stl\nFaces in constraint surface: 2\nSurface bounds\n"
      "   0 <= x <= 1\n   0 <= y <= 1\n   -2 <= z <= -1\nNumber of particles: 7\nCurrent radius: 10\n\n"
      "Statistics at time step: 7\n   Branch distribution\n   0:3 1:3 2:1 3:0 4:2 5:5\n"
      "   Box counting [ size, N, log(1/size), log(N) ]\n   4.500000 5 -1.504077 1.609438\n"
      "   3.000000 12 -1.098612 2.484907\n");
}

}  // namespace
