// Drawing of the scene.
//
// [SECTION] Display: projection per eye, draw order, overlays, dumps
// [SECTION] Environment: the fixed GL state of a drawing mode
// [SECTION] Aggregate: points, lines, tubes
// [SECTION] Constraint surface: the display list
// [SECTION] Extras: circles, axes, release points, spheres
#include "view/render.h"

#include <GL/glu.h>
#include <GL/glut.h>
#include <math.h>

#include "app/records.h"
#include "lib/primitives_gl.h"
#include "lib/vector.h"
#include "surface/stl.h"
#include "view/boxcount_gl.h"
#include "view/choosecolour.h"
#include "view/overlay_gl.h"
#include "view/windowdump.h"

// ---------------------------------------------------------------------------
// [SECTION] Display

static void LookFrom(XYZ eye) {
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  gluLookAt(eye.x, eye.y, eye.z, eye.x + camera.vd.x, eye.y + camera.vd.y, eye.z + camera.vd.z,
            camera.vu.x, camera.vu.y, camera.vu.z);
}

static void Frustum(double left, double right, double halfheight) {
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  glFrustum(left, right, -halfheight, halfheight, camera.near, camera.far);
}

void HandleDisplay(void) {
  // Recomputed every frame, so dollying moves the clip planes and the eye
  // separation with the eye.
  camera.focallength = Modulus(camera.vp);
  camera.eyesep = camera.focallength / 30;
  camera.near = camera.focallength / 10;
  camera.far = camera.focallength * 10;

  int w = camera.screenwidth;
  int h = camera.screenheight;
  double ratio = w / (double)h;
  if (camera.stereo == 2) ratio *= 0.5;  // each eye gets half the window
  double halfheight = camera.near * tan(camera.aperture * 0.0174532925 * 0.5);

  XYZ right = CrossProduct(camera.vd, camera.vu);
  Normalise(&right);
  right.x *= camera.eyesep / 2;
  right.y *= camera.eyesep / 2;
  right.z *= camera.eyesep / 2;

  if (camera.stereo == 0) {
    glDrawBuffer(GL_BACK);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glViewport(0, 0, w, h);
    glFrustum(-ratio * halfheight, ratio * halfheight, -halfheight, halfheight, camera.near,
              camera.far);
    LookFrom(camera.vp);
    DrawSTL(options.stldrawmode, 0);
    DrawDLA(options.dladrawmode);
  } else {
    double shift = 0.5 * camera.eyesep * camera.near / camera.focallength;
    XYZ eye;

    if (camera.stereo == 2) {
      glDrawBuffer(GL_BACK);
    } else {
      glDrawBuffer(GL_BACK_RIGHT);
    }
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);

    // Right eye; its overlays are drawn here, the left eye's below.
    Frustum(-ratio * halfheight - shift, ratio * halfheight - shift, halfheight);
    if (camera.stereo == 2)
      glViewport(w / 2, 0, w / 2, h);
    else
      glViewport(0, 0, w, h);
    eye.x = camera.vp.x + right.x;
    eye.y = camera.vp.y + right.y;
    eye.z = camera.vp.z + right.z;
    LookFrom(eye);
    // In stereo the aggregate goes before the surface, unlike mono.
    DrawDLA(options.dladrawmode);
    DrawSTL(options.stldrawmode, 0);
    DrawExtras();
    DrawInfo();
    CalcBoxCount(0, 1);
    DrawStatistics(0);

    if (camera.stereo == 1) {
      glDrawBuffer(GL_BACK_LEFT);
      glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    }

    // Left eye.
    Frustum(-ratio * halfheight + shift, ratio * halfheight + shift, halfheight);
    if (camera.stereo == 2)
      glViewport(0, 0, w / 2, h);
    else
      glViewport(0, 0, w, h);
    eye.x = camera.vp.x - right.x;
    eye.y = camera.vp.y - right.y;
    eye.z = camera.vp.z - right.z;
    LookFrom(eye);
    DrawDLA(options.dladrawmode);
    DrawSTL(options.stldrawmode, 0);
  }

  DrawExtras();
  DrawInfo();
  CalcBoxCount(0, 1);
  DrawStatistics(0);

  if (options.record || options.windowdump) {
    WindowDump("", w, h, camera.stereo == 1, 12);
    options.windowdump = 0;  // record stays on until r is pressed again
  }

  glutSwapBuffers();
}

// ---------------------------------------------------------------------------
// [SECTION] Environment

