// vintra write: standard input into a log, line by line.
#include <strings.h>
#include <sys/stat.h>

#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>

#include "tools/Command.h"
#include "tools/IniScan.h"
#include "tools/LinePump.h"
#include "tools/LogSection.h"

namespace {

constexpr char kHelp[] = R"(Usage: vintra write -c INI -s SECTION [-l LEVEL] [-k]
       vintra write -f FILE [OPTION...] [-l LEVEL] [-k]

Writes standard input into a log, each line as a record. A line ends with LF, CR LF or NUL and may have any
length. What was read is in the log's file at the end of the input, after a second without input, and when
SIGTERM, SIGINT or SIGHUP ends the run.

  -c, --config INI        the log is a section of an INI file
  -s, --section SECTION   the section
  -f, --file FILE         the log's file, relative to the working directory; the options below go with it
  -m, --mode MODE         simple (the default), rollback or date
      --max-size SIZE     limit of a file in bytes, or with K, M or G behind it; 20M unless given
      --files N           files of a ring or day, 0 for no end; 20 unless given
      --days N            days that the date mode keeps its files; 0, the default, for ever
      --flush-size SIZE   unflushed bytes that are flushed; 0, the default, flushes each record
      --format TEXT       the pieces of a line; %D%T%E%N unless given
      --module NAME       the module name in each line
      --scramble          scrambles the file
  -l, --level LEVEL       of the records: trace, debug, info (the default), notice, warn, error, crit, fatal
  -k, --keep-going        goes on behind a line that could not be written
  -h, --help              this text

Exits with 0 when no line was refused, with 1 when one could not be written or the log not be opened, with 2
when it was called wrongly.
)";

struct Level {
  const char* name;
  LogLevel level;
  RecordFunction write;
};

constexpr Level kLevels[] = {{"trace", Log_Level_Trace, LOG_TRACE}, {"debug", Log_Level_Debug, LOG_DEBUG},
                             {"info", Log_Level_Info, LOG_INFO},    {"notice", Log_Level_Notice, LOG_NOTICE},
                             {"warn", Log_Level_Warn, LOG_WARN},    {"error", Log_Level_Error, LOG_ERROR},
                             {"crit", Log_Level_Crit, LOG_CRIT},    {"fatal", Log_Level_Fatal, LOG_FATAL}};
constexpr const Level* kInfo = &kLevels[2];

struct Mode {
  const char* name;
  LogMode mode;
};

constexpr Mode kModes[] = {
    {"simple", Log_Mode_Simple}, {"rollback", Log_Mode_Rollback}, {"date", Log_Mode_Date}};

// The row of a name, also one as INI files have it, with the prefix; null when there is none.
template <typename Row, std::size_t N>
const Row* FindRow(const Row (&rows)[N], std::string_view prefix, const char* name) {
  if (strncasecmp(name, prefix.data(), prefix.size()) == 0) name += prefix.size();
  for (const Row& row : rows) {
    if (strcasecmp(row.name, name) == 0) return &row;
  }
  return nullptr;
}

// What the arguments say.
struct Request {
  const char* config = "";
  const char* section = "";
  const char* file = "";
  const char* file_option = nullptr;  // one that only goes with --file
  const Level* level = kInfo;
  bool keep_going = false;
  bool help = false;
  LogConfigRecEx record = {};
};

// Reads a number, with K, M or G behind it if it is a size. Returns false when it is none below 2 GiB.
bool ParseNumber(std::string_view text, bool size, uint32& number) {
  constexpr std::string_view kUnits = "KMG";
  std::uint64_t value = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || value > INT32_MAX) return false;
  const std::string_view unit = text.substr(static_cast<std::size_t>(rest - text.data()));
  if (!unit.empty()) {
    const std::size_t power = kUnits.find(unit);
    if (!size || power == std::string_view::npos || unit.size() != 1) return false;
    value <<= 10 * (power + 1);
  }
  number = static_cast<uint32>(value);
  return value <= INT32_MAX;
}

// Takes one option. Returns false when its argument is of no use.
bool Take(int letter, Request& request) {
  LogConfigRecEx& record = request.record;
  switch (letter) {
    case 'c':
      request.config = optarg;
      return !IsStandardInput(optarg);  // which holds the lines
    case 's':
      request.section = optarg;
      return true;
    case 'f': {
      request.file = optarg;
      // The library would place a relative name beside its own file.
      std::error_code error;
      const std::filesystem::path path = std::filesystem::absolute(optarg, error);
      return *optarg != '\0' && !error && Store(record.log_file_name, path.native());
    }
    case 'm': {
      const Mode* mode = FindRow(kModes, "Log_Mode_", optarg);
      if (mode != nullptr) record.log_mode = mode->mode;
      return mode != nullptr;
    }
    case 'l':
      request.level = FindRow(kLevels, "Log_Level_", optarg);
      return request.level != nullptr;
    case 'k':
      request.keep_going = true;
      return true;
    case 'M':
      return ParseNumber(optarg, true, record.max_file_size) && record.max_file_size != 0;
    case 'N':
      return ParseNumber(optarg, false, record.max_backup_index);
    case 'D':
      return ParseNumber(optarg, false, record.log_time_span);
    case 'F':
      return ParseNumber(optarg, true, record.file_flush_size);
    case 'T':
      return Store(record.log_format, optarg);
    case 'O':
      return Store(record.module_name, optarg);
    default:  // 'E'
      record.log_encrypt = 1;
      return true;
  }
}

