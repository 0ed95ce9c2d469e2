// Parses any text.
#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include "FuzzText.hpp"

#include <cstdlib>

namespace {

using namespace tessarin::compiler::core;

/// What must hold for the tree of any text.
void check(const ParseTree& tree) {
  ParseTree stripped = tree;
  strip_annotation_inplace(stripped);
  const bool isSound = tree.isNonTerminalType(NonTerminal::FileGoal) && stripped.equal(tree) &&
                       compare(tree, tree) == Ordering::Equal && hash_value(tree) == hash_value(ParseTree(tree)) &&
                       tree.roll().equal(tree);
  if (!isSound) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::u16string text = tessarin::fuzz::textOf(data, size);
  const nvf::ScopedWarningSink silent([](const nvf::Message&) {});
  nvf::set_terminate_handler(nvf::throw_fatal_error);
  try {
    check(Parser(nvf::SourceBuffer(nvf::FileName("fuzz.tsn"), nvf::ustring_view(text))).parse());
  } catch (const nvf::Exception&) {
    // The text is faulty. Anything else that is thrown is a fault of the parser.
  }
  return 0;
}
