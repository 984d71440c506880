// ReadLine with a buffer of lmax + 1 bytes where lmax < 1: the fuzzer found
// it wrote two bytes into a one-byte buffer.
#include <gtest/gtest.h>
#include <stdio.h>

#include "lib/vector.h"

TEST(ReadLineHostile, NoRoomStoresNothingAndStillReadsLines) {
  for (int lmax = -2; lmax <= 0; lmax++) {
    char text[] = "abc\ndef\r\nx";
    FILE *fp = fmemopen(text, sizeof(text) - 1, "r");
    char buf[4] = {'P', 'Q', 'R', 'S'};  // only buf[0] belongs to ReadLine
    EXPECT_EQ(ReadLine(fp, buf, lmax), 1);
    EXPECT_EQ(buf[0], '\0');
    EXPECT_EQ(buf[1], 'Q') << "wrote past a buffer of lmax + 1 bytes, lmax " << lmax;
    EXPECT_EQ(ftell(fp), 4);  // "abc\n" consumed: one call is still one line
    EXPECT_EQ(ReadLine(fp, buf, lmax), 1);  // def, CR
    EXPECT_EQ(ReadLine(fp, buf, lmax), 1);  // the empty line before LF
    EXPECT_EQ(ReadLine(fp, buf, lmax), 0);  // x, then end of file
    EXPECT_EQ(buf[1], 'Q');
    EXPECT_EQ(ftell(fp), 10);
    fclose(fp);
  }
}

TEST(ReadLineHostile, OneCharacterLinesAndNulBytes) {
  char text[] = "ab\0c\n";
  FILE *fp = fmemopen(text, 5, "r");
  char buf[3] = {'P', 'Q', 'R'};
  EXPECT_EQ(ReadLine(fp, buf, 1), 1);
  EXPECT_EQ(buf[0], 'a');
  EXPECT_EQ(buf[1], '\0');
  EXPECT_EQ(buf[2], 'R');
  EXPECT_EQ(ReadLine(fp, buf, 1), 1);
  EXPECT_EQ(buf[0], 'b');
  EXPECT_EQ(ReadLine(fp, buf, 1), 1);  // a NUL byte is stored like any other
  EXPECT_EQ(buf[0], '\0');
  EXPECT_EQ(ftell(fp), 3);
  fclose(fp);
}
