// The aggregate as glTF 2.0 for today's viewers (Blender, three.js, MeshLab,
// ParaView): the tubes of the "Tubes (Slow)" drawing, coloured as the window
// colours the cells, and the constraint surface as a second mesh.
#ifndef DLA_EXPORT_GLTF_H
#define DLA_EXPORT_GLTF_H

#include <stdio.h>
#include "app/simulation.h"

// Vertices and indices of one tube (one cell with a parent): its ten-sided
// quad strip closes on its first ring pair, so the repeated pair is shared.
#define GLTF_TUBEVERTICES 20
#define GLTF_TUBEINDICES 60

// Buffer bytes per tube: 20 vertices of float position (12), float normal
// (12) and 8-bit RGBA colour (4), and 60 uint32 indices.
#define GLTF_TUBEBYTES (GLTF_TUBEVERTICES * 28 + GLTF_TUBEINDICES * 4)

// Writes the scene as a .glb to fp (open in binary mode). One node
// "aggregate"; with several root trees one child node "root N" per tree that
// has a tube (N the root's cell index), each with its own mesh; a node
// "surface" when there are facets. Returns 1 when written; 0 on a write
// error, or with errno EFBIG (nothing written) when the buffer passes the
// 4 GB a .glb can address.
int WriteGLTF(SIMULATION &sim, FILE *fp);

// Writes path: a .glb when it ends in ".glb" (any case); otherwise JSON
// glTF with the buffer in a file beside it, named as path without its
// extension and ".bin" (a.gltf: a.bin). Returns 0 (errno set) when a file
// cannot be created or written.
int SaveGLTFFile(SIMULATION &sim, const char *path);

#endif
