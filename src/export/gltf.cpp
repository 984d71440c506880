// [SECTION] tubes, joints and glTF's axes
// [SECTION] buffer layout and accessors
// [SECTION] the scene
#include "export/gltf.h"

#include <ctype.h>   // isalnum()
#include <errno.h>   // EFBIG
#include <math.h>    // pow(), log(), sin(), cos()
#include <stdint.h>  // uint32_t
#include <string.h>  // memcpy(), strlen(), strrchr()
#include <strings.h> // strcasecmp()
#include <sys/stat.h>  // stat()

#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

// Writing only: no image codecs.
#define TINYGLTF_IMPLEMENTATION
#define TINYGLTF_NO_STB_IMAGE
#define TINYGLTF_NO_STB_IMAGE_WRITE
#define TINYGLTF_NO_EXTERNAL_IMAGE
#include <tiny_gltf.h>

#include "app/simulation.h"
#include "export/model.h"  // RadiusSlope()
#include "export/ply.h"    // CellRoots()
#include "lib/primitives.h"
#include "surface/stl.h"
#include "view/choosecolour.h"

namespace {

// ---------------------------------------------------------------- [SECTION] tubes, joints and glTF's axes

// One tube as EmitCone makes it, recorded through the sink's context.
struct TUBERECORD {
  float position[GLTF_TUBEVERTICES + 2][3];
  float normal[GLTF_TUBEVERTICES + 2][3];
  int n;
};

void TubeBegin(void *context, unsigned int) { ((TUBERECORD *)context)->n = 0; }
void TubeEnd(void *) {}
void TubeTexcoord(void *, float, float) {}
void TubeNormal(void *context, float x, float y, float z) {
  TUBERECORD &tube = *(TUBERECORD *)context;
  if (tube.n >= GLTF_TUBEVERTICES + 2) return;
  tube.normal[tube.n][0] = x;
  tube.normal[tube.n][1] = y;
  tube.normal[tube.n][2] = z;
}
void TubeVertex(void *context, float x, float y, float z) {
  TUBERECORD &tube = *(TUBERECORD *)context;
  if (tube.n >= GLTF_TUBEVERTICES + 2) return;
  tube.position[tube.n][0] = x;
  tube.position[tube.n][1] = y;
  tube.position[tube.n][2] = z;
  tube.n++;
}

// The joint's unit sphere, poles on z: the south pole, the rings from south
// to north, the north pole; triangles wound counter-clockwise seen from
// outside, as glTF's front faces are.
struct JOINTSHAPE {
  float unit[GLTF_JOINTVERTICES][3];
  uint32_t index[GLTF_JOINTINDICES];
};

// Vertex j of ring k, rings numbered from south to north; ring -1 is the
// south pole and ring GLTF_JOINTBANDS - 1 the north pole.
uint32_t RingVertex(int k, int j) {
  if (k < 0) return 0;
  if (k >= GLTF_JOINTBANDS - 1) return GLTF_JOINTVERTICES - 1;
  return 1 + k * GLTF_JOINTSIDES + j % GLTF_JOINTSIDES;
}

JOINTSHAPE MakeJointShape(void) {
  JOINTSHAPE s = {};
  s.unit[0][2] = -1;
  s.unit[GLTF_JOINTVERTICES - 1][2] = 1;
  for (int k = 0; k < GLTF_JOINTBANDS - 1; k++) {
    double lat = TWOPI / 2 * (k + 1) / GLTF_JOINTBANDS - TWOPI / 4;
    for (int j = 0; j < GLTF_JOINTSIDES; j++) {
      double lon = TWOPI * j / GLTF_JOINTSIDES;
      float *u = s.unit[RingVertex(k, j)];
      u[0] = (float)(cos(lat) * cos(lon)), u[1] = (float)(cos(lat) * sin(lon)), u[2] = (float)sin(lat);
    }
  }
  // Band k's quads run east along ring k - 1, then back along ring k; at a
  // pole the quad is one triangle.
  uint32_t *out = s.index;
  for (int k = 0; k < GLTF_JOINTBANDS; k++)
    for (int j = 0; j < GLTF_JOINTSIDES; j++) {
      uint32_t a = RingVertex(k - 1, j), b = RingVertex(k - 1, j + 1), c = RingVertex(k, j + 1), d = RingVertex(k, j);
      if (k > 0) *out++ = a, *out++ = b, *out++ = c;
      if (k < GLTF_JOINTBANDS - 1) *out++ = a, *out++ = c, *out++ = d;
    }
  return s;
}

const JOINTSHAPE &JointShape(void) {
  static const JOINTSHAPE shape = MakeJointShape();
  return shape;
}

// glTF is y up, the program z up: a turn about x, which keeps windings.
void ToGLTF(float *out, const float *p) {
  float y = p[1];
  out[0] = p[0], out[1] = p[2], out[2] = -y;
}

// glTF vertex colours are linear; the window shows the values as they are,
// which a display takes as sRGB.
double Linear(double c) { return c <= 0.04045 ? c / 12.92 : pow((c + 0.055) / 1.055, 2.4); }

unsigned char LinearByte(double c) {
  double v = Linear(c);
  if (!(v > 0)) return 0;
  if (v >= 1) return 255;
  return (unsigned char)(v * 255 + 0.5);
}

// A normal must have unit length in glTF; a degenerate tube or facet has none.
void PutNormal(unsigned char *out, const float *n) {
  float unit[3] = {n[0], n[1], n[2]};
  if (!(n[0] * n[0] + n[1] * n[1] + n[2] * n[2] > 0.5f)) unit[0] = 0, unit[1] = 0, unit[2] = 1;
  ToGLTF(unit, unit);
  memcpy(out, unit, 12);
}

// ---------------------------------------------------------------- [SECTION] buffer layout and accessors

struct RANGE {
  float lo[3], hi[3];
};

RANGE EmptyRange(void) { return {{HUGE_VALF, HUGE_VALF, HUGE_VALF}, {-HUGE_VALF, -HUGE_VALF, -HUGE_VALF}}; }

void Widen(RANGE *r, const float *p) {
  for (int k = 0; k < 3; k++) {
    if (p[k] < r->lo[k]) r->lo[k] = p[k];
    if (p[k] > r->hi[k]) r->hi[k] = p[k];
  }
}

// The cells of each tree, trees in the order of their roots, cells in index
// order within a tree.
struct TREES {
  std::vector<int> root;     // per cell, its root's index
  std::vector<int> cell;     // the cells, tree after tree
  std::vector<size_t> first; // tree t's cells: cell[first[t]] .. cell[first[t + 1] - 1]
  std::vector<size_t> tube;  // tubes before tree t
  std::vector<int> heir;     // per cell, its heaviest child (the first of equals), -1 for none
};

void GroupTrees(SIMULATION &sim, TREES *t) {
  CellRoots(sim, &t->root);
  std::vector<int> tree(t->root.size(), -1);
  std::vector<size_t> count, tubes;
  for (int i = 0; i < sim.ncells; i++) tree[t->root[i]] = -2;
  for (int i = 0; i < sim.ncells; i++)
    if (tree[i] == -2) tree[i] = (int)count.size(), count.push_back(0), tubes.push_back(0);
  for (int i = 0; i < sim.ncells; i++) {
    count[tree[t->root[i]]]++;
    if (sim.cells[i].parent >= 0) tubes[tree[t->root[i]]]++;
  }
  t->first.assign(count.size() + 1, 0);
  t->tube.assign(count.size() + 1, 0);
  for (size_t k = 0; k < count.size(); k++) {
    t->first[k + 1] = t->first[k] + count[k];
    t->tube[k + 1] = t->tube[k] + tubes[k];
  }
  std::vector<size_t> next(t->first.begin(), t->first.end() - 1);
  t->cell.resize(t->first.back());
  for (int i = 0; i < sim.ncells; i++) t->cell[next[tree[t->root[i]]]++] = i;
  t->heir.assign(t->root.size(), -1);
  for (int i = 0; i < sim.ncells; i++) {
    int q = sim.cells[i].parent;
    if (q >= 0 && (t->heir[q] < 0 || sim.cells[i].weight > sim.cells[t->heir[q]].weight)) t->heir[q] = i;
  }
}

// Where each attribute starts in the buffer: the aggregate's vertex
// attributes, its indices, then the surface's flat facets.
struct LAYOUT {
  size_t nvertex, nindex, nfacet;
  size_t position, normal, colour, weight, root, index, facetposition, facetnormal, total;
};

LAYOUT Layout(size_t ncell, size_t ntube, size_t nfacet) {
  LAYOUT at;
  at.nvertex = ntube * GLTF_TUBEVERTICES + ncell * GLTF_JOINTVERTICES;
  at.nindex = ntube * GLTF_TUBEINDICES + ncell * GLTF_JOINTINDICES;
  at.nfacet = nfacet;
  at.position = 0;
  at.normal = at.position + 12 * at.nvertex;
  at.colour = at.normal + 12 * at.nvertex;
  at.weight = at.colour + 4 * at.nvertex;
  at.root = at.weight + 4 * at.nvertex;
  at.index = at.root + 4 * at.nvertex;
  at.facetposition = at.index + 4 * at.nindex;
  at.facetnormal = at.facetposition + 36 * nfacet;
  at.total = at.facetnormal + 36 * nfacet;
  return at;
}

// What every vertex of a cell's tube and joint carries besides its place.
struct CELLLOOK {
  unsigned char rgba[4];
  float weight, root;
};

void PutVertex(unsigned char *data, const LAYOUT &at, size_t v, const float *p, const float *n,
               const CELLLOOK &look, RANGE *range) {
  float q[3];
  ToGLTF(q, p);
  memcpy(data + at.position + 12 * v, q, 12);
  PutNormal(data + at.normal + 12 * v, n);
  memcpy(data + at.colour + 4 * v, look.rgba, 4);
  memcpy(data + at.weight + 4 * v, &look.weight, 4);
  memcpy(data + at.root + 4 * v, &look.root, 4);
  Widen(range, q);
}

// Vertex views hold one tree after another, each tree with accessors of its
// own, which glTF allows only with the stride given.
int AddView(tinygltf::Model *m, size_t offset, size_t length, int target, int stride) {
  tinygltf::BufferView v;
  v.buffer = 0;
  v.byteStride = stride;
  v.byteOffset = offset;
  v.byteLength = length;
  v.target = target;
  m->bufferViews.push_back(v);
  return (int)m->bufferViews.size() - 1;
}

int AddAccessor(tinygltf::Model *m, int view, size_t offset, int component, int type, size_t count,
                int normalized, const RANGE *range) {
  tinygltf::Accessor a;
  a.bufferView = view;
  a.byteOffset = offset;
  a.componentType = component;
  a.type = type;
  a.count = count;
  a.normalized = normalized != 0;
  if (range) {
    a.minValues.assign(range->lo, range->lo + 3);
    a.maxValues.assign(range->hi, range->hi + 3);
  }
  m->accessors.push_back(a);
  return (int)m->accessors.size() - 1;
}

tinygltf::Material MakeMaterial(const char *name, const double *rgba, int blend) {
  tinygltf::Material mat;
  mat.name = name;
  mat.pbrMetallicRoughness.baseColorFactor.assign(rgba, rgba + 4);
  mat.pbrMetallicRoughness.metallicFactor = 0;
  mat.pbrMetallicRoughness.roughnessFactor = 0.5;
  // The surface is seen from both sides, as in the window; the aggregate is closed.
  if (blend) mat.alphaMode = "BLEND", mat.doubleSided = true;
  return mat;
}

int AddMesh(tinygltf::Model *m, const char *name, const tinygltf::Primitive &p) {
  tinygltf::Mesh mesh;
  mesh.name = name;
  mesh.primitives.push_back(p);
  mesh.primitives.back().mode = TINYGLTF_MODE_TRIANGLES;
  m->meshes.push_back(mesh);
  return (int)m->meshes.size() - 1;
}

int AddNode(tinygltf::Model *m, const char *name, int mesh) {
  tinygltf::Node n;
  n.name = name;
  n.mesh = mesh;
  m->nodes.push_back(n);
  return (int)m->nodes.size() - 1;
}

// tinygltf writes to a std::ostream; this one hands every byte to a FILE *.
struct FILEBUF : std::streambuf {
  FILE *fp;
  explicit FILEBUF(FILE *f) : fp(f) {}
  int overflow(int c) override {
    if (c == traits_type::eof()) return traits_type::not_eof(c);
    return fputc(c, fp) == EOF ? traits_type::eof() : c;
  }
  std::streamsize xsputn(const char *s, std::streamsize n) override {
    return (std::streamsize)fwrite(s, 1, (size_t)n, fp);
  }
};

}  // namespace

