// The terminal at standard output: colors, if it supports them, and its width.
#pragma once

#include <cstddef>

namespace saish::style {

const char* dim();
const char* red();
const char* plain();

/// Columns of the terminal; 0 if there is none, so that lines are not cut.
std::size_t width();

}  // namespace saish::style
