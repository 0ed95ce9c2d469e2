#include "tessarin/foundation/units.hpp"

#include "support/small_stack.hpp"
#include "support/value_laws.hpp"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using nvf::ExprString;
using nvf::Factors;
using nvf::InvalidUnitExpression;
using nvf::Rational;
using nvf::UnitsExpr;
using nvf::ustring;
using nvf::detail::CheckExprString;
using tessarin::test::digestBytes;
using tessarin::test::expectDistinctInOrder;
using tessarin::test::expectEqualValues;

UnitsExpr unit(const std::string& text) {
  return UnitsExpr(CheckExprString()(text.data(), text.size()));
}

nvf::CxId id(const ustring& text) {
  return nvf::detail::CxIdCheck()(text);
}

Rational ratio(std::int64_t numerator, std::int64_t denominator = 1) {
  return Rational::make(numerator, denominator).value();
}

TEST(Rational, IsReducedAndStaysInItsRange) {
  constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
  constexpr std::int64_t least64 = std::numeric_limits<std::int64_t>::min();
  EXPECT_EQ(ratio(6, -4), ratio(-3, 2));
  EXPECT_EQ(ratio(0, -5), Rational());
  EXPECT_EQ(ratio(3 * (largest + 1), 6), ratio((largest + 1) / 2));
  for (const auto& [numerator, denominator] : std::vector<std::pair<std::int64_t, std::int64_t>>{
           {1, 0}, {largest + 1, 1}, {-largest - 1, 1}, {1, largest + 1}, {least64, 1}, {1, least64}}) {
    EXPECT_EQ(Rational::make(numerator, denominator), std::nullopt) << numerator << '/' << denominator;
  }
  EXPECT_EQ(ratio(1, 6).plus(ratio(1, 10)), ratio(4, 15));
  EXPECT_EQ(ratio(2, 3).times(ratio(-3, 4)), ratio(-1, 2));
  EXPECT_EQ(ratio(largest).plus(ratio(1)), std::nullopt);
  EXPECT_EQ(ratio(1, largest).plus(ratio(1, largest - 1)), std::nullopt);
  EXPECT_EQ(ratio(largest, largest - 1).plus(ratio(largest, largest - 2)), std::nullopt);
  EXPECT_EQ(ratio(largest).times(ratio(-largest)), std::nullopt);
  expectDistinctInOrder<Rational>(
      {ratio(-largest), ratio(-1), ratio(-1, 2), ratio(0), ratio(1, 3), ratio(1, 2), ratio(1), ratio(largest)});
}

