#include "tools/NextFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <vector>

#include "tools/LogSection.h"

namespace {

struct Candidate {
  std::string path;
  struct stat status = {};
  bool exists = false;
};

bool IsOlder(const Candidate& one, const Candidate& other) {
  const timespec& before = one.status.st_mtim;
  const timespec& after = other.status.st_mtim;
  return before.tv_sec != after.tv_sec ? before.tv_sec < after.tv_sec : before.tv_nsec < after.tv_nsec;
}

std::string Padded(uint32 number) {
  const std::string digits = std::to_string(number);
  return std::string(3 - std::min<std::size_t>(digits.size(), 3), '0') + digits;
}

std::string Today() {
  const std::time_t now = std::time(nullptr);
  std::tm local = {};
  char text[16] = "";
  if (localtime_r(&now, &local) != nullptr) std::strftime(text, sizeof text, "%Y%m%d", &local);
  return text;
}

Candidate Examine(const LogConfigRecEx& config, uint32 number) {
  char drive[VINTRA_PATH_SIZE] = "";
  char folder[VINTRA_PATH_SIZE] = "";
  char base[VINTRA_PATH_SIZE] = "";
  char extension[VINTRA_PATH_SIZE] = "";
  SplitPath(config.log_file_name, drive, folder, base, extension);
  char front[VINTRA_PATH_SIZE] = "";
  if (*drive == '\0') GetDLLDir(front);
  std::replace(folder, folder + sizeof folder, '\\', '/');
  Candidate candidate{std::string(front) + drive + folder + base};
  if (config.log_mode == Log_Mode_Date) candidate.path += '_' + Today() + '_';
  if (config.log_mode != Log_Mode_Simple) candidate.path += Padded(number);
  candidate.path += extension;
  candidate.exists = stat(candidate.path.c_str(), &candidate.status) == 0;
  return candidate;
}

}  // namespace

NextFile FindNextFile(const LogConfigRecEx& config) {
  if (DirectivesOf(config.log_format).find('C') != std::string::npos)
    return {Examine(config, 0).path, "emptied, by the %C of its format"};
  const uint32 count = config.log_mode == Log_Mode_Simple ? 1 : config.max_backup_index;
  std::vector<Candidate> full;
  while (full.size() < count) {
    const Candidate next = Examine(config, static_cast<uint32>(full.size()));
    if (!next.exists) return {next.path, "made"};
    if (next.status.st_size < off_t{config.max_file_size}) return {next.path, "appended to"};
    full.push_back(next);
  }
  const bool is_newest =
      full.size() > 1 && std::max_element(full.begin(), full.end(), IsOlder) == full.begin();
  return {full.front().path,
          is_newest ? "emptied, as all are full, though it is the newest" : "emptied, as all are full"};
}
