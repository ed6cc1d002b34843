#include <gtest/gtest.h>
#include <linux/if_packet.h>
#include <net/ethernet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "attachment.h"
#include "descriptor.h"
#include "vnet_header.h"

namespace {

using chip::Segments;
using vswitch::Attachment;
using vswitch::Frame;
using vswitch::VnetHeader;

constexpr std::size_t tcp_at = 34;
constexpr std::size_t headers = tcp_at + 20;

/// TCP over IPv4; all that a cut depends on, addresses and ports being 0.
std::vector<uint8_t> aggregate(std::size_t payload) {
  std::vector<uint8_t> bytes(headers + payload, 0xAB);
  std::fill_n(bytes.begin(), headers, uint8_t{0});
  std::fill_n(bytes.begin(), 6, uint8_t{0xFF});
  bytes[6] = 2;
  bytes[12] = 0x08;  // IPv4
  bytes[14] = 0x45;
  bytes[16] = static_cast<uint8_t>((payload + 40) >> 8);
  bytes[17] = static_cast<uint8_t>(payload + 40);
  bytes[23] = 6;  // TCP
  bytes[tcp_at + 12] = 0x50;
  bytes[tcp_at + 13] = 0x90;  // CWR, ACK
  return bytes;
}

Segments segments_of(std::size_t payload) {
  Segments segments;
  segments.kind = Segments::Kind::tcp_ip4;
  segments.payload = static_cast<uint16_t>(payload);
  segments.headers = headers;
  segments.checksum_start = tcp_at;
  segments.checksum_at = tcp_at + 16;
  return segments;
}

TEST(VnetHeaders, TellHowTheAggregateIsCutFromWhichTheyWereMade) {
  std::vector<uint8_t> bytes = aggregate(3000);
  const Segments segments = segments_of(1000);
  const VnetHeader header = VnetHeader::of(bytes, segments);
  EXPECT_EQ(header.kind, 0x81) << "TCP over IPv4, with CWR";
  const Segments again = header.apply(bytes);
  EXPECT_EQ(again.kind, segments.kind);
  EXPECT_EQ(again.payload, segments.payload);
  EXPECT_EQ(again.headers, segments.headers);
  EXPECT_EQ(again.checksum_start, segments.checksum_start);
  EXPECT_EQ(again.checksum_at, segments.checksum_at);
}

TEST(VnetHeaders, OfSegmentsThatTheFrameDoesNotHaveMakeThemUnknown) {
  std::vector<uint8_t> bytes = aggregate(3000);
  const VnetHeader good = VnetHeader::of(bytes, segments_of(1000));
  const auto kind_with = [&](auto change) {
    VnetHeader header = good;
    change(header);
    return header.apply(bytes).kind;
  };
  EXPECT_EQ(kind_with([](VnetHeader&) {}), Segments::Kind::tcp_ip4);
  EXPECT_EQ(kind_with([](VnetHeader& header) { header.kind = 3; }), Segments::Kind::unknown);
  EXPECT_EQ(kind_with([](VnetHeader& header) { header.flags = 0; }), Segments::Kind::unknown);
  EXPECT_EQ(kind_with([](VnetHeader& header) { header.checksum_start = 5000; }), Segments::Kind::unknown);
  bytes.resize(headers - 1);
  EXPECT_EQ(kind_with([](VnetHeader&) {}), Segments::Kind::unknown);
}

/// In a network namespace of its own, with interfaces `plug` and `end` at both ends of a cable.
class Attachments : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    is_possible = unshare(geteuid() == 0 ? CLONE_NEWNET : CLONE_NEWUSER | CLONE_NEWNET) == 0;
    if (geteuid() != 0 && is_possible) std::ofstream("/proc/self/uid_map") << "0 " << getuid() << " 1";
  }

  void SetUp() override {
    if (!is_possible || !run("ip link add plug type veth peer name end")) GTEST_SKIP() << "no network namespaces here";
    ASSERT_TRUE(run("ip link set plug up && ip link set end up"));
  }
  void TearDown() override { run("ip link del plug 2>/dev/null"); }

  static bool run(const std::string& command) { return std::system(command.c_str()) == 0; }

  /// What arrives at an interface of the host, each with its header.
  static vswitch::Descriptor listen_at(const std::string& name) {
    vswitch::Descriptor made(socket(AF_PACKET, SOCK_RAW | SOCK_NONBLOCK, 0));
    constexpr int on = 1;
    setsockopt(made.get(), SOL_PACKET, PACKET_VNET_HDR, &on, sizeof on);
    setsockopt(made.get(), SOL_PACKET, PACKET_IGNORE_OUTGOING, &on, sizeof on);
    sockaddr_ll address{};
    address.sll_family = AF_PACKET;
    address.sll_protocol = htons(ETH_P_IP);
    address.sll_ifindex = static_cast<int>(if_nametoindex(name.c_str()));
    EXPECT_EQ(bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    return made;
  }

  /// The sizes of the frames that arrive until there are so many, and of those after them; "+" after an aggregate.
  static std::string arrived(const vswitch::Descriptor& end, int count) {
    std::string text;
    std::vector<uint8_t> buffer(70000);
    for (pollfd polled{end.get(), POLLIN, 0}; poll(&polled, 1, count > 0 ? 1000 : 0) > 0; --count) {
      const ssize_t length = recv(end.get(), buffer.data(), buffer.size(), 0);
      VnetHeader header{};
      std::memcpy(&header, buffer.data(), sizeof header);
      text += std::to_string(length - ssize_t{sizeof header}) + (header.kind != 0 ? "+ " : " ");
    }
    return text;
  }

  static void send(Attachment& attachment, const std::vector<uint8_t>& bytes, const Segments& segments) {
    attachment.send({.bytes = bytes, .segments = segments});
    attachment.flush();
  }

  static inline bool is_possible = false;
};

