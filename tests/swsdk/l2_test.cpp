// The MAC table through the SDK: what callers see, whom the chip tells, and what time does.
#include <bcm/l2.h>

#include <bcm/error.h>
#include <bcm/switch.h>
#include <bcm/trunk.h>
#include <bcm/vlan.h>
#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

#include "support/gports.h"
#include "support/scene.h"
#include "support/start.h"

namespace {

class L2 : public testing::Test {
 protected:
  L2() {
    support::start_chip();
    bcm_vlan_create(0, 10);
  }
  ~L2() override { swsdk_power_off(); }

  struct Mac {
    uint8 bytes[6];
    explicit Mac(uint8 last) : bytes{0x02, 0, 0, 0, 0, last} {}
    operator uint8*() { return bytes; }
  };

  static int add(uint8 last, int port = 3, uint32 flags = 0, int vid = 10) {
    bcm_l2_addr_t address;
    bcm_l2_addr_t_init(&address, Mac(last), static_cast<bcm_vlan_t>(vid));
    address.port = port;
    address.flags = flags;
    return bcm_l2_addr_add(0, &address);
  }
  static bool has(uint8 last) {
    bcm_l2_addr_t ignored;
    return bcm_l2_addr_get(0, Mac(last), 10, &ignored) == BCM_E_NONE;
  }
  static int add_on_trunk(uint8 last, int trunk) {
    bcm_l2_addr_t address;
    bcm_l2_addr_t_init(&address, Mac(last), 10);
    address.flags = BCM_L2_TRUNK_MEMBER;
    address.tgid = trunk;
    return bcm_l2_addr_add(0, &address);
  }
  static int create_trunk() {
    bcm_trunk_t id = -1;
    EXPECT_EQ(bcm_trunk_create(0, 0, &id), BCM_E_NONE);
    return id;
  }

  /// Passes time and waits for what it does.
  static void step(int seconds) {
    ASSERT_EQ(swsdk_clock_step(0, seconds), 0);
    swsdk_events_drain();
  }

  void listen() { ASSERT_EQ(bcm_l2_addr_register(0, on_change, this), BCM_E_NONE); }
  static void on_change(int unit, bcm_l2_addr_t* address, int operation, void* self) {
    const std::lock_guard guard(static_cast<L2*>(self)->lock_);
    static_cast<L2*>(self)->told_ += (operation == BCM_L2_CALLBACK_ADD ? "+" : "-") + std::to_string(address->mac[5]) +
                                     (address->flags & BCM_L2_TRUNK_MEMBER ? " trunk " + std::to_string(address->tgid)
                                                                           : " port " + std::to_string(address->port)) +
                                     "; ";
    EXPECT_EQ(unit, 0);
    EXPECT_NE(std::this_thread::get_id(), static_cast<L2*>(self)->own_thread_);
  }
  std::string told() {
    swsdk_events_drain();
    const std::lock_guard guard(lock_);
    return std::exchange(told_, "");
  }

