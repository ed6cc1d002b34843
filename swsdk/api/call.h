// The one shape of an entry point: check the unit, take its lock, ask for a fault, do the work, write the journal line.
#pragma once

#include <bcm/error.h>

#include <initializer_list>
#include <mutex>
#include <optional>
#include <string>
#include <tuple>

#include "api/arguments.h"
#include "api/fault.h"
#include "api/journal.h"
#include "api/recording.h"
#include "api/units.h"
#include "chip/status.h"

namespace api {

inline int code(chip::Status status) { return static_cast<int>(status); }
inline int code(int rv) { return rv; }

/// "function(arguments) = rv".
inline std::string line(const char* function, int rv, std::initializer_list<std::string> arguments) {
  std::string result = function;
  const char* separator = "(";
  for (const std::string& argument : arguments) {
    result += separator + argument;
    separator = ", ";
  }
  if (arguments.size() == 0) result += '(';
  return result + ") = " + std::to_string(rv);
}

/// Writes that line into the journal and the recording, where somebody wants them.
template <class... Args>
void record(Kind kind, const char* function, int rv, const Args&... args) {
  if (journal_is_recording() && kind != Kind::action) journal_add(line(function, rv, {shown(args, rv)...}));
  // A fault leaves the outputs alone, whatever its code.
  if (is_recording())
    add_to_recording(kind, line(function, rv, {shown_in_recording(args, kind == Kind::fault ? -1 : rv)...}));
}

/// Lets the control interface do something to a unit's chip: what the body answers, or -1 when the unit is not up.
template <class Body, class... Args>
int act(const char* function, int unit, Body body, const Args&... args) {
  const auto recorded_body = [&](chip::Chip& chip) {
    const int rv = body(chip);
    record(Kind::action, function, rv, unit, args...);
    return rv;
  };
  return on_chip(unit, recorded_body, -1);
}

/// The control interface's answer.
inline int zero_if_ok(chip::Status status) { return status == chip::Status::ok ? 0 : -1; }

/// A call on a unit with its arguments, which make its journal line; a null pointer where one of them needs something
/// is refused.
template <class... Args>
class Call {
 public:
  Call(const char* function, int unit, const Args&... args) : function_(function), unit_(unit), args_(args...) {}

  /// Answers what `body` makes of the unit's chip. `after` runs when it made a success of it, and without the unit's
  /// lock, so that it may call back; what it makes is the answer then.
  template <class Body, class... After>
  int answer(Body body, After... after) const {
    Unit* const attached = find_unit(unit_);
    if (attached == nullptr) return recorded(BCM_E_UNIT);
    std::unique_lock guard(attached->lock);
    if (const std::optional<int> fault = next_fault(function_)) return recorded(*fault, Kind::fault);
    if (!attached->initialised) return recorded(BCM_E_INIT);
    if (lacks_something()) return recorded(BCM_E_PARAM);
    int rv = code(body(*attached->chip));
    if constexpr (sizeof...(After) > 0) {
      guard.unlock();
      if (rv >= 0) rv = (code(after()), ...);
    }
    return recorded(rv);
  }

 private:
  bool lacks_something() const {
    return std::apply([](const auto&... args) { return (is_missing(args) || ...); }, args_);
  }

  int recorded(int rv, Kind kind = Kind::call) const {
    std::apply([&](const auto&... args) { record(kind, function_, rv, unit_, args...); }, args_);
    return rv;
  }

  const char* const function_;
  const int unit_;
  const std::tuple<Args...> args_;
};

/// Answers a call that is on no unit.
template <class Body, class... Args>
int call_without_unit(const char* function, Body body, const Args&... args) {
  const std::optional<int> fault = next_fault(function);
  const int rv = fault ? *fault : code(body());
  record(fault ? Kind::fault : Kind::call, function, rv, args...);
  return rv;
}

}  // namespace api
