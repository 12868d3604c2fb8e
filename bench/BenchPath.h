// Where the benchmarks keep their files.
#ifndef VINTRA_BENCH_BENCHPATH_H
#define VINTRA_BENCH_BENCHPATH_H

#include <cstdlib>
#include <filesystem>
#include <string>

// In VINTRA_BENCH_DIR, or in the system's temporary folder.
inline std::string BenchPath(const char* name) {
  const char* const folder = std::getenv("VINTRA_BENCH_DIR");
  return (folder != nullptr ? std::filesystem::path(folder) : std::filesystem::temp_directory_path()) / name;
}

#endif
