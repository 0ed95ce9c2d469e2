#include "tessarin/foundation/number.hpp"

#include "tessarin/foundation/identifier.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <system_error>

namespace nvf {

namespace {

/// The parts of a number's text.
struct NumberParts {
  bool negative = false;
  std::optional<double> word; // what "inf" or "nan" stands for; the other parts are empty then
  ustring_view integer;       // the digits before the dot
  ustring_view fraction;      // the digits behind it
  bool exponentNegative = false;
  ustring_view exponent; // its digits
};

/// Reads text from its front.
class Cursor {
public:
  explicit Cursor(ustring_view text) : rest_(text) {}
  [[nodiscard]] bool atEnd() const { return rest_.empty(); }

  bool takeOneOf(ustring_view units) {
    if (rest_.empty() || units.find(rest_.front()) == ustring_view::npos) return false;
    rest_.remove_prefix(1);
    return true;
  }
  /// A sign, if there is one; whether it is "-".
  bool takeSign() {
    const bool negative = takeOneOf(u"-");
    if (!negative) takeOneOf(u"+");
    return negative;
  }
  ustring_view takeDigits() {
    const auto* end = std::find_if_not(rest_.begin(), rest_.end(), is_ascii_digit);
    const ustring_view digits = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    rest_.remove_prefix(digits.size());
    return digits;
  }
  /// The rest, if it is this word of lower-case letters, its case aside.
  bool takeRest(ustring_view word) {
    const bool same =
        std::equal(rest_.begin(), rest_.end(), word.begin(), word.end(),
                   [](char16_t unit, char16_t letter) { return is_ascii_letter(unit) && (unit | 0x20) == letter; });
    if (same) rest_ = {};
    return same;
  }

private:
  ustring_view rest_;
};

/// The parts, or nothing where the text is no number.
std::optional<NumberParts> parse(ustring_view text) {
  Cursor cursor(text);
  NumberParts parts;
  parts.negative = cursor.takeSign();
  if (cursor.takeRest(u"inf")) parts.word = std::numeric_limits<double>::infinity();
  if (cursor.takeRest(u"nan")) parts.word = std::numeric_limits<double>::quiet_NaN();
  if (parts.word) return parts;

  parts.integer = cursor.takeDigits();
  if (cursor.takeOneOf(u".")) parts.fraction = cursor.takeDigits();
  if (parts.integer.empty() && parts.fraction.empty()) return std::nullopt;
  if (cursor.takeOneOf(u"eEdD")) {
    parts.exponentNegative = cursor.takeSign();
    parts.exponent = cursor.takeDigits();
    if (parts.exponent.empty()) return std::nullopt;
  }
  cursor.takeOneOf(u"ij");
  if (!cursor.atEnd()) return std::nullopt;
  return parts;
}

/// The exponent, cut to a number that no text is long enough to make up for.
long exponentOf(const NumberParts& parts) {
  constexpr long limit = 100'000'000'000'000'000;
  long value = 0;
  for (const char16_t digit : parts.exponent) value = std::min(10 * value + (digit - u'0'), limit);
  return parts.exponentNegative ? -value : value;
}

/// The nearest double of the parts, its sign aside.
double decimalValue(const NumberParts& parts) {
  // Beyond these powers of ten, 0.1 is more than the largest double, and 0.9 less than half of the smallest.
  constexpr long largestMagnitude = 309;
  constexpr long smallestMagnitude = -323;
  const std::string digits = narrow(parts.integer) + narrow(parts.fraction);
  const std::size_t leading = digits.find_first_not_of('0');
  if (leading == std::string::npos) return 0;

  // The number is 0.ddd times ten to the power of `magnitude`, with a first digit that is not zero. In this form the
  // exponent is small wherever the number is in range, whatever the text looks like.
  const long magnitude = static_cast<long>(parts.integer.size()) - static_cast<long>(leading) + exponentOf(parts);
  double value = magnitude > 0 ? std::numeric_limits<double>::infinity() : 0; // which stays where it is out of range
  if (magnitude > largestMagnitude || magnitude < smallestMagnitude) return value;
  const std::string normal = "0." + digits.substr(leading) + "e" + std::to_string(magnitude);
#if defined(__cpp_lib_to_chars)
  std::from_chars(normal.data(), normal.data() + normal.size(), value);
  return value;
#else
  // A standard library that reads no doubles: that of C reads them as exactly, in the locale whose point is a point.
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return strtod_l(normal.c_str(), nullptr, plain);
#endif
}

template <class Number>
ustring shortestText(Number number) {
  std::array<char, 32> buffer{};
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  return widen({buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())});
}

} // namespace

InvalidNumberString::InvalidNumberString(ustring_view text)
    : Exception("'" + encode_utf8(text) + "' is not a number.") {}

bool is_number(ustring_view text) noexcept {
  return parse(text).has_value();
}

double to_number(ustring_view text) {
  const auto parts = parse(text);
  if (!parts) throw InvalidNumberString(text);
  const double value = parts->word ? *parts->word : decimalValue(*parts);
  return parts->negative ? -value : value;
}

ustring number_text(double number) {
  return std::isnan(number) ? u"nan" : shortestText(number);
}
ustring number_text(int number) {
  return shortestText(number);
}
ustring number_text(unsigned long number) {
  return shortestText(number);
}

NumberString::NumberString(ustring_view text) : NumberString(detail::NumberStringCheck()(text)) {}
NumberString::NumberString(std::string_view text)
    : NumberString(detail::NumberStringCheck()(text.data(), text.size())) {}
std::optional<NumberString> NumberString::make(ustring_view text) {
  return is_number(text) ? std::optional(NumberString(Text(text))) : std::nullopt;
}
std::optional<NumberString> NumberString::make(std::string_view text) {
  return make(widen(text));
}

namespace detail {

NumberString NumberStringCheck::operator()(BasicTableString<char16_t> text) const {
  if (!is_number(text.view())) throw InvalidNumberString(text.view());
  return NumberString(text);
}

NumberString NumberStringCheck::operator()(ustring_view text) const {
  if (!is_number(text)) throw InvalidNumberString(text);
  return NumberString(NumberString::Text(text));
}

NumberString NumberStringCheck::operator()(const char* text, unsigned long length) const {
  return (*this)(widen({text, length}));
}

} // namespace detail

} // namespace nvf
