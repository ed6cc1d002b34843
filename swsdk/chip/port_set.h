// A set of the chip's ports.
#pragma once

#include <bitset>
#include <initializer_list>
#include <string>

namespace chip {

class PortSet {
 public:
  static constexpr int capacity = 256;

  PortSet() = default;
  PortSet(std::initializer_list<int> ports) {
    for (const int port : ports) add(port);
  }

  void add(int port) { bits_.set(index(port)); }
  bool contains(int port) const { return port >= 0 && port < capacity && bits_.test(index(port)); }
  bool empty() const { return bits_.none(); }

  /// The lowest and the highest port, -1 when the set is empty.
  int lowest() const;
  int highest() const;

  PortSet& operator|=(const PortSet& other) {
    bits_ |= other.bits_;
    return *this;
  }
  PortSet& operator&=(const PortSet& other) {
    bits_ &= other.bits_;
    return *this;
  }
  PortSet& operator-=(const PortSet& other) {
    bits_ &= ~other.bits_;
    return *this;
  }
  friend PortSet operator-(PortSet left, const PortSet& right) { return left -= right; }
  friend PortSet operator&(PortSet left, const PortSet& right) { return left &= right; }
  bool operator==(const PortSet&) const = default;

 private:
  static std::size_t index(int port) { return static_cast<std::size_t>(port); }

  std::bitset<capacity> bits_;
};

/// The ports in ascending order, runs of them joined: "{1,5-8}".
std::string text(const PortSet& ports);

}  // namespace chip
