// A log line to a file, against one fprintf of the same text and an fflush. Goal: at most 1.5 times.
#include <sai.h>

#include <cstdio>

#include "ratios.h"

int main(int argc, char** argv) {
  FILE* const direct = std::tmpfile();
  sai_log_default = open_sai_log("log_bench", 0, 0, 0);
  sai_log_default->file = std::tmpfile();
  if (direct == nullptr || sai_log_default->file == nullptr) return 1;
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_ERRORS);

  bench::compare(
      "log line to a file", [] { sai_err("Failed to create vlan %d: %s", 10, "Table is full"); },
      [=] {
        std::fprintf(direct, "2026/11/21 09:05:00 NONE: Failed to create vlan %d: %s\n", 10, "Table is full");
        std::fflush(direct);
      });
  bench::compare(
      "debug line that nobody hears", [] { sai_debug("Failed to create vlan %d: %s", 10, "Table is full"); },
      [] { benchmark::ClobberMemory(); });
  return bench::run(argc, argv);
}
