// How a tree is printed.
//
// There are two readers. The compiler rereads its own output: the reserved call forms keep all information, and a
// printed tree parses back to an equal tree (docs/architecture.md lists what does not). The user
// sees what the user wrote.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/identifier.hpp"
#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <utility>

namespace tessarin::compiler::core {

class Expr;
class UnitExpr;
class ToStringContext;

/// Blanks for each step of the indent.
struct Increment {
  std::size_t value; ///< Their number.
};
/// Blanks at the head of a line.
struct Indentation {
  std::size_t value; ///< Their number.
};

/// The context of printing; a value, copied freely. Each field has a getter and a setter of the same name.
class TESSARIN_EXPORT ToStringContext {
public:
  /// Gives the text of an expression with a unit.
  using UnitExprFcn = std::function<ustring(const UnitExpr&, const ToStringContext&)>;
  /// Gives the path that is printed for the first name of a reference.
  using MapIdentifierFcn = std::function<nvf::CxIdPath(const nvf::CxId&)>;
  /// Gives the text of an expression, or nothing where it is printed as usual.
  using OutputFcn = std::function<std::optional<ustring>(const Expr&, const ToStringContext&)>;

  ToStringContext();

  /// Prints a `UnitExpr`. Null sets the default.
  /// @{
  [[nodiscard]] const std::shared_ptr<const UnitExprFcn>& unitExprFcn() const noexcept { return unitExprFcn_; }
  ToStringContext& unitExprFcn(std::shared_ptr<const UnitExprFcn> function);
  /// @}

  /// Whether a `FieldValueArrayExpr` is printed as a `struct(…)` call.
  /// @{
  [[nodiscard]] bool fvaAsStruct() const noexcept { return fvaAsStruct_; }
  ToStringContext& fvaAsStruct(bool value) noexcept;
  /// @}

  /// Whether the text is for the user.
  /// @{
  [[nodiscard]] bool asUserStr() const noexcept { return asUserStr_; }
  ToStringContext& asUserStr(bool value) noexcept;
  /// @}

  /// Whether the text stands inside a line and gets no indent.
  /// @{
  [[nodiscard]] bool asRValue() const noexcept { return asRValue_; }
  ToStringContext& asRValue(bool value) noexcept;
  /// @}

  /// Blanks for each step of the indent.
  /// @{
  [[nodiscard]] std::size_t increment() const noexcept { return increment_; }
  ToStringContext& increment(Increment value) noexcept;
  /// @}

  /// Blanks at the head of a line.
  /// @{
  [[nodiscard]] std::size_t indent() const noexcept { return indent_; }
  ToStringContext& indent(Indentation value) noexcept;
  /// @}

  /// Rewrites the first name of a reference. Null sets the default.
  /// @{
  [[nodiscard]] const std::shared_ptr<const MapIdentifierFcn>& mapIdentifierFcn() const noexcept {
    return mapIdentifierFcn_;
  }
  ToStringContext& mapIdentifierFcn(std::shared_ptr<const MapIdentifierFcn> function);
  /// @}

  /// Asked first for every expression; what it gives is the text. Empty where nothing is asked.
  /// @{
  [[nodiscard]] const OutputFcn& outputFcn() const noexcept { return outputFcn_; }
  ToStringContext& outputFcn(OutputFcn function);
  /// @}

  /// What `mapIdentifierFcn` makes of a name.
  [[nodiscard]] nvf::CxIdPath mapIdentifier(const nvf::CxId& id) const;
  /// `indent` blanks.
  [[nodiscard]] ustring indentStr() const;
  /// `indentStr()`, or nothing where the text stands inside a line.
  [[nodiscard]] ustring leadingIndentStr() const;
  /// A copy for text inside a line.
  [[nodiscard]] ToStringContext rvalue() const;
  /// A copy `n` steps further in. Text that starts at indent 0 stays there: it stays on one line.
  [[nodiscard]] ToStringContext incrementIndent(std::size_t n) const;

  /// The defaults, each one object in the whole process.
  /// @{
  static const std::shared_ptr<const UnitExprFcn>& makeDefaultUnitExprFcn();
  static const std::shared_ptr<const MapIdentifierFcn>& makeDefaultMapIdentifierFcn();
  /// @}

private:
  std::shared_ptr<const UnitExprFcn> unitExprFcn_;
  std::shared_ptr<const MapIdentifierFcn> mapIdentifierFcn_;
  OutputFcn outputFcn_;
  std::size_t increment_ = 2;
  std::size_t indent_ = 0;
  bool fvaAsStruct_ = false;
  bool asUserStr_ = false;
  bool asRValue_ = true;
};

/// Prints `{expr, 'unit'}`.
TESSARIN_EXPORT ToStringContext::UnitExprFcn make_default_unit_expr_fcn();
/// Prints a call of `path` with the expression and the unit's text as a string.
TESSARIN_EXPORT ToStringContext::UnitExprFcn make_ctor_unit_expr_fcn(const nvf::CxIdPath& path);
/// Throws `UnexpectedUnitExpr`.
TESSARIN_EXPORT ToStringContext::UnitExprFcn make_error_always_unit_expr_fcn();

/// Thrown where an expression with a unit is printed and must not be.
class TESSARIN_EXPORT UnexpectedUnitExpr : public nvf::StandardFailure<std::logic_error> {
public:
  /// For the expression that must not be printed.
  explicit UnexpectedUnitExpr(const UnitExpr& expr);
  UnexpectedUnitExpr(const UnexpectedUnitExpr&) noexcept = default;
  UnexpectedUnitExpr& operator=(const UnexpectedUnitExpr&) noexcept = default;
  ~UnexpectedUnitExpr() override;
  /// The expression; it lives as long as the exception or a copy of it.
  [[nodiscard]] const UnitExpr& expr() const noexcept { return *expr_; }

private:
  std::shared_ptr<const UnitExpr> expr_;
};

} // namespace tessarin::compiler::core
