#include "tessarin/parser/ast/ToStringContext.hpp"

#include "tessarin/parser/ast/Conversions.hpp"
#include "tessarin/parser/ast/Printer.hpp"

namespace tessarin::compiler::core {

ToStringContext::ToStringContext()
    : unitExprFcn_(makeDefaultUnitExprFcn()), mapIdentifierFcn_(makeDefaultMapIdentifierFcn()) {}

ToStringContext& ToStringContext::unitExprFcn(std::shared_ptr<const UnitExprFcn> function) {
  if (!function) function = makeDefaultUnitExprFcn();
  unitExprFcn_ = std::move(function);
  return *this;
}
ToStringContext& ToStringContext::fvaAsStruct(bool value) noexcept {
  fvaAsStruct_ = value;
  return *this;
}
ToStringContext& ToStringContext::asUserStr(bool value) noexcept {
  asUserStr_ = value;
  return *this;
}
ToStringContext& ToStringContext::asRValue(bool value) noexcept {
  asRValue_ = value;
  return *this;
}
ToStringContext& ToStringContext::increment(Increment value) noexcept {
  increment_ = value.value;
  return *this;
}
ToStringContext& ToStringContext::indent(Indentation value) noexcept {
  indent_ = value.value;
  return *this;
}
ToStringContext& ToStringContext::mapIdentifierFcn(std::shared_ptr<const MapIdentifierFcn> function) {
  if (!function) function = makeDefaultMapIdentifierFcn();
  mapIdentifierFcn_ = std::move(function);
  return *this;
}
ToStringContext& ToStringContext::outputFcn(OutputFcn function) {
  outputFcn_ = std::move(function);
  return *this;
}

nvf::CxIdPath ToStringContext::mapIdentifier(const nvf::CxId& id) const {
  return (*mapIdentifierFcn_)(id);
}
ustring ToStringContext::indentStr() const {
  return ustring(indent_, u' ');
}
ustring ToStringContext::leadingIndentStr() const {
  return asRValue_ ? ustring() : indentStr();
}

ToStringContext ToStringContext::rvalue() const {
  ToStringContext copy = *this;
  copy.asRValue_ = true;
  return copy;
}

ToStringContext ToStringContext::incrementIndent(std::size_t n) const {
  ToStringContext copy = *this;
  if (indent_ != 0) copy.indent_ = n * increment_ + indent_;
  return copy;
}

const std::shared_ptr<const ToStringContext::UnitExprFcn>& ToStringContext::makeDefaultUnitExprFcn() {
  static const auto function = std::make_shared<const UnitExprFcn>(make_default_unit_expr_fcn());
  return function;
}

const std::shared_ptr<const ToStringContext::MapIdentifierFcn>& ToStringContext::makeDefaultMapIdentifierFcn() {
  static const auto function =
      std::make_shared<const MapIdentifierFcn>([](const nvf::CxId& id) { return nvf::CxIdPath({id}); });
  return function;
}

ToStringContext::UnitExprFcn make_default_unit_expr_fcn() {
  return [](const UnitExpr& expr, const ToStringContext& context) {
    return printed([&](Printer& printer) {
      printer << u"{";
      printer.print(expr.expr(), context);
      printer << u", " << expr.unit().string() << u"}";
    });
  };
}

ToStringContext::UnitExprFcn make_ctor_unit_expr_fcn(const nvf::CxIdPath& path) {
  return [path](const UnitExpr& expr, const ToStringContext& context) {
    const StringLiteral unit(expr.unit().value().string(), nvf::Range());
    return to_string(Expr(make_variable(path, std::vector<Expr>{expr.expr(), unit})), context);
  };
}

ToStringContext::UnitExprFcn make_error_always_unit_expr_fcn() {
  return [](const UnitExpr& expr, const ToStringContext&) -> ustring { throw UnexpectedUnitExpr(expr); };
}

UnexpectedUnitExpr::UnexpectedUnitExpr(const UnitExpr& expr)
    : StandardFailure(
          "UnexpectedUnitExpr: " +
          nvf::ustring_to_local_encoded_string((*ToStringContext::makeDefaultUnitExprFcn())(expr, ToStringContext()))),
      expr_(std::make_shared<const UnitExpr>(expr)) {}
UnexpectedUnitExpr::~UnexpectedUnitExpr() = default;

} // namespace tessarin::compiler::core
