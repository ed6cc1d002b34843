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
  static std::string shown(const char* name, int unit = 0) {
    const std::string text = table(name, unit);
    return text.substr(text.find('\n') + 1);
  }
};

}  // namespace support
