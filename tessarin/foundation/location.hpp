// Where a piece of source text is: file names, lines and columns, locations, ranges, and a buffer of text with its
// name.
//
// Lines and columns count from 0 in this interface; text for people counts from 1 (message.hpp).
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/table_string.hpp"
#include "tessarin/foundation/text.hpp"

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

namespace nvf {

/// A handle on the path of a source file, one pointer wide; equal paths share one text. The default is the empty path.
class TESSARIN_EXPORT FileName : public detail::OrderingOperators<FileName> {
public:
  FileName() noexcept = default;
  /// Keeps the bytes of the path as they are.
  FileName(const std::filesystem::path& path) : native_(path.native()) {}

  /// The path with the same bytes.
  [[nodiscard]] std::filesystem::path path() const { return {native_.view()}; }
  /// The path as text; bytes that are not UTF-8 show as U+FFFD.
  operator ustring() const { return utf8_string_to_ustring(std::string(native_.view())); }
  /// The bytes of the path; the default one is empty.
  /// @{
  [[nodiscard]] bool empty() const noexcept { return native_.empty(); }
  [[nodiscard]] const BasicTableString<char>& native() const noexcept { return native_; }
  /// @}

  friend bool operator==(const FileName& a, const FileName& b) noexcept { return a.native_ == b.native_; }
  friend Ordering compare(const FileName& a, const FileName& b) noexcept { return a.native_.compare_(b.native_); }
  friend std::size_t hash_value(const FileName& f) noexcept { return f.native_.hash(); }
  friend void swap(FileName& a, FileName& b) noexcept { swap(a.native_, b.native_); }
  /// Writes the bytes of the path.
  friend TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const FileName& f);

private:
  BasicTableString<char> native_;
};

/// A line and a column in one 64-bit word: 40 bits of line, 24 bits of column, both from 0, the column in UTF-16 units.
class TESSARIN_EXPORT LineColumn {
public:
  /// How the two numbers share 64 bits, and how large they can be.
  /// @{
  static constexpr unsigned columnBits = 24;
  static constexpr unsigned long maxColumn = (1UL << columnBits) - 1;
  static constexpr unsigned long maxLine = (1UL << (64 - columnBits)) - 1;
  /// @}

  /// Thrown where a line or a column does not fit.
  class TESSARIN_EXPORT ValueTooLarge : public StandardFailure<std::overflow_error> {
  public:
    ValueTooLarge();
  };

  constexpr LineColumn() noexcept = default;
  /// Counted from 0. Throws `ValueTooLarge` beyond `maxLine` and `maxColumn`.
  constexpr LineColumn(unsigned long line, unsigned long column) : packed_(line << columnBits | column) {
    if (line > maxLine || column > maxColumn) throw ValueTooLarge();
  }

  /// Counted from 0; columns in code units.
  /// @{
  [[nodiscard]] constexpr unsigned long line() const noexcept { return packed_ >> columnBits; }
  [[nodiscard]] constexpr unsigned long column() const noexcept { return packed_ & maxColumn; }
  /// @}

  friend constexpr auto operator<=>(const LineColumn&, const LineColumn&) noexcept = default;
  friend constexpr Ordering compare(const LineColumn& a, const LineColumn& b) noexcept { return order(a, b); }
  friend constexpr std::size_t hash_value(const LineColumn& p) noexcept {
    return hash_combine(hash_combine(0, p.line()), p.column());
  }
  /// Writes `line:column`, both from 1.
  friend TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const LineColumn& p);

private:
  std::uint64_t packed_ = 0;
};

/// A place in a file, two words wide.
class TESSARIN_EXPORT Location : public detail::OrderingOperators<Location> {
public:
  Location() noexcept = default;
  /// A place in a file.
  Location(const FileName& fileName, const LineColumn& lineColumn) noexcept
      : fileName_(fileName), lineColumn_(lineColumn) {}

  /// The file and the place in it.
  /// @{
  [[nodiscard]] const FileName& fileName() const noexcept { return fileName_; }
  [[nodiscard]] const LineColumn& lineColumn() const noexcept { return lineColumn_; }
  /// @}

  friend bool operator==(const Location& a, const Location& b) noexcept {
    return a.fileName_ == b.fileName_ && a.lineColumn_ == b.lineColumn_;
  }
  /// By file name, then by line and column.
  friend TESSARIN_EXPORT Ordering compare(const Location& a, const Location& b) noexcept;
  friend TESSARIN_EXPORT std::size_t hash_value(const Location& l) noexcept;
  /// Feeds the bytes of the path as one piece, then line and column as 8 bytes each, most significant first.
  friend TESSARIN_EXPORT void incorporate_data(DigestSink& sink, const Location& l);
  /// Writes `(path:line:column)`, the numbers from 1; without a path, `(line:column)`.
  friend TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const Location& l);
  friend void swap(Location& a, Location& b) noexcept { std::swap(a, b); }