// ---------------------------------------------------------------- [SECTION] the scene

static CELLLOOK Look(SIMULATION &sim, int i, const TREES &trees) {
  COLOUR colour = ChooseColour(sim, i, sim.options.dladrawmode);
  return {{LinearByte(colour.r), LinearByte(colour.g), LinearByte(colour.b), 255},
          (float)sim.cells[i].weight,
          (float)trees.root[i]};
}

// The radius of the window's tubes and of the cone export at a cell.
static double Radius(SIMULATION &sim, const CELL &c, double slope) {
  return log(c.weight + 1) * slope + sim.growthstate.thickend;
}

// Tree t's tubes, then its joints, into the buffer; its mesh into the model.
// view: the views of position, normal, colour, weight, root and indices.
static int AddTree(SIMULATION &sim, tinygltf::Model &model, const TREES &trees, const LAYOUT &at, size_t t,
                   const int *view) {
  unsigned char *data = model.buffers[0].data.data();
  double slope = RadiusSlope(sim);
  size_t v0 = trees.tube[t] * GLTF_TUBEVERTICES + trees.first[t] * GLTF_JOINTVERTICES;
  size_t i0 = trees.tube[t] * GLTF_TUBEINDICES + trees.first[t] * GLTF_JOINTINDICES;
  size_t v = v0, k = i0;
  RANGE range = EmptyRange();
  for (size_t m = trees.first[t]; m < trees.first[t + 1]; m++) {
    const CELL &c = sim.cells[trees.cell[m]];
    if (c.parent < 0) continue;
    // The branch that carries on tapers from its parent's thickness; a side
    // branch leaves the parent's joint with its own.
    const CELL &q = sim.cells[c.parent];
    double r = Radius(sim, c, slope);
    double r0 = trees.heir[c.parent] == trees.cell[m] ? Radius(sim, q, slope) : r;
    TUBERECORD tube;
    const PRIMSINK tubesink = {TubeBegin, TubeEnd, TubeNormal, TubeTexcoord, TubeVertex, &tube};
    EmitCone(&tubesink, q.p, c.p, r0, r, GLTF_SIDES, 0, TWOPI);
    CELLLOOK look = Look(sim, trees.cell[m], trees);
    uint32_t base = (uint32_t)(v - v0), idx[GLTF_TUBEINDICES];
    for (int e = 0; e < GLTF_TUBEVERTICES; e++)
      PutVertex(data, at, v++, tube.position[e], tube.normal[e], look, &range);
    // Quad s joins ring pairs s and s + 1 (2s on the parent's ring, 2s + 1
    // on the cell's); both triangles face outward.
    for (int s = 0; s < GLTF_SIDES; s++) {
      uint32_t a = base + 2 * s, b = base + 2 * ((s + 1) % GLTF_SIDES);
      uint32_t quad[6] = {a, b, b + 1, a, b + 1, a + 1};
      memcpy(idx + 6 * s, quad, sizeof(quad));
    }
    memcpy(data + at.index + 4 * k, idx, sizeof(idx));
    k += GLTF_TUBEINDICES;
  }
  const JOINTSHAPE &joint = JointShape();
  for (size_t m = trees.first[t]; m < trees.first[t + 1]; m++) {
    const CELL &c = sim.cells[trees.cell[m]];
    double r = Radius(sim, c, slope);
    CELLLOOK look = Look(sim, trees.cell[m], trees);
    uint32_t base = (uint32_t)(v - v0), idx[GLTF_JOINTINDICES];
    for (int e = 0; e < GLTF_JOINTVERTICES; e++) {
      const float *u = joint.unit[e];
      float p[3] = {(float)(c.p.x + r * u[0]), (float)(c.p.y + r * u[1]), (float)(c.p.z + r * u[2])};
      PutVertex(data, at, v++, p, u, look, &range);
    }
    for (int e = 0; e < GLTF_JOINTINDICES; e++) idx[e] = base + joint.index[e];
    memcpy(data + at.index + 4 * k, idx, sizeof(idx));
    k += GLTF_JOINTINDICES;
  }
  size_t nv = v - v0;
  tinygltf::Primitive p;
  p.attributes["POSITION"] =
      AddAccessor(&model, view[0], 12 * v0, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, nv, 0, &range);
  p.attributes["NORMAL"] =
      AddAccessor(&model, view[1], 12 * v0, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, nv, 0, NULL);
  p.attributes["COLOR_0"] =
      AddAccessor(&model, view[2], 4 * v0, TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE, TINYGLTF_TYPE_VEC4, nv, 1, NULL);
  p.attributes["_WEIGHT"] =
      AddAccessor(&model, view[3], 4 * v0, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_SCALAR, nv, 0, NULL);
  p.attributes["_ROOT"] =
      AddAccessor(&model, view[4], 4 * v0, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_SCALAR, nv, 0, NULL);
  p.indices = AddAccessor(&model, view[5], 4 * i0, TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT, TINYGLTF_TYPE_SCALAR,
                          k - i0, 0, NULL);
  p.material = 0;
  char name[32];
  int root = trees.root[trees.cell[trees.first[t]]];
  snprintf(name, sizeof(name), trees.first.size() > 2 ? "root %d" : "aggregate", root);
  return AddMesh(&model, name, p);
}

