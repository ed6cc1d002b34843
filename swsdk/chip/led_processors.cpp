#include "chip/led_processors.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

namespace chip {

namespace {

/// The bytes of one record, ":LLAAAATT" with the data and the checksum behind it; none when it is no record.
std::vector<uint8_t> record(std::string_view line) {
  constexpr std::size_t fewest_bytes = 5;
  if (!line.starts_with(':') || line.size() % 2 == 0) return {};
  std::vector<uint8_t> bytes;
  for (std::size_t i = 1; i < line.size(); i += 2) {
    uint8_t byte = 0;
    const char* const end = line.data() + i + 2;
    if (std::from_chars(line.data() + i, end, byte, 16).ptr != end) return {};
    bytes.push_back(byte);
  }
  const auto sum = std::accumulate(bytes.begin(), bytes.end(), 0U);
  if (bytes.size() < fewest_bytes || bytes.size() != bytes[0] + fewest_bytes || sum % 256 != 0) return {};
  return bytes;
}

}  // namespace

Status LedProcessors::load(int led, std::istream& program) {
  constexpr uint8_t data = 0;
  constexpr uint8_t end_of_file = 1;
  constexpr std::size_t header = 4;

  LedProcessor loaded;
  for (std::string line; std::getline(program, line);) {
    if (line.ends_with('\r')) line.pop_back();
    const std::vector<uint8_t> bytes = record(line);
    if (bytes.empty()) return Status::bad_parameter;
    const std::size_t address = bytes[1] * std::size_t{256} + bytes[2];
    const std::size_t length = bytes[0];
    const uint8_t type = bytes[3];
    if (type == end_of_file) {
      loaded.loaded = true;
      loaded.automatic = at(led).automatic;
      at(led) = loaded;
      return Status::ok;
    }
    if (type != data || address + length > LedProcessor::memory_size) return Status::bad_parameter;
    std::copy_n(bytes.begin() + header, length, loaded.memory.begin() + static_cast<std::ptrdiff_t>(address));
  }
  return Status::bad_parameter;  // no end record
}

}  // namespace chip
