// The outline of a component: what it takes to draw its structure, without the model behind it.
#pragma once

#include "tessarin/parser/ast/Branch.hpp"
#include "tessarin/parser/ast/Connection.hpp"
#include "tessarin/parser/ast/Declaration.hpp"

#include <utility>
#include <vector>

namespace tessarin::compiler::core {

/// What a component is made of, without its equations: imports, declarations, connections and branches, in the order of
/// the source. `ASTBuilder::extractStructureInfo` takes the `components` blocks only, of all that declare something.
class ComponentStructureInfo {
public:
  /// The parts by kind and by number, from 0, in the order of the source.
  /// @{
  ComponentStructureInfo(std::vector<ImportStmt> importStmts, std::vector<DeclarationBlock> declarationBlocks,
                         std::vector<ConnectionBlock> connectionBlocks, std::vector<BranchBlock> branchBlocks)
      : importStmts_(std::move(importStmts)),
        declarationBlocks_(std::move(declarationBlocks)),
        connectionBlocks_(std::move(connectionBlocks)),
        branchBlocks_(std::move(branchBlocks)) {}

  [[nodiscard]] const std::vector<ImportStmt>& importStmts() const noexcept { return importStmts_; }
  [[nodiscard]] std::size_t numOfImports() const noexcept { return importStmts_.size(); }
  /// The `i`-th import, from 0. Throws `std::out_of_range` where there is none.
  [[nodiscard]] const ImportStmt& importStmt(std::size_t i) const { return importStmts_.at(i); }
  [[nodiscard]] std::size_t numOfDeclarationBlocks() const noexcept { return declarationBlocks_.size(); }
  /// The `i`-th block, from 0. Throws `std::out_of_range` where there is none.
  [[nodiscard]] const DeclarationBlock& declarationBlock(std::size_t i) const { return declarationBlocks_.at(i); }
  [[nodiscard]] const std::vector<ConnectionBlock>& connectionBlocks() const noexcept { return connectionBlocks_; }
  [[nodiscard]] const std::vector<BranchBlock>& branchBlocks() const noexcept { return branchBlocks_; }
  /// @}

private:
  std::vector<ImportStmt> importStmts_;
  std::vector<DeclarationBlock> declarationBlocks_;
  std::vector<ConnectionBlock> connectionBlocks_;
  std::vector<BranchBlock> branchBlocks_;
};

} // namespace tessarin::compiler::core