// The surface's flat facets, each with its own three vertices; the look of
// the POV-Ray scene's surface: pale blue, mostly transparent.
static int AddSurface(SIMULATION &sim, tinygltf::Model &model, const LAYOUT &at) {
  unsigned char *data = model.buffers[0].data.data();
  const double pale[4] = {Linear(0.8), Linear(0.8), 1, 0.25};
  model.materials.push_back(MakeMaterial("surface", pale, 1));
  RANGE range = EmptyRange();
  for (size_t f = 0; f < at.nfacet; f++) {
    const FACET &facet = sim.stltri[f];
    float n[3] = {(float)facet.n.x, (float)facet.n.y, (float)facet.n.z};
    for (int k = 0; k < 3; k++) {
      float p[3] = {(float)facet.p[k].x, (float)facet.p[k].y, (float)facet.p[k].z};
      ToGLTF(p, p);
      memcpy(data + at.facetposition + 12 * (3 * f + k), p, 12);
      PutNormal(data + at.facetnormal + 12 * (3 * f + k), n);
      Widen(&range, p);
    }
  }
  int vpos = AddView(&model, at.facetposition, 36 * at.nfacet, TINYGLTF_TARGET_ARRAY_BUFFER, 12);
  int vnrm = AddView(&model, at.facetnormal, 36 * at.nfacet, TINYGLTF_TARGET_ARRAY_BUFFER, 12);
  tinygltf::Primitive p;
  p.attributes["POSITION"] =
      AddAccessor(&model, vpos, 0, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, 3 * at.nfacet, 0, &range);
  p.attributes["NORMAL"] =
      AddAccessor(&model, vnrm, 0, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, 3 * at.nfacet, 0, NULL);
  p.material = (int)model.materials.size() - 1;
  return AddNode(&model, "surface", AddMesh(&model, "surface", p));
}

