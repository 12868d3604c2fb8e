/*
 * Feeds standard input line by line into a log, each line a record.
 *
 *   vintra_log_lines LOG_FILE plain|scrambled MAX_FILE_SIZE
 *
 * LOG_FILE is absolute, or is placed beside the library. Prints the number of records written.
 */
#include <VintraModule/VintraModule.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(int argc, char** argv) {
  LogConfigRecEx config;
  LOGHANDLE log = null_log_handle;
  char* line = NULL;
  size_t size = 0;
  ssize_t length;
  unsigned long records = 0;
  sint32 code;
  int failed;

  if (argc != 4) {
    fprintf(stderr, "usage: %s LOG_FILE plain|scrambled MAX_FILE_SIZE\n", argv[0]);
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
  config.log_mode = Log_Mode_Simple;
  config.log_level = Log_Level_Info;
  config.max_file_size = (uint32)strtoul(argv[3], NULL, 10);
  config.file_flush_size = 65536;
  config.log_encrypt = strcmp(argv[2], "scrambled") == 0;
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
