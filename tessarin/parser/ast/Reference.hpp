// References: the form in which the source names a thing, and the resolved forms that later stages put in its place.
//
// Source text yields `Variable`. The resolved forms have no syntax of their own and travel through text as calls of
// reserved names; each may keep the `Variable` that it came from, for messages.
#pragma once

#include "tessarin/foundation/positive.hpp"
#include "tessarin/foundation/value.hpp"
#include "tessarin/parser/ast/Subscript.hpp"

#include <optional>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// A name as the source writes it: `a.b(1).c(x, n = 2)`.
class TESSARIN_EXPORT Variable : public nvf::TupleWrapper<Variable*, Ident, nvf::Expressions<IdParenSubs>,
                                                          std::optional<Arguments>, IgnoredRange> {
public:
  Variable() = default;
  /// `id` is the last name, `leadingPath` the steps before it, `tail` the argument list behind it.
  Variable(const Ident& id, const nvf::Expressions<IdParenSubs>& leadingPath, const std::optional<Arguments>& tail,
           const nvf::Range& range)
      : TupleWrapper(id, leadingPath, tail, range) {}
  /// A plain name, whose `Ident` has an empty range.
  Variable(const nvf::CxId& id, const nvf::Range& range);

  /// The parts, as the constructor names them. A plain name has neither steps nor a tail.
  /// @{
  [[nodiscard]] const Ident& id() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<IdParenSubs>& leadingPath() const noexcept { return get<1>(); }
  [[nodiscard]] const std::optional<Arguments>& tail() const noexcept { return get<2>(); }
  /// @}

  /// Whether it is one name and nothing else. `f()` is not: an empty argument list is a tail.
  [[nodiscard]] bool isID() const noexcept { return leadingPath().size() == 0 && !tail(); }
};

/// The first name of the path.
TESSARIN_EXPORT const Ident& leading_id(const Variable& variable);
/// Whether no step has subscripts and there is no tail.
TESSARIN_EXPORT bool is_idpath(const Variable& variable);

/// A step to the base class, in a path of member positions.
class TESSARIN_EXPORT BaseClassPathElement : public nvf::TupleWrapper<BaseClassPathElement> {
public:
  /// "base".
  static const nvf::CxId& id();
};

/// A step to a member.
class TESSARIN_EXPORT MemberPathElement : public nvf::TupleWrapper<MemberPathElement, std::size_t> {
public:
  /// The position of the member among those of its model, as the stage that resolved the name counts them.
  /// @{
  MemberPathElement() = default;
  explicit MemberPathElement(std::size_t memberIndex) : TupleWrapper(memberIndex) {}
  [[nodiscard]] std::size_t memberIndex() const noexcept { return get<0>(); }
  /// "member".
  static const nvf::CxId& id();
  /// @}
};

/// A step to an element of a member that is an array.
class TESSARIN_EXPORT ArrayMemberPathElement
    : public nvf::TupleWrapper<ArrayMemberPathElement, std::size_t, std::size_t> {
public:
  /// The position of the member, as in `MemberPathElement`, and that of the element in it.
  /// @{
  ArrayMemberPathElement() = default;
  ArrayMemberPathElement(std::size_t memberIndex, std::size_t elementIndex) : TupleWrapper(memberIndex, elementIndex) {}
  [[nodiscard]] std::size_t memberIndex() const noexcept { return get<0>(); }
  [[nodiscard]] std::size_t elementIndex() const noexcept { return get<1>(); }
  /// "arraymember".
  static const nvf::CxId& id();
  /// @}
};

/// One step of a resolved path into a model.
class TESSARIN_EXPORT UniquePathElement
    : public nvf::TaggedUnion<UniquePathElement, BaseClassPathElement, MemberPathElement, ArrayMemberPathElement> {
public:
  using TaggedUnion::TaggedUnion;
};
/// Writes `base`, `member(i)` or `arraymember(i,j)`.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const UniquePathElement& element);