// The whole scene in *model, its buffer filled. Returns 0 with errno EFBIG
// when binary and the buffer would pass what a .glb can address.
static int BuildScene(SIMULATION &sim, tinygltf::Model &model, int binary) {
  TREES trees;
  GroupTrees(sim, &trees);
  size_t ntree = trees.first.size() - 1;
  LAYOUT at = Layout(trees.cell.size(), trees.tube.back(), sim.nstltri > 0 ? sim.nstltri : 0);
  // A .glb counts its length in 32 bits, JSON chunk included; keep a margin for that.
  if (binary && (double)at.total + 4096.0 * (ntree + 16) >= 4294967296.0) {
    errno = EFBIG;
    return 0;
  }

  model.asset.version = "2.0";
  char generator[64];
  snprintf(generator, sizeof(generator), "dla3d %g", versionid / 100.0);
  model.asset.generator = generator;
  model.buffers.resize(1);
  model.buffers[0].data.resize(at.total);

  // Even with no cell a scene has its aggregate, so that readers open it.
  tinygltf::Node aggregate;
  aggregate.name = "aggregate";
  if (ntree > 0) {
    const double white[4] = {1, 1, 1, 1};
    model.materials.push_back(MakeMaterial("aggregate", white, 0));
    int view[6];
    view[0] = AddView(&model, at.position, 12 * at.nvertex, TINYGLTF_TARGET_ARRAY_BUFFER, 12);
    view[1] = AddView(&model, at.normal, 12 * at.nvertex, TINYGLTF_TARGET_ARRAY_BUFFER, 12);
    view[2] = AddView(&model, at.colour, 4 * at.nvertex, TINYGLTF_TARGET_ARRAY_BUFFER, 4);
    view[3] = AddView(&model, at.weight, 4 * at.nvertex, TINYGLTF_TARGET_ARRAY_BUFFER, 4);
    view[4] = AddView(&model, at.root, 4 * at.nvertex, TINYGLTF_TARGET_ARRAY_BUFFER, 4);
    view[5] = AddView(&model, at.index, 4 * at.nindex, TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER, 0);
    for (size_t t = 0; t < ntree; t++) {
      int mesh = AddTree(sim, model, trees, at, t, view);
      if (ntree > 1)
        aggregate.children.push_back(AddNode(&model, model.meshes[mesh].name.c_str(), mesh));
      else
        aggregate.mesh = mesh;
    }
  }
  model.nodes.push_back(aggregate);
  tinygltf::Scene scene;
  scene.nodes.push_back((int)model.nodes.size() - 1);
  if (at.nfacet > 0) scene.nodes.push_back(AddSurface(sim, model, at));
  model.scenes.push_back(scene);
  model.defaultScene = 0;
  if (at.total == 0) model.buffers.clear();  // a buffer needs at least one byte
  return 1;
}

