#include "chip/port_set.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using chip::PortSet;

TEST(PortSet, ReadsAsItsPortsInOrderWithRunsJoined) {
  EXPECT_EQ(text(PortSet{}), "{}");
  EXPECT_EQ(text(PortSet{0}), "{0}");
  EXPECT_EQ(text(PortSet{8, 1, 5, 6, 7}), "{1,5-8}");
  EXPECT_EQ(text(PortSet{1, 2, 4}), "{1-2,4}");
  EXPECT_EQ(text(PortSet{254, 255}), "{254-255}");
}

TEST(PortSet, KnowsItsLowestAndHighestPort) {
  EXPECT_EQ(PortSet{}.lowest(), -1);
  EXPECT_EQ(PortSet{}.highest(), -1);
  EXPECT_EQ((PortSet{7, 255}).lowest(), 7);
  EXPECT_EQ((PortSet{7, 255}).highest(), 255);
}

TEST(PortSet, IsWalkedFromItsLowestToItsHighestPort) {
  const auto walked = [](const PortSet& ports) {
    std::vector<int> result;
    for (const chip::Port port : ports) result.push_back(port.number());
    return result;
  };
  EXPECT_EQ(walked({}), std::vector<int>{});
  EXPECT_EQ(walked({255}), std::vector<int>{255});
  EXPECT_EQ(walked({64, 0, 200, 63, 128, 1}), (std::vector{0, 1, 63, 64, 128, 200}));
}

TEST(PortSet, ContainsNoPortOutsideItsRange) {
  const PortSet ports{0, 255};
  EXPECT_TRUE(ports.contains(0));
  EXPECT_TRUE(ports.contains(255));
  EXPECT_FALSE(ports.contains(-1));
  EXPECT_FALSE(ports.contains(256));
}

TEST(PortSet, CombinesWithAnother) {
  EXPECT_EQ((PortSet{1, 2, 3} - PortSet{2, 9}), (PortSet{1, 3}));
  EXPECT_EQ((PortSet{1, 2, 3} & PortSet{2, 9}), (PortSet{2}));
  PortSet ports{1};
  ports |= PortSet{2};
  EXPECT_EQ(ports, (PortSet{1, 2}));
}

}  // namespace
