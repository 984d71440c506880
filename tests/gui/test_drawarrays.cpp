// Points and lines from the buffer objects give the pixels of the immediate
// mode (drawimmediate) as the aggregate grows and restarts. Needs an X
// display: harness.sh PROGRAM starts one.
#include <GL/freeglut.h>
#include <GL/glu.h>
#include <gtest/gtest.h>
#include <string.h>  // memcmp()

#include <algorithm>  // std::max, std::mismatch
#include <set>
#include <vector>

#include "app/simulation.h"
#include "app/startup.h"
#include "gl/view/scene.h"
#include "growth/growth.h"
#include "lib/vector.h"

static const int kWidth = 320;
static const int kHeight = 240;

// Grows to n cells in runs of steps; each run ends at a stick.
static void GrowTo(SIMULATION &sim, int n) {
  while (sim.ncells < n) IterateSystemSteps(sim, 1000);
}

struct FRAME {
  std::vector<unsigned char> rgba;
  GLfloat colour[4];  // current colour left behind
};

// The eye's distance from the centre in radii of the aggregate: outside it
// by default; inside it most lines are left out as out of view.
static double eyedistance = 1.5;

// One frame of the aggregate alone.
static FRAME Draw(SIMULATION &sim, int drawmode, int immediate) {
  double radius = 1;
  for (int i = 0; i < sim.ncells; i++) radius = std::max(radius, Modulus(sim.cells[i].p));

  glViewport(0, 0, kWidth, kHeight);
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  gluPerspective(60, kWidth / (double)kHeight, radius * 0.1, radius * 10);
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  double d = eyedistance / 1.5;
  gluLookAt(1.3 * d * radius, 0.4 * d * radius, 0.7 * d * radius, 0, 0, 0, 0, 0, 1);
  glDrawBuffer(GL_BACK);
  glClearColor(0, 0, 0, 0);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  glColor3f(0.25f, 0.5f, 0.75f);  // a colour the aggregate never has
  drawimmediate = immediate;
  DrawDLA(sim, drawmode);
  drawimmediate = 0;
  glFinish();
  FRAME f;
  f.rgba.resize(4 * kWidth * kHeight);
  glReadBuffer(GL_BACK);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, kWidth, kHeight, GL_RGBA, GL_UNSIGNED_BYTE, f.rgba.data());
  glGetFloatv(GL_CURRENT_COLOR, f.colour);
  EXPECT_FALSE(glIsEnabled(GL_VERTEX_ARRAY)) << "vertex array left enabled";
  EXPECT_FALSE(glIsEnabled(GL_COLOR_ARRAY)) << "colour array left enabled";
  EXPECT_EQ(glGetError(), (GLenum)GL_NO_ERROR);
  return f;
}

// Draws in each mode both ways and compares byte for byte, the colour left
// current too; at least minlit pixels lit in mincolours colours, so that an
// empty or one-colour picture cannot pass. The pixels lit.
static int ExpectSamePicture(SIMULATION &sim, int minlit, int mincolours, const char *what) {
  SCOPED_TRACE(what);
  int lit = 0;
  for (int mode : {DLADRAW_POINTS, DLADRAW_LINES}) {
    FRAME ref = Draw(sim, mode, 1);
    FRAME arr = Draw(sim, mode, 0);
    std::set<unsigned> colours;
    int n = 0;
    for (size_t k = 0; k < ref.rgba.size(); k += 4) {
      unsigned rgb = ref.rgba[k] << 16 | ref.rgba[k + 1] << 8 | ref.rgba[k + 2];
      if (rgb != 0) colours.insert(rgb);
      n += rgb != 0;
    }
    int first = (int)(std::mismatch(ref.rgba.begin(), ref.rgba.end(), arr.rgba.begin()).first - ref.rgba.begin()) / 4;
    EXPECT_GE(n, minlit) << "too little drawn to compare (mode " << mode << ")";
    EXPECT_GE((int)colours.size(), mincolours) << "too few colours to compare (mode " << mode << ")";
    EXPECT_TRUE(ref.rgba == arr.rgba) << "mode " << mode << ": pixels differ first at x " << first % kWidth << " y "
                                      << first / kWidth;
    EXPECT_EQ(memcmp(ref.colour, arr.colour, sizeof(ref.colour)), 0) << "current colour differs (mode " << mode << ")";
    lit += n;
  }
  return lit;
}

// Growth between frames (the ancestors' weights rise, the buffers are
// outgrown at 4096 drawn cells), weights and maxweight moved in place,
// colours by root, F4's restart over the old cells, new
// roots; then the eye inside the aggregate, where the lines beyond a
// clipping plane are left out.
TEST(DrawArrays, GrowthRestartsAndColoursMatchImmediateMode) {
  SIMULATION sim;
  ResetProgram(sim);
  for (int n : {50, 1000, 4500}) {
    GrowTo(sim, n);
    ExpectSamePicture(sim, n < 100 ? 20 : 300, 3, "grown");
  }
  for (int i = 1; i < sim.ncells; i += 7) sim.cells[i].weight += 2.5;
  ExpectSamePicture(sim, 500, 3, "weights raised in place");
  sim.growthstate.maxweight *= 4;
  ExpectSamePicture(sim, 500, 3, "maxweight raised");
  sim.growthstate.nroots = 4;
  sim.growthstate.associate = 1;
  ExpectSamePicture(sim, 500, 4, "coloured by root");
  int before = sim.ncells;
  sim.growthstate.nroots = 3;
  sim.growthstate.rootdistribution = ROOT_SPHERICAL;
  InitialiseGrowth(sim);
  ResetSeeds(sim);
  EXPECT_EQ(ExpectSamePicture(sim, 0, 0, "roots only"), 0);  // and the colour set before stays current
  EXPECT_EQ(Draw(sim, DLADRAW_LINES, 0).colour[0], 0.25f);
  GrowTo(sim, 400);
  ExpectSamePicture(sim, 100, 3, "smaller aggregate after the restart");
  sim.growthstate.seed = 2;  // other cells over the ones drawn
  InitialiseGrowth(sim);
  GrowTo(sim, before + 200);
  ExpectSamePicture(sim, 500, 3, "restarted and grown past the old count");
  for (double d : {0.3, 0.1}) {
    eyedistance = d;
    ExpectSamePicture(sim, 100, 3, "eye inside");
    GrowTo(sim, sim.ncells + 300);
    ExpectSamePicture(sim, 100, 3, "grown, same view");
  }
  eyedistance = 1.5;
}

static void NoDisplay(void) {}

int main(int argc, char **argv) {
  ::testing::InitGoogleTest(&argc, argv);
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB);
  glutInitWindowSize(kWidth, kHeight);
  glutCreateWindow("test_drawarrays");
  glutDisplayFunc(NoDisplay);  // the tests draw and read back themselves
  // Let the window map before anything is drawn into it.
  for (int i = 0; i < 10; i++) glutMainLoopEvent();
  return RUN_ALL_TESTS();
}
