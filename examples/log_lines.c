/*
 * Feeds standard input line by line into a log, each line a record.
 *
 *   vintra_log_lines LOG_FILE simple|rollback|date plain|scrambled MAX_FILE_SIZE [FILES [DAYS]]
 *
 * LOG_FILE is absolute, or is placed beside the library. FILES is the number of files of a ring or day, DAYS
 * how long the date mode keeps its files; both are 0, without end, unless given. Prints the number of records
 * written.
 */
#include <VintraModule/VintraModule.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char* const kModes[] = {"simple", "rollback", "date"}; /* Log_Mode_Simple and the next two */

/* 0 for another word, which start-up refuses. */
static LogMode ModeOf(const char* word) {
  int i;
  for (i = 0; i < 3; ++i) {
    if (strcmp(word, kModes[i]) == 0) return (LogMode)(Log_Mode_Simple + i);
  }
  return (LogMode)0;
}

int main(int argc, char** argv) {
  LogConfigRecEx config;
  LOGHANDLE log = null_log_handle;
  char* line = NULL;
  size_t size = 0;
  ssize_t length;
  unsigned long records = 0;
  sint32 code;
  int failed;

  if (argc < 5 || argc > 7) {
    fprintf(stderr, "usage: %s LOG_FILE simple|rollback|date plain|scrambled MAX_FILE_SIZE [FILES [DAYS]]\n",
            argv[0]);
    return 2;
  }
  if (strlen(argv[1]) >= VINTRA_PATH_SIZE) {
    fprintf(stderr, "%s: the name has more than %d characters\n", argv[1], VINTRA_PATH_SIZE - 1);
    return 2;
  }

  memset(&config, 0, sizeof config);
  snprintf(config.log_file_name, sizeof config.log_file_name, "%s", argv[1]);
  snprintf(config.log_format, sizeof config.log_format, "%%D%%T%%E%%N");
  snprintf(config.module_name, sizeof config.module_name, "lines");
  config.log_mode = ModeOf(argv[2]);
  config.log_level = Log_Level_Info;
  config.max_file_size = (uint32)strtoul(argv[4], NULL, 10);
  if (argc > 5) config.max_backup_index = (uint32)strtoul(argv[5], NULL, 10);
  if (argc > 6) config.log_time_span = (uint32)strtoul(argv[6], NULL, 10);
  config.file_flush_size = 65536;
  config.log_encrypt = strcmp(argv[3], "scrambled") == 0;
  code = LOG_MODULE_INIT_New_Ex(&config, &log);
  if (code != 0) {
    fprintf(stderr, "%s: the log could not be opened (code %d)\n", argv[1], (int)code);
    return 1;
  }

  while (code == 0 && (length = getline(&line, &size, stdin)) >= 0) {
    if (length > 0 && line[length - 1] == '\n') line[length - 1] = '\0';
    code = LOG_INFO(log, "%s", line);
    if (code == 0) ++records;
  }
  failed = code != 0 || ferror(stdin) || LOG_MSG_FLUSH(log) != 0;
  if (code != 0) fprintf(stderr, "%s: a record was refused (code %d)\n", argv[1], (int)code);
  free(line);
  LOG_MODULE_DESTORY(&log);
  printf("%lu\n", records);
  return failed ? 1 : 0;
}
