// Units: their text, what it says, and the product of powers that it stands for.
//
//   unit     = power { ("*" | "/") power }                 from left to right: a/b*c is (a/b)*c
//   power    = ("1" | name | "(" unit ")") [ "^" exponent ]
//   exponent = [sign] ( digits | "(" [sign] digits [ "/" digits ] ")" )
//
// A name is an identifier; blanks may stand between the parts. An `ExprString` is text that keeps these rules, a
// `RawExpr` its powers in the order in which they are written, a `Factors` the same with each unit once, and a
// `UnitsExpr` the unit itself: `m*s` and `s*m` are one unit, and `m/m` is the unit 1. What a unit's name stands for is
// the business of the host's catalog.
//
// Reading takes time linear in the length of the text and no stack, however deep parentheses nest.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/checked_text.hpp"
#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/identifier.hpp"
#include "tessarin/foundation/rational.hpp"

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nvf {

/// Thrown where text that must be a unit is not, where exponents grow beyond what a `Rational` holds, and where the
/// catalog does not know a unit.
class TESSARIN_EXPORT InvalidUnitExpression : public Exception {
public:
  /// For the text, and what is wrong with it.
  InvalidUnitExpression(ustring_view text, const std::string& fault);
};

namespace detail {
struct CheckExprString;
}

/// A power of a unit.
struct UnitPower {
  /// The name of the unit, and how often it is a factor; negative where it divides.
  /// @{
  CxId unit;
  Rational exponent;
  /// @}
  friend bool operator==(const UnitPower&, const UnitPower&) noexcept = default;
};

/// A product of powers, in order. The unit 1 has none.
using RawExpr = std::vector<UnitPower>;

/// The units of a product with their exponents, none of which is 0.
using Factors = std::map<CxId, Rational>;

/// The factors of a product. Throws `InvalidUnitExpression` where an exponent grows too large.
TESSARIN_EXPORT Factors to_factors(const RawExpr& expr);
/// The factors as a product: first those with positive exponents, then the others, each in the order of their names.
TESSARIN_EXPORT RawExpr to_raw_expr(const Factors& factors);

/// The text of a unit.
class TESSARIN_EXPORT ExprString : public CheckedText<ExprString> {
public:
  /// The text that is read as this product, such as "kg*m/(K*s^2)".
  explicit ExprString(const RawExpr& expr);
  /// The unit that is written like this. Throws `InvalidUnitExpression` where the text is none.
  /// @{
  explicit ExprString(ustring_view text);
  explicit ExprString(std::string_view text);
  /// @}
  /// The same, or nothing where the text is none.
  /// @{
  static std::optional<ExprString> make(ustring_view text);
  static std::optional<ExprString> make(std::string_view text);
  /// @}

private:
  friend struct detail::CheckExprString;
  explicit ExprString(Text text) noexcept : CheckedText(text) {}
};

namespace detail {
/// Makes an `ExprString`; throws `InvalidUnitExpression` where the text is no unit.
struct TESSARIN_EXPORT CheckExprString {
  ExprString operator()(const AsciiString& text) const;
  ExprString operator()(ustring_view text) const;
  ExprString operator()(const char* text, unsigned long length) const;
};
} // namespace detail

/// What the text of a unit says.
class TESSARIN_EXPORT UnitExpression {
public:
  /// Reads the text. Throws `InvalidUnitExpression` where it was made of a `RawExpr` that has an empty name.
  explicit UnitExpression(const ExprString& text);
  /// The default unit, which is 1. The argument only selects this constructor; both values mean the same: intended.
  explicit UnitExpression(bool) noexcept {}

  /// The product that the text stands for.
  [[nodiscard]] const RawExpr& raw() const noexcept { return raw_; }

private:
  RawExpr raw_;
};

/// The units that a host knows. This one takes every identifier for a unit; a host that has a catalog derives its own.
/// Asked from the thread that makes a unit.
class TESSARIN_EXPORT UnitContext {
public:
  UnitContext() = default;
  UnitContext(const UnitContext&) = default;
  UnitContext& operator=(const UnitContext&) = default;
  virtual ~UnitContext();
  /// Whether the name is that of a unit; the default knows every name.
  [[nodiscard]] virtual bool knows(const CxId& unit) const;
};

/// What a `UnitsExpr` is made of.
struct UnitsInfo {
  /// In the order of the names, without exponents of 0.
  Factors factors;
  ExprString text; ///< the text of the factors, the same for equal units
};

/// A unit. Copies share their contents. The default is the unit 1.
class TESSARIN_EXPORT UnitsExpr : public detail::OrderingOperators<UnitsExpr> {
public:
  UnitsExpr() noexcept = default;
  /// Throws `InvalidUnitExpression` where an exponent grows too large, which that of a checked text does not.
  explicit UnitsExpr(const UnitExpression& expression);
  /// Reads the text and goes on as the above; throws what reading or that throws, for a text made of a `RawExpr` only.
  explicit UnitsExpr(const ExprString& text) : UnitsExpr(UnitExpression(text)) {}
  /// The unit of a text. Throws `InvalidUnitExpression` where the text is none.
  /// @{
  explicit UnitsExpr(ustring_view text) : UnitsExpr(ExprString(text)) {}
  explicit UnitsExpr(std::string_view text) : UnitsExpr(ExprString(text)) {}
  /// @}
  /// The same, or nothing where the text is none.
  /// @{
  static std::optional<UnitsExpr> make(ustring_view text);
  static std::optional<UnitsExpr> make(std::string_view text);
  /// @}
  /// Throws `InvalidUnitExpression` where the context does not know a unit. Factors with exponent 0 do not count.
  UnitsExpr(const UnitContext& context, const Factors& factors);

  /// Whether this is the unit 1, that of numbers without dimension.
  [[nodiscard]] bool isOne() const noexcept { return info_ == nullptr; }
  /// The factors of the unit, and their text; they live as long as the unit or a copy of it.
  /// @{
  [[nodiscard]] const UnitsInfo& info() const;
  [[nodiscard]] const Factors& factors() const { return info().factors; }
  /// @}
  /// The text of the unit; it reads back as an equal unit.
  [[nodiscard]] const ExprString& text() const { return info().text; }

  friend bool operator==(const UnitsExpr& a, const UnitsExpr& b) noexcept {
    return a.info_ == b.info_ || (a.info_ && b.info_ && a.info_->text == b.info_->text);
  }
  /// By factors, in the order of their names: first by name, then by exponent.
  friend TESSARIN_EXPORT Ordering compare(const UnitsExpr& a, const UnitsExpr& b);
  /// The hash of the factors as a map; the unit 1 hashes to 0.
  friend TESSARIN_EXPORT std::size_t hash_value(const UnitsExpr& unit);
  /// Feeds for each factor its name, then its exponent; the unit 1 feeds nothing.
  friend TESSARIN_EXPORT void incorporate_data(DigestSink& sink, const UnitsExpr& unit);
  friend void swap(UnitsExpr& a, UnitsExpr& b) noexcept { a.info_.swap(b.info_); }
  friend ustring dump_text(const UnitsExpr& unit) { return unit.text().string(); }
  /// Writes the text of the unit.
  friend std::ostream& operator<<(std::ostream& stream, const UnitsExpr& unit) { return stream << unit.text(); }

private:
  explicit UnitsExpr(Factors factors);

  std::shared_ptr<const UnitsInfo> info_; // null for the unit 1
};

template <>
inline constexpr bool hashesByValue<UnitsExpr> = true;

} // namespace nvf
