// The chip, when it is in another process: what this side of the interface needs of it.
#pragma once

#include <functional>
#include <optional>
#include <string_view>

#include "api/calls/call_text.h"

namespace api {

/// What the chip's process answered.
struct Answer {
  long long result;
  /// How the chip's process took the call; nothing when it has no line there, because its unit is not up.
  std::optional<Kind> kind;
};

/// Takes the text of an entry that a call is to walk over; throws Unreadable.
using TakeEntry = std::function<void(std::string_view text)>;

/// A callback of this process, and what it is called with: by it the chip's process names it.
struct RemoteCallback {
  const char* event;
  int unit;
  const void* function;
  const void* user_data;
  bool operator==(const RemoteCallback& other) const {
    return std::string_view(event) == other.event && unit == other.unit && function == other.function &&
           user_data == other.user_data;
  }
};

class RemoteChip {
 public:
  virtual ~RemoteChip() = default;

  /// Has the chip answer; the arguments' outputs are then written. Nothing when the chip is gone, which has been told.
  virtual std::optional<Answer> call(const char* function, Arguments arguments, const TakeEntry& take_entry = {}) = 0;

  /// Tells the chip's process what a walk that it has answered has come to.
  virtual void end_walk(const char* function, Arguments arguments, int rv) = 0;

  /// Before the SDK starts: looks for a chip again if it is gone.
  virtual void look_again() = 0;

  /// Waits until everything that has happened to the chip has been told to the callbacks of this process.
  virtual void drain() = 0;

  /// Switches the chips off, and forgets the callbacks of this process.
  virtual void power_off() = 0;

  // Which callbacks of this process are to be called. One that is refused has to be removed again.
  virtual bool add_callback(const RemoteCallback& callback) = 0;
  virtual void remove_callback(const RemoteCallback& callback) = 0;
  /// Of those of its event and unit.
  virtual void keep_alone(const RemoteCallback& callback) = 0;
};

/// Null when the chip is in this process.
RemoteChip* remote_chip();
void set_remote_chip(RemoteChip* chip);

}  // namespace api
