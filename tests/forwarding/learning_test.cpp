// What entries of the MAC table and learn limits make of frames.
#include <bcm/l2.h>

#include "forwarding_fixture.h"

namespace {

using support::Frame;

class Learning : public support::ForwardingTest {
 protected:
  Learning() { vlan(10, {1, 2, 3}); }

  static void add(uint8_t last, int port, uint32_t flags) {
    sai_l2_mac_entry_t entry;
    EXPECT_EQ(sai_l2_init(&entry), SAI_E_NONE);
    entry.mac[0] = 0x02;
    entry.mac[5] = last;
    entry.vlan = 10;
    entry.port = port;
    entry.flags = flags;
    EXPECT_EQ(sai_l2_mac_entry_add(0, &entry), SAI_E_NONE);
  }
  std::string send_to(int to, int from = 1, int port = 1, int vlan = 10) {
    return send(port, Frame(from, to).tag(vlan).type(0x9000));
  }
  /// Whether an address that comes in at port 3 is learned.
  bool learns(int last, int vlan = 10) {
    send_to(1, last, 3, vlan);
    return send_to(last, 1, 1, vlan).substr(0, 2) == "3:";
  }

  static void limit(uint32_t flags, int32_t number) {
    sai_l2_learn_limit_t limit;
    EXPECT_EQ(sai_l2_mac_learn_limit_init(&limit), SAI_E_NONE);
    limit.flags = flags;
    limit.vlan = 10;
    limit.port = 3;
    limit.limit = number;
    EXPECT_EQ(sai_l2_mac_learn_limit_set(0, &limit), SAI_E_NONE);
  }

