#include "chip/ports.h"

namespace chip {

Ports::Ports(int ethernet_ports) {
  for (int number = 1; number <= ethernet_ports; ++number) ethernet_.add(Port::of(number));
  all_ = ethernet_;
  all_.add(cpu);
}

const char* Ports::kind(Port port) {
  if (port == cpu) return "cpu";
  return is_uplink(port) ? "uplink" : "gigabit";
}

}  // namespace chip
