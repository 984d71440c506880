// The dialog forms: layout (in the form designer's style), refresh from the
// records, and what their buttons do.
#include "desktop/forms/forms.h"
#include "desktop/app/desktop.h"

#include <stdio.h>   // snprintf()
#include <stdlib.h>  // exit()

#include "app/simulation.h"
#include "forms/readback.h"
#include "gl/view/scene.h"
#include "surface/slice.h"

FD_settingform *settingform = NULL;
FD_stlform *stlform = NULL;
FD_sliceform *sliceform = NULL;
FD_messageform *messageform = NULL;

int settingformvisible = 0;
int stlformvisible = 0;
int sliceformvisible = 0;
int messageformvisible = 0;

// [SECTION] Form titles and texts

static void FormTitle(FL_OBJECT *obj) {
  fl_set_object_lsize(obj, FL_NORMAL_SIZE);
  fl_set_object_lalign(obj, FL_ALIGN_LEFT | FL_ALIGN_INSIDE);
  fl_set_object_lstyle(obj, FL_BOLD_STYLE);
}

static FL_OBJECT *AddText(FL_Coord x, FL_Coord y, FL_Coord w, FL_Coord h, const char *label) {
  FL_OBJECT *obj = fl_add_text(FL_NORMAL_TEXT, x, y, w, h, label);
  fl_set_object_lalign(obj, FL_ALIGN_LEFT | FL_ALIGN_INSIDE);
  return obj;
}

static FL_OBJECT *AddButton(FL_Coord x, FL_Coord y, FL_Coord w, FL_Coord h, const char *label) {
  FL_OBJECT *obj = fl_add_button(FL_NORMAL_BUTTON, x, y, w, h, label);
  fl_set_object_lsize(obj, FL_NORMAL_SIZE);
  return obj;
}

// [SECTION] Creators

FD_settingform *create_form_settingform(void) {
  FL_OBJECT *obj;
  FD_settingform *fdui = (FD_settingform *)fl_calloc(1, sizeof(*fdui));

  fdui->settingform = fl_bgn_form(FL_NO_BOX, 411, 531);
  fl_add_box(FL_UP_BOX, 0, 0, 411, 531, "");
  fl_add_frame(FL_ENGRAVED_FRAME, 20, 50, 360, 270, "");
  fdui->hide = AddButton(320, 480, 60, 30, "Hide");
  FormTitle(AddText(15, 10, 80, 30, "Settings"));
  fdui->bias = fl_add_input(FL_NORMAL_INPUT, 175, 95, 50, 30, "Bias towards origin");
  fdui->branchlength = fl_add_input(FL_NORMAL_INPUT, 175, 130, 50, 30, "Branch length");
  fdui->stickiness = fl_add_input(FL_NORMAL_INPUT, 175, 165, 50, 30, "Stickiness");
  AddText(225, 100, 140, 20, "% of branch length");
  AddText(235, 170, 40, 20, "%");
  fdui->thickend = fl_add_input(FL_NORMAL_INPUT, 175, 240, 50, 30, "Branch thickness");
  fdui->thickstart = fl_add_input(FL_NORMAL_INPUT, 255, 240, 50, 30, "");
  obj = AddText(225, 240, 30, 30, "to");
  fl_set_object_lalign(obj, FL_ALIGN_CENTER | FL_ALIGN_INSIDE);
  fdui->seed = fl_add_input(FL_NORMAL_INPUT, 175, 60, 50, 30, "Random number seed");
  fdui->rotation = fl_add_input(FL_NORMAL_INPUT, 175, 200, 50, 30, "Particle rotation");
  AddText(230, 200, 130, 30, "About z (degrees)");
  fl_add_frame(FL_ENGRAVED_FRAME, 20, 340, 360, 120, "");
  fdui->nroots = fl_add_input(FL_NORMAL_INPUT, 175, 350, 50, 30, "Number of roots");
  fdui->rootrange = fl_add_input(FL_NORMAL_INPUT, 175, 385, 50, 30, "Root distribution range");
  fdui->associate = fl_add_checkbutton(FL_PUSH_BUTTON, 170, 420, 170, 30, "Associate seeds with roots");
  fdui->intersectrange = fl_add_input(FL_NORMAL_INPUT, 175, 275, 50, 30, "Intersection range");
  AddText(235, 275, 130, 30, "% of branch length");
  fl_end_form();

  fdui->settingform->fdui = fdui;
  return fdui;
}