  const std::string flooded = "2: 01>09 [10] 9000\n3: 01>09 [10] 9000\n";
};

// --------------------------------------------------------------------------------------------------- entries ----

TEST_F(Learning, AnEntryCanDropFramesToItsAddress) {
  EXPECT_EQ(send_to(9), flooded);
  add(9, 3, SAI_L2_MAC_STATIC | SAI_L2_MAC_DISCARD_DST);
  EXPECT_EQ(send_to(9), "dropped: destination discard\n");
  EXPECT_EQ(send_to(8, 9, 3), "1: 09>08 [10] 9000\n2: 09>08 [10] 9000\n");
}

TEST_F(Learning, AnEntryCanDropFramesFromItsAddress) {
  EXPECT_EQ(send_to(9), flooded);
  add(1, 1, SAI_L2_MAC_STATIC | SAI_L2_MAC_DISCARD_SRC);
  EXPECT_EQ(send_to(9), "dropped: source discard\n");
  EXPECT_EQ(send_to(1, 9, 3), "1: 09>01 [10] 9000\n");
}

TEST_F(Learning, AnEntryCanCopyFramesToItsAddressToTheCpu) {
  add(9, 3, SAI_L2_MAC_STATIC);
  EXPECT_EQ(send_to(9), "3: 01>09 [10] 9000\n");
  add(9, 3, SAI_L2_MAC_STATIC | SAI_L2_MAC_COPY_TO_CPU);
  EXPECT_EQ(send_to(9), "3: 01>09 [10] 9000\ncpu 0x40: 01>09 [10] 9000\n");
}

TEST_F(Learning, AddressesDoNotAgeWithoutAnAgeTime) {
  EXPECT_EQ(sai_l2_mac_age_time_set(0, 10), SAI_E_NONE);
  const auto stays = [&] {
    EXPECT_TRUE(learns(9));
    swsdk_clock_step(0, 40);
    swsdk_events_drain();
    return send_to(9) != flooded;
  };
  EXPECT_FALSE(stays());
  EXPECT_EQ(sai_l2_mac_age_time_set(0, 0), SAI_E_NONE);
  EXPECT_TRUE(stays());
}

// ---------------------------------------------------------------------------------------------------- limits ----

TEST_F(Learning, ALimitHoldsOnceLimitsAreHeeded) {
  limit(BCM_L2_LEARN_LIMIT_PORT, 1);
  EXPECT_TRUE(learns(8));
  EXPECT_TRUE(learns(9));
  EXPECT_EQ(sai_l2_mac_learn_limit_enable(0), SAI_E_NONE);
  EXPECT_FALSE(learns(10));
  limit(BCM_L2_LEARN_LIMIT_PORT, 3);
  EXPECT_TRUE(learns(10));
  EXPECT_FALSE(learns(11));
  EXPECT_EQ(sai_l2_mac_learn_limit_disable(0), SAI_E_NONE);
  EXPECT_TRUE(learns(11));
}

TEST_F(Learning, ALimitOfAVlanIsForItsAddressesAlone) {
  vlan(20, {1, 2, 3});
  EXPECT_EQ(sai_l2_mac_learn_limit_enable(0), SAI_E_NONE);
  EXPECT_TRUE(learns(8));
  limit(BCM_L2_LEARN_LIMIT_VLAN, 2);  // that of port 1 is the other one
  EXPECT_FALSE(learns(9));
  send_to(8, 1, 1, 20);
  EXPECT_TRUE(learns(9, 20));
}

TEST_F(Learning, ALimitOfTheSystemIsForAllAddresses) {
  vlan(20, {1, 2, 3});
  EXPECT_EQ(sai_l2_mac_learn_limit_enable(0), SAI_E_NONE);
  EXPECT_TRUE(learns(8));
  limit(BCM_L2_LEARN_LIMIT_SYSTEM, 2);
  EXPECT_FALSE(learns(9));
  EXPECT_FALSE(learns(9, 20));
}

TEST_F(Learning, ALimitOfATrunkIsForItsMembersTogether) {
  int32_t trunk = 0;
  EXPECT_EQ(sai_trunk_create(0, 0, &trunk), SAI_E_NONE);
  EXPECT_EQ(sai_trunk_set(0, trunk, 9, 1U << 1 | 1U << 2, 2), SAI_E_NONE);  // ports 2 and 3
  EXPECT_EQ(sai_l2_mac_learn_limit_enable(0), SAI_E_NONE);
  sai_l2_learn_limit_t limit;
  EXPECT_EQ(sai_l2_mac_learn_limit_init(&limit), SAI_E_NONE);
  limit.flags = BCM_L2_LEARN_LIMIT_TRUNK | BCM_L2_LEARN_LIMIT_ACTION_DROP;
  limit.trunk = trunk;
  limit.limit = 1;
  EXPECT_EQ(send_to(7, 8, 2), "1: 08>07 [10] 9000\n");
  EXPECT_EQ(send_to(7, 9, 3), "1: 09>07 [10] 9000\n");
  EXPECT_EQ(sai_l2_mac_learn_limit_set(0, &limit), SAI_E_NONE);
  EXPECT_EQ(send_to(7, 10, 3), "dropped: learn limit\n");
}

TEST_F(Learning, ALimitSaysWhatBecomesOfFramesFromAddressesBeyondIt) {
  limit(BCM_L2_LEARN_LIMIT_PORT, 0);
  EXPECT_EQ(sai_l2_mac_learn_limit_enable(0), SAI_E_NONE);
  EXPECT_EQ(send_to(7, 9, 3), "1: 09>07 [10] 9000\n2: 09>07 [10] 9000\n");
  limit(BCM_L2_LEARN_LIMIT_PORT | BCM_L2_LEARN_LIMIT_ACTION_CPU, 0);
  EXPECT_EQ(send_to(7, 9, 3), "1: 09>07 [10] 9000\n2: 09>07 [10] 9000\ncpu 0x20: 09>07 [10] 9000\n");
  limit(BCM_L2_LEARN_LIMIT_PORT | BCM_L2_LEARN_LIMIT_ACTION_DROP, 0);
  EXPECT_EQ(send_to(7, 9, 3), "dropped: learn limit\n");
}

// ------------------------------------------------------------------------------------------------- the reads ----

TEST_F(Learning, WhatFramesTaughtTheTableIsWhatItTells) {
  sai_l2_mac_entry_t entry;
  EXPECT_EQ(sai_l2_init(&entry), SAI_E_NONE);
  entry.mac[0] = 0x02;
  entry.mac[5] = 9;
  entry.vlan = 10;
  int32_t max = 0;
  int32_t before = 0;
  EXPECT_EQ(sai_l2_info(0, &max, &before), SAI_E_NONE);
  EXPECT_NE(sai_l2_mac_entry_get(0, &entry), SAI_E_NONE);
  send_to(7, 9, 3);
  EXPECT_EQ(sai_l2_mac_entry_get(0, &entry), SAI_E_NONE);
  EXPECT_EQ(entry.port_out, 3);
  int32_t current = 0;
  EXPECT_EQ(sai_l2_info(0, &max, &current), SAI_E_NONE);
  EXPECT_EQ(current, before + 1);
}

}  // namespace
