// A file descriptor that is closed with its owner, and the kernel's state of an interface.
#pragma once

#include <string>
#include <utility>

struct ifreq;

namespace vswitch {

class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor();

  int get() const { return number_; }

 private:
  int number_;
};

/// "what: the error of the last system call", with what would help.
std::string system_error(const std::string& what);

/// A request about the interface of that name. Throws CannotStart when no interface can have it.
ifreq request_for(const std::string& name);

/// Whether the interface is up and has a carrier; false for an interface that is gone.
bool has_link(int socket, const std::string& name);

}  // namespace vswitch
