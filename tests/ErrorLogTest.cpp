// The lines of the error log.
#include "TestSupport.h"
#include "VintraModule/ErrLog.h"

namespace {

using ErrorLogTest = LogTest;

TEST_F(ErrorLogTest, Lines) {
  const std::string name(300, 'n');
  const std::string text(5000, 't');
  const std::string stamp = "2026-11-16 13:24:14.007  Errlog:";
  std::string expected = stamp + "writer.src(595) logMsgWriteFile strftime failed(errorcode:0).\n";
  EXPECT_EQ(PrintErrLog("a/b/writer.src", 595, "logMsgWriteFile strftime failed(errorcode:%d).", 0),
            static_cast<sint32>(expected.size()));
  fake.coarse_second -= 1;  // the clocks stand on two sides of a second's edge
  PrintErrLog(("/" + name).c_str(), 1, "%s", text.c_str());
  expected += stamp + "/" + name + "(1) " + text + "\n";
  fake.SetClock(-1);
  EXPECT_EQ(PrintErrLog("w.src", 1, "x"), 12);
  fake.SetClock(kNoYear);
  EXPECT_EQ(PrintErrLog("w.src", 1, "x"), 24);
  EXPECT_EQ(ReadFile(folder_ / "LogModuleErrMsg.log"), expected + ".007  Errlog:w.src(1) x\n");
}

TEST_F(ErrorLogTest, FolderWithoutRoomOrMissing) {
  for (const std::size_t length : {236U, 237U}) {
    const fs::path library_folder = folder_ / std::string(length - folder_.string().size() - 2, 'l');
    fs::create_directory(library_folder);
    fake.library_file = library_folder / "x.so";
    EXPECT_EQ(PrintErrLog("w.src", 1, "x") > 0, length == 236);
    EXPECT_EQ(fs::is_empty(library_folder), length != 236);
  }
  fake.library_file = folder_ / "missing/x.so";
  EXPECT_EQ(PrintErrLog("w.src", 1, "x"), 0);
}

}  // namespace
