// What a file declares, with the places: of a whole file, and of one that is half typed.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/ide/Recovery.hpp"
#include "tessarin/parser/builder/ASTBuilder.hpp"

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace tessarin::ide {

/// A name with its place.
struct OutlineEntry {
  nvf::ustring name; ///< as it is written; an import of all names of a package ends in ".*"
  nvf::Range range;  ///< of the name; of an import from its keyword on, with no length
};

/// A function with the names of its results and arguments.
struct OutlineFunction {
  OutlineEntry function;             ///< its name
  std::vector<nvf::ustring> inputs;  ///< in the order of the text
  std::vector<nvf::ustring> outputs; ///< in the order of the text
};

/// A block of the text: a model, a function, a section, or a condition or loop around sections.
struct OutlineSection {
  nvf::ustring keyword;  ///< the word that opens it
  nvf::Range range;      ///< from that word to the end of its `end`, or as far as the block goes where it has none
  std::size_t depth = 0; ///< the blocks around it
};

/// What a file declares.
struct Outline {
  /// The members by the keyword of their blocks.
  using Members = std::vector<std::pair<nvf::ustring, std::vector<OutlineEntry>>>;

  std::vector<OutlineEntry> imports; ///< in the order of the text
  nvf::ustring type;                 ///< "component", "domain" or "function"
  OutlineEntry main;                 ///< the name of the main item
  std::optional<OutlineEntry> base;  ///< the name of the base class, if there is one
  /// In the order of the kinds of members; those in conditional sections and loops included.
  Members members;
  /// The local ones in order of name; before them the function of the file, where that is its main item.
  std::vector<OutlineFunction> functions;
};

/// The outline of a file. Safe from any thread.
TESSARIN_EXPORT Outline outlineOf(const compiler::core::TSNFile& file);

/// The blocks of a text that was checked, faulty or not, in the order in which they open. Safe from any thread.
TESSARIN_EXPORT std::vector<OutlineSection> sectionsOf(const nvf::SourceBuffer& source, const CheckResult& checked);

} // namespace tessarin::ide
