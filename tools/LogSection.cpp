#include "tools/LogSection.h"

#include <strings.h>

#include <cstring>
#include <string_view>

namespace {

constexpr std::string_view kDefaultFileName = "default.log";
constexpr std::size_t kLongestFolder = 248;
constexpr std::size_t kLongestText = VINTRA_TEXT_SIZE - 1;
constexpr char kNoLetter = ' ';  // of a directive that is cut off
constexpr std::size_t kLongestPath = VINTRA_PATH_SIZE - 1;

struct Choice {
  const char* name;
  uint32 value;
};

constexpr Choice kLevels[] = {{"Log_Level_Trace", Log_Level_Trace},    {"Log_Level_Debug", Log_Level_Debug},
                              {"Log_Level_Info", Log_Level_Info},      {"Log_Level_Notice", Log_Level_Notice},
                              {"Log_Level_Warn", Log_Level_Warn},      {"Log_Level_Error", Log_Level_Error},
                              {"Log_Level_Crit", Log_Level_Crit},      {"Log_Level_Fatal", Log_Level_Fatal},
                              {"Log_Level_Disable", Log_Level_Disable}};

// Of what each mode adds to the name: nothing, "000", "_20261116_000".
constexpr std::size_t kNumberSizes[] = {0, 3, 13};

constexpr Choice kModes[] = {{"Log_Mode_Simple", Log_Mode_Simple},
                             {"Log_Mode_Rollback", Log_Mode_Rollback},
                             {"Log_Mode_Date", Log_Mode_Date}};

// A key as the file has it.
struct Source {
  const char* file;
  const char* section;
  const char* key;
  bool present;
  std::string text;

  Source(const char* ini_file, const char* ini_section, const char* name)
      : file(ini_file), section(ini_section), key(name) {
    constexpr char kAbsent[] = "\n";  // no value holds a line end
    text.resize(VINTRA_INI_LINE_SIZE);
    text.resize(GetConfigFileString(section, key, kAbsent, text.data(), VINTRA_INI_LINE_SIZE, file));
    present = text != kAbsent;
    if (!present) text.clear();
  }

  // What is the matter with a text that is not there.
  [[nodiscard]] std::string Lack() const { return present ? "empty" : "missing"; }
};

std::string Quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

// What keeps start-up from using a file name, to which number_size characters are added, or nothing.
std::string ProblemOfFileName(const char* name, std::size_t number_size) {
  char drive[VINTRA_PATH_SIZE] = "";
  char folder[VINTRA_PATH_SIZE] = "";
  char base[VINTRA_PATH_SIZE] = "";
  char extension[VINTRA_PATH_SIZE] = "";
  SplitPath(name, drive, folder, base, extension);
  char library[VINTRA_PATH_SIZE] = "";
  if (*drive == '\0') GetDLLDir(library);
  if (*base == '\0') return "no name before the last '.'";
  if (std::strlen(base) > kLongestText) return "a base name of more than 63 characters";
  if (std::strlen(extension) > kLongestText) return "an extension of more than 63 characters";
  const std::size_t in_front = std::strlen(drive) + std::strlen(library) + std::strlen(folder);
  if (in_front > kLongestFolder) return "a folder of more than 248 characters";
  if (in_front + std::strlen(base) + number_size + std::strlen(extension) > kLongestPath)
    return "a path of more than 259 characters";
  return "";
}

Setting ReadFileName(const Source& source, std::size_t number_size, char (&field)[VINTRA_PATH_SIZE]) {
  Setting setting{source.key, source.text, Verdict::kSet, ""};
  const bool too_long = source.text.size() > kLongestPath;
  const char last = source.text.empty() || too_long ? '\0' : source.text.back();
  if (last == '\0' || last == '/' || last == '\\' || last == ':') {
    setting.verdict = too_long ? Verdict::kWrong : Verdict::kDefault;
    setting.remark = too_long       ? "longer than 259 characters"
                     : last == '\0' ? source.Lack()
                                    : "names a folder";
    setting.value = too_long ? "" : source.text + (last == ':' ? "/" : "");
    setting.value += kDefaultFileName;
    if (setting.value.size() > kLongestPath) setting.value = kDefaultFileName;
  }
  Store(field, setting.value);
  if (const std::string problem = ProblemOfFileName(field, number_size); !problem.empty()) {
    setting.verdict = Verdict::kWrong;
    setting.remark = "start-up refuses " + problem;
  } else if (*field != '/') {
    char library[VINTRA_PATH_SIZE] = "";
    if (!setting.remark.empty()) setting.remark += "; ";
    setting.remark += std::string("relative, so under the library's folder ") + GetDLLDir(library);
  }
  return setting;
}

// The name of one of the choices. Returns its number, or that of the fallback.
template <std::size_t N>
uint32 ReadChoice(const Source& source, const Choice (&choices)[N], const Choice& fallback,
                  Setting& setting) {
  setting = {source.key, fallback.name, Verdict::kDefault, source.Lack()};
  for (const Choice& choice : choices) {
    if (strcasecmp(choice.name, source.text.c_str()) != 0) continue;
    setting = {source.key, choice.name, Verdict::kSet, ""};
    return choice.value;
  }
  if (!source.text.empty()) {
    setting.verdict = Verdict::kWrong;
    setting.remark = Quoted(source.text) + " is none of its names";
  }
  return fallback.value;
}

// A number. Where 0 is no value, it takes the fallback as well.
Setting ReadNumber(const Source& source, uint32 fallback, bool zero_is_value, uint32& field) {
  const sint32 missing = zero_is_value ? static_cast<sint32>(fallback) : 0;
  const uint32 number = GetConfigFileInt(source.section, source.key, missing, source.file);
  field = number == 0 && !zero_is_value ? fallback : number;
  Setting setting{source.key, std::to_string(field), Verdict::kSet, ""};
  if (source.text.empty()) {
    setting.verdict = Verdict::kDefault;
    setting.remark = source.Lack();
  } else if (source.text != setting.value) {
    setting.verdict = Verdict::kWrong;
    setting.remark = Quoted(source.text) + (number == 0 || number == static_cast<uint32>(missing)
                                                ? " is no number that it can be"
                                                : " reads as " + setting.value);
  }
  return setting;
}

Setting Unused(const Source& source, const char* mode) {
  const std::string remark = std::string(mode) + " does not read it";
  return {source.key, source.present ? source.text : "-", Verdict::kUnused, remark};
}

// The first directive of a format that is none of letters, or nothing.
std::string UnknownDirective(std::string_view format, std::string_view letters) {
  const std::string directives = DirectivesOf(format);
  const std::size_t at = directives.find_first_not_of(letters);
  if (at == std::string::npos) return "";
  return directives[at] == kNoLetter ? "%" : std::string("%") + directives[at];
}

// Directives. A text that says no more than missing takes the fallback.
Setting ReadDirectives(const Source& source, std::string_view missing, std::string_view fallback,
                       std::string_view letters, char (&field)[VINTRA_TEXT_SIZE]) {
  const bool lacks = missing.empty() ? source.text.empty() : !source.present || source.text == missing;
  Store(field, lacks ? fallback : source.text);
  Setting setting{source.key, field, Verdict::kSet, ""};
  if (lacks) {
    setting.verdict = Verdict::kDefault;
    setting.remark = source.text.empty() ? source.Lack() : Quoted(missing) + " reads as missing";
  } else if (source.text.size() > kLongestText) {
    setting.verdict = Verdict::kWrong;
    setting.remark = "cut to 63 characters";
  } else if (const std::string unknown = UnknownDirective(field, letters); !unknown.empty()) {
    setting.verdict = Verdict::kWrong;
    setting.remark = Quoted(unknown) + " is no directive";
  }
  return setting;
}

Setting ReadModuleName(const Source& source, char (&field)[VINTRA_TEXT_SIZE]) {
  const bool too_long = source.text.size() > kLongestText;
  Store(field, too_long ? "" : source.text);
  if (too_long) return {source.key, "", Verdict::kWrong, "longer than 63 characters"};
  if (source.text.empty()) return {source.key, "", Verdict::kDefault, source.Lack()};
  return {source.key, field, Verdict::kSet, ""};
}

}  // namespace

