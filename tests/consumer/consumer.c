/* A program of somebody else: uses what is installed, and holds the published records to their layout.
 * consumer LOG_FILE prints the library's folder. */
#include <stddef.h>
#include <stdio.h>
#include <vintra.h>

#define EXPECT(name, condition) typedef char name[(condition) ? 1 : -1]

/* Each field behind the one before, with nothing between. */
#define FOLLOWS(record, field, before) \
  EXPECT(record##_##field, offsetof(record, field) == offsetof(record, before) + sizeof(((record*)0)->before))
#define SHARED_FIELDS(record)                         \
  FOLLOWS(record, log_mode, log_file_name);           \
  FOLLOWS(record, log_level, log_mode);               \
  FOLLOWS(record, max_file_size, log_level);          \
  FOLLOWS(record, max_backup_index, max_file_size);   \
  FOLLOWS(record, file_flush_size, max_backup_index); \
  FOLLOWS(record, log_time_span, file_flush_size);    \
  FOLLOWS(record, log_format, log_time_span)

SHARED_FIELDS(LogConfigRec);
SHARED_FIELDS(LogConfigRecEx);
FOLLOWS(LogConfigRecEx, log_file_name, size_LogConfigRecEx);
FOLLOWS(LogConfigRecEx, sysconf_format, log_format);
FOLLOWS(LogConfigRecEx, PidandTid, sysconf_format);
FOLLOWS(LogConfigRecEx, module_name, PidandTid);
FOLLOWS(LogConfigRecEx, log_encrypt, module_name);
EXPECT(plain_name, offsetof(LogConfigRec, log_file_name) == 0 && offsetof(LogConfigRec, log_mode) == 260);
EXPECT(plain_record, offsetof(LogConfigRec, log_format) == 284 && sizeof(LogConfigRec) == 348);
EXPECT(extended_record, offsetof(LogConfigRecEx, log_encrypt) == 544 && sizeof(LogConfigRecEx) == 548);
EXPECT(version, VINTRA_VERSION_MAJOR == 1 && VINTRA_VERSION_MINOR >= 0 && VINTRA_VERSION_PATCH >= 0);

int main(int argc, char** argv) {
  LogConfigRec config = {{0}, Log_Mode_Simple, Log_Level_Info, 1000, 0, 0, 0, "%E"};
  LOGHANDLE log = null_log_handle;
  char folder[VINTRA_PATH_SIZE] = "";
  int written;

  if (argc != 2 || snprintf(config.log_file_name, sizeof config.log_file_name, "%s", argv[1]) < 0) return 2;
  if (LOG_MODULE_INIT_Ex(&config, &log) != 0) return 1;
  written = LOG_INFO(log, "from %s", "C");
  LOG_MODULE_DESTORY(&log);
  printf("%s\n", GetDLLDir(folder));
  return written;
}
