#include "tessarin/parser/ast/FromTree.hpp"

#include "tessarin/foundation/stack.hpp"
#include "tessarin/foundation/terminate.hpp"

namespace tessarin::compiler::core {

nvf::Range rangeOf(NodeView tree) {
  const Token* first = tree.left();
  return first == nullptr ? nvf::Range() : first->range() + tree.right()->range();
}

nvf::Location placeOf(NodeView tree) {
  const Token* first = tree.left();
  return first == nullptr ? nvf::Location() : first->location();
}

NodeView childOf(NodeView tree, std::size_t i) {
  if (i >= tree.count()) {
    nvf::terminate(notRecognized, fromTreeSource, 118,
                   "const tessarin::compiler::core::ParseTree& childOf(const "
                   "tessarin::compiler::core::ParseTree&, size_t)");
  }
  return tree.child(i);
}

namespace {

void roll(NodeView tree, NonTerminal::Value kind, std::vector<NodeView>& out) {
  if (!tree.isNonTerminalType(kind)) return out.push_back(tree);
  nvf::with_stack([&] {
    for (const NodeView child : tree.children()) roll(child, kind, out);
  });
}

} // namespace

std::vector<NodeView> rolled(NodeView tree) {
  std::vector<NodeView> out;
  roll(tree, tree.code(), out);
  return out;
}

nvf::ustring_view withoutQuotes(const Token& token) {
  const nvf::ustring_view quoted = token.text().view();
  return quoted.size() < 2 ? nvf::ustring_view() : quoted.substr(1, quoted.size() - 2);
}

nvf::ustring contentOf(const Token& token) {
  const char16_t quote = token.code() == TokenId::STRING ? u'\'' : u'"';
  const nvf::ustring_view text = withoutQuotes(token);
  nvf::ustring content;
  content.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    content += text[i];
    if (text[i] == quote && i + 1 < text.size() && text[i + 1] == quote) ++i;
  }
  return content;
}

UnitLiteral unitOf(const Token& token) {
  return {nvf::detail::CheckExprString()(nvf::detail::AsciiStringCheck()(nvf::ustring(withoutQuotes(token)))),
          token.range()};
}

namespace {

/// The number of operands of each operator, in the order of `OpExprType`.
constexpr std::size_t arities[] = {
#define TESSARIN_OPERATOR(name, image, arity, precedence) arity,
#include "tessarin/parser/ast/operators.def"
};

} // namespace

std::size_t operandCount(NodeView tree) {
  const int type = tree.type() == 0 ? -1 : static_cast<int>(operatorOf(tree));
  return type < 0 ? 0 : arities[type];
}

} // namespace tessarin::compiler::core
