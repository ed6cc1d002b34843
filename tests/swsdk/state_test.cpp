// The chips' state as a value, through the C interface.
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/field.h>
#include <bcm/l2.h>
#include <bcm/link.h>
#include <bcm/switch.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/events.h>
#include <swsdk/frames.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/frames.h"
#include "support/start.h"

extern "C" int sdk_main(int argc, char** argv);

namespace {

using support::Frame;

class State : public testing::Test {
 protected:
  State() : folder_(std::filesystem::temp_directory_path() / ("state-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(folder_);
  }
  ~State() override {
    swsdk_power_off();
    std::filesystem::remove_all(folder_);
  }

  std::string file(const char* name = "chip.state") const { return folder_ / name; }

  static std::string contents(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

  void save(const char* name = "chip.state") const {
    ASSERT_EQ(swsdk_state_save(file(name).c_str()), SWSDK_STATE_DONE);
  }
  void restore(const char* name = "chip.state") const {
    ASSERT_EQ(swsdk_state_restore(file(name).c_str()), SWSDK_STATE_DONE);
  }
  int restored(const std::string& text) const {
    std::ofstream(file("other"), std::ios::binary) << text;
    return swsdk_state_restore(file("other").c_str());
  }

  static std::string all_tables() {
    std::string result;
    for (int i = 0; swsdk_show_table(i) != nullptr; ++i)
      result += std::string(swsdk_show_table(i)) + '\n' + support::table(swsdk_show_table(i));
    return result;
  }

  /// A switch with hosts in VLAN 10, of which some were seen.
  static void use() {
    bcm_pbmp_t members{};
    for (const int port : {1, 2, 3}) {
      swsdk_link_event(0, port, 1);
      BCM_PBMP_PORT_ADD(members, port);
      EXPECT_EQ(bcm_port_untagged_vlan_set(0, port, 10), BCM_E_NONE);
    }
    EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_NONE);
    EXPECT_EQ(bcm_vlan_port_add(0, 10, members, members), BCM_E_NONE);
    EXPECT_EQ(bcm_port_rate_egress_set(0, 3, 1000, 100), BCM_E_NONE);
    meet(1, 2);
    meet(2, 1);
    meet(3, 1);
    swsdk_clock_advance(0, 1'234'567);
    swsdk_events_drain();
  }

  static int meet(int from, int to) {
    const support::Bytes frame = Frame(from, to).ip("10.0.0.1", "10.0.0.2").udp(5, 6).length(1000);
    return swsdk_frame_send(0, from, frame.data(), frame.size());
  }

  /// What the chip does from here on.
  static std::string course() {
    std::string result;
    for (int i = 0; i < 40; ++i) {
      result += std::to_string(meet(1 + i % 3, 1 + (i + 1) % 3)) + ' ';
      swsdk_clock_advance(0, 3'000'000);
    }
    swsdk_clock_step(0, 299);
    swsdk_events_drain();
    return result + all_tables();
  }

 private:
  const std::filesystem::path folder_;
};

TEST_F(State, IsPutBackInItsPlace) {
  support::start_chip();
  use();
  save();
  const std::string tables = all_tables();
  bcm_vlan_destroy_all(0);
  meet(2, 3);
  ASSERT_NE(all_tables(), tables);
  restore();
  EXPECT_EQ(all_tables(), tables);
}

TEST_F(State, GoesOnAsTheOriginalDid) {
  support::start_chip();
  use();
  save();
  const std::string original = course();
  ASSERT_NE(course(), original);  // it depends on what was before
  restore();
  EXPECT_EQ(course(), original);
  restore();
  EXPECT_EQ(course(), original);
}

TEST_F(State, SavedAgainIsTheSameFile) {
  support::start_chip();
  use();
  save("one");
  restore("one");
  save("two");
  EXPECT_EQ(contents(file("two")), contents(file("one")));
}

TEST_F(State, SwitchesTheChipsOnAndOff) {
  swsdk_power_off();
  save("off");
  support::start_chip();
  use();
  const std::string tables = all_tables();
  save("on");
  restore("off");
  EXPECT_EQ(soc_ndev, 0);
  EXPECT_EQ(bcm_vlan_create(0, 20), BCM_E_UNIT);
  restore("on");
  EXPECT_EQ(soc_ndev, 1);
  EXPECT_EQ(all_tables(), tables);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
  EXPECT_EQ(bcm_vlan_create(0, 20), BCM_E_NONE);
}

TEST_F(State, HasUnitsThatAreNotInitialized) {
  support::attach_chip();
  save();
  ASSERT_EQ(system_init(0), 0);
  restore();
  EXPECT_EQ(bcm_vlan_create(0, 20), BCM_E_INIT);
}

TEST_F(State, HasItsBoard) {
  support::start_chip(2, 64);
  ASSERT_EQ(bcm_vlan_create(1, 20), BCM_E_NONE);
  save();
  support::start_chip(1, 4);
  restore();
  swsdk_board board{};
  swsdk_board_get(&board);
  EXPECT_EQ(board.units, 2);
  EXPECT_EQ(board.ports, 64);
  ASSERT_EQ(soc_ndev, 2);
  EXPECT_EQ(soc_control[1]->info.ether.max, 64);
  EXPECT_EQ(bcm_vlan_create(1, 20), BCM_E_EXISTS);
  EXPECT_EQ(bcm_vlan_create(0, 20), BCM_E_NONE);
  EXPECT_EQ(sdk_main(0, nullptr), 0);
  EXPECT_EQ(soc_ndev, 2);
}

TEST_F(State, HasWhatTheSdkExports) {
  support::start_chip();
  ASSERT_EQ(bcm_switch_control_set(0, bcmSwitchL3EgressMode, 1), BCM_E_NONE);
  save();
  ASSERT_EQ(bcm_switch_control_set(0, bcmSwitchL3EgressMode, 0), BCM_E_NONE);
  restore();
  int mode = 0;
  EXPECT_EQ(bcm_switch_control_get(0, bcmSwitchL3EgressMode, &mode), BCM_E_NONE);
  EXPECT_EQ(mode, 1);
}

TEST_F(State, LeavesCallbacksRegisteredAndCallsNone) {
  support::start_chip();
  use();
  static int told = 0;
  told = 0;
  const auto note = [](int, bcm_l2_addr_t*, int, void*) { ++told; };
  ASSERT_EQ(bcm_l2_addr_register(0, note, nullptr), BCM_E_NONE);
  save();
  const uint8_t mac[6] = {2, 0, 0, 0, 0, 9};
  ASSERT_EQ(swsdk_l2_learn(0, 10, mac, 1, 0), 1);
  swsdk_events_drain();
  EXPECT_EQ(told, 1);
  restore();
  swsdk_events_drain();
  EXPECT_EQ(told, 1);
  ASSERT_EQ(swsdk_l2_learn(0, 10, mac, 1, 0), 1);
  swsdk_events_drain();
  EXPECT_EQ(told, 2);
}

TEST_F(State, TellsThatTheUnitIsAnotherOne) {
  support::start_chip();
  save();
  const int starts = swsdk_starts(0);
  restore();
  EXPECT_EQ(swsdk_starts(0), starts + 1);
}

TEST_F(State, NamesTheCallsThatMadeItsEntries) {
  support::start_chip();
  use();
  const auto trace = [] {
    const support::Bytes frame = Frame(1, 9);
    std::string text(1 << 16, '\0');
    text.resize(
        static_cast<std::size_t>(swsdk_frame_trace(0, 1, frame.data(), frame.size(), text.data(), text.size())));
    return text;
  };
  const std::string before = trace();
  ASSERT_NE(before.find("bcm_vlan_port_add(0, 10,"), std::string::npos) << before;
  save();
  support::start_chip();
  restore();
  EXPECT_EQ(trace(), before);
}

TEST_F(State, IsReadOnlyFromAWholeFile) {
  support::start_chip();
  save();
  ASSERT_EQ(bcm_vlan_create(0, 77), BCM_E_NONE);
  const std::string whole = contents(file());
  const std::string tables = all_tables();
  for (std::size_t length = 0; length < whole.size(); length += 1 + whole.size() / 50)
    EXPECT_EQ(restored(whole.substr(0, length)), SWSDK_STATE_NO_STATE) << length;
  for (std::size_t at = 0; at < whole.size(); at += 1 + whole.size() / 50) {
    std::string damaged = whole;
    damaged[at] = static_cast<char>(damaged[at] ^ 0x10);
    EXPECT_EQ(restored(damaged), SWSDK_STATE_NO_STATE) << at;
  }
  EXPECT_EQ(restored(whole + 'x'), SWSDK_STATE_NO_STATE);
  EXPECT_EQ(restored("swsdk state 999 " + whole.substr(14)), SWSDK_STATE_NO_STATE);
  EXPECT_EQ(all_tables(), tables);
  EXPECT_EQ(restored(whole), SWSDK_STATE_DONE);
  EXPECT_NE(all_tables(), tables);
}

TEST_F(State, LeavesFilesAndChipsAloneWhenItCannotBeWrittenOrRead) {
  support::start_chip();
  EXPECT_EQ(swsdk_state_restore(file("none").c_str()), SWSDK_STATE_NO_FILE);
  EXPECT_EQ(swsdk_state_restore(nullptr), SWSDK_STATE_NO_FILE);
  EXPECT_EQ(swsdk_state_save(nullptr), SWSDK_STATE_NO_FILE);
  EXPECT_EQ(swsdk_state_restore(""), SWSDK_STATE_NO_FILE);
  EXPECT_EQ(swsdk_state_save(""), SWSDK_STATE_NO_FILE);
  EXPECT_EQ(swsdk_state_save(file("none/chip.state").c_str()), SWSDK_STATE_NO_FILE);
  std::filesystem::create_directories(file("taken/inside"));
  EXPECT_EQ(swsdk_state_save(file("taken").c_str()), SWSDK_STATE_NO_FILE);
  EXPECT_EQ(bcm_vlan_create(0, 20), BCM_E_NONE);
}

}  // namespace
