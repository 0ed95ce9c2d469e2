#include "tessarin/parser/ast/Branch.hpp"

#include "tessarin/parser/ast/Printer.hpp"

namespace tessarin::compiler::core {

namespace {

struct LeafPrinter {
  Printer& printer;
  const ToStringContext& context;
  void operator()(const ImplicitReference& reference) const { printer << reference.string(); }
  void operator()(const Expr& reference) const { printer.print(reference, context); }
};

} // namespace

void Printer::print(const Through& through, const ToStringContext& context) {
  const LeafPrinter printLeaf{*this, context};
  print(through.lhs(), context);
  *this << u" : ";
  through.from().visit(printLeaf);
  *this << u" -> ";
  through.to().visit(printLeaf);
}

void Printer::print(const BranchBlock& block, std::size_t indent, std::size_t step) {
  const ToStringContext context;
  blanks(indent) << u"branches\n";
  for (const Through& through : block.throughs()) {
    blanks(indent + step);
    print(through, context);
    *this << u";\n";
  }
  blanks(indent) << u"end";
}

ustring Through::string(const ToStringContext& context) const {
  return textOf(*this, context);
}
ustring BranchBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ThroughLeaf);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Through);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::BranchBlock);
