// A chip in a process of its own, and other programs that work on it.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace remote {

/// A new folder, removed with all that is in it.
class Folder {
 public:
  Folder();
  ~Folder();
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string operator/(const std::string& name) const { return path_ + '/' + name; }

 private:
  std::string path_;
};

/// What a program printed, on both streams, and how it ended.
struct Output {
  std::string text;
  int status;
};

/// Runs a program to its end. `environment`: NAME=VALUE, in addition to that of this process.
Output run(const std::vector<std::string>& command, const std::vector<std::string>& environment = {});

class Server {
 public:
  /// Starts chip_server, and waits until it listens.
  explicit Server(std::string path, const std::vector<std::string>& options = {});
  ~Server() { stop(); }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  const std::string& path() const { return path_; }
  pid_t process() const { return process_; }

  /// Ends it as a signal does; SIGTERM lets it end well.
  void stop(int signal);
  void stop();

  /// The last value of a line of /proc/PID/status, such as Threads.
  long status(const std::string& name) const;
  /// How many descriptors it has open.
  int descriptors() const;

 private:
  const std::string path_;
  pid_t process_;
};

}  // namespace remote
