#include "export/ply.h"

#include <stdint.h>  // int32_t
#include <string.h>  // memcpy()

#include "app/simulation.h"
#include "view/choosecolour.h"

void CellRoots(SIMULATION &sim, std::vector<int> *root) {
  std::vector<int> &r = *root;
  r.assign(sim.ncells > 0 ? sim.ncells : 0, -1);
  // Parents come before their children, so one pass in index order settles
  // almost every cell; a chain that runs forward is walked to its end.
  for (int i = 0; i < sim.ncells; i++) {
    int c = i;
    for (int hops = 0; hops <= sim.ncells; hops++) {
      int q = sim.cells[c].parent;
      if (q < 0 || q >= sim.ncells) break;
      if (r[q] >= 0) {
        r[i] = r[q];
        break;
      }
      c = q;
    }
    if (r[i] < 0) r[i] = c;
  }
}

// PLY's binary_little_endian, whatever the machine's order.
static void PutLE(unsigned char *out, const void *value, int size) {
  unsigned char bytes[8];
  memcpy(bytes, value, size);
  const uint16_t one = 1;
  int little = *(const unsigned char *)&one == 1;
  for (int k = 0; k < size; k++) out[k] = little ? bytes[k] : bytes[size - 1 - k];
}

// The window shows a colour's values as they are (sRGB to a display), as
// MeshLab takes a PLY's bytes.
static unsigned char ColourByte(double c) {
  if (!(c > 0)) return 0;
  if (c >= 1) return 255;
  return (unsigned char)(c * 255 + 0.5);
}

int WritePLY(SIMULATION &sim, FILE *fp) {
  int nedges = 0;
  for (int i = 0; i < sim.ncells; i++)
    if (sim.cells[i].parent >= 0) nedges++;
  fprintf(fp, "ply\nformat binary_little_endian 1.0\n");
  fprintf(fp, "comment dla3d %g: the cells of a diffusion limited aggregation\n", versionid / 100.0);
  fprintf(fp, "comment root is the index of the root cell of the cell's tree\n");
  fprintf(fp, "comment red, green, blue: the colour the drawing mode gives the cell; quality is the weight\n");
  fprintf(fp, "comment an edge runs from a cell's parent (vertex1) to the cell (vertex2)\n");
  fprintf(fp, "element vertex %d\n", sim.ncells);
  fprintf(fp, "property float x\nproperty float y\nproperty float z\n");
  fprintf(fp, "property double weight\nproperty int root\n");
  // MeshLab's names: vertex colour and the scalar it maps and filters by.
  fprintf(fp, "property uchar red\nproperty uchar green\nproperty uchar blue\nproperty float quality\n");
  fprintf(fp, "element edge %d\n", nedges);
  fprintf(fp, "property int vertex1\nproperty int vertex2\n");
  fprintf(fp, "end_header\n");

  std::vector<int> root;
  CellRoots(sim, &root);
  unsigned char record[31];
  for (int i = 0; i < sim.ncells; i++) {
    float xyz[3] = {(float)sim.cells[i].p.x, (float)sim.cells[i].p.y, (float)sim.cells[i].p.z};
    int32_t r = root[i];
    COLOUR c = ChooseColour(sim, i, sim.options.dladrawmode);
    float quality = (float)sim.cells[i].weight;
    for (int k = 0; k < 3; k++) PutLE(record + 4 * k, &xyz[k], 4);
    PutLE(record + 12, &sim.cells[i].weight, 8);
    PutLE(record + 20, &r, 4);
    record[24] = ColourByte(c.r);
    record[25] = ColourByte(c.g);
    record[26] = ColourByte(c.b);
    PutLE(record + 27, &quality, 4);
    fwrite(record, 1, 31, fp);
  }
  for (int i = 0; i < sim.ncells; i++) {
    if (sim.cells[i].parent < 0) continue;
    int32_t ends[2] = {sim.cells[i].parent, i};
    PutLE(record, &ends[0], 4);
    PutLE(record + 4, &ends[1], 4);
    fwrite(record, 1, 8, fp);
  }
  return fflush(fp) == 0 && !ferror(fp);
}

int SavePLYFile(SIMULATION &sim, const char *path) {
  if (path == NULL || path[0] == '\0') return 0;
  FILE *fp = fopen(path, "wb");
  if (fp == NULL) return 0;
  int ok = WritePLY(sim, fp);
  return fclose(fp) == 0 && ok;
}
