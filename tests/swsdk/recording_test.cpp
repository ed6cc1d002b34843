#include <swsdk/recording.h>

#include <appl/diag/shell.h>
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/knet.h>
#include <bcm/l2.h>
#include <bcm/link.h>
#include <bcm/multicast.h>
#include <bcm/stat.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/field.h>
#include <swsdk/frames.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>

#include "support/start.h"

extern "C" int sdk_main(int argc, char** argv);

namespace {

class Recording : public testing::Test {
 protected:
  Recording() { swsdk_power_off(); }
  ~Recording() override {
    swsdk_record_stop();
    swsdk_power_off();
    std::filesystem::remove(path_);
  }

  void start() const {
    ASSERT_EQ(swsdk_record_start(path_.c_str()), 0);
    sdk_main(0, nullptr);
    system_init(0);
  }

  /// The recording's lines so far, after those that start the chip.
  std::string written() const {
    std::ifstream file(path_);
    std::ostringstream text;
    text << file.rdbuf();
    const std::string start = "swsdk recording 3\ncall sdk_main(0, NULL) = 0\ncall system_init(0) = 0\n";
    EXPECT_EQ(text.str().substr(0, start.size()), start);
    return text.str().substr(std::min(start.size(), text.str().size()));
  }

  /// Ends the recording: its lines after those that start the chip, without the one that ends it.
  std::string recorded() const {
    EXPECT_EQ(swsdk_record_stop(), 0);
    const std::string lines = written();
    const std::string end = "end\n";
    EXPECT_TRUE(lines.ends_with(end)) << lines;
    return lines.substr(0, lines.size() - std::min(end.size(), lines.size()));
  }

  /// Repeats it: the outcome, and what was told.
  std::string replayed() const {
    std::string told;
    const auto tell = [](const char* line, void* data) {
      *static_cast<std::string*>(data) += line + std::string("\n");
    };
    const int outcome = swsdk_replay(path_.c_str(), tell, &told);
    return std::to_string(outcome) + told;
  }

  void write(const std::string& lines, int version = 2) const {
    std::ofstream(path_) << "swsdk recording " << version << '\n' << lines;
  }

  const std::string path_ = testing::TempDir() + "recording_test_" + std::to_string(getpid()) + ".rec";
};

TEST_F(Recording, HoldsCallsFaultsAndActionsInTheirOrder) {
  start();
  bcm_vlan_create(0, 10);
  swsdk_fault_inject("bcm_vlan_create", BCM_E_FULL, 1);
  bcm_vlan_create(0, 11);
  swsdk_link_event(0, 3, 1);
  swsdk_counter_set(0, 3, 7, 99);
  swsdk_phy_register_set(0, 3, SWSDK_PHY_CLAUSE22, 4, 5);
  swsdk_l3_host_hit(0, 0x0A000001, 4);
  EXPECT_EQ(recorded(),
            "call bcm_vlan_create(0, 10) = 0\n"
            "fault bcm_vlan_create(0, 11) = -6\n"
            "action swsdk_link_event(0, 3, 1) = 0\n"
            "action swsdk_counter_set(0, 3, 7, 99) = 0\n"
            "action swsdk_phy_register_set(0, 3, -1, 4, 5) = 0\n"
            "action swsdk_l3_host_hit(0, 10.0.0.1, 0x4) = -1\n");
  EXPECT_EQ(replayed(), "0");
}

TEST_F(Recording, HoldsFramesAndWhatTheyChange) {
  start();
  swsdk_link_event(0, 1, 1);
  const unsigned char frame[] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 2, 0, 0, 0, 0, 1, 0x88, 0xB5, 7};
  EXPECT_GE(swsdk_frame_send(0, 1, frame, sizeof frame), 0);
  EXPECT_GT(swsdk_frame_send(0, 1, frame, 3), 0);
  EXPECT_EQ(swsdk_frame_send(0, 99, frame, sizeof frame), -1);
  EXPECT_EQ(swsdk_l2_lookup(0, 1, &frame[6]), 1);
  const std::string lines = recorded();
  const std::string action = "action swsdk_frame_send(0, 1, [ff ff ff ff ff ff 02 00 00 00 00 01 88 b5 07], 15) = ";
  EXPECT_NE(lines.find(action), std::string::npos) << lines;
  EXPECT_NE(lines.find("action swsdk_frame_send(0, 1, [ff ff ff], 3) = 1\n"), std::string::npos) << lines;
  EXPECT_NE(lines.find("07], 15) = -1\n"), std::string::npos) << lines;
  EXPECT_EQ(replayed(), "0");
  EXPECT_EQ(swsdk_l2_lookup(0, 1, &frame[6]), 1);
}

