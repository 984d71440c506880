// test_png.sh's window side: dla3d-batch's run, its picture drawn in a GLUT
// window by the desktop's display callback (no overlay) and dumped (w) to
// 0000.tga. "--encode RAW WIDTH HEIGHT OUT.tga" codes RGBA pixels as a dump.
#include <GL/freeglut.h>
#include <stdio.h>
#include <stdlib.h>  // atoi()
#include <string.h>  // strcmp()

#include <vector>

#include "app/simulation.h"
#include "batch/batch.h"
#include "library/internal.h"  // dla3d::BatchProgram, as dla3d-batch runs
#include "desktop/app/desktop.h"
#include "desktop/view/display.h"
#include "lib/bitmap.h"

SIMULATION sim;  // the window's simulation, as the desktop program holds it

static int DumpWindow(SIMULATION &grown, const char *path, int width, int height, FILE *err) {
  sim = grown;  // the window draws its own simulation
  glutInitWindowSize(width, height);
  glutCreateWindow("test_png_window");
  glutDisplayFunc(HandleDisplay);
  sim.options.showinfo = 0;
  // The first frame only compiles the surface list; the third is dumped.
  for (int frame = 0; frame < 3; frame++) {
    sim.options.windowdump = frame == 2;
    glutPostRedisplay();
    for (int i = 0; i < 20 && (frame < 2 || sim.options.windowdump); i++) glutMainLoopEvent();
  }
  if (sim.options.windowdump) fprintf(err, "test_png_window: the window was never drawn\n");
  return !sim.options.windowdump;
}

int main(int argc, char **argv) {
  if (argc == 6 && strcmp(argv[1], "--encode") == 0) {
    int width = atoi(argv[3]), height = atoi(argv[4]);
    std::vector<unsigned char> pixels(4 * (size_t)width * height);
    FILE *in = fopen(argv[2], "rb");
    FILE *out = fopen(argv[5], "wb");
    if (!in || !out || fread(pixels.data(), 1, pixels.size(), in) != pixels.size()) return 1;
    Write_Bitmap(out, pixels.data(), width, height, BITMAP_TGARLE24);
    return fclose(out) != 0;
  }
  glutInit(&argc, argv);
  glutInitDisplayMode(GLUT_DOUBLE | GLUT_DEPTH | GLUT_RGB);
  return dla3d::BatchProgram(argc, argv, DumpWindow);
}
