// The clock: the instant of a record, and the local date and time text of its second.
#ifndef VINTRA_VINTRAMODULE_LOGCLOCK_H
#define VINTRA_VINTRAMODULE_LOGCLOCK_H

#include <cstddef>
#include <ctime>
#include <string_view>

#include "Common/BaseTypes.h"

namespace vintra {

constexpr std::size_t kConversionSize = 64;  // of one date or time conversion, terminator included

struct ClockReading {
  bool valid;  // false: the clock could not be read
  std::time_t second;
  uint32 millisecond;
};

// Reads the clock. The milliseconds come from one call and the second from a later one, which may stand on
// the other side of a second's edge; the second is then the one that the milliseconds belong to.
ClockReading ReadClock();

// Converts to local time, by the time zone as it is now. Returns false for a second that has no date.
bool ConvertToLocal(std::time_t second, std::tm& local);

// The day as the number yyyymmdd, or 0 for a year that the number has no room for.
uint32 DayNumber(const std::tm& local);

// What the C library last knew of the local time zone. Its names are compared as pointers and never read:
// another thread may be replacing them.
struct ZoneMark {
  long seconds_west;
  int has_daylight;
  const char* standard_name;
  const char* daylight_name;

  bool operator==(const ZoneMark&) const = default;
};

// Day, date text and time text of one second in local time, kept so that it is converted once a second and
// not once a record. All zero is the empty cache.
struct SecondText {
  bool valid;  // the fields below are those of second
  std::time_t second;
  ZoneMark zone;
  uint32 day;                       // as the number yyyymmdd; 0: there is none
  std::size_t date_length;          // 0: the date could not be converted
  std::size_t time_length;          // 0: the time could not be converted
  sint8 text[2 * kConversionSize];  // "%Y-%m-%d " and directly behind it "%H:%M:%S"

  std::string_view View(bool with_date, bool with_time) const {
    return {text + (with_date ? 0 : date_length),
            (with_date ? date_length : 0) + (with_time ? time_length : 0)};
  }
};

// Reads the clock and makes text that of its second, converting only for another second or after a change of
// the time zone; text is empty when the clock cannot be read. The second just before the last one counts as
// the last one, which then lasts for two: stamps do not step back by a second when the clock is, as for a
// leap second.
ClockReading ReadClock(SecondText& text);

}  // namespace vintra

#endif
