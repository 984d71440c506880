#include <gtest/gtest.h>
#include <unistd.h>

#include "export/model.h"
#include "export_helpers.h"
#include "lib/wrl.h"

// The hand aggregate with association on: two roots, so textures and colours
// go by cell index mod 2 (red for even cells, green for odd ones in the
// default line drawing mode).
static void MakeScene(void) {
  ResetExportState();
  MakeHandAggregate();
  MakeTwoFacets();
  growthstate.associate = 1;
  camera.vp = P(1, 2, 30);
  camera.vu = P(0, 1, 0);
  camera.aperture = 50;
}

static std::string Model(int format, int variant) {
  return Capture([=](FILE *fp) { WriteModel(fp, format, variant); });
}

static const char *kPovHeader =
    "/*\n"
    " 3D DLA structure from morrowglint by Orvantide\n"
    " Number of particles: 7\n"
    " Maximum radius: 10\n"
    "*/\n"
    "\n"
    "#declare DLARADIUS = 10;\n"
    "\n"
    "global_settings {\n"
    " assumed_gamma 1\n"
    " max_trace_level 5 // increase this if necessary\n"
    " ambient_light rgb <1,1,1>\n"
    "}\n"
    "\n"
    "// Background colour\n"
    "background {\n"
    " color rgb <0,0,0>\n"
    "}\n"
    "\n"
    "// Function that controls the radius of the branches\n"
    "// Change this for different radii distributions\n"
    "#local MINR = 0.1;\n"
    "#local MAXR = 0.5;\n"
    "#local CalcRadius = function(r,rmax)\n"
    "{\n"
    " MINR + (MAXR - MINR) * log(r+1) / log(rmax+1)\n"
    "}\n"
    "\n"
    "// Camera\n"
    "#declare VP = <1,2,30>;\n"
    "#declare VU = <0,1,0>;\n"
    "#declare LEFTRIGHT = -1; // Left or right handed\n"
    "#declare VZ = 1.0; // Zoom\n"
    "camera {\n"
    " perspective\n"
    " location VZ*VP\n"
    " up y\n"
    " right LEFTRIGHT*image_width*x/image_height\n"
    " angle 50 // Aperture in degrees\n"
    " sky VU\n"
    " look_at <0,0,0> // Assumes seeds at or near origin\n"
    "}\n"
    "\n"
    "// Light sources\n"
    "light_source {\n"
    " VP // At the camera\n"
    " color rgb <1,1,1>/2\n"
    "}\n"
    "light_source {\n"
    " DLARADIUS*<0,0,1>\n"
    " color rgb <1,1,1>\n"
    "}\n"
    "\n"
    "#declare thefinish = finish {\n"
    " ambient 0.1\n"
    " diffuse 0.7\n"
    " specular 0.5\n"
    "}\n"
    "#declare thenormal = normal {\n"
    " granite\n"
    " scale 1\n"
    "}\n"
    "// Default texture for the branches\n"
    "#declare DLATEXTURE0 = texture {\n"
    " pigment { rgb 0.5*<185/256,190/256,50/256> }\n"
    " finish { thefinish }\n"
    " normal { thenormal }\n"
    "}\n"
    "\n"
    "#declare DLATEXTURE1 = texture {\n"
    " pigment { rgb 1*<185/256,190/256,50/256> }\n"
    " finish { thefinish }\n"
    " normal { thenormal }\n"
    "}\n"
    "\n";

static const char *kPovUnionStart =
    "// STL surface information\n"
    "#declare SHOWSTL = 1; // 0 is off, 1 is on\n"
    "#declare STLTEXTURE = texture {\n"
    " pigment { color rgbt <0.8,0.8,1.0,0.75> }\n"
    "}\n"
    "\n"
    "// The DLA structure\n"
    "#declare DLA3D = union {\n";

static const char *kPovFooterPerRoot =
    "}\n"
    "// An instance of the dla structure\n"
    "object {\n"
    " DLA3D\n"
    " /*\n"
    " transform {\n"
    "  scale <1,1,1>\n"
    "  rotate <0,0,0>\n"
    "  translate <0,0,0>\n"
    " }\n"
    " */\n"
    "}\n"
    "\n";

static const char *kPovSurface =
    "// Constraint surface\n"
    "#if (SHOWSTL)\n"
    " union {\n"
    " triangle {\n"
    "  <0,0,-2>, <1,0,-2>, <0,1,-2>\n"
    "  }\n"
    " triangle {\n"
    "  <0,0,-2>, <0,1,-2>, <0,0,-1>\n"
    "  }\n"
    "  texture { STLTEXTURE }\n"
    "  /*\n"
    "  transform {\n"
    "   scale <1,1,1>\n"
    "   rotate <0,0,0>\n"
    "   translate <0,0,0>\n"
    "  }\n"
    "  */\n"
    " }\n"
    "#end\n"
    "\n";

