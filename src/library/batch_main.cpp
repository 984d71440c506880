// dla3d-batch without offscreen drawing: --png is refused.
#include "library/internal.h"

int main(int argc, char **argv) { return dla3d::BatchProgram(argc, argv, NULL); }
