#include "switch.h"

#include <swsdk/chip.h>
#include <sys/epoll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <thread>
#include <utility>

#include "console.h"

namespace vswitch {

namespace {

constexpr int unit = 0;
constexpr int cpu_port = 0;
constexpr std::chrono::milliseconds rest(10);  // how far the chip's clock may lag

/// What becomes readable; from `sources` on, frames.
enum : uint64_t { end_signals, commands, link_news, sources };

bool gives_commands(int descriptor) {
  struct stat status {};
  return isatty(descriptor) != 0 || (fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode));
}

chip::Segments segments_of(const swsdk_out& out) {
  if (out.segments == nullptr) return {};
  return {.kind = static_cast<chip::Segments::Kind>(out.segments->kind),
          .payload = out.segments->payload,
          .headers = out.segments->headers,
          .checksum_start = out.segments->checksum_start,
          .checksum_at = out.segments->checksum_at};
}

}  // namespace

Switch::Switch(saish::Session& session, Options options)
    : session_(session),
      options_(std::move(options)),
      starts_(swsdk_starts(unit)),
      is_on_(starts_ > 0),
      commands_(gives_commands(STDIN_FILENO)) {
  session_.capture().pass_to([this](const swsdk_out& out) { transmit(out); });
  session_.capture().watch(unit);
  session_.more_tables["plug"] = [this] { return plugs(); };
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
  plugged_[port] = what;
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
    watched_ = Descriptor();  // until all are watched again
    sources_.clear();
    host.attachment.reset();
    host.attachment = attach_tap(wanted.name, wanted.mac);
  }
}

void Switch::transmit(const swsdk_out& out) {
  const std::lock_guard guard(attachments_lock_);
  const auto send_through = [this](Attachment& attachment, const Frame& frame) {
    attachment.send(frame);
    if (!collects_) attachment.flush();
  };
  if (out.port != cpu_port) {
    const auto port = ports_.find(out.port);
    if (port != ports_.end()) send_through(*port->second, {{out.data, out.length}, segments_of(out)});
    return;
  }
  for (const HostInterface& host : host_interfaces_) {
    if (host.attachment == nullptr) continue;
    std::vector<uint8_t> frame(out.data, out.data + out.length);
    if (host.wanted.keeps_tag == 0 && frame.size() >= tag_at + tag_size)
      frame.erase(frame.begin() + tag_at, frame.begin() + tag_at + tag_size);
    send_through(*host.attachment, {frame, {}});
  }
}

/// What leaves meanwhile is sent together.
void Switch::pass_on(int port, std::span<const Frame> frames) {
  // Aggregates are many frames at a time already.
  const bool is_whole =
      std::any_of(frames.begin(), frames.end(), [](const Frame& frame) { return frame.segments.is_aggregate(); });
  arrived_ += is_whole ? burst : frames.size();
  std::array<swsdk_segments, burst> segments;
  std::array<swsdk_in, burst> in;
  collect(true);
  for (; !frames.empty(); frames = frames.subspan(std::min(frames.size(), in.size()))) {
    const std::size_t count = std::min(frames.size(), in.size());
    for (std::size_t i = 0; i < count; ++i) {
      const auto& [bytes, how] = frames[i];
      segments[i] = {static_cast<int>(how.kind), how.payload, how.headers, how.checksum_start, how.checksum_at};
      in[i] = {port, bytes.data(), bytes.size(), how.is_aggregate() ? &segments[i] : nullptr};
    }
    swsdk_frames_send(unit, in.data(), static_cast<int>(count));
  }
  collect(false);
}

void Switch::collect(bool collects) {
  const std::lock_guard guard(attachments_lock_);
  collects_ = collects;
  if (collects_) return;
  for (const Source& source : sources_) source.attachment->flush();
}

/// Another process can have switched the chip off and on, or requested an interface.
void Switch::follow_chip() {
  followed_ = now_;
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
  if (watched_.get() < 0) watch_sources();
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
  {
    const std::lock_guard guard(attachments_lock_);
    for (const HostInterface& host : host_interfaces_)
      if (host.attachment != nullptr) host.attachment->plug_again();
  }
  watch_sources();
}

/// Anew, because an interface that was replaced has another descriptor.
void Switch::watch_sources() {
  sources_.clear();
  for (const auto& [port, attachment] : ports_) sources_.push_back({port, attachment.get()});
  for (const HostInterface& host : host_interfaces_)
    if (host.attachment != nullptr) sources_.push_back({cpu_port, host.attachment.get()});

  watched_ = Descriptor(epoll_create1(EPOLL_CLOEXEC));
  const auto watch = [this](int descriptor, uint64_t number) {
    epoll_event event{.events = EPOLLIN, .data = {.u64 = number}};
    if (descriptor >= 0) epoll_ctl(watched_.get(), EPOLL_CTL_ADD, descriptor, &event);
  };
  watch(signals_, end_signals);
  watch(commands_ ? STDIN_FILENO : -1, commands);
  watch(link_news_.descriptor(), link_news);
  for (std::size_t i = 0; i < sources_.size(); ++i) watch(sources_[i].attachment->descriptor(), sources + i);
}

