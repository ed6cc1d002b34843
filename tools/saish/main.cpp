// saish: the library's functions as commands, on the virtual chip.
#include <soc/drv.h>
#include <swsdk/chip.h>
#include <swsdk/recording.h>
#include <swsdk/remote.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "board.h"
#include "editor.h"
#include "redact.h"
#include "report.h"
#include "session.h"
#include "style.h"
#include "tables.h"

namespace {

constexpr int unexpected_result = 1;  // or output that could not be written
constexpr int bad_start = 2;
constexpr int cut_recording = 3;

/// Reports an error on standard error, after flushing standard output.
void tell(const std::exception& error) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", error.what());
}

void run_interactively(saish::Session& session) {
  saish::Editor editor;
  std::printf("The chip is %s. help lists the commands, TAB completes them, quit ends.\n",
              soc_ndev > 0 ? "up" : "off: sai_switch_chip_init switches it on");
  while (!session.ended()) {
    const std::optional<std::string> line = editor.read_line();
    if (!line) break;
    try {
      session.run(*line);
    } catch (const std::exception& error) {
      tell(error);
    }
  }
}

void print_line(const char* line, void* /*data*/) { std::printf("%s\n", line); }

void tell_line(const char* line, void* /*data*/) { tell(saish::BadInput(line)); }

/// The exit status for one of the SWSDK_REPLAY_ values.
int status_of(int replay_result) {
  swsdk_power_off();
  switch (replay_result) {
    case SWSDK_REPLAY_SAME:
      return 0;
    case SWSDK_REPLAY_DIFFERENT:
      return unexpected_result;
    case SWSDK_REPLAY_INCOMPLETE:
      return cut_recording;
    default:
      return bad_start;
  }
}

/// Types commands, or reads them from what standard input is otherwise.
void run_standard_input(saish::Session& session) {
  if (isatty(STDIN_FILENO) == 0)
    session.run_script("-");
  else
    run_interactively(session);
}

uint64_t nanoseconds_of(double seconds) { return static_cast<uint64_t>(seconds * 1e9); }

/// Repeats a recording up to a time, and runs commands on the chip as it was then.
int travel(const std::string& recording, double seconds) {
  swsdk_replayed replayed{};
  const int result = swsdk_replay_all(
      recording.c_str(), nanoseconds_of(seconds), [](const swsdk_difference*, void*) {}, tell_line, nullptr, &replayed);
  if (result == SWSDK_REPLAY_UNREADABLE) return status_of(result);
  if (result == SWSDK_REPLAY_DIFFERENT)
    std::fprintf(stderr, "%ld of %ld answers and events differ from the recorded ones; --report shows them\n",
                 replayed.answers - replayed.the_same, replayed.answers);
  saish::Session session(saish::Power::left);
  run_standard_input(session);
  return status_of(result == SWSDK_REPLAY_DIFFERENT ? SWSDK_REPLAY_SAME : result);
}

/// Writes a recording without what is before a time.
int cut_recording_from(const std::string& recording, double seconds, const std::string& path) {
  std::FILE* const file = std::fopen(path.c_str(), "we");
  if (file == nullptr) throw saish::BadInput("cannot write the recording \"" + path + '"');
  const auto write = [](const char* line, void* to) { std::fprintf(static_cast<std::FILE*>(to), "%s\n", line); };
  const int result = swsdk_recording_cut(recording.c_str(), nanoseconds_of(seconds), (path + ".state").c_str(), write,
                                         tell_line, file);
  const bool is_written = std::ferror(file) == 0;
  if (std::fclose(file) != 0 || !is_written) throw saish::BadInput("cannot write the recording \"" + path + '"');
  return status_of(result);
}

