// Mirroring: destinations that get copies of frames, and the ports whose frames they are.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

class Mirrors {
 public:
  static constexpr std::size_t capacity = 4;  // destinations; their numbers are free
  enum class Mode : int { off, l2, l2_and_l3 };

  // How a port is mirrored.
  static constexpr uint32_t enable = 0x1;
  static constexpr uint32_t ingress = 0x2;
  static constexpr uint32_t egress = 0x4;

  explicit Mirrors(const Ports& ports) : ports_(ports) {}

  /// No destinations and sources, and mirroring off.
  void reset();

  Status set_mode(int mode);
  Mode mode() const { return mode_; }

  /// Makes a destination for copies at the port of `gport`, under the id that `id` holds when `flags` say so; otherwise
  /// `id` tells the lowest free one. Only when they say so too it may take the place of another.
  Status create(uint32_t flags, int gport, int& id);
  Status find(int id, int& gport) const;
  /// A destination that still has sources is busy.
  Status destroy(int id);

  /// Sends copies of a port's frames to a destination, beside what it has there already. Without a direction the port
  /// is a source of no frames.
  Status add_source(int port, uint32_t flags, int id);
  Status remove_source(int port, uint32_t flags, int id);

  /// Gports, by id.
  const std::map<int, int>& destinations() const { return destinations_; }
  /// Directions, by (port, destination).
  const std::map<std::pair<int, int>, uint32_t>& sources() const { return sources_; }

 private:
  Status check_source(int port, uint32_t flags, int id) const;

  const Ports& ports_;
  Mode mode_ = Mode::off;
  std::map<int, int> destinations_;
  std::map<std::pair<int, int>, uint32_t> sources_;
};

}  // namespace chip
