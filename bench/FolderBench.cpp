// What listing and searching a nested tree of 100,000 entries and reading a file of 256 MiB cost, beside the
// tools that the C and C++ libraries have for it, which here do the same: every path found is kept in one
// text.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <fts.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "FolderModule/FolderModule.h"
#include "bench/BenchPath.h"

namespace {

namespace fs = std::filesystem;

constexpr int kBranches = 10;  // folders in a folder, on three levels
constexpr int kFiles = 89;     // in each folder of the lowest level
constexpr int kEntries = 10 + 100 + 1000 + 1000 * kFiles + 9890;
constexpr std::size_t kFileSize = 256 * 1024 * 1024;
const char* const kWanted = "file_50.txt";

struct Tree {
  std::string path = BenchPath("vintra_bench_tree");
  Tree() {
    fs::remove_all(path);
    fs::create_directory(path);
    Fill(path, 3);
    for (int file = 0; file < 9890; ++file) std::ofstream(path + "/name_" + std::to_string(file) + ".txt");
  }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;
  ~Tree() { fs::remove_all(path); }

 private:
  static void Fill(const std::string& folder, int levels) {
    for (int branch = 0; levels > 0 && branch < kBranches; ++branch) {
      const std::string below = folder + "/folder_" + std::to_string(branch);
      fs::create_directory(below);
      Fill(below, levels - 1);
    }
    for (int file = 0; levels == 0 && file < kFiles; ++file) {
      std::ofstream(folder + "/file_" + std::to_string(file) + ".txt");
    }
  }
};

Tree& TheTree() {
  static Tree tree;
  return tree;
}

template <typename Walk>
void RunWalk(benchmark::State& state, int expected, Walk walk) {
  Tree& tree = TheTree();
  for (auto _ : state) {
    if (walk(tree) != expected) state.SkipWithError("the walk has not found what is there");
  }
}

// Both sides that keep paths themselves do so like this.
void Keep(std::string& paths, const char* path, std::size_t length) { paths.append(path, length + 1); }

int WalkFts(Tree& tree, const char* wanted) {
  char* const roots[] = {tree.path.data(), nullptr};
  FTS* const walk = fts_open(roots, FTS_PHYSICAL | FTS_NOSTAT, nullptr);
  std::string paths;
  int count = 0;
  while (const FTSENT* const entry = fts_read(walk)) {
    if (entry->fts_info == FTS_DP || entry->fts_level == 0) continue;
    if (wanted != nullptr && (entry->fts_info == FTS_D || std::strcmp(entry->fts_name, wanted) != 0))
      continue;
    Keep(paths, entry->fts_path, entry->fts_pathlen);
    ++count;
  }
  fts_close(walk);
  return count;
}

void ListFts(benchmark::State& state) {
  RunWalk(state, kEntries, [](Tree& tree) { return WalkFts(tree, nullptr); });
}

void ListStd(benchmark::State& state) {
  RunWalk(state, kEntries, [](Tree& tree) {
    std::string paths;
    int count = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree.path)) {
      const std::string& path = entry.path().native();
      Keep(paths, path.c_str(), path.size());
      ++count;
    }
    return count;
  });
}

// The buffer is as large as it has to be, as all of it is filled.
template <typename Walk>
void RunOwnWalk(benchmark::State& state, int expected, Walk walk) {
  int size = 0;
  int count = 0;
  walk(TheTree().path.c_str(), nullptr, 0, &size, &count);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  RunWalk(state, expected, [&](Tree& tree) {
    int total = 0;
    return walk(tree.path.c_str(), bytes.data(), size, &total, &count) == 1 ? count : -1;
  });
}

void List(benchmark::State& state) { RunOwnWalk(state, kEntries, TraversalFolder); }

void SearchFts(benchmark::State& state) {
  RunWalk(state, 1000, [](Tree& tree) { return WalkFts(tree, kWanted); });
}

void Search(benchmark::State& state) {
  RunOwnWalk(state, 1000, [](const char* path, char* files, int length, int* size, int* count) {
    return FindPathByFileName(path, kWanted, files, length, size, count);
  });
}

struct BigFile {
  const std::string path = BenchPath("vintra_bench_big");
  std::vector<char> bytes = std::vector<char>(kFileSize + 1);
  BigFile() { std::ofstream(path).write(bytes.data(), kFileSize); }
  BigFile(const BigFile&) = delete;
  BigFile& operator=(const BigFile&) = delete;
  ~BigFile() { fs::remove(path); }
};

BigFile& TheBigFile() {
  static BigFile file;
  return file;
}

void ReadFileBareLoop(benchmark::State& state) {
  BigFile& big = TheBigFile();
  for (auto _ : state) {
    const int file = open(big.path.c_str(), O_RDONLY);
    std::size_t size = 0;
    ssize_t count = 0;
    while ((count = read(file, big.bytes.data() + size, kFileSize - size)) > 0)
      size += static_cast<std::size_t>(count);
    close(file);
    if (size != kFileSize) state.SkipWithError("the file could not be read");
  }
}

void ReadFile(benchmark::State& state) {
  BigFile& big = TheBigFile();
  for (auto _ : state) {
    int size = 0;
    if (CustomReadFile(big.path.c_str(), big.bytes.data(), kFileSize, &size) != 1 || size != kFileSize) {
      state.SkipWithError("the file could not be read");
    }
  }
}

BENCHMARK(ListFts)->Name("list/fts")->UseRealTime();
BENCHMARK(ListStd)->Name("list/std")->UseRealTime();
BENCHMARK(List)->Name("list/Vintra")->UseRealTime();
BENCHMARK(SearchFts)->Name("search/fts")->UseRealTime();
BENCHMARK(Search)->Name("search/Vintra")->UseRealTime();
BENCHMARK(ReadFileBareLoop)->Name("read_file/bare loop")->UseRealTime();
BENCHMARK(ReadFile)->Name("read_file/Vintra")->UseRealTime();

}  // namespace
