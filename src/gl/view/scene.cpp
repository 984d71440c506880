// OpenGL drawing of the scene, with no window system: the desktop program
// and offscreen rendering share it.
//
// [SECTION] Eye: projection, viewport and viewpoint of one eye
// [SECTION] Environment: the fixed GL state of a drawing mode
// [SECTION] Aggregate: points and lines from vertex arrays, tubes
// [SECTION] Constraint surface: the display list
// [SECTION] Extras: circles, axes, release points, spheres
#include "gl/view/scene.h"

#define GL_GLEXT_PROTOTYPES  // buffer objects
#include <GL/gl.h>
#include <GL/glext.h>
#include <malloc.h>  // mallopt()
#include <math.h>
#include <string.h>  // memcmp()

#include <vector>

#include "app/simulation.h"
#include "gl/lib/primitives_gl.h"
#include "lib/vector.h"
#include "surface/stl.h"
#include "view/choosecolour.h"

// ---------------------------------------------------------------------------
// [SECTION] Eye: projection, viewport and viewpoint of one eye

static void NormaliseF(float v[3]) {
  float r = sqrtf(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  if (r == 0) return;
  v[0] /= r;
  v[1] /= r;
  v[2] /= r;
}

static void CrossF(const float a[3], const float b[3], float c[3]) {
  c[0] = a[1] * b[2] - a[2] * b[1];
  c[1] = a[2] * b[0] - a[0] * b[2];
  c[2] = a[0] * b[1] - a[1] * b[0];
}

// gluLookAt's matrix with gluLookAt's own arithmetic (the differences in
// double, the rest in float), so that no GLU library is needed: GLU links
// the window system's libGL, which must stay out of an offscreen process.
static void LookAt(double ex, double ey, double ez, double cx, double cy, double cz, double ux, double uy,
                   double uz) {
  float forward[3] = {(float)(cx - ex), (float)(cy - ey), (float)(cz - ez)};
  float up[3] = {(float)ux, (float)uy, (float)uz};
  float side[3];
  NormaliseF(forward);
  CrossF(forward, up, side);
  NormaliseF(side);
  CrossF(side, forward, up);
  GLfloat m[16] = {side[0], up[0], -forward[0], 0, side[1], up[1], -forward[1], 0,
                   side[2], up[2], -forward[2], 0, 0,       0,     0,           1};
  glMultMatrixf(m);
  glTranslated(-ex, -ey, -ez);
}

void LookThrough(SIMULATION &sim, const EYEVIEW *v) {
  glViewport(v->x, v->y, v->width, v->height);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glFrustum(v->left, v->right, v->bottom, v->top, v->near, v->far);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  LookAt(v->eye.x, v->eye.y, v->eye.z, v->eye.x + sim.camera.vd.x, v->eye.y + sim.camera.vd.y,
         v->eye.z + sim.camera.vd.z, sim.camera.vu.x, sim.camera.vu.y, sim.camera.vu.z);
}

// ---------------------------------------------------------------------------
// [SECTION] Environment

// The filled, lit mode: "Tubes (Slow)" of the aggregate and "Faces, solid"
// of the surface share the code.
static_assert((int)DLADRAW_TUBES == (int)STLDRAW_SOLID, "one filled mode for both drawings");
enum { FILLED = STLDRAW_SOLID };

void CreateEnvironment(SIMULATION &sim, int drawmode) {
  static const GLfloat white[4] = {1, 1, 1, 1};
  static const GLfloat black[4] = {0, 0, 0, 1};
  static const GLfloat dim[4] = {0.1f, 0.1f, 0.1f, 1};
  static const GLfloat shininess[1] = {40};

  glClearColor(0, 0, 0, 0);
  glEnable(GL_DEPTH_TEST);
  glEnable(GL_BLEND);
  glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
  glDisable(GL_DITHER);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glDisable(GL_DITHER);
  glDisable(GL_LINE_SMOOTH);
  glDisable(GL_POINT_SMOOTH);
  glDisable(GL_POLYGON_SMOOTH);
  glLineWidth(1);
  glPointSize(1);
  glFrontFace(GL_CW);
  glDisable(GL_CULL_FACE);

  // Only the solid mode fills; surface mode 2 shows its triangles as lines.
  if (drawmode == FILLED) {
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glShadeModel(GL_SMOOTH);
  } else {
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    glShadeModel(GL_FLAT);
  }

  glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
  glEnable(GL_COLOR_MATERIAL);
  glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, white);
  glMaterialfv(GL_FRONT_AND_BACK, GL_SHININESS, shininess);
  glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, black);

  for (int i = 0; i < 8; i++) glDisable(GL_LIGHT0 + i);
  glLightModeli(GL_LIGHT_MODEL_LOCAL_VIEWER, 1);
  glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, 0);

  if (drawmode == FILLED) {
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
    // Given in the current eye's model-view, so the lights stay fixed in
    // model space.
    glLightfv(GL_LIGHT0, GL_POSITION, sim.options.light0position);
    glLightfv(GL_LIGHT0, GL_AMBIENT, dim);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
    glLightfv(GL_LIGHT0, GL_SPECULAR, black);
    glEnable(GL_LIGHT0);
    glLightfv(GL_LIGHT1, GL_POSITION, sim.options.light1position);
    glLightfv(GL_LIGHT1, GL_AMBIENT, dim);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, white);
    glLightfv(GL_LIGHT1, GL_SPECULAR, black);
    glEnable(GL_LIGHT1);
    glEnable(GL_LIGHTING);
  } else {
    glDisable(GL_LIGHTING);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, white);
  }
}

