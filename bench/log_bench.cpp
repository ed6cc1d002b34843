// A log line to a file, written out at once, against one fprintf of the same text and against a logging library.
#include <sai.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <cstdio>
#include <cstdlib>

#include "ratios.h"

namespace {

/// Above this something is broken.
constexpr double ratio_limit = 2;

}  // namespace

int main() {
  FILE* const direct = std::tmpfile();
  sai_log_default = open_sai_log("log_bench", 0, 0, 0);
  sai_log_default->file = std::tmpfile();
  if (direct == nullptr || sai_log_default->file == nullptr) return EXIT_FAILURE;
  sai_log_set_level(nullptr, SAI_LOG_FILE, SAI_LOG_ERRORS);

  // The name is removed at once; the file exists as long as it is open.
  char name[] = "log_bench.XXXXXX";
  if (mkstemp(name) < 0) return EXIT_FAILURE;
  const auto other = spdlog::basic_logger_st("NONE", name);
  std::remove(name);
  other->set_pattern("%Y/%m/%d %H:%M:%S %n: %v");
  other->flush_on(spdlog::level::err);

  const auto repeat = [](auto work) {
    return [work](int times) {
      for (; times > 0; --times) work();
    };
  };
  const std::vector<double> ns = bench::nanoseconds({
      repeat([=] {
        std::fprintf(direct, "2026/11/21 09:05:00 NONE: Failed to create vlan %d: %s\n", 10, "Table is full");
        std::fflush(direct);
      }),
      repeat([] { sai_err("Failed to create vlan %d: %s", 10, "Table is full"); }),
      repeat([&] { other->error("Failed to create vlan {}: {}", 10, "Table is full"); }),
      repeat([] { sai_debug("Failed to create vlan %d: %s", 10, "Table is full"); }),
  });
  const char* const names[] = {"fprintf and fflush", "log line", "spdlog, flushed", "line that nobody hears"};
  std::printf("%-24s %9s %8s %8s\n", "to a file", "a second", "ns", "ratio");
  for (std::size_t i = 0; i < ns.size(); ++i)
    std::printf("%-24s %9.0f %8.1f %8.2f\n", names[i], 1e9 / ns[i], ns[i], ns[i] / ns[0]);
  return ns[1] / ns[0] <= ratio_limit ? EXIT_SUCCESS : EXIT_FAILURE;
}
