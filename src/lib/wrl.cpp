#include "lib/wrl.h"

#include <math.h>

void WRLHeader(FILE *fp, const char *title, double distance) {
  fprintf(fp, "#VRML V2.0 utf8\n");
  fprintf(fp, "WorldInfo {\n");
  fprintf(fp, " title \"%s\"\n", title);
  fprintf(fp, " info [ \"By Orvantide\" ]\n");
  fprintf(fp, "}\n");
  fprintf(fp, "NavigationInfo {\n");
  fprintf(fp, " type [\"EXAMINE\",\"ANY\"]\n");
  fprintf(fp, " headlight TRUE\n");
  fprintf(fp, " visibilityLimit 0.0\n");
  fprintf(fp, " speed 1.0\n");
  fprintf(fp, "}\n");
  fprintf(fp, "DEF DefaultView Viewpoint {\n");
  fprintf(fp, " position 0 0 %g\n", distance);
  fprintf(fp, " description \"Default view\"\n");
  fprintf(fp, " fieldOfView %g\n", M_PI / 4);
  fprintf(fp, "}\n");
}

void WRLSphere(FILE *fp, XYZ c, COLOUR colour, double r) {
  fprintf(fp, "Transform {\n");
  fprintf(fp, " translation %g,%g,%g\n", c.x, c.y, c.z);
  fprintf(fp, " children [\n");
  fprintf(fp, "  Shape {\n");
  fprintf(fp, "   appearance Appearance {\n");
  fprintf(fp, "    material Material {\n");
  fprintf(fp, "     diffuseColor %g %g %g\n", colour.r, colour.g, colour.b);
  fprintf(fp, "    }\n");
  fprintf(fp, "   }\n");
  fprintf(fp, "   geometry Sphere {\n");
  fprintf(fp, "    radius %g\n", r);
  fprintf(fp, "   }\n");
  fprintf(fp, "  }\n");
  fprintf(fp, " ]\n");
  fprintf(fp, "}\n");
}

// The shape's opening lines up to the start of the point list.
static void WRLShapeStart(FILE *fp, COLOUR colour) {
  fprintf(fp, "Shape {\n");
  fprintf(fp, " appearance Appearance {\n");
  fprintf(fp, "  material Material {\n");
  fprintf(fp, "   diffuseColor %g %g %g\n", colour.r, colour.g, colour.b);
  fprintf(fp, "  }\n");
  fprintf(fp, " }\n");
  fprintf(fp, " geometry IndexedFaceSet {\n");
  fprintf(fp, "  coord  Coordinate {\n");
  fprintf(fp, "   point [\n");
}

static void WRLShapeEnd(FILE *fp) {
  fprintf(fp, "  ]\n");
  fprintf(fp, "  solid FALSE\n");
  fprintf(fp, " }\n");
  fprintf(fp, "}\n");
}

void WRLCone2(FILE *fp, int n, int caps, XYZ p1, XYZ p2, COLOUR colour, double r1, double r2) {
  XYZ d = {p1.x - p2.x, p1.y - p2.y, p1.z - p2.z};
  Normalise(&d);
  // Any vector off the axis will do to span the rings' plane.
  XYZ e = d;
  if (d.x == 0 && d.z == 0)
    e.x += 1;
  else
    e.y += 1;
  XYZ b = CrossProduct(e, d);
  Normalise(&b);
  XYZ a = CrossProduct(d, b);
  Normalise(&a);

  WRLShapeStart(fp, colour);
  for (int i = 0; i < n; i++) {
    double angle = i * TWOPI / n;
    XYZ u = {a.x * cos(angle) + b.x * sin(angle), a.y * cos(angle) + b.y * sin(angle),
             a.z * cos(angle) + b.z * sin(angle)};
    Normalise(&u);
    fprintf(fp, "    %g %g %g,\n", p1.x + r1 * u.x, p1.y + r1 * u.y, p1.z + r1 * u.z);
    fprintf(fp, "    %g %g %g,\n", p2.x + r2 * u.x, p2.y + r2 * u.y, p2.z + r2 * u.z);
  }
  fprintf(fp, "    %g %g %g,\n", p1.x, p1.y, p1.z);
  fprintf(fp, "    %g %g %g\n", p2.x, p2.y, p2.z);
  fprintf(fp, "   ]\n");
  fprintf(fp, "  }\n");
  fprintf(fp, "  coordIndex [\n");
  int m = 2 * n;
  for (int i = 0; i < n; i++) {
    int k = 2 * i;
    if (caps) {
      fprintf(fp, "    %d,%d,%d,-1,", (k + 1) % m, m + 1, (k + 3) % m);
      fprintf(fp, "    %d,%d,%d,-1,", k % m, m, (k + 2) % m);
    }
    fprintf(fp, "    %d,%d,%d,%d,-1%c\n", k % m, (k + 1) % m, (k + 3) % m, (k + 2) % m, i < n - 1 ? ',' : ' ');
  }
  WRLShapeEnd(fp);
}

void WRLFace(FILE *fp, XYZ *p, int n, COLOUR colour) {
  WRLShapeStart(fp, colour);
  for (int i = 0; i < n; i++) fprintf(fp, "    %g %g %g%c\n", p[i].x, p[i].y, p[i].z, i < n - 1 ? ',' : ' ');
  fprintf(fp, "   ]\n");
  fprintf(fp, "  }\n");
  fprintf(fp, "  coordIndex [\n");
  for (int i = 0; i < n; i++) fprintf(fp, "    %d,", i);
  fprintf(fp, "  -1\n");
  WRLShapeEnd(fp);
}
