// A client of the chip of this process.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "api/caller.h"
#include "remote/line_stream.h"

namespace remote {

/// One thread answers the client's calls, another one sends what happens; neither waits for the client while it holds a
/// lock of the chip, so a client that does not read keeps nobody waiting but itself.
class Session : public api::Caller, public std::enable_shared_from_this<Session> {
 public:
  /// @param name     what the program is called
  /// @param process  its id
  /// @param calls    where the client has been greeted
  /// @param events   the other socket
  Session(const std::string& name, int process, LineStream calls, LineStream events);
  ~Session() override;

  /// Answers calls until the client goes away or says what cannot be understood. Then nothing of it is left in the
  /// chip.
  void run();

  /// Ends run(), in whatever it waits for.
  void end();

  void tell(std::string_view event) override;
  void add_to_answer(std::string_view line) override;

 private:
  bool walk_result_of(std::string_view rest);
  bool answer_line(std::string_view line);
  void send_events();
  std::string units();

  static constexpr std::size_t max_waiting_events = std::size_t{16} << 20;

  LineStream calls_;
  LineStream events_;
  std::string answer_;
  uint64_t told_version_ = 0;  // of what the SDK exports

  std::mutex lock_;
  std::condition_variable changed_;
  std::string waiting_;        // events, guarded by `lock_` as all below
  long long events_told_ = 0;  // the lost ones too
  long long lost_ = 0;         // after those that wait
  bool ending_ = false;
  std::thread sender_;
};

}  // namespace remote
