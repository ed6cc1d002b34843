#include <swsdk/remote.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "api/journal.h"
#include "api/remote_chip.h"
#include "api/system.h"
#include "remote/protocol.h"
#include "remote/session.h"
#include "remote/socket_path.h"

namespace remote {

namespace {

constexpr std::size_t max_clients = 256;

struct CannotListen {
  std::string reason;
};

/// Removes the socket of a process that is dead.
void make_room(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return;
  if (!S_ISSOCK(status.st_mode))
    throw CannotListen{api::quoted(path) + " exists and is no socket; choose another path"};
  const Descriptor probe(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  if (connect_to(probe.get(), path) || errno != ECONNREFUSED)
    throw CannotListen{"another process listens at " + api::quoted(path) +
                       "; choose another path, or work on its chip"};
  unlink(path.c_str());
}

Descriptor bound_socket(const std::string& path) {
  if (const std::string error = path_error(path); !error.empty()) throw CannotListen{error};
  make_room(path);
  const sockaddr_un address = address_of(path);
  Descriptor result(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  // The mode that the file gets, without a moment with another one.
  const bool bound = result.get() >= 0 && fchmod(result.get(), S_IRUSR | S_IWUSR) == 0 &&
                     bind(result.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
                     listen(result.get(), SOMAXCONN) == 0;
  if (!bound)
    throw CannotListen{"cannot listen at " + api::quoted(path) + ": " + std::strerror(errno) +
                       (errno == ENOENT ? "; create its folder first" : "")};
  return result;
}

/// What is printable of a name, without blanks.
std::string name_of(std::string_view given) {
  std::string result(given.substr(0, max_name));
  for (char& c : result)
    if (c <= ' ' || c > '~') c = '?';
  return result.empty() ? "?" : result;
}

/// Hands the other end of the second socket over together with the greeting.
bool greet(int socket, int descriptor) {
  std::string line = std::string(greeting) + '\n';
  iovec piece{line.data(), line.size()};
  alignas(cmsghdr) char control[CMSG_SPACE(sizeof descriptor)] = {};
  msghdr message{};
  message.msg_iov = &piece;
  message.msg_iovlen = 1;
  message.msg_control = control;
  message.msg_controllen = sizeof control;
  cmsghdr* const header = CMSG_FIRSTHDR(&message);
  header->cmsg_level = SOL_SOCKET;
  header->cmsg_type = SCM_RIGHTS;
  header->cmsg_len = CMSG_LEN(sizeof descriptor);
  std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
  return sendmsg(socket, &message, MSG_NOSIGNAL) == static_cast<ssize_t>(line.size());
}

/// How long the chip waits for what is read next; 0: for ever.
void wait_for(int socket, int seconds) {
  const timeval limit{.tv_sec = seconds, .tv_usec = 0};
  setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
}

/// Greets who connected and answers until it goes away. Takes `calls` when it admits a client.
void serve(LineStream& calls, const std::function<bool(std::shared_ptr<Session>)>& admit) {
  constexpr int patience = 10;  // seconds: one that says nothing must not keep others out
  wait_for(calls.socket(), patience);
  ucred peer{};
  socklen_t length = sizeof peer;
  const bool known = getsockopt(calls.socket(), SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0;
  const auto refuse = [&](const std::string& why) { calls.write(std::string(refused) + why + '\n'); };
  if (!known || peer.uid != geteuid())
    return refuse("this chip belongs to user " + std::to_string(geteuid()) + ", and only that user may work on it");
  const std::optional<std::string_view> line = calls.read();
  if (!line) return;
  if (!line->starts_with(std::string(greeting) + ' ')) {
    calls.write(std::string(greeting) + '\n');  // the client says what that means for it
    return;
  }
  const std::string name = name_of(line->substr(greeting.size() + 1));
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) return refuse(std::strerror(errno));
  LineStream events(Descriptor(ends[0]), 0);
  if (const Descriptor of_client(ends[1]); !greet(calls.socket(), of_client.get())) return;
  wait_for(calls.socket(), 0);
  const auto session = std::make_shared<Session>(name, peer.pid, std::move(calls), std::move(events));
  if (admit(session)) session->run();
}

/// Accepts clients, each in a thread of its own.
class Server {
 public:
  explicit Server(const std::string& path) : path_(path), socket_(bound_socket(path)) {
    lstat(path_.c_str(), &file_);
    api::keep_board();
    acceptor_ = std::thread([this] { accept_clients(); });
  }

  ~Server() {
    shutdown(socket_.get(), SHUT_RDWR);  // wakes accept
    acceptor_.join();
    std::unique_lock guard(lock_);
    ending_ = true;
    for (const std::shared_ptr<Session>& session : sessions_) session->end();
    for (const int connection : greeted_) shutdown(connection, SHUT_RDWR);
    changed_.wait(guard, [this] { return threads_ == 0; });
    struct stat now {};
    if (lstat(path_.c_str(), &now) == 0 && now.st_ino == file_.st_ino && now.st_dev == file_.st_dev)
      unlink(path_.c_str());
  }

 private:
  void accept_clients() {
    while (true) {
      Descriptor connection(accept4(socket_.get(), nullptr, nullptr, SOCK_CLOEXEC));
      if (connection.get() < 0) {
        if (errno == EINTR || errno == ECONNABORTED) continue;
        if (errno != EMFILE && errno != ENFILE && errno != ENOMEM && errno != ENOBUFS) return;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));  // until another client goes away
        continue;
      }
      const std::lock_guard guard(lock_);
      if (threads_ == max_clients) {
        std::string full(refused);
        full.append("the chip has ").append(std::to_string(max_clients)).append(" clients\n");
        send(connection.get(), full.data(), full.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        continue;
      }
      const int number = connection.get();
      try {
        greeted_.push_back(number);
        ++threads_;
        std::thread(&Server::serve_one, this, std::move(connection)).detach();
      } catch (const std::system_error&) {  // no room for a thread: it is as if the client had not been accepted
        std::erase(greeted_, number);
        --threads_;
      }
    }
  }

  void serve_one(Descriptor connection) {
    const int number = connection.get();
    std::shared_ptr<Session> session;
    const auto admit = [&](std::shared_ptr<Session> greeted) {
      const std::lock_guard guard(lock_);
      std::erase(greeted_, number);
      if (!ending_) sessions_.push_back(greeted);
      session = std::move(greeted);
      return !ending_;
    };
    {
      LineStream calls(std::move(connection), max_request);
      serve(calls, admit);
      // Before the number can be another connection's.
      const std::lock_guard guard(lock_);
      std::erase(greeted_, number);
      std::erase(sessions_, session);
    }
    session.reset();
    const std::lock_guard guard(lock_);
    --threads_;
    changed_.notify_all();
  }

  const std::string path_;
  const Descriptor socket_;
  struct stat file_ {};  // of the socket, which another process may have replaced
  std::mutex lock_;
  std::condition_variable changed_;
  std::size_t threads_ = 0;   // guarded by `lock_`, as all below
  std::vector<int> greeted_;  // connections that are no sessions yet
  std::vector<std::shared_ptr<Session>> sessions_;
  bool ending_ = false;
  std::thread acceptor_;
};

std::mutex server_lock;
std::unique_ptr<Server>& server() {
  static auto& instance = *new std::unique_ptr<Server>;  // never destroyed: clients can be there when the process exits
  return instance;
}

}  // namespace

bool is_listening() {
  const std::lock_guard guard(server_lock);
  return server() != nullptr;
}

}  // namespace remote

int swsdk_listen(const char* path, char* reason) {
  const std::lock_guard guard(remote::server_lock);
  const auto fail = [&](const std::string& why) {
    api::copy_out(why, reason, SWSDK_REASON_SIZE);
    return -1;
  };
  if (remote::server() != nullptr) return fail("this process listens already");
  if (api::remote_chip() != nullptr) return fail("this process works on the chip of another one, which has to listen");
  try {
    remote::server() = std::make_unique<remote::Server>(path == nullptr ? "" : path);
  } catch (const remote::CannotListen& error) {
    return fail(error.reason);
  }
  return 0;
}

void swsdk_listen_end() {
  const std::lock_guard guard(remote::server_lock);
  remote::server().reset();
}
