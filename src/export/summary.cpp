#include "export/summary.h"

#include <math.h>    // log(), pow(), sqrt(), isfinite()
#include <string.h>  // strlen()

#include "app/simulation.h"
#include "export/report.h"
#include "surface/stl.h"
#include "view/overlay.h"

// The k-th checkpoint: GROWTHLOG_FIRST times 10^(k/10), rounded.
static int Checkpoint(int k) { return (int)floor(GROWTHLOG_FIRST * pow(10, k / 10.0) + 0.5); }

void StartGrowthLog(SIMULATION &sim) {
  sim.growthlog = GROWTHLOG();
  sim.growthlog.start = GetRunTime();
  sim.growthlog.next = GROWTHLOG_FIRST;
}

void LogGrowth(SIMULATION &sim, long long steps) {
  sim.growthlog.steps = steps;
  sim.growthlog.growthseconds = GetRunTime() - sim.growthlog.start;
  if (sim.ncells < sim.growthlog.next) return;
  sim.growthlog.n.push_back(sim.ncells);
  sim.growthlog.rg.push_back(RadiusOfGyration(sim, sim.ncells));
  int k = 0;
  while (Checkpoint(k) <= sim.ncells) k++;
  sim.growthlog.next = Checkpoint(k);
}

double RadiusOfGyration(SIMULATION &sim, int n) {
  if (n < 1) return 0;
  // Two passes: the centroid first, so that an aggregate far from the origin
  // loses no digits.
  XYZ c = {0, 0, 0};
  for (int i = 0; i < n; i++) c.x += sim.cells[i].p.x, c.y += sim.cells[i].p.y, c.z += sim.cells[i].p.z;
  c.x /= n, c.y /= n, c.z /= n;
  double sum = 0;
  for (int i = 0; i < n; i++) {
    double dx = sim.cells[i].p.x - c.x, dy = sim.cells[i].p.y - c.y, dz = sim.cells[i].p.z - c.z;
    sum += dx * dx + dy * dy + dz * dz;
  }
  return sqrt(sum / n);
}

double FitSlope(const double *x, const double *y, int n) {
  if (n < 2) return 0;
  double mx = 0, my = 0;
  for (int i = 0; i < n; i++) mx += x[i], my += y[i];
  mx /= n, my /= n;
  double sxy = 0, sxx = 0;
  for (int i = 0; i < n; i++) sxy += (x[i] - mx) * (y[i] - my), sxx += (x[i] - mx) * (x[i] - mx);
  return sxx > 0 ? sxy / sxx : 0;
}

double GyrationDimension(SIMULATION &sim) {
  // Rg grows as N^(1/D): D is the inverse slope of log Rg against log N.
  const GROWTHLOG &g = sim.growthlog;
  std::vector<double> x, y;
  for (size_t k = 0; k < g.n.size(); k++)
    if (g.rg[k] > 0) x.push_back(log((double)g.n[k])), y.push_back(log(g.rg[k]));
  double slope = x.size() >= 2 ? FitSlope(x.data(), y.data(), (int)x.size()) : 0;
  return slope > 0 ? 1 / slope : 0;
}

// [SECTION] a small JSON writer: data numbers with every digit, no NaN

static void Number(FILE *fp, double v) {
  if (isfinite(v))
    fprintf(fp, "%.17g", v);
  else
    fprintf(fp, "null");
}

static void String(FILE *fp, const char *s) {
  fputc('"', fp);
  for (; *s; s++) {
    unsigned char c = (unsigned char)*s;
    if (c == '"' || c == '\\')
      fprintf(fp, "\\%c", c);
    else if (c < 0x20)
      fprintf(fp, "\\u%04x", c);
    else
      fputc(c, fp);
  }
  fputc('"', fp);
}

static void Key(FILE *fp, const char *key, int indent) {
  fprintf(fp, "%*s", indent, "");
  String(fp, key);
  fprintf(fp, ": ");
}

// A fitted dimension, null when there was nothing to fit.
static void Dimension(FILE *fp, double d) {
  if (d > 0 && isfinite(d))
    Number(fp, d);
  else
    fprintf(fp, "null");
}

