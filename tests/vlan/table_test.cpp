#include <bcm/error.h>
#include <bcm/vlan.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <string>

#include "support/scene.h"

namespace {

class VlanTable : public support::Scene {
 protected:
  /// The flags word of a VLAN as the chip holds it.
  static uint32_t flags(uint16_t vid) {
    bcm_vlan_control_vlan_t control;
    bcm_vlan_control_vlan_t_init(&control);
    EXPECT_EQ(bcm_vlan_control_vlan_get(unit, vid, &control), BCM_E_NONE);
    return control.flags;
  }

  static void set_control(uint16_t vid, const bcm_vlan_control_vlan_t& control) {
    ASSERT_EQ(bcm_vlan_control_vlan_set(unit, vid, control), BCM_E_NONE);
  }

  static std::string shown() {
    std::string text(static_cast<size_t>(swsdk_show(unit, "vlan", nullptr, 0)), '\0');
    swsdk_show(unit, "vlan", text.data(), text.size() + 1);
    return text;
  }
};

TEST_F(VlanTable, InitRunsTheChipsInit) {
  EXPECT_EQ(observe([] { return sai_vlan_init(unit); }),
            "bcm_vlan_init(0) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTable, InitThatFailsIsLoggedAndConverted) {
  EXPECT_EQ(observe_failing("bcm_vlan_init", BCM_E_UNAVAIL, [] { return sai_vlan_init(unit); }),
            "bcm_vlan_init(0) = -16\n"
            "log: errors: NONE: Failed to init vlan: Not available on this chip\n"
            "returned -2\n");
}

TEST_F(VlanTable, CreateMakesTheVlanAndAddsTheCpuPortTagged) {
  EXPECT_EQ(observe([] { return sai_vlan_create(unit, 10); }),
            "bcm_vlan_create(0, 10) = 0\n"
            "bcm_vlan_port_add(0, 10, {0}, {}) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTable, CreateThatFailsAddsNoPort) {
  EXPECT_EQ(observe_failing("bcm_vlan_create", BCM_E_FULL, [] { return sai_vlan_create(unit, 10); }),
            "bcm_vlan_create(0, 10) = -6\n"
            "log: errors: NONE: Failed to create vlan 10: Table is full\n"
            "returned -13\n");
}

TEST_F(VlanTable, CreateOfAnExistingVlanAddsTheCpuPortAgainAndLogsNothing) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  ASSERT_EQ(sai_vlan_port_remove(unit, 10, 0), 0);
  EXPECT_EQ(observe([] { return sai_vlan_create(unit, 10); }),
            "bcm_vlan_create(0, 10) = -8\n"
            "bcm_vlan_port_add(0, 10, {0}, {}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(shown(),
            "VLAN  tagged  untagged  flags\n"
            "1     {0}     {1-12}    -\n"
            "10    {0}     {}        -\n");
}

TEST_F(VlanTable, CreateWhoseCpuPortIsRefusedLeavesTheVlan) {
  EXPECT_EQ(observe_failing("bcm_vlan_port_add", BCM_E_PORT, [] { return sai_vlan_create(unit, 10); }),
            "bcm_vlan_create(0, 10) = 0\n"
            "bcm_vlan_port_add(0, 10, {0}, {}) = -18\n"
            "log: errors: NONE: Failed to adding port to vlan [10]: Invalid port\n"
            "returned -9\n");
  EXPECT_EQ(bcm_vlan_create(unit, 10), BCM_E_EXISTS);
}

TEST_F(VlanTable, CreateOfAnExistingVlanReturnsTheErrorOfTheCpuPort) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  EXPECT_EQ(observe_failing("bcm_vlan_port_add", BCM_E_MEMORY, [] { return sai_vlan_create(unit, 10); }),
            "bcm_vlan_create(0, 10) = -8\n"
            "bcm_vlan_port_add(0, 10, {0}, {}) = -2\n"
            "log: errors: NONE: Failed to adding port to vlan [10]: Out of memory\n"
            "returned -3\n");
}

TEST_F(VlanTable, CreatePassesABadIdToTheChip) {
  EXPECT_EQ(observe([] { return sai_vlan_create(unit, 65535); }),
            "bcm_vlan_create(0, 65535) = -4\n"
            "log: errors: NONE: Failed to create vlan 65535: Invalid parameter\n"
            "returned -5\n");
}

TEST_F(VlanTable, DestroyRemovesTheVlan) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  EXPECT_EQ(observe([] { return sai_vlan_destroy(unit, 10); }),
            "bcm_vlan_destroy(0, 10) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTable, DestroyOfAnAbsentVlanIsLoggedAndConverted) {
  EXPECT_EQ(observe([] { return sai_vlan_destroy(unit, 10); }),
            "bcm_vlan_destroy(0, 10) = -7\n"
            "log: errors: NONE: Failed to destroy vlan 10: Entry not found\n"
            "returned -7\n");
}

TEST_F(VlanTable, DestroyAllLeavesTheDefaultVlan) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  ASSERT_EQ(sai_vlan_create(unit, 4094), 0);
  EXPECT_EQ(observe([] { return sai_vlan_destroy_all(unit); }),
            "bcm_vlan_destroy_all(0) = 0\n"
            "returned 0\n");
  EXPECT_EQ(shown(),
            "VLAN  tagged  untagged  flags\n"
            "1     {0}     {1-12}    -\n");
}

