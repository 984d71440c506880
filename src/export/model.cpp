// [SECTION] POV-Ray fixed parts
// [SECTION] headers, bodies, footers, surfaces by format
// [SECTION] branch tracing for sphere sweeps
#include "export/model.h"

#include <math.h>  // log()

#include <vector>

#include "app/simulation.h"
#include "lib/wrl.h"
#include "surface/stl.h"
#include "view/choosecolour.h"

// ---------------------------------------------------------------- [SECTION] POV-Ray fixed parts

void POVHeader(SIMULATION &sim, FILE *fp) {
  fprintf(fp, "/*\n");
  fprintf(fp, " 3D DLA structure from morrowglint by Orvantide\n");
  fprintf(fp, " Number of particles: %d\n", sim.ncells);
  fprintf(fp, " Maximum radius: %g\n", sim.growthstate.radius);
  fprintf(fp, "*/\n\n");
  fprintf(fp, "#declare DLARADIUS = %g;\n\n", sim.growthstate.radius);
  fprintf(fp, "global_settings {\n");
  fprintf(fp, " assumed_gamma 1\n");
  fprintf(fp, " max_trace_level 5 // increase this if necessary\n");
  fprintf(fp, " ambient_light rgb <1,1,1>\n");
  fprintf(fp, "}\n\n");
  fprintf(fp, "// Background colour\n");
  fprintf(fp, "background {\n");
  fprintf(fp, " color rgb <0,0,0>\n");
  fprintf(fp, "}\n\n");
  fprintf(fp, "// Function that controls the radius of the branches\n");
  fprintf(fp, "// Change this for different radii distributions\n");
  fprintf(fp, "#local MINR = %g;\n", sim.growthstate.thickend);
  fprintf(fp, "#local MAXR = %g;\n", sim.growthstate.thickstart);
  fprintf(fp, "#local CalcRadius = function(r,rmax)\n");
  fprintf(fp, "{\n");
  fprintf(fp, " MINR + (MAXR - MINR) * log(r+1) / log(rmax+1)\n");
  fprintf(fp, "}\n\n");
  fprintf(fp, "// Camera\n");
  fprintf(fp, "#declare VP = <%g,%g,%g>;\n", sim.camera.vp.x, sim.camera.vp.y, sim.camera.vp.z);
  fprintf(fp, "#declare VU = <%g,%g,%g>;\n", sim.camera.vu.x, sim.camera.vu.y, sim.camera.vu.z);
  fprintf(fp, "#declare LEFTRIGHT = -1; // Left or right handed\n");
  fprintf(fp, "#declare VZ = 1.0; // Zoom\n");
  fprintf(fp, "camera {\n");
  fprintf(fp, " perspective\n");
  fprintf(fp, " location VZ*VP\n");
  fprintf(fp, " up y\n");
  fprintf(fp, " right LEFTRIGHT*image_width*x/image_height\n");
  fprintf(fp, " angle %g // Aperture in degrees\n", sim.camera.aperture);
  fprintf(fp, " sky VU\n");
  fprintf(fp, " look_at <0,0,0> // Assumes seeds at or near origin\n");
  fprintf(fp, "}\n\n");
  fprintf(fp, "// Light sources\n");
  fprintf(fp, "light_source {\n");
  fprintf(fp, " VP // At the camera\n");
  fprintf(fp, " color rgb <1,1,1>/2\n");
  fprintf(fp, "}\n");
  fprintf(fp, "light_source {\n");
  fprintf(fp, " DLARADIUS*<0,0,1>\n");
  fprintf(fp, " color rgb <1,1,1>\n");
  fprintf(fp, "}\n\n");
  fprintf(fp, "#declare thefinish = finish {\n");
  fprintf(fp, " ambient 0.1\n");
  fprintf(fp, " diffuse 0.7\n");
  fprintf(fp, " specular 0.5\n");
  fprintf(fp, "}\n");
  fprintf(fp, "#declare thenormal = normal {\n");
  fprintf(fp, " granite\n");
  fprintf(fp, " scale 1\n");
  fprintf(fp, "}\n");
  fprintf(fp, "// Default texture for the branches\n");
  for (int k = 0; k < sim.growthstate.nroots; k++) {
    fprintf(fp, "#declare DLATEXTURE%d = texture {\n", k);
    fprintf(fp, " pigment { rgb %g*<185/256,190/256,50/256> }\n", (k + 1) / (double)sim.growthstate.nroots);
    fprintf(fp, " finish { thefinish }\n");
    fprintf(fp, " normal { thenormal }\n");
    fprintf(fp, "}\n\n");
  }
}

