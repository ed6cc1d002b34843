#include <pthread.h>
#include <signal.h>
#include <swsdk/recording.h>
#include <swsdk/remote.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <thread>
#include <vector>

#include "api/call.h"
#include "api/event_threads.h"
#include "api/events.h"
#include "api/given.h"
#include "api/system.h"
#include "remote/line_stream.h"
#include "remote/protocol.h"
#include "remote/socket_path.h"

namespace remote {

namespace {

using api::EventThreads;
using api::RemoteCallback;
using api::Unreadable;
using Texts = std::vector<std::string_view>;

struct CannotConnect {
  std::string reason;
};

/// A connection that has been greeted.
struct Connection {
  LineStream calls;
  LineStream events;
  api::UnitData units;  // what the chip's process exports
};

/// Reads up to the first line's end, and the descriptor that comes with that.
std::string read_greeting(int socket, Descriptor& events) {
  constexpr std::size_t longest = 256;
  std::string line;
  while (line.size() < longest) {
    char byte = 0;
    iovec piece{&byte, 1};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))];
    msghdr message{};
    message.msg_iov = &piece;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = sizeof control;
    const ssize_t length = recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    if (length < 0 && errno == EINTR) continue;
    if (length <= 0) break;
    const cmsghdr* const header = CMSG_FIRSTHDR(&message);
    if (header != nullptr && header->cmsg_type == SCM_RIGHTS && header->cmsg_len == CMSG_LEN(sizeof(int))) {
      int number = -1;
      std::memcpy(&number, CMSG_DATA(header), sizeof number);
      events = Descriptor(number);
    }
    if (byte == '\n') break;
    line += byte;
  }
  return line;
}

Connection connected(const std::string& path) {
  if (const std::string error = path_error(path); !error.empty()) throw CannotConnect{error};
  Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (!connect_to(socket.get(), path))
    throw CannotConnect{"no chip listens at " + api::quoted(path) + ": " + std::strerror(errno) +
                        "; swsdk-switch --listen " + path + " starts one"};
  const std::string hello = std::string(greeting) + ' ' + program_invocation_short_name + '\n';
  [[maybe_unused]] const ssize_t sent = send(socket.get(), hello.data(), hello.size(), MSG_NOSIGNAL);
  Descriptor events;
  const std::string answer = read_greeting(socket.get(), events);
  if (answer.starts_with(refused)) throw CannotConnect{api::quoted(path) + ": " + answer.substr(refused.size())};
  if (answer.starts_with(greeting_of_any_version) && answer != greeting)
    throw CannotConnect{"the chip at " + api::quoted(path) + " speaks version " +
                        answer.substr(greeting_of_any_version.size()) + " and this library version " +
                        std::string(greeting.substr(greeting_of_any_version.size())) +
                        "; use the swsdk-switch and the libswsdk.so of one build"};
  if (answer != greeting || events.get() < 0)
    throw CannotConnect{"what listens at " + api::quoted(path) + " is no chip"};
  Connection result{LineStream(std::move(socket), max_answer), LineStream(std::move(events), max_answer), {}};
  try {
    const auto units = result.calls.read();
    result.units = api::unit_data_of(units.value_or(""));
  } catch (const Unreadable& error) {
    throw CannotConnect{"what listens at " + api::quoted(path) + " is no chip: " + error.what()};
  }
  return result;
}

Texts arguments_of(std::string_view line, std::size_t count) {
  Texts result = api::items(line.substr(std::min(line.find('('), line.size())), '(', ')');
  if (result.size() != count) throw Unreadable(line.substr(0, 64), "event");
  return result;
}

/// The chip at a path. Not destroyed at exit: calls can occur at any time. A child of fork() leaves it to its parent.
class Client : public api::RemoteChip {
 public:
  /// @param of_parent  that of the process that has forked this one
  explicit Client(std::string path, Client* of_parent = nullptr) : path_(std::move(path)), of_parent_(of_parent) {}

  const std::string& path() const { return path_; }