/// One path of member positions, or several that lead to the same thing.
class TESSARIN_EXPORT FullPathVariable
    : public nvf::TupleWrapper<FullPathVariable*, std::vector<nvf::Expressions1<UniquePathElement>>,
                               std::optional<ParenSubs>, detail::IgnoreValue<std::optional<Variable>>, IgnoredRange> {
public:
  /// A path is never empty.
  using Path = nvf::Expressions1<UniquePathElement>;

  /// The equivalent paths; the subscripts behind them; and the variable of the source that was resolved, which is for
  /// messages and no part of the value.
  /// @{
  FullPathVariable(std::vector<Path> paths, const std::optional<ParenSubs>& subs,
                   const std::optional<Variable>& originalVariable, const nvf::Range& range)
      : TupleWrapper(std::move(paths), subs, originalVariable, range) {}
  FullPathVariable(const Path& path, const std::optional<ParenSubs>& subs,
                   const std::optional<Variable>& originalVariable, const nvf::Range& range)
      : FullPathVariable(std::vector<Path>{path}, subs, originalVariable, range) {}

  [[nodiscard]] const std::vector<Path>& paths() const noexcept { return get<0>(); }
  [[nodiscard]] const std::optional<ParenSubs>& subs() const noexcept { return get<1>(); }
  [[nodiscard]] const std::optional<Variable>& originalVariable() const noexcept { return get<2>(); }
  /// "internal_full_path__".
  static const nvf::CxId& ctor();
  /// @}
};

/// A name some levels of scope up.
class TESSARIN_EXPORT RelativePathVariable
    : public nvf::TupleWrapper<RelativePathVariable*, nvf::Positive<std::size_t>, nvf::CxId, std::optional<ParenSubs>,
                               IgnoredRange> {
public:
  /// How many levels up, at least 1; the name there; and the subscripts behind it.
  /// @{
  RelativePathVariable(const nvf::Positive<std::size_t>& depth, const nvf::CxId& id,
                       const std::optional<ParenSubs>& subs, const nvf::Range& range)
      : TupleWrapper(depth, id, subs, range) {}

  [[nodiscard]] const nvf::Positive<std::size_t>& depth() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::CxId& id() const noexcept { return get<1>(); }
  [[nodiscard]] const std::optional<ParenSubs>& subs() const noexcept { return get<2>(); }
  /// "internal_relative_path__".
  static const nvf::CxId& ctor();
  /// @}
};

/// A fully evaluated constant with its unit.
class TESSARIN_EXPORT ConcreteValueExpr : public nvf::TupleWrapper<ConcreteValueExpr*, nvf::Value, IgnoredRange> {
public:
  /// The value with its unit.
  /// @{
  ConcreteValueExpr(const nvf::Value& value, const nvf::Range& range) : TupleWrapper(value, range) {}
  [[nodiscard]] const nvf::Value& value() const noexcept { return get<0>(); }
  /// "concrete_value__".
  static const nvf::CxId& constructorName();
  /// @}
};

/// A step of a path with constant indices.
class TESSARIN_EXPORT IdValueIndices
    : public nvf::TupleWrapper<IdValueIndices*, Ident, std::optional<nvf::Expressions<ConcreteValueExpr>>> {
public:
  /// Absent where there are no parentheses.
  using Indices = std::optional<nvf::Expressions<ConcreteValueExpr>>;

  /// The name and its indices. A default one has the empty name.
  /// @{
  IdValueIndices() = default;
  IdValueIndices(const Ident& ident, const Indices& indices) : TupleWrapper(ident, indices) {}
  [[nodiscard]] const Ident& ident() const noexcept { return get<0>(); }
  /// Absent where the step has no subscripts.
  [[nodiscard]] const Indices& indices() const noexcept { return get<1>(); }
  /// @}
};

/// What follows a reference to a value: subscripts (0) or a name (1).
class TESSARIN_EXPORT ValueRefTail : public nvf::TaggedUnion<ValueRefTail, ParenSubs, Ident> {
public:
  using TaggedUnion::TaggedUnion;
};

