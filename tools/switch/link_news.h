// News that an interface of the host came, went, or changed.
#pragma once

#include "descriptor.h"

namespace vswitch {

class LinkNews {
 public:
  /// Throws CannotStart.
  LinkNews();

  /// Becomes readable with each of them.
  int descriptor() const { return socket_.get(); }

  /// Takes all that have come and forgets them: the state is asked of the kernel afterwards, so news can be lost.
  void forget();

 private:
  const Descriptor socket_;
};

}  // namespace vswitch
