#include <sai.h>
#include <stdio.h>

#include "core/sdk.h"

namespace {

constexpr char program[] = "/usr/sbin/bcm956275k.hex";

/// Formats a line of the diagnostic shell, cut to 63 characters, and runs it; logs it when the shell fails.
template <class... Args>
bool run(int unit, const char* format, Args... args) {
  char command[64] = {};
  snprintf(command, sizeof command, format, args...);
  char line[sizeof command];  // the shell may modify its line
  __builtin_memcpy(line, command, sizeof line);
  if (sh_process_command(unit, line) == 0) return true;
  sai_err("switch cmd [ %s ] error\n", command);  // Meant: the message has a newline of its own.
  return false;
}

void sai_led_load(int unit, int led, const char* file) {
  if (run(unit, "led %d load %s", led, file) && run(unit, "led %d auto on", led)) run(unit, "led %d start", led);
}

}  // namespace

void sai_serial_led_config(int32_t unit) {
  sai_led_load(unit, 0, program);
  sai_led_load(unit, 1, program);
}
