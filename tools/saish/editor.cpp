#include "editor.h"

#include <editline/readline.h>
#include <termios.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include "completion.h"
#include "session.h"

namespace saish {

namespace {

namespace fs = std::filesystem;

constexpr int history_lines = 1000;

/// Set by Ctrl-C, so that the end of a line is not mistaken for the end of input.
volatile std::sig_atomic_t interrupted = 0;

/// The terminal raises a signal while a command runs.
void interrupt(int /*signal*/) {
  interrupted = 1;
  Session::interrupt();
}

/// While a line is typed, Ctrl-C is a key: a signal could interrupt the editor between any two steps.
int drop_line(int /*count*/, int /*key*/) {
  interrupted = 1;
  rl_done = 1;
  return 0;
}

/// Before the prompt appears, so that what is typed after it goes to the editor and not to the terminal. After the
/// line, libedit restores the terminal.
int take_over_terminal() {
  rl_prep_terminal(0);
  termios settings{};
  if (tcgetattr(STDIN_FILENO, &settings) != 0) return 0;
  settings.c_cc[VINTR] = _POSIX_VDISABLE;
  return tcsetattr(STDIN_FILENO, TCSANOW, &settings);
}

/// The candidates at the cursor; set before libedit asks for them one by one.
std::vector<std::string> candidates;

char* next_candidate(const char* /*text*/, int state) {
  static std::size_t next = 0;
  if (state == 0) next = 0;
  return next < candidates.size() ? strdup(candidates[next++].c_str()) : nullptr;
}

char** complete(const char* text, int /*start*/, int end) {
  rl_attempted_completion_over = 1;  // libedit has nothing to add
  Completion completion = completion_of(std::string_view(rl_line_buffer).substr(0, static_cast<std::size_t>(end)));
  candidates = std::move(completion.candidates);
  const bool goes_on = candidates.size() == 1 && std::strchr("/={", candidates[0].back()) != nullptr;
  rl_completion_append_character = goes_on || completion.in_record ? '\0' : ' ';
  // A second candidate without a common letter, so that libedit shows the hint and does not insert it.
  if (candidates.empty() && !completion.hint.empty() && *text == '\0') candidates = {'<' + completion.hint + '>', ""};
  return candidates.empty() ? nullptr : rl_completion_matches(text, next_candidate);
}

/// The conventional place of the history, or nothing without a home directory.
fs::path history_file() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  if (state != nullptr && *state == '/') return fs::path(state) / "saish/history";
  const char* const home = std::getenv("HOME");
  return home != nullptr && *home == '/' ? fs::path(home) / ".local/state/saish/history" : fs::path();
}

/// Creates the file and its folders, for the user only. If that fails, no history is kept.
void make_file(const fs::path& file) {
  std::error_code ignored;
  const bool made = fs::create_directories(file.parent_path(), ignored);
  if (made) fs::permissions(file.parent_path(), fs::perms::owner_all, ignored);
  if (std::ofstream(file, std::ios::app))
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, ignored);
}

}  // namespace

Editor::Editor() {
  rl_readline_name = const_cast<char*>("saish");
  rl_basic_word_break_characters = word_ends;
  rl_initialize();
  rl_attempted_completion_function = complete;
  constexpr int ctrl_c = 3;
  rl_add_defun("saish-drop-line", drop_line, ctrl_c);
  rl_pre_input_hook = take_over_terminal;

  struct sigaction action {};
  action.sa_handler = interrupt;
  action.sa_flags = SA_RESTART;
  sigaction(SIGINT, &action, nullptr);

  using_history();
  stifle_history(history_lines);
  const fs::path file = history_file();
  if (file.empty()) return;
  history_file_ = file.string();
  make_file(file);
  if (read_history(history_file_.c_str()) == 0) write_history(history_file_.c_str());  // without the oldest lines
}

void Editor::remember(const std::string& line) {
  if (line.find_first_not_of(" \t") == std::string::npos || line == last_line_) return;
  last_line_ = line;
  add_history(line.c_str());
  if (!history_file_.empty()) append_history(1, history_file_.c_str());
}

std::optional<std::string> Editor::read_line() {
  char* typed = nullptr;
  for (interrupted = 1; typed == nullptr && interrupted != 0;) {
    interrupted = 0;
    typed = readline("saish> ");
    if (typed == nullptr && interrupted != 0) std::printf("^C\n");
  }
  if (typed == nullptr) return std::nullopt;
  const std::string line = typed;
  std::free(typed);
  remember(line);
  return line;
}

}  // namespace saish
