#include <bcm/error.h>
#include <bcm/l2.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <algorithm>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

#include "support/scene.h"
#include "support/start.h"

namespace {

/// What the callbacks were told, a line per call; they run on the chip's threads.
std::mutex lock;
std::string told;  // guarded by `lock`
std::thread::id teller;

std::string take_told() {
  swsdk_events_drain();
  const std::lock_guard guard(lock);
  return std::exchange(told, "");
}

void on_link(int unit, bcm_port_t port, bcm_port_info_t* info) {
  const std::lock_guard guard(lock);
  told +=
      "unit " + std::to_string(unit) + " port " + std::to_string(port) + (info->linkstatus != 0 ? " up\n" : " down\n");
  teller = std::this_thread::get_id();
}

void add_l2_line(const char* who, uint16_t vid, int32_t port, const uint8_t* mac, int32_t operation) {
  const std::lock_guard guard(lock);
  told += std::string(who) + " vid " + std::to_string(vid) + " port " + std::to_string(port) + " last byte " +
          std::to_string(mac[5]) + " operation " + std::to_string(operation) + '\n';
  teller = std::this_thread::get_id();
}

void on_l2(uint16_t vid, int32_t port, uint8_t* mac, int32_t operation) {
  add_l2_line("first", vid, port, mac, operation);
}

void on_l2_too(uint16_t vid, int32_t port, uint8_t* mac, int32_t operation) {
  add_l2_line("second", vid, port, mac, operation);
}

constexpr uint8_t mac[6] = {0x02, 0, 0, 0, 0, 0x2A};

class Events : public support::Scene {
 protected:
  Events() { take_told(); }
};

TEST_F(Events, ALinkServiceHearsOfEveryUnitOnTheChipsOwnThread) {
  support::start_chip(2);
  EXPECT_EQ(observe([] { return sai_register_link_service(on_link); }),
            "bcm_linkscan_register(0, <callback>) = 0\n"
            "bcm_linkscan_register(1, <callback>) = 0\n"
            "returned 0\n");
  ASSERT_EQ(swsdk_link_event(0, 1, 1), 0);
  ASSERT_EQ(swsdk_link_event(1, 12, 1), 0);
  ASSERT_EQ(swsdk_link_event(0, 1, 0), 0);
  EXPECT_EQ(take_told(), "unit 0 port 1 up\nunit 1 port 12 up\nunit 0 port 1 down\n");
  EXPECT_NE(teller, std::this_thread::get_id());
}

TEST_F(Events, AUnitThatRefusesTheLinkServiceIsLoggedAndMayBeTriedAgain) {
  support::start_chip(2);
  EXPECT_EQ(observe_failing("bcm_linkscan_register", BCM_E_MEMORY, [] { return sai_register_link_service(on_link); }),
            "bcm_linkscan_register(0, <callback>) = -2\n"
            "bcm_linkscan_register(1, <callback>) = 0\n"
            "log: errors: NONE: unit 0 register linkscan service failed: Out of memory\n"
            "returned 0\n");
  swsdk_link_event(0, 1, 1);
  swsdk_link_event(1, 2, 1);
  EXPECT_EQ(take_told(), "unit 1 port 2 up\n");

  EXPECT_EQ(observe([] { return sai_register_link_service(on_link); }),
            "bcm_linkscan_register(0, <callback>) = 0\n"
            "bcm_linkscan_register(1, <callback>) = -8\n"
            "log: errors: NONE: unit 1 register linkscan service failed: Entry already exists\n"
            "returned 0\n");
  swsdk_link_event(0, 1, 0);
  swsdk_link_event(1, 2, 0);
  EXPECT_EQ(take_told(), "unit 0 port 1 down\nunit 1 port 2 down\n");
}

TEST_F(Events, WithoutAUnitNoLinkServiceIsRegistered) {
  swsdk_power_off();
  EXPECT_EQ(observe([] { return sai_register_link_service(on_link); }), "returned 0\n");
}

TEST_F(Events, AnL2ServiceIsToldAddressVlanPortAndOperation) {
  EXPECT_EQ(observe([] { return sai_register_l2_service(unit, on_l2); }),
            "bcm_l2_addr_register(0, <callback>, <pointer>) = 0\n"
            "returned 0\n");
  ASSERT_EQ(swsdk_l2_event(unit, BCM_L2_CALLBACK_ADD, 10, mac, 3), 0);
  ASSERT_EQ(swsdk_l2_event(unit, 77, 4095, mac, 12), 0);
  EXPECT_EQ(take_told(), "first vid 10 port 3 last byte 42 operation " + std::to_string(BCM_L2_CALLBACK_ADD) +
                             "\nfirst vid 4095 port 12 last byte 42 operation 77\n");
  EXPECT_NE(teller, std::this_thread::get_id());
}

TEST_F(Events, OneOfTwoL2ServicesIsUnregisteredByItsFunction) {
  ASSERT_EQ(sai_register_l2_service(unit, on_l2), 0);
  ASSERT_EQ(sai_register_l2_service(unit, on_l2_too), 0);
  EXPECT_EQ(observe([] { return sai_unregister_l2_service(unit, on_l2); }),
            "bcm_l2_addr_unregister(0, <callback>, <pointer>) = 0\n"
            "returned 0\n");
  ASSERT_EQ(swsdk_l2_event(unit, 1, 10, mac, 3), 0);
  EXPECT_EQ(take_told(), "second vid 10 port 3 last byte 42 operation 1\n");
}

TEST_F(Events, BothL2FailuresSpeakOfRegistering) {
  EXPECT_EQ(observe_failing("bcm_l2_addr_register", BCM_E_FULL, [] { return sai_register_l2_service(unit, on_l2); }),
            "bcm_l2_addr_register(0, <callback>, <pointer>) = -6\n"
            "log: errors: NONE: unit 0 register l2 watch service failed: Table is full\n"
            "returned -13\n");
  EXPECT_EQ(observe([] { return sai_unregister_l2_service(unit, on_l2); }),
            "bcm_l2_addr_unregister(0, <callback>, <pointer>) = -7\n"
            "log: errors: NONE: unit 0 register l2 watch service failed: Entry not found\n"
            "returned -7\n");
}

TEST_F(Events, AnEventForAServiceThatIsNullIsDropped) {
  ASSERT_EQ(sai_register_l2_service(unit, nullptr), 0);
  ASSERT_EQ(sai_register_l2_service(unit, on_l2), 0);
  ASSERT_EQ(swsdk_l2_event(unit, 1, 10, mac, 3), 0);
  EXPECT_EQ(take_told(), "first vid 10 port 3 last byte 42 operation 1\n");
}

TEST_F(Events, ServicesComeAndGoWhileEventsAreTold) {
  ASSERT_EQ(sai_register_l2_service(unit, on_l2), 0);
  constexpr int rounds = 200;
  std::thread raiser([] {
    for (int i = 0; i < rounds; ++i) swsdk_l2_event(unit, 1, 10, mac, 3);
  });
  for (int i = 0; i < rounds; ++i) {
    EXPECT_EQ(sai_register_l2_service(unit, on_l2_too), 0);
    EXPECT_EQ(sai_unregister_l2_service(unit, on_l2_too), 0);
  }
  raiser.join();
  std::istringstream lines(take_told());
  int first = 0;
  for (std::string line; std::getline(lines, line);) first += line.starts_with("first ") ? 1 : 0;
  EXPECT_EQ(first, rounds);
}

TEST_F(Events, TheAddressIsTheEventsOwnWhileItsServiceRuns) {
  ASSERT_EQ(sai_register_l2_service(unit, on_l2), 0);
  std::string expected;
  for (int i = 0; i < 256; ++i) {
    const uint8_t own[6] = {0x02, 0, 0, 0, 0, static_cast<uint8_t>(i)};
    ASSERT_EQ(swsdk_l2_event(unit, 1, 10, own, 3), 0);
    expected += "first vid 10 port 3 last byte " + std::to_string(i) + " operation 1\n";
  }
  EXPECT_EQ(take_told(), expected);
}

TEST_F(Events, TheLibraryServesOtherCallsWhileCallbacksRun) {
  ASSERT_EQ(sai_register_link_service(on_link), 0);
  ASSERT_EQ(sai_register_l2_service(unit, on_l2), 0);
  constexpr int rounds = 200;
  std::thread raiser([] {
    for (int i = 0; i < rounds; ++i) {
      swsdk_link_event(unit, 1 + i % 12, i % 2);
      swsdk_l2_event(unit, 1, 10, mac, 3);
    }
  });
  for (int i = 0; i < rounds; ++i) {
    EXPECT_EQ(sai_vlan_create(unit, 100), 0);
    EXPECT_EQ(sai_vlan_destroy(unit, 100), 0);
  }
  raiser.join();
  const std::string all = take_told();
  EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 2 * rounds);
}

}  // namespace
