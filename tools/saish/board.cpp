#include "board.h"

#include <soc/drv.h>
#include <swsdk/chip.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <set>

#include "values.h"
#include "words.h"

namespace saish {

namespace {

struct BoardField {
  const char* name;
  int swsdk_board::*value;
  int lowest;
  int highest;
};

constexpr BoardField board_fields[] = {
    {"ports", &swsdk_board::ports, 1, 255},
    {"units", &swsdk_board::units, 0, SOC_MAX_NUM_DEVICES},
    {"chip_type", &swsdk_board::chip_type, 0, std::numeric_limits<int>::max()},
};

std::string forms_text() {
  std::string result;
  for (const BoardField& field : board_fields)
    result += (result.empty() ? "" : ", ") + std::string(field.name) + "=" + std::to_string(field.lowest) + " to " +
              std::to_string(field.highest);
  return result;
}

/// The field that "name=value" sets, with a value in its range; null when there is none.
const BoardField* field_of(const std::string& item, int& value) {
  const std::size_t equals = std::min(item.find('='), item.size());
  const std::optional<int> given = number<int>(trimmed(item.substr(std::min(equals + 1, item.size()))));
  for (const BoardField& field : board_fields)
    if (trimmed(item.substr(0, equals)) == field.name && given && *given >= field.lowest && *given <= field.highest) {
      value = *given;
      return &field;
    }
  return nullptr;
}

}  // namespace

void set_board(const std::string& text) {
  swsdk_board board;
  swsdk_board_get(&board);
  std::set<const BoardField*> given;
  const Words items = *enclosed('{' + text + '}', '{', '}');
  for (const std::string& item : items) {
    int value = 0;
    const BoardField* const field = field_of(item, value);
    if (field == nullptr) throw BadInput("board: \"" + item + "\" is none of " + forms_text());
    if (!given.insert(field).second) throw BadInput("board: " + std::string(field->name) + " is given twice");
    board.*field->value = value;
  }
  if (items.empty()) throw BadInput("board: nothing is given; it takes " + forms_text());
  if (swsdk_board_set(&board) != 0) throw BadInput("board: it can be chosen only before the chip starts");
}

std::string board_text() {
  swsdk_board board;
  swsdk_board_get(&board);
  std::string result;
  for (const BoardField& field : board_fields)
    result += (result.empty() ? "" : ",") + std::string(field.name) + "=" + std::to_string(board.*field.value);
  return result;
}

}  // namespace saish
