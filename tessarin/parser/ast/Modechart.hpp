// Modecharts: small named state machines of a model. They record what the source says; whether a transition or an
// initial entry names a mode that exists is not asked here.
#pragma once

#include "tessarin/parser/ast/EqnItem.hpp"

#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// The actions of a mode that take place when it is entered.
class TESSARIN_EXPORT EntryBlock
    : public nvf::TupleWrapper<EntryBlock, nvf::Expressions<IdentValuePair>, IgnoredRange> {
public:
  /// The actions in the order of the source. The text has `indent` blanks at the head of its lines and `step` more for
  /// the actions.
  /// @{
  EntryBlock(const nvf::Expressions<IdentValuePair>& actions, const nvf::Range& range) : TupleWrapper(actions, range) {}
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& actions() const noexcept { return get<0>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// `mode a` or, where several names share one body, `mode {a, b}`. Equations print before entry actions, whatever their
/// order in the source.
class TESSARIN_EXPORT Mode : public nvf::TupleWrapper<Mode, nvf::Expressions<Ident>, std::vector<EquationBlock>,
                                                      std::vector<EntryBlock>, IgnoredRange> {
public:
  /// The names that share the body, the blocks in the order of the source, and the text in lines of `indent` blanks and
  /// `step` more at each level.
  /// @{
  Mode(const nvf::Expressions<Ident>& ids, std::vector<EquationBlock> equationBlocks,
       std::vector<EntryBlock> entryBlocks, const nvf::Range& range)
      : TupleWrapper(ids, std::move(equationBlocks), std::move(entryBlocks), range) {}
  [[nodiscard]] const nvf::Expressions<Ident>& ids() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<EquationBlock>& equationBlocks() const noexcept { return get<1>(); }
  [[nodiscard]] const std::vector<EntryBlock>& entryBlocks() const noexcept { return get<2>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// A `modes` section.
class TESSARIN_EXPORT ModesSection : public nvf::TupleWrapper<ModesSection, std::vector<Mode>> {
public:
  /// The modes in the order of the source.
  /// @{
  explicit ModesSection(std::vector<Mode> modes) : TupleWrapper(std::move(modes)) {}
  [[nodiscard]] const std::vector<Mode>& modes() const noexcept { return get<0>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// `a->b->c : predicate`, a chain of two or more modes.
class TESSARIN_EXPORT Transition : public nvf::TupleWrapper<Transition, nvf::Expressions<Ident>, Expr> {
public:
  /// The chain, and the condition under which it is taken.
  /// @{
  Transition(const nvf::Expressions<Ident>& modes, const Expr& predicate) : TupleWrapper(modes, predicate) {}
  /// In the order of the chain.
  [[nodiscard]] const nvf::Expressions<Ident>& modes() const noexcept { return get<0>(); }
  [[nodiscard]] const Expr& predicate() const noexcept { return get<1>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// A `transitions` section.
class TESSARIN_EXPORT TransitionsSection : public nvf::TupleWrapper<TransitionsSection, std::vector<Transition>> {
public:
  /// The transitions in the order of the source.
  /// @{
  explicit TransitionsSection(std::vector<Transition> transitions) : TupleWrapper(std::move(transitions)) {}
  [[nodiscard]] const std::vector<Transition>& transitions() const noexcept { return get<0>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// `mode : predicate`, an entry of an `initial` section.
class TESSARIN_EXPORT InitialMode : public nvf::TupleWrapper<InitialMode, Ident, Expr> {
public:
  /// The mode, and the condition under which the chart begins in it.
  /// @{
  InitialMode(const Ident& id, const Expr& predicate) : TupleWrapper(id, predicate) {}
  [[nodiscard]] const Ident& id() const noexcept { return get<0>(); }
  [[nodiscard]] const Expr& predicate() const noexcept { return get<1>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// An `initial` section.
class TESSARIN_EXPORT InitialSection : public nvf::TupleWrapper<InitialSection, std::vector<InitialMode>> {
public:
  /// The entries in the order of the source.
  /// @{
  explicit InitialSection(std::vector<InitialMode> initialModes) : TupleWrapper(std::move(initialModes)) {}
  [[nodiscard]] const std::vector<InitialMode>& initialModes() const noexcept { return get<0>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// A modechart. Sections of one sort stay apart and in the order of the source; each sort has a list of its own.
class TESSARIN_EXPORT Modechart
    : public nvf::TupleWrapper<Modechart, std::vector<ModesSection>, std::vector<TransitionsSection>,
                               std::vector<InitialSection>, IgnoredRange> {
public:
  /// The sections of each sort in the order of the source. The text prints modes, then transitions, then initial modes,
  /// `step` blanks further in at each level.
  /// @{
  Modechart(std::vector<ModesSection> modesSections, std::vector<TransitionsSection> transitionsSections,
            std::vector<InitialSection> initialSections, const nvf::Range& range)
      : TupleWrapper(std::move(modesSections), std::move(transitionsSections), std::move(initialSections), range) {}
  [[nodiscard]] const std::vector<ModesSection>& modesSections() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<TransitionsSection>& transitionsSections() const noexcept { return get<1>(); }
  [[nodiscard]] const std::vector<InitialSection>& initialSections() const noexcept { return get<2>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// `name = modechart`.
class TESSARIN_EXPORT ModechartDeclaration : public nvf::TupleWrapper<ModechartDeclaration, Ident, Modechart> {
public:
  /// The name and the chart that it stands for. The text is `name = ...` and the chart on lines below.
  /// @{
  ModechartDeclaration(const Ident& id, const Modechart& modechart) : TupleWrapper(id, modechart) {}
  [[nodiscard]] const Ident& id() const noexcept { return get<0>(); }
  [[nodiscard]] const Modechart& modechart() const noexcept { return get<1>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

/// A `modecharts` block.
class TESSARIN_EXPORT ModechartBlock
    : public nvf::TupleWrapper<ModechartBlock, nvf::Expressions<IdentValuePair>, std::vector<ModechartDeclaration>,
                               detail::IgnoreValue<nvf::Location>> {
public:
  /// The attributes behind the keyword and the declarations, both in the order of the source.
  /// @{
  ModechartBlock(const nvf::Expressions<IdentValuePair>& attributes, std::vector<ModechartDeclaration> declarations,
                 const nvf::Location& location)
      : TupleWrapper(attributes, std::move(declarations), location) {}
  [[nodiscard]] const nvf::Expressions<IdentValuePair>& attributes() const noexcept { return get<0>(); }
  [[nodiscard]] const std::vector<ModechartDeclaration>& declarations() const noexcept { return get<1>(); }
  /// The place of the keyword.
  [[nodiscard]] const nvf::Location& location() const noexcept { return get<2>(); }
  [[nodiscard]] ustring string(std::size_t indent, std::size_t step) const;
  /// @}
};

} // namespace tessarin::compiler::core

TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::EntryBlock, "actions");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Mode, "ids", "equationBlocks", "entryBlocks");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ModesSection, "modes");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Transition, "modes", "predicate");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::TransitionsSection, "transitions");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::InitialMode, "id", "predicate");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::InitialSection, "initialModes");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::Modechart, "modesSections", "transitionsSections",
                            "initialSections");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ModechartDeclaration, "id", "modechart");
TESSARIN_DECLARE_OPERATIONS(tessarin::compiler::core::ModechartBlock, "attributes", "declarations");
