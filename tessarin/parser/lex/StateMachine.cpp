#include "tessarin/parser/lex/StateMachine.hpp"

#include "tessarin/parser/lex/CharClass.hpp"

#include <array>
#include <initializer_list>
#include <optional>
#include <stdexcept>

namespace tessarin::compiler::core {

namespace {

// ---- the tables ---------------------------------------------------------------------------------------------------

template <class Value>
struct KindGroup {
  Value value;
  std::initializer_list<Kind> kinds;
};

constexpr std::size_t indexOf(Kind kind) {
  return static_cast<std::size_t>(kind);
}

/// A table over all kinds from groups of kinds; those in no group get `otherwise`. Does not compile where a kind is in
/// two groups, or in none and there is no `otherwise`.
template <class Value>
constexpr std::array<Value, kindCount> groupKinds(std::initializer_list<KindGroup<Value>> groups,
                                                  std::optional<Value> otherwise = std::nullopt) {
  std::array<Value, kindCount> table{};
  std::array<bool, kindCount> isSet{};
  for (const KindGroup<Value>& group : groups) {
    for (const Kind kind : group.kinds) {
      if (isSet[indexOf(kind)]) throw std::logic_error("a kind in two groups");
      isSet[indexOf(kind)] = true;
      table[indexOf(kind)] = group.value;
    }
  }
  for (std::size_t i = 0; i < kindCount; ++i) {
    if (!isSet[i]) table[i] = otherwise.value();
  }
  return table;
}

/// The flags that a token clears, and those that it sets then. All clear `atLineStart`.
struct LineEffect {
  std::uint8_t cleared;
  std::uint8_t set;
};

constexpr auto lineEffects = [] {
  using enum Kind;
  constexpr std::uint8_t start = State::atLineStart;
  constexpr std::uint8_t continued = State::continued;
  return groupKinds<LineEffect>({{{start | continued, start}, {EOL, IEOL}},
                                 {{start, start | continued}, {SEOL, CEOL}},
                                 {{start, start}, {BLKSTART, BLKCOM, BLKEND}},
                                 {{start, 0}, {COMMENT, DOTDOTDOT}}},
                                LineEffect{start | continued, 0});
}();

/// What the first tokens of a file say about it.
constexpr auto firstTokens = [] {
  using enum Kind;
  return groupKinds<CState>(
      {{CState::IN_MODEL, {DDOMAIN, COMPONENT}},
       {CState::AT_BEGINNING,
        {EOL, CEOL, IEOL, SEOL, COMMENT, BLKSTART, BLKCOM, BLKEND, DOTDOTDOT, WHITE}}}, // not CPAD and PRAGMA: intended
      CState::IN_FILE);
}();

/// The part of a token's effect that takes more than setting `lState`.
enum class Action : std::uint8_t {
  None,
  OpenFunction,
  OpenNestedFunction,
  OpenBlock,
  OpenModel,
  CloseBlock,
  CloseBrackets,
  OpenList,
  EndList,
  Name,
  Semicolon,
  Comma,
  OpenIndex,
  OpenArray,
  OpenBrace,
  Close,
  CloseParen,
  CloseBracket,
  At,
  EndStatement,
  SetContinued,
  Pause,
  OpenComment,
  CloseComment,
  Reset
};

/// What a token does to the rest of the state: first the action, then `lState` becomes `next`.
struct Effect {
  Action action;
  LState next;
};

/// In place of the next `lState`: it stays, or the action sets it.
constexpr LState unset{0xff};

constexpr auto effects = [] {
  using enum Kind;
  using enum LState;
  return groupKinds<Effect>({
      {{Action::OpenFunction, SAW_OPER}, {FUNCTION}},
      {{Action::OpenNestedFunction, SAW_OPER}, {NESTED}},
      // Of the words that "end" closes, ENTRY, EVENTS, INTERMEDIATES and LET are not here, so that they do not raise
      // the indent: it is an estimate. Intended.
      {{Action::OpenBlock, SAW_OPER},
       {IF,          SWITCH,  WHILE,    FOR,         WHEN,        MODECHART,  MODES,      MODE,
        TRANSITIONS, INITIAL, BRANCHES, CONNECTIONS, EQUATIONS,   EQUATION,   PARAMETERS, VARIABLES,
        NODES,       INPUTS,  OUTPUTS,  COMPONENTS,  DEFINITIONS, MODECHARTS, THROUGHS,   ANNOTATIONS}},
      {{Action::OpenBlock, BEGIN_STMT}, {TRY}},
      {{Action::OpenModel, SAW_OPER}, {DDOMAIN, COMPONENT}},
      {{Action::CloseBlock, unset}, {END}},
      {{Action::CloseBrackets, SAW_OPER}, {ELSEIF, ELSEWHEN, CASE}},
      {{Action::CloseBrackets, BEGIN_STMT}, {ELSE, BREAK, RETURN, CATCH, CONTINUE, OTHERWISE}},
      {{Action::OpenList, SAW_OPER}, {GLOBAL, PERSISTENT}},
      {{Action::Name, unset}, {ID, EEND}},
      {{Action::None, SAW_EXPR},
       {INT, FLOAT, STRING, STRING_LITERAL, TRANS, DOTTRANS, DOLLAR, BACKQUOTE, DOUBLEQUOTE, SHARP, UNTERM,
        UNTERM_STRING_LITERAL, BADCHAR, FP_ERR, RES_ERR}},
      {{Action::None, BEGIN_STMT}, {BANG}},
      {{Action::None, SAW_OPER}, {NOT, PLUS, MINUS,  MUL,  DIV, LDIV, EXP, COLON, DOTMUL, DOTDIV, DOTLDIV, DOTEXP,
                                  AND, OR,   ANDAND, OROR, LT,  GT,   LE,  GE,    EQ,     NE,     CNE}},
      {{Action::None, NORES}, {DOT}},
      {{Action::EndList, SAW_EQUALS}, {EQUALS, COLONEQUALS}},
      {{Action::At, unset}, {AT}},
      {{Action::Semicolon, unset}, {SEMI}},
      {{Action::Comma, unset}, {COMMA}},
      {{Action::OpenIndex, SAW_OPER}, {LP}},
      {{Action::OpenArray, SAW_OPER}, {LB}},
      {{Action::OpenBrace, SAW_OPER}, {LC}},
      {{Action::CloseParen, unset}, {RP}},
      {{Action::CloseBracket, unset}, {RB}},
      {{Action::Close, SAW_INDXNM}, {RC}},
      {{Action::EndStatement, unset}, {EOL, IEOL}},
      {{Action::EndList, SAW_OPER}, {SEOL}},
      {{Action::SetContinued, unset}, {CEOL}},
      {{Action::Pause, unset}, {COMMENT, CPAD, PRAGMA, DOTDOTDOT, WHITE}},
      {{Action::OpenComment, unset}, {BLKSTART}},
      {{Action::CloseComment, unset}, {BLKEND}},
      {{Action::Reset, SAW_OPER}, {DEEP_NEST, DEEP_STMT, DEEP_PAREN, DEEP_COM}},
      {{Action::Reset, BEGIN_STMT}, {SEMERR, EOLERR}},
      {{Action::None, unset},
       {IN, LET, ENTRY, CONNECT, EVENTS, INTERMEDIATES, DER, TIME, ASSERT_, PRE, IMPORT_, DUAL, QUEST, ARROW, BLKCOM,
        DOTDOT, EMPTY}},
  });
}();

/// What a token says of its line: `Special` in any case, `Code` once a statement has begun, `Nothing` otherwise.
constexpr auto lineContents = [] {
  using enum Kind;
  return groupKinds<StatementCode>(
      {{StatementCode::Special,
        {FUNCTION, NESTED, DDOMAIN, COMPONENT, DOLLAR, BACKQUOTE, DOUBLEQUOTE, SHARP, DEEP_NEST, DEEP_STMT, SEMERR,
         EOLERR, UNTERM, UNTERM_STRING_LITERAL, DEEP_PAREN, FP_ERR, RES_ERR, DEEP_COM}},
       {StatementCode::Nothing,
        {EOL, SEOL, CEOL, IEOL, COMMENT, BLKSTART, BLKCOM, BLKEND, CPAD, PRAGMA, DOTDOTDOT, WHITE}}},
      StatementCode::Code);
}();

/// All of that, next to each other for each kind.
struct alignas(8) KindEffects {
  LineEffect line;
  CState firstToken;
  Effect rest;
  StatementCode lineContent;
};

constexpr auto kindEffects = [] {
  std::array<KindEffects, kindCount> table{};
  for (std::size_t i = 0; i < kindCount; ++i) table[i] = {lineEffects[i], firstTokens[i], effects[i], lineContents[i]};
  return table;
}();

// ---- the machine --------------------------------------------------------------------------------------------------

/// The numbers that `indent` takes at the fixed points of nesting.
constexpr std::uint8_t indentInFunction = 1;
constexpr std::uint8_t indentInModel = 1;
constexpr std::uint8_t indentBehindMethod = 2;
constexpr std::uint8_t indentInMethod = 3;
constexpr std::uint8_t maxNestedIndent = 7;

std::uint8_t plus(std::uint8_t number, int step) noexcept {
  return static_cast<std::uint8_t>(number + step);
}

/// The state with the moves that it makes.
class Machine {
public:
  explicit Machine(State& state) : s(state) {}

