// Writes packages to the disk as source text.
#pragma once

#include "tessarin/packages/PackageEntity.hpp"

#include <filesystem>

namespace tessarin::compiler::core {

/// Writes entities below a directory, and overwrites nothing: the first thing that exists already, or cannot be
/// written, ends the run with a `nvf::MessageException` of the ast family whose argument is its path:
/// CodeGenExistingDir, CodeGenExistingFile, or FailToOpenFile. What was written before stays on the disk.
class TESSARIN_EXPORT TsnFilePrinter final : public ASTVisitor<void> {
public:
  /// `root` must be a directory.
  explicit TsnFilePrinter(const std::filesystem::path& root);
  TsnFilePrinter(const TsnFilePrinter&) = default;
  TsnFilePrinter(TsnFilePrinter&&) noexcept = default;
  TsnFilePrinter& operator=(const TsnFilePrinter&) = default;
  TsnFilePrinter& operator=(TsnFilePrinter&&) noexcept = default;
  ~TsnFilePrinter() override;

  /// Writes the entity into the current directory, which is the root. After an exception the current directory is the
  /// one where the run has stopped: begin again with a new printer.
  void printFile(const PackageEntity& entity);

  /// Makes the directory and writes what is in it. One without a name writes into the current directory.
  void visit(const Directory& directory) override;

  /// Writes the text of the file, which is `string(0, 2)`, under its name into the current directory.
  /// @{
  void visit(const ModelFile& file) override;
  void visit(const TSNFunctionFile& file) override;
  /// @}

private:
  [[nodiscard]] std::filesystem::path pathOf(const PackageEntity& entity) const;
  void write(const PackageEntity& file) const;

  std::filesystem::path current_;
};

} // namespace tessarin::compiler::core
