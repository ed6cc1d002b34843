// The journals: each process that works on the chip has its own; swsdk/journal.h is their interface to users.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace api {

class Journal {
 public:
  /// @param owner  precedes the lines of its owner's calls in the journals of others; empty: this process itself
  explicit Journal(std::string owner) : owner_(std::move(owner)) {}
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  /// What precedes its owner's lines in the journals of others.
  const std::string& owner() const { return owner_; }

  /// `on` is one of the values of swsdk_journal_record().
  void record(int on);
  int recording() const;
  void clear();
  /// The length of what is there from a position on; copies as much of it as fits.
  std::size_t read_from(std::size_t position, char* buffer, std::size_t size) const;

  /// Moves whole lines into the buffer, of at least two bytes. Returns their length.
  std::size_t take(char* buffer, std::size_t size);

  /// Adds the line of a call that the owner of another journal, or of this one, has made.
  void add(const Journal& of, std::string_view line);

 private:
  /// A client that never clears its journal must not fill the chip's memory.
  static constexpr std::size_t max_size_of_client = std::size_t{16} << 20;

  const std::string owner_;
  mutable std::mutex lock_;
  int recording_ = 0;  // as given to record(), guarded by `lock_`, as is all below
  std::string lines_;
  bool full_ = false;
};

/// Whether there is any journal that records, so that a call needs its line.
bool any_journal_is_recording();

/// Adds the line of a call that this thread has made to all journals that record it.
void journal_add(std::string_view line);

/// The journal of the process for which this thread works.
Journal& own_journal();

}  // namespace api
