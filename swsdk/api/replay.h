// The functions that a recording can call, by name, and what a call of each needs.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "api/given.h"

namespace api {

using Texts = std::vector<std::string_view>;
using AllGiven = std::vector<std::unique_ptr<AnyGiven>>;

/// Reads the text of an argument; throws Unreadable.
using Parameter = std::unique_ptr<AnyGiven> (*)(std::string_view text);

/// A function of any signature, and how to call it with arguments that its parameters have parsed.
struct Replayable {
  const char* name;
  void (*function)();
  std::span<const Parameter> parameters;
  long long (*call)(void (*function)(), const AllGiven& arguments);
  bool returns_nothing;
};

/// All of them: those of the Chip SDK, then those of the control interface.
std::span<const Replayable> replayables();

/// The function of that name, or null.
const Replayable* find_replayable(std::string_view name);

/// The arguments, parsed from their texts. Throws Unreadable.
AllGiven all_given(const Replayable& function, const Texts& texts);

/// Calls it with arguments from their texts, and returns its result; 0 if it returns nothing. Throws Unreadable.
long long call_with(const Replayable& function, const Texts& arguments);

}  // namespace api
