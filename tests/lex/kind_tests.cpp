#include "tessarin/parser/lex/Kind.hpp"
#include "tessarin/parser/lex/LexToken.hpp"
#include "tessarin/parser/lex/TokenId.hpp"
#include "tessarin/parser/lex/Tokenizer.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <sstream>
#include <string>

namespace {

using namespace tessarin::compiler::core;
using nvf::ustring;
using nvf::ustring_view;

std::string narrow(ustring_view text) {
  return nvf::encode_utf8(text);
}

std::vector<Kind> allKinds() {
  std::vector<Kind> kinds;
  for (std::size_t i = 0; i < kindCount; ++i) kinds.push_back(static_cast<Kind>(i));
  return kinds;
}

std::string kindsWith(const std::function<bool(Kind)>& predicate) {
  std::string names;
  for (const Kind kind : allKinds()) {
    if (predicate(kind)) names += (names.empty() ? "" : " ") + narrow(kind_name(kind));
  }
  return names;
}

TEST(Kind, Flags) {
  EXPECT_EQ(kindsWith(is_implicit_eol), "SEOL CEOL IEOL");
  EXPECT_EQ(kindsWith(can_modify_whitespace), "EOL SEOL CEOL IEOL BLKSTART BLKEND CPAD WHITE");
  EXPECT_EQ(kindsWith(is_statement_end), "END ELSE ELSEIF ELSEWHEN IN CATCH CASE OTHERWISE");
  EXPECT_EQ(kindsWith(is_bracket_skip), "STRING STRING_LITERAL DUAL COMMENT BLKSTART BLKCOM BLKEND CPAD PRAGMA UNTERM "
                                        "UNTERM_STRING_LITERAL");
  // Of the reserved words all but these start a statement; no other kind does.
  EXPECT_EQ(kindsWith([](Kind kind) { return is_reserved_word(kind) && !is_statement_start(kind); }),
            "END BREAK RETURN GLOBAL PERSISTENT CONTINUE CONNECT DER TIME ASSERT_ PRE IMPORT_");
  EXPECT_EQ(kindsWith([](Kind kind) { return !is_reserved_word(kind) && is_statement_start(kind); }), "");
}

TEST(Kind, Categories) {
  const auto ofCategory = [](KindCategory::Value category) {
    return kindsWith([category](Kind kind) { return kind_category(kind) == category && !is_reserved_word(kind); });
  };
  EXPECT_EQ(ofCategory(KindCategory::KEYWORDS), "DOTDOTDOT DOTDOT");
  EXPECT_EQ(ofCategory(KindCategory::STRINGS), "STRING STRING_LITERAL");
  EXPECT_EQ(ofCategory(KindCategory::NUMERIC), "INT FLOAT");
  EXPECT_EQ(ofCategory(KindCategory::ERRORS),
            "QUEST DOLLAR BACKQUOTE DOUBLEQUOTE SHARP SEMERR EOLERR BADCHAR DEEP_PAREN "
            "FP_ERR RES_ERR DEEP_COM");
  EXPECT_EQ(ofCategory(KindCategory::UNTERMINATED_STRINGS), "UNTERM UNTERM_STRING_LITERAL");
  EXPECT_EQ(ofCategory(KindCategory::SYSTEM_COMMAND), "BANG");
  EXPECT_EQ(ofCategory(KindCategory::PLAIN),
            "EMPTY ID EEND DUAL CNE ARROW EOL SEOL CEOL IEOL DEEP_NEST DEEP_STMT WHITE");
  EXPECT_EQ(ofCategory(KindCategory::COMMENTS), "COMMENT BLKSTART BLKCOM BLKEND CPAD PRAGMA");
  EXPECT_EQ(narrow(kind_category_name(KindCategory::UNTERMINATED_STRINGS)), "UNTERMINATED_STRINGS");
  EXPECT_EQ(narrow(kind_category_name(KindCategory::COMMENTS)), "COMMENTS");
}

TEST(Kind, NamesAreUniqueAndImagesAreRight) {
  std::set<ustring_view> names;
  for (const Kind kind : allKinds()) EXPECT_TRUE(names.insert(kind_name(kind)).second) << narrow(kind_name(kind));
  EXPECT_EQ(kind_uname(Kind::COLONEQUALS), u"COLONEQUALS");
  EXPECT_EQ(kind_image(Kind::COLONEQUALS), u":=");
  EXPECT_EQ(kind_image(Kind::LDIV), u"\\");
  EXPECT_EQ(kind_image(Kind::DOTLDIV), u".\\");
  EXPECT_EQ(kind_image(Kind::DOUBLEQUOTE), u"\"");
  EXPECT_EQ(kind_image(Kind::FUNCTION), u"function");
  EXPECT_EQ(kind_image(Kind::NESTED), u"function");
  EXPECT_EQ(kind_image(Kind::EEND), u"");
}

TEST(Kind, ReservedWords) {
  const std::vector<ustring> words = reserved_words();
  ASSERT_EQ(words.size(), 52U);
  EXPECT_EQ(words.front(), u"function");
  EXPECT_EQ(words[1], u"function");
  EXPECT_EQ(words[50], u"pre");
  EXPECT_EQ(words.back(), u"import");
  for (std::size_t i = 0; i < words.size(); ++i) {
    const ustring& word = words[i];
    const Kind kind = i == 1 ? Kind::FUNCTION : static_cast<Kind>(i + 1); // `NESTED` is never looked up
    EXPECT_EQ(reserved_word(word.data(), word.size()), kind) << narrow(word);
    EXPECT_TRUE(Tokenizer::isReservedWord(word.data(), word.size()));
    EXPECT_TRUE(Tokenizer::isCxId(word.data(), word.size()));
    // Nothing but the exact text is reserved.
    for (const ustring& other :
         {word + u"_", u"x" + word, word.substr(1), static_cast<char16_t>(word[0] - 32) + word.substr(1)}) {
      if (other != u"mode" && other != u"modechart") {
        EXPECT_EQ(reserved_word(other.data(), other.size()), noKind) << narrow(other);
      }
    }
  }
  for (const ustring_view text :
       {u"", u"a", u"value", u"modechartss", u"intermediatesx", u"\u0130f", u"\xffff\xffff"}) {
    EXPECT_EQ(reserved_word(text.data(), text.size()), noKind) << narrow(text);
  }
}

TEST(Kind, IsReservedWordOfKind) {
  EXPECT_EQ(keyword::name(Kind::ELSEIF), u"elseif");
  EXPECT_EQ(keyword::name(Kind::COLONEQUALS), u"") << "it has an image, and is no word";
  EXPECT_TRUE(is_reserved_word(Kind::PRE));
  EXPECT_FALSE(is_reserved_word(Kind::EMPTY));
  EXPECT_FALSE(is_reserved_word(Kind::ID));
  EXPECT_FALSE(is_reserved_word(Kind::DOTDOTDOT));
}

TEST(LexToken, Dump) {
  const auto dump = [](std::uint64_t length, Kind kind) {
    char16_t buffer[LexToken::dumpCapacity];
    const LexToken token{length, kind};
    EXPECT_EQ(*token.dump(buffer), u'\0');
    return narrow(static_cast<const char16_t*>(buffer));
  };
  EXPECT_EQ(dump(0, Kind::ID), "ID (0 ) ");
  EXPECT_EQ(dump(7, Kind::WHITE), "WHITE (7 ) ");
  EXPECT_EQ(dump(42, Kind::UNTERM_STRING_LITERAL), "UNTERM_STRING_LITERAL (42 ) ");
  EXPECT_EQ(dump(105, Kind::ID), "ID (:5 ) "); // two positions only
  std::ostringstream stream;
  stream << LexToken{3, Kind::DOTDOTDOT} << LexToken::INVALID_TOKEN;
  EXPECT_EQ(stream.str(), "DOTDOTDOT (3 ) \nEMPTY (0 ) \n");
}

TEST(TokenId, NamesAndDisplayStrings) {
  std::set<std::string_view> names;
  std::set<std::string_view> displays;
  for (std::int32_t code = TokenId::first; code <= TokenId::last; ++code) {
    EXPECT_TRUE(names.insert(TokenId::toString(static_cast<TokenId::Value>(code))).second) << code;
    EXPECT_TRUE(displays.insert(TokenId::displayString(static_cast<TokenId::Value>(code))).second) << code;
  }
  EXPECT_EQ(names.size(), 129U);
  const struct {
    TokenId::Value code;
    int number;
    std::string_view name;
    std::string_view display;
  } rows[] = {
      {TokenId::FILE_LINE_COLUMN, 258, "FILE_LINE_COLUMN", "FILE_LINE_COLUMN"},
      {TokenId::LDIV, 268, "LDIV", R"("\\")"},
      {TokenId::DOTLDIV, 269, "DOTLDIV", R"(".\\")"},
      {TokenId::TRANS, 272, "TRANS", "\"'\""},
      {TokenId::ID, 301, "ID", "ID"},
      {TokenId::STRING_LITERAL, 304, "STRING_LITERAL", "\"string literal\""},
      {TokenId::EEND, 354, "EEND", "\"end \""},
      {TokenId::NESTED, 355, "NESTED", "\"function \""},
      {TokenId::CODEPAD_COMMENT, 360, "CODEPAD_COMMENT", "CODEPAD_COMMENT"},
      {TokenId::EOLERR, 373, "EOLERR", "\"end of line \""},
      {TokenId::NEGERR, 375, "NEGERR", "\"right parenthesis, bracket or brace\""},
      {TokenId::VALUE, 386, "VALUE", "\"value\""},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(static_cast<int>(row.code), row.number);
    EXPECT_EQ(TokenId::toString(row.code), row.name);
    EXPECT_EQ(TokenId::displayString(row.code), row.display);
  }
}

/// The kinds that give the token.
std::string kindsOf(TokenId::Value code) {
  return kindsWith([code](Kind kind) { return TokenId::convert(kind) == code; });
}

TEST(TokenId, Convert) {
  EXPECT_EQ(kindsOf(TokenId::EOI), "EMPTY");
  EXPECT_EQ(kindsOf(TokenId::FUNCTION_TOKEN), "FUNCTION NESTED");
  EXPECT_EQ(kindsOf(TokenId::NUMBER), "INT FLOAT");
  EXPECT_EQ(kindsOf(TokenId::BAD_NUMBER), "FP_ERR");
  EXPECT_EQ(kindsOf(TokenId::BAD_CHAR), "DOLLAR BACKQUOTE DOUBLEQUOTE SHARP");
  EXPECT_EQ(kindsOf(TokenId::EOL), "EOL SEOL");
  EXPECT_EQ(kindsOf(TokenId::WHITE), "IEOL WHITE");
  EXPECT_EQ(kindsOf(TokenId::BLOCK_COMMENT), "BLKSTART BLKCOM BLKEND");
  EXPECT_EQ(kindsOf(TokenId::CODEPAD_COMMENT), "CPAD");
  EXPECT_EQ(kindsOf(TokenId::BAD_DOTDOTDOT), "DOTDOT");
  EXPECT_EQ(kindsOf(TokenId::EOLERR), "EOLERR");
  EXPECT_EQ(kindsOf(TokenId::INTERNAL_ERROR), "PRE CEOL PRAGMA BADCHAR RES_ERR");
  for (const TokenId::Value code :
       {TokenId::FILE_LINE_COLUMN, TokenId::SOI, TokenId::EMPTYTOKEN, TokenId::NESTED, TokenId::MARKUP_COMMENT,
        TokenId::CXOK_COMMENT, TokenId::INCOMPLETE_COMMENT, TokenId::NEGERR, TokenId::STMTDO, TokenId::EXPDO,
        TokenId::ARRDO, TokenId::OLDFUN, TokenId::INVISIBLECOMMA, TokenId::VALUE}) {
    EXPECT_EQ(kindsOf(code), "") << TokenId::toString(code);
  }
  // All the others go by their name.
  std::size_t sameName = 0;
  for (const Kind kind : allKinds()) sameName += narrow(kind_name(kind)) == TokenId::toString(TokenId::convert(kind));
  EXPECT_EQ(sameName, kindCount - 17 - 5); // renamed, and without a token
}

TEST(TokenId, ReservedKeywords) {
  std::size_t count = 0;
  for (std::int32_t code = TokenId::first; code <= TokenId::last; ++code) {
    count += TokenId::isReservedKeyword(static_cast<TokenId::Value>(code));
  }
  EXPECT_EQ(count, 50U); // 52 words, two of them one token, one of them none
  EXPECT_TRUE(TokenId::isReservedKeyword(TokenId::FUNCTION_TOKEN));
  EXPECT_FALSE(TokenId::isReservedKeyword(TokenId::INTERNAL_ERROR)); // although "pre" gives it
  EXPECT_FALSE(TokenId::isReservedKeyword(TokenId::VALUE));
  EXPECT_FALSE(TokenId::isReservedKeyword(TokenId::EEND));
}

TEST(TokenId, ModelAndMemberTypes) {
  EXPECT_EQ(TokenId::modelType(TokenId::DDOMAIN), 1);
  EXPECT_EQ(TokenId::modelType(TokenId::COMPONENT), 0);
  EXPECT_EQ(TokenId::modelType(TokenId::COMPONENTS), -1);
  EXPECT_STREQ(ModelType::name(ModelType::COMPONENT), "component");
  EXPECT_STREQ(ModelType::name(ModelType::DDOMAIN), "domain");

  const struct {
    TokenId::Value code;
    int number;
    std::string name;
    std::string function;
  } rows[] = {
      {TokenId::VARIABLES, 0, "variable", "variable"},
      {TokenId::THROUGHS, 1, "through", "through_variable"},
      {TokenId::PARAMETERS, 2, "parameter", "parameter"},
      {TokenId::INPUTS, 3, "input", "input"},
      {TokenId::OUTPUTS, 4, "output", "output"},
      {TokenId::NODES, 5, "node", "node"},
      {TokenId::COMPONENTS, 6, "component", "component"},
      {TokenId::MODECHARTS, 7, "modechart", "modechart"},
      {TokenId::INTERMEDIATES, 8, "intermediate", "intermediate"},
  };
  for (const auto& row : rows) {
    const MemberType::Value type = TokenId::memberType(row.code);
    EXPECT_EQ(type, row.number);
    EXPECT_EQ(MemberType::name(type), row.name);
    EXPECT_EQ(MemberType::function(type), row.function);
  }
  std::size_t others = 0;
  for (std::int32_t code = TokenId::first; code <= TokenId::last; ++code) {
    others += TokenId::memberType(static_cast<TokenId::Value>(code)) == MemberType::NONE;
  }
  EXPECT_EQ(others, TokenId::count - std::size(rows));
}

TEST(Tokenizer, LegalNames) {
  const auto isName = [](std::u16string_view text) { return Tokenizer::isCxId(text.data(), text.size()); };
  for (const std::u16string_view text : {u"a", u"Z9_", u"end"}) EXPECT_TRUE(isName(text));
  for (const std::u16string_view text : {u"", u"_a", u"9", u"a b", u"a\u00e9", u"a."}) EXPECT_FALSE(isName(text));
}

} // namespace
