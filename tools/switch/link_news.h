// The kernel's news that an interface of the host was created, deleted or changed.
#pragma once

#include "descriptor.h"

namespace vswitch {

class LinkNews {
 public:
  /// Throws CannotStart.
  LinkNews();

  /// Becomes readable with each news.
  int descriptor() const { return socket_.get(); }

  /// Reads and discards all news: the state is read from the kernel afterwards, so news can be lost.
  void forget();

 private:
  const Descriptor socket_;
};

}  // namespace vswitch
