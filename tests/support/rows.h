// Families that are tables, one SDK call and one message each, are tested as tables.
#pragma once

#include <bcm/error.h>
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "support/scene.h"

namespace support {

/// A call of the library that makes one SDK call which can fail, and what is seen of it.
struct Row {
  std::string name;
  std::function<int32_t()> call;
  /// The SDK call as the journal shows it, without its result.
  std::string sdk_call;
  /// The log line of its failure, without the SDK's text; "" when it is not logged.
  std::string message;
  /// What the journal shows before and after.
  std::string before = "";
  std::string after = "";
  /// What ends the message.
  std::string text = "Table is full";
};

inline void PrintTo(const Row& row, std::ostream* stream) { *stream << row.name; }

class RowTest : public Scene, public testing::WithParamInterface<Row> {
 protected:
  /// The SDK call succeeds, and that is what the library's call does.
  void check_success();

  /// The SDK call fails: that is logged once, and its code converted.
  void check_failure();
};

/// For INSTANTIATE_TEST_SUITE_P.
inline std::string name_of(const testing::TestParamInfo<Row>& info) { return info.param.name; }

/// Names the address as "%d" does.
inline std::string as_number(const void* address) {
  return std::to_string(static_cast<int32_t>(reinterpret_cast<uintptr_t>(address)));
}

}  // namespace support
