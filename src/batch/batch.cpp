#include "batch/batch.h"

#include <errno.h>   // strtol() overflow
#include <limits.h>  // INT_MAX
#include <math.h>    // isfinite()
#include <stddef.h>  // offsetof()
#include <stdlib.h>  // strtod(), strtol()
#include <string.h>  // strcmp(), memset()
#include <strings.h>  // strncasecmp()
#include <sys/stat.h>  // stat()
#include <unistd.h>  // isatty(), access()

#include "app/startup.h"
#include "export/gltf.h"
#include "export/model.h"
#include "export/ply.h"
#include "export/report.h"
#include "export/statistics.h"
#include "export/summary.h"
#include "export/vtp.h"
#include "forms/readback.h"
#include "growth/growth.h"
#include "growth/index.h"
#include "growth/walk.h"
#include "surface/samples.h"
#include "surface/slice.h"
#include "surface/stl.h"
#include "surface/transform.h"
#include "view/camera.h"
#include "view/menutables.h"
#include "view/overlay.h"

// [SECTION] The option table: every option is one row here. A row writes
// either a growth setting (into run->growth, copied to growthstate when the
// run starts) or a field of the run itself.

// BOPT_SAMPLE: an int that must be a sample surface code; BOPT_TRIPLE: one
// "X,Y,Z" value into an XYZ; BOPT_TRANSFORM: three triples appended to
// run->transforms; BOPT_SEARCH: "index" or "scan"; BOPT_WALK: "exact" or "fast".
enum { BOPT_INT, BOPT_LONG, BOPT_DOUBLE, BOPT_PAIR, BOPT_FLAG, BOPT_PATH, BOPT_HELP, BOPT_SAMPLE, BOPT_TRIPLE,
       BOPT_TRANSFORM, BOPT_SEARCH, BOPT_SIZE, BOPT_WALK };
enum { BT_GROWTH, BT_RUN };

struct BATCHOPTION {
  const char *name;
  const char *alias;  // a second spelling, or NULL
  const char *args;   // value names for the usage text
  int kind;
  int role;           // BR_SETTING ... BR_PROGRAM (batch.h)
  int target;         // BT_GROWTH or BT_RUN
  size_t offset;      // where the (first) value goes
  size_t offset2;     // the second value of a pair
  double lo, hi;      // allowed values, inclusive
  int flag;           // the value a BOPT_FLAG stores
  const char *range;  // the allowed values as a message names them
  const char *help;
};

#define G(f) BT_GROWTH, offsetof(GROWTHSTATE, f)
#define R(f) BT_RUN, offsetof(BATCHRUN, f)
#define NOLIMIT 1e300

