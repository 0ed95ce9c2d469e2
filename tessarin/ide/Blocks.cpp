#include "tessarin/ide/Blocks.hpp"

#include "tessarin/ide/Spelling.hpp"

#include <algorithm>
#include <initializer_list>

namespace tessarin::ide {

using compiler::core::Kind;

namespace {

/// Where a statement can stand.
enum class Place : std::uint8_t {
  File,
  Model,      ///< components, domains, and the conditions and loops around sections
  Function,   ///< which has sections, or statements where it is a setup function
  Statements, ///< sections, and the conditions inside them
  Events,
  When,
  Modecharts,
  Modechart,
  Modes,
  Mode
};

constexpr std::initializer_list<Kind> sectionWords = {
    Kind::PARAMETERS, Kind::VARIABLES,     Kind::NODES,       Kind::INPUTS,   Kind::OUTPUTS,
    Kind::COMPONENTS, Kind::EQUATIONS,     Kind::EVENTS,      Kind::BRANCHES, Kind::CONNECTIONS,
    Kind::MODECHARTS, Kind::INTERMEDIATES, Kind::ANNOTATIONS, Kind::EQUATION, Kind::THROUGHS};

bool isOneOf(Kind kind, std::initializer_list<Kind> kinds) noexcept {
  return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

/// The place inside a block that stands in `around`.
Place placeInside(Kind kind, Place around) noexcept {
  switch (kind) {
  case Kind::COMPONENT:
  case Kind::DDOMAIN: return Place::Model;
  case Kind::FUNCTION:
  case Kind::NESTED: return Place::Function;
  case Kind::IF:
  case Kind::FOR: return around == Place::Model ? Place::Model : Place::Statements;
  case Kind::EVENTS: return Place::Events;
  case Kind::WHEN: return Place::When;
  case Kind::MODECHARTS: return Place::Modecharts;
  case Kind::MODECHART: return Place::Modechart;
  case Kind::MODES: return Place::Modes;
  case Kind::MODE: return Place::Mode;
  default: return Place::Statements;
  }
}

/// Whether the word can open a block there. What the parser refuses at once with a message of its own counts as
/// fitting.
bool fits(Kind kind, Place place) noexcept {
  switch (kind) {
  case Kind::COMPONENT:
  case Kind::DDOMAIN: return place == Place::File;
  case Kind::FUNCTION:
  case Kind::NESTED: return place == Place::File || place == Place::Model;
  case Kind::DEFINITIONS: return place == Place::Function;
  case Kind::EQUATIONS:
  case Kind::EQUATION: return place == Place::Model || place == Place::Mode;
  case Kind::WHEN: return place == Place::Events;
  case Kind::MODECHART: return place == Place::Modecharts;
  case Kind::MODES:
  case Kind::TRANSITIONS:
  case Kind::INITIAL: return place == Place::Modechart;
  case Kind::MODE: return place == Place::Modes;
  case Kind::ENTRY: return place == Place::Mode;
  default: return !isOneOf(kind, sectionWords) || place == Place::Model;
  }
}

/// Whether a block of this sort stands in few places only, so that elsewhere something must be missing before it.
bool isParticular(Kind kind) noexcept {
  return !isOneOf(kind, {Kind::IF, Kind::FOR, Kind::LET, Kind::WHILE, Kind::SWITCH, Kind::TRY, Kind::MODECHART});
}

bool holdsPlainStatements(Place place) noexcept {
  return place == Place::Statements || place == Place::When || place == Place::Function || place == Place::Modecharts;
}

/// The words that begin something there, the block's own dividing words and `end` not among them.
std::vector<Kind> wordsIn(Place place) {
  std::vector<Kind> words;
  switch (place) {
  case Place::File: return {Kind::COMPONENT, Kind::DDOMAIN, Kind::FUNCTION, Kind::IMPORT_};
  case Place::Model:
    words = sectionWords;
    words.insert(words.end(), {Kind::FUNCTION, Kind::IF, Kind::FOR});
    return words;
  case Place::Function: return {Kind::DEFINITIONS, Kind::IF};
  case Place::Statements: return {Kind::IF, Kind::LET, Kind::ASSERT_, Kind::CONNECT};
  case Place::Events: return {Kind::WHEN};
  case Place::Modechart: return {Kind::MODES, Kind::TRANSITIONS, Kind::INITIAL};
  case Place::Modes: return {Kind::MODE};
  case Place::Mode: return {Kind::EQUATIONS, Kind::ENTRY};
  default: return {};
  }
}

std::initializer_list<Kind> dividersOf(Kind block) noexcept {
  static constexpr std::initializer_list<Kind> ofIf = {Kind::ELSE, Kind::ELSEIF};
  static constexpr std::initializer_list<Kind> ofWhen = {Kind::ELSEWHEN};
  static constexpr std::initializer_list<Kind> ofLet = {Kind::IN};
  static constexpr std::initializer_list<Kind> ofOthers = {};
  switch (block) {
  case Kind::IF: return ofIf;
  case Kind::WHEN: return ofWhen;
  case Kind::LET: return ofLet;
  default: return ofOthers;
  }
}

std::vector<nvf::ustring_view> textsOf(std::span<const Kind> kinds) {
  std::vector<nvf::ustring_view> texts;
  for (const Kind kind : kinds) texts.push_back(compiler::core::keyword::name(kind));
  return texts;
}

/// Walks over the statements with the stack of open blocks.
class Nest {
public:
  explicit Nest(const Statements& statements) : statements_(statements) { result_.innermost.resize(all().size()); }

  Blocks find() {
    for (i_ = 0; i_ < all().size(); ++i_) {
      const Statement& statement = all()[i_];
      if (statement.startsLine) {
        seeIndent(statement);
        if (!statement.hasRole) seePlain(statement);
      }
      result_.innermost[i_] = top();
      for (std::size_t t = statement.firstToken; t < statement.lastToken; ++t) {
        const WordRole role = statements_.role(t);
        if (role != WordRole::None) see(role, t, statement.startsLine && t == statement.firstToken);
      }
    }
    while (!stack_.empty()) miss(statements_.text().size());
    return std::move(result_);
  }

private:
  struct Open {
    std::size_t block = 0;
    Kind kind = Kind::EMPTY;
    Place inside = Place::File;
    std::ptrdiff_t indent = -1;       // of the line that it opens in
    std::size_t dedent = Block::none; // the first statement that is not further in
  };

  [[nodiscard]] const std::vector<Statement>& all() const { return statements_.all(); }
  [[nodiscard]] std::size_t top() const { return stack_.empty() ? Block::none : stack_.back().block; }
  [[nodiscard]] Place place() const { return stack_.empty() ? Place::File : stack_.back().inside; }
  [[nodiscard]] std::ptrdiff_t indent() const { return static_cast<std::ptrdiff_t>(lineIndent_); }

  /// Notes where the text comes back to the left of what is open.
  void seeIndent(const Statement& statement) {
    lineIndent_ = statement.column;
    const WordRole role = statements_.role(statement.firstToken);
    const bool belongs = role == WordRole::Divides || role == WordRole::Closes;
    for (auto open = stack_.rbegin(); open != stack_.rend(); ++open) {
      if (open->dedent != Block::none || open->indent < indent() || (belongs && open->indent == indent())) break;
      open->dedent = i_;
    }
  }

  void see(WordRole role, std::size_t token, bool atLineHead) {
    const Kind kind = statements_.tokens()[token].kind;
    switch (role) {
    case WordRole::Opens: open(kind, atLineHead); break;
    case WordRole::Divides:
      if (atLineHead) divide(kind);
      result_.innermost[i_] = top();
      break;
    default: close(token, atLineHead); break;
    }
  }

  void open(Kind kind, bool atLineHead) {
    if (atLineHead) missEndsBefore(kind);
    push(kind);
  }

  void push(Kind kind) {
    const Place around = place();
    result_.all.push_back({kind, i_, Block::none, top()});
    stack_.push_back({result_.all.size() - 1, kind, placeInside(kind, around), indent()});
    result_.innermost[i_] = top();
  }

  /// Closes what must have ended before a word that cannot stand here, or that stands too far to the left.
  void missEndsBefore(Kind kind) {
    const auto holds = [&](std::size_t count) {
      return fits(kind, count == 0 ? Place::File : stack_[count - 1].inside) &&
             (count == 0 || stack_[count - 1].indent < indent());
    };
    const bool topFits = fits(kind, place());
    const bool leftOfTop = !stack_.empty() && stack_.back().indent >= indent();
    if (topFits && (!leftOfTop || !isParticular(kind))) return;
    if (!isParticular(kind)) return;
    std::size_t count = stack_.size();
    while (count > 0 && !holds(count) && stack_[count - 1].indent >= indent()) --count;
    if (!holds(count)) return;
    while (stack_.size() > count) miss(begin());
  }

  void divide(Kind kind) {
    if (stack_.empty() || stack_.back().indent <= indent()) return;
    std::size_t count = stack_.size();
    while (count > 0 && stack_[count - 1].indent > indent()) --count;
    if (count == 0 || stack_[count - 1].indent != indent() || !isOneOf(kind, dividersOf(stack_[count - 1].kind)))
      return;
    while (stack_.size() > count) miss(begin());
  }

  void close(std::size_t token, bool atLineHead) {
    if (atLineHead && !stack_.empty()) {
      std::size_t count = stack_.size();
      while (count > 0 && stack_[count - 1].indent > indent()) --count;
      if (count > 0 && count < stack_.size() && stack_[count - 1].indent == indent()) {
        while (stack_.size() > count) miss(begin());
      }
    }
    const bool tooDeep = atLineHead && !stack_.empty() && stack_.back().indent < indent();
    if (stack_.empty() || tooDeep) {
      const CodeToken& word = statements_.tokens()[token];
      result_.anomalies.push_back({Anomaly::Kind::ExtraEnd, word.begin, word.end - word.begin, {}, word.begin});
      return;
    }
    result_.innermost[i_] = top();
    result_.all[top()].closer = i_;
    lastClosed_ = stack_.back();
    lastEnd_ = token;
    stack_.pop_back();
  }

  /// The end of the innermost block is missing.
  void miss(std::size_t noticed) {
    const Open& open = stack_.back();
    const std::size_t before = open.dedent != Block::none ? open.dedent : i_;
    const std::size_t place = before > 0 ? all()[before - 1].end : 0;
    result_.anomalies.push_back({Anomaly::Kind::MissingEnd, place, 0, {}, noticed});
    stack_.pop_back();
  }

  [[nodiscard]] std::size_t begin() const { return statements_.tokens()[all()[i_].firstToken].begin; }

  /// A line without a word of structure: one where none can stand shows that an `end` before it is too many, or is
  /// itself such a word, misspelt.
  void seePlain(const Statement& statement) {
    if (const auto meant = misspelt(statement)) {
      const CodeToken& word = statements_.tokens()[statement.firstToken];
      result_.anomalies.push_back({Anomaly::Kind::MisspeltWord, word.begin, word.end - word.begin,
                                   compiler::core::keyword::name(*meant), word.begin});
      if (*meant == Kind::END) {
        result_.all[top()].closer = i_;
        stack_.pop_back();
      } else if (stack_.empty() || !isOneOf(*meant, dividersOf(stack_.back().kind))) {
        push(*meant);
      }
      return;
    }
    if (holdsPlainStatements(place()) || !lastClosed_ || i_ == 0) return;
    const bool followsEnd = *lastEnd_ + 1 == statement.firstToken;
    if (!followsEnd || !holdsPlainStatements(lastClosed_->inside) || lastClosed_->indent >= indent()) return;
    const CodeToken& word = statements_.tokens()[*lastEnd_];
    result_.anomalies.push_back({Anomaly::Kind::ExtraEnd, word.begin, word.end - word.begin, {}, begin()});
    result_.all[lastClosed_->block].closer = Block::none;
    stack_.push_back(*lastClosed_);
    lastClosed_.reset();
  }

  /// The word of structure that the first one of the line stands for, by its looks and by the lines around it.
  [[nodiscard]] std::optional<Kind> misspelt(const Statement& statement) const {
    const auto tokens = statements_.tokensOf(statement);
    if (tokens.front().kind != Kind::ID) return std::nullopt;
    const nvf::ustring_view text = statements_.textOf(tokens.front());
    const bool isAlone = tokens.size() == 1;

    if (!stack_.empty() && stack_.back().indent == indent()) {
      std::vector<Kind> words(dividersOf(stack_.back().kind));
      if (isAlone) words.push_back(Kind::END);
      if (const auto word = nearest(text, words)) return word;
    }
    const bool goesDeeper =
        i_ + 1 < all().size() && all()[i_ + 1].startsLine && all()[i_ + 1].column > statement.column;
    if (!goesDeeper) return std::nullopt;
    const Kind second = isAlone ? Kind::EMPTY : tokens[1].kind;
    const bool isHead = isAlone || (second == Kind::LP && tokens.back().kind == Kind::RP) ||
                        isOneOf(second, {Kind::ID, Kind::DUAL, Kind::LB, Kind::LC, Kind::INT, Kind::FLOAT, Kind::NOT});
    if (!isHead) return std::nullopt;
    const std::optional<Kind> word = nearest(text, wordsIn(place()));
    return word && isOneOf(*word, {Kind::IMPORT_, Kind::ASSERT_, Kind::CONNECT}) ? std::nullopt : word;
  }

  static std::optional<Kind> nearest(nvf::ustring_view text, const std::vector<Kind>& words) {
    const auto meant = nearestWord(text, textsOf(words));
    if (!meant) return std::nullopt;
    return compiler::core::reserved_word(meant->data(), meant->size());
  }

  const Statements& statements_;
  Blocks result_;
  std::vector<Open> stack_;
  std::size_t i_ = 0; // the statement
  std::size_t lineIndent_ = 0;
  std::optional<Open> lastClosed_;
  std::optional<std::size_t> lastEnd_; // the token that closed it
};

} // namespace

Blocks blocksOf(const Statements& statements) {
  return Nest(statements).find();
}

std::optional<nvf::ustring_view> meantKeyword(const Statements& statements, const Blocks& blocks, std::size_t i) {
  const CodeToken& first = statements.tokensOf(statements.all()[i]).front();
  if (first.kind != Kind::ID) return std::nullopt;
  // The places from the outermost block to the innermost.
  std::vector<Kind> around;
  constexpr std::size_t enough = 8; // beyond that all places are those of statements
  for (std::size_t block = blocks.innermost[i]; block != Block::none && around.size() < enough;
       block = blocks.all[block].parent) {
    around.push_back(blocks.all[block].kind);
  }
  Place place = Place::File;
  for (auto kind = around.rbegin(); kind != around.rend(); ++kind) place = placeInside(*kind, place);
  std::vector<Kind> words = wordsIn(place);
  if (!around.empty()) words.insert(words.end(), dividersOf(around.front()));
  return nearestWord(statements.textOf(first), textsOf(words));
}

} // namespace tessarin::ide
