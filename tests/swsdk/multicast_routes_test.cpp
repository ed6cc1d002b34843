#include "chip/multicast_routes.h"

#include <gtest/gtest.h>

namespace {

using chip::MulticastRoute;
using chip::MulticastRouteKey;
using chip::Status;

const MulticastRouteKey ip4_key{.vlan = 10, .address = {239, 1, 2, 3}};
const MulticastRouteKey ip6_key{.vlan = 10, .ip6 = true, .address = {0xFF, 0x05, 1}, .source = {0xFE, 0x80, 1}};

class MulticastRoutes : public testing::Test {
 protected:
  /// The group that a key leads to, or the negative status.
  int group(const MulticastRouteKey& key) const {
    const MulticastRoute* const found = routes.find(key);
    return found != nullptr ? found->group.number() : static_cast<int>(routes.absent(key));
  }
  static constexpr int not_found = static_cast<int>(Status::not_found);

  chip::MulticastRoutes routes;
};

TEST_F(MulticastRoutes, AreKnownByTheirAddressSourceAndVlan) {
  EXPECT_EQ(routes.add(ip4_key, {.group = 1}), Status::ok);
  EXPECT_EQ(routes.add(ip6_key, {.group = 2}), Status::ok);
  EXPECT_EQ(group(ip4_key), 1);
  EXPECT_EQ(group(ip6_key), 2);
  for (const MulticastRouteKey& key : {ip4_key, ip6_key}) {
    MulticastRouteKey other = key;
    other.vlan = 11;
    EXPECT_EQ(group(other), not_found);
    other = key;
    other.vrf = 1;
    EXPECT_EQ(group(other), not_found);
    other = key;
    other.source[1] = 9;
    EXPECT_EQ(group(other), not_found);
    EXPECT_EQ(routes.add(other, {.group = 3}), Status::ok);
    EXPECT_EQ(group(other), 3);
  }
  EXPECT_EQ(group(ip6_key), 2);
}

TEST_F(MulticastRoutes, AreRefusedASecondTime) {
  routes.add(ip4_key, {.group = 1});
  EXPECT_EQ(routes.add(ip4_key, {.group = 2}), Status::exists);
  EXPECT_EQ(group(ip4_key), 1);
}

TEST_F(MulticastRoutes, AreRemovedOnce) {
  routes.add(ip6_key, {.group = 1});
  EXPECT_EQ(routes.remove(ip6_key), Status::ok);
  EXPECT_EQ(routes.remove(ip6_key), Status::not_found);
  EXPECT_EQ(group(ip6_key), not_found);
}

TEST_F(MulticastRoutes, RefuseAddressesOfOneStationAndVlansThatThereAreNone) {
  for (const MulticastRouteKey& bad : {MulticastRouteKey{.vlan = 10, .address = {10, 0, 0, 1}},
                                       MulticastRouteKey{.vlan = 10, .address = {240, 0, 0, 1}},
                                       MulticastRouteKey{.vlan = 10, .ip6 = true, .address = {0xFE, 0x80}},
                                       MulticastRouteKey{.vlan = 4096, .address = {239, 1, 2, 3}}}) {
    EXPECT_EQ(routes.add(bad, {}), Status::bad_parameter);
    EXPECT_EQ(routes.find(bad), nullptr);
    EXPECT_EQ(routes.absent(bad), Status::bad_parameter);
    EXPECT_EQ(routes.remove(bad), Status::bad_parameter);
  }
}

TEST_F(MulticastRoutes, AreFullAtTheirCapacity) {
  for (std::size_t i = 0; i < chip::MulticastRoutes::capacity; ++i) {
    const MulticastRouteKey key{.vlan = 1,
                                .address = {239, 0, static_cast<uint8_t>(i / 256), static_cast<uint8_t>(i % 256)}};
    ASSERT_EQ(routes.add(key, {}), Status::ok);
  }
  EXPECT_EQ(routes.add(ip4_key, {}), Status::full);
  routes.clear();
  EXPECT_EQ(routes.add(ip4_key, {}), Status::ok);
}

}  // namespace
