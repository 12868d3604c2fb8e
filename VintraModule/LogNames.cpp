#include "VintraModule/LogNames.h"

#include <charconv>
#include <cstdio>

#include "Common/Text.h"
#include "FolderModule/PathParts.h"

namespace vintra {

namespace {

// Base name 63, two separators, date 10, number 10 and the terminator.
static_assert(kTextSize - 1 + 2 + 10 + 10 + 1 <= kFileNameSize);

constexpr std::size_t kDateStart = 1;     // behind the base name: a separator,
constexpr std::size_t kDateSize = 8;      // the date,
constexpr std::size_t kDatedEnding = 13;  // and a separator and a number of three characters

int ReadDigits(std::string_view digits) {
  int number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return number;
}

}  // namespace

uint32 RingNumber(uint32 number, uint32 ring_size) { return ring_size == 0 ? number : number % ring_size; }

void RollbackName(const LogHandleRec& handle, uint32 number, sint8* name) {
  std::snprintf(name, kFileNameSize, "%s%03u", handle.log_file_name, number);
}

void DateName(const LogHandleRec& handle, uint32 number, sint8* name) {
  std::snprintf(name, kFileNameSize, "%s_%u_%03u", handle.log_file_name, handle.cur_date_ID, number);
}

std::optional<std::tm> DayOfEntry(const LogHandleRec& handle, std::string_view entry) {
  const PathParts parts = SplitPathParts(entry);
  const std::string_view base = FieldText(handle.log_file_name);
  if (!parts.dir.empty()) return std::nullopt;  // a name with '\' is nothing that a log makes
  if (parts.ext != FieldText(handle.log_file_ext)) return std::nullopt;
  if (parts.name.size() != base.size() + kDatedEnding || !parts.name.starts_with(base)) return std::nullopt;
  const std::string_view date = parts.name.substr(base.size() + kDateStart, kDateSize);
  if (date.find_first_not_of("0123456789") != std::string_view::npos) return std::nullopt;
  std::tm day{};
  day.tm_year = ReadDigits(date.substr(0, 4)) - 1900;
  day.tm_mon = ReadDigits(date.substr(4, 2)) - 1;
  day.tm_mday = ReadDigits(date.substr(6, 2));
  return day;
}

}  // namespace vintra
