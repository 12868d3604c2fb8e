#include "VintraModule/LogClock.h"

#include <time.h>
#if __has_include(<sys/timeb.h>)
#include <sys/timeb.h>
#endif

#include <cstdint>
#include <cstring>
#include <limits>

namespace vintra {

namespace {

// Never a real time, so the first record converts. (Not the smallest value: a comparison subtracts 1.)
constexpr std::time_t kNoSecond = -std::numeric_limits<std::time_t>::max();

// tzset may be writing these in another thread. Whatever is seen of that only causes one more conversion.
ZoneMark CurrentZone() {
  return {__atomic_load_n(&::timezone, __ATOMIC_RELAXED), __atomic_load_n(&::daylight, __ATOMIC_RELAXED),
          __atomic_load_n(&::tzname[0], __ATOMIC_RELAXED), __atomic_load_n(&::tzname[1], __ATOMIC_RELAXED)};
}

// Apart from its caller, which seldom comes here and needs no stack for it.
[[gnu::noinline]] void ConvertSecond(Stamp& stamp, std::time_t second) {
  std::tm local{};
  const bool converted = ConvertToLocal(second, local);
  sint8* const begin = stamp.text + 2;
  sint8* end = begin;
  stamp.is_complete = true;
  const auto advance = [&](std::size_t length) {
    stamp.is_complete = stamp.is_complete && length != 0;
    end += length;
  };
  std::memcpy(stamp.text, "\r\n", 2);
  if (stamp.shows_date) advance(converted ? std::strftime(end, kConversionSize, "%Y-%m-%d ", &local) : 0);
  if (stamp.shows_time) {
    advance(converted ? std::strftime(end, kConversionSize, "%H:%M:%S", &local) : 0);
    end += kMillisecondSize;
  }
  stamp.length = static_cast<std::size_t>(end - begin);
  stamp.day = converted ? DayNumber(local) : 0;
  // What could not be converted is tried again with the next record.
  stamp.second = stamp.is_complete && stamp.day != 0 ? second : kNoSecond;
  stamp.zone = CurrentZone();
  stamp.is_valid = true;
}

void WriteMillisecond(Stamp& stamp, uint32 millisecond) {
  stamp.millisecond = millisecond;
  if (!stamp.shows_time) return;
  const auto digit = [=](uint32 place) { return static_cast<sint8>('0' + millisecond / place % 10); };
  const sint8 text[kMillisecondSize] = {'.', digit(100), digit(10), digit(1), ' '};
  std::memcpy(stamp.text + 2 + stamp.length - sizeof text, text, sizeof text);
}

#if __has_include(<sys/timeb.h>)
// The milliseconds come from one call and the second from a later one, which may stand on the other side of a
// second's edge; the second is then the one that the milliseconds belong to.
[[maybe_unused]] ClockReading ReadTwoClocks() {
  timeb fine{};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  ftime(&fine);
#pragma GCC diagnostic pop
  const std::time_t second = ::time(nullptr);
  // time() may read a clock that is up to a tick behind that of ftime(), or be called after the second has
  // turned.
  const bool at_edge = fine.time == second + 1 || fine.time == second - 1;
  return {second != static_cast<std::time_t>(-1), at_edge ? fine.time : second, fine.millitm};
}
#endif

[[maybe_unused]] ClockReading ReadOneClock() {
  timespec now{};
  const bool is_read = clock_gettime(CLOCK_REALTIME, &now) == 0;
  return {is_read, now.tv_sec, static_cast<uint32>(now.tv_nsec / 1000000)};
}

}  // namespace

ClockReading ReadClock() {
#if __has_include(<sys/timeb.h>)
  // Where the C library has widened time_t, ftime goes on filling the record of before, which its header does
  // not show any more.
  if constexpr (sizeof(std::time_t) <= sizeof(long)) return ReadTwoClocks();
#endif
  return ReadOneClock();
}

bool ConvertToLocal(std::time_t second, std::tm& local) {
  tzset();  // localtime_r alone may miss a time zone that the host has changed since
  return localtime_r(&second, &local) != nullptr;
}

uint32 DayNumber(const std::tm& local) {
  const std::int64_t year = std::int64_t{local.tm_year} + 1900;
  const std::int64_t number = (year * 100 + local.tm_mon + 1) * 100 + local.tm_mday;
  return year >= 0 && number <= INT32_MAX ? static_cast<uint32>(number) : 0;
}

void ReadClock(Stamp& stamp) {
  const ClockReading now = ReadClock();
  if (!now.valid) {
    stamp.is_valid = false;
    stamp.day = 0;
    return;
  }
  const std::time_t second = stamp.is_valid && now.second == stamp.second - 1 ? stamp.second : now.second;
  const bool is_current = stamp.is_valid && second == stamp.second && CurrentZone() == stamp.zone;
  if (!is_current) ConvertSecond(stamp, second);
  if (!is_current || now.millisecond != stamp.millisecond) WriteMillisecond(stamp, now.millisecond);
}

}  // namespace vintra
