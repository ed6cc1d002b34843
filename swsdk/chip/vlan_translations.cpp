#include "chip/vlan_translations.h"

#include "chip/vlan_id.h"

namespace chip {

void VlanTranslations::reset() {
  ingress_.clear();
  egress_.clear();
  outer_.clear();
}

Status VlanTranslations::check(Port port, int vlan) const {
  if (!ports_.has(port)) return Status::bad_port;
  return is_vlan(vlan) ? Status::ok : Status::bad_parameter;
}

Status VlanTranslations::absent(Port port, int vlan) const {
  const Status status = check(port, vlan);
  return status == Status::ok ? Status::not_found : status;
}

Status VlanTranslations::add(Table& table, std::size_t used, Port port, int vlan, const Translation& to) {
  if (const Status status = check(port, vlan); status != Status::ok) return status;
  if (!is_vlan(to.vlan)) return Status::bad_parameter;
  if (table.find({port, vlan}) != nullptr) return Status::exists;
  if (used >= capacity) return Status::full;
  table.put({port, vlan}, to);
  return Status::ok;
}

Status VlanTranslations::remove(Table& table, Port port, int vlan) {
  return table.remove({port, vlan}) ? Status::ok : absent(port, vlan);
}

Status VlanTranslations::add(Port port, int vlan, const Translation& to) {
  return add(ingress_, ingress_.size() + outer_.size(), port, vlan, to);
}

Status VlanTranslations::remove(Port port, int vlan) { return remove(ingress_, port, vlan); }

Status VlanTranslations::add_egress(Port port, int vlan, const Translation& to) {
  return add(egress_, egress_.size(), port, vlan, to);
}

Status VlanTranslations::remove_egress(Port port, int vlan) { return remove(egress_, port, vlan); }

Status VlanTranslations::add_outer(Port port, int low, int high, const Translation& outer) {
  if (const Status status = check(port, low); status != Status::ok) return status;
  if (!is_vlan(high) || high < low || !is_vlan(outer.vlan)) return Status::bad_parameter;
  for (const auto& [key, range] : outer_)
    if (key.port == port && low <= range.high && key.vlan <= high) return Status::exists;
  if (ingress_.size() + outer_.size() >= capacity) return Status::full;
  outer_[{port, low}] = {high, outer};
  return Status::ok;
}

Status VlanTranslations::remove_outer(Port port, int low, int high) {
  if (const Status status = check(port, low); status != Status::ok) return status;
  if (!is_vlan(high) || high < low) return Status::bad_parameter;
  const auto entry = outer_.find({port, low});
  if (entry == outer_.end() || entry->second.high != high) return Status::not_found;
  outer_.erase(entry);
  return Status::ok;
}

const Translation* VlanTranslations::find_range(Port port, int vlan) const {
  auto range = outer_.upper_bound({port, vlan});
  if (range == outer_.begin()) return nullptr;
  --range;
  return range->first.port == port && vlan <= range->second.high ? &range->second.outer : nullptr;
}

}  // namespace chip
