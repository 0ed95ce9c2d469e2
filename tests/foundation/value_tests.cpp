#include "tessarin/foundation/value.hpp"
#include "tessarin/foundation/value_token.hpp"

#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using nvf::Array;
using nvf::ArraySize;
using nvf::UnitsExpr;
using nvf::ustring;
using nvf::Value;
using nvf::ValueData;
using nvf::ValueToken;
using tessarin::test::digestBytes;
using tessarin::test::expectDistinctInOrder;
using tessarin::test::expectEqualValues;

constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

UnitsExpr unit(const ustring& text) {
  return UnitsExpr(nvf::detail::CheckExprString()(text));
}

template <class T>
Value scalar(T element, const ustring& unitText = u"1") {
  return {ValueData(Array<T>(std::move(element))), unit(unitText)};
}

template <class T>
Value array(std::size_t m, std::size_t n, std::vector<T> elements, const ustring& unitText = u"1") {
  return {ValueData(Array<T>(ArraySize(m, n), std::move(elements))), unit(unitText)};
}

/// The length of the string that `text` begins with, its quotes included; a quote inside it is doubled.
std::size_t stringLength(std::string_view text) {
  std::size_t end = 1;
  while (end < text.size() && (text[end] != '\'' || text.substr(end).starts_with("''"))) {
    end += text[end] == '\'' ? 2 : 1;
  }
  return std::min(end + 1, text.size());
}

/// The tokens of a source text with commas between them.
std::vector<ValueToken> tokensOf(std::string_view text) {
  std::vector<ValueToken> tokens;
  while (!text.empty()) {
    const bool isString = text.starts_with('\'');
    const std::string word(text.substr(0, isString ? stringLength(text) : text.find(',')));
    if (isString) {
      tokens.emplace_back(nvf::StringValueToken(word));
    } else {
      tokens.emplace_back(nvf::NumericValueToken(nvf::widen(word)));
    }
    text.remove_prefix(std::min(word.size() + 1, text.size()));
  }
  return tokens;
}

/// Whether the scanner reads the text as one token: a string, or a number or a word for one, perhaps behind a minus.
bool isOneSourceToken(std::string_view text) {
  if (text.starts_with('\'')) {
    return stringLength(text) == text.size() && text.ends_with('\'') &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
  }
  if (text.starts_with('-')) text.remove_prefix(1);
  return text == "inf" || text == "nan" || (text[0] >= '0' && text[0] <= '9' && nvf::is_number(nvf::widen(text)));
}

std::string textOf(const std::vector<ValueToken>& tokens) {
  std::string text;
  for (const ValueToken& token : tokens) {
    if (!text.empty()) text += ',';
    text += nvf::encode_utf8(as_calvex(token));
  }
  return text;
}

std::optional<Value> valueOf(const std::string& text) {
  return nvf::DefaultValueTokensToValue()(tokensOf(text));
}

TEST(Value, KeepsTheLaws) {
  expectDistinctInOrder<Value>({
      scalar(false),
      scalar(true),
      scalar(true, u"m"),
      array<bool>(1, 2, {false, true}),
      scalar(-1),
      scalar(1),
      scalar(1UL),
      scalar(~0UL),
      array<double>(0, 3, {}),
      scalar(-0.0),
      scalar(0.0),
      scalar(1.0),
      scalar(1.0, u"m"),
      scalar(1.0, u"m^2"),
      scalar(1.0, u"s"),
      scalar(nan),
      array<double>(1, 2, {1, 2}),
      array<double>(2, 1, {1, 2}),
      scalar(ustring()),
      scalar(ustring(u"1")),
  });
  expectEqualValues(scalar(nan, u"m*s"), scalar(-nan, u"s*m"));
  EXPECT_EQ(digestBytes(scalar(-1, u"m")), "0000000000000001"
                                           "00000000000000010000000000000001"
                                           "ffffffff"
                                           "6d"
                                           "0000000100000001");
}