static const BATCHOPTION batchoptions[] = {
  {"--seed", NULL, "N", BOPT_INT, BR_SETTING, G(seed), 0, 0, INT_MAX, 0, "an integer from 0 to 2147483647",
   "seed of both random number generators (12345)"},
  {"--bias", NULL, "PCT", BOPT_DOUBLE, BR_SETTING, G(bias), 0, 0, 1, 0, "0 to 1",
   "drift of every step away from the roots, in percent of the branch length (0.1)"},
  {"--branch-length", NULL, "L", BOPT_DOUBLE, BR_SETTING, G(branchlength), 0, 0.01, NOLIMIT, 0,
   "0.01 or more", "step and branch length (1)"},
  {"--stickiness", NULL, "PCT", BOPT_DOUBLE, BR_SETTING, G(stickiness), 0, 1, 100, 0, "1 to 100",
   "chance in percent that a touching particle sticks (100)"},
  {"--rotation", NULL, "DEG", BOPT_DOUBLE, BR_SETTING, G(rotation), 0, -5, 5, 0, "-5 to 5",
   "swirl about the z axis per step, degrees (0)"},
  {"--thickness", NULL, "START END", BOPT_PAIR, BR_SETTING, G(thickstart), offsetof(GROWTHSTATE, thickend), 0,
   NOLIMIT, 0, "0 or more", "branch thickness at the largest weight, and at weight 0 (0.4 0.01)"},
  {"--roots", NULL, "N", BOPT_INT, BR_SETTING, G(nroots), 0, 0, MAXROOTS, 0, "an integer from 0 to 1000000",
   "number of roots (1)"},
  {"--root-range", NULL, "R", BOPT_DOUBLE, BR_SETTING, G(rootrange), 0, -NOLIMIT, NOLIMIT, 0, "-1e300 to 1e300",
   "size of the region the roots are placed in (10)"},
  {"--root-distribution", NULL, "CODE", BOPT_INT, BR_SETTING, G(rootdistribution), 0, INT_MIN, INT_MAX, 0,
   "any integer", "how the roots are placed (listed below); above 9 none (1)"},
  {"--associate", NULL, "", BOPT_FLAG, BR_SETTING, G(associate), 0, 0, 0, 1, "", "seed association on"},
  {"--intersect-range", NULL, "PCT", BOPT_DOUBLE, BR_SETTING, G(intersectrange), 0, 0, 90, 0, "0 to 90",
   "smallest distance between branches, percent of the branch length (0)"},
  {"--source", NULL, "CODE", BOPT_INT, BR_SETTING, G(sourcetype), 0, 1, 17, 0, "an integer from 1 to 17",
   "where particles are released, as the menu numbers them (listed below) (1)"},
  {"--seed-file", NULL, "PATH", BOPT_PATH, BR_SETTING, R(seedfile), 0, 0, 0, 0, "a path",
   "roots from a seed file, as \"Read seeds\" does"},
  {"--stl", NULL, "PATH", BOPT_PATH, BR_SETTING, R(stlfile), 0, 0, 0, 0, "a path",
   "constraint surface from an STL file"},
  {"--cells", NULL, "N", BOPT_INT, BR_LIMIT, R(cells), 0, 1, INT_MAX, 0, "an integer from 1 to 2147483647",
   "grow until the aggregate holds N cells (10000)"},
  {"--steps", NULL, "N", BOPT_LONG, BR_LIMIT, R(steps), 0, 0, 9.2e18, 0, "an integer from 0",
   "or stop after N growth steps, whichever comes first"},
  {"--stall-steps", NULL, "N", BOPT_LONG, BR_SETTING, R(stallsteps), 0, 1, 9.2e18, 0, "an integer from 1",
   "end the run, writing every file asked for (exit status 3), after N steps without a new cell (1e10)"},
  {"--csv", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(csvfile), 0, 0, 0, 0, "a path",
   "write the aggregate: index,parent,x,y,z,weight"},
  {"--sample", NULL, "CODE", BOPT_SAMPLE, BR_SETTING, R(sample), 0, 1, 100, 0,
   "1, 2, 3, 11, 12, 13, 21, 22, 23, 31 or 100",
   "constraint surface from a sample (listed below); not with --stl"},
  {"--transform", NULL, "SX,SY,SZ DX,DY,DZ RX,RY,RZ", BOPT_TRANSFORM, BR_SETTING, R(transforms), 0,
   -NOLIMIT, NOLIMIT, 0, "three triples of numbers: scale, shift, rotation in degrees",
   "the transform form's Apply (rotation in degrees); may be repeated, applied in order after --stl/--sample"},
  {"--slices", NULL, "N", BOPT_INT, BR_OUTPUT, R(nslices), 0, 2, INT_MAX, 0, "an integer from 2 to 2147483647",
   "after growth, write N slice files slice_000.txt ... (below 2 is refused, not raised to 2)"},
  {"--slice-normal", NULL, "X,Y,Z", BOPT_TRIPLE, BR_OUTPUT, R(slicenormal), 0, -NOLIMIT, NOLIMIT, 0,
   "three numbers X,Y,Z",
   "direction the slices are cut along (0,0,1); shorter than 1e-5: z becomes 1, then it is normalised"},
  {"--slice-dir", NULL, "DIR", BOPT_PATH, BR_OUTPUT, R(slicedir), 0, 0, 0, 0, "a path",
   "write the slice files into DIR, which must exist (the current directory)"},
  {"--stats", NULL, "", BOPT_FLAG, BR_OUTPUT, R(stats), 0, 0, 0, 1, "",
   "after growth, run the statistics (branch distribution, box count) to completion"},
  {"--pov", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(povfile), 0, 0, 0, 0, "a path",
   "write POV-Ray, cylinders and spheres"},
  {"--pov-sweep", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(povsweepfile), 0, 0, 0, 0, "a path",
   "write POV-Ray, sphere sweeps"},
  {"--geom", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(geomfile), 0, 0, 0, 0, "a path",
   "write GEOM, cylinders and spheres"},
  {"--vrml", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(vrmlfile), 0, 0, 0, 0, "a path",
   "write VRML 2.0, cylinders and spheres"},
  {"--vrml-caps", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(vrmlcapsfile), 0, 0, 0, 0, "a path",
   "write VRML 2.0, cylinders, end caps and spheres"},
  {"--dxf-points", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(dxfpointsfile), 0, 0, 0, 0, "a path",
   "write the point cloud as DXF"},
  {"--geom-points", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(geompointsfile), 0, 0, 0, 0, "a path",
   "write the point cloud as GEOM"},
  {"--stl-out", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(stloutfile), 0, 0, 0, 0, "a path",
   "write the constraint surface as ASCII STL"},
  {"--info", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(infofile), 0, 0, 0, 0, "a path",
   "write the simulation information report"},
  {"--gltf", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(gltffile), 0, 0, 0, 0, "a path",
   "write glTF 2.0 (y up): the tubes as drawn with a sphere at each joint, the surface, a node per\n"
   "                               root tree, _WEIGHT and _ROOT per vertex; one .glb if PATH ends in .glb, else JSON\n"
   "                               and its data beside it in NAME.bin; 2472 bytes a cell"},
  {"--ply", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(plyfile), 0, 0, 0, 0, "a path",
   "write the cells as binary PLY: x, y, z, weight, root, the colour drawn, the weight as quality;\n"
   "                               the parent links as edges"},
  {"--vtp", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(vtpfile), 0, 0, 0, 0, "a path",
   "write VTK XML PolyData (binary): the cells as points with weight, root and growth order;\n"
   "                               the parent links as lines"},
  {"--summary", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(summaryfile), 0, 0, 0, 0, "a path",
   "write a JSON summary: size, radii, fractal dimensions, statistics, time, settings"},
  {"--png", NULL, "PATH", BOPT_PATH, BR_OUTPUT, R(pngfile), 0, 0, 0, 0, "a path",
   "last, draw the aggregate as the window shows it, without the overlays, into a PNG file\n"
   "                               (8-bit RGB, deflate-compressed by libpng)"},
  {"--size", NULL, "WxH", BOPT_SIZE, BR_OUTPUT, R(pngwidth), offsetof(BATCHRUN, pngheight), 1, 8192, 0,
   "WIDTHxHEIGHT, each an integer from 1 to 8192", "size of the --png picture in pixels (800x600)"},
  {"--dla-draw", NULL, "CODE", BOPT_INT, BR_SETTING, R(dladrawmode), 0, 1, 5, 0, "an integer from 1 to 5",
   "aggregate drawing mode: 1 off, 2 points, 3 lines, 5 tubes; also the colours of the writers (3)"},
  {"--stl-draw", NULL, "CODE", BOPT_INT, BR_OUTPUT, R(stldrawmode), 0, 1, 5, 0, "an integer from 1 to 5",
   "surface drawing mode: 1 off, 2 faces wireframe, 3 mid points, 4 vertices, 5 solid (2)"},
  {"--no-extras", NULL, "", BOPT_FLAG, BR_OUTPUT, R(noextras), 0, 0, 0, 1, "",
   "no circles, axes, release points or spheres in the picture (F1)"},
  {"--camera-rotate", NULL, "DX,DY,DZ", BOPT_TRIPLE, BR_OUTPUT, R(camerarotate), 0, -NOLIMIT, NOLIMIT, 0,
   "three numbers DX,DY,DZ", "turn the camera from home for --png: degrees about up, right, view direction"},
  {"--aperture", NULL, "DEG", BOPT_DOUBLE, BR_OUTPUT, R(aperture), 0, 0.1, 179, 0, "0.1 to 179",
   "vertical field of view of the --png picture, degrees (60)"},
  {"--fit", NULL, "", BOPT_FLAG, BR_OUTPUT, R(fit), 0, 0, 0, 1, "",
   "move the --png camera along its direction (after --camera-rotate) until the aggregate, and the\n"
   "                               surface when drawn, fills the frame with a small margin; the clip planes follow"},
  {"--progress", NULL, "", BOPT_FLAG, BR_PROGRAM, R(progress), 0, 0, 0, 1, "", "a progress bar on standard error"},
  {"--no-progress", NULL, "", BOPT_FLAG, BR_PROGRAM, R(progress), 0, 0, 0, 0, "",
   "no progress bar (default when standard error is not a terminal)"},
  {"--search", NULL, "HOW", BOPT_SEARCH, BR_SETTING, R(search), 0, 0, 0, 0, "index or scan",
   "how a step finds the cell it touches: index, or scan every cell (index)"},
  {"--walk", NULL, "HOW", BOPT_WALK, BR_SETTING, R(walk), 0, 0, 0, 0, "exact or fast",
   "exact: every step as specified; fast: jumps across space the index proves free (same statistics, "
   "not the same cells; needs --search index) (exact)"},
  {"-d", NULL, "", BOPT_FLAG, BR_PROGRAM, R(debug), 0, 0, 0, 1, "", "diagnostics on standard error"},
  {"--help", "-h", "", BOPT_HELP, BR_PROGRAM, R(help), 0, 0, 0, 1, "", "this text"},
};

