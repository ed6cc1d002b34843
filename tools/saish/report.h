// The differences between a recording and this chip, as one table.
#pragma once

#include <string>

namespace saish {

/// Repeats a recording to its end and prints how often which function differs in what. Differences that the file
/// `known` has as "FUNCTION KIND", one a line, are marked; "" is no file. Returns one of the SWSDK_REPLAY_ values, as
/// if known differences were none. Throws BadInput.
int report(const std::string& recording, const std::string& known);

}  // namespace saish