TEST_F(Recording, HoldsFramesThatEntriesWereAskedAboutAsTheyCountHits) {
  start();
  bcm_field_qset_t qset{};
  BCM_FIELD_QSET_ADD(qset, bcmFieldQualifyStageIngress);
  BCM_FIELD_QSET_ADD(qset, bcmFieldQualifySrcIp);
  int group = 0;
  int entry = 0;
  bcm_field_group_create(0, qset, 1, &group);
  bcm_field_group_enable_set(0, group, 1);
  bcm_field_entry_create(0, group, &entry);
  bcm_field_qualify_SrcIp(0, entry, 0x0A000001, 0xFFFFFFFF);
  bcm_field_action_add(0, entry, bcmFieldActionDrop, 0, 0);
  bcm_field_entry_install(0, entry);
  swsdk_frame frame{};
  swsdk_verdict verdict{};
  frame.in_port = 3;
  frame.ether_type = 0x0800;
  frame.src_ip = 0x0A000001;
  EXPECT_EQ(swsdk_field_classify(0, SWSDK_FIELD_INGRESS, &frame, &verdict), 0);
  EXPECT_EQ(swsdk_field_classify(0, SWSDK_FIELD_INGRESS, nullptr, &verdict), -1);
  frame.src_ip = 0x0A000002;
  EXPECT_EQ(swsdk_field_classify(0, SWSDK_FIELD_INGRESS, &frame, &verdict), 0);
  const std::string lines = recorded();
  EXPECT_NE(lines.find("action swsdk_field_classify(0, 0, {in_port=3, ether_type=0x800, src_ip=10.0.0.1}, &{hits=1, "
                       "groups=[1, 0, "),
            std::string::npos)
      << lines;
  EXPECT_NE(lines.find("action swsdk_field_classify(0, 0, {in_port=3, ether_type=0x800, src_ip=10.0.0.2}, "
                       "&{redirect_port=-1, priority=-1}) = 0\n"),
            std::string::npos)
      << lines;
  EXPECT_EQ(swsdk_field_hits(0, entry), 1);
  EXPECT_EQ(replayed(), "0");
  EXPECT_EQ(swsdk_field_hits(0, entry), 1);
}

TEST_F(Recording, GoesOnWhenTheChipIsSwitchedOffAndLeavesTheLastTimeOut) {
  swsdk_board board;
  swsdk_board_get(&board);
  board.ports = 4;
  ASSERT_EQ(swsdk_record_start(path_.c_str()), 0);
  sdk_main(0, nullptr);
  system_init(0);
  swsdk_power_off();
  swsdk_board_set(&board);
  sdk_main(0, nullptr);
  swsdk_power_off();
  EXPECT_EQ(recorded(),
            "action swsdk_power_off() = 0\n"
            "action swsdk_board_set({units=1, ports=4}) = 0\n"
            "call sdk_main(0, NULL) = 0\n");
  EXPECT_EQ(replayed(), "0");
  swsdk_board_get(&board);
  EXPECT_EQ(board.ports, 4);
}

constexpr const char* start_and_create =
    "call sdk_main(0, NULL) = 0\ncall system_init(0) = 0\ncall bcm_vlan_create(0, 10) = 0\n";

TEST_F(Recording, ThatWasCutAtALinesEndIsRepeatedAndSaidToBeIncomplete) {
  write(start_and_create);
  EXPECT_EQ(replayed(),
            "3" + path_ + ":4: the recording ends here without its end mark: it was cut, or its process was\n");
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
}

TEST_F(Recording, ThatWasCutInALineIsRepeatedUpToThatLine) {
  write(start_and_create + std::string("call bcm_vlan_create(0, 11) = 0"));
  EXPECT_EQ(replayed(), "3" + path_ + ":5: the recording was cut in this line\n");
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
  EXPECT_EQ(bcm_vlan_create(0, 11), BCM_E_NONE);
}

