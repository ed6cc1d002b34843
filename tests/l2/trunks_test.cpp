#include <string>

#include "support/one_call.h"

namespace {

class Trunks : public support::OneCall {
 protected:
  /// sai_trunk_set() of trunk 4 with the selector 19, where the SDK maps every port to module 0, port 0 and
  /// bcm_trunk_set() answers `code`.
  std::string observe_set(uint32_t bitmap, int count, int code = BCM_E_NONE) {
    let_succeed("bcm_stk_my_modid_get");
    let_succeed("bcm_stk_modmap_map");
    return observe_failing("bcm_trunk_set", code, [=] { return sai_trunk_set(unit, 4, 19, bitmap, count); });
  }
};

const std::string modid = "bcm_stk_my_modid_get(0, &0) = 0\n";
const std::string member = "{gport=134217728}";  // 0x8000000

std::string mapped(int port) { return "bcm_stk_modmap_map(0, 2, 0, " + std::to_string(port) + ", &0, &0) = 0\n"; }

TEST_F(Trunks, FunctionsThatAreOneCall) {
  expect({
      {[] { return sai_trunk_init(unit); }, "bcm_trunk_init(0)", "Failed to init trunk"},
      {[] { return sai_trunk_detach(unit); }, "bcm_trunk_detach(0)", "Failed to detach trunk"},
      {[] { return sai_trunk_destroy(unit, 4); }, "bcm_trunk_destroy(0, 4)", "Failed to destroy trunk 4"},
      {[] { return sai_trunk_psc_set(unit, 4, 18); }, "bcm_trunk_psc_set(0, 4, 6)", "Failed to set trunk [4] psc 6"},
      {[] { return sai_trunk_psc_set(unit, 4, 2); }, "bcm_trunk_psc_set(0, 4, 0)", "Failed to set trunk [4] psc 0"},
      {[] { return sai_trunk_psc_set(unit, 4, -1); }, "bcm_trunk_psc_set(0, 4, 0)", "Failed to set trunk [4] psc 0"},
  });
}

TEST_F(Trunks, CreateTakesTheIdAskedForAndLeavesItWhereItFails) {
  int32_t tid = 4;
  expect({{[&] { return sai_trunk_create(unit, 0x10, &tid); }, "bcm_trunk_create(0, 0x10, 4)",
           "Failed to create trunk 4"}});
  EXPECT_EQ(tid, 4);
}

TEST_F(Trunks, TheLowestBitIsPortOneAndTheHighestPortZero) {
  EXPECT_EQ(observe_set(0x1, 1),
            modid + mapped(1) + "bcm_trunk_set(0, 4, {psc=3}, 1, [" + member + "]) = 0\nreturned 0\n");
  EXPECT_EQ(observe_set(0x80000000, 1),
            modid + mapped(0) + "bcm_trunk_set(0, 4, {psc=3}, 1, [" + member + "]) = 0\nreturned 0\n");
  EXPECT_EQ(observe_set(0x40000000, 1),
            modid + mapped(31) + "bcm_trunk_set(0, 4, {psc=3}, 1, [" + member + "]) = 0\nreturned 0\n");
}

TEST_F(Trunks, MembersComeInTheOrderOfTheirPorts) {
  EXPECT_EQ(observe_set(0x80000005, 3), modid + mapped(0) + mapped(1) + mapped(3) +
                                            "bcm_trunk_set(0, 4, {psc=3}, 3, [" + member + ", " + member + ", " +
                                            member + "]) = 0\nreturned 0\n");
}

TEST_F(Trunks, EveryPortAtOnce) {
  std::string calls = modid;
  std::string members = member;
  for (int port = 0; port < 32; ++port) calls += mapped(port);
  for (int i = 1; i < 32; ++i) members += ", " + member;
  EXPECT_EQ(observe_set(0xFFFFFFFF, 32),
            calls + "bcm_trunk_set(0, 4, {psc=3}, 32, [" + members + "]) = 0\nreturned 0\n");
}

TEST_F(Trunks, TheCountIsTheCallersWhateverTheBitmapHolds) {
  EXPECT_EQ(observe_set(0x3, 1),
            modid + mapped(1) + mapped(2) + "bcm_trunk_set(0, 4, {psc=3}, 1, [" + member + "]) = 0\nreturned 0\n");
  EXPECT_EQ(observe_set(0x1, 3),
            modid + mapped(1) + "bcm_trunk_set(0, 4, {psc=3}, 3, [" + member + ", {}, {}]) = 0\nreturned 0\n");
  EXPECT_EQ(observe_set(0, 0), modid + "bcm_trunk_set(0, 4, {psc=3}, 0, []) = 0\nreturned 0\n");
  EXPECT_EQ(observe_set(0, -1), modid + "bcm_trunk_set(0, 4, {psc=3}, -1, []) = 0\nreturned 0\n");
}

TEST_F(Trunks, ACountWithoutSlotsIsRefusedWithoutAskingTheChip) {
  const std::string most = observe_set(0, 256);
  EXPECT_TRUE(most.starts_with(modid + "bcm_trunk_set(0, 4, {psc=3}, 256, [{}, {}, ")) << most;
  EXPECT_EQ(observe_set(0, 257), modid +
                                     "log: errors: NONE: Failed to set trunk 4 psc [19]: Invalid parameter\n"
                                     "returned -5\n");
}

TEST_F(Trunks, SetThatFailsShowsTheSelector) {
  EXPECT_EQ(observe_set(0x1, 1, BCM_E_NOT_FOUND),
            modid + mapped(1) + "bcm_trunk_set(0, 4, {psc=3}, 1, [" + member +
                "]) = -7\n"
                "log: errors: NONE: Failed to set trunk 4 psc [19]: Entry not found\n"
                "returned -7\n");
}

TEST_F(Trunks, SetWithoutAModuleIdEndsThere) {
  EXPECT_EQ(observe_failing("bcm_stk_my_modid_get", BCM_E_UNAVAIL, [] { return sai_trunk_set(unit, 4, 19, 0x1, 1); }),
            "bcm_stk_my_modid_get(0, &?) = -16\n"
            "log: errors: NONE: Failed to get module id: Not available on this chip\n"
            "returned -2\n");
}

TEST_F(Trunks, SetWithAPortThatCannotBeMappedEndsThere) {
  let_succeed("bcm_stk_my_modid_get");
  EXPECT_EQ(observe_failing("bcm_stk_modmap_map", BCM_E_PORT, [] { return sai_trunk_set(unit, 4, 19, 0x7, 3); }),
            modid +
                "bcm_stk_modmap_map(0, 2, 0, 1, &?, &?) = -18\n"
                "log: errors: NONE: Failed to set module identifier: Invalid port\n"
                "returned -9\n");
}

}  // namespace
