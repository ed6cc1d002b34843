// The chip's tables for people, to the letter.
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/multicast.h>
#include <bcm/port.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

extern "C" int sdk_main(int argc, char** argv);

namespace {

/// A chip of three ports, whose tables are short.
class Show : public testing::Test {
 protected:
  Show() {
    swsdk_power_off();
    const swsdk_board small{.units = 1, .ports = 3, .chip_type = 0};
    swsdk_board_set(&small);
    sdk_main(0, nullptr);
    system_init(0);
  }
  ~Show() override { swsdk_power_off(); }

  static std::string shown(const char* table) {
    char text[2048] = "";
    EXPECT_LT(swsdk_show(0, table, text, sizeof text), long{sizeof text});
    return text;
  }
  static bcm_pbmp_t ports(std::initializer_list<int> list) {
    bcm_pbmp_t result;
    BCM_PBMP_CLEAR(result);
    for (const int port : list) BCM_PBMP_PORT_ADD(result, port);
    return result;
  }
};

TEST_F(Show, TellsWhatThereIsAtFirst) {
  EXPECT_EQ(shown("control"), "control  value\n");
  EXPECT_EQ(shown("filter"),
            "port  checks VLANs at  floods kept from the CPU\n"
            "0     -                -\n"
            "1     -                -\n"
            "2     -                -\n"
            "3     -                -\n");
  EXPECT_EQ(shown("l2cache"), "index  MAC  mask  flags\n");
  EXPECT_EQ(shown("led"),
            "processor  program  auto  state\n"
            "0          -        off   stopped\n"
            "1          -        off   stopped\n");
  EXPECT_EQ(shown("multicast"), "group  type  ports  encapsulation\n");
  EXPECT_EQ(shown("netif"), "id  name  MAC  type  flags\n");
  EXPECT_EQ(shown("port"),
            "port  kind     state  speed  duplex  tagged in  untagged in\n"
            "0     cpu      -      -      -       1          -\n"
            "1     gigabit  down   1000   full    -          1\n"
            "2     gigabit  down   1000   full    -          1\n"
            "3     gigabit  down   1000   full    -          1\n");
  EXPECT_EQ(shown("translation"), "direction  port  VLAN  becomes  priority\n");
  EXPECT_EQ(shown("vlan"),
            "VLAN  tagged  untagged  flags\n"
            "1     {0}     {1-3}     -\n");
}

TEST_F(Show, NamesItsTablesOnceInTheirOrder) {
  std::vector<std::string> names;
  for (int i = 0; swsdk_show_table(i) != nullptr; ++i) names.emplace_back(swsdk_show_table(i));
  EXPECT_EQ(std::adjacent_find(names.begin(), names.end(), std::greater_equal<>()), names.end());
  for (const char* name :
       {"control", "egress", "host", "interface", "ipmc", "multicast", "policer", "port", "route", "vlan", "vport"})
    EXPECT_TRUE(std::binary_search(names.begin(), names.end(), name)) << name;
}

TEST_F(Show, TellsAVlansMembersAndFlags) {
  const std::pair<bcm_vlan_t, uint32> vlans[] = {{10, 0}, {20, 0x1}, {30, 0x80001}, {4095, 0x80104}};
  for (const auto& [vid, flags] : vlans) {
    ASSERT_EQ(bcm_vlan_create(0, vid), BCM_E_NONE);
    bcm_vlan_control_vlan_t control;
    bcm_vlan_control_vlan_t_init(&control);
    control.flags = flags;
    bcm_vlan_control_vlan_set(0, vid, control);
  }
  bcm_vlan_port_add(0, 10, ports({0, 1, 3}), ports({3}));
  bcm_vlan_port_add(0, 20, ports({1, 3}), ports({3}));
  EXPECT_EQ(shown("vlan"),
            "VLAN  tagged  untagged  flags\n"
            "1     {0}     {1-3}     -\n"
            "10    {0-1}   {3}       -\n"
            "20    {1}     {3}       no-learn\n"
            "30    {}      {}        no-learn,no-l2-lookup\n"
            "4095  {}      {}        no-l2-lookup,0x104\n");
  bcm_vlan_port_remove(0, 1, ports({0}));
  EXPECT_EQ(shown("port"),
            "port  kind     state  speed  duplex  tagged in  untagged in\n"
            "0     cpu      -      -      -       10         -\n"
            "1     gigabit  down   1000   full    10,20      1\n"
            "2     gigabit  down   1000   full    -          1\n"
            "3     gigabit  down   1000   full    -          1,10,20\n");
}

TEST_F(Show, TellsTheControlsThatAreNotZero) {
  bcm_switch_control_set(0, bcmSwitchL3EgressMode, 1);
  bcm_switch_control_set(0, bcmSwitchDirectedMirroring, 0);
  bcm_switch_control_port_set(0, 1, bcmSwitchDhcpPktToCpu, 1);
  bcm_switch_control_port_set(0, 3, bcmSwitchDhcpPktToCpu, 2);
  bcm_switch_control_port_set(0, 2, bcmSwitchDhcpPktDrop, 0);
  EXPECT_EQ(shown("control"),
            "control            value\n"
            "DHCP to CPU        on ports {1,3}\n"
            "L3 egress objects  1\n");
}

TEST_F(Show, TellsAControlOfEachPortOnce) {
  bcm_switch_control_set(0, bcmSwitchArpRequestToCpu, 1);
  EXPECT_EQ(shown("control"),
            "control              value\n"
            "ARP requests to CPU  on ports {0-3}\n");
  for (const int port : {0, 1, 2, 3}) bcm_switch_control_port_set(0, port, bcmSwitchArpRequestToCpu, 0);
  EXPECT_EQ(shown("control"), "control  value\n");
}

TEST_F(Show, WidensItsColumnsForWhatIsInThem) {
  bcm_port_vlan_member_set(0, 1, BCM_PORT_VLAN_MEMBER_INGRESS | BCM_PORT_VLAN_MEMBER_EGRESS);
  bcm_port_flood_block_set(0, 2, 0, BCM_PORT_FLOOD_BLOCK_BCAST | BCM_PORT_FLOOD_BLOCK_UNKNOWN_MCAST);
  EXPECT_EQ(shown("filter"),
            "port  checks VLANs at  floods kept from the CPU\n"
            "0     -                -\n"
            "1     ingress,egress   -\n"
            "2     -                broadcast,unknown multicast\n"
            "3     -                -\n");

  bcm_l2_cache_addr_t bpdu;
  bcm_l2_cache_addr_t_init(&bpdu);
  bpdu.mac[0] = 1;
  bpdu.mac_mask[0] = 0xFF;
  bpdu.flags = BCM_L2_CACHE_BPDU;
  int index = 0;
  bcm_l2_cache_set(0, 100, &bpdu, &index);
  EXPECT_EQ(shown("l2cache"),
            "index  MAC                mask               flags\n"
            "100    01:00:00:00:00:00  ff:00:00:00:00:00  bpdu\n");

  int group = 4096;
  bcm_multicast_create(0, BCM_MULTICAST_TYPE_L2 | BCM_MULTICAST_WITH_ID, &group);
  EXPECT_EQ(shown("multicast"),
            "group  type  ports  encapsulation\n"
            "4096   L2    -      -\n");

  bcm_knet_netif_t netif;
  bcm_knet_netif_t_init(&netif);
  std::strcpy(netif.name, "ethv0");
  netif.flags = BCM_KNET_NETIF_F_KEEP_RX_TAG;
  bcm_knet_netif_create(0, &netif);
  EXPECT_EQ(shown("netif"),
            "id  name   MAC                type  flags\n"
            "1   ethv0  00:00:00:00:00:00  0     0x4\n");
}

TEST_F(Show, TellsTranslationsByDirection) {
  bcm_vlan_action_set_t action;
  bcm_vlan_action_set_t_init(&action);
  action.dt_outer = bcmVlanActionDelete;
  bcm_vlan_translate_egress_action_add(0, 5, 20, 10, &action);
  bcm_vlan_translate_egress_add(0, 2, 20, 10, 4);
  bcm_vlan_dtag_range_add(0, 1, 100, 200, 20, 7);
  bcm_vlan_translate_add(0, 3, 10, 20, 0);
  EXPECT_EQ(shown("translation"),
            "direction  port  VLAN     becomes                priority\n"
            "in         3     10       20                     0\n"
            "in         1     100-200  inner of 20            7\n"
            "out        2     20       10                     4\n"
            "out        5     20:10    without the outer tag  0\n");
}

TEST_F(Show, FillsEachSizeOfBufferAndTellsTheWholeLength) {
  for (int i = 0; swsdk_show_table(i) != nullptr; ++i) {
    const char* const table = swsdk_show_table(i);
    const std::string text = shown(table);
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, text.size() - 1, text.size(), text.size() + 1}) {
      std::vector<char> buffer(size + 2, '#');
      EXPECT_EQ(swsdk_show(0, table, buffer.data(), size), static_cast<long>(text.size()));
      const std::string expected = size == 0 ? "" : text.substr(0, size - 1) + '\0';
      EXPECT_EQ(std::string(buffer.data(), size), expected) << table << " " << size;
      EXPECT_EQ(buffer[size], '#') << table << " " << size;
    }
    EXPECT_EQ(swsdk_show(0, table, nullptr, 0), static_cast<long>(text.size()));
  }
}

TEST_F(Show, WorksOnAUnitThatIsAttachedAndOnNoOther) {
  for (const char* table : {"", "VLAN", "vlan ", "vlans", static_cast<const char*>(nullptr)})
    EXPECT_EQ(swsdk_show(0, table, nullptr, 0), -1);
  EXPECT_EQ(swsdk_show(-1, "vlan", nullptr, 0), -1);
  EXPECT_EQ(swsdk_show(1, "vlan", nullptr, 0), -1);
  swsdk_power_off();
  EXPECT_EQ(swsdk_show(0, "vlan", nullptr, 0), -1);
  sdk_main(0, nullptr);
  EXPECT_EQ(shown("vlan"),
            "VLAN  tagged  untagged  flags\n"
            "1     {0}     {1-12}    -\n");
}

}  // namespace
