// Changes of a text as ranges with what takes their place.
#pragma once

#include "tessarin/export.hpp"
#include "tessarin/foundation/text.hpp"
#include "tessarin/ide/Lossless.hpp"
#include "tessarin/ide/Positions.hpp"

#include <span>
#include <string>
#include <vector>

namespace tessarin::ide {

/// A stretch of a text, and what takes its place.
struct TextEdit {
  OffsetRange range; ///< of the text before
  nvf::ustring text; ///< may be empty
  friend bool operator==(const TextEdit&, const TextEdit&) = default;
};

/// The text with all edits made, whose ranges are those of the text before. They stand in order and do not overlap;
/// otherwise, and where one reaches behind the end, throws `std::invalid_argument`. Linear; safe from any thread.
[[nodiscard]] TESSARIN_EXPORT nvf::ustring apply(nvf::ustring_view text, std::span<const TextEdit> edits);

/// The edits that make `after` of `before`, in order, where both have the same tokens and comments in the same order
/// and differ in what is between them, as a text and its formatted form do. Where they part in more, the last edit
/// takes all from there on. Linear; safe from any thread.
[[nodiscard]] TESSARIN_EXPORT std::vector<TextEdit> edits(const Lossless& before, const Lossless& after);

/// The edits as a unified difference with three lines around each change, in UTF-8, for `patch`; empty without edits.
/// `name` is the path that it shows. Linear; safe from any thread.
[[nodiscard]] TESSARIN_EXPORT std::string unifiedDifference(nvf::ustring_view before, std::span<const TextEdit> edits,
                                                            const std::string& name);

} // namespace tessarin::ide