  void apply(Kind kind, const KindEffects& effect, ustring_view rest) noexcept;

private:
  void seeBehindAt(Kind kind) noexcept;
  void act(Action action, ustring_view rest) noexcept;

  void closeBrackets() noexcept {
    s.parenDepth = 0;
    s.bracketStack = 0;
  }
  void push(bool separates) noexcept {
    if (s.parenDepth >= State::maxParenDepth) return;
    s.bracketStack = s.bracketStack << 1U | (separates ? 1U : 0U);
    ++s.parenDepth;
  }
  void pop() noexcept {
    if (s.parenDepth == 0) return;
    s.bracketStack >>= 1U;
    --s.parenDepth;
  }
  void endStatement() noexcept { s.lState = s.cState == CState::IN_MODEL ? LState::SAW_OPER : LState::BEGIN_STMT; }
  [[nodiscard]] bool behindOperand() const noexcept {
    return s.lState == LState::SAW_INDXNM || s.lState == LState::SAW_EXPR;
  }

  void openFunction() noexcept;
  void openNestedFunction() noexcept;
  void openModel() noexcept;
  void closeBlock() noexcept;
  void name() noexcept;
  void semicolon() noexcept;
  void comma() noexcept;
  void closeParen() noexcept;
  void closeBracket() noexcept;
  void at() noexcept;
  void pause(ustring_view rest) noexcept;

