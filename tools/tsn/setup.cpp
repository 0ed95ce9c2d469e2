// tsn setup: the setup function of a file.

#include "tessarin/ide/Stages.hpp"

#include "Command.hpp"
#include "FileCommand.hpp"

#include <optional>
#include <sstream>
#include <string>

namespace tessarin::tool {

using compiler::core::SimpleSetupStmt;

namespace {

constexpr FileAnswer setupAnswer{
    .text =
        [](const Source& source, std::ostream& stream) {
          if (const auto stmt = ide::setupFunctionOf(ide::buildFile(source.buffer()))) out(stream, *stmt, 0);
        },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      const std::optional<SimpleSetupStmt> stmt = ide::setupFunctionOf(ide::buildFile(source.buffer()));
      if (!stmt) return [](JsonWriter& json) { json.key("none").raw("true"); };
      std::ostringstream stream;
      out(stream, *stmt, 0);
      return [text = std::move(stream).str()](JsonWriter& json) { json.key("text").string(text); };
    },
};

} // namespace

Action setup(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, setupAnswer, console); };
}

} // namespace tessarin::tool
