// Colours, where standard output is a terminal that wants them.
#pragma once

namespace saish::style {

const char* dim();
const char* red();
const char* plain();

}  // namespace saish::style
