#include "VintraModule/VintraModuleExtract.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string_view>

#include "Common/Handles.h"
#include "Common/Text.h"
#include "FolderModule/FolderModule.h"
#include "FolderModule/PathParts.h"
#include "VintraModule/ErrLog.h"
#include "VintraModule/FileMode.h"
#include "VintraModule/LogFile.h"
#include "VintraModule/LogNames.h"
#include "VintraModule/Retention.h"
#include "VintraModule/VintraLinuxFunc.h"
#include "VintraModule/VintraModuleInter.h"

namespace {

using vintra::CopyText;
using vintra::FieldText;

using HandlePtr = std::unique_ptr<LogHandleRec, vintra::HandleCloser>;

struct Directive {
  sint8 letter;
  uint32 LogHandleRec::*flag;
};

constexpr Directive kLineDirectives[] = {
    {'D', &LogHandleRec::log_date},       {'T', &LogHandleRec::log_time},
    {'E', &LogHandleRec::log_level_info}, {'F', &LogHandleRec::log_src_file},
    {'L', &LogHandleRec::log_src_line},   {'N', &LogHandleRec::log_new_line},
    {'C', &LogHandleRec::log_swith},
};
constexpr Directive kSystemDirectives[] = {
    {'N', &LogHandleRec::sys_none},
    {'O', &LogHandleRec::sys_os},
    {'C', &LogHandleRec::sys_cpu},
    {'M', &LogHandleRec::sys_memory},
};
constexpr Directive kProcessDirectives[] = {
    {'N', &LogHandleRec::log_none},
    {'P', &LogHandleRec::log_pid},
    {'T', &LogHandleRec::log_tid},
};

// Sets the switch of every directive in format, or only the switch if_empty for an empty format.
void ScanDirectives(std::string_view format, std::span<const Directive> directives,
                    uint32 LogHandleRec::*if_empty, LogHandleRec& handle) {
  if (format.empty()) handle.*if_empty = 1;
  for (std::size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%', at)) {
    at = format.find_first_not_of(' ', at + 1);
    if (at == std::string_view::npos) return;
    for (const Directive& directive : directives) {
      if (directive.letter == format[at]) handle.*directive.flag = 1;
    }
    ++at;  // an unknown letter, a second '%' included, is consumed
  }
}

bool IsValid(const LogConfigRecEx& config) {
  return config.max_file_size != 0 && config.log_file_name[0] != '\0' &&
         config.log_level >= Log_Level_Trace && config.log_level <= Log_Level_Disable &&
         config.log_mode >= Log_Mode_Simple && config.log_mode <= Log_Mode_Date;
}

// Sets the folder, the base name and the extension of the log file.
sint32 SetFileNames(std::string_view file_name, LogHandleRec& handle) {
  const vintra::PathParts parts = vintra::SplitPathParts(file_name);
  if (parts.name.empty()) {
    REPORT_ERROR("LOG_MODULE_INIT_Ex file_name is null");
    return vintra::kInvalidArgument;
  }

  if (parts.drive.empty()) {
    GetDLLDir(handle.log_file_path);
  } else {
    static_cast<void>(CopyText(handle.log_file_path, parts.drive));
  }
  const std::size_t front = FieldText(handle.log_file_path).size();
  if (front + parts.dir.size() >= sizeof handle.log_file_path) return vintra::kFolderTooLong;
  sint8* const end = std::copy(parts.dir.begin(), parts.dir.end(), handle.log_file_path + front);
  *end = '\0';
  // The folders of the chain are made with '/' between them, so that is where the file has to be.
  std::replace(handle.log_file_path + front, end, '\\', '/');

  if (CopyText(handle.log_file_name, parts.name) && CopyText(handle.log_file_ext, parts.ext))
    return vintra::kSuccess;
  REPORT_ERROR("LOG_MODULE_INIT_Ex file_name(%.*s) has a base name or extension of more than %zu characters.",
               static_cast<int>(file_name.size()), file_name.data(), vintra::kTextSize - 1);
  return vintra::kInvalidArgument;
}

sint32 ReportNotOpened(const sint8* path) {
  REPORT_ERROR("LOG_MODULE_INIT_Ex open file(%s) for write failed.", path);
  return vintra::kNoFile;
}

sint32 ReportNoSize(const LogHandleRec& handle) {
  REPORT_ERROR("Bad file handle %d.", vintra::StreamNumber(handle.file_out));
  return vintra::kNoFile;
}

// Limits are at most INT32_MAX, as sizes are.
bool HasRoom(const LogHandleRec& handle, sint32 size) {
  return size < static_cast<sint32>(handle.max_file_size);
}

using NameComposer = void (*)(const LogHandleRec& handle, uint32 number, sint8* name);

// Opens the first of a mode's numbered files that is not full, creating none behind it, or the first file of
// all when it is to be emptied or all are full. Returns false when a file could not be opened, or with
// file_out open when its size could not be read.
bool OpenFirstWithRoom(LogHandleRec& handle, NameComposer compose, sint8* name, sint8* path) {
  for (uint32 number = 0;; ++number) {
    handle.cur_log_file_ID = vintra::RingNumber(number, handle.max_backup_index);
    compose(handle, handle.cur_log_file_ID, name);
    if (!vintra::OpenLogFile(handle, name, vintra::OpenMode::kAppend, path)) return false;
    if (handle.log_swith || number == handle.max_backup_index) return true;
    const sint32 size = getFileSize(&handle);
    if (size == -1) return false;
    if (HasRoom(handle, size)) return true;
    vintra::CloseLogFile(handle);
  }
}

// Writes the banners that the configuration asks for, the first records of a handle's life.
sint32 WriteBanners(const LogConfigRecEx* config, LOGHANDLE log_handle, LogHandleRec* handle) {
  AnalysisSysFormat(config, handle);
  if (!handle->sys_none) {
    if (const sint32 code = RecordSystemInfo(log_handle, handle); code != 0) return code;
  }
  AnalysisPidFormat(config, handle);
  return handle->log_none ? sint32{vintra::kSuccess} : GetPidAndTid(log_handle, handle);
}

void CopyModuleName(const LogConfigRecEx& config, LogHandleRec& handle) {
  if (CopyText(handle.log_module_name, FieldText(config.module_name))) return;
  REPORT_ERROR("LOG_MODULE_INIT_Ex module_name(%s) has no terminator and is cut.", handle.log_module_name);
}

// Prepares what the lines of a handle have in common.
void PrepareLines(LogHandleRec& handle) {
  handle.stamp.shows_date = handle.log_date != 0;
  handle.stamp.shows_time = handle.log_time != 0;
  const std::string_view module_name = handle.log_module_name;
  for (uint32 level = handle.log_level; level <= Log_Level_Disable; ++level) {
    const bool has_tag = handle.log_level_info && level != Log_Level_Disable;
    const std::string_view tag = has_tag ? vintra::kLevels[level - 1].tag : "";
    sint8* const text = handle.labels[level - 1].text;
    sint8* end = text + tag.copy(text, tag.size());
    end += module_name.copy(end, module_name.size());
    end = std::fill_n(end, 2, ' ');
    handle.labels[level - 1].length = static_cast<std::size_t>(end - text);
  }
}

}  // namespace

