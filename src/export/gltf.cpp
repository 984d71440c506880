// [SECTION] tube recording through the primitive sink
// [SECTION] buffer layout and accessors
// [SECTION] the scene
#include "export/gltf.h"

#include <ctype.h>   // isalnum()
#include <errno.h>   // EFBIG
#include <math.h>    // pow(), log()
#include <stdint.h>  // uint32_t
#include <string.h>  // memcpy(), strlen(), strrchr()
#include <strings.h> // strcasecmp()
#include <sys/stat.h>  // stat()

#include <algorithm>  // std::sort()
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
#include "export/ply.h"
#include "lib/primitives.h"
#include "surface/stl.h"
#include "view/choosecolour.h"

namespace {

// ---------------------------------------------------------------- [SECTION] tube recording

// EmitCone's sink carries no context, so the tube being recorded lives here.
struct TUBERECORD {
  float position[2 * 11][3];
  float normal[2 * 11][3];
  int n;
};
TUBERECORD tube;

void TubeBegin(unsigned int) { tube.n = 0; }
void TubeEnd(void) {}
void TubeTexcoord(float, float) {}
void TubeNormal(float x, float y, float z) {
  if (tube.n >= 22) return;
  tube.normal[tube.n][0] = x;
  tube.normal[tube.n][1] = y;
  tube.normal[tube.n][2] = z;
}
void TubeVertex(float x, float y, float z) {
  if (tube.n >= 22) return;
  tube.position[tube.n][0] = x;
  tube.position[tube.n][1] = y;
  tube.position[tube.n][2] = z;
  tube.n++;
}
const PRIMSINK tubesink = {TubeBegin, TubeEnd, TubeNormal, TubeTexcoord, TubeVertex};

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
  memcpy(out, unit, 12);
}

// ---------------------------------------------------------------- [SECTION] buffer layout and accessors

struct RANGE {
  float lo[3], hi[3];
};

void Widen(RANGE *r, const float *p, int first) {
  for (int k = 0; k < 3; k++) {
    if (first || p[k] < r->lo[k]) r->lo[k] = p[k];
    if (first || p[k] > r->hi[k]) r->hi[k] = p[k];
  }
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
  mat.doubleSided = true;  // open tubes and surfaces are seen from both sides, as in the window
  if (blend) mat.alphaMode = "BLEND";
  return mat;
}

