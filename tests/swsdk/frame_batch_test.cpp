// Frames that are sent together, compared with the same frames sent one by one.
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>
#include <swsdk/recording.h>
#include <swsdk/watch.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "support/frames.h"
#include "support/start.h"

namespace {

using support::Bytes;
using support::Frame;

/// A frame and the port where it arrives.
struct Arriving {
  int port;
  Bytes bytes;
};

/// Everything that frames leave behind.
struct LeftBehind {
  std::string copies;
  std::string tables;
  std::string watched;
  std::string recorded;
  int forwarded = 0;
};

class FrameBatch : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::remove(path_); }
  void TearDown() override {
    swsdk_power_off();
    std::filesystem::remove(path_);
  }

  static void start() {
    support::start_chip();
    for (int port = 1; port <= 6; ++port) swsdk_link_event(0, port, 1);
    for (const bcm_vlan_t vlan : {bcm_vlan_t{10}, bcm_vlan_t{20}}) {
      bcm_pbmp_t members{};
      bcm_pbmp_t untagged{};
      for (int port = 0; port <= 6; ++port) BCM_PBMP_PORT_ADD(members, port);
      BCM_PBMP_PORT_ADD(untagged, vlan / 10);
      EXPECT_EQ(bcm_vlan_create(0, vlan), 0);
      EXPECT_EQ(bcm_vlan_port_add(0, vlan, members, untagged), 0);
    }
    EXPECT_EQ(bcm_switch_control_port_set(0, 3, bcmSwitchArpRequestToCpu, 1), 0);
    swsdk_events_drain();
  }

  /// The blocks of a watch without their times.
  static std::string without_times(const std::string& blocks) {
    std::string result;
    std::istringstream lines(blocks);
    for (std::string line; std::getline(lines, line);)
      if (!line.starts_with("at ")) result += line + '\n';
    return result;
  }

  /// What `send` leaves behind, which returns how many frames were forwarded.
  template <class Send>
  LeftBehind traces_of(Send send) const {
    LeftBehind traces;
    swsdk_power_off();  // a recording begins before the chip starts
    EXPECT_EQ(swsdk_record_start(path_.c_str()), 0);
    start();
    const int watch = swsdk_watch_begin(SWSDK_WATCH_ENDS, nullptr, 0);
    EXPECT_EQ(swsdk_frame_handle(0, take_copy, &traces.copies), 0);
    traces.forwarded = send();
    for (const char* const name : {"counters", "drops", "mac"}) traces.tables += support::table(name);
    std::string blocks(std::size_t{1} << 22, '\0');
    blocks.resize(swsdk_watch_take(watch, blocks.data(), blocks.size()));
    traces.watched = without_times(blocks);
    swsdk_watch_end(watch);
    swsdk_record_stop();
    std::ostringstream text;
    text << std::ifstream(path_).rdbuf();
    traces.recorded = text.str();
    swsdk_power_off();
    return traces;
  }

  static int send_one_by_one(const std::vector<Arriving>& frames) {
    int forwarded = 0;
    for (const Arriving& frame : frames)
      if (swsdk_frame_send(0, frame.port, frame.bytes.data(), frame.bytes.size()) == 0) ++forwarded;
    return forwarded;
  }
  static int send_together(std::span<const Arriving> frames) {
    std::vector<swsdk_in> in;
    for (const Arriving& frame : frames) in.push_back({frame.port, frame.bytes.data(), frame.bytes.size(), nullptr});
    return swsdk_frames_send(0, in.data(), static_cast<int>(in.size()));
  }

  std::vector<Arriving> random_frames(std::size_t count) {
    std::vector<Arriving> result;
    const auto any = [&](int most) { return std::uniform_int_distribution(0, most)(random_); };
    while (result.size() < count) {
      Frame frame(any(6), any(8) == 0 ? 0xFF : any(6));
      if (any(2) > 0) frame.tag(any(3) * 10);
      if (any(9) == 0) frame.arp(false, "10.0.0.1", "10.0.0.2");
      if (any(1) == 0) frame.ip("10.0.0.1", "10.0.0.2").udp(5, 6);
      Bytes bytes = frame;
      if (any(9) == 0) bytes.resize(static_cast<std::size_t>(any(static_cast<int>(bytes.size()))));
      if (any(19) == 0) bytes.resize(1000 + static_cast<std::size_t>(any(9000)));
      if (bytes.empty()) continue;  // it may have no address
      result.push_back({any(8) - 1, bytes});
    }
    return result;
  }

  static void take_copy(int unit, const swsdk_out* out, void* copies) {
    std::ostringstream line;
    line << unit << ' ' << out->port << ' ' << out->in_port << ' ' << out->cpu << ' '
         << support::told({out->data, out->length}) << '\n';
    *static_cast<std::string*>(copies) += line.str();
  }

  std::mt19937 random_{7};

 private:
  const std::string path_ = testing::TempDir() + "frame_batch." + std::to_string(getpid());
};

