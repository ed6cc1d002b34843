// Tests of the library's functions that are one SDK call each, as rows.
#pragma once

#include <bcm/error.h>
#include <swsdk/fault.h>

#include <functional>
#include <string>
#include <vector>

#include "support/scene.h"

namespace support {

class OneCall : public Scene {
 protected:
  ~OneCall() override { swsdk_fault_clear(); }

  struct Row {
    std::function<int32_t()> call;
    std::string sdk_call;  // as the journal shows it
    std::string message;   // of a failure, without the SDK's text
  };

  /// Each row's call succeeds in silence where the SDK's does, and fails with its message where that fails.
  void expect(const std::vector<Row>& rows) {
    for (const auto& [call, sdk_call, message] : rows) {
      const std::string function = sdk_call.substr(0, sdk_call.find('('));
      EXPECT_EQ(observe_failing(function.c_str(), BCM_E_NONE, call), sdk_call + " = 0\nreturned 0\n");
      EXPECT_EQ(observe_failing(function.c_str(), BCM_E_FULL, call),
                sdk_call + " = -6\nlog: errors: NONE: " + message + ": Table is full\nreturned -13\n");
      EXPECT_EQ(observe_failing(function.c_str(), BCM_E_INTERNAL, call),
                sdk_call + " = -1\nlog: errors: NONE: " + message + ": Internal error\nreturned -1\n");
    }
  }

  /// Has every call of an SDK function succeed without doing or writing anything, until the test or the next
  /// observe_failing() is over.
  void let_succeed(const char* function) {
    ASSERT_EQ(swsdk_fault_inject(function, BCM_E_NONE, SWSDK_FAULT_EVERY_CALL), 0);
  }
};

/// What "%d" shows of a pointer.
inline std::string low_word(const void* pointer) {
  return std::to_string(static_cast<int>(reinterpret_cast<uintptr_t>(pointer)));
}

}  // namespace support
