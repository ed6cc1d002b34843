// The IPv6 addresses that the chip takes for reserved multicast.
#include "chip/reserved_multicast.h"

#include <bcm/error.h>
#include <bcm/switch.h>

#include "support/chip_test.h"

namespace {

using chip::Status;

class ReservedMulticast : public support::ChipTest {
 protected:
  bcm_ip6_t addresses[3] = {{0xFF, 0x01}, {0xFF, 0x02}, {0xFF, 0x05}};
  bcm_ip6_t masks[3] = {{0xFF, 0xFF}, {0xFF, 0xFF}, {0xFF, 0xFF}};
};

TEST_F(ReservedMulticast, TakesUpToTwoAddressesOfEitherHeader) {
  for (const int inner : {0, 1})
    for (const int count : {0, 1, 2})
      EXPECT_EQ(bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, inner, count, addresses, masks), BCM_E_NONE);
  EXPECT_EQ(bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, 0, nullptr, nullptr), BCM_E_NONE);
}

TEST_F(ReservedMulticast, RefusesWhatTheChipHasNoRoomFor) {
  for (const int count : {-1, 3})
    EXPECT_EQ(bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, count, addresses, masks), BCM_E_PARAM) << count;
  for (const int inner : {-1, 2})
    EXPECT_EQ(bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, inner, 2, addresses, masks), BCM_E_PARAM) << inner;
}

TEST_F(ReservedMulticast, NeedsBothLists) {
  EXPECT_EQ(bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, 2, nullptr, masks), BCM_E_PARAM);
  EXPECT_EQ(bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, 2, addresses, nullptr), BCM_E_PARAM);
}

TEST(ReservedMulticastOfAChip, KeepsTheLastTableOfEachHeader) {
  const chip::Ip6Match all_nodes{.address = {0xFF, 0x02, 0x01}, .mask = {0xFF}};
  const chip::Ip6Match all_routers{.address = {0xFF, 0x02, 0x02}, .mask = {0xFF}};
  chip::ReservedMulticast reserved;
  EXPECT_EQ(reserved.set(0, {all_nodes, all_routers}), Status::ok);
  EXPECT_EQ(reserved.set(1, {all_routers}), Status::ok);
  EXPECT_EQ(reserved.of_outer_header(), (std::vector{all_nodes, all_routers}));
  EXPECT_EQ(reserved.of_inner_header(), std::vector{all_routers});
  EXPECT_EQ(reserved.set(0, {all_nodes, all_nodes, all_nodes}), Status::bad_parameter);
  EXPECT_EQ(reserved.of_outer_header().size(), 2U);
  EXPECT_EQ(reserved.set(0, {}), Status::ok);
  EXPECT_TRUE(reserved.of_outer_header().empty());
  reserved.reset();
  EXPECT_TRUE(reserved.of_inner_header().empty());
}

}  // namespace
