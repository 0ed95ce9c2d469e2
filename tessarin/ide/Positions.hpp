// Lines and columns of offsets in a text, as editors count them.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <vector>

namespace tessarin::ide {

/// A stretch of a text in UTF-16 code units from 0, without the unit at `end`.
struct OffsetRange {
  /// Where it begins, and the offset behind its last unit.
  /// @{
  std::size_t begin = 0;
  std::size_t end = 0;
  /// @}
  friend bool operator==(const OffsetRange&, const OffsetRange&) = default;
};

/// A line and a column, both from 0. What a column counts is said by who gives it.
struct Position {
  std::size_t line = 0;   ///< from 0
  std::size_t column = 0; ///< from 0
  friend auto operator<=>(const Position&, const Position&) = default;
};

/// Where the lines of a text begin. Lines end with LF, CR or CR LF, as for the library's locations; vertical tabs and
/// form feeds end no line here. Made in one pass; a question takes the logarithm of the number of lines, and what is
/// said of bytes the length of the line on top. Keeps a view of the text, which must outlive it. Several threads may
/// ask one table.
class TESSARIN_EXPORT LineTable {
public:
  /// Finds the lines of the text.
  explicit LineTable(nvf::ustring_view text);

  /// The number of lines; a text without a line end is one line, and one that ends with a line end has an empty one
  /// behind it.
  [[nodiscard]] std::size_t lineCount() const noexcept { return starts_.size(); }
  /// The line with its line end; a line behind the last one is empty and stands at the end of the text.
  [[nodiscard]] OffsetRange line(std::size_t number) const noexcept;
  /// The line without its line end.
  [[nodiscard]] OffsetRange lineContent(std::size_t number) const noexcept;

  /// The position of an offset with its column in UTF-16 code units; an offset behind the end counts as the end.
  [[nodiscard]] Position utf16(std::size_t offset) const noexcept;
  /// The same with the column in bytes of UTF-8. Inside a surrogate pair it is that of the pair's begin.
  [[nodiscard]] Position utf8(std::size_t offset) const noexcept;

  /// The offset of a position whose column counts UTF-16 code units. A column behind the line's content is its end, a
  /// line behind the last one the end of the text.
  [[nodiscard]] std::size_t offsetOfUtf16(const Position& position) const noexcept;
  /// The same for a column in bytes of UTF-8; inside a character it is the character's begin.
  [[nodiscard]] std::size_t offsetOfUtf8(const Position& position) const noexcept;
  /// The offset of a place that the library tells.
  [[nodiscard]] std::size_t offsetOf(const nvf::LineColumn& place) const noexcept {
    return offsetOfUtf16({place.line(), place.column()});
  }

private:
  nvf::ustring_view text_;
  std::vector<std::size_t> starts_;
};

} // namespace tessarin::ide
