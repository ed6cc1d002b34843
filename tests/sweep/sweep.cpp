#include "sweep/sweep.h"

#include <gtest/gtest.h>
#include <swsdk/chip.h>
#include <swsdk/fault.h>
#include <swsdk/journal.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <sstream>

#include "support/kept.h"
#include "support/scene.h"
#include "support/start.h"

extern "C" char* _shr_errmsg[];

namespace sweep {

Outputs outputs;

void* Outputs::add(const void* before, size_t size, size_t parts) {
  const size_t all = size * parts;
  outputs_.push_back({std::string(static_cast<const char*>(before), all), std::make_unique<char[]>(all), parts});
  const Output& output = outputs_.back();
  std::copy_n(output.before.data(), all, output.now.get());
  return output.now.get();
}

std::vector<bool> Outputs::written() const {
  std::vector<bool> result;
  for (const auto& [before, now, parts] : outputs_) {
    const size_t size = before.size() / parts;
    for (size_t i = 0; i < before.size(); i += size)
      result.push_back(before.compare(i, size, now.get() + i, size) != 0);
  }
  return result;
}

namespace {

constexpr int lowest_code = -23;  // one below the SDK's codes

/// What the interface promises of codes, apart from the library's own tables.
int32_t converted(int code) {
  static const std::map<int, int32_t> own{{0, 0},   {-2, -3}, {-4, -5},  {-6, -13},
                                          {-7, -7}, {-8, -6}, {-16, -2}, {-18, -9}};
  const auto found = own.find(code);
  return found == own.end() ? -1 : found->second;
}

int text_number(int code) { return -22 <= code && code <= 0 ? -code : 23; }

struct Call {
  std::string name;
  int nth;  ///< of those of that name in the run
  int code;
};

struct Seen {
  std::vector<Call> calls;
  std::vector<std::string> errors;   ///< lines of the log
  std::vector<std::string> printed;  ///< lines of standard output
  int32_t result = 0;
  std::vector<bool> written;
};

/// Whether `list`, of names of SDK functions, has the call.
bool has(const std::string& list, const Call& call) {
  std::istringstream words(list);
  for (std::string word; words >> word;)
    if (word == call.name || word == call.name + '#' + std::to_string(call.nth)) return true;
  return false;
}

/// Whether a failure that is about `codes` is about `code`.
bool is_about(int codes, int code) {
  return codes == code || (codes == negative && code < 0) || (codes == non_zero && code != 0);
}

struct Fault {
  const Call* call;
  int code;
};

std::vector<Call> read_journal() {
  std::vector<Call> calls;
  std::map<std::string, int> seen;
  std::istringstream lines(support::journal());
  for (std::string line; std::getline(lines, line);) {
    std::string name = line.substr(0, line.find('('));
    const int nth = ++seen[name];
    calls.push_back({std::move(name), nth, std::stoi(line.substr(line.rfind(" = ") + 3))});
  }
  return calls;
}

/// A stream in memory, for as long as it lives.
class Lines {
 public:
  ~Lines() {
    fclose(stream);
    free(text_);
  }

  std::vector<std::string> take() {
    fflush(stream);
    std::vector<std::string> result;
    std::istringstream lines(std::string(text_, size_));
    for (std::string line; std::getline(lines, line);)
      if (!line.empty()) result.push_back(line);
    rewind(stream);
    return result;
  }

  FILE* const stream = open_memstream(&text_, &size_);

