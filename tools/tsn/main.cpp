// tsn: the language front end of Tessarin on the command line.

#include "tessarin/foundation/terminate.hpp"

#include "Command.hpp"

#include <CLI/CLI.hpp>

#include <exception>
#include <string>

namespace tessarin::tool {

namespace {

struct CommandRow {
  const char* name;
  const char* description;
  const char* example;
  Action (*setUp)(CLI::App&);
};

constexpr CommandRow commands[] = {
#define TSN_COMMAND(name, description, example) {#name, description, example, name},
#include "commands.def"
};

constexpr const char* epilogue =
    R"(Answers go to standard output, what is wrong with the input to standard error, except that what 'check' finds and every
document of --json is the answer. 'tsn COMMAND --help' tells about a command, and the manual page tsn(1) about all.

Exit status:
  0  the input is in order; warnings do not count
  1  the input has a fault
  2  the command line is wrong, or a file cannot be read or written)";

Status run(int argc, char** argv, Console& console) {
  CLI::App app("Looks at Tessarin sources: tokens, trees, what they declare and use, what is wrong with them.", "tsn");
  app.get_formatter()->label("SUBCOMMAND", "COMMAND");
  app.get_formatter()->label("REQUIRED", ""); // the usage line shows it
  app.get_formatter()->label("Excludes", "not with");
  app.set_version_flag("--version", "tsn " TESSARIN_VERSION, "print the version and exit");
  app.set_help_flag("-h,--help", "print this help and exit");
  app.require_subcommand(1);
  app.footer(epilogue);

  Action action;
  for (const CommandRow& row : commands) {
    CLI::App* part = app.add_subcommand(row.name, row.description)->group("Commands");
    part->footer(std::string("Example:\n  ") + row.example);
    part->callback([&action, todo = row.setUp(*part)] { action = todo; });
  }

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    // Help and version are "errors" with the exit code 0.
    return app.exit(e) == 0 ? Status::Success : Status::Usage;
  }
  return action(console);
}

} // namespace

} // namespace tessarin::tool

int main(int argc, char** argv) {
  using namespace tessarin::tool;
  nvf::set_terminate_handler(nvf::throw_fatal_error);
  Console console;
  try {
    return static_cast<int>(console.finish(run(argc, argv, console)));
  } catch (const std::exception& e) {
    console.report("tsn: " + std::string(e.what()) + "\n");
    return static_cast<int>(Status::Usage);
  }
}