FD_stlform *create_form_stlform(void) {
  FD_stlform *fdui = (FD_stlform *)fl_calloc(1, sizeof(*fdui));

  fdui->stlform = fl_bgn_form(FL_NO_BOX, 351, 291);
  fl_add_box(FL_UP_BOX, 0, 0, 351, 291, "");
  fl_add_frame(FL_ENGRAVED_FRAME, 20, 50, 310, 180, "");
  fdui->hide = AddButton(260, 245, 60, 30, "Hide");
  FormTitle(AddText(20, 10, 170, 30, "Constraint surface"));
  fdui->scalex = fl_add_input(FL_NORMAL_INPUT, 90, 85, 60, 30, "");
  fdui->apply = AddButton(170, 245, 60, 30, "Apply");
  fdui->scaley = fl_add_input(FL_NORMAL_INPUT, 170, 85, 60, 30, "");
  fdui->scalez = fl_add_input(FL_NORMAL_INPUT, 250, 85, 60, 30, "");
  AddText(40, 90, 50, 20, "Scale");
  fdui->shiftx = fl_add_input(FL_NORMAL_INPUT, 90, 135, 60, 30, "");
  fdui->shifty = fl_add_input(FL_NORMAL_INPUT, 170, 135, 60, 30, "");
  fdui->shiftz = fl_add_input(FL_NORMAL_INPUT, 250, 135, 60, 30, "");
  AddText(40, 140, 40, 20, "Shift");
  fdui->rotatex = fl_add_input(FL_NORMAL_INPUT, 90, 185, 60, 30, "");
  fdui->rotatey = fl_add_input(FL_NORMAL_INPUT, 170, 185, 60, 30, "");
  fdui->rotatez = fl_add_input(FL_NORMAL_INPUT, 250, 185, 60, 30, "");
  AddText(30, 190, 50, 20, "Rotate");
  AddText(110, 55, 20, 30, "X");
  AddText(190, 55, 20, 30, "Y");
  AddText(270, 55, 20, 30, "Z");
  fl_end_form();

  fdui->stlform->fdui = fdui;
  return fdui;
}

FD_sliceform *create_form_sliceform(void) {
  FD_sliceform *fdui = (FD_sliceform *)fl_calloc(1, sizeof(*fdui));

  fdui->sliceform = fl_bgn_form(FL_NO_BOX, 421, 251);
  fl_add_box(FL_UP_BOX, 0, 0, 421, 251, "");
  fl_add_frame(FL_ENGRAVED_FRAME, 20, 60, 380, 120, "");
  fdui->hide = AddButton(320, 200, 60, 30, "Hide");
  FormTitle(AddText(20, 10, 80, 30, "Slicing"));
  fdui->normalx = fl_add_input(FL_NORMAL_INPUT, 150, 80, 60, 30, "");
  fdui->slice = AddButton(230, 200, 60, 30, "Slice");
  fdui->normaly = fl_add_input(FL_NORMAL_INPUT, 235, 80, 60, 30, "");
  fdui->normalz = fl_add_input(FL_NORMAL_INPUT, 320, 80, 60, 30, "");
  AddText(30, 80, 100, 30, "Plane normal");
  AddText(130, 80, 20, 30, "X");
  AddText(215, 80, 20, 30, "Y");
  AddText(300, 80, 20, 30, "Z");
  fdui->nslices = fl_add_input(FL_NORMAL_INPUT, 150, 130, 60, 30, "");
  AddText(30, 130, 110, 30, "Number of slices");
  fl_end_form();

  fdui->sliceform->fdui = fdui;
  return fdui;
}

