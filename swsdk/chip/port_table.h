// One value for each port of a set, for lookup in constant time.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "chip/port_set.h"

namespace chip {

template <class Value>
class PortTable {
 public:
  PortTable() = default;  // of no port
  explicit PortTable(const PortSet& ports) : ports_(ports), values_(static_cast<std::size_t>(ports.highest() + 1)) {}

  void fill(const Value& value) { values_.assign(values_.size(), value); }

  /// The value of a port, or null for one that is not of the set.
  const Value* find(Port port) const { return ports_.contains(port) ? &values_[port.index()] : nullptr; }
  Value* find(Port port) { return ports_.contains(port) ? &values_[port.index()] : nullptr; }

  /// The value of a port of the set.
  const Value& operator[](Port port) const { return values_[port.index()]; }
  Value& operator[](Port port) { return values_[port.index()]; }

  /// Walks the ports with their values, in ascending order.
  class Iterator {
   public:
    Iterator(const PortTable& table, PortSet::Iterator port) : table_(&table), port_(port) {}
    std::pair<Port, const Value&> operator*() const { return {*port_, (*table_)[*port_]}; }
    Iterator& operator++() {
      ++port_;
      return *this;
    }
    bool operator==(const Iterator& other) const { return port_ == other.port_; }

   private:
    const PortTable* table_;
    PortSet::Iterator port_;
  };
  Iterator begin() const { return {*this, ports_.begin()}; }
  Iterator end() const { return {*this, ports_.end()}; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(ports_, values_);
  }

 private:
  PortSet ports_;
  std::vector<Value> values_;  // by number; those of other ports are not used
};

}  // namespace chip
