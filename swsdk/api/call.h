// The form of every entry point: check the unit, take its lock, ask for a fault, do the work, write the journal line.
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

/// An argument of any type, as the lines of its call show it.
class Argument {
 public:
  template <class T>
  Argument(const T& argument) : argument_(&argument), shown_(&shown_as<T>) {}  // NOLINT(google-explicit-constructor)

  /// For the journal or the recording of a call that returned `rv`.
  std::string shown(bool in_recording, int rv) const { return shown_(argument_, in_recording, rv); }

 private:
  template <class T>
  static std::string shown_as(const void* argument, bool in_recording, int rv) {
    const T& value = *static_cast<const T*>(argument);
    return in_recording ? shown_in_recording(value, rv) : api::shown(value, rv);
  }

  const void* argument_;
  std::string (*shown_)(const void* argument, bool in_recording, int rv);
};

using Arguments = std::initializer_list<Argument>;

/// Writes "function(arguments) = rv" into the journal and the recording, if they are on.
void record(Kind kind, const char* function, int rv, Arguments arguments);

/// Lets the control interface change a unit's chip. Returns the body's result, or -1 when the unit is not up.
template <class Body, class... Args>
int act(const char* function, int unit, Body body, const Args&... args) {
  const auto recorded_body = [&](chip::Chip& chip) {
    const int rv = body(chip);
    record(Kind::action, function, rv, {unit, args...});
    return rv;
  };
  return on_chip(unit, recorded_body, -1);
}

/// The control interface's result.
inline int zero_if_ok(chip::Status status) { return status == chip::Status::ok ? 0 : -1; }

/// A call's access to its unit's chip, which is locked for the lifetime of this; without a chip the call is refused.
struct Entrance {
  chip::Chip* chip = nullptr;
  std::unique_lock<std::recursive_mutex> guard;
  int refusal = BCM_E_NONE;
  Kind kind = Kind::call;
};

/// Checks the unit, takes its lock, asks for a fault and whether the unit is up. `of_arguments`: the code that refuses
/// the arguments, or 0.
Entrance enter(const char* function, int unit, int of_arguments);

/// A call on a unit with its arguments, which make its journal line. It refuses null where an argument needs a valid
/// pointer, and a record that asks for what the chip does not model.
template <class... Args>
class Call {
 public:
  Call(const char* function, int unit, const Args&... args) : function_(function), unit_(unit), args_(args...) {}

  /// Returns the result of `body` on the unit's chip. If that is success, `after` runs without the unit's lock, so that
  /// it may call back; its result is then the answer.
  template <class Body, class... After>
  int answer(Body body, After... after) const {
    Entrance entrance = enter(function_, unit_, refusal());
    int rv = entrance.refusal;
    if (entrance.chip != nullptr) {
      rv = code(body(*entrance.chip));
      if constexpr (sizeof...(After) > 0) {
        entrance.guard.unlock();
        if (rv >= 0) rv = (code(after()), ...);
      }
    }
    std::apply([&](const auto&... args) { record(entrance.kind, function_, rv, {unit_, args...}); }, args_);
    return rv;
  }

 private:
  int refusal() const {
    return std::apply(
        [](const auto&... args) {
          if ((is_missing(args) || ...)) return BCM_E_PARAM;
          return (exceeds_model(args) || ...) ? BCM_E_UNAVAIL : BCM_E_NONE;
        },
        args_);
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
  record(fault ? Kind::fault : Kind::call, function, rv, {args...});
  return rv;
}

}  // namespace api
