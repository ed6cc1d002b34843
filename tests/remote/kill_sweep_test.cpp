// A client is killed at each of its SDK calls in turn: the chip is then as after a prefix of its calls, which a replay
// of its recording's beginning leaves, and another client works on.
#include <bcm/error.h>
#include <bcm/vlan.h>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sai.h>
#include <signal.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/recording.h>
#include <swsdk/remote.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include "remote/server.h"
#include "support/start.h"

namespace {

/// How many more messages this process may send; then it is killed, before or after it sends the last.
int messages_left = -1;
bool sends_the_last = false;

}  // namespace

/// In place of the C library's, for the library as well: each call is one message.
extern "C" ssize_t send(int socket, const void* data, size_t length, int flags) {
  static const auto real = reinterpret_cast<decltype(&send)>(dlsym(RTLD_NEXT, "send"));
  const bool is_last = messages_left > 0 && --messages_left == 0;
  if (is_last && !sends_the_last) raise(SIGKILL);
  const ssize_t sent = real(socket, data, length, flags);
  if (is_last) raise(SIGKILL);
  return sent;
}

namespace {

/// Start-up, and a function of each family.
void work() {
  static const uint8_t system_mac[6] = {2, 0, 0, 0, 0, 1};
  sai_log_default = open_sai_log("sweep", 0, 0, 0);
  sai_switch_chip_init(system_mac);
  sai_vlan_create(0, 10);
  sai_vlan_port_add(0, 10, 3, 0);
  sai_port_untagged_vlan_set(0, 3, 10);
  sai_vlan_translate_add(0, 4, 100, 0, 10, 0);
  sai_port_speed_set(0, 5, 100);
  sai_port_rate_egress_set(0, 5, 1000, 100);
  int32_t trunk = 1;
  sai_trunk_create(0, 0, &trunk);
  sai_mirror_dest_port_set(0, 1, 6);
  sai_stg_create(0, 5);
  sai_stg_vlan_add(0, 5, 10);
  int32_t bpdu = 0;
  sai_bpdu_set(0, system_mac, &bpdu);
  sai_l3_intf_create(0, system_mac, 10);
  sai_l3_host_route_create(0, 0x0A00000A, system_mac, system_mac, 10, 3, 0);
  int32_t group = 0;
  int32_t entry = 0;
  sai_fp_vport_group_create(0, &group);
  sai_fp_vport_qualify_set(0, 7, group, &entry, 50);
  sai_vport_t vport = {};
  vport.match_vlan = 50;
  sai_vport_create(0, 7, &vport);
  close_sai_log(sai_log_default);
  sai_log_default = nullptr;
}

std::string tables() {
  std::string result;
  for (int i = 0; swsdk_show_table(i) != nullptr; ++i) result += support::table(swsdk_show_table(i), 0);
  return result;
}

std::string tables_if_up() { return swsdk_show(0, "vlan", nullptr, 0) < 0 ? "off" : tables(); }

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) result.push_back(line);
  return result;
}

std::vector<std::string> calls_of(const std::string& recording) {
  std::vector<std::string> result;
  std::ifstream file(recording);
  for (std::string line; std::getline(file, line);)
    if (line.starts_with("call ")) result.push_back(line);
  return result;
}

/// Waits until a server has no more descriptors than so many: it has then answered all that the clients sent which have
/// left, and closed their sockets.
bool are_alone(const remote::Server& server, int descriptors) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (server.descriptors() > descriptors && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  return server.descriptors() == descriptors;
}

TEST(KillSweep, AChipIsAsAfterAPrefixOfTheCallsOfAClientThatIsKilled) {
  const remote::Folder folder;
  ASSERT_EQ(swsdk_record_start((folder / "all").c_str()), 0);
  work();
  const std::string at_the_end = tables();
  swsdk_record_stop();
  const std::vector<std::string> calls = calls_of(folder / "all");
  ASSERT_GT(calls.size(), 200U);

  // What each prefix leaves; here, where the chip is inside.
  std::vector<std::string> expected;
  for (std::size_t length = 0; length <= calls.size(); ++length) {
    {
      std::ofstream prefix(folder / "prefix");
      prefix << "swsdk recording 3\n";
      for (std::size_t i = 0; i < length; ++i) prefix << calls[i] << '\n';
      prefix << "end\n";
    }
    const auto tell = [](const char* line, void*) { ADD_FAILURE() << line; };
    ASSERT_EQ(swsdk_replay((folder / "prefix").c_str(), tell, nullptr), SWSDK_REPLAY_SAME) << length;
    expected.push_back(tables_if_up());
  }
  EXPECT_EQ(expected.back(), at_the_end);
  swsdk_power_off();

  const remote::Server server(folder / "chip");
  char reason[SWSDK_REASON_SIZE] = "";
  ASSERT_EQ(swsdk_connect(server.path().c_str(), reason), 0) << reason;
  swsdk_power_off();
  const int descriptors = server.descriptors();
  int kills = 0;
  for (const bool after : {false, true})
    for (std::size_t call = 1; call <= calls.size(); ++call, ++kills) {
      swsdk_power_off();
      const pid_t child = fork();
      if (child == 0) {
        messages_left = static_cast<int>(call) + 1;  // the first one is the greeting
        sends_the_last = after;
        work();
        _exit(0);
      }
      int status = 0;
      ASSERT_EQ(waitpid(child, &status, 0), child);
      ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "at call " << call << " of " << calls.size();
      // What it sent is executed, whether or not it is there for the answer.
      ASSERT_TRUE(are_alone(server, descriptors));
      const std::string& then = expected[after ? call : call - 1];
      const std::string now = tables_if_up();
      ASSERT_EQ(now, then) << (after ? "after" : "before") << " call " << call << ": " << calls[call - 1] << '\n'
                           << testing::internal::edit_distance::CreateUnifiedDiff(lines_of(then), lines_of(now));
      // Another client, this one, works on.
      const bool is_up = swsdk_starts(0) > 0;
      ASSERT_TRUE(is_up || call <= 3) << "start-up begins with sdk_main and system_init";
      ASSERT_EQ(bcm_vlan_create(0, 99), is_up ? BCM_E_NONE : now == "off" ? BCM_E_UNIT : BCM_E_INIT);
    }
  std::printf("%d kills\n", kills);
  swsdk_power_off();
  swsdk_connect(nullptr, nullptr);
}

}  // namespace
