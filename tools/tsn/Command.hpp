// What a command of tsn is. A new one takes a row in commands.def and a file that defines its function.
#pragma once

#include "Console.hpp"
#include "Status.hpp"

#include <CLI/App.hpp>

#include <functional>

namespace tessarin::tool {

/// Does the work of a command once the command line has been read.
using Action = std::function<Status(Console&)>;

/// Adds the options of the command to `app`, its own part of the command line, and returns what it is to do.
#define TSN_COMMAND(name, description, example) Action name(CLI::App& app);
#include "commands.def"

} // namespace tessarin::tool
