// The parser: source text in, parse tree out, or one message.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/lex/MarkupListener.hpp"
#include "tessarin/parser/lex/Token.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace tessarin::compiler::core {

/// How deep the nodes of a parse tree may nest. The items of a list stand side by side however many there are, and a
/// chain of operators that group to the left (`a + b + …`, `a.b.…`) does not count either; a chain of `.der` does, for
/// it has the shape of nested calls. Text that nests deeper raises the message `DeepStatements`.
#if TESSARIN_NO_FIBERS
inline constexpr std::uint32_t maxNesting = 100; // walks have no stack but that of the thread
#else
inline constexpr std::uint32_t maxNesting = 50'000;
#endif

struct ParserState;

/// Parses one buffer, once. A parser may be used by one thread at a time; several parsers share nothing that changes.
class TESSARIN_EXPORT Parser {
public:
  /// Copies the text of the buffer; its file name is that in all locations.
  explicit Parser(const nvf::SourceBuffer& buffer);
  /// `name` is the file name in all locations.
  Parser(const nvf::AsciiString& text, nvf::FileName name);
  /// The source can then only be destroyed or assigned to; its other operations throw `std::logic_error`.
  /// @{
  Parser(Parser&&) noexcept;
  Parser& operator=(Parser&&) noexcept;
  /// @}

  ~Parser();

  /// Clones a listener, which is told of each comment, in place of the former one.
  void markupListener(const MarkupListener& listener);
  /// Sets the function that sees each token before the parser does, in place of the former one; an empty one sets none.
  /// The function may set another one in its place while it runs.
  void tokenListener(std::function<void(const Token&)> listener);

  /// The tree of the whole file, of kind `FileGoal`. The first fault ends the parse: a `nvf::LocationException` whose
  /// message is of the parse family, or what the lexer or a listener throws. Warnings go to `nvf::Warning::get()`.
  ///
  /// A further call does not read on: it gives the same tree, or throws the same fault, again.
  [[nodiscard]] ParseTree parse();

  /// The state for the other parts of the parser.
  [[nodiscard]] ParserState& impl();

private:
  std::unique_ptr<ParserState> state_;
};

} // namespace tessarin::compiler::core
