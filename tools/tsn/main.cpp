// tsn: the language front end of Tessarin on the command line.

#include "tessarin/foundation/terminate.hpp"

#include "Command.hpp"
#include "Printable.hpp"
#include "Suggestion.hpp"

#include <CLI/CLI.hpp>

#include <exception>
#include <new>
#include <sstream>
#include <string>
#include <vector>

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
  2  the command line is wrong, a file cannot be read or written, or there is not enough memory)";

/// What the command line says that does not exist, with what may be meant; empty where it is another error.
std::string unknownName(const CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  const CLI::App& part = chosen.empty() ? app : *chosen.front();
  const std::vector<std::string> unknown = part.remaining(true);
  if (unknown.empty()) return {};
  const std::string name = unknown.front().substr(0, unknown.front().find('='));

  std::vector<std::string> names;
  const bool isOption = name.starts_with('-');
  if (isOption) {
    for (const CLI::Option* option : part.get_options()) {
      for (const std::string& longName : option->get_lnames()) names.push_back("--" + longName);
    }
  } else if (chosen.empty()) {
    for (const CommandRow& row : commands) names.emplace_back(row.name);
  } else {
    return {}; // one argument too many
  }
  const std::optional<std::string> meant = suggestionFor(name, names);
  return std::string("there is no ") + (isOption ? "option '" : "command '") + escaped(name) + "'" +
         (meant ? "; did you mean '" + *meant + "'?" : "");
}

/// Answers to --help and --version, or says what is wrong with the command line.
Status answer(const CLI::App& app, const CLI::ParseError& error, Console& console) {
  std::ostringstream answer;
  std::ostringstream fault;
  if (app.exit(error, answer, fault) == 0) {
    console.out() << answer.str();
    return Status::Success;
  }
  const std::string unknown = unknownName(app);
  if (unknown.empty() && app.get_subcommands().empty()) {
    console.report("tsn: a command is missing\n\n" + app.help());
  } else {
    const std::string part = app.get_subcommands().empty() ? "" : " " + app.get_subcommands().front()->get_name();
    console.report("tsn: " + (unknown.empty() ? escaped(std::string(error.what())) : unknown) + "\nRun 'tsn" + part +
                   " --help' for more information.\n");
  }
  return Status::Usage;
}

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
    return answer(app, e, console);
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
  } catch (const std::bad_alloc&) {
    console.dropDocument();
    console.report("tsn: there is not enough memory\n");
    return static_cast<int>(Status::Usage);
  } catch (const std::exception& e) {
    console.dropDocument();
    console.report("tsn: " + std::string(e.what()) + "\n");
    return static_cast<int>(Status::Usage);
  }
}