// The three lines are inputs without a box, deactivated after creation
// (start-up does that), so they read as plain text.
static FL_OBJECT *AddMessageLine(FL_Coord y) {
  FL_OBJECT *obj = fl_add_input(FL_NORMAL_INPUT, 20, y, 540, 30, "");
  fl_set_object_boxtype(obj, FL_NO_BOX);
  fl_set_object_color(obj, FL_WHITE, FL_WHITE);
  return obj;
}

FD_messageform *create_form_messageform(void) {
  FL_OBJECT *obj;
  FD_messageform *fdui = (FD_messageform *)fl_calloc(1, sizeof(*fdui));

  fdui->messageform = fl_bgn_form(FL_NO_BOX, 581, 211);
  obj = fl_add_box(FL_UP_BOX, 0, 0, 581, 211, "");
  fl_set_object_color(obj, FL_WHITE, FL_COL1);
  // "HIde" is this form's label as it has always been; the button keeps the
  // toolkit's default label size.
  fdui->hide = obj = fl_add_button(FL_NORMAL_BUTTON, 500, 160, 60, 30, "HIde");
  fl_set_object_color(obj, FL_WHITE, FL_COL1);
  obj = AddText(15, 10, 100, 30, "Message");
  fl_set_object_color(obj, FL_WHITE, FL_MCOL);
  FormTitle(obj);
  fdui->line1 = AddMessageLine(50);
  fdui->line2 = AddMessageLine(80);
  fdui->line3 = AddMessageLine(110);
  fl_end_form();

  fdui->messageform->fdui = fdui;
  return fdui;
}

// [SECTION] Refresh from the records

static void SetInputInt(FL_OBJECT *obj, int value) {
  char s[256];
  snprintf(s, sizeof(s), "%d", value);
  fl_set_input(obj, s);
}

static void SetInputDouble(FL_OBJECT *obj, double value) {
  char s[256];
  snprintf(s, sizeof(s), "%g", value);
  fl_set_input(obj, s);
}

void UpdateForms(void) {
  SetInputInt(sliceform->nslices, sim.options.nslices);
  SetInputDouble(sliceform->normalx, sim.options.slicenormal.x);
  SetInputDouble(sliceform->normaly, sim.options.slicenormal.y);
  SetInputDouble(sliceform->normalz, sim.options.slicenormal.z);

  // The associate check button is not refreshed: it keeps what the user set.
  SetInputInt(settingform->seed, sim.growthstate.seed);
  SetInputDouble(settingform->rotation, sim.growthstate.rotation);
  SetInputDouble(settingform->bias, sim.growthstate.bias);
  SetInputDouble(settingform->branchlength, sim.growthstate.branchlength);
  SetInputDouble(settingform->stickiness, sim.growthstate.stickiness);
  SetInputDouble(settingform->thickend, sim.growthstate.thickend);
  SetInputDouble(settingform->thickstart, sim.growthstate.thickstart);
  SetInputInt(settingform->nroots, sim.growthstate.nroots);
  SetInputDouble(settingform->rootrange, sim.growthstate.rootrange);
  SetInputDouble(settingform->intersectrange, sim.growthstate.intersectrange);

  // Transforms apply step by step to the current surface, so the form
  // always offers the identity.
  fl_set_input(stlform->scalex, "1.0");
  fl_set_input(stlform->scaley, "1.0");
  fl_set_input(stlform->scalez, "1.0");
  fl_set_input(stlform->shiftx, "0.0");
  fl_set_input(stlform->shifty, "0.0");
  fl_set_input(stlform->shiftz, "0.0");
  fl_set_input(stlform->rotatex, "0.0");
  fl_set_input(stlform->rotatey, "0.0");
  fl_set_input(stlform->rotatez, "0.0");
}

// [SECTION] Showing