 private:
  char* text_ = nullptr;
  size_t size_ = 0;
};

/// An SDK call of a function, where its failure is logged or where it is not.
struct FailedCall {
  std::string function;
  std::string call;
  bool is_unlogged;
  auto operator<=>(const FailedCall&) const = default;
};

/// What a user sees of a failed call: the lines, with every value that is not fixed text made one, the calls that
/// follow, and the result of each code.
struct Outcome {
  std::string before;
  std::string then;
  std::string lines;
  std::map<int, int32_t> results;
};

/// Link scanning pauses for the time of a call, whatever happens in it.
bool is_visible(const Call& call) { return !call.name.starts_with("soc_linkscan"); }

std::vector<std::string> names_of(std::span<const Call> calls) {
  std::vector<std::string> names;
  for (const Call& call : calls)
    if (is_visible(call)) names.push_back(call.name);
  return names;
}

std::string each_once(const std::vector<std::string>& names) {
  std::string result;
  std::set<std::string> seen;
  for (const std::string& name : names)
    if (seen.insert(name).second) result += (result.empty() ? "" : " ") + name;
  return result;
}

/// A line of a log without the SDK's text and without values.
std::string without_values(std::string line, int code) {
  const std::string reason = _shr_errmsg[text_number(code)];
  if (const size_t at = line.find(reason); at != std::string::npos) line.replace(at, reason.size(), "%s");
  return support::without_values(line);
}

class Sweep : public testing::TestWithParam<Row> {
 public:
  static size_t triples;
  static std::map<std::string, std::vector<std::string>> outcomes;  ///< lines of the kept file, by function
  static std::set<std::string> functions;
  // With their codes: those that show in the function's result, and those of which an application cannot know.
  static std::map<FailedCall, std::set<int>> returned;
  static std::map<FailedCall, std::set<int>> ignored;

 protected:
  Sweep() {
    sai_log_default = &log_handle_;
    log_handle_.file = log_.stream;
    log_handle_.show_priority = 1;
    log_handle_.max_level[SAI_LOG_FILE] = SAI_LOG_DEBUGGING;
  }

  ~Sweep() override {
    sai_log_default = nullptr;
    swsdk_power_off();
  }

  Seen observe(std::optional<Fault> fault) {
    const Row& row = GetParam();
    support::start_chip(1, row.ports);
    row.scene();
    outputs.clear();
    if (fault) swsdk_fault_inject(fault->call->name.c_str(), fault->code, fault->call->nth);
    log_.take();
    swsdk_journal_clear();
    swsdk_journal_record(1);
    FILE* const standard_output = stdout;
    stdout = printed_.stream;
    Seen run;
    run.result = row.call();
    stdout = standard_output;
    swsdk_journal_record(0);
    swsdk_fault_clear();
    run.calls = read_journal();
    run.written = outputs.written();
    run.printed = printed_.take();
    for (const std::string& line : log_.take())
      if (const size_t start = line.find(" errors: NONE: "); start != std::string::npos)
        run.errors.push_back(line.substr(start + sizeof " errors: NONE: " - 1));
    return run;
  }

  static const Failure* rule(const Call& call) {
    static const Failure ends_the_work{};
    for (const Failure& failure : GetParam().failures)
      if (is_about(failure.code, call.code) && has(failure.call, call)) return &failure;
    return call.code < 0 ? &ends_the_work : nullptr;
  }

  /// The calls are those of the normal run, but for what the rules say of each that answers something else.
  static void check_calls(const Seen& normal, const Seen& run) {
    size_t next = 0;  // of the normal run
    std::vector<std::string> inserted;
    for (const Call& call : run.calls) {
      bool differs = true;
      if (!inserted.empty()) {
        EXPECT_EQ(call.name, inserted.front());
        inserted.erase(inserted.begin());
      } else {
        ASSERT_LT(next, normal.calls.size()) << call.name << " follows, after all that should";
        EXPECT_EQ(call.name, normal.calls[next].name);
        differs = call.code != normal.calls[next].code;
        ++next;
      }
      if (call.code == 0 || !differs) continue;
      const Failure* const failure = rule(call);
      if (failure == nullptr) continue;
      const std::string then = failure->then;
      const bool ends = then.find_first_of("*>") == std::string::npos;
      if (ends) inserted.clear();
      std::istringstream words(then);
      for (std::string word; words >> word;) {
        if (word == "-")
          ++next;
        else if (word.starts_with('>'))
          while (next < normal.calls.size() && normal.calls[next].name != word.substr(1)) ++next;
        else if (word != "*")
          inserted.push_back(word);
      }
      if (ends) next = normal.calls.size();
    }
    EXPECT_TRUE(inserted.empty()) << inserted.front() << " should follow";
    EXPECT_GE(next, normal.calls.size()) << normal.calls[next].name << " should follow";
  }

