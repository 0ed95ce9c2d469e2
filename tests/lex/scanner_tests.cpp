#include "lex/scan.hpp"

#include <gtest/gtest.h>

#include <random>

namespace {

using namespace tessarin::test;
using namespace tessarin::compiler::core;

struct Case {
  std::u16string_view text;
  const char* tokens;
};

void check(std::initializer_list<Case> cases) {
  for (const Case& c : cases) {
    EXPECT_EQ(show(scan(c.text)), c.tokens) << nvf::encode_utf8(c.text);
  }
}

TEST(Scanner, NamesAndWords) {
  check({
      {u"a_1", "ID3"},
      {u"if If", "IF2 WHITE1 ID2"},
      {u"x.if", "ID1 DOT1 ID2"},
      {u"x.der", "ID1 DOT1 DER3"},
      {u"pre", "PRE3"},
      {u"value", "ID5"},
      {u"intermediates intermediatesx", "INTERMEDIATES13 WHITE1 ID14"},
      {u"end", "END3"},
      {u"a(end)", "ID1 LP1 EEND3 RP1"},
      {u"x = end", "ID1 WHITE1 EQUALS1 WHITE1 EEND3"},
      {u"a(if)", "ID1 LP1 RES_ERR0 IF2 RP1"},
      {u"a(function)", "ID1 LP1 RES_ERR0 FUNCTION8 RP1"},
      {u"function f\nfunction g\n", "FUNCTION8 WHITE1 ID1 EOL1 FUNCTION8 WHITE1 ID1 EOL1"},
      {u"component c\nfunction f\n", "COMPONENT9 WHITE1 ID1 EOL1 FUNCTION8 WHITE1 ID1 EOL1"},
      {u"_a", "BADCHAR1 ID1"},
      {u"a\u00e9_\u0001b", "ID1 BADCHAR3 ID1"},
  });
}

TEST(Scanner, Numbers) {
  check({
      {u"12", "INT2"},
      {u"1.", "FLOAT2"},
      {u".5", "FLOAT2"},
      {u"1.e3", "FLOAT4"},
      {u"1E+3", "FLOAT4"},
      {u"1d-3", "FLOAT4"},
      {u"1.5i", "FLOAT4"},
      {u"12j", "FLOAT3"},
      {u"1e3i", "FLOAT4"},
      {u"12abc", "FLOAT2 ID3"},
      {u"12e", "FP_ERR3"},
      {u"12e+", "FP_ERR4"},
      {u"12e+x", "FP_ERR4 ID1"},
      {u"1..2", "FLOAT2 FLOAT2"},
      {u"1...", "FLOAT2 DOTDOT2"},
      {u"1ii", "FLOAT2 ID1"},
      {u"1.*2", "INT1 DOTMUL2 INT1"},
      {u"1./x", "INT1 DOTDIV2 ID1"},
      {u"1.\\x", "INT1 DOTLDIV2 ID1"},
      {u"1.^x", "INT1 DOTEXP2 ID1"},
      {u"1.'", "INT1 DOTTRANS2"},
      {u"1\u00e9", "INT1 BADCHAR1"},
  });
}

TEST(Scanner, Operators) {
  check({
      {u"+ * / \\ ^ , ? $ ` #",
       "PLUS1 WHITE1 MUL1 WHITE1 DIV1 WHITE1 LDIV1 WHITE1 EXP1 WHITE1 COMMA1 WHITE1 QUEST1 WHITE1 "
       "DOLLAR1 WHITE1 BACKQUOTE1 WHITE1 SHARP1"},
      {u"-->:=::&&&|||", "MINUS1 ARROW2 COLONEQUALS2 COLON1 COLON1 ANDAND2 AND1 OROR2 OR1"},
      {u"<=<>=>~=~====", "LE2 LT1 GE2 GT1 NE2 NE2 EQ2 EQUALS1"},
      {u"x.*y./z.^w.\\v.'", "ID1 DOTMUL2 ID1 DOTDIV2 ID1 DOTEXP2 ID1 DOTLDIV2 ID1 DOTTRANS2"},
      {u"a..b .", "ID1 DOTDOT2 ID1 WHITE1 DOT1"},
      {u"a != b", "ID1 WHITE1 CNE2 WHITE1 ID1"},
      {u"!= b", "BANG4 IEOL0"},
      {u"a ! b\nc", "ID1 WHITE1 BANG3 EOL1 ID1"},
      {u"a;b", "ID1 SEMI1 ID1"},
      {u"(a;b)", "LP1 ID1 SEMERR0 SEMI1 ID1 RP1"},
      {u"\u001aabc", "WHITE4"},
  });
}

TEST(Scanner, QuotesAndTransposes) {
  check({
      {u"x'", "ID1 TRANS1"},
      {u"x '", "ID1 WHITE1 UNTERM1"},
      {u"x''", "ID1 TRANS1 TRANS1"},
      {u"'it''s'", "STRING7"},
      {u"\"a\"\"b\"", "STRING_LITERAL6"},
      {u"= 'a\n'", "EQUALS1 WHITE1 UNTERM2 EOL1 UNTERM1"},
      {u"\"a\n", "UNTERM_STRING_LITERAL2 EOL1"},
      {u"(1)' [1]' {1}' 1.'",
       "LP1 INT1 RP1 TRANS1 WHITE1 LB1 INT1 RB1 TRANS1 WHITE1 LC1 INT1 RC1 TRANS1 WHITE1 INT1 DOTTRANS2"},
      {u"@(x)'a'", "AT1 LP1 ID1 RP1 STRING3"},
      {u"x='a'", "ID1 EQUALS1 STRING3"},
      {u"x.'", "ID1 DOTTRANS2"},
      {u"'\u00e9'", "STRING3"},
  });
}

TEST(Scanner, Arrays) {
  check({
      {u"[a' b']", "LB1 ID1 TRANS1 WHITE1 COMMA0 ID1 TRANS1 RB1"},
      {u"[a -b]", "LB1 ID1 WHITE1 COMMA0 MINUS1 ID1 RB1"},
      {u"[a - b]", "LB1 ID1 WHITE1 MINUS1 WHITE1 ID1 RB1"},
      {u"[a ~b ~=c .5 .x]", "LB1 ID1 WHITE1 COMMA0 NOT1 ID1 WHITE1 NE2 ID1 WHITE1 COMMA0 FLOAT2 WHITE1 DOT1 ID1 RB1"},
      {u"[a 'b' \"c\"]", "LB1 ID1 WHITE1 COMMA0 STRING3 WHITE1 COMMA0 STRING_LITERAL3 RB1"},
      {u"[1\n2]", "LB1 INT1 SEOL1 INT1 RB1"},
      {u"[1 ...x\n 2]", "LB1 INT1 WHITE1 DOTDOTDOT3 COMMENT1 CEOL1 WHITE1 COMMA0 INT1 RB1"},
      {u"[1...\n2]", "LB1 FLOAT2 DOTDOT2 SEOL1 INT1 RB1"},
      {u"[a...\nb]", "LB1 ID1 DOTDOTDOT3 CEOL1 COMMA0 ID1 RB1"},
      {u"x{1 2}", "ID1 LC1 INT1 WHITE1 INT1 RC1"},
      {u"={1 2}", "EQUALS1 LC1 INT1 WHITE1 COMMA0 INT1 RC1"},
      {u"(1\n", "LP1 INT1 EOLERR0 EOL1"},
  });
}

TEST(Scanner, CommentsAndLineEnds) {
  check({
      {u"% a\nb", "COMMENT3 EOL1 ID1"},
      {u"a % b", "ID1 WHITE1 COMMENT3 IEOL0"},
      {u"%%", "CPAD2"},
      {u"  %% title\n", "CPAD10 EOL1"},
      {u"%%title", "COMMENT7 IEOL0"},
      {u"%#  x\n", "PRAGMA5 EOL1"},
      {u"%# 1\n", "COMMENT4 EOL1"},
      {u"%{\n a\n%}\nb", "BLKSTART3 BLKCOM3 BLKEND3 ID1"},
      {u"%{ x\n", "COMMENT4 EOL1"},
      {u" %{ \n%{\n%}", "BLKSTART5 BLKSTART3 BLKEND2"},
      {u"a = 1 ... note\nb", "ID1 WHITE1 EQUALS1 WHITE1 INT1 WHITE1 DOTDOTDOT3 COMMENT5 CEOL1 ID1"},
      {u"a\r\nb\rc\vd\r\re", "ID1 EOL2 ID1 EOL1 ID1 EOL1 ID1 EOL2 ID1"},
      {std::u16string_view(u"a\0", 2), "ID1"},
      {std::u16string_view(u"a\0b", 3), "ID1 COMMENT2 IEOL0"},
  });
  // At depth 0 a block comment needs a real "%"; inside one, code unit 0 does as well.
  EXPECT_EQ(show(scan(std::u16string_view(u"%{\n\0}\nx", 7))), "BLKSTART3 BLKEND3 ID1");
  EXPECT_EQ(show(scan(std::u16string_view(u"\0{\nx", 4))), "COMMENT2 EOL1 ID1");
}

TEST(Scanner, Depths) {
  const std::u16string brackets(33, u'(');
  std::string expected;
  for (int i = 0; i < 32; ++i) expected += "LP1 ";
  EXPECT_EQ(show(scan(brackets)), expected + "DEEP_PAREN0 LP1");
  std::u16string comments;
  for (int i = 0; i < 8; ++i) comments += u"%{\n";
  EXPECT_EQ(scan(comments).back().kind, Kind::DEEP_COM);
  const auto tokenizer = Tokenizer::create();
  tokenizer->setBuffer(comments.data(), comments.size(), false);
  while (tokenizer->next().kind != Kind::EMPTY) {
  }
  EXPECT_TRUE(tokenizer->inBlockComment());
  EXPECT_EQ(tokenizer->state().commentDepth, 7);
}

TEST(Scanner, ImplicitLineEnds) {
  EXPECT_EQ(show(scan(u"", true)), "");
  EXPECT_EQ(show(scan(u"a", true)), "ID1 IEOL0");
  EXPECT_EQ(show(scan(u"a\n", true)), "ID1 EOL1");
  EXPECT_EQ(show(scan(u"[a", true)), "LB1 ID1 SEOL0");
  EXPECT_EQ(show(scan(u"(a", true)), "LP1 ID1 EOLERR0 IEOL0");
}

TEST(Scanner, EmptyLinesAndCode) {
  const auto tokenizer = Tokenizer::create();
  const auto line = [&](std::u16string_view text, State state) {
    std::vector<LexToken> out(32);
    bool hasCode = false;
    const auto count = tokenizer->tokenizeLine(out.data(), out.size(), state, text.data(), text.size(), &hasCode);
    out.resize(static_cast<std::size_t>(count));
    return show(out) + (hasCode ? " code" : "");
  };
  State array;
  array.parenDepth = 1;
  array.bracketStack = 1;
  State parenthesis;
  parenthesis.parenDepth = 1;
  EXPECT_EQ(line(u"", State()), "IEOL0");
  EXPECT_EQ(line(u"", array), "SEOL0");
  EXPECT_EQ(line(u"", parenthesis), "EOLERR0 IEOL0");
  EXPECT_EQ(line(u"x = 1\n", State()), "ID1 WHITE1 EQUALS1 WHITE1 INT1 EOL1 code");
  EXPECT_EQ(line(u"function f", State()), "FUNCTION8 WHITE1 ID1 IEOL0");
  EXPECT_EQ(line(u"% x", State()), "COMMENT3 IEOL0");
  // With too few free slots nothing is changed and the answer is -1, also where not a single step fits.
  State state;
  for (std::size_t capacity = 0; capacity < Tokenizer::maxTokensPerStep; ++capacity) {
    bool hasCode = true;
    EXPECT_EQ(tokenizer->tokenizeLine(nullptr, capacity, state, u"", 0, &hasCode), -1);
    EXPECT_EQ(tokenizer->tokenizeLine(nullptr, capacity, state, u"a\n", 2, &hasCode), -1);
    EXPECT_TRUE(hasCode);
  }
  std::vector<LexToken> few(3);
  EXPECT_EQ(tokenizer->tokenizeLine(few.data(), few.size(), state, u"a b", 3, nullptr), -1);
  EXPECT_TRUE(sameState(state, State()));
  // Arguments of a command, which only a restored state leads to.
  State command;
  command.lState = LState::DUAL_ARG;
  command.listState = ListState::V_LS;
  EXPECT_EQ(line(u"abc -x 'a b'c,d", command), "ID3 WHITE1 DUAL2 WHITE1 DUAL6 COMMA1 ID1 IEOL0 code");
  EXPECT_EQ(line(u"abc 'a''b' c%d", command), "ID3 WHITE1 DUAL6 WHITE1 ID1 COMMENT2 IEOL0");
  EXPECT_EQ(line(u"f(a b) {c,'d}e [x] y...", command), "DUAL6 WHITE1 DUAL7 WHITE1 DUAL3 WHITE1 ID1 DOTDOTDOT3 CEOL0");
  EXPECT_EQ(line(u"a;b", command), "ID1 SEMI1 ID1 IEOL0 code");
  EXPECT_EQ(line(u"a 'b", command), "ID1 WHITE1 UNTERM2 IEOL0");
  command.listState = ListState::F_LS;
  EXPECT_EQ(line(u"-a b -c", command), "DUAL2 WHITE1 ID1 WHITE1 DUAL2 IEOL0");
  // A closing bracket leads back to them.
  State list;
  list.parenDepth = 1;
  list.bracketStack = 1;
  list.listState = ListState::F_LS;
  EXPECT_EQ(line(u"x] -y z", list), "ID1 RB1 WHITE1 DUAL2 WHITE1 ID1 IEOL0 code");
  // Behind an operand "@" opens a list, in which a blank does not end the statement.
  const auto after = [&tokenizer](std::u16string_view text) {
    std::vector<LexToken> out(3 * text.size() + 8);
    State reached;
    (void)tokenizer->tokenizeLine(out.data(), out.size(), reached, text.data(), text.size(), nullptr);
    return reached;
  };
  EXPECT_TRUE(after(u"x @ ...").has(State::inList));
  EXPECT_FALSE(after(u"x = @ ...").has(State::inList));
}

TEST(Scanner, StatesCompareTheWrongWayRound) {
  // `==` is true where states differ: intended, and the reason for `sameState`.
  State other;
  other.indent = 1;
  EXPECT_TRUE(State() == other);
  EXPECT_FALSE(State() == State());
  EXPECT_TRUE(sameState(State(), State()));
  EXPECT_FALSE(sameState(State(), other));
}

TEST(Scanner, Dumps) {
  const auto dump = [](const auto& value) {
    char16_t buffer[256];
    return nvf::encode_utf8(std::u16string_view(buffer, static_cast<std::size_t>(value.dump(buffer) - buffer)));
  };
  EXPECT_EQ(dump(State()), "BEGIN_STMT AT_BEGINNING begin Com=0  Indent=0 ");
  State state;
  state.lState = LState::SAW_OPER;
  state.cState = CState::IN_METHOD;
  state.flags = 0x1f;
  state.listState = ListState::V_LS;
  state.inFunction = 3;
  state.parenDepth = 12;
  state.bracketStack = 0xabc;
  EXPECT_EQ(dump(state), "SAW_OPER IN_METHOD @ ... list begin ENDsV_LS InFun=0x3  (=12  Stk=0xABC  Com=0  Indent=0 ");
  EXPECT_EQ(dump(LexToken{7, Kind::ID}), "ID (7 ) ");
  EXPECT_EQ(dump(LexToken{42, Kind::ID}), "ID (42 ) ");
  EXPECT_EQ(dump(LexToken{105, Kind::ID}), "ID (:5 ) ") << "two digit positions, intended";
}

/// The laws: the lengths add up, and line by line gives what the whole text gives.
void checkLaws(std::u16string_view text) {
  std::size_t sum = 0;
  const std::vector<LexToken> whole = scan(text, true);
  for (const LexToken& token : whole) sum += token.length;
  ASSERT_EQ(sum, text.size()) << nvf::encode_utf8(text);
  ASSERT_EQ(show(scanByLine(text)), show(whole)) << nvf::encode_utf8(text);
}

TEST(Scanner, LawsHoldForAllShortTexts) {
  constexpr std::u16string_view alphabet = u"a1'.[( \n%{=-";
  for (int length = 1; length <= 4; ++length) {
    std::vector<std::size_t> digits(static_cast<std::size_t>(length), 0);
    for (;;) {
      std::u16string text = u"component c\n";
      for (const std::size_t digit : digits) text += alphabet[digit];
      ASSERT_NO_FATAL_FAILURE(checkLaws(text));
      std::size_t place = 0;
      while (place < digits.size() && ++digits[place] == alphabet.size()) digits[place++] = 0;
      if (place == digits.size()) break;
    }
  }
}

TEST(Scanner, LawsHoldForRandomModels) {
  constexpr std::array<std::u16string_view, 24> pieces{u"parameters\n",
                                                       u"  r = {1, 'Ohm'};\n",
                                                       u"end\n",
                                                       u"equations\n",
                                                       u" v == i*r';\n",
                                                       u"x = [1 -2\n3];\n",
                                                       u"a(end)",
                                                       u"...\n",
                                                       u" % note\n",
                                                       u"%{\n",
                                                       u"%}\n",
                                                       u"'s' ",
                                                       u"\"t\" ",
                                                       u"if a, b; else c; end\n",
                                                       u"function f\n",
                                                       u"1e",
                                                       u".5i ",
                                                       u"\u00e9",
                                                       u"{",
                                                       u"}",
                                                       u"[",
                                                       u"]",
                                                       u"\r\n",
                                                       u" -x"};
  std::mt19937 random(7);
  for (int i = 0; i < 3000; ++i) {
    std::u16string text = u"component c\n";
    for (std::size_t n = random() % 20; n != 0; --n) text += pieces[random() % pieces.size()];
    ASSERT_NO_FATAL_FAILURE(checkLaws(text));
  }
}

TEST(Scanner, TextInTheMiddleOfAStatement) {
  const auto scanAfter = [](void (Tokenizer::*reset)(), std::u16string_view text) {
    const auto tokenizer = Tokenizer::create();
    tokenizer->setBuffer(text.data(), text.size(), false);
    EXPECT_EQ(tokenizer->buffer(), text.data());
    EXPECT_EQ(tokenizer->bufferSize(), text.size());
    (*tokenizer.*reset)();
    std::vector<LexToken> tokens;
    for (LexToken token = tokenizer->next(); token.kind != Kind::EMPTY; token = tokenizer->next()) {
      tokens.push_back(token);
    }
    return show(tokens);
  };
  // What would be the words of a command at the head of a statement; and a row has its separators.
  EXPECT_EQ(scanAfter(&Tokenizer::resetToExpression, u"'a' hold on"), "STRING3 WHITE1 ID4 WHITE1 ID2");
  EXPECT_EQ(scanAfter(&Tokenizer::resetToArrayRow, u"'a' -b]"), "STRING3 WHITE1 COMMA0 MINUS1 ID1 RB1");
}

} // namespace
