#include "tessarin/ide/FormatLaws.hpp"

#include "tessarin/foundation/exception.hpp"
#include "tessarin/foundation/location.hpp"
#include "tessarin/foundation/message.hpp"
#include "tessarin/foundation/warning.hpp"
#include "tessarin/ide/BlockStack.hpp"
#include "tessarin/ide/LineWriter.hpp"
#include "tessarin/parser/parse/Parser.hpp"

#include <algorithm>
#include <utility>

namespace tessarin::ide {

namespace core = compiler::core;
using core::Kind;

// ---- tokens and comments ------------------------------------------------------------------------------------------

namespace {

/// The pieces of a text that the parser sees, one after the other, with the line ends before each.
class Tokens {
public:
  explicit Tokens(const Lossless& lossless) : lossless_(lossless), pieces_(lossless.pieces()) { advance(); }
  [[nodiscard]] bool atEnd() const noexcept { return i_ == pieces_.size(); }
  [[nodiscard]] Kind kind() const noexcept { return pieces_[i_].kind; }
  [[nodiscard]] nvf::ustring_view text() const noexcept { return lossless_.text(pieces_[i_]); }
  [[nodiscard]] std::size_t offset() const noexcept { return atEnd() ? lossless_.text().size() : pieces_[i_].offset; }
  [[nodiscard]] std::size_t lineEnds() const noexcept { return lineEnds_; }
  [[nodiscard]] bool inArray() const noexcept { return inArray_; }
  void next() noexcept {
    ++i_;
    lineEnds_ = 0;
    inArray_ = false;
    advance();
  }

private:
  void advance() noexcept {
    for (; i_ < pieces_.size(); ++i_) {
      const Piece& piece = pieces_[i_];
      switch (Lossless::sort(piece)) {
      case PieceSort::Token: return;
      case PieceSort::Marker:
        if (piece.kind == Kind::COMMA) return; // a blank stands for it
        break;
      case PieceSort::LineEnd:
        if (piece.kind == Kind::CEOL || piece.length == 0) break;
        ++lineEnds_;
        inArray_ = inArray_ || piece.kind == Kind::SEOL;
        break;
      case PieceSort::Comment:
      case PieceSort::Blank: break;
      }
    }
  }

