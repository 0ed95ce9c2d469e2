// Builds the syntax tree of any text, prints it, and builds and prints that again. A setup function is converted and
// printed too.
#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/parse/Parser.hpp"
#include "tessarin/parser/setup/SetupConversion.hpp"

#include "FuzzText.hpp"

#include <boost/lexical_cast/bad_lexical_cast.hpp>

#include <cstdlib>
#include <optional>
#include <sstream>
#include <variant>

namespace {

using namespace tessarin::compiler::core;

/// Every name is that of a diagnostic function.
std::optional<SetupDiagnosticFunction> findDiagnostic(const nvf::CxId&) {
  return [](const std::vector<ustring>& arguments, const nvf::Range& range) -> SetupDiagnostic {
    return SimpleSetupErrorStmt(nvf::MessageId(), arguments.empty() ? ustring() : arguments.back(), range);
  };
}

/// What a setup function cannot hold is a fault of the text.
void printSetupFunction(const TSNFile& file) {
  const auto* modelFile = std::get_if<ModelFile>(&file);
  if (modelFile == nullptr) return;
  try {
    std::ostringstream stream;
    out(stream, to_simple_setup_stmt(modelFile->model().setupFunctionParseTree(), findDiagnostic), 0);
  } catch (const nvf::MessageException& e) {
    if (e.stack().size() != 1) std::abort(); // each has its place
  }
}

/// The printed form of a text; nothing where the text is faulty. Anything else that is thrown is a fault of the
/// library.
std::optional<nvf::ustring> printed(nvf::ustring_view text) {
  try {
    const ParseTree tree = Parser(nvf::SourceBuffer(nvf::FileName("fuzz.tsn"), text)).parse();
    const TSNFile file = ASTBuilder().buildTSNFile(tree, FileSource::open);
    printSetupFunction(file);
    return std::visit([](const auto& alternative) { return alternative.string(0, 2); }, file);
  } catch (const nvf::Exception&) {
    return std::nullopt;
  } catch (const boost::bad_lexical_cast&) {
    return std::nullopt; // a reserved form that wants an index, with another number
  }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string text = tessarin::fuzz::textOf(data, size);
  const nvf::ScopedWarningSink silent([](const nvf::Message&) {});
  nvf::set_terminate_handler(nvf::throw_fatal_error);
  const auto first = printed(text);
  if (!first) return 0;
  // A few forms do not read back, which is intended; what reads back prints the same.
  const auto second = printed(*first);
  if (second && *second != *first) std::abort();
  return 0;
}