TEST_F(Recording, WithoutItsEndWhoseAnswersDifferIsDifferent) {
  write(start_and_create + std::string("call bcm_vlan_create(0, 10) = 0\n"));
  EXPECT_TRUE(replayed().starts_with("1" + path_ + ":5: the answer differs\n")) << replayed();
}

TEST_F(Recording, OfTheFirstVersionHasNoEnd) {
  write(start_and_create, 1);
  EXPECT_EQ(replayed(), "0");
  write(start_and_create, 4);
  EXPECT_EQ(replayed(), "2" + path_ + ":1: version 4 of the format; this chip reads versions up to 3\n");
}

TEST_F(Recording, HasNothingBehindItsEnd) {
  write(start_and_create + std::string("end\n\n"));
  EXPECT_EQ(replayed(), "0");
  write(start_and_create + std::string("end\ncall bcm_vlan_create(0, 11) = 0\n"));
  EXPECT_EQ(replayed(), "2" + path_ + ":6: stands behind the end of the recording\n");
}

TEST_F(Recording, EndsWithItsProcess) {
  start();
  EXPECT_EXIT(bcm_vlan_create(0, 11); std::exit(0), testing::ExitedWithCode(0), "");
  EXPECT_EQ(written(), "call bcm_vlan_create(0, 11) = 0\nend\n");
}

TEST_F(Recording, HasNoEndWhenItsProcessWasCut) {
  start();
  EXPECT_EXIT(bcm_vlan_create(0, 11); _exit(0), testing::ExitedWithCode(0), "");
  EXPECT_EQ(written(), "call bcm_vlan_create(0, 11) = 0\n");
}

TEST_F(Recording, IsNotEndedByAChildThatMakesNoCall) {
  start();
  EXPECT_EXIT(std::exit(0), testing::ExitedWithCode(0), "");
  bcm_vlan_create(0, 11);
  EXPECT_EQ(recorded(), "call bcm_vlan_create(0, 11) = 0\n");
}

TEST_F(Recording, BeginsWithTheChipOff) {
  support::start_chip();
  EXPECT_EQ(swsdk_record_start(path_.c_str()), -1);
  swsdk_power_off();
  EXPECT_EQ(swsdk_record_start("/nowhere/at/all"), -1);
  EXPECT_EQ(swsdk_record_start(nullptr), -1);
  EXPECT_EQ(swsdk_record_stop(), -1);
}

TEST_F(Recording, SaysAtItsEndThatItCouldNotBeWritten) {
  ASSERT_EQ(swsdk_record_start("/dev/full"), 0);
  sdk_main(0, nullptr);
  EXPECT_EQ(swsdk_record_stop(), -1);
}

int stop_at_once(int, bcm_l2_addr_t*, void*) { return -99; }

TEST_F(Recording, KnowsTheAnswerOfACallbackThatEndedAWalk) {
  start();
  bcm_vlan_create(0, 10);
  const unsigned char mac[] = {0, 1, 2, 3, 4, 5};
  EXPECT_EQ(swsdk_l2_learn(0, 1, mac, 3, 0), 1);
  int data = 0;
  bcm_l2_traverse(0, stop_at_once, &data);
  EXPECT_EQ(recorded(),
            "call bcm_vlan_create(0, 10) = 0\n"
            "action swsdk_l2_learn(0, 1, 00:01:02:03:04:05, 3, 0) = 1\n"
            "call bcm_l2_traverse(0, <callback 1>, <pointer 1>) = -99\n");
  EXPECT_EQ(replayed(), "0");
}

void link_one(int, bcm_port_t, bcm_port_info_t*) {}
void link_two(int, bcm_port_t, bcm_port_info_t*) {}
void address_changed(int, bcm_l2_addr_t*, int, void*) {}

TEST_F(Recording, KeepsCallbacksAndTheirDataApart) {
  int data[2] = {};
  start();
  bcm_linkscan_register(0, link_one);
  bcm_linkscan_register(0, link_two);
  bcm_linkscan_register(0, link_one);
  bcm_l2_addr_register(0, address_changed, &data[0]);
  bcm_l2_addr_register(0, address_changed, &data[1]);
  bcm_l2_addr_unregister(0, address_changed, nullptr);
  EXPECT_EQ(recorded(),
            "call bcm_linkscan_register(0, <callback 1>) = 0\n"
            "call bcm_linkscan_register(0, <callback 2>) = 0\n"
            "call bcm_linkscan_register(0, <callback 1>) = -8\n"
            "call bcm_l2_addr_register(0, <callback 3>, <pointer 1>) = 0\n"
            "call bcm_l2_addr_register(0, <callback 3>, <pointer 2>) = 0\n"
            "call bcm_l2_addr_unregister(0, <callback 3>, NULL) = -7\n");
  EXPECT_EQ(replayed(), "0");
}

