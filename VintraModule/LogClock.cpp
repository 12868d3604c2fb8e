#include "VintraModule/LogClock.h"

#include <sys/timeb.h>
#include <time.h>

#include <cstdint>

namespace vintra {

namespace {

// tzset may be writing these in another thread. Whatever is seen of that only causes one more conversion.
ZoneMark CurrentZone() {
  return {__atomic_load_n(&::timezone, __ATOMIC_RELAXED), __atomic_load_n(&::daylight, __ATOMIC_RELAXED),
          __atomic_load_n(&::tzname[0], __ATOMIC_RELAXED), __atomic_load_n(&::tzname[1], __ATOMIC_RELAXED)};
}

void UpdateSecondText(SecondText& text, std::time_t second) {
  if (text.valid && second == text.second - 1) second = text.second;
  if (text.valid && second == text.second && CurrentZone() == text.zone) return;

  std::tm local{};
  const bool converted = ConvertToLocal(second, local);
  text.day = converted ? DayNumber(local) : 0;
  text.date_length = converted ? std::strftime(text.text, kConversionSize, "%Y-%m-%d ", &local) : 0;
  sint8* const time_text = text.text + text.date_length;
  text.time_length = converted ? std::strftime(time_text, kConversionSize, "%H:%M:%S", &local) : 0;
  text.second = second;
  text.zone = CurrentZone();
  text.valid = true;
}

}  // namespace

ClockReading ReadClock() {
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

bool ConvertToLocal(std::time_t second, std::tm& local) {
  tzset();  // localtime_r alone may miss a time zone that the host has changed since
  return localtime_r(&second, &local) != nullptr;
}

uint32 DayNumber(const std::tm& local) {
  const std::int64_t year = std::int64_t{local.tm_year} + 1900;
  const std::int64_t number = (year * 100 + local.tm_mon + 1) * 100 + local.tm_mday;
  return year >= 0 && number <= INT32_MAX ? static_cast<uint32>(number) : 0;
}

ClockReading ReadClock(SecondText& text) {
  const ClockReading now = ReadClock();
  if (now.valid) {
    UpdateSecondText(text, now.second);
  } else {
    text = {};
  }
  return now;
}

}  // namespace vintra
