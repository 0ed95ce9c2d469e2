// The scanner's vocabulary: what kinds of lexical units there are, and what is known of each. The table is kinds.def.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessarin::compiler::core {

/// A kind of lexical unit. It is finer than the parser's vocabulary (`TokenId`): it tells integers from other numbers,
/// and the end of a statement from the end of a row or of a continued line.
enum class Kind : std::int32_t {
#define TESSARIN_KIND(code, name, image, category, flags) name = (code),
#include "tessarin/parser/lex/kinds.def"
};

/// The number of kinds; they count from 0.
inline constexpr std::size_t kindCount = 128;

/// No kind: the answer of a lookup that finds nothing.
inline constexpr Kind noKind{-1};

/// How text of a kind is coloured.
struct KindCategory {
  /// The categories, in the order of their numbers.
  enum Value : std::int32_t {
    KEYWORDS,
    OPERATORS,
    STRINGS,
    NUMERIC,
    ERRORS,
    UNTERMINATED_STRINGS,
    SYSTEM_COMMAND,
    PLAIN,
    COMMENTS
  };
};

// The functions below take enumerators only, and may be called from any thread. The views that they return are closed
// by a zero and live as long as the process.

/// The name of the kind, such as "ID".
TESSARIN_EXPORT ustring_view kind_name(Kind kind) noexcept;
/// The same as `kind_name`.
TESSARIN_EXPORT ustring_view kind_uname(Kind kind) noexcept;
/// The text that shows the kind, such as ":=", or empty where there is none.
TESSARIN_EXPORT ustring_view kind_image(Kind kind) noexcept;
/// How text of the kind is coloured.
TESSARIN_EXPORT KindCategory::Value kind_category(Kind kind) noexcept;
/// The name of the enumerator, such as "KEYWORDS".
TESSARIN_EXPORT ustring_view kind_category_name(KindCategory::Value category) noexcept;

/// Whether it is a line end that need not stand in the text as the end of a statement.
TESSARIN_EXPORT bool is_implicit_eol(Kind kind) noexcept;
/// Whether it can change the blanks around it.
TESSARIN_EXPORT bool can_modify_whitespace(Kind kind) noexcept;
/// Whether it opens a statement or a section.
TESSARIN_EXPORT bool is_statement_start(Kind kind) noexcept;
/// Whether it closes one.
TESSARIN_EXPORT bool is_statement_end(Kind kind) noexcept;
/// Whether it is passed over where brackets are matched.
TESSARIN_EXPORT bool is_bracket_skip(Kind kind) noexcept;
/// Whether it is a reserved word.
TESSARIN_EXPORT bool is_reserved_word(Kind kind) noexcept;

/// The words of the language.
namespace keyword {
/// The text of a reserved word for messages, such as "elseif"; empty for any other kind.
TESSARIN_EXPORT ustring_view name(Kind kind) noexcept;
} // namespace keyword

/// The kind whose reserved text is exactly `text`, `length` code units long, case counting, or `noKind`. "function"
/// gives `FUNCTION`.
TESSARIN_EXPORT Kind reserved_word(const char16_t* text, std::size_t length) noexcept;
/// The reserved texts in the order of their kinds; "function" stands twice.
TESSARIN_EXPORT std::vector<ustring> reserved_words();

} // namespace tessarin::compiler::core