namespace vintra {

void HandleCloser::operator()(LogHandleRec* handle) const {
  // Unmarked before anything is released, so that a stale copy of the handle is refused as long as its memory
  // lasts.
  const bool has_mutex = handle->instance_effective == kLiveMark;
  handle->instance_effective = 0;
  CloseLogFile(*handle);
  if (has_mutex) pthread_mutex_destroy(&handle->Critical_Section);
  std::free(handle->stream_buffer);
  delete handle;
}

}  // namespace vintra

sint32 LogModuleInitExtract(const LogConfigRecEx* a_log_config, LOGHANDLE* a_log_handle) {
  if (a_log_config == nullptr || a_log_handle == nullptr || !IsValid(*a_log_config))
    return vintra::kInvalidArgument;

  const vintra::CancellationPause pause;
  HandlePtr handle(new (std::nothrow) LogHandleRec(null_log_handle_rec));
  if (!handle) {
    REPORT_ERROR("LOG_MODULE_INIT_Ex has no memory for a handle.");
    return vintra::kNoMemory;
  }
  if (const sint32 code = SetFileNames(FieldText(a_log_config->log_file_name), *handle); code != 0)
    return code;
  handle->log_mode = a_log_config->log_mode;
  handle->log_level = a_log_config->log_level;
  handle->max_file_size = std::min<uint32>(a_log_config->max_file_size, INT32_MAX);
  handle->file_flush_size = a_log_config->file_flush_size;
  handle->log_encrypt = a_log_config->log_encrypt;
  CopyModuleName(*a_log_config, *handle);
  AnalysisLogFormat(a_log_config, handle.get());
  PrepareLines(*handle);

  sint8 file_name[vintra::kFileNameSize] = {};
  sint8 path[vintra::kPathSize] = {};
  if (const sint32 code = SetLogFilesize(a_log_config, handle.get(), file_name, path); code != 0) return code;
  if (pthread_mutex_init(&handle->Critical_Section, nullptr) != 0) {
    REPORT_ERROR("LOG_MODULE_INIT_Ex has no memory for a mutex.");
    return vintra::kNoMemory;
  }
  handle->instance_effective = vintra::kLiveMark;
  *a_log_handle = static_cast<LOGHANDLE>(reinterpret_cast<std::intptr_t>(handle.get()));
  if (const sint32 code = WriteBanners(a_log_config, *a_log_handle, handle.get()); code != 0) {
    *a_log_handle = null_log_handle;
    return code;
  }
  static_cast<void>(handle.release());  // the caller's from here on
  return vintra::kSuccess;
}