  /// Throws CannotConnect.
  void connect();
  /// After that: exports the units of the chip, and takes events.
  void begin();
  void connect_or_tell();
  void disconnect();
  /// In the child of a fork(): the connection is its parent's.
  void close_descriptors() const;

  std::optional<api::Answer> call(const char* function, api::Arguments arguments,
                                  const api::TakeEntry& take_entry = {}) override;
  void end_walk(const char* function, api::Arguments arguments, int rv) override;
  void look_again() override;
  void drain() override;
  void power_off() override;
  bool add_callback(const RemoteCallback& callback) override;
  void remove_callback(const RemoteCallback& callback) override;
  void keep_alone(const RemoteCallback& callback) override;

 private:
  enum class State { unconnected, connected, gone };

  bool is_connected();
  std::optional<api::Answer> read_answer(api::Arguments arguments, const api::TakeEntry& take_entry,
                                         std::vector<std::string>& frames);
  void tell_gone(const std::string& what);
  bool is_known(const RemoteCallback& callback);
  void read_events();
  void take_event(std::string_view line);
  void deliver_frame(std::string_view line);
  int disconnections();
  void wait_for_event(long long number, int disconnections);

  const std::string path_;
  [[maybe_unused]] Client* const of_parent_;  // kept, so that it is not taken for a leak
  std::mutex start_lock_;                     // of looking for a chip again
  std::mutex lock_;                           // of the conversation
  State state_ = State::unconnected;
  std::unique_ptr<Connection> connection_;
  std::thread reader_;  // of events
  /// What a thread does before a call comes before what the call causes, in the callbacks of this process, too: the
  /// other process between the two orders nothing here.
  std::atomic<uint64_t> calls_ = 0;

  std::mutex events_lock_;
  std::condition_variable events_changed_;
  int disconnections_ = 0;
  long long events_taken_ = 0;  // guarded by `events_lock_`, as all below
  bool events_ended_ = false;
  std::vector<RemoteCallback> callbacks_;
};

void Client::connect() {
  connection_ = std::make_unique<Connection>(connected(path_));
  state_ = State::connected;
}

