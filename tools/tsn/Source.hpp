// The input of a command: a file, or standard input.
#pragma once

#include "tessarin/foundation/location.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace tessarin::tool {

/// Thrown for a file that cannot be opened, read or written.
class UnreadableFile : public std::system_error {
public:
  using std::system_error::system_error;
};

/// Thrown for bytes that are not UTF-8. Says where, with lines and columns from 1, and whether they look like UTF-16.
class NotUtf8 : public nvf::InvalidUtf8 {
public:
  /// `bytes` is the input in which `cause` was found.
  NotUtf8(const nvf::InvalidUtf8& cause, std::string_view bytes);
  [[nodiscard]] const char* what() const noexcept override { return what_.c_str(); }

private:
  std::string what_;
};

/// The text of an input.
class Source {
public:
  /// The path that stands for standard input.
  static constexpr const char* standardInput = "-";
  /// What standard input is called in locations.
  static constexpr const char* standardInputName = "<stdin>";

  /// Reads the file, or standard input, to its end. Throws `UnreadableFile`, and `NotUtf8` where the bytes are not
  /// UTF-8. A byte order mark is kept: positions count it.
  static Source read(const std::string& path);

  /// How the input is called in locations and in text for people.
  static std::string displayName(const std::string& path) { return path == standardInput ? standardInputName : path; }

  [[nodiscard]] const nvf::SourceBuffer& buffer() const noexcept { return buffer_; }
  [[nodiscard]] nvf::ustring_view text() const noexcept { return buffer_.text(); }
  /// The line of the given number, from 0, without its line end; empty behind the last line. The text is walked through
  /// once at the most, however many lines are asked for. For one thread at a time.
  [[nodiscard]] nvf::ustring_view line(std::size_t number) const;
  /// The column behind the token at a place, on the same line; the column itself where no token is. The text is scanned
  /// once at the most, however many places are asked for. For one thread at a time.
  [[nodiscard]] std::size_t endOfToken(std::size_t line, std::size_t column) const;

private:
  explicit Source(nvf::SourceBuffer buffer) : buffer_(std::move(buffer)), unwalked_(buffer_.text()) {}

  nvf::SourceBuffer buffer_;
  mutable std::vector<nvf::ustring_view> lines_; // as far as the text has been walked through
  mutable nvf::ustring_view unwalked_;
  mutable std::vector<std::size_t> tokenEnds_; // ascending offsets, once they were asked for
};

} // namespace tessarin::tool
