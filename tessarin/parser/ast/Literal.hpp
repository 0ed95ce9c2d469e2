// Literals: a value that keeps its source spelling, and the ways in which one is written.
#pragma once

#include "tessarin/foundation/node.hpp"
#include "tessarin/foundation/number.hpp"
#include "tessarin/foundation/units.hpp"
#include "tessarin/parser/ast/Ident.hpp"

#include <iosfwd>

namespace tessarin::compiler::core {

/// A value with its place. `Outputter` is a stateless function object that appends the literal's text.
template <class T, class Outputter>
class TESSARIN_EXPORT Literal : public nvf::TupleWrapper<Literal<T, Outputter>, T, IgnoredRange> {
  using Base = nvf::TupleWrapper<Literal<T, Outputter>, T, IgnoredRange>;

public:
  Literal() = default;
  /// With its place, which is no part of the value.
  Literal(const T& value, const nvf::Range& range) : Base(value, range) {}
  /// What is written, without quotes; of a string its content, before quotes are doubled.
  [[nodiscard]] const T& value() const noexcept { return this->template get<0>(); }
  /// Appends the text of the literal.
  void append(ustring& out) const { Outputter()(out, value()); }
  /// The text of the literal.
  [[nodiscard]] ustring string() const {
    ustring out;
    append(out);
    return out;
  }
};

/// The text as it stands: a number keeps its source spelling, so that `1.50` and `1.5` differ.
struct TESSARIN_EXPORT SimpleOutputter {
  /// Appends the text.
  void operator()(ustring& out, const nvf::NumberString& number) const;
  /// To a narrow stream.
  void operator()(std::ostream& stream, const nvf::NumberString& number) const;
};

/// Single quotes around the text, each quote in it doubled.
struct TESSARIN_EXPORT CharacterVectorOutputter {
  /// Appends the quoted text.
  void operator()(ustring& out, const ustring& text) const;
  /// To a narrow stream, in the local encoding.
  void operator()(std::ostream& stream, const ustring& text) const;
  /// To a stream of UTF-16.
  void operator()(std::basic_ostream<char16_t>& stream, const ustring& text) const;
};

/// Single quotes around the text of a unit. Quotes in it are not doubled: a unit text is never escaped, intended.
struct TESSARIN_EXPORT SingleQuoteOutputter {
  /// Appends the quoted text.
  void operator()(ustring& out, const nvf::ExprString& unit) const;
  /// In the local encoding.
  void operator()(std::ostream& stream, const nvf::ExprString& unit) const;
};

/// A number in its source spelling.
using NumberLiteral = Literal<nvf::NumberString, SimpleOutputter>;
/// A text.
using StringLiteral = Literal<ustring, CharacterVectorOutputter>;
/// The text of a unit.
using UnitLiteral = Literal<nvf::ExprString, SingleQuoteOutputter>;

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::NumberLiteral, "value");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::StringLiteral, "value");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::UnitLiteral, "value");
