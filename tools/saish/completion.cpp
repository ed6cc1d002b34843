#include "completion.h"

#include <bcm/stat.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>

#include <algorithm>
#include <filesystem>
#include <optional>

#include "built_ins.h"
#include "descriptions.h"
#include "expectation.h"
#include "help.h"
#include "library.h"

namespace saish {

namespace {

using Texts = std::vector<std::string>;

template <class Names>
void append(Texts& texts, const Names& names) {
  for (const auto& name : names) texts.emplace_back(name);
}

/// The names that a function returns by index, until it returns null.
Texts counted(const char* (*name)(int)) {
  Texts texts;
  for (int i = 0; name(i) != nullptr; ++i) texts.emplace_back(name(i));
  return texts;
}

/// The files whose names begin with `begun`; folders end with a slash.
Texts files(std::string_view begun) {
  const std::string folder(begun.substr(0, begun.rfind('/') + 1));
  const std::string_view name = begun.substr(folder.size());
  Texts texts;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(folder.empty() ? "." : folder, ignored)) {
    std::string file = entry.path().filename().string();
    const bool is_hidden = file.starts_with('.') && !name.starts_with('.');
    if (is_hidden || !file.starts_with(name) || file.find_first_of(word_ends) != std::string::npos) continue;
    if (entry.is_directory(ignored)) file += '/';
    texts.push_back(folder + file);
  }
  return texts;
}

Texts log_levels() {
  Texts texts = {"off"};
  for (const char* const* level = sai_log_priority; *level != nullptr; ++level) texts.emplace_back(*level);
  append(texts, constants_of(level_enumeration));
  return texts;
}

/// What the words in a built-in command's form stand for; words that are not listed are numbers and the like.
Texts of_kind(std::string_view kind, std::string_view begun) {
  constexpr const char* counters[] = BCM_STAT_NAME_INITIALIZER;
  Texts texts;
  if (kind == "WORD") {
    texts = command_names();
    append(texts, Texts{help_on_all, help_on_shell});
  } else if (kind == "TABLE") {
    texts = counted(swsdk_show_table);
  } else if (kind == "FUNCTION") {
    texts = counted(swsdk_fault_function);
    texts.emplace_back("clear");
  } else if (kind == "CODE") {
    append(texts, constants_of(sdk_result_enumeration));
  } else if (kind == "LEVEL") {
    texts = log_levels();
  } else if (kind == "COUNTER") {
    append(texts, counters);
  } else if (kind == "FILE") {
    texts = files(begun);
  }
  return texts;
}

/// The alternatives of a word of a form, such as up|down or [NTH|every].
Completion of_form(std::string_view form, std::string_view begun) {
  Completion result;
  result.hint = form;
  std::erase_if(result.hint, [](char c) { return c == '[' || c == ']' || c == '.'; });
  for (std::string_view rest = result.hint; !rest.empty();) {
    const std::string_view one = rest.substr(0, rest.find('|'));
    rest.remove_prefix(std::min(one.size() + 1, rest.size()));
    if (one.find_first_of("abcdefghijklmnopqrstuvwxyz") != std::string_view::npos)
      result.candidates.emplace_back(one);
    else
      append(result.candidates, of_kind(one, begun));
  }
  return result;
}

/// The fields that a record has not been given yet, or the candidates for the value that the cursor is at.
Completion in_record(std::string_view record, std::span<const Field> fields, std::string_view text) {
  Completion result{.candidates = {}, .hint = {}, .in_record = true};
  const auto is_open = [&](char open, char close) {
    const std::size_t last = text.rfind(open);
    return last != std::string_view::npos && text.find(close, last) == std::string_view::npos;
  };
  if (is_open('[', ']') || is_open('{', '}')) return result;
  const std::string item = trimmed(text.substr(text.rfind(',') + 1));
  if (const std::size_t equals = item.find('='); equals != std::string::npos) {
    const std::string name = trimmed(item.substr(0, equals));
    append(result.candidates, constants_of(note(record, name).enumeration));
    for (const Field& field : fields)
      if (name == field.name) result.hint = field.type;
    return result;
  }
  for (const Field& field : fields) {
    const std::string name = field.name + std::string("=");
    bool given = false;
    for (std::size_t at = text.find(name); at != std::string_view::npos; at = text.find(name, at + 1))
      given = given || at == 0 || text[at - 1] == ' ' || text[at - 1] == ',';
    if (!given) result.candidates.push_back(name);
  }
  return result;
}

/// Where a record begins that is still open at the end of the line, outside quotes.
std::optional<std::size_t> open_record(std::string_view line) {
  std::vector<std::size_t> open;
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '\\' && quoted)
      ++i;
    else if (line[i] == '"')
      quoted = !quoted;
    else if (line[i] == '{' && !quoted)
      open.push_back(i);
    else if (line[i] == '}' && !quoted && !open.empty())
      open.pop_back();
  }
  if (open.empty()) return std::nullopt;
  return open.front();
}

