#include <gtest/gtest.h>
#include <sai.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "support/system.h"

namespace {

namespace fs = std::filesystem;
using namespace support::system;

constexpr time_t morning = 1795251900;  // 2026/11/21 09:05:00 in UTC

class Log : public testing::Test {
 protected:
  Log() {
    setenv("TZ", "UTC", 1);
    tzset();
    set_clock(morning, 0);
    take_syslog();
  }
  ~Log() override {
    if (sai_log_default != nullptr) close_sai_log(sai_log_default);
    sai_log_default = nullptr;
    free(file_text_);
  }

  /// Opens the default log with a file in memory.
  void open(int32_t module = 0) {
    sai_log_default = open_sai_log("switch", module, LOG_PID, LOG_LOCAL3);
    sai_log_default->file = open_memstream(&file_text_, &file_size_);
    take_syslog();
  }

  static void limit(int32_t destination, int32_t level) { sai_log_set_level(nullptr, destination, level); }

  std::string file() {
    fflush(sai_log_default->file);
    return {file_text_, file_size_};
  }

  /// What `write` prints on standard output.
  template <class Write>
  static std::string console(Write write) {
    testing::internal::CaptureStdout();
    write();
    return testing::internal::GetCapturedStdout();
  }

  /// The stamp that a message at the set clock gets with that precision.
  std::string stamp(int32_t precision) {
    sai_log_default->time_precision = precision;
    const size_t before = file().size();
    sai_err("x");
    const std::string line = file().substr(before);
    EXPECT_TRUE(line.ends_with(" NONE: x\n")) << line;
    return line.substr(0, line.size() - std::strlen(" NONE: x\n"));
  }

  static void write_all_levels() {
    sai_err("e");
    sai_warn("w");
    sai_notice("n");
    sai_info("i");
    sai_debug("d");
  }

