// Folder chains beside folders, a file and a link to nothing: made to their end, or refused with nothing new.
#include <unistd.h>

#include "FolderModule/FolderModule.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongest = 248, kLongestFolder = 259;
constexpr char kSeparators[] = "/\\";

// Two chains lead at most four levels up, and so not out of "1". Some folders have the name of a chain, which
// is another matter.
void Prepare() {
  fs::current_path(Folder());
  fs::remove_all("1");
  fs::create_directories("1/2/3/4/5");
  fs::current_path("1/2/3/4/5");
  for (const char* const folder : {"a", "a/b", "a:", "b\\b", "f:f"}) fs::create_directory(folder);
  fs::create_symlink("nowhere", "l");
  std::ofstream("f").close();
}

// False for a name that is too long as well.
bool Exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

auto Entries() { return std::distance(fs::recursive_directory_iterator(Folder()), {}); }

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
  Prepare();
  std::string chain = TakeChain(input);
  const std::string folder = "./" + TakeChain(input);
  const int call = FirstByte(input) % 3;
  const bool is_whole = call == 0, grows = call == 2;
  const std::size_t name = chain.find_first_not_of(kSeparators);
  if (folder.size() > kLongestFolder || name == std::string::npos || (grows && name != 0)) return;
  if (is_whole) chain.erase(0, name);

  // What has to be there, and the whole path.
  const std::size_t end = std::min(chain.find_first_of("/\\:"), chain.size());
  const std::size_t drive = is_whole && chain[end] == ':' ? end + 1 : 0;
  const std::string front = !is_whole ? folder : drive != 0 ? chain.substr(0, drive) : ".";
  std::string path = front + "/" + chain.substr(drive);
  std::replace(path.begin() + static_cast<std::ptrdiff_t>(front.size()), path.end(), '\\', '/');
  const bool is_long = path.size() + 2 > kLongest;  // separators at the end count
  path.erase(path.find_last_not_of('/') + 1);
  const bool has_front = Exists(front);

  const std::string parent = folder + (grows ? "/" : ""),
                    first = parent + chain.substr(0, chain.find_first_of(kSeparators));
  const bool has_first = parent.size() + chain.size() <= kLongest && Exists(first);
  const std::unique_ptr<char[]> text = Block(261);
  std::copy_n(parent.c_str(), parent.size() + 1, text.get());
  const auto before = Entries();
  const int code = is_whole ? CreateMulDir(chain.c_str())
                   : grows  ? CreateChildDir(text.get(), chain.c_str())
                            : RecursiveCreateDir(chain.data(), text.get(), static_cast<int>(parent.size()));
  Require(text.get() == (grows && (code == 1 || has_first) ? first : parent));
  if (code == 1) {
    Require(has_front && Exists(path));
    return;
  }
  std::error_code refused;
  Require(Entries() == before);
  Require(!has_front || is_long || (!Exists(path) && !fs::create_directories(path, refused)));
}
