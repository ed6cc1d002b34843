// Link and L2 events, which reach the callbacks from the chip's own threads.
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/l2.h>
#include <bcm/link.h>
#include <bcm/port.h>
#include <bcm/vlan.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <future>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "support/chip_test.h"

namespace {

using namespace std::chrono_literals;

constexpr unsigned char station[6] = {2, 0, 0, 0, 0, 7};

/// Ends the program when `work` takes so long that it must hang: nothing else ends a thread that waits forever.
void promptly(const std::function<void()>& work) {
  std::promise<void> done;
  std::thread watch([over = done.get_future()] {
    if (over.wait_for(20s) == std::future_status::ready) return;
    std::fputs("still waiting after 20 seconds\n", stderr);
    std::abort();
  });
  work();
  done.set_value();
  watch.join();
}

void drain() { promptly(swsdk_events_drain); }

void power_off() { promptly(swsdk_power_off); }

/// What the callbacks were told, in its order; they have nowhere else to put it.
std::mutex lock;
std::vector<std::string> told;
std::set<std::thread::id> tellers;
/// What the next link callback does beside, once.
std::function<void()> on_link;

void tell(const std::string& text) {
  const std::lock_guard guard(lock);
  told.push_back(text);
  tellers.insert(std::this_thread::get_id());
}

std::vector<std::string> take() {
  drain();
  const std::lock_guard guard(lock);
  return std::exchange(told, {});
}

template <char name>
void link_handler(int unit, bcm_port_t port, bcm_port_info_t* info) {
  tell(std::string(1, name) + " " + std::to_string(unit) + "/" + std::to_string(port) +
       (info->linkstatus != 0 ? " up" : " down"));
  info->linkstatus = 77;  // the record is the callback's own
  if (const auto work = std::exchange(on_link, nullptr)) work();
}

constexpr auto first = link_handler<'a'>;
constexpr auto second = link_handler<'b'>;

void l2_callback(int unit, bcm_l2_addr_t* address, int operation, void* user_data) {
  tell(std::string(static_cast<const char*>(user_data)) + " " + std::to_string(unit) + " " + std::to_string(operation) +
       " vlan " + std::to_string(address->vid) + " station " + std::to_string(address->mac[5]) + " port " +
       std::to_string(address->port));
  *address = {};
}

char x[] = "x";
char y[] = "y";

class Events : public support::ChipTest {
 protected:
  Events() {
    told.clear();
    tellers.clear();
    on_link = nullptr;
  }

