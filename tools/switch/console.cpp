#include "console.h"

#include <cstdio>

namespace vswitch {

void tell(const std::string& line) {
  std::fflush(stdout);
  std::fprintf(stderr, "swsdk-switch: %s\n", line.c_str());
}

}  // namespace vswitch
