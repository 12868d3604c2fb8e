// The clock: the instant of a record, and the local date and time text of its second.
#ifndef VINTRA_VINTRAMODULE_LOGCLOCK_H
#define VINTRA_VINTRAMODULE_LOGCLOCK_H

#include <cstddef>
#include <ctime>
#include <string_view>

#include "Common/BaseTypes.h"

namespace vintra {

constexpr std::size_t kConversionSize = 64;  // of one date or time conversion, terminator included
constexpr std::size_t kMillisecondSize = 5;  // of ".%03u "
constexpr std::size_t kCopyBlock = 16;       // by which ready pieces of a line are copied
constexpr std::size_t kStampSize = 2 + 2 * kConversionSize + kMillisecondSize + kCopyBlock;
constexpr uint32 kLastMillisecond = 999;  // beyond it the text has only the last three digits

struct ClockReading {
  bool valid;  // false: the clock could not be read
  std::time_t second;
  uint32 millisecond;
};

// Reads the clock: seconds, and the milliseconds that belong to them.
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

// An instant in local time as the beginning of a line, kept so that a second is converted once and not for
// each record. Whoever has a stamp says once what it shows; the rest begins as all zero.
struct Stamp {
  bool shows_date;
  bool shows_time;

  bool is_valid;     // false: the clock could not be read
  bool is_complete;  // false: what is shown could not be converted, and is left out
  std::time_t second;
  ZoneMark zone;
  uint32 day;  // as the number yyyymmdd; 0: there is none
  uint32 millisecond;
  std::size_t length;      // of the text behind the line break
  sint8 text[kStampSize];  // CR LF "%Y-%m-%d " "%H:%M:%S" ".%03u "

  std::string_view View(bool with_break) const {
    return with_break ? std::string_view(text, 2 + length) : std::string_view(text + 2, length);
  }
};

// Reads the clock into stamp, converting only for another second or after a change of the time zone. The
// second just before the last one counts as the last one, which then lasts for two: stamps do not step back
// by a second when the clock is, as for a leap second.
void ReadClock(Stamp& stamp);

}  // namespace vintra

#endif
