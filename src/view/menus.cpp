#include "view/menus.h"

#include <GL/glut.h>
#include <stdlib.h>  // exit()

#include "app/records.h"
#include "export/statistics.h"
#include "forms/filedialogs.h"
#include "forms/forms.h"
#include "growth/growth.h"
#include "surface/samples.h"
#include "view/menutables.h"
#include "view/render.h"

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
    case 1:
      ReadSTL();
      // Make a newly read surface visible.
      if (options.stldrawmode < 2) options.stldrawmode = 2;
      DrawSTL(options.stldrawmode, 1);
      break;
    case 2:
      ShowRefreshedForm(settingform->settingform, &settingformvisible);
      break;
    case 3:
      ShowRefreshedForm(stlform->stlform, &stlformvisible);
      break;
    case 4:
      SaveModel(2, 0);
      break;
    case 5:
      ReadRoots();
      break;
    case 6:
      SaveInformation();
      break;
    case 7:
      ShowRefreshedForm(sliceform->sliceform, &sliceformvisible);
      break;
    case 10:
      options.showextras = !options.showextras;
      break;
    case 11:
      options.showinfo = !options.showinfo;
      break;
    case 12:
      growthstate.growing = !growthstate.growing;
      break;
    case 13:
      InitialiseGrowth();
      break;
    case 14:
      Statistics();
      break;
    case 100:
      exit(0);
  }
}

void HandleSaveMenu(int value) {
  int format, variant;
  if (SaveMenuFormat(value, &format, &variant)) SaveModel(format, variant);
}

void HandleDLAMenu(int value) { options.dladrawmode = value; }

void HandleSTLMenu(int value) {
  options.stldrawmode = value;
  DrawSTL(options.stldrawmode, 1);
}

void HandleSourceMenu(int value) { growthstate.sourcetype = value; }

void HandleRootMenu(int value) { SetRootDistribution(value); }

void HandleSampleMenu(int value) {
  MakeSampleSurface(value);
  DrawSTL(options.stldrawmode, 1);
}
