// Building of parse trees: nodes out of handles that are used up, and lists that grow in place.
#pragma once

#include "tessarin/parser/parse/NodePool.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <initializer_list>

namespace tessarin::compiler::core {

class ParseTreeBuilder {
public:
  ParseTree leaf(const Token& token);

  /// A node with the given children, which are moved from.
  ParseTree node(NonTerminal::Value kind, std::initializer_list<ParseTree*> children);

  /// Appends `item` to the list `list`, which is a node of `kind`; an `item` of that kind is replaced by its children.
  /// The list grows in place where `list` is its only owner.
  void extend(ParseTree& list, ParseTree&& item);

  /// As `ParseTree::roll`, but a tree that is flat already is handed back as it is.
  static ParseTree roll(ParseTree&& tree);

private:
  static NonTerminalData& inner(ParseTree& tree) noexcept;
  void append(ParseTree& list, ParseTree&& item);

  NodePool pool_;
};

} // namespace tessarin::compiler::core
