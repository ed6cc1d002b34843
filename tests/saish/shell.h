// A scene for tests of the shell: a session on the virtual chip, and what its lines printed and threw.
#pragma once

#include <gtest/gtest.h>
#include <sai.h>
#include <swsdk/journal.h>

#include <optional>
#include <string>

#include "session.h"
#include "support/system.h"

namespace support {

class Shell : public testing::Test {
 protected:
  /// Every SDK call after the start is recorded; log lines carry the stamp below.
  Shell() {
    system::set_clock(morning, 0);
    session_.emplace(saish::Power::on);
    swsdk_journal_clear();
    swsdk_journal_record(1);
  }

  /// What `line` printed, and how it ended if it threw: "bad input: ..." or "unexpected: ...".
  std::string run(const std::string& line) {
    return printed([&] { session_->run(line); });
  }

  /// The same for a line that has to succeed, as in a script.
  std::string run_well(const std::string& line) {
    return printed([&] { session_->run_well(line); });
  }

  std::string run_script(const std::string& path) {
    return printed([&] { session_->run_script(path); });
  }

  /// What several lines did, one after the other.
  template <class... Lines>
  std::string run(const std::string& first, const Lines&... rest) {
    const std::string result = run(first);
    return result + run(rest...);
  }

  /// Whether `line` is refused with one line of text, having called nothing; that text.
  std::string refused(const std::string& line) {
    const std::string before = saish::journal_text();
    const std::string result = run(line);
    EXPECT_EQ(saish::journal_text(), before) << line;
    EXPECT_TRUE(result.starts_with(bad_input)) << line << "\n" << result;
    EXPECT_EQ(result.find('\n'), result.size() - 1) << line << "\n" << result;
    return result.starts_with(bad_input) ? result.substr(bad_input.size(), result.size() - bad_input.size() - 1)
                                         : result;
  }

  saish::Session& session() { return *session_; }

  static constexpr time_t morning = 1795251900;

 private:
  template <class Body>
  static std::string printed(Body body) {
    testing::internal::CaptureStdout();
    std::string end;
    try {
      body();
    } catch (const saish::BadInput& bad) {
      end = bad_input + bad.what() + '\n';
    } catch (const saish::Unexpected& unexpected) {
      end = std::string("unexpected: ") + unexpected.what() + '\n';
    }
    return testing::internal::GetCapturedStdout() + end;
  }

  inline static const std::string bad_input = "bad input: ";
  std::optional<saish::Session> session_;
};

}  // namespace support
