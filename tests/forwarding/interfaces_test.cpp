// The router's interfaces as frames see them.
#include <bcm/stat.h>

#include "router_fixture.h"

namespace {

using support::Frame;

using Interfaces = support::RouterTest;

constexpr char flooded[] =
    "2: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 udp 5>6\n"
    "9: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 udp 5>6\n";

constexpr char routed[] = "3: e0>33 [20] 10.0.0.1>20.0.0.3 ttl 63 udp 5>6\n";

TEST_F(Interfaces, OneThatIsCreatedTakesTheFramesToItsAddress) {
  const Frame frame = Frame(1, router).tag(30).ip("30.0.0.1", "20.0.0.3").udp(5, 6);
  vlan(30, {5, 6});
  EXPECT_EQ(send(5, frame), "6: 01>e0 [30] 30.0.0.1>20.0.0.3 ttl 64 udp 5>6\n");
  EXPECT_EQ(sai_l3_intf_create(0, router_mac.data(), 30), SAI_E_NONE);
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(send(5, frame), "3: e0>33 [20] 30.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
}

TEST_F(Interfaces, OneThatIsCreatedAgainHasTheNewAddressAlone) {
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(sai_l3_intf_create(0, support::mac(0xE1).data(), 10), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), flooded);
  EXPECT_EQ(send(1, Frame(1, 0xE1).tag(10).ip("10.0.0.1", "20.0.0.3").udp(5, 6)),
            "3: e0>33 [20] 10.0.0.1>20.0.0.3 ttl 63 udp 5>6\n");
}

TEST_F(Interfaces, OneThatIsDeletedTakesNoFrames) {
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), routed);
  EXPECT_EQ(sai_l3_intf_delete(0, 10), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), flooded);
}

TEST_F(Interfaces, AllCanBeDeleted) {
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), routed);
  EXPECT_EQ(sai_l3_intf_delete_all(0), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), flooded);
}

TEST_F(Interfaces, RouteOnceTheSwitchIsARouter) {
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(sai_l3_enable_set(0, 0), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), "cpu 0x80: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 64 udp 5>6\n");
  EXPECT_EQ(sai_l3_enable_set(0, 1), SAI_E_NONE);
  EXPECT_EQ(send(1, packet("20.0.0.3")), routed);
}

TEST_F(Interfaces, CountWhatTheyRoute) {
  enum { received = 12, header_errors = 13, forwarded = 14, discarded = 15 };
  const auto counts = [](int port) {
    std::string text;
    for (const int counter : {received, header_errors, forwarded, discarded}) {
      uint64 value = 0;
      EXPECT_EQ(bcm_stat_get(0, port, static_cast<bcm_stat_val_t>(counter), &value), 0);
      text += std::to_string(value) + ' ';
    }
    return text;
  };
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  EXPECT_EQ(sai_stat_clean(0), SAI_E_NONE);
  send(1, Frame(1, 2).tag(10).ip("10.0.0.1", "10.0.0.2").udp(5, 6));
  EXPECT_EQ(counts(1), "0 0 0 0 ") << "not for the router";
  send(1, packet("20.0.0.3"));
  EXPECT_EQ(counts(1), "1 0 1 0 ");
  send(1, packet("20.0.0.3", 1));
  EXPECT_EQ(counts(1), "2 1 1 0 ");
  send(1, packet("20.0.0.9"));
  EXPECT_EQ(counts(1), "3 1 1 0 ") << "the CPU may know the way";
  send(9, packet("20.0.0.9"));
  EXPECT_EQ(counts(9), "1 0 0 1 ");
}

TEST_F(Interfaces, SendTheCpuWhatComesInAtAPanelPortAndCannotBePassedOn) {
  EXPECT_EQ(host("20.0.0.3", 3, 0x33), SAI_E_NONE);
  const Frame ip6 = Frame(1, router).tag(10).ip("2001::1", "2001::2").udp(5, 6);
  const Frame other = Frame(1, router).tag(10).type(0x9000);
  EXPECT_EQ(send(1, packet("20.0.0.9")), "cpu 0x4: 01>e0 [10] 10.0.0.1>20.0.0.9 ttl 64 udp 5>6\n");
  EXPECT_EQ(send(1, ip6), "cpu 0x4: 01>e0 [10] 2001::1>2001::2 ttl 64 udp 5>6\n");
  EXPECT_EQ(send(1, packet("20.0.0.3", 1)), "cpu 0x8: 01>e0 [10] 10.0.0.1>20.0.0.3 ttl 1 udp 5>6\n");
  EXPECT_EQ(send(1, other), "cpu 0x8: 01>e0 [10] 9000\n");
  // Port 9 is none of the panel.
  const std::pair<Frame, std::string> lost[] = {
      {packet("20.0.0.9"), "no route"}, {ip6, "no route"}, {packet("20.0.0.3", 1), "ttl expired"}, {other, "not ip"}};
  for (const auto& [frame, reason] : lost) EXPECT_EQ(send(9, frame), "dropped: " + reason + "\n");
}

}  // namespace
