// dla3d-batch as a user of the library: its command line parsed, a
// simulation created, grown with the progress bar, the files written, in
// the order and with the messages and exit statuses of RunBatch.
#include "library/internal.h"

namespace dla3d {

// A message of Write on standard error: BATCH_OK when there is none.
static int Report(const std::string &message) {
  if (message.empty()) return BATCH_OK;
  fprintf(stderr, "%s\n", message.c_str());
  return BATCH_FILEERROR;
}

// After growth: the CSV, the slice files, the statistics, the writers, the
// picture. A slice file that cannot be created ends the run.
static int WriteOutputs(Simulation *sim, const BATCHRUN &run) {
  int status = BATCH_OK;
  const BATCHWRITER &csv = batchwriters[0];
  if (run.csvfile[0] && Report(Write(sim, run.csvfile, csv.option + 2)) != BATCH_OK) status = BATCH_FILEERROR;
  if (WriteBatchSlices(sim->core, &run) != BATCH_OK) return BATCH_FATAL;
  if (run.stats) Statistics(sim);
  for (int k = 1; k < nbatchwriters; k++) {
    const char *path = BatchOutputPath(&run, &batchwriters[k]);
    if (path[0] && Report(Write(sim, path, batchwriters[k].option + 2)) != BATCH_OK) status = BATCH_FILEERROR;
  }
  if (WriteBatchPicture(sim->core, &run, stderr) != BATCH_OK) status = BATCH_FILEERROR;
  return status;
}

static int Run(Simulation *sim, const BATCHRUN &run) {
  int status = CheckBatchOutputs(&run, stderr);
  if (status != BATCH_OK) return status;
  int progress = BatchShowsProgress(&run);
  BATCHBAR bar;
  StartBatchBar(&bar, &run, CellCount(sim), stderr);
  Progress show;
  if (progress)
    show = [&bar](int cells, long long steps) {
      ShowBatchBar(&bar, cells, steps, 0, 0);
      return true;
    };
  int grown = Grow(sim, run.cells, run.steps, show);
  if (progress) ShowBatchBar(&bar, CellCount(sim), sim->last.taken, 1, grown == GROW_DONE);
  if (grown == GROW_STALLED) {
    if (progress) fprintf(stderr, "\n");
    WriteStallMessage(sim->core, &sim->last, stderr);
  }
  status = WriteOutputs(sim, run);
  if (status == BATCH_FATAL) return status;
  SayWhatGrew(sim->core, &run, sim->last.taken);
  return status == BATCH_OK && grown == GROW_STALLED ? BATCH_STALLED : status;
}

int BatchProgram(int argc, char **argv, BATCHPICTURE picture) {
  BATCHRUN run;
  run.picture = picture;
  int status = ParseBatchOptions(argc, argv, &run, stderr);
  if (status != BATCH_OK) return status;
  if (run.help) {
    WriteBatchUsage(stdout, argv[0]);
    return BATCH_OK;
  }
  Simulation *sim = CreateFromRun(&run, stderr, &status);
  if (sim == NULL) return status;
  status = Run(sim, run);
  Destroy(sim);
  return status;
}

}  // namespace dla3d
