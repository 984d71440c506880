// dla3d-batch without offscreen drawing: --png is refused.
#include "batch/batch.h"

int main(int argc, char **argv) { return BatchMain(argc, argv, NULL); }
