#include "tessarin/ide/Names.hpp"

#include <algorithm>

namespace tessarin::ide {

// ---- words ----

std::string_view wordFor(DeclarationKind kind) noexcept {
  static constexpr std::string_view words[] = {
#define TESSARIN_DECLARATION(name, text) text,
#include "tessarin/ide/names.def"
  };
  return words[static_cast<std::size_t>(kind)];
}

std::string_view wordFor(Role role) noexcept {
  static constexpr std::string_view words[] = {
#define TESSARIN_ROLE(name, text) text,
#include "tessarin/ide/names.def"
  };
  return words[static_cast<std::size_t>(role)];
}

std::string_view wordFor(Unknown reason) noexcept {
  static constexpr std::string_view words[] = {
#define TESSARIN_UNKNOWN(name, text) text,
#include "tessarin/ide/names.def"
  };
  return words[static_cast<std::size_t>(reason)];
}

// ---- looking up ----

Index Names::declared(const nvf::CxId& name, Index scope) const {
  const auto found = std::lower_bound(byName.begin(), byName.end(), name, [&](Index i, const nvf::CxId& wanted) {
    const Declaration& declaration = declarations[i];
    return declaration.scope != scope ? declaration.scope < scope : declaration.name < wanted;
  });
  if (found == byName.end() || declarations[*found].scope != scope || declarations[*found].name != name) return noIndex;
  return *found;
}

Index Names::lookup(const nvf::CxId& name, Index scope) const {
  for (; scope != noIndex; scope = scopes[scope].parent) {
    // Modes are looked at by transitions only.
    if (scopes[scope].kind == ScopeKind::Modechart) continue;
    if (const Index found = declared(name, scope); found != noIndex) return found;
  }
  return noIndex;
}

Index Names::declarationAt(nvf::LineColumn place) const {
  const auto found =
      std::find_if(declarations.begin(), declarations.end(), [&](const Declaration& d) { return d.touches(place); });
  return found == declarations.end() ? noIndex : static_cast<Index>(found - declarations.begin());
}

Index Names::referenceAt(nvf::LineColumn place) const {
  const auto found =
      std::find_if(references.begin(), references.end(), [&](const Reference& r) { return r.touches(place); });
  return found == references.end() ? noIndex : static_cast<Index>(found - references.begin());
}

} // namespace tessarin::ide