// With one texture per root the union carries them; otherwise the instance
// gets the single default one.
static int PerRootTextures(SIMULATION &sim) { return sim.growthstate.associate && sim.growthstate.nroots >= 2; }

// An identity transform, commented out, for the user to edit; indent is
// the indentation of the object it belongs to.
static void POVTransformComment(FILE *fp, const char *indent) {
  fprintf(fp, "%s/*\n", indent);
  fprintf(fp, "%stransform {\n", indent);
  fprintf(fp, "%s scale <1,1,1>\n", indent);
  fprintf(fp, "%s rotate <0,0,0>\n", indent);
  fprintf(fp, "%s translate <0,0,0>\n", indent);
  fprintf(fp, "%s}\n", indent);
  fprintf(fp, "%s*/\n", indent);
}

void POVFooter(SIMULATION &sim, FILE *fp) {
  fprintf(fp, "// An instance of the dla structure\n");
  fprintf(fp, "object {\n");
  fprintf(fp, " DLA3D\n");
  if (!PerRootTextures(sim)) fprintf(fp, " texture { DLATEXTURE0 }\n");
  POVTransformComment(fp, " ");
  fprintf(fp, "}\n\n");
}

// ---------------------------------------------------------------- [SECTION] headers, bodies, footers, surfaces

static void WriteHeader(SIMULATION &sim, FILE *fp, int format) {
  switch (format) {
    case MODEL_VRML:
      WRLHeader(fp, "3D DLA by Orvantide", 2 * sim.growthstate.radius);
      break;
    case MODEL_GEOM:
      fprintf(fp, "# 3D DLA by Orvantide");  // no line end: the first record continues this line
      break;
    case MODEL_POVRAY:
      POVHeader(sim, fp);
      if (sim.nstltri > 0) {
        fprintf(fp, "// STL surface information\n");
        fprintf(fp, "#declare SHOWSTL = 1; // 0 is off, 1 is on\n");
        fprintf(fp, "#declare STLTEXTURE = texture {\n");
        fprintf(fp, " pigment { color rgbt <0.8,0.8,1.0,0.75> }\n");
        fprintf(fp, "}\n\n");
      }
      fprintf(fp, "// The DLA structure\n");
      fprintf(fp, "#declare DLA3D = union {\n");
      break;
    case MODEL_DXFPOINTS:
      fprintf(fp, "0\nSECTION\n2\nENTITIES\n");
      break;
    default:
      break;
  }
}

static void WriteSegment(SIMULATION &sim, FILE *fp, int format, int variant, int i, double k) {
  const CELL &c = sim.cells[i];
  int qi = c.parent;
  const CELL &q = sim.cells[qi];
  double r1 = sim.growthstate.thickend + k * log(q.weight + 1);
  double r2 = sim.growthstate.thickend + k * log(c.weight + 1);
  double maxw = sim.growthstate.maxweight;

  switch (format) {
    case MODEL_VRML: {
      COLOUR colour = ChooseColour(sim, i, sim.options.dladrawmode);
      WRLCone2(fp, 10, variant == MODEL_CAPPED ? 1 : 0, q.p, c.p, colour, r1, r2);
      WRLSphere(fp, c.p, colour, r2);
      break;
    }
    case MODEL_GEOM: {
      COLOUR colour = ChooseColour(sim, i, sim.options.dladrawmode);
      fprintf(fp, "# From: %d to %d, thickness: %g to %g\n", qi, i, r1, r2);
      fprintf(fp, "c %g %g %g %g %g %g %g %g ", q.p.x, q.p.y, q.p.z, c.p.x, c.p.y, c.p.z, r1, r2);
      fprintf(fp, "%g %g %g\n", colour.r, colour.g, colour.b);
      fprintf(fp, "s %g %g %g %g\n", c.p.x, c.p.y, c.p.z, r2);
      fprintf(fp, "%g %g %g\n", colour.r, colour.g, colour.b);
      break;
    }
    case MODEL_POVRAY:
      fprintf(fp, " cone {\n");
      fprintf(fp, "  <%g,%g,%g>, ", q.p.x, q.p.y, q.p.z);
      fprintf(fp, "  CalcRadius(%g,%g)\n", q.weight, maxw);
      fprintf(fp, "  <%g,%g,%g>, ", c.p.x, c.p.y, c.p.z);
      fprintf(fp, "  CalcRadius(%g,%g)\n", c.weight, maxw);
      if (PerRootTextures(sim)) fprintf(fp, "  texture { DLATEXTURE%d }\n", i % sim.growthstate.nroots);
      fprintf(fp, " }\n");
      fprintf(fp, " sphere {\n");
      fprintf(fp, "  <%g,%g,%g>, ", c.p.x, c.p.y, c.p.z);
      fprintf(fp, "  CalcRadius(%g,%g)\n", c.weight, maxw);
      if (PerRootTextures(sim)) fprintf(fp, "  texture { DLATEXTURE%d }\n", i % sim.growthstate.nroots);
      fprintf(fp, " }\n");
      break;
    case MODEL_DXFPOINTS:
    case MODEL_GEOMPOINTS:
      // The cell's own position is the first point of each of its children.
      for (int s = 0; s < 10; s++) {
        double t = s / 10.0;
        double x = q.p.x + t * (c.p.x - q.p.x);
        double y = q.p.y + t * (c.p.y - q.p.y);
        double z = q.p.z + t * (c.p.z - q.p.z);
        if (format == MODEL_DXFPOINTS)
          fprintf(fp, "0\nPOINT\n8\nLAYER1\n10\n%g\n20\n%g\n30\n%g\n", x, y, z);
        else
          fprintf(fp, "p %g %g %g 1 1 1\n", x, y, z);
      }
      break;
    default:
      break;
  }
}

