#include "tessarin/parser/lex/TokenizerImpl.hpp"

#include <algorithm>

namespace tessarin::compiler::core {

namespace {

/// An operator of one code unit, and the one of two that it is with a certain code unit behind it.
struct Operator {
  CharClass charClass;
  Kind alone;
  char16_t follower = 0;
  Kind joined = noKind;
};

constexpr Operator operatorRows[] = {
    {CharClass::LeftParen, Kind::LP},
    {CharClass::RightParen, Kind::RP},
    {CharClass::LeftBrace, Kind::LC},
    {CharClass::RightBrace, Kind::RC},
    {CharClass::LeftBracket, Kind::LB},
    {CharClass::RightBracket, Kind::RB},
    {CharClass::At, Kind::AT},
    {CharClass::Plus, Kind::PLUS},
    {CharClass::Minus, Kind::MINUS, u'>', Kind::ARROW},
    {CharClass::Star, Kind::MUL},
    {CharClass::Slash, Kind::DIV},
    {CharClass::Backslash, Kind::LDIV},
    {CharClass::Caret, Kind::EXP},
    {CharClass::Colon, Kind::COLON, u'=', Kind::COLONEQUALS},
    {CharClass::Ampersand, Kind::AND, u'&', Kind::ANDAND},
    {CharClass::Bar, Kind::OR, u'|', Kind::OROR},
    {CharClass::Less, Kind::LT, u'=', Kind::LE},
    {CharClass::Greater, Kind::GT, u'=', Kind::GE},
    {CharClass::Tilde, Kind::NOT, u'=', Kind::NE},
    {CharClass::Semicolon, Kind::SEMI},
    {CharClass::Comma, Kind::COMMA},
    {CharClass::Equals, Kind::EQUALS, u'=', Kind::EQ},
    {CharClass::Hash, Kind::SHARP},
    {CharClass::Question, Kind::QUEST},
    {CharClass::Dollar, Kind::DOLLAR},
    {CharClass::Backquote, Kind::BACKQUOTE},
};

constexpr auto operators = [] {
  std::array<Operator, charClassCount> table{};
  for (const Operator& row : operatorRows) table[static_cast<std::size_t>(row.charClass)] = row;
  return table;
}();

/// The operator that a dot makes with the code unit behind it, or `noKind`.
constexpr Kind dotOperator(char16_t follower) noexcept {
  switch (follower) {
  case u'*': return Kind::DOTMUL;
  case u'/': return Kind::DOTDIV;
  case u'\\': return Kind::DOTLDIV;
  case u'^': return Kind::DOTEXP;
  case u'\'': return Kind::DOTTRANS;
  default: return noKind;
  }
}

constexpr bool isExponentLetter(char16_t unit) noexcept {
  return unit == u'e' || unit == u'E' || unit == u'd' || unit == u'D';
}

} // namespace

// ---- running ------------------------------------------------------------------------------------------------------

void TokenizerImpl::start(const char16_t* text, std::size_t length, const State& state, bool implicitEol) noexcept {
  state_ = state;
  statementCode_ = StatementCode::Nothing;
  implicitEol_ = implicitEol;
  text_ = text;
  position_ = tokenStart_ = 0;
  end_ = length;
  queue_.clear();
  lines_ = {};
}

void TokenizerImpl::setBuffer(const char16_t* text, std::size_t length, bool implicitEol) {
  start(text, length, State(), implicitEol);
}

LexToken TokenizerImpl::deliver() noexcept {
  const LexToken token = queue_.pop();
  applyToken(state_, statementCode_, token.kind, rest());
  return token;
}

// Flattened: the steps are small, and called once for each token.
[[gnu::flatten]] LexToken TokenizerImpl::next() {
  if (queue_.empty()) {
    scan();
    if (queue_.empty()) return LexToken::INVALID_TOKEN;
  }
  return deliver();
}

std::ptrdiff_t TokenizerImpl::tokenizeLine(LexToken* out, std::size_t capacity, State& state, const char16_t* text,
                                           std::size_t length, bool* hasCode) {
  start(text, length, state, true);
  if (capacity < maxTokensPerStep) return -1;
  std::size_t count = 0;
  while (capacity - count >= maxTokensPerStep) {
    if (length == 0 && count == 0) {
      scanLineEnd(); // an empty line has its line end although it is at the start of a line
    } else {
      scan();
    }
    if (queue_.empty()) break;
    while (!queue_.empty()) out[count++] = deliver();
  }
  if (!state_.has(State::atLineStart)) return -1;
  state = state_;
  if (hasCode != nullptr) *hasCode = statementCode_ == StatementCode::Code;
  return static_cast<std::ptrdiff_t>(count);
}

void TokenizerImpl::resetToExpression() {
  state_ = State();
  state_.cState = CState::IN_FILE;
  state_.lState = LState::SAW_OPER;
  state_.flags = 0;
}

void TokenizerImpl::resetToArrayRow() {
  resetToExpression();
  state_.bracketStack = 1;
  state_.parenDepth = 1;
}

nvf::LineColumn TokenizerImpl::lineColumn(std::size_t offset) {
  return lines_.at({text_, end_}, std::min(offset, end_));
}

// ---- a step -------------------------------------------------------------------------------------------------------

void TokenizerImpl::scan() noexcept {
  queue_.clear();
  tokenStart_ = position_;
  if (position_ == end_) {
    if (implicitEol_ && !state_.has(State::atLineStart)) scanLineEnd();
    return;
  }
  const bool atLineStart = state_.has(State::atLineStart);
  if (atLineStart && scanLineStart()) return;
  if (state_.lState == LState::DUAL_ARG) return scanArguments();
  if (atLineStart && state_.has(State::continued) && behindElement() && beginsElement(position_)) {
    return pushMarker(Kind::COMMA);
  }
  scanUnit();
}

void TokenizerImpl::scanUnit() noexcept {
  const CharClass charClass = classOf(text_[position_]);
  switch (charClass) {
  case CharClass::Letter: return scanWord();
  case CharClass::Digit: return scanNumber();
  case CharClass::Blank: return scanBlanks();
  case CharClass::LineEnd: return scanLineEnd();
  case CharClass::Dot: return scanDot();
  case CharClass::Quote: return scanQuote();
  case CharClass::DoubleQuote: return scanString(u'"', Kind::STRING_LITERAL, Kind::UNTERM_STRING_LITERAL);
  case CharClass::Percent: return scanComment();
  case CharClass::Bang: return scanBang();
  case CharClass::Control:
  case CharClass::Underscore:
  case CharClass::None: return scanBadCharacters();
  case CharClass::Substitute: // the end of the text, as far as the language goes
    position_ = end_;
    return push(Kind::WHITE);
  case CharClass::LeftParen:
  case CharClass::LeftBrace:
  case CharClass::LeftBracket:
    if (state_.parenDepth >= State::maxParenDepth) pushMarker(Kind::DEEP_PAREN);
    return scanOperator(charClass);
  case CharClass::Semicolon:
    if (state_.parenDepth != 0 && !state_.inArray()) pushMarker(Kind::SEMERR);
    return scanOperator(charClass);
  default: return scanOperator(charClass);
  }
}

void TokenizerImpl::scanOperator(CharClass charClass) noexcept {
  const Operator& row = operators[static_cast<std::size_t>(charClass)];
  ++position_;
  if (row.joined == noKind || !follows(position_, row.follower)) return push(row.alone);
  ++position_;
  push(row.joined);
}

// ---- comments and line ends ---------------------------------------------------------------------------------------

/// A line end is one code unit, or a carriage return with any other line end behind it. None at the end of the input.
std::size_t TokenizerImpl::behindLineEnd(std::size_t offset) const noexcept {
  if (offset == end_) return offset;
  const bool isPair = text_[offset] == u'\r' && offset + 1 < end_ && isLineEnd(text_[offset + 1]);
  return offset + (isPair ? 2 : 1);
}

/// The kind depends on what the innermost bracket makes of a line end. There may be none at the end of the input.
void TokenizerImpl::scanLineEnd() noexcept {
  position_ = behindLineEnd(position_);
  if (state_.parenDepth != 0 && state_.inArray()) return push(Kind::SEOL);
  if (state_.parenDepth != 0) pushMarker(Kind::EOLERR);
  push(position_ == tokenStart_ ? Kind::IEOL : Kind::EOL);
}

/// Whether nothing but blanks stands behind a mark of two code units, the second of them `brace`.
bool TokenizerImpl::isBlockMark(std::size_t offset, char16_t brace) const noexcept {
  return follows(offset + 1, brace) && atLineEnd(skipBlanks(offset + 2));
}

bool TokenizerImpl::scanLineStart() noexcept {
  const std::size_t first = skipBlanks(position_);
  if (state_.commentDepth != 0) {
    scanCommentLine(first);
    return true;
  }
  if (!follows(first, u'%')) return false;
  if (isBlockMark(first, u'{')) {
    position_ = behindLineEnd(findLineEnd(first));
    push(Kind::BLKSTART);
    return true;
  }
  if (follows(first + 1, u'%') && (atLineEnd(first + 2) || isBlank(text_[first + 2]))) {
    position_ = findLineEnd(first);
    push(Kind::CPAD);
    return true;
  }
  return false;
}

/// A line within a block comment, with its line end. A code unit 0 stands for "%" here.
void TokenizerImpl::scanCommentLine(std::size_t first) noexcept {
  const bool mayBeMark = first < end_ && classOf(text_[first]) == CharClass::Percent;
  Kind kind = Kind::BLKCOM;
  if (mayBeMark && isBlockMark(first, u'{')) {
    kind = state_.commentDepth >= State::maxCommentDepth ? Kind::DEEP_COM : Kind::BLKSTART;
  } else if (mayBeMark && isBlockMark(first, u'}')) {
    kind = Kind::BLKEND;
  }
  position_ = behindLineEnd(findLineEnd(first));
  push(kind);
}

bool TokenizerImpl::isPragma() const noexcept {
  if (!follows(position_, u'%') || !follows(position_ + 1, u'#')) return false;
  const std::size_t first = skipBlanks(position_ + 2);
  return first < end_ && isLetter(text_[first]);
}

void TokenizerImpl::scanComment() noexcept {
  if (text_[position_] == 0 && position_ + 1 == end_) {
    end_ = position_; // from here on, the input ends before it
    return;
  }
  const Kind kind = isPragma() ? Kind::PRAGMA : Kind::COMMENT;
  position_ = findLineEnd(position_);
  push(kind);
  scanLineEnd();
}

void TokenizerImpl::scanContinuation() noexcept {
  position_ += 3;
  push(Kind::DOTDOTDOT);
  position_ = findLineEnd(position_);
  if (position_ != tokenStart_) push(Kind::COMMENT);
  position_ = behindLineEnd(position_);
  push(Kind::CEOL);
}

void TokenizerImpl::scanBang() noexcept {
  if (state_.lState != LState::BEGIN_STMT && follows(position_ + 1, u'=')) {
    position_ += 2;
    return push(Kind::CNE);
  }
  position_ = findLineEnd(position_);
  push(Kind::BANG);
  scanLineEnd();
}

// ---- blanks, and the comma that they stand for in arrays ----------------------------------------------------------

/// Whether the code unit, behind a blank inside an array, begins an element of its own.
bool TokenizerImpl::beginsElement(std::size_t offset) const noexcept {
  const std::size_t behind = offset + 1;
  switch (classOf(text_[offset])) {
  case CharClass::Letter:
  case CharClass::Digit:
  case CharClass::Underscore:
  case CharClass::LeftParen:
  case CharClass::LeftBrace:
  case CharClass::LeftBracket:
  case CharClass::At:
  case CharClass::Quote:
  case CharClass::Question:
  case CharClass::DoubleQuote: return true;
  case CharClass::Plus:
  case CharClass::Minus: return behind == end_ || !isBlank(text_[behind]);
  case CharClass::Dot: return behind != end_ && isDigit(text_[behind]);
  case CharClass::Tilde: return !follows(behind, u'=');
  default: return false;
  }
}

void TokenizerImpl::scanBlanks() noexcept {
  position_ = skipBlanks(position_);
  push(Kind::WHITE);
  if (behindElement() && position_ != end_ && beginsElement(position_)) pushMarker(Kind::COMMA);
}

// ---- words, numbers, strings --------------------------------------------------------------------------------------

Kind TokenizerImpl::functionKind() const noexcept {
  const bool startsFile = state_.has(State::atLineStart) && !state_.has(State::sawEnds);
  const bool isNested = (state_.inFunction > 0 && !startsFile) || state_.cState == CState::IN_METHOD;
  return isNested ? Kind::NESTED : Kind::FUNCTION;
}

void TokenizerImpl::scanWord() noexcept {
  position_ = skip(position_ + 1, isNamePart);
  const Kind word = reserved_word(text_ + tokenStart_, position_ - tokenStart_);
  const bool behindDot = state_.lState == LState::NORES;
  if (word == noKind || (behindDot && word != Kind::DER)) return push(Kind::ID); // "der" stays a keyword: intended
  if (word == Kind::END) {
    const bool closes = state_.parenDepth == 0 && state_.lState != LState::SAW_EQUALS;
    return push(closes ? Kind::END : Kind::EEND);
  }
  if (state_.parenDepth != 0) pushMarker(Kind::RES_ERR);
  push(word == Kind::FUNCTION ? functionKind() : word);
}

/// From a digit, or from a dot with a digit behind it.
void TokenizerImpl::scanNumber() noexcept {
  Kind kind = Kind::INT;
  position_ = skip(position_, isDigit);
  if (follows(position_, u'.')) {
    const bool isOperator = position_ + 1 != end_ && dotOperator(text_[position_ + 1]) != noKind;
    if (isOperator) return push(kind);
    kind = Kind::FLOAT;
    position_ = skip(position_ + 1, isDigit);
  }
  if (position_ == end_ || !isLetter(text_[position_])) return push(kind);
  if (isExponentLetter(text_[position_])) {
    ++position_;
    if (follows(position_, u'+') || follows(position_, u'-')) ++position_;
    if (position_ == end_ || !isDigit(text_[position_])) return push(Kind::FP_ERR);
    position_ = skip(position_, isDigit);
  }
  if (follows(position_, u'i') || follows(position_, u'j')) ++position_;
  push(Kind::FLOAT); // whatever the letter was: intended
}

void TokenizerImpl::scanDot() noexcept {
  if (beginsContinuation(position_)) return scanContinuation();
  const char16_t follower = position_ + 1 == end_ ? u' ' : text_[position_ + 1];
  if (isDigit(follower)) return scanNumber();
  const Kind joined = follower == u'.' ? Kind::DOTDOT : dotOperator(follower);
  position_ += joined == noKind ? 1 : 2;
  push(joined == noKind ? Kind::DOT : joined);
}

/// Whether a single quote transposes what is right before it.
bool TokenizerImpl::isTranspose() const noexcept {
  if (state_.lState == LState::SAW_OPER || state_.lState == LState::SAW_EQUALS || position_ == 0) return false;
  switch (classOf(text_[position_ - 1])) {
  case CharClass::Letter:
  case CharClass::Digit:
  case CharClass::Underscore:
  case CharClass::RightBrace:
  case CharClass::RightBracket:
  case CharClass::Dot:
  case CharClass::Quote: return true;
  case CharClass::RightParen: return !state_.has(State::afterAtParen);
  default: return false;
  }
}

void TokenizerImpl::scanQuote() noexcept {
  if (!isTranspose()) return scanString(u'\'', Kind::STRING, Kind::UNTERM);
  ++position_;
  push(Kind::TRANS);
}

/// A doubled quote stands for itself and closes nothing.
void TokenizerImpl::scanString(char16_t quote, Kind closed, Kind unterminated) noexcept {
  for (;;) {
    position_ = skip(position_ + 1, [quote](char16_t unit) { return unit != quote && !isLineEnd(unit); });
    if (!follows(position_, quote)) return push(unterminated);
    ++position_;
    if (!follows(position_, quote)) return push(closed);
  }
}

void TokenizerImpl::scanBadCharacters() noexcept {
  position_ = skip(position_ + 1, [](char16_t unit) {
    const CharClass charClass = classOf(unit);
    return charClass == CharClass::Control || charClass == CharClass::Underscore || charClass == CharClass::None;
  });
  push(Kind::BADCHAR);
}

// ---- the arguments of a command -----------------------------------------------------------------------------------
//
// Nothing in a text leads here: only a state that a caller has set, and once there a "]".

void TokenizerImpl::scanArguments() noexcept {
  if (beginsContinuation(position_)) return scanContinuation();
  switch (classOf(text_[position_])) {
  case CharClass::Blank: return scanBlanks();
  case CharClass::Semicolon:
  case CharClass::Comma:
    scanUnit();
    state_.lState = LState::BEGIN_STMT;
    state_.listState = ListState::NO_LS;
    return;
  case CharClass::Percent:
  case CharClass::LineEnd:
    scanUnit();
    if (!queue_.empty()) state_.listState = ListState::NO_LS;
    return;
  default: return scanArgument();
  }
}

void TokenizerImpl::scanArgument() noexcept {
  std::ptrdiff_t depth = 0; // of brackets; may go below zero, where blanks and quotes are plain content: intended
  bool inQuotation = false;
  for (; !atLineEnd(position_); ++position_) {
    const char16_t unit = text_[position_];
    if (inQuotation) {
      if (unit != u'\'') continue;
      if (follows(position_ + 1, u'\'')) {
        ++position_;
      } else {
        inQuotation = false;
      }
      continue;
    }
    const bool endsAtDepth0 = isBlank(unit) || unit == u',';
    if (unit == u';' || unit == u'%' || (endsAtDepth0 && depth == 0) || beginsContinuation(position_)) break;
    if (unit == u'(' || unit == u'{' || unit == u'[') ++depth;
    if (unit == u')' || unit == u'}' || unit == u']') --depth;
    if (unit == u'\'' && depth == 0) inQuotation = true;
  }
  if (inQuotation) return push(Kind::UNTERM);
  if (state_.listState == ListState::F_LS && text_[tokenStart_] != u'-') state_.listState = ListState::V_LS;
  const bool isName = isCxId(text_ + tokenStart_, position_ - tokenStart_);
  push(isName && state_.listState == ListState::V_LS ? Kind::ID : Kind::DUAL);
}

} // namespace tessarin::compiler::core
