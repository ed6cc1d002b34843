#include "chip/vlan_assignments.h"

#include <gtest/gtest.h>

namespace {

using chip::Ip6;
using chip::Status;
using chip::subnet_of_ip4;
using chip::subnet_of_ip6;

constexpr chip::Mac mac{0x02, 0, 0, 0, 0, 1};

TEST(MacVlans, KeepTheVlanAndPriorityOfEachAddress) {
  chip::MacVlans table;
  EXPECT_EQ(table.add(mac, {10, 7}), Status::ok);
  EXPECT_EQ(table.all().at(mac).vlan, 10);
  EXPECT_EQ(table.all().at(mac).priority, 7);
}

TEST(MacVlans, TakeAnAddressOnce) {
  chip::MacVlans table;
  table.add(mac, {10, 0});
  EXPECT_EQ(table.add(mac, {11, 0}), Status::exists);
  EXPECT_EQ(table.all().at(mac).vlan, 10);
  EXPECT_EQ(table.remove(mac), Status::ok);
  EXPECT_EQ(table.remove(mac), Status::not_found);
}

TEST(MacVlans, RefuseVlansAndPrioritiesThatThereAreNot) {
  chip::MacVlans table;
  EXPECT_EQ(table.add(mac, {0, 0}), Status::bad_parameter);
  EXPECT_EQ(table.add(mac, {4096, 0}), Status::bad_parameter);
  EXPECT_EQ(table.add(mac, {10, -1}), Status::bad_parameter);
  EXPECT_EQ(table.add(mac, {10, 8}), Status::bad_parameter);
  EXPECT_TRUE(table.all().empty());
}

TEST(MacVlans, AreFullWithTheirCapacity) {
  chip::MacVlans table;
  const auto address = [](std::size_t i) {
    return chip::Mac{2, 0, 0, 0, static_cast<uint8_t>(i >> 8), static_cast<uint8_t>(i)};
  };
  for (std::size_t i = 0; i < chip::MacVlans::capacity; ++i) ASSERT_EQ(table.add(address(i), {10, 0}), Status::ok);
  EXPECT_EQ(table.add(address(chip::MacVlans::capacity), {10, 0}), Status::full);
  table.clear();
  EXPECT_EQ(table.add(address(chip::MacVlans::capacity), {10, 0}), Status::ok);
}

TEST(SubnetVlans, KnowASubnetByAnyOfItsAddresses) {
  chip::SubnetVlans table;
  EXPECT_EQ(table.add(*subnet_of_ip4(0x0A000000, 0xFF000000), {10, 0}), Status::ok);
  EXPECT_EQ(table.add(*subnet_of_ip4(0x0A010203, 0xFF000000), {11, 0}), Status::exists);
  EXPECT_EQ(table.add(*subnet_of_ip4(0x0A000000, 0xFFFF0000), {11, 0}), Status::ok);
  EXPECT_EQ(table.remove(*subnet_of_ip4(0x0AFFFFFF, 0xFF000000)), Status::ok);
  EXPECT_EQ(table.all().size(), 1U);
}

TEST(SubnetVlans, TellIp4FromIp6) {
  chip::SubnetVlans table;
  table.add(*subnet_of_ip4(0x20010000, 0xFFFF0000), {10, 0});
  EXPECT_EQ(table.add(*subnet_of_ip6({0x20, 0x01}, 16), {11, 0}), Status::ok);
  EXPECT_EQ(table.remove(*subnet_of_ip6({0x20, 0x01, 5}, 16)), Status::ok);
  EXPECT_EQ(table.all().size(), 1U);
}

TEST(SubnetVlans, HaveMasksWhoseOnesComeFirst) {
  EXPECT_EQ(subnet_of_ip4(0x0A000000, 0)->prefix, 0);
  EXPECT_EQ(subnet_of_ip4(0x0A000000, 0xFFFFFFFF)->prefix, 32);
  EXPECT_EQ(subnet_of_ip4(0x0A000000, 0xFF00FF00), std::nullopt);
  EXPECT_EQ(subnet_of_ip4(0x0A000000, 0x000000FF), std::nullopt);
}

TEST(SubnetVlans, HavePrefixesOfAtMost128Bits) {
  const Ip6 address{0xFF, 0xFF, 0xFF};
  EXPECT_EQ(subnet_of_ip6(address, -1), std::nullopt);
  EXPECT_EQ(subnet_of_ip6(address, 129), std::nullopt);
  EXPECT_EQ(subnet_of_ip6(address, 0)->address, Ip6{});
  EXPECT_EQ(subnet_of_ip6(address, 12)->address, (Ip6{0xFF, 0xF0}));
  EXPECT_EQ(subnet_of_ip6(address, 128)->address, address);
}

}  // namespace
