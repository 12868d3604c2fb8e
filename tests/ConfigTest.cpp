// Log handles configured by a section of an INI file.
#include "TestSupport.h"
#include "VintraModule/LogConfig.h"

namespace {

class ConfigTest : public LogTest {
 protected:
  // What a section with these keys makes of a record, field by field.
  static std::string Fields(const std::string& keys, const char* file = "x.ini",
                            const char* section = "log") {
    WriteFile("x.ini", "[log]\n" + keys);
    LogConfigRecEx config{};
    CheckValueFromConfig(&config, file, section);
    std::string fields = config.log_file_name;
    for (const uint32 number :
         {uint32{config.log_level}, uint32{config.log_mode}, config.max_file_size, config.max_backup_index,
          config.file_flush_size, config.log_time_span, config.log_encrypt}) {
      fields += "|" + std::to_string(number);
    }
    for (const sint8* text :
         {config.log_format, config.sysconf_format, config.module_name, config.PidandTid}) {
      fields += "|"s + text;
    }
    return fields;
  }
};

// The messages, in the order in which the keys are read.
const std::string kName = "LOG_MODULE_INIT log_file_name not set, use default name default.log\n";
const std::string kLevel = "LOG_MODULE_INIT log level not set, use default level Log_Level_Disable\n";
const std::string kMode = "LOG_MODULE_INIT log_mode not set, use default mode Log_Mode_Simple\n";
const std::string kSize = "LOG_MODULE_INIT max_file_size is 0 or not set, use default size(20M)\n";
const std::string kIndex = "LOG_MODULE_INIT max_backup_index is 0 or not set, use default backup index 20\n";
const std::string kFormat = "LOG_MODULE_INIT log format not set, use default format %D%T%E%N\n";
const std::string kSpan = "LOG_MODULE_INIT log_time_span is error value, use input right value\n";
const std::string kSystem = "LOG_MODULE_INIT sysconf_format not set, use default format %N\n";
const std::string kModule = "LOG_MODULE_INIT module_name not set, use default module_name ''\n";
const std::string kProcess = "LOG_MODULE_INIT PidandTid not set, use default format %N\n";

TEST_F(ConfigTest, KeysAndDefaults) {
  const std::string all =
      "file_name=/l/a.log\nlevel=log_level_INFO\nmode=log_mode_date\nmax_file_size=10M\nmax_backup_index=3\n"
      "flush_size=4096\nformat=%N\ntime_span=7\nSysConfFormat=%O\nmodule_name=net\nPidAndTid=%P\nencrypt=0\n";
  const std::string none = kName + kLevel + kMode + kSize + kFormat + kSystem + kModule + kProcess;
  // clang-format off
  const struct { std::string keys, fields, messages; } cases[] = {  // of a key that occurs twice the first one counts
      {all, "/l/a.log|3|3|10|3|4096|7|0|%N|%O|net|%P", ""}, {"", "default.log|9|1|20971520|0|0|0|1|%D%T%E%N|%N||%N", none},
      {"mode=Log_Mode_Rollback\n" + all, "/l/a.log|3|2|10|3|4096|0|0|%N|%O|net|%P", ""},
      {"mode=LOG_MODE_SIMPLE\n" + all, "/l/a.log|3|1|10|0|4096|0|0|%N|%O|net|%P", ""},
      {"time_span=0\nmax_backup_index=x\nmax_file_size=-5\n" + all, "/l/a.log|3|3|20971520|20|4096|0|0|%N|%O|net|%P", kSize + kIndex + kSpan},
      {"format=null\nSysConfFormat=\nPidAndTid=\nmodule_name=\nlevel=\nmode=\n" + all, "/l/a.log|9|1|10|0|4096|0|0|%D%T%E%N|%N||%N",
       kLevel + kMode + kFormat + kSystem + kModule + kProcess},
      {"level=" + Repeat("Info", 20) + "\nmode=Log_Mode_Dates\nflush_size=-1\nformat=\nencrypt=-1\n" + all, "/l/a.log|9|1|10|0|0|0|1||%O|net|%P",
       "LOG_MODULE_INIT log level(" + Repeat("Info", 20) + ") is invalid, use default level Log_Level_Disable\n"
       "LOG_MODULE_INIT log mode(Log_Mode_Dates) is invalid, use default mode Log_Mode_Simple\n"}};
  // clang-format on
  for (const auto& [keys, fields, messages] : cases) {
    EXPECT_EQ(Fields(keys), fields);
    EXPECT_EQ(Errors(), messages);
  }
  const char* const names[] = {"Trace", "Debug", "Info",  "Notice", "Warn",
                               "Error", "Crit",  "Fatal", "Disable"};
  for (int level = 1; level <= 9; ++level) {
    EXPECT_EQ(Fields("level=Log_Level_"s + names[level - 1] + "\n" + all).substr(9, 1),
              std::to_string(level));
  }
  EXPECT_EQ(Errors(), "");
  EXPECT_EQ(Fields(all, ""), "default.log|9|1|20971520|0|0|0|1||%N||%N");
  EXPECT_EQ(Fields(all, "x.ini", ""), "default.log|9|1|20971520|0|0|0|1||%N||%N");
  const std::string no_format = kName + kLevel + kMode + kSize + kSystem + kModule + kProcess;
  EXPECT_EQ(Errors(), no_format + no_format);
}

TEST_F(ConfigTest, TextsAtTheirWidths) {
  const std::string x259(259, 'x'), x64(64, 'x'), x63(63, 'x');
  // clang-format off
  const std::pair<std::string, std::string> file_names[] = {  // as set, as taken
      {x259, x259}, {x259 + "x", "default.log"}, {"/var/log/app/", "/var/log/app/default.log"}, {"logs:", "logs:/default.log"},
      {"a\\", "a\\default.log"}, {x259.substr(12) + "/", x259.substr(12) + "/default.log"}, {x259.substr(11) + "/", "default.log"},
      {x259.substr(13) + ":", x259.substr(13) + ":/default.log"}, {x259.substr(12) + ":", "default.log"}, {"app.log", "app.log"}};
  // clang-format on
  for (const auto& [set, taken] : file_names) {
    const std::string fields = Fields("file_name=" + set);
    EXPECT_EQ(fields.substr(0, fields.find('|')), taken);
    EXPECT_EQ(Errors().starts_with(kName), set != taken) << set;
  }
  EXPECT_TRUE(Fields("module_name=" + x63).ends_with("|" + x63 + "|%N"));
  EXPECT_TRUE(Fields("module_name=" + x64).ends_with("|%N||%N"));
  EXPECT_NE(Errors().find(kModule), std::string::npos);
  const std::string formats = "format=" + x64 + "\nSysConfFormat=" + x64 + "\nPidAndTid=" + x64;
  EXPECT_TRUE(Fields(formats).ends_with("|" + x63 + "|" + x63 + "||" + x63));
}

TEST_F(ConfigTest, HandlesOfASection) {
  WriteFile("log.ini",
            "[log]\nfile_name=logs/app.log\nlevel=Log_Level_Info\nmodule_name=net\nencrypt=0\n"
            "[dir]\nfile_name=.log\n[far]\nfile_name=" +
                Repeat("d/", 125) + "x.log\n");
  const auto start = [this](const char* file, const char* section) {
    Close();
    return LOG_MODULE_INIT(file, section, &handle_);
  };
  EXPECT_EQ(start("log.ini", "log"), 0);
  EXPECT_EQ(LOG_INFO(handle_, "hello"), 0);
  EXPECT_EQ(ReadFile("logs/app.log"), "2026-11-16 13:24:14.007 [INFO]  net  hello");
  EXPECT_EQ(start(nullptr, nullptr), 0);
  EXPECT_EQ(LOG_LEVEL(handle_), Log_Level_Disable);
  EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 3) << "log.ini, logs and the error log";
  EXPECT_EQ(start("log.ini", "dir"), 9) << "no base name";
  EXPECT_EQ(start("log.ini", "far"), 9) << "too long behind the library's folder";
  EXPECT_EQ(LOG_MODULE_INIT("log.ini", "log", nullptr), 1);
  EXPECT_TRUE(Errors().ends_with("\nLOG_MODULE_INIT Invalid param:a_log_handle is null\n"));
  WriteFile("null", "[null]\nfile_name=null.log\nlevel=Log_Level_Trace\n[" + std::string(263, 's') +
                        "]\nlevel=Log_Level_Warn");
  EXPECT_EQ(start(nullptr, nullptr), 0);
  EXPECT_TRUE(fs::exists("null.log"));
  EXPECT_EQ(start("null", std::string(263, 's').c_str()), 0);
  EXPECT_EQ(LOG_LEVEL(handle_), Log_Level_Warn);
  Errors();
  EXPECT_EQ(start("null", std::string(264, 's').c_str()), 9);
  EXPECT_EQ(start(Repeat("/", 264).c_str(), "null"), 9);
  EXPECT_EQ(Errors(), Repeat("LOG_MODULE_INIT config_file or section has more than 263 characters.\n", 2));
}

}  // namespace
