#include "core/format.h"

#include <gtest/gtest.h>
#include <sai.h>

#include <cstdint>

#include "core/log.h"

namespace {

using sai::format_check::matches;

TEST(Format, TakesAConversionPerArgument) {
  static_assert(matches<>("no conversion"));
  static_assert(matches<int>("%d"));
  static_assert(matches<int, const char*>("vlan %d: %s"));
  static_assert(matches<uint16_t, uint32_t, const char*>("%d 0x%x %s"));
  static_assert(matches<const void*>("%p"));
  static_assert(matches<uint8_t, uint8_t>("%02x:%2X"));
}

TEST(Format, RefusesTooFewAndTooManyConversions) {
  static_assert(!matches<>("%d"));
  static_assert(!matches<int>("none"));
  static_assert(!matches<int>("%d %d"));
  static_assert(!matches<int, int>("%d"));
  static_assert(!matches<int>("%"));
}

TEST(Format, RefusesAConversionOfAnotherType) {
  static_assert(!matches<int>("%s"));
  static_assert(!matches<const char*>("%d"));
  static_assert(!matches<double>("%d"));
  static_assert(!matches<int, const char*>("%s %d"));
  static_assert(!matches<int>("%n"));
}

TEST(Format, ChecksTheLengthOfIntegers) {
  static_assert(!matches<uint64_t>("%d"));
  static_assert(matches<uint64_t>("%lu"));
  static_assert(matches<unsigned long long>("%llu"));
  static_assert(matches<std::size_t>("%zu"));
  static_assert(!matches<int>("%ld"));
}

TEST(Format, TakesADoubledPercentSignAsText) {
  static_assert(matches<>("100 %%"));
  static_assert(matches<int>("%d %%"));
  static_assert(!matches<int>("%%d"));
}

/// An argument whose text costs something.
struct Costly {
  int* made;
};

const char* trace_text(const Costly& costly) {
  ++*costly.made;
  return "made";
}

class Trace : public testing::Test {
 protected:
  Trace() { sai_log_default = open_sai_log("test", 0, 0, 0); }
  ~Trace() override {
    close_sai_log(sai_log_default);
    sai_log_default = nullptr;
  }
};

TEST_F(Trace, ThatNobodyHearsMakesNoText) {
  int made = 0;
  sai::trace("%d %s", 1, Costly{&made});
  sai_log_set_level(nullptr, SAI_LOG_CONSOLE, SAI_LOG_INFORMATIONAL);
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_DEBUGGING);  // without a file
  sai::trace("%d %s", 1, Costly{&made});
  EXPECT_EQ(made, 0);
}

TEST_F(Trace, ThatSomebodyHearsIsADebugLine) {
  int made = 0;
  sai_log_set_level(nullptr, SAI_LOG_CONSOLE, SAI_LOG_DEBUGGING);
  testing::internal::CaptureStdout();
  sai::trace("%d %s", 1, Costly{&made});
  const std::string line = testing::internal::GetCapturedStdout();
  EXPECT_TRUE(line.ends_with(" NONE: 1 made\n")) << line;
  EXPECT_EQ(made, 1);
}

TEST_F(Trace, WithoutADefaultLogIsHeard) {
  sai_log_handle* const log = std::exchange(sai_log_default, nullptr);
  testing::internal::CaptureStderr();
  sai::trace("x");
  const std::string line = testing::internal::GetCapturedStderr();
  sai_log_default = log;
  EXPECT_TRUE(line.ends_with(" unknown: x\n")) << line;
}

}  // namespace
