// vintra: a command for people, on top of the library's public interface.
#include <fcntl.h>
#include <unistd.h>

#include <clocale>
#include <cstdio>
#include <cstring>
#include <initializer_list>

#include "tools/Command.h"

namespace {

struct Subcommand {
  const char* name;
  const char* full_name;  // as getopt's messages and the hints to help name it
  int (*run)(int argc, char** argv);
};

constexpr Subcommand kSubcommands[] = {
    {"cat", "vintra cat", Cat}, {"write", "vintra write", Write}, {"check", "vintra check", Check}};

constexpr char kHelp[] = R"(Usage: vintra COMMAND [OPTION...] [ARGUMENT...]

  vintra cat [-f] [FILE...]                 logs as text, scrambled or not
  vintra write -c INI -s SECTION            standard input into a log, a record a line
  vintra check INI [SECTION...]             what the log sections of an INI file mean
  vintra COMMAND --help                     what else a command can do

  -h, --help     this text
  -V, --version  the version
)";

int Run(int argc, char** argv) {
  if (argc < 2) return Misused("vintra", "no command given");
  for (const Subcommand& subcommand : kSubcommands) {
    if (std::strcmp(argv[1], subcommand.name) != 0) continue;
    argv[1] = const_cast<char*>(subcommand.full_name);
    return subcommand.run(argc - 1, argv + 1);
  }
  constexpr option kOptions[] = {
      {"help", no_argument, nullptr, 'h'}, {"version", no_argument, nullptr, 'V'}, {}};
  switch (getopt_long(argc, argv, "+hV", kOptions, nullptr)) {
    case 'h':
      std::fputs(kHelp, stdout);
      return kDone;
    case 'V':
      std::printf("vintra %d.%d.%d\n", VINTRA_VERSION_MAJOR, VINTRA_VERSION_MINOR, VINTRA_VERSION_PATCH);
      return kDone;
    case '?':
      return HintAtHelp("vintra");
    default:
      return Misused("vintra", "no such command: %s", argv[1]);
  }
}

// Keeps the place of a standard stream that is closed, which a log would take otherwise. Using it still
// fails.
void KeepPlaces() {
  for (const int place : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(place, F_GETFD) < 0) open("/dev/null", place == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

}  // namespace

int main(int argc, char** argv) {
  KeepPlaces();
  std::setlocale(LC_CTYPE, "C.UTF-8");  // for what terminals show; where there is none they get ASCII alone
  const int code = Run(argc, argv);
  // What is still in the buffer may meet a full disk.
  const bool written = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
  if (!written && code == kDone) return FailOn("standard output");
  return code;
}
