// What a user may have meant by a name that does not exist.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tessarin::tool {

/// The number of letters to insert, remove, replace or swap with their neighbour that leads from one text to the other.
std::size_t editDistance(std::string_view from, std::string_view to);

/// The name that is nearest to `text`, the first of several; nothing where none is so near that it may be meant.
std::optional<std::string> suggestionFor(std::string_view text, std::span<const std::string> names);

} // namespace tessarin::tool
