// Aggregates through the C interface: who gets them whole, who gets their frames, and which are refused.
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/events.h>
#include <swsdk/frames.h>
#include <swsdk/recording.h>
#include <swsdk/watch.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "support/frames.h"
#include "support/start.h"

namespace {

using support::Bytes;
using support::Frame;

/// What a handler got: the bytes of each frame, and how an aggregate is cut.
struct Arrived {
  std::vector<Bytes> frames;
  std::vector<swsdk_segments> segments;
};

class Aggregates : public testing::Test {
 protected:
  /// Host 1 is at port 1, without tags, and host 3 at port 3, with that of VLAN 10.
  static void start() {
    support::start_chip();
    bcm_pbmp_t members{};
    bcm_pbmp_t untagged{};
    for (const int port : {1, 3}) {
      swsdk_link_event(0, port, 1);
      BCM_PBMP_PORT_ADD(members, port);
    }
    BCM_PBMP_PORT_ADD(untagged, 1);
    EXPECT_EQ(bcm_vlan_create(0, 10), 0);
    EXPECT_EQ(bcm_vlan_port_add(0, 10, members, untagged), 0);
    for (const int host : {1, 3}) EXPECT_GE(swsdk_l2_learn(0, 10, support::mac(host).data(), host, 0), 0);
    swsdk_events_drain();
  }
  ~Aggregates() override { swsdk_power_off(); }

  static void take(int /*unit*/, const swsdk_out* out, void* data) {
    auto& arrived = *static_cast<Arrived*>(data);
    arrived.frames.emplace_back(out->data, out->data + out->length);
    if (out->segments != nullptr) arrived.segments.push_back(*out->segments);
  }

  int send() const {
    const swsdk_in in{3, bytes.data(), bytes.size(), &segments};
    return swsdk_frames_send(0, &in, 1);
  }

  static constexpr std::size_t payload = 2500;
  static constexpr std::size_t headers = 12 + 4 + 2 + 20 + 20;
  const Bytes bytes = Frame(3, 1).tag(10).ip("10.0.0.3", "10.0.0.1").tcp(5000, 80).bytes(Bytes(payload, 'x'));
  const swsdk_segments segments{SWSDK_TCP_IP4, 1000, headers, headers - 20, headers - 4};
};

TEST_F(Aggregates, AreCutForAHandlerOfFrames) {
  start();
  Arrived arrived;
  ASSERT_EQ(bytes.size(), headers + payload);
  EXPECT_EQ(swsdk_frame_handle(0, take, &arrived), 0);
  EXPECT_EQ(send(), 1);
  ASSERT_EQ(arrived.frames.size(), 3U);
  EXPECT_EQ(arrived.frames[0].size(), headers - 4 + 1000);
  EXPECT_EQ(arrived.frames[2].size(), headers - 4 + 500);
  EXPECT_TRUE(arrived.segments.empty());
}

TEST_F(Aggregates, ComeWholeToAHandlerThatTakesThem) {
  start();
  Arrived arrived;
  EXPECT_EQ(swsdk_aggregate_handle(0, take, &arrived), 0);
  EXPECT_EQ(send(), 1);
  ASSERT_EQ(arrived.frames.size(), 1U);
  EXPECT_EQ(arrived.frames[0].size(), bytes.size() - 4) << "without its tag";
  ASSERT_EQ(arrived.segments.size(), 1U);
  const swsdk_segments& told = arrived.segments[0];
  EXPECT_EQ(told.kind, SWSDK_TCP_IP4);
  EXPECT_EQ(told.payload, 1000);
  EXPECT_EQ(told.headers, headers - 4);
  EXPECT_EQ(told.checksum_start, headers - 24);
  EXPECT_EQ(told.checksum_at, headers - 8);

  EXPECT_EQ(swsdk_frame_handle(0, take, &arrived), 0) << "which takes its place";
  EXPECT_EQ(send(), 1);
  EXPECT_EQ(arrived.frames.size(), 4U);
}

TEST_F(Aggregates, AreFramesForAWatch) {
  start();
  const int watch = swsdk_watch_begin(SWSDK_WATCH_ENDS, nullptr, 0);
  EXPECT_EQ(send(), 1);
  std::string blocks(100000, '\0');
  blocks.resize(swsdk_watch_take(watch, blocks.data(), blocks.size()));
  swsdk_watch_end(watch);
  std::size_t frames = 0;
  for (std::size_t at = 0; (at = blocks.find("\nin 3: ", at)) != std::string::npos; ++at) ++frames;
  EXPECT_EQ(frames, 3U) << blocks;
}

TEST_F(Aggregates, AreFramesInARecording) {
  const std::filesystem::path path =
      std::filesystem::temp_directory_path() / ("aggregates-" + std::to_string(getpid()));
  swsdk_power_off();
  ASSERT_EQ(swsdk_record_start(path.c_str()), 0);
  start();
  EXPECT_EQ(send(), 1);
  swsdk_record_stop();
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  std::filesystem::remove(path);
  const std::string recorded = text.str();
  std::size_t frames = 0;
  for (std::size_t at = 0; (at = recorded.find("action swsdk_frame_send(0, 3, ", at)) != std::string::npos; ++at)
    ++frames;
  EXPECT_EQ(frames, 3U);
}

TEST_F(Aggregates, ThatSayNonsenseAreLeftOut) {
  start();
  Arrived arrived;
  EXPECT_EQ(swsdk_frame_handle(0, take, &arrived), 0);
  const auto sent_with = [&](auto change) {
    swsdk_segments wrong = segments;
    change(wrong);
    const swsdk_in in{3, bytes.data(), bytes.size(), &wrong};
    return swsdk_frames_send(0, &in, 1);
  };
  EXPECT_EQ(sent_with([](swsdk_segments& s) { s.kind = 0; }), 0);
  EXPECT_EQ(sent_with([](swsdk_segments& s) { s.kind = SWSDK_UDP + 1; }), 0);
  EXPECT_EQ(sent_with([](swsdk_segments& s) { s.payload = 0; }), 0);
  EXPECT_EQ(sent_with([](swsdk_segments& s) { s.headers = 60000; }), 0);
  EXPECT_TRUE(arrived.frames.empty());
  const swsdk_in elsewhere{99, bytes.data(), bytes.size(), &segments};
  EXPECT_EQ(swsdk_frames_send(0, &elsewhere, 1), 0);
  // What cannot be cut as it says is lost where it has to be.
  sent_with([](swsdk_segments& s) { s.checksum_start = 20; });
  sent_with([](swsdk_segments& s) { s.kind = SWSDK_TCP_IP6; });
  EXPECT_TRUE(arrived.frames.empty());
  EXPECT_EQ(send(), 1);
  EXPECT_EQ(arrived.frames.size(), 3U);
}

}  // namespace