// ---------------------------------------------------------------------------
// [SECTION] Aggregate

static void CellColour(SIMULATION &sim, int i, int drawmode) {
  COLOUR c = ChooseColour(sim, i, drawmode);
  glColor3f(c.r, c.g, c.b);
}

static void Vertex(XYZ p) { glVertex3f(p.x, p.y, p.z); }

int drawimmediate = 0;

// Points and lines from buffer objects. For every non-root cell in cell
// order, the cell then its parent (the lines); the points are every other
// vertex. Floats are converted from the doubles as glVertex3f and glColor3f
// convert them, so the pictures match the immediate mode exactly.
//
// Only the lines that can show are sent: a line whose two ends lie beyond
// the same clipping plane yields no fragment, so leaving it out changes no
// pixel (the order of the others is kept). The test is made in double with a
// margin far above the rounding of GL's float transform. The lines kept are
// worked out again when the view changes; with the view held, new cells are
// tested as they come. Their positions and colours sit in compact buffers:
// the positions are uploaded as they are appended, the colours whenever one
// moved. A colour is worked out again only when its weight, maxweight or the
// colouring changed; the logarithm of a weight is kept until it moves.
struct DLAARRAYS {
  std::vector<GLfloat> xyz;    // 6 per drawn cell: cell, then parent
  std::vector<int> index;      // the cell of each drawn cell
  std::vector<double> weight;  // per drawn cell: the weight logw is from (NaN: none)
  std::vector<double> logw;    // per drawn cell: log(weight + 1)
  int ndrawn;                  // non-root cells converted
  int n;                       // cells converted, roots included
  int size;                    // cells.size() when converted
  unsigned revision;           // cellsrevision when converted
  CELL last;                   // cell n - 1 when converted
  // The lines that can show, for the view in clip.
  double clip[16];             // projection times model-view, column major
  int tested;                  // drawn cells tested against clip
  std::vector<int> shown;      // drawn cells kept, in order
  std::vector<GLfloat> sxyz;   // 6 per kept cell
  std::vector<GLfloat> srgb;   // 6 per kept cell: its colour twice
  std::vector<double> sweight; // per kept cell: the weight its colour is from
  int coloured;                // kept cells with colours worked out
  int byroot, nroots;          // the colouring they were worked out with
  double maxweight;
  GLuint xyzbuffer, rgbbuffer; // 0 until the first draw
  int uploaded;                // kept cells whose positions are in xyzbuffer
  int capacity;                // kept cells both buffers hold
  int rgbstale;                // rgbbuffer is behind srgb
};
static DLAARRAYS dlaarrays;

static int SameCell(const CELL &a, const CELL &b) {
  return a.parent == b.parent && memcmp(&a.p, &b.p, sizeof(XYZ)) == 0;
}

