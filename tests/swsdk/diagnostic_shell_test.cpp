// The SDK's own shell, and the LED processors behind its command.
#include <appl/diag/shell.h>
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "chip/led_processors.h"
#include "support/chip_test.h"

namespace {

/// A program of two records: bytes 1 2 3 at 0x10 and 4 at 0x3FF, the last of the memory.
const std::string program =
    ":03001000010203E7\n"
    ":0103FF0004F9\n"
    ":00000001FF\n";

class DiagnosticShell : public support::ChipTest {
 protected:
  DiagnosticShell() : file_(testing::TempDir() + "led_program_" + std::to_string(getpid()) + ".hex") { write(program); }
  ~DiagnosticShell() override { std::remove(file_.c_str()); }

  void write(const std::string& text) { std::ofstream(file_) << text; }

  /// What a command printed, then its result.
  static std::string run(std::string command, int unit = 0) {
    testing::internal::CaptureStdout();
    const cmd_result_t result = sh_process_command(unit, command.data());
    return testing::internal::GetCapturedStdout() + std::to_string(result);
  }
  std::string load(int led) const { return run("led " + std::to_string(led) + " load " + file_); }

  /// What a processor becomes by this text.
  std::string load(int led, const std::string& text) {
    write(text);
    return load(led);
  }

  const std::string ok = std::to_string(CMD_OK);
  const std::string failed = std::to_string(CMD_FAIL);
  const std::string usage = "Usage: led N load FILE | auto on|off | start | stop\n" + std::to_string(CMD_USAGE);

