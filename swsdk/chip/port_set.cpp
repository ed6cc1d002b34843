#include "chip/port_set.h"

namespace chip {

int PortSet::highest() const {
  for (std::size_t i = words_.size(); i-- > 0;)
    if (words_[i] != 0) return static_cast<int>(i + 1) * word_bits - 1 - std::countl_zero(words_[i]);
  return -1;
}

std::string text(const PortSet& ports) {
  std::string result = "{";
  for (int first = 0; first < PortSet::capacity; ++first) {
    if (!ports.contains(Port::of(first))) continue;
    int last = first;
    while (ports.contains(Port::of(last + 1))) ++last;
    if (result.size() > 1) result += ',';
    result += std::to_string(first);
    if (last > first) result += '-' + std::to_string(last);
    first = last;
  }
  return result + '}';
}

}  // namespace chip