TEST(Model, PovRayCylindersAndSpheres) {
  MakeScene();
  std::string body =
      " cone {\n"
      "  <0,0,0>,   CalcRadius(3,3)\n"
      "  <0,0,1>,   CalcRadius(3,3)\n"
      "  texture { DLATEXTURE0 }\n"
      " }\n"
      " sphere {\n"
      "  <0,0,1>,   CalcRadius(3,3)\n"
      "  texture { DLATEXTURE0 }\n"
      " }\n"
      " cone {\n"
      "  <0,0,1>,   CalcRadius(3,3)\n"
      "  <0,1,2>,   CalcRadius(1,3)\n"
      "  texture { DLATEXTURE1 }\n"
      " }\n"
      " sphere {\n"
      "  <0,1,2>,   CalcRadius(1,3)\n"
      "  texture { DLATEXTURE1 }\n"
      " }\n"
      " cone {\n"
      "  <10,0,0>,   CalcRadius(3,3)\n"
      "  <10,0,-1>,   CalcRadius(1,3)\n"
      "  texture { DLATEXTURE0 }\n"
      " }\n"
      " sphere {\n"
      "  <10,0,-1>,   CalcRadius(1,3)\n"
      "  texture { DLATEXTURE0 }\n"
      " }\n"
      " cone {\n"
      "  <0,1,2>,   CalcRadius(1,3)\n"
      "  <0,2,3>,   CalcRadius(0,3)\n"
      "  texture { DLATEXTURE1 }\n"
      " }\n"
      " sphere {\n"
      "  <0,2,3>,   CalcRadius(0,3)\n"
      "  texture { DLATEXTURE1 }\n"
      " }\n"
      " cone {\n"
      "  <0,0,1>,   CalcRadius(3,3)\n"
      "  <1,0,2>,   CalcRadius(0,3)\n"
      "  texture { DLATEXTURE0 }\n"
      " }\n"
      " sphere {\n"
      "  <1,0,2>,   CalcRadius(0,3)\n"
      "  texture { DLATEXTURE0 }\n"
      " }\n";
  EXPECT_EQ(Model(MODEL_POVRAY, MODEL_SEGMENTS),
            std::string(kPovHeader) + kPovUnionStart + body + kPovFooterPerRoot + kPovSurface);
}

TEST(Model, PovRaySphereSweepTracesBranches) {
  MakeScene();
  // From the top: 6-2-0 (m 3), 5-3-2 (m 3, stops on 2, already written),
  // 4-1 (m 2, a cone). Sweeps get a control point beyond each end:
  // 2*(1,0,2)-(0,0,1) = (2,0,3) and 2*(0,0,0)-(0,0,1) = (0,0,-1);
  // 2*(0,2,3)-(0,1,2) = (0,3,4) and 2*(0,0,1)-(0,1,2) = (0,-1,0).
  std::string body =
      " // Length: 3\n"
      " sphere_sweep {\n"
      "  cubic_spline\n"
      "  5\n"
      "  <2,0,3>,  CalcRadius(0,3)\n"
      "  <1,0,2>,  CalcRadius(0,3)\n"
      "  <0,0,1>,  CalcRadius(3,3)\n"
      "  <0,0,0>,  CalcRadius(3,3)\n"
      "  <0,0,-1>,  CalcRadius(3,3)\n"
      " texture { DLATEXTURE0 }\n"
      " }\n"
      "\n"
      " // Length: 3\n"
      " sphere_sweep {\n"
      "  cubic_spline\n"
      "  5\n"
      "  <0,3,4>,  CalcRadius(0,3)\n"
      "  <0,2,3>,  CalcRadius(0,3)\n"
      "  <0,1,2>,  CalcRadius(1,3)\n"
      "  <0,0,1>,  CalcRadius(3,3)\n"
      "  <0,-1,0>,  CalcRadius(3,3)\n"
      " texture { DLATEXTURE1 }\n"
      " }\n"
      "\n"
      " // Length: 2\n"
      " cone {\n"
      "  <10,0,-1>,   CalcRadius(1,3)\n"
      "  <10,0,0>,   CalcRadius(1,min(2*3,3))\n"
      "  texture { DLATEXTURE0 }\n"
      " }\n"
      "\n";
  EXPECT_EQ(Model(MODEL_POVRAY, MODEL_SWEEP),
            std::string(kPovHeader) + kPovUnionStart + body + kPovFooterPerRoot + kPovSurface);
  for (int i = 0; i < ncells; i++) EXPECT_EQ(cells[i].traced, 1) << i;
}

