#include "chip/routes.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

using chip::L3Entry;
using chip::RouteKey;
using chip::Status;

RouteKey route(uint32_t subnet, uint32_t mask, int vrf = 0) {
  const std::optional<RouteKey> key = chip::Routes::key_of(vrf, subnet, mask);
  EXPECT_TRUE(key.has_value());
  return key.value_or(RouteKey{});
}

class Routes : public testing::Test {
 protected:
  void add(const RouteKey& key, int interface) {
    EXPECT_EQ(routes.add(key, {.interface = interface}, false), Status::ok);
  }

  /// Where an address goes: an interface, or 0 for nowhere.
  int way(uint32_t address, int vrf = 0) {
    const L3Entry* const entry = routes.lookup(vrf, address);
    return entry == nullptr ? 0 : entry->interface;
  }

  chip::Routes routes;
};

TEST_F(Routes, TakeTheAddressesOfTheirSubnetTheLongestPrefixFirst) {
  add(route(0, 0), 1);
  add(route(0x0A000000, 0xFF000000), 2);
  add(route(0x0A010000, 0xFFFF0000), 3);
  add(route(0x0A010203, 0xFFFFFFFF), 4);
  EXPECT_EQ(way(0x0B000000), 1);
  EXPECT_EQ(way(0x0A020000), 2);
  EXPECT_EQ(way(0x0A010204), 3);
  EXPECT_EQ(way(0x0A010203), 4);
  EXPECT_EQ(way(0x0A010203, 1), 0);
  EXPECT_EQ(routes.remove(route(0x0A010000, 0xFFFF0000)), Status::ok);
  EXPECT_EQ(way(0x0A010204), 2);
}

TEST_F(Routes, AreKnownByTheirSubnetWithoutTheBitsOfItsHosts) {
  add(route(0x0A0000FF, 0xFFFFFF00), 1);
  EXPECT_NE(routes.find(route(0x0A000000, 0xFFFFFF00)), nullptr);
  EXPECT_EQ(routes.find(route(0x0A000000, 0xFFFFFFFF)), nullptr);
}

TEST_F(Routes, HaveNoMaskWithHoles) {
  for (const uint32_t mask : {0x00FFFFFFU, 0xFFFF00FFU, 0x00000001U, 0xFFFFFFFDU})
    EXPECT_FALSE(chip::Routes::key_of(0, 0x0A000000, mask).has_value()) << mask;
  EXPECT_EQ(route(0x0A000000, 0xFFFFFFFE).length, 31);
  EXPECT_EQ(route(0x0A000000, 0).length, 0);
}

TEST_F(Routes, ThatAreThereAreReplacedOnlyOnDemand) {
  const RouteKey key = route(0x0A000000, 0xFF000000);
  add(key, 1);
  EXPECT_EQ(routes.add(key, {.interface = 2}, false), Status::exists);
  EXPECT_EQ(way(0x0A000001), 1);
  EXPECT_EQ(routes.add(key, {.interface = 2}, true), Status::ok);
  EXPECT_EQ(way(0x0A000001), 2);
  EXPECT_EQ(routes.uses(1), 0);
  EXPECT_EQ(routes.uses(2), 1);
}

TEST_F(Routes, ThatAreAbsentAnswerNotFound) {
  const RouteKey key = route(0x0A000000, 0xFF000000);
  EXPECT_EQ(routes.remove(key), Status::not_found);
  EXPECT_EQ(routes.hit(key, L3Entry::any_hit), Status::not_found);
}

TEST_F(Routes, AreFullAtTheirCapacity) {
  for (uint32_t i = 0; i < chip::Routes::capacity; ++i) add(route(i << 8, 0xFFFFFF00), 1);
  const RouteKey one_more = route(0xFF000000, 0xFF000000);
  EXPECT_EQ(routes.add(one_more, {}, false), Status::full);
  EXPECT_EQ(routes.add(route(0, 0xFFFFFF00), {}, true), Status::ok);
  EXPECT_EQ(routes.remove(route(0, 0xFFFFFF00)), Status::ok);
  EXPECT_EQ(routes.add(one_more, {}, false), Status::ok);
}

TEST_F(Routes, NoteHitsUntilTheyAreCleared) {
  const RouteKey key = route(0x0A000000, 0xFF000000);
  add(key, 1);
  EXPECT_EQ(routes.hit(key, L3Entry::destination_hit), Status::ok);
  EXPECT_EQ(std::exchange(routes.find(key)->hit, 0), L3Entry::destination_hit);
  EXPECT_EQ(routes.find(key)->hit, 0U);
}

}  // namespace
