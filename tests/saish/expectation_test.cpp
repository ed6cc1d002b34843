#include "expectation.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "saish/shell.h"

namespace {

namespace fs = std::filesystem;

/// Ports 1, 2 (tagged) and 3 (untagged) are in VLAN 10.
class FrameExpectations : public support::Shell {
 protected:
  FrameExpectations() {
    run("open_sai_log test 0 0 0", "sai_vlan_create 0 10", "sai_vlan_port_add 0 10 1 1", "sai_vlan_port_add 0 10 2 1");
    run("sai_vlan_port_add 0 10 3 0", "link 1 up", "link 2 up", "link 3 up");
  }
  ~FrameExpectations() override { fs::remove_all(directory_); }

  /// Writes a script and gives its path.
  std::string script(const std::string& name, const std::string& text) const {
    fs::create_directory(directory_);
    std::ofstream((directory_ / name).string()) << text;
    return (directory_ / name).string();
  }

  /// How a script ended, without what it printed before.
  std::string end_of(const std::string& path) {
    const std::string result = run_script(path);
    const std::size_t end = result.rfind("unexpected: ");
    return end == std::string::npos ? "" : result.substr(end);
  }

  /// How an expectation of a frame failed, if it did.
  std::string failed(const std::string& sent, const std::string& line) {
    run(sent);
    return run(line);
  }

  static inline const std::string macs = "02:00:00:00:00:01 > 02:00:00:00:00:02";
  static inline const std::string tagged = macs + " vlan 10 ip 10.0.0.1 > 10.0.0.2 ttl 64 udp 5 > 6";
  static inline const std::string untagged = macs + " ip 10.0.0.1 > 10.0.0.2 ttl 64 udp 5 > 6";
  /// It leaves at ports 2 and 3, and for the CPU.
  static inline const std::string flood = "send 1 " + tagged;
  /// It leaves at port 1 alone.
  static inline const std::string reply = "send 2 02:00:00:00:00:03 > 02:00:00:00:00:01 vlan 10";

