// The entries of the pop-up menus and the record changes some of them make.
// Kept apart from the GLUT calls so the tables can be checked without a
// window.
#ifndef DLA_VIEW_MENUTABLES_H
#define DLA_VIEW_MENUTABLES_H

#include "app/simulation.h"

// Sub-menus, in the order CreateMenus makes them.
enum { SUBMENU_STL = 0, SUBMENU_SAVE, SUBMENU_DLA, SUBMENU_SAMPLE, SUBMENU_SOURCE, SUBMENU_ROOT, NSUBMENUS };

// Values of the main menu's entries; the separators' values are ignored.
enum {
  MAINMENU_READSTL = 1,
  MAINMENU_SETTINGS = 2,
  MAINMENU_TRANSFORM = 3,
  MAINMENU_SAVESTL = 4,
  MAINMENU_READSEEDS = 5,
  MAINMENU_SAVEINFO = 6,
  MAINMENU_SLICES = 7,
  MAINMENU_EXTRAS = 10,
  MAINMENU_INFO = 11,
  MAINMENU_PAUSE = 12,
  MAINMENU_RESTART = 13,
  MAINMENU_STATISTICS = 14,
  MAINMENU_SEPARATOR = 50,
  MAINMENU_SEPARATOR2 = 60,
  MAINMENU_QUIT = 100
};

// Values of the save menu's entries, top to bottom.
enum {
  SAVEMENU_POVSWEEP = 1,
  SAVEMENU_POVSEGMENTS,
  SAVEMENU_GEOM,
  SAVEMENU_VRML,
  SAVEMENU_VRMLCAPS,
  SAVEMENU_DXFPOINTS,
  SAVEMENU_GEOMPOINTS
};

// One entry: a label with the value its callback receives, or (submenu not
// below 0) a label that opens sub-menu SUBMENU_*.
struct MENUENTRY {
  const char *label;
  int value;
  int submenu;
};

// Top to bottom. "-" entries are separators the callback ignores.
extern const MENUENTRY mainmenu[];
extern const int nmainmenu;
extern const MENUENTRY savemenu[];
extern const int nsavemenu;
extern const MENUENTRY dlamenu[];
extern const int ndlamenu;
extern const MENUENTRY stlmenu[];
extern const int nstlmenu;
extern const MENUENTRY sourcemenu[];
extern const int nsourcemenu;
extern const MENUENTRY rootmenu[];
extern const int nrootmenu;

// The SaveModel arguments of a save menu value. Returns 0 (arguments
// untouched) for values outside 1 to 7.
int SaveMenuFormat(int value, int *format, int *variant);

// The name the root menu stores for a distribution value: one row above the
// label of the entry ("Spherical", value 1, is "Origin"); 8 is "Ring: z axis
// plane". NULL outside 1 to 8.
const char *RootMenuName(int value);

// The root menu's record change: rootdistribution = value, and rootname
// from RootMenuName when that is not NULL.
void SetRootDistribution(SIMULATION &sim, int value);

#endif