TEST_F(VlanTable, DestroyAllThatFailsIsLoggedAndConverted) {
  EXPECT_EQ(observe_failing("bcm_vlan_destroy_all", BCM_E_INTERNAL, [] { return sai_vlan_destroy_all(unit); }),
            "bcm_vlan_destroy_all(0) = -1\n"
            "log: errors: NONE: Failed to destroy vlan: Internal error\n"
            "returned -1\n");
}

TEST_F(VlanTable, PortAddWithTaggedZeroMakesThePortUntagged) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  EXPECT_EQ(observe([] { return sai_vlan_port_add(unit, 10, 3, 0); }),
            "bcm_vlan_port_add(0, 10, {3}, {3}) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTable, PortAddWithAnyOtherTaggedMakesThePortTagged) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  for (const int32_t tagged : {1, 2, -1, INT32_MIN}) {
    EXPECT_EQ(observe([=] { return sai_vlan_port_add(unit, 10, 3, tagged); }),
              "bcm_vlan_port_add(0, 10, {3}, {}) = 0\n"
              "returned 0\n");
  }
}

TEST_F(VlanTable, PortAddSetsTheOneBitOfThePortInItsWord) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  for (const uint16_t port : std::initializer_list<uint16_t>{0, 1, 12}) {
    const std::string set = "{" + std::to_string(port) + "}";
    EXPECT_EQ(observe([=] { return sai_vlan_port_add(unit, 10, port, 0); }),
              "bcm_vlan_port_add(0, 10, " + set + ", " + set + ") = 0\nreturned 0\n");
  }
  for (const uint16_t port : std::initializer_list<uint16_t>{31, 32, 63, 64, 254, 255}) {
    const std::string number = std::to_string(port);
    EXPECT_EQ(observe([=] { return sai_vlan_port_add(unit, 10, port, 1); }),
              "bcm_vlan_port_add(0, 10, {" + number + "}, {}) = -18\n" + "log: errors: NONE: Failed to add port [" +
                  number + "] to vlan [10]: Invalid port\nreturned -9\n");
  }
}

TEST_F(VlanTable, PortAddThatFailsNamesPortAndVlan) {
  EXPECT_EQ(observe([] { return sai_vlan_port_add(unit, 10, 3, 1); }),
            "bcm_vlan_port_add(0, 10, {3}, {}) = -7\n"
            "log: errors: NONE: Failed to add port [3] to vlan [10]: Entry not found\n"
            "returned -7\n");
}

TEST_F(VlanTable, PortAddRefusesAPortThatFitsNoBitmap) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  for (const uint16_t port : std::initializer_list<uint16_t>{256, 65535}) {
    EXPECT_EQ(observe([=] { return sai_vlan_port_add(unit, 10, port, 0); }),
              "log: errors: NONE: Failed to add port [" + std::to_string(port) +
                  "] to vlan [10]: Invalid parameter\nreturned -5\n");
  }
}

