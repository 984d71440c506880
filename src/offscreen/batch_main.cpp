// dla3d-batch with offscreen pictures (--png).
#include "library/internal.h"
#include "offscreen/picture.h"

int main(int argc, char **argv) { return dla3d::BatchProgram(argc, argv, WritePicturePNG); }