int AddMesh(tinygltf::Model *m, const char *name, int position, int normal, int colour, int indices,
            int material) {
  tinygltf::Primitive p;
  p.attributes["POSITION"] = position;
  p.attributes["NORMAL"] = normal;
  if (colour >= 0) p.attributes["COLOR_0"] = colour;
  p.indices = indices;
  p.material = material;
  p.mode = TINYGLTF_MODE_TRIANGLES;
  tinygltf::Mesh mesh;
  mesh.name = name;
  mesh.primitives.push_back(p);
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

// The whole scene in *model, its buffer filled. Returns 0 with errno EFBIG
// when binary and the buffer would pass what a .glb can address.
static int BuildScene(SIMULATION &sim, tinygltf::Model &model, int binary) {
  // The trees in the order of their roots; each tree's tubes in cell order.
  std::vector<int> root;
  CellRoots(sim, &root);
  std::vector<int> tree(sim.ncells > 0 ? sim.ncells : 0, -1), treeroot, ntubes;
  for (int i = 0; i < sim.ncells; i++) {
    if (sim.cells[i].parent < 0) continue;
    int r = root[i];
    if (tree[r] < 0) {
      tree[r] = 0;
      treeroot.push_back(r);
    }
  }
  std::sort(treeroot.begin(), treeroot.end());
  ntubes.assign(treeroot.size(), 0);
  for (size_t t = 0; t < treeroot.size(); t++) tree[treeroot[t]] = (int)t;
  for (int i = 0; i < sim.ncells; i++)
    if (sim.cells[i].parent >= 0) ntubes[tree[root[i]]]++;
  std::vector<size_t> first(treeroot.size() + 1, 0);
  for (size_t t = 0; t < treeroot.size(); t++) first[t + 1] = first[t] + ntubes[t];
  std::vector<int> order(first.back());
  std::vector<size_t> next(first.begin(), first.end() - 1);
  for (int i = 0; i < sim.ncells; i++)
    if (sim.cells[i].parent >= 0) order[next[tree[root[i]]]++] = i;

  size_t ntube = order.size(), nvert = ntube * GLTF_TUBEVERTICES, nfacet = sim.nstltri > 0 ? sim.nstltri : 0;
  size_t posat = 0, nrmat = posat + 12 * nvert, colat = nrmat + 12 * nvert, idxat = colat + 4 * nvert;
  size_t sposat = idxat + 4 * ntube * GLTF_TUBEINDICES, snrmat = sposat + 36 * nfacet;
  size_t total = snrmat + 36 * nfacet;
  // A .glb counts its length in 32 bits, JSON chunk included; keep a margin for that.
  if (binary && (double)total + 4096.0 * (treeroot.size() + 16) >= 4294967296.0) {
    errno = EFBIG;
    return 0;
  }

  model.asset.version = "2.0";
  char generator[64];
  snprintf(generator, sizeof(generator), "dla3d %g", versionid / 100.0);
  model.asset.generator = generator;
  model.buffers.resize(1);
  std::vector<unsigned char> &data = model.buffers[0].data;
  data.resize(total);

  tinygltf::Node aggregate;
  aggregate.name = "aggregate";
  std::vector<int> top;
  if (ntube > 0) {
    const double white[4] = {1, 1, 1, 1};
    model.materials.push_back(MakeMaterial("aggregate", white, 0));
    int vpos = AddView(&model, posat, 12 * nvert, TINYGLTF_TARGET_ARRAY_BUFFER, 12);
    int vnrm = AddView(&model, nrmat, 12 * nvert, TINYGLTF_TARGET_ARRAY_BUFFER, 12);
    int vcol = AddView(&model, colat, 4 * nvert, TINYGLTF_TARGET_ARRAY_BUFFER, 4);
    int vidx = AddView(&model, idxat, 4 * ntube * GLTF_TUBEINDICES, TINYGLTF_TARGET_ELEMENT_ARRAY_BUFFER, 0);
    // The radii of the window's tubes and of the cone export.
    double scale = RadiusSlope(sim);
    for (size_t t = 0; t < treeroot.size(); t++) {
      RANGE range = {};
      for (size_t k = first[t]; k < first[t + 1]; k++) {
        int i = order[k];
        const CELL &c = sim.cells[i], &q = sim.cells[c.parent];
        EmitCone(&tubesink, q.p, c.p, log(q.weight + 1) * scale + sim.growthstate.thickend,
                 log(c.weight + 1) * scale + sim.growthstate.thickend, 10, 0, TWOPI);
        COLOUR colour = ChooseColour(sim, i, sim.options.dladrawmode);
        unsigned char rgba[4] = {LinearByte(colour.r), LinearByte(colour.g), LinearByte(colour.b), 255};
        size_t v0 = k * GLTF_TUBEVERTICES;
        for (int v = 0; v < GLTF_TUBEVERTICES; v++) {
          memcpy(&data[posat + 12 * (v0 + v)], tube.position[v], 12);
          PutNormal(&data[nrmat + 12 * (v0 + v)], tube.normal[v]);
          memcpy(&data[colat + 4 * (v0 + v)], rgba, 4);
          Widen(&range, tube.position[v], k == first[t] && v == 0);
        }
        // Quad i joins ring pairs i and i + 1 (2i on the parent's ring,
        // 2i + 1 on the cell's); both triangles face outward.
        uint32_t base = (uint32_t)((k - first[t]) * GLTF_TUBEVERTICES), idx[GLTF_TUBEINDICES];
        for (int s = 0; s < 10; s++) {
          uint32_t a = base + 2 * s, b = base + 2 * ((s + 1) % 10);
          uint32_t quad[6] = {a, b, b + 1, a, b + 1, a + 1};
          memcpy(idx + 6 * s, quad, sizeof(quad));
        }
        memcpy(&data[idxat + 4 * k * GLTF_TUBEINDICES], idx, sizeof(idx));
      }
      size_t nv = (first[t + 1] - first[t]) * GLTF_TUBEVERTICES;
      size_t vat = first[t] * GLTF_TUBEVERTICES;
      int pos = AddAccessor(&model, vpos, 12 * vat, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, nv, 0, &range);
      int nrm = AddAccessor(&model, vnrm, 12 * vat, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, nv, 0, NULL);
      int col = AddAccessor(&model, vcol, 4 * vat, TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE, TINYGLTF_TYPE_VEC4, nv, 1,
                            NULL);
      int idx = AddAccessor(&model, vidx, 4 * first[t] * GLTF_TUBEINDICES, TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT,
                            TINYGLTF_TYPE_SCALAR, (first[t + 1] - first[t]) * GLTF_TUBEINDICES, 0, NULL);
      char name[32];
      snprintf(name, sizeof(name), treeroot.size() > 1 ? "root %d" : "aggregate", treeroot[t]);
      int mesh = AddMesh(&model, name, pos, nrm, col, idx, 0);
      if (treeroot.size() > 1)
        aggregate.children.push_back(AddNode(&model, name, mesh));
      else
        aggregate.mesh = mesh;
    }
    model.nodes.push_back(aggregate);
    top.push_back((int)model.nodes.size() - 1);
  }

  if (nfacet > 0) {
    // Flat facets, each with its own three vertices; the look of the POV-Ray
    // scene's surface: pale blue, mostly transparent.
    const double pale[4] = {Linear(0.8), Linear(0.8), 1, 0.25};
    model.materials.push_back(MakeMaterial("surface", pale, 1));
    RANGE range = {};
    for (size_t f = 0; f < nfacet; f++) {
      const FACET &facet = sim.stltri[f];
      float n[3] = {(float)facet.n.x, (float)facet.n.y, (float)facet.n.z};
      for (int k = 0; k < 3; k++) {
        float p[3] = {(float)facet.p[k].x, (float)facet.p[k].y, (float)facet.p[k].z};
        memcpy(&data[sposat + 12 * (3 * f + k)], p, 12);
        PutNormal(&data[snrmat + 12 * (3 * f + k)], n);
        Widen(&range, p, f == 0 && k == 0);
      }
    }
    int vpos = AddView(&model, sposat, 36 * nfacet, TINYGLTF_TARGET_ARRAY_BUFFER, 12);
    int vnrm = AddView(&model, snrmat, 36 * nfacet, TINYGLTF_TARGET_ARRAY_BUFFER, 12);
    int pos = AddAccessor(&model, vpos, 0, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, 3 * nfacet, 0, &range);
    int nrm = AddAccessor(&model, vnrm, 0, TINYGLTF_COMPONENT_TYPE_FLOAT, TINYGLTF_TYPE_VEC3, 3 * nfacet, 0, NULL);
    int mesh = AddMesh(&model, "surface", pos, nrm, -1, -1, (int)model.materials.size() - 1);
    top.push_back(AddNode(&model, "surface", mesh));
  }

  if (!top.empty()) {
    tinygltf::Scene scene;
    scene.nodes = top;
    model.scenes.push_back(scene);
    model.defaultScene = 0;
  }
  if (total == 0) model.buffers.clear();  // a buffer needs at least one byte
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
