// What all entry points of the SDK have in common.
#include <bcm/error.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>
#include <swsdk/recording.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <set>
#include <string>

#include "support/scene.h"
#include "support/start.h"

namespace {

/// Every function that the interface headers declare.
constexpr const char* functions[] = {
#include "swsdk_functions.inc"
};

/// Beside these, functions without a public header.
constexpr const char* undeclared[] = {"sdk_main", "bcm_esw_vlan_ip4_mcast_flood_set",
                                      "bcm_esw_vlan_ip6_mcast_flood_set"};

const std::set<std::string> without_unit = {"soc_knet_cmd_req"};
/// What these are asked for with zeros is a control or a type of packet that the chip does not have.
const std::set<std::string> without_number_zero = {"bcm_field_qualify_IpType", "bcm_switch_control_port_set",
                                                   "bcm_switch_control_set", "bcm_vlan_control_set"};
const std::set<std::string> without_result = {"soc_linkscan_pause", "soc_linkscan_continue"};

bool is_initializer(const std::string& name) { return name.ends_with("_t_init"); }

/// These take records by value, which are on the stack, or on Arm where an argument points to.
const std::set<std::string> with_records = {"bcm_field_group_create", "bcm_field_qualify_InPorts",
                                            "bcm_port_egress_set",    "bcm_vlan_control_vlan_set",
                                            "bcm_vlan_port_add",      "bcm_vlan_port_remove"};

struct Records {
  std::array<char, 1024> bytes;
};

/// Calls a function of any signature with a unit and zeros; the calling convention leaves what is too much alone.
int call(const char* name, int unit) {
  void* const symbol = dlsym(RTLD_DEFAULT, name);
  if (symbol == nullptr) throw std::runtime_error(std::string(name) + " is missing");
  if (with_records.contains(name)) {
    Records zeros{};
    using WithRecords = int (*)(int, void*, void*, void*, void*, void*, Records);
    return reinterpret_cast<WithRecords>(symbol)(unit, &zeros, &zeros, &zeros, &zeros, &zeros, zeros);
  }
  using Any = int (*)(int, void*, void*, void*, void*, void*, void*, void*);
  return reinterpret_cast<Any>(symbol)(unit, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}

class EntryPoints : public testing::Test {
 protected:
  ~EntryPoints() override { swsdk_power_off(); }

  /// Checks that each function with a unit answers `code` and writes one journal line that tells so.
  static void expect_each_answers(int unit, int code) {
    swsdk_journal_record(1);
    for (const std::string name : functions) {
      if (is_initializer(name) || without_unit.contains(name) || name == "system_init") continue;
      swsdk_journal_clear();
      const int rv = call(name.c_str(), unit);
      EXPECT_TRUE(rv == code || without_result.contains(name)) << name << ": " << rv;
      const std::string line = support::journal();
      EXPECT_TRUE(line.starts_with(name + "(" + std::to_string(unit))) << name << ": " << line;
      EXPECT_TRUE(line.ends_with(") = " + std::to_string(code) + "\n")) << name << ": " << line;
      EXPECT_EQ(line.find('\n'), line.size() - 1) << name << ": " << line;
    }
  }
};

TEST_F(EntryPoints, AreAllThere) {
  EXPECT_GE(std::size(functions), 240U);
  for (const char* name : functions) EXPECT_NE(dlsym(RTLD_DEFAULT, name), nullptr) << name;
  for (const char* name : undeclared) EXPECT_NE(dlsym(RTLD_DEFAULT, name), nullptr) << name;
}

TEST_F(EntryPoints, RefuseAUnitThatDoesNotExist) {
  support::start_chip();
  expect_each_answers(7, BCM_E_UNIT);
}

TEST_F(EntryPoints, AnswerNotInitializedBeforeTheSystemIs) {
  support::attach_chip();
  expect_each_answers(0, BCM_E_INIT);
}

TEST_F(EntryPoints, AreAllModeled) {
  support::start_chip();
  for (const std::string name : functions) {
    if (is_initializer(name) || without_number_zero.contains(name)) continue;
    EXPECT_NE(call(name.c_str(), 0), BCM_E_UNAVAIL) << name;
  }
}

TEST_F(EntryPoints, CanEachBeMadeToFail) {
  support::start_chip();
  for (const std::string name : functions) {
    const int accepted = swsdk_fault_inject(name.c_str(), -77, SWSDK_FAULT_EVERY_CALL);
    EXPECT_EQ(accepted, is_initializer(name) ? -1 : 0) << name;
  }
  expect_each_answers(0, -77);
}

TEST_F(EntryPoints, CanEachBeRecordedAndRepeated) {
  const std::string path = testing::TempDir() + "entry_points_" + std::to_string(getpid()) + ".rec";
  swsdk_power_off();
  ASSERT_EQ(swsdk_record_start(path.c_str()), 0);
  support::start_chip();
  for (const std::string name : functions)
    if (!is_initializer(name)) call(name.c_str(), 0);
  for (const char* name : undeclared) call(name, 0);
  EXPECT_EQ(swsdk_record_stop(), 0);
  const auto tell = [](const char* line, void*) { ADD_FAILURE() << line; };
  EXPECT_EQ(swsdk_replay(path.c_str(), tell, nullptr), SWSDK_REPLAY_SAME);
  const auto ignore = [](const char*, void*) {};
  EXPECT_EQ(swsdk_replay_as_c(path.c_str(), ignore, tell, nullptr), SWSDK_REPLAY_SAME);
  std::filesystem::remove(path);
}

}  // namespace
