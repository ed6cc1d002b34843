#include "chip/mirrors.h"

#include <algorithm>

#include "chip/gports.h"

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

Status Mirrors::create(uint32_t flags, int gport, int& id) {
  constexpr uint32_t replace = 0x1;
  constexpr uint32_t with_id = 0x2;
  if ((flags & ~(replace | with_id)) != 0 || flags == replace) return Status::bad_parameter;
  if (!gport::names_port(gport) || !ports_.has(gport::port_of(gport))) return Status::bad_port;
  if (flags & with_id) {
    if (gport::kind(id) != gport::mirror) return Status::bad_id;
    if (destinations_.contains(id)) {
      if ((flags & replace) == 0) return Status::exists;
      destinations_[id] = gport;
      return Status::ok;
    }
  }
  if (destinations_.size() == capacity) return Status::full;
  if ((flags & with_id) == 0)
    for (id = gport::of(gport::mirror, 0); destinations_.contains(id);) ++id;
  destinations_[id] = gport;
  return Status::ok;
}

Status Mirrors::find(int id, int& gport) const {
  const auto found = destinations_.find(id);
  if (found == destinations_.end()) return Status::not_found;
  gport = found->second;
  return Status::ok;
}

Status Mirrors::destroy(int id) {
  const bool busy =
      std::any_of(sources_.begin(), sources_.end(), [&](const auto& source) { return source.first.second == id; });
  if (busy) return Status::busy;
  return destinations_.erase(id) == 1 ? Status::ok : Status::not_found;
}

Status Mirrors::check_source(int port, uint32_t flags, int id) const {
  if (!ports_.has(port)) return Status::bad_port;
  if ((flags & ~(ingress | egress)) != enable) return Status::bad_parameter;
  return destinations_.contains(id) ? Status::ok : Status::not_found;
}

Status Mirrors::add_source(int port, uint32_t flags, int id) {
  if (const Status status = check_source(port, flags, id); status != Status::ok) return status;
  const auto [source, is_new] = sources_.try_emplace({port, id}, 0);
  const uint32_t before = std::exchange(source->second, source->second | (flags & (ingress | egress)));
  return is_new || source->second != before ? Status::ok : Status::exists;
}

Status Mirrors::remove_source(int port, uint32_t flags, int id) {
  if (const Status status = check_source(port, flags, id); status != Status::ok) return status;
  const auto source = sources_.find({port, id});
  const uint32_t directions = flags & (ingress | egress);
  if (source == sources_.end() || (directions != 0 && (source->second & directions) == 0)) return Status::not_found;
  source->second &= ~directions;
  if (source->second == 0) sources_.erase(source);
  return Status::ok;
}

}  // namespace chip
