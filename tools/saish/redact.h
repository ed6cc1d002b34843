// A recording without what should not leave the company: addresses, texts and the contents of frames.
#pragma once

#include <string>

namespace saish {

/// Prints a recording with other addresses and texts: the same for the same ones, other ones at each run. Hosts of a
/// subnet stay in one subnet, and groups stay groups. Throws BadInput.
void redact(const std::string& recording);

}  // namespace saish
