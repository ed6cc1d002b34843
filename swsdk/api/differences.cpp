#include "api/differences.h"

#include <map>

#include "api/calls/parse.h"

namespace {

/// A call's arguments and what follows them.
struct Parts {
  explicit Parts(std::string_view text) {
    const std::size_t open = text.find('(');
    const std::size_t close = text.rfind(") = ");
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
      throw api::Unreadable(text, "call");
    arguments = api::items(text.substr(open, close - open + 1), '(', ')');
    result = text.substr(close + 4);
  }

  std::vector<std::string_view> arguments;
  std::string_view result;
};

/// The record that the call wrote, or nothing when it is no record: of "&{port=3}" and of "{vid=1} -> &{vid=1,
/// port=3}".
std::string_view written_record(std::string_view argument) {
  const std::size_t before = argument.find(" -> &");
  if (before != std::string_view::npos)
    argument.remove_prefix(before + 5);
  else if (argument.starts_with('&'))
    argument.remove_prefix(1);
  return argument.starts_with('{') && argument.ends_with('}') ? argument : std::string_view();
}

std::map<std::string_view, std::string_view> fields_of(std::string_view record) {
  std::map<std::string_view, std::string_view> result;
  for (const std::string_view field : api::items(record, '{', '}')) {
    const std::size_t sign = field.find('=');
    if (sign != std::string_view::npos) result.emplace(field.substr(0, sign), field.substr(sign + 1));
  }
  return result;
}

/// The names of the fields that two records do not share; a set of ports has none.
std::vector<std::string_view> different_fields(std::string_view recorded, std::string_view now) {
  std::vector<std::string_view> result;
  std::map<std::string_view, std::string_view> left = fields_of(recorded);
  for (const auto& [name, value] : fields_of(now)) {
    const auto found = left.find(name);
    if (found == left.end() || found->second != value) result.push_back(name);
    if (found != left.end()) left.erase(found);
  }
  for (const auto& [name, ignored] : left) result.push_back(name);
  return result;
}

}  // namespace

std::vector<std::string> api::differences(std::string_view recorded, std::string_view now) {
  const Parts left(recorded);
  const Parts right(now);
  if (left.result != right.result || left.arguments.size() != right.arguments.size()) return {"result"};
  std::vector<std::string> result;
  for (std::size_t i = 0; i < left.arguments.size(); ++i) {
    if (left.arguments[i] == right.arguments[i]) continue;
    const std::string_view record = written_record(left.arguments[i]);
    const std::string_view record_now = written_record(right.arguments[i]);
    std::vector<std::string_view> names;
    if (!record.empty() && !record_now.empty()) names = different_fields(record, record_now);
    for (const std::string_view name : names) result.push_back("output " + std::string(name));
    if (names.empty()) result.push_back("output " + std::to_string(i + 1));
  }
  return result;
}
