// What a call of the Chip SDK is as data: its name, and what its arguments are to it.
#pragma once

#include <algorithm>
#include <tuple>

#include "api/calls/arguments.h"

/// The functions of this namespace describe a call of the SDK's function of the same name.
namespace calls {

template <class... Args>
struct Described {
  const char* function;
  std::tuple<Args...> arguments;
};

template <class... Args>
Described<Args...> described(const char* function, const Args&... arguments) {
  return {function, {arguments...}};
}

using api::array;
using api::found_by;
using api::hex;
using api::in;
using api::inout;
using api::ip4;
using api::ip6;
using api::key;
using api::out;
using api::out_array;

/// Class-of-service queues of a port.
constexpr int cos_queues = 8;

#define CALL(result, name, parameters, ...) \
  inline auto name parameters { return described(#name, __VA_ARGS__); }
#include "api/calls/calls.inc"
#undef CALL

}  // namespace calls
