// GLib's GKeyFile. It keeps comments, and brings a file that it replaces to the disk.
#include <glib.h>

#include <memory>

#include "bench/IniPeer.h"

namespace {

struct KeyFileCloser {
  void operator()(GKeyFile* file) const { g_key_file_unref(file); }
};

std::unique_ptr<GKeyFile, KeyFileCloser> Load(const char* path) {
  std::unique_ptr<GKeyFile, KeyFileCloser> file(g_key_file_new());
  if (!g_key_file_load_from_file(file.get(), path, G_KEY_FILE_KEEP_COMMENTS, nullptr)) file.reset();
  return file;
}

bool Lookup(const char* path, std::string& value) {
  const auto file = Load(path);
  char* const text = file ? g_key_file_get_string(file.get(), kLastSection, kLastKey, nullptr) : nullptr;
  value = text != nullptr ? text : "";
  g_free(text);
  return text != nullptr;
}

bool Rewrite(const char* path, const char* number) {
  const auto file = Load(path);
  if (!file) return false;
  g_key_file_set_string(file.get(), kLastSection, kLastKey, number);
  return g_key_file_save_to_file(file.get(), path, nullptr);
}

const bool registered = RegisterIniPeer("GKeyFile", Lookup, Rewrite);

}  // namespace
