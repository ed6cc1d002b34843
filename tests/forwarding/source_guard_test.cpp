// IP source guard as frames see it: spoofed sources are dropped, bound ones pass.
#include <arpa/inet.h>

#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class SourceGuard : public support::ForwardingTest {
 protected:
  SourceGuard() {
    vlan(10, {1, 2, 3});
    EXPECT_EQ(sai_ipsg_init(0, &group), 0);
  }

  int32_t guard(int32_t port, int32_t entry = 0, int32_t vlan = 10) {
    EXPECT_EQ(sai_ipsg_verify_config(group, vlan, 0, port, &entry), 0);
    return entry;
  }
  int32_t bind(const char* source, int32_t port, int32_t entry = 0, int32_t vlan = 10) {
    EXPECT_EQ(sai_ipsg_parameter_config(group, inet_addr(source), 0xFFFFFFFF, vlan, 0, port, &entry), 0);
    return entry;
  }
  /// "passed" or "dropped: ...".
  std::string fate(int port, const Bytes& frame) {
    const std::string copies = send(port, frame);
    return copies.substr(0, 7) == "dropped" ? copies : "passed";
  }
  std::string fate_of(const char* source, int port = 1, int vlan = 10) {
    return fate(port, Frame(1, 9).tag(vlan).ip(source, "10.0.0.99").udp(5, 6));
  }

  const std::string dropped = "dropped: field rule\n";
  int32_t group = 0;
};

TEST_F(SourceGuard, LetsBoundSourcesPassAndNoOthers) {
  EXPECT_EQ(fate_of("10.0.0.1"), "passed");
  guard(1);
  EXPECT_EQ(fate_of("10.0.0.1"), dropped);
  bind("10.0.0.1", 1);
  EXPECT_EQ(fate_of("10.0.0.1"), "passed");
  EXPECT_EQ(fate_of("10.0.0.2"), dropped);
}

TEST_F(SourceGuard, LooksAtIp4OfItsPortAndVlanAlone) {
  guard(1);
  vlan(20, {1, 2});
  EXPECT_EQ(fate_of("10.0.0.1", 2), "passed");
  EXPECT_EQ(fate_of("10.0.0.1", 1, 20), "passed");
  EXPECT_EQ(fate(1, Frame(1, 0xFF).tag(10).arp(false, "10.0.0.1", "10.0.0.2")), "passed");
  EXPECT_EQ(fate(1, Frame(1, 9).tag(10).ip("2001:db8::1", "2001:db8::2").udp(5, 6)), "passed");
}

TEST_F(SourceGuard, LetsNoPacketPassWhoseSourceCannotBeRead) {
  const Bytes whole = Frame(1, 9).tag(10).ip("10.0.0.1", "10.0.0.99").udp(5, 6);
  const auto of_length = [&](std::ptrdiff_t length) { return Bytes(whole.begin(), whole.begin() + length); };
  constexpr std::ptrdiff_t through_ip = 38;
  EXPECT_EQ(fate(1, of_length(through_ip - 1)), "passed") << "the port is not guarded";
  guard(1);
  bind("10.0.0.1", 1);
  EXPECT_EQ(fate(1, of_length(through_ip - 1)), dropped);
  EXPECT_EQ(fate(1, of_length(through_ip)), "passed") << "it is cut behind that";
}

TEST_F(SourceGuard, BindsASourceInEveryVlanByVlanZero) {
  vlan(20, {1, 2});
  guard(1);
  guard(1, 0, 20);
  bind("10.0.0.1", 1, 0, 0);
  EXPECT_EQ(fate_of("10.0.0.1", 1, 10), "passed");
  EXPECT_EQ(fate_of("10.0.0.1", 1, 20), "passed");
  EXPECT_EQ(fate_of("10.0.0.2", 1, 20), dropped);
}

TEST_F(SourceGuard, MovesGuardsAndBindingsToAnotherPort) {
  const int32_t drop = guard(1);
  const int32_t binding = bind("10.0.0.1", 1);
  guard(2, drop);
  EXPECT_EQ(fate_of("10.0.0.2", 1), "passed");
  EXPECT_EQ(fate_of("10.0.0.1", 2), dropped);
  bind("10.0.0.1", 2, binding);
  EXPECT_EQ(fate_of("10.0.0.1", 2), "passed");
}

TEST_F(SourceGuard, EndsWhenItsEntriesAreDestroyed) {
  const int32_t drop = guard(1);
  const int32_t binding = bind("10.0.0.1", 1);
  EXPECT_EQ(sai_fp_entry_destroy(0, binding), 0);
  EXPECT_EQ(fate_of("10.0.0.1"), dropped);
  EXPECT_EQ(sai_fp_entry_destroy(0, drop), 0);
  EXPECT_EQ(fate_of("10.0.0.1"), "passed");
}

}  // namespace
