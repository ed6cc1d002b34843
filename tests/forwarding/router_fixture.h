// The whole switch as a router between VLAN 10 (ports 1, 2 and 9) and VLAN 20 (ports 3, 4 and 9), with a neighbor at
// port 3 and one at port 4.
#pragma once

#include "forwarding_fixture.h"

namespace support {

class RouterTest : public ForwardingTest {
 protected:
  static constexpr int router = 0xE0;  // the last byte of its address

  RouterTest() {
    vlan(10, {1, 2, 9});
    vlan(20, {3, 4, 9});
    learn(3, 20, 0x33);
    learn(4, 20, 0x44);
    for (const int id : {10, 20}) EXPECT_EQ(sai_l3_intf_create(0, router_mac.data(), id), SAI_E_NONE);
    EXPECT_EQ(sai_l3_enable_set(0, 1), SAI_E_NONE);
  }

  /// Lets a neighbor be heard.
  void learn(int port, int vlan, int last) { send(port, Frame(last, 0xFF).tag(vlan).type(0x9000)); }

  static int host(std::string_view address, int port, int last, int vlan = 20) {
    return sai_l3_host_route_create(0, ip4(address), router_mac.data(), mac(last).data(), port, vlan, 0);
  }
  static int subnet(std::string_view address, std::string_view mask, int port, int last) {
    return sai_l3_subnet_route_create(0, ip4(address), ip4(mask), ip4("20.0.0.254"), router_mac.data(),
                                      mac(last).data(), port, 20, 0);
  }

  /// A packet for the router, which comes in in VLAN 10.
  static Frame packet(std::string_view destination, int ttl = 64) {
    return Frame(1, router).tag(10).ip("10.0.0.1", destination, ttl).udp(5, 6);
  }

  static inline const Bytes router_mac = mac(router);
};

}  // namespace support
