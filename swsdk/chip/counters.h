// What each port counts.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "chip/addresses.h"
#include "chip/pipeline/drop.h"
#include "chip/port_table.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

/// The size on the wire of a frame without checksum: checksum and padding included.
constexpr std::size_t size_on_wire(std::size_t bytes) { return std::max<std::size_t>(bytes + 4, 64); }

/// The frames of a port in one direction by what its counters tell apart: a frame is in many counters, but in only one
/// of these.
class Traffic {
 public:
  /// So many frames, each of so many bytes without checksum.
  void add(const Mac& destination, std::size_t bytes, int tags, std::size_t frames) {
    const std::size_t length = size_on_wire(bytes);
    std::size_t size = 0;
    while (size < max_sizes.size() && length > max_sizes[size]) ++size;
    octets_ += length * frames;
    frames_[kind_of(destination)][static_cast<std::size_t>(tags)][size] += frames;
  }

  /// Each frame is longer than 0.
  bool empty() const { return octets_ == 0; }
  uint64_t octets() const { return octets_; }
  /// Calls `take(kind, tags, size, count)` with those that there are; `size` is the index of their range of sizes.
  template <class Take>
  void for_each(Take take) const {
    for (std::size_t kind = 0; kind < frames_.size(); ++kind)
      for (std::size_t tags = 0; tags < frames_[kind].size(); ++tags)
        for (std::size_t size = 0; size < frames_[kind][tags].size(); ++size)
          if (const uint64_t count = frames_[kind][tags][size]; count != 0) take(kind, tags, size, count);
  }

  // Kinds of destinations.
  static constexpr std::size_t unicast = 0;
  static constexpr std::size_t multicast = 1;
  static constexpr std::size_t broadcast = 2;

  template <class Archive>
  void serialize(Archive& archive) {
    archive(octets_, frames_);
  }

 private:
  /// The upper bounds of all ranges but the last.
  static constexpr std::array<std::size_t, 9> max_sizes{64, 127, 255, 511, 1023, 1518, 1522, 2047, 4095};

  static std::size_t kind_of(const Mac& destination) {
    if (!is_group(destination)) return unicast;
    return is_broadcast(destination) ? broadcast : multicast;
  }

  uint64_t octets_ = 0;
  std::array<std::array<std::array<uint64_t, max_sizes.size() + 1>, 3>, 3> frames_{};  // by kind, tags and size
};

class Counters {
 public:
  static constexpr int count = 312;
  using Values = std::array<uint64_t, count>;

  explicit Counters(const Ports& ports) : counters_(ports.all()), received_(ports.all()), sent_(ports.all()) {}

  /// All counters are 0 after a reset.
  void reset() {
    counters_.fill({});
    received_.fill({});
    sent_.fill({});
  }

  const uint64_t* find(Port port, int counter) const {
    if (counters_.find(port) == nullptr || !has(counter)) return nullptr;
    settle(port);
    return &counters_[port][static_cast<std::size_t>(counter)];
  }
  /// Why there is no such counter of the port.
  Status absent(Port port, int /*counter*/) const {
    return counters_.find(port) == nullptr ? Status::bad_port : Status::bad_parameter;
  }

  Status set(Port port, int counter, uint64_t value) {
    if (find(port, counter) == nullptr) return absent(port, counter);
    counters_[port][static_cast<std::size_t>(counter)] = value;
    return Status::ok;
  }
  Status clear(Port port) {
    if (counters_.find(port) == nullptr) return Status::bad_port;
    counters_[port] = {};
    received_[port] = {};
    sent_[port] = {};
    return Status::ok;
  }

  /// Of a port of the chip, to add to: counters of other events than frames, and frames.
  Values& of(Port port) { return counters_[port]; }
  Traffic& received(Port port) { return received_[port]; }
  Traffic& sent(Port port) { return sent_[port]; }

  const PortTable<Values>& all() const {
    for (const auto& [port, ignored] : counters_) settle(port);
    return counters_;
  }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(counters_, received_, sent_);
  }

 private:
  static bool has(int counter) { return counter >= 0 && counter < count; }
  /// Adds the frames of a port to its counters, which only happens when those are read.
  void settle(Port port) const;

  mutable PortTable<Values> counters_;  // without the frames that are not settled
  mutable PortTable<Traffic> received_;
  mutable PortTable<Traffic> sent_;
};

/// How many frames, or copies, each port has lost, by reason.
using DropCounts = PortTable<std::array<uint64_t, drop_count>>;

}  // namespace chip
