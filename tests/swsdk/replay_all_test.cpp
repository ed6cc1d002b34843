#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/l2.h>
#include <bcm/link.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/recording.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

/// What a recording's repetition told: its result, each difference and notice on a line, and the counts.
class ReplayAll : public testing::Test {
 protected:
  ~ReplayAll() override {
    swsdk_power_off();
    std::filesystem::remove(path_);
  }

  std::string replayed(const std::string& lines, unsigned long long until = SWSDK_REPLAY_TO_END) {
    std::ofstream(path_) << "swsdk recording 3\ncall sdk_main(0, NULL) = 0\ncall system_init(0) = 0\n" << lines;
    std::string told;
    swsdk_replayed counts{-1, -1};
    const int outcome = swsdk_replay_all(path_.c_str(), until, differ, tell, &told, &counts);
    return told + std::to_string(outcome) + ": " + std::to_string(counts.the_same) + " of " +
           std::to_string(counts.answers);
  }

  static void differ(const swsdk_difference* difference, void* told) {
    *static_cast<std::string*>(told) += std::to_string(difference->line) + ' ' + difference->function + ", " +
                                        difference->kind + ": " + difference->recorded + " | " + difference->now + '\n';
  }
  static void tell(const char* line, void* told) {
    *static_cast<std::string*>(told) += std::string(line).substr(path_.size()) + '\n';
  }

  inline static const std::string path_ = testing::TempDir() + "replay_all_test_" + std::to_string(getpid());
};

TEST_F(ReplayAll, GoesOnAfterEachDifference) {
  EXPECT_EQ(replayed("call bcm_vlan_create(0, 10) = -8 @0.000001 1\n"
                     "call bcm_vlan_create(0, 11) = 0 @0.000002 1\n"
                     "call bcm_vlan_create(0, 12) = -2 @0.000003 1\n"
                     "end\n"),
            "4 bcm_vlan_create, result: call bcm_vlan_create(0, 10) = -8 | call bcm_vlan_create(0, 10) = 0\n"
            "6 bcm_vlan_create, result: call bcm_vlan_create(0, 12) = -2 | call bcm_vlan_create(0, 12) = 0\n"
            "1: 3 of 5");
}

TEST_F(ReplayAll, NamesTheFieldsOfARecordThatDiffer) {
  const std::string add = "call bcm_l2_addr_add(0, {flags=0x20, mac=00:00:00:00:00:01, vid=1, port=3}) = 0\n";
  const std::string get = "call bcm_l2_addr_get(0, 00:00:00:00:00:01, 1, &";
  EXPECT_EQ(replayed(add + get + "{flags=0x10, mac=00:00:00:00:00:01, vid=1, port=3, modid=7}) = 0\nend\n"),
            "5 bcm_l2_addr_get, output flags: " + get +
                "{flags=0x10, mac=00:00:00:00:00:01, vid=1, port=3, modid=7}) = 0" + " | " + get +
                "{flags=0x20, mac=00:00:00:00:00:01, vid=1, port=3}) = 0\n" + "5 bcm_l2_addr_get, output modid: " +
                get + "{flags=0x10, mac=00:00:00:00:00:01, vid=1, port=3, modid=7}) = 0" + " | " + get +
                "{flags=0x20, mac=00:00:00:00:00:01, vid=1, port=3}) = 0\n1: 3 of 4");
}

TEST_F(ReplayAll, NumbersOtherArgumentsThatDiffer) {
  EXPECT_EQ(replayed("call bcm_l2_age_timer_get(0, &17) = 0\nend\n"),
            "4 bcm_l2_age_timer_get, output 2: call bcm_l2_age_timer_get(0, &17) = 0 | call bcm_l2_age_timer_get(0, "
            "&300) = 0\n1: 2 of 3");
}

TEST_F(ReplayAll, RaisesTheEventsThatCameFromOutside) {
  EXPECT_EQ(replayed("call bcm_linkscan_register(0, <callback 1>) = 0\n"
                     "call bcm_linkscan_enable_set(0, 250000) = 0\n"
                     "call bcm_l2_addr_register(0, <callback 2>, <pointer 1>) = 0\n"
                     "event bcm_linkscan_handler_t(<callback 1>, 0, 3, {linkstatus=1}) @1.000000 2\n"
                     "call bcm_port_link_status_get(0, 3, &1) = 0\n"
                     "event bcm_l2_addr_callback_t(<callback 2>, 0, {mac=00:00:00:00:00:01, vid=1, port=3}, 1, "
                     "<pointer 1>) @1.000000 2\n"
                     "call bcm_l2_addr_get(0, 00:00:00:00:00:01, 1, &{mac=00:00:00:00:00:01, vid=1, port=3}) = 0\n"
                     "event bcm_l2_addr_callback_t(<callback 2>, 0, {mac=00:00:00:00:00:01, vid=1, port=3}, 0, "
                     "<pointer 1>) @1.000000 2\n"
                     "call bcm_l2_addr_get(0, 00:00:00:00:00:01, 1, &?) = -7\nend\n"),
            "0: 11 of 11");
}

