#include "batch/batch.h"

#include <errno.h>   // strtol() overflow
#include <limits.h>  // INT_MAX
#include <math.h>    // isfinite()
#include <stddef.h>  // offsetof()
#include <stdlib.h>  // strtod(), strtol()
#include <string.h>  // strcmp(), memset()
#include <unistd.h>  // isatty()

#include "growth/growth.h"
#include "growth/index.h"
#include "surface/stl.h"

// [SECTION] The option table: every option is one row here. A row writes
// either a growth setting (into run->growth, copied to growthstate when the
// run starts) or a field of the run itself.

enum { BOPT_INT, BOPT_LONG, BOPT_DOUBLE, BOPT_PAIR, BOPT_FLAG, BOPT_PATH, BOPT_HELP, BOPT_SEARCH };
enum { BT_GROWTH, BT_RUN };

struct BATCHOPTION {
  const char *name;
  const char *alias;  // a second spelling, or NULL
  const char *args;   // value names for the usage text
  int kind;
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
  {"--seed", NULL, "N", BOPT_INT, G(seed), 0, 0, INT_MAX, 0, "an integer from 0 to 2147483647",
   "seed of both random number generators (12345)"},
  {"--bias", NULL, "PCT", BOPT_DOUBLE, G(bias), 0, 0, 1, 0, "0 to 1",
   "drift, percent of the branch length (0.1)"},
  {"--branch-length", NULL, "L", BOPT_DOUBLE, G(branchlength), 0, 0.01, NOLIMIT, 0,
   "0.01 or more", "step and branch length (1)"},
  {"--stickiness", NULL, "PCT", BOPT_DOUBLE, G(stickiness), 0, 1, 100, 0, "1 to 100",
   "chance in percent that a touching particle sticks (100)"},
  {"--rotation", NULL, "DEG", BOPT_DOUBLE, G(rotation), 0, -5, 5, 0, "-5 to 5",
   "swirl about the z axis per step, degrees (0)"},
  {"--thickness", NULL, "START END", BOPT_PAIR, G(thickstart), offsetof(GROWTHSTATE, thickend), 0,
   NOLIMIT, 0, "0 or more", "branch thickness at the largest weight, and at weight 0 (0.4 0.01)"},
  {"--roots", NULL, "N", BOPT_INT, G(nroots), 0, 0, INT_MAX, 0, "an integer from 0 to 2147483647",
   "number of roots (1)"},
  {"--root-range", NULL, "R", BOPT_DOUBLE, G(rootrange), 0, -NOLIMIT, NOLIMIT, 0, "any number",
   "size of the region the roots are placed in (10)"},
  {"--root-distribution", NULL, "CODE", BOPT_INT, G(rootdistribution), 0, INT_MIN, INT_MAX, 0,
   "any integer", "1 origin, 2 spherical, 3-5 random in the x/y/z plane, 6-8 ring (1)"},
  {"--associate", NULL, "", BOPT_FLAG, G(associate), 0, 0, 0, 1, "", "seed association on"},
  {"--intersect-range", NULL, "PCT", BOPT_DOUBLE, G(intersectrange), 0, 0, 90, 0, "0 to 90",
   "smallest distance between branches, percent of the branch length (0)"},
  {"--source", NULL, "CODE", BOPT_INT, G(sourcetype), 0, 1, 17, 0, "an integer from 1 to 17",
   "particle source, as the menu numbers them (1)"},
  {"--seed-file", NULL, "PATH", BOPT_PATH, R(seedfile), 0, 0, 0, 0, "a path",
   "roots from a seed file, as \"Read seeds\" does"},
  {"--stl", NULL, "PATH", BOPT_PATH, R(stlfile), 0, 0, 0, 0, "a path",
   "constraint surface from an STL file"},
  {"--cells", NULL, "N", BOPT_INT, R(cells), 0, 1, INT_MAX, 0, "an integer from 1 to 2147483647",
   "grow until the aggregate holds N cells (10000)"},
  {"--steps", NULL, "N", BOPT_LONG, R(steps), 0, 0, 9.2e18, 0, "an integer from 0",
   "or stop after N growth steps, whichever comes first"},
  {"--csv", NULL, "PATH", BOPT_PATH, R(csvfile), 0, 0, 0, 0, "a path",
   "write the aggregate: index,parent,x,y,z,weight"},
  {"--progress", NULL, "", BOPT_FLAG, R(progress), 0, 0, 0, 1, "", "a progress bar on standard error"},
  {"--no-progress", NULL, "", BOPT_FLAG, R(progress), 0, 0, 0, 0, "",
   "no progress bar (default when standard error is not a terminal)"},
  {"--search", NULL, "HOW", BOPT_SEARCH, R(search), 0, 0, 0, 0, "index or scan",
   "how a step finds the cell it touches: index, or scan every cell (index)"},
  {"-d", NULL, "", BOPT_FLAG, R(debug), 0, 0, 0, 1, "", "diagnostics on standard error"},
  {"--help", "-h", "", BOPT_HELP, R(help), 0, 0, 0, 1, "", "this text"},
};