TEST_F(VlanTable, PortRemoveRemovesTheOnePort) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  ASSERT_EQ(sai_vlan_port_add(unit, 10, 3, 0), 0);
  ASSERT_EQ(sai_vlan_port_add(unit, 10, 4, 1), 0);
  EXPECT_EQ(observe([] { return sai_vlan_port_remove(unit, 10, 3); }),
            "bcm_vlan_port_remove(0, 10, {3}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(shown(),
            "VLAN  tagged  untagged  flags\n"
            "1     {0}     {1-12}    -\n"
            "10    {0,4}   {}        -\n");
}

TEST_F(VlanTable, PortRemoveThatFailsNamesPortAndVlan) {
  EXPECT_EQ(observe([] { return sai_vlan_port_remove(unit, 10, 3); }),
            "bcm_vlan_port_remove(0, 10, {3}) = -7\n"
            "log: errors: NONE: Failed to remove port [3] from vlan [10]: Entry not found\n"
            "returned -7\n");
}

TEST_F(VlanTable, PortRemoveRefusesAPortThatFitsNoBitmap) {
  EXPECT_EQ(observe([] { return sai_vlan_port_remove(unit, 1, 256); }),
            "log: errors: NONE: Failed to remove port [256] from vlan [1]: Invalid parameter\n"
            "returned -5\n");
}

TEST_F(VlanTable, LearnOnClearsTheBitAndLearnOffSetsIt) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  EXPECT_EQ(observe([] { return sai_vlan_l2_learn_set(unit, 10, 0); }),
            "bcm_vlan_control_vlan_get(0, 10, &{}) = 0\n"
            "bcm_vlan_control_vlan_set(0, 10, {flags=0x1}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(observe([] { return sai_vlan_l2_learn_set(unit, 10, 7); }),
            "bcm_vlan_control_vlan_get(0, 10, &{flags=0x1}) = 0\n"
            "bcm_vlan_control_vlan_set(0, 10, {}) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTable, LookupValueOneSetsTheBitAndZeroClearsIt) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  EXPECT_EQ(observe([] { return sai_vlan_l2_lookup_set(unit, 10, 7); }),
            "bcm_vlan_control_vlan_get(0, 10, &{}) = 0\n"
            "bcm_vlan_control_vlan_set(0, 10, {flags=0x80000}) = 0\n"
            "returned 0\n");
  EXPECT_EQ(observe([] { return sai_vlan_l2_lookup_set(unit, 10, 0); }),
            "bcm_vlan_control_vlan_get(0, 10, &{flags=0x80000}) = 0\n"
            "bcm_vlan_control_vlan_set(0, 10, {}) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTable, LearnAndLookupLeaveAllOtherBitsAndFieldsAsTheyAre) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  bcm_vlan_control_vlan_t control;
  bcm_vlan_control_vlan_t_init(&control);
  control.flags = 0xFFFFFFFF;
  control.l2_mcast_flood_mode = BCM_VLAN_MCAST_FLOOD_NONE;
  control.broadcast_group = 5;
  control.unknown_unicast_group = 7;
  set_control(10, control);

  EXPECT_EQ(sai_vlan_l2_learn_set(unit, 10, 1), 0);
  EXPECT_EQ(flags(10), 0xFFFFFFFEU);
  EXPECT_EQ(sai_vlan_l2_lookup_set(unit, 10, 0), 0);
  EXPECT_EQ(flags(10), 0xFFF7FFFEU);
  EXPECT_EQ(sai_vlan_l2_learn_set(unit, 10, 0), 0);
  EXPECT_EQ(flags(10), 0xFFF7FFFFU);
  EXPECT_EQ(observe([] { return sai_vlan_l2_lookup_set(unit, 10, 1); }),
            "bcm_vlan_control_vlan_get(0, 10, &{flags=0xfff7ffff, l2_mcast_flood_mode=2, broadcast_group=5, "
            "unknown_unicast_group=7}) = 0\n"
            "bcm_vlan_control_vlan_set(0, 10, {flags=0xffffffff, l2_mcast_flood_mode=2, broadcast_group=5, "
            "unknown_unicast_group=7}) = 0\n"
            "returned 0\n");
}

TEST_F(VlanTable, AFailedGetOfTheControlRecordWritesNothing) {
  const std::string expected =
      "bcm_vlan_control_vlan_get(0, 10, &?) = -7\n"
      "log: errors: NONE: Failed to get vlan [10] control: Entry not found\n"
      "returned -7\n";
  EXPECT_EQ(observe([] { return sai_vlan_l2_learn_set(unit, 10, 0); }), expected);
  EXPECT_EQ(observe([] { return sai_vlan_l2_lookup_set(unit, 10, 1); }), expected);
}

