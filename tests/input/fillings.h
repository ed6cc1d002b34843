// How the tables behind the functions of sai.h are filled.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace input {

/// What takes the last room in a table behind a function: its own calls or, where `table` names the SDK call that finds
/// no room, those of `fill`.
struct Filling {
  std::string_view function;
  std::vector<const char*> differing = {};  ///< arguments, unlike in each call; but the last, each takes 120 values
  int step = 2;
  int32_t (*call)(int i) = nullptr;  ///< in place of these: call number i of the function, from 1
  std::string_view table = {};
  int (*fill)(int i) = nullptr;  ///< the SDK's result of call number i, from 1
};

std::span<const Filling> fillings();

}  // namespace input
