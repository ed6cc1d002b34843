// The chip as a process: ports with what they are connected to, the host's interfaces, time and commands.
#pragma once

#include <swsdk/frames.h>

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <vector>

#include "attachment.h"
#include "descriptor.h"
#include "link_news.h"
#include "session.h"

namespace vswitch {

struct Options {
  /// The name of the host's first interface instead of the one that start-up requests; empty: keep that one.
  std::string cpu;
  /// Whether the interfaces that the chip's users request are made on the host.
  bool has_host = true;
  /// Whether other processes work on the chip, so that there is something to do when all ports are files at their end.
  bool listens = false;
};

class Switch {
 public:
  /// The chip can be off, and then be switched on by another process.
  Switch(saish::Session& session, Options options);

  /// Connects a port. Throws CannotStart.
  void plug(int port, const std::string& what);

  /// Passes frames until `signals` becomes readable, a command ends the session, or all ports are files at their end;
  /// then reports what was lost. Commands come from standard input, if it is a terminal or a pipe.
  void run(int signals);

  /// Whether an error occurred meanwhile; it is on standard error.
  bool had_trouble() const { return had_trouble_; }

 private:
  struct HostInterface {
    swsdk_netif wanted;
    std::unique_ptr<Attachment> attachment;  // null: it could not be created, which has been told
  };

  /// What frames come from.
  struct Source {
    int port;
    Attachment* attachment;
  };

  void make_host_interfaces();
  void watch_sources();
  void follow_chip();
  void transmit(const swsdk_out& out);
  void pass_on(int port, std::span<const Frame> frames);
  void collect(bool collects);
  void advance_clock();
  void follow_links();
  void set_link(int port, bool up);
  void read_commands();
  void run_commands();
  bool has_command() const { return typed_.find('\n') != std::string::npos; }
  bool is_over() const;
  bool pass_frames();
  void tell_losses();
  std::string plugs() const;

  saish::Session& session_;
  const Options options_;
  std::map<int, std::unique_ptr<Attachment>> ports_;
  std::map<int, std::string> plugged_;  // what each is plugged into, as it was given
  std::map<int, bool> links_;
  LinkNews link_news_;
  /// Held while attachments are replaced, and while a frame leaves, which another process may have sent.
  std::mutex attachments_lock_;
  bool collects_ = false;  // whether what leaves waits to be sent together
  std::vector<HostInterface> host_interfaces_;
  std::vector<Source> sources_;
  Descriptor watched_;  // all that can become readable
  int signals_ = -1;
  std::size_t arrived_ = 0;  // frames in the last round
  int starts_;               // of the chip that is known
  bool is_on_;
  std::chrono::steady_clock::time_point now_ = std::chrono::steady_clock::now();
  std::chrono::steady_clock::time_point followed_;  // when the chip was last asked what is new
  bool commands_ = false;                           // more commands can come
  std::atomic<bool> had_trouble_ = false;           // a client's frame can cause it, too
  std::string typed_;                               // commands that were not run yet
};

}  // namespace vswitch
