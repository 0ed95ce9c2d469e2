// The kinds of inner nodes of a parse tree. The table is nonterminals.def.
#pragma once

#include "tessarin/export.hpp"

#include <cstddef>
#include <cstdint>
#include <iosfwd>

namespace tessarin::compiler::core {

/// Scopes the enumeration of the kinds. The functions may be called from any thread.
struct TESSARIN_EXPORT NonTerminal {
  /// The kinds. The table is nonterminals.def; the numbers enter orderings, hashes and digests.
  enum Value : std::int32_t {
#define TESSARIN_NONTERMINAL(name) name,
#include "tessarin/parser/parse/nonterminals.def"
  };

  /// The name of the enumerator, which must be one.
  static const char* name(Value kind) noexcept;
  /// Whether the kind is one of the six relational operators.
  static constexpr bool isRelational(Value kind) noexcept {
    return kind >= Lt && kind <= Ne;
  }
};

/// Writes the name; sets the stream's bad bit for what is no kind.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, NonTerminal::Value kind);

} // namespace tessarin::compiler::core
