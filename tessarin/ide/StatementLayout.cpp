#include "tessarin/ide/StatementLayout.hpp"

#include <algorithm>

namespace tessarin::ide {

using compiler::core::Kind;

namespace {

constexpr nvf::ustring_view dots = u"...";
constexpr std::size_t dotsColumns = 4; // with the blank before them

bool isNumber(Kind kind) noexcept {
  return kind == Kind::INT || kind == Kind::FLOAT;
}

/// Words that are names wherever they open no block.
bool isSoftWord(Kind kind) noexcept {
  return kind == Kind::MODE || kind == Kind::ENTRY || kind == Kind::INITIAL;
}

} // namespace

// ---- a run of lines -----------------------------------------------------------------------------------------------

void StatementLayout::run(std::span<const Element> elements, bool isWritten) {
  elements_ = elements;
  isWritten_ = isWritten;
  isBehindBlank_ = false;
  pads_.assign(elements.size(), 0);
  line_.clear();
  if (!blocks_.isInline()) {
    depth_ = 0;
    parameters_ = none;
    brackets_.clear();
  }
  beginStatement();
  for (std::size_t i = 0; i < elements.size(); ++i) {
    switch (elements[i].type) {
    case Element::Type::Token: token(i); break;
    case Element::Type::Comment: comment(i); break;
    case Element::Type::Row: row(); break;
    case Element::Type::Continuation: continuation(i); break;
    case Element::Type::Block: blockComment(i); break;
    }
  }
  if (!line_.empty()) endLine(LineBreak::Statement, {});
  // A last line that goes on ends with an empty one.
  const Element& last = elements.back();
  const bool goesOn = (last.type == Element::Type::Continuation && last.piece != none) || //
                      last.type == Element::Type::Block;
  if (goesOn && isWritten_) out_.blank();
}

std::size_t StatementLayout::indentOf(const Element& element) const noexcept {
  const bool isToken = element.type == Element::Type::Token && element.piece != none;
  const Kind kind = isToken ? pieces_[element.piece].kind : Kind::EMPTY;
  return blocks_.indentOf(blocks_.roleOf(kind), kind, step_);
}

bool StatementLayout::closes(const Element& element) const noexcept {
  if (element.type != Element::Type::Token || element.piece == none) return false;
  const BlockRole role = blocks_.roleOf(pieces_[element.piece].kind);
  return role == BlockRole::Middle || role == BlockRole::End;
}

void StatementLayout::beginStatement() noexcept {
  previous_ = {};
  header_ = Kind::EMPTY;
  isImport_ = isBreakDue_ = isContinued_ = isRow_ = false;
  firstIndent_ = blocks_.indentOf(BlockRole::None, Kind::EMPTY, step_);
}

/// A comment at the end of a line, or on a line of its own in an array. The line end of an array behind it is the next
/// element.
void StatementLayout::comment(std::size_t i) {
  const bool isInArray = i + 1 < elements_.size() && elements_[i + 1].type == Element::Type::Row;
  endLine(isInArray ? LineBreak::Row : LineBreak::Statement, trimmed(lossless_.text(pieces_[elements_[i].piece])));
}

void StatementLayout::row() {
  const bool endsComment = isBehindComment_;
  isBehindComment_ = false;
  if (!line_.empty()) {
    endLine(LineBreak::Row, {});
  } else if (!endsComment && !isBehindBlank_) {
    if (isWritten_) out_.blank();
    isBehindBlank_ = true;
  }
  isContinued_ = isRow_ = true;
  previous_ = {Kind::SEMI, Role::Separator, false, false};
}

/// Dots that break the line where it may stay whole, and say nothing, are left out.
void StatementLayout::continuation(std::size_t i) {
  const Element& element = elements_[i];
  if (element.piece == none) {
    const bool isLast = i + 1 == elements_.size();
    const bool isBeforeBreak = !isLast && (elements_[i + 1].type == Element::Type::Row ||
                                           elements_[i + 1].type == Element::Type::Continuation);
    if (line_.empty() || isLast || isBeforeBreak || isBreakDue_) return;
    endLine(LineBreak::Continuation, {});
  } else {
    endLine(LineBreak::Continuation, trimmed(lossless_.text(pieces_[element.piece])));
  }
  isBreakDue_ = isRow_ = false;
  isContinued_ = true;
}

void StatementLayout::blockComment(std::size_t i) {
  nvf::ustring_view text = lossless_.text(pieces_[elements_[i].piece]);
  while (!text.empty() && text.back() >= u'\n' && text.back() <= u'\r') text.remove_suffix(1);
  if (!line_.empty()) endLine(LineBreak::Continuation, {});
  if (isWritten_) out_.raw(text);
  isBehindBlank_ = false;
}

// ---- tokens -------------------------------------------------------------------------------------------------------

void StatementLayout::token(std::size_t i) {
  const Element& element = elements_[i];
  const Kind kind = pieces_[element.piece].kind;
  const BlockRole role = blocks_.roleOf(kind);
  SpacedToken token = spaced(element, role);
  if (beginsLine(token, role)) {
    endLine(LineBreak::Statement, {});
    beginStatement();
    token = spaced(element, role); // nothing is before it now
  }
  const bool isFirst = line_.empty() && !isContinued_;
  if (isFirst) {
    firstIndent_ = blocks_.indentOf(role, kind, step_);
    isImport_ = kind == Kind::IMPORT_;
  }
  if (kind == Kind::LB && isWritten_) alignColumns(i);
  const std::size_t opens = followBlocks(token, role);
  followBrackets(token);
  line_.push_back({token, element.piece, pads_[i], depth_, opens});
  if (token.role != Role::Separator) isBreakDue_ = false;
  if (endsLine(token, role, i)) isBreakDue_ = true;
  previous_ = token;
}

SpacedToken StatementLayout::spaced(const Element& element, BlockRole role) const noexcept {
  const Kind kind = pieces_[element.piece].kind;
  SpacedToken token{kind, roleOf(kind, endsOperand(previous_) && !element.isElement), element.isApart,
                    element.isElement};
  if (isSoftWord(kind) && role == BlockRole::None) token.role = Role::Callable;
  if (kind == Kind::ARROW && blocks_.kind() == Kind::TRANSITIONS) token.role = Role::Tight;
  if (kind == Kind::DOTMUL && isImport_) token.role = Role::Postfix;
  if (kind == Kind::RP && depth_ == parameters_) token.role = Role::EndOfList;
  return token;
}

/// Whether the token begins a line although it stands behind another one on its line.
bool StatementLayout::beginsLine(const SpacedToken& token, BlockRole role) const noexcept {
  if (line_.empty() || !atStatementLevel()) return false;
  if (isBreakDue_) return token.role != Role::Separator;
  switch (role) {
  case BlockRole::Section:
  case BlockRole::Middle: return true;
  case BlockRole::End: return previous_.kind != Kind::MODECHART;
  case BlockRole::Statement: return endsOperand(previous_);
  case BlockRole::None: break;
  }
  // Two operands side by side are two statements, but for the name of a model behind its attributes.
  const bool isModelHeader = header_ == Kind::COMPONENT || header_ == Kind::DDOMAIN;
  return endsOperand(previous_) && beginsOperand(token) && !token.isElement && !isModelHeader;
}

/// Opens and closes blocks; returns the number of the block that is opened, or 0.
std::size_t StatementLayout::followBlocks(const SpacedToken& token, BlockRole role) {
  switch (role) {
  case BlockRole::None: return 0;
  case BlockRole::Middle:
    if (blocks_.empty()) return 0;
    depth_ = blocks_.top().brackets;
    if (token.kind == Kind::CASE || token.kind == Kind::OTHERWISE) blocks_.top().hasCases = true;
    return 0;
  case BlockRole::End:
    if (!blocks_.empty()) depth_ = blocks_.top().brackets;
    blocks_.close();
    return 0;
  case BlockRole::Section:
  case BlockRole::Statement: break;
  }
  const bool isInExpression =
      role == BlockRole::Statement && token.kind != Kind::MODECHART && previous_.kind != Kind::EMPTY;
  header_ = token.kind;
  return blocks_.open(token.kind, !atStatementLevel() || isInExpression, firstIndent_, depth_);
}

void StatementLayout::followBrackets(const SpacedToken& token) noexcept {
  if (token.role == Role::Open) {
    ++depth_;
    if (token.kind == Kind::LP && previous_.kind == Kind::AT) parameters_ = depth_;
  } else if (token.role == Role::Close || token.role == Role::EndOfList) {
    if (token.role == Role::EndOfList) parameters_ = none;
    if (depth_ > 0) --depth_;
  }
}

/// Whether another statement begins behind the token.
bool StatementLayout::endsLine(const SpacedToken& token, BlockRole role, std::size_t i) const noexcept {
  if (!atStatementLevel()) return false;
  if (token.kind == Kind::SEMI) return true;
  if (token.kind == Kind::COMMA) return blocks_.kind() != Kind::ANNOTATIONS; // there it goes on with a list of pairs
  if (role == BlockRole::None || !BlockStack::standsAlone(token.kind)) return false;
  const bool isEmpty = token.kind == Kind::MODECHART && i + 1 < elements_.size() &&
                       elements_[i + 1].type == Element::Type::Token &&
                       pieces_[elements_[i + 1].piece].kind == Kind::END;
  return !isEmpty;
}

/// Lines up the columns of the array that begins at an element, where it is one of numbers with a row a line.
void StatementLayout::alignColumns(std::size_t i) {
  struct Cell {
    std::size_t element;
    std::size_t columns;
  };
  std::vector<Cell> cells;
  std::vector<std::size_t> rows; // the first cell of each
  bool isInRow = false;
  bool isNewLine = true;
  bool isBehindCell = false; // with nothing that separates behind it
  bool isBehindSign = false;
  for (++i; i < elements_.size() && elements_[i].type != Element::Type::Block; ++i) {
    const Element& element = elements_[i];
    if (element.type == Element::Type::Comment) continue;
    if (element.type != Element::Type::Token) {
      if (element.type == Element::Type::Continuation && isInRow) return; // a row of several lines
      isInRow = isBehindCell = false;
      isNewLine = true;
      continue;
    }
    const Piece& piece = pieces_[element.piece];
    if (piece.kind == Kind::RB) break;
    if (piece.kind == Kind::SEMI) {
      isInRow = isBehindCell = isNewLine = false;
      continue;
    }
    if (piece.kind == Kind::COMMA) {
      if (!isBehindCell) return;
      isBehindCell = false;
      continue;
    }
    const bool isSign = piece.kind == Kind::PLUS || piece.kind == Kind::MINUS;
    if (!isSign && !isNumber(piece.kind)) return;
    if (isBehindSign) {
      if (isSign) return;
      cells.back().columns += piece.length;
    } else {
      if (isBehindCell && !element.isElement) return; // a difference, a sum
      if (!isInRow && !isNewLine) return;             // several rows on a line
      if (!isInRow) rows.push_back(cells.size());
      isInRow = true;
      cells.push_back({i, piece.length});
    }
    isBehindSign = isSign;
    isBehindCell = !isSign;
  }
  if (rows.size() < 2) return;
  const std::size_t width = rows[1];
  for (std::size_t k = 0; k < rows.size(); ++k) {
    if (rows[k] != k * width) return;
  }
  if (cells.size() != rows.size() * width) return;
  for (std::size_t column = 0; column < width; ++column) {
    std::size_t columns = 0;
    for (std::size_t k = column; k < cells.size(); k += width) columns = std::max(columns, cells[k].columns);
    for (std::size_t k = column; k < cells.size(); k += width) pads_[cells[k].element] = columns - cells[k].columns;
  }
}

// ---- lines --------------------------------------------------------------------------------------------------------

void StatementLayout::endLine(LineBreak how, nvf::ustring_view comment) {
  isBehindComment_ = how == LineBreak::Row && !comment.empty();
  isBehindBlank_ = false;
  if (!isWritten_) return line_.clear();
  if (line_.empty()) return endLineWithoutTokens(how, comment);
  const LineWriter::Block block{0, how == LineBreak::Row || isRow_};
  std::size_t indent = indentOfLine();
  for (std::size_t first = 0; first < line_.size();) {
    const std::size_t end = endOfPart(first, indent, how);
    const bool isLast = end == line_.size();
    const bool hasDots = !isLast || how == LineBreak::Continuation;
    std::size_t columns = write(first, end, indent, !isLast || how != LineBreak::Statement);
    if (hasDots) {
      if (line_[end - 1].token.role != Role::Prefix) out_.code().push_back(u' ');
      out_.code().append(dots);
      columns += dotsColumns;
    }
    if (hasDots && isLast && !comment.empty()) {
      out_.code().append(1, u' ').append(comment);
      columns += 1 + columnsOf(comment);
    }
    out_.end({statementIndent_, block.isRow}, columns, hasDots ? nvf::ustring_view() : comment);
    first = end;
    if (!isLast) {
      isContinued_ = true;
      indent = continuationIndent(&line_[first]);
    }
  }
  line_.clear();
}

/// A line of a comment in an array, or of nothing but dots.
void StatementLayout::endLineWithoutTokens(LineBreak how, nvf::ustring_view comment) {
  const std::size_t indent = indentOfLine();
  out_.code().append(indent, u' ');
  if (how == LineBreak::Continuation) out_.code().append(dots).append(1, u' ');
  out_.code().append(comment);
  out_.end({statementIndent_, true}, indent, {});
}

std::size_t StatementLayout::indentOfLine() noexcept {
  if (isContinued_) return continuationIndent(line_.empty() ? nullptr : &line_.front());
  statementIndent_ = firstIndent_;
  return firstIndent_;
}

std::size_t StatementLayout::continuationIndent(const Placed* first) const noexcept {
  if (!brackets_.empty()) {
    const bool isClose = first != nullptr && first->token.role == Role::Close;
    return isClose ? brackets_.back().close : brackets_.back().content;
  }
  const bool isModechart = first != nullptr && first->token.kind == Kind::MODECHART;
  return statementIndent_ + (isModechart ? step_ : 2 * step_);
}

/// Where the part of the line ends that begins at a token: at the end of the line, or where it is too long at the last
/// place that does, of those behind its first quarter one that is as little deep in brackets as any.
std::size_t StatementLayout::endOfPart(std::size_t first, std::size_t indent, LineBreak how) const noexcept {
  const std::size_t quarter = indent + (width_ > indent ? (width_ - indent) / 4 : 0);
  std::size_t column = indent;
  std::size_t last = 0;
  std::size_t shallow = 0; // behind the first quarter
  bool isTooLong = false;
  for (std::size_t i = first; i < line_.size(); ++i) {
    column += (i == first ? line_[i].pad : blanksBefore(i)) + columnsOfToken(line_[i]);
    const bool isEnd = i + 1 == line_.size();
    if (column + (isEnd && how == LineBreak::Continuation ? dotsColumns : 0) > width_) {
      if (last != 0) return shallow != 0 ? shallow : last;
      isTooLong = true;
    }
    if (isEnd || !mayBreakBehind(i)) continue;
    if (isTooLong) return i + 1;
    if (column + dotsColumns > width_) continue;
    last = i + 1;
    if (column >= quarter && (shallow == 0 || line_[i].depth <= line_[shallow - 1].depth)) shallow = i + 1;
  }
  return line_.size();
}

bool StatementLayout::mayBreakBehind(std::size_t i) const noexcept {
  const SpacedToken& left = line_[i].token;
  const SpacedToken& right = line_[i + 1].token;
  if (right.role == Role::Separator || right.role == Role::Close || right.role == Role::EndOfList) return false;
  if (right.isElement || left.role == Role::Separator) return true;
  if (left.role != Role::Infix || left.kind == Kind::COLON || left.kind == Kind::EXP || left.kind == Kind::DOTEXP)
    return false;
  const bool isAssignment = left.kind == Kind::EQUALS || left.kind == Kind::COLONEQUALS;
  return !isAssignment || line_[i].depth == 0;
}

std::size_t StatementLayout::blanksBefore(std::size_t i) const noexcept {
  return line_[i].pad + (isBlankBetween(line_[i - 1].token, line_[i].token) ? 1 : 0);
}

std::size_t StatementLayout::columnsOfToken(const Placed& placed) const noexcept {
  const Piece& piece = pieces_[placed.piece];
  const bool isAscii =
      placed.token.role != Role::Odd && piece.kind != Kind::STRING && piece.kind != Kind::STRING_LITERAL;
  return isAscii ? piece.length : columnsOf(lossless_.text(piece));
}

/// Writes tokens of a line and follows their brackets; returns the columns that the line takes.
std::size_t StatementLayout::write(std::size_t first, std::size_t end, std::size_t indent, bool isBroken) {
  nvf::ustring& code = out_.code();
  code.append(indent, u' ');
  std::size_t column = indent;
  for (std::size_t i = first; i < end; ++i) {
    const Placed& placed = line_[i];
    const std::size_t blanks = i == first ? placed.pad : blanksBefore(i);
    code.append(blanks, u' ').append(lossless_.text(pieces_[placed.piece]));
    column += blanks + columnsOfToken(placed);
    if (placed.opens != 0) blocks_.setBase(placed.opens, indent);
    if (placed.token.role == Role::Open) {
      const bool endsLine = i + 1 == end && isBroken;
      const std::size_t farRight = width_ * 6 / 10;
      Bracket bracket{column, column - 1};
      if (endsLine) bracket = {indent + step_, indent};
      if (!endsLine && column > farRight) bracket = {indent + 2 * step_, indent};
      brackets_.push_back(bracket);
    } else if ((placed.token.role == Role::Close || placed.token.role == Role::EndOfList) && !brackets_.empty()) {
      brackets_.pop_back();
    }
  }
  return column;
}

} // namespace tessarin::ide
