// The aggregate as glTF 2.0 for today's viewers (Blender, three.js, MeshLab,
// ParaView): the tubes of the "Tubes (Slow)" drawing closed by a sphere at
// every cell, coloured as the window colours the cells, and the constraint
// surface as a second mesh. Written in glTF's own axes (y up): a point
// (x, y, z) of the program is (x, z, -y) in the file.
#ifndef DLA_EXPORT_GLTF_H
#define DLA_EXPORT_GLTF_H

#include <stdio.h>
#include "app/simulation.h"

// One tube per cell with a parent: a ten-sided quad strip that closes on its
// first ring pair, so the repeated pair is shared.
#define GLTF_SIDES 10
#define GLTF_TUBEVERTICES (2 * GLTF_SIDES)
#define GLTF_TUBEINDICES (6 * GLTF_SIDES)

// One joint per cell: a latitude-longitude sphere of the cell's radius, 8
// sides around and 4 bands from pole to pole (26 vertices, 48 triangles),
// which fills the notch where two tubes meet at an angle and closes the
// open ends of roots and tips.
#define GLTF_JOINTSIDES 8
#define GLTF_JOINTBANDS 4
#define GLTF_JOINTVERTICES (2 + (GLTF_JOINTBANDS - 1) * GLTF_JOINTSIDES)
#define GLTF_JOINTINDICES (6 * GLTF_JOINTSIDES * (GLTF_JOINTBANDS - 1))

// Buffer bytes of a vertex: float position (12), float normal (12), 8-bit
// RGBA colour (4), float _WEIGHT (4) and float _ROOT (4); indices are
// uint32. A tube costs 960 bytes, a joint 1512: 2472 per grown cell.
#define GLTF_VERTEXBYTES 36
#define GLTF_TUBEBYTES (GLTF_TUBEVERTICES * GLTF_VERTEXBYTES + GLTF_TUBEINDICES * 4)
#define GLTF_JOINTBYTES (GLTF_JOINTVERTICES * GLTF_VERTEXBYTES + GLTF_JOINTINDICES * 4)

// Writes the scene as a .glb to fp (open in binary mode). One node
// "aggregate"; with several roots one child node "root N" per tree (N the
// root's cell index), each with its own mesh; a node "surface" when there
// are facets. Returns 1 when written; 0 on a write error, or with errno
// EFBIG (nothing written) when the buffer passes the 4 GB a .glb can
// address.
int WriteGLTF(SIMULATION &sim, FILE *fp);

// Writes path: a .glb when it ends in ".glb" (any case); otherwise JSON
// glTF with the buffer in a file beside it, named as path without its
// extension and ".bin" (a.gltf: a.bin). Returns 0 (errno set) when a file
// cannot be created or written.
int SaveGLTFFile(SIMULATION &sim, const char *path);

#endif
