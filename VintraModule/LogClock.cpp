#include "VintraModule/LogClock.h"

#include <sys/timeb.h>
#include <time.h>

namespace vintra {

namespace {

// tzset may be writing these in another thread. Whatever is seen of that only causes one more conversion.
ZoneMark CurrentZone() {
  return {__atomic_load_n(&::timezone, __ATOMIC_RELAXED), __atomic_load_n(&::daylight, __ATOMIC_RELAXED),
          __atomic_load_n(&::tzname[0], __ATOMIC_RELAXED), __atomic_load_n(&::tzname[1], __ATOMIC_RELAXED)};
}

}  // namespace

bool ReadClock(ClockReading& now) {
  timeb fine{};
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  ftime(&fine);
#pragma GCC diagnostic pop
  const std::time_t second = ::time(nullptr);
  if (second == static_cast<std::time_t>(-1)) return false;
  // time() may read a clock that is up to a tick behind that of ftime(), or be called after the second has
  // turned.
  const bool at_edge = fine.time == second + 1 || fine.time == second - 1;
  now.second = at_edge ? fine.time : second;
  now.millisecond = fine.millitm;
  return true;
}

void UpdateSecondText(SecondText& text, std::time_t second) {
  if (text.valid && second == text.second - 1) second = text.second;
  if (text.valid && second == text.second && CurrentZone() == text.zone) return;

  // localtime_r alone may miss a time zone that the host has changed since.
  tzset();
  std::tm local{};
  const bool converted = localtime_r(&second, &local) != nullptr;
  text.date_length = converted ? std::strftime(text.text, kConversionSize, "%Y-%m-%d ", &local) : 0;
  sint8* const time_text = text.text + text.date_length;
  text.time_length = converted ? std::strftime(time_text, kConversionSize, "%H:%M:%S", &local) : 0;
  text.second = second;
  text.zone = CurrentZone();
  text.valid = true;
}

}  // namespace vintra
