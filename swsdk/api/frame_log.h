// The frames that processes watch; swsdk/watch.h is the interface to users.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "api/packet_filter.h"
#include "api/way.h"

namespace api {

/// What one watch has recorded.
class FrameLog {
 public:
  FrameLog(Way::Detail detail, PacketFilter filter) : detail(detail), filter(std::move(filter)) {}

  const Way::Detail detail;
  const PacketFilter filter;

  /// Adds a frame: of what is told of it as much as is wanted.
  void add(std::string_view head, std::string_view way);

  /// Moves whole blocks into the buffer, of at least two bytes. Returns their length.
  std::size_t take(char* buffer, std::size_t size);

 private:
  static constexpr std::size_t max_size = std::size_t{16} << 20;

  void give_up_oldest();

  std::mutex lock_;
  std::string blocks_;    // guarded by `lock_`, as is all below
  std::string_view cut_;  // what the block lacks of which only a part was taken, if the rest is lost: its end
  long long lost_ = 0;
};

/// The watches of a process.
class Watches {
 public:
  Watches() = default;
  ~Watches();
  Watches(const Watches&) = delete;
  Watches& operator=(const Watches&) = delete;

  /// The number of a new one, or -1.
  int begin(Way::Detail detail, PacketFilter filter);
  std::shared_ptr<FrameLog> find(int number);
  bool end(int number);

  /// Adds those that want a frame.
  void append_wanting(std::span<const uint8_t> frame, std::vector<std::shared_ptr<FrameLog>>& logs);

  /// Whether any process watches.
  static bool any();

 private:
  std::mutex lock_;
  std::map<int, std::shared_ptr<FrameLog>> logs_;
};

/// Lets a frame come in at a port of a unit, which is locked, and tells those who watch. Returns why it is dropped.
chip::Drop receive_watched(int unit, chip::Port port, std::span<const uint8_t> frame, chip::Wire& wire);

}  // namespace api
