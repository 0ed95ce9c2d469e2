// Builds the syntax tree of any text, prints it, and builds and prints that again.
#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/packages/ModelFile.hpp"
#include "tessarin/packages/TSNFunctionFile.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "FuzzText.hpp"

#include <cstdlib>
#include <optional>
#include <variant>

namespace {

using namespace tessarin::compiler::core;

/// The printed form of a text; nothing where the text is faulty. Anything else that is thrown is a fault of the
/// library.
std::optional<nvf::ustring> printed(nvf::ustring_view text) {
  try {
    const ParseTree tree = Parser(nvf::SourceBuffer(nvf::FileName("fuzz.tsn"), text)).parse();
    return std::visit([](const auto& file) { return file.string(0, 2); },
                      ASTBuilder().buildTSNFile(tree, FileSource::open));
  } catch (const nvf::Exception&) {
    return std::nullopt;
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
