// The MAC table, trunks, mirrors and spanning-tree groups as frames see them.
#include <bcm/l2.h>

#include <algorithm>

#include "forwarding_fixture.h"

namespace {

using support::Bytes;
using support::Frame;

class Layer2 : public support::ForwardingTest {
 protected:
  Layer2() { vlan(10, {1, 2, 3, 4}); }

  static sai_l2_mac_entry_t entry(uint8_t last, int port = 0, uint32_t flags = 0) {
    sai_l2_mac_entry_t result;
    sai_l2_init(&result);
    result.mac[0] = 0x02;
    result.mac[5] = last;
    result.vlan = 10;
    result.port = port;
    result.flags = flags;
    return result;
  }
  static void add(uint8_t last, int port, uint32_t flags) {
    const sai_l2_mac_entry_t added = entry(last, port, flags);
    EXPECT_EQ(sai_l2_mac_entry_add(0, &added), SAI_E_NONE);
  }
  static void del(const sai_l2_mac_entry_t& deleted, uint8_t mode) {
    EXPECT_EQ(sai_l2_mac_entry_del(0, &deleted, mode), SAI_E_NONE);
    swsdk_events_drain();
  }
  std::string send_to(int to, int from = 1, int port = 1) { return send(port, Frame(from, to).tag(10).type(0x9000)); }

