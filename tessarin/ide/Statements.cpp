#include "tessarin/ide/Statements.hpp"

#include "tessarin/parser/lex/Tokenizer.hpp"

#include <algorithm>

namespace tessarin::ide {

using compiler::core::CState;
using compiler::core::Kind;
using compiler::core::LexToken;
using compiler::core::LState;
using compiler::core::State;
using compiler::core::Tokenizer;

namespace {

/// What the parser never sees.
bool isTrivia(Kind kind) noexcept {
  switch (kind) {
  case Kind::WHITE:
  case Kind::COMMENT:
  case Kind::BLKSTART:
  case Kind::BLKCOM:
  case Kind::BLKEND:
  case Kind::CPAD:
  case Kind::PRAGMA:
  case Kind::DOTDOTDOT:
  case Kind::PRE: return true;
  default: return false;
  }
}

/// What a word does where it stands outside of brackets; some do it only where the words around them agree.
WordRole roleOf(Kind kind) noexcept {
  switch (kind) {
  case Kind::ELSE:
  case Kind::ELSEIF:
  case Kind::ELSEWHEN:
  case Kind::IN:
  case Kind::CATCH:
  case Kind::CASE:
  case Kind::OTHERWISE: return WordRole::Divides;
  case Kind::END: return WordRole::Closes;
  default:
    return compiler::core::is_reserved_word(kind) && compiler::core::is_statement_start(kind) ? WordRole::Opens
                                                                                              : WordRole::None;
  }
}

/// Whether the word, at the head of a line, shows that a bracket above was never closed.
bool endsBrackets(Kind kind) noexcept {
  return kind == Kind::EEND ||
         (roleOf(kind) != WordRole::None && kind != Kind::IF && kind != Kind::ELSE && kind != Kind::ELSEIF &&
          kind != Kind::LET && kind != Kind::IN && kind != Kind::MODE && kind != Kind::INITIAL && kind != Kind::ENTRY);
}

/// The state in which the scanner reads the head of a line outside of brackets.
State atLineHead(State state) noexcept {
  state.parenDepth = 0;
  state.bracketStack = 0;
  state.lState = state.cState == CState::IN_MODEL ? LState::SAW_OPER : LState::BEGIN_STMT;
  state.clear(State::continued);
  state.clear(State::inList);
  state.clear(State::afterAtParen);
  state.set(State::atLineStart);
  return state;
}

/// Divides a text in one pass. A bracket that is not closed before a word that no bracket holds is taken for open: its
/// statement ends with its first line, and the lines up to that word, which are read once more, end their brackets.
class Division {
public:
  Division(nvf::ustring_view text, std::vector<CodeToken>& tokens, std::vector<WordRole>& roles,
           std::vector<Statement>& statements, std::optional<std::size_t>& openComment)
      : text_(text),
        tokens_(tokens),
        roles_(roles),
        statements_(statements),
        openComment_(openComment),
        tokenizer_(Tokenizer::create()) {
    goTo(0);
  }

  void run() {
    for (;;) {
      const LexToken token = tokenizer_->next();
      const std::size_t begin = position_;
      position_ += token.length;
      if (token.kind == Kind::EMPTY) {
        if (returnBehindOpenBracket(text_.size())) continue;
        break;
      }
      noteComment(token.kind, begin);
      see(token.kind, begin);
    }
    endStatement(position_);
  }

private:
  /// Where the scan goes on if the bracket turns out to be open.
  struct Return {
    std::size_t position;
    std::size_t tokenCount;
    State state;
  };

  void goTo(std::size_t position) {
    position_ = position;
    tokenizer_->setBuffer(text_.data() + position, text_.size() - position, false);
  }

  void noteComment(Kind kind, std::size_t begin) {
    if (kind == Kind::BLKSTART && commentDepth_++ == 0) openComment_ = begin;
    if (kind == Kind::BLKEND && commentDepth_ > 0 && --commentDepth_ == 0) openComment_.reset();
  }

  void see(Kind kind, std::size_t begin) {
    if (isTrivia(kind)) return;
    const bool inBrackets = tokenizer_->state().parenDepth != 0;
    switch (kind) {
    case Kind::EOL:
    case Kind::IEOL: endStatement(begin); return;
    case Kind::CEOL: return; // of a continuation
    case Kind::SEOL: seeLineEndInBrackets(); return;
    case Kind::SEMI:
    case Kind::COMMA:
      if (!inBrackets) {
        endStatement(position_);
        return;
      }
      break;
    default: break;
    }
    if (position_ == begin) return; // a marker
    if (return_ && atRow_ && endsBrackets(kind) && returnBehindOpenBracket(begin)) return;
    atRow_ = false;
    tokens_.push_back({begin, position_, kind});
    roles_.push_back(inBrackets ? WordRole::None : roleOf(kind));
  }

  void seeLineEndInBrackets() {
    atRow_ = true;
    if (return_) return;
    if (position_ < bracketsEndWithLineBefore_) {
      tokenizer_->setState(atLineHead(tokenizer_->state()));
      isOpen_ = true;
      shadow_ = bracketsEndWithLineBefore_;
      endStatement(position_);
    } else {
      return_ = Return{position_, tokens_.size(), atLineHead(tokenizer_->state())};
    }
  }

  bool returnBehindOpenBracket(std::size_t shadow) {
    if (!return_) return false;
    const Return to = *return_;
    return_.reset();
    tokens_.resize(to.tokenCount);
    roles_.resize(to.tokenCount);
    isOpen_ = true;
    shadow_ = shadow;
    bracketsEndWithLineBefore_ = shadow;
    endStatement(to.position);
    commentDepth_ = 0;
    openComment_.reset();
    goTo(to.position);
    tokenizer_->setState(to.state);
    return true;
  }

