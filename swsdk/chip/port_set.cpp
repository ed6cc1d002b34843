#include "chip/port_set.h"

namespace chip {

int PortSet::lowest() const {
  for (int port = 0; port < capacity; ++port)
    if (contains(port)) return port;
  return -1;
}

int PortSet::highest() const {
  for (int port = capacity - 1; port >= 0; --port)
    if (contains(port)) return port;
  return -1;
}

std::string text(const PortSet& ports) {
  std::string result = "{";
  for (int first = 0; first < PortSet::capacity; ++first) {
    if (!ports.contains(first)) continue;
    int last = first;
    while (ports.contains(last + 1)) ++last;
    if (result.size() > 1) result += ',';
    result += std::to_string(first);
    if (last > first) result += '-' + std::to_string(last);
    first = last;
  }
  return result + '}';
}

}  // namespace chip
