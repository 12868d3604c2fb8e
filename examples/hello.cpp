// A first log from C++: vintra_hello [LOG_FILE]
#include <VintraModule/VintraModule.h>

#include <cstdio>

int main(int argc, char** argv) {
  LogConfigRecEx config = {};
  std::snprintf(config.log_file_name, sizeof config.log_file_name, "%s",
                argc > 1 ? argv[1] : "/tmp/hello.log");
  std::snprintf(config.log_format, sizeof config.log_format, "%%D%%T%%E%%F%%L%%N");
  config.log_mode = Log_Mode_Simple;
  config.log_level = Log_Level_Trace;
  config.max_file_size = 1024 * 1024;
  // The first records: the system, and the process and thread.
  std::snprintf(config.sysconf_format, sizeof config.sysconf_format, "%%O%%C%%M");
  std::snprintf(config.PidandTid, sizeof config.PidandTid, "%%P%%T");

  LOGHANDLE log = null_log_handle;
  if (const sint32 code = LOG_MODULE_INIT_New_Ex(&config, &log)) return code;
  LOG_INFO(VINTRA_HERE(log), "listening on port %d", 8080);
  LOG_WARN(VINTRA_HERE(log), "disk %s is %.1f%% full", "/var", 93.5);
  LOG_MODULE_DESTORY(&log);
  return 0;
}
