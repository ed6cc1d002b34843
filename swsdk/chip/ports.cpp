#include "chip/ports.h"

namespace chip {

Ports::Ports(int ethernet_ports) {
  for (int port = 1; port <= ethernet_ports; ++port) ethernet_.add(port);
  all_ = ethernet_;
  all_.add(cpu);
}

const char* Ports::kind(int port) {
  if (port == cpu) return "cpu";
  return is_uplink(port) ? "uplink" : "gigabit";
}

}  // namespace chip