// Only appends happened since the arrays were last brought up to date: each
// moves the revision by one, and by one more when it lengthened the storage
// by that cell. Anything else (a restart, new roots, the storage grown ahead)
// adds up differently. The last converted cell is compared too, a cheap guard
// against a restart whose changes happen to add up to the same count.
static int OnlyAppended(SIMULATION &sim, const DLAARRAYS &a) {
  int size = (int)sim.cells.size();
  if (sim.ncells < a.n || size < a.size) return 0;
  unsigned appends = (unsigned)(sim.ncells - a.n) + (unsigned)(size - a.size);
  if (sim.cellsrevision - a.revision != appends) return 0;
  return a.n == 0 || SameCell(sim.cells[a.n - 1], a.last);
}

static void ForgetShown(DLAARRAYS &a) {
  a.tested = 0;
  a.shown.clear();
  a.sxyz.clear();
  a.srgb.clear();
  a.sweight.clear();
  a.coloured = 0;
  a.uploaded = 0;
}

static void SyncDLAArrays(SIMULATION &sim) {
  DLAARRAYS &a = dlaarrays;
  if (!OnlyAppended(sim, a)) {
    a.ndrawn = 0;
    a.n = 0;
    ForgetShown(a);
  }
  int count = a.ndrawn;
  for (int i = a.n; i < sim.ncells; i++)
    if (sim.cells[i].parent >= 0) count++;
  a.xyz.resize(6 * (size_t)count);
  a.index.resize(count);
  a.weight.resize(count, NAN);
  a.logw.resize(count);

  GLfloat *v = a.xyz.data() + 6 * (size_t)a.ndrawn;
  int k = a.ndrawn;
  for (int i = a.n; i < sim.ncells; i++) {
    if (sim.cells[i].parent < 0) continue;  // roots are not drawn
    const XYZ &p = sim.cells[i].p;
    const XYZ &q = sim.cells[sim.cells[i].parent].p;
    v[0] = p.x;
    v[1] = p.y;
    v[2] = p.z;
    v[3] = q.x;
    v[4] = q.y;
    v[5] = q.z;
    v += 6;
    a.index[k] = i;
    a.weight[k] = NAN;
    k++;
  }
  a.ndrawn = count;
  a.n = sim.ncells;
  a.size = (int)sim.cells.size();
  a.revision = sim.cellsrevision;
  if (sim.ncells > 0) a.last = sim.cells[sim.ncells - 1];
}

// Bit k set: the clip-space point lies beyond plane k (x > w, x < -w, y,
// z likewise), by a margin no float rounding reaches.
static int Outside(const double *m, const GLfloat *v) {
  double c[4];
  for (int r = 0; r < 4; r++) c[r] = m[r] * v[0] + m[4 + r] * v[1] + m[8 + r] * v[2] + m[12 + r];
  int bits = 0;
  for (int k = 0; k < 3; k++) {
    double margin = 1e-3 * (fabs(c[k]) + fabs(c[3])) + 1e-30;
    if (c[k] - c[3] > margin) bits |= 1 << (2 * k);
    if (-c[k] - c[3] > margin) bits |= 2 << (2 * k);
  }
  return bits;
}

// The lines that can show under the current matrices: all again when they
// changed, else only the drawn cells added since.
static void SyncShown(void) {
  DLAARRAYS &a = dlaarrays;
  GLdouble proj[16], model[16], m[16];
  glGetDoublev(GL_PROJECTION_MATRIX, proj);
  glGetDoublev(GL_MODELVIEW_MATRIX, model);
  for (int c = 0; c < 4; c++)
    for (int r = 0; r < 4; r++) {
      double sum = 0;
      for (int k = 0; k < 4; k++) sum += proj[4 * k + r] * model[4 * c + k];
      m[4 * c + r] = sum;
    }
  if (memcmp(m, a.clip, sizeof(m)) != 0) {
    ForgetShown(a);
    memcpy(a.clip, m, sizeof(m));
  }
  for (int k = a.tested; k < a.ndrawn; k++) {
    const GLfloat *v = &a.xyz[6 * (size_t)k];
    if (Outside(m, v) & Outside(m, v + 3)) continue;
    a.shown.push_back(k);
    a.sxyz.insert(a.sxyz.end(), v, v + 6);
  }
  a.tested = a.ndrawn;
  a.srgb.resize(a.sxyz.size());
  a.sweight.resize(a.shown.size(), NAN);
}

