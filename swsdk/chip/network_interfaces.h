// The kernel network interfaces through which the host sends and receives frames.
#pragma once

#include <cstdint>
#include <string>

#include "chip/addresses.h"
#include "chip/slots.h"

namespace chip {

struct NetworkInterface {
  int type = 0;
  uint32_t flags = 0;
  Mac mac{};
  std::string name;
};

class NetworkInterfaces {
 public:
  static constexpr int capacity = 128;

  /// Makes an interface under the lowest free id and tells it. A name is taken once.
  Status create(const NetworkInterface& wanted, int& id) {
    constexpr int all_traffic_from_cpu = 0;
    constexpr int tx_local_port = 2;
    if (wanted.type < all_traffic_from_cpu || wanted.type > tx_local_port) return Status::bad_parameter;
    for (const auto& [ignored, present] : interfaces_.all())
      if (!wanted.name.empty() && present.name == wanted.name) return Status::exists;
    return interfaces_.add(wanted, id);
  }
  void clear() { interfaces_.clear(); }

  const std::map<int, NetworkInterface>& all() const { return interfaces_.all(); }

 private:
  Slots<NetworkInterface> interfaces_{1, capacity};
};

}  // namespace chip