TEST(Model, PovRayTexturesFollowAssociationAndRoots) {
  MakeScene();
  nstltri = 0;
  growthstate.associate = 0;  // one texture for the whole instance
  std::string s = Model(MODEL_POVRAY, MODEL_SEGMENTS);
  EXPECT_EQ(s.find("  texture { DLATEXTURE"), std::string::npos);
  EXPECT_NE(s.find("object {\n DLA3D\n texture { DLATEXTURE0 }\n /*\n"), std::string::npos);
  EXPECT_EQ(s.find("SHOWSTL"), std::string::npos);
  EXPECT_NE(s.find("}\n\n// The DLA structure\n#declare DLA3D = union {\n cone {\n"), std::string::npos);
  s = Model(MODEL_POVRAY, MODEL_SWEEP);
  EXPECT_EQ(s.find(" texture { DLATEXTURE1 }"), std::string::npos);

  // No roots: nothing declared, yet the instance still names DLATEXTURE0.
  growthstate.nroots = 0;
  s = Model(MODEL_POVRAY, MODEL_SEGMENTS);
  EXPECT_EQ(s.find("#declare DLATEXTURE"), std::string::npos);
  EXPECT_NE(s.find("// Default texture for the branches\n// The DLA structure\n"), std::string::npos);
  EXPECT_NE(s.find(" DLA3D\n texture { DLATEXTURE0 }\n"), std::string::npos);
}

TEST(Model, GeomHeaderRunsIntoFirstRecord) {
  MakeScene();
  EXPECT_EQ(Model(MODEL_GEOM, MODEL_SEGMENTS),
            "# 3D DLA by Orvantide# From: 0 to 2, thickness: 0.5 to 0.5\n"
            "c 0 0 0 0 0 1 0.5 0.5 1 0 0\n"
            "s 0 0 1 0.5\n"
            "1 0 0\n"
            "# From: 2 to 3, thickness: 0.5 to 0.3\n"
            "c 0 0 1 0 1 2 0.5 0.3 0 1 0\n"
            "s 0 1 2 0.3\n"
            "0 1 0\n"
            "# From: 1 to 4, thickness: 0.5 to 0.3\n"
            "c 10 0 0 10 0 -1 0.5 0.3 1 0 0\n"
            "s 10 0 -1 0.3\n"
            "1 0 0\n"
            "# From: 3 to 5, thickness: 0.3 to 0.1\n"
            "c 0 1 2 0 2 3 0.3 0.1 0 1 0\n"
            "s 0 2 3 0.1\n"
            "0 1 0\n"
            "# From: 2 to 6, thickness: 0.5 to 0.1\n"
            "c 0 0 1 1 0 2 0.5 0.1 1 0 0\n"
            "s 1 0 2 0.1\n"
            "1 0 0\n"
            "f3 0 0 -2 1 0 -2 0 1 -2 0.5 0.5 0.5\n"
            "f3 0 0 -2 0 1 -2 0 0 -1 0.5 0.5 0.5\n");

  // The sweep variant writes no GEOM body but still walks (and marks) the cells.
  for (int i = 0; i < ncells; i++) cells[i].traced = 0;
  EXPECT_EQ(Model(MODEL_GEOM, MODEL_SWEEP),
            "# 3D DLA by Orvantidef3 0 0 -2 1 0 -2 0 1 -2 0.5 0.5 0.5\n"
            "f3 0 0 -2 0 1 -2 0 0 -1 0.5 0.5 0.5\n");
  for (int i = 0; i < ncells; i++) EXPECT_EQ(cells[i].traced, 1) << i;
}

TEST(Model, PointCloudsTenPointsPerSegment) {
  ResetExportState();
  MakeTwoFacets();  // point clouds carry no surface
  AppendCell(P(0, 0, 0), 1, -1);
  AppendCell(P(1, 2, -3), 0, 0);
  growthstate.maxweight = 1;
  const char *xs[10] = {"0", "0.1", "0.2", "0.3", "0.4", "0.5", "0.6", "0.7", "0.8", "0.9"};
  const char *ys[10] = {"0", "0.2", "0.4", "0.6", "0.8", "1", "1.2", "1.4", "1.6", "1.8"};
  const char *zs[10] = {"0", "-0.3", "-0.6", "-0.9", "-1.2", "-1.5", "-1.8", "-2.1", "-2.4", "-2.7"};
  std::string dxf = "0\nSECTION\n2\nENTITIES\n";
  std::string geom;
  for (int i = 0; i < 10; i++) {
    dxf += std::string("0\nPOINT\n8\nLAYER1\n10\n") + xs[i] + "\n20\n" + ys[i] + "\n30\n" + zs[i] + "\n";
    geom += std::string("p ") + xs[i] + " " + ys[i] + " " + zs[i] + " 1 1 1\n";
  }
  dxf += " 0\nENDSEC\n 0\nEOF\n";
  EXPECT_EQ(Model(MODEL_DXFPOINTS, MODEL_SEGMENTS), dxf);
  EXPECT_EQ(Model(MODEL_GEOMPOINTS, MODEL_SEGMENTS), geom);

  // No cells: header and footer only.
  ncells = 0;
  EXPECT_EQ(Model(MODEL_DXFPOINTS, MODEL_SEGMENTS), "0\nSECTION\n2\nENTITIES\n 0\nENDSEC\n 0\nEOF\n");
  EXPECT_EQ(Model(MODEL_GEOMPOINTS, MODEL_SEGMENTS), "");
}

