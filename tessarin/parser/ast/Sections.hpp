// What a model is made of: lists of blocks, one list a kind, which nest through conditional sections and loops.
//
// The classes hold what they are given: nothing is sorted, merged or checked. Blocks of one kind stay in the order of
// the source; the order between blocks of different kinds is not kept.
#pragma once

#include "tessarin/parser/ast/Annotation.hpp"
#include "tessarin/parser/ast/Branch.hpp"
#include "tessarin/parser/ast/Connection.hpp"
#include "tessarin/parser/ast/Declaration.hpp"
#include "tessarin/parser/ast/Modechart.hpp"

#include <optional>
#include <utility>
#include <vector>

namespace tessarin::compiler::core {

class DeclarativeSections;

/// `if predicate` with its sections, the head of a conditional section.
class TESSARIN_EXPORT IfSection : public nvf::TupleWrapper<IfSection, Expr, nvf::Handle<DeclarativeSections>> {
public:
  /// A default expression, and no sections.
  IfSection();

  /// The predicate and the sections that it governs, as they were given. The text is the line of the keyword behind
  /// `indent` blanks and the sections `step` further in; every line is ended.
  /// @{
  IfSection(const Expr& predicate, const DeclarativeSections& declarations);
  [[nodiscard]] const Expr& predicate() const noexcept { return get<0>(); }
  [[nodiscard]] const DeclarativeSections& declarations() const noexcept;
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// `elseif predicate` with its sections.
class TESSARIN_EXPORT ElseifSection : public nvf::TupleWrapper<ElseifSection, Expr, nvf::Handle<DeclarativeSections>> {
public:
  /// As of an `IfSection`.
  /// @{
  ElseifSection();
  ElseifSection(const Expr& predicate, const DeclarativeSections& declarations);
  [[nodiscard]] const Expr& predicate() const noexcept { return get<0>(); }
  [[nodiscard]] const DeclarativeSections& declarations() const noexcept;
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// `else` with its sections.
class TESSARIN_EXPORT ElseSection : public nvf::TupleWrapper<ElseSection, nvf::Handle<DeclarativeSections>> {
public:
  /// As of an `IfSection`, without a predicate.
  /// @{
  ElseSection();
  explicit ElseSection(const DeclarativeSections& declarations);
  [[nodiscard]] const DeclarativeSections& declarations() const noexcept;
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// A conditional section of a model.
class TESSARIN_EXPORT ConditionalSection
    : public nvf::TupleWrapper<ConditionalSection, IfSection, std::vector<ElseifSection>, std::optional<ElseSection>> {
public:
  ConditionalSection() = default;

  /// The branches in the order of the source. The text is that of each branch and the closing `end`, whose line is not
  /// ended.
  /// @{
  ConditionalSection(const IfSection& ifSection, std::vector<ElseifSection> elseifSections,
                     const std::optional<ElseSection>& elseSection)
      : TupleWrapper(ifSection, std::move(elseifSections), elseSection) {}
  [[nodiscard]] const IfSection& ifSection() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<ElseifSection>& elseifSections() const noexcept { return get<1>(); }
  [[nodiscard]] std::optional<ElseSection> elseSection() const { return get<2>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

class ForLoop;

/// The blocks of a model but for its annotations.
class TESSARIN_EXPORT SemanticSections
    : public nvf::TupleWrapper<SemanticSections*, std::vector<DeclarationBlock>, std::vector<BranchBlock>,
                               std::vector<ConnectionBlock>, std::vector<EquationBlock>, std::vector<EventBlock>,
                               std::vector<ModechartBlock>, std::vector<ConditionalSection>, std::vector<ForLoop>> {
public:
  static constexpr bool nests = true; ///< Conditions and loops hold sections again.

  /// No blocks.
  SemanticSections();

  /// The blocks of each kind, in the order of the source.
  /// @{
  SemanticSections(std::vector<DeclarationBlock> declarationBlocks, std::vector<BranchBlock> branchBlocks,
                   std::vector<ConnectionBlock> connectionBlocks, std::vector<EquationBlock> equationBlocks,
                   std::vector<EventBlock> eventBlocks, std::vector<ModechartBlock> modechartBlocks,
                   std::vector<ConditionalSection> conditionalSections, std::vector<ForLoop> forLoops);

  [[nodiscard]] const std::vector<DeclarationBlock>& declarationBlocks() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<BranchBlock>& branchBlocks() const noexcept { return get<1>(); }
  [[nodiscard]] const std::vector<ConnectionBlock>& connectionBlocks() const noexcept { return get<2>(); }
  [[nodiscard]] const std::vector<EquationBlock>& equationBlocks() const noexcept { return get<3>(); }
  [[nodiscard]] const std::vector<EventBlock>& eventBlocks() const noexcept { return get<4>(); }
  [[nodiscard]] const std::vector<ModechartBlock>& modechartBlocks() const noexcept { return get<5>(); }
  [[nodiscard]] const std::vector<ConditionalSection>& conditionalSections() const noexcept { return get<6>(); }
  [[nodiscard]] const std::vector<ForLoop>& forLoops() const noexcept { return get<7>(); }
  /// @}

  /// Each block on lines of its own, which are ended, behind `indent` blanks; the kinds in the order of the fields.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
};

/// `for i = range` with its sections, which have no annotations.
class TESSARIN_EXPORT ForLoop : public nvf::TupleWrapper<ForLoop*, IdentValuePair, SemanticSections> {
public:
  /// What the loop runs over and what it repeats, as they were given.
  /// @{
  ForLoop(const IdentValuePair& idValuePair, const SemanticSections& body) : TupleWrapper(idValuePair, body) {}
  /// The variable of the loop and what it runs over.
  [[nodiscard]] const IdentValuePair& idValuePair() const noexcept { return get<0>(); }
  [[nodiscard]] const SemanticSections& body() const noexcept { return get<1>(); }
  /// @}

  /// The loop and its closing `end`, whose line is not ended; the body `step` further in.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
};

/// The blocks of a model, its annotations included. The loops are found in `semanticSections()` only.
class TESSARIN_EXPORT DeclarativeSections
    : public nvf::TupleWrapper<DeclarativeSections, SemanticSections, std::vector<AnnotationsBlock>> {
public:
  /// No blocks.
  DeclarativeSections() = default;

  /// The blocks of each kind, in the order of the source; those without annotations are the `semanticSections()`.
  /// @{
  DeclarativeSections(std::vector<DeclarationBlock> declarationBlocks, std::vector<BranchBlock> branchBlocks,
                      std::vector<ConnectionBlock> connectionBlocks, std::vector<EquationBlock> equationBlocks,
                      std::vector<EventBlock> eventBlocks, std::vector<ModechartBlock> modechartBlocks,
                      std::vector<AnnotationsBlock> annotationsBlocks,
                      std::vector<ConditionalSection> conditionalSections, std::vector<ForLoop> forLoops);
  DeclarativeSections(const SemanticSections& semanticSections, std::vector<AnnotationsBlock> annotationsBlocks)
      : TupleWrapper(semanticSections, std::move(annotationsBlocks)) {}

  [[nodiscard]] const SemanticSections& semanticSections() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<AnnotationsBlock>& annotationsBlocks() const noexcept { return get<1>(); }
  [[nodiscard]] const std::vector<DeclarationBlock>& declarationBlocks() const noexcept {
    return semanticSections().declarationBlocks();
  }
  [[nodiscard]] const std::vector<BranchBlock>& branchBlocks() const noexcept {
    return semanticSections().branchBlocks();
  }
  [[nodiscard]] const std::vector<ConnectionBlock>& connectionBlocks() const noexcept {
    return semanticSections().connectionBlocks();
  }
  [[nodiscard]] const std::vector<EquationBlock>& equationBlocks() const noexcept {
    return semanticSections().equationBlocks();
  }
  [[nodiscard]] const std::vector<EventBlock>& eventBlocks() const noexcept { return semanticSections().eventBlocks(); }
  [[nodiscard]] const std::vector<ModechartBlock>& modechartBlocks() const noexcept {
    return semanticSections().modechartBlocks();
  }
  [[nodiscard]] const std::vector<ConditionalSection>& conditionalSections() const noexcept {
    return semanticSections().conditionalSections();
  }
  /// @}

  /// The semantic sections, then the annotations; every line is ended.
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
};

inline const DeclarativeSections& IfSection::declarations() const noexcept {
  return get<1>().get();
}
inline const DeclarativeSections& ElseifSection::declarations() const noexcept {
  return get<1>().get();
}
inline const DeclarativeSections& ElseSection::declarations() const noexcept {
  return get<0>().get();
}

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::IfSection, "predicate", "declarations");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ElseifSection, "predicate", "declarations");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ElseSection, "declarations");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ConditionalSection, "ifSection", "elseifSections", "elseSection");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::SemanticSections, "declarationBlocks", "branchBlocks",
                            "connectionBlocks", "equationBlocks", "eventBlocks", "modechartBlocks",
                            "conditionalSections", "forLoops");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ForLoop, "idValuePair", "body");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::DeclarativeSections, "semanticSections", "annotationsBlocks");
