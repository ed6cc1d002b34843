// The chip's VLAN controls, through the SDK and in the model.
#include "chip/vlan_controls.h"

#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/vlan.h>

#include "support/chip_test.h"

namespace {

constexpr int controls[] = {0, 1, 2, 5, 8, 9, 14, 15};
constexpr bcm_vlan_control_port_t prefer_mac = bcmVlanPortPreferMAC;

bcm_vlan_control_port_t of_port(int number) { return static_cast<bcm_vlan_control_port_t>(number); }

class VlanControls : public support::ChipTest {
 protected:
  static int value(int port, int control) {
    int result = -1;
    EXPECT_EQ(bcm_vlan_control_port_get(0, port, of_port(control), &result), BCM_E_NONE);
    return result;
  }
};

TEST_F(VlanControls, AreZeroAtFirst) {
  for (const int control : controls) EXPECT_EQ(value(1, control), 0) << control;
}

TEST_F(VlanControls, OfAPortAreKeptByPortAndNumber) {
  for (const int control : controls)
    for (const int port : {0, 1, 12})
      EXPECT_EQ(bcm_vlan_control_port_set(0, port, of_port(control), 100 * port + control), BCM_E_NONE);
  for (const int control : controls)
    for (const int port : {0, 1, 12}) EXPECT_EQ(value(port, control), 100 * port + control);
  EXPECT_EQ(value(2, prefer_mac), 0);
}

TEST_F(VlanControls, TakeTheLastValue) {
  bcm_vlan_control_port_set(0, 1, prefer_mac, 1);
  EXPECT_EQ(bcm_vlan_control_port_set(0, 1, prefer_mac, 0), BCM_E_NONE);
  EXPECT_EQ(value(1, prefer_mac), 0);
}

TEST_F(VlanControls, ThatTheChipDoesNotHaveAreUnavailable) {
  int ignored = 77;
  for (const int control : {-1, 3, 4, 6, 16, 1000}) {
    EXPECT_EQ(bcm_vlan_control_port_set(0, 1, of_port(control), 1), BCM_E_UNAVAIL) << control;
    EXPECT_EQ(bcm_vlan_control_port_get(0, 1, of_port(control), &ignored), BCM_E_UNAVAIL) << control;
  }
  EXPECT_EQ(ignored, 77);
  for (const int control : {-1, 0, 1, 4, 6})
    EXPECT_EQ(bcm_vlan_control_set(0, static_cast<bcm_vlan_control_t>(control), 1), BCM_E_UNAVAIL) << control;
}

TEST_F(VlanControls, RefusePortsThatTheChipDoesNotHave) {
  int ignored = 77;
  for (const int port : {-1, 13, 256}) {
    EXPECT_EQ(bcm_vlan_control_port_set(0, port, prefer_mac, 1), BCM_E_PORT) << port;
    EXPECT_EQ(bcm_vlan_control_port_get(0, port, prefer_mac, &ignored), BCM_E_PORT) << port;
  }
  EXPECT_EQ(ignored, 77);
}

TEST_F(VlanControls, AreNotReadIntoNothing) {
  EXPECT_EQ(bcm_vlan_control_port_get(0, 1, prefer_mac, nullptr), BCM_E_PARAM);
}

TEST_F(VlanControls, AreKeptByUnitUntilItIsInitializedAnew) {
  support::start_chip(2);
  bcm_vlan_control_port_set(1, 1, prefer_mac, 1);
  EXPECT_EQ(value(1, prefer_mac), 0);
  bcm_vlan_control_port_set(0, 1, prefer_mac, 1);
  system_init(0);
  EXPECT_EQ(value(1, prefer_mac), 0);
}

TEST_F(VlanControls, OfTheChipHaveANumberThatMeansAnotherThingOnAPort) {
  EXPECT_EQ(bcm_vlan_control_set(0, bcmVlanTranslate, 1), BCM_E_NONE);
  EXPECT_EQ(value(1, bcmVlanTranslateEgressEnable), 0);

  const chip::Ports ports(12);
  chip::VlanControls model(ports);
  EXPECT_EQ(model.translate(), 0);
  EXPECT_EQ(model.set(bcmVlanTranslate, 1), chip::Status::ok);
  EXPECT_EQ(model.translate(), 1);
  EXPECT_EQ(model.of_port(1, chip::VlanControlOfPort::translate_egress), 0);
  model.reset();
  EXPECT_EQ(model.translate(), 0);
}

}  // namespace
