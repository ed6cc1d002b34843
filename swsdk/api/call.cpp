#include "api/call.h"

namespace {

std::string line(const char* function, int rv, api::Arguments arguments, bool in_recording, int shown_rv) {
  std::string result = function;
  result += '(';
  const char* separator = "";
  for (const api::Argument& argument : arguments) {
    result += separator + argument.shown(in_recording, shown_rv);
    separator = ", ";
  }
  return result + ") = " + std::to_string(rv);
}

}  // namespace

void api::record(Kind kind, const char* function, int rv, Arguments arguments) {
  if (journal_is_recording() && kind != Kind::action) journal_add(line(function, rv, arguments, false, rv));
  // A fault writes no outputs, whatever its code.
  if (is_recording())
    add_to_recording(kind, line(function, rv, arguments, true, kind == Kind::fault ? BCM_E_INTERNAL : rv));
}

api::Entrance api::enter(const char* function, int unit, int of_arguments) {
  Entrance entrance;
  Unit* const attached = find_unit(unit);
  if (attached == nullptr) {
    entrance.refusal = BCM_E_UNIT;
    return entrance;
  }
  entrance.guard = std::unique_lock(attached->lock);
  if (const std::optional<int> fault = next_fault(function)) {
    entrance.refusal = *fault;
    entrance.kind = Kind::fault;
  } else if (!attached->initialized) {
    entrance.refusal = BCM_E_INIT;
  } else if (of_arguments != BCM_E_NONE) {
    entrance.refusal = of_arguments;
  } else {
    entrance.chip = &*attached->chip;
  }
  return entrance;
}