TEST(Value, ConstantsAreNotConverted) {
  const nvf::Constant constant = to_constant(scalar(2, u"m"));
  EXPECT_EQ(constant.as<int>().value(), Array<int>(2));
  EXPECT_EQ(Value(nvf::Constant(nvf::Constants<int>(2)), unit(u"m")), scalar(2, u"m"));
  EXPECT_EQ(constant.value().getIf<double>(), nullptr);
  try {
    static_cast<void>(to_constant(scalar(2.0)).as<int>());
    ADD_FAILURE();
  } catch (const std::bad_variant_access& error) {
    EXPECT_STREQ(error.what(), "Unexpected index");
  }
}

TEST(Value, ForPeople) {
  const std::pair<Value, ustring> cases[] = {
      {scalar(true), u"true"},
      {scalar(-5), u"-5"},
      {scalar(2.5, u"m/s"), u"{2.5, 'm/s'}"},
      {scalar(nan), u"nan"},
      {array<double>(2, 3, {1, 2, 3, 4, -infinity, 6}), u"[1, 3, -inf; 2, 4, 6]"},
      {array<int>(2, 1, {1, 2}, u"K"), u"{[1; 2], 'K'}"},
      {array<bool>(0, 3, {}), u"[]"},
      {scalar(ustring(u"it's \u20ac\n")), u"'it''s \u20ac\n'"},
      {array<ustring>(1, 2, {u"a", u""}), u"['a', '']"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(to_user_string(value), text);
  EXPECT_EQ(dump_text(array<int>(1, 0, {}, u"m")), u"{[], 'm'} (int32 1x0)");
}

TEST(ValueToken, ValuesAsTokens) {
  const ustring strange{u'\'', u'\\', u'\n', u'\0', u'~', u'\x7f', u'\xe4', u'\xd800', u'\xffff'};
  const std::pair<Value, std::string> cases[] = {
      {scalar(1.0, u"m"), "1,'m'"},
      {scalar(-2.5), "-2.5,'1'"},
      {scalar(nan), "nan,'1'"},
      {scalar(-infinity, u"s"), "-inf,'s'"},
      {scalar(true), "'bool 1x1',1,'1'"},
      {scalar(std::numeric_limits<int>::min()), "'int32 1x1',-2147483648,'1'"},
      {scalar(~0UL, u"A/s"), "'uint64 1x1',18446744073709551615,'A/s'"},
      {array<double>(2, 2, {1, -0.0, 1e300, 0.1}), "'double 2x2',1,-0,1e+300,0.1,'1'"},
      {array<int>(0, 3, {}), "'int32 0x3','1'"},
      {array<double>(0, 0, {}), "'double 0x0','1'"},
      {scalar(ustring()), "'string 1x1','','1'"},
      {array<ustring>(1, 2, {u"it's", u"%{ ..."}), "'string 1x2','it''s','%{ ...','1'"},
      {scalar(strange), R"('string 1x1','''\\\u000a\u0000~\u007f\u00e4\ud800\uffff','1')"},
  };
  for (const auto& [value, text] : cases) {
    SCOPED_TRACE(text);
    const auto tokens = value_to_value_tokens(value);
    EXPECT_EQ(textOf(tokens), text);
    EXPECT_EQ(tokensOf(text), tokens);
    EXPECT_EQ(valueOf(text), value);
  }
}

TEST(ValueToken, OtherSpellingsOfAValue) {
  EXPECT_EQ(valueOf("1D+3,' s * m '"), scalar(1000.0, u"m*s"));
  EXPECT_EQ(valueOf("NaN,'1'"), scalar(nan));
  EXPECT_EQ(valueOf("-INF,'1'"), scalar(-infinity));
  EXPECT_EQ(valueOf("'double 1x1',1.5,'1'"), scalar(1.5));
  EXPECT_EQ(valueOf(R"('string 1x1','\u0041\uABcd','1')"), scalar(ustring(u"A\uabcd")));
}

TEST(ValueToken, TokensThatAreNoValue) {
  const std::string cases[] = {
      "",
      "1",
      "'m'",
      "'m','m'",
      "'m',1",
      "1,2",
      "1,2,'m'",
      "1,''",
      "1,'2*m'",
      "1,'it''s'",
      "2i,'1'",
      "'double 1x1','1'",
      "'double 1x1',1,2,'1'",
      "'double 1x2',1,'1'",
      "'double 1x1','1','1'",
      "'double 18446744073709551615x18446744073709551615','1'",
      R"('double \u0131x1',1,'1')", // U+0131 is no "1"
      "'bool 1x1',2,'1'",
      "'bool 1x1',1.0,'1'",
      "'bool 1x1',nan,'1'",
      "'int32 1x1',2147483648,'1'",
      "'int32 1x1',1.0,'1'",
      "'int32 1x1',1e3,'1'",
      "'int32 1x1',1i,'1'",
      "'int32 1x1',nan,'1'",
      "'uint64 1x1',-1,'1'",
      "'uint64 1x1',18446744073709551616,'1'",
      "'string 1x1',1,'1'",
      R"('string 1x1','\','1')",
      R"('string 1x1','\n','1')",
      R"('string 1x1','\u12','1')",
      R"('string 1x1','\u12g4','1')",
      R"('string 1x1','\u-123','1')",
      "'string 1x1','\n','1'",
      "'string 1x1','\x80','1'",
  };
  for (const std::string& text : cases) EXPECT_EQ(valueOf(text), std::nullopt) << text;
  for (const std::string text : {"", "'", "x", "'x", "x'", "'''", "'a'b'", "''''''' "}) {
    EXPECT_EQ(nvf::StringValueToken(text).content(), std::nullopt) << text;
  }
  EXPECT_THROW(nvf::NumericValueToken(u"x"), nvf::InvalidNumberString);
}

TEST(ValueToken, ConvertersAreCopiedThroughTheirBase) {
  const std::unique_ptr<nvf::ValueTokensToValue> converter = nvf::DefaultValueTokensToValue().clone();
  EXPECT_EQ((*converter)(tokensOf("1,'m'")), scalar(1.0, u"m"));
}

class RandomValues {
public:
  Value next() {
    switch (below(5)) {
    case 0: return array<bool>([this] { return below(2) == 1; });
    case 1: return array<int>([this] { return std::bit_cast<int>(static_cast<unsigned>(random_())); });
    case 2: return array<unsigned long>([this] { return random_() >> below(64); });
    case 3: return array<double>([this] { return std::bit_cast<double>(random_()); });
    default: return array<ustring>([this] { return text(); });
    }
  }

private:
  std::size_t below(std::size_t n) { return random_() % n; }

  template <class T, class Make>
  Value array(Make make) {
    const ArraySize size(below(4), below(4));
    std::vector<T> elements;
    for (std::size_t i = 0; i < size.numElements(); ++i) elements.push_back(make());
    return {ValueData(Array<T>(size, std::move(elements))), below(2) == 0 ? UnitsExpr() : unit(u"kg*m/s^2")};
  }

  ustring text() {
    ustring out;
    for (std::size_t n = below(5); n > 0; --n) {
      out += static_cast<char16_t>(below(2) == 0 ? below(128) : below(65536));
    }
    return out;
  }

  std::mt19937_64 random_{1}; // NOLINT(cert-msc51-cpp): the same values each time
};

TEST(ValueToken, RandomValuesSurviveAsSourceText) {
  RandomValues values;
  for (int i = 0; i < 5'000; ++i) {
    const Value value = values.next();
    const auto tokens = value_to_value_tokens(value);
    for (const ValueToken& token : tokens) {
      EXPECT_TRUE(isOneSourceToken(nvf::encode_utf8(as_calvex(token)))) << textOf(tokens);
    }
    const auto back = valueOf(textOf(tokens));
    ASSERT_TRUE(back) << textOf(tokens);
    expectEqualValues(*back, value);
  }
}

} // namespace
