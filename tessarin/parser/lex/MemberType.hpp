// The types of members that a model declares in blocks. The table is member_types.def.
#pragma once

#include <cstdint>

namespace tessarin::compiler::core {

/// Scopes the kinds of members that a block declares. The table is member_types.def.
struct MemberType {
  /// The types, and none; the numbers enter orderings and digests.
  enum Value : std::int32_t {
    NONE = -1,
#define TESSARIN_MEMBER_TYPE(number, name, opening, text, function) name = (number),
#include "tessarin/parser/lex/member_types.def"
  };

  /// The word for one member, such as "through"; not for `NONE`.
  static constexpr const char* name(Value type) noexcept {
    constexpr const char* names[] = {
#define TESSARIN_MEMBER_TYPE(number, name, opening, text, function) text,
#include "tessarin/parser/lex/member_types.def"
    };
    return names[type];
  }

  /// The word for a member made by a call: "through_variable" for `THROUGH`, otherwise `name`; not for `NONE`.
  static constexpr const char* function(Value type) noexcept {
    constexpr const char* names[] = {
#define TESSARIN_MEMBER_TYPE(number, name, opening, text, function) function,
#include "tessarin/parser/lex/member_types.def"
    };
    return names[type];
  }
};

} // namespace tessarin::compiler::core
