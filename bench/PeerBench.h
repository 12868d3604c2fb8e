// The measurements that every logging library goes through, ours and the bare loop included.
//
// All write the same messages behind the date, the time with milliseconds, the level and the module, each in
// the fastest set-up of its own that does so; what is not equal is said in its file and on the page of
// results. A peer is a class: its constructor opens a log as a Kind says, its destructor brings everything to
// the file and closes it, Long and Short write a record, kName is its column, and Does tells what it cannot
// do.
#ifndef VINTRA_BENCH_PEERBENCH_H
#define VINTRA_BENCH_PEERBENCH_H

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "bench/BenchPath.h"

enum class Kind {
  kBuffered,   // one file, written every 64 KiB or so
  kFlushed,    // one file, every record flushed to the system
  kFiltered,   // buffered; records lie below the threshold
  kOpening,    // buffered; nothing is written
  kRollover,   // buffered; four files of 1 MiB
  kDate,       // buffered; a file per day, of one size or with a limit
  kScrambled,  // buffered; bytes are XORed
};

constexpr int kFlushSize = 65536;
constexpr int kFileLimit = 4 * 1024 * 1024;  // small enough to stay in memory that is warm
constexpr int kRingFiles = 4;                // of a quarter of that
constexpr int kRecordsPerFile = kFileLimit / 86;
constexpr int kTimedCalls = 50000;
inline const char* const kHost = "10.0.0.17";

// The base of what owns a log or a file.
struct NotCopied {
  NotCopied() = default;
  NotCopied(const NotCopied&) = delete;
  NotCopied& operator=(const NotCopied&) = delete;
};

// A folder for one log, removed at the end.
struct Folder : NotCopied {
  Folder() { std::filesystem::create_directory(path); }
  ~Folder() { std::filesystem::remove_all(path); }

  std::string LogPath() const { return path + "/app.log"; }

  // Starts the file over, which the peer appends to.
  bool Empty() const {
    return std::ranges::all_of(std::filesystem::directory_iterator(path),
                               [](const auto& file) { return truncate(file.path().c_str(), 0) == 0; });
  }

  // Whether the files are those of a ring; each may end one buffer above its limit.
  bool IsRing() const {
    const std::filesystem::directory_iterator files(path);
    return std::distance(begin(files), end(files)) <= kRingFiles &&
           std::ranges::all_of(std::filesystem::directory_iterator(path), [](const auto& file) {
             return file.file_size() <= kFileLimit / kRingFiles + kFlushSize;
           });
  }

  std::string Contents() const {
    std::string all;
    for (const auto& file : std::filesystem::directory_iterator(path)) {
      std::ifstream stream(file.path(), std::ios::binary);
      const std::size_t before = all.size();
      all.resize(before + file.file_size());
      stream.read(all.data() + before, static_cast<std::streamsize>(file.file_size()));
    }
    return all;
  }

  const std::string path = BenchPath("vintra_bench_log." + std::to_string(getpid()));
};

template <typename Peer>
struct Log {
  explicit Log(Kind kind) : peer(std::in_place, kind, folder.LogPath()) {}

  Folder folder;
  std::optional<Peer> peer;
};

template <typename Peer>
void WriteLong(Peer& peer, int number) {
  peer.Long(number);
}

template <typename Peer>
void WriteShort(Peer& peer, int number) {
  peer.Short(number);
}

// Closes the log behind one more record, and says what is wrong with its files, or null.
template <typename Peer>
const char* CloseAndCheck(Log<Peer>& log, Kind kind) {
  constexpr int kLast = 123456789;
  log.peer->Long(kLast);
  log.peer.reset();
  std::string text = log.folder.Contents();
  if (kind == Kind::kScrambled)
    std::ranges::transform(text, text.begin(), [](char byte) { return byte ^ 0x3C; });
  if (kind == Kind::kFiltered)
    return text.find("request") == text.npos ? nullptr : "a record passed the filter";
  if (text.find("request 123456789 from 10.0.0.17 took 123456.789 ms") == text.npos)
    return "a record is lost";
  const bool numbered = kind == Kind::kRollover || (kind == Kind::kDate && Peer::kLimitsFiles);
  return numbered && !log.folder.IsRing() ? "the files are not a ring" : nullptr;
}

// A record, from one thread or from several through one logger: what the calls take in real time, divided by
// their number in all threads. Opening and closing lie outside.
template <typename Peer, void (*write)(Peer&, int)>
void RunRecords(benchmark::State& state, Kind kind) {
  static std::unique_ptr<Log<Peer>> log;
  const bool first = state.thread_index() == 0;
  if (first) log = std::make_unique<Log<Peer>>(kind);
  // One thread starts the file over for all, where the log does not do so itself.
  const int until_full = Peer::kLimitsFiles || kind == Kind::kRollover || kind == Kind::kFiltered || !first
                             ? 0
                             : kRecordsPerFile / state.threads();
  bool emptied = true;
  int number = 0;
  int left = until_full;
  for (auto _ : state) {
    write(*log->peer, number++);
    if (--left == 0) {
      emptied = log->folder.Empty() && emptied;
      left = until_full;
    }
  }
  if (!first) return;
  const char* const wrong = CloseAndCheck(*log, kind);
  if (!emptied || wrong != nullptr)
    state.SkipWithError(wrong != nullptr ? wrong : "the file could not be emptied");
  log.reset();
}

