#include <appl/diag/shell.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <sstream>
#include <string>
#include <vector>

#include "api/call.h"

using chip::Chip;
using chip::Status;

namespace {

using Words = std::vector<std::string>;

cmd_result_t help(Chip& chip, const Words& words);

cmd_result_t to_result(Status status) { return status == Status::ok ? CMD_OK : CMD_FAIL; }

/// Of a regular file and only so much, as the unit is locked and whoever names the file may not wish it well.
bool read_file(const std::string& path, std::istringstream& content) {
  constexpr std::size_t most = std::size_t{1} << 20;
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return false;
  struct stat status {};
  std::string text;
  bool good = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
  std::array<char, 4096> piece;
  for (ssize_t length = 1; good && length > 0;) {
    length = read(file, piece.data(), piece.size());
    if (length > 0) text.append(piece.data(), static_cast<std::size_t>(length));
    good = length >= 0 && text.size() <= most;
  }
  close(file);
  content.str(text);
  return good;
}

cmd_result_t led(Chip& chip, const Words& words) {
  if (words.size() < 3) return CMD_USAGE;
  int number = -1;
  const char* const end = words[1].data() + words[1].size();
  if (std::from_chars(words[1].data(), end, number).ptr != end || !chip.led_processors.has(number)) return CMD_USAGE;

  const Words rest(words.begin() + 2, words.end());
  if (rest.size() == 2 && rest[0] == "load") {
    std::istringstream program;
    return read_file(api::path_of_caller(rest[1]), program) ? to_result(chip.led_processors.load(number, program))
                                                            : CMD_FAIL;
  }
  if (rest == Words{"auto", "on"} || rest == Words{"auto", "off"}) {
    chip.led_processors.set_automatic(number, rest[1] == "on");
    return CMD_OK;
  }
  if (rest == Words{"start"}) return to_result(chip.led_processors.start(number));
  if (rest == Words{"stop"}) {
    chip.led_processors.stop(number);
    return CMD_OK;
  }
  return CMD_USAGE;
}

struct Command {
  const char* name;
  const char* usage;
  cmd_result_t (*run)(Chip& chip, const Words& words);
};

constexpr Command commands[] = {
    {"help", "help", help},
    {"led", "led N load FILE | auto on|off | start | stop", led},
};

cmd_result_t help(Chip& /*chip*/, const Words& /*words*/) {
  for (const Command& command : commands) api::print_for_caller(std::string(command.usage) + '\n');
  return CMD_OK;
}

cmd_result_t process(Chip& chip, const char* line) {
  std::istringstream stream(line);
  Words words;
  for (std::string word; stream >> word;) words.push_back(word);
  if (words.empty()) return CMD_OK;

  for (const Command& command : commands) {
    if (words[0] != command.name) continue;
    const cmd_result_t result = command.run(chip, words);
    if (result == CMD_USAGE) api::print_for_caller("Usage: " + std::string(command.usage) + '\n');
    return result;
  }
  api::print_for_caller(words[0] + ": no such command; help lists them\n");
  return CMD_NFND;
}

}  // namespace

cmd_result_t sh_process_command(int unit, char* c) {
  const int result = api::Call(calls::sh_process_command(unit, c)).answer([&](Chip& chip) {
    return c == nullptr ? static_cast<int>(CMD_USAGE) : static_cast<int>(process(chip, c));
  });
  return static_cast<cmd_result_t>(result);
}
