// The lines of a text that is being laid out: comments at the ends of lines are lined up block by block. Private to
// this stage.
#pragma once

#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <vector>

namespace tessarin::ide {

/// The text without the blanks and tabs at its ends.
nvf::ustring_view trimmed(nvf::ustring_view text) noexcept;

/// The columns that a text takes, a character outside of the basic plane counting as one.
std::size_t columnsOf(nvf::ustring_view text) noexcept;

/// Takes lines in order and joins them to a text.
class LineWriter {
public:
  /// `width` is where lines should end, in columns; `lineEnd` ends each line.
  LineWriter(std::size_t width, nvf::ustring_view lineEnd) : width_(width), lineEnd_(lineEnd) {}

  /// What lines have in common whose comments are lined up.
  struct Block {
    std::size_t indent = 0; ///< of their statements
    bool isRow = false;     ///< whether they are rows of an array
    friend bool operator==(const Block&, const Block&) = default;
  };

  /// The line that is being written, with its indentation.
  [[nodiscard]] nvf::ustring& code() noexcept { return code_; }
  /// Ends that line, which takes `columns`, with a comment that may be empty.
  void end(const Block& block, std::size_t columns, nvf::ustring_view comment);
  /// An empty line.
  void blank();
  /// A line as it is, without its line end.
  void raw(nvf::ustring_view text);
  /// Text behind the last line, without a line end.
  void tail(nvf::ustring_view text);
  /// The text. Nothing is written afterwards.
  [[nodiscard]] nvf::ustring take();

private:
  struct Line {
    std::size_t end; // in `code_`
    std::size_t columns;
    nvf::ustring_view comment;
  };
  void flush();

  std::size_t width_;
  nvf::ustring_view lineEnd_;
  nvf::ustring text_;
  nvf::ustring code_; // of the lines of the block, and of the one that is being written
  std::vector<Line> lines_;
  Block block_;
};

} // namespace tessarin::ide
