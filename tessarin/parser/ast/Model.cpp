#include "tessarin/parser/ast/Model.hpp"

#include "tessarin/parser/ast/Printer.hpp"

#include <algorithm>
#include <ostream>
#include <string>

namespace tessarin::compiler::core {

Model::Model(ModelType::Value type, const Ident& name, const std::optional<ClassInitializer>& baseClassName,
             const std::vector<DeclarationBlock>& declarationBlocks, const std::vector<BranchBlock>& branchBlocks,
             const std::vector<ConnectionBlock>& connectionBlocks, const std::vector<EquationBlock>& equationBlocks,
             const std::vector<EventBlock>& eventBlocks, const std::vector<ModechartBlock>& modechartBlocks,
             const std::vector<AnnotationsBlock>& annotationsBlocks,
             const std::vector<ConditionalSection>& conditionalSections,
             const nvf::Expressions<IdentValuePair>& attributes, FileSource modelSource, const ParseTree& setupFunction,
             const nvf::Location& location)
    : Model(type, name, baseClassName,
            DeclarativeSections(declarationBlocks, branchBlocks, connectionBlocks, equationBlocks, eventBlocks,
                                modechartBlocks, annotationsBlocks, conditionalSections, {}),
            attributes, modelSource, setupFunction, location) {}

bool Model::hasNonEmptyEquationBlock() const noexcept {
  const std::vector<EquationBlock>& blocks = declarativeSections().equationBlocks();
  return std::any_of(blocks.begin(), blocks.end(), [](const EquationBlock& block) { return !block.isEmpty(); });
}

void Printer::print(const Model& model, std::size_t indent, std::size_t step) {
  blanks(indent) << nvf::widen(ModelType::name(model.type())) << u" ";
  printAttributes(model.attributes());
  if (model.numOfAttributes() != 0) *this << u" ";
  *this << model.name();
  if (model.baseClassName()) {
    *this << u" < ";
    print(*model.baseClassName());
  }
  *this << u"\n";
  print(model.declarativeSections(), indent + step, step);
  blanks(indent) << u"end \n"; // the blank is intended
}

ustring dump_text(ModelType::Value type) {
  const bool isType = type == ModelType::COMPONENT || type == ModelType::DDOMAIN;
  return nvf::widen(isType ? ModelType::name(type) : std::to_string(static_cast<int>(type)));
}

ustring Model::string(std::size_t indent, std::size_t step) const {
  return textOf(*this, indent, step);
}
std::ostream& operator<<(std::ostream& stream, const Model& model) {
  return stream << nvf::ustring_to_local_encoded_string(model.string(0, 2));
}

} // namespace tessarin::compiler::core

TESSARIN_DEFINE_OPERATIONS(tessarin::compiler::core::Model);
