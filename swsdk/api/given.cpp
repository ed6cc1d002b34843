#include "api/given.h"

#include <climits>

uintptr_t api::parsed_pointer(std::string_view text, const char* what) {
  if (text == "NULL") return 0;
  const std::string opening = '<' + std::string(what) + ' ';
  uintptr_t number = 0;
  if (text.starts_with(opening) && text.ends_with('>'))
    parse_value(text.substr(opening.size(), text.size() - opening.size() - 1), number);
  if (number == 0) throw Unreadable(text, what);
  return number;
}

void api::know_pointer(const char* what, const void* pointer, uintptr_t number) {
  if (present_caller() != nullptr) return;
  if (number > INT_MAX) throw Unreadable(std::to_string(number), what);
  set_pointer_number(what, pointer, static_cast<int>(number));
}

std::size_t api::parsed_room(std::string_view text) {
  constexpr std::string_view of = " of ";
  std::size_t room = 1;
  if (const std::size_t found = text.rfind(of); text.starts_with('&') && found != std::string_view::npos) {
    int count = 0;
    parse_value(text.substr(found + of.size()), count);
    room = count < 0 ? 0 : static_cast<std::size_t>(count);
  } else if (text.starts_with('[')) {
    room = items(text, '[', ']').size();
  }
  return room;
}
