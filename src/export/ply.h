// The aggregate as a binary little-endian PLY point cloud: one vertex per
// cell (x, y, z as float, weight as double, root as int, red, green, blue as
// uchar: the cell's colour in the drawing mode in use, quality: the weight as
// float, MeshLab's scalar) and one edge per parent link (vertex1 the parent,
// vertex2 the cell).
#ifndef DLA_EXPORT_PLY_H
#define DLA_EXPORT_PLY_H

#include <stdio.h>

#include <vector>
#include "app/simulation.h"

// root[i] = index of the root cell of cell i's tree (i itself for a root),
// for the ncells cells. A parent chain that leaves the aggregate or loops
// ends the walk at the last cell reached.
void CellRoots(SIMULATION &sim, std::vector<int> *root);

// Writes the header and both elements to fp (open in binary mode). Returns 1
// when written, 0 on a write error.
int WritePLY(SIMULATION &sim, FILE *fp);

// Opens path for writing and calls WritePLY. Returns 0 (errno set) when the
// file cannot be created or written.
int SavePLYFile(SIMULATION &sim, const char *path);

#endif
