// Files at the edges of names, days, sizes and buffers, and what is said when they cannot be used.
#include <stdio_ext.h>

#include "Common/Handles.h"
#include "TestSupport.h"
#include "VintraModule/Retention.h"
#include "VintraModule/VintraModuleInter.h"

namespace {

using RotationTest = LogTest;

std::uintmax_t SizeOnDisk() { return fs::file_size("app.log"); }

TEST_F(RotationTest, NumberedFilesThatCannotBeUsed) {
  for (const auto& [mode, front] : {std::pair(Log_Mode_Rollback, "app"s), {Log_Mode_Date, "app_20261116_"}}) {
    // Paths of 259 characters, which one more digit or letter makes too long.
    std::string base = folder_ + std::string(200, 'd') + "/";
    base.resize(255 - front.size(), 'n');
    EXPECT_EQ(Start({"none", 0, 100, base + "n.log", mode}), 5);
    Open({"none", 0, 100, base + ".log", mode});
    Record().cur_log_file_ID = 999;
    for (const sint32 written : {0, 5, 1}) EXPECT_EQ(Write(101), written);
    const std::string report = "errno = 5\nBad file handle " + std::to_string(NextDescriptor());
    Errors();
    for (const char* look : {"fstat", "fstat2"}) {  // the scan's at the file, and the size check's
      fake.NoteCalls(look);
      EXPECT_EQ(Start({"none", 0, 100, "free.log", mode, 2}), 5);
      EXPECT_EQ(Errors(), report + (look == "fstat"s && mode == Log_Mode_Date ? "\n" : ".\n"));
    }
    fake.notes_calls = false;
  }
}

TEST_F(RotationTest, RemovingEndsWhereAFileStaysOrTheClockDoes) {
  const std::string folder = "app_20200101_000", file = "app_20200101_001", empty = "app_20200101_002";
  const std::string late = "app_20380120_000";  // when seconds of 32 bits have ended
  // clang-format off
  const struct { std::time_t clock; std::size_t length; std::vector<std::string> list; sint32 code; } cases[] = {
      {kStart, 243, {file, folder, ""}, -1}, {-1, 243, {file}, 12}, {kNoYear, 243, {file}, 12}, {kFarYear, 243, {file}, 12},
      {-kFarYear, 243, {file}, 12}, {kStart, 244, {file}, 0}, {kStart, 2, {"x\\" + file}, 0}, {kStart, 243, {file, empty, late}, 0}};
  // clang-format on
  // What is in no empty folder stays; so does what has a path of 260 characters.
  fs::create_directories(folder + "/x");
  fs::create_directory(empty);
  MakeFile(file, 5);
  MakeFile(late, 5);
  LogHandleRec handle{};
  vintra::CopyText(handle.log_file_name, "app");
  for (const auto& row : cases) {
    EXPECT_TRUE(fs::exists(folder) && fs::exists(file));
    fake.SetClock(row.clock);
    vintra::CopyText(handle.log_file_path, "." + std::string(row.length - 1, '/'));
    FileList* list = nullptr;
    for (const auto& name : row.list) vintra::CopyText((list = new FileList{{}, list})->file_name, name);
    EXPECT_EQ(DeleteLogFile(list, 1, &handle), row.code);
  }
  EXPECT_FALSE(fs::exists(file) || fs::exists(empty));
  EXPECT_TRUE(fs::exists(late));
}

TEST_F(RotationTest, FlushesInOneWriteUntilTheBufferIsFull) {
  for (const uint32 threshold : {0U, 1U, 4096U, 65536U, 200000U}) {
    Open({"%C", threshold});
    // The stream holds what gathers until a flush, up to some 64 KiB, and not much more.
    EXPECT_GE(__fbufsize(Record().file_out), threshold == 0 ? 0 : std::min(threshold, 65536U) + 2048);
    EXPECT_LE(__fbufsize(Record().file_out), threshold == 0 ? 4096 : 65536 + 4096);
  }
  const auto buffer = static_cast<uint32>(__fbufsize(Record().file_out));
  for (const uint32 size : {buffer - 301, buffer - 300, buffer - 299}) {  // about what it has room for
    for (const uint32 piece : {100U, 100U, size + 100}) EXPECT_EQ(Write(piece), 0);
    EXPECT_EQ(LOG_MSG_FLUSH(handle_), 0);
    EXPECT_EQ(SizeOnDisk(), Record().file_size);
  }
  MakeFile("app.log", (1ULL << 32) + 10);
  Open({"none", 0, 100});
  EXPECT_EQ(SizeOnDisk(), 0U) << "4 GiB and ten bytes are not ten";
  Record().max_file_size = UINT32_MAX;
  Record().file_size = UINT32_MAX - 5;
  EXPECT_EQ(Write(10), 0);
  EXPECT_EQ(Record().file_size, UINT32_MAX) << "full, and not empty again";
}

TEST_F(RotationTest, MessagesOfWritesFlushesAndClosesThatFail) {
  Open({"", 0, 1U << 30, "/dev/full"});
  const std::string failed = "(" + std::to_string(fileno(Record().file_out)) + ") = -1 failed\n";
  errno = ENOENT;
  EXPECT_EQ(Write(10), 7);
  EXPECT_EQ(Bars(errno, Record().file_size, Record().flush_size), Bars(ENOENT, 10, 0));
  EXPECT_EQ(Write(100000), 7);
  EXPECT_EQ(Record().file_size, 14U) << "the header stands, the message does not";
  EXPECT_EQ(Errors(), "LogMsg fflush" + failed + "logMsgWriteFile vfprintf failed(errorcode:0).\n");

  Open({"", 4096, 1U << 30, "/dev/full"});
  EXPECT_EQ(Write(10), 0);
  for (const sint32 code : {7, 0}) EXPECT_EQ(LOG_MSG_FLUSH(handle_), code) << "not tried again";
  EXPECT_EQ(Write(10), 0);
  const vintra::FilePtr read_only(std::fopen("/dev/null", "r"));
  FILE* const file_out = std::exchange(Record().file_out, read_only.get());
  EXPECT_EQ(Write(10), 7);
  Record().file_out = file_out;
  Close();
  EXPECT_EQ(Errors(),
            "LogMsg fflush" + failed + "logMsgWriteFile fwrite failed(errorcode:0).\nLogMsg fclose" + failed);
}

TEST_F(RotationTest, WaitsForRoomUntilAsMuchWasRefusedAsTheLargestFileHolds) {
  for (const uint32 size : {UINT32_MAX - 100, UINT32_MAX}) {
    Open({"", 4096, UINT32_MAX, "/dev/full"});
    Errors();  // of the log before
    EXPECT_EQ(Write(10), 0);
    Record().file_size = size;
    EXPECT_EQ(Write(10), 7);
    EXPECT_EQ(Errors().find("fclose") != std::string::npos, size == UINT32_MAX) << "it has moved on";
  }
}

TEST_F(RotationTest, FilesUnderOtherProgramsHands) {
  Open({"", 0, 100});
  for (const uint32 size : {20U, 150U}) {  // the latter is followed by a new file
    Write(size);
    if (size == 150) Write(20);
    EXPECT_NE(fcntl(fileno(Record().file_out), F_GETFD) & FD_CLOEXEC, 0);
    fs::resize_file("app.log", 0);
    Write(12);
    EXPECT_EQ(Log(), "\r\n  xxxxxxxxxx") << "and the separator that the counted bytes call for";
  }
}

}  // namespace
