// What an application meets as a process: children, and readers of its log that go away.
#include <gtest/gtest.h>
#include <sai.h>
#include <swsdk/chip.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>

#include "support/start.h"

namespace {

class Process : public testing::Test {
 protected:
  Process() { support::start_chip(); }
  ~Process() override {
    sai_log_default = nullptr;
    swsdk_power_off();
  }

  /// A log into a pipe that nobody reads any more.
  static void log_to_nobody() {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    sai_log_default = open_sai_log("test", 0, 0, 0);
    sai_log_default->file = fdopen(ends[1], "w");
    sai_log_set_level(sai_log_default, SAI_LOG_FILE, SAI_LOG_ERRORS);
  }
};

TEST_F(Process, AChildHasACopyOfTheVirtualChip) {
  EXPECT_EQ(sai_vlan_create(0, 10), 0);
  const pid_t child = fork();
  if (child == 0) _exit(sai_vlan_destroy(0, 10) == 0 && sai_vlan_create(0, 20) == 0 ? 0 : 1);
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0) << "the child's chip has what its parent's had";
  EXPECT_EQ(sai_vlan_port_add(0, 10, 1, 0), 0) << "the parent's chip knows nothing of the child";
  EXPECT_EQ(sai_vlan_port_add(0, 20, 1, 0), SAI_E_NOT_FOUND);
}

TEST_F(Process, EndsWhenALogLineMeetsAClosedPipe) {
  const auto fail = [] {
    log_to_nobody();
    sai_vlan_destroy(0, 10);
    _exit(0);
  };
  EXPECT_EXIT(fail(), testing::KilledBySignal(SIGPIPE), "");
}

TEST_F(Process, LosesTheLineAloneWhenItIgnoresClosedPipes) {
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  log_to_nobody();
  EXPECT_EQ(sai_vlan_destroy(0, 10), SAI_E_NOT_FOUND);
  EXPECT_EQ(sai_vlan_create(0, 10), SAI_E_NONE);
  close_sai_log(sai_log_default);
  std::signal(SIGPIPE, before);
}

}  // namespace
