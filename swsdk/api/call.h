// The form of every entry point: check the unit, take its lock, ask for a fault, do the work, write the journal line;
// or, when the chip is in another process, have that answer.
#pragma once

#include <bcm/error.h>

#include <mutex>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "api/caller.h"
#include "api/calls/call_text.h"
#include "api/calls/calls.h"
#include "api/control_records.h"
#include "api/fault.h"
#include "api/journal.h"
#include "api/remote_chip.h"
#include "api/units.h"
#include "chip/origin.h"
#include "chip/status.h"

namespace api {

inline int code(chip::Status status) { return static_cast<int>(status); }
inline int code(int rv) { return rv; }

/// What every SDK call returns while the process with the chip is gone. Units do not vanish from a board, so it is none
/// of the codes that a caller's mistake has.
constexpr int gone = BCM_E_FAIL;

/// Writes "function(arguments) = rv" into the journal and the recording, if they are on.
void record(Kind kind, const char* function, int rv, Arguments arguments);

/// Has the chip's process answer, which records the call there, and records it here, too. Returns the result, or
/// `if_gone`.
long long call_remote(Kind kind, const char* function, Arguments arguments, long long if_gone);

/// Lets the control interface change a unit's chip. Returns the body's result, or -1 when the unit is not up.
template <class Body, class... Args>
int act(const char* function, int unit, Body body, const Args&... args) {
  if (remote_chip() != nullptr) return static_cast<int>(call_remote(Kind::action, function, {unit, args...}, -1));
  const auto recorded_body = [&](chip::Chip& chip) {
    const int rv = body(chip);
    record(Kind::action, function, rv, {unit, args...});
    return rv;
  };
  return on_chip(unit, recorded_body, -1);
}

/// Answers what the control interface asks of a process and its chips without changing a chip. Returns the body's
/// result; `otherwise` when the chip is gone.
template <class Body, class Result, class... Args>
Result ask(const char* function, Body body, Result otherwise, const Args&... args) {
  if (remote_chip() != nullptr)
    return static_cast<Result>(call_remote(Kind::question, function, {args...}, static_cast<long long>(otherwise)));
  const Result result = body();
  if (present_caller() != nullptr) record(Kind::question, function, static_cast<int>(result), {args...});
  return result;
}

/// The same of one unit's chip; `otherwise` also when the unit is not up.
template <class Body, class Result, class... Args>
Result ask_chip(const char* function, int unit, Body body, Result otherwise, const Args&... args) {
  return ask(
      function, [&] { return on_chip(unit, body, otherwise); }, otherwise, unit, args...);
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
  explicit Call(const calls::Described<Args...>& described) : described_(described) {}

  /// Returns the result of `body` on the unit's chip.
  template <class Body>
  int answer(Body body) const {
    if (remote_chip() != nullptr)
      return with_arguments([&](Arguments all) { return call_remote(Kind::call, function(), all, gone); });
    const Entrance entrance = enter(function(), unit(), refusal());
    const chip::CallInProgress in_progress;  // to which what the body makes is due
    const int rv = entrance.chip == nullptr ? entrance.refusal : code(body(*entrance.chip));
    record_as(entrance.kind, rv);
    return rv;
  }

  /// Passes what `list` lists of the unit's chip to `visit`, one by one, until that returns a negative code. The unit's
  /// lock is free meanwhile, so that it may call back.
  template <class Entry, class List, class Visit>
  int walk(List list, Visit visit) const {
    std::vector<Entry> entries;
    if (remote_chip() != nullptr) return walk_remote(entries, visit);
    const std::shared_ptr<Caller>& caller = present_caller();
    if (caller != nullptr && caller->walk_result) {
      record_as(Kind::call, *caller->walk_result);
      return *caller->walk_result;
    }
    Entrance entrance = enter(function(), unit(), refusal());
    int rv = entrance.chip == nullptr ? entrance.refusal : code(list(*entrance.chip, entries));
    if (entrance.guard) entrance.guard.unlock();
    if (entrance.chip == nullptr || rv < 0) {
      record_as(entrance.kind, rv);
    } else if (caller != nullptr) {
      for (const Entry& entry : entries) caller->add_to_answer("entry " + value_text(entry));
    } else {
      rv = visit_each(entries, visit);
      record_as(entrance.kind, rv);
    }
    return rv;
  }

 private:
  const char* function() const { return described_.function; }
  int unit() const { return std::get<0>(described_.arguments); }

  int refusal() const {
    return std::apply(
        [](const auto&... args) {
          if ((is_missing(args) || ...)) return BCM_E_PARAM;
          return (exceeds_model(args) || ...) ? BCM_E_UNAVAIL : BCM_E_NONE;
        },
        described_.arguments);
  }

  /// The result of `take` with all arguments.
  template <class Take>
  int with_arguments(Take take) const {
    return std::apply([&](const auto&... args) { return static_cast<int>(take({args...})); }, described_.arguments);
  }

  void record_as(Kind kind, int rv) const {
    with_arguments([&](Arguments all) {
      record(kind, function(), rv, all);
      return 0;
    });
  }

  template <class Entry, class Visit>
  static int visit_each(std::vector<Entry>& entries, Visit visit) {
    int rv = BCM_E_NONE;
    for (auto entry = entries.begin(); rv >= 0 && entry != entries.end(); ++entry) rv = visit(*entry);
    return rv < 0 ? rv : int{BCM_E_NONE};
  }

  template <class Entry, class Visit>
  int walk_remote(std::vector<Entry>& entries, Visit visit) const {
    return with_arguments([&](Arguments all) {
      const auto take = [&](std::string_view text) { read_output(text, entries.emplace_back()); };
      const std::optional<Answer> answer = remote_chip()->call(function(), all, take);
      if (!answer) return gone;
      int rv = static_cast<int>(answer->result);
      // One that the chip's process has recorded has been refused.
      if (!answer->kind) {
        rv = visit_each(entries, visit);
        remote_chip()->end_walk(function(), all, rv);
      }
      record(answer->kind.value_or(Kind::call), function(), rv, all);
      return rv;
    });
  }

  const calls::Described<Args...> described_;
};

/// Answers a call that is on no unit.
template <class Body, class... Args>
int call_without_unit(const calls::Described<Args...>& call, Body body) {
  const char* const function = call.function;
  return std::apply(
      [&](const auto&... args) {
        if (remote_chip() != nullptr) return static_cast<int>(call_remote(Kind::call, function, {args...}, gone));
        const std::optional<int> fault = next_fault(function);
        const int rv = fault ? *fault : code(body());
        record(fault ? Kind::fault : Kind::call, function, rv, {args...});
        return rv;
      },
      call.arguments);
}

/// The result of `registration`. A callback that it registers is known before the chip can be told of it, so that it
/// misses nothing.
template <class Registration>
int with_callback(const RemoteCallback& callback, Registration registration) {
  RemoteChip* const chip = remote_chip();
  const bool is_new = chip != nullptr && chip->add_callback(callback);
  const int rv = registration();
  if (is_new && rv < 0) chip->remove_callback(callback);
  return rv;
}

/// The result of a deregistration, after which nothing calls the callback.
inline int without_callback(const RemoteCallback& callback, int rv) {
  if (RemoteChip* const chip = remote_chip(); chip != nullptr && rv >= 0) chip->remove_callback(callback);
  return rv;
}

}  // namespace api
