#include "style.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace saish::style {

namespace {

const char* if_wanted(const char* sequence) {
  static const bool wanted = isatty(STDOUT_FILENO) != 0 && std::getenv("NO_COLOR") == nullptr;
  return wanted ? sequence : "";
}

}  // namespace

const char* dim() { return if_wanted("\033[2m"); }
const char* red() { return if_wanted("\033[31m"); }
const char* plain() { return if_wanted("\033[0m"); }

std::size_t width() {
  winsize size{};
  return isatty(STDOUT_FILENO) != 0 && ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

}  // namespace saish::style
