// Mirroring: destinations that get copies of frames, and the ports whose frames are copied.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "chip/origin.h"
#include "chip/ports.h"
#include "chip/status.h"

namespace chip {

class Mirrors {
 public:
  static constexpr std::size_t capacity = 4;  // destinations
  enum class Mode : int { off, l2, l2_and_l3 };

  // Flags of create().
  static constexpr uint32_t replace = 0x1;
  static constexpr uint32_t with_id = 0x2;
  // How a port is mirrored.
  static constexpr uint32_t enable = 0x1;
  static constexpr uint32_t ingress = 0x2;
  static constexpr uint32_t egress = 0x4;

  explicit Mirrors(const Ports& ports) : ports_(ports) {}

  /// No destinations and sources, and mirroring off.
  void reset();

  Status set_mode(int mode);
  Mode mode() const { return mode_; }

  /// Creates a destination, which is a port. With the flag `with_id`, under the id in `id`, and with `replace` in
  /// addition in place of an existing one; otherwise under the lowest free id, to which `id` is set.
  Status create(uint32_t flags, const Place& to, MirrorId& id);
  const Place* find(MirrorId id) const;
  /// A destination that still has sources is busy.
  Status destroy(MirrorId id);

  /// Adds directions in which frames of a port are copied to a destination. Without a direction the port is a source,
  /// but none of its frames is copied.
  Status add_source(Port port, uint32_t flags, MirrorId id);
  Status remove_source(Port port, uint32_t flags, MirrorId id);

  /// Where copies go, by id.
  const std::map<MirrorId, Setting<Place>>& destinations() const { return destinations_; }
  /// Directions, by (port, destination).
  const std::map<std::pair<Port, MirrorId>, Setting<uint32_t>>& sources() const { return sources_; }

  template <class Archive>
  void serialize(Archive& archive) {
    archive(mode_, destinations_, sources_);
  }

 private:
  Status check_source(Port port, uint32_t flags, MirrorId id) const;

  const Ports& ports_;
  Mode mode_ = Mode::off;
  std::map<MirrorId, Setting<Place>> destinations_;
  std::map<std::pair<Port, MirrorId>, Setting<uint32_t>> sources_;
};

}  // namespace chip
