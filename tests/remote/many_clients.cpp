// usage: many_clients CLIENTS CALLS
// So many clients at once share so many calls on one chip. Afterwards the server has the descriptors, the threads and,
// after a first round, the memory of before.
#include <appl/diag/system.h>
#include <bcm/error.h>
#include <bcm/l2.h>
#include <bcm/link.h>
#include <bcm/vlan.h>
#include <swsdk/chip.h>
#include <swsdk/frames.h>
#include <swsdk/remote.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "remote/server.h"

extern "C" int sdk_main(int argc, char** argv);

namespace {

void ignore_link(int /*unit*/, bcm_port_t /*port*/, bcm_port_info_t* /*info*/) {}
void ignore_frame(int /*unit*/, const swsdk_out* /*out*/, void* /*data*/) {}

/// Returns whether every answer was right.
bool work(const std::string& path, int number, long calls) {
  char reason[SWSDK_REASON_SIZE];
  if (swsdk_connect(path.c_str(), reason) != 0) {
    std::fprintf(stderr, "%s\n", reason);
    return false;
  }
  const auto vlan = static_cast<bcm_vlan_t>(100 + number);
  const unsigned char frame[60] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                   2,    0,    0,    0,    1,    static_cast<unsigned char>(number)};
  bool right = bcm_linkscan_register(0, &ignore_link) >= BCM_E_RESOURCE;  // of so many clients not all find room
  right = right && swsdk_frame_handle(0, &ignore_frame, nullptr) == 0;
  for (long done = 0; right && done < calls; done += 4) {
    bcm_l2_addr_t address;
    bcm_l2_addr_t_init(&address, &frame[6], vlan);
    right = bcm_vlan_create(0, vlan) == 0 && bcm_l2_addr_delete_by_vlan(0, vlan, 0) == 0 &&
            bcm_vlan_create(0, vlan) == BCM_E_EXISTS && bcm_vlan_destroy(0, vlan) == 0;
    if (done % 1000 == 0) right = right && swsdk_frame_send(0, 1, frame, sizeof frame) >= 0;
  }
  return right;
}

bool run_clients(const std::string& path, int clients, long calls) {
  std::vector<pid_t> all;
  for (int number = 0; number < clients; ++number) {
    all.push_back(fork());
    if (all.back() == 0) _exit(work(path, number, calls / clients) ? 0 : 1);
  }
  bool right = true;
  for (const pid_t one : all) {
    int status = 0;
    right = waitpid(one, &status, 0) == one && status == 0 && right;
  }
  return right;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const int clients = std::atoi(argv[1]);
  const long calls = std::atol(argv[2]);
  const remote::Folder folder;
  const remote::Server server(folder / "chip");
  char reason[SWSDK_REASON_SIZE];
  const int alone = server.descriptors();
  const pid_t starter = fork();
  if (starter == 0)
    _exit(swsdk_connect(server.path().c_str(), reason) == 0 && sdk_main(0, nullptr) == 0 && system_init(0) == 0 ? 0
                                                                                                                : 1);
  waitpid(starter, nullptr, 0);

  bool right = run_clients(server.path(), clients, calls / 10);
  const auto is_quiet = [&] {
    const auto is_alone = [&] { return server.descriptors() <= alone; };
    for (int i = 0; i < 5000 && !is_alone(); ++i) usleep(1000);
    return is_alone();
  };
  right = is_quiet() && right;
  const long memory = server.status("VmRSS");
  const int descriptors = server.descriptors();
  right = run_clients(server.path(), clients, calls) && right;
  right = is_quiet() && right;
  std::printf("%d clients, %ld calls: memory %ld KiB, then %ld KiB; descriptors %d, then %d; threads %ld\n", clients,
              calls, memory, server.status("VmRSS"), descriptors, server.descriptors(), server.status("Threads"));
#ifdef SANITIZED
  const bool memory_is_flat = true;  // a sanitizer keeps what was freed
#else
  const bool memory_is_flat = server.status("VmRSS") < memory * 11 / 10 + 1024;
#endif
  const bool flat = memory_is_flat && server.descriptors() <= descriptors;
  return right && flat ? EXIT_SUCCESS : EXIT_FAILURE;
}
