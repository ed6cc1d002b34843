// The frames that a process watches.
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>
#include <swsdk/watch.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/frames.h"
#include "support/start.h"

namespace {

using support::Bytes;
using support::Frame;

/// As libpcap's `struct bpf_insn`.
struct Step {
  uint16_t code;
  uint8_t jump_true;
  uint8_t jump_false;
  uint32_t k;
};
using Program = std::vector<Step>;

constexpr uint16_t load_half = 0x28;
constexpr uint16_t jump_equal = 0x15;
constexpr uint16_t give = 0x06;

/// Takes frames of an ether type.
Program of_type(uint32_t type) {
  return {{load_half, 0, 0, 12}, {jump_equal, 0, 1, type}, {give, 0, 0, 65535}, {give, 0, 0, 0}};
}

class WatchOfFrames : public testing::Test {
 protected:
  WatchOfFrames() {
    support::start_chip();
    for (const int port : {1, 2}) swsdk_link_event(0, port, 1);
    swsdk_events_drain();
  }
  ~WatchOfFrames() override {
    for (int watch = 0; watch < SWSDK_WATCHES; ++watch) swsdk_watch_end(watch);
    swsdk_power_off();
  }

  static int begin(int detail, const Program& filter = {}) {
    return swsdk_watch_begin(detail, filter.data(), filter.size() * sizeof(Step));
  }
  static std::string taken(int watch) {
    std::string text(65536, '\0');
    text.resize(swsdk_watch_take(watch, text.data(), text.size()));
    return text;
  }
  static void send(uint16_t type) {
    const Bytes frame = Frame(1, 2).type(type);
    swsdk_frame_send(0, 1, frame.data(), frame.size());
  }
  static std::size_t frames_in(const std::string& blocks) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = blocks.find("\nin 1: ", at)) != std::string::npos; ++at) ++count;
    return count;
  }
};

TEST_F(WatchOfFrames, TellsWhatCameInAndLeft) {
  const int watch = begin(SWSDK_WATCH_ENDS);
  ASSERT_EQ(watch, 0);
  send(0x9000);
  const std::string block = taken(watch);
  EXPECT_TRUE(block.starts_with("at 1") || block.starts_with("at 2")) << block;
  EXPECT_NE(block.find(" unit 0\nin 1: 0200000000020200000000019000"), std::string::npos) << block;
  EXPECT_NE(block.find("\nout 2: 0200000000020200000000019000"), std::string::npos) << block;
  EXPECT_TRUE(block.ends_with("\npassed on\n\n")) << block;
  EXPECT_EQ(block.find("assign_vlan"), std::string::npos);
  EXPECT_EQ(taken(watch), "");
}

TEST_F(WatchOfFrames, TellsWaysToThoseWhoWantThem) {
  const int ends = begin(SWSDK_WATCH_ENDS);
  const int ways = begin(SWSDK_WATCH_WAYS);
  send(0x9000);
  EXPECT_EQ(taken(ends).find("assign_vlan"), std::string::npos);
  EXPECT_NE(taken(ways).find("\nassign_vlan: VLAN 1\n  forwarding: port 1"), std::string::npos);
}

TEST_F(WatchOfFrames, TakesTheFramesOfItsFilter) {
  const int watch = begin(SWSDK_WATCH_ENDS, of_type(0x0806));
  ASSERT_EQ(watch, 0);
  send(0x9000);
  EXPECT_EQ(taken(watch), "");
  send(0x0806);
  EXPECT_EQ(frames_in(taken(watch)), 1U);
}

TEST_F(WatchOfFrames, DoesNotTakeAFilterThatCouldDoHarm) {
  const Program programs[] = {
      {{load_half, 0, 0, 12}},                      // does not end
      {{jump_equal, 0, 1, 0}, {give, 0, 0, 1}},     // jumps behind its end
      {{jump_equal, 1, 0, 0}, {give, 0, 0, 1}},     //
      {{0x05, 0, 0, 1}, {give, 0, 0, 1}},           // the same, always
      {{0x05, 0, 0, 0xFFFFFFFF}, {give, 0, 0, 1}},  //
      {{0x34, 0, 0, 0}, {give, 0, 0, 1}},           // divides by 0
      {{0x94, 0, 0, 0}, {give, 0, 0, 1}},           //
      {{0x60, 0, 0, 16}, {give, 0, 0, 1}},          // has memory of 16 words
      {{0x02, 0, 0, 16}, {give, 0, 0, 1}},          //
      {{0x03, 0, 0, 16}, {give, 0, 0, 1}},          //
      {{0x61, 0, 0, 16}, {give, 0, 0, 1}},          //
      {{0xE0, 0, 0, 0}, {give, 0, 0, 1}},           // loads in a way that there is not
      Program(4097, {give, 0, 0, 1}),               // too long
  };
  for (const Program& program : programs) EXPECT_EQ(begin(SWSDK_WATCH_ENDS, program), -1) << program.front().code;
  const Program good = of_type(0x0806);
  EXPECT_EQ(swsdk_watch_begin(SWSDK_WATCH_ENDS, good.data(), sizeof(Step) - 1), -1) << "not whole";
  EXPECT_EQ(swsdk_watch_begin(SWSDK_WATCH_ENDS, nullptr, sizeof(Step)), -1);
  EXPECT_EQ(swsdk_watch_begin(0, nullptr, 0), -1);
  EXPECT_EQ(swsdk_watch_begin(3, nullptr, 0), -1);
}