  const Lossless& lossless_;
  std::span<const Piece> pieces_;
  std::size_t i_ = 0;
  std::size_t lineEnds_ = 0;
  bool inArray_ = false;
};

/// A comment's text. That of a line in a block comment has its blanks, for they stay.
nvf::ustring_view commentText(const Lossless& lossless, std::size_t i) noexcept {
  const Piece& piece = lossless.pieces()[i];
  nvf::ustring_view text = lossless.text(piece);
  while (!text.empty() && text.back() >= u'\n' && text.back() <= u'\r') text.remove_suffix(1);
  const bool isWhole = piece.kind != Kind::COMMENT && piece.kind != Kind::CPAD && piece.kind != Kind::PRAGMA;
  return isWhole ? text : trimmed(text);
}

/// The index of the next comment from a piece on; dots at the end of a line may be followed by one of blanks alone.
std::size_t nextComment(const Lossless& lossless, std::size_t i) noexcept {
  const std::span<const Piece> pieces = lossless.pieces();
  const auto isOne = [&](const Piece& piece) {
    return Lossless::sort(piece) == PieceSort::Comment && piece.length > 0 &&
           (piece.kind != Kind::COMMENT || !trimmed(lossless.text(piece)).empty());
  };
  while (i < pieces.size() && !isOne(pieces[i])) ++i;
  return i;
}

std::optional<FormatRefusal> compareComments(const Lossless& before, const Lossless& after) {
  std::size_t i = nextComment(before, 0);
  std::size_t j = nextComment(after, 0);
  while (i < before.pieces().size() && j < after.pieces().size()) {
    if (before.pieces()[i].kind != after.pieces()[j].kind || commentText(before, i) != commentText(after, j)) break;
    i = nextComment(before, i + 1);
    j = nextComment(after, j + 1);
  }
  if (i == before.pieces().size() && j == after.pieces().size()) return std::nullopt;
  const std::size_t offset = i < before.pieces().size() ? before.pieces()[i].offset : before.text().size();
  return FormatRefusal{FormatLaw::Comments, offset};
}

} // namespace

Comparison compare(const Lossless& before, const Lossless& after) {
  Comparison result;
  Tokens a(before);
  Tokens b(after);
  for (bool isFirst = true;; isFirst = false) {
    const bool isSame = a.atEnd() == b.atEnd() && (a.atEnd() || (a.kind() == b.kind() && a.text() == b.text()));
    const bool hasLost = a.lineEnds() > 0 && b.lineEnds() == 0 && !isFirst && !a.atEnd();
    const bool hasRow = !a.atEnd() && (a.inArray() || b.inArray()) && (a.lineEnds() > 0) != (b.lineEnds() > 0);
    if (!isSame || hasLost || hasRow) {
      result.broken = FormatRefusal{FormatLaw::Tokens, a.offset()};
      return result;
    }
    const bool hasSame = a.lineEnds() == b.lineEnds() || (a.lineEnds() > 1 && b.lineEnds() > 1);
    result.hasSameLineEnds = result.hasSameLineEnds && hasSame;
    if (a.atEnd()) break;
    a.next();
    b.next();
  }
  result.broken = compareComments(before, after);
  return result;
}

// ---- trees --------------------------------------------------------------------------------------------------------

namespace {

constexpr std::size_t maxFaults = 20;

/// Puts blanks in the place of a part of a text, but for its line ends.
void blankOut(nvf::ustring& text, OffsetRange range) {
  for (std::size_t i = range.begin; i < std::min(range.end, text.size()); ++i) {
    if (text[i] < u'\n' || text[i] > u'\r') text[i] = u' ';
  }
}

/// Parses a text. A fault that has a place leaves its offset in `fault`, which is otherwise behind the text.
std::optional<core::ParseTree> parse(nvf::ustring_view text, std::size_t& fault) {
  const nvf::ScopedWarningSink silent([](const nvf::Message&) {});
  fault = text.size() + 1;
  try {
    return core::Parser(nvf::SourceBuffer(nvf::FileName(), text)).parse();
  } catch (const nvf::LocationException& e) {
    fault = LineTable(text).offsetOf(e.location().lineColumn());
  } catch (const nvf::Exception&) { // a line or a column too many
  }
  return std::nullopt;
}

/// The lines of the statement at an offset; nothing where they bear on blocks.
std::optional<OffsetRange> statementAt(const Lossless& lossless, std::size_t offset) {
  const std::span<const Piece> pieces = lossless.pieces();
  const auto endsStatement = [](const Piece& piece) { return piece.kind == Kind::EOL || piece.kind == Kind::IEOL; };
  std::size_t begin = std::min(lossless.at(offset), pieces.size());
  std::size_t end = begin;
  while (begin > 0 && !endsStatement(pieces[begin - 1])) --begin;
  while (end < pieces.size() && !endsStatement(pieces[end])) ++end;
  if (begin == end) return std::nullopt;
  const BlockStack noBlocks;
  for (const Piece& piece : pieces.subspan(begin, end - begin)) {
    const bool mayBear = noBlocks.roleOf(piece.kind) != BlockRole::None || piece.kind == Kind::MODE ||
                         piece.kind == Kind::ENTRY || piece.kind == Kind::INITIAL;
    if (mayBear) return std::nullopt;
  }
  return OffsetRange{pieces[begin].offset, pieces[end - 1].end()};
}

} // namespace

Reading read(const Lossless& lossless) {
  Reading reading;
  std::size_t fault = 0;
  reading.tree = parse(lossless.text(), fault);
  if (reading.tree) return reading;
  nvf::ustring masked(lossless.text());
  for (std::size_t i = 0; i < maxFaults && !reading.tree && fault <= masked.size(); ++i) {
    const std::optional<OffsetRange> lines = statementAt(lossless, fault);
    const bool isNew = lines && std::find(reading.faulty.begin(), reading.faulty.end(), *lines) == reading.faulty.end();
    if (!isNew) break;
    reading.faulty.push_back(*lines);
    blankOut(masked, *lines);
    reading.tree = parse(masked, fault);
  }
  std::sort(reading.faulty.begin(), reading.faulty.end(),
            [](const OffsetRange& a, const OffsetRange& b) { return a.begin < b.begin; });
  return reading;
}

std::optional<core::ParseTree> readWithout(nvf::ustring_view text, std::span<const KeptLines> lines) {
  nvf::ustring masked(text);
  for (const KeptLines& line : lines) {
    if (!line.isCode) blankOut(masked, line.range);
  }
  std::size_t fault = 0;
  return parse(masked, fault);
}

namespace {

/// The nodes and tokens of a tree from left to right, without line ends and the end of the text.
class TreeWalk {
public:
  explicit TreeWalk(const core::ParseTree& tree) : node_(&tree) {}