  static constexpr uint32_t ports_3_and_4 = 1U << 2 | 1U << 3;  // a trunk's first bit is port 1
  const std::string to_3 = "3: 01>09 [10] 9000\n";
  const std::string flooded = "2: 01>09 [10] 9000\n3: 01>09 [10] 9000\n4: 01>09 [10] 9000\n";
};

TEST_F(Layer2, AnEntryLeadsFramesToItsPortUntilItIsDeleted) {
  EXPECT_EQ(send_to(9), flooded);
  add(9, 3, SAI_L2_MAC_STATIC);
  EXPECT_EQ(send_to(9), to_3);
  send_to(1, 9, 4);
  EXPECT_EQ(send_to(9), to_3) << "a static one does not move";
  del(entry(9), SAI_L2_DELETE_ENTRY);
  EXPECT_EQ(send_to(9), flooded);
}

TEST_F(Layer2, EveryWayToDeleteMakesFramesFloodAgain) {
  for (const uint8_t mode : {SAI_L2_DELETE_BY_PORT, SAI_L2_DELETE_BY_VLAN, SAI_L2_DELETE_BY_MAC}) {
    send_to(1, 9, 3);
    EXPECT_EQ(send_to(9), to_3);
    del(entry(9, 3), mode);
    EXPECT_EQ(send_to(9), flooded) << static_cast<int>(mode);
  }
  send_to(1, 9, 3);
  del(entry(9), 0);
  EXPECT_EQ(send_to(9), flooded);
  send_to(1, 9, 3);
  EXPECT_EQ(send_to(9), to_3);
  EXPECT_EQ(sai_l2_mac_init(0), SAI_E_NONE);
  EXPECT_EQ(send_to(9), flooded);
}

TEST_F(Layer2, AddressesAgeUnlessFramesComeFromThem) {
  EXPECT_EQ(sai_l2_mac_age_time_set(0, 10), SAI_E_NONE);
  send_to(1, 9, 3);
  for (int i = 0; i < 3; ++i) {
    swsdk_clock_step(0, 10);
    swsdk_events_drain();
    send_to(1, 9, 3);
  }
  EXPECT_EQ(send_to(9), to_3);
  swsdk_clock_step(0, 20);
  swsdk_events_drain();
  EXPECT_EQ(send_to(9), flooded);
}

TEST_F(Layer2, FramesToAnAddressKeepItWhenDestinationsCountToo) {
  EXPECT_EQ(sai_l2_mac_age_time_set(0, 10), SAI_E_NONE);
  const auto is_there_after_frames_to_it = [&] {
    send_to(1, 9, 3);
    for (int i = 0; i < 3; ++i) {
      send_to(9);
      swsdk_clock_step(0, 10);
      swsdk_events_drain();
    }
    return send_to(9) == to_3;
  };
  EXPECT_FALSE(is_there_after_frames_to_it());
  EXPECT_EQ(sai_l2_dst_hit_enable_set(0, 1), SAI_E_NONE);
  EXPECT_TRUE(is_there_after_frames_to_it());
}

TEST_F(Layer2, ALearnLimitKeepsFurtherAddressesFlooding) {
  sai_l2_learn_limit_t limit;
  sai_l2_mac_learn_limit_init(&limit);
  limit.flags = BCM_L2_LEARN_LIMIT_PORT;
  limit.port = 3;
  limit.limit = 1;
  EXPECT_EQ(sai_l2_mac_learn_limit_set(0, &limit), SAI_E_NONE);
  EXPECT_EQ(sai_l2_mac_learn_limit_enable(0), SAI_E_NONE);
  send_to(1, 8, 3);
  send_to(1, 9, 3);
  EXPECT_EQ(send_to(9), flooded);
  EXPECT_EQ(sai_l2_mac_learn_limit_disable(0), SAI_E_NONE);
  send_to(1, 9, 3);
  EXPECT_EQ(send_to(9), to_3);
}

TEST_F(Layer2, TheApplicationHearsOfAddressesThatFramesBring) {
  static int heard;
  heard = 0;
  const auto count = [](uint16_t, int, unsigned char*, int) { ++heard; };
  EXPECT_EQ(sai_register_l2_service(0, count), SAI_E_NONE);
  send_to(1, 9, 3);
  send_to(1, 9, 3);
  swsdk_events_drain();
  EXPECT_EQ(heard, 1);
  EXPECT_EQ(sai_unregister_l2_service(0, count), SAI_E_NONE);
  send_to(1, 9, 4);
  swsdk_events_drain();
  EXPECT_EQ(heard, 1);
}

TEST_F(Layer2, ATrunkIsOnePort) {
  int32_t trunk = 0;
  EXPECT_EQ(sai_trunk_create(0, 0, &trunk), SAI_E_NONE);
  EXPECT_EQ(send_to(9), flooded);
  EXPECT_EQ(sai_trunk_set(0, trunk, 9, ports_3_and_4, 2), SAI_E_NONE);
  const std::string through_trunk = send_to(9);
  EXPECT_TRUE(through_trunk == "2: 01>09 [10] 9000\n3: 01>09 [10] 9000\n" ||
              through_trunk == "2: 01>09 [10] 9000\n4: 01>09 [10] 9000\n")
      << through_trunk;
  send_to(1, 9, 4);
  swsdk_link_event(0, 4, 0);
  EXPECT_EQ(send_to(9), to_3) << "learned on the trunk, sent through the member that is left";
  EXPECT_EQ(sai_l2_addr_delete_by_trunk(0, trunk), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "2: 01>09 [10] 9000\n3: 01>09 [10] 9000\n");
  EXPECT_EQ(sai_trunk_destroy(0, trunk), SAI_E_NONE);
  swsdk_link_event(0, 4, 1);
  EXPECT_EQ(send_to(9), flooded);
}

TEST_F(Layer2, AddressesOfATrunkAreDeletedByItsNumber) {
  int32_t trunk = 0;
  EXPECT_EQ(sai_trunk_create(0, 0, &trunk), SAI_E_NONE);
  EXPECT_EQ(sai_trunk_set(0, trunk, 9, ports_3_and_4, 2), SAI_E_NONE);
  const auto copies = [&] {
    const std::string out = send_to(9);
    return std::count(out.begin(), out.end(), '\n');
  };
  send_to(1, 9, 4);
  EXPECT_EQ(copies(), 1);
  sai_l2_mac_entry_t deleted = entry(0);
  deleted.trunk = trunk;
  del(deleted, SAI_L2_DELETE_BY_TRUNK);
  EXPECT_EQ(copies(), 2);
}

TEST_F(Layer2, TrunksEndWithTheirModule) {
  for (const auto end : {sai_trunk_init, sai_trunk_detach}) {
    int32_t trunk = 0;
    EXPECT_EQ(sai_trunk_create(0, 0, &trunk), SAI_E_NONE);
    EXPECT_EQ(sai_trunk_set(0, trunk, 9, ports_3_and_4, 2), SAI_E_NONE);
    EXPECT_NE(send_to(9), flooded);
    EXPECT_EQ(end(0), SAI_E_NONE);
    EXPECT_EQ(send_to(9), flooded);
  }
}

TEST_F(Layer2, TheHashOfATrunkDecidesWhatGoesTogether) {
  constexpr int by_source_mac = 9;
  constexpr int by_destination_mac = 10;
  int32_t trunk = 0;
  EXPECT_EQ(sai_trunk_create(0, 0, &trunk), SAI_E_NONE);
  EXPECT_EQ(sai_trunk_set(0, trunk, by_destination_mac, ports_3_and_4, 2), SAI_E_NONE);
  send_to(1, 9, 3);
  const auto ports_for_many_sources = [&] {
    std::string ports;
    for (int source = 20; source < 40; ++source) {
      const char port = send_to(9, source)[0];
      if (ports.find(port) == std::string::npos) ports += port;
    }
    return ports.size();
  };
  EXPECT_EQ(ports_for_many_sources(), 1U);
  EXPECT_EQ(sai_trunk_psc_set(0, trunk, by_source_mac), SAI_E_NONE);
  EXPECT_EQ(ports_for_many_sources(), 2U);
}

TEST_F(Layer2, AMirrorSeesTheSidesOfItsSource) {
  add(9, 3, SAI_L2_MAC_STATIC);
  add(1, 1, SAI_L2_MAC_STATIC);
  EXPECT_EQ(sai_mirror_init(0), SAI_E_NONE);
  EXPECT_EQ(sai_mirror_dest_port_set(0, 1, 8), SAI_E_NONE);
  EXPECT_EQ(send_to(9), to_3);
  EXPECT_EQ(sai_mirror_source_port_set(0, 1, 1, SAI_MIRROR_INGRESS), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "8: 01>09 [10] 9000\n" + to_3);
  EXPECT_EQ(send_to(1, 9, 3), "1: 09>01 [10] 9000\n");
  EXPECT_EQ(sai_mirror_source_port_set(0, 1, 1, SAI_MIRROR_EGRESS), SAI_E_NONE);
  EXPECT_EQ(send_to(1, 9, 3), "8: 09>01 [10] 9000\n1: 09>01 [10] 9000\n");
  EXPECT_EQ(sai_mirror_source_port_unset(0, 1, 1, SAI_MIRROR_INGRESS), SAI_E_NONE);
  EXPECT_EQ(send_to(9), to_3);
  EXPECT_EQ(sai_mirror_source_port_unset(0, 1, 1, SAI_MIRROR_EGRESS), SAI_E_NONE);
  EXPECT_EQ(send_to(1, 9, 3), "1: 09>01 [10] 9000\n");
}

TEST_F(Layer2, AMirrorMovesToAnotherPortAndEnds) {
  add(9, 3, SAI_L2_MAC_STATIC);
  const auto mirror_port_1 = [] { return sai_mirror_source_port_set(0, 1, 1, SAI_MIRROR_INGRESS); };
  EXPECT_EQ(sai_mirror_init(0), SAI_E_NONE);
  EXPECT_EQ(sai_mirror_dest_port_set(0, 1, 8), SAI_E_NONE);
  EXPECT_EQ(mirror_port_1(), SAI_E_NONE);
  EXPECT_EQ(sai_mirror_dest_port_set(0, 1, 7), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "7: 01>09 [10] 9000\n" + to_3);
  EXPECT_NE(sai_mirror_dest_port_unset(0, 1, 7), SAI_E_NONE) << "it has a source";
  EXPECT_EQ(send_to(9), "7: 01>09 [10] 9000\n" + to_3);
  EXPECT_EQ(sai_mirror_source_port_unset(0, 1, 1, SAI_MIRROR_INGRESS), SAI_E_NONE);
  EXPECT_EQ(sai_mirror_dest_port_unset(0, 1, 7), SAI_E_NONE);
  EXPECT_EQ(mirror_port_1(), SAI_E_NOT_FOUND);
  EXPECT_EQ(send_to(9), to_3);
}

TEST_F(Layer2, MirrorsEndWhenTheyAreInitialized) {
  add(9, 3, SAI_L2_MAC_STATIC);
  EXPECT_EQ(sai_mirror_dest_port_set(0, 1, 8), SAI_E_NONE);
  EXPECT_EQ(sai_mirror_source_port_set(0, 1, 1, SAI_MIRROR_INGRESS), SAI_E_NONE);
  EXPECT_EQ(send_to(9), to_3) << "nothing is mirrored before";
  EXPECT_EQ(sai_mirror_init(0), SAI_E_NONE);
  EXPECT_EQ(send_to(9), to_3);
  EXPECT_EQ(sai_mirror_dest_port_set(0, 1, 8), SAI_E_NONE);
  EXPECT_EQ(sai_mirror_source_port_set(0, 1, 1, SAI_MIRROR_INGRESS), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "8: 01>09 [10] 9000\n" + to_3);
  EXPECT_EQ(sai_mirror_init(0), SAI_E_NONE);
  EXPECT_EQ(send_to(9), to_3);
}

TEST_F(Layer2, ASpanningTreeGroupBlocksItsVlansAlone) {
  constexpr int group = 5;
  vlan(20, {1, 3});
  EXPECT_EQ(sai_stg_create(0, group), SAI_E_NONE);
  EXPECT_EQ(sai_stg_vlan_add(0, group, 10), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "dropped: spanning tree\n") << "a new group's ports are disabled";
  for (const int port : {1, 2, 3}) EXPECT_EQ(sai_port_stg_stp_set(0, group, {port, 4}), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "2: 01>09 [10] 9000\n3: 01>09 [10] 9000\n");
  EXPECT_EQ(sai_port_stg_stp_set(0, group, {3, 1}), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "2: 01>09 [10] 9000\n");
  EXPECT_EQ(send(1, Frame(1, 9).tag(20).type(0x9000)), "3: 01>09 [20] 9000\n");
  EXPECT_EQ(sai_stg_vlan_del(0, group, 10), SAI_E_NONE);
  EXPECT_EQ(send_to(9), flooded);
  EXPECT_EQ(sai_stg_vlan_add(0, group, 10), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "2: 01>09 [10] 9000\n");
  EXPECT_EQ(sai_stg_vlan_del_all(0, group), SAI_E_NONE);
  EXPECT_EQ(send_to(9), flooded);
  EXPECT_EQ(sai_stg_vlan_add(0, group, 10), SAI_E_NONE);
  EXPECT_EQ(send_to(9), "2: 01>09 [10] 9000\n");
  EXPECT_EQ(sai_stg_destroy(0, group), SAI_E_NONE);
  EXPECT_EQ(send_to(9), flooded);
}

TEST_F(Layer2, TheStateOfAPortSaysWhetherItForwardsAndLearns) {
  constexpr int group = 1;  // that of VLANs of which nobody says otherwise
  const struct {
    uint32_t state;
    bool learns;
    bool forwards;
  } states[] = {{0, false, false}, {1, false, false}, {2, false, false}, {3, true, false}, {4, true, true}};
  for (const auto& [state, learns, forwards] : states) {
    EXPECT_EQ(sai_port_stg_stp_set(0, group, {3, state}), SAI_E_NONE);
    EXPECT_EQ(send_to(1, 9, 3) == "dropped: spanning tree\n", !forwards) << state;
    EXPECT_EQ(sai_port_stg_stp_set(0, group, {3, 4}), SAI_E_NONE);
    EXPECT_EQ(send_to(9), learns ? to_3 : flooded) << state;
    del(entry(9), SAI_L2_DELETE_BY_MAC);
  }
}

TEST_F(Layer2, TheDefaultGroupTakesNewVlansAndClearingTakesAllBack) {
  constexpr int group = 5;
  EXPECT_EQ(sai_stg_create(0, group), SAI_E_NONE);
  EXPECT_EQ(sai_stg_default_set(0, group), SAI_E_NONE);
  vlan(30, {1, 3});
  EXPECT_EQ(send(1, Frame(1, 9).tag(30).type(0x9000)), "dropped: spanning tree\n");
  EXPECT_EQ(sai_stg_init(0), SAI_E_NONE);
  EXPECT_EQ(send(1, Frame(1, 9).tag(30).type(0x9000)), "3: 01>09 [30] 9000\n");
  EXPECT_EQ(sai_stg_create(0, group), SAI_E_NONE);
  EXPECT_EQ(sai_stg_vlan_add(0, group, 30), SAI_E_NONE);
  EXPECT_EQ(send(1, Frame(1, 9).tag(30).type(0x9000)), "dropped: spanning tree\n");
  EXPECT_EQ(sai_stg_clear(0), SAI_E_NONE);
  EXPECT_EQ(send(1, Frame(1, 9).tag(30).type(0x9000)), "3: 01>09 [30] 9000\n");
}

}  // namespace
