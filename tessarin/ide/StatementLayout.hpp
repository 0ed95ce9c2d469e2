// How the tokens of a run of lines are put on lines. Private to this stage.
#pragma once

#include "tessarin/ide/BlockStack.hpp"
#include "tessarin/ide/LineWriter.hpp"
#include "tessarin/ide/Lossless.hpp"
#include "tessarin/ide/Spacing.hpp"

#include <cstddef>
#include <limits>
#include <span>
#include <vector>

namespace tessarin::ide {

/// No index.
inline constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

/// A part of a run of lines, which goes on to the end of a statement's last line.
struct Element {
  /// What it is.
  enum class Type : unsigned char {
    Token,
    Comment,      ///< up to the end of its line
    Row,          ///< a line end inside an array
    Continuation, ///< dots up to the end of a line; `piece` is their comment, or `none`
    Block         ///< a line of a block comment
  };
  Type type = Type::Token;
  bool isApart = false;     ///< something stands between it and what is before it
  bool isElement = false;   ///< a blank before it stands for a comma
  std::size_t piece = none; ///< its index
};

/// Writes runs of lines in order.
class StatementLayout {
public:
  /// `step` is the indentation of a level; the others outlive this.
  StatementLayout(const Lossless& lossless, std::size_t width, std::size_t step, LineWriter& out)
      : lossless_(lossless), pieces_(lossless.pieces()), width_(width), step_(step), out_(out) {}

  /// Writes a run, or only follows the blocks that it opens and closes.
  void run(std::span<const Element> elements, bool isWritten);
  /// The blocks that are open behind what has been run.
  [[nodiscard]] BlockStack& blocks() noexcept { return blocks_; }
  /// The indentation of a run that begins with this element.
  [[nodiscard]] std::size_t indentOf(const Element& element) const noexcept;
  /// Whether a run that begins with this element goes on with a block or closes it.
  [[nodiscard]] bool closes(const Element& element) const noexcept;

private:
  /// A token in its line, as it is to be written.
  struct Placed {
    SpacedToken token;
    std::size_t piece = none;
    std::size_t pad = 0;   // blanks in front that line up a column of an array
    std::size_t depth = 0; // of brackets behind it
    std::size_t opens = 0; // the number of the block that it opens
  };
  /// How a line ends.
  enum class LineBreak : unsigned char { Statement, Row, Continuation };
  /// Where the lines inside a bracket stand.
  struct Bracket {
    std::size_t content;
    std::size_t close;
  };

  // Elements.
  void token(std::size_t i);
  void comment(std::size_t i);
  void row();
  void continuation(std::size_t i);
  void blockComment(std::size_t i);

  // Tokens.
  [[nodiscard]] SpacedToken spaced(const Element& element, BlockRole role) const noexcept;
  [[nodiscard]] bool beginsLine(const SpacedToken& token, BlockRole role) const noexcept;
  std::size_t followBlocks(const SpacedToken& token, BlockRole role);
  void followBrackets(const SpacedToken& token) noexcept;
  [[nodiscard]] bool endsLine(const SpacedToken& token, BlockRole role, std::size_t i) const noexcept;
  [[nodiscard]] bool atStatementLevel() const noexcept { return depth_ == 0 && !blocks_.isInline(); }
  void beginStatement() noexcept;
  void alignColumns(std::size_t i);

  // Lines.
  void endLine(LineBreak how, nvf::ustring_view comment);
  void endLineWithoutTokens(LineBreak how, nvf::ustring_view comment);
  [[nodiscard]] std::size_t indentOfLine() noexcept;
  [[nodiscard]] std::size_t continuationIndent(const Placed* first) const noexcept;
  [[nodiscard]] std::size_t endOfPart(std::size_t first, std::size_t indent, LineBreak how) const noexcept;
  [[nodiscard]] bool mayBreakBehind(std::size_t i) const noexcept;
  [[nodiscard]] std::size_t blanksBefore(std::size_t i) const noexcept;
  [[nodiscard]] std::size_t columnsOfToken(const Placed& placed) const noexcept;
  std::size_t write(std::size_t first, std::size_t end, std::size_t indent, bool isBroken);

  const Lossless& lossless_;
  std::span<const Piece> pieces_;
  std::size_t width_;
  std::size_t step_;
  LineWriter& out_;

  // The run at hand.
  std::span<const Element> elements_;
  std::vector<std::size_t> pads_; // by element
  bool isWritten_ = true;
  bool isBehindBlank_ = false;   // the line before is empty
  bool isBehindComment_ = false; // the line end that comes next has been written with a comment

  // The statement at hand.
  BlockStack blocks_;
  SpacedToken previous_;                                      // EMPTY at the begin of a statement
  compiler::core::Kind header_ = compiler::core::Kind::EMPTY; // what has opened a block in this statement
  bool isImport_ = false;
  bool isBreakDue_ = false;       // the next token begins a line
  std::size_t depth_ = 0;         // of brackets
  std::size_t parameters_ = none; // the depth inside the parameters of an anonymous function

  // The line at hand.
  std::vector<Placed> line_;
  bool isContinued_ = false;    // it goes on with a statement
  bool isRow_ = false;          // it is a row of an array
  std::size_t firstIndent_ = 0; // of a line that begins a statement
  std::size_t statementIndent_ = 0;
  std::vector<Bracket> brackets_; // open behind what has been written
};

} // namespace tessarin::ide
