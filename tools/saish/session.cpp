#include "session.h"

#include <appl/diag/system.h>
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <sstream>
#include <thread>
#include <vector>

#include "built_ins.h"
#include "library.h"
#include "script.h"
#include "style.h"

extern "C" int sdk_main(int argc, char** argv);

namespace saish {

namespace {

constexpr int most_scripts = 16;
constexpr const char* expect_code = "expect CODE COMMAND";

volatile std::sig_atomic_t interrupted = 0;

/// Increments a counter for its own lifetime.
class Counted {
 public:
  explicit Counted(int& count) : count_(count) { ++count_; }
  ~Counted() { --count_; }

  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

 private:
  int& count_;
};

/// Checks the number of words of a command.
void check_count(const std::string& form, std::size_t given, std::size_t fewest, std::size_t most) {
  if (given < fewest) throw BadInput("too few arguments; the form is " + form);
  if (given > most) throw BadInput("too many arguments; the form is " + form);
}

int32_t expected_code(const std::string& word) {
  const std::optional<int32_t> code = named_number<int32_t>(word, "SAI_E_");
  if (!code)
    throw BadInput("code: \"" + word + "\" is neither a number nor a SAI_E_ name; the form is " + expect_code +
                   ", or out, cpu, dropped or nothing is expected of a frame");
  return *code;
}

}  // namespace

std::string journal_text(std::size_t position) {
  std::string text(swsdk_journal_read_from(position, nullptr, 0), '\0');
  text.resize(std::min(text.size(), swsdk_journal_read_from(position, text.data(), text.size() + 1)));
  return text;
}

Session::Session(Power power) : power_(power) {
  if (power != Power::on) return;
  sdk_main(0, nullptr);
  for (int unit = 0; unit < soc_ndev; ++unit) system_init(unit);
}

Session::~Session() {
  if (sai_log_default != nullptr) close_sai_log(sai_log_default);
  sai_log_default = nullptr;
  if (power_ != Power::left) swsdk_power_off();
}

void Session::follow_journal(bool on) {
  swsdk_journal_record(on);
  following_ = on;
  journal_shown_ = swsdk_journal_read(nullptr, 0);
}

void Session::clear_journal() {
  swsdk_journal_clear();
  journal_shown_ = 0;
}

void Session::print_calls_of_all(std::optional<int> seconds) {
  constexpr auto pause = std::chrono::milliseconds(50);
  const bool was_recording = swsdk_journal_recording() != 0;
  const auto begin = std::chrono::steady_clock::now();
  std::vector<char> lines(65536);
  swsdk_journal_record(SWSDK_JOURNAL_OF_ALL);
  for (bool last = false; !last && std::ferror(stdout) == 0;) {
    // What has happened up to the end is printed, too.
    last = interrupted != 0 || swsdk_journal_recording() == 0 ||
           (seconds && std::chrono::steady_clock::now() - begin >= std::chrono::seconds(*seconds));
    while (swsdk_journal_take(lines.data(), lines.size()) > 0) std::fputs(lines.data(), stdout);
    std::fflush(stdout);
    if (!last) std::this_thread::sleep_for(pause);
  }
  swsdk_journal_record(was_recording ? 1 : 0);
}

void Session::print_news() {
  if (!following_) return;
  std::istringstream news(journal_text(journal_shown_));
  for (std::string line; std::getline(news, line); journal_shown_ += line.size() + 1)
    std::printf("  %s> %s%s\n", style::dim(), line.c_str(), style::plain());
}

std::optional<int32_t> Session::call(const Function& function, const Words& arguments) {
  const std::string form = usage(function);
  const std::size_t count = given_parameters(function).size();
  check_count(form, arguments.size(), count, count);
  Outcome outcome;
  try {
    outcome = function.run(function.parameters, arguments);
  } catch (const BadInput& bad) {
    throw BadInput(std::string(bad.what()) + "; the form is " + form);
  }
  swsdk_events_drain();  // callbacks run before the result is shown
  std::fflush(stdout);
  print_news();
  if (const std::optional<int32_t> result = outcome.result)
    std::printf("  %s= %s%s\n", *result < 0 ? style::red() : "", result_text(function, *result).c_str(),
                style::plain());
  for (const std::string& answer : outcome.answers) std::printf("  %s\n", answer.c_str());
  return outcome.result;
}

void Session::execute(std::string_view line, bool well) {
  Words given = words(line);
  if (given.empty()) return;
  std::optional<int32_t> expected;
  if (given[0] == "expect") {
    if (given.size() == 1)
      throw BadInput(std::string("too few arguments; the form is ") + find_built_in("expect")->usage);
    if (is_frame_expectation(given[1])) return expectations_.state({given.begin() + 1, given.end()});
    expected = expected_code(given[1]);
    check_count(expect_code, given.size() - 1, 2, given.size());
    given.erase(given.begin(), given.begin() + 2);
  }
  const Words arguments(given.begin() + 1, given.end());
  std::fflush(stdout);  // keeps the order with what goes to standard error

  const BuiltIn* built_in = find_built_in(given[0]);
  if (built_in != nullptr) return run_built_in(*built_in, arguments, expected);
  const Function* function = find_function(given[0]);
  if (function == nullptr) throw unknown_command(given[0]);
  if (expected && function->result == Result::none) throw BadInput("expect: " + given[0] + " returns nothing");

  const std::optional<int32_t> result = call(*function, arguments);
  if (!result || (expected ? *result == *expected : !well || *result >= 0)) return;
  throw Unexpected("expected " + (expected ? result_text(*function, *expected) : std::string("0 or more")) + ", came " +
                   result_text(*function, *result));
}

void Session::run_built_in(const BuiltIn& built_in, const Words& arguments, std::optional<int32_t> expected) {
  if (expected && !built_in.has_code)
    throw BadInput("expect: \"" + std::string(built_in.name) +
                   "\" returns no code; the library's functions do, and send does");
  check_count(built_in.usage, arguments.size(), built_in.fewest_words, built_in.most_words);
  built_in.run(*this, arguments);
  if (!expected) return;
  if (const int came = expectations_.outcome(); came != *expected)
    throw Unexpected("expected " + outcome_text(*expected) + ", came " + outcome_text(came));
}

void Session::interrupt() { interrupted = 1; }

bool Session::is_interrupted() { return interrupted != 0; }

void Session::run(std::string_view line) {
  interrupted = 0;
  here_ = line;
  execute(line, false);
}

void Session::run_well(std::string_view line) {
  here_ = line;
  execute(line, true);
}

void Session::run_script(const std::string& path) {
  Script script(path);
  if (scripts_ == most_scripts)
    throw BadInput("scripts that run each other end at a depth of " + std::to_string(most_scripts));

  const Counted counted(scripts_);
  const int sent_before = expectations_.sent();
  int number = 0;
  for (std::string line; !ended_ && script.next(line);) {
    ++number;
    std::printf("%s\n", line.c_str());
    const std::string here = path + ":" + std::to_string(number) + ": " + line;
    try {
      if (interrupted != 0) throw Unexpected("interrupted");
      here_ = here;
      execute(line, true);
    } catch (const std::runtime_error& error) {
      throw Unexpected(here + ": " + error.what());
    }
  }
  // A frame that another script sent is that script's to expect something of.
  if (expectations_.sent() != sent_before) expectations_.settle();
}

}  // namespace saish
