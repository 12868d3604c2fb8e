// The three modes, put as plainly as in a manual, held against the library through random histories.
#include <chrono>
#include <iomanip>
#include <iostream>
#include <map>
#include <random>

#include "TestSupport.h"

namespace {

using ModelTest = LogTest;
const std::string kFolder = "/";  // in the place of contents
int records, rolls, removed;      // in all histories

// The number of a day written as yyyymmdd, of which month and day need not exist.
int Days(int date) {
  const auto month = std::chrono::year(date / 10000) / 1 / 1 + std::chrono::months(date / 100 % 100 - 1);
  return static_cast<int>(std::chrono::sys_days(month).time_since_epoch().count()) + date % 100 - 1;
}

struct Model : Settings {
  std::map<std::string, std::string> files;  // contents by name
  std::string base, ext, file, unflushed, errors;
  bool clock = true, open = false, flush_next = false;
  sint32 started = 1, day = 0;
  uint32 size = 0, flushed = 0, number = 0;
  std::tm now{};

  void SetClock(std::time_t second) {
    localtime_r(&second, &now);
    fake.SetClock(clock ? second : -1);
    fake.seconds_per_reading = clock && days == 0;  // whoever reads it twice sees two days
  }
  auto Text(const char* form) const { return (std::ostringstream() << std::put_time(&now, form)).str(); }
  int Today() const { return mode == Log_Mode_Date ? std::stoi(Text("%Y%m%d")) : 0; }
  bool Has(const char* directive) const { return std::strstr(format, directive) != nullptr; }
  std::string Name(uint32 of) const {
    if (mode == Log_Mode_Simple) return base + ext;
    return base + Text(mode == Log_Mode_Date ? "_%Y%m%d_" : "") + std::to_string(1000 + of).substr(1) + ext;
  }
  void Flush() {
    if (open) files[file] += std::exchange(unflushed, ""), flushed = size;
  }
  void RemoveOutdated() {
    if (mode != Log_Mode_Date || days == 0) return;
    const bool early = now.tm_isdst > 0 && now.tm_hour * 3600 + now.tm_min * 60 < now.tm_gmtoff + timezone;
    removed += static_cast<int>(std::erase_if(files, [&](const auto& entry) {
      const std::string& found = entry.first;
      if (found.size() != base.size() + 13 + ext.size() || !found.starts_with(base)) return false;
      const std::string date = found.substr(base.size() + 1, 8);
      if (fs::path(found).extension() != ext || date.find_first_not_of("0123456789") < 8) return false;
      return Days(Today()) - Days(std::stoi(date)) - early >= std::int64_t{days};
    }));
  }
  // Goes on in the file of a number, or starts it over when it is to be empty or is full.
  bool Take(uint32 of, bool empty, const char* who) {
    file = Name(number = of);
    open = files[file] != kFolder;
    const std::string path = fs::path(fake.library_file).replace_filename(file);
    if (!open && clock) errors += who + " open file("s + path + ") for write failed.\n";
    if (open && (empty || files[file].size() >= limit)) files[file].clear();
    size = static_cast<uint32>(files[file].size());
    day = Today();
    return open;
  }
  sint32 Start(const Settings& settings) {
    Flush();
    static_cast<Settings&>(*this) = settings;
    base = fs::path(name).stem();
    ext = fs::path(name).extension();
    open = flush_next = false, flushed = 0;
    if (level == Log_Level_Disable) return 0;
    if (mode == Log_Mode_Date && !clock) return 12;
    RemoveOutdated();
    uint32 of = 0;
    while (mode != Log_Mode_Simple && !Has("%C") && of < ring && files[Name(of)].size() >= limit) ++of;
    return Take(of == ring ? 0 : of, Has("%C"), "LOG_MODULE_INIT_Ex") ? 0 : 5;
  }
  sint32 Write(const std::string& message) {
    if (started == 0 && level > Log_Level_Info) return 0;
    if (!open) return 1;
    if (mode == Log_Mode_Date && !clock) return 12;
    const bool another_day = Today() != day;
    if (another_day || (mode == Log_Mode_Simple ? size >= limit : size > limit)) {
      Flush();
      RemoveOutdated();
      ++rolls, flush_next = true;
      if (!Take(another_day ? 0 : (number + 1) % (ring != 0 ? ring : 1000), true, "LogMsg")) return 5;
    }
    if (!clock) return 12;
    std::string record = size != 0 && (Has("%N") || *format == '\0') ? "\r\n" : "";
    record += Text(Has("%D%T%E") ? "%Y-%m-%d %H:%M:%S.007 [INFO]    " : "  ") + message;
    unflushed += encrypt == 1 ? Unscrambled(record) : record;
    size += static_cast<uint32>(record.size());
    if (std::exchange(flush_next, false) || size - flushed >= flush) Flush();
    return 0;
  }
};

TEST_F(ModelTest, RandomHistories) {
  // clang-format off
  // Summer times of an hour, two and a half, a winter time that is the exception, changes at midnight, one back across it.
  const char* const zones[] = {"UTC", "CET-1CEST,M3.5.0,M10.5.0/3", "XST0XDT-2,M3.5.0/1,M10.5.0/3", "XST-10:30XDT-11,M10.1.0,M4.1.0",
      "IST-1GMT0,M10.5.0,M3.5.0/1", "XST3XDT,M3.5.0/0,M10.5.0/0", "XST5XDT,M3.2.0/0:01,M11.1.0/0:01", "XST-14", "XST11:30"};
  const int dates[] = {20260308, 20260329, 20260405, 20261004, 20261025, 20261101, 20261231, 20280228};
  const char* const names[] = {"app.log", "app.log", "app", "a.b.log", "app."}, *const formats[] = {"none", "", "%N", "%C%N", "%D%T%E%N"};
  const uint32 limits[] = {2, 40, 100, 1000, 1000}, rings[] = {0, 1, 2, 3, 5}, spans[] = {0, 1, 1, 2, 7, UINT32_MAX}, levels[] = {1, 1, 1, 1, 3, 4, 9};
  const uint32 thresholds[] = {0, 10, 700, 4096}, modes[] = {1, 2, 2, 3, 3, 3};
  // clang-format on
  for (int seed = 1; seed <= Rounds(80); ++seed) {
    std::mt19937 random(static_cast<unsigned>(seed));
    const auto below = [&](std::size_t end) { return static_cast<uint32>(random() % end); };
    const auto any = [&](const auto& list) { return list[below(std::size(list))]; };
    for (const auto& entry : fs::directory_iterator(".")) fs::remove_all(entry);
    Model model;
    Settings set{.limit = any(limits), .days = any(spans)};
    std::time_t now = std::time_t{86400} * Days(any(dates)) + std::time_t{60} * below(2880) + 30;
    for (int step = 0; step < 120; ++step) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
      const uint32 what = step == 0 ? 0 : below(24);
      sint32 expected = 0, code = 0;
      if (step == 0 || below(40) == 0) setenv("TZ", any(zones), 1), tzset();
      model.clock = below(25) != 0;
      model.SetClock(now);
      // Never back by one second, which a log's clock does not follow.
      const std::time_t last = now - (now + model.now.tm_gmtoff) % 86400 + 86399;  // second of the day
      const std::time_t to[] = {now + 60L * below(6000), last + below(3), (now / 60 - below(3000)) * 60 - 30};
      if (what > 18 && model.clock) model.SetClock(now = any(to));
      const uint32 room = set.limit - std::min(set.limit, model.size + below(7));
      const uint32 sizes[] = {room, below(30), set.limit - 1 + below(3), set.limit * 3};
      if (what <= 1) {
        if (below(3) != 0)
          set = {any(formats), any(thresholds), any(limits), any(names), any(modes),
                 any(rings),   set.days,        any(levels), below(3)};
        expected = model.started = model.Start(set);
        code = Start(set);
      } else if (what <= 5) {  // a file or folder by hand, of a day nearby
        model.SetClock(now + 86400 - 86400L * below(10));
        std::string name = model.Name(below(6));
        if (below(2) == 0) name.replace(below(name.size()), 1 + below(2), below(3), "x_0.9"[below(5)]);
        if (model.open && name == model.file) continue;
        const bool is_folder = below(8) == 0;
        std::string& file = model.files[name] = kFolder;
        fs::remove(name);
        if (is_folder) fs::create_directory(name);
        if (!is_folder) WriteFile(name, file.assign(any(sizes), 'h'));
      } else if (what == 6) {
        expected = model.started == 0 ? 0 : 1;
        model.Flush();
        code = LOG_MSG_FLUSH(handle_);
      } else {
        const std::string message(any(sizes), static_cast<char>('a' + step % 26));
        expected = model.Write(message);
        code = LOG_INFO(handle_, "%s", message.c_str());
        ++records;
      }
      ASSERT_EQ(Bars(code, Errors()), Bars(expected, std::exchange(model.errors, "")));
      std::map<std::string, std::string> found;
      for (const auto& entry : fs::directory_iterator("."))
        found[entry.path().filename()] = entry.is_directory() ? kFolder : ReadFile(entry.path());
      ASSERT_EQ(found, model.files);
    }
  }
  std::cout << Rounds(80) << " histories, " << records << " records, " << rolls << " rolls, " << removed
            << " files removed\n";
}

}  // namespace
