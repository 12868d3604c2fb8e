// Many threads write through one handle, and no record is torn or lost: vintra_threads [LOG_FILE]
#include <VintraModule/VintraModule.h>

#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

int main(int argc, char** argv) {
  constexpr int kThreads = 8;
  constexpr int kRecords = 1000;  // of each thread

  LogConfigRecEx config = {};
  std::snprintf(config.log_file_name, sizeof config.log_file_name, "%s",
                argc > 1 ? argv[1] : "/tmp/threads.log");
  std::snprintf(config.log_format, sizeof config.log_format, "%%D%%T%%E%%N");
  std::snprintf(config.module_name, sizeof config.module_name, "worker");
  config.log_mode = Log_Mode_Simple;
  config.log_level = Log_Level_Info;
  config.max_file_size = 64 * 1024 * 1024;
  config.file_flush_size = 65536;

  LOGHANDLE log = null_log_handle;
  if (const sint32 code = LOG_MODULE_INIT_New_Ex(&config, &log)) {
    std::fprintf(stderr, "%s: could not be opened (code %d)\n", config.log_file_name, code);
    return 1;
  }

  std::atomic<int> written(0);
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([log, thread, &written] {  // a copy of the handle names the same log
      for (int record = 0; record < kRecords; ++record) {
        if (LOG_INFO(log, "thread %d record %d", thread, record) == 0) ++written;
      }
    });
  }
  // No thread may use a handle that is being destroyed. Destroying flushes too, but returns no code.
  for (std::thread& thread : threads) thread.join();
  const sint32 code = LOG_MSG_FLUSH(log);
  LOG_MODULE_DESTORY(&log);

  if (code != 0) std::fprintf(stderr, "%s: could not be flushed (code %d)\n", config.log_file_name, code);
  std::printf("%d\n", written.load());
  return code == 0 && written == kThreads * kRecords ? 0 : 1;
}
