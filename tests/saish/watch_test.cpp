#include "watch.h"

#include <swsdk/frames.h>
#include <unistd.h>

#include <filesystem>
#include <regex>

#include "saish/shell.h"

namespace {

namespace fs = std::filesystem;

/// The ports 1, 2 and 3 are in VLAN 10, and nobody has a cable but these.
class FramesInTheShell : public support::Shell {
 protected:
  FramesInTheShell() {
    run("open_sai_log test 0 0 0", "sai_vlan_create 0 10", "sai_vlan_port_add 0 10 1 1", "sai_vlan_port_add 0 10 2 1");
    run("sai_vlan_port_add 0 10 3 1", "link 1 up", "link 2 up", "link 3 up");
    run("sai_l2_mac_entry_add 0 {mac=02:00:00:00:00:02, vlan=10, port=2}");
  }
  ~FramesInTheShell() override { fs::remove_all(directory_); }

  std::string file(const std::string& name) const {
    fs::create_directory(directory_);
    return (directory_ / name).string();
  }

  static inline const std::string frame =
      "02:00:00:00:00:01 > 02:00:00:00:00:02 vlan 10 ip 10.0.0.1 > 10.0.0.2 ttl 64 udp 5 > 6";

 private:
  const fs::path directory_ = fs::temp_directory_path() / ("saish_watch_test." + std::to_string(getpid()));
};

TEST_F(FramesInTheShell, TraceTellsTheWayAndSendTraceTakesIt) {
  const std::string traced = run("trace 1 " + frame);
  EXPECT_TRUE(traced.starts_with("  in 1: " + frame)) << traced;
  EXPECT_NE(traced.find("\n  learn_source: learned at port 1\n"), std::string::npos) << traced;
  EXPECT_NE(traced.find("\n      call "), std::string::npos) << traced;
  EXPECT_TRUE(traced.ends_with("\n  passed on\n")) << traced;
  EXPECT_EQ(run("show mac").find("02:00:00:00:00:01"), std::string::npos) << "nothing has happened";
  // When the chip is in another process, what passes there has the name of each caller.
  EXPECT_EQ(std::regex_replace(run("send --trace 1 " + frame), std::regex(": saish_test\\[[0-9]+\\]: "), ": "), traced);
  EXPECT_EQ(run("expect out 2", "expect nothing"), "");
  EXPECT_NE(run("show mac").find("02:00:00:00:00:01"), std::string::npos);
}

TEST_F(FramesInTheShell, TraceSaysWhatIsWrong) {
  EXPECT_EQ(refused("trace 99 " + frame), "unit 0 has no port 99");
  EXPECT_EQ(refused("trace x " + frame), "port: \"x\" is not a number from -2147483648 to 2147483647");
  EXPECT_EQ(refused("trace 1 02:00:00:00:00:01"), refused("send 1 02:00:00:00:00:01"));
  EXPECT_EQ(refused("send --trace 1"), "a frame is missing; the form is send [--trace] PORT FRAME");
  EXPECT_TRUE(run("trace 0 " + frame).starts_with("  in 0: ")) << "the CPU port";
  EXPECT_NE(run("trace 4 " + frame).find("dropped: port down; to pass it needs a link"), std::string::npos);
}

TEST_F(FramesInTheShell, WatchPrintsALinePerFrame) {
  EXPECT_EQ(run("watch --seconds 0"), "");
  EXPECT_EQ(refused("watch tcp prot 80").substr(0, 45), "filter: libpcap does not take \"tcp prot 80\": ");
  EXPECT_EQ(refused("watch --for 3"), "there is no option \"--for\"; the options are --trace and --seconds N");
  EXPECT_EQ(refused("watch --seconds"), "--seconds: a number from 0 on is missing");
  EXPECT_EQ(refused("watch --seconds -1"), "--seconds: a number from 0 on is missing");
}

TEST_F(FramesInTheShell, ALineHasWhereAFrameWent) {
  saish::Watch watch(SWSDK_WATCH_ENDS, "");
  run("send 1 " + frame, "send 3 02:00:00:00:00:03 > ff:ff:ff:ff:ff:ff vlan 10");
  run("send 2 02:00:00:00:00:02 > 02:00:00:00:00:09 vlan 9");
  std::vector<std::string> lines;
  watch.take([&](const saish::Passage& passage) { lines.push_back(line_of(passage)); });
  ASSERT_EQ(lines.size(), 3U);
  constexpr std::size_t time = 13;  // "12:00:01.250 "
  EXPECT_EQ(lines[0].substr(time), "1: " + frame + " -> 2");
  EXPECT_EQ(lines[1].substr(time),
            "3: 02:00:00:00:00:03 > ff:ff:ff:ff:ff:ff vlan 10 type 0x0000 -> 1, 2, cpu (destination)");
  EXPECT_EQ(lines[2].substr(time),
            "2: 02:00:00:00:00:02 > 02:00:00:00:00:09 vlan 9 type 0x0000 -> dropped: no such vlan");
}

TEST_F(FramesInTheShell, AnEmptyFrameOfAnotherProgramIsPrinted) {
  saish::Watch watch(SWSDK_WATCH_ENDS, "");
  const uint8_t nothing = 0;
  EXPECT_GT(swsdk_frame_send(0, 1, &nothing, 0), 0);
  std::string line;
  watch.take([&](const saish::Passage& passage) { line = line_of(passage); });
  EXPECT_NE(line.find(" 1: "), std::string::npos) << line;
  EXPECT_TRUE(line.ends_with("-> dropped: malformed")) << line;
}

TEST_F(FramesInTheShell, AFilterIsThatOfLibpcap) {
  saish::Watch watch(SWSDK_WATCH_ENDS, "vlan 10 and ip and dst host 10.0.0.2");
  run("send 1 " + frame, "send 3 02:00:00:00:00:03 > ff:ff:ff:ff:ff:ff vlan 10");
  run("send 1 02:00:00:00:00:01 > 02:00:00:00:00:02 vlan 10 ip 10.0.0.1 > 10.0.0.3 ttl 64");
  int count = 0;
  watch.take([&](const saish::Passage&) { ++count; });
  EXPECT_EQ(count, 1);
}

TEST_F(FramesInTheShell, PathsAreCountedFromTheirStart) {
  EXPECT_EQ(refused("path summary"), "no frames are counted; path start begins with that");
  EXPECT_EQ(refused("path begin"), "\"begin\" is not start [FILTER], summary or stop");
  run("send 1 " + frame, "path start");
  EXPECT_EQ(run("path summary"), "no frame has passed\n");
  run("send 1 " + frame, "send 1 " + frame, "send 3 02:00:00:00:00:03 > 02:00:00:00:00:02 vlan 9");
  const std::string summary = run("path summary");
  EXPECT_TRUE(summary.starts_with("2 frames:\n  in 1\n  check_membership\n    vlan: VLAN 10, ")) << summary;
  EXPECT_NE(summary.find("\n1 frame:\n  in 3\n"), std::string::npos) << summary;
  EXPECT_TRUE(summary.ends_with("  dropped: no such vlan\n")) << summary;
  EXPECT_EQ(run("path summary"), summary);
  EXPECT_EQ(run("path stop"), "");
}

TEST_F(FramesInTheShell, CaptureWritesTheRecentPast) {
  EXPECT_EQ(refused("capture " + file("no/such.pcapng")),
            "cannot write \"" + file("no/such.pcapng") + "\": No such file or directory");
  EXPECT_EQ(refused("capture start --seconds 3"),
            "what capture start records is written by capture FILE.pcapng, at any time");
  run("capture start --trace vlan and ip", "send 1 " + frame, "send 3 02:00:00:00:00:03 > ff:ff:ff:ff:ff:ff vlan 10");
  EXPECT_EQ(run("capture " + file("a.pcapng")), "  1 frame came in\n");
  EXPECT_EQ(run("capture " + file("a.pcapng")), "  0 frames came in\n") << "the rest since then";
  EXPECT_EQ(run("capture " + file("b.pcapng") + " --seconds 0"), "  0 frames came in\n");
  const auto size = fs::file_size(file("b.pcapng"));
  refused("capture " + file("b.pcapng") + " tcp prot 80");
  EXPECT_EQ(fs::file_size(file("b.pcapng")), size) << "a filter that is refused loses nothing";
  EXPECT_GT(size, 0U);
}

}  // namespace