// ---------------------------------------------------------------- [SECTION] branch tracing for sphere sweeps

struct SWEEPPOINT {
  XYZ p;
  double w;
};

// Each branch runs from a tip toward the root and stops on the first cell an
// earlier branch (or the root) already holds, so the pieces join up.
static void WriteBranches(SIMULATION &sim, FILE *fp, int format) {
  for (int i = 0; i < sim.ncells; i++) sim.cells[i].traced = (sim.cells[i].parent < 0) ? 1 : 0;

  int textures = PerRootTextures(sim);
  double maxw = sim.growthstate.maxweight;
  std::vector<SWEEPPOINT> list;
  for (int start = sim.ncells - 1; start >= 0; start--) {
    if (sim.cells[start].traced) continue;
    list.clear();
    SWEEPPOINT sp = {sim.cells[start].p, sim.cells[start].weight};
    list.push_back(sp);
    sim.cells[start].traced = 1;
    int cur = start;
    for (;;) {
      int q = sim.cells[cur].parent;
      SWEEPPOINT pp = {sim.cells[q].p, sim.cells[q].weight};
      list.push_back(pp);
      if (sim.cells[q].traced) break;
      sim.cells[q].traced = 1;
      cur = q;
    }
    if (format != MODEL_POVRAY) continue;

    int m = (int)list.size();
    fprintf(fp, " // Length: %d\n", m);
    if (m == 2) {
      // Both ends take the tip's weight; the far end only caps rmax.
      fprintf(fp, " cone {\n");
      fprintf(fp, "  <%g,%g,%g>, ", list[0].p.x, list[0].p.y, list[0].p.z);
      fprintf(fp, "  CalcRadius(%g,%g)\n", list[0].w, maxw);
      fprintf(fp, "  <%g,%g,%g>, ", list[1].p.x, list[1].p.y, list[1].p.z);
      fprintf(fp, "  CalcRadius(%g,min(2*%g,%g))\n", list[0].w, list[1].w, maxw);
      if (textures) fprintf(fp, "  texture { DLATEXTURE%d }\n", start % sim.growthstate.nroots);
      fprintf(fp, " }\n\n");
    } else {
      // A cubic spline needs a control point beyond each end.
      SWEEPPOINT before = {{2 * list[0].p.x - list[1].p.x, 2 * list[0].p.y - list[1].p.y,
                            2 * list[0].p.z - list[1].p.z},
                           list[0].w};
      SWEEPPOINT after = {{2 * list[m - 1].p.x - list[m - 2].p.x, 2 * list[m - 1].p.y - list[m - 2].p.y,
                           2 * list[m - 1].p.z - list[m - 2].p.z},
                          list[m - 1].w};
      fprintf(fp, " sphere_sweep {\n");
      fprintf(fp, "  cubic_spline\n");
      fprintf(fp, "  %d\n", m + 2);
      for (int k = -1; k <= m; k++) {
        const SWEEPPOINT &c = (k < 0) ? before : (k == m) ? after : list[k];
        fprintf(fp, "  <%g,%g,%g>, ", c.p.x, c.p.y, c.p.z);
        fprintf(fp, " CalcRadius(%g,%g)\n", c.w, maxw);
      }
      if (textures) fprintf(fp, " texture { DLATEXTURE%d }\n", start % sim.growthstate.nroots);
      fprintf(fp, " }\n\n");
    }
  }
}

