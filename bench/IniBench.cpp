// The measurements of IniPeer.h, of ourselves too, and of reading the file alone.
//
// In the memory's folder fsync does nothing, as it would drown everything else; on the disk it is the
// system's.
#include <benchmark/benchmark.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <utility>

#include "ConfigFileINI/ConfigFileINI.h"
#include "bench/BenchPath.h"
#include "bench/IniPeer.h"

namespace {

bool syncs = false;

}  // namespace

// In the place of the C library's, for Vintra and GLib alike.
extern "C" int fsync(int descriptor) { return syncs ? static_cast<int>(syscall(SYS_fsync, descriptor)) : 0; }

namespace {

constexpr int kSections = 100;
constexpr int kKeys = 100;  // in each section

struct IniFile {
  const std::string path;
  explicit IniFile(const std::string& name) : path(name) {
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

using LookupCall = bool (*)(const char* path, std::string& value);
using RewriteCall = bool (*)(const char* path, const char* number);

void RunLookup(benchmark::State& state, LookupCall lookup) {
  const IniFile file(BenchPath("vintra_bench.ini"));
  bool found = true;
  for (auto _ : state) {
    std::string value;
    found = lookup(file.path.c_str(), value) && value == "value of key 99 in section 99" && found;
  }
  if (!found) state.SkipWithError("the key was not found");
}

void RunRewrite(benchmark::State& state, RewriteCall rewrite, const std::string& path, bool synced) {
  const IniFile file(path);
  syncs = synced;
  bool written = true;
  int number = 0;
  for (auto _ : state) {
    written = rewrite(path.c_str(), std::to_string(++number).c_str()) && written;
  }
  syncs = false;
  char value[64];
  GetConfigFileString(kLastSection, kLastKey, "", value, sizeof value, path.c_str());
  if (!written || value != std::to_string(number)) state.SkipWithError("the key was not written");
}

// Reads the file and finds its lines.
bool BareLookup(const char* path, std::string& value) {
  std::string bytes(std::filesystem::file_size(path), '\0');
  std::FILE* const file = std::fopen(path, "re");
  const std::size_t size = std::fread(bytes.data(), 1, bytes.size(), file);
  std::fclose(file);
  const char* line = bytes.data();
  for (const char* at = line; at != bytes.data() + size;) {
    line = at;
    at = static_cast<const char*>(std::memchr(at, '\n', size - static_cast<std::size_t>(at - bytes.data()))) +
         1;
  }
  value.assign(std::strchr(line, '=') + 1, std::as_const(bytes).data() + size - 1);
  return true;
}

bool Lookup(const char* path, std::string& value) {
  char text[64] = "";
  GetConfigFileString(kLastSection, kLastKey, "", text, sizeof text, path);
  value = text;
  return true;
}

bool Rewrite(const char* path, const char* number) {
  return WriteConfigFileString(kLastSection, kLastKey, number, path) == 1;
}

const bool registered =
    RegisterIniPeer("Vintra", Lookup, Rewrite) && RegisterIniPeer("bare loop", BareLookup, nullptr);

}  // namespace

bool RegisterIniPeer(const char* name, LookupCall lookup, RewriteCall rewrite) {
  const auto add = [name](const std::string& scenario, auto run) {
    benchmark::RegisterBenchmark((scenario + "/" + name).c_str(), run)->UseRealTime();
  };
  add("ini_lookup", [lookup](benchmark::State& state) { RunLookup(state, lookup); });
  if (rewrite == nullptr) return true;
  add("ini_rewrite", [rewrite](benchmark::State& state) {
    RunRewrite(state, rewrite, BenchPath("vintra_bench.ini"), false);
  });
  add("ini_rewrite_disk",
      [rewrite](benchmark::State& state) { RunRewrite(state, rewrite, DiskPath("vintra_bench.ini"), true); });
  return true;
}
