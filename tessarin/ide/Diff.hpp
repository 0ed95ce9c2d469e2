// How one version of a file differs from another, by what it means and not by its lines.
//
// Both files are taken apart into elements: members, equations, branches, connections, the parts of modecharts,
// functions with their definitions, annotations. Elements of the two sides are matched by what they are, where they
// stand, by name and by digest. Layout, comments and the order inside a block are no difference. What only follows from
// the renaming of a member is none either.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tessarin::ide {

/// What has happened to an element.
enum class ChangeKind : std::uint8_t {
#define TESSARIN_CHANGE(name, text) name,
#include "tessarin/ide/diff.def"
};

/// What an element of a model is.
enum class Element : std::uint8_t {
#define TESSARIN_ELEMENT(name, text) name,
#include "tessarin/ide/diff.def"
};

/// The word for it, in English and lower case.
/// @{
TESSARIN_EXPORT std::string_view wordFor(ChangeKind kind) noexcept;
TESSARIN_EXPORT std::string_view wordFor(Element element) noexcept;
/// @}

/// An element as it is on one side.
struct DiffSide {
  nvf::ustring name;     ///< of a member its name; empty where elements of the kind have none
  nvf::ustring text;     ///< the element as it is printed, in one line where it was written in one
  nvf::ustring where;    ///< the sections around it, such as `if N > 1 / parameters`; empty at the top of the file
  nvf::LineColumn begin; ///< its place, both from 0
};

/// A part of an expression that another one has taken the place of.
struct DiffPart {
  nvf::ustring before;    ///< as it is printed
  nvf::ustring after;     ///< as it is printed
  nvf::Range beforeRange; ///< its place on its side
  nvf::Range afterRange;  ///< its place on its side
};

/// One difference.
struct Change {
  ChangeKind kind{};              ///< what has happened
  Element element{};              ///< to what sort of element
  std::optional<DiffSide> before; ///< absent of what is added
  std::optional<DiffSide> after;  ///< absent of what is removed
  /// Of what is changed the smallest parts of its expressions that differ. Empty where the difference lies elsewhere.
  std::vector<DiffPart> parts;
};

/// The differences, in the order of the text after the change, annotations behind all others. Equal files have none.
/// Takes time that grows as the size of both files, and sorts. Safe from any thread, on a stack of any size.
TESSARIN_EXPORT std::vector<Change> diff(const compiler::core::TSNFile& before, const compiler::core::TSNFile& after);

} // namespace tessarin::ide