  static constexpr int down = 0;
  static constexpr int up = 1;
};

using Told = std::vector<std::string>;

TEST_F(Events, OfLinksReachEveryHandlerInTheOrderOfTheirRegistration) {
  EXPECT_EQ(bcm_linkscan_register(0, second), BCM_E_NONE);
  EXPECT_EQ(bcm_linkscan_register(0, first), BCM_E_NONE);
  EXPECT_EQ(swsdk_link_event(0, 3, up), 0);
  EXPECT_EQ(swsdk_link_event(0, 3, down), 0);
  EXPECT_EQ(swsdk_link_event(0, 12, -5), 0);
  EXPECT_EQ(take(), (Told{"b 0/3 up", "a 0/3 up", "b 0/3 down", "a 0/3 down", "b 0/12 up", "a 0/12 up"}));
}

TEST_F(Events, OfLinksThatHaveACableComeAgainWhenTheChipIsInitializedAnew) {
  bcm_linkscan_register(0, first);
  swsdk_link_event(0, 3, up);
  swsdk_link_event(0, 5, up);
  swsdk_link_event(0, 5, down);
  bcm_linkscan_enable_set(0, 0);
  take();
  EXPECT_EQ(system_init(0), BCM_E_NONE);
  EXPECT_EQ(take(), Told{"a 0/3 up"});
}

TEST_F(Events, OfTheMacTableReachEveryCallbackInTheOrderOfTheirRegistration) {
  EXPECT_EQ(bcm_l2_addr_register(0, l2_callback, y), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_addr_register(0, l2_callback, x), BCM_E_NONE);
  EXPECT_EQ(swsdk_l2_event(0, BCM_L2_CALLBACK_ADD, 10, station, 5), 0);
  EXPECT_EQ(swsdk_l2_event(0, 99, 4095, station, 0), 0);
  EXPECT_EQ(take(), (Told{"y 0 1 vlan 10 station 7 port 5", "x 0 1 vlan 10 station 7 port 5",
                          "y 0 99 vlan 4095 station 7 port 0", "x 0 99 vlan 4095 station 7 port 0"}));
}

TEST_F(Events, AreToldByOneThreadOfEachKindThatIsNotTheCallers) {
  bcm_linkscan_register(0, first);
  bcm_l2_addr_register(0, l2_callback, x);
  for (int i = 0; i < 5; ++i) {
    swsdk_link_event(0, 1, up);
    swsdk_l2_event(0, 1, 1, station, 1);
  }
  EXPECT_EQ(take().size(), 10U);
  EXPECT_EQ(tellers.size(), 2U);
  EXPECT_FALSE(tellers.contains(std::this_thread::get_id()));
}

TEST_F(Events, ReachTheCallbacksOfTheirUnitAlone) {
  support::start_chip(2);
  bcm_linkscan_register(0, first);
  bcm_linkscan_register(1, second);
  bcm_l2_addr_register(1, l2_callback, x);
  swsdk_link_event(1, 3, up);
  swsdk_l2_event(0, 1, 10, station, 5);
  swsdk_l2_event(1, 1, 10, station, 5);
  const Told all = take();
  EXPECT_EQ(std::set<std::string>(all.begin(), all.end()),
            (std::set<std::string>{"b 1/3 up", "x 1 1 vlan 10 station 7 port 5"}));
  EXPECT_EQ(all.size(), 2U);
}

TEST_F(Events, AreRefusedForWhatTheChipDoesNotHave) {
  for (const int port : {-1, 0, 13, 256}) EXPECT_EQ(swsdk_link_event(0, port, up), -1) << port;
  for (const int port : {-1, 13, 256}) EXPECT_EQ(swsdk_l2_event(0, 1, 1, station, port), -1) << port;
  for (const int vid : {-1, 0, 4096, 65537}) EXPECT_EQ(swsdk_l2_event(0, 1, vid, station, 1), -1) << vid;
  EXPECT_EQ(swsdk_l2_event(0, 1, 1, nullptr, 1), -1);
  for (const int unit : {-1, 1}) {
    EXPECT_EQ(swsdk_link_event(unit, 1, up), -1) << unit;
    EXPECT_EQ(swsdk_l2_event(unit, 1, 1, station, 1), -1) << unit;
  }
  support::attach_chip();
  EXPECT_EQ(swsdk_link_event(0, 1, up), -1);
  EXPECT_EQ(swsdk_l2_event(0, 1, 1, station, 1), -1);
}

TEST_F(Events, WithNobodyWhoListensAreForgotten) {
  EXPECT_EQ(swsdk_link_event(0, 1, up), 0);
  drain();
  bcm_linkscan_register(0, first);
  EXPECT_EQ(take(), Told{});
}

TEST_F(Events, TakeACallbackOnceAndOnlyARealOne) {
  EXPECT_EQ(bcm_linkscan_register(0, nullptr), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_addr_register(0, nullptr, x), BCM_E_PARAM);
  EXPECT_EQ(bcm_linkscan_register(0, first), BCM_E_NONE);
  EXPECT_EQ(bcm_linkscan_register(0, first), BCM_E_EXISTS);
  EXPECT_EQ(bcm_l2_addr_register(0, l2_callback, x), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_addr_register(0, l2_callback, x), BCM_E_EXISTS);
  swsdk_link_event(0, 1, up);
  EXPECT_EQ(take().size(), 1U);
}

TEST_F(Events, TakeUpTo32Callbacks) {
  std::vector<char> data(33);
  for (std::size_t i = 0; i < 32; ++i) ASSERT_EQ(bcm_l2_addr_register(0, l2_callback, &data[i]), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_addr_register(0, l2_callback, &data[32]), BCM_E_RESOURCE);
  EXPECT_EQ(bcm_l2_addr_unregister(0, l2_callback, &data[7]), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_addr_register(0, l2_callback, &data[32]), BCM_E_NONE);
  swsdk_l2_event(0, 1, 1, station, 1);
  EXPECT_EQ(take().size(), 32U);
}

TEST_F(Events, ReachAnUnregisteredCallbackNoMore) {
  bcm_linkscan_register(0, first);
  bcm_linkscan_register(0, second);
  EXPECT_EQ(bcm_linkscan_unregister(0, first), BCM_E_NONE);
  EXPECT_EQ(bcm_linkscan_unregister(0, first), BCM_E_NOT_FOUND);
  swsdk_link_event(0, 3, up);
  EXPECT_EQ(take(), Told{"b 0/3 up"});

  bcm_l2_addr_register(0, l2_callback, x);
  bcm_l2_addr_register(0, l2_callback, y);
  EXPECT_EQ(bcm_l2_addr_unregister(0, l2_callback, x), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_addr_unregister(0, l2_callback, x), BCM_E_NOT_FOUND);
  swsdk_l2_event(0, 0, 10, station, 5);
  EXPECT_EQ(take(), Told{"y 0 0 vlan 10 station 7 port 5"});
}

TEST_F(Events, DoNotReachACallbackThatAnEarlierOneUnregistered) {
  bcm_linkscan_register(0, first);
  bcm_linkscan_register(0, second);
  on_link = [] { bcm_linkscan_unregister(0, second); };
  swsdk_link_event(0, 3, up);
  EXPECT_EQ(take(), Told{"a 0/3 up"});
}

TEST_F(Events, LetACallbackCallTheChip) {
  bcm_linkscan_register(0, first);
  std::atomic<int> code = 1;
  on_link = [&] { code = bcm_vlan_create(0, 10); };
  swsdk_link_event(0, 3, up);
  drain();
  EXPECT_EQ(code, BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_create(0, 10), BCM_E_EXISTS);
}

TEST_F(Events, LetACallbackRaiseOthersOfBothKinds) {
  bcm_linkscan_register(0, first);
  bcm_linkscan_register(0, second);
  on_link = [] { swsdk_link_event(0, 4, down); };
  swsdk_link_event(0, 3, up);
  EXPECT_EQ(take(), (Told{"a 0/3 up", "b 0/3 up", "a 0/4 down", "b 0/4 down"}));

  bcm_linkscan_unregister(0, second);
  bcm_l2_addr_register(0, l2_callback, x);
  on_link = [] { swsdk_l2_event(0, 1, 10, station, 5); };
  swsdk_link_event(0, 3, up);
  EXPECT_EQ(take(), (Told{"a 0/3 up", "x 0 1 vlan 10 station 7 port 5"}));
}

TEST_F(Events, AreWaitedForUntilTheLastCallbackIsThrough) {
  bcm_linkscan_register(0, first);
  std::atomic<bool> through = false;
  on_link = [&] {
    std::this_thread::sleep_for(50ms);
    through = true;
  };
  swsdk_link_event(0, 3, up);
  drain();
  EXPECT_TRUE(through);
}

TEST_F(Events, ThatACallbackOfTheOtherKindRaisesAreWaitedForToo) {
  bcm_linkscan_register(0, first);
  const auto raise = [](int, bcm_l2_addr_t*, int, void*) {
    std::this_thread::sleep_for(20ms);
    swsdk_link_event(0, 3, up);
  };
  bcm_l2_addr_register(0, raise, nullptr);
  std::atomic<bool> through = false;
  on_link = [&] {
    std::this_thread::sleep_for(50ms);
    through = true;
  };
  swsdk_l2_event(0, 1, 10, station, 5);
  drain();
  EXPECT_TRUE(through);
}

std::promise<void> l2_may_end;

TEST_F(Events, AreNotWaitedForByACallback) {
  bcm_linkscan_register(0, first);
  l2_may_end = {};
  const auto wait = [](int, bcm_l2_addr_t*, int, void*) {
    swsdk_events_drain();
    l2_may_end.get_future().wait();
  };
  bcm_l2_addr_register(0, wait, nullptr);
  on_link = [] {
    swsdk_events_drain();
    l2_may_end.set_value();
  };
  swsdk_l2_event(0, 1, 10, station, 5);
  swsdk_link_event(0, 3, up);
  drain();
}

TEST_F(Events, FromManyThreadsAtOnceAreAllTold) {
  constexpr int threads = 8;
  constexpr int rounds = 100;
  bcm_linkscan_register(0, first);
  bcm_l2_addr_register(0, l2_callback, x);
  std::vector<std::thread> raisers;
  for (int port = 1; port <= threads; ++port)
    raisers.emplace_back([port] {
      for (int i = 1; i <= rounds; ++i) {
        swsdk_link_event(0, port, i % 2);
        swsdk_l2_event(0, port, i, station, port);
      }
    });
  for (std::thread& raiser : raisers) raiser.join();

  Told of_links[threads + 1];
  Told of_stations[threads + 1];
  for (const std::string& text : take()) {
    if (text.starts_with("a 0/"))
      of_links[text[4] - '0'].push_back(text);
    else
      of_stations[text.back() - '0'].push_back(text);
  }
  for (int port = 1; port <= threads; ++port) {
    const std::string number = std::to_string(port);
    ASSERT_EQ(of_links[port].size(), 1U * rounds);
    ASSERT_EQ(of_stations[port].size(), 1U * rounds);
    for (int i = 1; i <= rounds; ++i) {
      const auto index = static_cast<std::size_t>(i - 1);
      EXPECT_EQ(of_links[port][index], "a 0/" + number + (i % 2 != 0 ? " up" : " down"));
      EXPECT_EQ(of_stations[port][index], "x 0 " + number + " vlan " + std::to_string(i) + " station 7 port " + number);
    }
  }
}

TEST_F(Events, OfOneLinkAreInTheOrderOfItsChanges) {
  constexpr int rounds = 2000;
  bcm_linkscan_register(0, first);
  std::atomic<int> begun = 0;
  std::atomic<int> ended = 0;
  std::thread other([&] {
    for (int round = 1; round <= rounds; ++round) {
      while (begun < round) continue;
      swsdk_link_event(0, 1, down);
      ended = round;
    }
  });
  int out_of_order = 0;
  for (int round = 1; round <= rounds; ++round) {
    begun = round;
    swsdk_link_event(0, 1, up);
    while (ended < round) continue;
    int status = -1;
    bcm_port_link_status_get(0, 1, &status);
    out_of_order += take().back() != (status != 0 ? "a 0/1 up" : "a 0/1 down");
  }
  other.join();
  EXPECT_EQ(out_of_order, 0);
}

TEST_F(Events, ThatArePendingAtPowerOffAreForgotten) {
  bcm_linkscan_register(0, first);
  std::promise<void> running;
  on_link = [&] {
    running.set_value();
    std::this_thread::sleep_for(50ms);
  };
  for (int i = 0; i < 100; ++i) swsdk_link_event(0, 3, up);
  running.get_future().wait();
  power_off();
  EXPECT_EQ(told.size(), 1U);
  support::start_chip();
  bcm_linkscan_register(0, second);
  EXPECT_EQ(take(), Told{"a 0/3 up"});
}

TEST_F(Events, AreToldAgainAfterPowerOff) {
  for (int round = 0; round < 3; ++round) {
    bcm_linkscan_register(0, first);
    bcm_l2_addr_register(0, l2_callback, x);
    swsdk_link_event(0, 3, up);
    swsdk_l2_event(0, 1, 10, station, 5);
    EXPECT_EQ(take().size(), 2U);
    power_off();
    support::start_chip();
    swsdk_link_event(0, 3, up);
    swsdk_l2_event(0, 1, 10, station, 5);
    EXPECT_EQ(take(), Told{});
  }
}

TEST_F(Events, ThatCallbacksRaiseDuringPowerOffAreForgotten) {
  static std::atomic<bool> off;
  static std::atomic<int> running;
  off = false;
  running = 0;
  const auto raise = [] {
    ++running;
    while (!off) std::this_thread::yield();
    for (int i = 0; i < 3; ++i) {
      std::this_thread::sleep_for(20ms);
      swsdk_link_event(0, 4, up);
      swsdk_l2_event(0, 1, 11, station, 5);
      swsdk_events_drain();
    }
  };
  bcm_linkscan_register(0, first);
  const auto on_l2 = [](int, bcm_l2_addr_t*, int, void* work) { (*static_cast<decltype(raise)*>(work))(); };
  bcm_l2_addr_register(0, on_l2, const_cast<void*>(static_cast<const void*>(&raise)));
  on_link = raise;
  swsdk_link_event(0, 3, up);
  swsdk_l2_event(0, 1, 10, station, 5);
  while (running < 2) std::this_thread::yield();
  off = true;
  power_off();
  EXPECT_EQ(told, Told{"a 0/3 up"});

  support::start_chip();
  bcm_linkscan_register(0, second);
  bcm_l2_addr_register(0, l2_callback, x);
  EXPECT_EQ(take(), Told{"a 0/3 up"});
  swsdk_link_event(0, 5, up);
  EXPECT_EQ(take(), Told{"b 0/5 up"});
}

/// One of a program's own objects.
struct Witness {
  ~Witness() {
    gone = true;
    std::this_thread::sleep_for(50ms);
  }
  std::atomic<bool> gone = false;
} witness;

TEST_F(Events, EndBeforeTheObjectsOfAProgramThatLeavesTheChipOn) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto leave = [] {
    const auto look = [](int, bcm_port_t, bcm_port_info_t*) {
      std::this_thread::sleep_for(1ms);
      if (witness.gone) std::_Exit(7);
    };
    bcm_linkscan_register(0, look);
    for (int i = 0; i < 1000; ++i) swsdk_link_event(0, 3, up);
    std::exit(0);
  };
  EXPECT_EXIT(leave(), testing::ExitedWithCode(0), "");
}

TEST_F(Events, SurviveThatTheirUnitIsInitializedAnew) {
  bcm_linkscan_register(0, first);
  std::thread initializer([] {
    for (int i = 0; i < 50; ++i) EXPECT_EQ(system_init(0), BCM_E_NONE);
  });
  for (int i = 0; i < 50; ++i) EXPECT_EQ(swsdk_link_event(0, 3, down), 0);
  initializer.join();
  EXPECT_EQ(take().size(), 50U);
}

}  // namespace
