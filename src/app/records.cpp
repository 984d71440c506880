#include "app/simulation.h"

#include <string.h>  // strncpy()

const int versionid = 102;

void ReserveCells(SIMULATION &sim, int n) {
  if ((int)sim.cells.size() >= n) return;
  if ((int)sim.cells.capacity() < n) {
    size_t cap = sim.cells.capacity() < 1024 ? 1024 : sim.cells.capacity();
    while ((int)cap < n) cap *= 2;
    sim.cells.reserve(cap);
  }
  CELL fresh = {{0, 0, 0}, 0, -1, 0};
  sim.cells.resize(n, fresh);
  sim.cellsrevision++;
}

void ReserveCellRoom(SIMULATION &sim, int n) {
  size_t room = sim.cells.capacity();
  if (n <= 0 || (size_t)n <= room) return;
  sim.cells.reserve((size_t)n >= 2 * room ? (size_t)n : 2 * room);
}

void AppendCell(SIMULATION &sim, XYZ p, double weight, int parent) {
  ReserveCells(sim, sim.ncells + 1);
  CELL &c = sim.cells[sim.ncells];
  c.p = p;
  c.weight = weight;
  c.parent = parent;
  c.traced = 0;
  sim.ncells++;
  sim.cellsrevision++;
}

void SetOptionDefaults(SIMULATION &sim) {
  sim.options.debug = 0;
  sim.options.fullscreen = 0;
  sim.options.record = 0;
  sim.options.windowdump = 0;
  sim.options.framerate = 30;
  sim.options.showextras = 1;
  sim.options.showinfo = 1;
  sim.options.stldrawmode = STLDRAW_WIREFRAME;
  sim.options.dladrawmode = DLADRAW_LINES;
  sim.options.stlswap = 0;
  sim.options.light0position[0] = 10;
  sim.options.light0position[1] = 0;
  sim.options.light0position[2] = 0;
  sim.options.light0position[3] = 0;
  sim.options.light1position[0] = 0;
  sim.options.light1position[1] = 0;
  sim.options.light1position[2] = 10;
  sim.options.light1position[3] = 0;
  sim.options.calcstats = 0;
  sim.options.nslices = 50;
  sim.options.slicenormal.x = 0;
  sim.options.slicenormal.y = 0;
  sim.options.slicenormal.z = 1;
  // autospin keeps its zero start value
}

void SetInterfaceDefaults(SIMULATION &sim) {
  sim.interfacestate.button = DRAG_NONE;
  sim.interfacestate.shift = 0;
  sim.interfacestate.mousex = 0;
  sim.interfacestate.mousey = 0;
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
