#include "tessarin/parser/ast/TSNFunction.hpp"

#include "tessarin/parser/ast/Printer.hpp"

namespace tessarin::compiler::core {

void Printer::print(const TSNFunction& function, std::size_t indent, std::size_t step) {
  // A blank stands before each id, and one where there is none: intended.
  const auto printIds = [this](const nvf::Expressions<Ident>& ids) {
    join(ids, u",", [this](const Ident& id) { *this << u" " << id; });
    *this << u" ";
  };
  blanks(indent) << u"function [";
  printIds(function.outputs());
  *this << u"] = " << function.name() << u"(";
  printIds(function.inputs());
  *this << u")\n";
  // These end their own lines.
  printLines(function.definitions(), indent + step, step, {});
  blanks(indent) << u"end \n";
}

ustring TSNFunction::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::TSNFunction);
