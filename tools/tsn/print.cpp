// tsn print: a file as the library writes it.

#include "tessarin/ide/Stages.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"

#include "Command.hpp"
#include "FileCommand.hpp"

#include <variant>

namespace tessarin::tool {

namespace {

constexpr FileAnswer printAnswer{
    .text =
        [](const Source& source, std::ostream& out) {
          std::visit([&out](const auto& file) { out << file; }, ide::buildFile(source.buffer()));
        },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      return [text = std::visit([](const auto& file) { return file.string(0, 2); }, ide::buildFile(source.buffer()))](
                 JsonWriter& json) { json.key("text").string(text); };
    },
};

} // namespace

Action print(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, printAnswer, console); };
}

} // namespace tessarin::tool
