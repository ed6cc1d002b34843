#include "switch.h"

#include <poll.h>
#include <swsdk/chip.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <utility>

#include "console.h"

namespace vswitch {

namespace {

constexpr int unit = 0;
constexpr int cpu_port = 0;

bool gives_commands(int descriptor) {
  struct stat status {};
  return isatty(descriptor) != 0 || (fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode));
}

void receive_at(int port, Bytes frame) { swsdk_frame_send(unit, port, frame.data(), frame.size()); }

}  // namespace

Switch::Switch(saish::Session& session, Options options)
    : session_(session),
      options_(std::move(options)),
      starts_(swsdk_starts(unit)),
      is_on_(starts_ > 0),
      commands_(gives_commands(STDIN_FILENO)) {
  session_.capture().pass_to([this](const swsdk_out& out) { transmit(out); });
  session_.capture().watch(unit);
  make_host_interfaces();
}

void Switch::plug(int port, const std::string& what) {
  const std::string where = "port " + std::to_string(port) + ": ";
  if (ports_.contains(port)) throw CannotStart(where + "it is plugged in twice");
  swsdk_board board{};
  swsdk_board_get(&board);
  if (port < 1 || port > board.ports)
    throw CannotStart(where + "the chip has no such port; it has ports 1 to " + std::to_string(board.ports));
  swsdk_link_event(unit, port, 0);
  try {
    ports_[port] = attach(what, [this, where](const std::string& trouble) {
      had_trouble_ = true;
      tell(where + trouble);
    });
  } catch (const CannotStart& error) {
    throw CannotStart(where + error.what());
  }
}

/// The interfaces that were requested from the chip. One that is requested again, after a start of the chip, stays, so
/// that the host's settings of it do.
void Switch::make_host_interfaces() {
  if (!options_.has_host) return;
  std::vector<swsdk_netif> all;
  for (swsdk_netif one; swsdk_netif_get(unit, static_cast<int>(all.size()), &one) == 0;) all.push_back(one);
  if (!options_.cpu.empty() && !all.empty()) {
    std::memset(all[0].name, 0, sizeof all[0].name);
    options_.cpu.copy(all[0].name, sizeof all[0].name - 1);
  }
  const std::lock_guard guard(attachments_lock_);
  for (std::size_t i = 0; i < all.size(); ++i) {
    const swsdk_netif& wanted = all[i];
    if (i == host_interfaces_.size()) host_interfaces_.emplace_back();
    HostInterface& host = host_interfaces_[i];
    const bool is_there = std::strcmp(host.wanted.name, wanted.name) == 0 &&
                          std::memcmp(host.wanted.mac, wanted.mac, sizeof wanted.mac) == 0;
    host.wanted = wanted;
    if (is_there) continue;
    host.attachment.reset();
    host.attachment = attach_tap(wanted.name, wanted.mac);
  }
}

void Switch::transmit(const swsdk_out& out) {
  const std::lock_guard guard(attachments_lock_);
  if (out.port != cpu_port) {
    const auto port = ports_.find(out.port);
    if (port != ports_.end()) port->second->send({out.data, out.length});
    return;
  }
  for (const HostInterface& host : host_interfaces_) {
    if (host.attachment == nullptr) continue;
    std::vector<uint8_t> frame(out.data, out.data + out.length);
    if (host.wanted.keeps_tag == 0 && frame.size() >= tag_at + tag_size)
      frame.erase(frame.begin() + tag_at, frame.begin() + tag_at + tag_size);
    host.attachment->send(frame);
  }
}

/// Another process can have switched the chip off and on, or requested an interface.
void Switch::follow_chip() {
  const int starts = swsdk_starts(unit);
  is_on_ = starts > 0;
  if (!is_on_) return;
  if (starts != starts_) {
    starts_ = starts;
    session_.capture().watch(unit);
    for (const auto& [port, attachment] : ports_)
      swsdk_link_event(unit, port, (links_[port] = attachment->has_link()) ? 1 : 0);
  }
  try {
    make_host_interfaces();
  } catch (const CannotStart& error) {
    had_trouble_ = true;
    tell(error.what());
  }
}

