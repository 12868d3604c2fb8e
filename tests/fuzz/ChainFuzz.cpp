// Folder chains beside folders, a file and a link to nothing: what can be made by hand is made, or nothing.
#include <regex>
#include <set>
#include <sstream>

#include "FolderModule/FolderModule.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongest = 248, kLongestFolder = 259;

bool Make(const fs::path& level) {
  std::error_code refused;
  return fs::exists(level, refused) || fs::create_directory(level, refused);
}

bool MakeBelow(const std::string& parent, std::string chain) {
  chain.erase(0, chain.find_first_not_of("/\\"));
  if (!chain.empty() && parent.size() + 1 + chain.size() > kLongest) return false;
  std::replace(chain.begin(), chain.end(), '\\', '/');
  std::istringstream levels(chain);
  fs::path folder = parent;
  for (std::string level; std::getline(levels, level, '/');)
    if (!level.empty() && !Make(folder /= level)) return false;
  return true;
}

// The first level keeps one separator in front. A drive, which ends in ':', has to be there.
bool MakeAll(const std::string& path) {
  static const std::regex kPath(R"((?:[/\\]*(?=[/\\][^/\\]))?([/\\]*[^/\\:]*:?)(.*))");
  std::smatch parts;
  if (path.empty() || path.size() > kLongest || !std::regex_match(path, parts, kPath)) return false;
  const std::string first = parts[1];
  return (first.ends_with(':') ? fs::exists(first) : Make(first)) && MakeBelow(first, parts[2]);
}

// What has been made since the first call. Takes it away.
std::set<std::string> TakeNew() {
  std::set<std::string> entries;
  for (const auto& entry : fs::recursive_directory_iterator(Folder())) entries.insert(entry.path());
  static const std::set<std::string> kOld = entries;
  const std::size_t all = entries.size();
  std::erase_if(entries, [](const std::string& entry) { return kOld.contains(entry); });
  Require(all - entries.size() == kOld.size());
  std::for_each(entries.rbegin(), entries.rend(), [](const std::string& entry) { fs::remove(entry); });
  return entries;
}

// Two chains lead at most four levels up, which is how deep the working directory lies below the process's
// folder. Some folders have the name of a chain, which is another matter.
bool Prepare() {
  fs::create_directories(Folder() + "/1/2/3/4");
  fs::current_path(Folder() + "/1/2/3/4");
  for (const char* const folder : {"a", "a/b", "a:", "b\\b", "f:f"}) fs::create_directory(folder);
  fs::create_symlink("nowhere", "l");
  return std::ofstream("f") && TakeNew().empty();
}

std::string TakeChain(std::string_view& input) {
  constexpr std::string_view kLetters = "ab/\\:fl.";
  std::string chain = TakeText(input);
  int dots = 0;
  for (char& letter : chain) {
    if (kLetters.find(letter) == std::string::npos)
      letter = kLetters[static_cast<unsigned char>(letter) % kLetters.size()];
    if (letter == '.' && ++dots > 5) letter = 'a';
  }
  return chain;
}

}  // namespace

void Try(std::string_view input) {
  static const bool kIsReady = Prepare();
  Require(kIsReady);
  std::string chain = TakeChain(input);
  const std::string folder = "./" + TakeChain(input);
  const int call = FirstByte(input) % 3;
  const bool is_whole = call == 0, grows = call == 2;
  const std::size_t name = std::min(chain.find_first_not_of("/\\"), chain.size());
  if (folder.size() > kLongestFolder || (grows && (chain.empty() || name != 0))) return;
  if (is_whole && chain.substr(0, name).find('/') != std::string::npos) chain.insert(0, fs::current_path());

  const std::string parent = folder + (grows ? "/" : ""),
                    first = parent + chain.substr(0, chain.find_first_of("/\\"));
  const bool is_there = parent.size() + chain.size() <= kLongest && fs::exists(first);
  const std::unique_ptr<char[]> text = Block(261);
  std::copy_n(parent.c_str(), parent.size() + 1, text.get());
  const auto length = static_cast<int>(parent.size());
  const int code = is_whole ? CreateMulDir(chain.c_str())
                   : grows  ? CreateChildDir(text.get(), chain.c_str())
                            : RecursiveCreateDir(chain.data(), text.get(), length);
  const std::set<std::string> made = TakeNew();
  const bool is_made = is_whole ? MakeAll(chain) : MakeBelow(folder, chain);
  const std::set<std::string> by_hand = TakeNew();
  Require(code == int{is_made} && made == (is_made ? by_hand : std::set<std::string>()));
  Require(text.get() == (grows && (is_made || is_there) ? first : parent));
}
