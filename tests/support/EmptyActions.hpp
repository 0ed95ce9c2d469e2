// The actions of the grammar without what they do: the bare automaton, to measure what the actions cost and to observe
// which rules are reduced. It is fed with the codes of tokens that have been scanned before.
#pragma once

#include "tessarin/parser/lex/TokenId.hpp"
#include "tessarin/parser/parse/NonTerminal.hpp"

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string_view>

namespace tessarin::compiler::core::empty {

/// A value that holds nothing.
struct NodeRef {};

/// Why a parse has ended early: a rule is refused, the text is faulty, or the tokens have run out.
struct Stopped : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Has the members that the grammar calls.
class Actions {
public:
  explicit Actions(std::span<const TokenId::Value> codes) noexcept : codes_(codes) {}

  int next(NodeRef&) {
    if (next_ == codes_.size()) throw Stopped("no token is left");
    return codes_[next_++];
  }

  template <class... Trees>
  NodeRef operator()(NonTerminal::Value, const Trees&...) const noexcept {
    return {};
  }
  template <class... Trees>
  NodeRef withChildrenOf(NonTerminal::Value, NodeRef, const Trees&...) const noexcept {
    return {};
  }
  template <class... Trees>
  void list(NodeRef&, NonTerminal::Value, const Trees&...) const noexcept {}
  NodeRef roll(NodeRef) const noexcept { return {}; }
  NodeRef nest(NodeRef) const noexcept { return {}; }
  NodeRef recode(NodeRef, TokenId::Value) const noexcept { return {}; }
  NodeRef name(NodeRef, std::u16string_view) const noexcept { return {}; }

  NodeRef rewritePower(NodeRef) const noexcept { return {}; }
  NodeRef foldColon(NodeRef, NodeRef, NodeRef) const noexcept { return {}; }
  NodeRef tryUnitExpression(NodeRef) const noexcept { return {}; }
  NodeRef unitExpression(NodeRef) const noexcept { return {}; }
  NodeRef relation(NonTerminal::Value, NodeRef, NodeRef, NodeRef) const noexcept { return {}; }

  void checkAssignmentTarget(NodeRef) const noexcept {}
  void enterFunction() const noexcept {}
  NodeRef openFunction(NodeRef, NodeRef, NodeRef, NodeRef, NodeRef) const noexcept { return {}; }
  NodeRef closeFunction(NodeRef, NodeRef) const noexcept { return {}; }
  void checkInFunction(NodeRef) const noexcept {}

  void warnOfEquation(NodeRef) const noexcept {}
  void checkNoNestedEquations(NodeRef) const noexcept {}
  void beginEquations() const noexcept {}
  void endEquations() const noexcept {}

  void finishModel(NodeRef, NodeRef, NodeRef) const noexcept {}
  void finishFunction(NodeRef, NodeRef, NodeRef) const noexcept {}
  void finishStatements(NodeRef) const noexcept {}

  template <class Symbol, class Stack>
  [[noreturn]] void syntaxError(Symbol, std::span<const Symbol>, const Stack&) const {
    throw Stopped("a syntax error");
  }
  template <class Msg>
  [[noreturn]] void refuse(NodeRef) const {
    throw Stopped("a rule is refused");
  }

private:
  std::span<const TokenId::Value> codes_;
  std::size_t next_ = 0;
};

} // namespace tessarin::compiler::core::empty
