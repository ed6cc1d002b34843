// The parts of frames_fuzz: what the switch is made, and what is sent through it.
#pragma once

#include <array>

#include "input.h"
#include "support/frames.h"

namespace fuzz {

constexpr int front_ports = 12;
constexpr int longest_frame = 9216;

/// What a frame may do because of what was configured before it.
struct Allowed {
  bool mirror = false;   // leave a monitor's port, whatever becomes of it otherwise
  bool hairpin = false;  // leave where it came in: routed, redirected, mirrored, or between virtual ports
  bool loop = false;     // leave a looped-back port, and so come in again
  int members = 0;       // one call makes one place more to which it may go, at most
  std::array<int, front_ports + 1> longest = [] {
    std::array<int, front_ports + 1> result{};
    result.fill(longest_frame);  // with its checksum
    return result;
  }();
};

/// A switch with some of what it can do set up, as the input chooses.
Allowed set_up(Input& input);

/// A frame that hosts would send, mostly; at times with some bytes changed, cut short, or longer.
support::Bytes frame_from(Input& input);

}  // namespace fuzz
