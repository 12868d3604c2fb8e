/*
 * Turns a scrambled log into text, or a text into a scrambled file.
 *
 *   vintra_convert OLD_FILE NEW_FILE
 */
#include <VintraModule/VintraModule.h>
#include <errno.h>
#include <stdio.h>

int main(int argc, char** argv) {
  sint32 code;

  if (argc != 3) {
    fprintf(stderr, "usage: %s OLD_FILE NEW_FILE\n", argv[0]);
    return 2;
  }
  errno = 0; /* tells of a write that failed, which the code does not */
  code = FileConvert(argv[1], argv[2]);
  if (code != 0) {
    fprintf(stderr, "%s: could not be converted to %s (code %d)\n", argv[1], argv[2], (int)code);
    return 1;
  }
  if (errno != 0) {
    perror(argv[2]);
    return 1;
  }
  return 0;
}
