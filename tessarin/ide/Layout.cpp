#include "tessarin/ide/Layout.hpp"

#include "tessarin/ide/LineWriter.hpp"
#include "tessarin/ide/StatementLayout.hpp"

#include <algorithm>
#include <vector>

namespace tessarin::ide {

using compiler::core::Kind;

namespace {

/// A line between statements: a comment, a line that stays as it is, or an empty one.
struct Between {
  enum class Type : unsigned char { Blank, Comment, Raw } type;
  OffsetRange range;
  std::size_t column = 0; // of a comment
};

constexpr char16_t byteOrderMark = u'\ufeff';
constexpr char16_t substitute = u'\x1a'; // ends the input

constexpr bool isLineEnd(char16_t unit) noexcept {
  return unit >= u'\n' && unit <= u'\r';
}

/// What a comment on a line of its own says to the formatter: "off", "on", or nothing.
nvf::ustring_view switchOf(nvf::ustring_view comment) noexcept {
  constexpr nvf::ustring_view mark = u"tsn format:";
  comment = trimmed(comment);
  if (!comment.starts_with(u'%')) return {};
  comment = trimmed(comment.substr(1));
  return comment.starts_with(mark) ? trimmed(comment.substr(mark.size())) : nvf::ustring_view();
}

/// The kind of line end that the first line has: LF, or CR LF.
nvf::ustring_view lineEndOf(nvf::ustring_view text) noexcept {
  const std::size_t first = text.find(u'\n');
  const bool isPair = first != nvf::ustring_view::npos && first > 0 && text[first - 1] == u'\r';
  return isPair ? nvf::ustring_view(u"\r\n") : nvf::ustring_view(u"\n");
}

class Layout {
public:
  Layout(const Lossless& lossless, const LayoutOptions& options)
      : lossless_(lossless),
        options_(options),
        pieces_(lossless.pieces()),
        out_(options.width, lineEndOf(lossless.text())),
        statements_(lossless, options.width, options.indentation, out_) {}

  nvf::ustring run();

private:
  std::size_t gather(std::size_t i);
  [[nodiscard]] bool hasCode() const noexcept;
  const KeptLines* keptLines(OffsetRange lines) noexcept;
  void code(OffsetRange lines);
  void between(OffsetRange lines);
  void writeBetween(std::size_t indent, std::size_t closeColumn);
  void raw(OffsetRange lines);
  [[nodiscard]] nvf::ustring_view text(OffsetRange range) const noexcept {
    return lossless_.text().substr(range.begin, range.end - range.begin);
  }

