// A set of the chip's ports.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
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

  void add(int port) { words_.at(word(port)) |= bit(port); }
  bool contains(int port) const { return port >= 0 && port < capacity && (words_[word(port)] & bit(port)) != 0; }
  bool empty() const { return *this == PortSet(); }

  /// The lowest and the highest port, -1 when the set is empty.
  int lowest() const { return empty() ? -1 : next(0); }
  int highest() const;

  /// Walks the ports in ascending order.
  class Iterator {
   public:
    Iterator(const PortSet& ports, int port) : ports_(&ports), port_(port) {}
    int operator*() const { return port_; }
    Iterator& operator++() {
      port_ = ports_->next(port_ + 1);
      return *this;
    }
    bool operator==(const Iterator&) const = default;

   private:
    const PortSet* ports_;
    int port_;
  };
  Iterator begin() const { return {*this, next(0)}; }
  Iterator end() const { return {*this, capacity}; }

  PortSet& operator|=(const PortSet& other) {
    for (std::size_t i = 0; i < words_.size(); ++i) words_[i] |= other.words_[i];
    return *this;
  }
  PortSet& operator&=(const PortSet& other) {
    for (std::size_t i = 0; i < words_.size(); ++i) words_[i] &= other.words_[i];
    return *this;
  }
  PortSet& operator-=(const PortSet& other) {
    for (std::size_t i = 0; i < words_.size(); ++i) words_[i] &= ~other.words_[i];
    return *this;
  }
  friend PortSet operator-(PortSet left, const PortSet& right) { return left -= right; }
  friend PortSet operator&(PortSet left, const PortSet& right) { return left &= right; }
  bool operator==(const PortSet&) const = default;

 private:
  static constexpr int word_bits = 64;

  static std::size_t word(int port) { return static_cast<std::size_t>(port) / word_bits; }
  static uint64_t bit(int port) { return uint64_t{1} << static_cast<unsigned>(port) % word_bits; }

  /// The lowest port from `port` on, or the capacity.
  int next(int port) const {
    if (port >= capacity) return capacity;
    std::size_t i = word(port);
    uint64_t rest = words_[i] & ~(bit(port) - 1);
    while (rest == 0 && ++i < words_.size()) rest = words_[i];
    return static_cast<int>(i) * word_bits + (rest == 0 ? 0 : std::countr_zero(rest));
  }

  std::array<uint64_t, capacity / word_bits> words_{};
};

/// The ports in ascending order, runs of them joined: "{1,5-8}".
std::string text(const PortSet& ports);

}  // namespace chip
