#include <cstddef>
#include <string>

#include "support/one_call.h"

namespace {

using SpanningTree = support::OneCall;

// The records that callers share with other libraries.
static_assert(sizeof(sai_port_stg_state_t) == 8);
static_assert(offsetof(sai_port_stg_state_t, port) == 0 && offsetof(sai_port_stg_state_t, state) == 4);
static_assert(sizeof(sai_port_stg_t) == 16);
static_assert(offsetof(sai_port_stg_t, stg) == 0 && offsetof(sai_port_stg_t, port) == 8);
static_assert(offsetof(sai_port_stg_t, state) == 12);

TEST_F(SpanningTree, FunctionsThatAreOneCall) {
  expect({
      {[] { return sai_stg_init(unit); }, "bcm_stg_init(0)", "Failed to init stg"},
      {[] { return sai_stg_default_set(unit, 3); }, "bcm_stg_default_set(0, 3)", "Failed to set default stg 3"},
      {[] { return sai_stg_create(unit, 3); }, "bcm_stg_create_id(0, 3)", "Failed to create stg 3"},
      {[] { return sai_stg_destroy(unit, 3); }, "bcm_stg_destroy(0, 3)", "Failed to destroy stg 3"},
      {[] { return sai_stg_vlan_add(unit, 3, 10); }, "bcm_stg_vlan_add(0, 3, 10)", "Failed to adding vlan 10 to stg 3"},
      {[] { return sai_stg_vlan_del(unit, 3, 10); }, "bcm_stg_vlan_remove(0, 3, 10)",
       "Failed to delete vlan 10 to stg 3"},
      {[] { return sai_stg_vlan_del_all(unit, 3); }, "bcm_stg_vlan_remove_all(0, 3)",
       "Failed to delete vlan from stg 3"},
      {[] { return sai_stg_clear(unit); }, "bcm_stg_clear(0)", "Failed to clear stg"},
  });
}

TEST_F(SpanningTree, AnotherUnitIsHandedOn) {
  EXPECT_EQ(observe([] { return sai_stg_create(5, 3); }),
            "bcm_stg_create_id(5, 3) = -3\n"
            "log: errors: NONE: Failed to create stg 3: No such unit\n"
            "returned -1\n");
}

TEST_F(SpanningTree, StatesGoThroughUncheckedAndTheMessageShowsThemUnsigned) {
  expect({
      {[] { return sai_port_stg_stp_set(unit, 3, {.port = 5, .state = 4}); }, "bcm_stg_stp_set(0, 3, 5, 4)",
       "Failed to set stg [3] port [5] state (4)"},
      {[] { return sai_port_stg_stp_set(unit, 3, {.port = -5, .state = 0xFFFFFFFF}); }, "bcm_stg_stp_set(0, 3, -5, -1)",
       "Failed to set stg [3] port [-5] state (4294967295)"},
  });
}

TEST_F(SpanningTree, DefaultGetThatFailsLeavesTheIdAndNamesItsPointer) {
  int32_t stg = 77;
  EXPECT_EQ(observe_failing("bcm_stg_default_get", BCM_E_INTERNAL, [&] { return sai_stg_default_get(unit, &stg); }),
            "bcm_stg_default_get(0, &?) = -1\n"
            "log: errors: NONE: Failed to get default stg " +
                support::low_word(&stg) +
                ": Internal error\n"
                "returned -1\n");
  EXPECT_EQ(stg, 77);
}

TEST_F(SpanningTree, CountGetThatFailsLeavesTheCount) {
  int32_t count = 77;
  EXPECT_EQ(observe_failing("bcm_stg_count_get", BCM_E_UNAVAIL, [&] { return sai_stg_count_get(unit, &count); }),
            "bcm_stg_count_get(0, &?) = -16\n"
            "log: errors: NONE: Failed to get stg count: Not available on this chip\n"
            "returned -2\n");
  EXPECT_EQ(count, 77);
}

TEST_F(SpanningTree, OutputsThatTheSdkDoesNotWriteAreZero) {
  int32_t stg = 77;
  int32_t count = 77;
  EXPECT_EQ(observe_failing("bcm_stg_default_get", BCM_E_NONE, [&] { return sai_stg_default_get(unit, &stg); }),
            "bcm_stg_default_get(0, &0) = 0\nreturned 0\n");
  EXPECT_EQ(observe_failing("bcm_stg_count_get", BCM_E_NONE, [&] { return sai_stg_count_get(unit, &count); }),
            "bcm_stg_count_get(0, &0) = 0\nreturned 0\n");
  EXPECT_EQ(stg, 0);
  EXPECT_EQ(count, 0);
}

TEST_F(SpanningTree, StateGetThatFailsLeavesTheRecord) {
  sai_port_stg_t query{.stg = 3, .reserved = 66, .port = 5, .state = 77};
  EXPECT_EQ(observe_failing("bcm_stg_stp_get", BCM_E_PORT, [&] { return sai_port_stg_stp_get(unit, &query); }),
            "bcm_stg_stp_get(0, 3, 5, &?) = -18\n"
            "log: errors: NONE: Failed to get stg [3] port [5] state: Invalid port\n"
            "returned -9\n");
  EXPECT_EQ(query.state, 77U);
}

}  // namespace
