#include "tables.h"

#include <soc/drv.h>
#include <spawn.h>
#include <swsdk/chip.h>
#include <swsdk/recording.h>
#include <swsdk/remote.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <sstream>
#include <string_view>

#include "board.h"
#include "session.h"

namespace saish {

namespace {

/// The byte before a title; no table prints it.
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

/// The cells of a line, two or more spaces apart, depending on the other lines.
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

/// Cells in columns; the first is a sign.
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

/// The lines that only one of the two tables has; lines of one entry are adjacent, as both tables are sorted by key.
Rows different_rows(const Table& wanted, const Table& there) {
  std::map<std::vector<std::string>, int> balance;  // how many more times a line is there than intended
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

/// A file without a name, which another process reads or writes.
class Scratch {
 public:
  explicit Scratch(std::string_view text = "") : number_(memfd_create("saish", MFD_CLOEXEC)) {
    good_ = number_ >= 0 && write(number_, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
            lseek(number_, 0, SEEK_SET) == 0;
  }
  ~Scratch() {
    if (number_ >= 0) close(number_);
  }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  bool good() const { return good_; }
  int number() const { return number_; }

  std::string text() const {
    std::string result;
    char buffer[4096];
    off_t at = 0;
    for (ssize_t count = 0; (count = pread(number_, buffer, sizeof buffer, at)) > 0; at += count)
      result.append(buffer, static_cast<std::size_t>(count));
    return result;
  }

 private:
  const int number_;
  bool good_ = false;
};

/// Runs this program with these arguments and streams. Returns whether it exits with 0.
bool run_again(std::vector<std::string> arguments, const Scratch& input, const Scratch& output, const Scratch& errors) {
  arguments.insert(arguments.begin(), program_invocation_short_name);
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  // The child has a chip of its own, and would overwrite a recording of this process.
  std::vector<char*> environment;
  for (char** variable = environ; *variable != nullptr; ++variable)
    if (const std::string_view set = *variable;
        !set.starts_with(SWSDK_RECORD_VARIABLE "=") && !set.starts_with(SWSDK_CHIP_VARIABLE "="))
      environment.push_back(*variable);
  environment.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.number(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.number(), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, errors.number(), STDERR_FILENO);
  pid_t child = 0;
  const bool started = posix_spawn(&child, "/proc/self/exe", &actions, nullptr, argv.data(), environment.data()) == 0;
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  return started && waitpid(child, &status, 0) == child && status == 0;
}

/// Commands that set another chip's links to those of this one.
std::string link_commands(const std::vector<Table>& tables) {
  std::string result;
  int unit = 0;
  for (const Table& table : tables) {
    if (!table.title.starts_with("port")) continue;
    for (const std::string& line : table.lines)
      if (const auto cells = cells_of(line); cells[2] == "up" || cells[2] == "down")
        result += "link " + cells[0] + ' ' + cells[2] + ' ' + std::to_string(unit) + '\n';
    ++unit;
  }
  return result;
}

void throw_if_different(int lines, const std::string& intended) {
  if (lines > 0)
    throw Unexpected(std::to_string(lines) + (lines == 1 ? " line differs" : " lines differ") + " from " + intended);
}

/// What a function of the control interface prints of a unit.
template <class Print>
std::string printed(int unit, Print print) {
  const long length = print(nullptr, 0);
  if (length < 0) throw BadInput("unit " + std::to_string(unit) + " is not attached");
  std::string text(static_cast<std::size_t>(length), '\0');
  // Another process may change the chip between the two.
  const long shown = print(text.data(), text.size() + 1);
  text.resize(std::min(text.size(), static_cast<std::size_t>(std::max(shown, 0L))));
  return text;
}

}  // namespace

std::string shown_table(int unit, const std::string& table) {
  return printed(unit, [&](char* buffer, std::size_t size) { return swsdk_show(unit, table.c_str(), buffer, size); });
}

std::string leftovers(int unit) {
  return printed(unit, [&](char* buffer, std::size_t size) { return swsdk_check(unit, buffer, size); });
}

std::vector<Table> tables() {
  std::vector<Table> result;
  for (int unit = 0; unit < soc_ndev; ++unit)
    for (int i = 0; swsdk_show_table(i) != nullptr; ++i) {
      const char* const name = swsdk_show_table(i);
      const std::string text = shown_table(unit, name);
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

void print_tables_after(const std::vector<std::string>& scripts) {
  // What the scripts print is discarded.
  std::FILE* const output = fdopen(dup(STDOUT_FILENO), "w");
  if (output == nullptr || std::freopen("/dev/null", "w", stdout) == nullptr)
    throw BadInput("cannot print the tables: " + std::string(std::strerror(errno)));
  Session session(Power::on);
  session.set_compared();
  for (const std::string& script : scripts) session.run_script(script);
  std::fputs(text(tables()).c_str(), output);
  if (std::fclose(output) != 0) throw Unexpected("cannot print the tables: " + std::string(std::strerror(errno)));
}

void compare_with_state(const std::string& path) {
  const Scratch restore("restore " + std::filesystem::absolute(path).string() + '\n');
  const Scratch output;
  const Scratch errors;
  if (!restore.good() || !output.good() || !errors.good()) throw BadInput("no memory for a comparison");
  const bool ran = run_again({"--tables", "-"}, restore, output, errors);
  std::fflush(stdout);
  std::fputs(errors.text().c_str(), stderr);
  if (!ran) throw BadInput("the state \"" + path + "\" cannot be put into a chip");
  throw_if_different(print_differences(parsed(output.text()), tables()), "the state \"" + path + '"');
}

void compare_with(const std::string& script) {
  if (soc_ndev == 0) throw BadInput("the chip is off; there is nothing to compare");
  std::vector<Table> actual = tables();
  std::erase_if(actual, [](const Table& table) {
    for (const std::string_view name : {"clock", "counters", "drops", "meter"})
      if (table.title.starts_with(name)) return true;
    return false;
  });

  // The links last: a script may initialize the chip.
  const Scratch links(link_commands(actual));
  const Scratch output;
  const Scratch errors;
  if (!links.good() || !output.good() || !errors.good()) throw BadInput("no memory for a comparison");
  const bool ran = run_again({"--board", board_text(), "--tables", script, "--tables", "-"}, links, output, errors);
  std::fflush(stdout);
  std::fputs(errors.text().c_str(), stderr);
  if (!ran) throw BadInput("the script \"" + script + "\" fails on a fresh chip");
  const int lines = print_differences(parsed(output.text()), actual);
  throw_if_different(lines, "what \"" + script + "\" would leave");
}

}  // namespace saish
