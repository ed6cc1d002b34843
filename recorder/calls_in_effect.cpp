#include "calls_in_effect.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "api/calls/parse.h"
#include "api/calls/recording_format.h"
#include "api/calls/sdk.h"
#include "api/gports.h"

namespace {

constexpr uint32_t deletes_static = 0x1;  // of the deletion of MAC entries; the SDK's headers have no name for it

std::string_view cut_word(std::string_view& text) {
  const std::size_t end = std::min(text.find(' '), text.size());
  const std::string_view word = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return word;
}

bool has_flag(std::string_view value, uint32_t flag) {
  return !value.empty() && (api::parsed_number(value) & flag) != 0;
}

/// A value as one word of a path.
std::string word_of(std::string_view value) {
  std::string result(value.empty() ? "0" : value);
  std::ranges::replace(result, ' ', '_');
  return result;
}

std::string port_word(std::string_view value) {
  return std::to_string(api::port_of(value.empty() ? 0 : static_cast<int>(api::parsed_number(value))).number());
}

/// Whether the path begins with the words of the pattern, in which "*" is any word.
bool is_part_of(std::string_view path, std::string_view pattern) {
  while (!pattern.empty()) {
    if (path.empty()) return false;
    const std::string_view wanted = cut_word(pattern);
    const std::string_view word = cut_word(path);
    if (wanted != "*" && wanted != word) return false;
  }
  return true;
}

}  // namespace

struct recorder::CallsInEffect::Call {
  std::string_view function;
  std::vector<std::string_view> arguments;

  /// The value of "1.vid" in a thing's "$1.vid".
  std::string_view value(std::string_view reference) const {
    if (reference == "f") return function;
    const std::size_t dot = std::min(reference.find('.'), reference.size());
    const std::size_t index = api::parsed_number(reference.substr(0, dot));
    if (index >= arguments.size()) return {};
    const std::string_view argument = api::value_after(arguments[index]);
    return dot == reference.size() ? argument : api::field_value(argument, reference.substr(dot + 1));
  }

  /// The things that an effect names: more than one if it is about each port of a set.
  std::vector<std::string> things(std::string_view thing) const {
    std::vector<std::string> paths = {word_of(value("0"))};
    while (!thing.empty()) {
      const std::string_view word = cut_word(thing);
      std::vector<std::string> next;
      for (const std::string& each : words(word))
        for (const std::string& path : paths) next.push_back(path + ' ' + each);
      paths = std::move(next);
    }
    return paths;
  }

 private:
  std::vector<std::string> words(std::string_view word) const {
    if (!word.starts_with('$')) return {std::string(word)};
    const std::size_t colon = std::min(word.find(':'), word.size());
    const std::string_view found = value(word.substr(1, colon - 1));
    const std::string_view what = word.substr(colon);
    if (what == ":port") return {port_word(found)};
    if (what == ":kind") return {has_flag(found, BCM_L2_STATIC) ? "static" : "dynamic"};
    if (what == ":kinds") return {has_flag(found, deletes_static) ? "*" : "dynamic"};
    if (what != ":each") return {word_of(found)};
    std::vector<std::string> result;
    for (const chip::Port port : api::parsed_ports(found)) result.push_back(std::to_string(port.number()));
    return result;
  }
};

void recorder::CallsInEffect::add(std::string_view text, std::string_view line) {
  const std::size_t open = text.find('(');
  const std::size_t close = text.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos) return;
  const std::string_view after = text.substr(close);
  if (after.starts_with(") = -")) return;
  std::string name(text.substr(0, open));
  const bool is_call = after.starts_with(") = ");
  if (is_call && effects_of(name).empty()) return;
  Call call{name, api::items(text.substr(open, close - open + 1), '(', ')')};
  if (!is_call) call.arguments.erase(call.arguments.begin());  // the callback
  // What is told of an address has another effect with each operation.
  if (name == api::l2_callback) name.append(1, ' ').append(call.value("2"));
  call.function = name;
  const auto kept = std::make_shared<const Line>(Line{number_++, std::string(line)});
  for (const Effect& effect : effects_of(name)) follow(call, effect, kept);
}

void recorder::CallsInEffect::follow(const Call& call, const Effect& effect, const Kept& line) {
  for (const std::string& thing : call.things(effect.thing)) switch (effect.verb) {
      case Verb::sets:
        set(thing, line);
        break;
      case Verb::adds:
        set(things_.contains(thing) ? thing + " again" : thing, line);
        break;
      case Verb::ends:
        taken(thing);
        break;
      case Verb::undoes:
        if (taken(thing).empty()) set(thing, line);
        break;
      case Verb::programs:
        withdraw(thing);
        set(thing, line);
        break;
      case Verb::withdraws:
        withdraw(thing);
        set(thing + " withdrawn", line);
        withdraw(thing);
        break;
    }
}

std::vector<recorder::CallsInEffect::Things::node_type> recorder::CallsInEffect::taken(std::string_view pattern) {
  const std::string_view fixed = pattern.substr(0, pattern.find(" *"));
  std::vector<Things::node_type> result;
  for (auto at = things_.lower_bound(fixed); at != things_.end() && at->first.starts_with(fixed);) {
    const auto next = std::next(at);
    if (is_part_of(at->first, pattern)) result.push_back(things_.extract(at));
    at = next;
  }
  return result;
}

void recorder::CallsInEffect::withdraw(const std::string& thing) {
  std::string_view rest = thing;
  for (int word = 0; word < 3; ++word) cut_word(rest);  // the unit, "entry" and its id
  const std::string entry = thing.substr(0, thing.size() - rest.size());
  for (Things::node_type& node : taken(thing)) {
    node.key() = entry + "before " + node.key().substr(entry.size());
    things_.insert(std::move(node));  // unless there is an older one: that is what the chip has
  }
}

std::vector<std::string_view> recorder::CallsInEffect::lines() const {
  std::vector<const Line*> kept;
  for (const auto& [thing, line] : things_) kept.push_back(line.get());
  std::ranges::sort(kept, {}, &Line::number);
  const auto repeated = std::ranges::unique(kept);
  kept.erase(repeated.begin(), repeated.end());
  std::vector<std::string_view> result;
  for (const Line* const line : kept) result.push_back(line->text);
  return result;
}
