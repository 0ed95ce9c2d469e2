// How the blocks of a text nest, and where, by the look of it, a word that opens or closes one is missing, too many, or
// misspelt.
//
// What is found is a guess to be tried, made from the words and the indentation. It takes time in the number of
// statements, whatever they are.
#pragma once

#include "tessarin/ide/Statements.hpp"

#include <cstddef>
#include <optional>
#include <vector>

namespace tessarin::ide {

/// From the statement with the opening word to that with the closing one.
struct Block {
  static constexpr std::size_t none = static_cast<std::size_t>(-1);

  compiler::core::Kind kind = compiler::core::Kind::EMPTY; ///< of the opening word
  std::size_t opener = 0;                                  ///< its statement
  std::size_t closer = none;                               ///< the statement of its `end`, or none
  std::size_t parent = none;                               ///< the block around it, or none
};

/// What is wrong with the nest.
struct Anomaly {
  enum class Kind { MissingEnd, ExtraEnd, MisspeltWord };

  Kind kind = Kind::MissingEnd;
  std::size_t offset = 0;   ///< of the wrong word, or where the missing one is to be
  std::size_t length = 0;   ///< of the wrong word
  nvf::ustring_view word{}; ///< what a misspelt one should be
  std::size_t noticed = 0;  ///< the offset of the first word that does not fit
};

/// The nest of a text.
struct Blocks {
  std::vector<Block> all; ///< in the order in which they open
  std::vector<std::size_t>
      innermost;                  ///< for each statement the block that it is in, or that it opens, divides or closes
  std::vector<Anomaly> anomalies; ///< in the order in which they were noticed
};

/// Finds the nest.
Blocks blocksOf(const Statements& statements);

/// The word that was probably meant by the first one of the `i`-th statement, of those that begin something where it
/// stands; nothing where it is near none, or is one.
std::optional<nvf::ustring_view> meantKeyword(const Statements& statements, const Blocks& blocks, std::size_t i);

} // namespace tessarin::ide
