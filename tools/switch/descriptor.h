// A file descriptor that is closed with its owner, and the kernel's state of an interface.
#pragma once

#include <string>

struct ifreq;

namespace vswitch {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  int get() const { return number_; }

 private:
  int number_;
};

/// "what: the error of the last system call", with what would help.
std::string system_error(const std::string& what);

/// A request about the interface of that name. Throws CannotStart when no interface can have it.
ifreq request_for(const std::string& name);

/// Whether the interface is up and has its carrier; an interface that is gone has not.
bool has_link(int socket, const std::string& name);

}  // namespace vswitch
