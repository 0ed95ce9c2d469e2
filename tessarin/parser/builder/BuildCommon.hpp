// What the parts of the builder share.
#pragma once

#include "tessarin/foundation/message.hpp"
#include "tessarin/foundation/terminate.hpp"
#include "tessarin/parser/ast/FromTree.hpp"

#include <cstddef>

namespace tessarin::compiler::core {

/// Raises the message `Msg` of the ast family at a place; these messages do not show the column.
template <class Msg, class... Arguments>
[[noreturn]] void raiseAt(const nvf::Location& location, const Arguments&... arguments) {
  throw nvf::LocatedError<Msg>(location, false, arguments...);
}

/// The place of the first token below; a default one where a tree that no text gives has none.
inline nvf::Location placeOf(const ParseTree& tree) {
  const Token* first = tree.left();
  return first == nullptr ? nvf::Location() : first->location();
}

/// Reports a tree that the grammar does not yield.
[[noreturn]] inline void fatal(const char* text, int line, const char* signature) {
  nvf::terminate(text, "parser/ast/ASTBuilder", line, signature);
}

inline constexpr const char* notRecognized = "Parse tree node not recognized.";

/// The child at `i`. Where there is none, the tree is one that the grammar does not yield.
inline const ParseTree& childOf(const ParseTree& tree, std::size_t i) {
  if (i >= tree.count())
    fatal(notRecognized, 118,
          "const tessarin::compiler::core::ParseTree& childOf(const "
          "tessarin::compiler::core::ParseTree&, size_t)");
  return tree.child(i);
}

} // namespace tessarin::compiler::core
