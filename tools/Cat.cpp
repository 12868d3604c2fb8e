// vintra cat: logs as text, scrambled or not.
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>
#include <vector>

#include "tools/Command.h"
#include "tools/Follow.h"
#include "tools/LogText.h"
#include "tools/Output.h"
#include "tools/Progress.h"

namespace {

constexpr char kHelp[] = R"(Usage: vintra cat [-f] [--scramble | --plain] [FILE...]

Writes logs as text to standard output, one after the other; standard input where no FILE is named, or FILE is
"-". Each is recognised as scrambled or as text by what it begins with. A terminal gets control characters,
and bytes that are no UTF-8, as \xNN.

  -f, --follow   go on as the files grow, are emptied or replaced, also one that is not there yet
      --scramble take every byte for scrambled; text then comes out scrambled
      --plain    take every byte as it is
  -h, --help     this text

Exits with 0, with 1 when something could not be read or written, with 2 when it was called wrongly.
)";

constexpr std::size_t kBlockSize = 131072;

struct Source {
  std::string name;
  bool is_input;       // standard input
  bool is_regular;     // a file that can be followed, or may become one
  bool is_output;      // the file that standard output goes to: reading it would not end
  std::uint64_t size;  // 0 where it is not known
};

Source Examine(const char* name) {
  Source source{name, std::strcmp(name, "-") == 0, false, false, 0};
  if (source.is_input) source.name = "standard input";
  struct stat status = {};
  const int result = source.is_input ? fstat(STDIN_FILENO, &status) : stat(name, &status);
  struct stat output = {};
  source.is_regular = result != 0 || S_ISREG(status.st_mode);
  source.is_output = result == 0 && source.is_regular && fstat(STDOUT_FILENO, &output) == 0 &&
                     status.st_dev == output.st_dev && status.st_ino == output.st_ino;
  if (result == 0 && source.is_regular) source.size = static_cast<std::uint64_t>(status.st_size);
  return source;
}

// Puts out a whole source. Returns false when it cannot be read.
bool PutWhole(const Source& source, Masking masking, Output& output, Progress& progress) {
  const Descriptor file(source.is_input ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                                        : open(source.name.c_str(), O_RDONLY | O_CLOEXEC));
  std::vector<char> block(kBlockSize);
  LogText text(masking);
  ssize_t got = -1;
  while (file && !output.failed() && (got = read(file.get(), block.data(), block.size())) != 0) {
    if (got < 0 && WorthRepeating(file.get(), POLLIN)) continue;
    if (got < 0) break;
    const std::span<char> bytes(block.data(), static_cast<std::size_t>(got));
    text.Decode(bytes);
    output.Put(&source, {bytes.data(), bytes.size()});
    progress.Add(bytes.size());
  }
  if (got < 0) FailOn(source.name.c_str());
  return got >= 0;
}

// Puts out the sources, and goes on with those that can be followed. Returns an ExitCode.
int PutAll(const std::vector<Source>& sources, bool follow, Masking masking) {
  std::uint64_t total = 0;
  for (const Source& source : sources) total += source.size;

  const bool on_terminal = isatty(STDOUT_FILENO) == 1;
  Output output(on_terminal);
  Progress progress(total, !follow && !on_terminal);
  std::vector<FollowedLog> followed;
  bool read_all = true;
  for (const Source& source : sources) {
    if (output.failed()) break;
    if (source.is_output) {
      read_all = false;
      Fail("%s: is standard output too", source.name.c_str());
    } else if (follow && source.is_regular && !source.is_input) {
      followed.emplace_back(source.name, masking);
    } else {
      read_all = PutWhole(source, masking, output, progress) && read_all;
    }
  }
  if (!followed.empty()) Follow(followed, output);
  if (on_terminal) output.EndLine();  // the last record has no line end, and a prompt comes next
  return read_all && !output.failed() ? kDone : kFailed;
}

}  // namespace

int Cat(int argc, char** argv) {
  constexpr option kOptions[] = {{"follow", no_argument, nullptr, 'f'},
                                 {"scramble", no_argument, nullptr, 's'},
                                 {"plain", no_argument, nullptr, 'p'},
                                 {"help", no_argument, nullptr, 'h'},
                                 {}};
  bool follow = false;
  Masking masking = Masking::kRecognise;
  for (int letter; (letter = getopt_long(argc, argv, "fh", kOptions, nullptr)) != -1;) {
    if (letter == 'h') return std::fputs(kHelp, stdout) < 0 ? kFailed : kDone;
    if (letter == '?') return HintAtHelp(argv[0]);
    if (letter == 'f') follow = true;
    if (letter == 's') masking = Masking::kOn;
    if (letter == 'p') masking = Masking::kOff;
  }

  std::vector<Source> sources;
  for (int i = optind; i < argc; ++i) sources.push_back(Examine(argv[i]));
  if (sources.empty()) sources.push_back(Examine("-"));
  return PutAll(sources, follow, masking);
}