#define NBATCHOPTIONS ((int)(sizeof(batchoptions) / sizeof(batchoptions[0])))
static_assert(sizeof(batchoptions) / sizeof(batchoptions[0]) <= BATCH_MAXOPTIONS,
              "BATCHRUN.given is too small");

static const char *programname = "dla3d-batch";

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

static int StoreValue(BATCHRUN *run, const BATCHOPTION *o, size_t offset, const char *text, FILE *err) {
  if (o->kind == BOPT_INT || o->kind == BOPT_LONG) {
    long long v;
    if (!ParseInteger(text, &v)) {
      fprintf(err, "%s: %s: \"%s\" is not an integer (allowed: %s)\n", programname, o->name, text, o->range);
      return 0;
    }
    if ((double)v < o->lo || (double)v > o->hi) {
      fprintf(err, "%s: %s: %s is out of range (allowed: %s)\n", programname, o->name, text, o->range);
      return 0;
    }
    if (o->kind == BOPT_INT)
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
  memset(run, 0, sizeof(*run));
  run->cells = 10000;
  run->steps = -1;
  run->progress = -1;
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
    int nvalues = o->kind == BOPT_PAIR ? 2 : (o->kind == BOPT_FLAG || o->kind == BOPT_HELP) ? 0 : 1;
    if (i + nvalues >= argc) {
      fprintf(err, "%s: %s needs %s%s (allowed: %s)\n", programname, o->name, nvalues == 2 ? "two values " : "a value ",
              o->args, o->range);
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
      case BOPT_SEARCH: {
        const char *how = argv[++i];
        if (strcmp(how, "index") == 0)
          run->search = SEARCH_INDEX;
        else if (strcmp(how, "scan") == 0)
          run->search = SEARCH_SCAN;
        else {
          fprintf(err, "%s: %s: \"%s\" is not allowed (allowed: %s)\n", programname, o->name, how, o->range);
          return BATCH_USAGE;
        }
        break;
      }
      case BOPT_PAIR:
        if (!StoreValue(run, o, o->offset, argv[++i], err)) return BATCH_USAGE;
        if (!StoreValue(run, o, o->offset2, argv[++i], err)) return BATCH_USAGE;
        break;
      default:
        if (!StoreValue(run, o, o->offset, argv[++i], err)) return BATCH_USAGE;
        break;
    }
    run->given[row] = 1;
  }
  return BATCH_OK;
}

