#include "tessarin/parser/lex/Kind.hpp"

#include "tessarin/parser/lex/KindTable.hpp"

namespace tessarin::compiler::core {

namespace {

constexpr ustring_view categoryNames[] = {u"KEYWORDS",       u"OPERATORS", u"STRINGS",
                                          u"NUMERIC",        u"ERRORS",    u"UNTERMINATED_STRINGS",
                                          u"SYSTEM_COMMAND", u"PLAIN",     u"COMMENTS"};

bool hasFlag(Kind kind, std::uint32_t mask) noexcept {
  return (rowOf(kind).flags & mask) != 0;
}

// ---- reserved words: a hash table without collisions, whose multiplier the compiler finds -------------------------

constexpr std::size_t slotCount = 256;

/// Four properties that tell the reserved words apart. `text` has two code units at least.
constexpr std::uint32_t keyOf(ustring_view text) {
  return static_cast<std::uint32_t>(text.size()) << 24U ^ static_cast<std::uint32_t>(text.back()) << 16U ^
         static_cast<std::uint32_t>(text[1]) << 8U ^ static_cast<std::uint32_t>(text[0]);
}

struct ReservedWordTable {
  std::uint32_t multiplier = 0;
  std::array<std::uint8_t, slotCount> codes{}; // 0 for an empty slot

  [[nodiscard]] constexpr std::uint8_t& slot(ustring_view text) { return codes[slotOf(text)]; }
  [[nodiscard]] constexpr std::size_t slotOf(ustring_view text) const { return (keyOf(text) * multiplier) >> 24U; }

  /// False where two different words meet in a slot. The first kind of a word keeps its slot: "function" is `FUNCTION`.
  constexpr bool fill(std::uint32_t candidate) {
    multiplier = candidate;
    codes.fill(0);
    for (const KindRow& row : kindTable) {
      if (!row.isReserved) continue;
      std::uint8_t& code = slot(row.image);
      if (code == 0) {
        code = static_cast<std::uint8_t>(row.kind);
      } else if (kindTable[code].image != row.image) {
        return false;
      }
    }
    return true;
  }
};

constexpr ReservedWordTable reservedWordTable = [] {
  ReservedWordTable table;
  for (std::uint32_t candidate = 0x9e3779b1U; !table.fill(candidate); candidate += 0x3c6ef362U) {
  }
  return table;
}();

constexpr std::size_t longestReservedWord = [] {
  std::size_t longest = 0;
  for (const KindRow& row : kindTable) {
    if (row.isReserved && row.image.size() > longest) longest = row.image.size();
  }
  return longest;
}();

} // namespace

ustring_view kind_name(Kind kind) noexcept {
  return rowOf(kind).name;
}

ustring_view kind_uname(Kind kind) noexcept {
  return kind_name(kind);
}

ustring_view kind_image(Kind kind) noexcept {
  return rowOf(kind).image;
}

KindCategory::Value kind_category(Kind kind) noexcept {
  return rowOf(kind).category;
}

ustring_view kind_category_name(KindCategory::Value category) noexcept {
  return categoryNames[category];
}

bool is_implicit_eol(Kind kind) noexcept {
  return hasFlag(kind, kind_flags::implicitEol);
}

bool can_modify_whitespace(Kind kind) noexcept {
  return hasFlag(kind, kind_flags::whitespace);
}

bool is_statement_start(Kind kind) noexcept {
  return hasFlag(kind, kind_flags::startsStatement);
}

bool is_statement_end(Kind kind) noexcept {
  return hasFlag(kind, kind_flags::endsStatement);
}

bool is_bracket_skip(Kind kind) noexcept {
  return hasFlag(kind, kind_flags::bracketSkip);
}

bool is_reserved_word(Kind kind) noexcept {
  return rowOf(kind).isReserved;
}

Kind reserved_word(const char16_t* text, std::size_t length) noexcept {
  if (length < 2 || length > longestReservedWord) return noKind;
  const ustring_view word(text, length);
  const std::uint8_t code = reservedWordTable.codes[reservedWordTable.slotOf(word)];
  return code != 0 && kindTable[code].image == word ? kindTable[code].kind : noKind;
}

std::vector<ustring> reserved_words() {
  std::vector<ustring> words;
  for (const KindRow& row : kindTable) {
    if (row.isReserved) words.emplace_back(row.image);
  }
  return words;
}

ustring_view keyword::name(Kind kind) noexcept {
  return is_reserved_word(kind) ? kind_image(kind) : ustring_view();
}

} // namespace tessarin::compiler::core
