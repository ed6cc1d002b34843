// The application's thread, the chip's own and their callbacks, a reader of the journal and the world outside, all at
// once. ThreadSanitizer sees to what no expectation can.
#include <bcm/error.h>
#include <bcm/link.h>
#include <gtest/gtest.h>
#include <sai.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <future>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/start.h"

namespace {

constexpr int unit = 0;
constexpr int vlan = 10;
constexpr int rounds = 400;
constexpr uint8_t station[6] = {0x02, 0, 0, 0, 0, 0x2A};
constexpr uint8_t absent[6] = {0x02, 0, 0, 0, 0, 0x77};

/// Whose turn it is to call the library.
std::mutex turn;

/// What the link handler hands over; the thread that the application runs on takes it.
std::mutex handed_lock;
std::vector<int> handed_ports;  // guarded by `handed_lock`

std::atomic<int> link_events;
std::atomic<int> l2_events;
std::atomic<int> answers_in_callbacks;
std::atomic<int> refusals;                   // each is a line in the log
std::set<std::thread::id> callback_threads;  // guarded by `handed_lock`
/// What the next link handler waits for, if anything.
std::shared_future<void> gate;  // guarded by `handed_lock`

void note_thread() {
  const std::lock_guard guard(handed_lock);
  callback_threads.insert(std::this_thread::get_id());
}

/// Waits for nobody's turn: the application may be pausing link scanning.
void hand_over(int, bcm_port_t port, bcm_port_info_t*) {
  note_thread();
  ++link_events;
  std::shared_future<void> wait_for;
  {
    const std::lock_guard guard(handed_lock);
    handed_ports.push_back(port);
    wait_for = std::exchange(gate, {});
  }
  if (wait_for.valid()) wait_for.wait();
}

/// Calls that use what the library remembers: the entry of LLDP, and the log, which a refusal goes through.
void use_what_is_shared() {
  EXPECT_EQ(sai_lldp_set(unit), SAI_E_NONE);
  EXPECT_EQ(sai_lldp_unset(unit), SAI_E_NONE);
  sai_l2_mac_entry_t entry{};
  std::memcpy(entry.mac, absent, sizeof entry.mac);
  entry.vlan = vlan;
  EXPECT_EQ(sai_l2_mac_entry_get(unit, &entry), SAI_E_NOT_FOUND);
  ++refusals;
}

/// Takes its turn and calls the library back.
void ask_back(uint16_t vid, int32_t, uint8_t* mac, int32_t) {
  note_thread();
  ++l2_events;
  sai_l2_mac_entry_t entry{};
  std::memcpy(entry.mac, mac, sizeof entry.mac);
  entry.vlan = vid;
  const std::lock_guard guard(turn);
  const int32_t result = sai_l2_addr_port_id_get(unit, &entry);
  if (result == SAI_E_NOT_FOUND) ++refusals;
  if (result == SAI_E_NONE || result == SAI_E_NOT_FOUND) ++answers_in_callbacks;
  use_what_is_shared();
}

class Threads : public testing::Test {
 protected:
  Threads() {
    link_events = l2_events = answers_in_callbacks = refusals = 0;
    handed_ports.clear();
    callback_threads.clear();
    support::start_chip();
    sai_log_default = open_sai_log("test", 0, 0, 0);
    sai_log_default->file = open_memstream(&log_text_, &log_size_);
    sai_log_default->show_priority = 1;
    sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_ERRORS);
    EXPECT_EQ(sai_vlan_create(unit, vlan), SAI_E_NONE);
    EXPECT_EQ(sai_register_link_service(hand_over), SAI_E_NONE);
    EXPECT_EQ(sai_register_l2_service(unit, ask_back), SAI_E_NONE);
  }

  ~Threads() override {
    swsdk_power_off();
    close_sai_log(std::exchange(sai_log_default, nullptr));
    free(log_text_);
  }

  std::vector<std::string> log_lines() {
    fflush(sai_log_default->file);
    std::istringstream text(std::string(log_text_, log_size_));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }

 private:
  char* log_text_ = nullptr;
  size_t log_size_ = 0;
};

