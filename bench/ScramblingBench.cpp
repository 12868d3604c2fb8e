// What the conversion of a file of 256 MiB and of a buffer costs, beside bare loops of the same kind and
// beside cp.
//
// Every side overwrites the same file, so that each finds its memory as the others have left it.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "VintraModule/VintraModule.h"
#include "bench/BenchPath.h"

namespace {

constexpr std::size_t kFileSize = 256 * 1024 * 1024;
constexpr std::size_t kBlockSize = 128 * 1024;
constexpr std::size_t kBufferSize = 64 * 1024;

// The bare loops XOR with this, which the compiler sees as it sees the library's own mask.
constexpr char kMask = 0x3C;

// A pair of files, of which the first one is filled once and lies in the page cache from then on.
struct Files {
  const std::string from = BenchPath("vintra_bench_from");
  const std::string to = BenchPath("vintra_bench_to");
  Files() {
    std::ofstream file(from);
    const std::vector<char> block(kBlockSize, 'x');
    for (std::size_t size = 0; size < kFileSize; size += block.size()) file.write(block.data(), kBlockSize);
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;
  ~Files() {
    std::filesystem::remove(from);
    std::filesystem::remove(to);
  }
};

const Files& TheFiles() {
  static const Files files;
  return files;
}

bool BareConvert(const std::string& from, const std::string& to) {
  const int source = open(from.c_str(), O_RDONLY);
  const int dest = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  std::vector<char> block(kBlockSize);
  ssize_t count = 0;
  while ((count = read(source, block.data(), block.size())) > 0) {
    for (ssize_t at = 0; at < count; ++at) block[static_cast<std::size_t>(at)] ^= kMask;
    if (write(dest, block.data(), static_cast<std::size_t>(count)) != count) count = -1;
  }
  close(source);
  close(dest);
  return count == 0;
}

template <typename Work>
void RunFiles(benchmark::State& state, Work work) {
  const Files& files = TheFiles();
  for (auto _ : state) {
    if (!work(files.from, files.to)) state.SkipWithError("the file could not be converted");
  }
}

void ConvertBareLoop(benchmark::State& state) { RunFiles(state, BareConvert); }

void ConvertCp(benchmark::State& state) {
  RunFiles(state, [](const std::string& from, const std::string& to) {
    return std::system(("exec cp '" + from + "' '" + to + "'").c_str()) == 0;
  });
}

void Convert(benchmark::State& state) {
  RunFiles(state, [](const std::string& from, const std::string& to) {
    return FileConvert(from.c_str(), to.c_str()) == 0;
  });
}

// The same two places for both sides, as their distance in memory makes a difference of a third.
alignas(64) char source_buffer[kBufferSize];
alignas(64) char dest_buffer[kBufferSize];

template <typename Work>
void RunBuffers(benchmark::State& state, Work work) {
  for (auto _ : state) {
    work(source_buffer, dest_buffer);
    benchmark::ClobberMemory();
  }
}

void ScrambleBareLoop(benchmark::State& state) {
  RunBuffers(state, [](const char* __restrict source, char* __restrict dest) {
    for (std::size_t at = 0; at < kBufferSize; ++at) dest[at] = static_cast<char>(source[at] ^ kMask);
  });
}

void Scramble(benchmark::State& state) {
  RunBuffers(state, [](const char* source, char* dest) {
    uint32 size = kBufferSize;
    GetEncryptData(source, size, dest, &size);
  });
}

BENCHMARK(ConvertBareLoop)->Name("convert/bare loop")->UseRealTime();
BENCHMARK(ConvertCp)->Name("convert/cp")->UseRealTime();
BENCHMARK(Convert)->Name("convert/Vintra")->UseRealTime();
BENCHMARK(ScrambleBareLoop)->Name("scramble/bare loop")->UseRealTime();
BENCHMARK(Scramble)->Name("scramble/Vintra")->UseRealTime();

}  // namespace
