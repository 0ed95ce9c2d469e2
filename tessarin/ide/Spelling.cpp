#include "tessarin/ide/Spelling.hpp"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace tessarin::ide {

std::size_t spellingDistance(nvf::ustring_view a, nvf::ustring_view b, std::size_t limit) {
  const std::size_t difference = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
  if (difference > limit) return limit + 1;
  // Three rows of the table of distances between the heads of both words.
  std::vector<std::size_t> rowBefore(b.size() + 1);
  std::vector<std::size_t> above(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    rowBefore.swap(above);
    above.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
        row[j] = std::min(row[j], rowBefore[j - 2] + 1);
    }
  }
  return std::min(row[b.size()], limit + 1);
}

std::optional<nvf::ustring_view> nearestWord(nvf::ustring_view word, std::span<const nvf::ustring_view> words) {
  constexpr std::size_t longest = 32; // no word that is asked for is longer
  if (word.size() > longest) return std::nullopt;
  std::optional<nvf::ustring_view> best;
  std::size_t bestDistance = 0;
  for (const nvf::ustring_view candidate : words) {
    const std::size_t limit = std::max<std::size_t>(1, candidate.size() / 3);
    const std::size_t distance = spellingDistance(word, candidate, limit);
    if (distance == 0) return std::nullopt;
    if (distance <= limit && (!best || distance < bestDistance)) {
      best = candidate;
      bestDistance = distance;
    }
  }
  return best;
}

} // namespace tessarin::ide