 private:
  const std::thread::id own_thread_ = std::this_thread::get_id();
  std::mutex lock_;
  std::string told_;  // guarded by `lock_`
};

TEST_F(L2, AnAddedAddressIsRead) {
  ASSERT_EQ(add(1, 3, BCM_L2_STATIC | BCM_L2_DISCARD_DST), BCM_E_NONE);
  bcm_l2_addr_t found;
  std::memset(&found, 0xFF, sizeof found);
  ASSERT_EQ(bcm_l2_addr_get(0, Mac(1), 10, &found), BCM_E_NONE);
  EXPECT_EQ(found.flags, static_cast<uint32>(BCM_L2_STATIC | BCM_L2_DISCARD_DST));
  EXPECT_EQ(found.mac[5], 1);
  EXPECT_EQ(found.vid, 10);
  EXPECT_EQ(found.port, 3);
  EXPECT_EQ(found.modid, 0);
  EXPECT_EQ(bcm_l2_addr_delete(0, Mac(1), 10), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_addr_get(0, Mac(1), 10, &found), BCM_E_NOT_FOUND);
  EXPECT_EQ(bcm_l2_addr_delete(0, Mac(1), 10), BCM_E_NOT_FOUND);
}

TEST_F(L2, APortMayBeGivenAsAGport) {
  bcm_l2_addr_t found;
  ASSERT_EQ(add(1, support::gport(BCM_GPORT_TYPE_MODPORT, 5)), BCM_E_NONE);
  ASSERT_EQ(bcm_l2_addr_get(0, Mac(1), 10, &found), BCM_E_NONE);
  EXPECT_EQ(found.port, 5);
  const int virtual_port = 17 << 26 | 5;
  ASSERT_EQ(add(1, virtual_port), BCM_E_NONE);
  ASSERT_EQ(bcm_l2_addr_get(0, Mac(1), 10, &found), BCM_E_NONE);
  EXPECT_EQ(found.port, virtual_port);
}

TEST_F(L2, AnAddressOnATrunkNeedsTheTrunk) {
  EXPECT_EQ(add_on_trunk(1, 0), BCM_E_NOT_FOUND);
  EXPECT_EQ(add_on_trunk(1, 128), BCM_E_PARAM);
  const int trunk = create_trunk();
  EXPECT_EQ(add_on_trunk(1, trunk), BCM_E_NONE);
  EXPECT_EQ(add(2, support::gport(BCM_GPORT_TYPE_TRUNK, trunk)), BCM_E_NONE);
  bcm_l2_addr_t found;
  ASSERT_EQ(bcm_l2_addr_get(0, Mac(2), 10, &found), BCM_E_NONE);
  EXPECT_EQ(found.flags, static_cast<uint32>(BCM_L2_TRUNK_MEMBER));
  EXPECT_EQ(found.tgid, trunk);
  EXPECT_EQ(found.port, 0);
}

TEST_F(L2, BadArgumentsAreRefused) {
  EXPECT_EQ(add(1, 13), BCM_E_PORT);
  EXPECT_EQ(add(1, 3, 0, 0), BCM_E_PARAM);
  EXPECT_EQ(add(1, 3, 0x1), BCM_E_PARAM);
  bcm_l2_addr_t address;
  bcm_l2_addr_t_init(&address, Mac(1), 10);
  address.modid = 1;
  EXPECT_EQ(bcm_l2_addr_add(0, &address), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_addr_delete_by_vlan(0, 0, 0), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_addr_delete_by_port(0, 1, 3, 0), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_addr_delete_by_port(0, 0, 13, 0), BCM_E_PORT);
  EXPECT_EQ(bcm_l2_addr_delete_by_trunk(0, 128, 0), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_addr_delete_by_mac(0, Mac(1), 0x10), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_age_timer_set(0, -1), BCM_E_PARAM);
  EXPECT_EQ(bcm_l2_traverse(0, nullptr, nullptr), BCM_E_PARAM);
}

TEST_F(L2, BulkDeletionsTakeWhatTheyName) {
  const int trunk = create_trunk();
  const auto fill = [&] {
    add(1, 3);
    add(1, 4, 0, 11);
    add(2, 4);
    add(3, 3, BCM_L2_STATIC);
    add_on_trunk(4, trunk);
  };
  const auto left = [] {
    int counts[2];
    bcm_switch_object_t objects[] = {bcmSwitchObjectL2EntryCurrent, bcmSwitchObjectL2EntryMax};
    EXPECT_EQ(bcm_switch_object_count_multi_get(0, 2, objects, counts), BCM_E_NONE);
    EXPECT_EQ(counts[1], 32768);
    return counts[0];
  };
  fill();
  EXPECT_EQ(left(), 5);
  EXPECT_EQ(bcm_l2_addr_delete_by_mac(0, Mac(1), 0), BCM_E_NONE);
  EXPECT_EQ(left(), 3);
  fill();
  EXPECT_EQ(bcm_l2_addr_delete_by_vlan(0, 11, 0), BCM_E_NONE);
  EXPECT_EQ(left(), 4);
  EXPECT_EQ(bcm_l2_addr_delete_by_port(0, 0, 3, 0), BCM_E_NONE);
  EXPECT_FALSE(has(1));
  EXPECT_TRUE(has(3));
  EXPECT_EQ(bcm_l2_addr_delete_by_port(0, 0, 3, 0x1), BCM_E_NONE);
  EXPECT_FALSE(has(3));
  EXPECT_EQ(bcm_l2_addr_delete_by_port(0, 0, 0, 0), BCM_E_NONE) << "a trunk is not at port 0";
  EXPECT_TRUE(has(4));
  EXPECT_EQ(bcm_l2_addr_delete_by_trunk(0, trunk, 0), BCM_E_NONE);
  EXPECT_FALSE(has(4));
  EXPECT_EQ(left(), 1);
  EXPECT_EQ(bcm_l2_init(0), BCM_E_NONE);
  EXPECT_EQ(left(), 0);
}

TEST_F(L2, OnlyTheCountsThatThereAreAreTold) {
  int counts[2] = {-1, -1};
  bcm_switch_object_t objects[] = {bcmSwitchObjectL2EntryCurrent, static_cast<bcm_switch_object_t>(1)};
  EXPECT_EQ(bcm_switch_object_count_multi_get(0, 2, objects, counts), BCM_E_UNAVAIL);
  EXPECT_EQ(counts[0], -1);
  EXPECT_EQ(bcm_switch_object_count_multi_get(0, 0, objects, counts), BCM_E_PARAM);
}

TEST_F(L2, TheTraversalVisitsEveryAddress) {
  for (int i = 0; i < 200; ++i) add(static_cast<uint8>(i), 1 + i % 12);
  int sum = 0;
  const auto visit = [](int unit, bcm_l2_addr_t* address, void* user_data) {
    EXPECT_EQ(unit, 0);
    EXPECT_EQ(address->port, 1 + address->mac[5] % 12);
    *static_cast<int*>(user_data) += address->mac[5];
    return 1;
  };
  EXPECT_EQ(bcm_l2_traverse(0, visit, &sum), BCM_E_NONE);
  EXPECT_EQ(sum, 199 * 200 / 2);
}

TEST_F(L2, TheTraversalEndsWhereItsCallbackFails) {
  for (uint8 i = 0; i < 10; ++i) add(i);
  int visits = 0;
  const auto visit = [](int, bcm_l2_addr_t*, void* user_data) -> int {
    return ++*static_cast<int*>(user_data) == 3 ? BCM_E_RESOURCE : BCM_E_NONE;
  };
  EXPECT_EQ(bcm_l2_traverse(0, visit, &visits), BCM_E_RESOURCE);
  EXPECT_EQ(visits, 3);
}

TEST_F(L2, TheCallbackOfATraversalMayCallTheSdkAndWaitForItsThreads) {
  listen();
  add(1);
  add(2);
  const auto visit = [](int unit, bcm_l2_addr_t* address, void*) -> int {
    const int rv = bcm_l2_addr_delete(unit, address->mac, address->vid);
    std::thread([] { add(9); }).join();
    swsdk_events_drain();
    return rv;
  };
  EXPECT_EQ(bcm_l2_traverse(0, visit, nullptr), BCM_E_NONE);
  EXPECT_FALSE(has(1));
  EXPECT_FALSE(has(2));
  EXPECT_TRUE(has(9));
}

TEST_F(L2, ATraversalFollowsTheCallsOfItsCallbackInTheJournal) {
  add(1);
  swsdk_journal_record(1);
  bcm_l2_traverse(
      0, [](int unit, bcm_l2_addr_t*, void*) { return bcm_vlan_create(unit, 20); }, nullptr);
  bcm_l2_traverse(
      0, [](int unit, bcm_l2_addr_t*, void*) { return bcm_vlan_create(unit, 20); }, nullptr);
  EXPECT_EQ(support::journal(),
            "bcm_vlan_create(0, 20) = 0\n"
            "bcm_l2_traverse(0, <callback>, NULL) = 0\n"
            "bcm_vlan_create(0, 20) = -8\n"
            "bcm_l2_traverse(0, <callback>, NULL) = -8\n");
}

TEST_F(L2, ListenersHearOfEveryChange) {
  listen();
  add(1, 3);
  add(1, 4);
  bcm_l2_addr_delete(0, Mac(1), 10);
  const int trunk = create_trunk();
  add_on_trunk(2, trunk);
  bcm_l2_addr_delete_by_trunk(0, trunk, 0);
  EXPECT_EQ(told(), "+1 port 3; -1 port 3; +1 port 4; -1 port 4; +2 trunk 0; -2 trunk 0; ");
}

TEST_F(L2, ListenersHearOfWhatFramesAndTimeDo) {
  listen();
  EXPECT_EQ(swsdk_l2_learn(0, 10, Mac(1), 3, 0), 1);
  EXPECT_EQ(swsdk_l2_learn(0, 10, Mac(1), 3, 0), 1);
  EXPECT_EQ(swsdk_l2_learn(0, 10, Mac(1), 4, 0), 1);
  step(600);
  EXPECT_EQ(told(), "+1 port 3; -1 port 3; +1 port 4; -1 port 4; ");
}

TEST_F(L2, ListenersHearNothingOfASilentDeletionOrAFailure) {
  listen();
  add(1, 13);
  add(1);
  bcm_l2_addr_delete_by_port(0, 0, 3, 0x4);
  bcm_l2_addr_delete(0, Mac(1), 10);
  EXPECT_EQ(told(), "+1 port 3; ");
}

TEST_F(L2, AListenerHearsOnlyWhatHappensWhileItListens) {
  add(1);
  listen();
  add(2);
  EXPECT_EQ(told(), "+2 port 3; ");
  EXPECT_EQ(bcm_l2_addr_unregister(0, on_change, this), BCM_E_NONE);
  add(3);
  EXPECT_EQ(told(), "");
}

TEST_F(L2, AListenerMayCallTheSdk) {
  const auto delete_it = [](int unit, bcm_l2_addr_t* address, int operation, void*) {
    if (operation == BCM_L2_CALLBACK_ADD) bcm_l2_addr_delete(unit, address->mac, address->vid);
  };
  ASSERT_EQ(bcm_l2_addr_register(0, delete_it, nullptr), BCM_E_NONE);
  listen();
  add(1);
  EXPECT_EQ(told(), "+1 port 3; -1 port 3; ");
  EXPECT_FALSE(has(1));
}

TEST_F(L2, AddressesAgeOnTheChipsClock) {
  int seconds = 0;
  EXPECT_EQ(bcm_l2_age_timer_get(0, &seconds), BCM_E_NONE);
  EXPECT_EQ(seconds, 300);
  ASSERT_EQ(bcm_l2_age_timer_set(0, 60), BCM_E_NONE);
  EXPECT_EQ(bcm_l2_age_timer_get(0, &seconds), BCM_E_NONE);
  EXPECT_EQ(seconds, 60);
  add(1);
  add(2, 3, BCM_L2_STATIC);
  swsdk_l2_learn(0, 10, Mac(3), 3, 0);
  step(60);
  EXPECT_TRUE(has(1));
  swsdk_l2_learn(0, 10, Mac(3), 3, 0);
  step(60);
  EXPECT_FALSE(has(1));
  EXPECT_TRUE(has(2));
  EXPECT_TRUE(has(3));
}

TEST_F(L2, LookupsKeepDestinationsOnlyWhileTheirHitsAreEnabled) {
  add(1);
  add(2);
  step(300);
  EXPECT_EQ(swsdk_l2_lookup(0, 10, Mac(1)), 1);
  ASSERT_EQ(bcm_switch_control_set(0, bcmSwitchL2DstHitEnable, 1), BCM_E_NONE);
  EXPECT_EQ(swsdk_l2_lookup(0, 10, Mac(2)), 1);
  EXPECT_EQ(swsdk_l2_lookup(0, 10, Mac(3)), 0);
  step(300);
  EXPECT_FALSE(has(1));
  EXPECT_TRUE(has(2));
}

TEST_F(L2, AddressesComeAndGoWhileTimePasses) {
  listen();
  ASSERT_EQ(bcm_l2_age_timer_set(0, 1), BCM_E_NONE);
  std::thread clock([] {
    for (int i = 0; i < 50; ++i) swsdk_clock_step(0, 1);
  });
  int count = 0;
  for (int i = 0; i < 200; ++i) {
    EXPECT_EQ(add(static_cast<uint8>(i)), BCM_E_NONE);
    EXPECT_EQ(bcm_l2_traverse(
                  0, [](int, bcm_l2_addr_t*, void* n) { return ++*static_cast<int*>(n), 0; }, &count),
              BCM_E_NONE);
  }
  clock.join();
  step(2);
  const std::string all = told();
  EXPECT_EQ(std::count(all.begin(), all.end(), '+'), 200);
  EXPECT_EQ(std::count(all.begin(), all.end(), '-'), 200);
}

TEST_F(L2, LearnLimitsAreSetReadAndHeeded) {
  bcm_l2_learn_limit_t limit;
  bcm_l2_learn_limit_t_init(&limit);
  limit.flags = BCM_L2_LEARN_LIMIT_PORT | BCM_L2_LEARN_LIMIT_VLAN | BCM_L2_LEARN_LIMIT_ACTION_CPU;
  limit.port = 3;
  limit.vlan = 10;
  limit.limit = 1;
  ASSERT_EQ(bcm_l2_learn_limit_set(0, &limit), BCM_E_NONE);
  bcm_l2_learn_limit_t found;
  bcm_l2_learn_limit_t_init(&found);
  found.flags = BCM_L2_LEARN_LIMIT_PORT;
  found.port = 3;
  ASSERT_EQ(bcm_l2_learn_limit_get(0, &found), BCM_E_NONE);
  EXPECT_EQ(found.limit, 1);
  EXPECT_EQ(found.flags, static_cast<uint32>(BCM_L2_LEARN_LIMIT_PORT | BCM_L2_LEARN_LIMIT_ACTION_CPU));
  ASSERT_EQ(bcm_l2_learn_limit_enable(0), BCM_E_NONE);
  EXPECT_EQ(swsdk_l2_learn(0, 10, Mac(1), 3, 0), 1);
  EXPECT_EQ(swsdk_l2_learn(0, 10, Mac(2), 3, 0), 0);
  ASSERT_EQ(bcm_l2_learn_limit_disable(0), BCM_E_NONE);
  EXPECT_EQ(swsdk_l2_learn(0, 10, Mac(2), 3, 0), 1);
}

TEST_F(L2, TheControlInterfaceRefusesWhatThereIsNot) {
  EXPECT_EQ(swsdk_l2_learn(1, 10, Mac(1), 3, 0), -1);
  EXPECT_EQ(swsdk_l2_learn(0, 0, Mac(1), 3, 0), -1);
  EXPECT_EQ(swsdk_l2_learn(0, 4096, Mac(1), 3, 0), -1);
  EXPECT_EQ(swsdk_l2_learn(0, 10, Mac(1), 13, 0), -1);
  EXPECT_EQ(swsdk_l2_learn(0, 10, nullptr, 3, 0), -1);
  EXPECT_EQ(swsdk_l2_lookup(1, 10, Mac(1)), -1);
  EXPECT_EQ(swsdk_l2_lookup(0, 4096, Mac(1)), -1);
  EXPECT_EQ(swsdk_l2_lookup(0, 10, nullptr), -1);
  EXPECT_EQ(swsdk_clock_step(1, 1), -1);
  EXPECT_EQ(swsdk_clock_step(0, -1), -1);
  support::attach_chip();
  EXPECT_EQ(swsdk_clock_step(0, 1), -1);
}

}  // namespace
