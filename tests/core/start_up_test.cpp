#include <bcm/error.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/scene.h"
#include "support/start.h"

namespace {

constexpr uint8_t system_mac[6] = {0x00, 0x11, 0x22, 0x33, 0x44, 0x55};

const std::string led_failures =
    "log: errors: NONE: switch cmd [ led 0 load /usr/sbin/bcm956275k.hex ] error\n"
    "log, next line\n"
    "log: errors: NONE: switch cmd [ led 1 load /usr/sbin/bcm956275k.hex ] error\n"
    "log, next line\n";

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

/// Which ids the groups had and got hangs on the starts before.
std::string without_groups(const std::string& text) {
  return std::regex_replace(text, std::regex(R"((bcm_multicast_create\(\d, 0x400000), .*\))"), "$1)");
}

/// The journal of a start-up of one unit on which no board file is found, from sdk_main on.
std::string start_up_journal() {
  std::ifstream file(START_UP_JOURNAL);
  std::ostringstream text;
  text << file.rdbuf();
  return without_groups(text.str());
}

void replace_all(std::string& text, const std::string& old, const std::string& replacement) {
  for (std::size_t at = 0; (at = text.find(old, at)) != std::string::npos; at += replacement.size())
    text.replace(at, old.size(), replacement);
}

class StartUp : public support::Scene {
 protected:
  StartUp() { switch_off(); }

  static void switch_off(int units = 1, int ports = 12) {
    swsdk_power_off();
    const swsdk_board board{.units = units, .ports = ports, .chip_type = 0};
    ASSERT_EQ(swsdk_board_set(&board), 0);
  }

  /// What start-up does, and then what it prints.
  std::string observed() {
    return with_output([this] { return observe(start); });
  }

  std::string observed_failing(const std::string& function, int code, int nth) {
    return with_output([&] { return observe_failing(function.c_str(), code, start, nth); });
  }

  static int32_t start() { return sai_switch_chip_init(system_mac); }

