#include "remote/server.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace remote {

namespace {

pid_t started(const std::vector<std::string>& command, const std::vector<std::string>& environment, int output) {
  std::vector<char*> argv;
  for (const std::string& word : command) argv.push_back(const_cast<char*>(word.c_str()));
  argv.push_back(nullptr);
  std::vector<char*> variables;
  for (const std::string& set : environment) variables.push_back(const_cast<char*>(set.c_str()));
  for (char** set = environ; *set != nullptr; ++set) variables.push_back(*set);
  variables.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
  pid_t process = -1;
  if (posix_spawn(&process, argv[0], &actions, nullptr, argv.data(), variables.data()) != 0)
    throw std::runtime_error("cannot run " + command[0]);
  posix_spawn_file_actions_destroy(&actions);
  return process;
}

}  // namespace

Folder::Folder() {
  std::string name = "/tmp/remote-" + std::string(6, 'X');
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make a folder");
  path_ = name;
}

Folder::~Folder() { std::filesystem::remove_all(path_); }

Output run(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const pid_t process = started(command, environment, ends[1]);
  close(ends[1]);
  Output result{};
  std::array<char, 4096> piece;
  for (ssize_t length = 0; (length = read(ends[0], piece.data(), piece.size())) > 0;)
    result.text.append(piece.data(), static_cast<std::size_t>(length));
  close(ends[0]);
  waitpid(process, &result.status, 0);
  return result;
}

Server::Server(std::string path, const std::vector<std::string>& options) : path_(std::move(path)) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  std::vector<std::string> command{CHIP_SERVER, "--listen", path_};
  command.insert(command.end(), options.begin(), options.end());
  process_ = started(command, {}, ends[1]);
  close(ends[1]);
  std::string said;
  std::array<char, 256> piece;
  const auto listens = [&] { return said.find("The switch is listening") != std::string::npos; };
  for (ssize_t length = 0; !listens() && (length = read(ends[0], piece.data(), piece.size())) > 0;)
    said.append(piece.data(), static_cast<std::size_t>(length));
  close(ends[0]);
  if (!listens()) throw std::runtime_error("no server: " + said);
}

void Server::stop() { stop(SIGTERM); }

void Server::stop(int signal) {
  if (process_ <= 0) return;
  kill(process_, signal);
  waitpid(process_, nullptr, 0);
  process_ = -1;
}

long Server::status(const std::string& name) const {
  std::ifstream file("/proc/" + std::to_string(process_) + "/status");
  for (std::string line; std::getline(file, line);)
    if (line.starts_with(name + ":")) return std::atol(line.substr(name.size() + 1).c_str());
  return -1;
}

int Server::descriptors() const {
  const std::filesystem::directory_iterator all("/proc/" + std::to_string(process_) + "/fd");
  return static_cast<int>(std::distance(begin(all), end(all)));
}

}  // namespace remote
