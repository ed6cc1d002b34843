#include "chip/learn_limits.h"

#include <algorithm>

namespace chip {

void LearnLimits::reset() {
  limits_.clear();
  enabled_ = false;
}

Status LearnLimits::check(const MacScope& scope) const {
  const auto check_place = [&](const Place& place) {
    const TrunkId* const trunk = std::get_if<TrunkId>(&place);
    if (trunk != nullptr && trunks_.find(*trunk) == nullptr) return trunks_.absent(*trunk);
    return table_.is_place(place) ? Status::ok : Status::bad_port;
  };
  const auto ok_if = [](bool valid) { return valid ? Status::ok : Status::bad_parameter; };
  return std::visit(ByKind{
                        [](AllAddresses) { return Status::ok; },
                        [&](VlanAddresses of) { return ok_if(is_vlan(of.vlan)); },
                        check_place,
                        [&](TunnelAddresses of) { return ok_if(of.tunnel != 0); },
                    },
                    scope);
}

Status LearnLimits::set(const std::vector<MacScope>& scopes, const LearnLimit& limit) {
  constexpr uint32_t all_actions = LearnLimit::drop | LearnLimit::to_cpu | LearnLimit::prefer;
  if (scopes.empty() || limit.limit < LearnLimit::unlimited || limit.limit > MacTable::capacity ||
      (limit.actions & ~all_actions) != 0)
    return Status::bad_parameter;
  for (const MacScope& scope : scopes)
    if (const Status status = check(scope); status != Status::ok) return status;
  for (const MacScope& scope : scopes) limits_[scope] = limit;
  return Status::ok;
}

std::optional<LearnLimit> LearnLimits::get(const MacScope& scope) const {
  if (check(scope) != Status::ok) return std::nullopt;
  const auto found = limits_.find(scope);
  return found == limits_.end() ? LearnLimit{} : found->second;
}

template <class Found>
void LearnLimits::exceeded(const MacEntry& entry, const MacEntry* present, Found found) const {
  if (!enabled_ || limits_.empty()) return;
  const std::vector<MacScope> counted = present == nullptr ? std::vector<MacScope>{} : scopes_of(*present);
  for (const MacScope& scope : scopes_of(entry)) {
    const auto limit = limits_.find(scope);
    if (limit == limits_.end() || limit->second.limit == LearnLimit::unlimited) continue;
    const bool grows = std::find(counted.begin(), counted.end(), scope) == counted.end();
    if (grows && table_.learned(scope) >= limit->second.limit) found(limit->second, scope);
  }
}

bool LearnLimits::admit(const MacEntry& entry, const MacEntry* present) const {
  bool admitted = true;
  exceeded(entry, present, [&](const LearnLimit&, const MacScope&) { admitted = false; });
  return admitted;
}

uint32_t LearnLimits::actions(const MacEntry& entry, const MacEntry* present) const {
  uint32_t actions = 0;
  exceeded(entry, present, [&](const LearnLimit& limit, const MacScope&) { actions |= limit.actions; });
  return actions;
}

std::vector<MacScope> LearnLimits::exceeded_by(const MacEntry& entry, const MacEntry* present) const {
  std::vector<MacScope> scopes;
  exceeded(entry, present, [&](const LearnLimit&, const MacScope& scope) { scopes.push_back(scope); });
  return scopes;
}

}  // namespace chip
