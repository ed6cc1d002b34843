#include <bcm/error.h>

#include <string>

#include "support/rows.h"

namespace {

using support::Row;

constexpr int32_t unit = 0;

uint32_t rate = 7;
uint32_t burst = 8;

constexpr sai_storm_ctrl storm(uint32_t packets, uint32_t type) { return {.rate = packets, .type = type}; }

const Row rows[] = {
    {"Multicast", [] { return sai_rate_mcast_set(unit, 3, 1, 500); }, "bcm_rate_mcast_set(0, 500, 0x2, 3)",
     "Failed to set port [3] mcast rate 500: "},
    {"MulticastOff", [] { return sai_rate_mcast_set(unit, 3, 0, 500); }, "bcm_rate_mcast_set(0, 500, 0x0, 3)",
     "Failed to set port [3] mcast rate 500: "},
    {"MulticastWithANegativeSwitch", [] { return sai_rate_mcast_set(unit, 3, -1, 500); },
     "bcm_rate_mcast_set(0, 500, 0x0, 3)", "Failed to set port [3] mcast rate 500: "},
    {"UnknownUnicast", [] { return sai_rate_dlfbc_set(unit, 3, 2, 500); }, "bcm_rate_dlfbc_set(0, 500, 0x1, 3)",
     "Failed to set port [3] dlfbc rate 500: "},
    {"UnknownUnicastOff", [] { return sai_rate_dlfbc_set(unit, 3, 0, 500); }, "bcm_rate_dlfbc_set(0, 500, 0x0, 3)",
     "Failed to set port [3] dlfbc rate 500: "},
    {"Broadcast", [] { return sai_rate_bcast_set(unit, 3, INT32_MAX, 500); }, "bcm_rate_bcast_set(0, 500, 0x4, 3)",
     "Failed to set port [3] bcast rate 500: "},
    {"BroadcastOff", [] { return sai_rate_bcast_set(unit, 3, 0, 1000); }, "bcm_rate_bcast_set(0, 1000, 0x0, 3)",
     "Failed to set port [3] bcast rate 1000: "},
    {"StormOfMulticast", [] { return sai_port_storm_ctrl_set(unit, 65539, storm(500, 2)); },
     "bcm_rate_mcast_set(0, 500, 0x2, 3)", "Failed to set port [3] storm control: "},
    {"StormOfBroadcast", [] { return sai_port_storm_ctrl_set(unit, 65539, storm(500, 4)); },
     "bcm_rate_bcast_set(0, 500, 0x4, 3)", "Failed to set port [3] storm control: "},
    {"StormOfUnknownUnicast", [] { return sai_port_storm_ctrl_set(unit, 65539, storm(500, 1)); },
     "bcm_rate_dlfbc_set(0, 500, 0x1, 3)", "Failed to set port [3] storm control: "},
    {"CpuEgressSet", [] { return sai_cpu_rate_egress_set(unit, 4000000000, 64); },
     "bcm_port_rate_egress_set(0, 0, 4000000000, 64)", "Failed to set egress rate: ", "", "", "4000000000"},
    {"CpuEgressGet", [] { return sai_cpu_rate_egress_get(unit, &rate, &burst); },
     "bcm_port_rate_egress_get(0, 0, &0, &0)", "Failed to get cpu egress rate: "},
    {"EgressSet", [] { return sai_port_rate_egress_set(unit, 65539, 1000, 64); },
     "bcm_port_rate_egress_set(0, 3, 1000, 64)", "Failed to set port [3] egress rate 1000: "},
    {"EgressGet", [] { return sai_port_rate_egress_get(unit, 65539, &rate, &burst); },
     "bcm_port_rate_egress_get(0, 3, &0, &0)", "Failed to get port [3] egress rate: "},
    {"EgressPacketsSet", [] { return sai_port_rate_egress_pps_set(unit, 65539, 1000, 64); },
     "bcm_port_rate_egress_pps_set(0, 3, 1000, 64)", "Failed to set port [3] egress rate 1000pps: "},
    {"EgressPacketsGet", [] { return sai_port_rate_egress_pps_get(unit, 65539, &rate, &burst); },
     "bcm_port_rate_egress_pps_get(0, 3, &0, &0)", "Failed to get port [3] egress rate: "},
    {"IngressSet", [] { return sai_port_rate_ingress_set(unit, 65539, 1000, 64); },
     "bcm_port_rate_ingress_set(0, 3, 1000, 64)", "Failed to get port [3] ingress rate 1000: "},
    {"IngressGet", [] { return sai_port_rate_ingress_get(unit, 65539, &rate, &burst); },
     "bcm_port_rate_ingress_get(0, 3, &0, &0)", "Failed to get port [3] ingress rate: "},
};

class PortRate : public support::RowTest {};

TEST_P(PortRate, PassesTheSdksSuccessOn) { check_success(); }
TEST_P(PortRate, LogsTheSdksFailureOnceAndConvertsIt) { check_failure(); }
INSTANTIATE_TEST_SUITE_P(All, PortRate, testing::ValuesIn(rows), support::name_of);

class PortRates : public support::Scene {};

TEST_F(PortRates, WhatIsSetIsRead) {
  uint32_t read_rate = 7;
  uint32_t read_burst = 7;
  EXPECT_EQ(sai_port_rate_egress_set(unit, 3, 64000, 640), 0);
  EXPECT_EQ(sai_port_rate_egress_get(unit, 3, &read_rate, &read_burst), 0);
  EXPECT_EQ(read_rate, 64000U);
  EXPECT_EQ(read_burst, 640U);
  EXPECT_EQ(sai_port_rate_ingress_set(unit, 3, 128000, 1280), 0);
  EXPECT_EQ(sai_port_rate_ingress_get(unit, 3, &read_rate, &read_burst), 0);
  EXPECT_EQ(read_rate, 128000U);
  EXPECT_EQ(read_burst, 1280U);
  EXPECT_EQ(sai_port_rate_egress_pps_set(unit, 4, 1000, 10), 0);
  EXPECT_EQ(sai_port_rate_egress_pps_get(unit, 4, &read_rate, &read_burst), 0);
  EXPECT_EQ(read_rate, 1000U);
  EXPECT_EQ(read_burst, 10U);
  EXPECT_EQ(sai_cpu_rate_egress_set(unit, 64000, 640), 0);
  EXPECT_EQ(sai_cpu_rate_egress_get(unit, &read_rate, &read_burst), 0);
  EXPECT_EQ(read_rate, 64000U);
}

TEST_F(PortRates, AFailedGetLeavesBothOutputsAlone) {
  const struct {
    const char* function;
    int32_t (*get)(int32_t unit, int32_t port, uint32_t* rate, uint32_t* burst);
  } getters[] = {{"bcm_port_rate_egress_get", sai_port_rate_egress_get},
                 {"bcm_port_rate_egress_pps_get", sai_port_rate_egress_pps_get},
                 {"bcm_port_rate_ingress_get", sai_port_rate_ingress_get},
                 {"bcm_port_rate_egress_get",
                  [](int32_t u, int32_t, uint32_t* r, uint32_t* b) { return sai_cpu_rate_egress_get(u, r, b); }}};
  for (const auto& [function, get] : getters) {
    uint32_t read_rate = 7;
    uint32_t read_burst = 8;
    observe_failing(function, BCM_E_PORT, [&, call = get] { return call(unit, 3, &read_rate, &read_burst); });
    EXPECT_EQ(read_rate, 7U);
    EXPECT_EQ(read_burst, 8U);
  }
}

TEST_F(PortRates, AStormOfAnyOtherKindIsNoErrorAndNoCall) {
  for (const uint32_t type : {0U, 3U, 5U, 7U, 0xFFFFFFFFU})
    EXPECT_EQ(observe([=] { return sai_port_storm_ctrl_set(unit, 3, storm(500, type)); }), "returned 0\n");
}

TEST_F(PortRates, TheSwitchedStormLimitsTakeThePortWhole) {
  for (const auto set : {sai_rate_mcast_set, sai_rate_dlfbc_set, sai_rate_bcast_set}) {
    const std::string seen = observe([=] { return set(unit, 65537, 1, 500); });
    EXPECT_NE(seen.find(", 65537) = -18\n"), std::string::npos) << seen;
    EXPECT_NE(seen.find("Failed to set port [65537] "), std::string::npos) << seen;
    EXPECT_TRUE(seen.ends_with("returned -9\n")) << seen;
  }
}

TEST_F(PortRates, AStormRequestIsOneQuantityOfSixtyFourBits) {
  EXPECT_EQ(sizeof(sai_storm_ctrl), 8U);
  EXPECT_TRUE(observe([] {
                return sai_port_storm_ctrl_set(unit, 3, storm(0xFFFFFFFF, 4));
              }).starts_with("bcm_rate_bcast_set(0, -1, 0x4, 3)"));
}

}  // namespace
