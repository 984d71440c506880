#include "desktop/forms/filedialogs.h"

#include <forms.h>
#include <stdlib.h>  // exit()

#include "app/simulation.h"
#include "desktop/forms/forms.h"
#include "export/model.h"
#include "export/report.h"
#include "growth/growth.h"
#include "surface/stl.h"

// Asks for a file name; 1 with the name in name (256 bytes), 0 when the
// selector was cancelled or the name is empty.
static int ChooseFile(const char *title, char *name) {
  const char *s = fl_show_fselector(title, "", "", "");
  if (s == NULL || s[0] == '\0') return 0;
  CopyName(name, s, 256);
  return 1;
}

static void ShowFileMessage(const FILEMESSAGE *msg) {
  if (msg->set) fl_show_message(msg->line1, msg->line2, msg->line3);
}

int ReadRoots(SIMULATION &sim) {
  char name[256];
  if (!ChooseFile("Seed file", name)) return 1;
  FILEMESSAGE msg = {};
  if (!ReadRootsFile(sim, name, &msg)) {
    ShowFileMessage(&msg);
    return 0;
  }
  UpdateForms();
  return 1;
}

int ReadSTL(SIMULATION &sim) {
  char name[256];
  if (!ChooseFile("STL file", name)) return 1;
  FILEMESSAGE msg = {};
  if (ReadSTLFile(sim, name, &msg)) return 1;
  ShowFileMessage(&msg);
  if (msg.fatal) exit(-1);
  return 0;
}

void SaveModel(SIMULATION &sim, int format, int variant) {
  static const char *titles[6] = {"VRML file", "GEOM file", "STL file", "PovRay file", "POINT DXF file",
                                  "POINT GEOM file"};
  if (format < 0 || format > 5) return;
  char name[256];
  if (!ChooseFile(titles[format], name)) return;
  SaveModelFile(sim, name, format, variant);
}

int SaveInformation(SIMULATION &sim) {
  char name[256];
  if (!ChooseFile("Text file", name)) return 0;
  return SaveInformationFile(sim, name);
}
