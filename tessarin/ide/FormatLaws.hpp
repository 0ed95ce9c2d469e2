// What a formatted text is held against. Private to this stage.
#pragma once

#include "tessarin/ide/Format.hpp"
#include "tessarin/ide/Layout.hpp"
#include "tessarin/ide/Lossless.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace tessarin::ide {

/// What comes of holding two texts against each other.
struct Comparison {
  std::optional<FormatRefusal> broken; ///< the first law that is broken, of those about tokens and comments
  /// Whether line ends stand between the same tokens, one or more than one of them: no rule of the grammar tells two
  /// from three, so that the trees of the two texts are equal then.
  bool hasSameLineEnds = true;
};

/// Compares tokens and comments in order. A line end may come between two tokens, but none goes, and inside arrays
/// none comes either.
Comparison compare(const Lossless& before, const Lossless& after);

/// What the parser makes of a text.
struct Reading {
  std::optional<compiler::core::ParseTree> tree; ///< nothing where the fault cannot be put down to statements
  std::vector<OffsetRange> faulty;               ///< the lines of statements that the tree is without, in order
};

/// Parses a text without warnings. A faulty statement is taken for blanks and the text is parsed again, as long as its
/// lines open, close and continue no blocks, and up to 20 times.
Reading read(const Lossless& lossless);

/// Parses a text with those lines taken for blanks; nothing where it is faulty still.
std::optional<compiler::core::ParseTree> readWithout(nvf::ustring_view text, std::span<const KeptLines> lines);

/// Whether the trees are equal but for places, and for line ends, which are statements to the statement language.
bool equalButForLineEnds(const compiler::core::ParseTree& a, const compiler::core::ParseTree& b);

/// Where the lines stand in the formatted text, which has the same tokens and comments.
std::vector<KeptLines> moved(std::span<const KeptLines> kept, const Lossless& before, const Lossless& after);

} // namespace tessarin::ide
