// The names of one file: what it declares, where it refers to names, and what these mean as far as the file tells.
//
// Scopes nest: the file with its imports and functions; the model with its members, those in conditional sections and
// loops included; a loop with its variable; a `let` with its names, which all its declarations see; a function with its
// inputs, outputs and local definitions, which sees nothing of the model. The innermost declaration of a name is the
// one that is meant, wherever in its scope it stands. Members of bases and what imports bring stand in other files and
// are looked for there; what cannot be known is open, with the reason, and never guessed.
//
// The data hold no pointer into the tree or the text, so that they may outlive both.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/identifier.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tessarin::ide {

/// What a name is declared as.
enum class DeclarationKind : std::uint8_t {
#define TESSARIN_DECLARATION(name, text) name,
#include "tessarin/ide/names.def"
};

/// What a name is used for. Each step of `a.b(1).c` is a reference with the role of the whole; a step with an argument
/// list is a `Call`, whether it calls a function or picks an element.
enum class Role : std::uint8_t {
#define TESSARIN_ROLE(name, text) name,
#include "tessarin/ide/names.def"
};

/// Why it is open what a name means.
enum class Unknown : std::uint8_t {
#define TESSARIN_UNKNOWN(name, text) name,
#include "tessarin/ide/names.def"
};

/// The word for it, in English and lower case; of a reason a clause.
/// @{
TESSARIN_EXPORT std::string_view wordFor(DeclarationKind kind) noexcept;
TESSARIN_EXPORT std::string_view wordFor(Role role) noexcept;
TESSARIN_EXPORT std::string_view wordFor(Unknown reason) noexcept;
/// @}

/// A position in a list of `Names`, from 0, or `noIndex`.
using Index = std::uint32_t;
/// The position of nothing.
inline constexpr Index noIndex = 0xffffffff;

/// A name with its place. Of a name of more than `Token::maxNameLength` code units the first of them are kept, as by
/// the lexer, and the place ends behind these.
struct PlacedName {
  nvf::CxId name;        ///< without its place
  nvf::LineColumn begin; ///< of the first code unit, both from 0, the column in UTF-16 code units

  /// The place behind the last code unit that is kept, on the same line.
  [[nodiscard]] nvf::LineColumn end() const { return {begin.line(), begin.column() + name.size()}; }
  /// Whether the place is in the name or right behind it, where an editor's caret may stand.
  [[nodiscard]] bool touches(nvf::LineColumn place) const { return begin <= place && place <= end(); }
};

/// A declaration of a name.
struct Declaration : PlacedName {
  Index scope = 0;        ///< the scope that it belongs to
  Index first = 0;        ///< the first declaration of the name in that scope: itself, unless there are several
  Index type = noIndex;   ///< of a node, a member component and an import the reference that tells what it is
  DeclarationKind kind{}; ///< what the name is declared as
};

/// A use of a name.
struct Reference : PlacedName {
  Index scope = 0;         ///< the scope that it stands in
  Index parent = noIndex;  ///< the reference that it names a member or an argument of; none for a name by itself
  Index target = noIndex;  ///< the declaration in this file that is meant, the first of several
  Role role{};             ///< what it is used for
  Unknown reason{};        ///< why there is no target; `None` where there is one
  bool isLastStep = false; ///< whether no further step of the path follows
};

/// What opens a scope.
enum class ScopeKind : std::uint8_t { File, Model, Loop, Let, Function, Modechart, Setup, Lambda };

/// A scope, inside another but for the scope of the file, which is the first.
struct Scope {
  Index parent = noIndex; ///< the scope around it
  ScopeKind kind{};       ///< what opens it
  bool isInModel = false; ///< whether members of the model, its bases' included, are seen from it
};

/// The names of a file. A plain value.
struct Names {
  std::vector<Scope> scopes;             ///< a scope comes behind the one that it is in
  std::vector<Declaration> declarations; ///< in the order in which the tree holds them
  std::vector<Reference> references;     ///< in the order in which the tree holds them, a path from left to right
  std::vector<Index> openImports;        ///< of each import of all names the reference that ends its path
  Index main = noIndex;                  ///< the declaration of the file's component, domain or function
  Index model = noIndex;                 ///< the scope of the members, where the file has a model
  Index base = noIndex;                  ///< the reference that ends the path of the base, where there is one
  /// Whether all uses of names are among the references. Forms that only printed trees have keep names without places.
  bool isComplete = true;

  /// The first declaration of the name in the scope itself; `noIndex` where there is none. In logarithmic time.
  [[nodiscard]] TESSARIN_EXPORT Index declared(const nvf::CxId& name, Index scope) const;
  /// The first declaration of the name that is seen from the scope; `noIndex` where this file has none. From a function
  /// nothing of the model is seen.
  [[nodiscard]] TESSARIN_EXPORT Index lookup(const nvf::CxId& name, Index scope) const;
  /// The declaration or the reference that touches a place, both from 0; the reference where there are both, as in an
  /// import. In linear time.
  /// @{
  [[nodiscard]] TESSARIN_EXPORT Index declarationAt(nvf::LineColumn place) const;
  [[nodiscard]] TESSARIN_EXPORT Index referenceAt(nvf::LineColumn place) const;
  /// @}

  std::vector<Index> byName; ///< the first declarations by scope and name, for `declared`
};

/// The names of a file, in time that grows as the size of the tree; names are sorted once. Safe from any thread, on a
/// stack of any size.
TESSARIN_EXPORT Names namesOf(const compiler::core::TSNFile& file);

} // namespace tessarin::ide
