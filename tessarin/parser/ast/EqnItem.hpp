// What fills equations and events blocks: equations, assertions, and `when` clauses.
#pragma once

#include "tessarin/parser/ast/Expr.hpp"
#include "tessarin/parser/ast/ToStringContext.hpp"

#include <iosfwd>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

namespace tessarin::compiler::core {

/// No message.
class TESSARIN_EXPORT NoMessage : public nvf::TupleWrapper<NoMessage> {};

/// A hole of a message that is filled from a member's text.
class TESSARIN_EXPORT MemberText : public nvf::TupleWrapper<MemberText, nvf::CxIdPath, IgnoredRange> {
public:
  /// The dotted name of the member.
  /// @{
  MemberText(const nvf::CxIdPath& path, const nvf::Range& range) : TupleWrapper(path, range) {}
  [[nodiscard]] const nvf::CxIdPath& path() const noexcept { return get<0>(); }
  /// "text".
  static const nvf::CxId& ctor();
  /// @}
};

/// A hole of a message that is filled through a reference to a value.
class TESSARIN_EXPORT RefText : public nvf::TupleWrapper<RefText, ValueRef, IgnoredRange> {
public:
  /// The reference that leads to what is shown.
  /// @{
  RefText(const ValueRef& ref, const nvf::Range& range) : TupleWrapper(ref, range) {}
  [[nodiscard]] const ValueRef& ref() const noexcept { return get<0>(); }
  /// "text", as for a member's text.
  static const nvf::CxId& ctor();
  /// @}
};

/// A message of a catalog with its holes.
class TESSARIN_EXPORT MessageObject
    : public nvf::TupleWrapper<MessageObject*, nvf::MessageId,
                               std::vector<std::variant<ustring, MemberText, RefText>>> {
public:
  /// A text, or what is shown in its place.
  using Hole = std::variant<ustring, MemberText, RefText>;
  /// The id of the message in its catalog, and what fills its holes, in their order.
  /// @{
  MessageObject(const nvf::MessageId& id, std::vector<Hole> holes) : TupleWrapper(id, std::move(holes)) {}
  [[nodiscard]] const nvf::MessageId& id() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<Hole>& holes() const noexcept { return get<1>(); }
  /// "message".
  static const nvf::CxId& ctor();
  /// @}
};

/// A literal text, with an id that may be empty.
class TESSARIN_EXPORT PreformattedMessage : public nvf::TupleWrapper<PreformattedMessage*, nvf::MessageId, ustring> {
public:
  /// The id, which may be empty, and the text as it is shown.
  /// @{
  PreformattedMessage(const nvf::MessageId& id, const ustring& text) : TupleWrapper(id, text) {}
  [[nodiscard]] const nvf::MessageId& id() const noexcept { return get<0>(); }
  [[nodiscard]] const ustring& text() const noexcept { return get<1>(); }
  /// @}
};

/// `assert(predicate, message, Warn = …)`. The range is carried beside the fields: it does not even stir the hash.
class TESSARIN_EXPORT EqnAssertion
    : public nvf::TupleWrapper<EqnAssertion, Expr, std::variant<NoMessage, MessageObject, PreformattedMessage>,
                               std::optional<Expr>, detail::BesideValue<nvf::Range>>,
      public nvf::SimpleAnnotation<EqnAssertion> {
public:
  /// The parts of a message by the names that they have inside an assertion.
  /// @{
  using MessageObject = core::MessageObject;
  using MemberText = core::MemberText;
  using RefText = core::RefText;
  /// @}

  /// What is said when the predicate does not hold.
  using Message = std::variant<NoMessage, MessageObject, PreformattedMessage>;
  /// What a failed assertion does: 1 is what `Warn = true` means and 2 what `Warn = false` means.
  enum class ActionType : int { Default = 0, Warn = 1, Error = 2 };

  EqnAssertion() = default;
  /// `action` is absent where the source gives none.
  EqnAssertion(const Expr& predicate, const Message& message, const std::optional<Expr>& action,
               const nvf::Range& range)
      : TupleWrapper(predicate, message, action, range) {}

  /// What must hold, and what is said and what is done where it does not.
  /// @{
  [[nodiscard]] const Expr& predicate() const noexcept { return get<0>(); }
  [[nodiscard]] const Message& message() const noexcept { return get<1>(); }
  [[nodiscard]] const std::optional<Expr>& action() const noexcept { return get<2>(); }
  /// @}

  /// The text behind so many blanks.
  [[nodiscard]] ustring string(Indentation indent) const;

  /// "assert".
  static const nvf::CxId& ctor();
  /// A 1-by-1 value of 32-bit integers without a unit.
  static nvf::Value toValue(const ActionType& action);
  /// The reverse of `toValue`. Throws `std::bad_variant_access` for a value that is no 32-bit integer, and the errors
  /// `InvalidTypeForAssertAction` (not one element, or a unit) and `InvalidValueForAssertAction` (none of the three) at
  /// `location`.
  static ActionType toActionType(const nvf::Value& value, const nvf::Location& location);
};

/// An item of an equations block: an expression (0) or an assertion (1).
class TESSARIN_EXPORT EqnItem : public nvf::TaggedUnion<EqnItem, Expr, EqnAssertion> {
public:
  /// A default expression, an expression, one of any kind, or an assertion.
  /// @{
  EqnItem() = default;
  EqnItem(Expr expr) : TaggedUnion(std::move(expr)) {}                   // NOLINT(google-explicit-constructor)
  EqnItem(EqnAssertion assertion) : TaggedUnion(std::move(assertion)) {} // NOLINT(google-explicit-constructor)
  template <ExprAlternative A>
  EqnItem(A expr) : EqnItem(Expr(std::move(expr))) {} // NOLINT(google-explicit-constructor)
  /// @}
};
/// Where the item stands; the line counts from 0.
/// @{
TESSARIN_EXPORT nvf::Range eqnitem_range(const EqnItem& item);
TESSARIN_EXPORT nvf::Location eqnitem_location(const EqnItem& item);
TESSARIN_EXPORT std::size_t eqnitem_line(const EqnItem& item);
/// @}
/// The item at the head of a line: it gets the indent of the context.
TESSARIN_EXPORT ustring to_string(const EqnItem& item, ToStringContext context);
/// Writes the default form in the local encoding.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const EqnItem& item);

/// An item of the body of a function: a declaration (0) or an assertion (1).
class TESSARIN_EXPORT FunctionEqnItem : public nvf::TaggedUnion<FunctionEqnItem, IdListValuePair, EqnAssertion> {
public:
  using TaggedUnion::TaggedUnion;
};
/// The item behind the indent of the context, also where the context is for text inside a line.
TESSARIN_EXPORT ustring to_string(const FunctionEqnItem& item, const ToStringContext& context);

/// An `equations` block.
class TESSARIN_EXPORT EquationBlock
    : public nvf::TupleWrapper<EquationBlock, std::vector<EqnItem>, nvf::Expressions<IdentValuePair>,
                               detail::IgnoreValue<nvf::Location>> {
public:
  /// The items and attributes in the order of the source, the items by number, from 0, and the place of the keyword.
  /// The text ends with `end`, whose line is not ended.
  /// @{
  EquationBlock() = default;
  EquationBlock(std::vector<EqnItem> items, const nvf::Expressions<IdentValuePair>& attributes,
                const nvf::Location& location)
      : TupleWrapper(std::move(items), attributes, location) {}

  [[nodiscard]] const std::vector<EqnItem>& eqnItems() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& attributes() const noexcept { return get<1>(); }
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<2>(); }
  [[nodiscard]] bool isEmpty() const noexcept { return eqnItems().empty(); }
  [[nodiscard]] std::size_t numOfEqnItems() const noexcept { return eqnItems().size(); }
  /// Throws `std::out_of_range` where there is none.
  [[nodiscard]] const EqnItem& eqnItem(std::size_t i) const { return eqnItems().at(i); }
  /// Copies of the block's own expressions, in their order: not of those inside its items.
  [[nodiscard]] std::vector<Expr> eqnExprs() const;
  /// Copies of the block's own assertions, in their order: not of those inside its items.
  [[nodiscard]] std::vector<EqnAssertion> eqnAssertions() const;
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// `when predicate` with its updates.
class TESSARIN_EXPORT WhenBranch : public nvf::TupleWrapper<WhenBranch, Expr, nvf::Expressions<IdentValuePair>> {
public:
  /// The condition, and the updates in the order of the source. The text is a line for the condition behind `indent`
  /// blanks and one for each update `step` further in, all of them ended.
  /// @{
  WhenBranch() = default;
  WhenBranch(const Expr& predicate, const nvf::Expressions<IdentValuePair>& body) : TupleWrapper(predicate, body) {}
  [[nodiscard]] const Expr& predicate() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& body() const noexcept { return get<1>(); }
  /// The place of the predicate.
  [[nodiscard]] nvf::Location location() const { return expr_location(predicate()); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// `elsewhen predicate` with its updates.
class TESSARIN_EXPORT ElseWhenBranch
    : public nvf::TupleWrapper<ElseWhenBranch, Expr, nvf::Expressions<IdentValuePair>> {
public:
  /// As of a `WhenBranch`.
  /// @{
  ElseWhenBranch() = default;
  ElseWhenBranch(const Expr& predicate, const nvf::Expressions<IdentValuePair>& body) : TupleWrapper(predicate, body) {}
  [[nodiscard]] const Expr& predicate() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& body() const noexcept { return get<1>(); }
  /// The place of the predicate.
  [[nodiscard]] nvf::Location location() const { return expr_location(predicate()); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// A clause of an `events` block.
class TESSARIN_EXPORT WhenClause : public nvf::TupleWrapper<WhenClause, WhenBranch, std::vector<ElseWhenBranch>> {
public:
  /// The first branch and those that are tried after it, in the order of the source. A default one has the default
  /// branch only. The text ends with `end`, whose line is not ended.
  /// @{
  WhenClause() = default;
  WhenClause(const WhenBranch& whenBranch, std::vector<ElseWhenBranch> elseWhens)
      : TupleWrapper(whenBranch, std::move(elseWhens)) {}
  [[nodiscard]] const WhenBranch& whenBranch() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<ElseWhenBranch>& elseWhens() const noexcept { return get<1>(); }
  [[nodiscard]] nvf::Location location() const { return whenBranch().location(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// An `events` block.
class TESSARIN_EXPORT EventBlock
    : public nvf::TupleWrapper<EventBlock, std::vector<WhenClause>, detail::IgnoreValue<nvf::Location>> {
public:
  /// The clauses in the order of the source, and the place of the keyword. The text ends with `end`, whose line is not
  /// ended.
  /// @{
  EventBlock() = default;
  EventBlock(std::vector<WhenClause> events, const nvf::Location& location)
      : TupleWrapper(std::move(events), location) {}
  [[nodiscard]] const std::vector<WhenClause>& events() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<1>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

} // namespace tessarin::compiler::core

namespace nvf {
/// An item that is an assertion is left untouched by stripping, intended.
template <>
void Operations<tessarin::compiler::core::EqnItem>::strip(tessarin::compiler::core::EqnItem& item);
} // namespace nvf

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::NoMessage);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::MemberText, "path");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::RefText, "ref");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::MessageObject, "id", "holes");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::PreformattedMessage, "id", "text");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::EqnAssertion, "predicate", "message", "action");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::EqnItem);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::FunctionEqnItem);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::EquationBlock, "eqnItems", "attributes");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::WhenBranch, "predicate", "body");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ElseWhenBranch, "predicate", "body");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::WhenClause, "whenBranch", "elseWhens");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::EventBlock, "events");
