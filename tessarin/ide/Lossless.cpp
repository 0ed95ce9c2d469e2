#include "tessarin/ide/Lossless.hpp"

#include "tessarin/parser/lex/Tokenizer.hpp"

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <stdexcept>
#include <utility>

namespace tessarin::ide {

namespace core = compiler::core;
using core::Kind;

Lossless::Lossless(nvf::ustring_view text) : text_(text) {
  if (text.size() > std::numeric_limits<std::uint32_t>::max()) throw std::length_error("a text of 2^32 code units");
  constexpr std::size_t unitsOfAPiece = 3; // about: few texts have shorter ones
  pieces_.reserve(text.size() / unitsOfAPiece + 2);
  const auto tokenizer = core::Tokenizer::create();
  tokenizer->setBuffer(text.data(), text.size(), false);
  std::size_t offset = 0;
  for (core::LexToken token = tokenizer->next(); token.kind != Kind::EMPTY; token = tokenizer->next()) {
    pieces_.push_back({offset, static_cast<std::uint32_t>(token.length), token.kind});
    offset += token.length;
  }
  if (offset < text.size()) pieces_.push_back({offset, static_cast<std::uint32_t>(text.size() - offset), Kind::EMPTY});
}

constexpr std::array<PieceSort, core::kindCount> Lossless::sorts = [] {
  std::array<PieceSort, core::kindCount> table{}; // tokens
  const auto set = [&table](PieceSort sort, std::initializer_list<Kind> kinds) {
    for (const Kind kind : kinds) table[static_cast<std::size_t>(kind)] = sort;
  };
  set(PieceSort::Comment,
      {Kind::COMMENT, Kind::BLKSTART, Kind::BLKCOM, Kind::BLKEND, Kind::DEEP_COM, Kind::CPAD, Kind::PRAGMA});
  set(PieceSort::LineEnd, {Kind::EOL, Kind::SEOL, Kind::CEOL, Kind::IEOL});
  set(PieceSort::Blank, {Kind::WHITE, Kind::DOTDOTDOT, Kind::EMPTY});
  return table;
}();

std::size_t Lossless::at(std::size_t offset) const noexcept {
  const auto found = std::partition_point(pieces_.begin(), pieces_.end(),
                                          [offset](const Piece& piece) { return piece.end() <= offset; });
  return static_cast<std::size_t>(found - pieces_.begin());
}

PieceRange Lossless::leading(std::size_t token) const noexcept {
  const std::size_t end = std::min(token, pieces_.size());
  std::size_t begin = end;
  while (begin > 0 && sort(pieces_[begin - 1]) != PieceSort::Token) --begin;
  if (begin > 0) begin = trailing(begin - 1).end;
  return {begin, end};
}

PieceRange Lossless::trailing(std::size_t token) const noexcept {
  const std::size_t begin = std::min(token + 1, pieces_.size());
  std::size_t end = begin;
  while (end < pieces_.size() && sort(pieces_[end]) != PieceSort::Token) {
    if (sort(pieces_[end++]) == PieceSort::LineEnd) break;
  }
  return {begin, end};
}

// ---- nodes --------------------------------------------------------------------------------------------------------

NodeIndex::NodeIndex(core::ParseTree tree, const Lossless& lossless, const LineTable& lines) : tree_(std::move(tree)) {
  // A node is entered on the way down; on the way up it widens the one above it.
  struct Open {
    std::size_t entry;
    std::size_t child;
  };
  std::vector<Open> open;
  const auto enter = [&](const core::ParseTree& node) {
    Entry entry{&node, {}, 0};
    if (node.type() == 0 && node.token().code() != core::TokenId::EMPTYTOKEN) {
      const std::size_t piece = lossless.at(lines.offsetOf(node.token().location().lineColumn()));
      if (piece < lossless.pieces().size()) entry.pieces = {piece, piece + 1};
    }
    open.push_back({entries_.size(), 0});
    entries_.push_back(entry);
  };
  enter(tree_);
  while (!open.empty()) {
    const core::ParseTree& node = *entries_[open.back().entry].node;
    if (node.type() == 1 && open.back().child < node.count()) {
      enter(node.child(open.back().child++));
      continue;
    }
    Entry& done = entries_[open.back().entry];
    done.next = entries_.size();
    open.pop_back();
    if (open.empty() || done.pieces.begin == done.pieces.end) continue;
    PieceRange& above = entries_[open.back().entry].pieces;
    const bool isFirst = above.begin == above.end;
    above.begin = isFirst ? done.pieces.begin : std::min(above.begin, done.pieces.begin);
    above.end = std::max(above.end, done.pieces.end);
  }
}

NodeIndex::~NodeIndex() = default;

const NodeIndex::Entry* NodeIndex::innermost(const PieceRange& pieces) const noexcept {
  const auto covers = [&](const Entry& entry) {
    return entry.pieces.begin <= pieces.begin && pieces.end <= entry.pieces.end &&
           entry.pieces.begin != entry.pieces.end;
  };
  if (!covers(entries_[0])) return nullptr;
  std::size_t found = 0;
  for (std::size_t i = 1; i < entries_[found].next;) {
    if (covers(entries_[i])) {
      found = i++;
    } else {
      i = entries_[i].next;
    }
  }
  return &entries_[found];
}

} // namespace tessarin::ide
