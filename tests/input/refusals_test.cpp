// What every function refuses by itself, or has refused by the chip, without any fault: the rows of the manual's
// tables of results that a caller meets.
#include <bcm/error.h>
#include <swsdk/chip.h>
#include <swsdk/journal.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

#include "input/all_functions.h"
#include "input/fillings.h"
#include "support/kept.h"
#include "support/start.h"

namespace {

using input::Bad;
using input::chosen;
using input::Filling;
using input::Function;

/// The SDK call that decided, or "library", its code, the result, and the errors of the log without their
/// values.
struct Refusal {
  std::string call = "library";
  int code = 0;
  int32_t result = 0;
  std::string done;  ///< the other calls of the SDK, all of which succeeded
  std::string lines;
  auto operator<=>(const Refusal&) const = default;
};

class Refusals : public input::AllFunctions {
 protected:
  /// Nothing when the function accepts what it gets.
  std::optional<Refusal> refusal(const Function& function, const Bad& bad = {}) {
    return refusal(function, [&] { return input::quietly(function, bad).result.value_or(0); });
  }

  /// With `full`, the SDK call that has to answer that its table is full; that decides, whatever the result.
  std::optional<Refusal> refusal(const Function& function, const std::function<int32_t()>& call_it,
                                 std::string_view full = {}) {
    int32_t result = 0;
    const std::string seen = observe([&] { return result = call_it(); });
    Refusal refusal;
    refusal.result = result;
    std::set<std::string> done;
    std::istringstream lines(seen);
    for (std::string line; std::getline(lines, line);) {
      static const std::string error = "log: errors: NONE: ";
      if (line.starts_with(error)) {
        refusal.lines += "\tlog " + support::without_values(line.substr(error.size()));
      } else if (const size_t at = line.rfind(" = "); at != std::string::npos && !line.starts_with("log")) {
        const std::string call = line.substr(0, line.find('('));
        const int code = std::atoi(line.c_str() + at + 3);
        if (code < 0) answers_[function.name].insert(call + '\t' + std::to_string(code));
        const bool decides = full.empty() ? sdk_to_sai(code) == result : call == full && code == BCM_E_FULL;
        if (code < 0 && decides) {
          refusal.call = call;
          refusal.code = code;
        } else if (code == 0 && !call.starts_with("soc_linkscan") && done.insert(call).second) {
          refusal.done += (refusal.done.empty() ? "" : " ") + call;
        }
      }
    }
    return result < 0 || refusal.code < 0 ? std::optional(refusal) : std::nullopt;
  }

  void keep(const Function& function, const std::string& what, const std::string& value,
            const std::optional<Refusal>& refusal) {
    if (refusal) kept_[function.name][*refusal][what].push_back(value);
  }

  /// Lines of the kept file: function, call, code, result, what was so, the other calls, the log's lines.
  /// Before them, each failure of an SDK call that was seen: function, call, code.
  std::string kept() const {
    std::ostringstream text;
    for (const auto& [function, answers] : answers_)
      for (const std::string& answer : answers) text << function << '\t' << answer << '\n';
    for (const auto& [function, refusals] : kept_)
      for (const auto& [refusal, reasons] : refusals) {
        text << function << '\t' << refusal.call << '\t' << refusal.code << '\t' << refusal.result << '\t';
        const char* between = "";
        for (const auto& [what, values] : reasons) {
          text << between << what;
          for (const std::string& value : values) text << (value.empty() ? "" : " ") << value;
          between = "; ";
        }
        text << '\t' << refusal.done << refusal.lines << '\n';
      }
    return text.str();
  }

 private:
  std::map<std::string, std::set<std::string>> answers_;
  std::map<std::string, std::map<Refusal, std::map<std::string, std::vector<std::string>>>> kept_;
};

int32_t call_next(const Function& function, const Filling& filling, int64_t number) {
  if (filling.call != nullptr) return filling.call(static_cast<int>(number));
  for (const char* const name : filling.differing) {
    const bool is_last = name == filling.differing.back();
    chosen[name] = 2 + (is_last ? number : number % 120) * filling.step;
    number /= 120;
  }
  return input::quietly(function).result.value_or(0);
}

TEST_F(Refusals, AreThoseOfTheManual) {
  for (const Function& function : input::functions()) {
    if (function.kind != input::Result::code) continue;
    bool is_new = false;
    for (const Bad& bad : input::all_bad(function)) {
      if (!is_new) set_scene();
      const std::optional<Refusal> seen = refusal(function, bad);
      const std::string name = input::name_of(function, bad);
      keep(function, name.substr(name.find(' ') + 1), bad.text != nullptr ? "text" : input::value_of(bad), seen);
      is_new = seen.has_value();
    }
    set_scene();
    input::quietly(function);
    keep(function, "(again)", "", refusal(function));
    support::start_chip();
    keep(function, "(alone)", "", refusal(function));
    support::attach_chip();
    keep(function, "(attached)", "", refusal(function));
    swsdk_power_off();
    keep(function, "(off)", "", refusal(function));
    for (const Filling& filling : input::fillings()) {
      if (filling.function != function.name) continue;
      set_scene();
      constexpr int enough = 20000;
      int i = 0;
      const auto next = [&] { return call_next(function, filling, ++i); };
      if (filling.fill != nullptr)
        for (int n = 1; n < enough && filling.fill(n) != BCM_E_FULL;) ++n;
      else
        for (int32_t result = 0; i < enough && result != SAI_E_FULL && result != SAI_E_FAIL;) result = next();
      const std::optional<Refusal> seen = refusal(function, next, filling.table);
      EXPECT_TRUE(seen && (seen->code == BCM_E_FULL || seen->code == BCM_E_RESOURCE))
          << function.name << ' ' << filling.table << ": nothing is full";
      keep(function, "(full)", "", seen);
    }
  }
  support::compare_with_kept(RESULTS "/refusals", kept());
}

}  // namespace
