// The formatter's layout: from tokens and comments to lines. Private to this stage.
//
// The layout goes by the scanner's tokens alone, so that it works on text that the parser refuses as well; whether the
// result says the same as the text is found out afterwards (Format.cpp).
#pragma once

#include "tessarin/foundation/text.hpp"
#include "tessarin/ide/Lossless.hpp"
#include "tessarin/ide/Positions.hpp"

#include <cstddef>
#include <span>

namespace tessarin::ide {

/// Lines that stay as they are.
struct KeptLines {
  OffsetRange range;  ///< touches each of the lines
  bool isCode = true; ///< whether their words open and close blocks; those of a faulty statement do not
};

/// What the layout is told.
struct LayoutOptions {
  std::size_t width = 100;         ///< where lines end at the latest, if they can be broken
  std::size_t indentation = 2;     ///< blanks for each level
  std::span<const KeptLines> kept; ///< in order, without overlaps
};

/// The text laid out. Linear.
nvf::ustring layOut(const Lossless& lossless, const LayoutOptions& options);

} // namespace tessarin::ide