void Client::begin() {
  api::publish(connection_->units, true);
  // Signals are for the threads of the application, which may not have begun to block them yet.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) sigdelset(&all, fault);
  pthread_sigmask(SIG_BLOCK, &all, &before);
  reader_ = std::thread([this] { read_events(); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void Client::disconnect() {
  {
    const std::lock_guard guard(lock_);
    if (connection_ != nullptr) connection_->events.shut_down();
  }
  if (reader_.joinable()) reader_.join();
  const std::lock_guard guard(lock_);
  connection_.reset();
  state_ = State::unconnected;
  const std::lock_guard events(events_lock_);
  ++disconnections_;
  events_taken_ = 0;
  events_ended_ = false;
  callbacks_.clear();
  events_changed_.notify_all();
}

void Client::close_descriptors() const {
  if (connection_ == nullptr) return;
  close(connection_->calls.socket());
  close(connection_->events.socket());
}

void Client::tell_gone(const std::string& what) {
  std::fprintf(stderr, "swsdk: the chip at \"%s\" is gone: %s; calls fail until sdk_main finds a chip there\n",
               path_.c_str(), what.c_str());
  state_ = State::gone;
  if (connection_ == nullptr) return;
  connection_->calls.shut_down();
  connection_->events.shut_down();
}

void Client::connect_or_tell() {
  try {
    connect();
    begin();
  } catch (const CannotConnect& error) {
    state_ = State::gone;
    std::fprintf(stderr, "swsdk: %s\n", error.reason.c_str());
  }
}

/// The conversation is locked.
bool Client::is_connected() {
  if (state_ == State::unconnected) connect_or_tell();
  return state_ == State::connected;
}

std::optional<api::Answer> Client::call(const char* function, api::Arguments arguments,
                                        const api::TakeEntry& take_entry) {
  const std::string request = call_text(function, arguments, api::Form::wire, BCM_E_INTERNAL) + '\n';
  std::optional<api::Answer> answer;
  std::vector<std::string> frames;
  if (request.size() > max_request) {
    std::fprintf(stderr, "swsdk: a call of %s with %zu bytes of text is too long for a chip in another process\n",
                 function, request.size());
    return std::nullopt;
  }
  {
    const std::lock_guard guard(lock_);
    if (!is_connected()) return std::nullopt;
    calls_.fetch_add(1, std::memory_order_release);
    if (connection_->calls.write(request))
      answer = read_answer(arguments, take_entry, frames);
    else
      tell_gone("it has closed the connection");
  }
  for (const std::string& frame : frames) deliver_frame(frame);
  return answer;
}

/// Nothing when the chip is gone, or what it says is no answer to this call.
std::optional<api::Answer> Client::read_answer(api::Arguments arguments, const api::TakeEntry& take_entry,
                                               std::vector<std::string>& frames) {
  api::Answer answer{};
  const std::string frame_begin = std::string(api::frame_event) + '(';
  const std::string print_begin = std::string(api::print_event) + '(';
  try {
    while (const std::optional<std::string_view> read = connection_->calls.read()) {
      std::string_view line = *read;
      if (line.starts_with(units_event)) {
        api::publish(api::unit_data_of(line));
      } else if (line.starts_with(entry_mark) && take_entry) {
        take_entry(line.substr(entry_mark.size()));
      } else if (line.starts_with(frame_begin)) {
        frames.emplace_back(line);
      } else if (line.starts_with(print_begin)) {
        const std::string text = api::parsed_quoted(arguments_of(line, 1)[0]);
        std::fwrite(text.data(), 1, text.size(), stdout);
      } else if (line.starts_with(error_mark)) {
        std::fprintf(stderr, "swsdk: the chip does not understand a call: %.*s\n", static_cast<int>(line.size()),
                     line.data());
        answer.result = BCM_E_INTERNAL;
        return answer;
      } else if (line.starts_with(result_mark)) {
        line.remove_prefix(result_mark.size());
        api::parse_value(line.substr(0, line.find(' ')), answer.result);
        if (line.find(' ') == std::string_view::npos) return answer;
        line.remove_prefix(line.find(' ') + 1);
        const std::size_t blank = std::min(line.find(' '), line.size());
        answer.kind = api::kind_of(line.substr(0, blank));
        if (!answer.kind) throw Unreadable(line.substr(0, 64), "kind of call");
        api::accept_outputs(arguments, line.substr(std::min(blank + 1, line.size())));
        return answer;
      } else {
        throw Unreadable(line.substr(0, 64), "answer");
      }
    }
    tell_gone("it has closed the connection");
  } catch (const Unreadable& error) {
    tell_gone(error.what());
  }
  return std::nullopt;
}

void Client::end_walk(const char* function, api::Arguments arguments, int rv) {
  const std::string line =
      call_text(function, arguments, api::Form::wire, BCM_E_INTERNAL) + " = " + std::to_string(rv) + '\n';
  const std::lock_guard guard(lock_);
  if (is_connected() && !connection_->calls.write(line)) tell_gone("it has closed the connection");
}

void Client::look_again() {
  const std::lock_guard start(start_lock_);
  {
    const std::lock_guard guard(lock_);
    if (state_ != State::gone) return;
  }
  disconnect();
}

int Client::disconnections() {
  const std::lock_guard guard(events_lock_);
  return disconnections_;
}

/// Of the connection that there was before so many ended.
void Client::wait_for_event(long long number, int disconnections) {
  std::unique_lock guard(events_lock_);
  events_changed_.wait(guard,
                       [&] { return events_ended_ || events_taken_ >= number || disconnections_ != disconnections; });
}

void Client::drain() {
  if (EventThreads::runs_here()) return;
  // Until nothing has come since the last time: callbacks can cause more.
  for (long long before = -1;;) {
    const int ended = disconnections();
    const std::optional<api::Answer> told = call("swsdk_events_drain", {});
    if (told) wait_for_event(told->result, ended);
    EventThreads::all().drain();
    if (!told || told->result == before) return;
    before = told->result;
  }
}

void Client::power_off() {
  const std::lock_guard start(start_lock_);
  const int ended = disconnections();
  const std::optional<api::Answer> told = call("swsdk_power_off", {});
  if (told) wait_for_event(told->result, ended);
  {
    const std::lock_guard guard(events_lock_);
    callbacks_.clear();
  }
  EventThreads::all().stop();
  api::clear_exported_units(!told);
}

bool Client::add_callback(const RemoteCallback& callback) {
  const std::lock_guard guard(events_lock_);
  const bool is_new =
      callback.function != nullptr && std::find(callbacks_.begin(), callbacks_.end(), callback) == callbacks_.end();
  if (is_new) callbacks_.push_back(callback);
  return is_new;
}

void Client::keep_alone(const RemoteCallback& callback) {
  const std::lock_guard guard(events_lock_);
  std::erase_if(callbacks_, [&](const RemoteCallback& one) {
    return std::string_view(one.event) == callback.event && one.unit == callback.unit && !(one == callback);
  });
}

void Client::remove_callback(const RemoteCallback& callback) {
  const std::lock_guard guard(events_lock_);
  std::erase(callbacks_, callback);
}

/// Whether it is registered still: what the chip's process says must not make this one call anything else.
bool Client::is_known(const RemoteCallback& callback) {
  const std::lock_guard guard(events_lock_);
  return std::find(callbacks_.begin(), callbacks_.end(), callback) != callbacks_.end();
}

void Client::read_events() {
  try {
    while (const std::optional<std::string_view> line = connection_->events.read()) take_event(*line);
  } catch (const Unreadable& error) {
    std::fprintf(stderr, "swsdk: an event of the chip cannot be read, and no more are: %s\n", error.what());
  }
  const std::lock_guard guard(events_lock_);
  events_ended_ = true;
  events_changed_.notify_all();
}

template <class T>
T value_of(std::string_view text) {
  T value{};
  api::parse_value(text, value);
  return value;
}

void* pointer_of(std::string_view text, const char* kind) {
  return reinterpret_cast<void*>(api::parsed_pointer(text, kind));  // NOLINT(performance-no-int-to-ptr): it was one
}

void Client::take_event(std::string_view line) {
  calls_.load(std::memory_order_acquire);
  const std::string_view name = line.substr(0, line.find('('));
  long long count = 1;
  if (line.starts_with(units_event)) {
    api::publish(api::unit_data_of(line));
  } else if (name == api::link_event) {
    const Texts given = arguments_of(line, 4);
    const RemoteCallback callback{api::link_event, value_of<int>(given[0]), pointer_of(given[3], "callback"), nullptr};
    const auto port = value_of<int>(given[1]);
    const bool up = value_of<int>(given[2]) != 0;
    EventThreads::all().post(EventThreads::link_scan, [=, this] {
      if (is_known(callback))
        api::deliver_link(reinterpret_cast<bcm_linkscan_handler_t>(const_cast<void*>(callback.function)), callback.unit,
                          port, up);
    });
  } else if (name == api::l2_event) {
    const Texts given = arguments_of(line, 5);
    const RemoteCallback callback{api::l2_event, value_of<int>(given[0]), pointer_of(given[3], "callback"),
                                  pointer_of(given[4], "pointer")};
    const auto address = value_of<bcm_l2_addr_t>(given[1]);
    const auto operation = value_of<int>(given[2]);
    EventThreads::all().post(EventThreads::l2_learning, [=, this] {
      if (is_known(callback))
        api::deliver_address(reinterpret_cast<bcm_l2_addr_callback_t>(const_cast<void*>(callback.function)),
                             callback.unit, address, operation, const_cast<void*>(callback.user_data));
    });
  } else if (name == api::frame_event) {
    EventThreads::all().post(EventThreads::frames, [this, frame = std::string(line)] { deliver_frame(frame); });
  } else if (name == lost_event) {
    count = value_of<long long>(arguments_of(line, 1)[0]);
    std::fprintf(stderr, "swsdk: %lld events of the chip are lost: this process was too slow to take them\n", count);
  } else {
    throw Unreadable(line.substr(0, 64), "event");
  }
  const std::lock_guard guard(events_lock_);
  events_taken_ += count;
  events_changed_.notify_all();
}

void Client::deliver_frame(std::string_view line) {
  try {
    const Texts given = arguments_of(line, 7);
    const RemoteCallback callback{api::frame_event, value_of<int>(given[0]), pointer_of(given[5], "callback"),
                                  pointer_of(given[6], "pointer")};
    const std::vector<uint8_t> bytes = api::parsed_bytes(given[4]);
    const swsdk_out out{.port = value_of<int>(given[1]),
                        .in_port = value_of<int>(given[2]),
                        .cpu = value_of<uint32_t>(given[3]),
                        .data = bytes.data(),
                        .length = bytes.size(),
                        .segments = nullptr};
    if (is_known(callback))
      reinterpret_cast<swsdk_frame_handler>(const_cast<void*>(callback.function))(
          callback.unit, &out, const_cast<void*>(callback.user_data));
  } catch (const Unreadable& error) {
    std::fprintf(stderr, "swsdk: a frame from the chip cannot be read: %s\n", error.what());
  }
}

// ------------------------------------------------------------------------------------------- of this process ----

std::atomic<Client*> present = nullptr;

void use(Client* client) {
  static const bool forks_known = [] {
    // A child is a client of its own, from its first call on.
    pthread_atfork(nullptr, nullptr, [] {
      Client* const of_parent = present;
      if (of_parent == nullptr) return;
      of_parent->close_descriptors();
      present = new Client(of_parent->path(), of_parent);
      api::set_remote_chip(present);
    });
    return true;
  }();
  (void)forks_known;
  present = client;
  api::set_remote_chip(client);
}

/// Ends what this process has used until now, if it has; nothing may call it any more.
void end(Client* before) {
  if (before == nullptr) return;
  before->disconnect();
  EventThreads::all().stop();
  delete before;
}

__attribute__((constructor)) void connect_at_load() {
  const char* const path = std::getenv(SWSDK_CHIP_VARIABLE);
  if (path == nullptr || *path == '\0') return;
  auto* const client = new Client(path);
  use(client);
  const char* const recording = std::getenv(SWSDK_RECORD_VARIABLE);
  if (recording != nullptr && *recording != '\0')
    std::fprintf(stderr,
                 "swsdk: %s will hold the calls of this process alone; what others do to the chip at \"%s\" is not in "
                 "it\n",
                 recording, path);
  try {
    client->connect();
    client->begin();
  } catch (const CannotConnect&) {
    // The first call says so: a program that makes none need not hear of it.
  }
}

}  // namespace

}  // namespace remote

int swsdk_connect(const char* path, char* reason) {
  const auto fail = [&](const std::string& why) {
    api::copy_out(why, reason, SWSDK_REASON_SIZE);
    return -1;
  };
  remote::Client* const before = remote::present;
  if (remote::is_listening()) return fail("this process has the chip, on which others work");
  if (before == nullptr && api::published_units() > 0)
    return fail("the chip inside this process is up; swsdk_power_off switches it off");
  if (path == nullptr) {
    remote::use(nullptr);
    remote::end(before);
    api::UnitData none;
    none.board = api::present_board();
    api::publish(none, true);
    api::clear_exported_units();
    return 0;
  }
  auto client = std::make_unique<remote::Client>(path);
  try {
    client->connect();
  } catch (const remote::CannotConnect& error) {
    return fail(error.reason);
  }
  remote::end(before);
  client->begin();
  remote::use(client.release());
  return 0;
}
