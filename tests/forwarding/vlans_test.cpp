// VLAN membership as frames see it.
#include "forwarding_fixture.h"

namespace {

using support::Frame;

using Vlans = support::ForwardingTest;

TEST_F(Vlans, AMemberThatIsAddedGetsTheFloodsOfItsVlan) {
  vlan(10, {1});
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(10).type(0x9000)), "cpu 0x80: 01>all [10] 9000\n");
  EXPECT_EQ(sai_vlan_port_add(0, 10, 2, 0), SAI_E_NONE);
  EXPECT_EQ(send(1, Frame(1, 0xFF).tag(10).type(0x9000)), "2: 01>all 9000\ncpu 0x80: 01>all [10] 9000\n");
}

}  // namespace
