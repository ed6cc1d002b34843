#include "api/calls/arguments.h"
#include "api/columns.h"
#include "api/show.h"

namespace {

using api::text;
using chip::FieldForm;
using chip::FieldValue;

template <class Address>
Address bytes(const FieldValue& value) {
  Address result;
  uint64_t rest = value.low;
  for (std::size_t i = result.size(); i-- > 0; rest >>= 8) {
    if (result.size() - 1 - i == 8) rest = value.high;
    result[i] = static_cast<uint8_t>(rest);
  }
  return result;
}

std::string value_text(const FieldValue& value, FieldForm form) {
  switch (form) {
    case FieldForm::decimal:
      return std::to_string(value.low);
    case FieldForm::hexadecimal:
    case FieldForm::ip_type:
      return text(api::hex(static_cast<uint32_t>(value.low)));
    case FieldForm::mac:
      return text(api::mac(bytes<chip::Mac>(value).data()));
    case FieldForm::ip4:
      return text(api::ip4(static_cast<uint32_t>(value.low)));
    case FieldForm::ip6:
      return text(api::ip6(bytes<chip::Ip6>(value).data()));
  }
  return {};
}

std::string match_text(const chip::FieldQualifierInfo& qualifier, const chip::FieldMatch& match) {
  const std::string name = qualifier.name;
  for (const chip::FieldIpType& type : chip::field_ip_types)
    if (qualifier.form == FieldForm::ip_type && match.data == type.data && match.mask == type.mask)
      return name + '=' + type.name;
  const std::string shown = name + '=' + value_text(match.data, qualifier.form);
  if (match.mask == exact_mask(qualifier)) return shown;
  const FieldForm form = qualifier.form == FieldForm::decimal ? FieldForm::hexadecimal : qualifier.form;
  return shown + '/' + value_text(match.mask, form);
}

std::string matches_text(const chip::FieldRule& rule) {
  std::string result;
  for (const auto& [qualifier, match] : rule.matches) {
    if (!result.empty()) result += ' ';
    result += match_text(*chip::field_qualifier(static_cast<int>(qualifier)), match);
  }
  return result.empty() ? "all" : result;
}

std::string action_text(chip::FieldAction action, const std::array<uint32_t, 2>& parameters) {
  switch (action) {
    case chip::FieldAction::packet_priority:
      return "priority " + std::to_string(parameters[0]);
    case chip::FieldAction::copy_to_cpu:
      return "copy to CPU";
    case chip::FieldAction::redirect_port:
      return "redirect to port " + std::to_string(parameters[1]);
    case chip::FieldAction::drop:
      return "drop";
    case chip::FieldAction::drop_cancel:
      return "permit";
    case chip::FieldAction::drop_red:
      return "drop red";
  }
  return {};
}

std::string actions_text(const chip::FieldRule& rule) {
  std::string result;
  const auto add = [&](const std::string& action) { result += (result.empty() ? "" : ", ") + action; };
  for (const auto& [action, parameters] : rule.actions) add(action_text(action, parameters));
  for (const int policer : rule.policers)
    if (policer != chip::FieldRule::no_policer) add("policer " + std::to_string(policer));
  return result.empty() ? "-" : result;
}

std::string group_priority_text(int priority) {
  return priority == chip::FieldGroup::any_priority ? "any" : std::to_string(priority);
}

std::string entry_priority_text(int priority) {
  return priority == chip::FieldEntry::default_priority ? "default" : std::to_string(priority);
}

std::string installed_text(const chip::FieldEntry& entry) {
  if (!entry.installed) return "no";
  return *entry.installed == entry.rule ? "yes" : "changed since";
}

}  // namespace

api::Rows api::show_field(const chip::Chip& chip) {
  const chip::FieldProcessor& processor = chip.field_processor;
  Rows rows{{"group", "stage", "rank", "enabled", "entry", "priority", "installed", "hits", "actions", "matches"}};
  for (const auto& [id, group] : processor.groups()) {
    const Row start{std::to_string(id), group.stage == chip::FieldStage::ingress ? "ingress" : "egress",
                    group_priority_text(group.priority), group.enabled ? "yes" : "no"};
    const auto add = [&](const Row& end) {
      rows.push_back(start);
      rows.back().insert(rows.back().end(), end.begin(), end.end());
    };
    if (group.entries == 0) add(Row(6, "-"));
    for (const auto& [number, entry] : processor.entries())
      if (entry.group == id)
        add({std::to_string(number), entry_priority_text(entry.priority), installed_text(entry),
             std::to_string(entry.hits), actions_text(entry.rule), matches_text(entry.rule)});
  }
  return rows;
}
