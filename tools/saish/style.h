// How standard output looks where it is a terminal: colours, if it wants them, and its width.
#pragma once

#include <cstddef>

namespace saish::style {

const char* dim();
const char* red();
const char* plain();

/// Columns of the terminal; 0 where there is none, so that lines can be as long as they are.
std::size_t width();

}  // namespace saish::style
