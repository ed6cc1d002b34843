#include "chip/l3_interfaces.h"

#include <gtest/gtest.h>

namespace {

using chip::L3Interface;
using chip::Status;

constexpr chip::Mac router_mac{0x00, 0x11, 0x22, 0x33, 0x44, 0x55};
constexpr chip::Mac other_router{0x00, 0x11, 0x22, 0x33, 0x44, 0x66};

class L3Interfaces : public testing::Test {
 protected:
  int create(const L3Interface& interface) {
    int made = 0;
    EXPECT_EQ(interfaces.create(interface, made), Status::ok);
    return made;
  }

  chip::L3Interfaces interfaces;
  int id = 0;
};

TEST_F(L3Interfaces, KeepWhatTheyWereMadeOf) {
  const int made = create({.flags = 0x20, .mac = router_mac, .vlan = 10, .ttl = 2});
  EXPECT_EQ(made, 1);
  const L3Interface* const found = interfaces.find(made);
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->flags, 0x20U);
  EXPECT_EQ(found->mac, router_mac);
  EXPECT_EQ(found->vlan, 10);
  EXPECT_EQ(found->ttl, 2);
}

TEST_F(L3Interfaces, AreFoundByTheirAddressAndVlansWhateverElseTheyHold) {
  const int plain = create({.flags = 0x20, .mac = router_mac, .vlan = 10});
  const int tagged_twice = create({.mac = router_mac, .vlan = 10, .inner_vlan = 5});
  const int of_other_vrf = create({.vrf = 1, .mac = router_mac, .vlan = 10});
  const int of_other_mac = create({.mac = other_router, .vlan = 10});
  EXPECT_EQ(interfaces.find_same({.flags = 0x820, .mac = router_mac, .vlan = 10, .ttl = 2}), plain);
  EXPECT_EQ(interfaces.find_same({.mac = router_mac, .vlan = 10, .inner_vlan = 5}), tagged_twice);
  EXPECT_EQ(interfaces.find_same({.vrf = 1, .mac = router_mac, .vlan = 10}), of_other_vrf);
  EXPECT_EQ(interfaces.find_same({.mac = other_router, .vlan = 10}), of_other_mac);
  EXPECT_EQ(interfaces.find_same({.mac = router_mac, .vlan = 11}), std::nullopt);
}

TEST_F(L3Interfaces, AreRefusedASecondTime) {
  create({.mac = router_mac, .vlan = 10});
  EXPECT_EQ(interfaces.create({.flags = 0x820, .mac = router_mac, .vlan = 10}, id), Status::exists);
  EXPECT_EQ(interfaces.all().size(), 1U);
}

TEST_F(L3Interfaces, AreFoundByVlanTheLowestIdFirst) {
  create({.mac = router_mac, .vlan = 9});
  const int first = create({.mac = router_mac, .vlan = 10});
  const int second = create({.mac = other_router, .vlan = 10});
  EXPECT_EQ(interfaces.find_by_vlan(10), first);
  interfaces.remove(first);
  EXPECT_EQ(interfaces.find_by_vlan(10), second);
  interfaces.remove(second);
  EXPECT_EQ(interfaces.find_by_vlan(10), std::nullopt);
  EXPECT_EQ(interfaces.find_by_vlan(11), std::nullopt);
  for (const int vlan : {-1, 0, 4096}) EXPECT_EQ(interfaces.find_by_vlan(vlan), std::nullopt) << vlan;
}

TEST_F(L3Interfaces, AreFoundByTheFramesThatAreSentToThemIfTheyAreInTheMacTable) {
  create({.mac = router_mac, .vlan = 10});
  EXPECT_EQ(interfaces.find_station(10, router_mac), nullptr);
  const int first = create({.flags = 0x20, .mac = router_mac, .vlan = 10, .inner_vlan = 5});
  const int second = create({.flags = 0x820, .mac = router_mac, .vlan = 10, .inner_vlan = 6});
  EXPECT_EQ(interfaces.find_station(10, router_mac), interfaces.find(first));
  EXPECT_EQ(interfaces.find_station(11, router_mac), nullptr);
  EXPECT_EQ(interfaces.find_station(10, other_router), nullptr);
  EXPECT_EQ(interfaces.remove(first), Status::ok);
  EXPECT_EQ(interfaces.find_station(10, router_mac), interfaces.find(second));
  EXPECT_EQ(interfaces.remove(second), Status::ok);
  EXPECT_EQ(interfaces.find_station(10, router_mac), nullptr);
  create({.flags = 0x20, .mac = router_mac, .vlan = 12});
  interfaces.clear();
  EXPECT_EQ(interfaces.find_station(12, router_mac), nullptr);
}

TEST_F(L3Interfaces, RefuseVlansThatThereAreNone) {
  EXPECT_EQ(interfaces.create({.mac = router_mac, .vlan = 0}, id), Status::bad_parameter);
  EXPECT_EQ(interfaces.create({.mac = router_mac, .vlan = 4096}, id), Status::bad_parameter);
  EXPECT_EQ(interfaces.create({.mac = router_mac, .vlan = 10, .inner_vlan = 4096}, id), Status::bad_parameter);
  EXPECT_TRUE(interfaces.all().empty());
  create({.mac = router_mac, .vlan = 4095, .inner_vlan = 4095});
}

TEST_F(L3Interfaces, ThatAreAbsentAnswerNotFound) {
  EXPECT_EQ(interfaces.remove(1), Status::not_found);
  EXPECT_EQ(interfaces.remove(0), Status::bad_parameter);
  EXPECT_EQ(interfaces.absent(100000), Status::bad_parameter);
  EXPECT_EQ(interfaces.find(1), nullptr);
}

TEST_F(L3Interfaces, AreFullAtTheirCapacity) {
  for (int i = 0; i < chip::L3Interfaces::capacity; ++i)
    create({.mac = router_mac,
            .vlan = static_cast<uint16_t>(1 + i % 4095),
            .inner_vlan = static_cast<uint16_t>(i / 4095)});
  EXPECT_EQ(interfaces.create({.mac = other_router, .vlan = 1}, id), Status::full);
  EXPECT_EQ(interfaces.find_same({.mac = other_router, .vlan = 1}), std::nullopt);
  interfaces.clear();
  EXPECT_EQ(create({.mac = router_mac, .vlan = 1}), 1);
  EXPECT_EQ(interfaces.find_by_vlan(2), std::nullopt);
}

}  // namespace
