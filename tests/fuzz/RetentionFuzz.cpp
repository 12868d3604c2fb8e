// Any entry of a log folder: dated by its whole name, never removed otherwise; and a log's own names are
// dated.
#include "Common/Text.h"
#include "VintraModule/LogNames.h"
#include "VintraModule/Retention.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

// The date in "<base>.<date>....<ext>" with a dot for any byte, or -1.
int DateIn(const std::string& entry, const std::string& base, const std::string& ext) {
  if (entry.size() != base.size() + 13 + ext.size() || !entry.starts_with(base) || !entry.ends_with(ext))
    return -1;
  if (entry.rfind('.') != (ext.empty() ? std::string::npos : entry.size() - ext.size())) return -1;
  const std::string date = entry.substr(base.size() + 1, 8);
  const bool is_date = date.find_first_not_of("0123456789") == std::string::npos;
  return is_date && entry.find('\\') == std::string::npos ? std::stoi(date) : -1;
}

int DateFound(const LogHandleRec& handle, const std::string& entry) {
  const std::optional<std::tm> day = vintra::DayOfEntry(handle, entry);
  Require(!day || (day->tm_hour | day->tm_min | day->tm_sec | day->tm_isdst) == 0);
  return day ? (day->tm_year + 1900) * 10000 + (day->tm_mon + 1) * 100 + day->tm_mday : -1;
}

}  // namespace

void Try(std::string_view input) {
  const std::string base = TakeText(input).substr(0, 63), ext = TakeText(input).substr(0, 63),
                    entry = TakeText(input).substr(0, 255);
  LogHandleRec handle = null_log_handle_rec;
  vintra::CopyText(handle.log_file_path, "./");
  vintra::CopyText(handle.log_file_name, base);
  vintra::CopyText(handle.log_file_ext, ext);

  const std::string file = base + ext;
  if (file.find_first_of("/\\") == std::string::npos &&
      file.rfind('.') == (ext.empty() ? std::string::npos : base.size())) {
    uint32 choice = 0;
    input.copy(reinterpret_cast<char*>(&choice), sizeof choice);
    const uint32 date = 10000000 + choice % 90000000, number = choice % 1100;
    const std::unique_ptr<char[]> name = Block(vintra::kFileNameSize);
    handle.cur_date_ID = date;
    vintra::DateName(handle, number, name.get());
    Require(DateFound(handle, name.get() + ext) == (number < 1000 ? static_cast<int>(date) : -1));
  }

  if (entry.find('/') != std::string::npos) return;
  const int date = DateIn(entry, base, ext);
  Require(DateFound(handle, entry) == date);
  Folder();
  if (!std::ofstream(entry)) return;
  handle.log_time_span = 1;
  vintra::RemoveExpiredFiles(handle);
  Require(std::filesystem::remove(entry) || date != -1);
}
