// How a text divides into statements and blocks, read off the scanner's tokens.
//
// This is no grammar: it knows which words open a block, which one closes it, and where the scanner ends a statement.
// It holds for any text, faulty or not, and takes linear time. Offsets count UTF-16 code units, lines and columns count
// from 0.
#pragma once

#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/lex/Kind.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tessarin::ide {

/// A token that the parser sees, but for those that end statements.
struct CodeToken {
  std::size_t begin = 0;
  std::size_t end = 0;
  compiler::core::Kind kind = compiler::core::Kind::EMPTY;
};

/// What a token does to the nest of blocks.
enum class WordRole : std::uint8_t { None, Opens, Divides, Closes };

/// A stretch between two ends of statements: a statement of one line or, with brackets and continuations, of several,
/// or the head of a block, or its `end`.
struct Statement {
  std::size_t firstToken = 0; ///< in `Statements::tokens`
  std::size_t lastToken = 0;  ///< behind the last; there is one at least
  std::size_t end = 0;        ///< behind the last token and the `;` or `,` that ends the statement
  std::size_t line = 0;       ///< of its first token
  std::size_t lastLine = 0;   ///< of its end
  std::size_t column = 0;     ///< of its first token
  bool startsLine = false;    ///< whether nothing but blanks stands before it
  bool isOpen = false;        ///< whether a bracket in it is never closed
  std::size_t shadow = 0;     ///< of an open one: where the tokens that its bracket may have eaten end
  bool hasRole = false;       ///< whether one of its tokens opens, divides or closes a block
};

/// A text divided.
class Statements {
public:
  /// Divides the text, which must live as long as the object.
  explicit Statements(nvf::ustring_view text);

  [[nodiscard]] nvf::ustring_view text() const noexcept { return text_; }
  [[nodiscard]] const std::vector<Statement>& all() const noexcept { return statements_; }
  [[nodiscard]] const std::vector<CodeToken>& tokens() const noexcept { return tokens_; }
  [[nodiscard]] std::span<const CodeToken> tokensOf(const Statement& statement) const noexcept;
  /// What the `i`-th token does.
  [[nodiscard]] WordRole role(std::size_t i) const noexcept;
  [[nodiscard]] nvf::ustring_view textOf(const CodeToken& token) const noexcept {
    return text_.substr(token.begin, token.end - token.begin);
  }

  /// The offset of a place; the end of its line where the line is shorter, the end of the text behind the last line.
  [[nodiscard]] std::size_t offsetOf(std::size_t line, std::size_t column) const noexcept;
  /// The line that an offset is in.
  [[nodiscard]] std::size_t lineOf(std::size_t offset) const noexcept;
  [[nodiscard]] std::size_t columnOf(std::size_t offset) const noexcept { return offset - lines_[lineOf(offset)]; }
  [[nodiscard]] std::size_t lineBegin(std::size_t line) const noexcept { return lines_[line]; }
  [[nodiscard]] std::size_t lineCount() const noexcept { return lines_.size(); }
  /// Where the line ends, its line end left out.
  [[nodiscard]] std::size_t lineEnd(std::size_t line) const noexcept;

  /// The statement that an offset is in, or that it ends; else the first one behind it on its line, else nothing.
  [[nodiscard]] std::optional<std::size_t> statementAt(std::size_t offset) const noexcept;
  /// The end of the token at the offset, or the offset where there is none.
  [[nodiscard]] std::size_t tokenEnd(std::size_t offset) const noexcept;

  /// Where a block comment opens that is never closed.
  [[nodiscard]] std::optional<std::size_t> openComment() const noexcept { return openComment_; }

private:
  void findLines();
  void scan();
  void findRoles();

  nvf::ustring_view text_;
  std::vector<std::size_t> lines_; // where each begins
  std::vector<CodeToken> tokens_;
  std::vector<WordRole> roles_;
  std::vector<Statement> statements_;
  std::optional<std::size_t> openComment_;
};

} // namespace tessarin::ide
