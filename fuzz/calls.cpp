#include "calls.h"

#include <cstring>

namespace fuzz {

#include "functions.inc"

std::span<const Function> functions() { return function_table; }

const Function& any_function(Input& input) {
  return function_table[input.from(0, static_cast<int>(std::size(function_table)) - 1)];
}

bool is_code(int32_t result) {
  return std::any_of(std::begin(names), std::end(names),
                     [&](const Name& name) { return name.name.starts_with("SAI_E_") && name.value == result; });
}

namespace {

bool is_any(std::string_view name, std::initializer_list<std::string_view> list) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

bool contains(std::string_view name, std::string_view part) { return name.find(part) != std::string_view::npos; }

}  // namespace

int number_for(std::string_view name, Input& input) {
  constexpr int virtual_port = 17 << 26;
  constexpr int network = 0x0A000000;
  constexpr auto multicast = static_cast<int>(0xE1000000);
  if (name == "unit") return input.any<uint8_t>() < 250 ? 0 : input.near(0, 16);
  if (name.ends_with("port")) return input.near(0, 12);
  if (name == "vport_id") return virtual_port | input.near(0, 5);
  if (contains(name, "vlan") || contains(name, "vid") || contains(name, "inner_")) return input.near(1, 20);
  if (name == "ip_protocol" || name == "tos_value") return input.near(0, 63);
  if (name.ends_with("mask")) {
    const int length = input.near(0, 32);
    return length > 0 && length <= 32 ? static_cast<int>(~0U << (32 - length)) : length;
  }
  if (is_any(name, {"ip", "src_ip", "dst_ip", "subnet", "nexthop_ip"})) return network | input.near(0, 15);
  if (name == "group") return input.flag() ? input.near(0, 12) : multicast | input.near(1, 4);
  if (is_any(name, {"enable", "tagged", "dtag", "disable"})) return input.near(0, 1);
  if (name == "flags") return input.near(0, 199);
  if (name == "member_bitmap") return input.any<int32_t>();
  if (name == "command") return input.near(36995, 37012);
  if (name == "rv") return input.near(-20, 1);
  if (is_any(name, {"rate", "burst", "value", "seconds"})) return input.any<int32_t>();
  return input.near(0, 9);
}

std::string text_for(std::string_view name, Input& input) {
  constexpr const char* lines[] = {"help", "led 0 auto on", "led 1 stop", "led 0 start", "led 0 load /dev/null", "led"};
  if (name == "command" && input.flag()) return lines[input.from(0, static_cast<int>(std::size(lines)) - 1)];
  return input.text(100);
}

std::size_t mac_entries() {
  int32_t most = 0;
  int32_t present = 0;
  return sai_l2_info(0, &most, &present) == SAI_E_NONE ? static_cast<std::size_t>(present) : 0;
}

namespace {

void open_and_close(Input& input, Prepare prepare) {
  const int module = input.from(0, 1);
  const auto options = input.any<int32_t>();
  const auto facility = input.any<int32_t>();
  prepare(input);
  sai_log_handle* const log = open_sai_log("another", module, options, facility);
  log->file = std::fopen("/dev/null", "w");
  log->file_name = strdup("/dev/null");
  close_sai_log(log);
}

}  // namespace

Made call(sai_log_handle* (*)(const char*, int32_t, int32_t, int32_t), const Parameters& /*parameters*/, Input& input,
          Prepare prepare) {
  open_and_close(input, prepare);
  return {};
}

Made call(void (*)(sai_log_handle*), const Parameters& /*parameters*/, Input& input, Prepare prepare) {
  open_and_close(input, prepare);
  return {};
}

Made call(void (*set_level)(sai_log_handle*, int32_t, int32_t), const Parameters& /*parameters*/, Input& input,
          Prepare prepare) {
  sai_log_handle* const log = input.flag() ? sai_log_default : nullptr;
  const int destination = input.from(SAI_LOG_SYSLOG, SAI_LOG_FILE);
  const int level = input.near(SAI_LOG_OFF, SAI_LOG_DEBUGGING);
  prepare(input);
  if (sai_log_default != nullptr) set_level(log, destination, level);
  return {};
}

}  // namespace fuzz
