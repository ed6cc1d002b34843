// A set of the chip's ports.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>

#include "chip/place.h"

namespace chip {

class PortSet {
 public:
  static constexpr int capacity = 256;

  PortSet() = default;
  PortSet(std::initializer_list<Port> ports) {
    for (const Port port : ports) add(port);
  }

  void add(Port port) { words_.at(word(port.number())) |= bit(port.number()); }
  bool contains(Port port) const {
    const int number = port.number();
    return number >= 0 && number < capacity && (words_[word(number)] >> number % word_bits & 1) != 0;
  }
  bool empty() const { return *this == PortSet(); }

  /// The number of the lowest and of the highest port, -1 when the set is empty.
  int lowest() const { return empty() ? -1 : next(0); }
  int highest() const;

  /// Walks the ports in ascending order.
  class Iterator {
   public:
    Iterator(const PortSet& ports, int number) : ports_(&ports), number_(number) {}
    Port operator*() const { return Port::of(number_); }
    Iterator& operator++() {
      number_ = ports_->next(number_ + 1);
      return *this;
    }
    bool operator==(const Iterator& other) const { return number_ == other.number_; }

   private:
    const PortSet* ports_;
    int number_;
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

  template <class Archive>
  void serialize(Archive& archive) {
    archive(words_);
  }

 private:
  static constexpr int word_bits = 64;

  static std::size_t word(int number) { return static_cast<unsigned>(number) / word_bits; }
  static uint64_t bit(int number) { return uint64_t{1} << static_cast<unsigned>(number) % word_bits; }

  /// The number of the lowest port from `number` on, or the capacity.
  int next(int number) const {
    if (number >= capacity) return capacity;
    std::size_t i = word(number);
    uint64_t rest = words_[i] & ~(bit(number) - 1);
    while (rest == 0 && ++i < words_.size()) rest = words_[i];
    return static_cast<int>(i) * word_bits + (rest == 0 ? 0 : std::countr_zero(rest));
  }

  std::array<uint64_t, capacity / word_bits> words_{};
};

/// The ports in ascending order, runs of them joined: "{1,5-8}".
std::string text(const PortSet& ports);

}  // namespace chip
