#include <sstream>
#include <vector>

#include "vport/virtual_ports.h"

namespace {

using vport::record;
using vport::stacked_with_outer;

class VirtualPortFailures : public vport::Scene {
 protected:
  VirtualPortFailures() { vport::all_well(); }

  /// What `call` did while every call of `function` failed.
  std::string failing(const char* function, const std::function<int32_t()>& call) {
    vport::all_well();
    return without_lines(observe_failing(function, BCM_E_FULL, call, SWSDK_FAULT_EVERY_CALL));
  }

  /// `calls` with every one of `function` failing so.
  static std::string but_failing(const std::string& calls, const std::string& function) {
    std::istringstream lines(calls);
    std::string result;
    for (std::string line; std::getline(lines, line); result += line + '\n') {
      if (!line.starts_with(function + '(')) continue;
      line = std::regex_replace(line, std::regex("&[^)]*\\)"), "&?)");
      line.replace(line.rfind("= 0"), 3, "= -6");
    }
    return result;
  }
};

struct Failure {
  const char* function;
  const char* message;
  int times = 1;
  int result = 0;
};

const Failure create_failures[] = {
    {"bcm_vlan_port_create", "sai_vport_create LINE bcm_vlan_port_create vlan_port_id 0x0 failed: Table is full\n"},
    {"bcm_vlan_gport_add", "sai_vport_create LINE bcm_vlan_gport_add failed: Table is full\n"},
    {"bcm_vlan_translate_egress_action_delete",
     "sai_vport_create LINE bcm_vlan_translate_egress_action_delete failed: Table is full\n"},
    {"bcm_vlan_translate_egress_action_add",
     "sai_vport_create LINE bcm_vlan_translate_egress_action_add failed: Table is full\n", 1, -13},
    {"bcm_multicast_vlan_encap_get",
     "Failed to bcm_multicast_vlan_encap_get sai_unicast_group 0x1: Table is full\n"
     "log: errors: NONE: Failed to bcm_multicast_vlan_encap_get sai_multicast_group 0x2: Table is full\n"
     "log: errors: NONE: Failed to bcm_multicast_vlan_encap_get sai_broadcast_group 0x3: Table is full\n"},
    {"bcm_multicast_l2_encap_get",
     "Failed to bcm_multicast_l2_encap_get sai_unicast_group 0x1: Table is full\n"
     "log: errors: NONE: Failed to bcm_multicast_l2_encap_get sai_multicast_group 0x2: Table is full\n"
     "log: errors: NONE: Failed to bcm_multicast_l2_encap_get sai_broadcast_group 0x3: Table is full\n",
     2},
    {"bcm_multicast_egress_add",
     "Failed to bcm_multicast_egress_add sai_unicast_group 0x1: Table is full\n"
     "log: errors: NONE: Failed to bcm_multicast_egress_add sai_multicast_group 0x2: Table is full\n"
     "log: errors: NONE: Failed to bcm_multicast_egress_add sai_broadcast_group 0x3: Table is full\n",
     3},
    {"bcm_vlan_control_vlan_get",
     "sai_vlan_control_vlan_set LINE bcm vlan control vlan get failed Table is full.\nlog, next line\n"},
    {"bcm_vlan_control_vlan_set",
     "sai_vlan_control_vlan_set LINE bcm vlan control vlan set failed Table is full.\nlog, next line\n"},
};

TEST_F(VirtualPortFailures, NoFailedStepOfACreateKeepsTheNextFromItsTurnAndOneShowsInTheResult) {
  for (const auto& [function, message, times, result] : create_failures) {
    ASSERT_EQ(bcm_vlan_control_vlan_set(unit, 40, {}), BCM_E_NONE);
    sai_vport_t vport = stacked_with_outer;
    std::string messages;
    for (int i = 0; i < times; ++i) messages += std::string("log: errors: NONE: ") + message;
    EXPECT_EQ(failing(function, [&] { return sai_vport_create(unit, 1, &vport); }),
              but_failing(vport::stacked_with_outer_calls, function) + vport::stacked_with_outer_trace + messages +
                  "returned " + std::to_string(result) + '\n')
        << function;
    EXPECT_EQ(vport.vport_id, 0) << function;
  }
}

TEST_F(VirtualPortFailures, APortWithoutAGportIsTakenAsPort0) {
  sai_vport_t vport = stacked_with_outer;
  const std::string seen = failing("bcm_port_gport_get", [&] { return sai_vport_create(unit, 1, &vport); });
  EXPECT_TRUE(
      seen.starts_with("bcm_port_gport_get(0, 1, &?) = -6\n"
                       "bcm_vlan_port_create(0, {criteria=4, flags=0x84, match_vlan=10, match_inner_vlan=20, "
                       "port=67108864, "));
  EXPECT_NE(seen.find("bcm_multicast_vlan_encap_get(0, 1, 67108864, 0, &0) = 0\n"
                      "bcm_multicast_egress_add(0, 1, 67108864, 0) = 0\n"),
            std::string::npos);
  EXPECT_TRUE(
      seen.ends_with("log: errors: NONE: sai_vport_create failed: Table is full\n"
                     "log: debugging: NONE: vlan_port.port = 0x4000000 match 10 inner 20 egress 40\n"
                     "log, next line\n"
                     "returned 0\n"));
}

TEST_F(VirtualPortFailures, WithoutTheUntaggedVlanNothingIsMade) {
  for (const sai_vport_t& without_inner : {record({.vlan = 30, .outer_vlan = 40}), record({.vlan = 30}), record({})}) {
    sai_vport_t vport = without_inner;
    EXPECT_EQ(failing("bcm_port_untagged_vlan_get", [&] { return sai_vport_create(unit, 1, &vport); }),
              "bcm_port_untagged_vlan_get(0, 1, &?) = -6\n"
              "log: errors: NONE: sai_vport_create LINE bcm_port_untagged_vlan_get failed: Table is full\n"
              "returned -13\n");
    EXPECT_EQ(vport.vport_id, -1);
  }
}

TEST_F(VirtualPortFailures, OnlyTwoTagsMadeOneNameTheVlanThatIsNotJoined) {
  const struct {
    vport::Given given;
    const char* text;
  } rows[] = {
      {{.match_inner_vlan = 20, .vlan = 30}, "bcm_vlan_gport_add vlan 30 port 0x0 failed"},
      {{.match_inner_vlan = 20}, "bcm_vlan_gport_add failed"},
      {{.vlan = 30, .outer_vlan = 40}, "bcm_vlan_gport_add failed"},
      {{.vlan = 30}, "bcm_vlan_gport_add failed"},
      {{}, "bcm_vlan_gport_add failed"},
  };
  for (const auto& [given, text] : rows) {
    sai_vport_t vport = record(given);
    EXPECT_NE(failing("bcm_vlan_gport_add", [&] { return sai_vport_create(unit, 1, &vport); })
                  .find(std::string("log: errors: NONE: sai_vport_create LINE ") + text + ": Table is full\n"),
              std::string::npos);
  }
}

TEST_F(VirtualPortFailures, OnAUnitThatIsNotThereEveryStepIsTriedButThoseOfItsPorts) {
  swsdk_fault_clear();
  sai_vport_t vport = stacked_with_outer;
  EXPECT_EQ(without_lines(observe([&] { return sai_vport_create(7, 1, &vport); })),
            "bcm_port_gport_get(7, 1, &?) = -3\n"
            "bcm_vlan_port_create(7, {criteria=4, flags=0x84, match_vlan=10, match_inner_vlan=20, port=67108864, "
            "egress_vlan=40, egress_inner_vlan=30, ingress_network_group_id=3, egress_network_group_id=3}) = -3\n"
            "bcm_vlan_gport_add(7, 40, 0, 0x0) = -3\n"
            "bcm_vlan_translate_egress_action_delete(7, 0, 40, 0) = -3\n"
            "bcm_vlan_translate_egress_action_add(7, 0, 40, 30, {new_outer_vlan=10, new_inner_vlan=20, dt_outer=2, "
            "dt_inner=2, dt_inner_pkt_prio=4}) = -3\n"
            "bcm_multicast_vlan_encap_get(7, 1, 67108864, 0, &?) = -3\n"
            "bcm_multicast_egress_add(7, 1, 67108864, 0) = -3\n"
            "bcm_multicast_vlan_encap_get(7, 2, 67108864, 0, &?) = -3\n"
            "bcm_multicast_egress_add(7, 2, 67108864, 0) = -3\n"
            "bcm_multicast_vlan_encap_get(7, 3, 67108864, 0, &?) = -3\n"
            "bcm_multicast_egress_add(7, 3, 67108864, 0) = -3\n"
            "bcm_vlan_control_vlan_get(7, 40, &?) = -3\n"
            "bcm_vlan_control_vlan_set(7, 40, {broadcast_group=3, unknown_multicast_group=2, "
            "unknown_unicast_group=1}) = -3\n"
            "log: errors: NONE: sai_vport_create failed: No such unit\n"
            "log: debugging: NONE: vlan_port.port = 0x4000000 match 10 inner 20 egress 40\n"
            "log, next line\n"
            "log: errors: NONE: sai_vport_create LINE bcm_vlan_port_create vlan_port_id 0x0 failed: No such unit\n"
            "log: errors: NONE: sai_vport_create LINE bcm_vlan_gport_add failed: No such unit\n"
            "log: errors: NONE: sai_vport_create LINE bcm_vlan_translate_egress_action_delete failed: No such unit\n"
            "log: errors: NONE: sai_vport_create LINE bcm_vlan_translate_egress_action_add failed: No such unit\n"
            "log: errors: NONE: Failed to bcm_multicast_vlan_encap_get sai_unicast_group 0x1: No such unit\n"
            "log: errors: NONE: Failed to bcm_multicast_egress_add sai_unicast_group 0x1: No such unit\n"
            "log: errors: NONE: Failed to bcm_multicast_vlan_encap_get sai_multicast_group 0x2: No such unit\n"
            "log: errors: NONE: Failed to bcm_multicast_egress_add sai_multicast_group 0x2: No such unit\n"
            "log: errors: NONE: Failed to bcm_multicast_vlan_encap_get sai_broadcast_group 0x3: No such unit\n"
            "log: errors: NONE: Failed to bcm_multicast_egress_add sai_broadcast_group 0x3: No such unit\n"
            "log: errors: NONE: sai_vlan_control_vlan_set LINE bcm vlan control vlan get failed No such unit.\n"
            "log, next line\n"
            "log: errors: NONE: sai_vlan_control_vlan_set LINE bcm vlan control vlan set failed No such unit.\n"
            "log, next line\n"
            "returned -1\n");
}

TEST_F(VirtualPortFailures, EachNamesTheSourceLineThatItAroseIn) {
  swsdk_fault_clear();
  sai_vport_t vport = stacked_with_outer;
  const std::string seen = observe([&] {
    sai_vport_create(7, 1, &vport);
    return sai_vport_destroy(7, 1, &vport);
  });
  for (const auto& [function, count] : {std::pair{"create", 4}, std::pair{"destroy", 5}}) {
    const std::regex line(std::string("NONE: sai_vport_") + function + " (\\d+) ");
    std::vector<int> lines;
    for (auto match = std::sregex_iterator(seen.begin(), seen.end(), line); match != std::sregex_iterator(); ++match)
      lines.push_back(std::stoi((*match)[1]));
    EXPECT_EQ(lines.size(), static_cast<size_t>(count));
    EXPECT_GT(lines.front(), 1);
    for (size_t i = 1; i < lines.size(); ++i) EXPECT_GT(lines[i], lines[i - 1]) << function;
  }
}

const Failure destroy_failures[] = {
    {"bcm_vlan_translate_egress_action_delete",
     "sai_vport_destroy LINE bcm_vlan_translate_egress_action_delete failed: Table is full\n"},
    {"bcm_vlan_translate_egress_action_add",
     "sai_vport_destroy LINE bcm_vlan_translate_egress_action_add failed: Table is full\n"},
    {"bcm_vlan_gport_delete", "sai_vport_destroy LINE bcm_vlan_gport_delete failed: Table is full\n"},
    {"bcm_l2_addr_delete_by_port", "sai_vport_destroy LINE bcm_l2_addr_delete_by_port failed: Table is full\n"},
    {"bcm_vlan_port_destroy", "sai_vport_destroy LINE bcm_vlan_port_destroy failed: Table is full\n", 1, -13},
};

TEST_F(VirtualPortFailures, NoFailedStepOfADestroyKeepsTheNextFromItsTurnAndTheLastOneShowsInTheResult) {
  const std::string calls =
      "bcm_vlan_translate_egress_action_delete(0, 1140850689, 40, 30) = 0\n"
      "bcm_vlan_translate_egress_action_add(0, 1140850689, 40, 0, {}) = 0\n"
      "bcm_vlan_gport_delete(0, 40, 1140850689) = 0\n"
      "bcm_l2_addr_delete_by_port(0, 0, 1140850689, 0x0) = 0\n"
      "bcm_vlan_port_destroy(0, 1140850689) = 0\n";
  for (const auto& [function, message, times, result] : destroy_failures) {
    sai_vport_t vport = stacked_with_outer;
    vport.vport_id = 0x44000001;
    EXPECT_EQ(failing(function, [&] { return sai_vport_destroy(unit, 1, &vport); }),
              but_failing(calls, function) + "log: errors: NONE: " + message +
                  (result == 0 ? "log: debugging: NONE: vport destroy success\n" : "") + "returned " +
                  std::to_string(result) + '\n')
        << function;
  }
}

}  // namespace
