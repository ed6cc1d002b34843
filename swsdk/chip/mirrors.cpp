#include "chip/mirrors.h"

#include <algorithm>

namespace chip {

void Mirrors::reset() {
  mode_ = Mode::off;
  destinations_.clear();
  sources_.clear();
}

Status Mirrors::set_mode(int mode) {
  if (mode < static_cast<int>(Mode::off) || mode > static_cast<int>(Mode::l2_and_l3)) return Status::bad_parameter;
  mode_ = static_cast<Mode>(mode);
  return Status::ok;
}

Status Mirrors::create(uint32_t flags, const Place& to, MirrorId& id) {
  if ((flags & ~(replace | with_id)) != 0 || flags == replace) return Status::bad_parameter;
  const Port* const port = std::get_if<Port>(&to);
  if (port == nullptr || !ports_.has(*port)) return Status::bad_port;
  if (flags & with_id) {
    if (id.number() < 0) return Status::bad_id;
    if (destinations_.contains(id)) {
      if ((flags & replace) == 0) return Status::exists;
      destinations_[id] = to;
      return Status::ok;
    }
  }
  if (destinations_.size() == capacity) return Status::full;
  if ((flags & with_id) == 0)
    for (id = 0; destinations_.contains(id);) id = MirrorId::of(id.number() + 1);
  destinations_[id] = to;
  return Status::ok;
}

const Place* Mirrors::find(MirrorId id) const {
  const auto found = destinations_.find(id);
  return found == destinations_.end() ? nullptr : &found->second.value;
}

Status Mirrors::destroy(MirrorId id) {
  const bool busy =
      std::any_of(sources_.begin(), sources_.end(), [&](const auto& source) { return source.first.second == id; });
  if (busy) return Status::busy;
  return destinations_.erase(id) == 1 ? Status::ok : Status::not_found;
}

Status Mirrors::check_source(Port port, uint32_t flags, MirrorId id) const {
  if (!ports_.has(port)) return Status::bad_port;
  if ((flags & ~(ingress | egress)) != enable) return Status::bad_parameter;
  return destinations_.contains(id) ? Status::ok : Status::not_found;
}

Status Mirrors::add_source(Port port, uint32_t flags, MirrorId id) {
  if (const Status status = check_source(port, flags, id); status != Status::ok) return status;
  const auto [source, is_new] = sources_.try_emplace({port, id}, 0);
  const uint32_t before = source->second;
  source->second = before | (flags & (ingress | egress));
  return is_new || source->second != before ? Status::ok : Status::exists;
}

Status Mirrors::remove_source(Port port, uint32_t flags, MirrorId id) {
  if (const Status status = check_source(port, flags, id); status != Status::ok) return status;
  const auto source = sources_.find({port, id});
  const uint32_t directions = flags & (ingress | egress);
  if (source == sources_.end() || (directions != 0 && (source->second & directions) == 0)) return Status::not_found;
  source->second = source->second & ~directions;
  if (source->second == 0) sources_.erase(source);
  return Status::ok;
}

}  // namespace chip