TEST(Units, TextsAndWhatTheyMean) {
  struct Case {
    std::string text;
    std::string normal; // the unit's own text; empty where the text is no unit
  };
  const std::string billion = "1000000000";
  const Case cases[] = {
      {"1", "1"},
      {"V", "V"},
      {"m^2", "m^2"},
      {"m^(2)", "m^2"},
      {"m^+2", "m^2"},
      {"m^(1/2)", "m^(1/2)"},
      {"m^(2/4)", "m^(1/2)"},
      {"m^(4/2)", "m^2"},
      {"s^-2", "1/s^2"},
      {"s^(-2)", "1/s^2"},
      {"s^(-1/2)", "1/s^(1/2)"},
      {"s^-(1/2)", "1/s^(1/2)"},
      {"s^-(-1/2)", "s^(1/2)"},
      {"1/Ohm", "1/Ohm"},
      {"1/K/m", "1/(K*m)"},
      {"rad/s", "rad/s"},
      {"W/(m*K)", "W/(K*m)"},
      {"J/(m^3*K)", "J/(K*m^3)"},
      {"a/b/c", "a/(b*c)"},
      {"a/b*c", "a*c/b"},
      {"a/(b/c)", "a*c/b"},
      {"a/(b/(c/(d/e)))", "a*c*e/(b*d)"},
      {"a/(b/c)^2*d", "a*c^2*d/b^2"},
      {"(m/s)^2", "m^2/s^2"},
      {"((m*s)^2)^(1/2)", "m*s"},
      {"(m^(2/3)*s)^(-3/2)", "1/(m*s^(3/2))"},
      {"1^3*m", "m"},
      {"1*1/1", "1"},
      {"(1)", "1"},
      {"m/m", "1"},
      {"m^0", "1"},
      {"(m*s)^0", "1"},
      {"s*m", "m*s"},
      {"m*m*m", "m^3"},
      {" N * m ^ ( 1 / 2 ) ", "N*m^(1/2)"},
      {"kg_1*B2", "B2*kg_1"},
      {"m^2147483647", "m^2147483647"},
      {"(m^" + billion + ")^2/m^" + billion, "m^" + billion}, // 2e9 fits
      {"m^(1/2147483647)", "m^(1/2147483647)"},

      {"", ""},
      {" ", ""},
      {"2", ""},
      {"11", ""},
      {"1m", ""},
      {"2*m", ""},
      {"1.0", ""},
      {"m^0.5", ""},
      {"m^1/2", ""}, // (m^1)/2
      {"m s", ""},
      {"m^", ""},
      {"m^-", ""},
      {"m^s", ""},
      {"m^2^3", ""},
      {"m^(1/2/3)", ""},
      {"m^(1/-2)", ""},
      {"m^((2))", ""},
      {"m^()", ""},
      {"m^(2", ""},
      {"m^(1/0)", ""},
      {"^2", ""},
      {"*m", ""},
      {"m*", ""},
      {"m/", ""},
      {"m**s", ""},
      {"m//s", ""},
      {"-m", ""},
      {"()", ""},
      {"(m", ""},
      {"m)", ""},
      {"(m))", ""},
      {"m(s)", ""},
      {"m.s", ""},
      {"_m", ""},
      {"m'", ""},
      {"m\ts", ""},
      {"\xc2\xb5m", ""},
      {std::string("m\0", 2), ""},
      {"m^2147483648", ""},
      {"m^18446744073709551617", ""},
      {"m^(18446744073709551617/18446744073709551617)", ""},
      {"(m^" + billion + ")^3", ""},
      {"m^2147483647*m", ""},
      {"((((((m^64)^64)^64)^64)^64)^64)^64", ""},
      {"m^(1/2147483647)*m^(1/2147483646)", ""},
  };
  for (const auto& [text, normal] : cases) {
    SCOPED_TRACE(text);
    if (normal.empty()) {
      EXPECT_THROW(unit(text), InvalidUnitExpression);
      continue;
    }
    try {
      EXPECT_EQ(nvf::narrow(unit(text).text().view()), normal);
      EXPECT_EQ(unit(text).isOne(), normal == "1");
      expectEqualValues(unit(normal), unit(text));
      EXPECT_EQ(nvf::narrow(CheckExprString()(text.data(), text.size()).view()), text) << "the text itself is kept";
    } catch (const InvalidUnitExpression& error) {
      ADD_FAILURE() << error.what();
    }
  }
  EXPECT_THROW(CheckExprString()(u"\u0131"), InvalidUnitExpression); // its low byte is "1"
  EXPECT_EQ(CheckExprString()(nvf::detail::AsciiStringCheck()(u"m")).string(), u"m");
}

TEST(Units, FaultsSayWhere) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "the unit '' needs a unit at character 1."},
      {"m*", "the unit 'm*' needs a unit at character 3."},
      {"(m s)", "the unit '(m s)' needs an operator or ')' at character 4."},
      {"m)", "the unit 'm)' needs an operator at character 2."},
      {"m^(1/x)", "the unit 'm^(1/x)' needs a whole number at character 6."},
      {"m^(1/0)", "the unit 'm^(1/0)' has an exponent that is too large or divides by zero."},
  };
  for (const auto& [text, what] : cases) {
    try {
      unit(text);
      ADD_FAILURE() << text;
    } catch (const InvalidUnitExpression& error) {
      EXPECT_EQ(error.what(), what);
    }
  }
}

