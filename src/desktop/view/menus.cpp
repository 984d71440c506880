#include "desktop/view/menus.h"
#include "desktop/app/desktop.h"

#include <GL/glut.h>
#include <stdlib.h>  // exit()

#include "app/simulation.h"
#include "desktop/forms/filedialogs.h"
#include "desktop/forms/forms.h"
#include "export/model.h"
#include "export/statistics.h"
#include "gl/view/scene.h"
#include "growth/growth.h"
#include "surface/samples.h"
#include "view/menutables.h"

static int CreateMenu(void (*callback)(int), const MENUENTRY *entries, int n) {
  int id = glutCreateMenu(callback);
  for (int i = 0; i < n; i++) glutAddMenuEntry(entries[i].label, entries[i].value);
  return id;
}

void CreateMenus(void) {
  int sub[NSUBMENUS];

  sub[SUBMENU_STL] = CreateMenu(HandleSTLMenu, stlmenu, nstlmenu);
  sub[SUBMENU_SAVE] = CreateMenu(HandleSaveMenu, savemenu, nsavemenu);
  sub[SUBMENU_DLA] = CreateMenu(HandleDLAMenu, dlamenu, ndlamenu);
  sub[SUBMENU_SAMPLE] = glutCreateMenu(HandleSampleMenu);
  for (int i = 0; i < nsamplesurfaces; i++) glutAddMenuEntry(samplesurfaces[i].name, samplesurfaces[i].code);
  sub[SUBMENU_SOURCE] = CreateMenu(HandleSourceMenu, sourcemenu, nsourcemenu);
  sub[SUBMENU_ROOT] = CreateMenu(HandleRootMenu, rootmenu, nrootmenu);

  glutCreateMenu(HandleMainMenu);
  for (int i = 0; i < nmainmenu; i++) {
    if (mainmenu[i].submenu >= 0)
      glutAddSubMenu(mainmenu[i].label, sub[mainmenu[i].submenu]);
    else
      glutAddMenuEntry(mainmenu[i].label, mainmenu[i].value);
  }
  glutAttachMenu(GLUT_RIGHT_BUTTON);
}

// Refreshes every form from the records before showing one, so a form
// shown again picks up what changed meanwhile.
static void ShowRefreshedForm(FL_FORM *form, int *visible) {
  UpdateForms();
  ShowForm(form, visible);
}

void HandleMainMenu(int value) {
  switch (value) {
    case MAINMENU_READSTL:
      ReadSTL(sim);
      // Make a newly read surface visible.
      if (sim.options.stldrawmode < STLDRAW_WIREFRAME) sim.options.stldrawmode = STLDRAW_WIREFRAME;
      DrawSTL(sim, sim.options.stldrawmode, STL_REBUILD);
      break;
    case MAINMENU_SETTINGS:
      ShowRefreshedForm(settingform->settingform, &settingformvisible);
      break;
    case MAINMENU_TRANSFORM:
      ShowRefreshedForm(stlform->stlform, &stlformvisible);
      break;
    case MAINMENU_SAVESTL:
      SaveModel(sim, MODEL_STL, MODEL_SWEEP);
      break;
    case MAINMENU_READSEEDS:
      ReadRoots(sim);
      break;
    case MAINMENU_SAVEINFO:
      SaveInformation(sim);
      break;
    case MAINMENU_SLICES:
      ShowRefreshedForm(sliceform->sliceform, &sliceformvisible);
      break;
    case MAINMENU_EXTRAS:
      sim.options.showextras = !sim.options.showextras;
      break;
    case MAINMENU_INFO:
      sim.options.showinfo = !sim.options.showinfo;
      break;
    case MAINMENU_PAUSE:
      sim.growthstate.growing = !sim.growthstate.growing;
      break;
    case MAINMENU_RESTART:
      InitialiseGrowth(sim);
      break;
    case MAINMENU_STATISTICS:
      Statistics(sim);
      break;
    case MAINMENU_QUIT:
      exit(0);
  }
}

void HandleSaveMenu(int value) {
  int format, variant;
  if (SaveMenuFormat(value, &format, &variant)) SaveModel(sim, format, variant);
}

void HandleDLAMenu(int value) { sim.options.dladrawmode = value; }

void HandleSTLMenu(int value) {
  sim.options.stldrawmode = value;
  DrawSTL(sim, sim.options.stldrawmode, STL_REBUILD);
}

void HandleSourceMenu(int value) { sim.growthstate.sourcetype = value; }

void HandleRootMenu(int value) { SetRootDistribution(sim, value); }

void HandleSampleMenu(int value) {
  MakeSampleSurface(sim, value);
  DrawSTL(sim, sim.options.stldrawmode, STL_REBUILD);
}
