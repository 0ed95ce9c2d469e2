// The rows of kinds.def as constant data. Private to the lexical stage.
#pragma once

#include "tessarin/parser/lex/Kind.hpp"

#include <array>
#include <string_view>

namespace tessarin::compiler::core {

namespace kind_flags {
inline constexpr std::uint32_t none = 0;
inline constexpr std::uint32_t implicitEol = 1U << 0U;
inline constexpr std::uint32_t whitespace = 1U << 1U;
inline constexpr std::uint32_t startsStatement = 1U << 2U;
inline constexpr std::uint32_t endsStatement = 1U << 3U;
inline constexpr std::uint32_t bracketSkip = 1U << 4U;
} // namespace kind_flags

struct KindRow {
  Kind kind;
  std::string_view narrowName;
  ustring_view name;
  ustring_view image;
  KindCategory::Value category;
  std::uint32_t flags;
  bool isReserved;
};

inline constexpr auto kindTable = [] {
  using namespace kind_flags;
  using enum KindCategory::Value;
  return std::to_array<KindRow>({
#define TESSARIN_KIND(code, name, image, category, flags)                                                              \
  {Kind::name, #name, u"" #name, u"" image, category, flags, false},
#define TESSARIN_RESERVED(code, name, text, flags) {Kind::name, #name, u"" #name, u"" text, KEYWORDS, flags, true},
#include "tessarin/parser/lex/kinds.def"
  });
}();

constexpr const KindRow& rowOf(Kind kind) noexcept {
  return kindTable[static_cast<std::size_t>(kind)];
}

static_assert(kindTable.size() == kindCount);
static_assert(
    [] {
      for (std::size_t i = 0; i < kindCount; ++i) {
        if (static_cast<std::size_t>(kindTable[i].kind) != i) return false;
      }
      return true;
    }(),
    "the rows stand in the order of their codes");

} // namespace tessarin::compiler::core
