// The function that the application would have called if the recorder were not there.
#pragma once

namespace recorder {

/// The next function of that name, or null when no library that is loaded has one. `own` is the recorder's.
void* find_next(const char* name, const void* own);

}  // namespace recorder