TEST_F(FrameBatch, IsTheSameAsItsFramesOneByOne) {
  const std::vector<Arriving> frames = random_frames(500);
  const LeftBehind expected = traces_of([&] { return send_one_by_one(frames); });
  const LeftBehind traces = traces_of([&] {
    int forwarded = 0;
    for (std::span<const Arriving> rest = frames; !rest.empty();) {
      const std::size_t size = 1 + random_() % std::min<std::size_t>(rest.size(), 64);
      forwarded += send_together(rest.first(size));
      rest = rest.subspan(size);
    }
    return forwarded;
  });
  EXPECT_EQ(traces.copies, expected.copies);
  EXPECT_EQ(traces.tables, expected.tables);
  EXPECT_EQ(traces.watched, expected.watched);
  EXPECT_EQ(traces.recorded, expected.recorded);
  EXPECT_EQ(traces.forwarded, expected.forwarded);
  EXPECT_NE(traces.recorded.find("action swsdk_frame_send("), std::string::npos);
  EXPECT_NE(traces.watched.find("out "), std::string::npos);
  EXPECT_GT(std::count(traces.copies.begin(), traces.copies.end(), '\n'), 500);
  EXPECT_GT(traces.forwarded, 100);
  EXPECT_LT(traces.forwarded, 500);
}

TEST_F(FrameBatch, LeavesOutFramesThatCannotArrive) {
  start();
  const Bytes frame = Frame(1, 0xFF).tag(10).type(0x9000);
  const swsdk_in frames[] = {{99, frame.data(), frame.size(), nullptr},
                             {1, nullptr, 60, nullptr},
                             {1, frame.data(), frame.size(), nullptr},
                             {-1, frame.data(), frame.size(), nullptr},
                             {2, frame.data(), 3, nullptr}};
  std::string copies;
  EXPECT_EQ(swsdk_frame_handle(0, take_copy, &copies), 0);
  EXPECT_EQ(swsdk_frames_send(0, frames, 5), 1);
  EXPECT_EQ(std::count(copies.begin(), copies.end(), '\n'), 6);
}

TEST_F(FrameBatch, NeedsAUnitAndFrames) {
  const Bytes bytes = Frame(1, 2).type(0x9000);
  const swsdk_in frame{1, bytes.data(), bytes.size(), nullptr};
  EXPECT_EQ(swsdk_frames_send(0, &frame, 1), -1);
  start();
  EXPECT_EQ(swsdk_frames_send(1, &frame, 1), -1);
  EXPECT_EQ(swsdk_frames_send(-1, &frame, 1), -1);
  EXPECT_EQ(swsdk_frames_send(0, &frame, -1), -1);
  EXPECT_EQ(swsdk_frames_send(0, nullptr, 1), -1);
  EXPECT_EQ(swsdk_frames_send(0, nullptr, 0), 0);
}

}  // namespace