/// One turn of the application: work on several families, pauses of link scanning and failures among it.
void take_turn(int round) {
  const std::lock_guard guard(turn);
  int32_t value = 0;
  EXPECT_EQ(sai_vlan_create(unit, 100), SAI_E_NONE);
  EXPECT_EQ(sai_vlan_destroy(unit, 100), SAI_E_NONE);
  EXPECT_EQ(sai_port_enable_set(unit, 1 + round % 12, 1), SAI_E_NONE);
  EXPECT_EQ(sai_port_enable_get(unit, 1 + round % 12, &value), SAI_E_NONE);
  use_what_is_shared();
}

TEST_F(Threads, OfTheChipAndOfTheApplicationWorkSideBySide) {
  std::atomic<bool> over = false;
  swsdk_journal_record(1);
  std::thread reader([&] {
    std::string text(1 << 16, '\0');
    while (!over) {
      swsdk_journal_read(text.data(), text.size());
      swsdk_journal_clear();
      swsdk_journal_record(1);
    }
  });
  int learned = 0;
  std::thread world([&] {
    for (int i = 0; i < rounds; ++i) {
      if (i % 10 == 0) {
        EXPECT_EQ(bcm_linkscan_enable_set(unit, 0), BCM_E_NONE);
        EXPECT_EQ(bcm_linkscan_enable_set(unit, 250000), BCM_E_NONE);
      }
      EXPECT_EQ(swsdk_link_event(unit, 1 + i % 12, i % 2), 0);
      learned += swsdk_l2_learn(unit, vlan, station, 1 + i % 12, 0);
      EXPECT_EQ(swsdk_clock_step(unit, i % 3 == 0 ? 700 : 0), 0);  // it ages away now and then
      if (i % 50 == 0) swsdk_events_drain();
    }
  });
  for (int i = 0; i < rounds; ++i) {
    take_turn(i);
    std::vector<int> ports;
    {
      const std::lock_guard guard(handed_lock);
      ports.swap(handed_ports);
    }
    const std::lock_guard guard(turn);
    int32_t up = 0;
    for (const int port : ports) EXPECT_EQ(sai_port_link_status_get(unit, port, &up), SAI_E_NONE);
  }
  world.join();
  swsdk_events_drain();
  over = true;
  reader.join();

  EXPECT_EQ(learned, rounds);
  EXPECT_GT(link_events, 0);  // those during a pause go by
  EXPECT_GT(l2_events, rounds / 2);
  EXPECT_EQ(answers_in_callbacks, l2_events);
  EXPECT_EQ(callback_threads.size(), 2U);  // link scan, and learning and aging
  EXPECT_FALSE(callback_threads.contains(std::this_thread::get_id()));
  const std::vector<std::string> lines = log_lines();
  EXPECT_EQ(lines.size(), static_cast<std::size_t>(refusals));
  for (const std::string& line : lines) EXPECT_TRUE(line.ends_with(": Entry not found")) << line;
}

TEST_F(Threads, OfTheChipHoldNothingWhileACallbackRuns) {
  std::promise<void> opened;
  {
    const std::lock_guard guard(handed_lock);
    gate = opened.get_future().share();
  }
  ASSERT_EQ(swsdk_link_event(unit, 1, 1), 0);
  ASSERT_EQ(swsdk_l2_learn(unit, vlan, station, 3, 0), 1);
  // The handler is still running, or yet to run; everybody else goes on.
  auto application = std::async(std::launch::async, [] { take_turn(0); });
  ASSERT_EQ(application.wait_for(std::chrono::seconds(20)), std::future_status::ready);
  opened.set_value();
  swsdk_events_drain();
  EXPECT_EQ(link_events, 1);
  EXPECT_EQ(l2_events, 1);
}

TEST_F(Threads, OfTheChipFinishTheirCallbackBeforeItIsSwitchedOff) {
  for (int i = 0; i < rounds; ++i) swsdk_link_event(unit, 1 + i % 12, i % 2);
  ASSERT_EQ(sai_unregister_l2_service(unit, ask_back), SAI_E_NONE);
  swsdk_power_off();
  const int told = link_events;
  EXPECT_EQ(swsdk_link_event(unit, 1, 1), -1);
  swsdk_events_drain();
  EXPECT_EQ(link_events, told);
}

}  // namespace
