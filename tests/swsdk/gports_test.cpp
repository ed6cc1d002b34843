#include "api/gports.h"

#include <bcm/error.h>
#include <bcm/port.h>
#include <bcm/switch.h>
#include <bcm/types.h>
#include <bcm/vlan.h>

#include <type_traits>

#include "support/chip_test.h"
#include "support/gports.h"

namespace {

using api::gport_of;
using api::mirror_of;
using api::place_of;
using api::port_of;
using api::port_place_of;
using api::sdk_port;
using api::virtual_port_of;
using chip::MirrorId;
using chip::Place;
using chip::Port;
using chip::TrunkId;
using chip::VirtualPortId;
using support::gport;

constexpr unsigned virtual_port_type = 17;

int module_port(int module, int port) { return gport(BCM_GPORT_TYPE_MODPORT, module << 11 | port); }

class Gports : public support::ChipTest {};

TEST_F(Gports, CarryTheirKindInTheTopBits) {
  EXPECT_EQ(api::gport::kind(gport(BCM_GPORT_TYPE_TRUNK, 5)), api::gport::trunk);
  EXPECT_EQ(api::gport::kind(gport(63, 5)), 63);
  EXPECT_EQ(api::gport::kind(12), 0);
}

TEST_F(Gports, HaveKindsThatAreUnsignedAsInVendorsHeaders) {
  EXPECT_TRUE((std::is_same_v<decltype(BCM_GPORT_TYPE_LOCAL), unsigned>));
  EXPECT_TRUE((std::is_same_v<decltype(BCM_GPORT_TYPE_MODPORT), unsigned>));
  EXPECT_TRUE((std::is_same_v<decltype(BCM_GPORT_TYPE_TRUNK), unsigned>));
  EXPECT_TRUE((std::is_same_v<decltype(BCM_GPORT_TYPE_MIRROR), unsigned>));
}

TEST_F(Gports, OfThisChipAreItsPorts) {
  for (const int port : {0, 1, 12, 255}) {
    EXPECT_EQ(port_of(port).number(), port);
    EXPECT_EQ(port_of(gport_of(Port::of(port))).number(), port);
    EXPECT_EQ(port_of(gport(BCM_GPORT_TYPE_LOCAL, port)).number(), port);
    EXPECT_EQ(port_of(module_port(0, port)).number(), port);
  }
}

TEST_F(Gports, OfEveryOtherKindOrModuleAreNoPort) {
  for (unsigned kind = 1; kind < 64; ++kind)
    for (const int module : {0, 1, 0x7FFF})
      for (const int port : {0, 1, 12, 255}) {
        const int number = gport(kind, module << 11 | port);
        const bool is_port = kind == BCM_GPORT_TYPE_LOCAL || (kind == BCM_GPORT_TYPE_MODPORT && module == 0);
        if (is_port)
          EXPECT_EQ(port_of(number).number(), port) << kind << ' ' << module;
        else
          EXPECT_FALSE(port_of(number).number() >= 0 && port_of(number).number() <= 255) << kind << ' ' << module;
      }
}

TEST_F(Gports, ArePlacesOfTheirKind) {
  for (const int third : {3, module_port(0, 3), gport(BCM_GPORT_TYPE_LOCAL, 3)}) {
    EXPECT_EQ(place_of(third), Place{Port{3}}) << third;
    EXPECT_EQ(port_place_of(third), Place{Port{3}}) << third;
    EXPECT_EQ(virtual_port_of(third), std::nullopt) << third;
  }
  const int trunk = gport(BCM_GPORT_TYPE_TRUNK, 3);
  EXPECT_EQ(place_of(trunk), Place{TrunkId{3}});
  EXPECT_EQ(port_place_of(trunk), Place{port_of(trunk)})
      << "where no trunk can be meant, it is a port that there is not";
  EXPECT_EQ(virtual_port_of(trunk), std::nullopt);
  const int virtual_port = gport(virtual_port_type, 3);
  EXPECT_EQ(place_of(virtual_port), Place{VirtualPortId{3}});
  EXPECT_EQ(port_place_of(virtual_port), Place{VirtualPortId{3}});
  EXPECT_EQ(virtual_port_of(virtual_port), VirtualPortId{3});
}

TEST_F(Gports, OfMirrorsAloneAreDestinationsOfMirroredFrames) {
  EXPECT_EQ(mirror_of(gport(BCM_GPORT_TYPE_MIRROR, 3)), MirrorId{3});
  for (const int other : {3, module_port(0, 3), gport(BCM_GPORT_TYPE_TRUNK, 3), -1})
    EXPECT_LT(mirror_of(other).number(), 0) << other;
}

TEST_F(Gports, AreMadeOfPlacesAndMirrors) {
  EXPECT_EQ(gport_of(Port{3}), module_port(0, 3));
  EXPECT_EQ(gport_of(TrunkId{3}), gport(BCM_GPORT_TYPE_TRUNK, 3));
  EXPECT_EQ(gport_of(VirtualPortId{3}), gport(virtual_port_type, 3));
  EXPECT_EQ(gport_of(MirrorId{3}), gport(BCM_GPORT_TYPE_MIRROR, 3));
  EXPECT_EQ(sdk_port(Port{3}), 3) << "a plain number";
  EXPECT_EQ(sdk_port(TrunkId{3}), gport(BCM_GPORT_TYPE_TRUNK, 3));
  EXPECT_EQ(sdk_port(VirtualPortId{3}), gport(virtual_port_type, 3));
}

TEST_F(Gports, OfAllElseAreNoPort) {
  for (const int other : {module_port(1, 3), gport(BCM_GPORT_TYPE_TRUNK, 3), gport(BCM_GPORT_TYPE_MIRROR, 3), -1}) {
    EXPECT_FALSE(port_of(other).number() >= 0 && port_of(other).number() <= 255) << other;
    EXPECT_EQ(bcm_port_vlan_member_set(0, other, 0), BCM_E_PORT) << other;
  }
}

TEST_F(Gports, AreToldForEachPort) {
  for (const int port : {0, 1, 12}) {
    bcm_gport_t told = -1;
    EXPECT_EQ(bcm_port_gport_get(0, port, &told), BCM_E_NONE);
    EXPECT_EQ(told, module_port(0, port));
  }
  bcm_gport_t told = 77;
  for (const int port : {-1, 13, 256}) EXPECT_EQ(bcm_port_gport_get(0, port, &told), BCM_E_PORT) << port;
  EXPECT_EQ(told, 77);
  EXPECT_EQ(bcm_port_gport_get(0, 1, nullptr), BCM_E_PARAM);
}

TEST_F(Gports, AreTakenInPlaceOfAPortNumber) {
  const int third = module_port(0, 3);
  EXPECT_EQ(bcm_port_vlan_member_set(0, third, BCM_PORT_VLAN_MEMBER_INGRESS), BCM_E_NONE);
  EXPECT_EQ(bcm_port_flood_block_set(0, third, gport(BCM_GPORT_TYPE_LOCAL, 0), BCM_PORT_FLOOD_BLOCK_BCAST), BCM_E_NONE);
  EXPECT_NE(shown("filter").find("\n3     ingress          broadcast\n"), std::string::npos);

  EXPECT_EQ(bcm_vlan_control_port_set(0, third, bcmVlanPortPreferMAC, 1), BCM_E_NONE);
  int value = -1;
  EXPECT_EQ(bcm_vlan_control_port_get(0, 3, bcmVlanPortPreferMAC, &value), BCM_E_NONE);
  EXPECT_EQ(value, 1);

  EXPECT_EQ(bcm_vlan_translate_add(0, third, 10, 20, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_translate_add(0, 3, 10, 20, 0), BCM_E_EXISTS);
  EXPECT_EQ(bcm_vlan_dtag_add(0, third, 10, 20, 0), BCM_E_NONE);
  EXPECT_EQ(bcm_vlan_dtag_delete(0, 3, 10), BCM_E_NONE);

  EXPECT_EQ(bcm_switch_control_port_set(0, third, bcmSwitchDhcpPktToCpu, 1), BCM_E_NONE);
  EXPECT_NE(shown("control").find("on ports {3}"), std::string::npos);
}

}  // namespace