void Switch::set_link(int port, bool up) {
  if (std::exchange(links_[port], up) != up) swsdk_link_event(unit, port, up ? 1 : 0);
}

void Switch::read_commands() {
  std::array<char, 4096> text;
  const ssize_t length = read(STDIN_FILENO, text.data(), text.size());
  if (length > 0) {
    typed_.append(text.data(), static_cast<std::size_t>(length));
  } else {
    commands_ = false;
    watch_sources();
  }
}

/// Runs commands, but not for so long that frames need wait. Each line is echoed first, as in scripts, so that piped
/// commands can be matched to their output.
void Switch::run_commands() {
  constexpr auto most = std::chrono::milliseconds(2);
  const auto begin = std::chrono::steady_clock::now();
  std::size_t done = 0;
  for (std::size_t end = 0; !session_.ended() && std::chrono::steady_clock::now() - begin < most &&
                            (end = typed_.find('\n', done)) != std::string::npos;
       done = end + 1) {
    const std::string line = typed_.substr(done, end - done);
    if (isatty(STDIN_FILENO) == 0) std::printf("%s\n", line.c_str());
    try {
      session_.run(line);
    } catch (const std::runtime_error& error) {
      std::fflush(stdout);
      std::fprintf(stderr, "%s\n", error.what());
    }
    std::fflush(stdout);
  }
  typed_.erase(0, done);
}

bool Switch::is_over() const {
  const auto is_at_end = [](const auto& port) { return port.second->is_over(); };
  return session_.ended() ||
         (!options_.listens && !ports_.empty() && std::all_of(ports_.begin(), ports_.end(), is_at_end));
}

void Switch::run(int signals) {
  signals_ = signals;
  follow_links();
  while (!is_over() && pass_frames()) continue;
  tell_losses();
}

void Switch::tell_losses() {
  const auto tell_loss = [](int port, uint64_t count, const char* why) {
    if (count > 0)
      tell("port " + std::to_string(port) + ": " + std::to_string(count) +
           (count == 1 ? " frame was" : " frames were") + " lost, for " + why);
  };
  for (const auto& [port, attachment] : ports_)
    tell_loss(port, attachment->lost(), "they came faster than the switch took them");
}

/// What each port is plugged into, with the frames that the host lost because they came faster than the switch took
/// them.
std::string Switch::plugs() const {
  const std::string heading = "plugged into";
  std::size_t width = heading.size();
  for (const auto& [port, what] : plugged_) width = std::max(width, what.size());
  const auto line = [&](const std::string& port, std::string what, const char* link, const std::string& lost) {
    what.resize(width, ' ');
    return std::string(4 - std::min<std::size_t>(port.size(), 4), ' ') + port + "  " + what + "  " + link + "  " +
           lost + '\n';
  };
  std::string result = line("port", heading, "link", "frames lost");
  for (const auto& [port, what] : plugged_) {
    Attachment& attachment = *ports_.at(port);
    result +=
        line(std::to_string(port), what, attachment.has_link() ? "up  " : "down", std::to_string(attachment.lost()));
  }
  return result;
}

/// One round. False when the program is to end.
bool Switch::pass_frames() {
  // Frames of files wait until another process has switched the chip on.
  const auto has_frames = [this](const Source& source) { return source.attachment->has_frames() && is_on_; };
  const bool waits = !has_command() && std::none_of(sources_.begin(), sources_.end(), has_frames);
  // Frames that come fast are taken many at a time: to be woken by each costs more than to forward it.
  constexpr std::size_t many = 4;
  if (waits && arrived_ >= many && arrived_ < burst) std::this_thread::sleep_for(std::chrono::microseconds(50));
  std::array<epoll_event, 64> events;
  const int count =
      epoll_wait(watched_.get(), events.data(), int{events.size()}, waits ? static_cast<int>(rest.count()) : 0);

  advance_clock();
  arrived_ = 0;
  const auto receive_from = [this](const Source& source) {
    source.attachment->receive([this, &source](std::span<const Frame> frames) { pass_on(source.port, frames); });
  };
  for (int i = 0; i < count; ++i) {
    switch (const uint64_t readable = events[static_cast<std::size_t>(i)].data.u64) {
      case end_signals:
        return false;
      case commands:
        if (!has_command()) read_commands();
        break;
      case link_news:
        link_news_.forget();
        follow_links();
        break;
      default:
        if (readable - sources < sources_.size()) receive_from(sources_[readable - sources]);
    }
  }
  for (const Source& source : sources_)
    if (has_frames(source)) receive_from(source);
  const bool has_commands = has_command();
  if (has_commands) run_commands();
  const auto due = arrived_ == 0 ? rest : 5 * rest;  // frames first: the answer to them may come any moment
  if (has_commands || now_ - followed_ >= due) follow_chip();
  return true;
}

}  // namespace vswitch
