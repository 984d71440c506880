#include "view/menutables.h"

#include "app/records.h"

const MENUENTRY mainmenu[] = {
    {"Settings", 2, -1},
    {"Save DLA as", 0, SUBMENU_SAVE},
    {"Save constraint surface to STL file", 4, -1},
    {"Compute/save slices", 7, -1},
    {"Save simulation information", 6, -1},
    {"Read constraint surface from STL file", 1, -1},
    {"Read seeds", 5, -1},
    {"-", 50, -1},
    {"DLA drawing mode", 0, SUBMENU_DLA},
    {"Constraint surface drawing mode", 0, SUBMENU_STL},
    {"-", 50, -1},
    {"New particle distribution", 0, SUBMENU_SOURCE},
    {"Sample constraint surfaces", 0, SUBMENU_SAMPLE},
    {"Transform constraint surface", 3, -1},
    {"Initial root distribution", 0, SUBMENU_ROOT},
    {"-", 60, -1},
    {"Toggle extras (f1)", 10, -1},
    {"Toggle info (f2)", 11, -1},
    {"Pause / Continue (f3)", 12, -1},
    {"Restart simulation (f4)", 13, -1},
    {"Calculate statistics (f5)", 14, -1},
    {"-", 50, -1},
    {"Quit (q)", 100, -1},
};
const int nmainmenu = sizeof(mainmenu) / sizeof(mainmenu[0]);

const MENUENTRY savemenu[] = {
    {"PovRay (Sphere sweep)", 1, -1},
    {"PovRay (Cylinders + Spheres)", 2, -1},
    {"GEOM (Cylinders + Spheres)", 3, -1},
    {"VRML (Cylinders + Spheres)", 4, -1},
    {"VRML (Cylinders + Endcaps + Spheres)", 5, -1},
    {"Point cloud as DXF", 6, -1},
    {"Point cloud as GEOM", 7, -1},
};
const int nsavemenu = sizeof(savemenu) / sizeof(savemenu[0]);

// 4 is not offered: the drawing code gives the values their meaning.
const MENUENTRY dlamenu[] = {
    {"Off", 1, -1},
    {"Points", 2, -1},
    {"Lines", 3, -1},
    {"Tubes (Slow)", 5, -1},
};
const int ndlamenu = sizeof(dlamenu) / sizeof(dlamenu[0]);

const MENUENTRY stlmenu[] = {
    {"Off", 1, -1},
    {"Faces, wireframe", 2, -1},
    {"Mid points of faces", 3, -1},
    {"Face vertices", 4, -1},
    {"Faces, solid", 5, -1},
};
const int nstlmenu = sizeof(stlmenu) / sizeof(stlmenu[0]);

const MENUENTRY sourcemenu[] = {
    {"Sphere", 1, -1},
    {"Single axis (+x)", 2, -1},
    {"Single axis (-x)", 3, -1},
    {"Double axis (x)", 4, -1},
    {"Single axis (+y)", 5, -1},
    {"Single axis (-y)", 6, -1},
    {"Double axis (y)", 7, -1},
    {"Single axis (+z)", 8, -1},
    {"Single axis (-z)", 9, -1},
    {"Double axis (z)", 10, -1},
    {"Plane (x)", 11, -1},
    {"Plane (y)", 12, -1},
    {"Plane (z)", 13, -1},
    {"Hemisphere (x)", 14, -1},
    {"Hemisphere (y)", 15, -1},
    {"Hemisphere (z)", 16, -1},
    {"STL surface", 17, -1},
};
const int nsourcemenu = sizeof(sourcemenu) / sizeof(sourcemenu[0]);

// The labels run one row ahead of the distributions they select; users
// have always seen it this way, so it stays.
const MENUENTRY rootmenu[] = {
    {"Spherical", 1, -1},
    {"Random: x axis plane", 2, -1},
    {"Random: y axis plane", 3, -1},
    {"Random: z axis plane", 4, -1},
    {"Ring: x axis plane", 5, -1},
    {"Ring: y axis plane", 6, -1},
    {"Ring: z axis plane", 7, -1},
};
const int nrootmenu = sizeof(rootmenu) / sizeof(rootmenu[0]);

int SaveMenuFormat(int value, int *format, int *variant) {
  static const int table[7][2] = {{3, 0}, {3, 1}, {1, 1}, {0, 1}, {0, 2}, {4, 1}, {5, 1}};
  if (value < 1 || value > 7) return 0;
  *format = table[value - 1][0];
  *variant = table[value - 1][1];
  return 1;
}

const char *RootMenuName(int value) {
  static const char *names[8] = {"Origin",
                                 "Spherical",
                                 "Random: x axis plane",
                                 "Random: y axis plane",
                                 "Random: z axis plane",
                                 "Ring: x axis plane",
                                 "Ring: y axis plane",
                                 "Ring: z axis plane"};
  if (value < 1 || value > 8) return 0;
  return names[value - 1];
}

void SetRootDistribution(int value) {
  growthstate.rootdistribution = value;
  const char *name = RootMenuName(value);
  if (name != 0) CopyName(growthstate.rootname, name, sizeof(growthstate.rootname));
}
