// Preloaded into dla3d by the GUI tests. Records in $DLA_SHIM_LOG the menus
// as built (a line each), the forms' texts, file selector prompts,
// message boxes, the cursor, the idle callback set or removed, a
// not-a-number colour with its frame. A file
// selector is answered from $DLA_SHIM_ANSWER when it exists (removed once
// read; "CANCEL" cancels), else shown.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <math.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))
enum { OWNLINE, MENU, SET };

// A record joins the line of the records before it of the same group,
// unless it starts a line (a menu).
static void Log(int group, int start, const char *fmt, ...) {
  static int current = OWNLINE;
  const char *path = getenv("DLA_SHIM_LOG");
  FILE *fp = path ? fopen(path, "a") : NULL;
  if (fp == NULL) return;
  fputs(!start && group != OWNLINE && group == current ? "; " : "\n", fp);
  current = group;
  va_list ap;
  va_start(ap, fmt);
  vfprintf(fp, fmt, ap);
  va_end(ap);
  fclose(fp);
}

// Inputs by their form (counted from 1) and place, for fl_set_input.
static struct INPUT { void *object; int form, x, y; } inputs[256];
static int ninputs, nforms;

void *fl_bgn_form(int type, int w, int h) {
  nforms++;
  return NEXT(fl_bgn_form)(type, w, h);
}

void *fl_add_input(int type, int x, int y, int w, int h, const char *label) {
  void *ob = NEXT(fl_add_input)(type, x, y, w, h, label);
  if (ninputs < 256) inputs[ninputs++] = (struct INPUT){ob, nforms, x, y};
  return ob;
}

void fl_set_input(void *ob, const char *text) {
  for (int i = 0; i < ninputs; i++)
    if (inputs[i].object == ob) Log(SET, 0, "%d:%d,%d=%s", inputs[i].form, inputs[i].x, inputs[i].y, text);
  NEXT(fl_set_input)(ob, text);
}

const char *fl_show_fselector(const char *message, const char *dir, const char *pattern, const char *name) {
  static char answer[4096];
  const char *path = getenv("DLA_SHIM_ANSWER");
  FILE *fp = path ? fopen(path, "r") : NULL;
  if (fp == NULL) {
    Log(OWNLINE, 0, "fselector %s", message);
    return NEXT(fl_show_fselector)(message, dir, pattern, name);
  }
  if (fgets(answer, sizeof(answer), fp) == NULL) answer[0] = '\0';
  fclose(fp);
  unlink(path);
  answer[strcspn(answer, "\n")] = '\0';
  Log(OWNLINE, 0, "fselector %s -> %s", message, answer);
  return strcmp(answer, "CANCEL") == 0 ? NULL : answer;
}

int glutCreateMenu(void (*callback)(int)) {
  int id = NEXT(glutCreateMenu)(callback);
  Log(MENU, 1, "menu %d", id);
  return id;
}

// A function that records its arguments, then does its work.
#define LOGGED(name, params, args, group, ...) \
  void name params {                           \
    Log(group, 0, __VA_ARGS__);                \
    NEXT(name) args;                           \
  }
LOGGED(fl_show_message, (const char *a, const char *b, const char *c), (a, b, c), OWNLINE, "message %s|%s|%s", a, b, c)
LOGGED(glutAddMenuEntry, (const char *label, int value), (label, value), MENU, "%s=%d", label, value)
LOGGED(glutAddSubMenu, (const char *label, int submenu), (label, submenu), MENU, "%s>%d", label, submenu)
LOGGED(glutSetCursor, (int cursor), (cursor), OWNLINE, "cursor %d", cursor)
LOGGED(glutIdleFunc, (void (*idle)(void)), (idle), OWNLINE, "idle %s", idle ? "on" : "off")

static int frames;

void glutSwapBuffers(void) {
  frames++;
  NEXT(glutSwapBuffers)();
}

void glColor3f(float r, float g, float b) {
  static void (*next)(float, float, float);
  if (next == NULL) next = NEXT(glColor3f);
  if (isnan(r)) Log(OWNLINE, 0, "not-a-number colour in frame %d", frames);
  next(r, g, b);
}
