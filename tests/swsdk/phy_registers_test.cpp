#include "chip/phy_registers.h"

#include <gtest/gtest.h>

namespace {

using chip::Status;
using Registers = chip::PhyRegisters;

constexpr int clause22 = Registers::clause22;

class PhyRegisters : public testing::Test {
 protected:
  uint32_t value(const Registers::Key& key) {
    const std::optional<uint16_t> result = registers.read(key);
    EXPECT_TRUE(result.has_value());
    return result.value_or(99);
  }

  Registers registers;
};

TEST_F(PhyRegisters, AreZeroAtFirstAndAfterAReset) {
  EXPECT_EQ(value({1, clause22, 0}), 0U);
  registers.write({1, clause22, 0}, 7);
  registers.clear();
  EXPECT_EQ(value({1, clause22, 0}), 0U);
}

TEST_F(PhyRegisters, AreOfEachPhyDeviceAndNumber) {
  EXPECT_EQ(registers.write({1, clause22, 3}, 1), Status::ok);
  EXPECT_EQ(registers.write({1, 0, 3}, 2), Status::ok);
  EXPECT_EQ(registers.write({1, 1, 3}, 3), Status::ok);
  EXPECT_EQ(registers.write({2, 1, 3}, 4), Status::ok);
  EXPECT_EQ(registers.write({1, 1, 4}, 0xFFFF), Status::ok);
  EXPECT_EQ(value({1, clause22, 3}), 1U);
  EXPECT_EQ(value({1, 0, 3}), 2U);
  EXPECT_EQ(value({1, 1, 3}), 3U);
  EXPECT_EQ(value({2, 1, 3}), 4U);
  EXPECT_EQ(value({1, 1, 4}), 0xFFFFU);
}

TEST_F(PhyRegisters, ReachToTheEndsOfTheirRanges) {
  for (const Registers::Key& key : {Registers::Key{255, clause22, 31}, Registers::Key{0, 31, 0xFFFF}})
    EXPECT_EQ(registers.write(key, 0xFFFF), Status::ok);
  for (const Registers::Key& key :
       {Registers::Key{256, clause22, 0}, Registers::Key{256, 1, 0}, Registers::Key{1, clause22, 32},
        Registers::Key{1, -2, 0}, Registers::Key{1, 32, 0}, Registers::Key{1, 1, 0x10000}}) {
    EXPECT_EQ(registers.write(key, 0), Status::bad_parameter);
    EXPECT_EQ(registers.read(key), std::nullopt);
  }
  EXPECT_EQ(registers.write({1, clause22, 0}, 0x10000), Status::bad_parameter);
}

}  // namespace
