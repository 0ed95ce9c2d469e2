#include "tessarin/foundation/number.hpp"

#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <locale>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace {

using nvf::NumberString;
using nvf::ustring;
using nvf::detail::NumberStringCheck;
using tessarin::test::expectEqualValues;

constexpr double infinity = std::numeric_limits<double>::infinity();
const double nan = std::numeric_limits<double>::quiet_NaN();

NumberString number(const std::string& text) {
  return NumberStringCheck()(text.data(), text.size());
}

/// Equal as numbers, with -0 and 0 apart and NaN equal to itself.
bool same(double a, double b) {
  return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

TEST(Number, TextsAndWhatTheyMean) {
  struct Case {
    std::string text;
    std::optional<double> value; // nothing where the text is no number
    bool isImaginary = false;
  };
  const std::string zeros(100'000, '0');
  const Case cases[] = {
      {"1", 1},
      {"007", 7},
      {"1.", 1},
      {".5", 0.5},
      {"1.50", 1.5},
      {"1.e3", 1000},
      {".5e1", 5},
      {"1d3", 1000},
      {"1D+3", 1000},
      {"1E-3", 0.001},
      {"1e003", 1000},
      {"2i", 2, true},
      {"2.5e1j", 25, true},
      {"1.i", 1, true},
      {"-1", -1},
      {"+1.5", 1.5},
      {"-0", -0.0},
      {"0e9", 0},
      {"inf", infinity},
      {"-INF", -infinity},
      {"+Inf", infinity},
      {"nan", nan},
      {"NaN", nan},
      {"-nan", nan},
      {"0.1", 0.1},
      {"123456789012345678901234567890", 123456789012345678901234567890.0},
      {"9007199254740993", 9007199254740992}, // halfway: to the even one
      {"9007199254740993.00000000000000000001", 9007199254740994},
      {"1.7976931348623157e308", std::numeric_limits<double>::max()},
      {"1.7976931348623159e308", infinity},
      {"1e309", infinity},
      {"-1e999999999999999999999999", -infinity},
      {"4.9e-324", std::numeric_limits<double>::denorm_min()},
      {"2.5e-324", std::numeric_limits<double>::denorm_min()},
      {"2.4e-324", 0},
      {"-1e-999999999999999999999999", -0.0},
      {"0e999999999999999999999999", 0},
      {"0." + zeros + "1e100001", 1}, // a small number behind a large exponent
      {"1" + zeros + "e-100000", 1},
      {"1" + zeros + "e-100000i", 1, true},
      {"1" + zeros, infinity},
      {"." + zeros + "1", 0},

      {"", std::nullopt},
      {"-", std::nullopt},
      {".", std::nullopt},
      {"+.", std::nullopt},
      {"e3", std::nullopt},
      {".e3", std::nullopt},
      {"1e", std::nullopt},
      {"1e+", std::nullopt},
      {"1e3.5", std::nullopt},
      {"1ii", std::nullopt},
      {"1k", std::nullopt},
      {"i", std::nullopt},
      {"1I", std::nullopt},
      {"1 ", std::nullopt},
      {" 1", std::nullopt},
      {"1,5", std::nullopt},
      {"1..2", std::nullopt},
      {"--1", std::nullopt},
      {"+-1", std::nullopt},
      {"infinity", std::nullopt},
      {"infi", std::nullopt},
      {"in", std::nullopt},
      {"na", std::nullopt},
      {"n\x01n", std::nullopt},
      {"0x10", std::nullopt},
      {"\xc2\xb2", std::nullopt},
      {std::string("1\0", 2), std::nullopt},
  };
  for (const auto& [text, value, isImaginary] : cases) {
    SCOPED_TRACE(text.substr(0, 50));
    EXPECT_EQ(nvf::is_number(nvf::widen(text)), value.has_value());
    const nvf::BasicTableString<char16_t> interned(nvf::widen(text));
    if (!value) {
      EXPECT_THROW(number(text), nvf::InvalidNumberString);
      EXPECT_THROW(NumberStringCheck()(interned), nvf::InvalidNumberString);
      EXPECT_THROW(nvf::to_number(nvf::widen(text)), nvf::InvalidNumberString);
      continue;
    }
    EXPECT_PRED2(same, number(text).number(), *value);
    EXPECT_EQ(number(text).isImaginary(), isImaginary);
    EXPECT_EQ(NumberStringCheck()(interned).text(), interned);
  }
  EXPECT_FALSE(nvf::is_number(u"\u0131")); // its low byte is a digit
  EXPECT_FALSE(nvf::is_number(u"\u0669nf"));
}

TEST(Number, FromNumbers) {
  const std::pair<NumberString, ustring> cases[] = {
      {NumberString(0.0), u"0"},
      {NumberString(-0.0), u"-0"},
      {NumberString(0.1), u"0.1"},
      {NumberString(-2.5), u"-2.5"},
      {NumberString(1e30), u"1e+30"},
      {NumberString(infinity), u"inf"},
      {NumberString(-infinity), u"-inf"},
      {NumberString(std::copysign(nan, 1.0)), u"nan"},
      {NumberString(std::copysign(nan, -1.0)), u"nan"},
      {NumberString(std::numeric_limits<int>::min()), u"-2147483648"},
      {NumberString(~0UL), u"18446744073709551615"},
      {NumberString(true), u"1"},
  };
  for (const auto& [made, text] : cases) EXPECT_EQ(made.string(), text);
}

TEST(Number, EveryDoubleSurvivesItsText) {
  std::mt19937_64 random(1); // NOLINT(cert-msc51-cpp): the same numbers each time
  for (int i = 0; i < 20'000; ++i) {
    const auto value = std::bit_cast<double>(random());
    const NumberString text(value);
    EXPECT_PRED2(same, text.number(), value) << text;
    EXPECT_TRUE(nvf::is_number(text.view())) << text;
  }
}

TEST(Number, EqualityIsThatOfTheText) {
  expectEqualValues(number("1.5"), NumberString(1.5));
  tessarin::test::expectDistinctInOrder<NumberString>(
      {number("-1.5"), number("1"), number("1."), number("1.5"), number("1.50"), number("15e-1"), number("nan")});
  EXPECT_EQ(tessarin::test::digestOf(number("-1.5e3")), std::vector<std::string>{"-1.5e3"});
}

TEST(Number, TheLocaleDoesNotMatter) {
  struct Commas : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };
  const std::locale former = std::locale::global(std::locale(std::locale::classic(), new Commas));
  EXPECT_EQ(NumberString(1234567.5).string(), u"1234567.5");
  EXPECT_EQ(number("1234567.5").number(), 1234567.5);
  std::locale::global(former);
}

TEST(Number, WholeNumbersAreCheckedForTheirRange) {
  EXPECT_EQ(nvf::whole_number<int>("-2147483648"), std::numeric_limits<int>::min());
  EXPECT_EQ(nvf::whole_number<int>("2147483648"), std::nullopt);
  EXPECT_EQ(nvf::whole_number<unsigned long>("18446744073709551615"), ~0UL);
  EXPECT_EQ(nvf::whole_number<unsigned long>("18446744073709551616"), std::nullopt);
  EXPECT_EQ(nvf::whole_number<std::uint16_t>("fFff", 16), 0xffff);
  for (const char* text : {"", "-1", "+1", "1.0", "1e3", " 1", "1 ", "x"}) {
    EXPECT_EQ(nvf::whole_number<unsigned long>(text), std::nullopt) << text;
  }
}

} // namespace