 private:
  const fs::path directory_ = fs::temp_directory_path() / ("saish_expectation_test." + std::to_string(getpid()));
};

TEST_F(FrameExpectations, ThatAreMetPrintNothing) {
  run(flood);
  EXPECT_EQ(run("expect out 2 " + tagged), "");
  EXPECT_EQ(run("expect out 3 " + untagged), "");
  EXPECT_EQ(run("expect cpu destination " + tagged), "");
  EXPECT_EQ(run("expect nothing"), "");
  EXPECT_EQ(run(reply), "  passed on\n");
  EXPECT_EQ(run("expect out * 02:00:00:00:00:03 > * vlan *"), "");
  EXPECT_EQ(run("expect nothing"), "");
  EXPECT_EQ(run("send 1 0200", "expect dropped malformed", "expect nothing", "expect dropped any"),
            "  not passed on: malformed\n");
}

TEST_F(FrameExpectations, MayLeaveTheFrameOut) {
  run(flood);
  EXPECT_EQ(run("expect cpu any", "expect out 3", "expect out 2", "expect nothing"), "");
}

TEST_F(FrameExpectations, ConsumeACopyEach) {
  run(flood);
  EXPECT_EQ(run("expect out 2"), "");
  EXPECT_EQ(run("expect out 2"),
            "  expected  out 2: any frame\n"
            "  came      out 3: " +
                untagged + "\n            cpu (destination): " + tagged +
                "\n"
                "unexpected: expected out 2: any frame, came out 3: " +
                untagged + "; cpu (destination): " + tagged + "\n");
}

TEST_F(FrameExpectations, MeetWhatIsLeftWhateverTheirOrder) {
  run(flood);
  EXPECT_EQ(run("expect out *", "expect out 2", "expect cpu any", "expect nothing"), "");
  run(flood);
  EXPECT_EQ(run("expect out *", "expect out * " + macs + " vlan *", "expect cpu any", "expect nothing"), "");
  run(flood);
  EXPECT_EQ(run("expect out *", "expect out *", "expect cpu any", "expect nothing"), "");
}

TEST_F(FrameExpectations, ShowWhatCameInPlaceOfAFrame) {
  run(flood, reply);
  const std::string line = "expect out 1 " + macs + " vlan 10";
  EXPECT_EQ(run(line), "  expected  out 1: " + macs +
                           " vlan 10\n"
                           "  came      out 1: 02:00:00:00:00:03 > 02:00:00:00:00:01 vlan 10 type 0x0000\n"
                           "unexpected: expected out 1: " +
                           macs + " vlan 10, came out 1: 02:00:00:00:00:03 > 02:00:00:00:00:01 vlan 10 type 0x0000\n");
}

TEST_F(FrameExpectations, ShowWhyAFrameWasNotPassedOn) {
  EXPECT_EQ(failed("send 1 0200", "expect out 2"),
            "  expected  out 2: any frame\n"
            "  came      dropped: malformed\n"
            "unexpected: expected out 2: any frame, came dropped: malformed\n");
  EXPECT_EQ(failed("send 1 0200", "expect dropped not a member of the vlan"),
            "  expected  dropped: not a member of the vlan\n"
            "  came      dropped: malformed\n"
            "unexpected: expected dropped: not a member of the vlan, came dropped: malformed\n");
}

TEST_F(FrameExpectations, SayWhenAFrameWasPassedOn) {
  run(flood);
  EXPECT_EQ(failed(reply, "expect dropped any"),
            "  expected  dropped: any reason\n"
            "  came      passed on\n"
            "            out 1: 02:00:00:00:00:03 > 02:00:00:00:00:01 vlan 10 type 0x0000\n"
            "unexpected: expected dropped: any reason, came passed on; out 1: 02:00:00:00:00:03 > 02:00:00:00:00:01 "
            "vlan 10 type 0x0000\n");
}

TEST_F(FrameExpectations, SayWhenNothingCame) {
  run("sai_vlan_port_remove 0 10 2", "sai_vlan_port_remove 0 10 3", "sai_vlan_port_remove 0 10 0");
  EXPECT_EQ(failed(flood, "expect out 2"),
            "  expected  out 2: any frame\n"
            "  came      dropped: no destination\n"
            "unexpected: expected out 2: any frame, came dropped: no destination\n");
  run("sai_vlan_port_add 0 10 2 1", flood);
  EXPECT_EQ(run("expect out 2", "expect out 2"),
            "  expected  out 2: any frame\n"
            "  came      nothing more\n"
            "unexpected: expected out 2: any frame, came nothing more\n");
}

TEST_F(FrameExpectations, OfNothingFailWithWhatCame) {
  EXPECT_EQ(failed(flood, "expect nothing"),
            "  expected  nothing\n"
            "  came      out 2: " +
                tagged + "\n            out 3: " + untagged + "\n            cpu (destination): " + tagged +
                "\nunexpected: expected nothing, came out 2: " + tagged + "; and 2 more\n");
  run(reply);
  EXPECT_EQ(run("expect out 1", "expect nothing"), "");
  run(flood, "expect out 2");
  const std::string result = run("expect nothing");
  EXPECT_TRUE(result.starts_with("  expected  nothing more\n  came      out 3: ")) << result;
}

TEST_F(FrameExpectations, OfTheCpuAreForAllItsReasons) {
  run(flood);
  const std::string reasons =
      "; the reasons are l2-cache, protocol, l3-miss, l3-error, field, learning, mac-entry, "
      "destination, any";
  EXPECT_EQ(refused("expect cpu by-hand"), "reason: \"by-hand\" is none" + reasons);
  EXPECT_EQ(refused("expect cpu l2"), "reason: \"l2\" is none" + reasons);
  for (const std::string line : {"expect cpu protocol,", "expect cpu \"\"", "expect cpu ,protocol"})
    EXPECT_EQ(refused(line), "reason: \"\" is none" + reasons);
  for (const std::string other : {"l2-cache", "\"mac entry\"", "protocol,destination", "l3-miss, destination"}) {
    const std::string result = failed(flood, "expect cpu " + other);
    EXPECT_TRUE(result.starts_with("  expected  cpu (")) << result;
  }
  EXPECT_EQ(run(flood, "expect cpu destination"), "  passed on\n");
  EXPECT_EQ(run("expect out 2", "expect out 3"), "");
}

TEST_F(FrameExpectations, KnowTheReasonsThatCaptureShows) {
  run("sai_bpdu_set 0 01:80:c2:00:00:00", "send 1 02:00:00:00:00:01 > 01:80:c2:00:00:00 vlan 10");
  EXPECT_EQ(run("capture"), "  cpu (l2 cache): 02:00:00:00:00:01 > 01:80:c2:00:00:00 vlan 10 type 0x0000\n");
  for (const std::string reason : {"trapped to the cpu", "trapped-to-the-cpu", "\"trapped to the cpu\""})
    EXPECT_EQ(run("expect dropped " + reason), "");
  EXPECT_EQ(run("expect cpu l2-cache * > 01:80:c2:00:00:00 vlan *", "expect nothing"), "");
}

TEST_F(FrameExpectations, ThatAreNotWellFormedChangeNothing) {
  run(flood, "expect out 2");
  EXPECT_EQ(refused("expect out"), "too few arguments; the form is expect out PORT [FRAME]");
  EXPECT_EQ(refused("expect cpu"), "too few arguments; the form is expect cpu REASON [FRAME]");
  EXPECT_EQ(refused("expect dropped"), "too few arguments; the form is expect dropped REASON");
  EXPECT_EQ(refused("expect nothing more"), "too many arguments; the form is expect nothing");
  for (const std::string port : {"x", "-1", "2147483648"})
    EXPECT_EQ(refused("expect out " + port), "port: \"" + port + "\" is neither a number nor *");
  EXPECT_EQ(refused("expect out 0"), "port: 0 is the CPU's; the form is expect cpu REASON [FRAME]");
  EXPECT_EQ(refused("expect out 3 " + macs + " vlan"), "frame: it ends where a VLAN should be");
  EXPECT_EQ(refused("expect cpu any 123"), "frame: \"123\" is not pairs of hexadecimal digits");
  const std::string none = refused("expect dropped by me");
  EXPECT_TRUE(none.starts_with("reason: \"by me\" is none; the reasons are malformed, port down, ")) << none;
  EXPECT_TRUE(none.ends_with(", egress loop, any")) << none;
  EXPECT_EQ(run("expect out 3", "expect cpu any", "expect nothing"), "");
}

TEST_F(FrameExpectations, NeedAFrame) {
  for (const std::string line : {"expect out 1", "expect cpu any", "expect dropped any", "expect nothing"})
    EXPECT_EQ(refused(line), "expect: no frame has been sent yet");
}

TEST_F(FrameExpectations, AreOfTheLastFrameEvenAfterCapture) {
  run(flood, reply, "capture");
  EXPECT_EQ(run("expect out 1", "expect nothing"), "");
}

TEST_F(FrameExpectations, OfSomeCopiesAreOfAllBeforeTheNextFrame) {
  run(flood, "expect out 2", "expect cpu any");
  const std::string wrong =
      "  not expected  out 3: " + untagged + "\nunexpected: " + flood + ": not expected: out 3: " + untagged + "\n";
  EXPECT_EQ(run(reply), wrong) << "and it is not sent";
  EXPECT_EQ(run(reply), "  passed on\n") << "it was told";
  run("capture", flood, "expect dropped any", "expect out 2", "expect cpu any");
  EXPECT_EQ(run("expect 0 " + reply), wrong);
  run("capture", flood, "expect out 2", "expect cpu any");
  const std::string captured = run("capture");
  EXPECT_TRUE(captured.starts_with("  2: ")) << captured;
  EXPECT_TRUE(captured.ends_with(wrong)) << captured;
}

TEST_F(FrameExpectations, AFrameWithoutAnyMayLeaveAtEveryPort) {
  EXPECT_EQ(run(flood, reply, "expect out 1", flood, reply), "  passed on\n  passed on\n  passed on\n  passed on\n");
  EXPECT_EQ(end_of(script("a", flood + "\n" + flood + "\n")), "");
}

TEST_F(FrameExpectations, AFrameThatIsNotSentEndsNothing) {
  run(flood, "expect out 2");
  EXPECT_EQ(refused("send 1 123"), "frame: \"123\" is not pairs of hexadecimal digits");
  EXPECT_EQ(run("expect out 3", "expect cpu any", "expect nothing"), "");
  EXPECT_EQ(refused("send 99 00"), "unit 0 has no port 99");
  EXPECT_EQ(run("expect nothing"), "");
}

TEST_F(FrameExpectations, InAScriptFailWithFileAndLine) {
  const std::string unmet = script("unmet", "\n" + flood + "\nexpect out 1\nlink 1 down\n");
  EXPECT_EQ(end_of(unmet), "unexpected: " + unmet +
                               ":3: expect out 1: expected out 1: any frame, came out 2: " + tagged + "; and 2 more\n");
  const std::string next = script("next", flood + "\nexpect out 2\nexpect out 3\n" + reply + "\n");
  const std::string left = flood + ": not expected: cpu (destination): " + tagged + "\n";
  EXPECT_EQ(end_of(next), "unexpected: " + next + ":4: " + reply + ": " + next + ":1: " + left);
  const std::string end = script("end", "\n" + flood + "\nexpect out 2\nexpect out 3\n\n");
  EXPECT_EQ(end_of(end), "unexpected: " + end + ":2: " + left);
  const std::string quit = script("quit", flood + "\nexpect out 2\nexpect out 3\nquit\n");
  EXPECT_EQ(end_of(quit), "unexpected: " + quit + ":1: " + left);
}

TEST_F(FrameExpectations, OfAScriptsFrameEndWithIt) {
  const std::string inner = script("inner", flood + "\nexpect out 2\n");
  const std::string outer = script("outer", "source " + inner + "\nexpect out 3\n");
  const std::string result = end_of(outer);
  EXPECT_TRUE(result.starts_with("unexpected: " + outer + ":1: source " + inner + ": " + inner + ":1: send "))
      << result;
}

TEST_F(FrameExpectations, MayBeInAnotherScriptThanTheFrame) {
  const std::string inner = script("inner", "expect out 3\n");
  const std::string outer =
      script("outer", flood + "\nexpect out 2\nsource " + inner + "\nexpect cpu any\nexpect nothing\n");
  EXPECT_EQ(end_of(outer), "");
  const std::string sends = script("sends", flood + "\n");
  EXPECT_EQ(end_of(script("expects", "source " + sends + "\nexpect out 2\nexpect out 3\nexpect cpu any\n")), "");
}

TEST_F(FrameExpectations, ACodeIsThatOfSend) {
  EXPECT_EQ(run("expect 0 " + flood), "  passed on\n");
  EXPECT_EQ(run("expect 1 send 1 0200"), "  not passed on: malformed\n");
  EXPECT_EQ(run("expect 0 send 1 0200"), "  not passed on: malformed\nunexpected: expected 0, came 1 (malformed)\n");
  EXPECT_EQ(run("expect 1 " + flood), "  passed on\nunexpected: expected 1 (malformed), came 0\n");
  EXPECT_EQ(run("expect -7 " + flood), "  passed on\nunexpected: expected -7, came 0\n");
  EXPECT_EQ(run("expect out 2", "expect out 3", "expect cpu any", "expect nothing"), "") << "they go together";
  EXPECT_EQ(refused("expect 0 send 1"), "too few arguments; the form is send [--trace] PORT FRAME");
  EXPECT_EQ(refused("expect 0 send 99 00"), "unit 0 has no port 99");
}

TEST_F(FrameExpectations, AFrameToSendHasNoOpenValues) {
  EXPECT_EQ(refused("send 1 * > 02:00:00:00:00:02"), "frame: \"*\" is not a MAC address such as 00:11:22:33:44:55");
  EXPECT_EQ(refused("send 1 " + macs + " vlan *"), "frame: \"*\" is not a number from 0 to 65535");
  EXPECT_EQ(refused("send 1 *"), "frame: \"*\" is not pairs of hexadecimal digits");
}

}  // namespace
