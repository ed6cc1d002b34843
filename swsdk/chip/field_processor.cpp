#include "chip/field_processor.h"

#include <algorithm>

namespace chip {

int FieldGroup::slices() const {
  constexpr int size = FieldProcessor::slice_entries;
  return std::max(1, (entries + size - 1) / size);
}

/// Runs `body` on an entry; not_found when there is none.
template <class Body>
Status FieldProcessor::with_entry(int id, Body body) {
  FieldEntry* const entry = entries_.find(id);
  return entry == nullptr ? Status::not_found : body(*entry);
}

/// Runs `body` on the index of a policer level; bad_parameter when there is no such level.
template <class Body>
Status FieldProcessor::with_level(int level, Body body) {
  return is_level(level) ? body(static_cast<std::size_t>(level)) : Status::bad_parameter;
}

void FieldProcessor::reset() {
  groups_.clear();
  entries_.clear();
  installations_ = 0;
  indexed_ = false;
}

// ---------------------------------------------------------------------------------------------------- groups ----

int FieldProcessor::free_slices(FieldStage stage) const {
  int free = stage == FieldStage::ingress ? ingress_slices : egress_slices;
  for (const auto& [id, group] : groups_.all())
    if (group.stage == stage) free -= group.slices();
  return free;
}

Status FieldProcessor::create_group(const std::set<int>& qualifiers, int priority, int& id) {
  if (qualifiers.contains(ingress_stage) == qualifiers.contains(egress_stage)) return Status::bad_parameter;
  if (priority < 0 && priority != FieldGroup::any_priority) return Status::bad_parameter;
  FieldGroup group;
  group.stage = qualifiers.contains(ingress_stage) ? FieldStage::ingress : FieldStage::egress;
  group.priority = priority;
  group.qualifiers = qualifiers;
  group.qualifiers.erase(ingress_stage);
  group.qualifiers.erase(egress_stage);
  for (const int number : group.qualifiers) {
    const FieldQualifierInfo* const info = field_qualifier(number);
    if (info == nullptr || !has_qualifier(group.stage, info->qualifier)) return Status::no_resource;
  }
  return free_slices(group.stage) == 0 ? Status::no_resource : groups_.add(group, id);
}

Status FieldProcessor::set_group_priority(int group, int priority) {
  FieldGroup* const found = groups_.find(group);
  if (found == nullptr) return Status::not_found;
  if (priority < 0 && priority != FieldGroup::any_priority) return Status::bad_parameter;
  found->priority = priority;
  found->origin = {};
  indexed_ = false;
  return Status::ok;
}

Status FieldProcessor::enable_group(int group, bool enabled) {
  FieldGroup* const found = groups_.find(group);
  if (found == nullptr) return Status::not_found;
  found->enabled = enabled;
  found->origin = {};
  indexed_ = false;
  return Status::ok;
}

// --------------------------------------------------------------------------------------------------- entries ----

template <class Create>
Status FieldProcessor::create_entry(int group, Create create) {
  FieldGroup* const found = groups_.find(group);
  if (found == nullptr) return Status::not_found;
  if (found->entries == found->slices() * slice_entries && free_slices(found->stage) == 0) return Status::full;
  FieldEntry entry;
  entry.group = group;
  const Status status = create(entry);
  if (status == Status::ok) ++found->entries;
  return status;
}

Status FieldProcessor::create_entry(int group, int& id) {
  return create_entry(group, [&](const FieldEntry& entry) { return entries_.add(entry, id); });
}

Status FieldProcessor::create_entry_with_id(int group, int id) {
  return create_entry(group, [&](const FieldEntry& entry) { return entries_.add_with_id(entry, id); });
}

Status FieldProcessor::destroy_entry(int entry) {
  return with_entry(entry, [&](const FieldEntry& found) {
    if (found.installed) return Status::busy;
    for (const int policer : found.rule.policers) policers_.detach(policer);
    --groups_.find(found.group)->entries;
    return entries_.remove(entry);
  });
}

Status FieldProcessor::qualify(int entry, FieldQualifier qualifier, const FieldMatch& match) {
  return with_entry(entry, [&](FieldEntry& found) {
    const int number = static_cast<int>(qualifier);
    if (!groups_.find(found.group)->qualifiers.contains(number)) return Status::bad_parameter;
    const FieldValue width = exact_mask(*field_qualifier(number));
    if ((match.data & width) != match.data) return Status::bad_parameter;
    if (qualifier == FieldQualifier::in_port || qualifier == FieldQualifier::out_port)
      if (!ports_.has(Port::of(static_cast<int>(match.data.low)))) return Status::bad_port;
    found.rule.matches[qualifier] = {match.data, match.mask & width};
    return Status::ok;
  });
}

Status FieldProcessor::qualify_ip_type(int entry, int type) {
  for (const FieldIpType& known : field_ip_types)
    if (known.number == type) return qualify(entry, FieldQualifier::ip_type, {known.data, known.mask});
  return Status::unavailable;
}

Status FieldProcessor::clear_qualifiers(int entry) {
  return with_entry(entry, [](FieldEntry& found) {
    found.rule.matches.clear();
    return Status::ok;
  });
}

Status FieldProcessor::add_action(int entry, int action, uint32_t parameter0, uint32_t parameter1) {
  return with_entry(entry, [&](FieldEntry& found) {
    auto& actions = found.rule.actions;
    const bool on_ingress = groups_.find(found.group)->stage == FieldStage::ingress;
    const auto kind = static_cast<FieldAction>(action);
    if (actions.contains(kind)) return Status::exists;
    switch (kind) {
      case FieldAction::packet_priority:
        if (!on_ingress) return Status::unavailable;
        if (parameter0 > max_packet_priority) return Status::bad_parameter;
        break;
      case FieldAction::copy_to_cpu:
        if (!on_ingress) return Status::unavailable;
        break;
      case FieldAction::redirect_port:
        if (!on_ingress) return Status::unavailable;
        // the first parameter is the module, and this chip is module 0
        if (parameter0 != 0 || !ports_.has(Port::of(static_cast<int>(parameter1)))) return Status::bad_port;
        break;
      case FieldAction::drop:
        if (actions.contains(FieldAction::drop_cancel)) return Status::bad_configuration;
        break;
      case FieldAction::drop_cancel:
        if (actions.contains(FieldAction::drop)) return Status::bad_configuration;
        break;
      case FieldAction::drop_red:
        break;
      default:
        return Status::unavailable;
    }
    actions[kind] = {parameter0, parameter1};
    return Status::ok;
  });
}

Status FieldProcessor::set_priority(int entry, int priority) {
  return with_entry(entry, [&](FieldEntry& found) {
    if (priority < FieldEntry::default_priority) return Status::bad_parameter;
    found.priority = priority;
    found.origin = {};
    indexed_ = false;
    return Status::ok;
  });
}

Status FieldProcessor::install(int entry) {
  return with_entry(entry, [&](FieldEntry& found) {
    if (found.installed) return Status::exists;
    found.installed = found.rule;
    found.installation = ++installations_;
    found.origin = {};
    found.hits = 0;
    indexed_ = false;
    return Status::ok;
  });
}

Status FieldProcessor::reinstall(int entry) {
  return with_entry(entry, [&](FieldEntry& found) {
    if (!found.installed) return Status::not_found;
    found.installed = found.rule;
    found.origin = {};
    indexed_ = false;
    return Status::ok;
  });
}

Status FieldProcessor::remove(int entry) {
  return with_entry(entry, [&](FieldEntry& found) {
    found.installed.reset();
    indexed_ = false;
    return Status::ok;
  });
}

// -------------------------------------------------------------------------------------------------- policers ----

Status FieldProcessor::attach_policer(int entry, int level, int policer) {
  return with_entry(entry, [&](FieldEntry& found) {
    return with_level(level, [&](std::size_t index) {
      int& attached = found.rule.policers[index];
      if (attached != FieldRule::no_policer) return Status::exists;
      const Status status = policers_.attach(policer);
      if (status == Status::ok) attached = policer;
      return status;
    });
  });
}

Status FieldProcessor::detach_policer(int entry, int level) {
  return with_entry(entry, [&](FieldEntry& found) {
    return with_level(level, [&](std::size_t index) {
      int& attached = found.rule.policers[index];
      if (attached == FieldRule::no_policer) return Status::not_found;
      policers_.detach(attached);
      attached = FieldRule::no_policer;
      if (found.installed) found.installed->policers[index] = FieldRule::no_policer;
      return Status::ok;
    });
  });
}

std::optional<int> FieldProcessor::policer(int entry, int level) const {
  const FieldEntry* const found = entries_.find(entry);
  if (found == nullptr || !is_level(level)) return std::nullopt;
  const int attached = found->rule.policers[static_cast<std::size_t>(level)];
  return attached == FieldRule::no_policer ? std::nullopt : std::optional(attached);
}

Status FieldProcessor::absent_policer(int entry, int level) const {
  return entries_.find(entry) == nullptr || is_level(level) ? Status::not_found : Status::bad_parameter;
}

void FieldProcessor::forget_policers() {
  for (const auto& [id, ignored] : entries_.all()) {
    FieldEntry& entry = *entries_.find(id);
    for (const int policer : entry.rule.policers) policers_.detach(policer);
    entry.rule.policers = {};
    if (entry.installed) entry.installed->policers = {};
  }
}

// ------------------------------------------------------------------------------------------------------ hits ----

FieldProcessor::Hits FieldProcessor::hits() const {
  Hits result;
  for (const auto& [id, entry] : entries_.all()) result.push_back(entry.hits);
  return result;
}

void FieldProcessor::restore(const Hits& hits) {
  auto hit = hits.begin();
  for (const auto& [id, entry] : entries_.all()) entries_.find(id)->hits = *hit++;
}

// ---------------------------------------------------------------------------------------------------- lookup ----

void FieldProcessor::make_indexes() {
  using Installed = FieldIndex::Installed;
  std::map<int, std::vector<Installed>> installed;  // by group
  for (const auto& [id, entry] : entries_.all())
    if (entry.installed) installed[entry.group].push_back({id, entries_.find(id)});
  const auto has_precedence = [](const Installed& left, const Installed& right) {
    return left.entry->priority != right.entry->priority ? left.entry->priority > right.entry->priority
                                                         : left.entry->installation < right.entry->installation;
  };

  std::vector<int> groups;
  for (const auto& [id, entries] : installed) groups.push_back(id);
  std::stable_sort(groups.begin(), groups.end(),
                   [&](int left, int right) { return groups_.find(left)->priority > groups_.find(right)->priority; });
  ingress_.clear();
  egress_.clear();
  for (const int id : groups) {
    const FieldGroup& group = *groups_.find(id);
    if (!group.enabled) continue;
    std::vector<Installed>& entries = installed[id];
    std::sort(entries.begin(), entries.end(), has_precedence);
    (group.stage == FieldStage::ingress ? ingress_ : egress_).add_group(id, entries);
  }
  indexed_ = true;
}

FieldVerdict FieldProcessor::classify(FieldStage stage, const FrameFields& frame, std::size_t frames) {
  FieldVerdict verdict;
  // Where groups disagree, the first one wins.
  index(stage).find(frame, [&](int group, const FieldIndex::Installed& met) {
    verdict.hits.add({group, met.id});
    met.entry->hits += frames;
    const FieldRule& rule = *met.entry->installed;
    for (const auto& [action, parameters] : rule.actions) switch (action) {
        case FieldAction::packet_priority:
          if (!verdict.priority) verdict.priority = static_cast<int>(parameters[0]);
          break;
        case FieldAction::copy_to_cpu:
          verdict.copied_to_cpu = true;
          break;
        case FieldAction::redirect_port:
          if (!verdict.redirect_port) verdict.redirect_port = Port::of(static_cast<int>(parameters[1]));
          break;
        case FieldAction::drop:
          verdict.dropped = !verdict.drop_cancelled;
          break;
        case FieldAction::drop_cancel:
          verdict.drop_cancelled = !verdict.dropped;
          break;
        case FieldAction::drop_red:
          verdict.red_dropped = true;
          break;
      }
    for (std::size_t level = 0; level < rule.policers.size(); ++level)
      if (verdict.policers[level] == FieldRule::no_policer) verdict.policers[level] = rule.policers[level];
  });
  if (verdict.dropped) verdict.redirect_port.reset();
  return verdict;
}

}  // namespace chip
