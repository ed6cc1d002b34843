#include "core/gports.h"

#include <gtest/gtest.h>

namespace {

using namespace sai::gport;

TEST(Gports, HoldAModuleAndAPort) {
  EXPECT_EQ(module_port(3, 5), 0x8001805);
  EXPECT_EQ(module_port(0x7FFF, 0x7FF), 0xBFFFFFF);
  EXPECT_EQ(module_port(0x8000 | 2, 0x800 | 5), 0x8001005) << "15 bits of the module, 11 of the port";
}

TEST(Gports, OfLocalPortsHoldElevenBits) {
  EXPECT_EQ(local_port(5), 0x4000005);
  EXPECT_EQ(local_port(0x7FF), 0x40007FF);
  EXPECT_EQ(local_port(module_port(3, 5)), 0x4000005);
}

TEST(Gports, AreTheKindsOneToFiftyOne) {
  for (const int number : {0, 5, 0x3FFFFFF, -1, static_cast<int>(52U << 26)}) EXPECT_FALSE(is_gport(number)) << number;
  for (const int number : {1 << 26, 2 << 26, static_cast<int>(51U << 26)}) EXPECT_TRUE(is_gport(number)) << number;
}

TEST(Gports, OfVirtualPortsAreOfKindSeventeen) {
  EXPECT_TRUE(is_vlan_port(0x44000001));
  EXPECT_TRUE(is_vlan_port(0x47FFFFFF));
  for (const int number : {17, 0x43FFFFFF, 0x48000000}) EXPECT_FALSE(is_vlan_port(number)) << number;
}

}  // namespace
