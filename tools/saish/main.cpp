// saish: the library's functions as commands, on the virtual chip.
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <string>

#include "editor.h"
#include "session.h"
#include "style.h"

namespace {

constexpr int unexpected_result = 1;  // or one that could not be written
constexpr int bad_start = 2;

/// Tells what is wrong on standard error, after what was printed before.
void tell(const std::exception& error) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", error.what());
}

void run_interactively(saish::Session& session) {
  saish::Editor editor;
  std::printf("The chip is up. help lists the commands, TAB completes them, quit ends.\n");
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

/// Runs what the command line asks for.
int run(int argc, char** argv) {
  CLI::App app{"Runs the functions of libsai.so as commands, on the virtual chip."};
  std::string script;
  std::string command;
  bool cold = false;
  app.add_option("FILE", script, "script to run; - is standard input; without one, type commands");
  app.add_option("-c,--command", command, "one command to run in place of a script")->excludes("FILE");
  app.add_flag("--cold", cold, "leave the chip off: sdk_main and system_init are still to come");
  app.set_version_flag("--version", "saish " SAI_VERSION);

  try {
    app.parse(argc, argv);
    saish::Session session(cold);
    if (app.count("--command") > 0)
      session.run_well(command);
    else if (app.count("FILE") > 0)
      session.run_script(script);
    else if (isatty(STDIN_FILENO) != 0)
      run_interactively(session);
    else
      session.run_script("-");
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
