#include "expectation.h"

#include <swsdk/frames.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <utility>

#include "frame_text.h"
#include "values.h"

namespace saish {

const char* const frame_expectations[4] = {"out", "cpu", "dropped", "nothing"};

const char* const expectation_notes[9] = {
    "expect CODE COMMAND: the command returns that code. send returns 0, or a number that says why not.",
    "expect out PORT [FRAME]: of the last send, a copy left at that Ethernet port; * is any of them.",
    "expect cpu REASON[,REASON...] [FRAME]: a copy went to the CPU, for just these reasons (l3-miss); any is any.",
    "expect dropped REASON: it was not passed on, for that reason; any is any.",
    "expect nothing: no copy left but those that were expected.",
    "Each copy is for one expectation, in any order. Once there is one, there has to be one for every copy before the "
    "next send, a capture or the end of the script.",
    "FRAME is what send takes, or nothing for any frame. Hexadecimal digits are the whole frame.",
    "Fields that are not named are open, and * leaves a value open: 02:00:00:00:00:01 > * vlan 10 ip * > 10.0.0.2.",
    "But tags are exact: a frame without vlan and svlan has none; vlan 10 has the priority 0, vlan 10/* any, vlan * is "
    "any VLAN with any priority. With length, the frame has just so many bytes.",
};

namespace {

constexpr const char* any = "any";

std::string joined(std::span<const std::string> words, const char* between) {
  std::string result;
  for (const std::string& word : words) result += (result.empty() ? "" : between) + word;
  return result;
}

std::string copy_text(const Copy& copy) {
  return (copy.port != 0 ? "out " : "") + place_text(copy.port, copy.cpu) + ": " + frame_text(copy.bytes);
}

/// A name of several words as one.
std::string hyphenated(std::string name) {
  std::replace(name.begin(), name.end(), ' ', '-');
  return name;
}

/// A line for each, the first one behind its heading.
void print_list(std::string heading, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    std::printf("  %s  %s\n", heading.c_str(), line.c_str());
    heading.assign(heading.size(), ' ');
  }
}

/// For a message, where what is flooded to all ports would be too much.
std::string in_one_line(const std::vector<std::string>& lines) {
  if (lines.size() <= 2) return joined(lines, "; ");
  return lines[0] + "; and " + std::to_string(lines.size() - 1) + " more";
}

void check_words(const Words& words, std::size_t fewest, std::size_t most, const char* form) {
  const bool few = words.size() < fewest;
  if (few || words.size() > most)
    throw BadInput(std::string(few ? "too few" : "too many") + " arguments; the form is expect " + form);
}

std::optional<int> wanted_port(const std::string& word) {
  if (word == "*") return std::nullopt;
  const std::optional<int> port = number<int>(word);
  if (!port || *port < 0) throw BadInput("port: \"" + word + "\" is neither a number nor *");
  if (*port == 0) throw BadInput("port: 0 is the CPU's; the form is expect cpu REASON [FRAME]");
  return port;
}

uint32_t cpu_reason(const std::string& word) {
  const std::vector<std::string> known = cpu_reason_words();
  const auto found = std::find(known.begin(), known.end(), hyphenated(word));
  if (found == known.end())
    throw BadInput("reason: \"" + word + "\" is none; the reasons are " + joined(known, ", ") + ", any");
  return 1U << (found - known.begin());
}

}  // namespace

std::string outcome_text(int outcome) {
  const char* const name = outcome > 0 ? swsdk_drop_name(outcome) : nullptr;
  return std::to_string(outcome) + (name != nullptr ? " (" + std::string(name) + ')' : "");
}

bool is_frame_expectation(std::string_view word) {
  return std::find(std::begin(frame_expectations), std::end(frame_expectations), word) != std::end(frame_expectations);
}

std::vector<std::string> cpu_reason_words() {
  std::vector<std::string> result;
  for (int bit = 0; swsdk_cpu_reason_name(bit) != nullptr; ++bit)
    result.push_back(hyphenated(swsdk_cpu_reason_name(bit)));
  return result;
}

std::vector<std::string> drop_reason_words() {
  std::vector<std::string> result;
  for (int reason = 1; swsdk_drop_name(reason) != nullptr; ++reason)
    result.push_back(hyphenated(swsdk_drop_name(reason)));
  return result;
}

bool Expectations::Wanted::matches(const Copy& copy) const {
  return (copy.port == 0) == for_cpu && copy.port == port.value_or(copy.port) && copy.cpu == cpu.value_or(copy.cpu) &&
         frame.matches(copy.bytes);
}