private:
  FileName fileName_;
  LineColumn lineColumn_;
};

/// A stretch of source text from the first unit to the place behind the last.
class TESSARIN_EXPORT Range : public detail::OrderingOperators<Range> {
public:
  Range() noexcept = default;
  /// The end is the place behind the last code unit. Nothing is checked.
  Range(const Location& begin, const Location& end) noexcept : begin_(begin), end_(end) {}

  /// The first place, and the place behind the last.
  /// @{
  [[nodiscard]] const Location& begin() const noexcept { return begin_; }
  [[nodiscard]] const Location& end() const noexcept { return end_; }
  /// @}

  /// The smallest range over both. A default range adds nothing; for ranges of two files it is from the begin of the
  /// left one to the end of the right one.
  [[nodiscard]] Range operator+(const Range& other) const noexcept;

  friend bool operator==(const Range& a, const Range& b) noexcept { return a.begin_ == b.begin_ && a.end_ == b.end_; }
  /// By begin, then by end.
  friend TESSARIN_EXPORT Ordering compare(const Range& a, const Range& b) noexcept;
  /// Writes `(path:line:column-line:column)`, the numbers from 1; without a path, `(line:column-line:column)`.
  friend TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const Range& r);
  friend TESSARIN_EXPORT std::size_t hash_value(const Range& r) noexcept;
  /// Feeds the begin, then the end.
  friend TESSARIN_EXPORT void incorporate_data(DigestSink& sink, const Range& r);
  friend void swap(Range& a, Range& b) noexcept { std::swap(a, b); }

private:
  Location begin_;
  Location end_;
};

template <>
inline constexpr bool hashesByValue<FileName> = true;
template <>
inline constexpr bool hashesByValue<LineColumn> = true;
template <>
inline constexpr bool hashesByValue<Location> = true;
template <>
inline constexpr bool hashesByValue<Range> = true;

/// An entry of an exception's stack.
struct StackFrame {
  /// The file that the place is in.
  FileName fileName;
  ustring name;         ///< the function or element
  std::size_t line = 0; ///< from 0
  friend bool operator==(const StackFrame&, const StackFrame&) = default;
};

/// How a buffer's text is shown to people.
template <class CharT>
struct FileBufferDisplay {
  /// The line of the given number, from 0, without its line end; empty behind the last line. Lines end with LF, CR or
  /// CR LF.
  static std::basic_string_view<CharT> line(std::basic_string_view<CharT> text, std::size_t number) {
    const auto isEnd = [](CharT c) { return c == CharT('\n') || c == CharT('\r'); };
    std::size_t begin = 0;
    std::size_t i = 0;
    for (; i < text.size(); ++i) {
      if (!isEnd(text[i])) continue;
      if (number == 0) break;
      if (text[i] == CharT('\r') && i + 1 < text.size() && text[i + 1] == CharT('\n')) ++i;
      begin = i + 1;
      --number;
    }
    return number == 0 ? text.substr(begin, i - begin) : std::basic_string_view<CharT>();
  }
};

/// A source text with the name of its file. Copies share the text, which is never changed.
template <class CharT, class Display>
class FileBuffer {
public:
  /// The code units of a file.
  using Text = std::vector<CharT>;

  /// `text` may be null for an empty buffer.
  FileBuffer(FileName fileName, std::shared_ptr<const Text> text) : fileName_(fileName), text_(std::move(text)) {}
  /// Copies `text`.
  FileBuffer(FileName fileName, std::basic_string_view<CharT> text)
      : FileBuffer(fileName, std::make_shared<const Text>(text.begin(), text.end())) {}
  /// Decodes UTF-8 text; throws `InvalidUtf8`.
  FileBuffer(FileName fileName, std::string_view utf8) requires std::same_as<CharT, char16_t>
      : FileBuffer(fileName, std::basic_string_view<CharT>(decode_utf8(utf8))) {}

  /// The code units live as long as the buffer or a copy of it, the reference to the file name as long as this buffer.
  /// @{
  [[nodiscard]] const FileName& fileName() const noexcept { return fileName_; }
  [[nodiscard]] std::basic_string_view<CharT> text() const noexcept {
    return text_ ? std::basic_string_view<CharT>(text_->data(), text_->size()) : std::basic_string_view<CharT>();
  }
  /// @}
  /// The line of the given number, from 0, without its line end.
  [[nodiscard]] std::basic_string_view<CharT> line(std::size_t number) const { return Display::line(text(), number); }

private:
  FileName fileName_;
  std::shared_ptr<const Text> text_;
};

/// The buffer that lexer and parser read.
using SourceBuffer = FileBuffer<char16_t, FileBufferDisplay<char16_t>>;

} // namespace nvf
