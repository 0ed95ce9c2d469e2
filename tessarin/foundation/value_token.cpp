#include "tessarin/foundation/value_token.hpp"

#include <concepts>
#include <cstdint>
#include <span>
#include <string_view>

namespace nvf {

namespace {

// ---- the content of strings -----------------------------------------------------------------------------------------

constexpr std::size_t escapeDigits = 4;

constexpr bool isPrintable(char16_t unit) {
  return unit >= u' ' && unit <= u'~';
}

constexpr bool isWrittenTwice(char16_t unit) {
  return unit == u'\'' || unit == u'\\';
}

void appendQuoted(std::string& out, char16_t unit) {
  if (!isPrintable(unit)) {
    out += "\\u";
    for (unsigned shift = 4 * escapeDigits; shift != 0; shift -= 4) {
      out += "0123456789abcdef"[(unit >> (shift - 4)) & 0xfU];
    }
    return;
  }
  out.append(isWrittenTwice(unit) ? 2 : 1, static_cast<char>(unit));
}

/// Takes one code unit of the content off the front of `rest`, or gives nothing where it is malformed.
std::optional<char16_t> takeUnit(std::string_view& rest) {
  const char byte = rest.front();
  const char16_t unit = static_cast<unsigned char>(byte);
  rest.remove_prefix(1);
  if (!isPrintable(unit)) return std::nullopt;
  if (!isWrittenTwice(unit)) return unit;
  if (rest.starts_with(byte)) {
    rest.remove_prefix(1);
    return unit;
  }
  if (unit != u'\\' || !rest.starts_with('u') || rest.size() <= escapeDigits) return std::nullopt;
  const auto escaped = whole_number<std::uint16_t>(rest.substr(1, escapeDigits), 16);
  rest.remove_prefix(1 + escapeDigits);
  return escaped;
}

// ---- elements -------------------------------------------------------------------------------------------------------

template <class T>
ValueToken tokenOf(const T& element) {
  if constexpr (std::same_as<T, ustring>) {
    return StringValueToken::quote(element);
  } else if constexpr (std::same_as<T, bool>) {
    return NumericValueToken(element ? u"1" : u"0");
  } else {
    return NumericValueToken(number_text(element));
  }
}

template <class T>
std::optional<T> elementOf(const ValueToken& token) {
  if constexpr (std::same_as<T, ustring>) {
    return token.string() != nullptr ? token.string()->content() : std::nullopt;
  } else {
    if (token.numeric() == nullptr) return std::nullopt;
    const std::string& text = token.numeric()->text();
    if constexpr (std::same_as<T, bool>) {
      return text == "0" || text == "1" ? std::optional<bool>(text == "1") : std::nullopt;
    } else if constexpr (std::same_as<T, double>) {
      const bool isImaginary = text.back() == 'i' || text.back() == 'j';
      return isImaginary ? std::nullopt : std::optional<double>(to_number(widen(text)));
    } else {
      return whole_number<T>(text);
    }
  }
}

template <class T>
std::optional<ValueData> readElements(const ArraySize& size, std::span<const ValueToken> tokens) {
  std::vector<T> elements;
  elements.reserve(tokens.size());
  for (const ValueToken& token : tokens) {
    std::optional<T> element = elementOf<T>(token);
    if (!element) return std::nullopt;
    elements.push_back(*std::move(element));
  }
  return Array<T>(size, std::move(elements));
}

std::optional<ValueData> readData(const ArrayType& type, std::span<const ValueToken> tokens) {
  if (tokens.size() != type.size.numElements()) return std::nullopt;
  switch (type.element) {
  case ElementType::Bool: return readElements<bool>(type.size, tokens);
  case ElementType::Int32: return readElements<int>(type.size, tokens);
  case ElementType::UInt64: return readElements<unsigned long>(type.size, tokens);
  case ElementType::Double: return readElements<double>(type.size, tokens);
  case ElementType::Text: return readElements<ustring>(type.size, tokens);
  }
  return std::nullopt;
}

// ---- type and unit --------------------------------------------------------------------------------------------------

/// The type that goes without saying.
bool isOneDouble(const ArrayType& type) {
  return type.element == ElementType::Double && type.size.isScalar();
}

std::optional<ArrayType> readType(const ValueToken& token) {
  const auto name = elementOf<ustring>(token);
  return name ? array_type(encode_utf8(*name)) : std::nullopt;
}

std::optional<UnitsExpr> readUnit(const ValueToken& token) {
  const auto text = elementOf<ustring>(token);
  if (!text) return std::nullopt;
  try {
    return UnitsExpr(detail::CheckExprString()(*text));
  } catch (const InvalidUnitExpression&) {
    return std::nullopt;
  }
}

} // namespace

NumericValueToken::NumericValueToken(ustring_view text) : text_(narrow(text)) {
  if (!is_number(text)) throw InvalidNumberString(text);
}

StringValueToken StringValueToken::quote(ustring_view content) {
  std::string text = "'";
  for (const char16_t unit : content) appendQuoted(text, unit);
  return StringValueToken(text += '\'');
}

std::optional<ustring> StringValueToken::content() const {
  std::string_view rest = text_;
  if (rest.size() < 2 || !rest.starts_with('\'') || !rest.ends_with('\'')) return std::nullopt;
  rest = rest.substr(1, rest.size() - 2);
  ustring content;
  while (!rest.empty()) {
    const auto unit = takeUnit(rest);
    if (!unit) return std::nullopt;
    content += *unit;
  }
  return content;
}

ustring as_calvex(const ValueToken& token) {
  return widen(token.numeric() != nullptr ? token.numeric()->text() : token.string()->text());
}

std::vector<ValueToken> value_to_value_tokens(const Value& value) {
  const ArrayType type = value.data().type();
  std::vector<ValueToken> tokens;
  tokens.reserve(type.size.numElements() + 2);
  if (!isOneDouble(type)) tokens.emplace_back(StringValueToken::quote(widen(to_user_name(type))));
  value.data().visit([&tokens](const auto& array) {
    for (const auto& element : array) tokens.push_back(tokenOf(element));
  });
  tokens.emplace_back(StringValueToken::quote(value.unit().text().view()));
  return tokens;
}

ValueTokensToValue::~ValueTokensToValue() = default;

std::optional<Value> DefaultValueTokensToValue::operator()(const std::vector<ValueToken>& tokens) const {
  if (tokens.size() < 2) return std::nullopt;
  std::span<const ValueToken> elements(tokens.begin(), tokens.end() - 1);
  std::optional<ArrayType> type = ArrayType{ElementType::Double, ArraySize::scalar()};
  if (elements.front().numeric() == nullptr) {
    type = readType(elements.front());
    elements = elements.subspan(1);
  }
  if (!type) return std::nullopt;
  const auto data = readData(*type, elements);
  const auto unit = readUnit(tokens.back());
  if (!data || !unit) return std::nullopt;
  return Value(*data, *unit);
}

std::unique_ptr<ValueTokensToValue> DefaultValueTokensToValue::clone() const {
  return std::make_unique<DefaultValueTokensToValue>(*this);
}

} // namespace nvf