  /// Each failure has its lines, and there are no others.
  static void check_lines(const Seen& normal, const Seen& run) {
    std::vector<std::string> lines = run.errors;
    for (const std::string& line : run.printed)
      if (std::ranges::find(normal.printed, line) == normal.printed.end()) lines.push_back(line);
    size_t next = 0;
    for (const Call& call : run.calls) {
      const Failure* const failure = rule(call);
      if (failure == nullptr || failure->line == no_line) continue;
      std::istringstream ends(failure->line);
      for (std::string end; std::getline(ends, end);) {
        const int number = text_number(call.code);
        if (const size_t at = end.find("%s"); at != std::string::npos) end.replace(at, 2, _shr_errmsg[number]);
        if (const size_t at = end.find("%d"); at != std::string::npos) end.replace(at, 2, std::to_string(number));
        ASSERT_LT(next, lines.size()) << "no line tells that " << call.name << " failed";
        EXPECT_TRUE(lines[next].ends_with(end)) << lines[next] << "\nis expected to end with: " << end;
        ++next;
      }
    }
    EXPECT_EQ(next, lines.size()) << "one line too many: " << lines[next];
  }

  static void check_result(const Seen& run) {
    const std::string rule = GetParam().result;
    int code = run.calls.empty() ? 0 : run.calls.back().code;
    if (rule == always_0 || (rule == zero_unless_failed && code >= 0)) code = 0;
    if (rule == zero_or_fail) code = code == 0 ? 0 : -1;
    if (rule == zero_or_fail_if_negative) code = code < 0 ? -1 : 0;
    if (rule == failure_or_value && code == 0) {
      EXPECT_GE(run.result, 0);
      return;
    }
    for (const Call& call : run.calls)
      if (has(rule, call)) code = call.code;
    EXPECT_EQ(run.result, converted(code));
  }

  /// A positive result of the SDK's ends no work, but it is no success: the library's result is not 0 then.
  static void check_outputs(const Seen& run) {
    const std::string rule = GetParam().outputs;
    std::vector<bool> expected(run.written.size(), rule == always || run.result >= 0);
    if (rule == each_by_its_call)
      for (size_t i = 0; i < expected.size(); ++i) expected[i] = run.calls[i].code == 0;
    else if (rule != on_success && rule != always) {
      expected.assign(expected.size(), true);
      for (const Call& call : run.calls)
        if (has(rule, call) && call.code < 0) expected.assign(expected.size(), false);
    }
    EXPECT_EQ(run.written, expected);
  }

  /// Adds what a failing run showed to the outcomes of the SDK function.
  void keep(const Seen& normal, const Seen& failing, const Call& failed, int code) {
    const auto at = std::ranges::find_if(failing.calls, [&](const Call& made) {
      return made.name == failed.name && made.nth == failed.nth && made.code == code;
    });
    const auto index = static_cast<size_t>(at - failing.calls.begin());
    if (code > 0 || !is_visible(failed) || index >= normal.calls.size()) return;
    const std::vector<std::string> rest = names_of(std::span(failing.calls).subspan(index + 1));
    const std::vector<std::string> usual = names_of(std::span(normal.calls).subspan(index + 1));
    std::string then = rest.empty() ? "ends" : each_once(rest);
    if (rest == usual) then = rest.empty() ? "last" : "goes on";
    std::string lines;
    const bool failed_before = normal.calls[index].code != 0;
    for (const std::string& line : failing.errors)
      if (failed_before || std::ranges::find(normal.errors, line) == normal.errors.end())
        lines += "\tlog " + without_values(line, code);
    for (const std::string& line : failing.printed)
      if (std::ranges::find(normal.printed, line) == normal.printed.end())
        lines += "\tprinted " + without_values(line, code);
    std::vector<Outcome>& seen = outcomes_[failed.name];
    auto found = std::ranges::find_if(
        seen, [&](const Outcome& outcome) { return outcome.then == then && outcome.lines == lines; });
    if (found == seen.end()) {
      seen.push_back({each_once(names_of(std::span(failing.calls).first(index))), then, lines, {}});
      found = seen.end() - 1;
    }
    found->results.emplace(code, failing.result);
  }

