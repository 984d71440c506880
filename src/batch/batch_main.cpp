// dla3d-batch: the growth engine without a display.
#include <stdio.h>

#include "batch/batch.h"

int main(int argc, char **argv) {
  static BATCHRUN run;
  int status = ParseBatchOptions(argc, argv, &run, stderr);
  if (status != BATCH_OK) return status;
  if (run.help) {
    WriteBatchUsage(stdout, argv[0]);
    return BATCH_OK;
  }
  return RunBatch(&run, stderr);
}
