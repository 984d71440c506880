#include <stdio.h>   // fopen(), fscanf(), fread()
#include <string.h>  // strstr()

#include "surface/stl.h"

static int ReadAsciiFacets(SIMULATION &sim, FILE *fp, FILEMESSAGE *msg) {
  char line[1001];
  char word[1024];
  if (sim.options.debug) fprintf(stderr, "Parsing ascii stl file\n");
  // A last line without its line end is left unread, as ReadLine reports
  // the end of the file at once: a file cut off there keeps its facets.
  while (ReadLine(fp, line, 1000)) {
    if (strstr(line, "outer loop") != NULL || strstr(line, "outerloop") != NULL) {
      XYZ p[3];
      for (int k = 0; k < 3; k++) {
        if (fscanf(fp, "%1023s %lf %lf %lf", word, &p[k].x, &p[k].y, &p[k].z) != 4) {
          SetFileMessage(msg, 1, "File Error", "Error reading vertices in ascii STL file", "");
          return 0;
        }
      }
      AppendFacet(sim, p[0], p[1], p[2]);
    }
  }
  return 1;
}

// 0 with *msg set when the file must end the program or is implausible.
static int ReadBinaryFacets(SIMULATION &sim, FILE *fp, FILEMESSAGE *msg) {
  char header[80];
  if (sim.options.debug) fprintf(stderr, "Parsing binary stl file\n");
  if (fread(header, 80, 1, fp) != 1) {
    SetFileMessage(msg, 1, "File Error", "Failed to read an expected STL header", "");
    return 0;
  }
  // A missing or partial count reads as no facets: a short read may have
  // filled some of the bytes, which must not decide the count.
  int count = 0;
  if (!ReadInt(fp, &count, sim.options.stlswap)) count = 0;
  if (sim.options.debug) fprintf(stderr, "Expecting %d facets\n", count);
  if ((unsigned int)count > 10000000u) {
    SetFileMessage(msg, 0, "File Error", "Read an unexpected number of faces in STL header", "");
    return 0;
  }
  for (int i = 0; i < count; i++) {
    // A truncated file ends the list at the first short read: the facets
    // read completely are kept and nothing is built from stale numbers, so
    // the result does not depend on what a failed read left behind and a
    // count of millions over an empty tail costs nothing.
    float v[12];
    int ok = 1;
    for (int k = 0; k < 12 && ok; k++) ok = ReadFloat(fp, &v[k], sim.options.stlswap);
    unsigned char attribute[2];
    if (!ok || fread(attribute, 2, 1, fp) != 1) break;
    XYZ p[3];
    for (int k = 0; k < 3; k++) {  // v[0..2] is the file's normal, never used
      p[k].x = v[3 + 3 * k];
      p[k].y = v[4 + 3 * k];
      p[k].z = v[5 + 3 * k];
    }
    AppendFacet(sim, p[0], p[1], p[2]);
  }
  return 1;
}

int ReadSTLStream(SIMULATION &sim, FILE *fp, const char *name, FILEMESSAGE *msg) {
  sim.nstltri = 0;
  CopyName(sim.growthstate.stlname, "None", sizeof(sim.growthstate.stlname));

  // "solid" within the first six characters means ASCII; a binary header
  // that starts with "solid" is therefore read as ASCII.
  char first[81];
  ReadLine(fp, first, 80);
  first[6] = '\0';
  int ascii = strstr(first, "solid") != NULL;

  int ok;
  if (ascii) {
    if (sim.options.debug) fprintf(stderr, "ASCII stl file\n");
    rewind(fp);
    ok = ReadAsciiFacets(sim, fp, msg);
  } else {
    if (sim.options.debug) fprintf(stderr, "Binary stl file\n");
    rewind(fp);
    ok = ReadBinaryFacets(sim, fp, msg);
  }
  if (!ok) {
    // The caller ends the program on a fatal message; the implausible
    // count leaves an empty surface without preparing it.
    if (!msg || !msg->fatal) sim.nstltri = 0;
    return 0;
  }

  if (sim.options.debug) fprintf(stderr, "Read %d triangle faces\n", sim.nstltri);
  UpdateSTL(sim);
  if (sim.options.debug) fprintf(stderr, "%s\n", name);
  return 1;
}

int ReadSTLFile(SIMULATION &sim, const char *path, FILEMESSAGE *msg) {
  FILE *fp = fopen(path, "r");
  if (fp == NULL) {
    SetFileMessage(msg, 0, "File Error", "Failed to read STL file", path);
    return 0;
  }
  int ok = ReadSTLStream(sim, fp, path, msg);
  fclose(fp);
  return ok;
}
