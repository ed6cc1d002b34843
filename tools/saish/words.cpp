#include "words.h"

#include <cstdio>

namespace saish {

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

/// Removes the rest of a quoted word from the line, with the closing quote.
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

/// Removes a record from the line, from its opening to its closing brace.
std::string braced(std::string_view& line) {
  int depth = 0;
  for (std::size_t i = 0; i < line.size(); ++i) {
    depth += line[i] == '{' ? 1 : line[i] == '}' ? -1 : 0;
    if (depth > 0) continue;
    const std::string word(line.substr(0, i + 1));
    line.remove_prefix(i + 1);
    return word;
  }
  throw BadInput("a record has no closing brace: " + std::string(line));
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

Words words(std::string_view line) {
  Words result;
  while (true) {
    while (!line.empty() && is_blank(line.front())) line.remove_prefix(1);
    if (line.empty() || line.front() == '#') return result;
    std::string word = line.front() == '{' ? braced(line) : "";
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

std::string trimmed(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return std::string(text);
}

std::optional<Words> enclosed(std::string_view word, char open, char close) {
  if (word.size() < 2 || word.front() != open || word.back() != close) return std::nullopt;
  word = word.substr(1, word.size() - 2);
  Words result;
  if (trimmed(word).empty()) return result;
  int depth = 0;
  result.emplace_back();
  for (const char c : word) {
    depth += c == '{' || c == '[' ? 1 : c == '}' || c == ']' ? -1 : 0;
    if (c == ',' && depth == 0)
      result.emplace_back();
    else
      result.back() += c;
  }
  for (std::string& item : result) item = trimmed(item);
  return result;
}

}  // namespace saish
