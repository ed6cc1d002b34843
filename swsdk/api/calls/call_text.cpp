#include "api/calls/call_text.h"

#include <algorithm>
#include <cstring>

std::size_t api::copy_out(std::string_view text, char* buffer, std::size_t size) {
  if (size > 0 && buffer != nullptr) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
  }
  return text.size();
}

std::string_view api::written(std::string_view text) {
  if (!text.starts_with('&') || text.starts_with("&?")) return {};
  text.remove_prefix(1);
  // What is listed or quoted can itself contain " of ".
  const std::size_t end = text.find_last_of("]\"}");
  const std::size_t of = text.rfind(" of ");
  return of != std::string_view::npos && end != std::string_view::npos && of == end + 1 ? text.substr(0, of) : text;
}

void api::accept(const TextOut& out, std::string_view text) {
  if (const std::string_view value = written(text); out.pointer != nullptr && !value.empty())
    copy_out(parsed_quoted(value), out.pointer, out.size);
}

void api::accept(const BytesOut& out, std::string_view text) {
  const std::string_view value = written(text);
  if (out.pointer == nullptr || value.empty()) return;
  const std::vector<uint8_t> bytes = parsed_bytes(value);
  if (bytes.size() > out.room) throw Unreadable(value, "list of bytes that fits");
  std::copy(bytes.begin(), bytes.end(), out.pointer);
}

std::string api::outputs_text(Arguments arguments, int rv) {
  std::string result;
  for (const Argument& argument : arguments)
    if (argument.is_written()) result += (result.empty() ? "" : ", ") + argument.shown(Form::wire, rv);
  return result;
}

void api::accept_outputs(Arguments arguments, std::string_view text) {
  const std::string enclosed = '(' + std::string(text) + ')';
  const std::vector<std::string_view> texts = items(enclosed, '(', ')');
  std::size_t next = 0;
  for (const Argument& argument : arguments) {
    if (!argument.is_written()) continue;
    if (next == texts.size()) throw Unreadable(text, "list of all outputs of this call");
    argument.accept(texts[next++]);
  }
  if (next != texts.size()) throw Unreadable(text, "list of the outputs of this call");
}

std::string api::call_text(const char* function, Arguments arguments, Form form, int rv) {
  std::string result = function;
  result += '(';
  const char* separator = "";
  for (const Argument& argument : arguments) {
    result += separator + argument.shown(form, rv);
    separator = ", ";
  }
  return result + ')';
}
