#include "tables.h"

#include <fcntl.h>
#include <soc/drv.h>
#include <spawn.h>
#include <swsdk/chip.h>
#include <swsdk/recording.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <optional>
#include <sstream>
#include <string_view>

#include "session.h"

namespace saish {

namespace {

/// Stands before a title; no table prints one.
constexpr char mark = '\f';

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> result;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) result.push_back(line);
  return result;
}

std::vector<Table> parsed(const std::string& text) {
  std::vector<Table> result;
  for (std::string& line : lines_of(text))
    if (line.starts_with(mark))
      result.push_back({line.substr(1), {}});
    else if (!result.empty())
      result.back().lines.push_back(std::move(line));
  return result;
}

/// The cells of a line, which are two blanks or more apart: how far depends on the other lines.
std::vector<std::string> cells_of(const std::string& line) {
  std::vector<std::string> result;
  for (std::size_t begin = 0; begin < line.size();) {
    const std::size_t end = std::min(line.find("  ", begin), line.size());
    result.push_back(line.substr(begin, end - begin));
    begin = std::min(line.find_first_not_of(' ', end), line.size());
  }
  return result;
}

using Rows = std::vector<std::vector<std::string>>;

/// Cells in columns; a sign is the first.
void print_rows(const Rows& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i)
      line += (i == 0   ? "  "
               : i == 1 ? " "
                        : "  ") +
              row[i] + std::string(i + 1 < row.size() ? widths[i] - row[i].size() : 0, ' ');
    std::printf("%s\n", line.c_str());
  }
}

/// The lines that only one of the two tables has; those of one entry together, for both are in the order of their keys.
Rows different_rows(const Table& wanted, const Table& there) {
  std::map<std::vector<std::string>, int> balance;  // how much more often a line is there than wanted
  for (const std::string& line : there.lines) ++balance[cells_of(line)];
  for (const std::string& line : wanted.lines) --balance[cells_of(line)];

  Rows result;
  const auto add = [&](const char* sign, std::vector<std::string> cells) {
    cells.insert(cells.begin(), sign);
    result.push_back(std::move(cells));
  };
  auto next = there.lines.begin();
  const auto add_more_while = [&](auto holds) {
    for (; next != there.lines.end() && holds(cells_of(*next)); ++next)
      if (int& more = balance[cells_of(*next)]; more > 0) {
        --more;
        add("+", cells_of(*next));
      }
  };
  for (const std::string& line : wanted.lines) {
    const std::vector<std::string> cells = cells_of(line);
    if (int& more = balance[cells]; more < 0) {
      ++more;
      add("-", cells);
      add_more_while([&](const auto& other) { return balance[other] > 0 && other.front() == cells.front(); });
    } else {
      add_more_while([&](const auto& other) { return other != cells; });
      if (next != there.lines.end()) ++next;
    }
  }
  add_more_while([](const auto&) { return true; });
  return result;
}

/// What the shell prints when it is run with these arguments; nothing when that fails.
std::optional<std::string> output_of_shell(std::vector<std::string> arguments) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return std::nullopt;
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  // What records this process would be overwritten.
  std::vector<char*> environment;
  for (char** variable = environ; *variable != nullptr; ++variable)
    if (!std::string_view(*variable).starts_with(SWSDK_RECORD_VARIABLE "=")) environment.push_back(*variable);
  environment.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  pid_t child = 0;
  const bool started = posix_spawn(&child, "/proc/self/exe", &actions, nullptr, argv.data(), environment.data()) == 0;
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  std::string text;
  char buffer[4096];
  for (ssize_t count = 0; (count = ::read(ends[0], buffer, sizeof buffer)) > 0;)
    text.append(buffer, static_cast<std::size_t>(count));
  close(ends[0]);
  int status = 0;
  if (!started || waitpid(child, &status, 0) != child || status != 0) return std::nullopt;
  return text;
}

}  // namespace

std::vector<Table> tables() {
  std::vector<Table> result;
  for (int unit = 0; unit < soc_ndev; ++unit)
    for (int i = 0; swsdk_show_table(i) != nullptr; ++i) {
      const char* const name = swsdk_show_table(i);
      std::string text(static_cast<std::size_t>(swsdk_show(unit, name, nullptr, 0)), '\0');
      swsdk_show(unit, name, text.data(), text.size() + 1);
      result.push_back({name + (soc_ndev > 1 ? " of unit " + std::to_string(unit) : ""), lines_of(text)});
    }
  return result;
}

std::string text(const std::vector<Table>& tables) {
  std::string result;
  for (const Table& table : tables) {
    result += mark + table.title + '\n';
    for (const std::string& line : table.lines) result += line + '\n';
  }
  return result;
}

int print_differences(const std::vector<Table>& intended, const std::vector<Table>& actual) {
  std::size_t differences = 0;
  for (const Table& there : actual) {
    const auto wanted =
        std::find_if(intended.begin(), intended.end(), [&](const Table& table) { return table.title == there.title; });
    Rows rows = different_rows(wanted == intended.end() ? Table{} : *wanted, there);
    if (rows.empty()) continue;
    differences += rows.size();
    std::vector<std::string> headings = cells_of(there.lines.front());
    headings.insert(headings.begin(), " ");
    rows.insert(rows.begin(), headings);
    std::printf("%s\n", there.title.c_str());
    print_rows(rows);
  }
  return static_cast<int>(differences);
}

void compare_with(const std::string& script) {
  if (soc_ndev == 0) throw BadInput("the chip is off; there is nothing to compare");
  std::fflush(stdout);
  const std::optional<std::string> text = output_of_shell({"saish", "--tables", script});
  if (!text) throw BadInput("the script \"" + script + "\" fails on a fresh chip");
  const int lines = print_differences(parsed(*text), tables());
  if (lines > 0)
    throw Unexpected(std::to_string(lines) + (lines == 1 ? " line differs" : " lines differ") + " from what \"" +
                     script + "\" would leave");
}

}  // namespace saish