TEST_F(Attachments, SendAnAggregateWholeThroughAnInterfaceThatTakesItsSegments) {
  const auto plug = vswitch::attach_interface("plug");
  const vswitch::Descriptor end = listen_at("end");
  send(*plug, aggregate(3000), segments_of(1000));
  EXPECT_EQ(arrived(end, 1), "3054+ ");

  EXPECT_TRUE(run("ip link set plug mtu 1039"));
  plug->plug_again();
  send(*plug, aggregate(2500), segments_of(1000));
  EXPECT_EQ(arrived(end, 1), "554 ") << "longer ones are lost, as if they came one by one";
}

TEST_F(Attachments, CutAnAggregateInATunnel) {
  const auto plug = vswitch::attach_interface("plug");
  const vswitch::Descriptor end = listen_at("end");
  std::vector<uint8_t> bytes = aggregate(2500);
  const std::vector<uint8_t> outer(bytes.begin() + 14, bytes.begin() + 34);
  bytes.insert(bytes.begin() + 14, outer.begin(), outer.end());
  bytes[23] = 4;  // IP in IP
  Segments segments = segments_of(1000);
  segments.move(20);
  send(*plug, bytes, segments);
  EXPECT_EQ(arrived(end, 3), "1074 1074 574 ");
}

TEST_F(Attachments, SendAnAggregateWholeThroughATap) {
  std::unique_ptr<Attachment> tap;
  try {
    tap = vswitch::attach_tap("t1", nullptr);
  } catch (const vswitch::CannotStart& error) {
    GTEST_SKIP() << error.what();
  }
  const vswitch::Descriptor end = listen_at("t1");
  send(*tap, aggregate(3000), segments_of(1000));
  EXPECT_EQ(arrived(end, 1), "3054+ ");
}

/// Frames that come to an attachment: their sizes, with "+" after an aggregate.
std::string received(Attachment& attachment, std::size_t count) {
  std::string text;
  while (count > 0) {
    pollfd polled{attachment.descriptor(), POLLIN, 0};
    if (poll(&polled, 1, 1000) <= 0) return text + "no more";
    attachment.receive([&](std::span<const Frame> frames) {
      for (const Frame& frame : frames) {
        if (frame.bytes[12] != 0x08) continue;  // the host's own
        text += std::to_string(frame.bytes.size()) + (frame.segments.is_aggregate() ? "+ " : " ");
        if (count > 0) --count;
      }
    });
  }
  return text;
}

TEST_F(Attachments, ReceiveFramesOfAllLengthsInTheirOrder) {
  const auto plug = vswitch::attach_interface("plug");
  const auto other = vswitch::attach_interface("end");
  std::string sent;
  for (const std::size_t payload : {std::size_t{50}, std::size_t{3000}, std::size_t{1400}, std::size_t{60000}}) {
    const std::vector<uint8_t> bytes = aggregate(payload);
    const bool is_whole = payload > 1400;
    send(*other, bytes, is_whole ? segments_of(1000) : Segments{});
    sent += std::to_string(bytes.size()) + (is_whole ? "+ " : " ");
  }
  EXPECT_EQ(received(*plug, 4), sent);
}

}  // namespace