TEST_F(WatchOfFrames, DoesNotTakeAFrameThatItsFilterCannotRead) {
  for (const Program& program :
       {Program{{0x20, 0, 0, 5000}, {give, 0, 0, 1}}, Program{{0x20, 0, 0, 0xFFFFFFFF}, {give, 0, 0, 1}},
        Program{{0x01, 0, 0, 0xFFFFFFFF}, {0x40, 0, 0, 0xFFFFFFFF}, {give, 0, 0, 1}},
        Program{{0xB1, 0, 0, 5000}, {give, 0, 0, 1}}, Program{{0x3C, 0, 0, 0}, {give, 0, 0, 1}}}) {
    const int watch = begin(SWSDK_WATCH_ENDS, program);
    ASSERT_GE(watch, 0) << program.front().code;
    send(0x9000);
    EXPECT_EQ(taken(watch), "") << program.front().code;
  }
}

TEST_F(WatchOfFrames, AreSixteenAtMost) {
  for (int i = 0; i < SWSDK_WATCHES; ++i) EXPECT_EQ(begin(SWSDK_WATCH_ENDS), i);
  EXPECT_EQ(begin(SWSDK_WATCH_ENDS), -1);
  EXPECT_EQ(swsdk_watch_end(7), 0);
  EXPECT_EQ(swsdk_watch_end(7), -1);
  EXPECT_EQ(swsdk_watch_end(-1), -1);
  EXPECT_EQ(swsdk_watch_end(16), -1);
  EXPECT_EQ(begin(SWSDK_WATCH_ENDS), 7);
}

TEST_F(WatchOfFrames, GivesWholeBlocksAsManyAsFit) {
  const int watch = begin(SWSDK_WATCH_ENDS);
  send(0x9000);
  const std::size_t one = taken(watch).size();
  for (int i = 0; i < 3; ++i) send(0x9000);
  std::string text(2 * one + one / 2, '\0');
  text.resize(swsdk_watch_take(watch, text.data(), text.size()));
  EXPECT_TRUE(text.ends_with("\n\n"));
  EXPECT_EQ(frames_in(text), 2U);
  char beginning[6];
  EXPECT_EQ(swsdk_watch_take(watch, beginning, sizeof beginning), 5U) << "of a longer one";
  EXPECT_TRUE(std::string(beginning).starts_with("at "));
  EXPECT_EQ(swsdk_watch_take(watch, beginning, 1), 0U);
  EXPECT_EQ(swsdk_watch_take(watch, nullptr, 100), 0U);
  EXPECT_EQ(swsdk_watch_take(9, beginning, sizeof beginning), 0U);
}

TEST_F(WatchOfFrames, GivesUpTheOldestFramesWhenItIsFull) {
  const int watch = begin(SWSDK_WATCH_ENDS);
  const Bytes frame = Frame(1, 2).type(0x9000).length(9000);
  constexpr int sent = 600;  // of 36 KB each
  for (int i = 0; i < sent; ++i) swsdk_frame_send(0, 1, frame.data(), frame.size());
  std::string all;
  for (std::string text(1 << 20, '\0'); const std::size_t length = swsdk_watch_take(watch, text.data(), text.size());)
    all.append(text, 0, length);
  ASSERT_TRUE(all.starts_with("lost ")) << all.substr(0, 40);
  EXPECT_EQ(std::stoul(all.substr(5)) + frames_in(all), static_cast<unsigned>(sent));
  EXPECT_LE(all.size(), (std::size_t{16} << 20) + 100);
}

TEST_F(WatchOfFrames, EndsABlockOfWhichTheRestIsLost) {
  for (const std::size_t part : {std::size_t{20}, std::string("at 1700000000.123456789 unit 0\n").size()}) {
    const int watch = begin(SWSDK_WATCH_ENDS);
    const Bytes frame = Frame(1, 2).type(0x9000).length(9000);
    swsdk_frame_send(0, 1, frame.data(), frame.size());
    std::string all(part, '\0');
    ASSERT_EQ(swsdk_watch_take(watch, all.data(), all.size() + 1), part);
    for (int i = 0; i < 600; ++i) swsdk_frame_send(0, 1, frame.data(), frame.size());
    std::string text(200, '\0');
    all.append(text, 0, swsdk_watch_take(watch, text.data(), text.size()));
    EXPECT_EQ(all.find("lost "), all.find("\n\n") + 2) << all;
    swsdk_watch_end(watch);
  }
}

}  // namespace
