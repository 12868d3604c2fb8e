#include "tools/IniScan.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <string_view>

#include "tools/Command.h"

namespace {

constexpr std::size_t kLongestLine = VINTRA_INI_LINE_SIZE - 1;
constexpr std::string_view kBlanks = " \t";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view TrimLeft(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
  return text;
}

std::string_view Trim(std::string_view text) {
  text = TrimLeft(text);
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

// The lines of a text as the library takes them, with the numbers that an editor gives them.
class Lines {
 public:
  explicit Lines(std::string_view text) : rest_(text) {}

  // Takes the next line, up to kLongestLine bytes of it. Returns false at the end.
  bool Next(std::string_view& line) {
    if (rest_.empty()) return false;
    number_ = next_number_;
    const std::size_t end = rest_.substr(0, kLongestLine).find_first_of({"\n\r\0\f\x1A", 5});
    if (end == std::string_view::npos) {
      line = rest_.substr(0, kLongestLine);
      rest_.remove_prefix(line.size());
      return true;
    }
    const char last = rest_[end];
    if (last == '\n') ++next_number_;
    line = rest_.substr(0, last == '\f' || last == '\x1A' ? end + 1 : end);
    rest_.remove_prefix(end + 1);
    return true;
  }

  [[nodiscard]] int number() const { return number_; }

 private:
  std::string_view rest_;
  int number_ = 0;
  int next_number_ = 1;
};

bool ReadText(const char* file, std::string& text) {
  struct stat status = {};
  if (stat(file, &status) != 0) return false;
  errno = S_ISDIR(status.st_mode) ? EISDIR : S_ISREG(status.st_mode) ? EFBIG : ESPIPE;
  if (!S_ISREG(status.st_mode) || status.st_size >= INT_MAX) return false;
  int size = 0;
  text.resize(1);
  int result = CustomReadFile(file, text.data(), 0, &size);
  while (result == -1) {  // again where it has grown
    text.resize(static_cast<std::size_t>(size) + 1);
    result = CustomReadFile(file, text.data(), size, &size);
  }
  text.resize(result == 1 ? static_cast<std::size_t>(size) : 0);
  return result == 1;
}

// Moves behind the next line of a section of the name, or of any section for a null one, whose name is then
// found. Returns false at the end, and at a malformed line, which problem then tells of.
bool FindSection(Lines& lines, const std::string_view* wanted, std::string_view& found,
                 const char*& problem) {
  for (std::string_view line; lines.Next(line);) {
    line = Trim(line);
    if (line.empty() || line.front() == NoteLineSign || line.front() != SectionSymbolLeft) continue;
    if (line.size() >= 3 && line.back() != SectionSymbolRight) {
      problem = "the line of a section does not end in ']'";
      return false;
    }
    found = line.size() < 3 ? std::string_view() : line.substr(1, line.size() - 2);
    if (wanted == nullptr || (found == *wanted && !found.empty())) return true;
  }
  return false;
}

// Appends the lines that line goes on with. Returns false where it becomes too long to be read.
bool JoinContinuations(Lines& lines, std::string& line) {
  bool goes_on = line.back() == ConnectLineSign;
  if (goes_on) line.pop_back();
  for (std::string_view piece; goes_on && lines.Next(piece);) {
    piece = TrimLeft(piece);
    goes_on = !piece.empty() && piece.back() == ConnectLineSign;
    if (goes_on) piece.remove_suffix(1);
    line += piece;
    if (line.size() > kLongestLine) return false;
  }
  return true;
}

// What is wrong with a whole line of a key, or null.
const char* ProblemOf(std::string_view line) {
  const std::size_t separator = line.find(KeyValueSplitSign);
  if (separator == std::string_view::npos) return "the line has no '='";
  return separator == 0 ? "the line begins with '='" : nullptr;
}

void ScanKeys(Lines& lines, IniSection& found) {
  for (std::string_view next; lines.Next(next);) {
    std::string line(Trim(next));
    if (line.empty() || line.front() == NoteLineSign) continue;
    if (line.front() == SectionSymbolLeft) return;
    const int number = lines.number();
    const char* problem = JoinContinuations(lines, line) ? ProblemOf(line) : "the line is too long";
    if (problem != nullptr) {
      found.bad_line = number;
      found.problem = problem;
      return;
    }
    found.keys.push_back(
        {std::string(Trim(std::string_view(line).substr(0, line.find(KeyValueSplitSign)))), number});
  }
}

// Copies what can be read from a descriptor into another one. Returns false with errno, also for what does
// not end.
bool CopyAll(int from, int to) {
  constexpr std::size_t kMost = 16 << 20;
  std::vector<char> block(65536);
  std::size_t size = 0;
  for (ssize_t got = 0; (got = read(from, block.data(), block.size())) != 0;) {
    if (got < 0 && WorthRepeating(from, POLLIN)) continue;
    if (got < 0 || write(to, block.data(), static_cast<std::size_t>(got)) != got) return false;
    size += static_cast<std::size_t>(got);
    if (size > kMost) {
      errno = EFBIG;
      return false;
    }
  }
  return true;
}

}  // namespace

bool FindIniFile(const char* name, IniFile& file) {
  const bool is_input = IsStandardInput(name);
  file.name = is_input ? "standard input" : name;
  file.path = name;
  struct stat status = {};
  if (!is_input && stat(name, &status) != 0) return false;
  if (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)) return true;
  const Descriptor source(is_input ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                   : open(name, O_RDONLY | O_CLOEXEC));
  file.copy = Descriptor(memfd_create("ini", MFD_CLOEXEC));
  file.path = "/proc/self/fd/" + std::to_string(file.copy.get());
  return source && file.copy && CopyAll(source.get(), file.copy.get());
}

