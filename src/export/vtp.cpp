#include "export/vtp.h"

#include <stdint.h>  // int32_t, uint16_t, uint64_t

#include <vector>

#include "app/simulation.h"
#include "export/ply.h"  // CellRoots()
#include "lib/vector.h"  // CloseWritten()

namespace {

// Values go out through a small buffer: one fwrite per value would cost as
// much as the rest of the writer.
struct VTPOUT {
  FILE *fp;
  unsigned char buffer[1 << 16];
  size_t n;
};

void Flush(VTPOUT *out) {
  fwrite(out->buffer, 1, out->n, out->fp);
  out->n = 0;
}

void Put(VTPOUT *out, const void *value, size_t size) {
  if (out->n + size > sizeof out->buffer) Flush(out);
  const unsigned char *v = (const unsigned char *)value;
  for (size_t k = 0; k < size; k++) out->buffer[out->n++] = v[k];
}

// An appended block: its byte count (the header_type), then its data.
void PutCount(VTPOUT *out, uint64_t bytes) { Put(out, &bytes, 8); }

}  // namespace

int WriteVTP(SIMULATION &sim, FILE *fp) {
  int n = sim.ncells > 0 ? sim.ncells : 0;
  int nlines = 0;
  for (int i = 0; i < n; i++)
    if (sim.cells[i].parent >= 0) nlines++;
  // Each array's offset counts from the first byte after the '_' of
  // AppendedData, and each block starts with its 8-byte count.
  uint64_t bweight = 8 * (uint64_t)n, bint = 4 * (uint64_t)n, bpoints = 24 * (uint64_t)n;
  uint64_t bconn = 8 * (uint64_t)nlines, boffsets = 4 * (uint64_t)nlines;
  uint64_t oweight = 0, oroot = oweight + 8 + bweight, oorder = oroot + 8 + bint;
  uint64_t opoints = oorder + 8 + bint, oconn = opoints + 8 + bpoints, ooffsets = oconn + 8 + bconn;
  const uint16_t one = 1;
  const char *order = *(const unsigned char *)&one == 1 ? "LittleEndian" : "BigEndian";

  fprintf(fp, "<?xml version=\"1.0\"?>\n");
  fprintf(fp, "<!-- dla3d %g: the cells of a diffusion limited aggregation; a line runs from a cell's parent "
          "to the cell -->\n", versionid / 100.0);
  fprintf(fp, "<VTKFile type=\"PolyData\" version=\"1.0\" byte_order=\"%s\" header_type=\"UInt64\">\n", order);
  fprintf(fp, "  <PolyData>\n");
  fprintf(fp, "    <Piece NumberOfPoints=\"%d\" NumberOfVerts=\"0\" NumberOfLines=\"%d\" NumberOfStrips=\"0\" "
          "NumberOfPolys=\"0\">\n", n, nlines);
  fprintf(fp, "      <PointData Scalars=\"weight\">\n");
  fprintf(fp, "        <DataArray type=\"Float64\" Name=\"weight\" format=\"appended\" offset=\"%llu\"/>\n",
          (unsigned long long)oweight);
  fprintf(fp, "        <DataArray type=\"Int32\" Name=\"root\" format=\"appended\" offset=\"%llu\"/>\n",
          (unsigned long long)oroot);
  fprintf(fp, "        <DataArray type=\"Int32\" Name=\"order\" format=\"appended\" offset=\"%llu\"/>\n",
          (unsigned long long)oorder);
  fprintf(fp, "      </PointData>\n");
  fprintf(fp, "      <Points>\n");
  fprintf(fp, "        <DataArray type=\"Float64\" NumberOfComponents=\"3\" format=\"appended\" offset=\"%llu\"/>\n",
          (unsigned long long)opoints);
  fprintf(fp, "      </Points>\n");
  fprintf(fp, "      <Lines>\n");
  fprintf(fp, "        <DataArray type=\"Int32\" Name=\"connectivity\" format=\"appended\" offset=\"%llu\"/>\n",
          (unsigned long long)oconn);
  fprintf(fp, "        <DataArray type=\"Int32\" Name=\"offsets\" format=\"appended\" offset=\"%llu\"/>\n",
          (unsigned long long)ooffsets);
  fprintf(fp, "      </Lines>\n");
  fprintf(fp, "    </Piece>\n");
  fprintf(fp, "  </PolyData>\n");
  fprintf(fp, "  <AppendedData encoding=\"raw\">\n   _");

  std::vector<int> root;
  CellRoots(sim, &root);
  VTPOUT *out = new VTPOUT;
  out->fp = fp;
  out->n = 0;
  PutCount(out, bweight);
  for (int i = 0; i < n; i++) Put(out, &sim.cells[i].weight, 8);
  PutCount(out, bint);
  for (int i = 0; i < n; i++) {
    int32_t r = root[i];
    Put(out, &r, 4);
  }
  PutCount(out, bint);
  for (int32_t i = 0; i < n; i++) Put(out, &i, 4);
  PutCount(out, bpoints);
  for (int i = 0; i < n; i++) {
    double xyz[3] = {sim.cells[i].p.x, sim.cells[i].p.y, sim.cells[i].p.z};
    Put(out, xyz, 24);
  }
  PutCount(out, bconn);
  for (int32_t i = 0; i < n; i++) {
    if (sim.cells[i].parent < 0) continue;
    int32_t ends[2] = {sim.cells[i].parent, i};
    Put(out, ends, 8);
  }
  // A line's offset is where it ends in the connectivity (Int32: 2^30 lines
  // would need far more memory than the cells of a run can have).
  PutCount(out, boffsets);
  for (int32_t k = 1; k <= nlines; k++) {
    int32_t end = 2 * k;
    Put(out, &end, 4);
  }
  Flush(out);
  delete out;
  fprintf(fp, "\n  </AppendedData>\n</VTKFile>\n");
  return fflush(fp) == 0 && !ferror(fp);
}

int SaveVTPFile(SIMULATION &sim, const char *path) {
  if (path == NULL || path[0] == '\0') return 0;
  FILE *fp = fopen(path, "wb");
  if (fp == NULL) return 0;
  int ok = WriteVTP(sim, fp);
  return CloseWritten(fp) && ok;
}
