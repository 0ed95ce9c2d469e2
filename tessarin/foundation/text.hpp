// Text: UTF-16 strings, their conversions, and text that is known to be ASCII.
//
// All source text, token text and printed text is UTF-16 in memory. Lengths and positions count code units; surrogates
// are not interpreted except where text is converted to or from UTF-8.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/failure.hpp"
#include "tessarin/foundation/hash.hpp"

#include <cstddef>
#include <iosfwd>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

/// The foundation, which knows nothing of the language: text, places, messages, values, and the mechanism of value
/// classes.
namespace nvf {

/// A string of UTF-16 code units.
using ustring = std::u16string;
/// A view of one.
using ustring_view = std::u16string_view;

/// The hash of a `ustring`: the mixing step over its code units from 0, the same on every machine.
TESSARIN_EXPORT std::size_t hash_value(ustring_view text) noexcept;

/// Feeds each code unit as 2 bytes, most significant first, one piece a unit.
TESSARIN_EXPORT void incorporate_data(DigestSink& sink, ustring_view text);

/// Thrown by `decode_utf8` for bytes that are not UTF-8.
class TESSARIN_EXPORT InvalidUtf8 : public StandardFailure<std::runtime_error> {
public:
  /// With the offset in bytes, from 0.
  explicit InvalidUtf8(std::size_t offset);
  /// The offset in bytes, from 0, of the first byte of the invalid sequence.
  [[nodiscard]] std::size_t offset() const noexcept { return offset_; }

private:
  std::size_t offset_;
};

/// UTF-8 to UTF-16, strictly: overlong forms, surrogates, values above U+10FFFF and truncated sequences throw
/// `InvalidUtf8`. A byte order mark is kept.
TESSARIN_EXPORT ustring decode_utf8(std::string_view bytes);

/// UTF-8 to UTF-16 for text that cannot be refused, such as a path: each byte of an invalid sequence becomes U+FFFD.
TESSARIN_EXPORT ustring utf8_string_to_ustring(const std::string& bytes);

/// UTF-16 to UTF-8; a lone surrogate becomes U+FFFD.
TESSARIN_EXPORT std::string encode_utf8(ustring_view text);

/// UTF-16 to the local 8-bit encoding. The local encoding is UTF-8, whatever the process's locale says, so that a
/// listing does not depend on the environment.
TESSARIN_EXPORT std::string ustring_to_local_encoded_string(const ustring& text);

/// The same as `ustring_to_local_encoded_string`, for opening streams.
TESSARIN_EXPORT std::string to_string(const ustring& text);

/// Widens ASCII text. Bytes above 127 are widened as they stand.
TESSARIN_EXPORT ustring widen(std::string_view ascii);

/// Narrows text byte by byte: of each code unit the low byte is kept, so that ASCII text stays what it is.
TESSARIN_EXPORT std::string narrow(ustring_view text);

/// The number in decimal digits.
TESSARIN_EXPORT ustring decimal(std::size_t number);

/// Writes one code unit to an 8-bit stream: ASCII as it stands, anything else as `\uXXXX`.
TESSARIN_EXPORT void to_ascii(std::ostream& stream, char16_t unit);

/// The text with "A" to "Z" in lower case; other bytes stay.
TESSARIN_EXPORT std::string lower(const std::string& text);

/// Sets a UTF-16 stream to the classic locale, whatever the locale of the process. The standard library has no facets
/// that write numbers to such a stream: `decimal` does that.
TESSARIN_EXPORT void setup_stream_locale(std::basic_ostringstream<char16_t>& stream);

/// Thrown where text that must be ASCII is not.
class TESSARIN_EXPORT NotAscii : public StandardFailure<std::invalid_argument> {
public:
  /// With the offset, from 0.
  explicit NotAscii(std::size_t offset);
  /// The offset from 0 of the first code unit or byte above 127.
  [[nodiscard]] std::size_t offset() const noexcept { return offset_; }

private:
  std::size_t offset_;
};

namespace detail {
struct AsciiStringCheck;
}

/// Text that is known to be ASCII. It is made by `detail::AsciiStringCheck` only.
class AsciiString {
public:
  AsciiString() = default;
  /// The text as UTF-16; one code unit for each byte.
  /// @{
  [[nodiscard]] const ustring& text() const noexcept { return text_; }
  [[nodiscard]] const char16_t* data() const noexcept { return text_.data(); }
  [[nodiscard]] std::size_t size() const noexcept { return text_.size(); }
  /// @}
  friend bool operator==(const AsciiString&, const AsciiString&) = default;

private:
  friend struct detail::AsciiStringCheck;
  explicit AsciiString(ustring text) : text_(std::move(text)) {}
  ustring text_;
};

namespace detail {
/// Makes an `AsciiString`, or throws `NotAscii`.
struct TESSARIN_EXPORT AsciiStringCheck {
  AsciiString operator()(ustring text) const;
  AsciiString operator()(const char* text, unsigned long length) const;
};
} // namespace detail

} // namespace nvf

namespace tessarin::compiler::core {
using nvf::ustring;
using nvf::ustring_view;
} // namespace tessarin::compiler::core
