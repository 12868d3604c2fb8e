#include "VintraModule/VintraModule.h"

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstring>
#include <memory>

#include "Common/Handles.h"
#include "Common/Text.h"
#include "VintraModule/LogConfig.h"
#include "VintraModule/LogFile.h"
#include "VintraModule/Scrambling.h"
#include "VintraModule/VintraModuleExtract.h"
#include "VintraModule/VintraModuleInter.h"

static_assert(sizeof(LogConfigRec) == 348 && offsetof(LogConfigRec, log_format) == 284);
static_assert(sizeof(LogConfigRecEx) == 548 && offsetof(LogConfigRecEx, log_encrypt) == 544);

namespace {

constexpr std::size_t kConfigNameSize = 264;  // of the name of a configuration file and of a section

}  // namespace

sint32 LOG_MODULE_INIT_Ex(const LogConfigRec* a_log_config, LOGHANDLE* a_log_handle) {
  if (a_log_config == nullptr) return vintra::kInvalidArgument;
  LogConfigRecEx config{};
  config.size_LogConfigRecEx = sizeof config;
  std::memcpy(config.log_file_name, a_log_config->log_file_name, sizeof config.log_file_name);
  config.log_mode = a_log_config->log_mode;
  config.log_level = a_log_config->log_level;
  config.max_file_size = a_log_config->max_file_size;
  config.max_backup_index = a_log_config->max_backup_index;
  config.file_flush_size = a_log_config->file_flush_size;
  config.log_time_span = a_log_config->log_time_span;
  std::memcpy(config.log_format, a_log_config->log_format, sizeof config.log_format);
  static_cast<void>(vintra::CopyText(config.sysconf_format, "%N"));
  static_cast<void>(vintra::CopyText(config.PidandTid, "%N"));
  config.log_encrypt = 1;
  return LogModuleInitExtract(&config, a_log_handle);
}

sint32 LOG_MODULE_INIT_New_Ex(const LogConfigRecEx* a_log_config, LOGHANDLE* a_log_handle) {
  return LogModuleInitExtract(a_log_config, a_log_handle);
}

sint32 LOG_MODULE_INIT(const sint8* config_file, const sint8* section, LOGHANDLE* a_log_handle) {
  if (a_log_handle == nullptr) {
    REPORT_ERROR("LOG_MODULE_INIT Invalid param:a_log_handle is null");
    return vintra::kInvalidArgument;
  }
  sint8 file_name[kConfigNameSize];
  sint8 section_name[kConfigNameSize];
  if (!vintra::CopyText(file_name, config_file == nullptr ? "null" : config_file) ||
      !vintra::CopyText(section_name, section == nullptr ? "null" : section)) {
    REPORT_ERROR("LOG_MODULE_INIT config_file or section has more than %zu characters.", kConfigNameSize - 1);
    return vintra::kBadConfiguration;
  }
  LogConfigRecEx config{};
  CheckValueFromConfig(&config, file_name, section_name);
  const sint32 code = LogModuleInitExtract(&config, a_log_handle);
  return code == vintra::kInvalidArgument ? sint32{vintra::kBadConfiguration} : code;
}

LogLevel LOG_LEVEL(LOGHANDLE log_handle) {
  const LogHandleRec* const handle = vintra::LiveHandle(log_handle);
  return handle == nullptr ? Log_Level_Disable : handle->log_level;
}

sint32 LOG_MSG_FLUSH(LOGHANDLE log_handle) {
  LogHandleRec* const handle = vintra::LiveHandle(log_handle);
  if (handle == nullptr) return vintra::kInvalidArgument;
  const vintra::MutexLock lock(handle->Critical_Section);
  if (handle->file_out == nullptr || handle->flush_size >= handle->file_size) return vintra::kSuccess;
  const sint32 code = vintra::FlushLogFile(*handle);
  handle->flush_size = handle->file_size;  // also on failure: the same bytes are not tried again
  return code;
}

LOGHANDLE SourceInfo(LOGHANDLE log_handle, const sint8* source_file_name, sint32 source_file_line) {
  if (source_file_name == nullptr || *source_file_name == '\0' || source_file_line < 1) return log_handle;
  if (LogHandleRec* const handle = vintra::LiveHandle(log_handle)) {
    vintra::StoreSource(*handle, source_file_name, source_file_line);
  }
  return log_handle;
}

void LOG_MODULE_DESTORY(LOGHANDLE* a_log_handle) {
  if (a_log_handle == nullptr) return;
  const vintra::CancellationPause pause;
  const std::unique_ptr<LogHandleRec, vintra::HandleCloser> handle(vintra::LiveHandle(*a_log_handle));
  if (!handle) return;
  {
    const vintra::MutexLock wait_for_record(handle->Critical_Section);
    vintra::CloseLogFile(*handle);
  }
  *a_log_handle = null_log_handle;
}

sint32 FileConvert(const sint8* oldFile, const sint8* newFile) {
  if (oldFile == nullptr || newFile == nullptr) return vintra::kInvalidArgument;
  int error = errno;
  const sint32 code = vintra::ScrambleFile(oldFile, newFile, error);
  if (code == 0) errno = error;
  return code;
}

sint32 GetEncryptData(const sint8* sourceData, uint32 sourcelength, sint8* destData, uint32* destDatalength) {
  if (sourceData == nullptr || destData == nullptr || destDatalength == nullptr)
    return vintra::kInvalidArgument;
  const bool has_room = sourcelength <= *destDatalength;
  if (has_room) vintra::ScrambleInto(destData, sourceData, sourcelength);
  *destDatalength = sourcelength;  // last, as a host's record may hold both the bytes and their length
  return has_room ? vintra::kSuccess : vintra::kInvalidArgument;
}

// A record that is refused or dropped costs the few instructions here. There is no buffer that the stack
// would have to be protected from.
#define VINTRA_LEVEL_ENTRY(name, level)                                                             \
  __attribute__((no_stack_protector)) sint32 name(LOGHANDLE log_handle, const sint8* format, ...) { \
    LogHandleRec* const handle = vintra::LiveHandle(log_handle);                                    \
    if (handle == nullptr || format == nullptr) return vintra::kInvalidArgument;                    \
    if (handle->log_level > (level)) return vintra::kSuccess;                                       \
    va_list args;                                                                                   \
    va_start(args, format);                                                                         \
    const sint32 code = vintra::FormatAndLog(*handle, level, format, args);                         \
    va_end(args);                                                                                   \
    return code;                                                                                    \
  }

VINTRA_LEVEL_ENTRY(LOG_TRACE, Log_Level_Trace)
VINTRA_LEVEL_ENTRY(LOG_DEBUG, Log_Level_Debug)
VINTRA_LEVEL_ENTRY(LOG_INFO, Log_Level_Info)
VINTRA_LEVEL_ENTRY(LOG_NOTICE, Log_Level_Notice)
VINTRA_LEVEL_ENTRY(LOG_WARN, Log_Level_Warn)
VINTRA_LEVEL_ENTRY(LOG_ERROR, Log_Level_Error)
VINTRA_LEVEL_ENTRY(LOG_CRIT, Log_Level_Crit)
VINTRA_LEVEL_ENTRY(LOG_FATAL, Log_Level_Fatal)
#undef VINTRA_LEVEL_ENTRY
