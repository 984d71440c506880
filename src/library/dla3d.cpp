// include/dla3d/dla3d.h over the core: the settings go through dla3d-batch's
// option table, the growth through its loop, the files through its writers.
#include "dla3d/dla3d.h"

#include <limits.h>  // INT_MAX
#include <stdio.h>   // open_memstream()
#include <stdlib.h>  // free()

#include <exception>

#include "app/records.h"
#include "export/ply.h"
#include "export/statistics.h"
#include "export/summary.h"
#include "growth/index.h"
#include "library/internal.h"

namespace dla3d {

// What f writes to the stream it is given, without the last line end.
static std::string Captured(const std::function<void(FILE *)> &f) {
  char *buf = NULL;
  size_t len = 0;
  FILE *fp = open_memstream(&buf, &len);
  if (fp == NULL) return "dla3d: out of memory";
  f(fp);
  fclose(fp);
  std::string s(buf, len);
  free(buf);
  if (!s.empty() && s.back() == '\n') s.pop_back();
  return s;
}

// The arguments of one setting, as dla3d-batch's command line holds them;
// "" and no words when the setting is refused (*message then says why).
static std::vector<std::string> SettingWords(const std::string &name, const std::string &value, std::string *message) {
  std::string option = "--" + name;
  int nvalues = 0, role = BatchOptionRole(option.c_str(), &nvalues);
  std::vector<std::string> words = {option};
  const char *refusal = role == BR_LIMIT     ? "is a limit of the growth, not a setting (give it to Grow)"
                        : role == BR_OUTPUT  ? "is an output, not a setting (Write writes files after growth, "
                                               "Statistics runs the statistics)"
                        : role == BR_PROGRAM ? "belongs to dla3d-batch's command line, not to a simulation"
                                             : NULL;
  if (refusal) {
    *message = "dla3d: \"" + name + "\" " + refusal;
    return {};
  }
  if (role < 0 || nvalues == 1) {  // an unknown name: the parser says so
    if (role >= 0) words.push_back(value);
    return words;
  }
  if (nvalues == 0) {
    if (value.empty()) return words;
    *message = "dla3d: \"" + name + "\" is a switch: its value is \"\", not \"" + value + "\"";
    return {};
  }
  // START END, or three triples: one argument a word. Too many words or too
  // few: the parser names what the option takes, given one word too few.
  std::vector<std::string> values;
  for (size_t at = value.find_first_not_of(" \t"); at != std::string::npos;) {
    size_t end = value.find_first_of(" \t", at);
    values.push_back(value.substr(at, end - at));
    at = end == std::string::npos ? end : value.find_first_not_of(" \t", end);
  }
  if ((int)values.size() != nvalues) values.resize(nvalues - 1);
  words.insert(words.end(), values.begin(), values.end());
  return words;
}

// ParseBatchOptions on the words after the program's name.
static int Parse(std::vector<std::string> words, BATCHRUN *run, std::string *message) {
  words.insert(words.begin(), "dla3d-batch");
  std::vector<char *> argv;
  for (std::string &w : words) argv.push_back(&w[0]);
  argv.push_back(NULL);
  int status = BATCH_USAGE;
  run->picture = NULL;
  *message = Captured([&](FILE *err) { status = ParseBatchOptions((int)words.size(), argv.data(), run, err); });
  return status;
}

Simulation *CreateFromRun(const BATCHRUN *run, FILE *err, int *status) {
  Simulation *sim = new Simulation();
  sim->run = *run;
  *status = StartBatchRun(sim->core, run, err);
  if (*status == BATCH_OK) return sim;
  delete sim;
  return NULL;
}

Simulation *Create(const Settings &settings, std::string *error) {
  std::string message;
  std::vector<std::string> words;
  BATCHRUN run;
  for (const auto &s : settings) {
    std::vector<std::string> w = SettingWords(s.first, s.second, &message);
    // A setting refused alone is named alone, whatever follows it.
    if (w.empty() || Parse(w, &run, &message) != BATCH_OK) {
      if (error) *error = message;
      return NULL;
    }
    words.insert(words.end(), w.begin(), w.end());
  }
  Simulation *sim = NULL;
  if (Parse(words, &run, &message) == BATCH_OK) {
    // A simulation is made to grow: one that never can is refused now.
    run.cells = INT_MAX;
    run.steps = -1;
    int status;
    message = Captured([&](FILE *err) { sim = CreateFromRun(&run, err, &status); });
  }
  if (error) *error = message;
  return sim;
}

void Destroy(Simulation *sim) { delete sim; }

struct Hook {
  const Progress *progress;
  std::exception_ptr thrown;
};

static int CallProgress(SIMULATION &core, long long steps, void *context) {
  Hook *hook = (Hook *)context;
  try {
    return (*hook->progress)(core.ncells, steps) ? 1 : 0;
  } catch (...) {
    hook->thrown = std::current_exception();
    return 0;
  }
}

int Grow(Simulation *sim, int cells, long long steps, const Progress &progress) {
  Hook hook = {&progress, nullptr};
  BATCHGROWTH &g = sim->last;
  g = BATCHGROWTH();
  g.cells = cells > 0 ? cells : 0;
  g.steps = steps >= 0 ? steps : -1;
  g.stallsteps = sim->run.stallsteps;
  g.progress = progress ? CallProgress : NULL;
  g.context = &hook;
  int grown = GrowAggregate(sim->core, &g);
  SettleWeights(sim->core);  // the fast walk's deferred weights
  if (hook.thrown) std::rethrow_exception(hook.thrown);
  return grown == GROWN_STALLED ? GROW_STALLED : grown == GROWN_STOPPED ? GROW_STOPPED : GROW_DONE;
}

int CellCount(const Simulation *sim) { return sim->core.ncells; }

long long StepCount(const Simulation *sim) { return sim->core.growthlog.steps; }

size_t CellStride(void) { return sizeof(CELL); }

const double *Positions(const Simulation *sim) { return sim->core.cells.empty() ? NULL : &sim->core.cells[0].p.x; }

const double *Weights(const Simulation *sim) { return sim->core.cells.empty() ? NULL : &sim->core.cells[0].weight; }

const int *Parents(const Simulation *sim) { return sim->core.cells.empty() ? NULL : &sim->core.cells[0].parent; }

std::vector<int> Roots(const Simulation *sim) {
  std::vector<int> root;
  CellRoots(const_cast<SIMULATION &>(sim->core), &root);
  return root;
}

void Statistics(Simulation *sim) { RunStatisticsToCompletion(sim->core); }

std::string Summary(const Simulation *sim) {
  // The summary reads the records only; its writer takes them writable.
  return Captured([&](FILE *fp) { WriteSummary(const_cast<SIMULATION &>(sim->core), fp); }) + "\n";
}

static const BATCHWRITER *FindWriter(const std::string &path, const std::string &format) {
  return format.empty() ? FindBatchWriter(NULL, path.c_str()) : FindBatchWriter(("--" + format).c_str(), NULL);
}

std::string Writer(const std::string &path, const std::string &format) {
  const BATCHWRITER *w = FindWriter(path, format);
  return w ? w->option + 2 : "";
}

std::string Write(Simulation *sim, const std::string &path, const std::string &format) {
  const BATCHWRITER *w = FindWriter(path, format);
  if (w == NULL) {
    std::string names;
    for (int k = 0; k < nbatchwriters; k++) names += (k ? ", " : "") + std::string(batchwriters[k].option + 2);
    return format.empty() ? "dla3d: \"" + path + "\": no writer takes this ending (give a format: " + names + ")"
                          : "dla3d: no writer \"" + format + "\" (allowed: " + names + ")";
  }
  if (path.empty() || path.size() > 255)  // dla3d-batch's limit, and the writers'
    return "dla3d-batch: " + std::string(w->option) + ": the path must hold 1 to 255 characters";
  return Captured([&](FILE *err) { WriteBatchFile(sim->core, w, path.c_str(), err); });
}

const char *Version(void) {
  static const std::string version = [] {
    char text[32];
    snprintf(text, sizeof(text), "%g", versionid / 100.0);
    return std::string(text);
  }();
  return version.c_str();
}

}  // namespace dla3d
