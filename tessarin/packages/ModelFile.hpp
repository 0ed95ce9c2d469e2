// A file that holds a model.
#pragma once

#include "tessarin/packages/PackageEntity.hpp"
#include "tessarin/parser/ast/Declaration.hpp"
#include "tessarin/parser/ast/Model.hpp"
#include "tessarin/parser/ast/TSNFunction.hpp"

#include <vector>

namespace tessarin::compiler::core {

/// A model with the imports and the local functions of its file.
class TESSARIN_EXPORT ModelFile final : public PackageEntityShim<ModelFile> {
public:
  /// Copies what it is given; nothing is checked.
  ModelFile(const Model& model, const std::vector<ImportStmt>& importStmts, const LocalTSNFunctions& localTSNFunctions)
      : model_(model), importStmts_(importStmts), localTSNFunctions_(localTSNFunctions) {}
  ModelFile(const ModelFile&) = default;
  ModelFile(ModelFile&&) noexcept = default;
  ModelFile& operator=(const ModelFile&) = default;
  ModelFile& operator=(ModelFile&&) noexcept = default;
  ~ModelFile() override;

  /// The name of the model with ".tsn" behind it.
  [[nodiscard]] ustring name() const override;

  /// What the file holds: its model, the imports in the order of the text, and the local functions in order of name.
  /// @{
  [[nodiscard]] const Model& model() const noexcept { return model_; }
  [[nodiscard]] const std::vector<ImportStmt>& importStmts() const noexcept { return importStmts_; }
  [[nodiscard]] const LocalTSNFunctions& localTSNFunctions() const noexcept { return localTSNFunctions_; }
  /// @}

  /// Whether all three are equal by `==`.
  [[nodiscard]] bool localIsEquivalent(const ModelFile& other) const;

private:
  Model model_;
  std::vector<ImportStmt> importStmts_;
  LocalTSNFunctions localTSNFunctions_;
};

} // namespace tessarin::compiler::core
