// Links, and who is told of them while the link scan runs, is paused or is off.
#include <bcm/error.h>
#include <bcm/link.h>
#include <bcm/port.h>
#include <gtest/gtest.h>
#include <soc/cmic.h>
#include <swsdk/chip.h>

#include <string>
#include <utility>

#include "support/start.h"

namespace {

std::string heard;

void hear(int, bcm_port_t port, bcm_port_info_t* info) {
  heard += std::to_string(port) + (info->linkstatus != 0 ? "+" : "-");
}

class LinkScan : public testing::Test {
 protected:
  LinkScan() {
    support::start_chip();
    heard.clear();
    bcm_linkscan_register(0, hear);
  }
  ~LinkScan() override { swsdk_power_off(); }

  /// What was heard since the last change or the last question.
  static std::string heard_now() {
    swsdk_events_drain();
    return std::exchange(heard, {});
  }
  /// Changes the link of port 1 and returns what was heard of it.
  static std::string change(int up) {
    heard.clear();
    EXPECT_EQ(swsdk_link_event(0, 1, up), 0);
    return heard_now();
  }
  static int link() {
    int up = -1;
    EXPECT_EQ(bcm_port_link_status_get(0, 1, &up), BCM_E_NONE);
    return up;
  }
};

TEST_F(LinkScan, TellsOfEachLinkThatChanges) {
  EXPECT_EQ(change(1), "1+");
  EXPECT_EQ(link(), 1);
  EXPECT_EQ(change(0), "1-");
  EXPECT_EQ(link(), 0);
}

TEST_F(LinkScan, TellsAfterAPauseWhatChangedMeanwhile) {
  soc_linkscan_pause(0);
  EXPECT_EQ(change(1), "");
  EXPECT_EQ(link(), 1);
  soc_linkscan_continue(0);
  EXPECT_EQ(heard_now(), "1+");
  soc_linkscan_pause(0);
  change(0);
  change(1);
  soc_linkscan_continue(0);
  EXPECT_EQ(heard_now(), "") << "it is as before";
}

TEST_F(LinkScan, TellsOfALinkThatIsUpAgain) {
  EXPECT_EQ(change(1), "1+");
  EXPECT_EQ(change(1), "1+");
  EXPECT_EQ(change(0), "1-");
  EXPECT_EQ(change(0), "1-");
}

TEST_F(LinkScan, FindsALinkOfAnEnabledPortOnly) {
  change(1);
  bcm_port_enable_set(0, 1, 0);
  EXPECT_EQ(heard_now(), "1-");
  bcm_port_enable_set(0, 1, 0);
  EXPECT_EQ(heard_now(), "");
  EXPECT_EQ(change(0), "");
  EXPECT_EQ(change(1), "");
  bcm_port_enable_set(0, 1, 1);
  EXPECT_EQ(heard_now(), "1+");
  bcm_port_info_t info{};
  info.action_mask = BCM_PORT_ATTR_ENABLE_MASK;
  bcm_port_selective_set(0, 1, &info);
  EXPECT_EQ(heard_now(), "1-");
}

TEST_F(LinkScan, FindsALoopback) {
  bcm_port_loopback_set(0, 1, BCM_PORT_LOOPBACK_MAC);
  EXPECT_EQ(heard_now(), "1+");
  EXPECT_EQ(change(1), "1+");
  EXPECT_EQ(change(0), "") << "it is still looped back";
  bcm_port_loopback_set(0, 1, BCM_PORT_LOOPBACK_NONE);
  EXPECT_EQ(heard_now(), "1-");
}

TEST_F(LinkScan, PausesNest) {
  soc_linkscan_pause(0);
  soc_linkscan_pause(0);
  soc_linkscan_continue(0);
  EXPECT_EQ(change(1), "");
  soc_linkscan_continue(0);
  EXPECT_EQ(heard_now(), "1+");
}

TEST_F(LinkScan, ContinuesWithoutAPauseToNoEffect) {
  soc_linkscan_continue(0);
  soc_linkscan_pause(0);
  EXPECT_EQ(change(1), "");
}

TEST_F(LinkScan, TellsNobodyWhileItIsOff) {
  EXPECT_EQ(bcm_linkscan_enable_set(0, 0), BCM_E_NONE);
  EXPECT_EQ(change(1), "");
  EXPECT_EQ(link(), 1);
  EXPECT_EQ(bcm_linkscan_enable_set(0, 250000), BCM_E_NONE);
  EXPECT_EQ(heard_now(), "1+");
  EXPECT_EQ(change(0), "1-");
  EXPECT_EQ(bcm_linkscan_enable_set(0, -1), BCM_E_PARAM);
  EXPECT_EQ(change(1), "1+");
}

TEST_F(LinkScan, IsPausedOnItsOwnUnitOnly) {
  support::start_chip(2);
  bcm_linkscan_register(0, hear);
  soc_linkscan_pause(1);
  EXPECT_EQ(change(1), "1+");
  soc_linkscan_pause(0);
  EXPECT_EQ(change(0), "");
}

TEST_F(LinkScan, FindsSpeedAndDuplexNegotiated) {
  bcm_port_speed_set(0, 1, 10);
  bcm_port_autoneg_set(0, 1, 1);
  change(1);
  int speed = 0;
  EXPECT_EQ(bcm_port_speed_get(0, 1, &speed), BCM_E_NONE);
  EXPECT_EQ(speed, 1000);
}

TEST_F(LinkScan, HasNoLinkOnPortsWithoutAMac) {
  for (const int port : {-1, 0, 13}) EXPECT_EQ(swsdk_link_event(0, port, 1), -1) << port;
  EXPECT_EQ(swsdk_link_event(1, 1, 1), -1);
}

}  // namespace
