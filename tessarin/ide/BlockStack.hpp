// The blocks that are open at a place of a text, by its keywords. Private to this stage.
#pragma once

#include "tessarin/parser/lex/Kind.hpp"

#include <cstddef>
#include <vector>

namespace tessarin::ide {

/// How a keyword bears on blocks.
enum class BlockRole : unsigned char {
  None,      ///< it does not, or is a name here
  Section,   ///< opens a block that is no statement of another one
  Statement, ///< opens a block that is a statement, or an expression
  Middle,    ///< goes on with a block: "else", "case", "in"
  End        ///< closes one
};

/// A block that is open.
struct OpenBlock {
  compiler::core::Kind kind = compiler::core::Kind::EMPTY; ///< what has opened it
  bool isInline = false;    ///< whether it stands inside an expression, whose lines stay as they are written
  bool hasCases = false;    ///< whether its statements stand below cases
  std::size_t base = 0;     ///< the indentation of the line that has opened it
  std::size_t brackets = 0; ///< how many brackets are open around it
  std::size_t serial = 0;   ///< tells it from those that take its place later
};

/// The open blocks, the innermost last.
class BlockStack {
public:
  /// How a word bears on the blocks where these are open: "mode", "entry" and "initial" are names in most places.
  [[nodiscard]] BlockRole roleOf(compiler::core::Kind kind) const noexcept;
  /// Whether nothing but separators and line ends may follow the word on its line.
  [[nodiscard]] static bool standsAlone(compiler::core::Kind kind) noexcept;

  /// The blocks.
  /// @{
  [[nodiscard]] bool empty() const noexcept { return blocks_.empty(); }
  [[nodiscard]] OpenBlock& top() noexcept { return blocks_.back(); }
  [[nodiscard]] const OpenBlock& top() const noexcept { return blocks_.back(); }
  [[nodiscard]] compiler::core::Kind kind() const noexcept {
    return blocks_.empty() ? compiler::core::Kind::EMPTY : blocks_.back().kind;
  }
  [[nodiscard]] bool isInline() const noexcept { return !blocks_.empty() && blocks_.back().isInline; }
  /// @}

  /// Opens a block; returns its serial number.
  std::size_t open(compiler::core::Kind kind, bool isInline, std::size_t base, std::size_t brackets) {
    blocks_.push_back({kind, isInline, false, base, brackets, ++serial_});
    return serial_;
  }
  /// Closes the innermost block, if there is one.
  void close() noexcept {
    if (!blocks_.empty()) blocks_.pop_back();
  }
  /// Sets the base of the block of that number, if it is still open.
  void setBase(std::size_t serial, std::size_t base) noexcept;

  /// The indentation of a line that begins with a word of this role and kind.
  [[nodiscard]] std::size_t indentOf(BlockRole role, compiler::core::Kind kind, std::size_t step) const noexcept;

private:
  std::vector<OpenBlock> blocks_;
  std::size_t serial_ = 0;
};

} // namespace tessarin::ide