void ShowForm(FL_FORM *form, int *visible) {
  fl_show_form(form, FL_PLACE_CENTER, FL_FULLBORDER, "");
  *visible = 1;
}

void ShowMessage(const char *l1, const char *l2, const char *l3) {
  fl_set_input(messageform->line1, l1);
  fl_set_input(messageform->line2, l2);
  fl_set_input(messageform->line3, l3);
  ShowForm(messageform->messageform, &messageformvisible);
}

// [SECTION] Polling

static void HideForm(FL_FORM *form, int *visible) {
  fl_hide_form(form);
  *visible = 0;
}

void CheckSliceForm(FL_OBJECT *obj) {
  if (!sliceformvisible || obj == NULL) return;
  if (obj == sliceform->hide) {
    HideForm(sliceform->sliceform, &sliceformvisible);
  } else if (obj == sliceform->slice) {
    // A slice file that cannot be created ends the program (after the
    // message DoSlice writes to standard error).
    if (!DoSlice(sim, sim.options.nslices, SliceNormalForCut(sim))) exit(-1);
  } else if (obj == sliceform->normalx) {
    ReadSliceNormalText(sim, 0, fl_get_input(obj));
  } else if (obj == sliceform->normaly) {
    ReadSliceNormalText(sim, 1, fl_get_input(obj));
  } else if (obj == sliceform->normalz) {
    ReadSliceNormalText(sim, 2, fl_get_input(obj));
  } else if (obj == sliceform->nslices) {
    ReadSliceCountText(sim, fl_get_input(obj));
  }
}

void CheckMessageForm(FL_OBJECT *obj) {
  if (!messageformvisible || obj == NULL) return;
  if (obj == messageform->hide) HideForm(messageform->messageform, &messageformvisible);
}

void CheckSettingForm(FL_OBJECT *obj) {
  if (!settingformvisible || obj == NULL) return;
  FD_settingform *f = settingform;
  if (obj == f->hide) {
    HideForm(f->settingform, &settingformvisible);
  } else if (obj == f->bias) {
    ReadBiasText(sim, fl_get_input(obj));
  } else if (obj == f->rotation) {
    ReadRotationText(sim, fl_get_input(obj));
  } else if (obj == f->seed) {
    ReadSeedText(sim, fl_get_input(obj));
  } else if (obj == f->branchlength) {
    ReadBranchLengthText(sim, fl_get_input(obj));
  } else if (obj == f->stickiness) {
    ReadStickinessText(sim, fl_get_input(obj));
  } else if (obj == f->thickend) {
    ReadThickEndText(sim, fl_get_input(obj));
  } else if (obj == f->thickstart) {
    ReadThickStartText(sim, fl_get_input(obj));
  } else if (obj == f->intersectrange) {
    ReadIntersectRangeText(sim, fl_get_input(obj));
  } else if (obj == f->nroots) {
    ReadNumberOfRootsText(sim, fl_get_input(obj));
  } else if (obj == f->rootrange) {
    ReadRootRangeText(sim, fl_get_input(obj));
  } else if (obj == f->associate) {
    SetAssociate(sim, fl_get_button(obj));
  }
}

void CheckSTLForm(FL_OBJECT *obj) {
  if (!stlformvisible || obj == NULL) return;
  if (obj == stlform->hide) {
    HideForm(stlform->stlform, &stlformvisible);
  } else if (obj == stlform->apply) {
    // The nine inputs are read only here: returning one alone does nothing.
    const char *text[9] = {fl_get_input(stlform->scalex), fl_get_input(stlform->scaley),
                           fl_get_input(stlform->scalez), fl_get_input(stlform->shiftx),
                           fl_get_input(stlform->shifty), fl_get_input(stlform->shiftz),
                           fl_get_input(stlform->rotatex), fl_get_input(stlform->rotatey),
                           fl_get_input(stlform->rotatez)};
    ApplyTransformText(sim, text);
    DrawSTL(sim, sim.options.stldrawmode, STL_REBUILD);
    UpdateForms();
  }
}
