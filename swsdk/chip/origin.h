// Which call of the SDK made an entry what it is.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <utility>

namespace chip {

/// A call that made entries.
struct Cause {
  long long number = 0;  // among the calls that were answered, from 1 on
  std::string caller;    // what precedes the line in the journals of other processes
  std::string line;      // in the journal
};

/// A call that this thread is answering. Its line is made only if an entry is due to it, and kept as long as one is.
class CallInProgress {
 public:
  CallInProgress() : outer_(std::exchange(present_, this)) {}
  ~CallInProgress() { present_ = outer_; }
  CallInProgress(const CallInProgress&) = delete;
  CallInProgress& operator=(const CallInProgress&) = delete;

  /// The innermost one, or null: what changes then is due to frames, time or a cable.
  static CallInProgress* present() { return present_; }

  const std::shared_ptr<Cause>& cause() {
    if (cause_ == nullptr) cause_ = std::make_shared<Cause>();
    return cause_;
  }
  bool has_made_entries() const { return cause_.use_count() > 1; }

 private:
  static inline constinit thread_local CallInProgress* present_ = nullptr;

  CallInProgress* const outer_;
  std::shared_ptr<Cause> cause_;
};

/// The call to which an entry is due. A new one is that of the present call, so a record that has one names the call
/// that made it; who changes a record in place assigns `{}`. It is not part of what the entry says.
class Origin {
 public:
  Origin() {
    if (CallInProgress* const call = CallInProgress::present(); call != nullptr) cause_ = call->cause();
  }

  /// That of what no call made, whichever is present.
  static Origin none() { return Origin(nullptr); }

  /// Null for what no call made.
  const Cause* cause() const { return cause_.get(); }

  friend bool operator==(const Origin& /*one*/, const Origin& /*other*/) { return true; }

  template <class Archive>
  void serialize(Archive& archive) {
    auto cause = std::const_pointer_cast<Cause>(cause_);
    archive(cause);
    cause_ = cause;
  }

 private:
  explicit Origin(std::nullptr_t /*none*/) {}

  std::shared_ptr<const Cause> cause_;
};

/// A setting with the call that set it.
template <class Value>
struct Setting {
  Setting() = default;
  Setting(const Value& given) : value(given) {}    // NOLINT(google-explicit-constructor): it is assigned like its value
  operator const Value&() const { return value; }  // NOLINT(google-explicit-constructor): and read like it

  template <class Archive>
  void serialize(Archive& archive) {
    archive(value, origin);
  }

  Value value{};
  Origin origin{};
};

}  // namespace chip