TEST(Model, StlSurfaceEndsWithoutLineEnd) {
  MakeScene();
  EXPECT_EQ(Model(MODEL_STL, MODEL_SWEEP),
            "solid 2tlobject\n"
            "facet normal 0 0 1\n"
            " outer loop\n"
            "  vertex 0 0 -2\n"
            "  vertex 1 0 -2\n"
            "  vertex 0 1 -2\n"
            " endloop\n"
            "endfacet\n"
            "facet normal 1 0 0\n"
            " outer loop\n"
            "  vertex 0 0 -2\n"
            "  vertex 0 1 -2\n"
            "  vertex 0 0 -1\n"
            " endloop\n"
            "endfacet\n"
            "endsolid");
  nstltri = 0;
  EXPECT_EQ(Model(MODEL_STL, MODEL_SWEEP), "");
}

TEST(Model, VrmlSegmentsCapsAndSurface) {
  MakeScene();
  const COLOUR red = {1, 0, 0}, green = {0, 1, 0}, grey = {0.5, 0.5, 0.5};
  for (int caps = 0; caps <= 1; caps++) {
    // Radii per cell: parent's then own (weights 3 -> 0.5, 1 -> 0.3, 0 -> 0.1).
    std::string expect = Capture([&](FILE *fp) {
      WRLHeader(fp, "3D DLA by Orvantide", 20);
      WRLCone2(fp, 10, caps, P(0, 0, 0), P(0, 0, 1), red, 0.5, 0.5);
      WRLSphere(fp, P(0, 0, 1), red, 0.5);
      WRLCone2(fp, 10, caps, P(0, 0, 1), P(0, 1, 2), green, 0.5, 0.3);
      WRLSphere(fp, P(0, 1, 2), green, 0.3);
      WRLCone2(fp, 10, caps, P(10, 0, 0), P(10, 0, -1), red, 0.5, 0.3);
      WRLSphere(fp, P(10, 0, -1), red, 0.3);
      WRLCone2(fp, 10, caps, P(0, 1, 2), P(0, 2, 3), green, 0.3, 0.1);
      WRLSphere(fp, P(0, 2, 3), green, 0.1);
      WRLCone2(fp, 10, caps, P(0, 0, 1), P(1, 0, 2), red, 0.5, 0.1);
      WRLSphere(fp, P(1, 0, 2), red, 0.1);
      XYZ f0[3] = {P(0, 0, -2), P(1, 0, -2), P(0, 1, -2)};
      XYZ f1[3] = {P(0, 0, -2), P(0, 1, -2), P(0, 0, -1)};
      WRLFace(fp, f0, 3, grey);
      WRLFace(fp, f1, 3, grey);
    });
    EXPECT_EQ(Model(MODEL_VRML, caps ? MODEL_CAPPED : MODEL_SEGMENTS), expect) << caps;
  }
}

TEST(Model, UnknownFormatsAndFiles) {
  MakeScene();
  EXPECT_EQ(Model(6, MODEL_SEGMENTS), "");
  EXPECT_EQ(SaveModelFile("/tmp/never-written.pov", 6, 1), 0);
  EXPECT_EQ(access("/tmp/never-written.pov", F_OK), -1);
  EXPECT_EQ(SaveModelFile("", MODEL_POVRAY, 1), 0);
  EXPECT_EQ(SaveModelFile("/nonexistent-dir/a.pov", MODEL_POVRAY, 1), 0);

  char path[] = "/tmp/dla_modelXXXXXX";
  int fd = mkstemp(path);
  ASSERT_GE(fd, 0);
  close(fd);
  EXPECT_EQ(SaveModelFile(path, MODEL_STL, 0), 1);
  FILE *fp = fopen(path, "r");
  ASSERT_NE(fp, nullptr);
  char buf[1024];
  size_t n = fread(buf, 1, sizeof(buf), fp);
  fclose(fp);
  unlink(path);
  EXPECT_EQ(std::string(buf, n), Model(MODEL_STL, 0));
}

TEST(Model, ZeroMaxweightGivesNonFiniteRadii) {
  ResetExportState();
  AppendCell(P(0, 0, 0), 0, -1);
  AppendCell(P(0, 0, 1), 0, 0);
  std::string s = Model(MODEL_GEOM, MODEL_SEGMENTS);
  EXPECT_NE(s.find("nan"), std::string::npos) << s;
}
