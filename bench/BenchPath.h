// Where the benchmarks keep their files.
#ifndef VINTRA_BENCH_BENCHPATH_H
#define VINTRA_BENCH_BENCHPATH_H

#include <cstdlib>
#include <filesystem>
#include <string>

// In the folder that the variable names, or in the system's temporary folder.
inline std::string BenchPath(const std::string& name, const char* variable = "VINTRA_BENCH_DIR") {
  const char* const folder = std::getenv(variable);
  return (folder != nullptr ? std::filesystem::path(folder) : std::filesystem::temp_directory_path()) / name;
}

// On a disk, for what is brought there.
inline std::string DiskPath(const std::string& name) { return BenchPath(name, "VINTRA_BENCH_DISK_DIR"); }

#endif
