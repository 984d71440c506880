// The aggregate as VTK XML PolyData (.vtp), for ParaView and VTK: one point
// per cell in index order (x, y, z as Float64), one line cell per parent link
// (the parent, then the cell), and the point data arrays weight (Float64),
// root (Int32, the index of the root cell of the cell's tree) and order
// (Int32, the cell's growth index). The data are appended raw after the XML,
// each array behind its byte count as UInt64, in the machine's byte order.
#ifndef DLA_EXPORT_VTP_H
#define DLA_EXPORT_VTP_H

#include <stdio.h>
#include "app/simulation.h"

// Writes the whole file to fp (open in binary mode). Returns 1 when written,
// 0 on a write error.
int WriteVTP(SIMULATION &sim, FILE *fp);

// Opens path for writing and calls WriteVTP. Returns 0 (errno set) when the
// file cannot be created or written.
int SaveVTPFile(SIMULATION &sim, const char *path);

#endif
