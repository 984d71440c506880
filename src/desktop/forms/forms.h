// The four dialog forms: settings, constraint surface transform, slicing and
// message. Created hidden at start-up, shown from the menus, polled by the
// idle driver. Desktop only (XForms).
#ifndef DLA_DESKTOP_FORMS_FORMS_H
#define DLA_DESKTOP_FORMS_FORMS_H

#include <forms.h>

// Each record: the form, three user-data slots the program leaves empty, then
// the active objects in creation order (labels, frames and texts are not kept).
struct FD_settingform {
  FL_FORM *settingform;
  void *vdata;
  char *cdata;
  long ldata;
  FL_OBJECT *hide;
  FL_OBJECT *bias;
  FL_OBJECT *branchlength;
  FL_OBJECT *stickiness;
  FL_OBJECT *thickend;    // first thickness, before "to"
  FL_OBJECT *thickstart;  // second thickness, after "to"
  FL_OBJECT *seed;
  FL_OBJECT *rotation;
  FL_OBJECT *nroots;
  FL_OBJECT *rootrange;
  FL_OBJECT *associate;
  FL_OBJECT *intersectrange;
};

struct FD_stlform {
  FL_FORM *stlform;
  void *vdata;
  char *cdata;
  long ldata;
  FL_OBJECT *hide;
  FL_OBJECT *scalex;
  FL_OBJECT *apply;
  FL_OBJECT *scaley;
  FL_OBJECT *scalez;
  FL_OBJECT *shiftx;
  FL_OBJECT *shifty;
  FL_OBJECT *shiftz;
  FL_OBJECT *rotatex;
  FL_OBJECT *rotatey;
  FL_OBJECT *rotatez;
};

struct FD_sliceform {
  FL_FORM *sliceform;
  void *vdata;
  char *cdata;
  long ldata;
  FL_OBJECT *hide;
  FL_OBJECT *normalx;
  FL_OBJECT *slice;
  FL_OBJECT *normaly;
  FL_OBJECT *normalz;
  FL_OBJECT *nslices;
};

struct FD_messageform {
  FL_FORM *messageform;
  void *vdata;
  char *cdata;
  long ldata;
  FL_OBJECT *hide;
  FL_OBJECT *line1;
  FL_OBJECT *line2;
  FL_OBJECT *line3;
};

extern FD_settingform *settingform;
extern FD_stlform *stlform;
extern FD_sliceform *sliceform;
extern FD_messageform *messageform;

// 1 while the form is shown, 0 while hidden.
extern int settingformvisible;
extern int stlformvisible;
extern int sliceformvisible;
extern int messageformvisible;

// Builders, after fl_initialize. Each returns a zeroed fl_calloc record.
FD_settingform *create_form_settingform(void);
FD_stlform *create_form_stlform(void);
FD_sliceform *create_form_sliceform(void);
FD_messageform *create_form_messageform(void);

// Copies the records into the inputs of the slice, settings and transform
// forms; the transform inputs go back to the identity ("1.0", "0.0").
void UpdateForms(void);

// Shows a form centred, without a title, and sets its visibility flag.
void ShowForm(FL_FORM *form, int *visible);

// Puts three lines into the message form and shows it.
void ShowMessage(const char *l1, const char *l2, const char *l3);

// What a form does with an object fl_check_forms returned. Each does
// nothing while its form is hidden or when obj is not one of its objects.
void CheckSliceForm(FL_OBJECT *obj);
void CheckMessageForm(FL_OBJECT *obj);
void CheckSettingForm(FL_OBJECT *obj);
void CheckSTLForm(FL_OBJECT *obj);

#endif
