#include "tessarin/ide/Stages.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/parse/Parser.hpp"
#include "tessarin/parser/setup/SetupConversion.hpp"

#include <variant>
#include <vector>

namespace tessarin::ide {

using namespace compiler::core;

TSNFile buildFile(const nvf::SourceBuffer& source) {
  return buildFile(source, nullptr);
}

TSNFile buildFile(const nvf::SourceBuffer& source, const nvf::WarningSink& silent) {
  ASTBuilder builder(nvf::DefaultValueTokensToValue{});
  if (silent) {
    builder.unreadTokenListener([&silent](const Token& token) {
      using kelvane::tessarin::compiler::core::check::NameReadAsTime;
      const nvf::Location& place = token.location();
      silent(nvf::Message(NameReadAsTime(nvf::file_line_column_message(place), token.text().view()), place));
    });
  }
  return builder.buildTSNFile(Parser(source).parse(), FileSource::open);
}

namespace {

[[noreturn]] void refuseArguments() {
  namespace messages = kelvane::tessarin::compiler::core::setup;
  throw nvf::MessageException(nvf::Message(messages::SimpleSetupInvalidDiagnosticArgument()));
}

template <class Stmt>
SetupDiagnostic makeDiagnostic(const std::vector<nvf::ustring>& arguments, const nvf::Range& range) {
  if (arguments.size() == 1) return Stmt(nvf::MessageId(), arguments[0], range);
  if (arguments.size() != 2) refuseArguments();
  const std::optional<nvf::MessageId> id = nvf::MessageId::make(arguments[0]);
  if (!id) refuseArguments();
  return Stmt(*id, arguments[1], range);
}

std::optional<SetupDiagnosticFunction> findDiagnostic(const nvf::CxId& name) {
  if (name.view() == u"error") return makeDiagnostic<SimpleSetupErrorStmt>;
  if (name.view() == u"warning") return makeDiagnostic<SimpleSetupWarningStmt>;
  return std::nullopt;
}

} // namespace

std::optional<SimpleSetupStmt> setupFunctionOf(const TSNFile& file) {
  const auto* modelFile = std::get_if<ModelFile>(&file);
  if (modelFile == nullptr) return std::nullopt;
  return to_simple_setup_stmt(modelFile->model().setupFunctionParseTree(), findDiagnostic);
}

} // namespace tessarin::ide