  /// What the walk has come to; null where it leaves a node, or is over.
  [[nodiscard]] const core::ParseTree* node() const noexcept { return node_; }
  [[nodiscard]] bool isOver() const noexcept { return open_.empty() && node_ == nullptr; }
  void next() {
    if (node_ != nullptr && node_->type() == 1) open_.push_back({node_, 0});
    node_ = nullptr;
    while (!open_.empty() && open_.back().second < open_.back().first->count()) {
      const core::ParseTree& child = open_.back().first->child(open_.back().second++);
      if (isLineEnd(child)) continue;
      node_ = &child;
      return;
    }
    if (!open_.empty()) open_.pop_back();
  }

private:
  static bool isLineEnd(const core::ParseTree& tree) {
    return tree.isTerminalType(core::TokenId::EOL) || tree.isTerminalType(core::TokenId::EOI);
  }

  const core::ParseTree* node_;
  std::vector<std::pair<const core::ParseTree*, std::size_t>> open_;
};

bool equalNodes(const core::ParseTree* a, const core::ParseTree* b) {
  if (a == nullptr || b == nullptr) return a == b;
  if (a->type() != b->type()) return false;
  return a->type() == 0 ? a->token().equal(b->token()) : a->code() == b->code();
}

} // namespace

bool equalButForLineEnds(const core::ParseTree& a, const core::ParseTree& b) {
  TreeWalk left(a);
  TreeWalk right(b);
  for (; !left.isOver() && !right.isOver(); left.next(), right.next()) {
    if (!equalNodes(left.node(), right.node())) return false;
  }
  return left.isOver() && right.isOver();
}

// ---- places -------------------------------------------------------------------------------------------------------

namespace {

/// Follows offsets that rise from one text to the other.
class Follower {
public:
  Follower(const Lossless& before, const Lossless& after) : before_(before), after_(after) {
    i_ = solid(before_, 0);
    j_ = solid(after_, 0);
  }

  /// The offset in the other text. Between two solid pieces line ends are counted: from the left one for an end, from
  /// the right one for a begin, since what has been kept stands on that side.
  std::size_t follow(std::size_t offset, bool isEnd) {
    while (i_ < before_.pieces().size() && before_.pieces()[i_].end() <= offset) {
      leftBefore_ = endOf(before_, i_);
      leftAfter_ = endOf(after_, j_);
      i_ = solid(before_, i_ + 1);
      j_ = solid(after_, j_ + 1);
    }
    const std::size_t rightBefore = beginOf(before_, i_);
    const std::size_t rightAfter = beginOf(after_, j_);
    if (offset >= rightBefore) return std::min(rightAfter + (offset - rightBefore), after_.text().size());
    if (offset <= leftBefore_) return leftAfter_;
    if (isEnd) {
      const std::size_t lines = countLines(before_.text().substr(leftBefore_, offset - leftBefore_));
      std::size_t at = leftAfter_;
      for (std::size_t n = 0; n < lines && at < rightAfter; ++at) n += after_.text()[at] == u'\n' ? 1U : 0U;
      return at;
    }
    const std::size_t lines = countLines(before_.text().substr(offset, rightBefore - offset));
    std::size_t at = rightAfter;
    for (std::size_t n = 0; at > leftAfter_; --at) {
      n += after_.text()[at - 1] == u'\n' ? 1U : 0U;
      if (n > lines) break;
    }
    return at;
  }

private:
  static bool isSolid(const Piece& piece) noexcept {
    const PieceSort sort = Lossless::sort(piece);
    return piece.length > 0 && (sort == PieceSort::Token || sort == PieceSort::Comment);
  }
  static std::size_t solid(const Lossless& lossless, std::size_t i) noexcept {
    while (i < lossless.pieces().size() && !isSolid(lossless.pieces()[i])) ++i;
    return i;
  }
  static std::size_t beginOf(const Lossless& lossless, std::size_t i) noexcept {
    return i < lossless.pieces().size() ? lossless.pieces()[i].offset : lossless.text().size();
  }
  static std::size_t endOf(const Lossless& lossless, std::size_t i) noexcept {
    return i < lossless.pieces().size() ? lossless.pieces()[i].end() : lossless.text().size();
  }
  static std::size_t countLines(nvf::ustring_view text) noexcept {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), u'\n'));
  }

  const Lossless& before_;
  const Lossless& after_;
  std::size_t i_ = 0;
  std::size_t j_ = 0;
  std::size_t leftBefore_ = 0;
  std::size_t leftAfter_ = 0;
};

} // namespace

std::vector<KeptLines> moved(std::span<const KeptLines> kept, const Lossless& before, const Lossless& after) {
  std::vector<KeptLines> result;
  Follower follower(before, after);
  for (const KeptLines& lines : kept) {
    const std::size_t begin = follower.follow(lines.range.begin, false);
    const std::size_t end = follower.follow(lines.range.end, true);
    if (begin < end) result.push_back({{begin, end}, lines.isCode});
  }
  return result;
}

} // namespace tessarin::ide
