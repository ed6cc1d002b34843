#include "calls_in_effect.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
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

bool has_flag(std::string_view value, uint32_t flag) {
  return !value.empty() && (api::parsed_number(value) & flag) != 0;
}

int port_of(std::string_view value) {
  return api::port_of(value.empty() ? 0 : static_cast<int>(api::parsed_number(value))).number();
}

/// A value as one word of a path.
void append_word(std::string& path, std::string_view value) {
  const std::size_t begin = path.size();
  path += value.empty() ? "0" : value;
  std::replace(path.begin() + static_cast<std::ptrdiff_t>(begin), path.end(), ' ', '_');
}

class Call {
 public:
  /// `arguments` is "(0, 10)"; those of an event begin with the callback, which is left out.
  Call(std::string_view function, std::string_view arguments, bool is_event) : function_(function) {
    std::size_t skipped = is_event ? 1 : 0;
    api::for_each_item(arguments, '(', ')', [&](std::string_view argument) {
      if (skipped > 0)
        --skipped;
      else if (count_ < arguments_.size())
        arguments_[count_++] = api::value_after(argument);
    });
  }

  std::string_view argument(std::size_t index) const { return index < count_ ? arguments_[index] : ""; }

  /// Calls `visit` with each thing that an effect names: several if it is about each port of a set.
  template <class Visit>
  void for_each_thing(std::string_view thing, Visit visit) const {
    std::string path;
    path.reserve(128);
    path += argument(0);
    append_rest(path, thing, visit);
  }

 private:
  template <class Visit>
  void append_rest(std::string& path, std::string_view thing, Visit& visit) const {
    while (!thing.empty()) {
      const std::string_view word = cut_word(thing);
      path += ' ';
      if (!word.starts_with('$')) {
        path += word;
        continue;
      }
      const std::size_t colon = std::min(word.find(':'), word.size());
      const std::string_view found = value(word.substr(1, colon - 1));
      const std::string_view what = word.substr(colon);
      if (what == ":each") {
        const std::size_t length = path.size();
        for (const chip::Port port : api::parsed_ports(found)) {
          path.resize(length);
          path += std::to_string(port.number());
          append_rest(path, thing, visit);
        }
        return;
      }
      if (what == ":port")
        path += std::to_string(port_of(found));
      else if (what == ":kind")
        path += has_flag(found, BCM_L2_STATIC) ? "static" : "dynamic";
      else if (what == ":kinds")
        path += has_flag(found, deletes_static) ? "*" : "dynamic";
      else
        append_word(path, found);
    }
    visit(path);
  }

  /// The value of "1.vid" in a thing's "$1.vid".
  std::string_view value(std::string_view reference) const {
    if (reference == "f") return function_;
    const std::string_view found = argument(static_cast<std::size_t>(reference.front() - '0'));
    return reference.size() == 1 ? found : api::field_value(found, reference.substr(2));
  }

  std::string_view function_;
  std::array<std::string_view, 10> arguments_;
  std::size_t count_ = 0;
};

}  // namespace

void recorder::CallsInEffect::add(std::string_view text, std::string_view line) {
  const std::size_t open = text.find('(');
  const std::size_t close = text.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || text.substr(close).starts_with(") = -"))
    return;
  const std::string_view name = text.substr(0, open);
  const bool is_event = close + 1 == text.size();
  std::span<const Effect> effects = effects_of(name);
  if (effects.empty() && !is_event) return;
  const Call call(name, text.substr(open, close - open + 1), is_event);
  // What is told of an address has another effect with each operation.
  if (name == api::l2_callback) effects = effects_of(std::string(name) + ' ' + std::string(call.argument(2)));
  const auto kept = std::make_shared<const Line>(Line{number_++, std::string(line)});
  for (const Effect& effect : effects)
    call.for_each_thing(effect.thing, [&](const std::string& thing) { follow(effect.verb, thing, kept); });
}

void recorder::CallsInEffect::follow(Verb verb, const std::string& thing, const Kept& line) {
  const auto set = [&](const std::string& path) { things_.insert_or_assign(path, line); };
  const auto end = [&] {
    const std::size_t before = things_.size();
    for_each(thing, [&](auto at) { things_.erase(at); });
    return things_.size() != before;
  };
  switch (verb) {
    case Verb::sets:
      return set(thing);
    case Verb::replaces:
      set(thing);
      return for_each(std::string_view(thing).substr(0, thing.find(" /")), [&](auto at) {
        if (at->second != line) things_.erase(at);
      });
    case Verb::adds:
      return set(things_.contains(thing) ? thing + " again" : thing);
    case Verb::ends:
      end();
      return;
    case Verb::undoes:
      if (!end()) set(thing);
      return;
    case Verb::programs:
      withdraw(thing);
      return set(thing);
    case Verb::withdraws:
      withdraw(thing);
      set(thing + " withdrawn");
      return withdraw(thing);
  }
}

template <class Act>
void recorder::CallsInEffect::for_each(std::string_view pattern, Act act) {
  const std::string_view fixed = pattern.substr(0, pattern.find(" *"));
  for (auto at = things_.lower_bound(fixed); at != things_.end() && at->first.starts_with(fixed);) {
    const auto next = std::next(at);
    if (is_part_of(at->first, pattern)) act(at);
    at = next;
  }
}

void recorder::CallsInEffect::withdraw(const std::string& thing) {
  std::string_view rest = thing;
  for (int word = 0; word < 3; ++word) cut_word(rest);  // the unit, "entry" and its id
  const std::string entry = thing.substr(0, thing.size() - rest.size());
  for_each(thing, [&](auto at) {
    auto node = things_.extract(at);
    node.key() = entry + "before " + node.key().substr(entry.size());
    things_.insert(std::move(node));  // unless there is an older one: that is what the chip has
  });
}

std::vector<std::string_view> recorder::CallsInEffect::lines() const {
  std::vector<const Line*> kept;
  for (const auto& [thing, line] : things_) kept.push_back(line.get());
  std::ranges::sort(kept, {}, &Line::number);
  kept.erase(std::unique(kept.begin(), kept.end()), kept.end());
  std::vector<std::string_view> result;
  for (const Line* const line : kept) result.push_back(line->text);
  return result;
}