TEST_F(Recording, KeepsTheRoomThatACallFills) {
  start();
  bcm_switch_temperature_monitor_t readings[5];
  int count = 0;
  const swsdk_temperature now[] = {{100, 200}};
  swsdk_temperatures_set(0, now, 1);
  bcm_switch_temperature_monitor_get(0, 5, readings, &count);
  bcm_switch_temperature_monitor_get(0, 5, readings, nullptr);
  bcm_stat_val_t stats[2] = {};
  uint64 values[2];
  bcm_stat_multi_get(0, 99, 2, stats, values);
  EXPECT_EQ(recorded(),
            "action swsdk_temperatures_set(0, [{current=100, peak=200}], 1) = 0\n"
            "call bcm_switch_temperature_monitor_get(0, 5, &[{curr=100, peak=200}] of 5, &1) = 0\n"
            "call bcm_switch_temperature_monitor_get(0, 5, &? of 5, NULL) = -4\n"
            "call bcm_stat_multi_get(0, 99, 2, [0, 0], &? of 2) = -18\n");
  EXPECT_EQ(replayed(), "0");
  // More sensors than there were: the answer differs, and there is room for it.
  write(
      "call sdk_main(0, NULL) = 0\ncall system_init(0) = 0\n"
      "call bcm_switch_temperature_monitor_get(0, 5, &[] of 5, &0) = 0\nend\n");
  EXPECT_TRUE(replayed().starts_with("1" + path_ + ":4: the answer differs\n")) << replayed();
}

TEST_F(Recording, RepeatsValuesOfEveryKind) {
  start();
  char text[] = "a \"b\", \\ c\nd) = 7";
  sh_process_command(0, text);
  sh_process_command(0, nullptr);
  bcm_knet_netif_t interface {};
  std::memset(interface.name, 'x', sizeof interface.name);
  bcm_knet_netif_create(0, &interface);
  bcm_vlan_ip_t subnet{};
  subnet.flags = BCM_VLAN_SUBNET_IP6;
  subnet.ip6[0] = 0xFF;
  subnet.prefix = 8;
  subnet.vid = 4095;
  bcm_vlan_ip_add(0, &subnet);
  bcm_field_qset_t qset{};
  qset.w[0] = std::numeric_limits<uint32>::max();
  int group = 0;
  bcm_field_group_create(0, qset, std::numeric_limits<int>::min(), &group);
  bcm_vlan_gport_add(0, 1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min());
  bcm_ip6_t addresses[2] = {{1}, {2}};
  bcm_switch_ipv6_reserved_multicast_addr_multi_set(0, 0, 2, addresses, addresses);
  bcm_vlan_create(-1, 1);
  bcm_l2_addr_t address{};
  bcm_l2_addr_get(0, address.mac, 1, nullptr);
  swsdk_counter_set(0, 1, 0, std::numeric_limits<unsigned long long>::max());
  uint64 value = 0;
  bcm_stat_get(0, 1, static_cast<bcm_stat_val_t>(0), &value);
  EXPECT_NE(recorded().find("&18446744073709551615"), std::string::npos);
  EXPECT_EQ(replayed(), "0");
}

TEST_F(Recording, IsNotWrittenByAProcessThatDoesNotWantIt) {
  support::start_chip();
  bcm_vlan_create(0, 10);
  EXPECT_EQ(swsdk_record_stop(), -1);
  EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(Recording, LeavesTheChipAsItsLastCallDoes) {
  write("call sdk_main(0, NULL) = 0\ncall system_init(0) = 0\ncall bcm_vlan_create(0, 77) = 0\nend\n");
  support::start_chip();
  bcm_vlan_create(0, 88);
  EXPECT_EQ(replayed(), "0");
  EXPECT_EQ(bcm_vlan_create(0, 77), BCM_E_EXISTS);
  EXPECT_EQ(bcm_vlan_create(0, 88), BCM_E_NONE);
}

}  // namespace
