// The declarative side of a model and of a function: declaration blocks with their items, imports, the initializer of a
// base class, and the definitions of a function.
//
// The classes hold what they are given, in the order of the source: nothing is checked, sorted or merged.
#pragma once

#include "tessarin/parser/ast/EqnItem.hpp"
#include "tessarin/parser/lex/MemberType.hpp"
#include "tessarin/parser/lex/TokenId.hpp"

#include <compare>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

// ---- lists of identifiers ----

/// A list of the same length that has `element` at `index` and the old elements elsewhere; the given list stays as it
/// is. An index past the end replaces nothing.
TESSARIN_EXPORT nvf::Expressions<OptIdent> replace_element(const nvf::Expressions<OptIdent>& list, std::size_t index,
                                                           const OptIdent& element);
/// The same for a list of declarations.
TESSARIN_EXPORT nvf::Expressions<IdListValuePair> replace_element(const nvf::Expressions<IdListValuePair>& list,
                                                                  std::size_t index, const IdListValuePair& element);

/// Calls `function` with each `Ident` in order, and with its index in the whole list: placeholders are skipped and yet
/// counted. Throws what `function` throws.
TESSARIN_EXPORT void opt_ident_vector_handler(const nvf::Expressions<OptIdent>& ids,
                                              const std::function<void(const Ident&, unsigned long)>& function);

// ---- declarations ----

/// `name(i, j) = value`: the declaration of an element of an array of objects.
class TESSARIN_EXPORT ObjectArrayElementDecl : public nvf::TupleWrapper<ObjectArrayElementDecl*, IdParenIds, Expr> {
public:
  /// The element, and what it is set to.
  /// @{
  ObjectArrayElementDecl(const IdParenIds& lhs, const Expr& rhs) : TupleWrapper(lhs, rhs) {}
  [[nodiscard]] const IdParenIds& LHS() const noexcept { return get<0>(); }
  [[nodiscard]] const Expr& RHS() const noexcept { return get<1>(); }
  /// The place of the name.
  [[nodiscard]] nvf::Location location() const { return LHS().id().location(); }
  /// Without the indent of the context.
  [[nodiscard]] ustring string(const ToStringContext& context) const;
  /// @}
};

/// An item of a declaration block: a name without a value (0), names with a value (1), or an element of an array of
/// objects (2).
class TESSARIN_EXPORT DeclarationItem
    : public nvf::TaggedUnion<DeclarationItem, Ident, IdListValuePair, ObjectArrayElementDecl> {
public:
  using TaggedUnion::TaggedUnion;
};
/// The place of the first name.
TESSARIN_EXPORT nvf::Location location(const DeclarationItem& item);
/// A name without a value prints the same in every context, without an indent.
TESSARIN_EXPORT ustring to_string(const DeclarationItem& item, const ToStringContext& context);
/// The names with their value. Throws `nvf::BadGet` where the item is something else.
TESSARIN_EXPORT const IdListValuePair& id_list_value(const DeclarationItem& item);

/// The word for one member of the type; its number where it is none.
TESSARIN_EXPORT ustring dump_text(MemberType::Value type);

/// A block that declares members of one type: `parameters`, `variables`, `components` and so on.
class TESSARIN_EXPORT DeclarationBlock
    : public nvf::TupleWrapper<DeclarationBlock*, MemberType::Value, nvf::Expressions<IdentValuePair>,
                               nvf::Expressions<DeclarationItem>, detail::IgnoreValue<nvf::Location>> {
public:
  /// `attributes` stand in parentheses behind the keyword; `location` is the place of the keyword.
  DeclarationBlock(MemberType::Value type, const nvf::Expressions<IdentValuePair>& attributes,
                   const nvf::Expressions<DeclarationItem>& declarations, const nvf::Location& location)
      : TupleWrapper(type, attributes, declarations, location) {}

  /// What the members are, the attributes, and the declarations, both in the order of the source.
  /// @{
  [[nodiscard]] MemberType::Value type() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& attributes() const noexcept { return get<1>(); }
  [[nodiscard]] std::size_t numOfAttributes() const noexcept { return attributes().size(); }
  /// The `i`-th attribute, from 0; there must be one.
  [[nodiscard]] const IdentValuePair& attribute(std::size_t i) const noexcept { return attributes()[i]; }
  [[nodiscard]] const nvf::Expressions<DeclarationItem>& declarations() const noexcept { return get<2>(); }
  [[nodiscard]] std::size_t numOfDeclarations() const noexcept { return declarations().size(); }
  /// The `i`-th declaration, from 0; there must be one.
  [[nodiscard]] const DeclarationItem& declaration(std::size_t i) const noexcept { return declarations()[i]; }
  /// @}

  /// The place of the keyword.
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<3>(); }
  /// Without a line end behind the last line.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;

  /// The keyword that opens such a block; not for `MemberType::NONE`.
  static ustring typeString(MemberType::Value type);
  /// The type of the block that the token opens; `MemberType::NONE` for any other token.
  static MemberType::Value declarationType(TokenId::Value token);

  /// Whether type, attributes and declarations are each less than those of `b`: no strict weak order, intended. Blocks
  /// that differ in one of the three only stand in neither order, so a block is no key of an ordered container and has
  /// no other relational operator. `compare` is the ordinary lexicographic order.
  friend TESSARIN_EXPORT bool operator<(const DeclarationBlock& a, const DeclarationBlock& b);
  friend std::weak_ordering operator<=>(const DeclarationBlock&, const DeclarationBlock&) = delete;
  friend bool operator>(const DeclarationBlock&, const DeclarationBlock&) = delete;
  friend bool operator<=(const DeclarationBlock&, const DeclarationBlock&) = delete;
  friend bool operator>=(const DeclarationBlock&, const DeclarationBlock&) = delete;
};

