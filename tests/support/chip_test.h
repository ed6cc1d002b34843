// A virtual chip that is up while a test runs.
#pragma once

#include <gtest/gtest.h>
#include <swsdk/chip.h>

#include <string>

#include "support/start.h"

namespace support {

class ChipTest : public testing::Test {
 protected:
  ChipTest() { start_chip(); }
  ~ChipTest() override { swsdk_power_off(); }

  /// One of the chip's tables as people see it, without its line of headings.
  static std::string shown(const char* table, int unit = 0) {
    std::string text(static_cast<size_t>(swsdk_show(unit, table, nullptr, 0)), '\0');
    swsdk_show(unit, table, text.data(), text.size() + 1);
    return text.substr(text.find('\n') + 1);
  }
};

}  // namespace support
