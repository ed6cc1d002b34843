#include "invoke.h"

int bench::number = 1;

std::array<int, 1024> bench::words = [] {
  std::array<int, 1024> ones{};
  ones.fill(1);
  return ones;
}();

alignas(64) std::array<char, 65536> bench::memory;
