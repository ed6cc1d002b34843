// usage: chip_server --listen PATH [PORTS UNITS CHIP_TYPE]
// A chip for other processes and nothing else: its clock stands still, and it touches no interface of the machine.
#include <signal.h>
#include <swsdk/chip.h>
#include <swsdk/remote.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 3 && argc != 6) return 2;
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  const swsdk_board board{argc == 6 ? std::atoi(argv[4]) : 1, argc == 6 ? std::atoi(argv[3]) : 12,
                          argc == 6 ? std::atoi(argv[5]) : 0};
  char reason[SWSDK_REASON_SIZE] = "";
  if (swsdk_board_set(&board) != 0 || swsdk_listen(argv[2], reason) != 0) {
    std::fprintf(stderr, "chip_server: %s\n", reason);
    return 2;
  }
  std::puts("The switch is listening; its chip is off.");
  std::fflush(stdout);
  int signal = 0;
  sigwait(&signals, &signal);
  swsdk_listen_end();
  return 0;
}
