#include <swsdk/fault.h>

#include <bcm/error.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <sai.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <set>
#include <sstream>
#include <string>

#include "support/scene.h"
#include "support/start.h"

namespace {

class Fault : public testing::Test {
 protected:
  Fault() { support::start_chip(); }
  ~Fault() override { swsdk_power_off(); }
};

TEST_F(Fault, MeetsTheNextCallOnce) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 1), 0);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_BUSY);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
}

TEST_F(Fault, MeetsTheNthCallOnce) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 3), 0);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_create(0, 11), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_create(0, 12), BCM_E_BUSY);
  EXPECT_EQ(bcm_vlan_create(0, 12), BCM_E_NONE);
}

TEST_F(Fault, MeetsEveryCallUntilItIsRemoved) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, SWSDK_FAULT_EVERY_CALL), 0);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_BUSY);
  swsdk_fault_clear();
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
}

std::string told(const char* function) {
  swsdk_fault fault{};
  if (swsdk_fault_get(function, &fault) != 0) return "none";
  return std::to_string(fault.code) + " nth " + std::to_string(fault.nth) + " hits " + std::to_string(fault.hits);
}

TEST_F(Fault, TellsWhichCallItWaitsForAndHowManyItHasHit) {
  EXPECT_EQ(told("bcm_vlan_create"), "none");
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 2), 0);
  EXPECT_EQ(told("bcm_vlan_create"), "-10 nth 2 hits 0");
  bcm_vlan_create(0, 10);
  EXPECT_EQ(told("bcm_vlan_create"), "-10 nth 1 hits 0");
  bcm_vlan_create(0, 11);
  EXPECT_EQ(told("bcm_vlan_create"), "-10 nth -1 hits 1");
  EXPECT_EQ(bcm_vlan_create(0, 11), BCM_E_NONE);
  EXPECT_EQ(told("bcm_vlan_create"), "-10 nth -1 hits 1");
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, SWSDK_FAULT_EVERY_CALL), 0);
  for (int i = 0; i < 5; ++i) bcm_vlan_create(0, 12);
  EXPECT_EQ(told("bcm_vlan_create"), "-10 nth 0 hits 5");
}

TEST_F(Fault, IsRemovedAloneAndForgotten) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 1), 0);
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_destroy", BCM_E_FULL, 1), 0);
  EXPECT_EQ(swsdk_fault_remove("bcm_vlan_create"), 0);
  EXPECT_EQ(swsdk_fault_remove("bcm_vlan_create"), -1);
  EXPECT_EQ(told("bcm_vlan_create"), "none");
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_destroy(0, 10), BCM_E_FULL);
}

TEST_F(Fault, RefusesNullForItsNameAndItsRecord) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 1), 0);
  swsdk_fault fault{};
  EXPECT_EQ(swsdk_fault_get(nullptr, &fault), -1);
  EXPECT_EQ(swsdk_fault_get("bcm_vlan_create", nullptr), -1);
  EXPECT_EQ(swsdk_fault_remove(nullptr), -1);
}

TEST_F(Fault, ChangesNothingAndWritesNoOutput) {
  int value = 77;
  ASSERT_EQ(swsdk_fault_inject("bcm_switch_control_get", BCM_E_FAIL, 1), 0);
  EXPECT_EQ(bcm_switch_control_get(0, bcmSwitchL3EgressMode, &value), BCM_E_FAIL);
  EXPECT_EQ(value, 77);
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_FAIL, 1), 0);
  bcm_vlan_create(0, 10);
  EXPECT_EQ(bcm_vlan_destroy(0, 10), BCM_E_NOT_FOUND);
}

TEST_F(Fault, MeetsOnlyItsFunction) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 1), 0);
  EXPECT_EQ(bcm_vlan_init(0), BCM_E_NONE);
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_init", BCM_E_FULL, 1), 0);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_BUSY);
  EXPECT_EQ(bcm_vlan_init(0), BCM_E_FULL);
}