constexpr option kOptions[] = {{"config", required_argument, nullptr, 'c'},
                               {"section", required_argument, nullptr, 's'},
                               {"file", required_argument, nullptr, 'f'},
                               {"level", required_argument, nullptr, 'l'},
                               {"keep-going", no_argument, nullptr, 'k'},
                               {"help", no_argument, nullptr, 'h'},
                               {"mode", required_argument, nullptr, 'm'},
                               {"max-size", required_argument, nullptr, 'M'},
                               {"files", required_argument, nullptr, 'N'},
                               {"days", required_argument, nullptr, 'D'},
                               {"flush-size", required_argument, nullptr, 'F'},
                               {"format", required_argument, nullptr, 'T'},
                               {"module", required_argument, nullptr, 'O'},
                               {"scramble", no_argument, nullptr, 'E'},
                               {}};

const option& OptionOf(int letter) {
  const option* found = kOptions;
  while (found->val != letter) ++found;
  return *found;
}

// Returns kDone, or what to exit with.
int Parse(int argc, char** argv, Request& request) {
  request.record.log_mode = Log_Mode_Simple;
  request.record.log_level = Log_Level_Trace;
  request.record.max_file_size = 20 * 1024 * 1024;
  request.record.max_backup_index = 20;
  Store(request.record.log_format, "%D%T%E%N");
  for (int letter; (letter = getopt_long(argc, argv, "c:s:f:m:l:kh", kOptions, nullptr)) != -1;) {
    if (letter == '?') return HintAtHelp(argv[0]);
    request.help = letter == 'h';
    if (request.help) return kDone;
    const option& taken = OptionOf(letter);
    if (!Take(letter, request)) return Misused(argv[0], "--%s cannot be \"%s\"", taken.name, optarg);
    if (std::strchr("cslkf", letter) == nullptr) request.file_option = taken.name;
  }
  if (optind < argc) return Misused(argv[0], "\"%s\" is no option", argv[optind]);
  if (*request.file != '\0') {
    if (*request.config != '\0' || *request.section != '\0')
      return Misused(argv[0], "--file does not go with --config and --section");
    return kDone;
  }
  if (*request.config == '\0' || *request.section == '\0')
    return Misused(argv[0], "which log? --file, or --config and --section, say so");
  if (request.file_option != nullptr) return Misused(argv[0], "--%s goes with --file", request.file_option);
  return kDone;
}

// The library's own file for failures, and its size; -1 where it is not there.
std::string ErrorLogPath() {
  char folder[VINTRA_PATH_SIZE] = "";
  return std::string(GetDLLDir(folder)) + "LogModuleErrMsg.log";
}

off_t ErrorLogSize() {
  struct stat status = {};
  return stat(ErrorLogPath().c_str(), &status) == 0 ? status.st_size : -1;
}

// Names the error log only where it has got a line since it had size bytes.
int FailToOpen(const std::string& log, sint32 code, off_t size) {
  const std::string hint = ErrorLogSize() > size ? "; " + ErrorLogPath() + " tells more" : "";
  return Fail("%s: the log could not be opened (%d: %s)%s", log.c_str(), static_cast<int>(code),
              MeaningOf(code), hint.c_str());
}

// Opens the log of a section, which has to be there and to say what it keeps. Returns kDone or kFailed.
int OpenSection(const Request& request, LOGHANDLE& log) {
  IniFile ini;
  const bool is_found = FindIniFile(request.config, ini);
  const char* const name = ini.name.c_str();
  const char* const file = ini.path.c_str();
  const IniSection lines = is_found ? ScanSection(file, request.section) : IniSection();
  if (!lines.readable) return FailOn(name);
  if (lines.line == 0) return FailOnMissing(ini, lines, request.section);
  for (const Setting& setting : ReadLogSection(file, request.section).settings) {
    if (setting.verdict != Verdict::kWrong) continue;
    Fail("%s: [%s] %s: %s", name, request.section, setting.key.c_str(), setting.remark.c_str());
    // Any other one has a default that can be worked with, or start-up refuses it.
    if (setting.key == "level") return kFailed;
  }
  const off_t errors = ErrorLogSize();
  if (const sint32 code = LOG_MODULE_INIT(file, request.section, &log); code != 0)
    return FailToOpen(request.section, code, errors);
  if (LOG_LEVEL(log) > request.level->level)
    Fail("the level of [%s] drops every record of the level %s", request.section, request.level->name);
  return kDone;
}

int Open(const Request& request, LOGHANDLE& log) {
  if (*request.file == '\0') return OpenSection(request, log);
  const off_t errors = ErrorLogSize();
  const sint32 code = LOG_MODULE_INIT_New_Ex(&request.record, &log);
  return code == 0 ? kDone : FailToOpen(request.record.log_file_name, code, errors);
}

}  // namespace

int Write(int argc, char** argv) {
  Request request;
  if (const int code = Parse(argc, argv, request); code != kDone) return code;
  if (request.help) return std::fputs(kHelp, stdout) < 0 ? kFailed : kDone;
  std::signal(SIGPIPE, SIG_IGN);  // nobody who reads messages is no reason to lose lines
  StopSignals signals;            // from here on; where the log is there, a signal stores what came in
  LOGHANDLE log = null_log_handle;
  if (const int code = Open(request, log); code != kDone) return code;
  const int code = LinePump(log, request.level->write, request.keep_going, signals).Run();
  LOG_MODULE_DESTORY(&log);
  return code;
}
