#include "api/packet_filter.h"

#include <array>
#include <cstring>

namespace {

using Step = api::PacketFilter::Step;

constexpr std::size_t most_steps = 4096;
constexpr std::size_t words = 16;  // of scratch memory

// The parts of an instruction's code.
constexpr unsigned class_mask = 0x07, size_mask = 0x18, mode_mask = 0xE0, operation_mask = 0xF0;
constexpr unsigned from_x = 0x08;  // the operand is X, not k
constexpr unsigned load = 0, load_x = 1, store = 2, store_x = 3, arithmetic = 4, jump = 5, result = 6, other = 7;
constexpr unsigned word = 0x00, half = 0x08, byte = 0x10;
constexpr unsigned constant = 0x00, absolute = 0x20, indirect = 0x40, memory = 0x60, length = 0x80, header = 0xA0;
constexpr unsigned add = 0x00, subtract = 0x10, multiply = 0x20, divide = 0x30, bit_or = 0x40, bit_and = 0x50,
                   shift_left = 0x60, shift_right = 0x70, modulo = 0x90, bit_xor = 0xA0;
constexpr unsigned always = 0x00, equal = 0x10, greater = 0x20, at_least = 0x30, has_bits = 0x40;
constexpr unsigned result_from_a = 0x10;
constexpr unsigned x_to_a = 0x80;

bool is_sound(std::span<const Step> steps, std::size_t at) {
  const Step& step = steps[at];
  const unsigned operation = step.code & operation_mask;
  const unsigned mode = step.code & mode_mask;
  const std::size_t after = steps.size() - at - 1;
  switch (step.code & class_mask) {
    case load:
      if ((step.code & size_mask) > byte) return false;
      return mode == memory ? step.k < words
                            : mode == constant || mode == absolute || mode == indirect || mode == length;
    case load_x:
      return mode == memory ? step.k < words : mode == constant || mode == length || mode == header;
    case store:
    case store_x:
      return step.k < words;
    case arithmetic:
      if ((operation == divide || operation == modulo) && (step.code & from_x) == 0) return step.k != 0;
      return operation <= bit_xor;
    case jump:
      if (operation == always) return step.k < after;
      return operation <= has_bits && step.jump_true < after && step.jump_false < after;
    default:
      return true;
  }
}

/// The bytes at an offset in network order; nothing past the end.
std::optional<uint32_t> loaded(std::span<const uint8_t> frame, unsigned size, uint64_t at) {
  const std::size_t count = size == word ? 4 : size == half ? 2 : 1;
  if (at + count > frame.size()) return std::nullopt;
  uint32_t value = 0;
  for (std::size_t i = 0; i < count; ++i) value = value << 8 | frame[static_cast<std::size_t>(at) + i];
  return value;
}

/// Nothing for a division by zero.
std::optional<uint32_t> computed(unsigned operation, uint32_t a, uint32_t operand) {
  constexpr uint32_t bits = 32;
  switch (operation) {
    case add:
      return a + operand;
    case subtract:
      return a - operand;
    case multiply:
      return a * operand;
    case divide:
      return operand == 0 ? std::nullopt : std::optional(a / operand);
    case modulo:
      return operand == 0 ? std::nullopt : std::optional(a % operand);
    case bit_or:
      return a | operand;
    case bit_and:
      return a & operand;
    case bit_xor:
      return a ^ operand;
    case shift_left:
      return operand < bits ? a << operand : 0;
    case shift_right:
      return operand < bits ? a >> operand : 0;
    default:  // 0x80: negate
      return 0 - a;
  }
}

bool holds(unsigned operation, uint32_t a, uint32_t operand) {
  switch (operation) {
    case equal:
      return a == operand;
    case greater:
      return a > operand;
    case at_least:
      return a >= operand;
    default:
      return (a & operand) != 0;
  }
}

}  // namespace

std::optional<api::PacketFilter> api::PacketFilter::of(std::span<const uint8_t> program) {
  if (program.empty()) return PacketFilter();
  std::vector<Step> steps(program.size() / sizeof(Step));
  if (program.size() % sizeof(Step) != 0 || steps.size() > most_steps) return std::nullopt;
  std::memcpy(steps.data(), program.data(), program.size());
  for (std::size_t i = 0; i < steps.size(); ++i)
    if (!is_sound(steps, i)) return std::nullopt;
  if ((steps.back().code & class_mask) != result) return std::nullopt;
  return PacketFilter(std::move(steps));
}

bool api::PacketFilter::takes(std::span<const uint8_t> frame) const {
  if (steps_.empty()) return true;
  uint32_t a = 0;
  uint32_t x = 0;
  std::array<uint32_t, words> scratch{};
  // Jumps only lead forward, so that this ends.
  for (std::size_t at = 0; at < steps_.size(); ++at) {
    const Step& step = steps_[at];
    const unsigned mode = step.code & mode_mask;
    const unsigned operation = step.code & operation_mask;
    const uint32_t operand = (step.code & from_x) != 0 ? x : step.k;
    std::optional<uint32_t> value;
    switch (step.code & class_mask) {
      case load:
        value = mode == constant ? step.k
                : mode == length ? static_cast<uint32_t>(frame.size())
                : mode == memory ? scratch[step.k]
                                 : loaded(frame, step.code & size_mask, uint64_t{step.k} + (mode == indirect ? x : 0));
        if (!value) return false;
        a = *value;
        break;
      case load_x:
        value = mode == constant ? step.k
                : mode == length ? static_cast<uint32_t>(frame.size())
                : mode == memory ? scratch[step.k]
                                 : loaded(frame, byte, step.k);
        if (!value) return false;
        x = mode == header ? (*value & 0xF) * 4 : *value;  // the length of an IPv4 header
        break;
      case store:
        scratch[step.k] = a;
        break;
      case store_x:
        scratch[step.k] = x;
        break;
      case arithmetic:
        value = computed(operation, a, operand);
        if (!value) return false;
        a = *value;
        break;
      case jump:
        at += operation == always ? step.k : holds(operation, a, operand) ? step.jump_true : step.jump_false;
        break;
      case result:
        return ((step.code & size_mask) == result_from_a ? a : step.k) != 0;
      case other:
        (step.code & x_to_a) != 0 ? a = x : x = a;
        break;
    }
  }
  return false;
}
