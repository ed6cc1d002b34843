#include "link_news.h"

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include <cerrno>

#include "attachment.h"

namespace vswitch {

LinkNews::LinkNews() : socket_(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE)) {
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_LINK;
  if (socket_.get() < 0 || bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    throw CannotStart(system_error("cannot watch the host's interfaces"));
}

void LinkNews::forget() {
  char first_byte = 0;  // of a message, whose rest is dropped with it
  while (recv(socket_.get(), &first_byte, 1, 0) > 0 || errno == ENOBUFS) continue;
}

}  // namespace vswitch
