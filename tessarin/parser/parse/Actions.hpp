// The actions of the grammar: one short call for each thing that a rule does. grammar.yy reads as a table of them.
#pragma once

#include "tessarin/parser/parse/FlatTree.hpp"
#include "tessarin/parser/parse/Parser.hpp"
#include "tessarin/parser/parse/ParserState.hpp"
#include "tessarin/parser/parse/SyntaxError.hpp"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace tessarin::compiler::core {

/// The trees that an action is given are those of the rule's right side, which goes away behind it: actions may change
/// them.
class Actions {
public:
  explicit Actions(ParserState& state) noexcept : state_(state) {}

  /// Reads the next token; its leaf becomes the value.
  int next(NodeRef& value) {
    const Token& token = state_.nextToken();
    value = state_.trees.leaf(token);
    return token.code();
  }

  // ---- nodes ----

  /// A node of the kind with these children.
  template <class... Trees>
  NodeRef operator()(NonTerminal::Value kind, Trees... children) {
    if constexpr (sizeof...(children) == 0) {
      return state_.trees.node(kind, {});
    } else {
      const NodeRef refs[] = {children...};
      return checkDepth(state_.trees.node(kind, refs));
    }
  }
  /// A node of the kind with these children, and behind them the children of `rest`.
  template <class... Trees>
  NodeRef withChildrenOf(NonTerminal::Value kind, NodeRef rest, Trees... children) {
    const NodeRef refs[] = {children...};
    const NodeRef result = state_.trees.node(kind, refs);
    for (std::size_t i = 0; i < at(rest).count(); ++i) state_.trees.extend(result, at(rest).child(i).ref());
    return checkDepth(result);
  }
  /// A list with further items.
  template <class... Trees>
  void list(NodeRef& result, NonTerminal::Value, NodeRef list, Trees... items) {
    (state_.trees.extend(list, items), ...);
    result = checkDepth(list);
  }
  /// The list with all nested lists of its kind flattened.
  NodeRef roll(NodeRef list) { return state_.trees.roll(list); }
  /// A flat list as the list's rules spell it: each item stands in a node of its own, behind the node of those before.
  NodeRef nest(NodeRef list);

  /// The token under another code.
  NodeRef recode(NodeRef leaf, TokenId::Value code) { return state_.trees.leaf(at(leaf).token().recode(code)); }
  /// A name that is not in the text as one: an `ID` at the place of `leaf`.
  NodeRef name(NodeRef leaf, std::u16string_view text) {
    return state_.trees.leaf(Token(TokenId::ID, at(leaf).token().location(), text.data(), text.size()));
  }

  // ---- expressions ----

  /// `K(a, op, r)`. A prefix operator in `r` must not capture the power that follows it: `a ^ -b ^ c` is `(a ^ -b) ^
  /// c`. One level is looked at, and no more: intended.
  NodeRef rewritePower(NodeRef power);
  /// `a : op : b`, which together with a plain `x : y` on the left is one node of three parts.
  NodeRef foldColon(NodeRef a, NodeRef op, NodeRef b);
  /// A list in braces that is a value with its unit as such; any other as it is.
  NodeRef tryUnitExpression(NodeRef cellArray);
  /// A list in braces in the declarative language: it must be a value with its unit.
  NodeRef unitExpression(NodeRef cellArray);
  /// A relational operator of the declarative language, where they do not chain.
  NodeRef relation(NonTerminal::Value kind, NodeRef left, NodeRef op, NodeRef right);

  // ---- statements and functions ----

  /// The target of an assignment: a matrix has one row, and subscripts are not empty.
  void checkAssignmentTarget(NodeRef target);
  void enterFunction() noexcept { ++state_.functionDepth; }
  /// The header of a function with its body; the name, which the outputs hold as their last child, gets a place of its
  /// own.
  NodeRef openFunction(NodeRef keyword, NodeRef outputs, NodeRef inputs, NodeRef separator, NodeRef body);
  NodeRef closeFunction(NodeRef function, NodeRef end);
  /// No statement may stand behind a function that is closed.
  void checkInFunction(NodeRef statement);

  // ---- equations ----

  void warnOfEquation(NodeRef keyword);
  void checkNoNestedEquations(NodeRef keyword);
  void beginEquations() noexcept { state_.inEquations = true; }
  void endEquations() noexcept { state_.inEquations = false; }

  // ---- whole files ----

  void finishModel(NodeRef imports, NodeRef model, NodeRef functions);
  void finishFunction(NodeRef imports, NodeRef function, NodeRef functions);
  void finishStatements(NodeRef statements);

  /// Raises the message for a syntax error. `unexpected` is the number of a symbol, negative where no token had been
  /// read; `stack` is the parser's, its top first.
  template <class Symbol, class Stack>
  [[noreturn]] void syntaxError(Symbol unexpected, std::span<const Symbol> expected, const Stack& stack) {
    const Token* openConstruct = nullptr;
    using Index = typename Stack::index_type;
    for (Index i = 0; i < static_cast<Index>(stack.size()) && openConstruct == nullptr; ++i) {
      const NodeView value = at(stack[i].value);
      if (value.type() == 0 && opensConstruct(value.token().code())) openConstruct = &value.token();
    }
    const std::vector<int> symbols(expected.begin(), expected.end());
    raiseSyntaxError(state_, openConstruct,
                     syntaxErrorMessage(unexpected < 0 ? std::nullopt : std::optional<int>(unexpected), symbols));
  }

  /// Refuses the rule, at the first token of `tree`.
  template <class Msg>
  [[noreturn]] void refuse(NodeRef tree) {
    raise<Msg>(state_.place(tree));
  }

  [[nodiscard]] ParserState& state() noexcept { return state_; }

private:
  NodeRef checkDepth(NodeRef tree) {
    static_assert(maxNesting < std::numeric_limits<std::uint16_t>::max(), "nodes count so far");
    if (state_.trees.depth(tree) > maxNesting) refuseDepth();
    return tree;
  }
  [[nodiscard]] NodeView at(NodeRef tree) const noexcept { return {state_.trees, tree}; }
  [[noreturn]] void refuseDepth();
  /// As the call operator, without a look at the depth.
  NodeRef node(NonTerminal::Value kind, std::initializer_list<NodeRef> children);
  [[nodiscard]] NodeRef child(NodeRef tree, std::size_t i) const;
  void checkNotRelational(NodeRef operand);
  void checkEmptyIndices(NodeRef target);
  void finish(NodeRef imports, NodeRef main, NodeRef functions);

  ParserState& state_;
};

} // namespace tessarin::compiler::core
