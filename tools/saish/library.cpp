#include "library.h"

#include <bcm/error.h>
#include <bcm/l2.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <deque>

namespace saish {

#include "commands.inc"

namespace {

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

std::span<const Name> sdk_results() { return sdk_names; }

const Function* find_function(std::string_view name) {
  for (const Function& function : function_table)
    if (name == function.name) return &function;
  return nullptr;
}

std::string usage(const Function& function) {
  std::string result = function.name;
  for (const std::string& parameter : given_parameters(function)) result += ' ' + parameter;
  return result;
}

std::vector<std::string> given_parameters(const Function& function) {
  std::vector<std::string> result;
  for (const Parameter& parameter : function.parameters)
    if (parameter.given) result.emplace_back(parameter.name);
  return result;
}

std::string result_text(const Function& function, int32_t result) {
  std::string text = std::to_string(result);
  if (function.result != Result::code || result >= 0) return text;
  for (const Name& name : names)
    if (name.value == result && std::string_view(name.name).starts_with("SAI_E_")) text += std::string(" ") + name.name;
  return text;
}

std::optional<Wide> wide_named_number(std::string_view word, std::string_view prefix) {
  if (word.starts_with(prefix)) {
    if (const Name* name = find(names, word)) return name->value;
    if (const Name* name = find(sdk_names, word)) return name->value;
  }
  return wide_number(word);
}

std::optional<Wide> wide_number(std::string_view word) {
  const bool negative = word.starts_with('-');
  if (negative) word.remove_prefix(1);
  const bool hexadecimal = word.starts_with("0x") || word.starts_with("0X");
  if (hexadecimal) word.remove_prefix(2);
  uint64_t digits = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), digits, hexadecimal ? 16 : 10);
  if (error != std::errc{} || end != word.data() + word.size() || word.empty()) return std::nullopt;
  return negative ? -static_cast<Wide>(digits) : static_cast<Wide>(digits);
}

sai_log_handle* log_handle(std::string_view parameter, std::string_view word) {
  const std::string where(parameter);
  if (word != "default" && word != "null")
    throw BadInput(where + ": \"" + std::string(word) + "\" is neither \"default\" nor \"null\"");
  if (sai_log_default == nullptr) throw BadInput(where + ": no log is open; open_sai_log opens one");
  return word == "default" ? sai_log_default : nullptr;
}

bool is_provided(std::string_view name) {
  return name.ends_with("_buf") || name.ends_with("_len") || name == "entries";
}

// These run on the SDK's threads; one call of printf prints one whole line.

template <>
void Argument<bcm_linkscan_handler_t>::print(int unit, int port, bcm_port_info_t* info) {
  std::printf("  ! link of unit %d port %d is %s\n", unit, port, info->linkstatus != 0 ? "up" : "down");
}

template <>
void Argument<sai_l2_event_cb>::print(uint16_t vid, int32_t port, uint8_t* mac, int32_t operation) {
  uint8_t address[6];
  std::memcpy(address, mac, sizeof address);
  const std::string change = operation == BCM_L2_CALLBACK_ADD ? "added"
                             : operation == BCM_L2_CALLBACK_DELETE
                                 ? "deleted"
                                 : "changed by operation " + std::to_string(operation);
  std::printf("  ! address %s in VLAN %d on port %d is %s\n", text(address).c_str(), vid, port, change.c_str());
}

Argument<const char*>::Argument(const Parameter& /*parameter*/, const std::string& word) {
  static std::deque<std::string> texts;
  kept = texts.emplace_back(word).c_str();
}

namespace {

/// An index that the library does not check.
int32_t index(const Parameter& parameter, const std::string& word, int32_t highest) {
  const int32_t value = Argument<int32_t>(parameter, word).get();
  if (value < 0 || value > highest)
    throw BadInput(std::string(parameter.name) + ": \"" + word + "\" is not a number from 0 to " +
                   std::to_string(highest));
  return value;
}

constexpr int32_t highest_module = static_cast<int32_t>(std::size(sai_log_module_names)) - 2;

}  // namespace

template <>
Outcome run<&open_sai_log>(const Parameters& parameters, const Words& words) {
  if (sai_log_default != nullptr) throw BadInput("a log is open; close_sai_log default closes it");
  const int32_t module = index(parameters[1], words[1], highest_module);
  const int32_t options = Argument<int32_t>(parameters[2], words[2]).get();
  const int32_t facility = Argument<int32_t>(parameters[3], words[3]).get();
  sai_log_default = open_sai_log(Argument<const char*>(parameters[0], words[0]).get(), module, options, facility);
  return {sai_log_default == nullptr ? SAI_E_MEMORY : SAI_E_NONE};
}

template <>
Outcome run<&close_sai_log>(const Parameters& parameters, const Words& words) {
  sai_log_handle* log = log_handle(parameters[0].name, words[0]);
  if (log == nullptr) throw BadInput(std::string(parameters[0].name) + ": null cannot be closed");
  close_sai_log(log);
  sai_log_default = nullptr;
  return {};
}

template <>
Outcome run<&sai_log_set_level>(const Parameters& parameters, const Words& words) {
  sai_log_handle* log = log_handle(parameters[0].name, words[0]);
  const int32_t destination = index(parameters[1], words[1], SAI_LOG_FILE);
  sai_log_set_level(log, destination, Argument<int32_t>(parameters[2], words[2]).get());
  return {};
}

}  // namespace saish
