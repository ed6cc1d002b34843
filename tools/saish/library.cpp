#include "library.h"

#include <bcm/error.h>

#include <charconv>
#include <deque>

namespace saish {

namespace {

#include "commands.inc"

/// The Chip SDK's result codes, for `fail`.
constexpr Name sdk_names[] = {
    {"BCM_E_NONE", BCM_E_NONE},         {"BCM_E_INTERNAL", BCM_E_INTERNAL},   {"BCM_E_MEMORY", BCM_E_MEMORY},
    {"BCM_E_UNIT", BCM_E_UNIT},         {"BCM_E_PARAM", BCM_E_PARAM},         {"BCM_E_EMPTY", BCM_E_EMPTY},
    {"BCM_E_FULL", BCM_E_FULL},         {"BCM_E_NOT_FOUND", BCM_E_NOT_FOUND}, {"BCM_E_EXISTS", BCM_E_EXISTS},
    {"BCM_E_TIMEOUT", BCM_E_TIMEOUT},   {"BCM_E_BUSY", BCM_E_BUSY},           {"BCM_E_FAIL", BCM_E_FAIL},
    {"BCM_E_DISABLED", BCM_E_DISABLED}, {"BCM_E_BADID", BCM_E_BADID},         {"BCM_E_RESOURCE", BCM_E_RESOURCE},
    {"BCM_E_CONFIG", BCM_E_CONFIG},     {"BCM_E_UNAVAIL", BCM_E_UNAVAIL},     {"BCM_E_INIT", BCM_E_INIT},
    {"BCM_E_PORT", BCM_E_PORT},
};

const Name* find(std::span<const Name> list, std::string_view word) {
  for (const Name& name : list)
    if (word == name.name) return &name;
  return nullptr;
}

}  // namespace

std::span<const Function> functions() { return function_table; }

const Function* find_function(std::string_view name) {
  for (const Function& function : function_table)
    if (name == function.name) return &function;
  return nullptr;
}

std::string usage(const Function& function) {
  std::string result = function.name;
  for (const char* parameter : function.parameters) result += std::string(" ") + parameter;
  return result;
}

std::string code_text(int32_t code) {
  std::string result = std::to_string(code);
  for (const Name& name : names)
    if (code < 0 && name.value == code && std::string_view(name.name).starts_with("SAI_E_"))
      result += std::string(" ") + name.name;
  return result;
}

std::optional<int64_t> number(std::string_view word) {
  if (const Name* name = find(names, word)) return name->value;
  if (const Name* name = find(sdk_names, word)) return name->value;

  const bool negative = word.starts_with('-');
  if (negative) word.remove_prefix(1);
  const bool hexadecimal = word.starts_with("0x") || word.starts_with("0X");
  if (hexadecimal) word.remove_prefix(2);
  uint64_t digits = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), digits, hexadecimal ? 16 : 10);
  if (error != std::errc{} || end != word.data() + word.size() || word.empty() || digits > INT64_MAX)
    return std::nullopt;
  return negative ? -static_cast<int64_t>(digits) : static_cast<int64_t>(digits);
}

sai_log_handle* log_handle(std::string_view parameter, std::string_view word) {
  const std::string where(parameter);
  if (word != "default" && word != "null")
    throw BadInput(where + ": \"" + std::string(word) + "\" is neither \"default\" nor \"null\"");
  if (sai_log_default == nullptr) throw BadInput(where + ": no log is open; open_sai_log opens one");
  return word == "default" ? sai_log_default : nullptr;
}

Argument<const char*>::Argument(std::string_view /*parameter*/, const std::string& word) {
  static std::deque<std::string> texts;
  kept = texts.emplace_back(word).c_str();
}

namespace {

/// An index that the library uses unchecked.
int32_t index(std::string_view parameter, const std::string& word, int32_t highest) {
  const int32_t value = Argument<int32_t>(parameter, word).get();
  if (value < 0 || value > highest)
    throw BadInput(std::string(parameter) + ": \"" + word + "\" is not a number from 0 to " + std::to_string(highest));
  return value;
}

constexpr int32_t highest_module = static_cast<int32_t>(std::size(sai_log_module_names)) - 2;

}  // namespace

template <>
Result run<&open_sai_log>(const std::vector<const char*>& parameters, const Words& arguments) {
  if (sai_log_default != nullptr) throw BadInput("a log is open; close_sai_log default closes it");
  const int32_t module = index(parameters[1], arguments[1], highest_module);
  const int32_t options = Argument<int32_t>(parameters[2], arguments[2]).get();
  const int32_t facility = Argument<int32_t>(parameters[3], arguments[3]).get();
  sai_log_default = open_sai_log(Argument<const char*>(parameters[0], arguments[0]).get(), module, options, facility);
  return sai_log_default == nullptr ? SAI_E_MEMORY : SAI_E_NONE;
}

template <>
Result run<&close_sai_log>(const std::vector<const char*>& parameters, const Words& arguments) {
  sai_log_handle* log = log_handle(parameters[0], arguments[0]);
  if (log == nullptr) throw BadInput(std::string(parameters[0]) + ": null cannot be closed");
  close_sai_log(log);
  sai_log_default = nullptr;
  return std::nullopt;
}

template <>
Result run<&sai_log_set_level>(const std::vector<const char*>& parameters, const Words& arguments) {
  sai_log_handle* log = log_handle(parameters[0], arguments[0]);
  const int32_t destination = index(parameters[1], arguments[1], SAI_LOG_FILE);
  sai_log_set_level(log, destination, Argument<int32_t>(parameters[2], arguments[2]).get());
  return std::nullopt;
}

}  // namespace saish
