// Values as tokens of the language: how a value travels through source text without loss.
//
// A value is a row of tokens: its type and extents as a string, its elements in index order, and its unit as a string:
//
//   'int32 2x3', 1, -2, 3, 4, 5, 6, 'm/s'        'string 1x2', 'a', 'b', '1'        'double 0x0', '1'
//
// The type is left out of the commonest sort of value, one double:  1.5, 'm'
//
// A number is written in digits, true and false as 1 and 0, a double as the shortest text that reads back as the same;
// "inf" and "nan" are words, and a negative number has its sign before it. Text is put between quotes. Only printable
// ASCII stands for itself in it: a quote is doubled, a backslash is written twice, and any other code unit as a
// backslash, "u" and four hexadecimal digits.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/number.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/foundation/value.hpp"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace nvf {

/// A number, perhaps with a sign, or one of the words "inf" and "nan".
class TESSARIN_EXPORT NumericValueToken {
public:
  /// The text of the number.
  explicit NumericValueToken(const NumberString& number) : text_(narrow(number.view())) {}
  /// Throws `InvalidNumberString` where the text is no number.
  explicit NumericValueToken(ustring_view text);

  /// The text in ASCII.
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  friend bool operator==(const NumericValueToken&, const NumericValueToken&) = default;

private:
  std::string text_;
};

/// A string, with its quotes, as it stands in the source.
class TESSARIN_EXPORT StringValueToken {
public:
  /// The text is not checked: that is for whoever reads its content.
  explicit StringValueToken(std::string text) : text_(std::move(text)) {}
  /// The token of a content.
  [[nodiscard]] static StringValueToken quote(ustring_view content);

  /// The text with its quotes.
  [[nodiscard]] const std::string& text() const noexcept { return text_; }
  /// What stands between the quotes, or nothing where the token is not of the form that `quote` gives.
  [[nodiscard]] std::optional<ustring> content() const;
  friend bool operator==(const StringValueToken&, const StringValueToken&) = default;

private:
  std::string text_;
};

/// One token of a value.
class ValueToken {
public:
  /// A token of either sort.
  /// @{
  ValueToken(NumericValueToken token) : token_(std::move(token)) {}
  ValueToken(StringValueToken token) : token_(std::move(token)) {}
  /// @}

  /// The token, or null where it is of the other sort.
  [[nodiscard]] const NumericValueToken* numeric() const noexcept { return std::get_if<NumericValueToken>(&token_); }
  /// The string token, or null.
  [[nodiscard]] const StringValueToken* string() const noexcept { return std::get_if<StringValueToken>(&token_); }

  friend bool operator==(const ValueToken&, const ValueToken&) = default;

private:
  std::variant<NumericValueToken, StringValueToken> token_;
};

/// The token as source text: one number, "inf" or "nan", or one of these with "-" before it, or one string.
TESSARIN_EXPORT ustring as_calvex(const ValueToken& token);

/// The tokens of a value.
TESSARIN_EXPORT std::vector<ValueToken> value_to_value_tokens(const Value& value);

/// Makes values of tokens.
class TESSARIN_EXPORT ValueTokensToValue {
public:
  virtual ~ValueTokensToValue();
  /// The value, or nothing where the tokens are not those of a value.
  [[nodiscard]] virtual std::optional<Value> operator()(const std::vector<ValueToken>& tokens) const = 0;
  /// A converter of the same type that converts alike.
  [[nodiscard]] virtual std::unique_ptr<ValueTokensToValue> clone() const = 0;

protected:
  ValueTokensToValue() = default;
  ValueTokensToValue(const ValueTokensToValue&) = default;
  ValueTokensToValue& operator=(const ValueTokensToValue&) = default;
};

/// The inverse of `value_to_value_tokens`. Every identifier is taken for a unit.
class TESSARIN_EXPORT DefaultValueTokensToValue : public ValueTokensToValue {
public:
  [[nodiscard]] std::optional<Value> operator()(const std::vector<ValueToken>& tokens) const override;
  /// A default converter.
  [[nodiscard]] std::unique_ptr<ValueTokensToValue> clone() const override;
};

} // namespace nvf
