// Writes which SDK calls each function of the library makes, as rows of call_bench's table.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "invoke.h"

/// What the recording SDK reports of each call.
extern "C" void (*sdk_called)(const char* name);

namespace {

std::string calls;

}  // namespace

int main(int argc, char** argv) {
  FILE* const rows = argc == 2 ? std::fopen(argv[1], "w") : nullptr;
  // One of the functions prints.
  if (rows == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr) return EXIT_FAILURE;
  sai_log_default = open_sai_log("recorder", 0, 0, 0);
  sdk_called = [](const char* name) { calls += std::string(", ") + name; };
  for (const bench::Function& function : bench::functions) function.call();
  // Some do more in their first call. The later calls count.
  for (const bench::Function& function : bench::functions) {
    calls.clear();
    function.call();
    std::fprintf(rows, "    row<%s%s>(\"%s\"),\n", function.name, calls.c_str(), function.name);
  }
  return std::fclose(rows) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