/// Does what the command line requests.
int run(int argc, char** argv) {
  CLI::App app{"Runs the functions of libsai.so as commands, on the virtual chip."};
  std::string script;
  std::string command;
  std::string recording;
  std::string replayed;
  std::string program;
  std::string redacted;
  std::string known;
  bool reports = false;
  double until = 0;
  double from = 0;
  std::string cut;
  std::string intended;
  std::string board;
  std::string chip;
  std::vector<std::string> shown;
  bool cold = false;
  app.add_option("FILE", script, "script to run; - is standard input; without one, type commands");
  app.add_option("-c,--command", command, "one command to run in place of a script")->excludes("FILE");
  app.add_flag("--cold", cold, "leave the chip off: sdk_main and system_init are still to come");
  app.add_option("--record", recording, "write every SDK call into this file");
  app.add_option("--diff", intended, "at the end compare the chip's tables with those that this script would leave");
  app.add_option("--board", board, saish::board_help);
  app.add_option("--chip", chip, "work on the chip of the program that listens at this socket, and leave it as it is")
      ->excludes("--board")
      ->excludes("--cold");
  CLI::Option* const tables =
      app.add_option("--tables", shown, "run a script silently and print all tables that it leaves; again for more")
          ->allow_extra_args(false);
  CLI::Option* const repeat =
      app.add_option("--replay", replayed, "repeat a recording; stop at the first answer that differs");
  app.add_flag("--report", reports, "with --replay: go on to the end, and print all differences as a table")
      ->needs(repeat);
  app.add_option("--until", until, "with --replay: stop after so many seconds, with a shell on the chip as it was then")
      ->needs(repeat)
      ->excludes("--report")
      ->check(CLI::Range(0.0, 1e9));
  CLI::Option* const from_option = app.add_option("--from", from, "with --replay and --cut: from how many seconds on")
                                       ->needs(repeat)
                                       ->excludes("--report")
                                       ->excludes("--until")
                                       ->check(CLI::Range(0.0, 1e9));
  from_option->needs(
      app.add_option("--cut", cut,
                     "with --from: write what is later as a recording of its own, and FILE.state beside it")
          ->needs(from_option));
  app.add_option("--known", known, "with --report: a file with differences that are meant")->needs("--report");
  CLI::Option* const as_c =
      app.add_option("--replay-as-c", program, "print a C program that makes the calls of a recording");
  CLI::Option* const redact =
      app.add_option("--redact", redacted, "print a recording with other addresses and texts, to pass it on");
  for (CLI::Option* const option : {tables, repeat, as_c, redact})
    for (const char* other : {"FILE", "--command", "--cold", "--record", "--diff", "--chip"}) option->excludes(other);
  for (CLI::Option* const option : {repeat, as_c, redact}) option->excludes("--board")->excludes(tables);
  repeat->excludes(as_c)->excludes(redact);
  as_c->excludes(redact);
  app.set_version_flag("--version", "saish " SAI_VERSION);

  try {
    app.parse(argc, argv);
    // Where the environment names a chip, it is for the shell itself what --chip names; these have a chip of their own.
    const char* const from_environment = std::getenv(SWSDK_CHIP_VARIABLE);
    if (app.count("--replay") + app.count("--replay-as-c") + app.count("--tables") > 0)
      swsdk_connect(nullptr, nullptr);
    else if (app.count("--chip") == 0 && from_environment != nullptr)
      chip = from_environment;
    if (app.count("--redact") > 0) {
      saish::redact(redacted);
      return 0;
    }
    if (reports) return status_of(saish::report(replayed, known));
    if (app.count("--cut") > 0) return cut_recording_from(replayed, from, cut);
    if (app.count("--until") > 0) return travel(replayed, until);
    if (app.count("--replay") > 0) return status_of(swsdk_replay(replayed.c_str(), tell_line, nullptr));
    if (app.count("--replay-as-c") > 0)
      return status_of(swsdk_replay_as_c(program.c_str(), print_line, tell_line, nullptr));
    char reason[SWSDK_REASON_SIZE];
    const bool is_elsewhere = app.count("--chip") > 0 || !chip.empty();
    if (is_elsewhere && swsdk_connect(chip.c_str(), reason) != 0) throw saish::BadInput(reason);
    const bool recorded = app.count("--record") > 0;
    const std::string unwritable = "cannot write the recording \"" + recording + '"';
    if (recorded && swsdk_record_start(recording.c_str()) != 0) throw saish::BadInput(unwritable);
    if (app.count("--board") > 0) saish::set_board(board);
    if (app.count("--tables") > 0) {
      saish::print_tables_after(shown);
      return 0;
    }
    saish::Session session(is_elsewhere ? saish::Power::left : cold ? saish::Power::cold : saish::Power::on);
    if (app.count("--command") > 0)
      session.run_well(command);
    else if (app.count("FILE") > 0)
      session.run_script(script);
    else if (isatty(STDIN_FILENO) == 0 || app.count("--diff") == 0)
      run_standard_input(session);
    if (app.count("--diff") > 0) saish::compare_with(intended);
    if (recorded && swsdk_record_stop() != 0) throw saish::Unexpected(unwritable);
    return 0;
  } catch (const CLI::Success& help_or_version) {
    return app.exit(help_or_version);
  } catch (const CLI::ParseError& error) {
    tell(saish::BadInput(std::string(error.what()) + "; --help tells what can be given"));
    return bad_start;
  } catch (const saish::BadInput& error) {
    tell(error);
    return bad_start;
  } catch (const saish::Unexpected& error) {
    tell(error);
    return unexpected_result;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const int code = run(argc, argv);
  std::fflush(stdout);
  if (std::ferror(stdout) == 0) return code;
  std::fprintf(stderr, "cannot write to standard output\n");
  return code == 0 ? unexpected_result : code;
}
