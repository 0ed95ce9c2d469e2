#include "tessarin/parser/ast/Annotation.hpp"

#include "tessarin/parser/ast/Printer.hpp"

namespace tessarin::compiler::core {

void Printer::print(const MemberAnnotation& annotation, std::size_t indent, std::size_t /*step*/) {
  blanks(indent);
  const bool isList = annotation.ids().size() != 1;
  if (isList) *this << u"[";
  join(annotation.ids(), u", ", [this](const Ident& id) { *this << id; });
  if (isList) *this << u"]";
  *this << u" : ";
  join(annotation.attributes(), u", ", [this](const IdentValuePair& pair) { print(pair); });
  *this << u";";
}

void Printer::print(const AnnotationsBlock& block, std::size_t indent, std::size_t step) {
  blanks(indent) << u"annotations\n";
  // Those of the class stand at the indent of the block and end without ";": intended.
  for (const IdentValuePair& pair : block.classAnnotations()) {
    blanks(indent);
    print(pair);
    *this << u"\n";
  }
  printLines(block.annotations(), indent + step, step);
  blanks(indent) << u"end";
}

ustring MemberAnnotation::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
ustring AnnotationsBlock::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::MemberAnnotation);
TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::AnnotationsBlock);