static void WriteSettings(SIMULATION &sim, FILE *fp) {
  const GROWTHSTATE &g = sim.growthstate;
  const char *source = SourceTypeText(g.sourcetype, 0) + strlen("Source type: ");
  fprintf(fp, "  \"settings\": {\n");
  fprintf(fp, "    \"seed\": %d,\n", g.seed);
  Key(fp, "bias", 4), Number(fp, g.bias), fprintf(fp, ",\n");
  Key(fp, "branchlength", 4), Number(fp, g.branchlength), fprintf(fp, ",\n");
  Key(fp, "stickiness", 4), Number(fp, g.stickiness), fprintf(fp, ",\n");
  Key(fp, "rotation", 4), Number(fp, g.rotation), fprintf(fp, ",\n");
  Key(fp, "thickstart", 4), Number(fp, g.thickstart), fprintf(fp, ",\n");
  Key(fp, "thickend", 4), Number(fp, g.thickend), fprintf(fp, ",\n");
  fprintf(fp, "    \"nroots\": %d,\n", g.nroots);
  Key(fp, "rootrange", 4), Number(fp, g.rootrange), fprintf(fp, ",\n");
  fprintf(fp, "    \"rootdistribution\": %d,\n", g.rootdistribution);
  Key(fp, "rootname", 4), String(fp, g.rootname), fprintf(fp, ",\n");
  fprintf(fp, "    \"associate\": %s,\n", g.associate ? "true" : "false");
  Key(fp, "intersectrange", 4), Number(fp, g.intersectrange), fprintf(fp, ",\n");
  fprintf(fp, "    \"sourcetype\": %d,\n", g.sourcetype);
  Key(fp, "sourcename", 4), String(fp, source), fprintf(fp, ",\n");
  Key(fp, "stlname", 4), String(fp, g.stlname), fprintf(fp, ",\n");
  fprintf(fp, "    \"nstltri\": %d\n", sim.nstltri);
  fprintf(fp, "  }\n");
}

// The statistics of --stats (the report's figures), or nulls when none ran.
static void WriteStatistics(SIMULATION &sim, FILE *fp) {
  if (sim.stats.timestep < 1) {
    fprintf(fp, "  \"statistics_timestep\": null,\n  \"branch_distribution\": null,\n");
    fprintf(fp, "  \"box_counts\": null,\n  \"dimension_boxcount\": null,\n");
    return;
  }
  fprintf(fp, "  \"statistics_timestep\": %d,\n", sim.stats.timestep);
  fprintf(fp, "  \"branch_distribution\": [");
  for (int k = 0; k < 10; k++) fprintf(fp, "%s%d", k ? ", " : "", sim.stats.branchcount[k]);
  fprintf(fp, "],\n");
  // The levels the report lists; the slope of log N against log(1/size).
  std::vector<double> x, y;
  fprintf(fp, "  \"box_counts\": [");
  for (int i = 0; i < 10; i++) {
    if (!(sim.stats.boxcount[i] > 0 && sim.stats.boxsize[i] > 0)) continue;
    fprintf(fp, "%s{\"size\": ", x.empty() ? "" : ", ");
    Number(fp, sim.stats.boxsize[i]);
    fprintf(fp, ", \"n\": %d}", sim.stats.boxcount[i]);
    x.push_back(log(1 / sim.stats.boxsize[i]));
    y.push_back(log((double)sim.stats.boxcount[i]));
  }
  fprintf(fp, "],\n");
  Key(fp, "dimension_boxcount", 2);
  Dimension(fp, x.size() >= 2 ? FitSlope(x.data(), y.data(), (int)x.size()) : 0);
  fprintf(fp, ",\n");
}

int WriteSummary(SIMULATION &sim, FILE *fp) {
  const GROWTHLOG &g = sim.growthlog;
  fprintf(fp, "{\n");
  fprintf(fp, "  \"program\": \"dla3d\",\n");
  fprintf(fp, "  \"version\": %g,\n", versionid / 100.0);
  fprintf(fp, "  \"cells\": %d,\n", sim.ncells);
  fprintf(fp, "  \"steps\": %lld,\n", g.steps);
  Key(fp, "radius", 2), Number(fp, sim.growthstate.radius), fprintf(fp, ",\n");
  Key(fp, "radius_of_gyration", 2), Number(fp, RadiusOfGyration(sim, sim.ncells)), fprintf(fp, ",\n");
  fprintf(fp, "  \"gyration_checkpoints\": [");
  for (size_t k = 0; k < g.n.size(); k++) {
    fprintf(fp, "%s{\"cells\": %d, \"radius_of_gyration\": ", k ? ", " : "", g.n[k]);
    Number(fp, g.rg[k]);
    fprintf(fp, "}");
  }
  fprintf(fp, "],\n");
  Key(fp, "dimension_gyration", 2), Dimension(fp, GyrationDimension(sim)), fprintf(fp, ",\n");
  WriteStatistics(sim, fp);
  fprintf(fp, "  \"wall_seconds\": {\"growth\": ");
  Number(fp, g.growthseconds);
  fprintf(fp, ", \"total\": ");
  Number(fp, GetRunTime() - g.start);
  fprintf(fp, "},\n");
  WriteSettings(sim, fp);
  fprintf(fp, "}\n");
  return fflush(fp) == 0 && !ferror(fp);
}

int SaveSummaryFile(SIMULATION &sim, const char *path) {
  if (path == NULL || path[0] == '\0') return 0;
  FILE *fp = fopen(path, "w");
  if (fp == NULL) return 0;
  int ok = WriteSummary(sim, fp);
  return fclose(fp) == 0 && ok;
}