void Switch::advance_clock() {
  const auto now = std::chrono::steady_clock::now();
  swsdk_clock_advance(unit, static_cast<uint64_t>(std::chrono::nanoseconds(now - now_).count()));
  now_ = now;
}

void Switch::follow_links() {
  for (const auto& [port, attachment] : ports_) {
    std::unique_lock guard(attachments_lock_);
    const bool is_new = attachment->plug_again();
    guard.unlock();
    if (is_new) set_link(port, false);
    set_link(port, attachment->has_link());
  }
  const std::lock_guard guard(attachments_lock_);
  for (const HostInterface& host : host_interfaces_)
    if (host.attachment != nullptr) host.attachment->plug_again();
}

void Switch::set_link(int port, bool up) {
  if (std::exchange(links_[port], up) != up) swsdk_link_event(unit, port, up ? 1 : 0);
}

/// Each line is echoed first, as in scripts, so that piped commands can be matched to their output.
void Switch::run_commands() {
  std::array<char, 4096> text;
  const ssize_t length = read(STDIN_FILENO, text.data(), text.size());
  if (length <= 0) commands_ = false;
  if (length > 0) typed_.append(text.data(), static_cast<std::size_t>(length));
  for (std::size_t end = 0; !session_.ended() && (end = typed_.find('\n')) != std::string::npos;) {
    const std::string line = typed_.substr(0, end);
    typed_.erase(0, end + 1);
    if (isatty(STDIN_FILENO) == 0) std::printf("%s\n", line.c_str());
    try {
      session_.run(line);
    } catch (const std::runtime_error& error) {
      std::fflush(stdout);
      std::fprintf(stderr, "%s\n", error.what());
    }
    std::fflush(stdout);
  }
}

bool Switch::is_over() const {
  const auto is_at_end = [](const auto& port) { return port.second->is_over(); };
  return session_.ended() ||
         (!options_.listens && !ports_.empty() && std::all_of(ports_.begin(), ports_.end(), is_at_end));
}

void Switch::run(int signals) {
  pass_frames(signals);
  tell_losses();
}

void Switch::tell_losses() {
  for (const auto& [port, attachment] : ports_)
    if (const uint64_t lost = attachment->lost(); lost > 0)
      tell("port " + std::to_string(port) + ": " + std::to_string(lost) + (lost == 1 ? " frame was" : " frames were") +
           " lost, for they came faster than the switch took them");
}

void Switch::pass_frames(int signals) {
  constexpr int rest = 10;  // milliseconds: how far the chip's clock may lag
  follow_links();
  while (!is_over()) {
    // poll() ignores descriptors that are -1.
    std::vector<pollfd> polled{
        {signals, POLLIN, 0}, {commands_ ? STDIN_FILENO : -1, POLLIN, 0}, {link_news_.descriptor(), POLLIN, 0}};
    const std::size_t first_port = polled.size();
    bool waits = true;
    for (const auto& [port, attachment] : ports_) {
      polled.push_back({attachment->descriptor(), POLLIN, 0});
      waits = waits && !(attachment->has_frames() && is_on_);
    }
    for (const HostInterface& host : host_interfaces_)
      polled.push_back({host.attachment == nullptr ? -1 : host.attachment->descriptor(), POLLIN, 0});
    poll(polled.data(), polled.size(), waits ? rest : 0);

    advance_clock();
    if (polled[0].revents != 0) return;
    if (polled[2].revents != 0) {
      link_news_.forget();
      follow_links();
    }
    auto next = polled.begin() + static_cast<std::ptrdiff_t>(first_port);
    // Frames of files wait until another process has switched the chip on.
    for (const auto& [port, attachment] : ports_)
      if ((next++)->revents != 0 || (attachment->has_frames() && is_on_))
        attachment->receive([at = port](Bytes frame) { receive_at(at, frame); });
    for (const HostInterface& host : host_interfaces_)
      if ((next++)->revents != 0) host.attachment->receive([](Bytes frame) { receive_at(cpu_port, frame); });
    if (polled[1].revents != 0) run_commands();
    follow_chip();
  }
}

}  // namespace vswitch
