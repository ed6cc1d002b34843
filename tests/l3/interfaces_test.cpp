#include "l3/scene.h"

namespace {

using l3::Answers;
using l3::but;

class L3Interfaces : public l3::Scene {};

TEST_F(L3Interfaces, ForwardingIsSwitchedForTheWholeChip) {
  EXPECT_EQ(observe_with({{"bcm_l3_enable_set", 0}}, [] { return sai_l3_enable_set(unit, 1); }),
            "bcm_l3_enable_set(0, 1) = 0\nreturned 0\n");
  EXPECT_EQ(observe_with({{"bcm_l3_enable_set", BCM_E_PARAM}}, [] { return sai_l3_enable_set(unit, 7); }),
            "bcm_l3_enable_set(0, 7) = -4\n"
            "log: errors: NONE: bcm_l3_enable_set enable 7 failed: Invalid parameter\n"
            "returned -5\n");
}

const Answers no_interface{
    {"bcm_l3_intf_find_vlan", BCM_E_NOT_FOUND}, {"bcm_l3_intf_delete", 0}, {"bcm_l3_intf_create", 0}};

TEST_F(L3Interfaces, AVlanWithoutOneGetsOne) {
  EXPECT_EQ(observe_with(no_interface, [] { return sai_l3_intf_create(unit, router, 10); }),
            "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = -7\n"
            "bcm_l3_intf_create(0, {l3a_flags=0x20, l3a_mac_addr=02:00:00:00:00:01, l3a_vid=10}) = 0\n"
            "log: debugging: NONE:  create vlan 10 l3 interface\n"
            "returned 0\n");
}

TEST_F(L3Interfaces, AnyFailedLookupLeadsToCreationAndIsNotLogged) {
  for (const int code : {BCM_E_INTERNAL, BCM_E_UNAVAIL, BCM_E_PARAM})
    EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find_vlan", code}}, no_interface),
                           [] { return sai_l3_intf_create(unit, router, 10); }),
              l3::line("bcm_l3_intf_find_vlan(0, {l3a_vid=10})", code) +
                  "bcm_l3_intf_create(0, {l3a_flags=0x20, l3a_mac_addr=02:00:00:00:00:01, l3a_vid=10}) = 0\n"
                  "log: debugging: NONE:  create vlan 10 l3 interface\n"
                  "returned 0\n");
}

TEST_F(L3Interfaces, AVlanIsCutToSixteenBitsButNotInMessages) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_create", BCM_E_FULL}}, no_interface),
                         [] { return sai_l3_intf_create(unit, router, 0x1000A); }),
            "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = -7\n"
            "bcm_l3_intf_create(0, {l3a_flags=0x20, l3a_mac_addr=02:00:00:00:00:01, l3a_vid=10}) = -6\n"
            "log: debugging: NONE:  create vlan 65546 l3 interface\n"
            "log: errors: NONE: bcm_l3_intf_create vlan 65546 l3 interface failed: Table is full\n"
            "returned -13\n");
}

TEST_F(L3Interfaces, OneOfTheSameMacIsLeftAlone) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find_vlan", 0}}, no_interface),
                         [] { return sai_l3_intf_create(unit, no_mac, 10); }),
            "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = 0\nreturned 0\n");
}

TEST_F(L3Interfaces, OneOfAnotherMacIsReplaced) {
  // Its MAC address is all zeros: the answer wrote none.
  for (const int other : {0, 5}) {
    uint8_t mac[6] = {};
    mac[other] = 0x01;
    EXPECT_TRUE(observe_with(but({{"bcm_l3_intf_find_vlan", 0}}, no_interface),
                             [&] { return sai_l3_intf_create(unit, mac, 10); })
                    .starts_with("bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = 0\n"
                                 "bcm_l3_intf_delete(0, {l3a_vid=10}) = 0\n"
                                 "bcm_l3_intf_create("));
  }
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find_vlan", 0}}, no_interface),
                         [] { return sai_l3_intf_create(unit, router, 10); }),
            "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = 0\n"
            "bcm_l3_intf_delete(0, {l3a_vid=10}) = 0\n"
            "bcm_l3_intf_create(0, {l3a_flags=0x20, l3a_mac_addr=02:00:00:00:00:01, l3a_vid=10}) = 0\n"
            "log: debugging: NONE: delete vlan 10 l3 interface 0\n"
            "log: debugging: NONE:  create vlan 10 l3 interface\n"
            "returned 0\n");
}

TEST_F(L3Interfaces, OneThatCannotBeDeletedIsNotReplaced) {
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find_vlan", 0}, {"bcm_l3_intf_delete", BCM_E_BUSY}}, no_interface),
                         [] { return sai_l3_intf_create(unit, router, 10); }),
            "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = 0\n"
            "bcm_l3_intf_delete(0, {l3a_vid=10}) = -10\n"
            "log: debugging: NONE: delete vlan 10 l3 interface 0\n"
            "log: errors: NONE: bcm_l3_intf_delete vlan 10 l3 interface failed: Hardware is busy\n"
            "returned -1\n");
}

TEST_F(L3Interfaces, DeleteFindsTheInterfaceOfTheVlan) {
  const auto remove = [] { return sai_l3_intf_delete(unit, 10); };
  const Answers all_well{{"bcm_l3_intf_find_vlan", 0}, {"bcm_l3_intf_delete", 0}};
  EXPECT_EQ(observe_with(all_well, remove),
            "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = 0\n"
            "bcm_l3_intf_delete(0, {l3a_vid=10}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_find_vlan", BCM_E_NOT_FOUND}}, all_well), remove),
            "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = -7\n"
            "log: errors: NONE: bcm_l3_intf_find_vlan vlan 10 l3 interface failed: Entry not found\n"
            "returned -7\n");
  EXPECT_EQ(observe_with(but({{"bcm_l3_intf_delete", BCM_E_UNAVAIL}}, all_well), remove),
            "bcm_l3_intf_find_vlan(0, {l3a_vid=10}) = 0\n"
            "bcm_l3_intf_delete(0, {l3a_vid=10}) = -16\n"
            "log: errors: NONE: bcm_l3_intf_delete vlan 10 l3 interface failed: Not available on this chip\n"
            "returned -2\n");
}

TEST_F(L3Interfaces, DeleteAllNamesItself) {
  EXPECT_EQ(observe_with({{"bcm_l3_intf_delete_all", 0}}, [] { return sai_l3_intf_delete_all(unit); }),
            "bcm_l3_intf_delete_all(0) = 0\nreturned 0\n");
  EXPECT_EQ(observe_with({{"bcm_l3_intf_delete_all", BCM_E_MEMORY}}, [] { return sai_l3_intf_delete_all(unit); }),
            "bcm_l3_intf_delete_all(0) = -2\n"
            "log: errors: NONE: sai_l3_intf_delete_all failed: Out of memory\n"
            "returned -3\n");
}

}  // namespace
