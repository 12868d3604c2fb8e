// What the command says of INI files is what the library makes of them.
#include <array>
#include <random>

#include "ConfigFileINI/ConfigFileINI.h"
#include "TestSupport.h"
#include "VintraModule/LogConfig.h"
#include "tools/IniScan.h"
#include "tools/LogSection.h"

namespace {

using CommandTest = LogTest;

// A file of random lines, whose pieces make up all that the syntax knows, and values at the edges of fields.
std::string RandomIni(std::mt19937& random) {
  // clang-format off
  static const std::array<std::string, 57> kPieces = {"[log]", "k+\n=+\n7", "[other]", "[", "[x", "#", "=", "=", "=", "+", "+", " ", "\t", "\f",
      "\x1A", "\0"s, "\r", "k", "file_name", "level", "mode", "mode=Log_Mode_Date", "mode = log_mode_rollback", "max_file_size",
      "max_backup_index", "flush_size", "format", "time_span", "SysConfFormat", "module_name", "PidAndTid", "encrypt", "Log_Level_Warn",
      "log_level_fatal", "LOG_LEVEL_TRACE", "Log_Level_Debug", "log_level_ERROR", "log_level_crit", "Log_Mode_Simple", "0", "7", "-1",
      "2147483648", "10M", "/a", "/", ":", "null", "%D % N", std::string(63, 'x'), std::string(64, 'x'), std::string(259, 'x'),
      std::string(247, 'x') + "/", std::string(246, 'x') + ":", "x\\", "x:",  // which leave room for "default.log" and "/default.log"
      std::string(4090, 'y')};
  // clang-format on
  std::string text = "[log]\n";
  for (auto lines = random() % 24; lines > 0; --lines) {
    if (random() % 3 == 0) {  // of a key that is known, so that most files are good
      text += kPieces[18 + random() % 14] + "=" + kPieces[16 + random() % 41];
    } else {
      for (auto pieces = random() % 4; pieces > 0; --pieces) text += kPieces[random() % kPieces.size()];
    }
    text += random() % 8 == 0 ? "\r\n" : "\n";
  }
  if (random() % 2 == 0) text.pop_back();
  return text;
}

TEST_F(CommandTest, SectionsAreWhatTheLibraryReads) {
  std::mt19937 random(20261123);
  int good = 0, bad = 0, keyed = 0;
  for (int round = 0; round < 4000; ++round) {
    const std::string text = RandomIni(random);
    WriteFile("x.ini", text);
    LogConfigRecEx expected{};
    CheckValueFromConfig(&expected, "x.ini", "log");
    const LogSection section = ReadLogSection("x.ini", "log");
    ASSERT_EQ(std::memcmp(&section.config, &expected, sizeof expected), 0) << text;

    std::string keys(text.size() + 2, '\0'), scanned;
    keys.resize(static_cast<std::size_t>(
        GetConfigFileKeys("log", keys.data(), static_cast<sint32>(keys.size()), "x.ini")));
    const IniSection lines = ScanSection("x.ini", "log");
    for (const IniKey& key : lines.keys) scanned += key.name + '\0';
    ASSERT_EQ(scanned, keys) << text;
    // A key that is not there can be written unless a line hides where it would be.
    const bool hidden = WriteConfigFileInt("log", "last", 1, "x.ini") == 0;
    ASSERT_EQ(lines.bad_line != 0, hidden) << text;
    ++(hidden ? bad : good);
    keyed += keys.size() > 9;
  }
  EXPECT_GT(std::min({good, bad, keyed}), 400);
}

}  // namespace
