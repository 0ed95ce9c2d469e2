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
struct ParseTree {};

/// Why a parse has ended early: a rule is refused, the text is faulty, or the tokens have run out.
struct Stopped : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Has the members that the grammar calls.
class Actions {
public:
  explicit Actions(std::span<const TokenId::Value> codes) noexcept : codes_(codes) {}

  int next(ParseTree&) {
    if (next_ == codes_.size()) throw Stopped("no token is left");
    return codes_[next_++];
  }

  template <class... Trees>
  ParseTree operator()(NonTerminal::Value, const Trees&...) const noexcept {
    return {};
  }
  template <class... Trees>
  ParseTree withChildrenOf(NonTerminal::Value, ParseTree, const Trees&...) const noexcept {
    return {};
  }
  template <class... Trees>
  void list(ParseTree&, NonTerminal::Value, const Trees&...) const noexcept {}
  ParseTree roll(ParseTree) const noexcept { return {}; }
  ParseTree nest(ParseTree) const noexcept { return {}; }
  ParseTree recode(ParseTree, TokenId::Value) const noexcept { return {}; }
  ParseTree name(ParseTree, std::u16string_view) const noexcept { return {}; }

  ParseTree rewritePower(ParseTree) const noexcept { return {}; }
  ParseTree foldColon(ParseTree, ParseTree, ParseTree) const noexcept { return {}; }
  ParseTree tryUnitExpression(ParseTree) const noexcept { return {}; }
  ParseTree unitExpression(ParseTree) const noexcept { return {}; }
  ParseTree relation(NonTerminal::Value, ParseTree, ParseTree, ParseTree) const noexcept { return {}; }

  void checkAssignmentTarget(ParseTree) const noexcept {}
  void enterFunction() const noexcept {}
  ParseTree openFunction(ParseTree, ParseTree, ParseTree, ParseTree, ParseTree) const noexcept { return {}; }
  ParseTree closeFunction(ParseTree, ParseTree) const noexcept { return {}; }
  void checkInFunction(ParseTree) const noexcept {}

  void warnOfEquation(ParseTree) const noexcept {}
  void checkNoNestedEquations(ParseTree) const noexcept {}
  void beginEquations() const noexcept {}
  void endEquations() const noexcept {}

  void finishModel(ParseTree, ParseTree, ParseTree) const noexcept {}
  void finishFunction(ParseTree, ParseTree, ParseTree) const noexcept {}
  void finishStatements(ParseTree) const noexcept {}

  template <class Symbol, class Stack>
  [[noreturn]] void syntaxError(Symbol, std::span<const Symbol>, const Stack&) const {
    throw Stopped("a syntax error");
  }
  template <class Msg>
  [[noreturn]] void refuse(ParseTree) const {
    throw Stopped("a rule is refused");
  }

private:
  std::span<const TokenId::Value> codes_;
  std::size_t next_ = 0;
};

} // namespace tessarin::compiler::core::empty
