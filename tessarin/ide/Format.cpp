#include "tessarin/ide/Format.hpp"

#include "tessarin/ide/FormatLaws.hpp"
#include "tessarin/ide/Layout.hpp"
#include "tessarin/ide/Lossless.hpp"

#include <algorithm>
#include <span>
#include <utility>

namespace tessarin::ide {

namespace {

/// A text mostly stays from the second time on; an array whose rows have just been broken may take one more.
constexpr int maxRounds = 4;

/// The lines that stay as they are: those outside of the ones that are asked for, and faulty statements.
std::vector<KeptLines> keptLines(const std::optional<LineRange>& lines, std::span<const OffsetRange> faulty,
                                 nvf::ustring_view text) {
  OffsetRange asked{0, text.size()};
  if (lines) {
    const LineTable table(text);
    asked = {table.line(lines->first).begin, std::max(table.line(lines->first).begin, table.line(lines->last).end)};
  }
  std::vector<KeptLines> kept;
  std::size_t done = 0;
  const auto addCode = [&](std::size_t end) {
    if (done < end) kept.push_back({{done, end}, true});
    done = std::max(done, end);
  };
  for (const OffsetRange& range : faulty) {
    addCode(std::min(range.begin, asked.begin));
    if (range.begin >= asked.end) {
      done = std::max(done, asked.end);
      addCode(range.begin);
    }
    kept.push_back({range, false});
    done = range.end;
  }
  addCode(asked.begin);
  done = std::max(done, asked.end);
  addCode(text.size());
  return kept;
}

FormatResult refused(nvf::ustring_view text, const FormatRefusal& refusal) {
  return {nvf::ustring(text), {}, refusal};
}

} // namespace

std::string_view description(FormatLaw law) noexcept {
  switch (law) {
  case FormatLaw::Tokens: return "have other tokens";
  case FormatLaw::Comments: return "have other comments";
  case FormatLaw::Tree: return "mean something else";
  case FormatLaw::Stable: break;
  }
  return "be formatted differently the next time";
}

FormatResult format(nvf::ustring_view text, const FormatOptions& options) {
  const Lossless before(text);
  const Reading reading = read(before);
  if (!reading.tree) return {nvf::ustring(text), {{0, text.size()}}, {}};
  const std::vector<KeptLines> kept = keptLines(options.lines, reading.faulty, text);
  FormatResult result;
  result.faulty = reading.faulty;
  result.text = layOut(before, {options.width, options.indentation, kept});
  for (int round = 0; round < maxRounds; ++round) {
    const Lossless after(result.text);
    const Comparison comparison = compare(before, after);
    if (comparison.broken) return refused(text, *comparison.broken);
    const std::vector<KeptLines> keptAfter = moved(kept, before, after);
    nvf::ustring again = layOut(after, {options.width, options.indentation, keptAfter});
    if (again != result.text) {
      result.text = std::move(again);
      continue;
    }
    if (comparison.hasSameLineEnds) return result;
    const auto tree = readWithout(result.text, keptAfter);
    if (tree && equalButForLineEnds(*reading.tree, *tree)) return result;
    return refused(text, {FormatLaw::Tree, 0});
  }
  const auto differs = std::mismatch(text.begin(), text.end(), result.text.begin(), result.text.end()).first;
  return refused(text, {FormatLaw::Stable, static_cast<std::size_t>(differs - text.begin())});
}

} // namespace tessarin::ide