bool IsStandardInput(std::string_view name) { return name == "-" || name == "/dev/stdin"; }

int FailOnMissing(const IniFile& file, const IniSection& lines, const char* section) {
  const char* const name = file.name.c_str();
  if (lines.bad_line != 0)
    return Fail("%s:%d: %s, and hides [%s]", name, lines.bad_line, lines.problem, section);
  const char* const hint = lines.byte_order_mark ? "; a byte order mark hides the first line" : "";
  return Fail("%s: no section [%s]%s", name, section, hint);
}

IniSection ScanSection(const char* file, std::string_view section) {
  IniSection found;
  std::string text;
  found.readable = ReadText(file, text);
  found.byte_order_mark = text.starts_with(kByteOrderMark);
  Lines lines(text);
  std::string_view name;
  if (!FindSection(lines, &section, name, found.problem)) {
    if (*found.problem != '\0') found.bad_line = lines.number();
    return found;
  }
  found.line = lines.number();
  Lines behind = lines;
  ScanKeys(lines, found);
  const char* not_looked_at = "";
  if (FindSection(behind, &section, name, not_looked_at)) found.repeated = behind.number();
  return found;
}

std::vector<IniProblem> ScanProblems(const char* file) {
  std::vector<IniProblem> found;
  const auto add = [&found](int line, const char* problem) {
    if (*problem != '\0') found.push_back({line, std::string(problem) + ", and hides what is behind it"});
  };
  std::string text;
  ReadText(file, text);
  if (text.starts_with(kByteOrderMark)) found.push_back({1, "a byte order mark hides this line"});
  Lines lines(text);
  const char* problem = "";
  std::string_view name;
  while (FindSection(lines, nullptr, name, problem)) {
    if (name.empty()) found.push_back({lines.number(), "a section without a name, which nobody finds"});
    IniSection section;
    Lines keys = lines;
    ScanKeys(keys, section);
    add(section.bad_line, section.problem);
  }
  add(lines.number(), problem);
  return found;
}
