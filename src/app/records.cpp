#include "app/records.h"

#include <string.h>  // strncpy()

CAMERA camera;
OPTIONS options;
GROWTHSTATE growthstate;
INTERFACESTATE interfacestate;
STATS stats;

std::vector<CELL> cells;
int ncells = 0;
unsigned cellsrevision = 0;

XYZ seeds[NSEEDS];
int nseeds = 0;

std::vector<XYZ> roots;

const int versionid = 102;

void ReserveCells(int n) {
  if ((int)cells.size() >= n) return;
  if ((int)cells.capacity() < n) {
    size_t cap = cells.capacity() < 1024 ? 1024 : cells.capacity();
    while ((int)cap < n) cap *= 2;
    cells.reserve(cap);
  }
  CELL fresh = {{0, 0, 0}, 0, -1, 0};
  cells.resize(n, fresh);
  cellsrevision++;
}

void AppendCell(XYZ p, double weight, int parent) {
  ReserveCells(ncells + 1);
  CELL &c = cells[ncells];
  c.p = p;
  c.weight = weight;
  c.parent = parent;
  c.traced = 0;
  ncells++;
  cellsrevision++;
}

void SetOptionDefaults(void) {
  options.debug = 0;
  options.fullscreen = 0;
  options.record = 0;
  options.windowdump = 0;
  options.framerate = 30;
  options.showextras = 1;
  options.showinfo = 1;
  options.stldrawmode = STLDRAW_WIREFRAME;
  options.dladrawmode = DLADRAW_LINES;
  options.stlswap = 0;
  options.light0position[0] = 10;
  options.light0position[1] = 0;
  options.light0position[2] = 0;
  options.light0position[3] = 0;
  options.light1position[0] = 0;
  options.light1position[1] = 0;
  options.light1position[2] = 10;
  options.light1position[3] = 0;
  options.calcstats = 0;
  options.nslices = 50;
  options.slicenormal.x = 0;
  options.slicenormal.y = 0;
  options.slicenormal.z = 1;
  // autospin keeps its zero start value
}

void SetInterfaceDefaults(void) {
  interfacestate.button = DRAG_NONE;
  interfacestate.shift = 0;
  interfacestate.mousex = 0;
  interfacestate.mousey = 0;
}

void CopyName(char *dst, const char *src, int n) {
  strncpy(dst, src, n - 1);
  dst[n - 1] = '\0';
}

void SetFileMessage(FILEMESSAGE *msg, int fatal, const char *l1, const char *l2, const char *l3) {
  if (msg == NULL) return;
  msg->set = 1;
  msg->fatal = fatal;
  CopyName(msg->line1, l1, sizeof(msg->line1));
  CopyName(msg->line2, l2, sizeof(msg->line2));
  CopyName(msg->line3, l3, sizeof(msg->line3));
}