/// The candidates for a word after `before`; if it is a record, `record` is its text so far.
Completion argument_of(const BuiltIn& built_in, const Words& before, std::string_view begun,
                       std::optional<std::string_view> record) {
  const Words form = words(built_in.usage);
  const bool goes_on = form.back().find("...") != std::string::npos;
  const std::size_t index = goes_on ? std::min(before.size(), form.size() - 1) : before.size();
  if (index >= form.size()) return {};
  if (form[index] == "FRAME" && record) return in_record("", built_in.fields, *record);
  if (form[index] == "FRAME" && !built_in.fields.empty()) return {.candidates = {"{"}, .hint = {}};
  return of_form(form[index], begun);
}

Completion argument_of(const Function& function, const Words& before, std::optional<std::string_view> record) {
  std::size_t position = before.size() - 1;
  for (const Parameter& parameter : function.parameters) {
    if (!parameter.given || position-- > 0) continue;
    const Note& said = note(function.name, parameter.name);
    if (!parameter.fields.empty() && record) return in_record(said.type, parameter.fields, *record);
    if (!parameter.fields.empty()) return {.candidates = {"{"}, .hint = {}};
    Completion result{.candidates = {}, .hint = parameter.name};
    append(result.candidates, constants_of(said.enumeration));
    return result;
  }
  return {};
}

/// What the words after "expect out" and its like stand for. A reason's name is offered as one word.
Completion of_frame(const Words& before) {
  Completion result;
  const bool is_first = before.size() == 2;
  if (before[1] == "cpu" && is_first)
    result = {.candidates = cpu_reason_words(), .hint = "REASON"};
  else if (before[1] == "dropped" && is_first)
    result = {.candidates = drop_reason_words(), .hint = "REASON"};
  else if (before[1] == "out" || before[1] == "cpu")
    result.hint = is_first ? "PORT" : "FRAME";
  if (!result.candidates.empty()) result.candidates.emplace_back("any");
  return result;
}

/// Every candidate, whatever the word at the cursor begins with.
Completion all_of(Words before, std::string_view begun, std::optional<std::string_view> record) {
  Completion result;
  if (before.size() == 1 && before[0] == "expect") {
    append(result.candidates, constants_of(result_enumeration));
    append(result.candidates, frame_expectations);
    return result;
  }
  if (before.size() > 1 && before[0] == "expect" && is_frame_expectation(before[1])) return of_frame(before);
  if (!before.empty() && before[0] == "expect") before.erase(before.begin(), before.begin() + 2);
  if (before.empty()) {
    result.candidates = command_names();
    return result;
  }
  if (const BuiltIn* built_in = find_built_in(before[0])) return argument_of(*built_in, before, begun, record);
  if (const Function* function = find_function(before[0])) return argument_of(*function, before, record);
  return {};
}

}  // namespace

Completion completion_of(std::string_view line) {
  const std::optional<std::size_t> open = open_record(line);
  const std::size_t start = open.value_or(line.find_last_of(" \t") + 1);
  const std::string_view begun = line.substr(line.find_last_of(word_ends) + 1);
  std::optional<std::string_view> record;
  if (open) record = line.substr(*open + 1);
  Completion result;
  try {
    result = all_of(words(line.substr(0, start)), begun, record);
  } catch (const BadInput&) {
    return {};  // inside quoted text
  }
  std::erase_if(result.candidates, [&](const std::string& candidate) { return !candidate.starts_with(begun); });
  std::sort(result.candidates.begin(), result.candidates.end());
  return result;
}

}  // namespace saish
