// The way of a frame as swsdk_frame_trace() tells it.
#include <bcm/error.h>
#include <bcm/l2.h>
#include <bcm/port.h>
#include <bcm/stg.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>
#include <swsdk/journal.h>
#include <swsdk/recording.h>
#include <swsdk/tables.h>

#include <regex>
#include <string>
#include <vector>

#include "support/frames.h"
#include "support/start.h"

namespace {

using support::Bytes;
using support::Frame;

class Trace : public testing::Test {
 protected:
  Trace() {
    support::start_chip();
    for (const int port : {1, 2, 3}) swsdk_link_event(0, port, 1);
    swsdk_events_drain();
    EXPECT_EQ(bcm_vlan_create(0, 10), 0);
    EXPECT_EQ(bcm_vlan_port_add(0, 10, ports({1, 2}), ports({})), 0);
  }
  ~Trace() override { swsdk_power_off(); }

  static bcm_pbmp_t ports(std::initializer_list<int> members) {
    bcm_pbmp_t result;
    BCM_PBMP_CLEAR(result);
    for (const int port : members) BCM_PBMP_PORT_ADD(result, port);
    return result;
  }

  static void host(int last, int port) {
    bcm_l2_addr_t address;
    const Bytes mac = support::mac(last);
    bcm_l2_addr_t_init(&address, mac.data(), 10);
    address.port = port;
    address.flags = BCM_L2_STATIC;
    EXPECT_EQ(bcm_l2_addr_add(0, &address), 0);
  }

  /// The trace without bytes of frames and with `N` for the numbers of calls.
  static std::string trace(int port, const Bytes& frame) {
    std::string text(65536, '\0');
    const long length = swsdk_frame_trace(0, port, frame.data(), frame.size(), text.data(), text.size());
    EXPECT_GT(length, 0);
    text.resize(static_cast<std::size_t>(length));
    text = std::regex_replace(text, std::regex("(in|out) ([0-9]+): [0-9a-f]+"), "$1 $2");
    text = std::regex_replace(text, std::regex("cpu (.*): [0-9a-f]+"), "cpu $1");
    return '\n' + std::regex_replace(text, std::regex("call [0-9]+:"), "call N:");
  }

