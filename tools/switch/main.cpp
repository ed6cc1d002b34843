// swsdk-switch: the virtual chip between interfaces of the host.
#include <signal.h>
#include <swsdk/remote.h>
#include <sys/signalfd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "board.h"
#include "capturing.h"
#include "console.h"
#include "descriptor.h"
#include "session.h"
#include "switch.h"
#include "tables.h"

namespace {

constexpr int failed = 1;
constexpr int bad_start = 2;

/// Becomes readable when the program is to end. Threads start later and inherit the blocked signals.
int end_signals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  return signalfd(-1, &signals, SFD_CLOEXEC);
}

int tell(const std::exception& error, int code) {
  vswitch::tell(error.what());
  return code;
}

/// Does what the program is to do and returns the exit code; errors are reported.
int code_of(const std::function<int()>& work) {
  try {
    return work();
  } catch (const saish::Unexpected& error) {
    return tell(error, failed);
  } catch (const std::runtime_error& error) {
    return tell(error, bad_start);
  }
}

void plug(vswitch::Switch& chip, const std::string& given) {
  const std::size_t equals = given.find('=');
  const std::optional<int> port = saish::number<int>(given.substr(0, equals));
  if (equals == std::string::npos || !port)
    throw vswitch::CannotStart('"' + given + "\" is not N=IFACE, N=tap:NAME or N=pcap:IN:OUT");
  chip.plug(*port, given.substr(equals + 1));
}

/// Serves other processes during its own lifetime, if it is asked to.
class Listening {
 public:
  Listening(bool listens, const std::string& path) : listens_(listens) {
    char reason[SWSDK_REASON_SIZE];
    if (listens_ && swsdk_listen(path.c_str(), reason) != 0) throw vswitch::CannotStart(reason);
  }
  ~Listening() {
    if (listens_) swsdk_listen_end();
  }
  Listening(const Listening&) = delete;
  Listening& operator=(const Listening&) = delete;

 private:
  const bool listens_;
};

int run(int argc, char** argv) {
  CLI::App app{
      "Runs the virtual chip as a switch between interfaces of the host. While it runs, it takes the shell's commands "
      "from standard input."};
  std::string config;
  std::string cpu;
  std::string board;
  std::string listen;
  std::vector<std::string> ports;
  std::vector<std::string> shown;
  app.add_option("CONFIG", config, "script of the shell that sets the chip up");
  app.add_option("--cpu", cpu, "name of the CPU's network interface, in place of the one that the script asks for");
  app.add_option("--port", ports, "N=IFACE, N=tap:NAME or N=pcap:IN:OUT: what port N is plugged into")
      ->allow_extra_args(false);
  app.add_option("--board", board, saish::board_help);
  app.add_option("--listen", listen,
                 "path of a socket where other programs find the chip, with " SWSDK_CHIP_VARIABLE
                 " in their environment; without CONFIG, one of them brings the chip up");
  app.add_option("--tables", shown, "run a script silently and print all tables that it leaves; again for more")
      ->allow_extra_args(false)
      ->excludes("CONFIG")
      ->excludes("--cpu")
      ->excludes("--listen")
      ->excludes("--port");
  std::string capture;
  bool traces = false;
  CLI::Option* const captures =
      app.add_option("--capture", capture, "pcapng file to write the frames that pass to, with what is decided on each")
          ->excludes("--tables");
  app.add_flag("--trace", traces, "capture the whole way of each frame: stages, entries and the calls that made those")
      ->needs(captures);
  app.set_version_flag("--version", "swsdk-switch " SAI_VERSION);

  try {
    app.parse(argc, argv);
    if (app.count("CONFIG") + app.count("--tables") + app.count("--listen") == 0)
      throw CLI::RequiredError("CONFIG or --listen");
  } catch (const CLI::Success& help_or_version) {
    return app.exit(help_or_version);
  } catch (const CLI::ParseError& error) {
    return tell(std::runtime_error(std::string(error.what()) + "; --help tells what can be given"), bad_start);
  }
  const auto choose_board = [&] {
    if (app.count("--board") > 0) saish::set_board(board);
  };
  if (app.count("--tables") > 0)
    return code_of([&] {
      choose_board();
      saish::print_tables_after(shown);
      return 0;
    });

  swsdk_connect(nullptr, nullptr);  // the chip of this program is its own, whatever the environment says
  signal(SIGPIPE, SIG_IGN);         // a reader that goes away does not end the program
  const vswitch::Descriptor signals(end_signals());
  vswitch::Console console;
  const int code = code_of([&] {
    choose_board();
    saish::Session session(config.empty() ? saish::Power::cold : saish::Power::on);
    if (!config.empty()) session.run_script(config);
    std::optional<vswitch::Capturing> capturing;
    if (app.count("--capture") > 0) capturing.emplace(capture, traces ? SWSDK_WATCH_WAYS : SWSDK_WATCH_ENDS);
    // One that only serves other programs takes nothing of the host.
    const bool listens = app.count("--listen") > 0;
    const bool has_host = !listens || !ports.empty() || !cpu.empty();
    vswitch::Switch chip(session, {.cpu = cpu, .has_host = has_host, .listens = listens});
    for (const std::string& port : ports) plug(chip, port);
    const Listening listening(listens, listen);
    std::puts(config.empty() ? "The switch is listening; its chip is off." : "The switch is up.");
    std::fflush(stdout);
    chip.run(signals.get());
    if (capturing) capturing->finish();
    return chip.had_trouble() || (capturing && capturing->had_trouble()) ? failed : 0;
  });
  return console.finish(signals.get()) || code != 0 ? code : failed;
}

}  // namespace

int main(int argc, char** argv) { return run(argc, argv); }
