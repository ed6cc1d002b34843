// Every function of the Chip SDK, in front of the real one: hands on the call, and writes it with what it returned.
#include "api/calls/calls.h"

#include <atomic>
#include <cerrno>
#include <exception>
#include <new>
#include <type_traits>

#include "api/calls/call_text.h"
#include "callbacks.h"
#include "next.h"
#include "recording.h"

namespace {

/// The parameter that an argument was made of.
template <class Parameter, class Argument>
Parameter parameter_of(const Argument& argument) {
  if constexpr (requires { recorder::relayed(argument); })
    return recorder::relayed(argument);
  else if constexpr (requires { argument.pointer; })
    return static_cast<Parameter>(const_cast<void*>(static_cast<const void*>(argument.pointer)));
  else if constexpr (requires { argument.value; })
    return static_cast<Parameter>(argument.value);
  else if constexpr (requires { argument.address; })
    return static_cast<Parameter>(argument.address);
  else
    return argument;
}

/// The real function of a name, looked up at its first call.
template <class Function>
class Next;

template <class Returned, class... Parameters>
class Next<Returned(Parameters...)> {
 public:
  using Function = Returned(Parameters...);

  constexpr Next(const char* name, Function* own) : name_(name), own_(own) {}

  /// Null when no library that is loaded has it.
  Function* get() {
    Function* function = function_.load(std::memory_order_relaxed);
    if (function == nullptr) {
      function = reinterpret_cast<Function*>(recorder::find_next(name_, reinterpret_cast<const void*>(own_)));
      function_.store(function, std::memory_order_relaxed);
    }
    return function;
  }

  /// Returns what it returned, 0 if that is nothing, or that the SDK does not have it.
  template <class... Arguments>
  int call(const std::tuple<Arguments...>& arguments) {
    Function* const function = get();
    if (function == nullptr) return BCM_E_UNAVAIL;
    return std::apply(
        [&](const auto&... each) {
          ++recorder::calls_in_progress;
          int result = 0;
          if constexpr (std::is_void_v<Returned>)
            function(parameter_of<Parameters>(each)...);
          else
            result = static_cast<int>(function(parameter_of<Parameters>(each)...));
          --recorder::calls_in_progress;
          return result;
        },
        arguments);
  }

 private:
  const char* const name_;
  Function* const own_;
  std::atomic<Function*> function_ = nullptr;
};

template <class... Arguments>
void record(const calls::Described<Arguments...>& call, int result) noexcept {
  try {
    const std::string text = std::apply(
        [&](const auto&... each) { return api::call_text(call.function, {each...}, api::Form::recording, result); },
        call.arguments);
    recorder::add(api::Kind::call, text + " = " + std::to_string(result));
  } catch (const std::bad_alloc&) {
    recorder::give_up("out of memory");
  } catch (const std::exception& error) {
    recorder::give_up(error.what());
  }
}

/// Hands on a call, and writes it if the application made it.
template <class Function, class... Arguments>
int pass_on(Next<Function>& next, const calls::Described<Arguments...>& call) {
  const bool is_recorded = recorder::calls_in_progress == 0 && recorder::is_on();
  const int result = next.call(call.arguments);
  const int error = errno;
  if (is_recorded) record(call, result);
  errno = error;  // the application may read what the SDK left there
  return result;
}

}  // namespace

#define CALL(result, name, parameters, ...)                                          \
  extern "C" __attribute__((visibility("default"))) result name parameters {         \
    static constinit Next<decltype(::name)> next(#name, &::name);                    \
    return static_cast<result>(pass_on(next, calls::described(#name, __VA_ARGS__))); \
  }
using namespace calls;
#include "api/calls/calls.inc"
#undef CALL
