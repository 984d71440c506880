#include "app/cmdline.h"

#include <string.h>  // strcmp()

#include "app/simulation.h"

int ParseCommandLine(SIMULATION &sim, int argc, char **argv) {
  for (int i = 1; i < argc; i++) {
    if (strcmp(argv[i], "-h") == 0) {
      return 1;
    } else if (strcmp(argv[i], "-f") == 0) {
      sim.options.fullscreen = !sim.options.fullscreen;
    } else if (strcmp(argv[i], "-s") == 0) {
      sim.camera.stereo = 1;
    } else if (strcmp(argv[i], "-ss") == 0) {
      // Each occurrence doubles the width again, by design.
      sim.camera.stereo = 2;
      sim.camera.screenwidth *= 2;
    } else if (strcmp(argv[i], "-d") == 0) {
      sim.options.debug = 1;
    }
  }
  return 0;
}

void WriteUsage(FILE *fp, const char *programname) {
  fprintf(fp, "Usage: %s [command line options]\n", programname);
  fprintf(fp, "Command line options\n");
  fprintf(fp, "       -h    this text\n");
  fprintf(fp, "       -d    more verbose mode\n");
  fprintf(fp, "       -f    full screen\n");
  fprintf(fp, "       -s    active (quad buffer) stereo\n");
  fprintf(fp, "      -ss    dual screen stereo\n");
  fprintf(fp, "Mouse controls\n");
  fprintf(fp, "     left    rotate camera\n");
  fprintf(fp, "   middle    roll camera\n");
  fprintf(fp, "    right    menus\n");
  fprintf(fp, "Function keys: see menus\n");
  fprintf(fp, "Keyboard commands\n");
  fprintf(fp, "        q    quit\n");
  fprintf(fp, "        h    reset camera\n");
  fprintf(fp, "      [,]    roll camera\n");
  fprintf(fp, "      <,>    more camera forward, backward\n");
  fprintf(fp, "      +,-    zoom camera in, out\n");
  fprintf(fp, "      a,A    autospin speed increase/decrease\n");
  fprintf(fp, "        w    window dump to TGA file\n");
  fprintf(fp, "Version: %g\n", versionid / 100.0);
}