Expectations::Wanted Expectations::wanted_copy(const Words& words) {
  const bool for_cpu = words[0] == "cpu";
  check_words(words, 2, words.size(), for_cpu ? "cpu REASON [FRAME]" : "out PORT [FRAME]");
  std::size_t frame_at = 2;
  std::optional<int> port;
  std::optional<uint32_t> cpu;
  std::string place;
  if (for_cpu) {
    // As capture prints several reasons: a comma is followed by another word.
    std::string reasons = words[1];
    while (reasons.ends_with(',') && frame_at < words.size()) reasons += words[frame_at++];
    if (reasons != any) {
      cpu = 0;
      const Words names = enclosed('(' + reasons + ')', '(', ')').value_or(Words{});
      if (names.empty()) cpu_reason(reasons);  // which says what they can be
      for (const std::string& name : names) *cpu |= cpu_reason(name);
    }
    place = cpu ? place_text(0, *cpu) : "cpu (any)";
  } else {
    port = wanted_port(words[1]);
    place = "out " + words[1];
  }
  const std::span<const std::string> frame = std::span(words).subspan(frame_at);
  return {place + ": " + (frame.empty() ? "any frame" : joined(frame, " ")), for_cpu, port, cpu, FramePattern(frame)};
}

/// The reason, or 0 for any.
int Expectations::wanted_drop(const Words& words) {
  check_words(words, 2, words.size(), "dropped REASON");
  const std::string given = joined(std::span(words).subspan(1), "-");
  if (given == any) return 0;
  const std::vector<std::string> known = drop_reason_words();
  const auto found = std::find(known.begin(), known.end(), hyphenated(given));
  if (found == known.end()) {
    std::string names = joined(known, ", ");
    std::replace(names.begin(), names.end(), '-', ' ');
    throw BadInput("reason: \"" + joined(std::span(words).subspan(1), " ") + "\" is none; the reasons are " + names +
                   ", any");
  }
  return static_cast<int>(found - known.begin()) + 1;
}

void Expectations::begin(std::string where, int outcome, std::vector<Copy> copies) {
  ++sent_;
  where_ = std::move(where);
  outcome_ = outcome;
  is_strict_ = false;
  copies_ = std::move(copies);
  takers_.assign(copies_.size(), std::nullopt);
  wanted_.clear();
}

/// Gives a copy to what is wanted; whoever has it may take another one instead. So the order of what is wanted does
/// not matter, even where several copies match.
bool Expectations::assign(std::size_t wanted, std::vector<bool>& tried) {
  for (std::size_t i = 0; i < copies_.size(); ++i) {
    if (tried[i] || !wanted_[wanted].matches(copies_[i])) continue;
    tried[i] = true;
    if (takers_[i] && !assign(*takers_[i], tried)) continue;
    takers_[i] = wanted;
    return true;
  }
  return false;
}

/// The copies that nobody has expected so far.
std::vector<std::string> Expectations::others() const {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < copies_.size(); ++i)
    if (!takers_[i]) result.push_back(copy_text(copies_[i]));
  return result;
}

void Expectations::state(const Words& words) {
  std::optional<Wanted> copy;
  int reason = 0;
  if (words[0] == "nothing")
    check_words(words, 1, 1, "nothing");
  else if (words[0] == "dropped")
    reason = wanted_drop(words);
  else
    copy = wanted_copy(words);
  if (sent_ == 0) throw BadInput("expect: no frame has been sent yet");

  is_strict_ = true;
  if (copy) {
    wanted_.push_back(*std::move(copy));
    std::vector<bool> tried(copies_.size());
    if (assign(wanted_.size() - 1, tried)) return;
    const std::string text = wanted_.back().text;
    wanted_.pop_back();
    fail(text, others());
  } else if (words[0] == "dropped") {
    if (reason != 0 ? outcome_ == reason : outcome_ != 0) return;
    std::vector<std::string> came = others();
    if (outcome_ == 0) came.insert(came.begin(), "passed on");
    fail(std::string("dropped: ") + (reason != 0 ? swsdk_drop_name(reason) : "any reason"), std::move(came));
  } else if (std::vector<std::string> more = others(); !more.empty()) {
    fail(nothing(), std::move(more));
  }
}

const char* Expectations::nothing() const { return wanted_.empty() ? "nothing" : "nothing more"; }

/// Prints what came beside what was wanted, and throws.
void Expectations::fail(const std::string& wanted, std::vector<std::string> came) {
  is_strict_ = false;  // what follows has been said
  if (outcome_ != 0) came.push_back(std::string("dropped: ") + swsdk_drop_name(outcome_));
  if (came.empty()) came.emplace_back(nothing());
  print_list("expected", {printable(wanted)});
  print_list("came    ", came);
  throw Unexpected("expected " + wanted + ", came " + in_one_line(came));
}

void Expectations::settle() {
  const std::vector<std::string> more = others();
  if (!std::exchange(is_strict_, false) || more.empty()) return;
  print_list("not expected", more);
  throw Unexpected(where_ + ": not expected: " + in_one_line(more));
}

}  // namespace saish
