#include "VintraModule/Retention.h"

#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "Common/Text.h"
#include "FolderModule/PathParts.h"
#include "VintraModule/LogNames.h"

namespace {

constexpr sint32 kNotRemoved = -1;
constexpr std::int64_t kSecondsOfDay = 86400;

}  // namespace

sint32 DeleteLogFile(FileList* list_head, uint32 RentDate, const LogHandleRec* log_handle) {
  vintra::FileListPtr rest(list_head);
  while (rest) {
    const std::unique_ptr<FileList> entry(rest.release());
    rest.reset(entry->next);

    const std::optional<std::tm> day = vintra::DayOfEntry(*log_handle, vintra::FieldText(entry->file_name));
    if (!day) continue;
    const vintra::ClockReading now = vintra::ReadClock();
    std::tm today{};
    // A clock that gives a file no day gives it no age either.
    const bool usable =
        now.valid && vintra::ConvertToLocal(now.second, today) && vintra::DayNumber(today) != 0;
    if (!usable) return vintra::kClockUnreadable;
    if (std::cmp_less(GetDiffDay(today, *day), RentDate)) continue;

    sint8 path[vintra::kPathSize];
    if (!vintra::JoinPath(path, log_handle->log_file_path, entry->file_name, "")) continue;
    // Takes no folder, whatever its name: those are not the log's.
    if (unlink(path) != 0) return kNotRemoved;
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