void CreateEnvironment(int drawmode) {
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
  if (drawmode == 5) {
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

  if (drawmode == 5) {
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, black);
    // Given in the current eye's model-view, so the lights stay fixed in
    // model space.
    glLightfv(GL_LIGHT0, GL_POSITION, options.light0position);
    glLightfv(GL_LIGHT0, GL_AMBIENT, dim);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, white);
    glLightfv(GL_LIGHT0, GL_SPECULAR, black);
    glEnable(GL_LIGHT0);
    glLightfv(GL_LIGHT1, GL_POSITION, options.light1position);
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

static void CellColour(int i, int drawmode) {
  COLOUR c = ChooseColour(i, drawmode);
  glColor3f(c.r, c.g, c.b);
}

static void Vertex(XYZ p) { glVertex3f(p.x, p.y, p.z); }

void DrawDLA(int drawmode) {
  if (drawmode < 2 || drawmode > 5) return;
  CreateEnvironment(drawmode);

  switch (drawmode) {
    case 2:
      glBegin(GL_POINTS);
      for (int i = 0; i < ncells; i++) {
        if (cells[i].parent < 0) continue;  // roots are not drawn
        CellColour(i, 2);
        Vertex(cells[i].p);
      }
      glEnd();
      break;
    case 3:
      glBegin(GL_LINES);
      for (int i = 0; i < ncells; i++) {
        if (cells[i].parent < 0) continue;
        CellColour(i, 3);
        Vertex(cells[i].p);
        Vertex(cells[cells[i].parent].p);
      }
      glEnd();
      break;
    case 5: {
      // Radius grows with the logarithm of the weight, from thickend at
      // weight 0 to thickstart at maxweight. maxweight 0 is not guarded:
      // there is then no non-root cell to draw.
      const GROWTHSTATE &g = growthstate;
      double scale = (g.thickstart - g.thickend) / log(g.maxweight + 1);
      for (int i = 0; i < ncells; i++) {
        int j = cells[i].parent;
        if (j < 0) continue;
        CellColour(i, 5);
        CreateCone(cells[j].p, cells[i].p, log(cells[j].weight + 1) * scale + g.thickend,
                   log(cells[i].weight + 1) * scale + g.thickend, 10, 0, TWOPI);
      }
      break;
    }
    default:  // 4: the environment only
      break;
  }
}

// ---------------------------------------------------------------------------
// [SECTION] Constraint surface

void DrawSTL(int drawmode, int rebuild) {
  static int listindex = -1;

  if (drawmode < 2 || drawmode > 5) return;  // the list is kept
  CreateEnvironment(drawmode);
  if (!rebuild && listindex >= 0) {
    glCallList(listindex);
    return;
  }

  if (listindex > 0) glDeleteLists(listindex, 1);
  listindex = glGenLists(1);
  // Compiled only: the surface shows from the next frame on.
  glNewList(listindex, GL_COMPILE);
  switch (drawmode) {
    case 2:
      glColor3f(0.5, 0.5, 0.5);
      glBegin(GL_TRIANGLES);
      for (int i = 0; i < nstltri; i++)
        for (int k = 0; k < 3; k++) Vertex(stltri[i].p[k]);
      break;
    case 3:
      glColor3f(1, 1, 1);
      glBegin(GL_POINTS);
      for (int i = 0; i < nstltri; i++) Vertex(stltri[i].mid);
      break;
    case 4:
      glColor3f(1, 1, 1);
      glBegin(GL_POINTS);
      for (int i = 0; i < nstltri; i++)
        for (int k = 0; k < 3; k++) Vertex(stltri[i].p[k]);
      break;
    case 5:
      glColor3f(0.5, 0.5, 0.5);
      glBegin(GL_TRIANGLES);
      for (int i = 0; i < nstltri; i++) {
        for (int k = 0; k < 3; k++) {
          glNormal3f(stltri[i].n.x, stltri[i].n.y, stltri[i].n.z);
          Vertex(stltri[i].p[k]);
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

void DrawExtras(void) {
  if (!options.showextras) return;
  double r = growthstate.radius;

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
  for (int i = 0; i < nseeds && i < NSEEDS; i++) Vertex(seeds[i]);
  glEnd();

  // The spheres are drawn in line mode: wire spheres.
  double sr = growthstate.branchlength / 5;
  for (int i = 0; i < growthstate.nroots && i < ncells; i++) {
    // Mode 1 gives the root colour when roots are coloured apart (i < nroots,
    // so i mod nroots is i), else the weight colour, as the extras need.
    CellColour(i, 1);
    CreateSimpleSphere(cells[i].p, sr, 16, 0);
  }
  glColor3f(1, 1, 1);
  XYZ light0 = {options.light0position[0], options.light0position[1], options.light0position[2]};
  XYZ light1 = {options.light1position[0], options.light1position[1], options.light1position[2]};
  CreateSimpleSphere(light0, sr, 16, 0);
  CreateSimpleSphere(light1, sr, 16, 0);
}
