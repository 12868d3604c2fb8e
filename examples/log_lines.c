/*
 * Feeds standard input line by line into a log, each line a record of the level Info.
 *
 *   vintra_log_lines INI_FILE SECTION
 *
 * The section says what the log is like (see demo.ini). Prints the number of records written.
 */
#include <VintraModule/VintraModule.h>
#include <stdio.h>
#include <stdlib.h>

int main(int argc, char** argv) {
  LOGHANDLE log = null_log_handle;
  char* line = NULL;
  size_t size = 0;
  ssize_t length;
  unsigned long records = 0;
  sint32 code;
  int failed;

  if (argc != 3) {
    fprintf(stderr, "usage: %s INI_FILE SECTION\n", argv[0]);
    return 2;
  }
  code = LOG_MODULE_INIT(argv[1], argv[2], &log);
  if (code != 0) {
    fprintf(stderr, "%s: the log [%s] could not be opened (code %d)\n", argv[1], argv[2], (int)code);
    return 1;
  }
  if (LOG_LEVEL(log) > Log_Level_Info) { /* as it is without the file, the section or the key */
    fprintf(stderr, "%s: the level of [%s] drops every line\n", argv[1], argv[2]);
    LOG_MODULE_DESTORY(&log);
    return 1;
  }

  while (code == 0 && (length = getline(&line, &size, stdin)) >= 0) {
    if (length > 0 && line[length - 1] == '\n') line[length - 1] = '\0';
    code = LOG_INFO(log, "%s", line);
    if (code == 0) ++records;
  }
  failed = code != 0 || ferror(stdin) || LOG_MSG_FLUSH(log) != 0;
  if (code != 0) fprintf(stderr, "%s: a record of [%s] was refused (code %d)\n", argv[1], argv[2], (int)code);
  free(line);
  LOG_MODULE_DESTORY(&log);
  printf("%lu\n", records);
  return failed ? 1 : 0;
}
