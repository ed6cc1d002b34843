#include "chip/port_table.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <utility>

namespace {

using chip::Port;

class PortTable : public testing::Test {
 protected:
  /// "port:value " for each port.
  static std::string text_of(const chip::PortTable<int>& values) {
    std::string text;
    for (const auto& [port, value] : values) text += std::to_string(port.number()) + ':' + std::to_string(value) + ' ';
    return text;
  }

  chip::PortTable<int> table{{200, 1, 2, 64}};
};

TEST_F(PortTable, HasAValueForEachPortOfItsSet) {
  EXPECT_EQ(text_of(table), "1:0 2:0 64:0 200:0 ");
  table[2] = 5;
  *table.find(200) = 6;
  EXPECT_EQ(table[2], 5);
  EXPECT_EQ(std::as_const(table)[200], 6);
  EXPECT_EQ(table.find(2), &table[2]);
  EXPECT_EQ(std::as_const(table).find(2), &table[2]);
  EXPECT_EQ(text_of(table), "1:0 2:5 64:0 200:6 ");
}

TEST_F(PortTable, HasNoneForOtherPorts) {
  for (const int number : {INT_MIN, -1, 0, 3, 63, 199, 201, 255, 256, INT_MAX}) {
    EXPECT_EQ(table.find(Port::of(number)), nullptr) << number;
    EXPECT_EQ(std::as_const(table).find(Port::of(number)), nullptr) << number;
  }
}

TEST_F(PortTable, IsFilledWithOneValue) {
  table[2] = 5;
  table.fill(7);
  EXPECT_EQ(text_of(table), "1:7 2:7 64:7 200:7 ");
  EXPECT_EQ(table.find(3), nullptr);
}

TEST_F(PortTable, IsWalkedInAscendingOrderWithItsValuesThemselves) {
  int before = -1;
  for (const auto& [port, value] : table) {
    EXPECT_GT(port.number(), before);
    before = port.number();
    EXPECT_EQ(&value, &table[port]);
  }
  EXPECT_EQ(before, 200);
}

TEST_F(PortTable, IsCopiedWithItsValues) {
  table[1] = 5;
  chip::PortTable<int> copy = table;
  copy[1] = 6;
  EXPECT_EQ(text_of(table), "1:5 2:0 64:0 200:0 ");
  EXPECT_EQ(text_of(copy), "1:6 2:0 64:0 200:0 ");
}

TEST_F(PortTable, OfNoPortsIsEmpty) {
  const chip::PortTable<int> none{chip::PortSet{}};
  EXPECT_EQ(text_of(none), "");
  EXPECT_EQ(none.find(0), nullptr);
  EXPECT_EQ(none.find(-1), nullptr);
}

TEST_F(PortTable, HasTheCpuPortLikeAnyOther) {
  chip::PortTable<int> with_cpu{{0, 12}};
  with_cpu[0] = 3;
  EXPECT_EQ(text_of(with_cpu), "0:3 12:0 ");
}

}  // namespace
