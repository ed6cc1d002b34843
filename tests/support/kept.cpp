#include "support/kept.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

void support::compare_with_kept(const std::string& path, const std::string& text) {
  if (std::getenv("UPDATE_RESULTS") != nullptr) {
    std::ofstream(path) << text;
    return;
  }
  std::ostringstream kept;
  kept << std::ifstream(path).rdbuf();
  std::istringstream is_lines(text);
  std::istringstream kept_lines(kept.str());
  std::string is;
  std::string was;
  for (int number = 1; kept.str() != text; ++number) {
    if (!std::getline(is_lines, is)) is = "(end)";
    if (!std::getline(kept_lines, was)) was = "(end)";
    if (is == was) continue;
    ADD_FAILURE() << path << ':' << number << " is\n"
                  << was << "\nand should be\n"
                  << is << "\nAfter a change that is meant, run with UPDATE_RESULTS=1 in the environment.";
    return;
  }
}

std::string support::without_values(const std::string& line) {
  static const std::regex number("(^|[^0-9A-Za-z_])-?[0-9]+(?![0-9A-Za-z_])");
  std::string result;
  for (const char letter : line) result += ' ' <= letter && letter <= '~' ? letter : '?';
  return std::regex_replace(result, number, "$010");
}