int WriteGLTF(SIMULATION &sim, FILE *fp) {
  tinygltf::Model model;
  if (!BuildScene(sim, model, 1)) return 0;
  tinygltf::TinyGLTF writer;
  FILEBUF sink(fp);
  std::ostream out(&sink);
  writer.WriteGltfSceneToStream(&model, out, false, true);
  out.flush();
  return out.good() && fflush(fp) == 0 && !ferror(fp);
}

// The JSON file's buffer beside it: its name without the extension, ".bin"
// (unless that is the file itself), in characters a URI takes as they are.
static std::string BinaryName(const char *path) {
  const char *base = strrchr(path, '/') ? strrchr(path, '/') + 1 : path;
  std::string name = base;
  size_t dot = name.rfind('.');
  if (dot != std::string::npos && dot > 0 && strcasecmp(base + dot, ".bin") != 0) name.resize(dot);
  for (char &c : name)
    if (!isalnum((unsigned char)c) && c != '.' && c != '_' && c != '-') c = '_';
  return name + ".bin";
}

int SaveGLTFFile(SIMULATION &sim, const char *path) {
  if (path == NULL || path[0] == '\0') return 0;
  size_t len = strlen(path);
  if (len >= 4 && strcasecmp(path + len - 4, ".glb") == 0) {
    FILE *fp = fopen(path, "wb");
    if (fp == NULL) return 0;
    int ok = WriteGLTF(sim, fp);
    int saved = errno;
    int closed = fclose(fp) == 0;
    errno = saved;
    return closed && ok;
  }
  // JSON: base64 inside it would make a million cells a gigabyte of text
  // and minutes of encoding, so the buffer goes to a file of its own.
  // tinygltf does not tell when it cannot create the JSON file: try first.
  FILE *fp = fopen(path, "w");
  if (fp == NULL) return 0;
  fclose(fp);
  tinygltf::Model model;
  BuildScene(sim, model, 0);
  if (!model.buffers.empty()) model.buffers[0].uri = BinaryName(path);
  tinygltf::TinyGLTF writer;
  errno = 0;
  if (writer.WriteGltfSceneToFile(&model, path, false, false, true, false)) {
    // tinygltf does not tell when a write fails (a full disk) either: the
    // files must hold what was written.
    std::string dir(path, strrchr(path, '/') ? strrchr(path, '/') + 1 - path : 0);
    struct stat json, bin;
    if (stat(path, &json) == 0 && S_ISREG(json.st_mode) && json.st_size > 0 &&
        (model.buffers.empty() || (stat((dir + model.buffers[0].uri).c_str(), &bin) == 0 &&
                                   (size_t)bin.st_size == model.buffers[0].data.size())))
      return 1;
    errno = ENOSPC;
    return 0;
  }
  if (errno == 0) errno = EIO;
  return 0;
}