TEST_F(VlanTable, AFailedSetShowsTheFlagsInDecimalForLearnAndInHexadecimalForLookup) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  EXPECT_EQ(
      observe_failing("bcm_vlan_control_vlan_set", BCM_E_TIMEOUT, [] { return sai_vlan_l2_learn_set(unit, 10, 0); }),
      "bcm_vlan_control_vlan_get(0, 10, &{}) = 0\n"
      "bcm_vlan_control_vlan_set(0, 10, {flags=0x1}) = -9\n"
      "log: errors: NONE: Failed to set vlan [10] control 1: Operation took too long\n"
      "returned -1\n");
  EXPECT_EQ(
      observe_failing("bcm_vlan_control_vlan_set", BCM_E_TIMEOUT, [] { return sai_vlan_l2_lookup_set(unit, 10, 1); }),
      "bcm_vlan_control_vlan_get(0, 10, &{}) = 0\n"
      "bcm_vlan_control_vlan_set(0, 10, {flags=0x80000}) = -9\n"
      "log: errors: NONE: Failed to set vlan [10] control 0x80000: Operation took too long\n"
      "returned -1\n");
}

TEST_F(VlanTable, AFailedSetShowsAFlagsWordWithItsTopBitAsANegativeDecimal) {
  ASSERT_EQ(sai_vlan_create(unit, 10), 0);
  bcm_vlan_control_vlan_t control;
  bcm_vlan_control_vlan_t_init(&control);
  control.flags = 0x80000000;
  set_control(10, control);
  EXPECT_EQ(observe_failing("bcm_vlan_control_vlan_set", BCM_E_BUSY, [] { return sai_vlan_l2_learn_set(unit, 10, 0); }),
            "bcm_vlan_control_vlan_get(0, 10, &{flags=0x80000000}) = 0\n"
            "bcm_vlan_control_vlan_set(0, 10, {flags=0x80000001}) = -10\n"
            "log: errors: NONE: Failed to set vlan [10] control -2147483647: Hardware is busy\n"
            "returned -1\n");
}

TEST_F(VlanTable, EveryFunctionPassesItsUnitOn) {
  EXPECT_EQ(observe([] { return sai_vlan_init(3); }),
            "bcm_vlan_init(3) = -3\n"
            "log: errors: NONE: Failed to init vlan: No such unit\n"
            "returned -1\n");
  EXPECT_EQ(observe([] { return sai_vlan_create(3, 10); }),
            "bcm_vlan_create(3, 10) = -3\n"
            "log: errors: NONE: Failed to create vlan 10: No such unit\n"
            "returned -1\n");
  EXPECT_EQ(observe([] { return sai_vlan_destroy(3, 10); }),
            "bcm_vlan_destroy(3, 10) = -3\n"
            "log: errors: NONE: Failed to destroy vlan 10: No such unit\n"
            "returned -1\n");
  EXPECT_EQ(observe([] { return sai_vlan_destroy_all(3); }),
            "bcm_vlan_destroy_all(3) = -3\n"
            "log: errors: NONE: Failed to destroy vlan: No such unit\n"
            "returned -1\n");
  EXPECT_EQ(observe([] { return sai_vlan_port_add(3, 10, 1, 1); }),
            "bcm_vlan_port_add(3, 10, {1}, {}) = -3\n"
            "log: errors: NONE: Failed to add port [1] to vlan [10]: No such unit\n"
            "returned -1\n");
  EXPECT_EQ(observe([] { return sai_vlan_port_remove(3, 10, 1); }),
            "bcm_vlan_port_remove(3, 10, {1}) = -3\n"
            "log: errors: NONE: Failed to remove port [1] from vlan [10]: No such unit\n"
            "returned -1\n");
  const std::string control =
      "bcm_vlan_control_vlan_get(3, 10, &?) = -3\n"
      "log: errors: NONE: Failed to get vlan [10] control: No such unit\n"
      "returned -1\n";
  EXPECT_EQ(observe([] { return sai_vlan_l2_learn_set(3, 10, 1); }), control);
  EXPECT_EQ(observe([] { return sai_vlan_l2_lookup_set(3, 10, 1); }), control);
}

}  // namespace
