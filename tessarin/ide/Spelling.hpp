// Which of some words was probably meant by another one.
#pragma once

#include "tessarin/foundation/text.hpp"

#include <cstddef>
#include <optional>
#include <span>

namespace tessarin::ide {

/// The letters to be added, dropped, replaced, or swapped with their neighbour to make one word of the other; at most
/// `limit + 1`, which stands for all larger numbers. Takes time in the product of the lengths.
std::size_t spellingDistance(nvf::ustring_view a, nvf::ustring_view b, std::size_t limit);

/// The nearest of the words, the first of several, where the distance is no more than a third of its letters, or
/// one; nothing where none is near, or where `word` is one of them.
std::optional<nvf::ustring_view> nearestWord(nvf::ustring_view word, std::span<const nvf::ustring_view> words);

} // namespace tessarin::ide
