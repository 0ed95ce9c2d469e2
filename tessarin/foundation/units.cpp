#include "tessarin/foundation/units.hpp"

#include <algorithm>
#include <limits>
#include <optional>

namespace nvf {

namespace {

/// Reads the text of a unit.
///
/// A first pass over the text makes a flat list of powers and parentheses; a parenthesis that closes carries the
/// exponent behind it and the sign of the operator before the one that opens. A second pass runs over the list from its
/// end, so that it meets the exponent of each pair of parentheses before their contents, and multiplies.
class UnitReader {
public:
  explicit UnitReader(ustring_view text) : text_(text) {}

  RawExpr read() {
    scan();
    return multiply();
  }

private:
  enum class Kind : unsigned char { Power, Open, Close };
  struct Item {
    Kind kind;
    CxId unit;         // of a power
    Rational exponent; // of a power or a closing parenthesis
  };

  void scan() {
    bool inDenominator = false;
    std::vector<bool> openInDenominator; // for each open parenthesis, whether "/" stands before it
    for (;;) {
      if (take(u'(')) {
        items_.push_back({Kind::Open, {}, {}});
        openInDenominator.push_back(inDenominator);
        inDenominator = false;
        continue;
      }
      scanPower(inDenominator);
      while (!openInDenominator.empty() && take(u')')) {
        items_.push_back({Kind::Close, {}, exponent(openInDenominator.back())});
        openInDenominator.pop_back();
      }
      if (atEnd() && openInDenominator.empty()) return;
      inDenominator = take(u'/');
      if (!inDenominator && !take(u'*')) fail(openInDenominator.empty() ? "an operator" : "an operator or ')'");
    }
  }

  void scanPower(bool inDenominator) {
    if (take(u'1')) {
      exponent(inDenominator);
      return;
    }
    const ustring_view rest = text_.substr(position_);
    const auto* end = std::find_if_not(rest.begin(), rest.end(), continues_identifier);
    const ustring_view name = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
    if (!is_identifier(name)) fail("a unit");
    position_ += name.size();
    const CxId unit = detail::CxIdCheck()(name);
    items_.push_back({Kind::Power, unit, exponent(inDenominator)});
  }

  /// The exponent that follows, or else 1; negated in a denominator.
  Rational exponent(bool inDenominator) {
    const Rational power = take(u'^') ? writtenExponent() : Rational::one();
    return inDenominator ? power.negated() : power;
  }

  Rational writtenExponent() {
    const bool negative = takeSign();
    if (!take(u'(')) return fraction(digits(), 1, negative);
    const bool negativeInside = takeSign();
    const std::int64_t numerator = digits();
    const std::int64_t denominator = take(u'/') ? digits() : 1;
    if (!take(u')')) fail("')'");
    return fraction(numerator, denominator, negative != negativeInside);
  }

  Rational fraction(std::int64_t numerator, std::int64_t denominator, bool negative) const {
    const auto value = Rational::make(negative ? -numerator : numerator, denominator);
    if (!value) failExponent();
    return *value;
  }

  std::int64_t digits() {
    skipBlanks();
    const std::size_t begin = position_;
    std::int64_t value = 0;
    for (; position_ < text_.size() && is_ascii_digit(text_[position_]); ++position_) {
      value = 10 * value + (text_[position_] - u'0');
      if (value > std::numeric_limits<std::int32_t>::max()) failExponent();
    }
    if (position_ == begin) fail("a whole number");
    return value;
  }

  bool takeSign() {
    const bool negative = take(u'-');
    if (!negative) take(u'+');
    return negative;
  }

  bool take(char16_t unit) {
    if (atEnd() || text_[position_] != unit) return false;
    ++position_;
    return true;
  }

  bool atEnd() {
    skipBlanks();
    return position_ == text_.size();
  }

  void skipBlanks() {
    while (position_ < text_.size() && text_[position_] == u' ') ++position_;
  }

  [[noreturn]] void fail(const std::string& expected) const {
    throw InvalidUnitExpression(text_, "needs " + expected + " at character " + std::to_string(position_ + 1));
  }

  [[noreturn]] void failExponent() const {
    throw InvalidUnitExpression(text_, "has an exponent that is too large or divides by zero");
  }

  [[nodiscard]] RawExpr multiply() const {
    RawExpr powers;
    std::vector<Rational> outer{Rational::one()};
    for (auto item = items_.rbegin(); item != items_.rend(); ++item) {
      if (item->kind == Kind::Open) {
        outer.pop_back();
        continue;
      }
      const auto product = outer.back().times(item->exponent);
      if (!product) failExponent();
      if (item->kind == Kind::Close) {
        outer.push_back(*product);
      } else {
        powers.push_back({item->unit, *product});
      }
    }
    std::reverse(powers.begin(), powers.end());
    return powers;
  }

