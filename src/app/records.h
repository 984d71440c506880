// The records of the program: their fields are read and written in place,
// with no accessors. They are fields of one SIMULATION (app/simulation.h),
// which every core function is handed.
#ifndef DLA_APP_RECORDS_H
#define DLA_APP_RECORDS_H

#include <vector>

#include "lib/vector.h"

struct SIMULATION;  // app/simulation.h

struct CAMERA {
  XYZ vp;              // eye position
  XYZ vd;              // view direction, unit length
  XYZ vu;              // up vector, unit length
  XYZ pr;              // point the camera rotates about
  double focallength;  // eye to focus
  double aperture;     // vertical field of view, degrees
  double eyesep;       // stereo eye separation
  double near;         // clipping distances
  double far;
  int stereo;          // STEREO_*
  int screenwidth;     // window size in pixels
  int screenheight;
};

struct OPTIONS {
  int debug;        // diagnostics on standard error ("-d")
  int fullscreen;
  int record;       // dump the window after every redisplay
  int windowdump;   // dump once after the next redisplay
  double framerate; // redisplays per second
  int showextras;
  int showinfo;
  int stldrawmode;  // STLDRAW_*
  int dladrawmode;  // DLADRAW_*
  int stlswap;      // byte order flag for binary STL numbers
  int autospin;     // each redisplay turns the camera by autospin/200
  float light0position[4];
  float light1position[4];
  int calcstats;    // nonzero while the box count runs
  int nslices;      // never below 2
  XYZ slicenormal;
};

struct GROWTHSTATE {
  XYZ particle;           // the particle now wandering
  int sourcetype;         // SOURCE_*
  int growing;            // 1 runs, 0 paused
  double radius;          // largest cell distance from the origin
  double branchlength;    // step length and segment length
  int lifespan;           // steps taken by the current particle
  double bias;            // drift, percent of the step length
  double maxweight;       // largest cell weight
  double stickiness;      // percent
  double rotation;        // swirl about z, degrees per step
  double thickstart;      // thickness where weight == maxweight
  double thickend;        // thickness where weight == 0
  int seed;               // seeds srand and srand48
  int nroots;
  double rootrange;
  int rootdistribution;   // ROOT_*
  char rootname[128];
  int associate;          // seed association on/off
  double intersectrange;  // percent of the branch length
  char stlname[256];
};

struct INTERFACESTATE {
  int button;  // DRAG_*: the last drag button pressed
  int shift;
  int mousex;
  int mousey;
};

struct STATS {
  int timestep;         // ncells when computed; 0: none held
  int branchcount[10];  // cells with 0..8 children, 9 for 9 or more
  double boxsize[10];
  int boxcount[10];     // -1 marks a level not reached
};

// One triangle of the constraint surface.
struct FACET {
  XYZ p[3];     // vertices in file order; orientation comes from this order
  XYZ n;        // unit normal, (0,0,0) for a degenerate triangle
  XYZ mid;      // centroid
  PLANE plane;  // a, b, c = n; d = -n.p[0]
};

struct CELL {
  XYZ p;          // end of the segment from the parent
  double weight;  // accumulated 1/d shares of descendants
  int parent;     // -1 for a root
  int traced;     // scratch mark of the slicing walk and the sweep export
};

// Source types (growthstate.sourcetype), the values of the menu entries.
enum {
  SOURCE_SPHERE = 1,
  SOURCE_PLUSX, SOURCE_MINUSX, SOURCE_DOUBLEX,
  SOURCE_PLUSY, SOURCE_MINUSY, SOURCE_DOUBLEY,
  SOURCE_PLUSZ, SOURCE_MINUSZ, SOURCE_DOUBLEZ,
  SOURCE_PLANEX, SOURCE_PLANEY, SOURCE_PLANEZ,
  SOURCE_HEMIX, SOURCE_HEMIY, SOURCE_HEMIZ,
  SOURCE_STL
};

// Root distributions (growthstate.rootdistribution).
enum {
  ROOT_ORIGIN = 1,
  ROOT_SPHERICAL,
  ROOT_RANDOMX, ROOT_RANDOMY, ROOT_RANDOMZ,
  ROOT_RINGX, ROOT_RINGY, ROOT_RINGZ,
  ROOT_SPHERICAL9
};

// Aggregate drawing modes (options.dladrawmode); 4 has no menu entry.
enum { DLADRAW_OFF = 1, DLADRAW_POINTS = 2, DLADRAW_LINES = 3, DLADRAW_FOUR = 4, DLADRAW_TUBES = 5 };

// Constraint surface drawing modes (options.stldrawmode).
enum { STLDRAW_OFF = 1, STLDRAW_WIREFRAME = 2, STLDRAW_MIDPOINTS = 3, STLDRAW_VERTICES = 4, STLDRAW_SOLID = 5 };

// Model formats of the writers, as the save menus pass them.
enum { MODEL_VRML = 0, MODEL_GEOM = 1, MODEL_STL = 2, MODEL_POVRAY = 3, MODEL_DXFPOINTS = 4, MODEL_GEOMPOINTS = 5 };

// Variants: 0 branches traced into sphere sweeps (POV-Ray only; the other
// formats write no body), 1 one segment per cell, 2 segments with end caps
// (VRML).
enum { MODEL_SWEEP = 0, MODEL_SEGMENTS = 1, MODEL_CAPPED = 2 };

// Drag buttons (interfacestate.button).
enum { DRAG_NONE = -1, DRAG_LEFT = 0, DRAG_MIDDLE = 1 };

// Stereo modes (camera.stereo).
enum { STEREO_MONO = 0, STEREO_ACTIVE = 1, STEREO_DUAL = 2 };

#define NSEEDS 1000

// The most roots the settings can ask for. Every restart keeps that many
// cells, so a count in the billions would exhaust memory before any growth.
#define MAXROOTS 1000000

extern const int versionid;

// Makes room for n cells: cells.size() >= n afterwards. Grows amortised; new
// entries are roots at the origin.
void ReserveCells(SIMULATION &sim, int n);

// Room for n cells without a reallocation, cells.size() unchanged: exactly
// n when n is at least twice the room there was (a run that knows its size
// at the start wastes nothing), else the doubling ReserveCells would make.
void ReserveCellRoom(SIMULATION &sim, int n);

// Appends one cell to the aggregate (ncells + 1).
void AppendCell(SIMULATION &sim, XYZ p, double weight, int parent);

// Start-up defaults of the option and interface records.
void SetOptionDefaults(SIMULATION &sim);
void SetInterfaceDefaults(SIMULATION &sim);

// Copies text into a fixed buffer of size n, cutting it to n - 1 characters.
void CopyName(char *dst, const char *src, int n);

// Three message lines for the toolkit's message box, filled by core
// routines that meet a bad file; fatal asks the desktop layer to end the
// program (status -1) after showing them.
struct FILEMESSAGE {
  int set;
  int fatal;
  char line1[256];
  char line2[256];
  char line3[256];
};
void SetFileMessage(FILEMESSAGE *msg, int fatal, const char *l1, const char *l2, const char *l3);

#endif
