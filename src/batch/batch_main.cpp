// dla3d-batch: the growth engine without a display.
#include <stdio.h>

int main(int argc, char **argv) {
  fprintf(stderr, "Usage: %s [options]\n", argv[0]);
  return 2;
}