TEST(Units, HostileTextNeedsNoStack) {
  constexpr std::size_t depth = 50'000;
  const std::string nest = std::string(depth, '(') + "m" + std::string(depth, ')');
  std::string powers = std::string(depth, '(') + "m";
  for (std::size_t i = 0; i < depth; ++i) powers += i % 2 == 0 ? ")^2" : ")^(1/2)";
  std::string quotients = "m";
  for (std::size_t i = 0; i < depth; ++i) quotients += i % 2 == 0 ? "/(s" : "/(m";
  tessarin::test::onSmallStack([&] {
    EXPECT_EQ(unit(nest), unit("m"));
    EXPECT_EQ(unit(powers), unit("m"));
    EXPECT_EQ(unit(quotients + std::string(depth, ')')), unit("(m/s)^" + std::to_string(depth / 2) + "*m"));
    EXPECT_THROW(unit(nest + ")"), InvalidUnitExpression);
    EXPECT_THROW(unit(std::string(depth, '(')), InvalidUnitExpression);
  });
}

TEST(Units, KeepTheLaws) {
  expectDistinctInOrder<UnitsExpr>({UnitsExpr(), unit("A^-1"), unit("A^(1/2)"), unit("A"), unit("A*B"), unit("A*C"),
                                    unit("A^2"), unit("B"), unit("a")});
  EXPECT_TRUE(digestBytes(UnitsExpr()).empty());
  EXPECT_EQ(hash_value(UnitsExpr()), 0U);
  EXPECT_EQ(digestBytes(unit("V/s^(1/2)")), "56"
                                            "0000000100000001"
                                            "73"
                                            "ffffffff00000002");
}

TEST(Units, AreMadeOfFactors) {
  struct Catalog : nvf::UnitContext {
    bool knows(const nvf::CxId& unit) const override { return unit == id(u"m") || unit == id(u"s"); }
  };
  const Factors factors{{id(u"s"), ratio(-1)}, {id(u"m"), ratio(2)}, {id(u"kg"), ratio(0)}};
  EXPECT_EQ(UnitsExpr(Catalog(), factors), unit("m^2/s"));
  EXPECT_EQ(UnitsExpr(Catalog(), factors).factors().size(), 2U);
  EXPECT_TRUE(UnitsExpr(Catalog(), Factors()).isOne());
  EXPECT_THROW(UnitsExpr(Catalog(), {{id(u"ft"), ratio(1)}}), InvalidUnitExpression);
  EXPECT_NO_THROW(UnitsExpr(nvf::UnitContext(), {{id(u"ft"), ratio(1)}}));
  EXPECT_THROW(UnitsExpr(nvf::UnitContext(), {{nvf::CxId(), ratio(1)}}), InvalidUnitExpression);

  const nvf::RawExpr raw{{id(u"m"), ratio(2)}, {id(u"s"), ratio(-1)}};
  EXPECT_EQ(nvf::to_raw_expr(unit("m^2/s").factors()), raw);
  EXPECT_EQ(ExprString({{id(u"s"), ratio(1)}, {id(u"m"), ratio(1)}, {id(u"s"), ratio(1)}}).string(), u"s*m*s");
}

TEST(Units, TheDefaultIsOneWhateverTheArgument) {
  EXPECT_TRUE(UnitsExpr(nvf::UnitExpression(true)).isOne());
  EXPECT_TRUE(UnitsExpr(nvf::UnitExpression(false)).isOne());
  EXPECT_EQ(UnitsExpr().text().string(), u"1");
}

TEST(Units, RandomFactorsSurviveTheirText) {
  std::mt19937 random(1); // NOLINT(cert-msc51-cpp): the same units each time
  const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  const ustring names[] = {u"m", u"s", u"kg", u"A", u"K", u"mol"};
  for (int i = 0; i < 2'000; ++i) {
    Factors factors;
    for (int n = below(5); n > 0; --n) factors[id(names[below(6)])] = ratio(below(9) - 4, 1 + below(4));
    const UnitsExpr made(nvf::UnitContext(), factors);
    expectEqualValues(UnitsExpr(CheckExprString()(made.text().view())), made);
  }
}

} // namespace
