// vintra check: what the log sections of an INI file mean.
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "tools/Command.h"
#include "tools/IniScan.h"
#include "tools/LogSection.h"
#include "tools/NextFile.h"

namespace {

constexpr char kHelp[] = R"(Usage: vintra check INI [SECTION...]

Shows for each log section of an INI file every key with the value in force: whether it was taken from the
file, is a default, or is not what the file says, and why; and the keys that mean nothing. Where no section is
named, lists those of the file, and each line that hides others. INI may be a pipe, or "-", standard input.

  -h, --help  this text

Exits with 0, with 1 when something is wrong, with 2 when it was called wrongly.
)";

constexpr std::size_t kLongestArgument = 263;  // of LOG_MODULE_INIT

bool ColoursWanted() {
  const char* terminal = std::getenv("TERM");
  return isatty(STDOUT_FILENO) == 1 && std::getenv("NO_COLOR") == nullptr &&
         (terminal == nullptr || std::strcmp(terminal, "dumb") != 0);
}

struct Row {
  const char* label;
  const char* colour;
};

// How a verdict is shown.
Row RowOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::kDefault:
      return {"default", "\033[33m"};
    case Verdict::kUnused:
      return {"unused", "\033[2m"};
    case Verdict::kWrong:
      return {"wrong", "\033[31m"};
    default:
      return {"", ""};
  }
}

void Show(const Setting& setting) {
  static const bool colours = ColoursWanted();
  const auto [label, colour] = RowOf(setting.verdict);
  const bool coloured = colours && *colour != '\0';
  const char* colon = *label != '\0' && !setting.remark.empty() ? ": " : "";
  std::string line(18 - std::min<std::size_t>(setting.key.size(), 17), ' ');
  line = "  " + setting.key + line + setting.value;
  if (*label != '\0' || !setting.remark.empty()) line.resize(std::max<std::size_t>(line.size() + 2, 44), ' ');
  line += label + std::string(colon) + setting.remark;
  line = Printable(line.substr(0, line.find_last_not_of(' ') + 1));
  std::printf("%s%s%s\n", coloured ? colour : "", line.c_str(), coloured ? "\033[0m" : "");
}

// What the section's own lines show: keys that mean nothing or stand twice, and what lookups do not reach.
std::vector<Setting> ExamineLines(const IniSection& lines, const std::vector<Setting>& settings) {
  std::vector<Setting> found;
  const auto add = [&found](std::string name, const std::string& remark, int line) {
    found.push_back({std::move(name), "", Verdict::kWrong, remark + " (line " + std::to_string(line) + ")"});
  };
  for (const IniKey& key : lines.keys) {
    const auto known = std::find_if(settings.begin(), settings.end(),
                                    [&key](const Setting& setting) { return setting.key == key.name; });
    const auto same = [&key](const IniKey& other) { return other.name == key.name; };
    const IniKey& first = *std::find_if(lines.keys.begin(), lines.keys.end(), same);
    if (known != settings.end()) {
      if (&first != &key) add(key.name, "written twice, and only the first counts", key.line);
      continue;
    }
    const auto close = std::find_if(settings.begin(), settings.end(), [&key](const Setting& setting) {
      return strcasecmp(setting.key.c_str(), key.name.c_str()) == 0;
    });
    add(key.name, close == settings.end() ? "unknown key" : "unknown key; is " + close->key + " meant?",
        key.line);
  }
  if (lines.repeated != 0) add("", "a second section of the name, which nobody reads", lines.repeated);
  if (lines.bad_line != 0)
    add("", lines.problem + std::string(", and hides what is behind it"), lines.bad_line);
  return found;
}

// Whether start-up accepts the section, and opens a file for it.
bool CanStart(const LogSection& section) {
  const Setting& file_name = section.settings.front();
  return file_name.verdict != Verdict::kWrong && section.config.log_level != Log_Level_Disable;
}

// Returns whether the section is all right.
bool CheckSection(const IniFile& ini, const char* section) {
  const char* const file = ini.path.c_str();
  if (std::strlen(section) > kLongestArgument) {
    Fail("[%s]: more than 263 characters", section);
    return false;
  }
  const IniSection lines = ScanSection(file, section);
  if (lines.line == 0) {
    FailOnMissing(ini, lines, section);
    return false;
  }
  const LogSection read = ReadLogSection(file, section);
  std::vector<Setting> settings = read.settings;
  for (Setting& extra : ExamineLines(lines, settings)) settings.push_back(std::move(extra));
  std::printf("[%s]\n", Printable(section).c_str());
  for (const Setting& setting : settings) Show(setting);
  if (CanStart(read)) {
    const NextFile next = FindNextFile(read.config);
    Show({"next file", next.path, Verdict::kSet, next.fate});
  }
  return std::none_of(settings.begin(), settings.end(),
                      [](const Setting& setting) { return setting.verdict == Verdict::kWrong; });
}

// Lists the sections and what is wrong with the file. Returns whether nothing is.
bool ListSections(const IniFile& ini) {
  std::vector<char> names(1);
  sint32 length = 0;
  do {  // until the list does not fill what it is given
    names.resize(names.size() * 2 + 4096);
    length = GetConfigFileSections(names.data(), static_cast<sint32>(names.size()), ini.path.c_str());
  } while (static_cast<std::size_t>(length) + VINTRA_INI_LINE_SIZE + 2 > names.size());
  for (const char* name = names.data(); name < names.data() + length; name += std::strlen(name) + 1)
    std::printf("%s\n", Printable(name).c_str());
  const std::vector<IniProblem> problems = ScanProblems(ini.path.c_str());
  for (const auto& [line, text] : problems) Fail("%s:%d: %s", ini.name.c_str(), line, text.c_str());
  if (length == 0 && problems.empty()) Fail("%s: no sections", ini.name.c_str());
  return length != 0 && problems.empty();
}

}  // namespace

int Check(int argc, char** argv) {
  constexpr option kOptions[] = {{"help", no_argument, nullptr, 'h'}, {}};
  for (int letter; (letter = getopt_long(argc, argv, "h", kOptions, nullptr)) != -1;) {
    if (letter != 'h') return HintAtHelp(argv[0]);
    return std::fputs(kHelp, stdout) < 0 ? kFailed : kDone;
  }
  if (optind == argc) return Misused(argv[0], "no INI file named");
  IniFile file;
  if (!FindIniFile(argv[optind], file) || !ScanSection(file.path.c_str(), "\n").readable)
    return FailOn(file.name.c_str());
  if (file.path.size() > kLongestArgument) return Fail("%s: more than 263 characters", file.name.c_str());
  if (optind + 1 == argc) return ListSections(file) ? kDone : kFailed;
  bool good = true;
  for (int i = optind + 1; i < argc; ++i) {
    if (i > optind + 1) std::putchar('\n');
    good = CheckSection(file, argv[i]) && good;
  }
  return good ? kDone : kFailed;
}
