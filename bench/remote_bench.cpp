// What a call costs when the chip is in another process: against a bare request and answer of the same sizes over the
// same kind of socket, and against the same call with the chip inside. Exits with 1 when a call costs more than twice
// the bare exchange.
#include <appl/diag/system.h>
#include <bcm/l2.h>
#include <bcm/port.h>
#include <bcm/vlan.h>
#include <sai.h>
#include <signal.h>
#include <swsdk/chip.h>
#include <swsdk/remote.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "median.h"

extern "C" int sdk_main(int argc, char** argv);

namespace {

constexpr int rounds = 15;
constexpr int calls = 1000;

double microseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

/// A call, and the lines that it is on the wire, with their ends.
struct Row {
  const char* name;
  void (*call)();
  std::string request;
  std::string answer;
};

void status_get() {
  int up = 0;
  bcm_port_link_status_get(0, 3, &up);
}

void port_add() {
  bcm_pbmp_t ports;
  bcm_pbmp_t untagged;
  BCM_PBMP_CLEAR(ports);
  BCM_PBMP_CLEAR(untagged);
  BCM_PBMP_PORT_ADD(ports, 3);
  bcm_vlan_port_add(0, 1, ports, untagged);
}

uint8 station[6] = {2, 0, 0, 0, 0, 1};

void address_get() {
  bcm_l2_addr_t address;
  bcm_l2_addr_get(0, station, 1, &address);
}

const Row rows[] = {
    {"bcm_port_link_status_get", status_get, "bcm_port_link_status_get(0, 3, &?)\n", "= 0 call &0\n"},
    {"bcm_vlan_port_add", port_add, "bcm_vlan_port_add(0, 1, {3}, {})\n", "= 0 call \n"},
    {"bcm_l2_addr_get", address_get, "bcm_l2_addr_get(0, 02:00:00:00:00:01, 1, &?)\n",
     "= 0 call &{mac=02:00:00:00:00:01, vid=1, port=3}\n"},
};

/// Answers each line with a text of the same size as the chip's, without looking at it.
[[noreturn]] void echo(int socket, const std::string& answer) {
  char buffer[4096];
  while (recv(socket, buffer, sizeof buffer, 0) > 0) send(socket, answer.data(), answer.size(), MSG_NOSIGNAL);
  _exit(0);
}

/// The other end of an exchange of a row, in a process of its own.
struct Echo {
  explicit Echo(const Row& of) : row(of) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) std::abort();
    process = fork();
    if (process == 0) {
      close(ends[0]);
      echo(ends[1], row.answer);
    }
    close(ends[1]);
    socket = ends[0];
  }
  ~Echo() {
    close(socket);
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
  }
  void exchange() const {
    char buffer[4096];
    send(socket, row.request.data(), row.request.size(), MSG_NOSIGNAL);
    for (std::size_t got = 0; got < row.answer.size();) {
      const ssize_t length = recv(socket, buffer, sizeof buffer, 0);
      if (length <= 0) std::abort();
      got += static_cast<std::size_t>(length);
    }
  }
  const Row& row;
  pid_t process;
  int socket;
};

double time_of_one(const std::function<void()>& work) {
  const double begin = microseconds();
  for (int i = 0; i < calls; ++i) work();
  return (microseconds() - begin) / calls;
}

void start_chip() {
  sdk_main(0, nullptr);
  system_init(0);
  swsdk_l2_learn(0, 1, station, 3, 0);
}

double time_of_start_up() {
  static const uint8_t system_mac[6] = {2, 0, 0, 0, 0, 1};
  sai_log_default = open_sai_log("bench", 0, 0, 0);
  const double begin = microseconds();
  sai_switch_chip_init(system_mac);
  const double time = microseconds() - begin;
  close_sai_log(sai_log_default);
  sai_log_default = nullptr;
  return time;
}

/// A server in a process of its own, from before this one has threads.
pid_t started_server(const char* path) {
  int ready[2];
  if (pipe(ready) != 0) std::abort();
  const pid_t process = fork();
  if (process == 0) {
    char reason[SWSDK_REASON_SIZE];
    if (swsdk_listen(path, reason) != 0) {
      std::fprintf(stderr, "%s\n", reason);
      _exit(1);
    }
    [[maybe_unused]] const ssize_t told = write(ready[1], "", 1);
    while (true) pause();
  }
  close(ready[1]);
  char byte = 0;
  if (read(ready[0], &byte, 1) != 1) std::exit(EXIT_FAILURE);
  close(ready[0]);
  return process;
}

}  // namespace

int main() {
  char path[] = "/tmp/remote_bench-XXXXXX";
  if (mkdtemp(path) == nullptr) return EXIT_FAILURE;
  const std::string socket = std::string(path) + "/chip";
  const pid_t server = started_server(socket.c_str());

  std::vector<double> inside_times;
  double inside_start = 0;
  {
    start_chip();
    for (const Row& row : rows) inside_times.push_back(time_of_one(row.call));
    swsdk_power_off();
    std::vector<double> starts;
    for (int round = 0; round < rounds; ++round, swsdk_power_off()) starts.push_back(time_of_start_up());
    inside_start = bench::median(starts);
  }

  std::vector<Echo*> echoes;
  for (const Row& row : rows) echoes.push_back(new Echo(row));
  char reason[SWSDK_REASON_SIZE];
  if (swsdk_connect(socket.c_str(), reason) != 0) {
    std::fprintf(stderr, "%s\n", reason);
    return EXIT_FAILURE;
  }
  start_chip();
  bool good = true;
  std::printf("%-26s %9s %9s %9s %9s\n", "a chip elsewhere", "inside", "bare", "call", "call/bare");
  for (std::size_t i = 0; i < std::size(rows); ++i) {
    std::vector<double> bare;
    std::vector<double> call;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
      bare.push_back(time_of_one([&] { echoes[i]->exchange(); }));
      call.push_back(time_of_one(rows[i].call));
      ratios.push_back(call.back() / bare.back());
    }
    const double ratio = bench::median(ratios);
    good = good && ratio <= 2;
    std::printf("%-26s %6.2f us %6.2f us %6.2f us %9.2f\n", rows[i].name, inside_times[i], bench::median(bare),
                bench::median(call), ratio);
  }
  std::vector<double> starts;
  for (int round = 0; round < rounds; ++round) {
    swsdk_power_off();
    starts.push_back(time_of_start_up());
  }
  std::printf("%-26s %6.0f us %9s %6.0f us\n", "sai_switch_chip_init", inside_start, "", bench::median(starts));

  swsdk_connect(nullptr, nullptr);
  kill(server, SIGKILL);
  waitpid(server, nullptr, 0);
  unlink(socket.c_str());
  rmdir(path);
  for (const Echo* one : echoes) delete one;
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