  const Lossless& lossless_;
  const LayoutOptions& options_;
  std::span<const Piece> pieces_;
  LineWriter out_;
  StatementLayout statements_;
  std::vector<Element> elements_; // of the run of lines at hand
  std::vector<Between> between_;  // the lines before it
  std::size_t nextKept_ = 0;
  bool isOff_ = false; // by a comment
  bool hasWritten_ = false;
};

nvf::ustring Layout::run() {
  std::size_t i = 0;
  if (!pieces_.empty() && pieces_[0].kind == Kind::BADCHAR && lossless_.text(pieces_[0])[0] == byteOrderMark &&
      pieces_[0].length == 1) {
    out_.tail({&byteOrderMark, 1});
    i = 1;
  }
  while (i < pieces_.size()) {
    const std::size_t begin = i;
    i = gather(i);
    if (i == begin) break; // the input ends before the text does
    const OffsetRange lines{pieces_[begin].offset, pieces_[i - 1].end()};
    hasCode() ? code(lines) : between(lines);
  }
  while (!between_.empty() && between_.back().type == Between::Type::Blank) between_.pop_back();
  writeBetween(statements_.blocks().indentOf(BlockRole::None, Kind::EMPTY, options_.indentation), none);
  if (i < pieces_.size()) out_.tail(lossless_.text().substr(pieces_[i].offset));
  return out_.take();
}

/// Collects what stands from a piece on up to the end of a statement's last line; returns the piece behind it.
std::size_t Layout::gather(std::size_t i) {
  elements_.clear();
  Element next;
  const auto add = [&](Element::Type type, std::size_t piece) {
    next.type = type;
    next.piece = piece;
    elements_.push_back(next);
    next = {};
  };
  for (; i < pieces_.size(); ++i) {
    const Piece& piece = pieces_[i];
    switch (piece.kind) {
    case Kind::EMPTY: return i;
    case Kind::WHITE:
      if (lossless_.text()[piece.offset] == substitute) return i;
      next.isApart = true;
      break;
    case Kind::EOL:
    case Kind::IEOL: return i + 1;
    case Kind::SEOL: add(Element::Type::Row, i); break;
    case Kind::DOTDOTDOT: {
      const bool hasComment = i + 1 < pieces_.size() && pieces_[i + 1].kind == Kind::COMMENT;
      const bool saysSomething = hasComment && !trimmed(lossless_.text(pieces_[i + 1])).empty();
      add(Element::Type::Continuation, saysSomething ? i + 1 : none);
      if (hasComment) ++i;
      break;
    }
    case Kind::CEOL: break;
    case Kind::COMMENT:
    case Kind::PRAGMA:
    case Kind::CPAD: add(Element::Type::Comment, i); break;
    case Kind::BLKSTART:
    case Kind::BLKCOM:
    case Kind::BLKEND:
    case Kind::DEEP_COM:
      add(Element::Type::Block, i);
      if (elements_.size() == 1) return i + 1; // between statements: a line by itself
      break;
    default:
      if (piece.kind == Kind::COMMA && piece.length == 0) next.isElement = next.isApart = true;
      if (piece.length != 0) add(Element::Type::Token, i);
    }
  }
  return i;
}

bool Layout::hasCode() const noexcept {
  return std::any_of(elements_.begin(), elements_.end(), [](const Element& element) {
    return element.type == Element::Type::Token ||
           (element.type == Element::Type::Continuation && element.piece != none);
  });
}

/// What is to be kept of these lines; null where it is nothing.
const KeptLines* Layout::keptLines(OffsetRange lines) noexcept {
  while (nextKept_ < options_.kept.size() && options_.kept[nextKept_].range.end <= lines.begin) ++nextKept_;
  const bool overlaps = nextKept_ < options_.kept.size() && options_.kept[nextKept_].range.begin < lines.end;
  return overlaps ? &options_.kept[nextKept_] : nullptr;
}

void Layout::code(OffsetRange lines) {
  const KeptLines* const kept = keptLines(lines);
  const Element& first = elements_.front();
  const std::size_t column = first.piece == none ? 0 : pieces_[first.piece].offset - lines.begin;
  const bool isCode = kept == nullptr || kept->isCode;
  writeBetween(isCode ? statements_.indentOf(first) : statements_.indentOf({}),
               isCode && statements_.closes(first) ? column : none);
  const bool isWritten = kept == nullptr && !isOff_;
  if (isCode) statements_.run(elements_, isWritten);
  if (!isWritten) raw(lines);
  hasWritten_ = true;
}

/// Lines without code: a comment, a line of a block comment, or an empty line.
void Layout::between(OffsetRange lines) {
  const bool wasOff = isOff_;
  Between line{Between::Type::Blank, lines, 0};
  const bool isComment = !elements_.empty() && elements_.front().type == Element::Type::Comment;
  if (isComment) {
    const Piece& piece = pieces_[elements_.front().piece];
    const nvf::ustring_view comment = lossless_.text(piece);
    const std::size_t blanks = std::min(comment.find_first_not_of(u" \t"), comment.size()); // some begin with them
    line = {Between::Type::Comment, {piece.offset + blanks, piece.end()}, piece.offset + blanks - lines.begin};
    const nvf::ustring_view said = switchOf(comment);
    if (said == u"off") isOff_ = true;
    if (said == u"on") isOff_ = false;
  } else if (!elements_.empty() && elements_.front().type == Element::Type::Block) {
    line.type = Between::Type::Raw;
  }
  if (keptLines(lines) != nullptr || (wasOff && isOff_)) line = {Between::Type::Raw, lines, 0};
  between_.push_back(line);
}

/// Comments stand as what follows them. Above a word that goes on with a block or closes it they belong to the block,
/// unless they have been written no further in than that word, which stands at `closeColumn`.
void Layout::writeBetween(std::size_t indent, std::size_t closeColumn) {
  bool isBehindBlank = !hasWritten_;
  for (const Between& line : between_) {
    if (line.type == Between::Type::Blank) {
      if (!isBehindBlank) out_.blank();
      isBehindBlank = true;
      continue;
    }
    if (line.type == Between::Type::Comment) {
      const bool isInside = closeColumn != none && line.column > closeColumn;
      const std::size_t own = indent + (isInside ? options_.indentation : 0);
      const nvf::ustring_view comment = trimmed(text(line.range));
      out_.code().append(own, u' ').append(comment);
      out_.end({own, true}, own + columnsOf(comment), {});
    } else {
      raw(line.range);
    }
    isBehindBlank = false;
    hasWritten_ = true;
  }
  between_.clear();
}

/// Writes lines as they are, but for the kind of their ends.
void Layout::raw(OffsetRange lines) {
  nvf::ustring_view rest = text(lines);
  while (!rest.empty()) {
    const auto end = static_cast<std::size_t>(std::find_if(rest.begin(), rest.end(), isLineEnd) - rest.begin());
    out_.raw(rest.substr(0, end));
    const bool isPair = end + 1 < rest.size() && rest[end] == u'\r' && isLineEnd(rest[end + 1]);
    rest.remove_prefix(std::min(rest.size(), end + (isPair ? 2 : 1)));
  }
}

} // namespace

nvf::ustring layOut(const Lossless& lossless, const LayoutOptions& options) {
  return Layout(lossless, options).run();
}

} // namespace tessarin::ide
