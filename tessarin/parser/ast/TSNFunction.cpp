#include "tessarin/parser/ast/TSNFunction.hpp"

#include "tessarin/parser/ast/Printer.hpp"

#include <map>

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

std::vector<const TSNFunction*> inOrderOfName(const LocalTSNFunctions& functions) {
  std::map<nvf::CxId, const TSNFunction*> byName;
  for (const auto& [name, function] : functions) byName.emplace(name, &function);
  std::vector<const TSNFunction*> result;
  result.reserve(byName.size());
  for (const auto& [name, function] : byName) result.push_back(function);
  return result;
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::TSNFunction);
