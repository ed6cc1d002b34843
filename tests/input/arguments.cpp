#include "input/arguments.h"

#include <sanitizer/asan_interface.h>

#include <algorithm>

namespace input {

#include "commands.inc"

std::span<const Function> functions() { return function_table; }

Room::Room(std::size_t size) : size_(size), block_(new uint8_t[size + 2 * canary]) {
  std::memset(block_.get(), filler, size_ + 2 * canary);
  ASAN_POISON_MEMORY_REGION(block_.get(), canary);
  ASAN_POISON_MEMORY_REGION(get() + size_, canary);
}

Room::~Room() { open(); }

void Room::open() { ASAN_UNPOISON_MEMORY_REGION(block_.get(), size_ + 2 * canary); }

bool Room::intact() {
  open();
  const auto is_filler = [](uint8_t byte) { return byte == filler; };
  return std::all_of(block_.get(), get(), is_filler) && std::all_of(get() + size_, get() + size_ + canary, is_filler);
}

std::size_t items_of(const Parameter& parameter) {
  const std::string_view name = parameter.name;
  if (parameter.count != 0 && name != "ip6") return parameter.count;
  if (name.ends_with("mac")) return 6;
  if (name == "weights") return 8;
  if (name == "entries") return 64;  // more than the chip's table has here
  return 1;
}

namespace {

std::string text_of(const Source& source) {
  const std::string_view name = source.parameter.name;
  if (source.bad != nullptr && source.bad->text != nullptr) return source.bad->text;
  if (name.ends_with("_buf")) return std::string(15, '\0');
  return name == "command" ? "led 0 stop" : "debugging";
}

}  // namespace

Text::Text(const Source& source)
    : is_null_(source.bad != nullptr && source.bad->is_null), room_(text_of(source).size() + 1) {
  const std::string text = text_of(source);
  std::memcpy(room_.get(), text.c_str(), text.size() + 1);
}

Argument<sai_log_handle*>::Argument(const Source& source) {
  if (source.bad != nullptr)
    log_ = nullptr;
  else
    log_ =
        source.function.name == std::string_view("close_sai_log") ? open_sai_log("closed", 0, 0, 0) : sai_log_default;
}

}  // namespace input