#define NBATCHOPTIONS ((int)(sizeof(batchoptions) / sizeof(batchoptions[0])))
static_assert(sizeof(batchoptions) / sizeof(batchoptions[0]) <= BATCH_MAXOPTIONS,
              "BATCHRUN.given is too small");

static const char *const programname = "dla3d-batch";

// The name ResetSeeds gives a root distribution code.
static const char *RootDistributionName(int code) { return code == ROOT_SPHERICAL9 ? "Spherical" : RootMenuName(code); }

// [SECTION] Parsing

static void *Field(BATCHRUN *run, const BATCHOPTION *o, size_t offset) {
  char *base = o->target == BT_GROWTH ? (char *)&run->growth : (char *)run;
  return base + offset;
}

// A whole argument as a number: no empty text, no trailing characters, no
// infinity or not-a-number.
static int ParseDouble(const char *s, double *v) {
  char *end;
  errno = 0;
  *v = strtod(s, &end);
  return end != s && *end == '\0' && errno == 0 && isfinite(*v);
}

static int ParseInteger(const char *s, long long *v) {
  char *end;
  errno = 0;
  *v = strtoll(s, &end, 10);
  return end != s && *end == '\0' && errno == 0;
}

static int KnownSampleCode(int code) {
  for (int i = 0; i < nsamplesurfaces; i++)
    if (samplesurfaces[i].code == code) return 1;
  return 0;
}

// "X,Y,Z": exactly three finite numbers separated by commas.
static int ParseTriple(const char *s, XYZ *v) {
  double d[3];
  const char *start = s;
  for (int k = 0; k < 3; k++) {
    const char *comma = strchr(start, ',');
    if ((k < 2) != (comma != NULL)) return 0;
    size_t len = comma ? (size_t)(comma - start) : strlen(start);
    char part[128];
    if (len >= sizeof(part)) return 0;
    memcpy(part, start, len);
    part[len] = '\0';
    if (!ParseDouble(part, &d[k])) return 0;
    start = comma ? comma + 1 : start + len;
  }
  v->x = d[0];
  v->y = d[1];
  v->z = d[2];
  return 1;
}

// "WxH": two integers of digits alone, joined by a lower-case x.
static int ParseSize(const char *s, long long *w, long long *h) {
  const char *x = strchr(s, 'x');
  if (x == NULL || x == s || x[1] == '\0' || strlen(s) > 32) return 0;
  for (const char *c = s; *c; c++)
    if (c != x && (*c < '0' || *c > '9')) return 0;
  *w = atoll(s);
  *h = atoll(x + 1);
  return 1;
}

static int StoreSize(BATCHRUN *run, const BATCHOPTION *o, const char *text, FILE *err) {
  long long w, h;
  if (!ParseSize(text, &w, &h) || w < o->lo || w > o->hi || h < o->lo || h > o->hi) {
    fprintf(err, "%s: %s: \"%s\" is not a size (allowed: %s)\n", programname, o->name, text, o->range);
    return 0;
  }
  *(int *)Field(run, o, o->offset) = (int)w;
  *(int *)Field(run, o, o->offset2) = (int)h;
  return 1;
}

static int StoreTriple(const BATCHOPTION *o, const char *text, XYZ *v, FILE *err) {
  if (ParseTriple(text, v)) return 1;
  fprintf(err, "%s: %s: \"%s\" is not three comma-separated numbers (allowed: %s)\n", programname, o->name, text,
          o->range);
  return 0;
}

static int StoreValue(BATCHRUN *run, const BATCHOPTION *o, size_t offset, const char *text, FILE *err) {
  if (o->kind == BOPT_INT || o->kind == BOPT_LONG || o->kind == BOPT_SAMPLE) {
    long long v;
    if (!ParseInteger(text, &v)) {
      fprintf(err, "%s: %s: \"%s\" is not an integer (allowed: %s)\n", programname, o->name, text, o->range);
      return 0;
    }
    if ((double)v < o->lo || (double)v > o->hi || (o->kind == BOPT_SAMPLE && !KnownSampleCode((int)v))) {
      fprintf(err, "%s: %s: %s is out of range (allowed: %s)\n", programname, o->name, text, o->range);
      return 0;
    }
    if (o->kind != BOPT_LONG)
      *(int *)Field(run, o, offset) = (int)v;
    else
      *(long long *)Field(run, o, offset) = v;
    return 1;
  }
  double v;
  if (!ParseDouble(text, &v)) {
    fprintf(err, "%s: %s: \"%s\" is not a number (allowed: %s)\n", programname, o->name, text, o->range);
    return 0;
  }
  if (v < o->lo || v > o->hi) {
    fprintf(err, "%s: %s: %s is out of range (allowed: %s)\n", programname, o->name, text, o->range);
    return 0;
  }
  *(double *)Field(run, o, offset) = v;
  return 1;
}

static void SetRunDefaults(BATCHRUN *run) {
  BATCHPICTURE picture = run->picture;
  memset(run, 0, sizeof(*run));
  run->picture = picture;
  run->cells = 10000;
  run->steps = -1;
  run->stallsteps = BATCH_STALLSTEPS;
  run->progress = -1;
  run->slicenormal.z = 1;  // the slicing form's start value
  run->pngwidth = 800;     // the window's first size
  run->pngheight = 600;
}

