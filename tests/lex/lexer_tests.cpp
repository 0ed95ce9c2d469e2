#include "tessarin/foundation/messages.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/parser/lex/Lexer.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace tessarin::compiler::core;
namespace warnings = kelvane::tessarin::compiler::core::lex::warnings;

nvf::SourceBuffer buffer(std::u16string_view text) {
  return {nvf::FileName("f.tsn"), text};
}

/// The tokens up to the first `EOI`, each as `CODE`, or `CODE:text`, with `@line:column` where `places` is set.
std::string lex(std::u16string_view text, bool places = false) {
  Lexer lexer(buffer(text));
  std::string out;
  for (;;) {
    const Token token = lexer.next();
    if (!out.empty()) out += ' ';
    out += TokenId::toString(token.code());
    if (!token.text().empty()) out += ":" + nvf::encode_utf8(token.text().view());
    if (places) {
      out += "@" + std::to_string(token.location().lineColumn().line()) + ":" +
             std::to_string(token.location().lineColumn().column());
    }
    if (token.code() != TokenId::EOI) continue;
    EXPECT_EQ(lexer.next().code(), TokenId::EOI) << "the end is repeated";
    return out;
  }
}

TEST(Lexer, WhatReachesTheParser) {
  struct Case {
    std::u16string_view text;
    const char* tokens;
  };
  const Case cases[] = {
      {u"", "EOI"},
      {u"a = 1; % note\n", "ID:a EQUALS NUMBER:1 SEMI EOL EOI"},
      {u"x = value", "ID:x EQUALS VALUE EOI"},
      {u"value2 Value", "ID:value2 ID:Value EOI"},
      {u"a \u00e9 b", "ID:a ID:b EOI"},
      {u"a _ pre b", "ID:a ID:b EOI"},
      {u"a(if)", "ID:a LP IF:if RP EOI"},
      {u"a ... note\n  + b", "ID:a PLUS ID:b EOI"},
      {u"%{\nx\n%}\na", "ID:a EOI"},
      {u"a\n%{\nx", "ID:a EOL INCOMPLETE_COMMENT EOI"},
      {u"a $ b", "ID:a BAD_CHAR ID:b EOI"},
      {u"1e 'x", "BAD_NUMBER UNTERM EOI"},
      {u"[1 2\n3]", "LB NUMBER:1 COMMA NUMBER:2 EOL NUMBER:3 RB EOI"},
      {u"%# pragma\n\u001ax", "EOL EOI"},
      {u"a\nb", "ID:a EOL ID:b EOI"},
  };
  for (const Case& c : cases) EXPECT_EQ(lex(c.text), c.tokens) << nvf::encode_utf8(c.text);
}

TEST(Lexer, Places) {
  EXPECT_EQ(lex(u"a\r\n b\v\fc\rd", true),
            "ID:a@0:0 EOL@0:1 ID:b@1:1 EOL@1:2 EOL@1:3 ID:c@1:4 EOL@1:5 ID:d@2:0 EOI@2:1");
  // CR CR is one token. Its end lies between CR and LF, and once the place there was asked for, the LF ends a line of
  // its own.
  EXPECT_EQ(lex(u"a\r\r\nx", true), "ID:a@0:0 EOL@0:1 EOL@2:0 ID:x@3:0 EOI@3:1");
  EXPECT_EQ(lex(u"\r\r\r\nx", true), "EOL@0:0 EOL@2:0 ID:x@3:0 EOI@3:1");
  EXPECT_EQ(lex(u"a\n%{\n", true), "ID:a@0:0 EOL@0:1 INCOMPLETE_COMMENT@2:0 EOI@2:0");
  // The marker stands where the comment's last line ends; the end itself, behind it, leaves out a last code unit 0.
  EXPECT_EQ(lex(std::u16string_view(u"%{\nab\0", 6), true), "INCOMPLETE_COMMENT@1:3 EOI@1:2");
}

TEST(Lexer, LongNamesAreCutWithOneWarning) {
  const std::u16string kept(63, u'n');
  std::vector<nvf::Message> seen;
  const nvf::ScopedWarningSink sink([&seen](const nvf::Message& message) { seen.push_back(message); });
  EXPECT_EQ(lex(kept), "ID:" + nvf::encode_utf8(kept) + " EOI");
  EXPECT_TRUE(seen.empty());
  EXPECT_EQ(lex(u"x\n " + kept + u"z"), "ID:x EOL ID:" + nvf::encode_utf8(kept) + " EOI");
  ASSERT_EQ(seen.size(), 1U);
  EXPECT_EQ(seen[0].id(), warnings::MaxNameLengthExceeded(u"f.tsn:2:2", kept + u"z", 63, kept));
  EXPECT_EQ(seen[0].location(), nvf::Location(nvf::FileName("f.tsn"), nvf::LineColumn(1, 1)));
  EXPECT_EQ(Token(TokenId::ID, nvf::Location(), Token::Text(kept + u"z")).text(), kept) << "interned before";
  EXPECT_EQ(seen.size(), 2U);
}

TEST(Lexer, ColumnsThatDoNotFit) {
  const std::u16string text = std::u16string(nvf::LineColumn::maxColumn + 1, u' ') + u"x";
  try {
    (void)lex(text);
    ADD_FAILURE();
  } catch (const nvf::MessageException& error) {
    EXPECT_EQ(error.id(), kelvane::tessarin::compiler::core::parse::LineColumnTooLarge(u"f.tsn"));
  }
  const std::u16string fits = text.substr(1);
  EXPECT_EQ(Lexer(buffer(fits)).next().location().lineColumn().column(), nvf::LineColumn::maxColumn);
}