  const Bytes frame = Frame(1, 2).tag(10).type(0x9000);
};

TEST_F(Trace, NamesTheEntriesThatDecideAndTheCallsThatMadeThem) {
  host(2, 2);
  EXPECT_EQ(trace(1, frame), R"(
in 1
check_membership
  vlan: VLAN 10, tagged {1-2}
    call N: bcm_vlan_port_add(0, 10, {1-2}, {}) = 0
learn_source: learned at port 1
forward: goes to 2
  mac: VLAN 10, MAC 02:00:00:00:00:02, at port 2, kind static
    call N: bcm_l2_addr_add(0, {flags=0x20, mac=02:00:00:00:00:02, vid=10, port=2}) = 0
out 2
passed on
)");
}

TEST_F(Trace, NamesTheCallThatChangedAnEntryLast) {
  EXPECT_EQ(bcm_vlan_port_add(0, 10, ports({3}), ports({3})), 0);
  EXPECT_EQ(bcm_vlan_port_add(0, 99, ports({3}), ports({3})), BCM_E_NOT_FOUND) << "which changes nothing";
  EXPECT_NE(trace(1, frame).find("call N: bcm_vlan_port_add(0, 10, {3}, {3}) = 0"), std::string::npos);
}

TEST_F(Trace, NumbersCallsAsTheJournalWouldIfItHadThemAll) {
  const Bytes tagged = Frame(1, 2).tag(20).type(0x9000);
  const auto number = [&] {
    std::string text(65536, '\0');
    swsdk_frame_trace(0, 1, tagged.data(), tagged.size(), text.data(), text.size());
    const std::size_t at = text.find("call ");
    return at == std::string::npos ? -1 : std::stol(text.substr(at + 5));
  };
  bcm_vlan_create(0, 20);
  const long first = number();
  swsdk_journal_clear();
  swsdk_journal_record(1);
  bcm_vlan_port_add(0, 20, ports({1}), ports({}));
  int up = 0;
  bcm_port_link_status_get(0, 1, &up);
  bcm_port_link_status_get(0, 1, &up);
  bcm_vlan_port_add(0, 20, ports({2}), ports({}));
  swsdk_journal_record(0);
  EXPECT_EQ(number(), first + 4);
}

TEST_F(Trace, TellsWhyAFrameIsDroppedAndWhatWouldHaveLetItPass) {
  EXPECT_EQ(bcm_stg_stp_set(0, 1, 1, BCM_STG_STP_BLOCK), 0);
  const std::string text = trace(1, frame);
  EXPECT_NE(text.find("check_membership: drops it: spanning tree\n"), std::string::npos) << text;
  EXPECT_NE(text.find("call N: bcm_stg_stp_set(0, 1, 1, 1) = 0\n"), std::string::npos) << text;
  EXPECT_TRUE(
      text.ends_with("dropped: spanning tree; to pass it needs the state \"forward\" of its port in the "
                     "spanning-tree group of its VLAN\n"))
      << text;
}

TEST_F(Trace, TellsOfCopiesThatAreLostOnTheirWayOut) {
  swsdk_link_event(0, 2, 0);
  const std::string text = trace(1, frame);
  EXPECT_NE(text.find("\nlost 2: egress port down\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\ndropped: egress port down; to pass it needs a link"), std::string::npos) << text;
}

TEST_F(Trace, NamesTheCallThatDisabledAPortButNoneForACable) {
  EXPECT_EQ(bcm_port_enable_set(0, 1, 0), 0);
  EXPECT_NE(trace(1, frame).find("    call N: bcm_port_enable_set(0, 1, 0) = 0\n"), std::string::npos);
  EXPECT_EQ(bcm_port_enable_set(0, 1, 1), 0);
  swsdk_link_event(0, 1, 0);
  EXPECT_EQ(trace(1, frame).find("call N"), std::string::npos);
}

TEST_F(Trace, ChangesNothing) {
  host(2, 2);
  const auto tables = [] {
    std::string result;
    for (int i = 0; swsdk_show_table(i) != nullptr; ++i) result += support::table(swsdk_show_table(i));
    return result;
  };
  const std::string before = tables();
  trace(1, frame);
  trace(3, frame);
  EXPECT_EQ(tables(), before);
  for (int reason = 1; swsdk_drop_name(reason) != nullptr; ++reason) EXPECT_EQ(swsdk_drops(0, reason), 0);
  EXPECT_EQ(swsdk_frame_send(0, 1, frame.data(), frame.size()), 0);
  EXPECT_NE(tables(), before);
}

TEST_F(Trace, HandsNothingOverAndTellsNobodyOfAddresses) {
  static int told;
  told = 0;
  swsdk_frame_handle(
      0, [](int, const swsdk_out*, void*) { ++told; }, nullptr);
  bcm_l2_addr_register(
      0, [](int, bcm_l2_addr_t*, int, void*) { ++told; }, nullptr);
  trace(1, frame);
  swsdk_events_drain();
  EXPECT_EQ(told, 0);
  swsdk_frame_send(0, 1, frame.data(), frame.size());
  swsdk_events_drain();
  EXPECT_GT(told, 0);
}

TEST_F(Trace, FollowsALoop) {
  host(2, 2);
  EXPECT_EQ(bcm_port_loopback_set(0, 2, BCM_PORT_LOOPBACK_MAC), 0);
  const std::string text = trace(1, frame);
  EXPECT_NE(text.find("\nout 2, looped back\npassed on\nin 2\n"), std::string::npos) << text;
  EXPECT_NE(text.find("\ndropped: own port"), std::string::npos) << text;
}

TEST_F(Trace, IsCutWhereItDoesNotFit) {
  char text[8];
  const long length = swsdk_frame_trace(0, 1, frame.data(), frame.size(), text, sizeof text);
  EXPECT_GT(length, 100);
  EXPECT_STREQ(text, "in 1: 0");
  EXPECT_EQ(swsdk_frame_trace(0, 1, frame.data(), frame.size(), nullptr, 0), length);
}

TEST_F(Trace, NeedsAUnitAPortAndAFrame) {
  char text[8];
  EXPECT_EQ(swsdk_frame_trace(1, 1, frame.data(), frame.size(), text, sizeof text), -1);
  EXPECT_EQ(swsdk_frame_trace(0, 13, frame.data(), frame.size(), text, sizeof text), -1);
  EXPECT_EQ(swsdk_frame_trace(0, -1, frame.data(), frame.size(), text, sizeof text), -1);
  EXPECT_EQ(swsdk_frame_trace(0, 1, nullptr, 0, text, sizeof text), -1);
  EXPECT_GT(swsdk_frame_trace(0, 0, frame.data(), frame.size(), text, sizeof text), 0) << "the CPU port";
}

TEST_F(Trace, LostFramesAreCountedAtTheirPorts) {
  swsdk_link_event(0, 2, 0);
  swsdk_frame_send(0, 1, frame.data(), frame.size());
  const auto reason = [](const std::string& name) {
    for (int i = 1; swsdk_drop_name(i) != nullptr; ++i)
      if (name == swsdk_drop_name(i)) return i;
    return -1;
  };
  const int down = reason("egress port down");
  EXPECT_EQ(swsdk_port_drops(0, 2, down), 1);
  EXPECT_EQ(swsdk_port_drops(0, 1, down), 0);
  EXPECT_EQ(swsdk_drops(0, down), 1);
  EXPECT_EQ(swsdk_port_drops(0, 13, down), -1);
  EXPECT_EQ(swsdk_port_drops(0, 1, 0), -1);
  EXPECT_EQ(swsdk_port_drops(1, 1, down), -1);
  EXPECT_EQ(support::table("drops"), "port  reason            frames\n2     egress port down  1\n");
}

}  // namespace