inline std::int64_t Now() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * 1'000'000'000 + now.tv_nsec;
}

// What each of count calls takes by itself, sorted.
template <typename Call>
std::vector<std::int64_t> TimeCalls(int count, Call call) {
  std::vector<std::int64_t> times(static_cast<std::size_t>(count));
  for (std::int64_t& time : times) {
    const std::int64_t before = Now();
    call();
    time = Now() - before;
  }
  std::ranges::sort(times);
  return times;
}

// The distribution of single calls, of which an empty measurement's median is taken off.
template <typename Peer>
void RunLatency(benchmark::State& state, Kind kind) {
  Log<Peer> log(kind);
  const std::int64_t empty = TimeCalls(1000, [] {})[500];
  int number = 0;
  std::vector<std::int64_t> times;
  for (auto _ : state) {
    times = TimeCalls(kTimedCalls, [&] { log.peer->Long(number++); });
  }
  state.counters["clock"] = static_cast<double>(empty);
  for (const auto& [name, share] : {std::pair{"p50", 500U}, {"p99", 990U}, {"p99.9", 999U}}) {
    state.counters[name] = static_cast<double>(times[times.size() * share / 1000] - empty);
  }
  if (const char* const wrong = CloseAndCheck(log, kind)) state.SkipWithError(wrong);
}

// Opening and closing a log whose folder and file exist.
template <typename Peer>
void RunOpening(benchmark::State& state, Kind kind) {
  const Folder folder;
  for (auto _ : state) {
    const Peer peer(kind, folder.LogPath());
    benchmark::ClobberMemory();
  }
}

// For whoever counts instructions: writes records and measures nothing.
template <typename Peer, void (*write)(Peer&, int)>
void JustWrite(Kind kind, int count) {
  Log<Peer> log(kind);
  for (int number = 0; number < count; ++number) write(*log.peer, number);
}

// The functions that write records, by "scenario/peer".
inline std::map<std::string, std::function<void(int)>>& Writers() {
  static std::map<std::string, std::function<void(int)>> writers;
  return writers;
}

// Whether measurements from several threads are to run, or those from one: a process that has had threads
// pays for locks and allocations as one that has not does not, and so has none of the others.
inline bool Threaded() { return std::getenv("VINTRA_BENCH_THREADED") != nullptr; }

template <typename Peer>
bool RegisterPeer() {
  constexpr auto kLong = WriteLong<Peer>;
  constexpr auto kShort = WriteShort<Peer>;
  const struct {
    const char* name;
    Kind kind;
    int threads;
    void (*run)(benchmark::State&, Kind);
    void (*write)(Kind, int);
  } scenarios[] = {
      {"long", Kind::kBuffered, 1, RunRecords<Peer, kLong>, JustWrite<Peer, kLong>},
      {"short", Kind::kBuffered, 1, RunRecords<Peer, kShort>, JustWrite<Peer, kShort>},
      {"long_threads", Kind::kBuffered, 4, RunRecords<Peer, kLong>, nullptr},
      {"flushed", Kind::kFlushed, 1, RunRecords<Peer, kLong>, JustWrite<Peer, kLong>},
      {"flushed_threads", Kind::kFlushed, 4, RunRecords<Peer, kLong>, nullptr},
      {"filtered_long", Kind::kFiltered, 1, RunRecords<Peer, kLong>, JustWrite<Peer, kLong>},
      {"filtered_short", Kind::kFiltered, 1, RunRecords<Peer, kShort>, JustWrite<Peer, kShort>},
      {"rollover", Kind::kRollover, 1, RunRecords<Peer, kLong>, nullptr},
      {"date", Kind::kDate, 1, RunRecords<Peer, kLong>, nullptr},
      {"scrambled", Kind::kScrambled, 1, RunRecords<Peer, kLong>, nullptr},
      {"latency", Kind::kBuffered, 1, RunLatency<Peer>, nullptr},
      {"latency_flushed", Kind::kFlushed, 1, RunLatency<Peer>, nullptr},
      {"opening", Kind::kOpening, 1, RunOpening<Peer>, nullptr},
  };
  for (const auto& scenario : scenarios) {
    if (!Peer::Does(scenario.kind, scenario.threads) || Threaded() != (scenario.threads > 1)) continue;
    const std::string name = std::string(scenario.name) + "/" + Peer::kName;
    const Kind kind = scenario.kind;
    benchmark::internal::Benchmark* const measurement = benchmark::RegisterBenchmark(
        name.c_str(), [run = scenario.run, kind](benchmark::State& state) { run(state, kind); });
    measurement->UseRealTime()->Threads(scenario.threads);
    if (scenario.run == RunLatency<Peer>) measurement->Iterations(1);
    if (scenario.write != nullptr) {
      Writers()[name] = [write = scenario.write, kind](int count) { write(kind, count); };
    }
  }
  return true;
}

#endif