  /// The outcomes of a row as lines of the kept file: function and case, call, codes, result, calls before, what
  /// follows, lines.
  void write_outcomes(const Seen& normal) const {
    std::vector<std::string>& kept = outcomes[GetParam().name.substr(0, GetParam().name.find(','))];
    for (const Call& call : normal.calls) {
      const auto of_call = outcomes_.find(call.name);
      if (call.nth != GetParam().every || of_call == outcomes_.end()) continue;
      for (const Outcome& outcome : of_call->second) {
        const bool is_converted =
            std::ranges::all_of(outcome.results, [](const auto& one) { return one.second == converted(one.first); });
        std::map<std::string, std::string> codes;
        for (const auto& [code, result] : outcome.results) {
          std::string& list = codes[is_converted ? "converted" : std::to_string(result)];
          list += (list.empty() ? "" : ",") + std::to_string(code);
        }
        if (codes.size() == 1 && outcome.results.size() == static_cast<size_t>(-lowest_code))
          codes.begin()->second = "all";
        for (const auto& [result, list] : codes) {
          const std::string line = GetParam().name + '\t' + call.name + '\t' + list + '\t' + result + '\t' +
                                   outcome.before + '\t' + outcome.then + outcome.lines;
          if (std::ranges::find(kept, line) == kept.end()) kept.push_back(line);
        }
      }
    }
  }

  Lines log_;
  Lines printed_;

