#include "tessarin/parser/lex/TokenId.hpp"

#include "tessarin/parser/lex/KindTable.hpp"

#include <array>
#include <utility>

namespace tessarin::compiler::core {

namespace {

struct TokenRow {
  TokenId::Value code;
  std::string_view name;
  std::string_view display;
};

constexpr auto tokenTable = std::to_array<TokenRow>({
#define TESSARIN_TOKEN(code, name) {TokenId::name, #name, #name},
#define TESSARIN_QUOTED_TOKEN(code, name, text) {TokenId::name, #name, "\"" text "\""},
#include "tessarin/parser/lex/token_ids.def"
});

constexpr std::size_t indexOf(TokenId::Value code) {
  return static_cast<std::size_t>(code - TokenId::first);
}

static_assert(tokenTable.size() == TokenId::count);
static_assert(
    [] {
      for (std::size_t i = 0; i < tokenTable.size(); ++i) {
        if (indexOf(tokenTable[i].code) != i) return false;
      }
      return true;
    }(),
    "the rows stand in the order of their codes");

/// The kinds that do not go to the token of their name.
constexpr std::pair<Kind, TokenId::Value> renamedKinds[] = {
    {Kind::BACKQUOTE, TokenId::BAD_CHAR},
    {Kind::DOLLAR, TokenId::BAD_CHAR},
    {Kind::DOUBLEQUOTE, TokenId::BAD_CHAR},
    {Kind::SHARP, TokenId::BAD_CHAR},
    {Kind::BLKSTART, TokenId::BLOCK_COMMENT},
    {Kind::BLKCOM, TokenId::BLOCK_COMMENT},
    {Kind::BLKEND, TokenId::BLOCK_COMMENT},
    {Kind::CPAD, TokenId::CODEPAD_COMMENT},
    {Kind::DOTDOT, TokenId::BAD_DOTDOTDOT},
    {Kind::EMPTY, TokenId::EOI},
    {Kind::INT, TokenId::NUMBER},
    {Kind::FLOAT, TokenId::NUMBER},
    {Kind::FP_ERR, TokenId::BAD_NUMBER},
    {Kind::FUNCTION, TokenId::FUNCTION_TOKEN},
    {Kind::NESTED, TokenId::FUNCTION_TOKEN},
    {Kind::IEOL, TokenId::WHITE},
    {Kind::SEOL, TokenId::EOL},
};

constexpr TokenId::Value tokenOf(const KindRow& row) {
  for (const auto& [kind, code] : renamedKinds) {
    if (kind == row.kind) return code;
  }
  for (const TokenRow& token : tokenTable) {
    if (token.name == row.narrowName) return token.code;
  }
  return TokenId::INTERNAL_ERROR;
}

constexpr auto conversions = [] {
  std::array<TokenId::Value, kindCount> table{};
  for (const KindRow& row : kindTable) table[static_cast<std::size_t>(row.kind)] = tokenOf(row);
  return table;
}();

constexpr TokenId::Value conversionOf(Kind kind) {
  return conversions[static_cast<std::size_t>(kind)];
}

// Intended, though it looks like an oversight: these five kinds have no token and so never reach the parser. The name
// BADCHAR is not BAD_CHAR, so characters that the language does not know vanish without a message; and "pre" is a
// reserved word without a meaning.
static_assert([] {
  for (const KindRow& row : kindTable) {
    const bool hasNoToken = row.kind == Kind::PRE || row.kind == Kind::CEOL || row.kind == Kind::PRAGMA ||
                            row.kind == Kind::BADCHAR || row.kind == Kind::RES_ERR;
    if ((conversionOf(row.kind) == TokenId::INTERNAL_ERROR) != hasNoToken) return false;
  }
  return true;
}());

constexpr std::pair<TokenId::Value, MemberType::Value> memberOpenings[] = {
#define TESSARIN_MEMBER_TYPE(number, name, opening, text, function) {TokenId::opening, MemberType::name},
#include "tessarin/parser/lex/member_types.def"
};

/// Of the kinds that give a token, the last one decides whether it is a keyword.
constexpr auto reservedKeywords = [] {
  std::array<bool, TokenId::count> table{};
  for (const KindRow& row : kindTable) table[indexOf(conversionOf(row.kind))] = row.isReserved;
  return table;
}();

static_assert(!reservedKeywords[indexOf(TokenId::INTERNAL_ERROR)], "'pre' must not make a keyword of what is dropped");

} // namespace

std::string_view TokenId::toString(Value code) noexcept {
  return tokenTable[indexOf(code)].name;
}

std::string_view TokenId::displayString(Value code) noexcept {
  return tokenTable[indexOf(code)].display;
}

ModelType::Value TokenId::modelType(Value code) noexcept {
  if (code == DDOMAIN) return ModelType::DDOMAIN;
  return code == COMPONENT ? ModelType::COMPONENT : ModelType::NONE;
}

MemberType::Value TokenId::memberType(Value code) noexcept {
  for (const auto& [opening, type] : memberOpenings) {
    if (opening == code) return type;
  }
  return MemberType::NONE;
}

TokenId::Value TokenId::convert(Kind kind) noexcept {
  return conversionOf(kind);
}

bool TokenId::isReservedKeyword(Value code) noexcept {
  return reservedKeywords[indexOf(code)];
}

} // namespace tessarin::compiler::core
