// What finding and rewriting one key of an INI file of 10,000 keys in 100 sections costs, beside a parser
// that reads the file into callbacks and one that loads and saves it whole.
//
// The lookup is of the last key, so that the whole file is read. Rewriting goes to the disk on both sides;
// here fsync does nothing, as it would drown everything else, and RewriteSynced measures it by itself.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <glib.h>
#include <ini.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "ConfigFileINI/ConfigFileINI.h"
#include "bench/BenchPath.h"

namespace {

bool syncs = false;

}  // namespace

// In the place of the C library's, for Vintra and GLib alike.
extern "C" int fsync(int descriptor) { return syncs ? static_cast<int>(syscall(SYS_fsync, descriptor)) : 0; }

namespace {

constexpr int kSections = 100;
constexpr int kKeys = 100;  // in each section
const char* const kLastSection = "section_99";
const char* const kLastKey = "key_99";

struct IniFile {
  const std::string path = BenchPath("vintra_bench.ini");
  IniFile() {
    std::ofstream file(path);
    for (int section = 0; section < kSections; ++section) {
      file << "[section_" << section << "]\n";
      for (int key = 0; key < kKeys; ++key) {
        file << "key_" << key << "=value of key " << key << " in section " << section << "\n";
      }
    }
  }
  IniFile(const IniFile&) = delete;
  IniFile& operator=(const IniFile&) = delete;
  ~IniFile() { std::filesystem::remove(path); }
};

const char* Path() {
  static const IniFile file;
  return file.path.c_str();
}

void LookupBareRead(benchmark::State& state) {
  std::vector<char> bytes(std::filesystem::file_size(Path()));
  for (auto _ : state) {
    FILE* const file = std::fopen(Path(), "re");
    const std::size_t size = std::fread(bytes.data(), 1, bytes.size(), file);
    std::fclose(file);
    int lines = 0;
    const char* const end = bytes.data() + size;
    for (const char* at = bytes.data(); at != end; ++lines) {
      at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at))) + 1;
    }
    if (lines != kSections * (kKeys + 1)) state.SkipWithError("the file is not what it should be");
  }
}

void LookupInih(benchmark::State& state) {
  const ini_handler handler = [](void* found, const char* section, const char* name, const char*) {
    if (std::strcmp(section, kLastSection) == 0 && std::strcmp(name, kLastKey) == 0)
      ++*static_cast<int*>(found);
    return 1;
  };
  for (auto _ : state) {
    int found = 0;
    if (ini_parse(Path(), handler, &found) != 0 || found != 1)
      state.SkipWithError("inih has not found the key");
  }
}

void Lookup(benchmark::State& state) {
  const char* const path = Path();
  for (auto _ : state) {
    char value[64];
    if (GetConfigFileString(kLastSection, kLastKey, "", value, sizeof value, path) == 0) {
      state.SkipWithError("the key was not found");
    }
  }
}

void RewriteGlib(benchmark::State& state) {
  syncs = false;
  int number = 0;
  for (auto _ : state) {
    GKeyFile* const file = g_key_file_new();
    gboolean done = g_key_file_load_from_file(file, Path(), G_KEY_FILE_KEEP_COMMENTS, nullptr);
    g_key_file_set_integer(file, kLastSection, kLastKey, ++number);
    done = done && g_key_file_save_to_file(file, Path(), nullptr);
    g_key_file_unref(file);
    if (!done) state.SkipWithError("GLib has not written the key");
  }
}

void RunRewrite(benchmark::State& state, bool synced) {
  syncs = synced;
  int number = 0;
  for (auto _ : state) {
    if (WriteConfigFileInt(kLastSection, kLastKey, ++number, Path()) != 1) {
      state.SkipWithError("the key was not written");
    }
  }
  syncs = false;
}

void Rewrite(benchmark::State& state) { RunRewrite(state, false); }

void RewriteSynced(benchmark::State& state) { RunRewrite(state, true); }

BENCHMARK(LookupBareRead);
BENCHMARK(LookupInih);
BENCHMARK(Lookup);
BENCHMARK(RewriteGlib)->UseRealTime();
BENCHMARK(Rewrite)->UseRealTime();
BENCHMARK(RewriteSynced)->UseRealTime()->Unit(benchmark::kMicrosecond);

}  // namespace
