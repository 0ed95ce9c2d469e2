// A file that holds a function.
#pragma once

#include "tessarin/packages/PackageEntity.hpp"
#include "tessarin/parser/ast/Declaration.hpp"
#include "tessarin/parser/ast/TSNFunction.hpp"

#include <vector>

namespace tessarin::compiler::core {

/// A function with the imports and the local functions of its file.
class TESSARIN_EXPORT TSNFunctionFile final : public PackageEntityShim<TSNFunctionFile> {
public:
  /// Copies what it is given; nothing is checked.
  TSNFunctionFile(const TSNFunction& tsnFunction, const std::vector<ImportStmt>& importStmts,
                  const LocalTSNFunctions& localTSNFunctions)
      : tsnFunction_(tsnFunction), importStmts_(importStmts), localTSNFunctions_(localTSNFunctions) {}
  TSNFunctionFile(const TSNFunctionFile&) = default;
  TSNFunctionFile(TSNFunctionFile&&) noexcept = default;
  TSNFunctionFile& operator=(const TSNFunctionFile&) = default;
  TSNFunctionFile& operator=(TSNFunctionFile&&) noexcept = default;
  ~TSNFunctionFile() override;

  /// The name of the function with ".tsn" behind it.
  [[nodiscard]] ustring name() const override;

  /// What the file holds: its function, the imports in the order of the text, and the local functions in order of name.
  /// @{
  [[nodiscard]] const TSNFunction& tsnFunction() const noexcept { return tsnFunction_; }
  [[nodiscard]] const std::vector<ImportStmt>& importStmts() const noexcept { return importStmts_; }
  [[nodiscard]] const LocalTSNFunctions& localTSNFunctions() const noexcept { return localTSNFunctions_; }
  /// @}

  /// Whether all three are equal by `==`.
  [[nodiscard]] bool localIsEquivalent(const TSNFunctionFile& other) const;

private:
  TSNFunction tsnFunction_;
  std::vector<ImportStmt> importStmts_;
  LocalTSNFunctions localTSNFunctions_;
};

} // namespace tessarin::compiler::core
