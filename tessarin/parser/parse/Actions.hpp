// The actions of the grammar: one short call for each thing that a rule does. grammar.yy reads as a table of them.
#pragma once

#include "tessarin/parser/parse/ParseTreeBuilder.hpp"
#include "tessarin/parser/parse/Parser.hpp"
#include "tessarin/parser/parse/ParserState.hpp"
#include "tessarin/parser/parse/SyntaxError.hpp"

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// The trees that an action is given are those of the rule's right side, which goes away behind it: actions use them
/// up.
class Actions {
public:
  explicit Actions(ParserState& state) noexcept : state_(state) {}

  /// Reads the next token; its leaf becomes the value.
  int next(ParseTree& value) {
    const Token& token = state_.nextToken();
    value = state_.trees.leaf(token);
    return token.code();
  }

  // ---- nodes ----

  /// A node of the kind with these children.
  template <class... Trees>
  ParseTree operator()(NonTerminal::Value kind, Trees&&... children) {
    return checkDepth(state_.trees.node(kind, {&children...}));
  }
  /// A node of the kind with these children, and behind them the children of `rest`.
  template <class... Trees>
  ParseTree withChildrenOf(NonTerminal::Value kind, const ParseTree& rest, Trees&&... children) {
    ParseTree result = state_.trees.node(kind, {&children...});
    for (std::size_t i = 0; i < rest.count(); ++i) state_.trees.extend(result, ParseTree(rest.child(i)));
    return checkDepth(std::move(result));
  }
  /// A list with further items. The left side of the rule holds a second handle on the list, which is given up first,
  /// so that the list can grow where it is.
  template <class... Trees>
  void list(ParseTree& result, NonTerminal::Value, ParseTree& list, Trees&&... items) {
    result = std::move(list);
    (state_.trees.extend(result, std::move(items)), ...);
    checkDepth(result);
  }
  /// The list with all nested lists of its kind flattened.
  ParseTree roll(ParseTree& list) { return ParseTreeBuilder::roll(std::move(list)); }
  ParseTree roll(ParseTree&& list) { return ParseTreeBuilder::roll(std::move(list)); }
  /// A flat list as the list's rules spell it: each item stands in a node of its own, behind the node of those before.
  ParseTree nest(ParseTree& list);

  /// The token under another code.
  ParseTree recode(const ParseTree& leaf, TokenId::Value code) { return ParseTree(leaf.token().recode(code)); }
  /// A name that is not in the text as one: an `ID` at the place of `leaf`.
  ParseTree name(const ParseTree& leaf, std::u16string_view text) {
    return ParseTree(Token(TokenId::ID, leaf.token().location(), text.data(), text.size()));
  }

  // ---- expressions ----

  /// `K(a, op, r)`. A prefix operator in `r` must not capture the power that follows it: `a ^ -b ^ c` is `(a ^ -b) ^
  /// c`. One level is looked at, and no more: intended.
  ParseTree rewritePower(ParseTree power);
  /// `a : op : b`, which together with a plain `x : y` on the left is one node of three parts.
  ParseTree foldColon(ParseTree& a, ParseTree& op, ParseTree& b);
  /// A list in braces that is a value with its unit as such; any other as it is.
  ParseTree tryUnitExpression(ParseTree& cellArray);
  /// A list in braces in the declarative language: it must be a value with its unit.
  ParseTree unitExpression(ParseTree& cellArray);
  /// A relational operator of the declarative language, where they do not chain.
  ParseTree relation(NonTerminal::Value kind, ParseTree& left, ParseTree& op, ParseTree& right);

  // ---- statements and functions ----

  /// The target of an assignment: a matrix has one row, and subscripts are not empty.
  void checkAssignmentTarget(const ParseTree& target);
  void enterFunction() noexcept { ++state_.functionDepth; }
  /// The header of a function with its body; the name, which the outputs hold as their last child, gets a place of its
  /// own.
  ParseTree openFunction(ParseTree& keyword, ParseTree& outputs, ParseTree& inputs, ParseTree& separator,
                         ParseTree body);
  ParseTree closeFunction(ParseTree& function, ParseTree& end);
  /// No statement may stand behind a function that is closed.
  void checkInFunction(const ParseTree& statement);

  // ---- equations ----

  void warnOfEquation(const ParseTree& keyword);
  void checkNoNestedEquations(const ParseTree& keyword);
  void beginEquations() noexcept { state_.inEquations = true; }
  void endEquations() noexcept { state_.inEquations = false; }

  // ---- whole files ----

  void finishModel(ParseTree& imports, ParseTree& model, ParseTree& functions);
  void finishFunction(ParseTree& imports, ParseTree& function, ParseTree& functions);
  void finishStatements(ParseTree& statements);

  /// Raises the message for a syntax error. `unexpected` is the number of a symbol, negative where no token had been
  /// read; `stack` is the parser's, its top first.
  template <class Symbol, class Stack>
  [[noreturn]] void syntaxError(Symbol unexpected, std::span<const Symbol> expected, const Stack& stack) {
    const Token* openConstruct = nullptr;
    using Index = typename Stack::index_type;
    for (Index i = 0; i < static_cast<Index>(stack.size()) && openConstruct == nullptr; ++i) {
      const ParseTree& value = stack[i].value;
      if (value.type() == 0 && opensConstruct(value.token().code())) openConstruct = &value.token();
    }
    const std::vector<int> symbols(expected.begin(), expected.end());
    raiseSyntaxError(state_, openConstruct,
                     syntaxErrorMessage(unexpected < 0 ? std::nullopt : std::optional<int>(unexpected), symbols));
  }

  /// Refuses the rule, at the first token of `tree`.
  template <class Msg>
  [[noreturn]] void refuse(const ParseTree& tree) {
    raise<Msg>(state_.place(tree));
  }

  [[nodiscard]] ParserState& state() noexcept { return state_; }

private:
  ParseTree checkDepth(ParseTree&& tree) {
    checkDepth(std::as_const(tree));
    return std::move(tree);
  }
  void checkDepth(const ParseTree& tree) {
    static_assert(maxNesting < std::numeric_limits<std::uint16_t>::max(), "nodes count so far");
    if (tree.data()->depth() > maxNesting) refuseDepth();
  }
  [[noreturn]] void refuseDepth();
  void checkNotRelational(const ParseTree& operand);
  void checkEmptyIndices(const ParseTree& target);
  void finish(ParseTree& imports, ParseTree& main, ParseTree& functions);

  ParserState& state_;
};

} // namespace tessarin::compiler::core
