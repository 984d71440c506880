// ReadLine on arbitrary bytes with a buffer of exactly lmax + 1 bytes (so
// AddressSanitizer sees one byte too many), compared call by call with a
// plain model of the line rules: CR and LF end a line and are not stored,
// lmax characters end it early, end of file returns 0.
#include <stdlib.h>
#include <string.h>

#include "fuzz_common.h"
#include "lib/vector.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
  if (size < 2) return 0;
  int lmax = (int)((data[0] | (data[1] << 8)) % 1010) - 8;  // -8 .. 1001
  data += 2;
  size -= 2;

  std::vector<char> copy;
  FILE *fp = OpenInput(data, size, &copy);
  char *s = (char *)malloc(lmax > 0 ? lmax + 1 : 1);
  size_t pos = 0;
  for (;;) {
    int got = ReadLine(fp, s, lmax);

    int want = 0;
    size_t n = 0;
    while (pos < size) {
      uint8_t c = data[pos++];
      if (c == '\n' || c == '\r') {
        want = 1;
        break;
      }
      if (lmax < 1) continue;
      FUZZ_CHECK(s[n] == (char)c);
      n++;
      if ((int)n >= lmax) {
        want = 1;
        break;
      }
    }
    FUZZ_CHECK(got == want);
    FUZZ_CHECK(s[n] == '\0');
    FUZZ_CHECK((long)pos == ftell(fp));
    if (!got) break;
  }
  FUZZ_CHECK(pos == size);
  free(s);
  fclose(fp);
  return 0;
}
