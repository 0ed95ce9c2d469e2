#include "tessarin/parser/ast/EqnItem.hpp"

#include "tessarin/foundation/messages.hpp"
#include "tessarin/parser/ast/fixed_id.hpp"

#include <algorithm>

namespace tessarin::compiler::core {

// ---- items by what they are ----

namespace {

const EqnItem& itemOf(const EqnItem& item) {
  return item;
}
const EqnItem& itemOf(const EqnItemHandle& handle) {
  return handle.get();
}

template <class T, class Items>
std::size_t countOf(const Items& items) {
  return static_cast<std::size_t>(std::count_if(
      items.begin(), items.end(), [](const auto& item) { return itemOf(item).template getIf<T>() != nullptr; }));
}

template <class T, class Items>
std::vector<T> allOf(const Items& items) {
  std::vector<T> result;
  for (const auto& item : items) {
    if (const T* alternative = itemOf(item).template getIf<T>()) result.push_back(*alternative);
  }
  return result;
}

std::vector<EqnItemHandle> handles(const std::vector<EqnItem>& items) {
  return {items.begin(), items.end()};
}

} // namespace

ElseifBranch::ElseifBranch() : ElseifBranch(Expr(), {}) {}
ElseifBranch::ElseifBranch(const Expr& condition, const std::vector<EqnItem>& items)
    : TupleWrapper(condition, handles(items)) {}
const EqnItem& ElseifBranch::eqnItem(std::size_t i) const {
  return eqnItems().at(i).get();
}
std::size_t ElseifBranch::numOfEqnExprs() const {
  return countOf<Expr>(eqnItems());
}
std::size_t ElseifBranch::numOfEqnAssertions() const {
  return countOf<EqnAssertion>(eqnItems());
}
std::vector<Expr> ElseifBranch::eqnExprs() const {
  return allOf<Expr>(eqnItems());
}
std::vector<EqnAssertion> ElseifBranch::eqnAssertions() const {
  return allOf<EqnAssertion>(eqnItems());
}

IfExpr::IfExpr() : IfExpr(Expr(), {}, {}, {}, nvf::Range()) {}
IfExpr::IfExpr(const Expr& condition, const std::vector<EqnItem>& ifItems, const std::vector<EqnItem>& elseItems,
               const std::vector<ElseifBranch>& elseifBranches, const nvf::Range& range)
    : TupleWrapper(condition, handles(ifItems), handles(elseItems), elseifBranches, range) {}
const EqnItem& IfExpr::ifEqnItem(std::size_t i) const {
  return ifEqnItems().at(i).get();
}
const EqnItem& IfExpr::elseEqnItem(std::size_t i) const {
  return elseEqnItems().at(i).get();
}
std::size_t IfExpr::numOfIfEqnExprs() const {
  return countOf<Expr>(ifEqnItems());
}
std::size_t IfExpr::numOfIfEqnAssertions() const {
  return countOf<EqnAssertion>(ifEqnItems());
}
std::size_t IfExpr::numOfElseEqnExprs() const {
  return countOf<Expr>(elseEqnItems());
}
std::size_t IfExpr::numOfElseEqnAssertions() const {
  return countOf<EqnAssertion>(elseEqnItems());
}
std::vector<Expr> IfExpr::ifEqnExprs() const {
  return allOf<Expr>(ifEqnItems());
}
std::vector<EqnAssertion> IfExpr::ifEqnAssertions() const {
  return allOf<EqnAssertion>(ifEqnItems());
}
std::vector<Expr> IfExpr::elseEqnExprs() const {
  return allOf<Expr>(elseEqnItems());
}
std::vector<EqnAssertion> IfExpr::elseEqnAssertions() const {
  return allOf<EqnAssertion>(elseEqnItems());
}

LetExpr::LetExpr(const std::vector<IdListValuePair>& declarations, const std::vector<EqnItem>& items,
                 const nvf::Range& range)
    : TupleWrapper(declarations, handles(items), range) {}
const EqnItem& LetExpr::eqnItem(std::size_t i) const {
  return eqnItemList().at(i).get();
}
std::size_t LetExpr::numOfEqnExprs() const {
  return countOf<Expr>(eqnItemList());
}
std::size_t LetExpr::numOfAssertions() const {
  return countOf<EqnAssertion>(eqnItemList());
}
std::vector<Expr> LetExpr::eqnExprs() const {
  return allOf<Expr>(eqnItemList());
}
std::vector<EqnAssertion> LetExpr::eqnAssertions() const {
  return allOf<EqnAssertion>(eqnItemList());
}

std::vector<Expr> EquationBlock::eqnExprs() const {
  return allOf<Expr>(eqnItems());
}
std::vector<EqnAssertion> EquationBlock::eqnAssertions() const {
  return allOf<EqnAssertion>(eqnItems());
}

// ---- declarations ----

IdListValuePair::IdListValuePair() : IdListValuePair({}, Expr(), false) {}
IdListValuePair::IdListValuePair(const nvf::Expressions<OptIdent>& ids, const Expr& value, bool isColonEquals)
    : TupleWrapper(ids, value, isColonEquals) {}

nvf::Location IdListValuePair::location() const {
  return ids().empty() ? nvf::Location() : core::location(ids().front());
}

std::size_t number_of_effective_ids(const IdListValuePair& pair) {
  return static_cast<std::size_t>(std::count_if(pair.ids().begin(), pair.ids().end(),
                                                [](const OptIdent& id) { return id.getIf<Ident>() != nullptr; }));
}

// ---- assertions ----

TESSARIN_FIXED_ID(EqnAssertion::ctor, "assert")
TESSARIN_FIXED_ID(MessageObject::ctor, "message")
TESSARIN_FIXED_ID(MemberText::ctor, "text")
TESSARIN_FIXED_ID(RefText::ctor, "text")

nvf::Value EqnAssertion::toValue(const ActionType& action) {
  return {nvf::Constant(nvf::Constants<int>(static_cast<int>(action))), nvf::UnitsExpr()};
}

EqnAssertion::ActionType EqnAssertion::toActionType(const nvf::Value& value, const nvf::Location& location) {
  namespace messages = kelvane::tessarin::compiler::core::ast;
  const auto numbers = nvf::to_constant(value).as<int>().value();
  if (numbers.size().m() != 1 || numbers.size().n() != 1 || !value.unit().isOne()) {
    throw nvf::LocatedError<messages::InvalidTypeForAssertAction>(location, false);
  }
  const int number = *numbers.begin();
  if (number < 0 || number > static_cast<int>(ActionType::Error)) {
    throw nvf::LocatedError<messages::InvalidValueForAssertAction>(location, false);
  }
  return static_cast<ActionType>(number);
}

nvf::Range eqnitem_range(const EqnItem& item) {
  if (const Expr* expr = item.getIf<Expr>()) return expr_range(*expr);
  return item.get<EqnAssertion>().range();
}
nvf::Location eqnitem_location(const EqnItem& item) {
  return eqnitem_range(item).begin();
}
std::size_t eqnitem_line(const EqnItem& item) {
  return eqnitem_location(item).lineColumn().line();
}

} // namespace tessarin::compiler::core

template <>
void nvf::Operations<tessarin::compiler::core::EqnItem>::strip(tessarin::compiler::core::EqnItem& item) {
  using tessarin::compiler::core::Expr;
  const Expr* held = item.getIf<Expr>();
  if (held == nullptr) return;
  Expr expr = *held;
  item = Expr();
  strip_annotation_inplace(expr);
  item = std::move(expr);
}

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::IdListValuePair);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ElseifBranch);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::IfExpr);
template <>
std::size_t nvf::Operations<tessarin::compiler::core::ModechartEqnExpr>::hash(
    const tessarin::compiler::core::ModechartEqnExpr& expr) {
  return hash_value(expr.expr());
}
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ModechartEqnExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::LetExpr);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::NoMessage);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::MemberText);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::RefText);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::MessageObject);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::PreformattedMessage);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::EqnAssertion);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::EqnItem);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::FunctionEqnItem);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::EquationBlock);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::WhenBranch);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ElseWhenBranch);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::WhenClause);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::EventBlock);
