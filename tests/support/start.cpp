#include "support/start.h"

#include <appl/diag/system.h>

extern "C" int sdk_main(int argc, char** argv);

void support::attach_chip(int units, int ports) {
  swsdk_power_off();
  swsdk_board board;
  swsdk_board_get(&board);
  board.units = units;
  board.ports = ports;
  swsdk_board_set(&board);
  sdk_main(0, nullptr);
}

void support::start_chip(int units, int ports) {
  attach_chip(units, ports);
  for (int unit = 0; unit < units; ++unit) system_init(unit);
}

std::string support::table(const char* name, int unit) {
  std::string text(static_cast<std::size_t>(swsdk_show(unit, name, nullptr, 0)), '\0');
  swsdk_show(unit, name, text.data(), text.size() + 1);
  return text;
}
