// The formatter: lays a text out anew without changing what it says.
//
// It has no taste to choose from but the width and the indentation; docs/formatting.md states every rule. Whatever it
// returns has been held against the text first, by four laws: the tokens are the same texts in the same order, the
// comments are, the parse trees are equal but for places and for line ends between statements, so that all digests of
// the syntax tree are, and formatting the result changes nothing.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/ide/Positions.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tessarin::ide {

/// Lines of a text by number from 0, the last one included.
struct LineRange {
  std::size_t first = 0; ///< from 0
  std::size_t last = 0;  ///< from 0; may be behind the end of the text
};

/// What can be chosen.
struct FormatOptions {
  std::size_t width = 100;        ///< the columns behind which a line is broken where it can be; comments do not count
  std::size_t indentation = 2;    ///< blanks for each level
  std::optional<LineRange> lines; ///< only statements on these lines are formatted
};

/// The laws that a formatted text keeps.
enum class FormatLaw : std::uint8_t {
  Tokens,   ///< the same tokens in the same order
  Comments, ///< the same comments in the same order
  Tree,     ///< the same parse tree
  Stable    ///< formatting it again changes nothing
};

/// Why a text has not been formatted.
struct FormatRefusal {
  FormatLaw law = FormatLaw::Tokens; ///< the law that the formatted text would break
  std::size_t offset = 0;            ///< where, in the text that was given
};

/// What has become of a text.
struct FormatResult {
  nvf::ustring text;                    ///< the formatted text, or where that is refused the text that was given
  std::vector<OffsetRange> faulty;      ///< what the parser cannot read, and what has been left as it is therefore
  std::optional<FormatRefusal> refusal; ///< why nothing has been changed
};

/// What the law says, as the end of the sentence "the formatted text would …".
[[nodiscard]] TESSARIN_EXPORT std::string_view description(FormatLaw law) noexcept;

/// Formats a text. Where the parser finds fault with it, the faulty statements stay as they are; a byte order mark and
/// the kind of the first line end stay as well. A text that would break a law is refused, which is a fault of the
/// formatter. Linear in the text; issues no warnings; throws only what memory does. Safe from any thread.
[[nodiscard]] TESSARIN_EXPORT FormatResult format(nvf::ustring_view text, const FormatOptions& options = {});

} // namespace tessarin::ide
