// Any bytes as formats, without a terminator: a switch is set for a letter behind a '%' and for no other.
#include <algorithm>
#include <cstring>

#include "VintraModule/LogHandle.h"
#include "VintraModule/VintraModuleExtract.h"
#include "tests/fuzz/FuzzFile.h"

namespace {

// What a scan has to find, by the book: from left to right, each '%' with the first byte behind its blanks.
bool Asks(std::string_view format, char letter) {
  for (std::size_t at = 0; at < format.size(); ++at) {
    if (format[at] != '%') continue;
    do ++at;
    while (at < format.size() && format[at] == ' ');
    if (at < format.size() && format[at] == letter) return true;
  }
  return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  LogConfigRecEx config{};
  for (sint8* const field : {config.log_format, config.sysconf_format, config.PidandTid}) {
    std::memcpy(field, data, std::min<std::size_t>(size, VINTRA_TEXT_SIZE));
  }
  const std::string_view format(config.log_format, strnlen(config.log_format, VINTRA_TEXT_SIZE));
  LogHandleRec handle{};
  AnalysisLogFormat(&config, &handle);
  AnalysisSysFormat(&config, &handle);
  AnalysisPidFormat(&config, &handle);

  const struct {
    char letter;
    uint32 flag, if_empty;
  } switches[] = {
      {'D', handle.log_date, 0},     {'T', handle.log_time, 0},     {'E', handle.log_level_info, 0},
      {'F', handle.log_src_file, 0}, {'L', handle.log_src_line, 0}, {'N', handle.log_new_line, 1},
      {'C', handle.log_swith, 0},    {'N', handle.sys_none, 1},     {'O', handle.sys_os, 0},
      {'C', handle.sys_cpu, 0},      {'M', handle.sys_memory, 0},   {'N', handle.log_none, 1},
      {'P', handle.log_pid, 0},      {'T', handle.log_tid, 0}};
  for (const auto& [letter, flag, if_empty] : switches) {
    Require(flag == (format.empty() ? if_empty : uint32{Asks(format, letter)}));
  }
  return 0;
}