 private:
  std::map<std::string, std::vector<Outcome>> outcomes_;  ///< by SDK function
  sai_log_handle log_handle_{};
};

size_t Sweep::triples = 0;
std::map<std::string, std::vector<std::string>> Sweep::outcomes;
std::set<std::string> Sweep::functions;
std::map<FailedCall, std::set<int>> Sweep::returned;
std::map<FailedCall, std::set<int>> Sweep::ignored;

/// Those that SWEEP_CODES lists in the environment; without it, the SDK's codes, one below them and a positive one.
std::vector<int> codes_to_try() {
  std::vector<int> codes;
  const char* const list = std::getenv("SWEEP_CODES");
  std::istringstream words(list != nullptr ? list : "");
  for (int code = 0; words >> code;) codes.push_back(code);
  if (!codes.empty()) return codes;
  for (int code = lowest_code; code <= positive; ++code)
    if (code != 0) codes.push_back(code);
  return codes;
}

TEST_P(Sweep, EachCallFailsWithEachCode) {
  static const std::vector<int> codes = codes_to_try();
  const Row& row = GetParam();
  const std::string function = row.name.substr(0, row.name.find(','));
  functions.insert(function);
  const Seen normal = observe({});
  check_lines(normal, normal);
  check_result(normal);
  check_outputs(normal);
  ASSERT_GE(normal.result, 0);
  ASSERT_FALSE(HasFailure()) << "with nothing failing";
  for (const Call& call : normal.calls) {
    if (call.nth % row.every != 0) continue;
    for (const int code : codes) {
      SCOPED_TRACE(call.name + " number " + std::to_string(call.nth) + " answers " + std::to_string(code));
      const Seen failing = observe(Fault{&call, code});
      ++triples;
      keep(normal, failing, call, code);
      EXPECT_TRUE(std::ranges::any_of(failing.calls, [&](const Call& made) {
        return made.name == call.name && made.nth == call.nth && made.code == code;
      })) << "it was not called";
      if (code < 0) {
        const bool is_unlogged = failing.errors == normal.errors && failing.printed == normal.printed;
        (failing.result >= 0 ? ignored : returned)[{function, call.name, is_unlogged}].insert(code);
      }
      check_calls(normal, failing);
      check_lines(normal, failing);
      check_result(failing);
      check_outputs(failing);
      if (HasFailure()) {
        std::string seen;
        for (const Call& made : failing.calls) seen += made.name + " = " + std::to_string(made.code) + '\n';
        for (const std::string& line : failing.errors) seen += line + '\n';
        ADD_FAILURE() << seen;
        return;
      }
    }
  }
  write_outcomes(normal);
}

Rows all_rows() {
  Rows result;
  for (Rows (*const family)() : {core, port, field, l2, unicast, multicast, vlan, vport})
    for (Row& row : family()) result.push_back(std::move(row));
  return result;
}

std::string name_of(const testing::TestParamInfo<Row>& info) {
  std::string name = info.param.name;
  for (char& letter : name)
    if (!isalnum(letter)) letter = '_';
  return name;
}

INSTANTIATE_TEST_SUITE_P(, Sweep, testing::ValuesIn(all_rows()), name_of);

const std::set<std::string> exported_functions{
#include "exported_functions.inc"
};

TEST(SweepRows, AreThereForEveryExportedFunction) {
  std::set<std::string> with_row;
  for (const Row& row : all_rows()) with_row.insert(row.name.substr(0, row.name.find(',')));
  EXPECT_EQ(with_row, exported_functions);
}

/// Where some failures of a call are ignored and not logged, and all others are logged and returned.
bool is_told_by_log(const FailedCall& what, const std::set<int>& codes) {
  const auto is_returned = [&](bool is_unlogged) {
    const auto found = Sweep::returned.find({what.function, what.call, is_unlogged});
    return found != Sweep::returned.end() &&
           std::ranges::any_of(codes, [&](int code) { return found->second.contains(code); });
  };
  return what.is_unlogged && is_returned(false) && !is_returned(true);
}

/// The lines of tools/sweep/ignored_failures: function, call, codes, "unlogged" where there is no line in the log, and
/// "unlogged-only" where in other cases there is one and the failure is returned.
std::string ignored_failures() {
  std::map<std::pair<std::string, std::string>, std::set<int>> unlogged;
  for (const auto& [what, codes] : Sweep::ignored)
    if (what.is_unlogged) unlogged[{what.function, what.call}] = codes;
  std::string result;
  for (const auto& [what, codes] : Sweep::ignored) {
    std::string list;
    for (const int code : codes)
      if (what.is_unlogged || !unlogged[{what.function, what.call}].contains(code))
        list += (list.empty() ? "" : ",") + std::to_string(code);
    if (list.empty()) continue;
    if (static_cast<std::ptrdiff_t>(codes.size()) ==
        std::ranges::count_if(codes_to_try(), [](int code) { return code < 0; }))
      list = "all";
    result += what.function + ' ' + what.call + ' ' + list;
    if (what.is_unlogged) result += is_told_by_log(what, codes) ? " unlogged-only" : " unlogged";
    result += '\n';
  }
  return result;
}

class Total : public testing::Environment {
  void TearDown() override {
    if (std::getenv("SWEEP_CODES") == nullptr && Sweep::functions.size() == exported_functions.size()) {
      std::ostringstream kept;
      kept << std::ifstream(IGNORED_FAILURES).rdbuf();
      EXPECT_TRUE(ignored_failures() == kept.str()) << IGNORED_FAILURES " should be:\n" << ignored_failures();
      std::string failures;
      for (const auto& [function, lines] : Sweep::outcomes)
        for (const std::string& line : lines) failures += line + '\n';
      support::compare_with_kept(RESULTS "/failures", failures);
    }
    std::printf("%zu triples of function, call and code, of %zu functions\n", Sweep::triples, Sweep::functions.size());
  }
};

const testing::Environment* const total = testing::AddGlobalTestEnvironment(new Total);

}  // namespace

}  // namespace sweep
