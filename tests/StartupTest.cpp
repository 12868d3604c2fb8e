// From a configuration record to an open file, or to a result that says why not.
#include "TestSupport.h"

namespace {

using StartupTest = LogTest;

TEST_F(StartupTest, RefusedRecords) {
  // clang-format off
  constexpr struct { void (*spoil)(LogConfigRecEx&); const char* message; } kCases[] = {
      {[](auto& config) { config.max_file_size = 0; }, ""},
      {[](auto& config) { config.log_file_name[0] = 0; }, ""},
      {[](auto& config) { config.log_level = static_cast<LogLevel>(0); }, ""},
      {[](auto& config) { config.log_level = static_cast<LogLevel>(10); }, ""},
      {[](auto& config) { config.log_mode = static_cast<LogMode>(0); }, ""},
      {[](auto& config) { config.log_mode = static_cast<LogMode>(4); }, ""},
      {[](auto& config) { config.max_file_size = 1U << 31; }, "max_file_size(2147483648) is above 2147483647."}};
  // clang-format on
  LOGHANDLE handle = 77;
  for (const auto& row : kCases) {
    LogConfigRecEx config = Config("");
    row.spoil(config);
    EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &handle), 1);
    EXPECT_EQ(Errors(), *row.message ? std::string("LOG_MODULE_INIT_Ex ") + row.message + "\n" : "");
    fs::remove(folder_ / "LogModuleErrMsg.log");
  }
  const LogConfigRecEx good = Config("");
  EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&good, nullptr), 1);
  EXPECT_EQ(LOG_MODULE_INIT_New_Ex(nullptr, &handle), 1);
  EXPECT_EQ(LOG_MODULE_INIT_Ex(nullptr, &handle), 1);
  EXPECT_EQ(handle, 77);
  EXPECT_TRUE(fs::is_empty(folder_));
}

TEST_F(StartupTest, FileNames) {
  const std::string dir = folder_.string() + "/", own = dir + "x.so";
  const std::string under = dir + std::string(247 - dir.size(), 'l') + "/";  // 248 characters
  const std::string deep = under.substr(0, 247) + "d/", far = "/" + std::string(248, 'l') + "/x.so";
  const std::string both = std::string(63, 'n') + "." + std::string(62, 'e');
  const std::string name64 = "n" + both, ext64 = both + "e", init = "LOG_MODULE_INIT_Ex ";
  const std::string name260 = dir + std::string(260 - dir.size(), 'n');
  const auto too_long = [](const std::string& name) {
    return "LOG_MODULE_INIT_Ex file_name(" + name +
           ") has a base name or extension of more than 63 characters.\n";
  };
  std::ofstream(dir + "plain") << "";
  fs::create_directory(dir + "taken.log");
  // The outcome is the file that is there after 0, and otherwise the message.
  // clang-format off
  const struct { std::string library_file, name; sint32 code; std::string outcome; } cases[] = {
      {own, "app.log", 0, dir + "app.log"}, {own, "logs/day/app.log", 0, dir + "logs/day/app.log"},
      {own, "w\\d\\app.log", 0, dir + "w/d/app.log"}, {own, "/" + dir + "x/a.b.c", 0, dir + "x/a.b.c"},
      {own, "noext", 0, dir + "noext"}, {own, both, 0, dir + both}, {own, dir, 1, init + "file_name is null\n"},
      {own, dir + ".hidden", 1, init + "file_name is null\n"}, {own, name64, 1, too_long(name64)},
      {own, ext64, 1, too_long(ext64)}, {own, name260, 1, too_long(name260)},
      {own, deep + "a", 4, init + "create path(" + deep + ") failed.\n"},
      {own, "plain/x/a", 4, init + "create path(" + dir + "plain/x/) failed.\n"},
      {own, "taken.log", 5, init + "open file(" + dir + "taken.log) for write failed.\n"},
      {far, "123456789/app.log", 9, ""}, {far, "12345678/app.log", 4, ""},  // folders of 260 and 259 characters
      {under + "x", "1234567.log", 0, under + "1234567.log"}, {under + "x", "12345678.log", 5, ""}};  // 259 and 260
  // clang-format on
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    fake.library_file = row.library_file;
    const LogConfigRecEx config = Config("%E", 0, 100, row.name);
    EXPECT_EQ(LOG_MODULE_INIT_New_Ex(&config, &handle_), row.code);
    EXPECT_EQ(LOG_INFO(handle_, "x"), row.code == 0 ? 0 : 1);
    EXPECT_EQ(row.code == 0 ? ReadFile(row.outcome) : Errors(), row.code == 0 ? "[INFO]    x" : row.outcome);
    Close();
    fs::remove(folder_ / "LogModuleErrMsg.log");
  }
}

TEST_F(StartupTest, ExistingFiles) {
  // clang-format off
  constexpr struct { std::uintmax_t size; const char* format; bool kept; } kCases[] = {
      {0, "%N", true}, {99, "%N", true}, {100, "%N", false}, {99, "%N%C", false}, {(1ULL << 32) + 10, "%N", false}};
  // clang-format on
  for (const auto& row : kCases) {
    SCOPED_TRACE(row.size);
    MakeFile("app.log", row.size);
    Open(Config(row.format, 0, 100));
    EXPECT_EQ(Record().file_size, row.kept ? row.size : 0);
    LOG_INFO(handle_, "x");
    EXPECT_EQ(Log(), row.kept && row.size != 0 ? std::string(row.size, '\0') + "\r\n  x" : "  x");
  }
}

TEST_F(StartupTest, PlainRecordScramblesAndUnterminatedFieldsAreReadToTheirWidth) {
  LogConfigRecEx extended = Config("", 4096);
  std::memset(extended.log_format, ' ', sizeof extended.log_format);
  std::memcpy(extended.log_format + 62, "%E", 2);
  LogConfigRec config{};
  std::memcpy(&config, &extended.log_file_name, sizeof config);  // the same fields, one after the other
  ASSERT_EQ(LOG_MODULE_INIT_Ex(&config, &handle_), 0);
  LOG_INFO(handle_, "x");
  EXPECT_EQ(Log(), "");
  Close();
  EXPECT_EQ(Unscrambled(Log()), "[INFO]    x");
  fs::remove(folder_ / "app.log");
  std::memset(extended.module_name, 'm', sizeof extended.module_name);
  LOG_INFO(Open(extended), "x");
  Close();
  EXPECT_EQ(Log(), "[INFO]  " + std::string(63, 'm') + "  x");
  EXPECT_EQ(Errors().substr(0, 34), "LOG_MODULE_INIT_Ex module_name(mmm");
}

}  // namespace
