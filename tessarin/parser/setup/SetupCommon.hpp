// What the parts of the conversion share.
#pragma once

#include "tessarin/foundation/location.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <cstddef>
#include <span>
#include <type_traits>
#include <vector>

namespace tessarin::compiler::core {

/// From the first to the last token; empty where there is none.
inline nvf::Range rangeOf(const ParseTree& tree) {
  const Token* first = tree.left();
  return first == nullptr ? nvf::Range() : first->range() + tree.right()->range();
}

/// The children of a non-terminal.
inline std::span<const ParseTree> childrenOf(const ParseTree& tree) {
  const std::size_t count = tree.count();
  return count == 0 ? std::span<const ParseTree>() : std::span(&tree.child(0), count);
}

/// What `convert` makes of each child.
template <class Convert>
auto mapChildren(const ParseTree& tree, Convert convert) {
  std::vector<std::invoke_result_t<Convert&, const ParseTree&>> result;
  const std::span<const ParseTree> children = childrenOf(tree);
  result.reserve(children.size());
  for (const ParseTree& child : children) result.push_back(convert(child));
  return result;
}

/// The text of a string token as it stands between its quotes.
inline nvf::ustring_view withoutQuotes(const Token& token) {
  const nvf::ustring_view quoted = token.text().view();
  return quoted.size() < 2 ? nvf::ustring_view() : quoted.substr(1, quoted.size() - 2);
}

/// The text that a string token stands for: of two quotes in it one.
inline ustring contentOf(const Token& token) {
  ustring content;
  const nvf::ustring_view text = withoutQuotes(token);
  for (std::size_t i = 0; i < text.size(); ++i) {
    content += text[i];
    if (text[i] == u'\'' && i + 1 < text.size() && text[i + 1] == u'\'') ++i;
  }
  return content;
}

} // namespace tessarin::compiler::core
