// Grows 2,000 cells with the fast walk and writes them to the PLY file
// named on the command line; a refused setting says what dla3d-batch says.
#include <dla3d/dla3d.h>
#include <stdio.h>

int main(int argc, char **argv) {
  if (argc != 2) return 2;
  std::string error;
  if (dla3d::Create({{"bias", "2"}}, &error) != NULL ||
      error != "dla3d-batch: --bias: 2 is out of range (allowed: 0 to 1)") {
    fprintf(stderr, "consumer: a bias of 2 gave \"%s\"\n", error.c_str());
    return 1;
  }
  dla3d::Simulation *sim = dla3d::Create({{"seed", "7"}, {"walk", "fast"}}, &error);
  if (sim == NULL) {
    fprintf(stderr, "consumer: %s\n", error.c_str());
    return 1;
  }
  int grown = dla3d::Grow(sim, 2000);
  std::string written = dla3d::Write(sim, argv[1]);
  printf("%d %d %s\n", grown, dla3d::CellCount(sim), written.c_str());
  dla3d::Destroy(sim);
  return 0;
}