  State& s;
};

void Machine::apply(Kind kind, const KindEffects& effect, ustring_view rest) noexcept {
  if (s.lState == LState::SAW_AT) seeBehindAt(kind);
  s.flags = static_cast<std::uint8_t>((s.flags & ~effect.line.cleared) | effect.line.set);
  if (s.cState == CState::AT_BEGINNING) s.cState = effect.firstToken;
  if (effect.rest.action == Action::Pause) {
    pause(rest);
  } else if (effect.rest.action == Action::Name) {
    name();
  } else if (effect.rest.action != Action::None)
    act(effect.rest.action, rest);
  if (effect.rest.next != unset) s.lState = effect.rest.next;
}

void Machine::seeBehindAt(Kind kind) noexcept {
  if (kind == Kind::ID || kind == Kind::EEND || kind == Kind::LP) s.lState = LState::SAW_OPER;
  if (kind == Kind::LP) s.set(State::afterAtParen);
}

void Machine::act(Action action, ustring_view rest) noexcept {
  switch (action) {
  case Action::None: break;
  case Action::OpenFunction: openFunction(); break;
  case Action::OpenNestedFunction: openNestedFunction(); break;
  case Action::OpenBlock:
    closeBrackets();
    s.indent = plus(s.indent, 1);
    break;
  case Action::OpenModel: openModel(); break;
  case Action::CloseBlock: closeBlock(); break;
  case Action::CloseBrackets: closeBrackets(); break;
  case Action::OpenList:
    closeBrackets();
    s.set(State::inList);
    break;
  case Action::EndList: s.clear(State::inList); break;
  case Action::Name: name(); break;
  case Action::Semicolon: semicolon(); break;
  case Action::Comma: comma(); break;
  case Action::OpenIndex: push(false); break;
  case Action::OpenArray: push(true); break;
  case Action::OpenBrace: push(s.lState != LState::SAW_INDXNM); break; // behind a name it is an index
  case Action::Close: pop(); break;
  case Action::CloseParen: closeParen(); break;
  case Action::CloseBracket: closeBracket(); break;
  case Action::At: at(); break;
  case Action::EndStatement:
    s.clear(State::inList);
    closeBrackets();
    endStatement();
    break;
  case Action::SetContinued: s.set(State::continued); break;
  case Action::Pause: pause(rest); break;
  case Action::OpenComment:
    if (s.commentDepth < State::maxCommentDepth) ++s.commentDepth;
    break;
  case Action::CloseComment:
    if (s.commentDepth > 0) --s.commentDepth;
    break;
  case Action::Reset:
    s.clear(State::inList);
    closeBrackets();
    break;
  }
}

void Machine::openFunction() noexcept {
  closeBrackets();
  const bool isMethod = s.cState == CState::IN_MODEL;
  if (isMethod) s.cState = CState::IN_METHOD;
  s.indent = s.inFunction = isMethod ? indentInMethod : indentInFunction;
}

void Machine::openNestedFunction() noexcept {
  closeBrackets();
  if (s.indent < maxNestedIndent) s.indent = s.inFunction = plus(s.indent, 1);
  if (s.cState == CState::IN_MODEL) {
    s.cState = CState::IN_METHOD;
    s.indent = indentInMethod;
  }
  s.set(State::sawEnds);
}

/// Open brackets stay open: intended.
void Machine::openModel() noexcept {
  s.indent = indentInModel;
  s.cState = CState::IN_MODEL;
  s.set(State::sawEnds);
}

void Machine::closeBlock() noexcept {
  closeBrackets();
  if (s.indent > 0) {
    if (s.lState == LState::SAW_EQUALS) {
      s.lState = LState::SAW_INDXNM;
      return;
    }
    s.indent = plus(s.indent, -1);
  }
  if (s.cState == CState::IN_METHOD && s.indent == indentBehindMethod) {
    s.cState = CState::IN_MODEL;
    s.lState = LState::SAW_OPER;
    return;
  }
  if (s.cState == CState::IN_MODEL && s.indent == 0) {
    s.cState = CState::IN_FILE;
    s.inFunction = 0;
  } else if (s.indent < s.inFunction) {
    s.set(State::sawEnds);
    s.inFunction = plus(s.inFunction, -1);
  }
  s.lState = LState::BEGIN_STMT;
}

void Machine::name() noexcept {
  switch (s.lState) {
  case LState::BEGIN_STMT:
  case LState::SAW_OPER:
  case LState::SAW_EQUALS:
  case LState::NORES: s.lState = LState::SAW_INDXNM; break;
  default: break;
  }
}

void Machine::semicolon() noexcept {
  if (s.parenDepth != 0 && s.inArray()) {
    s.lState = LState::SAW_OPER;
    return;
  }
  if (s.parenDepth != 0) s.clear(State::inList);
  closeBrackets();
  endStatement();
}

void Machine::comma() noexcept {
  s.clear(State::inList);
  if (s.parenDepth != 0) {
    s.lState = LState::SAW_OPER;
    return;
  }
  s.bracketStack = 0;
  endStatement();
}

void Machine::closeParen() noexcept {
  pop();
  s.lState = s.has(State::afterAtParen) ? LState::SAW_OPER : LState::SAW_INDXNM;
  s.clear(State::afterAtParen);
}

void Machine::closeBracket() noexcept {
  pop();
  if (s.listState == ListState::NO_LS || s.parenDepth != 0) {
    s.lState = LState::SAW_EXPR;
  } else {
    s.lState = LState::DUAL_ARG;
    s.listState = ListState::V_LS;
  }
}

void Machine::at() noexcept {
  if (behindOperand()) {
    s.set(State::inList);
  } else {
    s.lState = LState::SAW_AT;
  }
}

/// Whether an operand begins at the begin of the text.
bool beginsOperand(ustring_view text) noexcept {
  if (text.empty()) return false;
  switch (classOf(text[0])) {
  case CharClass::Letter:
  case CharClass::Digit:
  case CharClass::LeftBracket:
  case CharClass::Tilde:
  case CharClass::Quote:
  case CharClass::DoubleQuote: return true;
  case CharClass::Dot: return text.size() > 1 && isDigit(text[1]);
  default: return false;
  }
}

/// Outside of models, an operand behind an operand and a blank begins a statement: it may be a command's argument.
void Machine::pause(ustring_view rest) noexcept {
  if (s.cState != CState::IN_MODEL && behindOperand() && s.parenDepth == 0 && !s.has(State::inList) &&
      beginsOperand(rest)) {
    s.lState = LState::BEGIN_STMT;
  }
}

/// What a line is known for behind a token that says `content` of it.
StatementCode follow(StatementCode known, bool beginsStatement, StatementCode content) noexcept {
  if (content == StatementCode::Special) return StatementCode::Special;
  if (known == StatementCode::Nothing && beginsStatement) known = StatementCode::Begun;
  return known == StatementCode::Begun && content == StatementCode::Code ? StatementCode::Code : known;
}

} // namespace

void applyToken(State& state, StatementCode& statementCode, Kind kind, ustring_view rest) noexcept {
  const KindEffects& effect = kindEffects[indexOf(kind)];
  if (statementCode != StatementCode::Special) {
    statementCode = follow(statementCode, state.lState == LState::BEGIN_STMT, effect.lineContent);
  }
  Machine(state).apply(kind, effect, rest);
}

} // namespace tessarin::compiler::core
