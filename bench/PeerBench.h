// The record of RecordBench.cpp written by other logging libraries: from one thread, synchronously, into one
// file.
//
// Each writes the same message behind the date, the time with milliseconds, the level and the module, in the
// fastest set-up of its own that does so; what is not equal is said in its file. All append, so that their
// file can be emptied under them at about the size at which ours starts over.
#ifndef VINTRA_BENCH_PEERBENCH_H
#define VINTRA_BENCH_PEERBENCH_H

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "bench/BenchPath.h"

constexpr int kPeerFlushSize = 65536;

// For the file of one run, which is removed at its end.
class PeerFile {
 public:
  PeerFile() { std::filesystem::remove(path); }
  PeerFile(const PeerFile&) = delete;
  PeerFile& operator=(const PeerFile&) = delete;
  ~PeerFile() { std::filesystem::remove(path); }

  const std::string path = BenchPath("vintra_bench_peer.log");
};

// write(number, host, milliseconds) logs one record, and flush() brings all of them to the file.
template <typename Write, typename Flush>
void RunPeer(benchmark::State& state, const PeerFile& file, Write write, Flush flush) {
  constexpr int kRecords = 4 * 1024 * 1024 / 86;  // in a file, at about that many bytes each
  int number = 0;
  for (auto _ : state) {
    write(number, "10.0.0.17", number * 0.001);
    if (++number % kRecords == 0 && truncate(file.path.c_str(), 0) != 0) {
      state.SkipWithError("the file could not be emptied");
    }
  }
  flush();
  std::ifstream stream(file.path);
  const std::string text(std::istreambuf_iterator<char>(stream), {});
  char last[128];
  std::snprintf(last, sizeof last, "request %d from 10.0.0.17 took %.3f ms", number - 1,
                (number - 1) * 0.001);
  if (text.size() > 5 * 1024 * 1024 || text.find(last) == text.npos) {
    state.SkipWithError("the file does not hold the last records, or was not emptied");
  }
  state.SetItemsProcessed(state.iterations());
}

#endif
