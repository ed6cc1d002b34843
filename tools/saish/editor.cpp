#include "editor.h"

#include <editline/readline.h>
#include <swsdk/chip.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "built_ins.h"
#include "library.h"

namespace saish {

namespace {

/// What may stand where the cursor is; set before libedit asks for it one by one.
std::vector<std::string> candidates;

std::vector<std::string> table_names() {
  std::vector<std::string> names;
  for (int i = 0; swsdk_show_table(i) != nullptr; ++i) names.emplace_back(swsdk_show_table(i));
  return names;
}

/// What may follow these words of a line.
std::vector<std::string> continuations(std::vector<std::string> before) {
  if (before.size() >= 2 && before[0] == "expect") before.erase(before.begin(), before.begin() + 2);
  if (before.empty() || before == std::vector<std::string>{"help"}) return command_names();
  if (before == std::vector<std::string>{"show"}) return table_names();
  if (before == std::vector<std::string>{"journal"}) return {"on", "off", "show", "clear"};
  return {};
}

/// The name of the argument that comes next, shown as a hint when there is nothing to complete.
std::string hint(const std::vector<std::string>& before) {
  if (before.empty()) return {};
  const Function* function = find_function(before[0]);
  if (function == nullptr) return {};
  const std::vector<std::string> names = given_parameters(*function);
  const std::size_t position = before.size() - 1;
  return position < names.size() ? names[position] : "";
}

char* next_candidate(const char* text, int state) {
  static std::size_t next = 0;
  if (state == 0) next = 0;
  while (next < candidates.size()) {
    const std::string& candidate = candidates[next++];
    if (candidate.starts_with(text)) return strdup(candidate.c_str());
  }
  return nullptr;
}

char** complete(const char* text, int start, int /*end*/) {
  std::vector<std::string> before;
  try {
    before = words(std::string_view(rl_line_buffer).substr(0, static_cast<std::size_t>(start)));
  } catch (const BadInput&) {
    return nullptr;  // inside a quoted text or a record
  }
  rl_attempted_completion_over = 1;  // no file names
  candidates = continuations(before);
  if (const std::string name = hint(before); candidates.empty() && !name.empty() && *text == '\0')
    candidates = {"<" + name + ">", "<" + name + "> "};  // two, so that they are listed and not inserted
  return rl_completion_matches(text, next_candidate);
}

}  // namespace

Editor::Editor() {
  rl_readline_name = const_cast<char*>("saish");
  rl_initialize();
  rl_attempted_completion_function = complete;
  using_history();
  if (const char* home = std::getenv("HOME")) {
    history_file_ = std::string(home) + "/.saish_history";
    read_history(history_file_.c_str());
  }
}

Editor::~Editor() {
  if (!history_file_.empty()) write_history(history_file_.c_str());
}

std::optional<std::string> Editor::read_line() {
  char* const typed = readline("saish> ");
  if (typed == nullptr) return std::nullopt;
  std::string line = typed;
  std::free(typed);
  if (line.find_first_not_of(" \t") != std::string::npos) add_history(line.c_str());
  return line;
}

}  // namespace saish
