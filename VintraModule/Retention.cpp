#include "VintraModule/Retention.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>

#include "Common/Text.h"
#include "FolderModule/PathParts.h"
#include "VintraModule/LogNames.h"

namespace {

constexpr sint32 kNotRemoved = -1;
constexpr std::int64_t kSecondsOfDay = 86400;

// Nothing for a clock that cannot be read, or that could not give a file its day.
std::optional<std::tm> LocalNow() {
  const vintra::ClockReading now = vintra::ReadClock();
  std::tm local{};
  if (!now.valid || !vintra::ConvertToLocal(now.second, local) || vintra::DayNumber(local) == 0) return {};
  return local;
}

// The day's number on the calendar, from a year that makes all of them positive. Without time_t, which ends
// in 2038 where it has 32 bits: a file of a later day would count as expired. The 31st of a shorter month is
// a day of the next one.
std::int64_t CalendarDay(const std::tm& day) {
  // In a year that begins with March the leap day comes last, and the months are as long as 153 days for
  // five.
  const std::int64_t months = (std::int64_t{day.tm_year} + 1900 + 400) * 12 + day.tm_mon - 2;
  const std::int64_t year = months / 12;
  const std::int64_t month = months % 12;
  return 365 * year + year / 4 - year / 100 + year / 400 + (153 * month + 2) / 5 + day.tm_mday;
}

}  // namespace

sint32 DeleteLogFile(FileList* list_head, uint32 RentDate, const LogHandleRec* log_handle) {
  vintra::FileListPtr rest(list_head);
  std::optional<std::tm> now;
  while (rest) {
    const std::unique_ptr<FileList> entry(rest.release());
    rest.reset(entry->next);

    const std::optional<std::tm> day = vintra::DayOfEntry(*log_handle, vintra::FieldText(entry->file_name));
    if (!day) continue;
    if (!now) now = LocalNow();
    if (!now) return vintra::kClockUnreadable;
    // Where winter time is the exception to the standard, the first second of a winter day lies an hour back
    // in the day before, and late in the evening today's files would count as yesterday's.
    const std::int64_t calendar_age = CalendarDay(*now) - CalendarDay(*day);
    const std::int64_t age = std::min<std::int64_t>(GetDiffDay(*now, *day), calendar_age);
    if (age < RentDate) continue;

    sint8 path[vintra::kPathSize];
    if (!vintra::JoinPath(path, log_handle->log_file_path, entry->file_name, "")) continue;
    if (std::remove(path) != 0) return kNotRemoved;
  }
  return vintra::kSuccess;
}

sint32 GetDiffDay(std::tm later, std::tm earlier) {
  const std::int64_t days =
      (std::int64_t{std::mktime(&later)} - std::int64_t{std::mktime(&earlier)}) / kSecondsOfDay;
  return static_cast<sint32>(std::clamp<std::int64_t>(days, INT32_MIN, INT32_MAX));
}

namespace vintra {

void RemoveExpiredFiles(const LogHandleRec& handle) {
  if (handle.log_time_span == 0) return;
  // What a pass leaves behind the next one finds again. The file is opened all the same.
  static_cast<void>(
      DeleteLogFile(ListFileName(handle.log_file_path, &handle), handle.log_time_span, &handle));
}

}  // namespace vintra