/// A reference to a value inside an object.
class TESSARIN_EXPORT ValueRef
    : public nvf::TupleWrapper<ValueRef*, Ident, nvf::Expressions<IdValueIndices>, std::optional<ValueRefTail>,
                               detail::IgnoreValue<std::optional<Variable>>, IgnoredRange> {
public:
  /// The last name of the path, the steps before it, and what follows; and the variable of the source that was
  /// resolved, which is for messages and no part of the value. A default one has the empty name.
  /// @{
  ValueRef() = default;
  ValueRef(const Ident& id, const nvf::Expressions<IdValueIndices>& leadingPath,
           const std::optional<ValueRefTail>& tail, const std::optional<Variable>& originalVariable,
           const nvf::Range& range)
      : TupleWrapper(id, leadingPath, tail, originalVariable, range) {}

  [[nodiscard]] const Ident& id() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<IdValueIndices>& leadingPath() const noexcept { return get<1>(); }
  [[nodiscard]] const std::optional<ValueRefTail>& tail() const noexcept { return get<2>(); }
  [[nodiscard]] const std::optional<Variable>& originalVariable() const noexcept { return get<3>(); }
  /// The first name of the path.
  [[nodiscard]] const Ident& firstId() const noexcept;
  /// "internal_value_ref__".
  static const nvf::CxId& ctor();
  /// "internal_value_ref_id_tail__".
  static const nvf::CxId& idTailCtor();
  /// "internal_value_ref_subs_tail__".
  static const nvf::CxId& subsTailCtor();
  /// @}
};

/// A reference to a whole object.
class TESSARIN_EXPORT ObjectRef : public nvf::TupleWrapper<ObjectRef*, nvf::Expressions1<IdValueIndices>,
                                                           detail::IgnoreValue<std::optional<Variable>>, IgnoredRange> {
public:
  /// The path, its first name, and the variable of the source that was resolved, which is for messages and no part of
  /// the value.
  /// @{
  ObjectRef(const nvf::Expressions1<IdValueIndices>& ref, const std::optional<Variable>& originalVariable,
            const nvf::Range& range)
      : TupleWrapper(ref, originalVariable, range) {}

  [[nodiscard]] const nvf::Expressions1<IdValueIndices>& ref() const noexcept { return get<0>(); }
  [[nodiscard]] const std::optional<Variable>& originalVariable() const noexcept { return get<1>(); }
  [[nodiscard]] const Ident& firstId() const noexcept;
  /// "internal_object_ref__".
  static const nvf::CxId& ctor();
  /// @}
};

/// The name of an argument: a reference to a value (0) or a name of the source (1).
class TESSARIN_EXPORT NamedArgumentName : public nvf::TaggedUnion<NamedArgumentName, ValueRef, Variable> {
public:
  using TaggedUnion::TaggedUnion;
};

/// `name(i, j)` on the left of the declaration of an element of an array of objects.
class TESSARIN_EXPORT IdParenIds : public nvf::TupleWrapper<IdParenIds*, Ident, nvf::Expressions<Ident>> {
public:
  /// The name and the names of its indices. A default one has the empty name and no index.
  /// @{
  IdParenIds() = default;
  /// Throws `std::logic_error` where there are no indices.
  IdParenIds(const Ident& id, const nvf::Expressions<Ident>& indices);
  [[nodiscard]] const Ident& id() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<Ident>& indices() const noexcept { return get<1>(); }
  /// `name(i,j)`, without blanks; the parentheses stand also where there are no indices.
  [[nodiscard]] ustring string() const;
  /// @}
};

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Variable, "id", "leadingPath", "tail");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::BaseClassPathElement);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::MemberPathElement, "memberIndex");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ArrayMemberPathElement, "memberIndex", "elementIndex");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::UniquePathElement);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::FullPathVariable, "paths", "subs");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::RelativePathVariable, "depth", "id", "subs");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ConcreteValueExpr, "value");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::IdValueIndices, "ident", "indices");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ValueRefTail);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ValueRef, "id", "leadingPath", "tail");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ObjectRef, "ref");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::NamedArgumentName);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::IdParenIds, "id", "indices");
