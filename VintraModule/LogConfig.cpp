#include "VintraModule/LogConfig.h"

#include <algorithm>
#include <string_view>

#include "Common/Text.h"
#include "ConfigFileINI/ConfigFileINI.h"
#include "VintraModule/ErrLog.h"
#include "VintraModule/LogLevels.h"

namespace {

using vintra::CopyText;

constexpr sint32 kFromFile = 0;
constexpr sint32 kDefaultUsed = 9;

constexpr std::string_view kDefaultFileName = "default.log";

// One key of a section, and what the error log says when it is not set.
struct Key {
  const sint8* file;
  const sint8* section;
  const sint8* name;
  const sint8* not_set;
};

sint32 ReportNotSet(const Key& key) {
  REPORT_ERROR("%s", key.not_set);
  return kDefaultUsed;
}

struct ModeRow {
  LogMode mode;
  const sint8* config_name;
};

constexpr ModeRow kModes[] = {{Log_Mode_Simple, "Log_Mode_Simple"},
                              {Log_Mode_Rollback, "Log_Mode_Rollback"},
                              {Log_Mode_Date, "Log_Mode_Date"}};

// The default threshold, which is no level of a record.
constexpr vintra::LevelRow kDisabled = {Log_Level_Disable, "", "", "Log_Level_Disable"};

// Of the letters that the names have, whatever the locale says of others.
bool EqualIgnoringCase(std::string_view left, std::string_view right) {
  const auto lower = [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
  };
  return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                    [lower](char a, char b) { return lower(a) == lower(b); });
}

// Reads the name of one of rows or of the fallback.
template <typename Row, std::size_t N, typename Value>
sint32 ReadChoice(const Key& key, const Row (&rows)[N], const Row& fallback, Value Row::*value,
                  Value& field) {
  sint8 text[VINTRA_INI_LINE_SIZE];
  const std::string_view name(text,
                              GetConfigFileString(key.section, key.name, "", text, sizeof text, key.file));
  for (const Row& row : rows) {
    field = row.*value;
    if (EqualIgnoringCase(row.config_name, name)) return kFromFile;
  }
  field = fallback.*value;
  if (EqualIgnoringCase(fallback.config_name, name)) return kFromFile;
  if (name.empty()) return ReportNotSet(key);
  REPORT_ERROR("LOG_MODULE_INIT log %s(%s) is invalid, use default %s %s", key.name, text, key.name,
               fallback.config_name);
  return kDefaultUsed;
}

sint32 ReadNumber(const Key& key, uint32 fallback, uint32& field) {
  field = GetConfigFileInt(key.section, key.name, 0, key.file);
  if (field != 0) return kFromFile;
  field = fallback;
  return ReportNotSet(key);
}

// Reads a text, cut to the field. One that reads as missing, also the default text of the lookup, takes the
// fallback.
template <std::size_t N>
sint32 ReadFormat(const Key& key, const sint8* missing, std::string_view fallback, sint8 (&field)[N]) {
  GetConfigFileString(key.section, key.name, missing, field, N, key.file);
  if (std::string_view(field) != missing) return kFromFile;
  static_cast<void>(CopyText(field, fallback));
  return ReportNotSet(key);
}

// Reads a text that must not be cut. Returns false with an empty field when it is missing, empty or too long.
template <std::size_t N>
bool ReadWhole(const Key& key, sint8 (&field)[N]) {
  sint8 text[N + 1];
  const std::string_view value(text,
                               GetConfigFileString(key.section, key.name, "", text, sizeof text, key.file));
  const bool fits = value.size() < N;
  static_cast<void>(CopyText(field, fits ? value : ""));
  return fits && !value.empty();
}

// What a file name needs to name a file: nothing, or the default name behind a folder.
std::string_view MissingPartOf(std::string_view file_name) {
  switch (file_name.empty() ? '/' : file_name.back()) {
    case '/':
    case '\\':
      return kDefaultFileName;
    case ':':
      return "/default.log";
    default:
      return "";
  }
}

}  // namespace

