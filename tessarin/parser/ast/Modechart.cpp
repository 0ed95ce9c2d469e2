#include "tessarin/parser/ast/Modechart.hpp"

#include "tessarin/parser/ast/Printer.hpp"

namespace tessarin::compiler::core {

void Printer::print(const ModechartBlock& block, std::size_t indent, std::size_t step) {
  blanks(indent) << u"modecharts";
  printAttributes(block.attributes());
  *this << u"\n";
  printLines(block.declarations(), indent + step, step);
  blanks(indent) << u"end";
}

void Printer::print(const ModechartDeclaration& declaration, std::size_t indent, std::size_t step) {
  blanks(indent) << declaration.id() << u" = ...\n";
  print(declaration.modechart(), indent + step, step);
}

void Printer::print(const Modechart& modechart, std::size_t indent, std::size_t step) {
  blanks(indent) << u"modechart\n";
  printLines(modechart.modesSections(), indent + step, step);
  printLines(modechart.transitionsSections(), indent + step, step);
  printLines(modechart.initialSections(), indent + step, step);
  blanks(indent) << u"end";
}

void Printer::print(const ModesSection& section, std::size_t indent, std::size_t step) {
  blanks(indent) << u"modes\n";
  printLines(section.modes(), indent + step, step);
  blanks(indent) << u"end";
}

void Printer::print(const Mode& mode, std::size_t indent, std::size_t step) {
  const bool isBraced = mode.ids().size() != 1;
  blanks(indent) << u"mode " << (isBraced ? u"{" : u"");
  join(mode.ids(), u", ", [this](const Ident& id) { *this << id; });
  *this << (isBraced ? u"}\n" : u"\n");
  printLines(mode.equationBlocks(), indent + step, step);
  printLines(mode.entryBlocks(), indent + step, step);
  blanks(indent) << u"end";
}

void Printer::print(const EntryBlock& block, std::size_t indent, std::size_t step) {
  blanks(indent) << u"entry\n";
  for (const IdentValuePair& action : block.actions()) {
    blanks(indent + step);
    print(action);
    *this << u";\n";
  }
  blanks(indent) << u"end";
}

void Printer::print(const TransitionsSection& section, std::size_t indent, std::size_t step) {
  blanks(indent) << u"transitions\n";
  printLines(section.transitions(), indent + step, step, u";\n");
  blanks(indent) << u"end";
}

void Printer::print(const Transition& transition, std::size_t indent, std::size_t) {
  blanks(indent);
  // Without blanks around the arrow, unlike the arrow of a branch: intended.
  join(transition.modes(), u"->", [this](const Ident& mode) { *this << mode; });
  *this << u" : ";
  print(transition.predicate());
}

void Printer::print(const InitialSection& section, std::size_t indent, std::size_t step) {
  blanks(indent) << u"initial\n";
  printLines(section.initialModes(), indent + step, step, u";\n");
  blanks(indent) << u"end";
}

void Printer::print(const InitialMode& mode, std::size_t indent, std::size_t) {
  blanks(indent) << mode.id() << u" : ";
  print(mode.predicate());
}

ustring EntryBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring Mode::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring ModesSection::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring Transition::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring TransitionsSection::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring InitialMode::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring InitialSection::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring Modechart::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring ModechartDeclaration::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring ModechartBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::EntryBlock);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Mode);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ModesSection);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Transition);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::TransitionsSection);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::InitialMode);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::InitialSection);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Modechart);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ModechartDeclaration);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::ModechartBlock);
