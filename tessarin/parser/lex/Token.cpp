#include "tessarin/parser/lex/Token.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/warning.hpp"

#include <algorithm>
#include <array>
#include <iomanip>
#include <ostream>
#include <sstream>

namespace tessarin::compiler::core {

namespace {

void warnOfLongName(const nvf::Location& location, ustring_view name) {
  using Warning = kelvane::tessarin::compiler::core::lex::warnings::MaxNameLengthExceeded;
  const Warning message(nvf::file_line_column_message(location), name, Token::maxNameLength,
                        name.substr(0, Token::maxNameLength));
  nvf::Warning::get().issueWarning(nvf::Message(message, location));
}

} // namespace

Token::Token(TokenId::Value code, const nvf::Location& location, const char16_t* chars, std::size_t length)
    : location_(location), code_(code) {
  text(chars, length);
}

Token::Token(TokenId::Value code, const nvf::Location& location, const Text& text) : location_(location), code_(code) {
  if (code == TokenId::ID && text.size() > maxNameLength) {
    this->text(text.data(), text.size());
  } else if (storeText(code)) {
    text_ = text;
  }
}

void Token::text(const char16_t* chars, std::size_t length) {
  if (code_ == TokenId::ID && chars != nullptr && length > maxNameLength) {
    warnOfLongName(location_, {chars, length});
    length = maxNameLength;
  }
  text_ = storeText(code_) && chars != nullptr ? Text(chars, length) : Text();
}

nvf::Range Token::range() const noexcept {
  const nvf::LineColumn& begin = location_.lineColumn();
  const unsigned long room = nvf::LineColumn::maxColumn - begin.column();
  const nvf::LineColumn end(begin.line(), begin.column() + std::min<unsigned long>(room, text_.size()));
  return {location_, {location_.fileName(), end}};
}

Token Token::recode(TokenId::Value code) const {
  return {code, location_, text_.data(), text_.size()};
}

bool Token::storeText(TokenId::Value code) noexcept {
  switch (code) {
  case TokenId::NUMBER:
  case TokenId::STRING:
  case TokenId::STRING_LITERAL:
  case TokenId::ID:
  case TokenId::DUAL:
  case TokenId::BANG: return true;
  default: return TokenId::isReservedKeyword(code);
  }
}

Ordering compare(const Token& a, const Token& b) noexcept {
  if (a.code_ != b.code_) return a.code_ < b.code_ ? Ordering::Less : Ordering::Greater;
  const Ordering byText = a.text_.compare_(b.text_);
  return byText == Ordering::Equal ? compare(a.location_, b.location_) : byText;
}

std::size_t hash_value(const Token& token) noexcept {
  std::size_t seed = nvf::hash_combine(0, static_cast<std::size_t>(token.code_));
  seed = nvf::hash_combine(seed, hash_value(token.location_));
  return nvf::hash_combine(seed, token.text_.hash());
}

void incorporate_data(DigestSink& sink, const Token& token) {
  nvf::feed_bytes<4>(sink, static_cast<std::uint64_t>(token.code_));
  incorporate_data(sink, token.location_);
  for (const char16_t unit : token.text_) nvf::feed_bytes<2>(sink, unit);
}

std::ostream& operator<<(std::ostream& stream, const Token& token) {
  std::ostringstream line;
  line << std::left << std::setw(10) << TokenId::toString(token.code_) << token.location_;
  if (!token.text_.empty()) {
    std::ostringstream text;
    for (const char16_t unit : token.text_) nvf::to_ascii(text, unit);
    line << std::setw(33) << text.str();
  }
  return stream << line.str();
}

} // namespace tessarin::compiler::core
