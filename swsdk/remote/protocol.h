// What a client and the chip's process say to each other: lines of text, made from the same lists as recordings.
//
//     client   swsdk-chip 1 switchd
//     chip     swsdk-chip 1                                  with a second socket, on which only the chip speaks
//     chip     units(3, {units=1, ports=12}, 1, [0])         what the SDK exports
//
//     client   bcm_l2_age_timer_get(0, &?)                   a call, as a recording shows it before it is answered
//     chip     units(...), frame(...) or entry {...}         any number: what changed, left the chip, or is walked over
//     chip     = 0 call &300                                 its result and, if it was recorded there, as what kind of
//                                                            line, and all outputs
//
//     client   bcm_l2_traverse(0, <callback 4711>, NULL) = 0 no answer: what the client's walk has come to
//
// On the second socket the chip says units(...), and what callbacks are to be told: link(...), l2(...), frame(...), as
// api/events.h describes them, or lost(3) in the place of events that found no room.
#pragma once

#include <cstddef>
#include <string_view>

namespace remote {

/// A change of what a line says, or of a record that is part of one, is a new version.
constexpr std::string_view greeting = "swsdk-chip 1";
constexpr std::string_view greeting_of_any_version = "swsdk-chip ";

/// In place of the greeting, with the reason: the chip does not serve this client.
constexpr std::string_view refused = "refused: ";

constexpr std::string_view result_mark = "= ";
constexpr std::string_view error_mark = "error: ";
constexpr std::string_view entry_mark = "entry ";
constexpr std::string_view units_event = "units(";
constexpr const char* lost_event = "lost";

/// The longest line that a client may send: a frame of 64 KiB is 192 KiB of text.
constexpr std::size_t max_request = std::size_t{1} << 20;
/// The longest that the chip sends: a text of 16 MiB in which every character is escaped.
constexpr std::size_t max_answer = std::size_t{34} << 20;

constexpr std::size_t max_name = 32;

/// Whether others work on the chip of this process.
bool is_listening();

}  // namespace remote
