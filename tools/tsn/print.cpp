// tsn print: a file as the library writes it.

#include "tessarin/ide/Stages.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"

#include "Command.hpp"
#include "FileCommand.hpp"

#include <variant>

namespace tessarin::tool {

namespace {

nvf::ustring printed(const Source& source) {
  return std::visit([](const auto& file) { return file.string(0, 2); }, ide::buildFile(source.buffer()));
}

constexpr FileAnswer printAnswer{
    .text = [](const Source& source, std::ostream& out) { out << nvf::encode_utf8(printed(source)); },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      return [text = printed(source)](JsonWriter& json) { json.key("text").string(text); };
    },
};

} // namespace

Action print(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, printAnswer, console); };
}

} // namespace tessarin::tool