static int Given(const BATCHRUN *run, const char *name) {
  for (int k = 0; k < NBATCHOPTIONS; k++)
    if (strcmp(batchoptions[k].name, name) == 0) return run->given[k];
  return 0;
}

// Options that only make sense together, or not at all together.
static int CheckCombinations(const BATCHRUN *run, FILE *err) {
  if (Given(run, "--sample") && Given(run, "--stl")) {
    fprintf(err, "%s: --sample and --stl both give the constraint surface: use one of them\n", programname);
    return BATCH_USAGE;
  }
  if (run->walk == WALK_FAST && run->search != SEARCH_INDEX) {
    fprintf(err, "%s: --walk fast jumps where the index proves space free: it needs --search index\n",
            programname);
    return BATCH_USAGE;
  }
  const char *needslices[] = {"--slice-normal", "--slice-dir"};
  for (const char *name : needslices)
    if (Given(run, name) && !Given(run, "--slices")) {
      fprintf(err, "%s: %s needs --slices N (allowed: an integer from 2 to 2147483647)\n", programname, name);
      return BATCH_USAGE;
    }
  const char *needpng[] = {"--size", "--camera-rotate", "--aperture", "--fit"};
  for (const char *name : needpng)
    if (Given(run, name) && !Given(run, "--png")) {
      fprintf(err, "%s: %s needs --png PATH\n", programname, name);
      return BATCH_USAGE;
    }
  if (Given(run, "--png") && run->picture == NULL) {
    fprintf(err, "%s: --png: this program was built without offscreen drawing (OSMesa)\n", programname);
    return BATCH_USAGE;
  }
  return BATCH_OK;
}

// The arguments an option's value takes.
static int ValueCount(const BATCHOPTION *o) {
  if (o->kind == BOPT_FLAG || o->kind == BOPT_HELP) return 0;
  return o->kind == BOPT_PAIR ? 2 : o->kind == BOPT_TRANSFORM ? 3 : 1;
}

int ParseBatchOptions(int argc, char **argv, BATCHRUN *run, FILE *err) {
  SetRunDefaults(run);
  for (int i = 1; i < argc; i++) {
    const char *arg = argv[i];
    int row = -1;
    for (int k = 0; k < NBATCHOPTIONS && row < 0; k++)
      if (strcmp(arg, batchoptions[k].name) == 0 ||
          (batchoptions[k].alias && strcmp(arg, batchoptions[k].alias) == 0))
        row = k;
    if (row < 0) {
      fprintf(err, "%s: unknown option \"%s\" (see --help)\n", programname, arg);
      return BATCH_USAGE;
    }
    const BATCHOPTION *o = &batchoptions[row];
    int nvalues = ValueCount(o);
    if (i + nvalues >= argc) {
      fprintf(err, "%s: %s needs %s%s (allowed: %s)\n", programname, o->name,
              nvalues == 3 ? "three values " : nvalues == 2 ? "two values " : "a value ", o->args, o->range);
      return BATCH_USAGE;
    }
    switch (o->kind) {
      case BOPT_FLAG:
      case BOPT_HELP:
        *(int *)Field(run, o, o->offset) = o->flag;
        break;
      case BOPT_PATH: {
        const char *path = argv[++i];
        if (path[0] == '\0' || strlen(path) >= 256) {
          fprintf(err, "%s: %s: the path must hold 1 to 255 characters\n", programname, o->name);
          return BATCH_USAGE;
        }
        CopyName((char *)Field(run, o, o->offset), path, 256);
        break;
      }
      case BOPT_SEARCH:
      case BOPT_WALK: {
        static const struct {
          int kind;
          const char *word;
          int value;
        } words[] = {{BOPT_SEARCH, "index", SEARCH_INDEX},
                     {BOPT_SEARCH, "scan", SEARCH_SCAN},
                     {BOPT_WALK, "exact", WALK_EXACT},
                     {BOPT_WALK, "fast", WALK_FAST}};
        const char *how = argv[++i];
        int found = 0;
        for (const auto &w : words) {
          if (w.kind == o->kind && strcmp(how, w.word) == 0) {
            *(int *)Field(run, o, o->offset) = w.value;
            found = 1;
          }
        }
        if (!found) {
          fprintf(err, "%s: %s: \"%s\" is not allowed (allowed: %s)\n", programname, o->name, how, o->range);
          return BATCH_USAGE;
        }
        break;
      }
      case BOPT_PAIR:
        if (!StoreValue(run, o, o->offset, argv[++i], err)) return BATCH_USAGE;
        if (!StoreValue(run, o, o->offset2, argv[++i], err)) return BATCH_USAGE;
        break;
      case BOPT_SIZE:
        if (!StoreSize(run, o, argv[++i], err)) return BATCH_USAGE;
        break;
      case BOPT_TRIPLE:
        if (!StoreTriple(o, argv[++i], (XYZ *)Field(run, o, o->offset), err)) return BATCH_USAGE;
        break;
      case BOPT_TRANSFORM: {
        if (run->ntransforms >= BATCH_MAXTRANSFORMS) {
          fprintf(err, "%s: %s: at most %d transforms\n", programname, o->name, BATCH_MAXTRANSFORMS);
          return BATCH_USAGE;
        }
        BATCHTRANSFORM *t = &run->transforms[run->ntransforms];
        if (!StoreTriple(o, argv[++i], &t->scale, err)) return BATCH_USAGE;
        if (!StoreTriple(o, argv[++i], &t->shift, err)) return BATCH_USAGE;
        if (!StoreTriple(o, argv[++i], &t->rotate, err)) return BATCH_USAGE;
        run->ntransforms++;
        break;
      }
      default:
        if (!StoreValue(run, o, o->offset, argv[++i], err)) return BATCH_USAGE;
        break;
    }
    run->given[row] = 1;
  }
  return CheckCombinations(run, err);
}

