#include "tessarin/ide/TextEdit.hpp"

#include <algorithm>
#include <stdexcept>

namespace tessarin::ide {

using compiler::core::Kind;

nvf::ustring apply(nvf::ustring_view text, std::span<const TextEdit> edits) {
  nvf::ustring result;
  result.reserve(text.size());
  std::size_t done = 0;
  for (const TextEdit& edit : edits) {
    if (edit.range.begin < done || edit.range.end < edit.range.begin || edit.range.end > text.size())
      throw std::invalid_argument("edits that overlap, or reach out of the text");
    result.append(text.substr(done, edit.range.begin - done)).append(edit.text);
    done = edit.range.end;
  }
  return result.append(text.substr(done));
}

namespace {

constexpr bool isBlank(char16_t unit) noexcept {
  return unit == u' ' || unit == u'\t' || (unit >= u'\n' && unit <= u'\r');
}

/// The index of the next piece that a reader sees.
std::size_t nextSolid(const Lossless& lossless, std::size_t i) noexcept {
  const std::span<const Piece> pieces = lossless.pieces();
  while (i < pieces.size() && Lossless::sort(pieces[i]) != PieceSort::Token &&
         Lossless::sort(pieces[i]) != PieceSort::Comment)
    ++i;
  return i;
}

/// Where the piece stands, without the blanks and line ends at its ends; the end of the text behind the last piece.
OffsetRange solidRange(const Lossless& lossless, std::size_t i) noexcept {
  const nvf::ustring_view text = lossless.text();
  if (i == lossless.pieces().size()) return {text.size(), text.size()};
  OffsetRange range{lossless.pieces()[i].offset, lossless.pieces()[i].end()};
  while (range.begin < range.end && isBlank(text[range.begin])) ++range.begin;
  while (range.begin < range.end && isBlank(text[range.end - 1])) --range.end;
  return range;
}

} // namespace

std::vector<TextEdit> edits(const Lossless& before, const Lossless& after) {
  std::vector<TextEdit> result;
  const auto part = [](const Lossless& lossless, std::size_t begin, std::size_t end) {
    return lossless.text().substr(begin, end - begin);
  };
  std::size_t doneBefore = 0;
  std::size_t doneAfter = 0;
  std::size_t i = nextSolid(before, 0);
  std::size_t j = nextSolid(after, 0);
  while (true) {
    OffsetRange here = solidRange(before, i);
    OffsetRange there = solidRange(after, j);
    const bool isSame = part(before, here.begin, here.end) == part(after, there.begin, there.end);
    if (!isSame) {
      here.begin = before.text().size();
      there.begin = after.text().size();
    }
    const nvf::ustring_view old = part(before, doneBefore, here.begin);
    const nvf::ustring_view now = part(after, doneAfter, there.begin);
    if (old != now) {
      const auto shorter = std::min(old.size(), now.size());
      const auto same = static_cast<std::size_t>(
          std::mismatch(old.begin(), old.begin() + static_cast<std::ptrdiff_t>(shorter), now.begin()).first -
          old.begin());
      std::size_t tail = 0;
      while (tail < shorter - same && old[old.size() - 1 - tail] == now[now.size() - 1 - tail]) ++tail;
      result.push_back(
          {{doneBefore + same, here.begin - tail}, nvf::ustring(now.substr(same, now.size() - same - tail))});
    }
    if (!isSame || i == before.pieces().size()) return result;
    doneBefore = here.end;
    doneAfter = there.end;
    i = nextSolid(before, i + 1);
    j = nextSolid(after, j + 1);
  }
}

// ---- differences --------------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t linesAround = 3;

/// Lines that are taken out and the lines that take their place, both by number, without the line at `end`.
struct Change {
  OffsetRange old;
  OffsetRange now;
};

void appendLine(std::string& out, char mark, nvf::ustring_view line) {
  out += mark;
  out += nvf::encode_utf8(line);
  if (line.empty() || (line.back() != u'\n' && line.back() != u'\r')) out += "\n\\ No newline at end of file\n";
}

void appendLines(std::string& out, char mark, nvf::ustring_view text, const LineTable& lines, std::size_t begin,
                 std::size_t end) {
  for (std::size_t i = begin; i < end; ++i) {
    const OffsetRange range = lines.line(i);
    if (range.begin != range.end) appendLine(out, mark, text.substr(range.begin, range.end - range.begin));
  }
}

/// The lines of a text; what stands behind its last line end is one only if there is something.
std::size_t countOf(const LineTable& lines) noexcept {
  const OffsetRange last = lines.line(lines.lineCount() - 1);
  return lines.lineCount() - (last.begin == last.end ? 1 : 0);
}

std::string rangeOf(std::size_t begin, std::size_t end) {
  return std::to_string(end == begin ? begin : begin + 1) + "," + std::to_string(end - begin);
}

std::vector<Change> changesOf(std::span<const TextEdit> edits, const LineTable& before, const LineTable& after,
                              std::size_t oldLines, std::size_t newLines) {
  std::vector<Change> changes;
  std::size_t grownBy = 0; // modulo 2^n: how far the text behind the edits so far has moved
  for (const TextEdit& edit : edits) {
    const std::size_t newBegin = edit.range.begin + grownBy;
    grownBy += edit.text.size() - (edit.range.end - edit.range.begin);
    Change change{{before.utf16(edit.range.begin).line, before.utf16(edit.range.end).line + 1},
                  {after.utf16(newBegin).line, after.utf16(edit.range.end + grownBy).line + 1}};
    change.old.end = std::min(change.old.end, oldLines);
    change.now.end = std::min(change.now.end, newLines);
    change.old.begin = std::min(change.old.begin, change.old.end);
    change.now.begin = std::min(change.now.begin, change.now.end);
    if (!changes.empty() &&
        (change.old.begin <= changes.back().old.end || change.now.begin <= changes.back().now.end)) {
      changes.back().old.end = std::max(changes.back().old.end, change.old.end);
      changes.back().now.end = std::max(changes.back().now.end, change.now.end);
    } else {
      changes.push_back(change);
    }
  }
  return changes;
}

} // namespace

