#include "support/rows.h"

#include <regex>

namespace support {

namespace {

std::string function_of(const Row& row) { return row.sdk_call.substr(0, row.sdk_call.find('(')); }

}  // namespace

void RowTest::check_success() {
  const Row& row = GetParam();
  EXPECT_EQ(observe_failing(function_of(row).c_str(), BCM_E_NONE, row.call),
            row.before + row.sdk_call + " = 0\n" + row.after + "returned 0\n");
}

void RowTest::check_failure() {
  const Row& row = GetParam();
  const std::string unwritten = std::regex_replace(row.sdk_call, std::regex("&[^,)]+"), "&?");
  const std::string log = row.message.empty() ? "" : "log: errors: NONE: " + row.message + row.text + "\n";
  EXPECT_EQ(observe_failing(function_of(row).c_str(), BCM_E_FULL, row.call),
            row.before + unwritten + " = -6\n" + row.after + log + "returned -13\n");
}

}  // namespace support
