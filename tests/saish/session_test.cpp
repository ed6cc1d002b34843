#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "saish/shell.h"

namespace {

namespace fs = std::filesystem;

class ShellSession : public support::Shell {
 protected:
  ShellSession() { fs::create_directory(directory_); }
  ~ShellSession() override { fs::remove_all(directory_); }

  /// Writes a script and gives its path.
  std::string script(const std::string& name, const std::string& text) const {
    std::ofstream(path(name)) << text;
    return path(name);
  }

  std::string path(const std::string& name) const { return (directory_ / name).string(); }

 private:
  const fs::path directory_ = fs::temp_directory_path() / ("saish_session_test." + std::to_string(getpid()));
};

TEST_F(ShellSession, ARunPrintsTheResult) {
  EXPECT_EQ(run("sai_vlan_create 0 10"), "  = 0\n");
  EXPECT_EQ(run("sai_unit_get"), "  = 0\n");
  EXPECT_EQ(saish::journal_text(), "bcm_vlan_create(0, 10) = 0\nbcm_vlan_port_add(0, 10, {0}, {}) = 0\n");
}

TEST_F(ShellSession, AFunctionWithoutResultPrintsNone) {
  run("log off");
  EXPECT_EQ(run("sai_err x"), "");
}

TEST_F(ShellSession, BlankLinesAndCommentsDoNothing) {
  EXPECT_EQ(run("", "  \t", "# sai_vlan_create 0 10"), "");
  EXPECT_EQ(saish::journal_text(), "");
}

TEST_F(ShellSession, AnUnknownCommandIsRefusedByName) {
  for (const std::string line : {"sai_vlan_creat 0 10", "SAI_VLAN_CREATE 0 10", "vlan_create 0 10", "0"}) {
    const std::string name = line.substr(0, line.find(' '));
    EXPECT_TRUE(refused(line).starts_with("no such command \"" + name + "\"; ")) << refused(line);
  }
}

TEST_F(ShellSession, ForAnUnknownCommandTheNearestNameIsShownWhereOneIsNear) {
  const auto meant = [&](const std::string& name) {
    const std::string text = refused(name + " 0 10");
    const std::string begin = "no such command \"" + name + "\"; did you mean ";
    return text.starts_with(begin) ? text.substr(begin.size()) : text;
  };
  EXPECT_EQ(meant("sai_vlan_crate"), "sai_vlan_create?");
  EXPECT_EQ(meant("sai_vlan_destory"), "sai_vlan_destroy?");
  EXPECT_EQ(meant("sai_vlan_creates"), "sai_vlan_create?");
  EXPECT_EQ(meant("hlep"), "help?");
  EXPECT_EQ(meant("journl"), "journal?");
  EXPECT_EQ(refused("expect 0 sai_vlan_crate 0 10"),
            "no such command \"sai_vlan_crate\"; did you mean sai_vlan_create?");
  for (const std::string name : {"\"\"", "0", "ab", "nonsense", "SAI_VLAN_CREATE"})
    EXPECT_TRUE(refused(name).ends_with("; help lists them all")) << refused(name);
}

TEST_F(ShellSession, AMessageShowsControlCharactersWrittenOut) {
  EXPECT_EQ(refused("\"a\nb\x1b[31m\x7f\""), "no such command \"a\\nb\\x1b[31m\\x7f\"; help lists them all");
  EXPECT_TRUE(refused("sai_vlan_create 0 \"1\n\t\"").starts_with("vid: \"1\\n\\x09\" is not a number "));
  EXPECT_EQ(refused("source \"a\r\nb\""), "cannot read the script \"a\\x0d\\nb\": No such file or directory");
  EXPECT_TRUE(refused("Z\u00fcrich").starts_with("no such command \"Z\u00fcrich\"; "));
  const std::string file = script("a", "expect 1\tsai_unit_get\r\n");
  EXPECT_TRUE(run_script(file).ends_with("  = 0\nunexpected: " + file +
                                         ":1: expect 1\\x09sai_unit_get\\x0d: expected 1, came 0\n"));
}

TEST_F(ShellSession, AQuoteThatIsNotClosedCallsNothing) {
  EXPECT_EQ(refused("sai_vlan_create 0 \"10"), "a quoted text has no closing quote: \"10");
}

TEST_F(ShellSession, ANegativeResultIsUnexpectedWhereALineHasToSucceed) {
  run("open_sai_log test 0 0 0");
  EXPECT_EQ(run("sai_vlan_destroy 0 99"), "  = -7 SAI_E_NOT_FOUND\n");
  EXPECT_EQ(run_well("sai_vlan_destroy 0 99"),
            "  = -7 SAI_E_NOT_FOUND\n"
            "unexpected: expected 0 or more, came -7 SAI_E_NOT_FOUND\n");
  EXPECT_EQ(run_well("expect SAI_E_NOT_FOUND sai_vlan_destroy 0 99"), "  = -7 SAI_E_NOT_FOUND\n");
  EXPECT_EQ(run_well("sai_level_match debug"), "  = 7\n");
  EXPECT_EQ(run_well("sai_err x"), "");
}

TEST_F(ShellSession, AnExpectedCodeThatComesIsFine) {
  run("open_sai_log test 0 0 0");
  EXPECT_EQ(run("expect SAI_E_NOT_FOUND sai_vlan_destroy 0 99"), "  = -7 SAI_E_NOT_FOUND\n");
  EXPECT_EQ(run("expect -7 sai_vlan_destroy 0 99"), "  = -7 SAI_E_NOT_FOUND\n");
  EXPECT_EQ(run("expect 0 sai_vlan_create 0 10"), "  = 0\n");
  EXPECT_EQ(run("expect 7 sai_level_match debug"), "  = 7\n");
}

TEST_F(ShellSession, AnyOtherCodeThanTheExpectedOneIsUnexpected) {
  run("open_sai_log test 0 0 0");
  EXPECT_EQ(run("expect SAI_E_EXISTS sai_vlan_destroy 0 99"),
            "  = -7 SAI_E_NOT_FOUND\n"
            "unexpected: expected -6 SAI_E_EXISTS, came -7 SAI_E_NOT_FOUND\n");
  EXPECT_EQ(run("expect SAI_E_NOT_FOUND sai_vlan_create 0 10"),
            "  = 0\n"
            "unexpected: expected -7 SAI_E_NOT_FOUND, came 0\n");
  EXPECT_EQ(run("expect 0 sai_level_match debug"), "  = 7\nunexpected: expected 0, came 7\n");
}

TEST_F(ShellSession, AnExpectThatIsNotWellFormedCallsNothing) {
  EXPECT_EQ(refused("expect"), "too few arguments; the form is expect CODE|out|cpu|dropped|nothing ...");
  EXPECT_EQ(refused("expect 0"), "too few arguments; the form is expect CODE COMMAND");
  for (const std::string code :
       {"SAI_E_NONSENSE", "BCM_E_NONE", "SAI_LOG_OFF", "2147483648", "-2147483649", "sai_vlan_create"})
    EXPECT_EQ(refused("expect " + code + " sai_vlan_create 0 10"),
              "code: \"" + code + "\" is neither a number nor a SAI_E_ name; the form is expect CODE COMMAND, or " +
                  "out, cpu, dropped or nothing is expected of a frame");
  for (const std::string name : {"show", "expect"})
    EXPECT_EQ(refused("expect 0 " + name + " vlan x"),
              "expect: \"" + name + "\" returns no code; the library's functions do, and send does");
  EXPECT_TRUE(refused("expect 0 nothing vlan x").starts_with("no such command \"nothing\"; "));
}

TEST_F(ShellSession, AFunctionThatReturnsNothingHasNoCodeToExpect) {
  run("open_sai_log test 0 0 0");
  for (const std::string call : {"sai_err x", "close_sai_log default", "sai_log_set_level default 1 7"})
    EXPECT_EQ(refused("expect 0 " + call), "expect: " + call.substr(0, call.find(' ')) + " returns nothing");
  EXPECT_NE(sai_log_default, nullptr);
  EXPECT_EQ(sai_log_default->max_level[SAI_LOG_CONSOLE], SAI_LOG_OFF);
}

TEST_F(ShellSession, ANegativeResultThatIsNoCodeHasNoCodesName) {
  EXPECT_EQ(run("sai_level_match xx"), "  = -1\n");
  EXPECT_EQ(run_well("sai_level_match xx"), "  = -1\nunexpected: expected 0 or more, came -1\n");
  EXPECT_EQ(run("expect -1 sai_level_match er"), "  = 3\nunexpected: expected -1, came 3\n");
}

TEST_F(ShellSession, ANegativeCodeHasItsNameWhateverGaveIt) {
  EXPECT_EQ(run("sdk_to_sai -1"), "  = -1 SAI_E_FAIL\n");
  run("open_sai_log test 0 0 0");
  EXPECT_TRUE(run("sai_sh_process_command 0 nonsense").ends_with("  = -1 SAI_E_FAIL\n"));
  EXPECT_EQ(run("sai_vlan_port_add 0 1 256 0"), "  = -5 SAI_E_PARAM\n");
}

TEST_F(ShellSession, ExpectsCodeMayBeAnyOf32Bits) {
  EXPECT_EQ(run("expect -2147483648 sai_unit_get"), "  = 0\nunexpected: expected -2147483648, came 0\n");
  EXPECT_EQ(run("expect 2147483647 sai_unit_get"), "  = 0\nunexpected: expected 2147483647, came 0\n");
}

TEST_F(ShellSession, AScriptEchoesEachLineBeforeWhatItPrints) {
  EXPECT_EQ(run_script(script("a", "# two VLANs\n\nsai_vlan_create 0 10\r\n  sai_unit_get")),
            "# two VLANs\n"
            "\n"
            "sai_vlan_create 0 10\r\n"
            "  = 0\n"
            "  sai_unit_get\n"
            "  = 0\n");
}

TEST_F(ShellSession, AScriptStopsAtTheFirstUnexpectedResultAndNamesFileAndLine) {
  const std::string file =
      script("a", "log off\n\nsai_vlan_create 0 10\nsai_vlan_destroy 0 99\nsai_vlan_create 0 20\n");
  EXPECT_EQ(run_script(file),
            "log off\n"
            "\n"
            "sai_vlan_create 0 10\n"
            "  = 0\n"
            "sai_vlan_destroy 0 99\n"
            "  = -7 SAI_E_NOT_FOUND\n"
            "unexpected: " +
                file + ":4: sai_vlan_destroy 0 99: expected 0 or more, came -7 SAI_E_NOT_FOUND\n");
  EXPECT_EQ(saish::journal_text(),
            "bcm_vlan_create(0, 10) = 0\n"
            "bcm_vlan_port_add(0, 10, {0}, {}) = 0\n"
            "bcm_vlan_destroy(0, 99) = -7\n");
}

TEST_F(ShellSession, AScriptStopsAtBadInputAndNamesFileAndLine) {
  const std::string file = script("a", "nonsense\nsai_vlan_create 0 10\n");
  const std::string result = run_script(file);
  EXPECT_TRUE(result.starts_with("nonsense\nunexpected: " + file + ":1: nonsense: no such command \"nonsense\"; "))
      << result;
  EXPECT_EQ(saish::journal_text(), "");
}

TEST_F(ShellSession, AScriptThatIsNotThereIsBadInput) {
  const std::string file = path("missing");
  EXPECT_EQ(run_script(file), "bad input: cannot read the script \"" + file + "\": No such file or directory\n");
  EXPECT_EQ(refused("source " + file), "cannot read the script \"" + file + "\": No such file or directory");
}

TEST_F(ShellSession, ADirectoryIsNoScript) {
  const std::string directory = fs::path(path("a")).parent_path().string();
  EXPECT_EQ(run_script(directory), "bad input: cannot read the script \"" + directory + "\": Is a directory\n");
  EXPECT_EQ(refused("source " + directory), "cannot read the script \"" + directory + "\": Is a directory");
}

TEST_F(ShellSession, AnEmptyScriptDoesNothing) { EXPECT_EQ(run_script(script("a", "")), ""); }

TEST_F(ShellSession, AByteOrderMarkBeforeTheFirstLineIsSkipped) {
  const std::string mark = "\xEF\xBB\xBF";
  EXPECT_EQ(run_script(script("a", mark + "sai_unit_get\n")), "sai_unit_get\n  = 0\n");
  EXPECT_EQ(run_script(script("b", mark + "# a comment\n" + mark + "sai_unit_get\n")),
            "# a comment\n" + mark + "sai_unit_get\nunexpected: " + path("b") + ":2: " + mark +
                "sai_unit_get: no such command \"" + mark + "sai_unit_get\"; did you mean sai_unit_get?\n");
}

TEST_F(ShellSession, AnInterruptEndsTheScriptsBeforeTheirNextLine) {
  const std::string inner = script("inner", "sai_unit_get\nsai_vlan_create 0 10\n");
  const std::string outer = script("outer", "source " + inner + "\n");
  saish::Session::interrupt();
  EXPECT_EQ(run_script(outer),
            "source " + inner + "\nunexpected: " + outer + ":1: source " + inner + ": interrupted\n");
  EXPECT_EQ(run("source " + outer).substr(0, 7), "source ") << "the next line runs again";
  EXPECT_EQ(saish::journal_text(), "bcm_vlan_create(0, 10) = 0\nbcm_vlan_port_add(0, 10, {0}, {}) = 0\n");
}

TEST_F(ShellSession, SourceRunsAScriptAndTheOtherGoesOn) {
  const std::string inner = script("inner", "sai_vlan_create 0 20\n");
  const std::string outer = script("outer", "source " + inner + "\nsai_unit_get\n");
  EXPECT_EQ(run("source " + outer), "source " + inner +
                                        "\n"
                                        "sai_vlan_create 0 20\n"
                                        "  = 0\n"
                                        "sai_unit_get\n"
                                        "  = 0\n");
}

TEST_F(ShellSession, WhatGoesWrongInASourcedScriptStopsTheOthersAndNamesAllOfThem) {
  const std::string inner = script("inner", "\nsai_unit_get 1\n");
  const std::string outer = script("outer", "sai_unit_get\nsource " + inner + "\nsai_vlan_create 0 10\n");
  EXPECT_EQ(run("source " + outer), "sai_unit_get\n  = 0\nsource " + inner +
                                        "\n\nsai_unit_get 1\nunexpected: " + outer + ":2: source " + inner + ": " +
                                        inner + ":2: sai_unit_get 1: too many arguments; the form is sai_unit_get\n");
  EXPECT_EQ(saish::journal_text(), "");
}

TEST_F(ShellSession, AScriptThatRunsItselfEndsAtADepthOf16) {
  const std::string file = path("a");
  script("a", "sai_vlan_init 0\nsource " + file + "\n");
  const std::string result = run_script(file);
  EXPECT_TRUE(result.ends_with(file + ":2: source " + file + ": scripts that run each other end at a depth of 16\n"))
      << result;
  std::string calls;
  for (int i = 0; i < 16; ++i) calls += "bcm_vlan_init(0) = 0\n";
  EXPECT_EQ(saish::journal_text(), calls);
}

TEST_F(ShellSession, AfterScriptsThatFailedTheDepthStartsAnew) {
  const std::string bad = script("bad", "nonsense\n");
  for (int i = 0; i < 20; ++i) run_script(bad);
  EXPECT_EQ(run_script(script("good", "sai_unit_get\n")), "sai_unit_get\n  = 0\n");
}

TEST_F(ShellSession, QuitEndsTheScriptsThatAreRunning) {
  const std::string inner = script("inner", "quit\nsai_vlan_create 0 10\n");
  EXPECT_EQ(run_script(script("outer", "source " + inner + "\nsai_vlan_create 0 20\n")),
            "source " + inner + "\nquit\n");
  EXPECT_TRUE(session().ended());
  EXPECT_EQ(saish::journal_text(), "");
}

TEST_F(ShellSession, ExitEndsTheShellAsQuitDoes) {
  EXPECT_EQ(run_script(script("a", "exit\nsai_vlan_create 0 10\n")), "exit\n");
  EXPECT_TRUE(session().ended());
  EXPECT_EQ(saish::journal_text(), "");
}

TEST_F(ShellSession, OneLogIsOpenAtATime) {
  EXPECT_EQ(run("open_sai_log first 1 0 0"), "  = 0\n");
  sai_log_handle* const first = sai_log_default;
  EXPECT_TRUE(refused("open_sai_log second 0 0 0").starts_with("a log is open; close_sai_log default closes it"));
  EXPECT_EQ(sai_log_default, first);
  EXPECT_EQ(run("close_sai_log default"), "");
  EXPECT_EQ(sai_log_default, nullptr);
  EXPECT_TRUE(refused("close_sai_log default").starts_with("log: no log is open; "));
  EXPECT_EQ(run("open_sai_log second 0 0 0"), "  = 0\n");
  EXPECT_STREQ(sai_log_default->ident, "second");
}

TEST_F(ShellSession, NullIsNoLogThatCanBeClosed) {
  run("open_sai_log test 0 0 0");
  EXPECT_TRUE(refused("close_sai_log null").starts_with("log: null cannot be closed; "));
  EXPECT_NE(sai_log_default, nullptr);
}

TEST_F(ShellSession, AnIndexThatTheLibraryUsesUncheckedIsRefusedOutsideItsTable) {
  for (const std::string module : {"-1", "2", "2147483647", "-2147483648"})
    EXPECT_TRUE(refused("open_sai_log test " + module + " 0 0")
                    .starts_with("module: \"" + module + "\" is not a number from 0 to 1; "));
  EXPECT_EQ(sai_log_default, nullptr);
  run("open_sai_log test 1 0 0");
  EXPECT_EQ(sai_log_default->module, 1);
  for (const std::string log : {"default", "null"})
    for (const std::string destination : {"-1", "3", "2147483647", "-2147483648"})
      EXPECT_TRUE(refused("sai_log_set_level " + log + " " + destination + " 7")
                      .starts_with("destination: \"" + destination + "\" is not a number from 0 to 2; "));
  for (const int32_t limit : sai_log_default->max_level) EXPECT_EQ(limit, SAI_LOG_OFF);
  run("sai_log_set_level default 0 1", "sai_log_set_level default 2 5");
  EXPECT_EQ(sai_log_default->max_level[0], 1);
  EXPECT_EQ(sai_log_default->max_level[2], 5);
}

TEST(ColdSession, LeavesTheChipOff) {
  saish::Session session(saish::Power::cold);
  EXPECT_THROW(session.run("show vlan"), saish::BadInput);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  EXPECT_NO_THROW(session.run("expect SAI_E_FAIL sai_vlan_init 0"));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "  = -1 SAI_E_FAIL\n");
  EXPECT_TRUE(testing::internal::GetCapturedStderr().ends_with("Failed to init vlan: No such unit\n"));
}

}  // namespace
