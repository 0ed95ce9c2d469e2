#include "tessarin/parser/ast/Sections.hpp"

#include "tessarin/parser/ast/Printer.hpp"

#include <utility>

namespace tessarin::compiler::core {

// ---- construction ----

IfSection::IfSection() : IfSection(Expr(), DeclarativeSections()) {}
IfSection::IfSection(const Expr& predicate, const DeclarativeSections& declarations)
    : TupleWrapper(predicate, declarations) {}
ElseifSection::ElseifSection() : ElseifSection(Expr(), DeclarativeSections()) {}
ElseifSection::ElseifSection(const Expr& predicate, const DeclarativeSections& declarations)
    : TupleWrapper(predicate, declarations) {}
ElseSection::ElseSection() : ElseSection(DeclarativeSections()) {}
ElseSection::ElseSection(const DeclarativeSections& declarations) : TupleWrapper(declarations) {}

SemanticSections::SemanticSections() = default;
SemanticSections::SemanticSections(std::vector<DeclarationBlock> declarationBlocks,
                                   std::vector<BranchBlock> branchBlocks, std::vector<ConnectionBlock> connectionBlocks,
                                   std::vector<EquationBlock> equationBlocks, std::vector<EventBlock> eventBlocks,
                                   std::vector<ModechartBlock> modechartBlocks,
                                   std::vector<ConditionalSection> conditionalSections, std::vector<ForLoop> forLoops)
    : TupleWrapper(std::move(declarationBlocks), std::move(branchBlocks), std::move(connectionBlocks),
                   std::move(equationBlocks), std::move(eventBlocks), std::move(modechartBlocks),
                   std::move(conditionalSections), std::move(forLoops)) {}

DeclarativeSections::DeclarativeSections(std::vector<DeclarationBlock> declarationBlocks,
                                         std::vector<BranchBlock> branchBlocks,
                                         std::vector<ConnectionBlock> connectionBlocks,
                                         std::vector<EquationBlock> equationBlocks, std::vector<EventBlock> eventBlocks,
                                         std::vector<ModechartBlock> modechartBlocks,
                                         std::vector<AnnotationsBlock> annotationsBlocks,
                                         std::vector<ConditionalSection> conditionalSections,
                                         std::vector<ForLoop> forLoops)
    : DeclarativeSections(SemanticSections(std::move(declarationBlocks), std::move(branchBlocks),
                                           std::move(connectionBlocks), std::move(equationBlocks),
                                           std::move(eventBlocks), std::move(modechartBlocks),
                                           std::move(conditionalSections), std::move(forLoops)),
                          std::move(annotationsBlocks)) {}

// ---- printing ----

void Printer::print(const SemanticSections& sections, std::size_t indent, std::size_t step) {
  // Sections nest through here, whether by a condition or by a loop.
  nvf::with_stack(
      [&] { std::apply([&](const auto&... lists) { (printLines(lists, indent, step), ...); }, sections.tuple()); });
}

void Printer::print(const DeclarativeSections& sections, std::size_t indent, std::size_t step) {
  print(sections.semanticSections(), indent, step);
  printLines(sections.annotationsBlocks(), indent, step);
}

void Printer::print(const IfSection& section, std::size_t indent, std::size_t step) {
  blanks(indent) << u"if ";
  print(section.predicate());
  *this << u"\n";
  print(section.declarations(), indent + step, step);
}

void Printer::print(const ElseifSection& section, std::size_t indent, std::size_t step) {
  blanks(indent) << u"elseif ";
  print(section.predicate());
  *this << u"\n";
  print(section.declarations(), indent + step, step);
}

void Printer::print(const ElseSection& section, std::size_t indent, std::size_t step) {
  blanks(indent) << u"else\n";
  print(section.declarations(), indent + step, step);
}

void Printer::print(const ConditionalSection& section, std::size_t indent, std::size_t step) {
  print(section.ifSection(), indent, step);
  for (const ElseifSection& elseif : section.elseifSections()) print(elseif, indent, step);
  if (const std::optional<ElseSection> otherwise = section.elseSection()) print(*otherwise, indent, step);
  blanks(indent) << u"end";
}

void Printer::print(const ForLoop& loop, std::size_t indent, std::size_t step) {
  blanks(indent) << u"for ";
  print(loop.idValuePair());
  *this << u"\n";
  print(loop.body(), indent + step, step);
  blanks(indent) << u"end";
}

ustring IfSection::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring ElseifSection::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring ElseSection::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring ConditionalSection::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring SemanticSections::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring ForLoop::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring DeclarativeSections::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::IfSection);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ElseifSection);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ElseSection);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ConditionalSection);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::SemanticSections);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ForLoop);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::DeclarativeSections);
