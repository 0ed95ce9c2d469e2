// The lexer's output, which the parser keeps in its leaves.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/hash.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/table_string.hpp"
#include "tessarin/parser/lex/TokenId.hpp"

#include <cstddef>
#include <iosfwd>

namespace tessarin::compiler::core {

/// A code, the text where that code keeps any, and the place of the first code unit. A plain value, without a pointer
/// into the source.
class TESSARIN_EXPORT Token : public nvf::detail::OrderingOperators<Token> {
public:
  /// An interned text: equal texts share their code units.
  using Text = nvf::BasicTableString<char16_t>;

  /// The longest name, in UTF-16 code units; longer ones are cut.
  static constexpr std::size_t maxNameLength = 63;

  /// `EMPTYTOKEN`, without text, at a default location.
  Token() noexcept = default;
  /// `chars` may be null. For the text, see the setter.
  Token(TokenId::Value code, const nvf::Location& location, const char16_t* chars, std::size_t length);

  /// With a text that is interned already; the same rules apply.
  Token(TokenId::Value code, const nvf::Location& location, const Text& text);

  /// What the token is, where its first code unit stands, and its text, empty where the code keeps none.
  /// @{
  [[nodiscard]] TokenId::Value code() const noexcept { return code_; }
  [[nodiscard]] const nvf::Location& location() const noexcept { return location_; }
  [[nodiscard]] const Text& text() const noexcept { return text_; }
  /// @}

  /// Sets the text, which stays empty where the code keeps none. The text of an `ID` is cut to `maxNameLength`, with
  /// the warning MaxNameLengthExceeded.
  void text(const char16_t* chars, std::size_t length);

  /// From the location to the place behind the text on the same line, or to the last column that there can be. A token
  /// that keeps no text has an empty range.
  [[nodiscard]] nvf::Range range() const noexcept;

  /// A token of another code at the same place. It has the same text if the new code keeps text.
  [[nodiscard]] Token recode(TokenId::Value code) const;

  /// Same code and same text, wherever they are.
  [[nodiscard]] bool equal(const Token& other) const noexcept { return code_ == other.code_ && text_ == other.text_; }

  /// Whether tokens of the code keep their text: names, numbers, strings, command words and the reserved words.
  static bool storeText(TokenId::Value code) noexcept;

  friend bool operator==(const Token& a, const Token& b) noexcept { return a.equal(b) && a.location_ == b.location_; }
  /// By code, text, file name, and line and column.
  friend TESSARIN_EXPORT Ordering compare(const Token& a, const Token& b) noexcept;
  friend TESSARIN_EXPORT std::size_t hash_value(const Token& token) noexcept;
  /// Feeds the code as 4 bytes, the location, and each code unit of the text as 2 bytes, most significant first.
  friend TESSARIN_EXPORT void incorporate_data(DigestSink& sink, const Token& token);
  friend void swap(Token& a, Token& b) noexcept {
    swap(a.text_, b.text_);
    swap(a.location_, b.location_);
    std::swap(a.code_, b.code_);
  }
  /// Replaces the location by a default one.
  friend void strip_annotation_inplace(Token& token) noexcept { token.location_ = nvf::Location(); }
  /// Writes the name of the code in a field of 10, the location, and the text, if any, in a field of 33.
  friend TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const Token& token);

private:
  Text text_;
  nvf::Location location_;
  TokenId::Value code_ = TokenId::EMPTYTOKEN;
};

} // namespace tessarin::compiler::core

template <>
inline constexpr bool nvf::hashesByValue<tessarin::compiler::core::Token> = true;
