// The shell's table of the library's functions, from sai.h.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "arguments.h"

namespace saish {

/// What a function returns: nothing, a number of its own, or a code of sai_result when it is negative.
enum class Result { none, number, code };

struct Function {
  const char* name;
  const char* prototype;
  const char* summary;
  Result result;
  Parameters parameters;
  Outcome (*run)(const Parameters& parameters, const Words& words);
};

/// An enumerator of sai.h, or a result code of the Chip SDK.
struct Name {
  const char* name;
  int32_t value;
};

std::span<const Function> functions();
const Function* find_function(std::string_view name);

/// The Chip SDK's result codes, for `fail`.
std::span<const Name> sdk_results();

/// The form of a call: the name and the parameters that take a word.
std::string usage(const Function& function);

/// The names of these parameters.
std::vector<std::string> given_parameters(const Function& function);

/// "-7 SAI_E_NOT_FOUND", or only the number if it is not a code.
std::string result_text(const Function& function, int32_t result);

}  // namespace saish
