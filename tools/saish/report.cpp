#include "report.h"

#include <swsdk/recording.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "words.h"

namespace saish {

namespace {

/// A function and the kind of difference.
using What = std::pair<std::string, std::string>;

struct Found {
  long count = 0;
  int line = 0;  // of the first
  std::string recorded;
  std::string now;
};

struct Report {
  std::map<What, Found> found;
  std::string notices;
};

/// Lines of "FUNCTION KIND"; empty ones and comments, from "#" on, are skipped.
std::set<What> read_known(const std::string& path) {
  std::set<What> result;
  if (path.empty()) return result;
  std::ifstream file(path);
  if (!file) throw BadInput("cannot read the known differences \"" + path + '"');
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    line.erase(std::min(line.find('#'), line.size()));
    line.erase(line.find_last_not_of(" \t") + 1);
    const std::size_t space = line.find(' ');
    if (line.empty()) continue;
    if (space == std::string::npos || space == 0)
      throw BadInput(path + ':' + std::to_string(number) + ": \"" + line +
                     "\" is no function and kind of difference, such as \"bcm_info_get output device\"");
    result.emplace(line.substr(0, space), line.substr(line.find_first_not_of(' ', space)));
  }
  return result;
}

void note_difference(const swsdk_difference* difference, void* report) {
  Found& found = static_cast<Report*>(report)->found[{difference->function, difference->kind}];
  if (found.count++ == 0)
    found = {.count = 1, .line = difference->line, .recorded = difference->recorded, .now = difference->now};
}

void note_line(const char* line, void* report) { static_cast<Report*>(report)->notices += std::string(line) + '\n'; }

void print_rows(const std::vector<const std::pair<const What, Found>*>& rows, const std::set<What>& known) {
  std::size_t width = 8;
  for (const auto* row : rows) width = std::max(width, row->first.first.size());
  std::printf("%8s  %8s  %-*s  %s\n", "count", "line", static_cast<int>(width), "function", "difference");
  for (const auto* row : rows) {
    const auto& [what, found] = *row;
    const std::string line = found.line == 0 ? "end" : std::to_string(found.line);
    std::printf("%8ld  %8s  %-*s  %s%s\n", found.count, line.c_str(), static_cast<int>(width), what.first.c_str(),
                what.second.c_str(), known.count(what) == 0 ? "" : " (known)");
  }
  std::printf("\nThe first of each that is not known:\n");
  for (const auto* row : rows) {
    const auto& [what, found] = *row;
    if (known.count(what) > 0) continue;
    std::printf("%s, %s, line %d\n", what.first.c_str(), what.second.c_str(), found.line);
    std::printf("  recorded: %s\n", found.recorded.empty() ? "nothing" : found.recorded.c_str());
    std::printf("  now:      %s\n", found.now.empty() ? "nothing" : found.now.c_str());
  }
}

}  // namespace

int report(const std::string& recording, const std::string& known) {
  const std::set<What> known_ones = read_known(known);
  Report report;
  swsdk_replayed replayed{};
  int outcome =
      swsdk_replay_all(recording.c_str(), SWSDK_REPLAY_TO_END, note_difference, note_line, &report, &replayed);
  std::fprintf(stderr, "%s", report.notices.c_str());
  if (outcome == SWSDK_REPLAY_UNREADABLE) return outcome;
  std::vector<const std::pair<const What, Found>*> rows;
  for (const auto& row : report.found) rows.push_back(&row);
  // The most frequent first.
  std::stable_sort(rows.begin(), rows.end(),
                   [](const auto* left, const auto* right) { return left->second.count > right->second.count; });
  if (!rows.empty()) {
    print_rows(rows, known_ones);
    std::printf("\n");
  }
  const double share = replayed.answers == 0
                           ? 100
                           : 100.0 * static_cast<double>(replayed.the_same) / static_cast<double>(replayed.answers);
  std::printf("%ld of %ld answers and events are the same: %.2f %%\n", replayed.the_same, replayed.answers, share);
  const bool all_known =
      std::all_of(rows.begin(), rows.end(), [&](const auto* row) { return known_ones.count(row->first) > 0; });
  return outcome == SWSDK_REPLAY_DIFFERENT && all_known ? SWSDK_REPLAY_SAME : outcome;
}

}  // namespace saish
