// A first log from C++: vintra_hello [LOG_FILE]
#include <VintraModule/VintraModule.h>

#include <cstdio>

int main(int argc, char** argv) {
  LogConfigRecEx config = {};
  std::snprintf(config.log_file_name, sizeof config.log_file_name, "%s",
                argc > 1 ? argv[1] : "/tmp/hello.log");
  std::snprintf(config.log_format, sizeof config.log_format, "%%D%%T%%E%%F%%L%%N");
  config.log_mode = Log_Mode_Simple;
  config.log_level = Log_Level_Debug;
  config.max_file_size = 1024 * 1024;

  LOGHANDLE log = null_log_handle;
  if (const sint32 code = LOG_MODULE_INIT_New_Ex(&config, &log)) return code;
  LOG_INFO(VINTRA_HERE(log), "listening on port %d", 8080);
  LOG_WARN(VINTRA_HERE(log), "disk %s is %.1f%% full", "/var", 93.5);
  LOG_TRACE(log, "below the threshold: not written");
  LOG_MODULE_DESTORY(&log);
  return 0;
}
