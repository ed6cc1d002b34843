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
  static constexpr int max_type = 2;  // through a port of the chip

  /// Creates an interface under the lowest free id, to which `id` is set. Names are unique, except the empty one.
  Status create(const NetworkInterface& wanted, int& id) {
    if (wanted.type < 0 || wanted.type > max_type) return Status::bad_parameter;
    for (const auto& [ignored, present] : interfaces_.all())
      if (!wanted.name.empty() && present.name == wanted.name) return Status::exists;
    return interfaces_.add(wanted, id);
  }
  void clear() { interfaces_.clear(); }

  const std::map<int, NetworkInterface>& all() const { return interfaces_.all(); }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(interfaces_);
  }

 private:
  Slots<NetworkInterface> interfaces_{1, capacity};
};

}  // namespace chip
