// The same from C++: consumer LOG_FILE prints the library's folder.
#include <VintraModule/VintraModule.h>
#include <vintra.h>

#include <cstdio>

int main(int argc, char** argv) {
  LogConfigRecEx config = {};
  if (argc != 2 || std::snprintf(config.log_file_name, sizeof config.log_file_name, "%s", argv[1]) < 0)
    return 2;
  config.log_mode = Log_Mode_Simple;
  config.log_level = Log_Level_Info;
  config.max_file_size = 1000;
  config.log_encrypt = 1;
  config.log_format[0] = '%';
  config.log_format[1] = 'E';
  LOGHANDLE log = null_log_handle;
  if (LOG_MODULE_INIT_New_Ex(&config, &log) != 0) return 1;
  const sint32 written = LOG_INFO(log, "from %s", "C++");
  LOG_MODULE_DESTORY(&log);
  char folder[VINTRA_PATH_SIZE] = "";
  std::printf("%s\n", GetDLLDir(folder));
  return written;
}