std::string unifiedDifference(nvf::ustring_view before, std::span<const TextEdit> edits, const std::string& name) {
  if (edits.empty()) return {};
  const nvf::ustring after = apply(before, edits);
  const LineTable oldTable(before);
  const LineTable newTable(after);
  const std::size_t oldLines = countOf(oldTable);
  const std::vector<Change> changes = changesOf(edits, oldTable, newTable, oldLines, countOf(newTable));
  std::string out = "--- " + name + "\n+++ " + name + "\n";
  for (std::size_t i = 0; i < changes.size();) {
    std::size_t last = i; // of the changes that are shown together
    while (last + 1 < changes.size() && changes[last + 1].old.begin - changes[last].old.end <= 2 * linesAround) ++last;
    const std::size_t lead = std::min(linesAround, changes[i].old.begin);
    const std::size_t tail = std::min(linesAround, oldLines - changes[last].old.end);
    out += "@@ -" + rangeOf(changes[i].old.begin - lead, changes[last].old.end + tail) + " +" +
           rangeOf(changes[i].now.begin - lead, changes[last].now.end + tail) + " @@\n";
    std::size_t done = changes[i].old.begin - lead;
    for (; i <= last; ++i) {
      appendLines(out, ' ', before, oldTable, done, changes[i].old.begin);
      appendLines(out, '-', before, oldTable, changes[i].old.begin, changes[i].old.end);
      appendLines(out, '+', after, newTable, changes[i].now.begin, changes[i].now.end);
      done = changes[i].old.end;
    }
    appendLines(out, ' ', before, oldTable, done, done + tail);
  }
  return out;
}

} // namespace tessarin::ide
