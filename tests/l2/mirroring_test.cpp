#include <bcm/mirror.h>

#include <string>

#include "support/one_call.h"

namespace {

using Mirroring = support::OneCall;

constexpr int session = 2;
constexpr int port = 5;

// Session 2 is the destination 0x3C000002, port 5 the gport 0x8000005.
const std::string destination_5 = "{mirror_dest_id=1006632962, flags=0x3, gport=134217733}";

int32_t set_source(int mode) { return sai_mirror_source_port_set(0, session, port, mode); }
int32_t unset_source(int mode) { return sai_mirror_source_port_unset(0, session, port, mode); }

TEST_F(Mirroring, InitGoesThroughFourSteps) {
  let_succeed("bcm_mirror_init");
  EXPECT_EQ(observe_failing("bcm_mirror_mode_set", BCM_E_NONE, [] { return sai_mirror_init(unit); }),
            "bcm_mirror_init(0) = 0\n"
            "bcm_switch_control_set(0, 125, 1) = 0\n"
            "bcm_switch_control_set(0, 781, 1) = 0\n"
            "bcm_mirror_mode_set(0, 1) = 0\n"
            "returned 0\n");
}

TEST_F(Mirroring, InitGoesOnWhateverFailsAndTheLastStepCounts) {
  let_succeed("bcm_mirror_mode_set");
  ASSERT_EQ(swsdk_fault_inject("bcm_switch_control_set", BCM_E_BUSY, SWSDK_FAULT_EVERY_CALL), 0);
  EXPECT_EQ(observe_failing("bcm_mirror_init", BCM_E_MEMORY, [] { return sai_mirror_init(unit); }),
            "bcm_mirror_init(0) = -2\n"
            "bcm_switch_control_set(0, 125, 1) = -10\n"
            "bcm_switch_control_set(0, 781, 1) = -10\n"
            "bcm_mirror_mode_set(0, 1) = 0\n"
            "log: errors: NONE: Failed to init mirror: Out of memory\n"
            "log: errors: NONE: Failed to set switch control bcmSwitchFlexibleMirrorDestinations: Hardware is busy\n"
            "log: errors: NONE: Failed to set switch control bcmSwitchFlexibleMirrorDestinations: Hardware is busy\n"
            "returned 0\n");

  let_succeed("bcm_mirror_init");
  EXPECT_EQ(observe_failing("bcm_mirror_mode_set", BCM_E_PARAM, [] { return sai_mirror_init(unit); }),
            "bcm_mirror_init(0) = 0\n"
            "bcm_switch_control_set(0, 125, 1) = 0\n"
            "bcm_switch_control_set(0, 781, 1) = 0\n"
            "bcm_mirror_mode_set(0, 1) = -4\n"
            "log: errors: NONE: Failed to set mirror mode: Invalid parameter\n"
            "returned -5\n");
}

TEST_F(Mirroring, DestinationPort) {
  const auto call = [] { return sai_mirror_dest_port_set(unit, session, port); };
  EXPECT_EQ(observe_failing("bcm_mirror_destination_create", BCM_E_NONE, call),
            "bcm_port_gport_get(0, 5, &134217733) = 0\n"
            "bcm_mirror_destination_create(0, " +
                destination_5 + ") = 0\nreturned 0\n");
  EXPECT_EQ(observe_failing("bcm_port_gport_get", BCM_E_PORT, call),
            "bcm_port_gport_get(0, 5, &?) = -18\n"
            "log: errors: NONE: Failed to get gport: Invalid port\n"
            "returned -9\n");
  EXPECT_EQ(observe_failing("bcm_mirror_destination_create", BCM_E_FULL, call),
            "bcm_port_gport_get(0, 5, &134217733) = 0\n"
            "bcm_mirror_destination_create(0, " +
                destination_5 +
                ") = -6\n"
                "log: errors: NONE: Failed to create mirror destination port [5]: Table is full\n"
                "returned -13\n");
}

TEST_F(Mirroring, DestinationGportIsTakenAsItIs) {
  EXPECT_EQ(observe_failing("bcm_mirror_destination_create", BCM_E_NONE,
                            [] { return sai_mirror_dest_port_set(unit, session, 0x8000005); }),
            "bcm_mirror_destination_create(0, " + destination_5 + ") = 0\nreturned 0\n");

  const int highest_kind = static_cast<int>(51U << 26 | 7);
  EXPECT_EQ(observe_failing("bcm_mirror_destination_create", BCM_E_NONE,
                            [&] { return sai_mirror_dest_port_set(unit, 0, highest_kind); }),
            "bcm_mirror_destination_create(0, {mirror_dest_id=1006632960, flags=0x3, gport=" +
                std::to_string(highest_kind) + "}) = 0\nreturned 0\n");
}

TEST_F(Mirroring, NumbersBeyondTheGportsArePorts) {
  for (const int number : {-1, static_cast<int>(52U << 26)}) {
    EXPECT_EQ(observe([&] { return sai_mirror_dest_port_set(unit, session, number); }),
              "bcm_port_gport_get(0, " + std::to_string(number) +
                  ", &?) = -18\n"
                  "log: errors: NONE: Failed to get gport: Invalid port\n"
                  "returned -9\n");
  }
}

TEST_F(Mirroring, DestinationUnset) {
  const auto call = [] { return sai_mirror_dest_port_unset(unit, session, port); };
  EXPECT_EQ(observe_failing("bcm_mirror_destination_get", BCM_E_NOT_FOUND, call),
            "bcm_mirror_destination_get(0, 1006632962, &?) = -7\n"
            "log: errors: NONE: Failed to get mirror session [2] port [5]: Entry not found\n"
            "returned -7\n");
  let_succeed("bcm_mirror_destination_get");
  EXPECT_EQ(observe_failing("bcm_mirror_destination_destroy", BCM_E_BUSY, call),
            "bcm_mirror_destination_get(0, 1006632962, &{}) = 0\n"
            "bcm_mirror_destination_destroy(0, 0) = -10\n"
            "log: errors: NONE: Failed to destroy mirror session [2] port [5]: Hardware is busy\n"
            "returned -1\n");
}

TEST_F(Mirroring, ModesOfASource) {
  constexpr struct {
    int mode;
    const char* flags;
  } rows[] = {{0, "0x1"}, {1, "0x3"}, {2, "0x5"}, {3, "0x7"}, {4, "0x1"}, {-1, "0x7"}};
  for (const auto& [mode, flags] : rows) {
    let_succeed("bcm_mirror_destination_get");
    EXPECT_EQ(observe_failing("bcm_mirror_port_dest_add", BCM_E_NONE, [mode = mode] { return set_source(mode); }),
              "bcm_mirror_destination_get(0, 1006632962, &{}) = 0\n"
              "bcm_mirror_port_dest_add(0, 5, " +
                  std::string(flags) + ", 0) = 0\nreturned 0\n");
    let_succeed("bcm_mirror_destination_get");
    EXPECT_EQ(observe_failing("bcm_mirror_port_dest_delete", BCM_E_NONE, [mode = mode] { return unset_source(mode); }),
              "bcm_mirror_destination_get(0, 1006632962, &{}) = 0\n"
              "bcm_mirror_port_dest_delete(0, 5, " +
                  std::string(flags) + ", 0) = 0\nreturned 0\n");
  }
}

TEST_F(Mirroring, SourceOfAnAbsentSession) {
  EXPECT_EQ(observe_failing("bcm_mirror_destination_get", BCM_E_NOT_FOUND, [] { return set_source(3); }),
            "bcm_mirror_destination_get(0, 1006632962, &?) = -7\n"
            "log: errors: NONE: Failed to get mirror session [2] port [5]: Entry not found\n"
            "returned -7\n");
  EXPECT_EQ(observe_failing("bcm_mirror_destination_get", BCM_E_NOT_FOUND, [] { return unset_source(3); }),
            "bcm_mirror_destination_get(0, 1006632962, &?) = -7\n"
            "log: errors: NONE: Failed to get mirror session [2] port [5] mode [3]: Entry not found\n"
            "returned -7\n");
}

TEST_F(Mirroring, SourceThatIsRefused) {
  let_succeed("bcm_mirror_destination_get");
  EXPECT_EQ(observe_failing("bcm_mirror_port_dest_add", BCM_E_EXISTS, [] { return set_source(3); }),
            "bcm_mirror_destination_get(0, 1006632962, &{}) = 0\n"
            "bcm_mirror_port_dest_add(0, 5, 0x7, 0) = -8\n"
            "log: errors: NONE: Failed to add mirror source port [5] mode [3]: Entry already exists\n"
            "returned -6\n");
  let_succeed("bcm_mirror_destination_get");
  EXPECT_EQ(observe_failing("bcm_mirror_port_dest_delete", BCM_E_PORT, [] { return unset_source(3); }),
            "bcm_mirror_destination_get(0, 1006632962, &{}) = 0\n"
            "bcm_mirror_port_dest_delete(0, 5, 0x7, 0) = -18\n"
            "log: errors: NONE: Failed to delete mirror source port [5] mode [3]: Invalid port\n"
            "returned -9\n");
}

}  // namespace