 private:
  char* file_text_ = nullptr;
  size_t file_size_ = 0;
};

TEST_F(Log, OpenGivesAHandleWithEveryDestinationOffAndTheSystemLogOpen) {
  static const char ident[] = "switch";
  sai_log_handle* const log = open_sai_log(ident, 1, LOG_PID | LOG_NDELAY, LOG_LOCAL3);
  ASSERT_NE(log, nullptr);
  EXPECT_EQ(take_syslog(),
            "open switch " + std::to_string(LOG_PID | LOG_NDELAY) + " " + std::to_string(LOG_LOCAL3) + "\n");
  EXPECT_EQ(log->file, nullptr);
  EXPECT_EQ(log->ident, ident);
  EXPECT_EQ(log->file_name, nullptr);
  EXPECT_EQ(log->module, 1);
  EXPECT_EQ(log->facility, LOG_LOCAL3);
  EXPECT_EQ(log->level, -1);
  EXPECT_EQ(log->syslog_options, LOG_PID | LOG_NDELAY);
  EXPECT_EQ(log->show_priority, 0);
  EXPECT_EQ(log->time_precision, 0);
  EXPECT_EQ(log->max_level[0], -1);
  EXPECT_EQ(log->max_level[1], -1);
  EXPECT_EQ(log->max_level[2], -1);
  EXPECT_EQ(sai_log_default, nullptr);
  close_sai_log(log);
}

TEST_F(Log, OpenWithoutMemoryGivesNullAndLeavesTheSystemLogAlone) {
  if (!fail_next_allocation()) GTEST_SKIP() << "the sanitizer owns the allocator";
  EXPECT_EQ(open_sai_log("switch", 0, 0, 0), nullptr);
  EXPECT_EQ(take_syslog(), "");
}

TEST_F(Log, CloseClosesTheSystemLogAndTheFileAndFreesTheName) {
  const fs::path path = fs::temp_directory_path() / ("sai_log_test." + std::to_string(getpid()));
  sai_log_handle* const log = open_sai_log("switch", 0, 0, 0);
  log->file = fopen(path.c_str(), "w");
  ASSERT_NE(log->file, nullptr);
  const int descriptor = fileno(log->file);
  log->file_name = strdup(path.c_str());  // a leak here is the sanitizer's to find
  take_syslog();
  close_sai_log(log);
  EXPECT_EQ(take_syslog(), "close\n");
  struct stat status;
  EXPECT_EQ(fstat(descriptor, &status), -1);
  fs::remove(path);
}

TEST_F(Log, CloseOfAHandleWithoutFileOrNameClosesTheSystemLog) {
  sai_log_handle* const log = open_sai_log("switch", 0, 0, 0);
  take_syslog();
  close_sai_log(log);
  EXPECT_EQ(take_syslog(), "close\n");
}

TEST_F(Log, AFreshHandleWritesNowhere) {
  open();
  EXPECT_EQ(console(write_all_levels), "");
  EXPECT_EQ(file(), "");
  EXPECT_EQ(take_syslog(), "");
}

TEST_F(Log, TheConsoleTakesMessagesUpToItsLimit) {
  open();
  limit(SAI_LOG_CONSOLE, 3);
  EXPECT_EQ(console(write_all_levels), "2026/11/21 09:05:00 NONE: e\n");
  limit(SAI_LOG_CONSOLE, 7);
  EXPECT_EQ(console(write_all_levels),
            "2026/11/21 09:05:00 NONE: e\n"
            "2026/11/21 09:05:00 NONE: w\n"
            "2026/11/21 09:05:00 NONE: n\n"
            "2026/11/21 09:05:00 NONE: i\n"
            "2026/11/21 09:05:00 NONE: d\n");
  limit(SAI_LOG_CONSOLE, -1);
  EXPECT_EQ(console(write_all_levels), "");
  EXPECT_EQ(file(), "");
  EXPECT_EQ(take_syslog(), "");
}

TEST_F(Log, TheFileTakesMessagesUpToItsLimit) {
  open();
  limit(SAI_LOG_FILE, 4);
  EXPECT_EQ(console(write_all_levels), "");
  EXPECT_EQ(file(), "2026/11/21 09:05:00 NONE: e\n2026/11/21 09:05:00 NONE: w\n");
  EXPECT_EQ(take_syslog(), "");
}

TEST_F(Log, ALineIsInTheFileWhenTheCallReturns) {
  open();
  limit(SAI_LOG_FILE, 7);
  fclose(sai_log_default->file);
  sai_log_default->file = std::tmpfile();
  sai_err("x");
  struct stat status;
  fstat(fileno(sai_log_default->file), &status);
  EXPECT_EQ(status.st_size, static_cast<off_t>(std::strlen("2026/11/21 09:05:00 NONE: x\n")));
}

TEST_F(Log, AFileLimitWithoutAFileWritesNothing) {
  sai_log_default = open_sai_log("switch", 0, 0, 0);
  take_syslog();
  limit(SAI_LOG_FILE, 7);
  EXPECT_EQ(console(write_all_levels), "");
  EXPECT_EQ(take_syslog(), "");
}

TEST_F(Log, TheSystemLogTakesMessagesUpToItsLimitWithTheFacilityAndWithoutStampOrModule) {
  open();
  sai_log_default->time_precision = 3;
  sai_log_default->show_priority = 1;
  limit(SAI_LOG_SYSLOG, 5);
  EXPECT_EQ(console([] {
              sai_err("port %d: %s", 7, "down");
              sai_warn("w");
              sai_notice("n");
              sai_info("i");
            }),
            "");
  EXPECT_EQ(take_syslog(), std::to_string(LOG_LOCAL3 | 3) + " port 7: down\n" + std::to_string(LOG_LOCAL3 | 4) +
                               " w\n" + std::to_string(LOG_LOCAL3 | 5) + " n\n");
}

TEST_F(Log, AMessageGoesToAllDestinationsWithItsArgumentsIntact) {
  open(1);
  limit(SAI_LOG_SYSLOG, 7);
  limit(SAI_LOG_CONSOLE, 7);
  limit(SAI_LOG_FILE, 7);
  const std::string line = "2026/11/21 09:05:00 STG: 1 two 0x3\n";
  EXPECT_EQ(console([] { sai_info("%d %s 0x%x", 1, "two", 3); }), line);
  EXPECT_EQ(file(), line);
  EXPECT_EQ(take_syslog(), std::to_string(LOG_LOCAL3 | 6) + " 1 two 0x3\n");
}

TEST_F(Log, TheSystemLogComesFirstThenTheFileThenTheConsole) {
  open();
  for (const int32_t destination : {SAI_LOG_SYSLOG, SAI_LOG_CONSOLE, SAI_LOG_FILE}) limit(destination, 7);
  // Each write to the file tells what the other two had by then.
  struct Witness {
    std::string syslog;
    off_t console_length;
  } witness{};
  fclose(sai_log_default->file);
  const auto watch = [](void* cookie, const char*, size_t size) {
    auto& seen = *static_cast<Witness*>(cookie);
    seen.syslog += take_syslog();
    struct stat status;
    fstat(STDOUT_FILENO, &status);  // standard output is captured in a file
    seen.console_length = status.st_size;
    return static_cast<ssize_t>(size);
  };
  sai_log_default->file =
      fopencookie(&witness, "w", {.read = nullptr, .write = watch, .seek = nullptr, .close = nullptr});
  EXPECT_NE(console([] { sai_err("x"); }), "");
  EXPECT_EQ(witness.syslog, std::to_string(LOG_LOCAL3 | 3) + " x\n");
  EXPECT_EQ(witness.console_length, 0);
}

TEST_F(Log, ShowPriorityPutsTheLevelsNameBeforeTheModule) {
  open();
  limit(SAI_LOG_FILE, 7);
  sai_log_default->show_priority = 2;
  write_all_levels();
  EXPECT_EQ(file(),
            "2026/11/21 09:05:00 errors: NONE: e\n"
            "2026/11/21 09:05:00 warnings: NONE: w\n"
            "2026/11/21 09:05:00 notifications: NONE: n\n"
            "2026/11/21 09:05:00 informational: NONE: i\n"
            "2026/11/21 09:05:00 debugging: NONE: d\n");
}

TEST_F(Log, WithoutADefaultLogEveryMessageGoesToStandardErrorWithoutFractionOrLevel) {
  set_clock(morning, 123456);
  testing::internal::CaptureStderr();
  EXPECT_EQ(console(write_all_levels), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "2026/11/21 09:05:00 unknown: e\n"
            "2026/11/21 09:05:00 unknown: w\n"
            "2026/11/21 09:05:00 unknown: n\n"
            "2026/11/21 09:05:00 unknown: i\n"
            "2026/11/21 09:05:00 unknown: d\n");
  EXPECT_EQ(take_syslog(), "");
}

TEST_F(Log, TheDateTextIsMadeOncePerSecond) {
  open();
  limit(SAI_LOG_FILE, 7);
  set_clock(morning + 100, 0);
  const int before = dates_made();
  sai_err("x");
  set_clock(morning + 100, 999999);
  sai_err("x");
  EXPECT_EQ(dates_made(), before + 1);
  set_clock(morning + 101, 0);
  sai_err("x");
  EXPECT_EQ(dates_made(), before + 2);
  set_clock(morning + 100, 0);  // a clock that is set back is another second too
  sai_err("x");
  EXPECT_EQ(dates_made(), before + 3);
  EXPECT_EQ(file(),
            "2026/11/21 09:06:40 NONE: x\n"
            "2026/11/21 09:06:40 NONE: x\n"
            "2026/11/21 09:06:41 NONE: x\n"
            "2026/11/21 09:06:40 NONE: x\n");
}

TEST_F(Log, TheDateIsInLocalTime) {
  setenv("TZ", "EAST-3", 1);
  open();
  limit(SAI_LOG_FILE, 7);
  set_clock(morning + 200, 0);
  sai_err("x");
  EXPECT_EQ(file(), "2026/11/21 12:08:20 NONE: x\n");
}

TEST_F(Log, ThePrecisionGivesThatManyDigitsOfTheSecondsFraction) {
  open();
  limit(SAI_LOG_FILE, 7);
  set_clock(morning, 123456);
  const std::string date = "2026/11/21 09:05:00";
  EXPECT_EQ(stamp(-1), date);
  EXPECT_EQ(stamp(0), date);
  EXPECT_EQ(stamp(1), date + ".1");
  EXPECT_EQ(stamp(2), date + ".12");
  EXPECT_EQ(stamp(3), date + ".123");
  EXPECT_EQ(stamp(4), date + ".1234");
  EXPECT_EQ(stamp(5), date + ".12345");
  EXPECT_EQ(stamp(6), date + ".123456");
  EXPECT_EQ(stamp(8), date + ".12345600");
  EXPECT_EQ(stamp(9), date + ".123456000");
  EXPECT_EQ(stamp(19), date + ".1234560000000000000");
}

TEST_F(Log, APrecisionThatDoesNotFitTheStampGivesTheDateAlone) {
  open();
  limit(SAI_LOG_FILE, 7);
  EXPECT_EQ(stamp(20), "2026/11/21 09:05:00");
  EXPECT_EQ(stamp(INT32_MAX), "2026/11/21 09:05:00");
}

TEST_F(Log, TheFractionHasItsLeadingZeros) {
  open();
  limit(SAI_LOG_FILE, 7);
  set_clock(morning, 42);
  EXPECT_EQ(stamp(3), "2026/11/21 09:05:00.000");
  EXPECT_EQ(stamp(6), "2026/11/21 09:05:00.000042");
  set_clock(morning, 999999);
  EXPECT_EQ(stamp(1), "2026/11/21 09:05:00.9");
}

TEST_F(Log, OneMessageHasTheSameStampInTheFileAndOnTheConsole) {
  open();
  limit(SAI_LOG_FILE, 7);
  limit(SAI_LOG_CONSOLE, 7);
  sai_log_default->time_precision = 6;
  set_clock(morning, 654321, 1);
  const std::string shown = console([] { sai_err("x"); });
  EXPECT_EQ(shown, "2026/11/21 09:05:00.654321 NONE: x\n");
  EXPECT_EQ(file(), shown);
}

TEST_F(Log, ErrnoStaysAsItWasOnEveryPath) {
  const auto errno_after = [](void (*log)(const char*, ...)) {
    errno = ENOTTY;
    log("%s", "x");
    return errno;
  };
  const auto all_keep = [&] {
    for (const auto log : {sai_err, sai_warn, sai_notice, sai_info, sai_debug}) EXPECT_EQ(errno_after(log), ENOTTY);
  };
  testing::internal::CaptureStderr();
  all_keep();
  testing::internal::GetCapturedStderr();

  open();
  all_keep();  // written nowhere
  for (const int32_t destination : {SAI_LOG_SYSLOG, SAI_LOG_CONSOLE, SAI_LOG_FILE}) {
    limit(destination, 7);
    console(all_keep);
    limit(destination, -1);
  }
  limit(SAI_LOG_FILE, 7);
  fclose(sai_log_default->file);
  sai_log_default->file = fopen("/dev/full", "w");
  all_keep();  // the write fails
}

TEST_F(Log, SetLevelSetsOneDestinationOfTheGivenOrTheDefaultLog) {
  open();
  sai_log_handle* const other = open_sai_log("other", 0, 0, 0);
  sai_log_set_level(other, SAI_LOG_CONSOLE, 5);
  EXPECT_EQ(other->max_level[0], -1);
  EXPECT_EQ(other->max_level[1], 5);
  EXPECT_EQ(other->max_level[2], -1);
  EXPECT_EQ(sai_log_default->max_level[1], -1);
  sai_log_set_level(nullptr, SAI_LOG_FILE, 2);
  sai_log_set_level(nullptr, SAI_LOG_SYSLOG, 0);
  EXPECT_EQ(sai_log_default->max_level[0], 0);
  EXPECT_EQ(sai_log_default->max_level[1], -1);
  EXPECT_EQ(sai_log_default->max_level[2], 2);
  EXPECT_EQ(other->max_level[2], -1);
  close_sai_log(other);
}

TEST_F(Log, LevelMatchComparesTwoLetters) {
  EXPECT_EQ(sai_level_match("emergencies"), 0);
  EXPECT_EQ(sai_level_match("alert"), 1);
  EXPECT_EQ(sai_level_match("cr"), 2);
  EXPECT_EQ(sai_level_match("er"), 3);
  EXPECT_EQ(sai_level_match("warn"), 4);
  EXPECT_EQ(sai_level_match("notice"), 5);
  EXPECT_EQ(sai_level_match("info"), 6);
  EXPECT_EQ(sai_level_match("de"), 7);
  EXPECT_EQ(sai_level_match("deb"), 7);
  EXPECT_EQ(sai_level_match("debugging"), 7);
}

TEST_F(Log, LevelMatchOfAnythingElseIsMinusOne) {
  EXPECT_EQ(sai_level_match("x"), -1);
  EXPECT_EQ(sai_level_match("e"), -1);
  EXPECT_EQ(sai_level_match(""), -1);
  EXPECT_EQ(sai_level_match("Debugging"), -1);
}

TEST_F(Log, LevelMatchReadsTheTableThatItsOwnerMayChange) {
  const char* const kept = sai_log_priority[0];
  sai_log_priority[0] = nullptr;
  EXPECT_EQ(sai_level_match("debugging"), -1);
  sai_log_priority[0] = "debris";
  EXPECT_EQ(sai_level_match("debugging"), 0);  // the first match
  sai_log_priority[0] = kept;
}

TEST_F(Log, TheExportedTablesEndWithNull) {
  EXPECT_STREQ(sai_log_priority[7], "debugging");
  EXPECT_EQ(sai_log_priority[8], nullptr);
  EXPECT_STREQ(sai_log_module_names[0], "NONE");
  EXPECT_STREQ(sai_log_module_names[1], "STG");
  EXPECT_EQ(sai_log_module_names[2], nullptr);
}

}  // namespace