static void WriteFooter(SIMULATION &sim, FILE *fp, int format) {
  if (format == MODEL_DXFPOINTS) {
    fprintf(fp, " 0\nENDSEC\n 0\nEOF\n");
  } else if (format == MODEL_POVRAY) {
    fprintf(fp, "}\n");
    POVFooter(sim, fp);
  }
}

static void WriteSurface(SIMULATION &sim, FILE *fp, int format) {
  if (sim.nstltri < 1 || format > MODEL_POVRAY) return;
  COLOUR grey = {0.5, 0.5, 0.5};
  if (format == MODEL_STL) fprintf(fp, "solid 2tlobject\n");
  if (format == MODEL_POVRAY) {
    fprintf(fp, "// Constraint surface\n");
    fprintf(fp, "#if (SHOWSTL)\n");
    fprintf(fp, " union {\n");
  }
  for (int i = 0; i < sim.nstltri; i++) {
    FACET &f = sim.stltri[i];
    switch (format) {
      case MODEL_VRML:
        WRLFace(fp, f.p, 3, grey);
        break;
      case MODEL_GEOM:
        fprintf(fp, "f3 ");
        for (int k = 0; k < 3; k++) fprintf(fp, "%g %g %g ", f.p[k].x, f.p[k].y, f.p[k].z);
        fprintf(fp, "0.5 0.5 0.5\n");
        break;
      case MODEL_STL:
        fprintf(fp, "facet normal %g %g %g\n", f.n.x, f.n.y, f.n.z);
        fprintf(fp, " outer loop\n");
        for (int k = 0; k < 3; k++) fprintf(fp, "  vertex %g %g %g\n", f.p[k].x, f.p[k].y, f.p[k].z);
        fprintf(fp, " endloop\n");
        fprintf(fp, "endfacet\n");
        break;
      case MODEL_POVRAY:
        fprintf(fp, " triangle {\n");
        fprintf(fp, "  <%g,%g,%g>, <%g,%g,%g>, <%g,%g,%g>\n", f.p[0].x, f.p[0].y, f.p[0].z, f.p[1].x,
                f.p[1].y, f.p[1].z, f.p[2].x, f.p[2].y, f.p[2].z);
        fprintf(fp, "  }\n");
        break;
    }
  }
  if (format == MODEL_STL) fprintf(fp, "endsolid");
  if (format == MODEL_POVRAY) {
    fprintf(fp, "  texture { STLTEXTURE }\n");
    POVTransformComment(fp, "  ");
    fprintf(fp, " }\n");
    fprintf(fp, "#end\n\n");
  }
}

double RadiusSlope(SIMULATION &sim) {
  double ln = log(sim.growthstate.maxweight + 1);
  return ln != 0 ? (sim.growthstate.thickstart - sim.growthstate.thickend) / ln : 0;
}

void WriteModel(SIMULATION &sim, FILE *fp, int format, int variant) {
  if (format > MODEL_GEOMPOINTS) return;
  WriteHeader(sim, fp, format);
  if (variant > 0) {
    double k = RadiusSlope(sim);
    for (int i = 0; i < sim.ncells; i++)
      if (sim.cells[i].parent >= 0) WriteSegment(sim, fp, format, variant, i, k);
  } else {
    WriteBranches(sim, fp, format);
  }
  WriteFooter(sim, fp, format);
  WriteSurface(sim, fp, format);
}

int SaveModelFile(SIMULATION &sim, const char *path, int format, int variant) {
  if (format > MODEL_GEOMPOINTS || path == NULL || path[0] == '\0') return 0;
  FILE *fp = fopen(path, "w");
  if (fp == NULL) return 0;
  WriteModel(sim, fp, format, variant);
  return CloseWritten(fp);
}