TEST_F(Fault, NamesEveryFunctionThatItCanMeet) {
  std::set<std::string> names;
  for (int i = 0; swsdk_fault_function(i) != nullptr; ++i) {
    const std::string name = swsdk_fault_function(i);
    EXPECT_EQ(swsdk_fault_inject(name.c_str(), BCM_E_BUSY, 1), 0) << name;
    EXPECT_TRUE(names.insert(name).second) << name << " is named twice";
  }
  EXPECT_TRUE(names.contains("bcm_vlan_create"));
  EXPECT_TRUE(names.contains("sdk_main"));
  for (const char* none : {"swsdk_l2_learn", "bcm_l2_addr_t_init", "sai_vlan_create"}) {
    EXPECT_FALSE(names.contains(none)) << none;
    EXPECT_EQ(swsdk_fault_inject(none, BCM_E_BUSY, 1), -1) << none;
  }
  for (const int index : {-1, std::numeric_limits<int>::min()}) EXPECT_EQ(swsdk_fault_function(index), nullptr);
}

TEST_F(Fault, TakesThePlaceOfAnEarlierOne) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, SWSDK_FAULT_EVERY_CALL), 0);
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_FULL, 1), 0);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_FULL);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
}

TEST_F(Fault, AnswersAnyCode) {
  for (const int code : {0, 5, -22, -23, INT32_MIN}) {
    ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", code, 1), 0);
    EXPECT_EQ(bcm_vlan_create(0, 10), code);
  }
  EXPECT_EQ(bcm_vlan_destroy(0, 10), BCM_E_NOT_FOUND);
}

TEST_F(Fault, IsNotUsedUpByAUnitThatDoesNotExist) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 1), 0);
  EXPECT_EQ(bcm_vlan_create(5, 10), BCM_E_UNIT);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_BUSY);
}

TEST_F(Fault, ShowsInTheJournal) {
  swsdk_journal_record(1);
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 1), 0);
  bcm_vlan_create(0, 10);
  EXPECT_EQ(support::journal(), "bcm_vlan_create(0, 10) = -10\n");
}

TEST_F(Fault, IsLoggedWithTheFunctionOfTheLibraryIfTheEnvironmentNamesAFile) {
  const std::string path = testing::TempDir() + "faults." + std::to_string(getpid());
  setenv(SWSDK_FAULT_LOG_VARIABLE, path.c_str(), 1);
  swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 1);
  sai_vlan_create(0, 10);
  swsdk_fault_inject("bcm_vlan_port_add", BCM_E_BUSY, 1);
  sai_vlan_create(0, 10);
  swsdk_fault_inject("bcm_vlan_destroy", BCM_E_BUSY, 1);
  bcm_vlan_destroy(0, 10);
  bcm_vlan_destroy(0, 11);  // an ordinary failure
  unsetenv(SWSDK_FAULT_LOG_VARIABLE);
  swsdk_fault_inject("bcm_vlan_destroy", BCM_E_BUSY, 1);
  bcm_vlan_destroy(0, 10);

  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  EXPECT_EQ(text.str(),
            "bcm_vlan_create sai_vlan_create\n"
            "bcm_vlan_port_add sai_vlan_create\n"
            "bcm_vlan_destroy -\n");
  std::filesystem::remove(path);
}

TEST_F(Fault, IsRefusedForWhatIsNoSdkFunction) {
  for (const char* name : {"bcm_vlan_creat", "", "soc_ndev", "_shr_errmsg", "bcm_vlan_port_t_init", "swsdk_show",
                           "printf", "sai_vlan_create"})
    EXPECT_EQ(swsdk_fault_inject(name, BCM_E_FAIL, 1), -1) << name;
  EXPECT_EQ(swsdk_fault_inject(nullptr, BCM_E_FAIL, 1), -1);
}

TEST_F(Fault, IsRefusedForANegativeCountAndLeavesTheEarlierOne) {
  ASSERT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_BUSY, 1), 0);
  EXPECT_EQ(swsdk_fault_inject("bcm_vlan_create", BCM_E_FULL, -1), -1);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_BUSY);
}

}  // namespace