TEST_F(ReplayAll, StopsBeforeALaterTimePastWhatDiffers) {
  EXPECT_EQ(replayed("call bcm_l2_age_timer_get(0, &17) = 0 @0.5 1\n"
                     "event bcm_linkscan_handler_t(<callback 1>, 0, 3, {linkstatus=1}) @1.000000 2\n"
                     "call bcm_vlan_create(0, 10) = 0 @1.500000 1\n"
                     "call bcm_vlan_create(0, 11) = 0 @1.500001 1\n",
                     1'500'000'000)
                .back(),
            '5');
  int status = 0;
  EXPECT_EQ(bcm_port_link_status_get(0, 3, &status), BCM_E_NONE);
  EXPECT_EQ(status, 1);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
  EXPECT_EQ(bcm_vlan_create(0, 11), BCM_E_NONE);
}

// Another chip has other free ids, and what is left of a long recording lacks what had the lower ones.
TEST_F(ReplayAll, ChoosesTheIdsThatTheRecordedChipChose) {
  EXPECT_EQ(
      replayed("call bcm_switch_control_set(0, 230, 1) = 0\n"
               "call bcm_l3_intf_create(0, {l3a_mac_addr=00:00:00:00:00:01, l3a_vid=1} -> &{l3a_intf_id=5, "
               "l3a_mac_addr=00:00:00:00:00:01, l3a_vid=1}) = 0\n"
               "call bcm_l3_egress_create(0, 0x0, {intf=5, mac_addr=00:00:00:00:00:02, vlan=1, port=3}, &100007) = 0\n"
               "call bcm_l3_egress_get(0, 100007, &{intf=5, mac_addr=00:00:00:00:00:02, vlan=1, port=3}) = 0\n"
               "call bcm_multicast_create(0, 0x10000, 0 -> &300) = 0\n"
               "call bcm_multicast_create(0, 0x10000, 0 -> &1) = 0\n"
               "call bcm_policer_create(0, {mode=1, ckbits_sec=64, ckbits_burst=64}, &9) = 0\n"
               "call bcm_vlan_port_create(0, {criteria=3, match_vlan=7, port=2} -> &{criteria=3, match_vlan=7, port=2, "
               "vlan_port_id=1140850701}) = 0\nend\n"),
      "0: 10 of 10");
  // What the chip cannot choose, it does not.
  EXPECT_EQ(replayed("call bcm_multicast_create(0, 0x10000, 0 -> &201326593) = 0\nend\n"),
            "4 bcm_multicast_create, output 3: call bcm_multicast_create(0, 0x10000, 0 -> &201326593) = 0 | call "
            "bcm_multicast_create(0, 0x10000, 0 -> &1) = 0\n1: 2 of 3");
}

TEST_F(ReplayAll, TakesTheStateThatAFileBeginsWithAsCalls) {
  EXPECT_EQ(replayed("state 1\ncall bcm_vlan_create(0, 10) = 0 @3.000000 1\ncall bcm_vlan_create(0, 10) = -8\nend\n"),
            "0: 4 of 4");
}

TEST_F(ReplayAll, RaisesNoEventThatACallRaises) {
  EXPECT_EQ(replayed("call bcm_l2_addr_register(0, <callback 1>, NULL) = 0\n"
                     "call bcm_l2_addr_add(0, {mac=00:00:00:00:00:01, vid=1, port=3}) = 0\n"
                     "event bcm_l2_addr_callback_t(<callback 1>, 0, {mac=00:00:00:00:00:01, vid=1, port=3}, 1, NULL)\n"
                     "call bcm_l2_addr_delete(0, 00:00:00:00:00:01, 1) = 0\n"
                     "event bcm_l2_addr_callback_t(<callback 1>, 0, {mac=00:00:00:00:00:01, vid=1, port=3}, 0, NULL)\n"
                     "end\n"),
            "0: 7 of 7");
}

TEST_F(ReplayAll, ReportsEventsThatComeOnOneChipAlone) {
  EXPECT_EQ(replayed("call bcm_l2_addr_register(0, <callback 1>, NULL) = 0\n"
                     "event bcm_l2_addr_callback_t(<callback 1>, 0, {mac=00:00:00:00:00:01, vid=5, port=3}, 1, NULL)\n"
                     "call bcm_l2_addr_add(0, {mac=00:00:00:00:00:02, vid=1, port=3}) = 0 @0.000001 1\n"
                     "end\n"),
            "5 bcm_l2_addr_callback_t, event: event bcm_l2_addr_callback_t(<callback 1>, 0, {mac=00:00:00:00:00:01, "
            "vid=5, port=3}, 1, NULL) | \n"
            "0 bcm_l2_addr_callback_t, event:  | event bcm_l2_addr_callback_t(<callback 1>, 0, "
            "{mac=00:00:00:00:00:02, vid=1, port=3}, 1, NULL)\n1: 4 of 5");
}

// A recording of the chip's own has what raised the events, and not the events.
TEST_F(ReplayAll, ReportsNoEventsOfARecordingThatHasNone) {
  EXPECT_EQ(replayed("call bcm_l2_addr_register(0, <callback 1>, NULL) = 0\n"
                     "call bcm_l2_addr_add(0, {mac=00:00:00:00:00:02, vid=1, port=3}) = 0\nend\n"),
            "0: 4 of 4");
}

TEST_F(ReplayAll, SkipsEventsOfUnknownCallbacks) {
  EXPECT_EQ(replayed("event bcm_later_t(<callback 1>, 0) @0.5 1\nend\n"),
            ":4: skipped: there is no callback \"bcm_later_t\" here\n"
            "4 bcm_later_t, event: event bcm_later_t(<callback 1>, 0) | \n1: 2 of 3");
}

TEST_F(ReplayAll, GoesOnBehindTheEndOfAParentProcess) {
  EXPECT_EQ(replayed("end\ncall bcm_vlan_create(0, 20) = 0 @0.000001 1\nend\n"), "0: 3 of 3");
  EXPECT_EQ(replayed("end\ncall bcm_vlan_create(0, 20) = 0 @0.000001 1\n"),
            ":5: the recording ends here without its end mark: it was cut, or its process was\n3: 3 of 3");
}

TEST_F(ReplayAll, PutsADifferenceBeforeAMissingEnd) {
  EXPECT_EQ(replayed("call bcm_vlan_create(0, 10) = -8\n"),
            "4 bcm_vlan_create, result: call bcm_vlan_create(0, 10) = -8 | call bcm_vlan_create(0, 10) = 0\n"
            ":4: the recording ends here without its end mark: it was cut, or its process was\n1: 2 of 3");
}

TEST_F(ReplayAll, ReadsEveryPrefixAndSaysHowFarItCame) {
  const std::string lines =
      "call bcm_linkscan_register(0, <callback 1>) = 0\n"
      "event bcm_linkscan_handler_t(<callback 1>, 0, 3, {linkstatus=1}) @0.000002 2\n"
      "fault bcm_vlan_create(0, 10) = -2\n"
      "action swsdk_link_event(0, 1, 1) = 0\n"
      "call sh_process_command(0, \"say \\\"a\\\"\") = -3\nend\n";
  for (std::size_t length = 0; length + 1 < lines.size(); ++length) {
    const std::string told = replayed(lines.substr(0, length));
    const auto whole_lines = std::count(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(length), '\n');
    const bool ends_in_line = length > 0 && lines[length - 1] != '\n';
    const std::string where = ':' + std::to_string(3 + whole_lines + (ends_in_line ? 1 : 0)) + ": the recording ";
    EXPECT_EQ(told.substr(0, where.size()), where) << lines.substr(0, length);
    EXPECT_NE(told.find("\n3: "), std::string::npos) << told;
  }
  EXPECT_EQ(replayed(lines), "0: 7 of 7");
}

TEST_F(ReplayAll, RefusesWhatItCannotTell) {
  EXPECT_EQ(swsdk_replay_all(nullptr, SWSDK_REPLAY_TO_END, differ, tell, nullptr, nullptr), SWSDK_REPLAY_UNREADABLE);
  EXPECT_EQ(swsdk_replay_all(path_.c_str(), SWSDK_REPLAY_TO_END, nullptr, tell, nullptr, nullptr),
            SWSDK_REPLAY_UNREADABLE);
  EXPECT_EQ(swsdk_replay_all(path_.c_str(), SWSDK_REPLAY_TO_END, differ, nullptr, nullptr, nullptr),
            SWSDK_REPLAY_UNREADABLE);
  std::string told;
  swsdk_replayed counts{-1, -1};
  EXPECT_EQ(swsdk_replay_all(
                "/nowhere", SWSDK_REPLAY_TO_END, differ, [](const char*, void*) {}, &told, &counts),
            SWSDK_REPLAY_UNREADABLE);
  EXPECT_EQ(counts.answers, -1);
}

}  // namespace
