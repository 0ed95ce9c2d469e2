#include "tessarin/parser/lex/Kind.hpp"
#include "tessarin/parser/lex/MemberType.hpp"
#include "tessarin/parser/lex/TokenId.hpp"
#include "tessarin/parser/lex/Tokenizer.hpp"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace tessarin::compiler::core;

TEST(Vocabulary, OddConversionsAreKept) {
  struct Case {
    Kind kind;
    TokenId::Value token;
  };
  const Case cases[] = {
      {Kind::EMPTY, TokenId::EOI},
      {Kind::NESTED, TokenId::FUNCTION_TOKEN},
      {Kind::PRE, TokenId::INTERNAL_ERROR},
      {Kind::BADCHAR, TokenId::INTERNAL_ERROR},
      {Kind::SHARP, TokenId::BAD_CHAR},
      {Kind::CEOL, TokenId::INTERNAL_ERROR},
      {Kind::RES_ERR, TokenId::INTERNAL_ERROR},
      {Kind::IEOL, TokenId::WHITE},
      {Kind::SEOL, TokenId::EOL},
      {Kind::FLOAT, TokenId::NUMBER},
      {Kind::EOLERR, TokenId::EOLERR},
      {Kind::DOTDOT, TokenId::BAD_DOTDOTDOT},
      {Kind::PRAGMA, TokenId::INTERNAL_ERROR},
      {Kind::LDIV, TokenId::LDIV},
  };
  for (const Case& c : cases) EXPECT_EQ(TokenId::convert(c.kind), c.token) << static_cast<int>(c.kind);
  EXPECT_FALSE(TokenId::isReservedKeyword(TokenId::INTERNAL_ERROR)) << "the last kind that maps there decides";
  EXPECT_TRUE(TokenId::isReservedKeyword(TokenId::FUNCTION_TOKEN));
  EXPECT_FALSE(TokenId::isReservedKeyword(TokenId::VALUE));
}

TEST(Vocabulary, ReservedWords) {
  const auto words = reserved_words();
  EXPECT_EQ(words.size(), 52U);
  EXPECT_EQ(std::count(words.begin(), words.end(), u"function"), 2);
  for (const nvf::ustring& word : words) {
    EXPECT_TRUE(Tokenizer::isReservedWord(word.data(), word.size()));
    EXPECT_TRUE(Tokenizer::isCxId(word.data(), word.size()));
  }
  EXPECT_EQ(reserved_word(u"function", 8), Kind::FUNCTION);
  for (const std::u16string_view word : {u"Function", u"functio", u"", u"intermediatess", u"value"}) {
    EXPECT_FALSE(Tokenizer::isReservedWord(word.data(), word.size()));
  }
}

TEST(Vocabulary, NamesImagesAndDisplays) {
  EXPECT_EQ(nvf::ustring(kind_name(Kind::UNTERM_STRING_LITERAL)), u"UNTERM_STRING_LITERAL");
  EXPECT_EQ(nvf::ustring(kind_image(Kind::NESTED)), u"function");
  EXPECT_EQ(nvf::ustring(kind_image(Kind::LDIV)), u"\\");
  EXPECT_EQ(nvf::ustring(kind_image(Kind::ID)), u"");
  EXPECT_EQ(TokenId::toString(TokenId::ASSERT_), "ASSERT_");
  EXPECT_EQ(TokenId::displayString(TokenId::LDIV), "\"\\\\\"");
  EXPECT_EQ(TokenId::displayString(TokenId::ID), "ID");
  EXPECT_TRUE(is_statement_start(Kind::ELSE) && is_statement_end(Kind::ELSE));
  EXPECT_FALSE(is_statement_start(Kind::END) || is_statement_start(Kind::CONNECT));
  EXPECT_TRUE(is_bracket_skip(Kind::CPAD) && can_modify_whitespace(Kind::CPAD));
  EXPECT_TRUE(is_implicit_eol(Kind::SEOL) && !is_implicit_eol(Kind::EOL));
}

TEST(Vocabulary, Members) {
  EXPECT_EQ(TokenId::memberType(TokenId::INTERMEDIATES), MemberType::INTERMEDIATE);
  EXPECT_EQ(TokenId::memberType(TokenId::MODECHARTS), MemberType::MODECHART);
  EXPECT_EQ(static_cast<int>(TokenId::memberType(TokenId::MODECHART)), -1);
  EXPECT_EQ(TokenId::modelType(TokenId::DDOMAIN), ModelType::DDOMAIN);
  EXPECT_EQ(static_cast<int>(TokenId::modelType(TokenId::ID)), -1);
  EXPECT_STREQ(MemberType::name(MemberType::THROUGH), "through");
  EXPECT_STREQ(MemberType::function(MemberType::THROUGH), "through_variable");
}

TEST(Vocabulary, LegalNames) {
  const auto isName = [](std::u16string_view text) { return Tokenizer::isCxId(text.data(), text.size()); };
  for (const std::u16string_view text : {u"a", u"Z9_", u"end"}) EXPECT_TRUE(isName(text));
  for (const std::u16string_view text : {u"", u"_a", u"9", u"a b", u"a\u00e9", u"a."}) EXPECT_FALSE(isName(text));
}

} // namespace