static void PutColour(GLfloat *c, COLOUR k) {
  c[0] = c[3] = k.r;
  c[1] = c[4] = k.g;
  c[2] = c[5] = k.b;
}

// ChooseColour's colours, by its own rules, for the kept cells. By root a
// colour never changes, so only new cells are coloured. By weight a colour
// depends on the weight and maxweight alone: while maxweight holds, only
// cells whose weight moved are coloured again. Sets rgbstale when a colour
// was written.
static void UpdateDLAColours(SIMULATION &sim, int drawmode) {
  DLAARRAYS &a = dlaarrays;
  int nshown = (int)a.shown.size();
  int byroot = ColourByRoot(sim, drawmode);
  if (byroot != a.byroot || (byroot && sim.growthstate.nroots != a.nroots)) a.coloured = 0;
  a.byroot = byroot;
  a.nroots = sim.growthstate.nroots;

  if (byroot) {
    for (int s = a.coloured; s < nshown; s++)
      PutColour(&a.srgb[6 * (size_t)s], ChooseColour(sim, a.index[a.shown[s]], drawmode));
    if (a.coloured < nshown) a.rgbstale = 1;
    a.coloured = nshown;
    return;
  }

  if (sim.growthstate.maxweight != a.maxweight) a.coloured = 0;
  a.maxweight = sim.growthstate.maxweight;
  double top = log(sim.growthstate.maxweight / 3 + 1);
  COLOUR tip = GetColour(0, 0, top, 1);  // weight 0, the tips: one colour
  int changed = 0;
  for (int s = 0; s < nshown; s++) {
    int k = a.shown[s];
    double w = sim.cells[a.index[k]].weight;
    if (s < a.coloured && w == a.sweight[s]) continue;
    if (w != a.weight[k]) {
      a.weight[k] = w;
      a.logw[k] = log(w + 1);
    }
    // The same arithmetic as WeightColour(w).
    PutColour(&a.srgb[6 * (size_t)s], w == 0 ? tip : GetColour(a.logw[k], 0, top, 1));
    a.sweight[s] = w;
    changed = 1;
  }
  if (changed) a.rgbstale = 1;
  a.coloured = nshown;
}

void UpdateDLAArrays(SIMULATION &sim, int drawmode) {
  SyncDLAArrays(sim);
  SyncShown();
  UpdateDLAColours(sim, drawmode);
}

// Brings the buffer objects up to date: new positions appended, the colours
// whole when they changed. A buffer too small is replaced by one twice the
// size, filled from the arrays.
static void UploadDLABuffers(void) {
  DLAARRAYS &a = dlaarrays;
  int nshown = (int)a.shown.size();
  if (a.xyzbuffer == 0) {
    glGenBuffers(1, &a.xyzbuffer);
    glGenBuffers(1, &a.rgbbuffer);
    a.capacity = 0;
    a.uploaded = 0;
  }
  const GLsizeiptr cellbytes = 6 * sizeof(GLfloat);
  if (nshown > a.capacity) {
    int capacity = a.capacity < 4096 ? 4096 : a.capacity;
    while (capacity < nshown) capacity *= 2;
    glBindBuffer(GL_ARRAY_BUFFER, a.xyzbuffer);
    glBufferData(GL_ARRAY_BUFFER, capacity * cellbytes, NULL, GL_DYNAMIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, a.rgbbuffer);
    glBufferData(GL_ARRAY_BUFFER, capacity * cellbytes, NULL, GL_DYNAMIC_DRAW);
    a.capacity = capacity;
    a.uploaded = 0;
    a.rgbstale = 1;
  }
  if (a.uploaded < nshown) {
    glBindBuffer(GL_ARRAY_BUFFER, a.xyzbuffer);
    glBufferSubData(GL_ARRAY_BUFFER, a.uploaded * cellbytes, (nshown - a.uploaded) * cellbytes,
                    a.sxyz.data() + 6 * (size_t)a.uploaded);
    a.uploaded = nshown;
  }
  if (a.rgbstale) {
    glBindBuffer(GL_ARRAY_BUFFER, a.rgbbuffer);
    glBufferSubData(GL_ARRAY_BUFFER, 0, nshown * cellbytes, a.srgb.data());
    a.rgbstale = 0;
  }
}