TEST(Lexer, PlacesDependOnWhatWasAskedBefore) {
  const std::u16string_view text = u"\r\r\nx";
  const auto tokenizer = Tokenizer::create();
  tokenizer->setBuffer(text.data(), text.size(), false);
  EXPECT_EQ(tokenizer->lineColumn(3), nvf::LineColumn(2, 0));
  EXPECT_EQ(tokenizer->lineColumn(2), nvf::LineColumn(2, 0)) << "between CR and LF";
  EXPECT_EQ(tokenizer->lineColumn(3), nvf::LineColumn(3, 0)) << "counted on from there";
  EXPECT_EQ(tokenizer->lineColumn(0), nvf::LineColumn(0, 0));
  EXPECT_EQ(tokenizer->lineColumn(3), nvf::LineColumn(2, 0)) << "in one go again";
}

class Notes : public MarkupListener {
public:
  explicit Notes(std::vector<std::string>& seen) : seen_(seen) {}
  void notify(const ustring& text, const nvf::LineColumn& place) override {
    seen_.push_back(std::to_string(place.line()) + ":" + std::to_string(place.column()) + " " + nvf::encode_utf8(text));
  }
  [[nodiscard]] std::unique_ptr<MarkupListener> clone() const override { return std::make_unique<Notes>(*this); }

private:
  std::vector<std::string>& seen_;
};

TEST(Lexer, ListenersSeeComments) {
  std::vector<std::string> seen;
  Lexer lexer(buffer(u"a % one\n%{\n two\n%}\nb ... three\n + c \u00e9 %% x"));
  lexer.markupListener(Notes(seen));
  while (lexer.next().code() != TokenId::EOI) {
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"0:2 % one", "1:0 %{\n", "2:0  two\n", "3:0 %}\n", "4:2 ... three\n",
                                            "5:5 \xc3\xa9", "5:7 %% x"}));
}

TEST(Lexer, OpenBrackets) {
  Lexer lexer(nvf::detail::AsciiStringCheck()("(a)", 3), nvf::FileName());
  std::string open;
  for (int i = 0; i < 3; ++i) {
    lexer.next();
    open += lexer.areParensUnbalanced() ? '1' : '0';
  }
  EXPECT_EQ(open, "110");
}

TEST(TokenRecord, TextOnlyWhereTheCodeKeepsIt) {
  const nvf::Location place(nvf::FileName("f"), nvf::LineColumn(2, 5));
  const Token name(TokenId::ID, place, u"abc", 3);
  const Token comma(TokenId::COMMA, place, u",", 1);
  EXPECT_EQ(name.range(), nvf::Range(place, {nvf::FileName("f"), nvf::LineColumn(2, 8)}));
  EXPECT_TRUE(comma.text().empty());
  EXPECT_EQ(comma.range(), nvf::Range(place, place));
  EXPECT_TRUE(name.recode(TokenId::VALUE).text().empty());
  EXPECT_EQ(name.recode(TokenId::STRING).text(), nvf::ustring(u"abc"));
  EXPECT_TRUE(Token(TokenId::IF, place, u"if", 2).text() == nvf::ustring(u"if"));
  EXPECT_TRUE(Token(TokenId::COMMA, place, Token::Text(u",")).text().empty()) << "interned or not";
  EXPECT_EQ(Token().code(), TokenId::EMPTYTOKEN);
  const Token last(TokenId::ID, {nvf::FileName("f"), nvf::LineColumn(0, nvf::LineColumn::maxColumn)}, u"abc", 3);
  EXPECT_EQ(last.range().end().lineColumn().column(), nvf::LineColumn::maxColumn);

  Token elsewhere(TokenId::ID, nvf::Location(), u"abc", 3);
  EXPECT_TRUE(name.equal(elsewhere));
  EXPECT_FALSE(name == elsewhere);
  Token stripped = name;
  strip_annotation_inplace(stripped);
  EXPECT_TRUE(stripped == elsewhere);
  EXPECT_EQ(compare(elsewhere, name), Ordering::Less);
  EXPECT_EQ(compare(name, Token(TokenId::ID, place, u"abcd", 4)), Ordering::Less);
  EXPECT_EQ(compare(name, Token(TokenId::NUMBER, nvf::Location(), u"1", 1)), Ordering::Less);
}

TEST(TokenRecord, DigestHashAndListing) {
  const nvf::Location place(nvf::FileName("f"), nvf::LineColumn(2, 5));
  const Token token(TokenId::ID, place, u"a\u20ac", 2);
  std::string bytes;
  DigestSink sink = [&bytes](const char* data, unsigned long size) { bytes.append(data, size); };
  incorporate_data(sink, token);
  EXPECT_EQ(bytes, std::string("\0\0\1\x2d"
                               "f\0\0\0\0\0\0\0\2\0\0\0\0\0\0\0\5"
                               "\0a\x20\xac",
                               25));
  EXPECT_EQ(hash_value(token),
            nvf::hash_combine(nvf::hash_combine(nvf::hash_combine(0, 301), hash_value(place)), token.text().hash()));
  std::ostringstream stream;
  stream << token << '|' << Token(TokenId::COMMA, place, nullptr, 0);
  EXPECT_EQ(stream.str(), "ID        (f:3:6)a\\u20ac" + std::string(26, ' ') + "|COMMA     (f:3:6)");
}

} // namespace
