// The fault sweep: each SDK call that a function makes fails in turn, with every code, and what the function then does
// is compared with its rule. A function's rule is its row.
#pragma once

#include <bcm/error.h>
#include <sai.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace sweep {

constexpr int unit = 0;

// What follows a failed call, as words: the calls that follow it, by name; "*" for what would have followed it anyway;
// "-" takes the next call out of that, and ">" all calls up to the one that it stands before.
constexpr const char* stops = "";
constexpr const char* goes_on = "*";

// How the error lines of a failed call end; "%s" is the SDK's text, and "%d" its number.
constexpr const char* text = "%s";
constexpr const char* no_line = nullptr;

// Which results of a call a failure is about: one code, or these.
constexpr int negative = 1000;
constexpr int non_zero = 1001;
constexpr int positive = 1;

/// A failure that does not simply end the work with an error line, which is the rule of all others. Of several that are
/// about the same, the first holds.
struct Failure {
  /// SDK functions; "#2" behind one means its second call of a run.
  std::string call;
  const char* then = stops;
  const char* line = text;
  int code = negative;
};

inline std::vector<Failure> operator+(std::vector<Failure> a, const std::vector<Failure>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// Which SDK result a function converts to its own: that of the last call of some SDK functions, or one of these.
constexpr const char* last_call = "last";
constexpr const char* failure_or_value = "last, and a value of its own where that is 0";
constexpr const char* zero_unless_failed = "0 unless the last call failed";
constexpr const char* always_0 = "always 0";
constexpr const char* zero_or_fail = "0, or -1 for other results of the last call";
constexpr const char* zero_or_fail_if_negative = "0, or -1 for negative results of the last call";

// When outputs are written: unless one SDK function fails, or one of these.
constexpr const char* on_success = "on success";
constexpr const char* always = "always";
constexpr const char* each_by_its_call = "output n, unless call n fails";

struct Row {
  /// The exported function; what follows a comma tells its rows apart.
  std::string name;
  std::function<int32_t()> call;
  std::vector<Failure> failures = {};
  const char* result = last_call;
  const char* outputs = on_success;
  /// What has to be there before.
  std::function<void()> scene = [] {};
  int ports = 10;
  /// Of the calls of one SDK function, the first to fail and the step from each to the next.
  int every = 1;
};

inline void PrintTo(const Row& row, std::ostream* stream) { *stream << row.name; }

using Rows = std::vector<Row>;

// The rows by family.
Rows core();
Rows port();
Rows field();
Rows l2();
Rows unicast();
Rows multicast();
Rows vlan();
Rows vport();

/// The outputs of the call that runs, which are compared after it.
class Outputs {
 public:
  /// Memory that holds `parts` outputs, one after the other, with the values of `before`.
  void* add(const void* before, size_t size, size_t parts = 1);
  std::vector<bool> written() const;
  void clear() { outputs_.clear(); }

 private:
  struct Output {
    std::string before;
    std::unique_ptr<char[]> now;
    size_t parts;
  };
  std::vector<Output> outputs_;
};

extern Outputs outputs;

/// An output that the caller gives a value.
template <class T>
T* out(const T& before) {
  return static_cast<T*>(outputs.add(&before, sizeof before));
}

/// Outputs that a call has to write, one after the other.
template <class T, size_t count = 1>
T* out() {
  const std::string poison(count * sizeof(T), '\xA5');
  return static_cast<T*>(outputs.add(poison.data(), sizeof(T), count));
}

}  // namespace sweep