  void endStatement(std::size_t end) {
    return_.reset();
    atRow_ = false;
    if (tokens_.size() > firstToken_) {
      Statement statement;
      statement.firstToken = firstToken_;
      statement.lastToken = tokens_.size();
      statement.end = isOpen_ ? tokens_.back().end : end;
      statement.isOpen = isOpen_;
      statement.shadow = shadow_;
      settleRoles(statement);
      statements_.push_back(statement);
    }
    firstToken_ = tokens_.size();
    isOpen_ = false;
    shadow_ = 0;
  }

  /// Most words open a block only at the head of a statement, and some are names elsewhere.
  void settleRoles(Statement& statement) {
    for (std::size_t i = statement.firstToken; i < statement.lastToken; ++i) {
      const Kind kind = tokens_[i].kind;
      const bool first = i == statement.firstToken;
      const bool last = i + 1 == statement.lastToken;
      WordRole& role = roles_[i];
      if (role == WordRole::Opens && kind != Kind::IF && kind != Kind::LET && kind != Kind::MODECHART) {
        const bool isName =
            (kind == Kind::MODE && (last || (tokens_[i + 1].kind != Kind::ID && tokens_[i + 1].kind != Kind::LC))) ||
            ((kind == Kind::INITIAL || kind == Kind::ENTRY) && !last);
        if (!first || isName) role = WordRole::None;
      }
      statement.hasRole = statement.hasRole || role != WordRole::None;
    }
  }

  nvf::ustring_view text_;
  std::vector<CodeToken>& tokens_;
  std::vector<WordRole>& roles_;
  std::vector<Statement>& statements_;
  std::optional<std::size_t>& openComment_;
  std::unique_ptr<Tokenizer> tokenizer_;
  std::size_t position_ = 0;
  std::size_t firstToken_ = 0; // of the statement
  bool isOpen_ = false;
  std::size_t shadow_ = 0;
  bool atRow_ = false; // at the head of a line inside brackets
  std::optional<Return> return_;
  std::size_t bracketsEndWithLineBefore_ = 0;
  std::size_t commentDepth_ = 0;
};

} // namespace

Statements::Statements(nvf::ustring_view text) : text_(text) {
  findLines();
  Division(text_, tokens_, roles_, statements_, openComment_).run();
  std::size_t line = 0;
  std::size_t lastLine = static_cast<std::size_t>(-1);
  const auto advance = [&](std::size_t offset) {
    while (line + 1 < lines_.size() && lines_[line + 1] <= offset) ++line;
  };
  for (Statement& statement : statements_) {
    const std::size_t begin = tokens_[statement.firstToken].begin;
    advance(begin);
    statement.line = line;
    statement.column = begin - lines_[line];
    statement.startsLine = line != lastLine;
    advance(tokens_[statement.lastToken - 1].end - 1);
    lastLine = statement.lastLine = line;
  }
}

void Statements::findLines() {
  lines_.push_back(0);
  for (std::size_t i = 0; i < text_.size(); ++i) {
    const bool isCrOfCrLf = text_[i] == u'\r' && i + 1 < text_.size() && text_[i + 1] == u'\n';
    if ((text_[i] == u'\n' || text_[i] == u'\r') && !isCrOfCrLf) lines_.push_back(i + 1);
  }
}

std::span<const CodeToken> Statements::tokensOf(const Statement& statement) const noexcept {
  return std::span(tokens_).subspan(statement.firstToken, statement.lastToken - statement.firstToken);
}

WordRole Statements::role(std::size_t i) const noexcept {
  return roles_[i];
}

std::size_t Statements::lineEnd(std::size_t line) const noexcept {
  std::size_t end = line + 1 < lines_.size() ? lines_[line + 1] : text_.size();
  while (end > lines_[line] && (text_[end - 1] == u'\n' || text_[end - 1] == u'\r')) --end;
  return end;
}

std::size_t Statements::offsetOf(std::size_t line, std::size_t column) const noexcept {
  if (line >= lines_.size()) return text_.size();
  return lines_[line] + std::min(column, lineEnd(line) - lines_[line]);
}

std::size_t Statements::lineOf(std::size_t offset) const noexcept {
  return static_cast<std::size_t>(std::upper_bound(lines_.begin(), lines_.end(), offset) - lines_.begin()) - 1;
}

std::optional<std::size_t> Statements::statementAt(std::size_t offset) const noexcept {
  const auto behind = std::partition_point(statements_.begin(), statements_.end(), [&](const Statement& statement) {
    return tokens_[statement.firstToken].begin <= offset;
  });
  const std::size_t line = lineOf(offset);
  if (behind != statements_.begin() && (std::prev(behind)->lastLine >= line || std::prev(behind)->end >= offset)) {
    return static_cast<std::size_t>(behind - statements_.begin()) - 1;
  }
  if (behind != statements_.end() && behind->line == line) {
    return static_cast<std::size_t>(behind - statements_.begin());
  }
  return std::nullopt;
}

std::size_t Statements::tokenEnd(std::size_t offset) const noexcept {
  const auto behind = std::partition_point(tokens_.begin(), tokens_.end(),
                                           [&](const CodeToken& token) { return token.begin <= offset; });
  if (behind == tokens_.begin() || std::prev(behind)->end <= offset) return offset;
  return std::prev(behind)->end;
}

} // namespace tessarin::ide