void WriteBatchUsage(FILE *fp, const char *name) {
  fprintf(fp, "Usage: %s [options]\n", name);
  for (int k = 0; k < NBATCHOPTIONS; k++) {
    const BATCHOPTION *o = &batchoptions[k];
    char left[64];
    snprintf(left, sizeof(left), "%s%s%s%s%s", o->alias ? o->alias : "", o->alias ? ", " : "", o->name,
             o->args[0] ? " " : "", o->args);
    if (strlen(left) > 28) {
      fprintf(fp, "  %s\n", left);
      left[0] = '\0';
    }
    fprintf(fp, "  %-28s %s\n", left, o->help);
    // Paths and switches take anything; every other value names its range.
    if (o->kind != BOPT_PATH && o->kind != BOPT_FLAG && o->kind != BOPT_HELP)
      fprintf(fp, "  %-28s allowed: %s\n", "", o->range);
  }
  fprintf(fp, "Particle sources (--source):");
  for (int code = 1; code <= 17; code++)
    fprintf(fp, "%s %d %s", code > 1 ? "," : "", code, SourceTypeText(code, 0) + strlen("Source type: "));
  fprintf(fp, "\nRoot distributions (--root-distribution): 0 and below Spherical");
  for (int code = 1; code <= 9; code++) fprintf(fp, ", %d %s", code, RootDistributionName(code));
  fprintf(fp, "\n");
  fprintf(fp, "Sample surfaces:");
  for (int i = 0; i < nsamplesurfaces; i++)
    fprintf(fp, "%s %d %s", i ? "," : "", samplesurfaces[i].code, samplesurfaces[i].name);
  fprintf(fp, "\n");
  fprintf(fp,
          "After growth, in this order: the CSV, the slice files, the statistics, then the writers in the order\n"
          "listed above (--pov ... --summary); --pov ... --info exactly as the window's menu entry writes them.\n"
          "Exit status: 0 done; 1 a seed or STL file could not be read, an output cannot be created (checked\n"
          "before growth, nothing is written then), or a file could not be written (reported, the other files\n"
          "are still written); 2 a refused option or a run that can never grow, nothing written; 3 the run\n"
          "stalled (--stall-steps), every file written; 255 a malformed STL file or a slice file that cannot\n"
          "be created (the slice files before it stay written).\n"
          "With no output option the run says on standard output what it grew.\n");
}

int BatchOptionRole(const char *name, int *nvalues) {
  for (int k = 0; k < NBATCHOPTIONS; k++) {
    const BATCHOPTION *o = &batchoptions[k];
    if (strcmp(name, o->name) != 0 && (o->alias == NULL || strcmp(name, o->alias) != 0)) continue;
    *nvalues = ValueCount(o);
    return o->role;
  }
  return -1;
}

// [SECTION] Setting up: the settings, the surface, the roots, the outputs

// Copies the given growth settings over growthstate, as typing them into
// the settings form would.
static void ApplyBatchSettings(SIMULATION &sim, const BATCHRUN *run) {
  for (int k = 0; k < NBATCHOPTIONS; k++) {
    const BATCHOPTION *o = &batchoptions[k];
    if (!run->given[k] || o->target != BT_GROWTH) continue;
    const char *from = (const char *)&run->growth;
    char *to = (char *)&sim.growthstate;
    size_t size = (o->kind == BOPT_DOUBLE || o->kind == BOPT_PAIR) ? sizeof(double) : sizeof(int);
    memcpy(to + o->offset, from + o->offset, size);
    if (o->kind == BOPT_PAIR) memcpy(to + o->offset2, from + o->offset2, size);
  }
}

// A seed or STL file that could not be read: the program, the option, the
// file and the reason (the window's message box says it in three lines).
// errnum: errno after the read, named when the file could not be opened.
static void WriteFileMessage(FILE *err, const char *option, const char *path, const FILEMESSAGE *msg, int errnum) {
  fprintf(err, "%s: %s: cannot read \"%s\": %s", programname, option, path, msg->line2);
  if (strcmp(msg->line3, path) == 0 && errnum != 0) fprintf(err, " (%s)", strerror(errnum));
  fprintf(err, "\n");
}

// A run that can never reach its cell count would spin forever: refused
// before growth when that can be known, unless a step limit ends it anyway.
// Returns BATCH_OK or BATCH_USAGE after the message.
static int CheckReachable(SIMULATION &sim, const BATCHRUN *run, FILE *err) {
  const GROWTHSTATE &g = sim.growthstate;
  if (sim.ncells >= run->cells || run->steps >= 0) return BATCH_OK;
  if (sim.ncells == 0) {
    fprintf(err, "%s: no root is placed (--roots %d, --root-distribution %d): no cell can ever stick "
            "(give --steps N to run anyway)\n", programname, g.nroots, g.rootdistribution);
    return BATCH_USAGE;
  }
  // A root too far out for its distance (1e300 and beyond) leaves the
  // release sphere infinite: no particle comes back from it.
  if (!isfinite(g.radius)) {
    fprintf(err, "%s: the roots reach beyond any distance (radius %g): no cell can ever stick "
            "(give --steps N to run anyway)\n", programname, g.radius);
    return BATCH_USAGE;
  }
  // A particle starts on the release sphere, and no step moves it nearer to
  // or farther from the origin than a branch length plus the drift (the
  // swirl keeps its distance); a step beyond the sphere is refused, and a
  // new particle comes every GROWTH_LIFESPAN steps. A root that no particle
  // can come within a branch length of never grows.
  double bl = g.branchlength, b = g.bias * 0.01 * bl, release = g.radius + 2 * bl;
  double inner = release - GROWTH_LIFESPAN * (bl + b) - bl, outer = release + b + bl;
  double slack = 1e-9 * (fabs(release) + GROWTH_LIFESPAN * (bl + b));
  int reachable = 0;
  double nearest = -1;
  for (int i = 0; i < sim.ncells && !reachable; i++) {
    double d = Modulus(sim.cells[i].p);
    reachable = d > inner - slack && d < outer + slack;
    double off = d < inner ? inner - d : d - outer;
    if (nearest < 0 || off < nearest) nearest = off;
  }
  if (!reachable) {
    fprintf(err, "%s: every root lies out of reach: particles start at distance %g from the origin and can touch "
            "only cells between %g and %g from it, the nearest root lies %g beyond that: no cell can ever stick "
            "(give --steps N to run anyway)\n", programname, release, inner > 0 ? inner : 0, outer, nearest);
    return BATCH_USAGE;
  }
  // With association the next cell must join root class ncells mod nroots,
  // and no cell of that class exists while ncells < nroots.
  if (g.associate && sim.ncells < g.nroots) {
    fprintf(err,
            "%s: --associate with %d roots but %d placed: the next cell must join root class %d, "
            "which has no cell (give --steps N to run anyway)\n",
            programname, g.nroots, sim.ncells, sim.ncells);
    return BATCH_USAGE;
  }
  return BATCH_OK;
}

