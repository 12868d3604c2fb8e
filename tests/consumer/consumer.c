/* A program of somebody else, in C and, from consumer.cpp, in C++: uses what is installed, and holds the
 * published records to their layout. consumer LOG_FILE prints the library's folder. */
#include <VintraModule/VintraModule.h>
#include <stddef.h>
#include <stdio.h>
#include <vintra.h>

#ifndef LANGUAGE
#define LANGUAGE "C"
#endif
#define EXPECT(name, condition) typedef char name[(condition) ? 1 : -1]
#define IS_AT(field, offset) (offsetof(RECORD, field) == (offset))
#define SHARED_FIELDS_ARE_AT(start)                                                                \
  (IS_AT(log_file_name, start) && IS_AT(log_mode, start + 260) && IS_AT(log_level, start + 264) && \
   IS_AT(max_file_size, start + 268) && IS_AT(max_backup_index, start + 272) &&                    \
   IS_AT(file_flush_size, start + 276) && IS_AT(log_time_span, start + 280) &&                     \
   IS_AT(log_format, start + 284))

#define RECORD LogConfigRec
EXPECT(plain_record, SHARED_FIELDS_ARE_AT(0) && sizeof(RECORD) == 348);
#undef RECORD
#define RECORD LogConfigRecEx
EXPECT(extended_record, SHARED_FIELDS_ARE_AT(4) && IS_AT(size_LogConfigRecEx, 0) &&
                            IS_AT(sysconf_format, 352) && IS_AT(PidandTid, 416) && IS_AT(module_name, 480) &&
                            IS_AT(log_encrypt, 544) && sizeof(RECORD) == 548);
EXPECT(version, VINTRA_VERSION_MAJOR == 1 && VINTRA_VERSION_MINOR >= 0 && VINTRA_VERSION_PATCH >= 0);

int main(int argc, char** argv) {
  LogConfigRec config = {{0}, Log_Mode_Simple, Log_Level_Info, 1000, 0, 0, 0, "%E"};
  LOGHANDLE log = null_log_handle;
  char folder[VINTRA_PATH_SIZE] = "";
  int written;

  if (argc != 2 || snprintf(config.log_file_name, sizeof config.log_file_name, "%s", argv[1]) < 0) return 2;
  if (LOG_MODULE_INIT_Ex(&config, &log) != 0) return 1;
  written = LOG_INFO(log, "from %s", LANGUAGE);
  LOG_MODULE_DESTORY(&log);
  printf("%s\n", GetDLLDir(folder));
  return written;
}
