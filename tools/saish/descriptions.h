// What sai.h says about its functions, records and constants, for help and completion.
#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace saish {

/// What a comment says about a parameter of a function, or of a field of a record.
struct Note {
  const char* of;           // the function or the record
  const char* name;         // the parameter or the field
  const char* type;         // of a parameter, where sai.h declares it
  const char* enumeration;  // that its values are of; "BCM_E_" for the Chip SDK's result codes; or ""
  const char* comment;      // on a field
};

/// An empty note if there is no comment.
const Note& note(std::string_view of, std::string_view name);

/// The family of a function: the section of sai.h that it is in.
std::string_view family_of(std::string_view function);

/// All families, in the order of sai.h.
std::vector<std::string_view> families();

/// The names that a Note's enumeration has.
std::vector<std::string_view> constants_of(std::string_view enumeration);

/// The enumerations that sai.h gives the library's results and the levels of its log.
constexpr std::string_view result_enumeration = "sai_result";
constexpr std::string_view level_enumeration = "sai_log_level";
constexpr std::string_view sdk_result_enumeration = "BCM_E_";

}  // namespace saish