static void DrawDLAArrays(SIMULATION &sim, int drawmode) {
  UpdateDLAArrays(sim, drawmode);
  DLAARRAYS &a = dlaarrays;
  if (a.ndrawn == 0) return;
  int nshown = (int)a.shown.size();
  if (nshown > 0) {
    UploadDLABuffers();
    // Points take the cell end of each line.
    GLsizei stride = drawmode == DLADRAW_POINTS ? 6 * sizeof(GLfloat) : 0;
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, a.xyzbuffer);
    glVertexPointer(3, GL_FLOAT, stride, NULL);
    glBindBuffer(GL_ARRAY_BUFFER, a.rgbbuffer);
    glColorPointer(3, GL_FLOAT, stride, NULL);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    if (drawmode == DLADRAW_POINTS)
      glDrawArrays(GL_POINTS, 0, nshown);
    else
      glDrawArrays(GL_LINES, 0, 2 * nshown);
    glDisableClientState(GL_COLOR_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
  }

  // Drawing from a colour array leaves the current colour undefined; the
  // immediate mode leaves the last cell's, which later drawing may rely on.
  COLOUR last = ChooseColour(sim, a.index[a.ndrawn - 1], drawmode);
  glColor3f(last.r, last.g, last.b);
}

// Mesa's software rasteriser bins every frame's primitives in memory it
// takes with malloc and frees after the frame. With glibc's defaults the
// freed heap is trimmed back to the system each time, and the next frame
// faults the pages in again: at a million cells that costs more than the
// drawing itself. Freed memory up to 256 MB stays with the process instead,
// and blocks up to 32 MB come from the heap.
static void KeepFrameMemory(void) {
  static int kept = 0;
  if (kept) return;
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 256 << 20);
  kept = 1;
}

void DrawDLA(SIMULATION &sim, int drawmode) {
  if (drawmode < DLADRAW_POINTS || drawmode > DLADRAW_TUBES) return;
  KeepFrameMemory();
  CreateEnvironment(sim, drawmode);

  if ((drawmode == DLADRAW_POINTS || drawmode == DLADRAW_LINES) && !drawimmediate) {
    DrawDLAArrays(sim, drawmode);
    return;
  }

  switch (drawmode) {
    case DLADRAW_POINTS:
      glBegin(GL_POINTS);
      for (int i = 0; i < sim.ncells; i++) {
        if (sim.cells[i].parent < 0) continue;  // roots are not drawn
        CellColour(sim, i, DLADRAW_POINTS);
        Vertex(sim.cells[i].p);
      }
      glEnd();
      break;
    case DLADRAW_LINES:
      glBegin(GL_LINES);
      for (int i = 0; i < sim.ncells; i++) {
        if (sim.cells[i].parent < 0) continue;
        CellColour(sim, i, DLADRAW_LINES);
        Vertex(sim.cells[i].p);
        Vertex(sim.cells[sim.cells[i].parent].p);
      }
      glEnd();
      break;
    case DLADRAW_TUBES: {
      // Radius grows with the logarithm of the weight, from thickend at
      // weight 0 to thickstart at maxweight. maxweight 0 is not guarded:
      // there is then no non-root cell to draw.
      const GROWTHSTATE &g = sim.growthstate;
      double scale = (g.thickstart - g.thickend) / log(g.maxweight + 1);
      for (int i = 0; i < sim.ncells; i++) {
        int j = sim.cells[i].parent;
        if (j < 0) continue;
        CellColour(sim, i, DLADRAW_TUBES);
        CreateCone(sim.cells[j].p, sim.cells[i].p, log(sim.cells[j].weight + 1) * scale + g.thickend,
                   log(sim.cells[i].weight + 1) * scale + g.thickend, 10, 0, TWOPI);
      }
      break;
    }
    default:  // DLADRAW_FOUR: the environment only
      break;
  }
}

// ---------------------------------------------------------------------------
// [SECTION] Constraint surface

