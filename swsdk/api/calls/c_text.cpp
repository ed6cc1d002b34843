#include "api/calls/c_text.h"

#include <cctype>
#include <cstdio>

std::string api::c_string(std::string_view bytes) {
  std::string result = "\"";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    char escaped[5];
    std::snprintf(escaped, sizeof escaped, "\\%03o", unsigned{byte});
    // A question mark could begin a trigraph.
    const bool plain = byte >= ' ' && byte < 0x7F && c != '"' && c != '\\' && c != '?';
    result += plain ? std::string(1, c) : escaped;
  }
  return result + '"';
}
