#include "tools/NextFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <vector>

#include "tools/LogSection.h"

namespace {

namespace fs = std::filesystem;

struct Candidate {
  std::string path;
  struct stat status = {};
  int error = 0;  // that keeps start-up from opening it; ENOENT where it is missing
};

// What keeps a missing file from being made, as far as the folders that there are tell; 0 where nothing does.
int ErrorOfMaking(const fs::path& path) {
  std::error_code error;
  fs::path folder = path.parent_path();
  while (!fs::exists(folder, error) && !error && folder.has_relative_path()) folder = folder.parent_path();
  return access(folder.empty() ? "." : folder.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

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

int ErrorOfOpening(const char* path, struct stat& status) {
  if (stat(path, &status) != 0) return errno;
  if (S_ISDIR(status.st_mode)) return EISDIR;
  return access(path, R_OK | W_OK) == 0 ? 0 : errno;
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
  Candidate candidate{std::string(front) + (*base == '/' ? "" : drive) + folder + base};
  if (config.log_mode == Log_Mode_Date) candidate.path += '_' + Today() + '_';
  if (config.log_mode != Log_Mode_Simple) candidate.path += Padded(number);
  candidate.path += extension;
  candidate.error = ErrorOfOpening(candidate.path.c_str(), candidate.status);
  return candidate;
}

NextFile Missing(const std::string& path) {
  const int error = ErrorOfMaking(path);
  return {path, error == 0 ? "made" : std::string("cannot be made: ") + std::strerror(error)};
}

}  // namespace

NextFile FindNextFile(const LogConfigRecEx& config) {
  const bool empties = DirectivesOf(config.log_format).find('C') != std::string::npos;
  const uint32 count = config.log_mode == Log_Mode_Simple ? 1 : config.max_backup_index;
  std::vector<Candidate> full;
  while (full.size() < count) {
    const Candidate next = Examine(config, static_cast<uint32>(full.size()));
    if (next.error == ENOENT) return Missing(next.path);
    if (next.error != 0) return {next.path, std::string("cannot be opened: ") + std::strerror(next.error)};
    if (empties) return {next.path, "emptied, by the %C of its format"};
    if (next.status.st_size < off_t{config.max_file_size}) return {next.path, "appended to"};
    full.push_back(next);
  }
  const bool is_newest =
      full.size() > 1 && std::max_element(full.begin(), full.end(), IsOlder) == full.begin();
  const char* const fate = count == 1 ? "emptied, as it is full" : "emptied, as all are full";
  return {full.front().path, std::string(fate) + (is_newest ? ", though it is the newest" : "")};
}
