// dla3d-batch with offscreen pictures (--png).
#include "batch/batch.h"
#include "offscreen/picture.h"

int main(int argc, char **argv) { return BatchMain(argc, argv, WritePicturePNG); }
