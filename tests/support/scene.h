// A scene for tests of the library: a virtual chip that is up, a log that is heard, and what one call did to both.
#pragma once

#include <gtest/gtest.h>
#include <sai.h>

#include <functional>
#include <string>

namespace support {

/// The virtual chip's journal.
std::string journal();

class Scene : public testing::Test {
 protected:
  /// One unit, initialized; errors go to a log in memory; nothing is recorded yet.
  Scene();
  ~Scene() override;

  /// What `call` did, as text: the SDK calls that the chip saw, then the log lines without their stamp, then the
  /// result.
  std::string observe(const std::function<int32_t()>& call);

  /// The same for a call whose SDK function `function` answers `code` the `nth` time.
  std::string observe_failing(const char* function, int code, const std::function<int32_t()>& call, int nth = 1);

  static constexpr int unit = 0;

 private:
  std::string take_log();

  char* log_text_ = nullptr;
  size_t log_size_ = 0;
};

}  // namespace support