// ---- imports and base classes ----

/// `import a.b`, or `import a.b.*`.
class TESSARIN_EXPORT ImportStmt
    : public nvf::TupleWrapper<ImportStmt*, Name, bool, detail::IgnoreValue<nvf::Location>> {
public:
  /// `isUnqualified` is true for the form with `.*`.
  ImportStmt(const Name& importName, bool isUnqualified, const nvf::Location& location)
      : TupleWrapper(importName, isUnqualified, location) {}

  /// The dotted name, the form, and the place of the keyword.
  /// @{
  [[nodiscard]] const Name& importName() const noexcept { return get<0>(); }
  [[nodiscard]] bool isUnqualified() const noexcept { return get<1>(); }
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<2>(); }
  /// Without a line end.
  [[nodiscard]] ustring string(std::size_t indent) const;
  /// @}
};

/// What follows `<` in the head of a model: `base(a = 1)`.
class TESSARIN_EXPORT ClassInitializer : public nvf::TupleWrapper<ClassInitializer, Name, std::vector<NamedArgument>> {
public:
  /// The name of the base class, and the arguments in the order of the source.
  /// @{
  ClassInitializer(const Name& name, std::vector<NamedArgument> args) : TupleWrapper(name, std::move(args)) {}
  [[nodiscard]] const Name& name() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<NamedArgument>& args() const noexcept { return get<1>(); }
  /// Without parentheses where there are no arguments.
  [[nodiscard]] ustring string() const;
  /// @}
};

// ---- functions ----

/// The `definitions` block of a function.
class TESSARIN_EXPORT DefinitionsBlock
    : public nvf::TupleWrapper<DefinitionsBlock*, nvf::Expressions<FunctionEqnItem>, nvf::Expressions<IdentValuePair>,
                               detail::IgnoreValue<nvf::Location>> {
public:
  /// The items and the attributes, both in the order of the source.
  /// @{
  DefinitionsBlock(const nvf::Expressions<FunctionEqnItem>& items, const nvf::Expressions<IdentValuePair>& attributes,
                   const nvf::Location& location)
      : TupleWrapper(items, attributes, location) {}
  [[nodiscard]] const nvf::Expressions<FunctionEqnItem>& eqnItems() const noexcept { return get<0>(); }
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& attributes() const noexcept { return get<1>(); }
  /// The place of the keyword.
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<2>(); }
  /// Unlike other blocks it ends its last line, and its items stand at twice the indent whatever `step` is: intended.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

} // namespace tessarin::compiler::core

namespace nvf {
/// One run over the type, the name and value of each attribute, and each declaration: the lists are not hashed on their
/// own, and the location does not even stir the hash.
template <>
std::size_t
Operations<tessarin::compiler::core::DeclarationBlock>::hash(const tessarin::compiler::core::DeclarationBlock& block);
} // namespace nvf

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ObjectArrayElementDecl, "lhs", "rhs");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::DeclarationItem);
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::DeclarationBlock, "type", "attributes", "declarations");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ImportStmt, "importName", "isUnqualified");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ClassInitializer, "name", "args");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::DefinitionsBlock, "eqnItems", "attributes");
