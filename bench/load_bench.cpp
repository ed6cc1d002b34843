// What the library costs a program before its first call: the time that loading it takes, and the pages that become
// private to this process.
#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <limits>
#include <string>

namespace {

double microseconds() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) * 1e6 + static_cast<double>(now.tv_nsec) / 1e3;
}

/// The memory of the loaded library that this process has written to.
long dirtied_kilobytes() {
  std::ifstream maps("/proc/self/smaps");
  bool ours = false;
  long total = 0;
  for (std::string line; std::getline(maps, line);) {
    const bool is_field = line.find(':') < line.find(' ');
    if (!is_field) ours = line.find("libsai.so") != std::string::npos;
    if (ours && line.starts_with("Private_Dirty:")) total += std::atol(line.c_str() + sizeof "Private_Dirty:");
  }
  return total;
}

}  // namespace

int main() {
  double best = std::numeric_limits<double>::infinity();
  long dirtied = 0;
  for (int round = 0; round < 200; ++round) {
    const double start = microseconds();
    void* const library = dlopen(SAI_LIBRARY, RTLD_NOW);
    best = std::min(best, microseconds() - start);
    if (library == nullptr) {
      std::fprintf(stderr, "%s\n", dlerror());
      return EXIT_FAILURE;
    }
    dirtied = dirtied_kilobytes();
    dlclose(library);
  }
  std::printf("%-24s %9.0f us\n%-24s %9ld KiB\n", "time to load", best, "pages dirtied", dirtied);
  return EXIT_SUCCESS;
}
