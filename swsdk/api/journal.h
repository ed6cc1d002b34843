// The journal's store; swsdk/journal.h is its interface to users.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace api {

bool journal_is_recording();

void journal_add(std::string_view line);

/// Copies `text` as the control interface does: as much as fits, always ended by a zero byte. Returns the whole length.
std::size_t copy_out(std::string_view text, char* buffer, std::size_t size);

}  // namespace api