// The drawing state the picture and the writers' colours depend on.
static void ApplyDrawingOptions(SIMULATION &sim, const BATCHRUN *run) {
  if (Given(run, "--dla-draw")) sim.options.dladrawmode = run->dladrawmode;
  if (Given(run, "--stl-draw")) sim.options.stldrawmode = run->stldrawmode;
  if (run->noextras) sim.options.showextras = 0;
}

// The surface (STL file or sample, then the transforms) and the roots, as
// the window would make them. Returns BATCH_OK or the status of a file that
// could not be read, after its message.
static int SetUpGrowth(SIMULATION &sim, const BATCHRUN *run, FILE *err) {
  FILEMESSAGE msg;
  memset(&msg, 0, sizeof(msg));
  errno = 0;
  if (run->stlfile[0] && !ReadSTLFile(sim, run->stlfile, &msg)) {
    WriteFileMessage(err, "--stl", run->stlfile, &msg, errno);
    return msg.fatal ? BATCH_FATAL : BATCH_FILEERROR;
  }
  if (Given(run, "--sample")) MakeSampleSurface(sim, run->sample);
  for (int t = 0; t < run->ntransforms; t++) {
    // The transform form's Apply: the transform, then one more preparation.
    TransformSTL(sim, run->transforms[t].scale, run->transforms[t].shift, run->transforms[t].rotate);
    UpdateSTL(sim);
  }
  if (run->seedfile[0]) {
    errno = 0;
    if (!ReadRootsFile(sim, run->seedfile, &msg)) {
      WriteFileMessage(err, "--seed-file", run->seedfile, &msg, errno);
      return BATCH_FILEERROR;
    }
    return BATCH_OK;
  }
  InitialiseGrowth(sim);
  ResetSeeds(sim);
  const GROWTHSTATE &g = sim.growthstate;
  if (Given(run, "--roots") && g.nroots != 1 && g.rootdistribution == ROOT_ORIGIN)
    fprintf(err, "%s: --root-distribution 1 (Origin) places one root, not the %d --roots asks for\n", programname,
            g.nroots);
  return BATCH_OK;
}

int StartBatchRun(SIMULATION &sim, const BATCHRUN *run, FILE *err) {
  ResetProgram(sim);  // the window's state after start-up, camera home included
  sim.options.debug = run->debug;
  ApplyDrawingOptions(sim, run);
  sim.growthsearch = run->search;
  sim.growthwalk = run->walk;
  ApplyBatchSettings(sim, run);
  int status = SetUpGrowth(sim, run, err);
  return status == BATCH_OK ? CheckReachable(sim, run, err) : status;
}

// [SECTION] The writers

static int SaveCellsCSVFile(SIMULATION &sim, const char *path);

const BATCHWRITER batchwriters[] = {
    {"--csv", offsetof(BATCHRUN, csvfile), 0, 0, SaveCellsCSVFile, ".csv"},
    {"--pov", offsetof(BATCHRUN, povfile), MODEL_POVRAY, MODEL_SEGMENTS, NULL, ".pov"},
    {"--pov-sweep", offsetof(BATCHRUN, povsweepfile), MODEL_POVRAY, MODEL_SWEEP, NULL, NULL},
    {"--geom", offsetof(BATCHRUN, geomfile), MODEL_GEOM, MODEL_SEGMENTS, NULL, ".geom"},
    {"--vrml", offsetof(BATCHRUN, vrmlfile), MODEL_VRML, MODEL_SEGMENTS, NULL, ".wrl"},
    {"--vrml-caps", offsetof(BATCHRUN, vrmlcapsfile), MODEL_VRML, MODEL_CAPPED, NULL, NULL},
    {"--dxf-points", offsetof(BATCHRUN, dxfpointsfile), MODEL_DXFPOINTS, MODEL_SEGMENTS, NULL, ".dxf"},
    {"--geom-points", offsetof(BATCHRUN, geompointsfile), MODEL_GEOMPOINTS, MODEL_SEGMENTS, NULL, NULL},
    {"--stl-out", offsetof(BATCHRUN, stloutfile), MODEL_STL, MODEL_SWEEP, NULL, ".stl"},
    {"--info", offsetof(BATCHRUN, infofile), 0, 0, SaveInformationFile, ".txt"},
    {"--gltf", offsetof(BATCHRUN, gltffile), 0, 0, SaveGLTFFile, ".gltf .glb"},
    {"--ply", offsetof(BATCHRUN, plyfile), 0, 0, SavePLYFile, ".ply"},
    {"--vtp", offsetof(BATCHRUN, vtpfile), 0, 0, SaveVTPFile, ".vtp"},
    {"--summary", offsetof(BATCHRUN, summaryfile), 0, 0, SaveSummaryFile, ".json"},
};
const int nbatchwriters = (int)(sizeof(batchwriters) / sizeof(batchwriters[0]));

void WriteCellsCSV(SIMULATION &sim, FILE *fp) {
  fprintf(fp, "index,parent,x,y,z,weight\n");
  for (int i = 0; i < sim.ncells; i++) {
    const CELL &c = sim.cells[i];
    fprintf(fp, "%d,%d,%.17g,%.17g,%.17g,%.17g\n", i, c.parent, c.p.x, c.p.y, c.p.z, c.weight);
  }
}

// Only the table's entry: WriteBatchFile writes the CSV itself, so that a
// full disk reads "cannot write" there.
static int SaveCellsCSVFile(SIMULATION &sim, const char *path) { return 0; }

// Does path end in one of the space-separated endings (any case)?
static int HasEnding(const char *path, const char *endings) {
  size_t n = strlen(path);
  for (const char *e = endings; e && *e;) {
    size_t len = strcspn(e, " ");
    if (len <= n && strncasecmp(path + n - len, e, len) == 0) return 1;
    e += len + (e[len] == ' ');
  }
  return 0;
}

const BATCHWRITER *FindBatchWriter(const char *option, const char *path) {
  for (const BATCHWRITER &w : batchwriters)
    if (option ? strcmp(option, w.option) == 0 : HasEnding(path, w.extensions)) return &w;
  return NULL;
}

