// Any bytes as formats, without a terminator: a switch is set for a letter behind a '%' and for no other.
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
  for (sint8* const field : {config.log_format, config.sysconf_format, config.PidandTid})
    std::memcpy(field, data, std::min<std::size_t>(size, VINTRA_TEXT_SIZE));
  const std::string_view format(config.log_format, strnlen(config.log_format, VINTRA_TEXT_SIZE));
  LogHandleRec handle{};
  AnalysisLogFormat(&config, &handle);
  AnalysisSysFormat(&config, &handle);
  AnalysisPidFormat(&config, &handle);

  // clang-format off
  const std::pair<char, uint32> switches[] = {
      {'D', handle.log_date}, {'T', handle.log_time}, {'E', handle.log_level_info}, {'F', handle.log_src_file}, {'L', handle.log_src_line},
      {'N', handle.log_new_line}, {'C', handle.log_swith}, {'N', handle.sys_none}, {'O', handle.sys_os}, {'C', handle.sys_cpu},
      {'M', handle.sys_memory}, {'N', handle.log_none}, {'P', handle.log_pid}, {'T', handle.log_tid}};
  // clang-format on
  for (const auto& [letter, flag] : switches)
    Require(flag == uint32{format.empty() ? letter == 'N' : Asks(format, letter)});
  return 0;
}
