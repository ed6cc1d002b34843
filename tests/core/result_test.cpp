#include <appl/diag/shell.h>
#include <bcm/error.h>
#include <bcm/trunk.h>
#include <gtest/gtest.h>
#include <sai.h>
#include <shared/error.h>

#include <climits>
#include <map>
#include <string>

#include "support/scene.h"

namespace {

using Result = support::Scene;

TEST(SdkToSai, GivesTheCodesThatTheLibraryHasACodeFor) {
  EXPECT_EQ(sdk_to_sai(BCM_E_NONE), 0);
  EXPECT_EQ(sdk_to_sai(BCM_E_MEMORY), -3);
  EXPECT_EQ(sdk_to_sai(BCM_E_PARAM), -5);
  EXPECT_EQ(sdk_to_sai(BCM_E_FULL), -13);
  EXPECT_EQ(sdk_to_sai(BCM_E_NOT_FOUND), -7);
  EXPECT_EQ(sdk_to_sai(BCM_E_EXISTS), -6);
  EXPECT_EQ(sdk_to_sai(BCM_E_UNAVAIL), -2);
  EXPECT_EQ(sdk_to_sai(BCM_E_PORT), -9);
}

TEST(SdkToSai, GivesFailureForEveryOtherValue) {
  for (const int rv : {-1,  -3,  -5,  -9,  -10,   -11, -12, -13, -14, -15,     -17,    -19,
                       -20, -21, -22, -23, -1000, 1,   5,   22,  23,  INT_MIN, INT_MAX})
    EXPECT_EQ(sdk_to_sai(rv), -1) << rv;
}

TEST(SaiHashToSdk, MapsTheSelectorsThatHaveACriterion) {
  const std::map<uint32_t, int32_t> criteria{
      {0, BCM_TRUNK_PSC_SRCIP},   {1, BCM_TRUNK_PSC_DSTIP},     {9, BCM_TRUNK_PSC_SRCMAC},
      {10, BCM_TRUNK_PSC_DSTMAC}, {18, BCM_TRUNK_PSC_SRCDSTIP}, {19, BCM_TRUNK_PSC_SRCDSTMAC},
  };
  for (uint32_t selector = 0; selector < 20; ++selector) {
    const auto found = criteria.find(selector);
    EXPECT_EQ(sai_hash_to_sdk(selector), found == criteria.end() ? 0 : found->second) << selector;
  }
}

TEST(SaiHashToSdk, GivesZeroPastTheLastSelector) {
  EXPECT_EQ(sai_hash_to_sdk(20), 0);
  EXPECT_EQ(sai_hash_to_sdk(21), 0);
  EXPECT_EQ(sai_hash_to_sdk(UINT32_MAX), 0);
}

TEST(SaiUnitGet, IsUnitZero) { EXPECT_EQ(sai_unit_get(), 0); }

TEST_F(Result, AFailureIsLoggedWithTheSdksTextOfItsCode) {
  for (int rv = -22; rv < 0; ++rv) {
    EXPECT_EQ(observe_failing("bcm_vlan_init", rv, [] { return sai_vlan_init(unit); }),
              "bcm_vlan_init(0) = " + std::to_string(rv) + "\nlog: errors: NONE: Failed to init vlan: " +
                  _shr_errmsg[-rv] + "\nreturned " + std::to_string(sdk_to_sai(rv)) + "\n");
  }
}

TEST_F(Result, AnUnknownFailureIsLoggedWithTheSdksTextForUnknownErrors) {
  for (const int rv : {-23, -24, -1000, INT_MIN}) {
    EXPECT_EQ(observe_failing("bcm_vlan_init", rv, [] { return sai_vlan_init(unit); }),
              "bcm_vlan_init(0) = " + std::to_string(rv) +
                  "\nlog: errors: NONE: Failed to init vlan: Unknown error\nreturned -1\n");
  }
}

TEST_F(Result, APositiveSdkResultIsNoFailureToLogButIsReturnedAsOne) {
  EXPECT_EQ(observe_failing("bcm_vlan_init", 5, [] { return sai_vlan_init(unit); }),
            "bcm_vlan_init(0) = 5\n"
            "returned -1\n");
}

TEST_F(Result, TheShellGetsUnitAndCommandAsTheyAre) {
  char command[] = "help \"x\"";
  EXPECT_EQ(observe_failing("sh_process_command", CMD_OK, [&] { return sai_sh_process_command(unit, command); }),
            "sh_process_command(0, \"help \\\"x\\\"\") = 0\n"
            "returned 0\n");
}

TEST_F(Result, TheShellReturnsMinusOneForEveryResultButZeroAndLogsNothing) {
  char command[] = "led 0 start";
  for (const int rv : {-1, -2, -3, -4, -5, -6, -16, 1, 7}) {
    EXPECT_EQ(observe_failing("sh_process_command", rv, [&] { return sai_sh_process_command(unit, command); }),
              "sh_process_command(0, \"led 0 start\") = " + std::to_string(rv) + "\nreturned -1\n");
  }
}

}  // namespace