void CheckValueFromConfig(LogConfigRecEx* log_config, const sint8* file_name, const sint8* section_name) {
  GetLogFileNameFromConfig(log_config, file_name, section_name);
  GetLogFileLevelFromConfig(log_config, file_name, section_name);
  GetLogFileModeFromConfig(log_config, file_name, section_name);
  GetMaxFileSizeFromConfig(log_config, file_name, section_name);
  if (log_config->log_mode != Log_Mode_Simple)
    GetMaxBackupIndexFromConfig(log_config, file_name, section_name);
  log_config->file_flush_size = GetConfigFileInt(section_name, "flush_size", 0, file_name);
  GetLogFormatFromConfig(log_config, file_name, section_name);
  if (log_config->log_mode == Log_Mode_Date) GetLogTimeSpanFromConfig(log_config, file_name, section_name);
  GetSysConfInfoFormatFromConfig(log_config, file_name, section_name);
  GetModuleNameFromConfig(log_config, file_name, section_name);
  GetPinAndTidFormatFromConfig(log_config, file_name, section_name);
  log_config->log_encrypt = GetConfigFileInt(section_name, "encrypt", 1, file_name);
}

sint32 GetLogFileNameFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                const sint8* section_name) {
  const Key key{file_name, section_name, "file_name",
                "LOG_MODULE_INIT log_file_name not set, use default name default.log"};
  sint8(&field)[VINTRA_PATH_SIZE] = log_config->log_file_name;
  static_cast<void>(ReadWhole(key, field));
  const std::string_view name = field, missing = MissingPartOf(name);
  if (missing.empty()) return kFromFile;
  if (name.size() + missing.size() < sizeof field) {
    *std::copy(missing.begin(), missing.end(), field + name.size()) = '\0';
  } else {
    static_cast<void>(CopyText(field, kDefaultFileName));
  }
  return ReportNotSet(key);
}

sint32 GetLogFileLevelFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                 const sint8* section_name) {
  return ReadChoice({file_name, section_name, "level",
                     "LOG_MODULE_INIT log level not set, use default level Log_Level_Disable"},
                    vintra::kLevels, kDisabled, &vintra::LevelRow::level, log_config->log_level);
}

sint32 GetLogFileModeFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                const sint8* section_name) {
  return ReadChoice(
      {file_name, section_name, "mode", "LOG_MODULE_INIT log_mode not set, use default mode Log_Mode_Simple"},
      kModes, kModes[0], &ModeRow::mode, log_config->log_mode);
}

sint32 GetMaxFileSizeFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                const sint8* section_name) {
  return ReadNumber({file_name, section_name, "max_file_size",
                     "LOG_MODULE_INIT max_file_size is 0 or not set, use default size(20M)"},
                    20 * 1024 * 1024, log_config->max_file_size);
}

sint32 GetMaxBackupIndexFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                   const sint8* section_name) {
  return ReadNumber({file_name, section_name, "max_backup_index",
                     "LOG_MODULE_INIT max_backup_index is 0 or not set, use default backup index 20"},
                    20, log_config->max_backup_index);
}

sint32 GetLogFormatFromConfig(LogConfigRecEx* log_config, const sint8* file_name, const sint8* section_name) {
  return ReadFormat(
      {file_name, section_name, "format", "LOG_MODULE_INIT log format not set, use default format %D%T%E%N"},
      "null", "%D%T%E%N", log_config->log_format);
}

sint32 GetLogTimeSpanFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                const sint8* section_name) {
  return ReadNumber({file_name, section_name, "time_span",
                     "LOG_MODULE_INIT log_time_span is error value, use input right value"},
                    0, log_config->log_time_span);
}

sint32 GetSysConfInfoFormatFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                      const sint8* section_name) {
  return ReadFormat({file_name, section_name, "SysConfFormat",
                     "LOG_MODULE_INIT sysconf_format not set, use default format %N"},
                    "", "%N", log_config->sysconf_format);
}

sint32 GetModuleNameFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                               const sint8* section_name) {
  const Key key{file_name, section_name, "module_name",
                "LOG_MODULE_INIT module_name not set, use default module_name ''"};
  return ReadWhole(key, log_config->module_name) ? kFromFile : ReportNotSet(key);
}

sint32 GetPinAndTidFormatFromConfig(LogConfigRecEx* log_config, const sint8* file_name,
                                    const sint8* section_name) {
  return ReadFormat(
      {file_name, section_name, "PidAndTid", "LOG_MODULE_INIT PidandTid not set, use default format %N"}, "",
      "%N", log_config->PidandTid);
}