sint32 SetLogFilesize(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle, sint8* file_name,
                      sint8* log_file_name) {
  if (log_handle->log_level == Log_Level_Disable)
    return vintra::kSuccess;  // no file: nothing will be written
  if (CreateMulDir(log_handle->log_file_path) == 0) {
    REPORT_ERROR("LOG_MODULE_INIT_Ex create path(%s) failed.", log_handle->log_file_path);
    return vintra::kNoFolder;
  }
  log_handle->file_mode = &vintra::FindFileMode(log_handle->log_mode);
  if (const sint32 code = log_handle->file_mode->start(a_log_config, log_handle, file_name, log_file_name);
      code != 0)
    return code;

  if (!log_handle->log_swith) {
    const sint32 size = getFileSize(log_handle);
    if (size == -1) return ReportNoSize(*log_handle);
    if (HasRoom(*log_handle, size)) {
      log_handle->file_size = static_cast<uint32>(size);
      return vintra::kSuccess;
    }
  }
  if (vintra::RestartLogFile(*log_handle, log_file_name)) return vintra::kSuccess;
  return ReportNotOpened(log_file_name);
}

sint32 SetVintraFileName(LogHandleRec* log_handle, sint8* log_file_name) {
  if (vintra::OpenLogFile(*log_handle, log_handle->log_file_name, vintra::OpenMode::kAppend, log_file_name)) {
    return vintra::kSuccess;
  }
  return ReportNotOpened(log_file_name);
}

sint32 SetRollbackLogFileName(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle, sint8* file_name,
                              sint8* log_file_name) {
  log_handle->max_backup_index = a_log_config->max_backup_index;
  if (OpenFirstWithRoom(*log_handle, vintra::RollbackName, file_name, log_file_name)) return vintra::kSuccess;
  return log_handle->file_out == nullptr ? ReportNotOpened(log_file_name) : ReportNoSize(*log_handle);
}

sint32 SetDateLogFileName(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle, sint8* file_name,
                          sint8* log_file_name) {
  log_handle->log_time_span = a_log_config->log_time_span;
  log_handle->max_backup_index = a_log_config->max_backup_index;
  vintra::RemoveExpiredFiles(*log_handle);
  vintra::ReadClock(log_handle->stamp);
  log_handle->cur_date_ID = log_handle->stamp.day;
  if (log_handle->cur_date_ID == 0) return vintra::kClockUnreadable;
  if (OpenFirstWithRoom(*log_handle, vintra::DateName, file_name, log_file_name)) return vintra::kSuccess;
  if (log_handle->file_out == nullptr) return ReportNotOpened(log_file_name);
  REPORT_ERROR("Bad file handle %d", vintra::StreamNumber(log_handle->file_out));
  return vintra::kNoFile;
}

sint32 RecordSystemInfo(LOGHANDLE log_handle, LogHandleRec* log_handleRec) {
  sint8 text[vintra::kBannerSize] = {};
  if (const sint32 code = SystemInfo(log_handle, log_handleRec, text); code != 0) return code;
  return LogRecord(log_handle, "Trace", "%s", text);
}

sint32 GetPidAndTid(LOGHANDLE log_handle, LogHandleRec* log_handleRec) {
  sint8 text[vintra::kBannerSize] = {};
  return LogRecord(log_handle, "Trace", "%s", PidAndTidInfo(log_handleRec, text));
}

void AnalysisLogFormat(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle) {
  ScanDirectives(FieldText(a_log_config->log_format), kLineDirectives, &LogHandleRec::log_new_line,
                 *log_handle);
}

void AnalysisSysFormat(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle) {
  ScanDirectives(FieldText(a_log_config->sysconf_format), kSystemDirectives, &LogHandleRec::sys_none,
                 *log_handle);
}

void AnalysisPidFormat(const LogConfigRecEx* a_log_config, LogHandleRec* log_handle) {
  ScanDirectives(FieldText(a_log_config->PidandTid), kProcessDirectives, &LogHandleRec::log_none,
                 *log_handle);
}
