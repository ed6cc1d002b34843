#include "words.h"

#include <cstdio>

namespace saish {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

/// Takes the rest of a quoted word off the line, with the closing quote.
std::string quoted(std::string_view& line) {
  std::string word;
  while (!line.empty()) {
    char c = line.front();
    line.remove_prefix(1);
    if (c == '"') return word;
    if (c == '\\' && !line.empty()) {
      c = line.front();
      line.remove_prefix(1);
    }
    word += c;
  }
  throw BadInput("a quoted text has no closing quote: \"" + word);
}

}  // namespace

std::string printable(std::string_view text) {
  std::string result;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    char code[5];
    std::snprintf(code, sizeof code, c == '\n' ? "\\n" : "\\x%02x", byte);
    result += byte < ' ' || byte == 0x7F ? code : std::string(1, c);
  }
  return result;
}

std::vector<std::string> words(std::string_view line) {
  std::vector<std::string> result;
  while (true) {
    while (!line.empty() && is_blank(line.front())) line.remove_prefix(1);
    if (line.empty() || line.front() == '#') return result;
    std::string word;
    while (!line.empty() && !is_blank(line.front())) {
      const char c = line.front();
      line.remove_prefix(1);
      if (c == '"')
        word += quoted(line);
      else
        word += c;
    }
    result.push_back(word);
  }
}

}  // namespace saish
