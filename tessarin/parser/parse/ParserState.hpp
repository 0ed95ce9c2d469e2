// What the driver, the actions and the messages of a parse share.
#pragma once

#include "tessarin/foundation/message.hpp"
#include "tessarin/parser/lex/Lexer.hpp"
#include "tessarin/parser/parse/FlatTree.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <exception>
#include <functional>
#include <memory>
#include <optional>

namespace tessarin::compiler::core {

struct ParserState {
  explicit ParserState(const nvf::SourceBuffer& buffer) : lexer(buffer) {}

  FlatTree trees;
  NodeRef result;                 ///< the tree of the file, once a rule has completed it
  std::optional<ParseTree> whole; ///< what the parse has ended with, or
  std::exception_ptr fault;       ///< what it has failed with
  Lexer lexer;
  Token current;                                      ///< the last token handed to the parser
  nvf::BasicTableString<char16_t> lastClosedFunction; ///< the function that `end` closed last
  int functionDepth = 0;                              ///< open functions of the statement language
  bool inEquations = false;                           ///< from the header of an equations block to its end
  std::shared_ptr<const std::function<void(const Token&)>> tokenListener; ///< null where there is none

  /// Hands the next token to the parser.
  const Token& nextToken() {
    const Token token = lexer.next();
    // A copy, for a listener may set another one while it runs.
    if (const auto listener = tokenListener) (*listener)(token);
    return current = token;
  }

  /// Where a message about a tree is placed: at its first token, or, where it has none, at the current one.
  [[nodiscard]] const nvf::Location& place(NodeRef tree) const noexcept {
    const Token* first = trees.left(tree);
    return (first != nullptr ? *first : current).location();
  }
};

/// Raises the message `Msg` of the parse family at a place; these messages show the column.
template <class Msg, class... Arguments>
[[noreturn]] void raise(const nvf::Location& location, const Arguments&... arguments) {
  throw nvf::LocatedError<Msg>(location, true, arguments...);
}

} // namespace tessarin::compiler::core