void WriteBatchUsage(FILE *fp, const char *name) {
  fprintf(fp, "Usage: %s [options]\n", name);
  for (int k = 0; k < NBATCHOPTIONS; k++) {
    const BATCHOPTION *o = &batchoptions[k];
    char left[64];
    snprintf(left, sizeof(left), "%s%s%s%s%s", o->alias ? o->alias : "", o->alias ? ", " : "", o->name,
             o->args[0] ? " " : "", o->args);
    fprintf(fp, "  %-28s %s\n", left, o->help);
  }
}

// [SECTION] The run

// Copies the given growth settings over growthstate, as typing them into
// the settings form would.
static void ApplyBatchSettings(const BATCHRUN *run) {
  for (int k = 0; k < NBATCHOPTIONS; k++) {
    const BATCHOPTION *o = &batchoptions[k];
    if (!run->given[k] || o->target != BT_GROWTH) continue;
    const char *from = (const char *)&run->growth;
    char *to = (char *)&growthstate;
    size_t size = (o->kind == BOPT_DOUBLE || o->kind == BOPT_PAIR) ? sizeof(double) : sizeof(int);
    memcpy(to + o->offset, from + o->offset, size);
    if (o->kind == BOPT_PAIR) memcpy(to + o->offset2, from + o->offset2, size);
  }
}

static void WriteMessage(FILE *err, const FILEMESSAGE *msg) {
  fprintf(err, "%s\n%s\n%s\n", msg->line1, msg->line2, msg->line3);
}

void WriteCellsCSV(FILE *fp) {
  fprintf(fp, "index,parent,x,y,z,weight\n");
  for (int i = 0; i < ncells; i++) {
    const CELL &c = cells[i];
    fprintf(fp, "%d,%d,%.17g,%.17g,%.17g,%.17g\n", i, c.parent, c.p.x, c.p.y, c.p.z, c.weight);
  }
}

static void ShowProgress(FILE *err, const BATCHRUN *run, long long step, int done) {
  const int width = 40;
  double f = run->cells > 0 ? (double)ncells / run->cells : 1;
  if (run->steps > 0 && (double)step / run->steps > f) f = (double)step / run->steps;
  if (f > 1) f = 1;
  int n = (int)(f * width);
  fprintf(err, "\r[%.*s%*s] %d cells, %lld steps", n, "########################################", width - n, "",
          ncells, step);
  if (done) fprintf(err, "\n");
  fflush(err);
}

int RunBatch(BATCHRUN *run, FILE *err) {
  InitialiseGrowth();  // start-up's call: the first one applies the defaults
  SetOptionDefaults();
  options.debug = run->debug;
  growthsearch = run->search;
  ApplyBatchSettings(run);

  FILEMESSAGE msg;
  memset(&msg, 0, sizeof(msg));
  if (run->stlfile[0] && !ReadSTLFile(run->stlfile, &msg)) {
    WriteMessage(err, &msg);
    return msg.fatal ? BATCH_FATAL : BATCH_FILEERROR;
  }
  if (run->seedfile[0]) {
    if (!ReadRootsFile(run->seedfile, &msg)) {
      WriteMessage(err, &msg);
      return BATCH_FILEERROR;
    }
  } else {
    InitialiseGrowth();
    ResetSeeds();
  }

  int progress = run->progress < 0 ? isatty(2) : run->progress;
  double shown = -1;
  long long step = 0;
  while (ncells < run->cells && (run->steps < 0 || step < run->steps)) {
    IterateSystem();
    step++;
    if (progress && step % 1000 == 0) {
      double now = GetRunTime();
      if (now - shown > 0.1) {
        ShowProgress(err, run, step, 0);
        shown = now;
      }
    }
  }
  if (progress) ShowProgress(err, run, step, 1);

  if (run->csvfile[0]) {
    FILE *fp = fopen(run->csvfile, "w");
    if (fp == NULL) {
      fprintf(err, "%s: cannot write %s\n", programname, run->csvfile);
      return BATCH_FILEERROR;
    }
    WriteCellsCSV(fp);
    fclose(fp);
  }
  return BATCH_OK;
}