std::string DirectivesOf(std::string_view format) {
  std::string letters;
  for (std::size_t at = format.find('%'); at != std::string_view::npos; at = format.find('%', at + 1)) {
    at = format.find_first_not_of(' ', at + 1);
    letters += at == std::string_view::npos ? kNoLetter : format[at];
    if (at == std::string_view::npos) break;
  }
  return letters;
}

LogSection ReadLogSection(const char* file, const char* section) {
  const auto source = [file, section](const char* key) { return Source(file, section, key); };
  LogSection result;
  LogConfigRecEx& config = result.config;
  std::vector<Setting>& settings = result.settings;
  Setting setting;

  Setting mode_setting;
  config.log_mode = static_cast<LogMode>(ReadChoice(source("mode"), kModes, kModes[0], mode_setting));
  const char* mode = kModes[config.log_mode - 1].name;
  settings.push_back(
      ReadFileName(source("file_name"), kNumberSizes[config.log_mode - 1], config.log_file_name));
  config.log_level = static_cast<LogLevel>(ReadChoice(source("level"), kLevels, kLevels[8], setting));
  if (setting.verdict != Verdict::kSet) {
    setting.verdict = Verdict::kWrong;
    setting.remark += ", so every record is dropped";
  }
  settings.push_back(setting);
  settings.push_back(mode_setting);

  settings.push_back(ReadNumber(source("max_file_size"), 20 * 1024 * 1024, false, config.max_file_size));
  settings.push_back(config.log_mode == Log_Mode_Simple
                         ? Unused(source("max_backup_index"), mode)
                         : ReadNumber(source("max_backup_index"), 20, false, config.max_backup_index));
  settings.push_back(ReadNumber(source("flush_size"), 0, true, config.file_flush_size));
  settings.push_back(ReadDirectives(source("format"), "null", "%D%T%E%N", "DTEFLNC", config.log_format));
  settings.push_back(config.log_mode != Log_Mode_Date
                         ? Unused(source("time_span"), mode)
                         : ReadNumber(source("time_span"), 0, false, config.log_time_span));
  settings.push_back(ReadDirectives(source("SysConfFormat"), "", "%N", "NOCM", config.sysconf_format));
  settings.push_back(ReadModuleName(source("module_name"), config.module_name));
  settings.push_back(ReadDirectives(source("PidAndTid"), "", "%N", "NPT", config.PidandTid));
  setting = ReadNumber(source("encrypt"), 1, true, config.log_encrypt);
  if (setting.verdict == Verdict::kDefault) setting.remark += ", so the file is scrambled";
  if (setting.verdict == Verdict::kSet && config.log_encrypt > 1) {
    setting.verdict = Verdict::kWrong;
    setting.remark = "neither 0 nor 1: plain text";
  }
  settings.push_back(setting);
  return result;
}
