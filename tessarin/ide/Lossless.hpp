// A text as its scanner cut it, with nothing left out.
//
// The pieces are the scanner's tokens, each with its offset; their lengths add up to the text. What the parser never
// sees (blanks, comments, continuations) hangs on tokens by two rules:
//
// - What stands behind a token on its line belongs to that token, with the line end: its trailing pieces.
// - What stands on lines of its own belongs to the token that follows: its leading pieces. Behind the last token they
//   belong to the end of the text.
//
// So a comment that ends a line stays with what it is about, and one above a statement goes with the statement.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/ide/Positions.hpp"
#include "tessarin/parser/lex/Kind.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tessarin::ide {

/// One of the scanner's tokens, and where it stands.
struct Piece {
  std::size_t offset = 0;                                  ///< of its first UTF-16 code unit
  std::uint32_t length = 0;                                ///< in code units; 0 for a marker
  compiler::core::Kind kind = compiler::core::Kind::EMPTY; ///< what it is
  /// Where it ends.
  [[nodiscard]] std::size_t end() const noexcept { return offset + length; }
};

/// What a piece is to a reader of the text.
enum class PieceSort : std::uint8_t {
  Token,   ///< code that the parser sees, or would see if it could
  Comment, ///< a comment, or a line of a block comment with its line end
  LineEnd, ///< the end of a line, wherever it stands
  Blank,   ///< blanks, and the dots of a continuation
  Marker   ///< of no length: a comma that a blank stands for, or a mark of a fault
};

/// A run of pieces: the index of the first, and the one behind the last.
struct PieceRange {
  /// The indices.
  /// @{
  std::size_t begin = 0;
  std::size_t end = 0;
  /// @}
  friend bool operator==(const PieceRange&, const PieceRange&) = default;
};

/// The pieces of a text. Keeps a view of the text, which must outlive it. Made in linear time; what asks for a place
/// takes the logarithm of the number of pieces. Several threads may ask one value.
class TESSARIN_EXPORT Lossless {
public:
  /// Scans the text from its begin; any text has pieces. Throws `std::length_error` for more than 2^32 - 1 code units.
  explicit Lossless(nvf::ustring_view text);

  /// The text and its pieces in order. A code unit 0 that ends the input is a piece of the kind `EMPTY`.
  /// @{
  [[nodiscard]] nvf::ustring_view text() const noexcept { return text_; }
  [[nodiscard]] std::span<const Piece> pieces() const noexcept { return pieces_; }
  [[nodiscard]] nvf::ustring_view text(const Piece& piece) const noexcept {
    return text_.substr(piece.offset, piece.length);
  }
  /// @}

  /// What the piece is to a reader.
  [[nodiscard]] static PieceSort sort(const Piece& piece) noexcept {
    const PieceSort sort = sorts[static_cast<std::size_t>(piece.kind)];
    return sort == PieceSort::Token && piece.length == 0 ? PieceSort::Marker : sort;
  }

  /// The index of the piece that has the code unit at this offset; the number of pieces at the end of the text.
  [[nodiscard]] std::size_t at(std::size_t offset) const noexcept;

  /// The trivia of a token, given by its index; see the head of this file. The number of pieces stands for the end of
  /// the text, which has leading pieces only.
  /// @{
  [[nodiscard]] PieceRange leading(std::size_t token) const noexcept;
  [[nodiscard]] PieceRange trailing(std::size_t token) const noexcept;
  /// @}

private:
  static const std::array<PieceSort, compiler::core::kindCount> sorts; // by kind
  nvf::ustring_view text_;
  std::vector<Piece> pieces_;
};

/// The nodes of a parse tree and the pieces of its text, both ways. Keeps the tree, and a view of the pieces, which
/// must outlive it. Made in linear time.
class TESSARIN_EXPORT NodeIndex {
public:
  /// A node and the stretch of its text.
  struct Entry {
    const compiler::core::ParseTree* node = nullptr; ///< lives as long as the index
    PieceRange pieces;                               ///< from its first token to its last; empty without any
    std::size_t next = 0;                            ///< the index of the entry behind all that are below this one
  };

  /// `lines` is the table of the text of `lossless`, and `tree` what the parser made of that text.
  NodeIndex(compiler::core::ParseTree tree, const Lossless& lossless, const LineTable& lines);
  /// The entries point into the tree that the index holds.
  /// @{
  NodeIndex(const NodeIndex&) = delete;
  NodeIndex& operator=(const NodeIndex&) = delete;
  ~NodeIndex();
  /// @}

  /// The nodes from the root on, each before those below it.
  [[nodiscard]] std::span<const Entry> entries() const noexcept { return entries_; }
  /// The smallest node over all these pieces; null where there is none.
  [[nodiscard]] const Entry* innermost(const PieceRange& pieces) const noexcept;

private:
  compiler::core::ParseTree tree_;
  std::vector<Entry> entries_;
};

} // namespace tessarin::ide