  ustring_view text_;
  std::size_t position_ = 0;
  std::vector<Item> items_;
};

/// Whether the unit stands below the fraction bar.
bool isBelow(const UnitPower& power) {
  return power.exponent < Rational();
}

void appendPower(ustring& out, const UnitPower& power) {
  out += power.unit.view();
  const Rational exponent = isBelow(power) ? power.exponent.negated() : power.exponent;
  if (exponent == Rational::one()) return;
  const auto number = [](std::int32_t part) { return decimal(static_cast<std::size_t>(part)); };
  out += exponent.isWhole() ? u"^" + number(exponent.numerator())
                            : u"^(" + number(exponent.numerator()) + u"/" + number(exponent.denominator()) + u")";
}

/// The text of the powers that are, or are not, below the fraction bar.
ustring productText(const RawExpr& expr, bool below) {
  ustring out;
  for (const UnitPower& power : expr) {
    if (isBelow(power) != below) continue;
    if (!out.empty()) out += u'*';
    appendPower(out, power);
  }
  return out;
}

ustring textOf(const RawExpr& expr) {
  const ustring above = productText(expr, false);
  const ustring below = productText(expr, true);
  ustring out = above.empty() ? u"1" : above;
  if (below.empty()) return out;
  const bool needsParentheses = std::count_if(expr.begin(), expr.end(), isBelow) > 1;
  out += needsParentheses ? u"/(" + below + u")" : u"/" + below;
  return out;
}

Factors withoutZeros(Factors factors) {
  std::erase_if(factors, [](const auto& factor) { return factor.second == Rational(); });
  return factors;
}

} // namespace

InvalidUnitExpression::InvalidUnitExpression(ustring_view text, const std::string& fault)
    : Exception("the unit '" + encode_utf8(text) + "' " + fault + ".") {}

Factors to_factors(const RawExpr& expr) {
  Factors factors;
  for (const UnitPower& power : expr) {
    Rational& exponent = factors[power.unit];
    const auto sum = exponent.plus(power.exponent);
    if (!sum) throw InvalidUnitExpression(textOf(expr), "has an exponent that is too large");
    exponent = *sum;
  }
  return withoutZeros(std::move(factors));
}

RawExpr to_raw_expr(const Factors& factors) {
  RawExpr expr;
  expr.reserve(factors.size());
  for (const auto& [unit, exponent] : factors) expr.push_back({unit, exponent});
  std::stable_partition(expr.begin(), expr.end(), [](const UnitPower& power) { return !isBelow(power); });
  return expr;
}

ExprString::ExprString(ustring_view text) : ExprString(detail::CheckExprString()(text)) {}
ExprString::ExprString(std::string_view text) : ExprString(detail::CheckExprString()(text.data(), text.size())) {}
std::optional<ExprString> ExprString::make(ustring_view text) {
  try {
    return ExprString(text);
  } catch (const InvalidUnitExpression&) {
    return std::nullopt;
  }
}
std::optional<ExprString> ExprString::make(std::string_view text) {
  return make(widen(text));
}
std::optional<UnitsExpr> UnitsExpr::make(ustring_view text) {
  const std::optional<ExprString> checked = ExprString::make(text);
  return checked ? std::optional(UnitsExpr(*checked)) : std::nullopt;
}
std::optional<UnitsExpr> UnitsExpr::make(std::string_view text) {
  return make(widen(text));
}
ExprString::ExprString(const RawExpr& expr) : ExprString(Text(textOf(expr))) {}

namespace detail {

ExprString CheckExprString::operator()(const AsciiString& text) const {
  return (*this)(text.text());
}

ExprString CheckExprString::operator()(ustring_view text) const {
  to_factors(UnitReader(text).read());
  return ExprString(ExprString::Text(text));
}

ExprString CheckExprString::operator()(const char* text, unsigned long length) const {
  return (*this)(widen({text, length}));
}

} // namespace detail

UnitExpression::UnitExpression(const ExprString& text) : raw_(UnitReader(text.view()).read()) {}

UnitContext::~UnitContext() = default;
bool UnitContext::knows(const CxId&) const {
  return true;
}

UnitsExpr::UnitsExpr(Factors factors) {
  if (factors.empty()) return;
  const ExprString text(to_raw_expr(factors));
  info_ = std::make_shared<const UnitsInfo>(UnitsInfo{std::move(factors), text});
}

UnitsExpr::UnitsExpr(const UnitExpression& expression) : UnitsExpr(to_factors(expression.raw())) {}

UnitsExpr::UnitsExpr(const UnitContext& context, const Factors& factors) : UnitsExpr(withoutZeros(factors)) {
  for (const auto& [unit, exponent] : this->factors()) {
    if (unit.empty() || !context.knows(unit)) throw InvalidUnitExpression(unit.view(), "is unknown");
  }
}

const UnitsInfo& UnitsExpr::info() const {
  static const UnitsInfo one{{}, ExprString(RawExpr())};
  return isOne() ? one : *info_;
}

Ordering compare(const UnitsExpr& a, const UnitsExpr& b) {
  if (a.info_ == b.info_) return Ordering::Equal;
  return order(a.factors(), b.factors());
}

std::size_t hash_value(const UnitsExpr& unit) {
  std::size_t seed = 0;
  for (const auto& [name, exponent] : unit.factors()) {
    seed = hash_combine(seed, hash_combine(hash_combine(0, hash_value(name)), hash_value(exponent)));
  }
  return seed;
}

void incorporate_data(DigestSink& sink, const UnitsExpr& unit) {
  for (const auto& [name, exponent] : unit.factors()) {
    incorporate_data(sink, name);
    incorporate_data(sink, exponent);
  }
}

} // namespace nvf
