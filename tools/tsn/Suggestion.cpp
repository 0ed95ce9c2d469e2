#include "Suggestion.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace tessarin::tool {

std::size_t editDistance(std::string_view from, std::string_view to) {
  // Rows of the table of distances between the beginnings of the texts: the one before the last, the last, this one.
  std::vector<std::size_t> beforeLast;
  std::vector<std::size_t> last(to.size() + 1);
  for (std::size_t column = 0; column < last.size(); ++column) last[column] = column;
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::vector<std::size_t> row(to.size() + 1);
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
      const bool isSwapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (isSwapped) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
    }
    beforeLast = std::move(last);
    last = std::move(row);
  }
  return last.back();
}

std::optional<std::string> suggestionFor(std::string_view text, std::span<const std::string> names) {
  constexpr std::size_t longest = 40; // nobody mistypes so much, and the table stays small
  if (text.size() > longest) return std::nullopt;
  std::optional<std::string> nearest;
  std::size_t smallest = std::max<std::size_t>(1, text.size() / 3) + 1;
  for (const std::string& name : names) {
    const std::size_t distance = editDistance(text, name);
    if (distance >= smallest) continue;
    smallest = distance;
    nearest = name;
  }
  return nearest;
}

} // namespace tessarin::tool
