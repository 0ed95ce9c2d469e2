// A component or a domain.
#pragma once

#include "tessarin/parser/ast/FileSource.hpp"
#include "tessarin/parser/ast/Sections.hpp"
#include "tessarin/parser/lex/ModelType.hpp"
#include "tessarin/parser/parse/ParseTree.hpp"

#include <iosfwd>
#include <optional>
#include <vector>

namespace tessarin::compiler::core {

/// A model. Two models with setup functions are equal only where these stand at the same places: a parse tree compares
/// its places.
class TESSARIN_EXPORT Model : public nvf::TupleWrapper<Model*, ModelType::Value, Ident, std::optional<ClassInitializer>,
                                                       DeclarativeSections, nvf::Expressions<IdentValuePair>,
                                                       FileSource, ParseTree, detail::IgnoreValue<nvf::Location>> {
public:
  /// `setupFunction` is the tree of the setup function, or one that is no non-terminal where there is none; `location`
  /// is the place of the opening keyword.
  Model(ModelType::Value type, const Ident& name, const std::optional<ClassInitializer>& baseClassName,
        const DeclarativeSections& declarativeSections, const nvf::Expressions<IdentValuePair>& attributes,
        FileSource modelSource, const ParseTree& setupFunction, const nvf::Location& location)
      : TupleWrapper(type, name, baseClassName, declarativeSections, attributes, modelSource, setupFunction, location) {
  }
  /// A model without loops.
  Model(ModelType::Value type, const Ident& name, const std::optional<ClassInitializer>& baseClassName,
        const std::vector<DeclarationBlock>& declarationBlocks, const std::vector<BranchBlock>& branchBlocks,
        const std::vector<ConnectionBlock>& connectionBlocks, const std::vector<EquationBlock>& equationBlocks,
        const std::vector<EventBlock>& eventBlocks, const std::vector<ModechartBlock>& modechartBlocks,
        const std::vector<AnnotationsBlock>& annotationsBlocks,
        const std::vector<ConditionalSection>& conditionalSections, const nvf::Expressions<IdentValuePair>& attributes,
        FileSource modelSource, const ParseTree& setupFunction, const nvf::Location& location);

  /// The parts, as the constructor names them; an absent base class is an empty optional.
  /// @{
  [[nodiscard]] ModelType::Value type() const noexcept { return get<0>(); }
  [[nodiscard]] const Ident& name() const noexcept { return get<1>(); }
  [[nodiscard]] const std::optional<ClassInitializer>& baseClassName() const noexcept { return get<2>(); }
  [[nodiscard]] const DeclarativeSections& declarativeSections() const noexcept { return get<3>(); }
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& attributes() const noexcept { return get<4>(); }
  [[nodiscard]] std::size_t numOfAttributes() const noexcept { return attributes().size(); }
  /// The `i`-th attribute, from 0; there must be one.
  [[nodiscard]] const IdentValuePair& attribute(std::size_t i) const noexcept { return attributes()[i]; }
  [[nodiscard]] FileSource modelSource() const noexcept { return get<5>(); }
  [[nodiscard]] const ParseTree& setupFunctionParseTree() const noexcept { return get<6>(); }
  [[nodiscard]] bool hasSetupFunctionParseTree() const noexcept { return setupFunctionParseTree().type() == 1; }
  /// @}

  /// The place of the opening keyword.
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<7>(); }
  /// Whether an equations block of the model itself has an item; blocks inside its sections and modes do not count.
  [[nodiscard]] bool hasNonEmptyEquationBlock() const noexcept;
  /// The model without its setup function, which is known as a parse tree only. Ends its last line.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
};

/// Writes `string(0, 2)` in the local encoding.
TESSARIN_EXPORT std::ostream& operator<<(std::ostream& stream, const Model& model);

/// "component" or "domain", or the number of any other value.
TESSARIN_EXPORT ustring dump_text(ModelType::Value type);

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Model, "type", "name", "baseClassName", "declarativeSections",
                            "attributes", "modelSource", "setupFunction");