// The window's save commands are silent when a file cannot be opened; a
// batch user asked for the file, so it is reported.
int WriteBatchFile(SIMULATION &sim, const BATCHWRITER *w, const char *path, FILE *err) {
  errno = 0;
  if (w->save == SaveCellsCSVFile) {
    FILE *csv = fopen(path, "w");
    if (csv == NULL) {
      fprintf(err, "%s: --csv: cannot create \"%s\": %s\n", programname, path, strerror(errno));
      return BATCH_FILEERROR;
    }
    WriteCellsCSV(sim, csv);
    if (CloseWritten(csv)) return BATCH_OK;
    fprintf(err, "%s: --csv: cannot write \"%s\": %s\n", programname, path, strerror(errno));
    return BATCH_FILEERROR;
  }
  if (w->save ? w->save(sim, path) : SaveModelFile(sim, path, w->format, w->variant)) return BATCH_OK;
  fprintf(err, "%s: %s: cannot create \"%s\": %s\n", programname, w->option, path,
          errno ? strerror(errno) : "cannot be opened");
  return BATCH_FILEERROR;
}

const char *BatchOutputPath(const BATCHRUN *run, const BATCHWRITER *w) { return (const char *)run + w->offset; }

// 0 with errno set when path cannot be created or written: a directory, a
// file without write permission, a folder that is missing or closed. Makes
// nothing, so a run refused before growth leaves no empty files behind.
static int CanCreate(const char *path) {
  struct stat st;
  if (stat(path, &st) == 0) {
    if (S_ISDIR(st.st_mode)) {
      errno = EISDIR;
      return 0;
    }
    return access(path, W_OK) == 0;
  }
  if (errno != ENOENT) return 0;
  char dir[256];
  CopyName(dir, path, sizeof(dir));
  char *slash = strrchr(dir, '/');
  if (slash == NULL) return access(".", W_OK | X_OK) == 0;
  slash[slash == dir ? 1 : 0] = '\0';
  return access(dir, W_OK | X_OK) == 0;
}

int CheckBatchOutputs(const BATCHRUN *run, FILE *err) {
  const char *slicedir = run->slicedir[0] ? run->slicedir : ".";
  if (run->nslices > 0 && access(slicedir, W_OK | X_OK) != 0) {
    fprintf(err, "%s: --slice-dir: cannot write into \"%s\": %s\n", programname, slicedir, strerror(errno));
    return BATCH_FILEERROR;
  }
  // The CSV, the picture, then the writers.
  struct {
    const char *option, *path;
  } outputs[sizeof(batchwriters) / sizeof(batchwriters[0]) + 1] = {{"--csv", run->csvfile}, {"--png", run->pngfile}};
  int n = 2;
  for (int k = 1; k < nbatchwriters; k++)
    outputs[n++] = {batchwriters[k].option, BatchOutputPath(run, &batchwriters[k])};
  for (int k = 0; k < n; k++) {
    if (outputs[k].path[0] == '\0' || CanCreate(outputs[k].path)) continue;
    fprintf(err, "%s: %s: cannot create \"%s\": %s\n", programname, outputs[k].option, outputs[k].path,
            strerror(errno));
    return BATCH_FILEERROR;
  }
  return BATCH_OK;
}

int WriteBatchSlices(SIMULATION &sim, const BATCHRUN *run) {
  if (run->nslices <= 0) return BATCH_OK;
  sim.options.nslices = run->nslices;
  sim.options.slicenormal = run->slicenormal;
  // DoSlice has written its message to standard error; the window exits here too.
  return DoSliceIn(sim, run->slicedir, sim.options.nslices, SliceNormalForCut(sim)) ? BATCH_OK : BATCH_FATAL;
}

int WriteBatchPicture(SIMULATION &sim, const BATCHRUN *run, FILE *err) {
  if (run->pngfile[0] == '\0') return BATCH_OK;
  sim.camera.screenwidth = run->pngwidth;
  sim.camera.screenheight = run->pngheight;
  if (Given(run, "--aperture")) sim.camera.aperture = run->aperture;
  const XYZ &r = run->camerarotate;
  if (Given(run, "--camera-rotate")) RotateCamera(sim, r.x * DTOR, r.y * DTOR, r.z * DTOR);
  if (run->fit) FitCamera(sim);
  return run->picture(sim, run->pngfile, run->pngwidth, run->pngheight, err) ? BATCH_OK : BATCH_FILEERROR;
}

// After growth, in this order: the CSV, the slice files, the statistics,
// the writers, the picture. A file that cannot be written is reported and
// the others are still written; a slice file that cannot be created ends
// the run.
static int FinishBatchRun(SIMULATION &sim, const BATCHRUN *run, FILE *err) {
  int status = BATCH_OK;
  if (run->csvfile[0] && WriteBatchFile(sim, &batchwriters[0], run->csvfile, err) != BATCH_OK)
    status = BATCH_FILEERROR;
  if (WriteBatchSlices(sim, run) != BATCH_OK) return BATCH_FATAL;
  if (run->stats) RunStatisticsToCompletion(sim);
  for (int k = 1; k < nbatchwriters; k++) {
    const char *path = BatchOutputPath(run, &batchwriters[k]);
    if (path[0] && WriteBatchFile(sim, &batchwriters[k], path, err) != BATCH_OK) status = BATCH_FILEERROR;
  }
  if (WriteBatchPicture(sim, run, err) != BATCH_OK) status = BATCH_FILEERROR;
  return status;
}

// [SECTION] Growth

int GrowAggregate(SIMULATION &sim, BATCHGROWTH *g) {
  double called = -1;
  long long step = 0, grew = 0;  // grew: the step of the last new cell
  int count = sim.ncells;
  long long vetoes[NVETOES];
  memcpy(vetoes, sim.growthvetoes, sizeof(vetoes));
  int status = GROWN_DONE;
  // The log of the summary counts every growth of the simulation; its clock
  // runs only while it grows.
  if (sim.growthlog.next == 0)
    StartGrowthLog(sim);
  else
    sim.growthlog.start = GetRunTime() - sim.growthlog.growthseconds;
  long long logged = sim.growthlog.steps;
  // The storage of the cells asked for at once: grown by doubling it would
  // end up to half unused, and the index's arrays per cell follow it.
  if (g->cells > 0) ReserveCellRoom(sim, g->cells);
  while ((g->cells <= 0 || sim.ncells < g->cells) && (g->steps < 0 || step < g->steps)) {
    // A run of steps ends at the latest with a stuck particle, so the cell
    // count is seen after each one; it never passes the step limit.
    long long left = g->steps < 0 ? 1 << 20 : g->steps - step;
    long long before = step;
    step += IterateSystemSteps(sim, left < (1 << 20) ? left : 1 << 20);
    LogGrowth(sim, logged + step);
    if (sim.ncells != count) {
      count = sim.ncells;
      grew = step;
      memcpy(vetoes, sim.growthvetoes, sizeof(vetoes));
    } else if (step - grew >= g->stallsteps) {
      status = GROWN_STALLED;
      break;
    }
    if (g->progress && step / 1000 != before / 1000) {
      double now = GetRunTime();
      if (now - called >= BATCH_PROGRESSPERIOD) {
        called = now;
        if (!g->progress(sim, step, g->context)) {
          status = GROWN_STOPPED;
          break;
        }
      }
    }
  }
  g->taken = step;
  g->idle = step - grew;
  for (int k = 0; k < NVETOES; k++) g->refused[k] = sim.growthvetoes[k] - vetoes[k];
  return status;
}

