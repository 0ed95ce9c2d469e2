// tsn ast: the syntax tree of a file.

#include "tessarin/ide/Stages.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"

#include "Command.hpp"
#include "Dump.hpp"
#include "FileCommand.hpp"

#include <variant>

namespace tessarin::tool {

namespace core = compiler::core;

namespace {

/// The parts of a file: its imports, its model or function, its local functions in order of name.
void dumpFile(nvf::DumpSink& sink, const core::TSNFile& file) {
  struct Main {
    nvf::DumpSink& sink;
    void operator()(const core::ModelFile& model) const { dump(sink, model.model()); }
    void operator()(const core::TSNFunctionFile& function) const { dump(sink, function.tsnFunction()); }
  };
  std::visit(
      [&sink](const auto& kind) {
        sink.beginList(kind.importStmts().size());
        for (const core::ImportStmt& import : kind.importStmts()) dump(sink, import);
        sink.endList();
        Main{sink}(kind);
        sink.beginList(kind.localTSNFunctions().size());
        for (const core::TSNFunction* function : inOrderOfName(kind.localTSNFunctions())) dump(sink, *function);
        sink.endList();
      },
      file);
}

constexpr FileAnswer astAnswer{
    .text =
        [](const Source& source, std::ostream& out) {
          ListingSink sink(out);
          dumpFile(sink, ide::buildFile(source.buffer()));
          sink.finish();
        },
    .json = [](const Source& source) -> std::function<void(JsonWriter&)> {
      return [file = ide::buildFile(source.buffer())](JsonWriter& json) {
        json.key("ast").beginArray();
        JsonSink sink(json);
        dumpFile(sink, file);
        json.endArray();
      };
    },
};

} // namespace

Action ast(CLI::App& app) {
  const auto options = addFileOptions(app);
  return [options](Console& console) { return answer(*options, astAnswer, console); };
}

} // namespace tessarin::tool