 private:
  static std::string with_output(const std::function<std::string()>& run) {
    testing::internal::CaptureStdout();
    const std::string seen = run();
    const std::string printed = testing::internal::GetCapturedStdout();
    return without_groups(seen) + (printed.empty() ? "" : "printed: " + printed);
  }
};

TEST_F(StartUp, MakesEveryCallInItsOrder) { EXPECT_EQ(observed(), start_up_journal() + led_failures + "returned 0\n"); }

TEST_F(StartUp, WithoutAUnitStartsTheSdkAndNothingElse) {
  switch_off(0);
  EXPECT_EQ(observed(), "sdk_main(0, NULL) = 0\nreturned 0\n");
}

TEST_F(StartUp, BringsUpEveryUnitInTurn) {
  switch_off(2);
  const std::string first = start_up_journal();
  std::string second = first.substr(first.find('\n') + 1);  // sdk_main runs once
  replace_all(second, "(0", "(1");
  EXPECT_EQ(observed(), first + second + led_failures + led_failures + "returned 0\n");
}

TEST_F(StartUp, AUnitWhoseSystemInitFailsIsPassedOver) {
  switch_off(2);
  std::string second = start_up_journal();
  second = second.substr(second.find('\n') + 1);
  replace_all(second, "(0", "(1");
  EXPECT_EQ(observed_failing("system_init", BCM_E_INIT, 1),
            "sdk_main(0, NULL) = 0\n"
            "system_init(0) = -17\n" +
                second + led_failures + "returned 0\nprinted: Initialize firmware unit 0 failed.\r\n");
}

TEST_F(StartUp, ReturnsTheSystemInitCodeOfTheLastUnit) {
  switch_off(2);
  EXPECT_EQ(observed_failing("system_init", BCM_E_MEMORY, 2),
            start_up_journal() + "system_init(1) = -2\n" + led_failures +
                "returned -3\nprinted: Initialize firmware unit 1 failed.\r\n");
}

TEST_F(StartUp, APositiveSystemInitResultIsAFailureToo) {
  EXPECT_EQ(observed_failing("system_init", 1, 1),
            "sdk_main(0, NULL) = 0\nsystem_init(0) = 1\n"
            "returned -1\nprinted: Initialize firmware unit 0 failed.\r\n");
}

TEST_F(StartUp, TheRememberedStepOfTheLastUnitHidesThatOfTheFirst) {
  switch_off(2);
  EXPECT_TRUE(observed_failing("bcm_switch_control_set", BCM_E_FULL, 1).ends_with("returned 0\n"));
  switch_off(2);
  EXPECT_TRUE(observed_failing("bcm_switch_control_set", BCM_E_FULL, 4).ends_with("returned -13\n"));
}

TEST_F(StartUp, TrapsControlFramesOnFrontPortsUpToNumberEightAlone) {
  switch_off(1, 9);
  const std::string seen = observed();
  for (const char* control : {"22", "40", "43", "84", "86", "89", "94"}) {
    EXPECT_NE(seen.find("bcm_switch_control_port_set(0, 8, " + std::string(control) + ", 1)"), std::string::npos);
    EXPECT_EQ(seen.find("bcm_switch_control_port_set(0, 9, " + std::string(control) + ", 1)"), std::string::npos);
  }
  for (const char* call : {"bcm_port_vlan_member_set(0, 9, 0x3)", "bcm_port_flood_block_set(0, 9, 0, 0x6)",
                           "bcm_switch_control_port_set(0, 9, 100, 1)", "bcm_switch_control_port_set(0, 9, 103, 1)"})
    EXPECT_NE(seen.find(call), std::string::npos) << call;
}

TEST_F(StartUp, WalksTheEthernetPortsExceptForArpAndForVirtualPorts) {
  const struct {
    bool front;
    int last;
    const char* before;
    const char* after;
  } walks[] = {
      {false, 12, "bcm_port_vlan_member_set(0, ", ", 0x3) = 0"},
      {false, 8, "bcm_switch_control_port_set(0, ", ", 22, 1) = 0"},
      {false, 8, "bcm_switch_control_port_set(0, ", ", 89, 1) = 0"},
      {false, 8, "bcm_switch_control_port_set(0, ", ", 94, 1) = 0"},
      {false, 12, "bcm_port_flood_block_set(0, ", ", 0, 0x6) = 0"},
      {true, 8, "bcm_switch_control_port_set(0, ", ", 86, 1) = 0"},
      {true, 12, "bcm_vlan_port_add(0, 4095, {", "}, {}) = 0"},
  };
  for (const bool fewer_front_ports : {false, true}) {
    switch_off();
    support::attach_chip();
    (fewer_front_ports ? SOC_PORT_MAX(unit, port) : SOC_PORT_MAX(unit, ether)) = 3;
    const std::string seen = observed();
    for (const auto& [front, last, before, after] : walks) {
      for (int port = 1; port <= 12; ++port) {
        const bool walked = seen.find(before + std::to_string(port) + after) != std::string::npos;
        EXPECT_EQ(walked, port <= (front == fewer_front_ports ? 3 : last)) << before << port << after;
      }
    }
  }
}

/// Reads the log, and has the unit lose its ports above number 3 when a port is told of.
ssize_t lose_ports(void* /*cookie*/, const char* text, size_t size) {
  if (std::string_view(text, size).find("bcm_port_vlan_member_set failed") != std::string_view::npos)
    SOC_PORT_MAX(0, ether) = 3;
  return static_cast<ssize_t>(size);
}

TEST_F(StartUp, AWalkEndsAtWhatIsTheHighestPortByThen) {
  support::attach_chip();
  cookie_io_functions_t reader{};
  reader.write = lose_ports;
  FILE* const usual = std::exchange(sai_log_default->file, fopencookie(nullptr, "w", reader));
  const std::string seen = observed_failing("bcm_port_vlan_member_set", BCM_E_TIMEOUT, 2);
  fclose(std::exchange(sai_log_default->file, usual));
  EXPECT_NE(seen.find("bcm_port_vlan_member_set(0, 1, 0x3) = 0\n"
                      "bcm_port_vlan_member_set(0, 2, 0x3) = -9\n"
                      "bcm_port_vlan_member_set(0, 3, 0x3) = 0\n"
                      "bcm_l2_cache_delete_all(0) = 0\n"),
            std::string::npos)
      << seen;
}

/// What a failing call leaves in the log or on standard output, by the call as the journal shows it without its unit,
/// with P in place of the port's number.
const std::map<std::string, std::string> texts = {
    {"bcm_knet_netif_create", "bcm_knet_netif_create failed: "},
    {"bcm_port_vlan_member_set P", "port [P] bcm_port_vlan_member_set failed: "},
    {"bcm_l2_cache_delete_all", "bcm_l2_cache_delete_all failed: "},
    {"bcm_multicast_init", "bcm_multicast_init failed: "},
    {"bcm_mcast_init", "bcm_mcast_init failed: "},
    {"bcm_ipmc_enable", "bcm_ipmc_enable failed: "},
    {"bcm_ipmc_init", "bcm_ipmc_init failed: "},
    {"bcm_switch_control_set 364", "bcm_switch_control_set bcmSwitchIpmcSameVlanL3Route failed: "},
    {"bcm_vlan_control_set 5", "Failed to set unit 0 vlan translate mode failed: "},
    {"bcm_switch_control_port_set P 22", "Failed to set port [P] bcmSwitchNonIpL3ErrToCpu: "},
    {"bcm_switch_control_port_set P 43", "Failed to set port [P] bcmSwitchV4L3DstMissToCpu: "},
    {"bcm_switch_control_port_set P 40", "Failed to set port [P] bcmSwitchV6L3DstMissToCpu: "},
    {"bcm_switch_control_port_set P 89", "Failed to set port [P] bcmSwitchNdPktToCpu: "},
    {"bcm_switch_control_port_set P 94", "Failed to set port [P] bcmSwitchDhcpPktToCpu: "},
    {"bcm_l2_cache_set", "bcm_l2_cache_set failed: "},
    {"bcm_port_flood_block_set P", "Failed to set port [P] flooding: "},
    {"bcm_switch_control_port_set P 100", "Failed to set port [P] bcmSwitchV4ResvdMcPktFlood: "},
    {"bcm_switch_control_port_set P 103", "Failed to set port [P] bcmSwitchV6ResvdMcPktFlood: "},
    {"bcm_switch_control_port_set 0 100", "Failed to set CMIC bcmSwitchV4ResvdMcPktFlood: "},
    {"bcm_switch_control_port_set 0 103", "Failed to set CMIC bcmSwitchV6ResvdMcPktFlood: "},
    {"bcm_switch_control_port_set 0 101", "Failed to set CMIC bcmSwitchV6ResvdMcPktToCpu: "},
    {"bcm_switch_control_port_set P 84", "Failed to set port [P] bcmSwitchArpReplyToCpu: "},
    {"bcm_switch_control_port_set P 86", "Failed to set port [P] bcmSwitchArpRequestToCpu: "},
    {"bcm_switch_control_set 216", "printed: enable error: "},
    {"bcm_switch_ipv6_reserved_multicast_addr_multi_set",
     "printed: bcm_switch_ipv6_reserved_multicast_addr_multi_set: "},
    {"bcm_switch_control_set 230", "system set switch control bcmSwitchL3EgressMode failed: "},
    {"bcm_multicast_create", "bcm multicast create failed: "},
    {"bcm_vlan_create", "system create vlan 4095 failed: "},
    {"bcm_port_gport_get P", "get unit 0 port P failed: "},
    {"bcm_vlan_control_port_set P 2", "system set unit 0 port P packet control bcmVlanTranslateIngressEnable failed: "},
    {"bcm_vlan_control_port_set P 5", "system set unit 0 port P packet control bcmVlanTranslateEgressEnable failed: "},
    {"bcm_vlan_control_port_set P 14",
     "system set unit 0 port P packet control bcmVlanPortTranslateKeySecond failed: "},
    {"bcm_vlan_control_port_set P 15",
     "system set unit 0 port P packet control bcmVlanPortTranslateKeySecond failed: "},
    {"bcm_vlan_port_add", "system add port P to vlan 4095 failed: "},
};

/// A line of the journal, "function(0, first, second, …) = 0".
struct Line {
  explicit Line(const std::string& text) : function(text.substr(0, text.find('('))) {
    std::istringstream list(text.substr(function.size() + 1, text.rfind(')') - function.size() - 1));
    for (std::string argument; std::getline(list, argument, ',');)
      arguments.push_back(argument.substr(argument.find_first_not_of(' ')));
  }
  std::string function;
  std::vector<std::string> arguments;
};

/// The number of the port that a call is for: a port, the gport of one, or the set {port}.
std::string port_of(const Line& line) {
  if (line.function == "bcm_vlan_port_add") return line.arguments[2].substr(1, line.arguments[2].size() - 2);
  if (line.arguments.size() < 2) return "";
  constexpr unsigned long port_bits = 0x3FFFFFF;
  return std::to_string(std::strtoul(line.arguments[1].c_str(), nullptr, 10) & port_bits);
}

/// The text that is meant for the failure of that call, "log: …" or "printed: …", without the SDK's reason.
std::string text_of(const Line& line) {
  std::vector<std::string> keys = {line.function};
  if (line.arguments.size() > 1) keys.push_back(line.function + " " + line.arguments[1]);
  keys.push_back(line.function + " P");
  if (line.arguments.size() > 2) {
    keys.push_back(line.function + " " + line.arguments[1] + " " + line.arguments[2]);
    keys.push_back(line.function + " P " + line.arguments[2]);
  }
  for (const std::string& key : keys) {
    const auto found = texts.find(key);
    if (found == texts.end()) continue;
    std::string text = found->second;
    replace_all(text, "[P]", "[" + port_of(line) + "]");
    replace_all(text, "port P", "port " + port_of(line));
    return text.starts_with("printed: ") ? text : "log: errors: NONE: " + text;
  }
  return "";
}

/// How often each function was called.
std::map<std::string, int> counts(const std::string& seen) {
  std::map<std::string, int> result;
  for (const std::string& line : lines_of(seen))
    if (line.find('(') != std::string::npos && line.find(") = ") != std::string::npos) ++result[Line(line).function];
  return result;
}

TEST_F(StartUp, AFailingStepIsToldOnceAndAllOthersAreTaken) {
  const std::string journal = start_up_journal();
  std::map<std::string, int> nth;
  int steps = 0;
  for (const std::string& text : lines_of(journal)) {
    const Line line(text);
    ++nth[line.function];
    if (line.function == "sdk_main" || line.function == "system_init" || line.function == "sh_process_command")
      continue;  // what their failures change is shown by other tests
    SCOPED_TRACE(text);
    ++steps;
    switch_off();
    const std::string seen = observed_failing(line.function, BCM_E_TIMEOUT, nth[line.function]);
    EXPECT_EQ(counts(seen), counts(journal));

    const bool remembered = line.function == "bcm_switch_control_set" && line.arguments[1] == "364";
    EXPECT_NE(seen.find(remembered ? "returned -1\n" : "returned 0\n"), std::string::npos);

    std::string told;
    for (const std::string& said : lines_of(seen))
      if ((said.starts_with("log: ") && said.find("switch cmd") == std::string::npos) || said.starts_with("printed: "))
        told += said + '\n';
    std::string expected = text_of(line);
    if (line.function == "bcm_policer_init") {
      EXPECT_EQ(told, "");
      continue;
    }
    ASSERT_NE(expected, "");
    const bool in_vport_mode = expected.find("system ") != std::string::npos ||
                               line.function == "bcm_multicast_create" || line.function == "bcm_port_gport_get";
    expected += in_vport_mode ? "Operation took too long.\n" : "Operation took too long\n";
    if (line.function == "bcm_vlan_create")  // and without the VLAN no port can join it
      for (int port = 1; port <= 12; ++port)
        expected +=
            "log: errors: NONE: system add port " + std::to_string(port) + " to vlan 4095 failed: Entry not found.\n";
    EXPECT_EQ(told, expected);
  }
  EXPECT_GT(steps, 150);
}

TEST_F(StartUp, RunsAgainOnAChipThatIsUp) {
  observed();
  EXPECT_TRUE(observed().ends_with("returned 0\n"));
}

}  // namespace
