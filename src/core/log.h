// Traces: the part of the log that only the library itself uses.
#pragma once

#include <sai.h>

#include <type_traits>

#include "core/format.h"

namespace sai {

/// Whether a message of `level` would be written anywhere. Without a default log everything goes to standard error.
inline bool heard(int32_t level) {
  const sai_log_handle* log = sai_log_default;
  return log == nullptr || level <= log->max_level[SAI_LOG_SYSLOG] || level <= log->max_level[SAI_LOG_CONSOLE] ||
         (level <= log->max_level[SAI_LOG_FILE] && log->file != nullptr);
}

/// A plain argument of a trace is its own text.
template <class T>
requires std::is_scalar_v<T> T trace_text(T value) { return value; }

// Format has checked the format string, which the compiler cannot see here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"

/// Logs at level "debugging" if that level is written anywhere. An argument that is costly to format is passed as a
/// small record of its parts; its trace_text() runs only then.
template <class... Args>
void trace(Format<std::type_identity_t<decltype(trace_text(std::declval<const Args&>()))>...> format,
           const Args&... args) {
  if (heard(SAI_LOG_DEBUGGING)) [[unlikely]]
    sai_debug(format.text(), trace_text(args)...);
}

#pragma GCC diagnostic pop

}  // namespace sai