void WriteStallMessage(SIMULATION &sim, const BATCHGROWTH *g, FILE *err) {
  // The veto that refused the most sticks since the last new cell is the
  // likely cause; with none, no particle came within reach at all.
  static const char *const causes[NVETOES] = {
      "the intersection range (--intersect-range) refused every stick",
      "the constraint surface refused every stick that would cross it",
      "the constraint surface refused every stick near a gap between its facets"};
  int most = 0;
  for (int k = 1; k < NVETOES; k++)
    if (g->refused[k] > g->refused[most]) most = k;
  fprintf(err, "%s: no new cell in %lld steps, at %d cells: ", programname, g->idle, sim.ncells);
  if (g->refused[most] > 0)
    fprintf(err, "%s (%lld times)", causes[most], g->refused[most]);
  else
    fprintf(err, "no particle stuck: the roots may lie too far from where particles are released (distance %g)",
            sim.growthstate.radius + 2 * sim.growthstate.branchlength);
  fprintf(err, "; the files asked for are written (--stall-steps N waits longer)\n");
}

// [SECTION] The progress bar

void FormatProgress(char *line, int size, double fraction, int cells, double rate, double secondsleft) {
  const int width = 40;
  if (!(fraction > 0)) fraction = 0;
  if (fraction > 1) fraction = 1;
  int n = (int)(fraction * width);
  char left[32] = "--";
  if (secondsleft >= 0 && secondsleft < 1e7) {
    long t = (long)(secondsleft + 0.5);
    if (t >= 3600)
      snprintf(left, sizeof(left), "%ld:%02ld:%02ld", t / 3600, t / 60 % 60, t % 60);
    else
      snprintf(left, sizeof(left), "%ld:%02ld", t / 60, t % 60);
  }
  snprintf(line, size, "[%.*s%*s] %3d%% %d cells, %.0f cells/s, %s left", n,
           "########################################", width - n, "", (int)(fraction * 100), cells, rate, left);
}

int BatchShowsProgress(const BATCHRUN *run) { return run->progress < 0 ? isatty(2) : run->progress; }

void StartBatchBar(BATCHBAR *bar, const BATCHRUN *run, int cells, FILE *err) {
  bar->run = run;
  bar->err = err;
  bar->startcells = cells;
  bar->start = GetRunTime();
  bar->shown = -1;
}

// The share of the run done: of the cells, or of the step limit when that
// comes first. The time left assumes the rate so far.
void ShowBatchBar(BATCHBAR *bar, int cells, long long step, int last, int done) {
  double now = GetRunTime();
  if (!last && now - bar->shown <= 0.1) return;
  bar->shown = now;
  const BATCHRUN *run = bar->run;
  double seconds = now - bar->start;
  double f = run->cells > 0 ? (double)cells / run->cells : 1;
  if (run->steps > 0 && (double)step / run->steps > f) f = (double)step / run->steps;
  double rate = seconds > 0 ? (cells - bar->startcells) / seconds : 0;
  double left = done ? 0 : f > 0 && seconds > 0 ? seconds * (1 - f) / f : -1;
  char line[160];
  FormatProgress(line, sizeof(line), f, cells, rate, left);
  fprintf(bar->err, "\r%s%s", line, done ? "\n" : "");
  fflush(bar->err);
}

static int BarProgress(SIMULATION &sim, long long steps, void *bar) {
  ShowBatchBar((BATCHBAR *)bar, sim.ncells, steps, 0, 0);
  return 1;
}

// [SECTION] The run

void SayWhatGrew(SIMULATION &sim, const BATCHRUN *run, long long steps) {
  for (int k = 0; k < NBATCHOPTIONS; k++)
    if (run->given[k] && (batchoptions[k].kind == BOPT_PATH && batchoptions[k].target == BT_RUN &&
                          strcmp(batchoptions[k].name, "--seed-file") != 0 && strcmp(batchoptions[k].name, "--stl") != 0))
      return;
  if (run->nslices > 0) return;
  printf("%d cells in %lld steps: radius %g, radius of gyration %g, dimension %g (from the radius of gyration)\n",
         sim.ncells, steps, sim.growthstate.radius, RadiusOfGyration(sim, sim.ncells), GyrationDimension(sim));
}

int RunBatch(SIMULATION &sim, BATCHRUN *run, FILE *err) {
  int status = StartBatchRun(sim, run, err);
  if (status == BATCH_OK) status = CheckBatchOutputs(run, err);
  if (status != BATCH_OK) return status;

  int progress = BatchShowsProgress(run);
  BATCHBAR bar;
  StartBatchBar(&bar, run, sim.ncells, err);
  BATCHGROWTH g = {};
  g.cells = run->cells;
  g.steps = run->steps;
  g.stallsteps = run->stallsteps;
  g.progress = progress ? BarProgress : NULL;
  g.context = &bar;
  int grown = GrowAggregate(sim, &g);
  if (progress) ShowBatchBar(&bar, sim.ncells, g.taken, 1, grown == GROWN_DONE);
  if (grown == GROWN_STALLED) {
    if (progress) fprintf(err, "\n");
    WriteStallMessage(sim, &g, err);
  }
  SettleWeights(sim);  // the fast walk's deferred weights

  status = FinishBatchRun(sim, run, err);
  if (status == BATCH_FATAL) return status;
  SayWhatGrew(sim, run, g.taken);
  return status == BATCH_OK && grown == GROWN_STALLED ? BATCH_STALLED : status;
}