 private:
  std::string file_;
};

TEST_F(DiagnosticShell, ListsItsCommands) {
  EXPECT_EQ(run("help"), "help\nled N load FILE | auto on|off | start | stop\n" + ok);
  EXPECT_EQ(run(" help \t again\n"), run("help"));
}

TEST_F(DiagnosticShell, DoesNothingForABlankLine) {
  for (const char* line : {"", " ", "\t\n"}) EXPECT_EQ(run(line), ok);
}

TEST_F(DiagnosticShell, DoesNotKnowOtherCommands) {
  const std::string not_found = std::to_string(CMD_NFND);
  EXPECT_EQ(run("leds 0 start"), "leds: no such command; help lists them\n" + not_found);
  EXPECT_EQ(run("LED 0 start"), "LED: no such command; help lists them\n" + not_found);
}

TEST_F(DiagnosticShell, NeedsALineAndAUnitThatIsUp) {
  EXPECT_EQ(sh_process_command(0, nullptr), CMD_USAGE);
  char line[] = "led 0 stop";
  EXPECT_EQ(static_cast<int>(sh_process_command(1, line)), BCM_E_UNIT);
  EXPECT_EQ(static_cast<int>(sh_process_command(-1, line)), BCM_E_UNIT);
  support::attach_chip();
  EXPECT_EQ(static_cast<int>(sh_process_command(0, line)), BCM_E_INIT);
}

TEST_F(DiagnosticShell, TellsHowTheLedCommandIsUsed) {
  for (const char* line : {"led", "led 0", "led 2 start", "led -1 start", "led x start", "led 0x start",
                           "led 99999999999 start", "led 0 load", "led 0 load a b", "led 0 auto", "led 0 auto maybe",
                           "led 0 auto on off", "led 0 run", "led 0 start now", "led 0 stop now"})
    EXPECT_EQ(run(line), usage) << line;
  EXPECT_EQ(shown("led"),
            "0          -        off   stopped\n"
            "1          -        off   stopped\n");
}

TEST_F(DiagnosticShell, BringsALedProcessorUp) {
  EXPECT_EQ(load(1), ok);
  EXPECT_EQ(run("led 1 auto on"), ok);
  EXPECT_EQ(run("led 1 start"), ok);
  EXPECT_EQ(shown("led"),
            "0          -        off   stopped\n"
            "1          loaded   on    running\n");
  EXPECT_EQ(run("led 1 stop"), ok);
  EXPECT_EQ(run("led 1 auto off"), ok);
  EXPECT_EQ(shown("led"),
            "0          -        off   stopped\n"
            "1          loaded   off   stopped\n");
}

TEST_F(DiagnosticShell, StartsNoLedProcessorWithoutAProgram) {
  EXPECT_EQ(run("led 0 start"), failed);
  EXPECT_EQ(run("led 0 stop"), ok);
  EXPECT_EQ(load(0), ok);
  EXPECT_EQ(run("led 0 start"), ok);
  system_init(0);
  EXPECT_EQ(run("led 0 start"), failed);
}

TEST_F(DiagnosticShell, StopsALedProcessorThatIsLoadedAndKeepsItAutomatic) {
  load(0);
  run("led 0 auto on");
  run("led 0 start");
  EXPECT_EQ(load(0), ok);
  EXPECT_EQ(shown("led").substr(0, 34), "0          loaded   on    stopped\n");
}

TEST_F(DiagnosticShell, LoadsNoFileThatIsMissingOrADirectory) {
  EXPECT_EQ(run("led 0 load " + testing::TempDir() + "nothing_here.hex"), failed);
  EXPECT_EQ(run("led 0 load " + testing::TempDir()), failed);
}

TEST_F(DiagnosticShell, LoadsProgramsInHexRecordsAndNothingElse) {
  EXPECT_EQ(load(0, ":00000001FF"), ok);
  EXPECT_EQ(load(0, ":03001000010203e7\r\n:00000001ff\r\n"), ok);
  EXPECT_EQ(load(0, ":00000001FF\nwhat is behind the end does not count\n"), ok);

  run("led 0 start");
  const std::string end = "\n:00000001FF\n";
  const std::pair<const char*, std::string> bad[] = {
      {"empty", ""},
      {"no end record", ":03001000010203E7\n"},
      {"blank line", end},
      {"wrong checksum", ":03001000010203E6" + end},
      {"wrong checksum of the end", ":00000001FE\n"},
      {"not hexadecimal", ":0300100001020GE7" + end},
      {"sign", ":03001000010203-7" + end},
      {"no colon", "03001000010203E7" + end},
      {"half a byte", ":03001000010203E" + end},
      {"shorter than its length", ":030010000102EA" + end},
      {"longer than its length", ":02001000010203E8" + end},
      {"no type", ":000000" + end},
      {"another type", ":020000021000EC" + end},
      {"past the memory", ":0104000004F7" + end},
      {"across the end of the memory", ":0203FF000405F3" + end},
      {"a text", "this is no program" + end},
  };
  for (const auto& [what, text] : bad) EXPECT_EQ(load(0, text), failed) << what;
  EXPECT_EQ(shown("led").substr(0, 34), "0          loaded   off   running\n");
}

TEST(LedProcessors, HoldTheirProgramAndKeepItWhenAnotherIsRefused) {
  chip::LedProcessors processors;
  std::istringstream good(program);
  EXPECT_EQ(processors.load(1, good), chip::Status::ok);
  const auto& memory = processors[1].memory;
  EXPECT_EQ(memory[0x0F], 0);
  EXPECT_EQ(memory[0x10], 1);
  EXPECT_EQ(memory[0x12], 3);
  EXPECT_EQ(memory[0x13], 0);
  EXPECT_EQ(memory[0x3FF], 4);
  EXPECT_FALSE(processors[0].loaded);

  std::istringstream half_good(":0100100009E6\n:0104000004F7\n:00000001FF\n");
  EXPECT_EQ(processors.load(1, half_good), chip::Status::bad_parameter);
  EXPECT_EQ(memory[0x10], 1);

  std::istringstream other(":0100200009D6\n:00000001FF\n");
  EXPECT_EQ(processors.load(1, other), chip::Status::ok);
  EXPECT_EQ(memory[0x10], 0);
  EXPECT_EQ(memory[0x20], 9);
}

}  // namespace
