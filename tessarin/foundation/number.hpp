// Numbers as they are written.
//
// A number is whatever the scanner accepts (`1`, `1.`, `.5`, `1.e3`, `1D+3`, `2i`), or one of the words "inf" and "nan"
// in upper or lower case; either may have a sign before it.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/checked_text.hpp"
#include "tessarin/foundation/exception.hpp"

#include <charconv>
#include <concepts>
#include <optional>
#include <string_view>
#include <system_error>

namespace nvf {

/// Thrown where text that must be a number is not.
class TESSARIN_EXPORT InvalidNumberString : public Exception {
public:
  /// For the text that is no number.
  explicit InvalidNumberString(ustring_view text);
};

/// Whether the text is a number.
TESSARIN_EXPORT bool is_number(ustring_view text) noexcept;

/// The double nearest to the number that the text is; infinity or zero where that is out of range. The locale of the
/// process does not matter. Of an imaginary number it is the factor of the imaginary unit. Throws `InvalidNumberString`
/// where the text is no number.
TESSARIN_EXPORT double to_number(ustring_view text);

/// The shortest text that reads back as the same double; "inf", "-inf" and, for whatever is not a number, "nan".
TESSARIN_EXPORT ustring number_text(double number);
/// The number in decimal digits.
TESSARIN_EXPORT ustring number_text(int number);
/// The number in decimal digits.
TESSARIN_EXPORT ustring number_text(unsigned long number);

/// The whole number that the text consists of: digits in a base, of a signed type perhaps with "-" before them. Nothing
/// where it is anything else, or out of the range of `Number`.
template <std::integral Number>
std::optional<Number> whole_number(std::string_view text, int base = 10) noexcept {
  Number number{};
  const char* end = text.data() + text.size();
  const auto result = std::from_chars(text.data(), end, number, base);
  if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
  return number;
}

namespace detail {
struct NumberStringCheck;
}

/// The text of a number. Equality and order are those of the text: `1.50` and `1.5` are two number strings.
class TESSARIN_EXPORT NumberString : public CheckedText<NumberString> {
public:
  /// The `number_text` of the number.
  explicit NumberString(double number) : NumberString(Text(number_text(number))) {}
  /// The number in decimal digits.
  /// @{
  explicit NumberString(int number) : NumberString(Text(number_text(number))) {}
  explicit NumberString(unsigned long number) : NumberString(Text(number_text(number))) {}
  /// @}

  /// The number that is written like this. Throws `InvalidNumberString` where the text is none.
  /// @{
  explicit NumberString(ustring_view text);
  explicit NumberString(std::string_view text);
  /// @}
  /// The same, or nothing where the text is none.
  /// @{
  static std::optional<NumberString> make(ustring_view text);
  static std::optional<NumberString> make(std::string_view text);
  /// @}

  /// The `to_number` of the text: ask `isImaginary` where that makes a difference.
  [[nodiscard]] double number() const { return to_number(view()); }
  /// Whether the text ends with the suffix "i" or "j".
  [[nodiscard]] bool isImaginary() const noexcept {
    return !empty() && (view().back() == u'i' || view().back() == u'j');
  }

private:
  friend struct detail::NumberStringCheck;
  explicit NumberString(Text text) noexcept : CheckedText(text) {}
};

namespace detail {
/// Makes a `NumberString`; throws `InvalidNumberString` where the text is no number.
struct TESSARIN_EXPORT NumberStringCheck {
  NumberString operator()(BasicTableString<char16_t> text) const;
  NumberString operator()(ustring_view text) const;
  NumberString operator()(const char* text, unsigned long length) const;
};
} // namespace detail

} // namespace nvf