void DrawSTL(SIMULATION &sim, int drawmode, int rebuild) {
  static int listindex = -1;

  if (drawmode < STLDRAW_WIREFRAME || drawmode > STLDRAW_SOLID) return;  // the list is kept
  CreateEnvironment(sim, drawmode);
  if (!rebuild && listindex >= 0) {
    glCallList(listindex);
    return;
  }

  if (listindex > 0) glDeleteLists(listindex, 1);
  listindex = glGenLists(1);
  // Compiled only: the surface shows from the next frame on.
  glNewList(listindex, GL_COMPILE);
  switch (drawmode) {
    case STLDRAW_WIREFRAME:
      glColor3f(0.5, 0.5, 0.5);
      glBegin(GL_TRIANGLES);
      for (int i = 0; i < sim.nstltri; i++)
        for (int k = 0; k < 3; k++) Vertex(sim.stltri[i].p[k]);
      break;
    case STLDRAW_MIDPOINTS:
      glColor3f(1, 1, 1);
      glBegin(GL_POINTS);
      for (int i = 0; i < sim.nstltri; i++) Vertex(sim.stltri[i].mid);
      break;
    case STLDRAW_VERTICES:
      glColor3f(1, 1, 1);
      glBegin(GL_POINTS);
      for (int i = 0; i < sim.nstltri; i++)
        for (int k = 0; k < 3; k++) Vertex(sim.stltri[i].p[k]);
      break;
    case STLDRAW_SOLID:
      glColor3f(0.5, 0.5, 0.5);
      glBegin(GL_TRIANGLES);
      for (int i = 0; i < sim.nstltri; i++) {
        for (int k = 0; k < 3; k++) {
          glNormal3f(sim.stltri[i].n.x, sim.stltri[i].n.y, sim.stltri[i].n.z);
          Vertex(sim.stltri[i].p[k]);
        }
      }
      break;
  }
  glEnd();
  glEndList();
}

// ---------------------------------------------------------------------------
// [SECTION] Extras

static void Circle(int plane, double r) {
  glBegin(GL_LINE_STRIP);
  for (int a = 0; a <= 360; a += 5) {
    double c = r * cos(a * DTOR);
    double s = r * sin(a * DTOR);
    if (plane == 0)
      glVertex3f(c, s, 0);
    else if (plane == 1)
      glVertex3f(c, 0, s);
    else
      glVertex3f(0, c, s);
  }
  glEnd();
}

void DrawExtras(SIMULATION &sim) {
  if (!sim.options.showextras) return;
  double r = sim.growthstate.radius;

  glDisable(GL_LIGHTING);
  glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);

  glColor3f(0.5, 1, 0.5);
  Circle(0, r);
  Circle(1, r);
  Circle(2, r);

  glBegin(GL_LINES);
  glColor3f(1, 0, 0);
  glVertex3f(0, 0, 0);
  glVertex3f(1.2 * r, 0, 0);
  glColor3f(0, 1, 0);
  glVertex3f(0, 0, 0);
  glVertex3f(0, 1.2 * r, 0);
  glColor3f(0, 0, 1);
  glVertex3f(0, 0, 0);
  glVertex3f(0, 0, 1.2 * r);
  glEnd();

  glColor3f(1, 0.5, 0.5);
  glBegin(GL_POINTS);
  for (int i = 0; i < sim.nseeds && i < NSEEDS; i++) Vertex(sim.seeds[i]);
  glEnd();

  // The spheres are drawn in line mode: wire spheres.
  double sr = sim.growthstate.branchlength / 5;
  for (int i = 0; i < sim.growthstate.nroots && i < sim.ncells; i++) {
    // Mode 1 gives the root colour when roots are coloured apart (i < nroots,
    // so i mod nroots is i), else the weight colour, as the extras need.
    CellColour(sim, i, 1);
    CreateSimpleSphere(sim.cells[i].p, sr, 16, 0);
  }
  glColor3f(1, 1, 1);
  XYZ light0 = {sim.options.light0position[0], sim.options.light0position[1], sim.options.light0position[2]};
  XYZ light1 = {sim.options.light1position[0], sim.options.light1position[1], sim.options.light1position[2]};
  CreateSimpleSphere(light0, sr, 16, 0);
  CreateSimpleSphere(light1, sr, 16, 0);
}
