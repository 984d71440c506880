// Shared pieces of the fuzz targets: the input as a read-only stream, and a
// check that ends the run with a clear message (libFuzzer saves the input).
#ifndef DLA_FUZZ_COMMON_H
#define DLA_FUZZ_COMMON_H

#include <stdint.h>
#include <stdio.h>   // fmemopen()
#include <stdlib.h>  // abort()

#include <vector>

// fmemopen wants a writable buffer that outlives the stream.
inline FILE *OpenInput(const uint8_t *data, size_t size, std::vector<char> *copy) {
  copy->assign(data, data + size);
  copy->push_back('\0');  // never handed to the stream, keeps data() valid for size 0
  FILE *fp = fmemopen(copy->data(), size, "r");
  if (fp == NULL) {
    fprintf(stderr, "fmemopen failed for %zu bytes\n", size);
    abort();
  }
  return fp;
}

#define FUZZ_CHECK(cond)                                                    \
  do {                                                                      \
    if (!(cond)) {                                                          \
      fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond); \
      abort();                                                              \
    }                                                                       \
  } while (0)

#endif
